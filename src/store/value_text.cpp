#include "store/value_text.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>

namespace {

// Grouped digits of a magnitude: "1,234,567".
std::string GroupedDigits(uint64_t magnitude)
{
    std::string digits = std::to_string(magnitude);
    std::string text;
    const size_t n = digits.size();
    for (size_t i = 0; i < n; ++i) {
        text += digits[i];
        const size_t left = n - 1 - i;
        if (left > 0 && left % 3 == 0) text += ',';
    }
    return text;
}

// "%.*f" (or "%.*e" with `exponential`) of any magnitude, however long its text.
std::string Format(bool exponential, int decimals, double value)
{
    char text[64];
    const int n = exponential ? std::snprintf(text, sizeof text, "%.*e", decimals, value)
                              : std::snprintf(text, sizeof text, "%.*f", decimals, value);
    if (n >= 0 && static_cast<size_t>(n) < sizeof text) return text;
    std::string wide(static_cast<size_t>(n > 0 ? n : 0) + 1, '\0');
    std::snprintf(wide.data(), wide.size(), "%.*f", decimals, value);
    wide.resize(wide.size() - 1);
    return wide;
}

std::string WithoutCommas(const char* text)
{
    std::string plain;
    if (!text) return plain;
    for (const char* p = text; *p; ++p)
        if (*p != ',') plain += *p;
    return plain;
}

} // namespace

std::string Int2Str(int32_t value)
{
    const int64_t wide = value;
    const std::string digits = GroupedDigits(static_cast<uint64_t>(wide < 0 ? -wide : wide));
    return value < 0 ? "-" + digits : digits;
}

std::string Double2Str(double value)
{
    const double a = std::fabs(value);
    if (a == 0) return "0.0000";
    if (a >= 0.0001 && a < 1) return Format(false, 5, value);
    if (a >= 1 && a < 10) return Format(false, 4, value);
    if (a >= 10 && a < 100) return Format(false, 3, value);
    if (a >= 100 && a < 1000) return Format(false, 2, value);
    if (a >= 1000 && a < 10000) return Format(false, 1, value);
    if (a >= 10000 && a < 1e9) {
        const std::string digits = GroupedDigits(static_cast<uint64_t>(a));
        return value < 0 ? "-" + digits : digits;
    }
    return Format(true, 3, value);
}

int32_t Str2Int(const char* text) { return std::atoi(WithoutCommas(text).c_str()); }

double Str2Double(const char* text) { return std::atof(WithoutCommas(text).c_str()); }

bool AreDoublesEqual(double a, double b)
{
    if (a == 0 && b == 0) return true;
    if (a == 0 || b == 0) return false;
    return std::fabs((a - b) / a) < 2.220446049250313e-14;
}

bool AreFloatsEqual(float a, float b)
{
    if (a == 0 && b == 0) return true;
    if (a == 0 || b == 0) return false;
    const float ratio = (a - b) / a;
    return std::fabs(static_cast<double>(ratio)) < 5.9604644775390625e-6;
}

int ChooseUnitScale(double value, double* divisor)
{
    int exponent = 0;
    double d = 1.0;
    if (value >= 1e6) {
        exponent = 6;
        d = 1e6;
    } else if (value >= 1000) {
        exponent = 3;
        d = 1000;
    }
    if (divisor) *divisor = d;
    return exponent;
}

int DecimalsFor(double value)
{
    const double a = std::fabs(value);
    if (a >= 10) return 1;
    if (a >= 1) return 2;
    return 3;
}

DisplayRange ChooseDisplayRange(double magnitude, const UnitFamily& units)
{
    DisplayRange range{0, 1.0, ""};
    range.exponent = ChooseUnitScale(std::fabs(magnitude), &range.divisor);
    if (units) range.unit = units(range.exponent);
    return range;
}

std::string ScaledValueText(double value, const DisplayRange& range)
{
    const double scaled = value / range.divisor;
    return Format(false, DecimalsFor(scaled), scaled);
}

std::string ValueWithUnitText(double value, const UnitFamily& units)
{
    const DisplayRange range = ChooseDisplayRange(value, units);
    return ScaledValueText(value, range) + " " + range.unit;
}

std::string PairWithUnitText(double x, double y, const UnitFamily& units)
{
    const DisplayRange range = ChooseDisplayRange(std::min(std::fabs(x), std::fabs(y)), units);
    return ScaledValueText(x, range) + " x " + ScaledValueText(y, range) + " " + range.unit;
}
