// Plain number texts, float comparison, and the scale and digits of a printed value.
#pragma once

#include <cstdint>
#include <functional>
#include <string>

// Digits of the magnitude with a "," behind every third from the right; "-" in front of a
// negative number.
std::string Int2Str(int32_t value);
// The text of a double; the format follows the magnitude a: "0.0000" for 0; "%.5f" from
// 0.0001 up to 1, "%.4f" up to 10, "%.3f" up to 100, "%.2f" up to 1000, "%.1f" up to 10000;
// the truncated magnitude in grouped digits up to 1e9; "%.3e" for everything else.
std::string Double2Str(double value);
// Every "," is removed, then the text is read as atoi or atof would; null reads as 0.
int32_t Str2Int(const char* text);
double Str2Double(const char* text);

// True when both are 0; false when only one is; otherwise true when |(a - b) / a| is below
// 100 times the unit round-off of the type (the float quotient is formed in float).
bool AreDoublesEqual(double a, double b);
bool AreFloatsEqual(float a, float b);

// The prefix exponent of a printed value: 6 from 1e6 on, 3 from 1000 on, else 0; `divisor`
// (if not null) receives 1e6, 1000 or 1.0.
int ChooseUnitScale(double value, double* divisor);
// Digits after the point: 1 for a magnitude of 10 or more, 2 from 1 up to 10, 3 below 1.
int DecimalsFor(double value);

// The unit text of a family at a prefix exponent, e.g. [](int e) { return UnitsZ(e, 0); }.
using UnitFamily = std::function<const char*(int exponent)>;

// The display range of printed values: the magnitude that sets the scale chooses the exponent
// and divisor by ChooseUnitScale, and the family gives the unit text of that exponent.
struct DisplayRange {
    int exponent;
    double divisor;
    std::string unit;
};
DisplayRange ChooseDisplayRange(double magnitude, const UnitFamily& units);
// "%.*f" of value / divisor, with DecimalsFor digits of the divided value.
std::string ScaledValueText(double value, const DisplayRange& range);
// One value with its unit, in the scale its own magnitude sets: 1500 nm is "1.50 um".
std::string ValueWithUnitText(double value, const UnitFamily& units);
// Two values in one scale, which the smaller magnitude sets: "%.*f x %.*f %s". This is the
// rule of the image size (1500 x 3000 nm: "1.50 x 3.00 um") and of the image offset (mm and
// um only when both axes reach 1e6 and 1000 nm).
std::string PairWithUnitText(double x, double y, const UnitFamily& units);
