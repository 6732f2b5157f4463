// Unit families, pixel codes to physical values, the cantilever calibration of values, and the
// unit text of an item.
#include "support/test_host.h"
#include "host/globals.h"
#include "settings/cantilever.h"
#include "store/image_header.h"
#include "store/memory.h"
#include "store/units.h"

#include <cmath>
#include <cstring>
#include <limits>
#include <memory>
#include <string>
#include <vector>

namespace {

using RecordPtr = std::unique_ptr<ImageHeaderType, void (*)(ImageHeaderType*)>;

// A new image record with physical scales: SPMData set, Zlo 0, Zhi 0.
RecordPtr NewRecord()
{
    RecordPtr r(AllocateHeader(), FreeHeader);
    r->SPMData = 1;
    return r;
}

// A calibration with every switch off and every factor 1.
wint_SPMCalType NeutralCalibration()
{
    wint_SPMCalType c;
    std::memset(&c, 0, sizeof c);
    c.ForceK = c.ForceSens = 1.0;
    c.FrictionA = c.FrictionB = c.FrictionC = 1.0;
    c.AmpA = c.AmpB = c.AmpC = c.AmpD = 1.0;
    return c;
}

// Non-degenerate factors for every conversion, all switches on.
wint_SPMCalType WorkingCalibration()
{
    wint_SPMCalType c = NeutralCalibration();
    c.ForceOn = 1;
    c.ForceK = 0.25;
    c.ForceSens = 40.0;
    c.ForceOffset = 0.5;
    c.FrictionOn = 1;
    c.FrictionOffset = -0.2;
    c.FrictionA = 3.0;
    c.FrictionB = 0.5;
    c.FrictionC = 6.0;
    c.AmpOn = 1;
    c.AmpA = 2.0;  // D of the amplitude formula
    c.AmpB = 3.0;  // B
    c.AmpC = 5.0;  // C
    c.AmpD = 0.7;  // A
    return c;
}

void SetTwistFields(ImageHeaderType* r, double k1, double k2, double k3, double k4)
{
    r->TwistForceOn = 1;
    r->TwistForceCalib = 1;
    r->TwistK1 = k1;
    r->TwistK2 = k2;
    r->TwistK3 = k3;
    r->TwistK4 = k4;
}

// Values over many decades in both signs, for the round trips.
std::vector<double> SpreadOfValues()
{
    std::vector<double> values;
    for (int i = 0; i <= 400; ++i) {
        const double v = std::pow(10.0, -6.0 + i * 0.03) * (1.0 + 0.37 * (i % 7));
        values.push_back(v);
        values.push_back(-v);
    }
    values.push_back(0.0);
    return values;
}

} // namespace

class UnitsTest : public LibraryTest {
protected:
    void SetUp() override
    {
        LibraryTest::SetUp();
        ASSERT_EQ(host.Start(), 0);
        SetCantileverCalibration(NeutralCalibration());
    }
    bool Reported(const std::string& text) const
    {
        return ReadLog().find("Program error - " + text) != std::string::npos;
    }
    bool AnyProgramError() const { return ReadLog().find("Program error") != std::string::npos; }
    void SetSwitches(bool force, bool friction, bool amplitude)
    {
        wint_SPMCalType c = NeutralCalibration();
        c.ForceOn = force;
        c.FrictionOn = friction;
        c.AmpOn = amplitude;
        SetCantileverCalibration(c);
    }
};

// ---- unit families ------------------------------------------------------------------------

const int kLegalExponents[] = {-6, -3, 0, 3, 6, 9};

TEST_F(UnitsTest, LengthCurrentAndVoltageFamiliesAtEveryLegalExponent)
{
    const char* z[] = {"fm", "pm", "nm", "um", "mm", "m"};
    const char* i[] = {"fA", "pA", "nA", "uA", "mA", "A"};
    const char* v[] = {"uV", "mV", "V", "kV", "MV", "GV"};
    for (int k = 0; k < 6; ++k) {
        const int e = kLegalExponents[k];
        for (int style = 0; style <= 1; ++style) {
            EXPECT_STREQ(UnitsZ(e, style), z[k]) << e << " style " << style;
            EXPECT_STREQ(UnitsI(e, style), i[k]) << e << " style " << style;
        }
        EXPECT_STREQ(UnitsV(e), v[k]) << e;
    }
    EXPECT_FALSE(AnyProgramError());
}

TEST_F(UnitsTest, ForceRmsAndFrictionFamiliesEnabledNameNewtons)
{
    SetSwitches(true, true, true);
    const char* n[] = {"fN", "pN", "nN", "uN", "mN", "N"};
    for (int k = 0; k < 6; ++k) {
        EXPECT_STREQ(UnitsForce(kLegalExponents[k]), n[k]);
        EXPECT_STREQ(UnitsRMS(kLegalExponents[k]), n[k]);
        EXPECT_STREQ(UnitsFriction(kLegalExponents[k]), n[k]);
    }
    EXPECT_FALSE(AnyProgramError());
}

