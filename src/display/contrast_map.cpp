#include "display/contrast_map.h"
#include "display/default_tables.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr int kRampMid = 98;       // centre of the ramp the map turns about
constexpr double kRampSpan = 127.0;

// A value limited to a table entry; a value that is not a number (a slider can send one) is 0.
uint8_t Level(double v) { return v >= 0.0 ? static_cast<uint8_t>(std::min(v, 255.0)) : uint8_t{0}; }

// trunc(x) of a quotient that may be far outside any table: limited before the conversion,
// and 0 for a value that is not a number.
double Trunc(double x) { return x == x ? std::trunc(std::clamp(x, -1e9, 1e9)) : 0.0; }

} // namespace

double ContrastAngle(double contrast) { return (256.0 - contrast) / 256.0 * 86.0 + 2.0; }

double ContrastTangent(double angleDegrees) { return std::tan(angleDegrees * kContrastPi / 180.0); }

RampThresholds ContrastRampMap(double brightness, double angleDegrees, double gamma, uint8_t entries[256])
{
    RampThresholds thresholds;
    const double t = ContrastTangent(angleDegrees);
    for (int i = kRampFirst; i <= kRampLast; ++i) {
        const double g = Trunc(std::pow((i - kRampFirst) / kRampSpan, gamma) * kRampSpan + kRampFirst);
        const float numerator = static_cast<float>(g) + static_cast<float>(brightness) - static_cast<float>(kRampMid);
        double e = Trunc(numerator / t) + kRampMid;
        if (e < kRampFirst) {
            e = kRampFirst;
            thresholds.low = static_cast<int16_t>(i);
        } else if (e > kRampLast) {
            e = kRampLast;
            if (i < thresholds.high) thresholds.high = static_cast<int16_t>(i);
        }
        entries[i] = static_cast<uint8_t>(e);
    }
    return thresholds;
}

void PlainContrastTable(double brightness, double contrast, double gamma, uint8_t table[256])
{
    const double t = ContrastTangent(ContrastAngle(contrast));
    for (int i = 0; i < 256; ++i) {
        const double g = Trunc(std::pow(i / 255.0, gamma) * 255.0);
        table[i] = Level(Trunc((g + brightness * 2.0 - 128.0) / t) + 128.0);
    }
}

void ColourContrastTable(double brightness, double contrast, double gamma, uint8_t table[256])
{
    IdentityTable(table);
    ContrastRampMap(brightness, ContrastAngle(contrast), gamma, table);
}

ThresholdSettings ThresholdBrightnessContrast(int low, int high)
{
    return {static_cast<float>((high + low) - 256) / -4.0f, 256.0f - static_cast<float>(high - low) / 2.0f};
}

void ThresholdBandTable(int low, int high, uint8_t table[256])
{
    int k = 0;
    for (int i = 0; i < 256; ++i) {
        const int v = table[i];
        if (v < low) {
            table[i] = 0;
        } else if (v > high) {
            table[i] = 255;
        } else {
            // k = 0 is 0 whatever the width; only a wider band divides.
            const double step = high > low ? 256.0 / (high - low) : 0.0;
            table[i] = Level(std::trunc(step * k));
            ++k;
        }
    }
}

uint16_t ThresholdCode(uint16_t code, int low, int high)
{
    const int32_t l = low * 256, h = high * 256;
    if (code > h) return 65535;
    if (code < l) return 0;
    if (high <= low) return 0;
    const int64_t v = (int64_t{code} - l) * 256 / (high - low);
    return static_cast<uint16_t>(std::min<int64_t>(v, 65535));
}

bool MathLUTTable(int op, double k, uint8_t table[256])
{
    if (op < 1 || op > 8) return false;
    if (op == 2) {
        std::reverse(table, table + 256);
        return true;
    }
    const int ik = static_cast<int>(Trunc(k));
    if (op == 8 && k == 0.0) k = 1e-8;
    for (int i = 0; i < 256; ++i) {
        const int v = table[i];
        double r = v;
        switch (op) {
        case 1: r = 255 - v; break;
        case 3: r = static_cast<double>(v) + ik; break;
        case 4: r = v & ik; break;
        case 5: r = v | ik; break;
        case 6: r = v ^ ik; break;
        case 7: r = Trunc(v * k); break;
        case 8: r = Trunc(v / k); break;
        default: break;
        }
        table[i] = Level(r);
    }
    return true;
}

const char* MathLUTName(int op)
{
    static const char* const names[8] = {"Invert LUT",      "Reverse LUT",    "Add LUT",       "Bitwise AND LUT",
                                         "Bitwise OR LUT", "Bitwise XOR LUT", "Multiply LUT", "Divide LUT"};
    return op >= 1 && op <= 8 ? names[op - 1] : nullptr;
}

void EqualiseTable(const int32_t bins[256], int64_t points, uint8_t table[256])
{
    if (points <= 0) {
        std::fill(table, table + 256, uint8_t{0});
        return;
    }
    const float n = static_cast<float>(points);
    float sum = 0.0f;
    for (int i = 0; i < 256; ++i) {
        sum += static_cast<float>(bins[i]) / n;
        table[i] = Level(std::trunc(static_cast<double>(sum) * 255.0));
    }
}

bool IsIdentityTable(const uint8_t table[256])
{
    for (int i = 0; i < 256; ++i)
        if (table[i] != i) return false;
    return true;
}

void IdentityTable(uint8_t table[256])
{
    for (int i = 0; i < 256; ++i) table[i] = static_cast<uint8_t>(i);
}
