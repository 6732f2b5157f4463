// The level tables of contrast, brightness, gamma and thresholds, and the fixed operations on
// an image's ImageLUT. Plain computations: no item, frame store or palette is touched here.
//
// The map of the slider commands works on the ramp of the palette (indices 35 to 162). With
// t = tan(angle * 3.14159 / 180) (the short pi is part of the definition: at 45 degrees t lies
// just below 1, so that the map at contrast 128 is the identity within truncation), for each
// ramp index i:
//   g = trunc(((i - 35) / 127)^gamma * 127 + 35)      in f64
//   e = trunc((g + b - 98) / t) + 98                  in f32, the tangent in f64
// and e is limited to the ramp; the first index that falls below it and the first that rises
// above it are the thresholds of the picture (idle values 0 and 255).
#pragma once

#include <cstdint>

constexpr double kContrastPi = 3.14159;

// The angle of the map for a contrast slider value: (256 - contrast) / 256 * 86 + 2 degrees.
double ContrastAngle(double contrast);
// tan(angle * 3.14159 / 180).
double ContrastTangent(double angleDegrees);

// The map of the ramp: entries[i] for i from 35 to 162 (other entries are left alone), and
// the thresholds of the picture.
struct RampThresholds {
    int16_t low = 0;
    int16_t high = 255;
};
RampThresholds ContrastRampMap(double brightness, double angleDegrees, double gamma, uint8_t entries[256]);

// The ImageLUT of a plain image after a contrast adjustment: for i from 0 to 255,
// g = trunc((i / 255)^gamma * 255), e = trunc((g + brightness * 2 - 128) / t) + 128, limited
// to 0 to 255.
void PlainContrastTable(double brightness, double contrast, double gamma, uint8_t table[256]);
// The ImageLUT of a colour image: entries 35 to 162 from the ramp map, 0 to 34 and 163 to
// 255 the identity.
void ColourContrastTable(double brightness, double contrast, double gamma, uint8_t table[256]);

// The brightness and contrast that a pair of threshold levels stands for:
// b = ((high + low) - 256) / -4, c = 256 - (high - low) / 2.
struct ThresholdSettings {
    float brightness;
    float contrast;
};
ThresholdSettings ThresholdBrightnessContrast(int low, int high);
// The band table of a threshold pair over `table` (in place): entries below low become 0,
// above high 255, and those in the band count k up from 0 in level order and become
// trunc(256 / (high - low) * k), at most 255. With high equal to low the band is one level
// wide and its entries take the k = 0 value, 0, with no division.
void ThresholdBandTable(int low, int high, uint8_t table[256]);
// A code through a threshold pair of levels (code bounds l = low * 256, h = high * 256): above
// h 65535, below l 0, else (code - l) * 256 / (high - low), at most 65535. With high equal to
// low the only code left in the band is l itself, which becomes 0.
uint16_t ThresholdCode(uint16_t code, int low, int high);

// The fixed operations on a table, op 1 to 8 (invert, reverse, add, AND, OR, XOR, multiply,
// divide); `k` is the constant of ops 3 to 8 (a divisor of 0 counts as 1e-8). Every result is
// limited to 0 to 255. Answers false, with the table untouched, for another op.
bool MathLUTTable(int op, double k, uint8_t table[256]);
// The name of op 1 to 8 ("Invert LUT" ...), null for another.
const char* MathLUTName(int op);

// The equalising table of a histogram over `points` points: the running sum of the bins, each
// divided by the count as f32, and entry i = trunc(sum[i] * 255). A count of 0 or below gives
// an all-zero table.
void EqualiseTable(const int32_t bins[256], int64_t points, uint8_t table[256]);

bool IsIdentityTable(const uint8_t table[256]);
void IdentityTable(uint8_t table[256]);