TEST_F(UnitsTest, ForceAndRmsDisabledNameVoltsFrictionDisabledIsOneStepLower)
{
    SetSwitches(false, false, false);
    const char* v[] = {"uV", "mV", "V", "kV", "MV", "GV"};
    const char* lower[] = {"nV", "uV", "mV", "V", "kV", "MV"};
    for (int k = 0; k < 6; ++k) {
        EXPECT_STREQ(UnitsForce(kLegalExponents[k]), v[k]);
        EXPECT_STREQ(UnitsRMS(kLegalExponents[k]), v[k]);
        EXPECT_STREQ(UnitsFriction(kLegalExponents[k]), lower[k]);
    }
    EXPECT_FALSE(AnyProgramError());
}

TEST_F(UnitsTest, EachSwitchGovernsOnlyItsOwnFamily)
{
    SetSwitches(true, false, false);
    EXPECT_STREQ(UnitsForce(0), "nN");
    EXPECT_STREQ(UnitsRMS(0), "V");
    EXPECT_STREQ(UnitsFriction(0), "mV");
    SetSwitches(false, false, true);
    EXPECT_STREQ(UnitsForce(0), "V");
    EXPECT_STREQ(UnitsRMS(0), "nN");
    SetSwitches(false, true, false);
    EXPECT_STREQ(UnitsFriction(0), "nN");
    EXPECT_STREQ(UnitsForce(0), "V");
}

TEST_F(UnitsTest, DegreesAnswerDegAndMdegOnly)
{
    EXPECT_STREQ(UnitsDegrees(0), "deg");
    EXPECT_STREQ(UnitsDegrees(-3), "mdeg");
    EXPECT_FALSE(AnyProgramError());
    EXPECT_STREQ(UnitsDegrees(3), "");
    EXPECT_TRUE(Reported("UnitsDegrees 3"));
}

TEST_F(UnitsTest, ExponentNineIsLegalTwelveIsAProgramErrorAndEmpty)
{
    EXPECT_STREQ(UnitsZ(9, 0), "m");
    EXPECT_STREQ(UnitsV(9), "GV");
    EXPECT_FALSE(AnyProgramError());

    EXPECT_STREQ(UnitsZ(12, 0), "");
    EXPECT_TRUE(Reported("UnitsZ 12 0"));
    EXPECT_STREQ(UnitsI(12, 1), "");
    EXPECT_TRUE(Reported("UnitsI 12 1"));
    EXPECT_STREQ(UnitsV(12), "");
    EXPECT_TRUE(Reported("UnitsV 12"));
    EXPECT_STREQ(UnitsForce(12), "");
    EXPECT_TRUE(Reported("UnitsForce 12"));
    EXPECT_STREQ(UnitsRMS(12), "");
    EXPECT_TRUE(Reported("UnitsRMS 12"));
    EXPECT_STREQ(UnitsFriction(12), "");
    EXPECT_TRUE(Reported("UnitsFriction 12"));
    EXPECT_STREQ(UnitsDegrees(12), "");
    EXPECT_TRUE(Reported("UnitsDegrees 12"));
}

TEST_F(UnitsTest, ExponentMinusNineIsAProgramErrorInEveryFamily)
{
    EXPECT_STREQ(UnitsZ(-9, 1), "");
    EXPECT_TRUE(Reported("UnitsZ -9 1"));
    EXPECT_STREQ(UnitsI(-9, 0), "");
    EXPECT_TRUE(Reported("UnitsI -9 0"));
    EXPECT_STREQ(UnitsV(-9), "");
    EXPECT_TRUE(Reported("UnitsV -9"));
    EXPECT_STREQ(UnitsForce(-9), "");
    EXPECT_TRUE(Reported("UnitsForce -9"));
    EXPECT_STREQ(UnitsRMS(-9), "");
    EXPECT_TRUE(Reported("UnitsRMS -9"));
    EXPECT_STREQ(UnitsFriction(-9), "");
    EXPECT_TRUE(Reported("UnitsFriction -9"));
    EXPECT_STREQ(UnitsDegrees(-9), "");
    EXPECT_TRUE(Reported("UnitsDegrees -9"));
}

TEST_F(UnitsTest, ExponentsBetweenTheStepsAreProgramErrors)
{
    EXPECT_STREQ(UnitsZ(1, 0), "");
    EXPECT_TRUE(Reported("UnitsZ 1 0"));
    EXPECT_STREQ(UnitsV(-2), "");
    EXPECT_TRUE(Reported("UnitsV -2"));
}

TEST_F(UnitsTest, AreaSuffixFollowsTheLocaleClass)
{
    LocaleClass = 999;
    EXPECT_STREQ(AreaUnits(), "^2");
    LocaleClass = 2;   // Japanese: no superscript in the code page
    EXPECT_STREQ(AreaUnits(), "^2");
    LocaleClass = 4;   // Chinese
    EXPECT_STREQ(AreaUnits(), "^2");
    LocaleClass = 3;   // Korean, code page 949
    EXPECT_STREQ(AreaUnits(), "\xA9\xF7");
    for (int c : {1, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15}) {
        LocaleClass = c;
        EXPECT_STREQ(AreaUnits(), "\xB2") << c;
    }
    LocaleClass = 999;
    EXPECT_STREQ(dl_AreaUnits(), "^2");
}

