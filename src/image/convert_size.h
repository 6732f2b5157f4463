// Square resampled copies of an image, and the line resampler they share with other commands.
//
// All arithmetic is on unsigned codes with truncating integer division.
#pragma once

#include <cstdint>

#include "tavrin/image_header.h"

// Turns a line of n codes into m codes.
//   n = m                copy
//   n > m                output k is the mean of in[(k step) >> 6] up to, not including,
//                        in[((k + 1) step) >> 6], with step = n * 64 / m
//   n < m                pos = k * 128 * (n - 1) / (m - 1), i = pos >> 7, f = pos & 127:
//                        (in[i] (127 - f) + in[i + 1] f) >> 7 (the weights add up to 127)
// and these pairs (n, m) by their own rules:
//   (128, 256), (256, 512)  in[0], then in[i] and (in[i] + in[i + 1]) >> 1 for each i but the
//                           last, then the last code
//   (128, 512)              in[0], in[0], then in[i], (3 in[i] + in[i + 1]) >> 2,
//                           (in[i] + in[i + 1]) >> 1, (in[i] + 3 in[i + 1]) >> 2, then in[127]
//                           twice
//   (128, 384)              in[0], then in[i], (2 in[i] + in[i + 1]) / 3,
//                           (in[i] + 2 in[i + 1]) / 3, then in[127] twice
//   (256, 384)              groups of 2 codes to 3: a0, (a0 + 2 a1) / 3, (2 a1 + a2) / 3; the
//                           last three in[254], (in[254] + in[255]) >> 1, in[255]
//   (512, 384)              groups of 4 codes to 3: a0, (2 a1 + a2) / 3, (a2 + 2 a3) / 3; the
//                           last three in[508], in[509], in[510]
//   (128, 400), (256, 400)  groups of 8 (16) codes to 25, linear in 25ths
//   (512, 400)              in[k * 511 / 399]
//   (256, 128), (512, 256)  (in[2k] + in[2k + 1]) >> 1
//   (512, 128)              the sum of four neighbours >> 2
// The places that the rules of (128, 512) and (128, 384) leave open take the neighbouring code.
void ResampleLine(int n, int m, const uint16_t* in, uint16_t* out);

// A new item of n by n codes directly behind `source` (not made current), with the header of
// the source (its physical size unchanged, its saved stamp kept) and no FFT block, mapping set
// or attached spectra. The method by the source size:
//   256 -> 128, 512 -> 256   blocks of 2 x 2: (a + b + c + d) >> 2
//   512 -> 128               blocks of 4 x 4: the sum of 16 codes >> 4
//   128 -> 256, 256 -> 512   2 x up; 128 -> 512 4 x up (square sources)
//   any other                separable: each source row by ResampleLine, then the rows blended
//                            with weights that add up to 127 (the result is 127 / 128 darker)
// With `show` the rows are drawn while they are made, the region is registered and
// "Convert size of '%s' from (%d,%d) to (%d,%d)\n" goes to the log. Answers the new item, or
// null after a report (32769 "Not enough memory"; a bad argument is a program error) with the
// list as it was.
ImageHeaderType* ConvertImageSize(ImageHeaderType* source, int n, int show);

// The same by the separable path alone, for images whose codes at or below 8960 are gaps (the
// cross-section display): when a line grows, a pair with a gap is not blended but the nearer
// code taken (f below 64: the left one); shrinking is the plain integer mean with no special
// case. Between rows the blend stands only where the upper code is above 8960 and the lower
// at or above it; elsewhere the upper code is taken when its weight is larger, else the lower.
ImageHeaderType* ConvertImageSizeKeepGaps(ImageHeaderType* source, int n, int show);

