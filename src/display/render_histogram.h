// The histogram of levels of an image.
#pragma once

#include <cstdint>

#include "tavrin/image_header.h"

constexpr int kHistogramBins = 256;

// The count of points at each level (code >> 8). A null image (or one without pixels) is the
// program error "CalcHistogram", and the bins are all 0.
void CalcHistogram(const ImageHeaderType* image, int32_t bins[kHistogramBins]);