// ---- pixel codes to values ----------------------------------------------------------------

TEST_F(UnitsTest, SpmDataZeroAnswersZeroForEveryCodeWhateverTheRange)
{
    RecordPtr r = NewRecord();
    r->SPMData = 0;
    r->Zlo = -5.0f;
    r->Zhi = 7.0f;
    r->DataSource = 8;
    SetSwitches(true, true, true);
    for (int code = 0; code <= 65535; ++code) {
        ASSERT_EQ(GetImageDataValue(0, static_cast<float>(code), r.get()), 0.0f) << code;
        ASSERT_EQ(GetImageDataValue(1, static_cast<float>(code), r.get()), 0.0f) << code;
    }
}

TEST_F(UnitsTest, ComplexDataAnswerTheCodeItself)
{
    RecordPtr r = NewRecord();
    r->FFTData = 1;
    r->Zlo = -5.0f;
    r->Zhi = 7.0f;
    EXPECT_EQ(GetImageDataValue(0, 0.0f, r.get()), 0.0f);
    EXPECT_EQ(GetImageDataValue(0, 1234.0f, r.get()), 1234.0f);
    EXPECT_EQ(GetImageDataValue(1, 65535.0f, r.get()), 65535.0f);
}

TEST_F(UnitsTest, EqualEndsGiveTheSameValueForAllCodes)
{
    RecordPtr r = NewRecord();
    r->Zlo = r->Zhi = 3.25f;
    for (int code = 0; code <= 65535; ++code)
        ASSERT_EQ(GetImageDataValue(0, static_cast<float>(code), r.get()), 3.25f) << code;
}

TEST_F(UnitsTest, LogCurrentFromOneToHundred)
{
    RecordPtr r = NewRecord();
    r->DataSource = 3;
    r->Zlo = 1.0f;
    r->Zhi = 100.0f;
    EXPECT_FLOAT_EQ(GetImageDataValue(0, 0.0f, r.get()), 1.0f);
    EXPECT_FLOAT_EQ(GetImageDataValue(0, 65535.0f, r.get()), 100.0f);
    EXPECT_FLOAT_EQ(GetImageDataValue(0, 32767.5f, r.get()), 10.0f);
}

TEST_F(UnitsTest, LogCurrentWithBothEndsNegativeIsMirrored)
{
    RecordPtr r = NewRecord();
    r->DataSource = 3;
    r->Zlo = -1.0f;
    r->Zhi = -100.0f;
    EXPECT_FLOAT_EQ(GetImageDataValue(0, 0.0f, r.get()), -1.0f);
    EXPECT_FLOAT_EQ(GetImageDataValue(0, 65535.0f, r.get()), -100.0f);
    EXPECT_FLOAT_EQ(GetImageDataValue(0, 32767.5f, r.get()), -10.0f);
}

TEST_F(UnitsTest, LogCurrentWithMixedSignsGivesZeroForEveryCode)
{
    RecordPtr r = NewRecord();
    r->DataSource = 3;
    r->Zlo = -1.0f;
    r->Zhi = 1.0f;
    for (int code = 0; code <= 65535; ++code)
        ASSERT_EQ(GetImageDataValue(0, static_cast<float>(code), r.get()), 0.0f) << code;
    r->Zlo = 0.0f;
    r->Zhi = 10.0f;
    EXPECT_EQ(GetImageDataValue(0, 65535.0f, r.get()), 0.0f);
    EXPECT_FALSE(AnyProgramError());
}

TEST_F(UnitsTest, LinearSourcesMapCodeZeroToZloAndTheLastCodeToZhi)
{
    RecordPtr r = NewRecord();
    r->Zlo = 10.0f;
    r->Zhi = -20.0f;   // an inverted scale
    for (uint32_t source : {1u, 2u, 4u, 5u, 8u, 12u, 18u, 22u, 27u}) {
        r->DataSource = source;
        EXPECT_EQ(GetImageDataValue(0, 0.0f, r.get()), 10.0f) << source;
        EXPECT_EQ(GetImageDataValue(0, 65535.0f, r.get()), -20.0f) << source;
        const float expected = 100.0f * (-20.0f - 10.0f) / 65535.0f + 10.0f;
        EXPECT_EQ(GetImageDataValue(0, 100.0f, r.get()), expected) << source;
    }
    EXPECT_FALSE(AnyProgramError());
}

TEST_F(UnitsTest, UnknownDataSourceIsReportedAndGivesZero)
{
    RecordPtr r = NewRecord();
    r->Zlo = 1.0f;
    r->Zhi = 2.0f;
    r->DataSource = 28;
    EXPECT_EQ(GetImageDataValue(0, 100.0f, r.get()), 0.0f);
    EXPECT_TRUE(Reported("GetImageDataValue DataSource=28"));
    r->DataSource = 0;
    EXPECT_EQ(GetImageDataValue(1, 100.0f, r.get()), 0.0f);
    EXPECT_TRUE(Reported("GetImageDataValue DataSource=0"));
}

