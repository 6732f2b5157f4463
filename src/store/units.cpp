#include "store/units.h"
#include "host/errors.h"
#include "host/globals.h"
#include "settings/cantilever.h"
#include "store/image_header.h"

#include <cmath>

namespace {

// Unit texts at the exponents -6, -3, 0, 3, 6, 9.
using UnitRow = const char* const[6];

constexpr UnitRow kLength = {"fm", "pm", "nm", "um", "mm", "m"};
constexpr UnitRow kCurrent = {"fA", "pA", "nA", "uA", "mA", "A"};
constexpr UnitRow kVoltage = {"uV", "mV", "V", "kV", "MV", "GV"};
constexpr UnitRow kForce = {"fN", "pN", "nN", "uN", "mN", "N"};
// An uncalibrated friction signal is printed one prefix lower than the other voltages.
constexpr UnitRow kFrictionVoltage = {"nV", "uV", "mV", "V", "kV", "MV"};

// The row index of a legal exponent, or -1.
int RowIndex(int exponent)
{
    if (exponent < -6 || exponent > 9 || exponent % 3 != 0) return -1;
    return (exponent + 6) / 3;
}

enum class Conversion { Force, Friction, Amplitude };

// Divisors that must not be zero or negative count as 1: p(x) is x when x > 0, else 1. A NaN
// passes, as the comparison 0 >= NaN is false.
double Positive(double x) { return 0 >= x ? 1.0 : x; }
// A divisor that is exactly 0 counts as 1.
double NonZero(double x) { return x == 0 ? 1.0 : x; }

double ForceConversion(double x, bool back, const wint_SPMCalType& cal)
{
    if (!cal.ForceOn) return x;
    const double k = NonZero(cal.ForceK), sens = Positive(cal.ForceSens), offset = cal.ForceOffset;
    return back ? x / k / sens + offset : k * sens * (x - offset);
}

double FrictionConversion(double x, bool back, const wint_SPMCalType& cal)
{
    if (!cal.FrictionOn) return x;
    const double a = Positive(cal.FrictionA), b = Positive(cal.FrictionB), c = NonZero(cal.FrictionC);
    const double offset = cal.FrictionOffset;
    return back ? x / a / b * c + offset : (x - offset) * a * b / c;
}

double AmplitudeConversion(double x, bool back, const wint_SPMCalType& cal)
{
    if (!cal.AmpOn) return x;
    const double A = Positive(cal.AmpD), B = Positive(cal.AmpB), C = Positive(cal.AmpC), D = Positive(cal.AmpA);
    if (!back) return (x * B * x * B - (A * B) * (A * B)) * D / (A * B * 2.0 * C);
    double t = 2 * x * (A * B) * C / D + (A * B) * (A * B);
    if (t < 0) t = -t;
    return std::sqrt(t) / B;
}

double Convert(Conversion kind, double x, bool back)
{
    const wint_SPMCalType& cal = CantileverCalibration();
    switch (kind) {
    case Conversion::Force: return ForceConversion(x, back, cal);
    case Conversion::Friction: return FrictionConversion(x, back, cal);
    case Conversion::Amplitude: return AmplitudeConversion(x, back, cal);
    }
    return x;
}

// The twist factor of an LIA1 force channel (0.14142135 is the fixed geometry factor).
constexpr double kTwistGeometry = 0.14142135;

double TwistConversion(const ImageHeaderType* r, double x, bool back)
{
    const double k1 = r->TwistK1, k2 = r->TwistK2, k3 = r->TwistK3, k4 = r->TwistK4;
    if (back) return x / Positive(k1) / Positive(k4) / kTwistGeometry / Positive(k2) * k3;
    return k1 * x * k4 * kTwistGeometry * k2 / k3;
}

const wint_SPMCalType& Cal() { return CantileverCalibration(); }

} // namespace

const char* UnitsZ(int exponent, int style)
{
    const int i = RowIndex(exponent);
    if (i < 0) {
        ProgramError("UnitsZ %d %d", exponent, style);
        return "";
    }
    return kLength[i];
}

const char* UnitsI(int exponent, int style)
{
    const int i = RowIndex(exponent);
    if (i < 0) {
        ProgramError("UnitsI %d %d", exponent, style);
        return "";
    }
    return kCurrent[i];
}

const char* UnitsV(int exponent)
{
    const int i = RowIndex(exponent);
    if (i < 0) {
        ProgramError("UnitsV %d", exponent);
        return "";
    }
    return kVoltage[i];
}

const char* UnitsForce(int exponent)
{
    const int i = RowIndex(exponent);
    if (i < 0) {
        ProgramError("UnitsForce %d", exponent);
        return "";
    }
    return Cal().ForceOn ? kForce[i] : kVoltage[i];
}

const char* UnitsRMS(int exponent)
{
    const int i = RowIndex(exponent);
    if (i < 0) {
        ProgramError("UnitsRMS %d", exponent);
        return "";
    }
    return Cal().AmpOn ? kForce[i] : kVoltage[i];
}

const char* UnitsFriction(int exponent)
{
    const int i = RowIndex(exponent);
    if (i < 0) {
        ProgramError("UnitsFriction %d", exponent);
        return "";
    }
    return Cal().FrictionOn ? kForce[i] : kFrictionVoltage[i];
}

const char* UnitsDegrees(int exponent)
{
    if (exponent == 0) return "deg";
    if (exponent == -3) return "mdeg";
    ProgramError("UnitsDegrees %d", exponent);
    return "";
}

