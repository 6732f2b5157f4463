// Line profiles through an image and their roughness numbers: one reader and one set of
// statistics, shared by the line markers of the measuring object and the profile views.
#pragma once

#include "tavrin/image_header.h"

// The roughness of a profile of n points (x, y). Every output may be null.
//   Ra     mean of |y - M| (M the mean of y)       Rq  sqrt of the mean of (y - M)^2
//   Rzjis  ten-point height (ProfileRzjis)         Rz  max(y) - min(y)
//   surface  the polyline's length
//   above, below  the areas between the profile and the line m x + c, split where the profile
//          crosses the line strictly between two points.
void ProfileStatistics(const float* x, const float* y, int n, float* Ra, float* Rq, float* Rzjis, float* Rz,
                       float* surface, float* above, float* below, float m, float c);

// The ten-point height of y around its mean: the 5 highest peaks and 5 lowest valleys found
// with a window of n / d points (d = 1, 2, 3, tried in turn while the result is 0), their mean
// distance to `mean`. A run of equal values counts once. `divisor`, when given, receives the
// last d tried.
float ProfileRzjis(const float* y, int n, float mean, int* divisor);

// Reads the line from (x1, y1) to (x2, y2) of the image into n points of x and z. The line is
// sampled once a pixel (at least 10 samples), each sample the bilinear value averaged over
// `width` pixels across the line, then resampled to n points. X is the physical distance
// (`physical`) or pixels; Z the physical value (`interpolate`) or the raw code. False (nothing
// written) without an image or for n < 1.
bool ProfileLine(const ImageHeaderType* image, float x1, float y1, float x2, float y2, int width, float* x, float* z,
                 int n, bool physical, bool interpolate);