TEST_F(UnitsTest, NullRecordIsReported)
{
    EXPECT_EQ(GetImageDataValue(0, 1.0f, nullptr), 0.0f);
    EXPECT_TRUE(Reported("GetImageDataValue"));
    EXPECT_EQ(ImageDataValue2Calibrated(nullptr, 2.5, 0), 2.5);
    EXPECT_TRUE(Reported("ImageDataValue2Calibrated"));
    EXPECT_EQ(GetImagePointValue(0, 0, nullptr), 0.0f);
    EXPECT_TRUE(Reported("GetImagePointValue"));
}

TEST_F(UnitsTest, TheFlagAppliesTheCalibration)
{
    RecordPtr r = NewRecord();
    r->DataSource = 8;
    r->Zlo = 0.0f;
    r->Zhi = 10.0f;
    SetCantileverCalibration(WorkingCalibration());
    EXPECT_EQ(GetImageDataValue(0, 65535.0f, r.get()), 10.0f);
    EXPECT_FLOAT_EQ(GetImageDataValue(1, 65535.0f, r.get()), 0.25f * 40.0f * (10.0f - 0.5f));
}

TEST_F(UnitsTest, PointValueIsTheCalibratedValueOfThatPixel)
{
    RecordPtr r = NewRecord();
    r->nx = r->ny = 4;
    std::vector<uint16_t> pixels(16, 0);
    pixels[2 * 4 + 3] = 65535;
    r->PixData = pixels.data();
    r->DataSource = 8;
    r->Zlo = 0.0f;
    r->Zhi = 10.0f;
    SetCantileverCalibration(WorkingCalibration());
    EXPECT_FLOAT_EQ(GetImagePointValue(3, 2, r.get()), 95.0f);
    EXPECT_FLOAT_EQ(GetImagePointValue(0, 0, r.get()), 0.25f * 40.0f * (0.0f - 0.5f));
    EXPECT_EQ(GetImagePointValue(4, 0, r.get()), GetImageDataValue(1, 0.0f, r.get()));
    EXPECT_TRUE(Reported("GetImagePoint (4 0)"));
    r->PixData = nullptr;
}

// ---- the calibration ----------------------------------------------------------------------

TEST_F(UnitsTest, ForceSwitchedOffIsLabelledInVoltsAndPassesUnchanged)
{
    RecordPtr r = NewRecord();
    r->DataSource = 8;
    r->Zlo = -3.0f;
    r->Zhi = 5.0f;
    wint_SPMCalType c = WorkingCalibration();
    c.ForceOn = 0;
    SetCantileverCalibration(c);
    EXPECT_STREQ(GetImageUnitStr(r.get(), 0, 0), "V");
    EXPECT_STREQ(GetImageUnitStr(r.get(), -3, 0), "mV");
    for (float code : {0.0f, 1000.0f, 40000.0f, 65535.0f})
        EXPECT_EQ(GetImageDataValue(1, code, r.get()), GetImageDataValue(0, code, r.get())) << code;
    EXPECT_EQ(ImageDataValue2Calibrated(r.get(), 1.75, 0), 1.75);
    EXPECT_EQ(ImageDataValue2Calibrated(r.get(), 1.75, 1), 1.75);
}

TEST_F(UnitsTest, ForceWithSpringConstantZeroUsesFactorOne)
{
    RecordPtr r = NewRecord();
    r->DataSource = 8;
    wint_SPMCalType c = NeutralCalibration();
    c.ForceOn = 1;
    c.ForceK = 0.0;
    c.ForceSens = 2.0;
    c.ForceOffset = 0.5;
    SetCantileverCalibration(c);
    EXPECT_DOUBLE_EQ(ImageDataValue2Calibrated(r.get(), 3.0, 0), 1.0 * 2.0 * (3.0 - 0.5));
    EXPECT_DOUBLE_EQ(ImageDataValue2Calibrated(r.get(), 5.0, 1), 5.0 / 1.0 / 2.0 + 0.5);
}

TEST_F(UnitsTest, ForceWithSensitivityZeroOrNegativeUsesFactorOne)
{
    RecordPtr r = NewRecord();
    r->DataSource = 9;
    wint_SPMCalType c = NeutralCalibration();
    c.ForceOn = 1;
    c.ForceK = 4.0;
    c.ForceOffset = 1.0;
    for (double sens : {0.0, -2.0}) {
        c.ForceSens = sens;
        SetCantileverCalibration(c);
        EXPECT_DOUBLE_EQ(ImageDataValue2Calibrated(r.get(), 3.0, 0), 4.0 * 1.0 * (3.0 - 1.0)) << sens;
        EXPECT_DOUBLE_EQ(ImageDataValue2Calibrated(r.get(), 8.0, 1), 8.0 / 4.0 / 1.0 + 1.0) << sens;
    }
}

TEST_F(UnitsTest, ANanSensitivityCountsAsAboveZero)
{
    RecordPtr r = NewRecord();
    r->DataSource = 8;
    wint_SPMCalType c = NeutralCalibration();
    c.ForceOn = 1;
    c.ForceSens = std::numeric_limits<double>::quiet_NaN();
    SetCantileverCalibration(c);
    EXPECT_TRUE(std::isnan(ImageDataValue2Calibrated(r.get(), 3.0, 0)));
}