const char* AreaUnits()
{
    // The superscript two where the 8-bit code page of the locale has one: Windows-1252 for
    // English and the Western European classes, code page 949 for Korean. The Japanese and
    // Chinese code pages have none, and an unknown locale keeps the plain suffix.
    switch (LocaleClass) {
    case 1:
    case 5:
    case 6:
    case 7:
    case 8:
    case 9:
    case 10:
    case 11:
    case 12:
    case 13:
    case 14:
    case 15: return "\xB2";
    case 3: return "\xA9\xF7";
    default: return "^2";
    }
}

double CalibratedForce(double volts) { return Convert(Conversion::Force, volts, false); }
double CalibratedFriction(double volts) { return Convert(Conversion::Friction, volts, false); }
double CalibratedAmplitude(double volts) { return Convert(Conversion::Amplitude, volts, false); }

bool IsTwistForceItem(const ImageHeaderType* r)
{
    const bool forceMapping = r->AcqMode == 51 || (r->AcqMode == 11 && r->LMCMode == 8);
    return forceMapping && r->DataSource == 4 && r->TwistForceOn != 0 && r->TwistForceCalib != 0;
}

float GetImageDataValue(int calibrated, float code, const ImageHeaderType* r)
{
    if (!r) {
        ProgramError("GetImageDataValue");
        return 0.0f;
    }
    if (r->SPMData == 0) return 0.0f;
    if (r->FFTData != 0) return code;

    const float zlo = r->Zlo, zhi = r->Zhi;
    const uint32_t source = r->DataSource;
    float value = 0.0f;
    if (source == 3) {
        if ((zlo > 0 && zhi > 0) || (zlo < 0 && zhi < 0)) {
            const double decades = std::log10(static_cast<double>(zhi) / zlo) / 65535;
            const double exponent = code * decades + std::log10(std::fabs(static_cast<double>(zlo)));
            const double magnitude = std::pow(10.0, exponent);
            value = static_cast<float>(zlo > 0 ? magnitude : -magnitude);
        }
    } else if (source == 1 || source == 2 || (source >= 4 && source <= 27)) {
        value = LinearCodeValue(code, zlo, zhi);
    } else {
        ProgramError("GetImageDataValue DataSource=%d", static_cast<int>(source));
    }
    if (calibrated) value = static_cast<float>(ImageDataValue2Calibrated(r, value, 0));
    return value;
}

double ImageDataValue2Calibrated(const ImageHeaderType* r, double x, int direction)
{
    if (!r) {
        ProgramError("ImageDataValue2Calibrated");
        return x;
    }
    const bool back = direction != 0;
    const uint32_t source = r->DataSource;

    // The default result of every later step: the value itself, or its twist force.
    double fallback = x;
    if (IsTwistForceItem(r)) fallback = TwistConversion(r, x, back);

    switch (r->AcqMode) {
    case 15:
    case 60:
        if (source == 8 || source == 9 || source == 17) return Convert(Conversion::Force, x, back);
        if (source == 18) return Convert(Conversion::Amplitude, x, back);
        return fallback;
    case 16:
        if (source == 5 || source == 10) return Convert(Conversion::Friction, x, back);
        if (source == 18) return Convert(Conversion::Amplitude, x, back);
        return fallback;
    case 21: return x;
    default:
        if (source == 8 || source == 9 || source == 24) return Convert(Conversion::Force, x, back);
        if (source == 10 || source == 15) return Convert(Conversion::Friction, x, back);
        if (source == 18) return Convert(Conversion::Amplitude, x, back);
        return fallback;
    }
}

float GetImagePointValue(int x, int y, const ImageHeaderType* record)
{
    if (!record) {
        ProgramError("GetImagePointValue");
        return 0.0f;
    }
    return GetImageDataValue(1, GetImagePoint(record, x, y), record);
}

const char* GetImageUnitStr(const ImageHeaderType* r, int exponent, int style)
{
    if (!r) {
        ProgramError("GetImageUnitStr");
        return "";
    }
    if (r->SPMData == 0 || r->FFTData != 0) return "";

    const wint_SPMCalType& cal = Cal();
    const uint32_t source = r->DataSource;
    const char* unit = "";
    switch (source) {
    case 1:
    case 25:
    case 26: unit = UnitsZ(exponent, style); break;
    case 2:
    case 3: unit = UnitsI(exponent, style); break;
    case 4: unit = IsTwistForceItem(r) ? "nN" : UnitsV(exponent); break;
    case 5:
    case 6:
    case 7:
    case 13:
    case 14:
    case 16:
    case 17:
    case 19:
    case 20:
    case 21:
    case 23: unit = UnitsV(exponent); break;
    case 8:
    case 9:
    case 24: unit = cal.ForceOn ? UnitsForce(exponent) : UnitsV(exponent); break;
    case 10:
    case 15: unit = cal.FrictionOn ? UnitsFriction(exponent) : UnitsV(exponent); break;
    case 11:
    case 12: unit = UnitsDegrees(exponent); break;
    case 18: unit = cal.AmpOn ? UnitsRMS(exponent) : UnitsV(exponent); break;
    case 22: unit = "au"; break;
    case 27: unit = "Pa"; break;
    default: ProgramError("GetImageUnitStr  DataSource=%d", static_cast<int>(source)); break;
    }

    // The class of the item overrides the unit of its source.
    switch (r->ImType1) {
    case IMTYPE_SPECTRUM:
        if (r->AcqMode == 15 && (source == 10 || source == 17)) {
            unit = UnitsV(exponent);
        } else if (r->AcqMode == 16) {
            if (source == 5) unit = cal.FrictionOn ? UnitsFriction(exponent) : UnitsV(exponent);
            else if (source == 8 || source == 9) unit = UnitsV(exponent);
        }
        break;
    case IMTYPE_HISTOGRAM: unit = ""; break;
    case IMTYPE_FREQUENCY_SWEEP:
    case IMTYPE_PHASE_SHIFT: unit = UnitsV(exponent); break;
    default: break;
    }
    return unit;
}
