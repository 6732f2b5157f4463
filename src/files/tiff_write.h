// Saving an image file (layout in files/tiff_layout.h).
#pragma once

#include "tavrin/image_header.h"

// Saves the item to `path`: bitno 0 writes 16-bit codes, bitno 1 the high byte of each code
// with a palette. The record keeps the save's stamps, Compression 0, BitsPerPixel and
// DisplayMode. 0 on success, 1 on failure.
int saveTiffImage(ImageHeaderType* record, const char* path, int bitno);