TEST_F(UnitsTest, ForceFormulaBothDirections)
{
    RecordPtr r = NewRecord();
    r->DataSource = 24;
    SetCantileverCalibration(WorkingCalibration());
    EXPECT_DOUBLE_EQ(ImageDataValue2Calibrated(r.get(), 2.5, 0), 0.25 * 40.0 * (2.5 - 0.5));
    EXPECT_DOUBLE_EQ(ImageDataValue2Calibrated(r.get(), 20.0, 1), 20.0 / 0.25 / 40.0 + 0.5);
}

TEST_F(UnitsTest, FrictionFormulaBothDirectionsAndItsFactorRules)
{
    RecordPtr r = NewRecord();
    r->DataSource = 10;
    wint_SPMCalType c = WorkingCalibration();
    SetCantileverCalibration(c);
    EXPECT_DOUBLE_EQ(ImageDataValue2Calibrated(r.get(), 1.0, 0), (1.0 + 0.2) * 3.0 * 0.5 / 6.0);
    EXPECT_DOUBLE_EQ(ImageDataValue2Calibrated(r.get(), 0.3, 1), 0.3 / 3.0 / 0.5 * 6.0 - 0.2);
    c.FrictionA = -1.0;   // p: 1
    c.FrictionB = 0.0;    // p: 1
    c.FrictionC = 0.0;    // q: 1
    SetCantileverCalibration(c);
    EXPECT_DOUBLE_EQ(ImageDataValue2Calibrated(r.get(), 1.0, 0), 1.2);
    c.FrictionC = -4.0;   // q keeps a negative divisor
    SetCantileverCalibration(c);
    EXPECT_DOUBLE_EQ(ImageDataValue2Calibrated(r.get(), 1.0, 0), 1.2 / -4.0);
    c.FrictionOn = 0;
    SetCantileverCalibration(c);
    EXPECT_EQ(ImageDataValue2Calibrated(r.get(), 1.0, 0), 1.0);
}

TEST_F(UnitsTest, AmplitudeFormulaBothDirections)
{
    RecordPtr r = NewRecord();
    r->DataSource = 18;
    SetCantileverCalibration(WorkingCalibration());
    const double A = 0.7, B = 3.0, C = 5.0, D = 2.0, x = 1.3;
    const double forward = (x * B * x * B - (A * B) * (A * B)) * D / (A * B * 2.0 * C);
    EXPECT_DOUBLE_EQ(ImageDataValue2Calibrated(r.get(), x, 0), forward);
    const double y = 0.8;
    const double t = 2 * y * (A * B) * C / D + (A * B) * (A * B);
    EXPECT_DOUBLE_EQ(ImageDataValue2Calibrated(r.get(), y, 1), std::sqrt(t) / B);
}

TEST_F(UnitsTest, AmplitudeBackTakesTheMagnitudeOfANegativeSquare)
{
    RecordPtr r = NewRecord();
    r->DataSource = 18;
    SetCantileverCalibration(WorkingCalibration());
    const double A = 0.7, B = 3.0, C = 5.0, D = 2.0, y = -10.0;
    const double t = 2 * y * (A * B) * C / D + (A * B) * (A * B);
    ASSERT_LT(t, 0);
    EXPECT_DOUBLE_EQ(ImageDataValue2Calibrated(r.get(), y, 1), std::sqrt(-t) / B);
}

TEST_F(UnitsTest, AmplitudeWithUnsetFactorsDegradesToOne)
{
    RecordPtr r = NewRecord();
    r->DataSource = 18;
    wint_SPMCalType c = NeutralCalibration();
    c.AmpOn = 1;
    c.AmpA = c.AmpB = c.AmpC = c.AmpD = 0.0;
    SetCantileverCalibration(c);
    EXPECT_DOUBLE_EQ(ImageDataValue2Calibrated(r.get(), 3.0, 0), (9.0 - 1.0) / 2.0);
    EXPECT_DOUBLE_EQ(ImageDataValue2Calibrated(r.get(), 4.0, 1), 3.0);
}

TEST_F(UnitsTest, TwistForceStepBothDirections)
{
    RecordPtr r = NewRecord();
    r->AcqMode = 51;
    r->LMCMode = 8;
    r->DataSource = 4;
    SetTwistFields(r.get(), 2.0, 3.0, 5.0, 7.0);
    EXPECT_DOUBLE_EQ(ImageDataValue2Calibrated(r.get(), 1.5, 0), 2.0 * 1.5 * 7.0 * 0.14142135 * 3.0 / 5.0);
    EXPECT_DOUBLE_EQ(ImageDataValue2Calibrated(r.get(), 1.5, 1), 1.5 / 2.0 / 7.0 / 0.14142135 / 3.0 * 5.0);
    r->TwistK1 = 0.0;   // p: 1 on the way back only
    EXPECT_DOUBLE_EQ(ImageDataValue2Calibrated(r.get(), 1.5, 0), 0.0);
    EXPECT_DOUBLE_EQ(ImageDataValue2Calibrated(r.get(), 1.5, 1), 1.5 / 1.0 / 7.0 / 0.14142135 / 3.0 * 5.0);
}

