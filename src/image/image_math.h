// Point operations on the codes of one image, combinations of two images of the same size and
// source, and the two stretches of an image's code range. Each makes a new item behind the
// current one; only a missing image is refused (FFT and SPS Mapping images are worked on).
#pragma once

#include <cstdint>

#include "tavrin/image_header.h"

// op 1 invert, 2 multiply, 3 divide, 4 AND, 5 OR, 6 XOR, 7 add, 8 subtract; 0 or below ends
// at once.
void SingleImageMath(int op);
// op 1 add, 2 subtract, 3 difference, 4 multiply, 5 divide, 6 AND, 7 OR, 8 XOR, 9 minimum,
// 10 maximum; the second image is chosen by the user among the images of the same size and
// DataSource.
void DoubleImageMath(int op);
// The code of one point of op 1 to 10 (0 for another op).
uint16_t CombineCodes(int op, uint16_t a, uint16_t b);

// The extremes of a scan that tests each code against the maximum first and against the
// minimum only when the code did not raise the maximum: in a strictly rising scan the minimum
// stays at its start, 65535.
struct CodeExtremes {
    uint32_t min;
    uint32_t max;
};
CodeExtremes ScanCodeExtremes(const ImageHeaderType* image);
// Stretches the codes of `source` into `result` (same size): each code becomes
// min((p - min) * 65535 / R, 65535) in unsigned 32-bit arithmetic, R = max - min; R = 0 gives
// zeros. Rows are shown with `show`. Zlo and Zhi of the result follow the source codes
// min and max. Answers the extremes.
CodeExtremes NormaliseCodes(ImageHeaderType* result, const ImageHeaderType* source, bool show);
void NormaliseImage();

// The statistics and table of the s.d. stretch.
struct SDStretch {
    double mean;
    double sd;       // at least 1e-5
    int32_t lo, hi, span;
    double k;        // 255 / span
    int32_t offset;  // trunc((1 - k) * mean)
};
// Mean and s.d. of the levels of a histogram over `points` points (the level sum in 32 bits).
void HistogramMoments(const int32_t bins[256], int64_t points, double* mean, double* sd);
// The stretch that keeps `range` s.d. about the mean.
SDStretch SDStretchFor(double mean, double sd, double range);
// The table of the stretch: for a plain image clip(trunc(i * K) + O); for a colour image the
// low half the identity and T[i + 128] = (clip(trunc(2 i K) + O) >> 1) | 128.
void SDStretchTable(const SDStretch& s, bool colour, uint16_t table[256]);
// A code through that table: 0 gives T[0] and codes from 0xFF00 T[255], both unscaled; any
// other T[p >> 8] * ((255 - p) & 255) + T[(p >> 8) + 1] * (p & 255), kept as 16 bits.
uint16_t SDStretchCode(const uint16_t table[256], uint16_t code);
void NormaliseSD();
