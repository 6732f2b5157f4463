// The pixel work of the filters, apart from items and display: a kernel correlation and the
// 5- and 9-point medians, from a source of nx by ny codes into a result of the same size.
//
// Kernels: D is the kernel's sum S, or 1 when S is 0. An inner pixel is the 32-bit sum T of the
// kernel entries times the codes under them, Q = T / D truncated toward zero, clipped to
// 0..65535. The border (1 pixel for 3x3, 2 for 5x5; rows too short or too few to have inner
// pixels are all border) is the source's when S is not 0 and 0 when S is 0.
// Medians: an inner pixel is the middle value of the cross of five codes, or of the 3x3
// neighbourhood; the border of 1 is the source's.
//
// Each routine fills rows [first, last) and reads only the source, so bands of rows may run on
// different threads. The Image forms do all rows on the bands of filter_bands.h.
#pragma once

#include <cstdint>

void CorrelateRows(const uint16_t* source, uint16_t* result, int nx, int ny, const int8_t* kernel, int size,
                   int first, int last);
void CorrelateImage(const uint16_t* source, uint16_t* result, int nx, int ny, const int8_t* kernel, int size);

// `points` is 5 (the cross) or 9 (the 3x3 square).
void MedianRows(const uint16_t* source, uint16_t* result, int nx, int ny, int points, int first, int last);
void MedianImage(const uint16_t* source, uint16_t* result, int nx, int ny, int points);

// The middle of five and of nine codes by exchange networks; the value is the one an
// insertion sort puts at the middle place.
uint16_t MedianOf5(uint16_t a, uint16_t b, uint16_t c, uint16_t d, uint16_t e);
uint16_t MedianOf9(const uint16_t v[9]);