TEST_F(UnitsTest, TwistForceNeedsTheModeTheSourceAndBothSwitches)
{
    RecordPtr r = NewRecord();
    r->DataSource = 4;
    SetTwistFields(r.get(), 2.0, 3.0, 5.0, 7.0);
    const double twisted = 2.0 * 1.5 * 7.0 * 0.14142135 * 3.0 / 5.0;

    r->AcqMode = 51;   // every LMC mode
    r->LMCMode = 0;
    EXPECT_DOUBLE_EQ(ImageDataValue2Calibrated(r.get(), 1.5, 0), twisted);
    r->AcqMode = 11;   // a mapping only with the force curve mapping
    EXPECT_EQ(ImageDataValue2Calibrated(r.get(), 1.5, 0), 1.5);
    r->LMCMode = 8;
    EXPECT_DOUBLE_EQ(ImageDataValue2Calibrated(r.get(), 1.5, 0), twisted);
    r->TwistForceCalib = 0;
    EXPECT_EQ(ImageDataValue2Calibrated(r.get(), 1.5, 0), 1.5);
    r->TwistForceCalib = 1;
    r->TwistForceOn = 0;
    EXPECT_EQ(ImageDataValue2Calibrated(r.get(), 1.5, 0), 1.5);
    r->TwistForceOn = 1;
    r->DataSource = 5;
    EXPECT_EQ(ImageDataValue2Calibrated(r.get(), 1.5, 0), 1.5);
    r->DataSource = 4;
    r->AcqMode = 15;
    EXPECT_EQ(ImageDataValue2Calibrated(r.get(), 1.5, 0), 1.5);
}

TEST_F(UnitsTest, ForceCurveModesConvertForceAndAmplitudeSourcesOnly)
{
    RecordPtr r = NewRecord();
    SetCantileverCalibration(WorkingCalibration());
    const double force = 0.25 * 40.0 * (2.0 - 0.5);
    for (uint32_t mode : {15u, 60u}) {
        r->AcqMode = mode;
        for (uint32_t source : {8u, 9u, 17u}) {
            r->DataSource = source;
            EXPECT_DOUBLE_EQ(ImageDataValue2Calibrated(r.get(), 2.0, 0), force) << mode << " " << source;
        }
        r->DataSource = 18;
        EXPECT_NE(ImageDataValue2Calibrated(r.get(), 2.0, 0), 2.0) << mode;
        for (uint32_t source : {24u, 10u, 15u, 1u}) {
            r->DataSource = source;
            EXPECT_EQ(ImageDataValue2Calibrated(r.get(), 2.0, 0), 2.0) << mode << " " << source;
        }
    }
}

TEST_F(UnitsTest, FrictionCurveModeConvertsFrictionAndAmplitudeSourcesOnly)
{
    RecordPtr r = NewRecord();
    SetCantileverCalibration(WorkingCalibration());
    r->AcqMode = 16;
    const double friction = (2.0 + 0.2) * 3.0 * 0.5 / 6.0;
    for (uint32_t source : {5u, 10u}) {
        r->DataSource = source;
        EXPECT_DOUBLE_EQ(ImageDataValue2Calibrated(r.get(), 2.0, 0), friction) << source;
    }
    r->DataSource = 18;
    EXPECT_NE(ImageDataValue2Calibrated(r.get(), 2.0, 0), 2.0);
    for (uint32_t source : {15u, 8u, 9u, 1u}) {
        r->DataSource = source;
        EXPECT_EQ(ImageDataValue2Calibrated(r.get(), 2.0, 0), 2.0) << source;
    }
}

TEST_F(UnitsTest, FrequencySweepModeConvertsNothing)
{
    RecordPtr r = NewRecord();
    SetCantileverCalibration(WorkingCalibration());
    r->AcqMode = 21;
    for (uint32_t source : {8u, 10u, 15u, 18u, 24u}) {
        r->DataSource = source;
        EXPECT_EQ(ImageDataValue2Calibrated(r.get(), 2.0, 0), 2.0) << source;
        EXPECT_EQ(ImageDataValue2Calibrated(r.get(), 2.0, 1), 2.0) << source;
    }
}

TEST_F(UnitsTest, OtherModesConvertBySourceAlone)
{
    RecordPtr r = NewRecord();
    SetCantileverCalibration(WorkingCalibration());
    r->AcqMode = 4;
    const double force = 0.25 * 40.0 * (2.0 - 0.5);
    const double friction = (2.0 + 0.2) * 3.0 * 0.5 / 6.0;
    for (uint32_t source : {8u, 9u, 24u}) {
        r->DataSource = source;
        EXPECT_DOUBLE_EQ(ImageDataValue2Calibrated(r.get(), 2.0, 0), force) << source;
    }
    for (uint32_t source : {10u, 15u}) {
        r->DataSource = source;
        EXPECT_DOUBLE_EQ(ImageDataValue2Calibrated(r.get(), 2.0, 0), friction) << source;
    }
    r->DataSource = 18;
    EXPECT_NE(ImageDataValue2Calibrated(r.get(), 2.0, 0), 2.0);
    for (uint32_t source : {1u, 5u, 17u}) {
        r->DataSource = source;
        EXPECT_EQ(ImageDataValue2Calibrated(r.get(), 2.0, 0), 2.0) << source;
    }
}

