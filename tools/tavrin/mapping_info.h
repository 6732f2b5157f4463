// What the host prints of an image's SPS Mapping set.
#pragma once

#include <cstdio>
#include <string>

#include "tavrin/tavrin.h"

// The set as text lines: kind, images, size, sweep range and unit, data range, hit data.
void PrintMappingInfo(FILE* out, const ImageHeaderType* item);
// The set as one JSON object: header fields, display block, and per image the sweep value,
// z range, data type and title; "null" without a set.
std::string MappingJson(const ImageHeaderType* item);
