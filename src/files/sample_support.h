// Parts shared by the makers of the built-in sample data.
#pragma once

#include <vector>

#include "tavrin/image_header.h"

// A new n by n image item behind `after` holding the heights z (row-major), packed to the full
// code range between their lowest and highest value (Zlo, Zhi). Null on a failed allocation,
// reported, with the list as it was.
ImageHeaderType* SampleImageFromHeights(ImageHeaderType* after, const std::vector<double>& z, int n);