// Forward then back gives the value again, within `absolute` plus a relative 1e-12.
void ExpectRoundTrip(const ImageHeaderType* r, const std::vector<double>& values, double absolute = 1e-12)
{
    for (double x : values) {
        const double back = ImageDataValue2Calibrated(r, ImageDataValue2Calibrated(r, x, 0), 1);
        ASSERT_NEAR(back, x, absolute + 1e-12 * std::fabs(x)) << "x = " << x;
    }
}

TEST_F(UnitsTest, ForceForwardThenBackGivesTheValueAgain)
{
    RecordPtr r = NewRecord();
    r->DataSource = 8;
    SetCantileverCalibration(WorkingCalibration());
    ASSERT_NE(ImageDataValue2Calibrated(r.get(), 1.0, 0), 1.0);
    ExpectRoundTrip(r.get(), SpreadOfValues());
}

TEST_F(UnitsTest, FrictionForwardThenBackGivesTheValueAgain)
{
    RecordPtr r = NewRecord();
    r->DataSource = 15;
    SetCantileverCalibration(WorkingCalibration());
    ASSERT_NE(ImageDataValue2Calibrated(r.get(), 1.0, 0), 1.0);
    ExpectRoundTrip(r.get(), SpreadOfValues());
}

TEST_F(UnitsTest, AmplitudeForwardThenBackGivesTheValueAgainForAmplitudesOfZeroAndAbove)
{
    // The formula works on the square of the amplitude, so the way back answers the magnitude.
    // Near 0 the square is lost against (A * B)^2 = 4.41: the rounding of that term, about
    // 1e-15, comes back as its square root, so the absolute tolerance is 1e-7.
    RecordPtr r = NewRecord();
    r->DataSource = 18;
    SetCantileverCalibration(WorkingCalibration());
    ASSERT_NE(ImageDataValue2Calibrated(r.get(), 1.0, 0), 1.0);
    std::vector<double> values;
    for (double v : SpreadOfValues())
        if (v >= 0) values.push_back(v);
    ExpectRoundTrip(r.get(), values, 1e-7);
    EXPECT_NEAR(ImageDataValue2Calibrated(r.get(), ImageDataValue2Calibrated(r.get(), -2.0, 0), 1), 2.0, 1e-12);
}

TEST_F(UnitsTest, TwistForceForwardThenBackGivesTheValueAgain)
{
    RecordPtr r = NewRecord();
    r->AcqMode = 51;
    r->DataSource = 4;
    SetTwistFields(r.get(), 2.0, 3.0, 5.0, 7.0);
    ASSERT_NE(ImageDataValue2Calibrated(r.get(), 1.0, 0), 1.0);
    ExpectRoundTrip(r.get(), SpreadOfValues());
}

// ---- unit texts of an item ----------------------------------------------------------------

TEST_F(UnitsTest, UnitTextBySourceAtTheGivenExponent)
{
    RecordPtr r = NewRecord();
    SetSwitches(true, true, true);
    struct Row {
        uint32_t source;
        const char* unit0;
        const char* unit3;
    };
    const Row rows[] = {
        {1, "nm", "um"},    {25, "nm", "um"},   {26, "nm", "um"},  {2, "nA", "uA"},   {3, "nA", "uA"},
        {4, "V", "kV"},     {5, "V", "kV"},     {6, "V", "kV"},    {7, "V", "kV"},    {13, "V", "kV"},
        {14, "V", "kV"},    {16, "V", "kV"},    {17, "V", "kV"},   {19, "V", "kV"},   {20, "V", "kV"},
        {21, "V", "kV"},    {23, "V", "kV"},    {8, "nN", "uN"},   {9, "nN", "uN"},   {24, "nN", "uN"},
        {10, "nN", "uN"},   {15, "nN", "uN"},   {18, "nN", "uN"},  {22, "au", "au"},  {27, "Pa", "Pa"},
    };
    for (const Row& row : rows) {
        r->DataSource = row.source;
        EXPECT_STREQ(GetImageUnitStr(r.get(), 0, 0), row.unit0) << row.source;
        EXPECT_STREQ(GetImageUnitStr(r.get(), 3, 1), row.unit3) << row.source;
    }
    r->DataSource = 11;
    EXPECT_STREQ(GetImageUnitStr(r.get(), 0, 0), "deg");
    EXPECT_STREQ(GetImageUnitStr(r.get(), -3, 0), "mdeg");
    r->DataSource = 12;
    EXPECT_STREQ(GetImageUnitStr(r.get(), 0, 0), "deg");
    EXPECT_FALSE(AnyProgramError());
}

TEST_F(UnitsTest, UnitTextOfCalibratedSourcesFallsBackToVoltsWhenSwitchedOff)
{
    RecordPtr r = NewRecord();
    SetSwitches(false, false, false);
    for (uint32_t source : {8u, 9u, 24u, 10u, 15u, 18u}) {
        r->DataSource = source;
        EXPECT_STREQ(GetImageUnitStr(r.get(), 0, 0), "V") << source;
        EXPECT_STREQ(GetImageUnitStr(r.get(), -3, 0), "mV") << source;
    }
}

