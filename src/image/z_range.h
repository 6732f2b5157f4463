// From signed differences of codes to a stored image: the stretch of an i32 array into the
// 16-bit codes of an item, and the physical Z range of the stretched codes.
#pragma once

#include <cstdint>

#include "tavrin/image_header.h"

// Stretches w * h i32 values (read through bytes, so that they may share the storage of the
// item's codes: value i is read before code i is written) into the codes of `item`, between
// min and max. With max = min the factor F is 0 and DataScale becomes 0; otherwise
// F = 65535 / (max - min) as f32, a DataScale of 0 first becomes 1, and DataScale is divided
// by F. Each code is trunc(f32(value - min) * F), clipped to 0..65535.
void ScaleIntegersToCodes(const void* values, ImageHeaderType* item, int32_t min, int32_t max);

// The Z range of `result` whose codes span the source codes min..max (which may lie outside
// 0..65535): Zlo and Zhi are the source's values of those codes. For topography (DataSource
// 1) Zhi becomes Zhi - Zlo and Zlo 0.
void SetZRangeFromCodes(ImageHeaderType* result, const ImageHeaderType* source, int32_t min, int32_t max);