TEST_F(UnitsTest, UnitTextIsEmptyWithoutPhysicalDataOrForComplexData)
{
    RecordPtr r = NewRecord();
    r->SPMData = 0;
    EXPECT_STREQ(GetImageUnitStr(r.get(), 0, 0), "");
    r->SPMData = 1;
    r->FFTData = 1;
    EXPECT_STREQ(GetImageUnitStr(r.get(), 0, 0), "");
    EXPECT_FALSE(AnyProgramError());
}

TEST_F(UnitsTest, UnitTextOfAnUnknownSourceOrNullRecordIsReported)
{
    RecordPtr r = NewRecord();
    r->DataSource = 99;
    EXPECT_STREQ(GetImageUnitStr(r.get(), 0, 0), "");
    EXPECT_TRUE(Reported("GetImageUnitStr  DataSource=99"));
    EXPECT_STREQ(GetImageUnitStr(nullptr, 0, 0), "");
    EXPECT_TRUE(Reported("GetImageUnitStr"));
}

TEST_F(UnitsTest, TwistForceChannelIsLabelledNanonewton)
{
    RecordPtr r = NewRecord();
    r->AcqMode = 11;
    r->LMCMode = 8;
    r->DataSource = 4;
    SetTwistFields(r.get(), 1.0, 1.0, 1.0, 1.0);
    EXPECT_STREQ(GetImageUnitStr(r.get(), 0, 0), "nN");
    EXPECT_STREQ(GetImageUnitStr(r.get(), 3, 0), "nN");   // a fixed text, like "au" and "Pa"
    r->TwistForceCalib = 0;
    EXPECT_STREQ(GetImageUnitStr(r.get(), 0, 0), "V");
}

TEST_F(UnitsTest, SpectrumOfAForceCurveWithFrictionOrPrescanSourceIsInVolts)
{
    RecordPtr r = NewRecord();
    SetSwitches(true, true, true);
    r->ImType1 = IMTYPE_SPECTRUM;
    r->AcqMode = 15;
    for (uint32_t source : {10u, 17u}) {
        r->DataSource = source;
        EXPECT_STREQ(GetImageUnitStr(r.get(), 0, 0), "V") << source;
    }
}

TEST_F(UnitsTest, SpectrumOfAForceCurveWithForceSourceKeepsTheForceUnit)
{
    // The volt override of sources 8 and 9 belongs to the friction curve mode only.
    RecordPtr r = NewRecord();
    SetSwitches(true, true, true);
    r->ImType1 = IMTYPE_SPECTRUM;
    r->AcqMode = 15;
    r->DataSource = 8;
    EXPECT_STREQ(GetImageUnitStr(r.get(), 0, 0), "nN");
    r->AcqMode = 16;
    EXPECT_STREQ(GetImageUnitStr(r.get(), 0, 0), "V");
    r->DataSource = 9;
    EXPECT_STREQ(GetImageUnitStr(r.get(), 0, 0), "V");
}

TEST_F(UnitsTest, SpectrumOfAFrictionCurveWithAux2SourceFollowsTheFrictionSwitch)
{
    RecordPtr r = NewRecord();
    r->ImType1 = IMTYPE_SPECTRUM;
    r->AcqMode = 16;
    r->DataSource = 5;
    SetSwitches(false, true, false);
    EXPECT_STREQ(GetImageUnitStr(r.get(), 0, 0), "nN");
    SetSwitches(false, false, false);   // switched off: the plain volt row, not the friction one
    EXPECT_STREQ(GetImageUnitStr(r.get(), 0, 0), "V");
    EXPECT_STREQ(GetImageUnitStr(r.get(), -3, 0), "mV");
}

TEST_F(UnitsTest, HistogramsHaveNoUnitSweepsAndPhaseCurvesAreInVolts)
{
    RecordPtr r = NewRecord();
    r->DataSource = 1;
    r->ImType1 = IMTYPE_HISTOGRAM;
    EXPECT_STREQ(GetImageUnitStr(r.get(), 0, 0), "");
    r->ImType1 = IMTYPE_FREQUENCY_SWEEP;
    EXPECT_STREQ(GetImageUnitStr(r.get(), 0, 0), "V");
    r->ImType1 = IMTYPE_PHASE_SHIFT;
    EXPECT_STREQ(GetImageUnitStr(r.get(), -3, 0), "mV");
    r->ImType1 = IMTYPE_PROFILE;
    EXPECT_STREQ(GetImageUnitStr(r.get(), 0, 0), "nm");
}

TEST_F(UnitsTest, ClassOverrideStillAppliesAfterAnUnknownSourceIsReported)
{
    RecordPtr r = NewRecord();
    r->DataSource = 99;
    r->ImType1 = IMTYPE_FREQUENCY_SWEEP;
    EXPECT_STREQ(GetImageUnitStr(r.get(), 0, 0), "V");
    EXPECT_TRUE(Reported("GetImageUnitStr  DataSource=99"));
}
