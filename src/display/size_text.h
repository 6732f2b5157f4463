// The scan size of an image as the captions show it: in um when both sides reach 1000 nm,
// else in nm.
#pragma once

#include "tavrin/image_header.h"

struct ScanSizeText {
    double x;
    double y;
    const char* unit;   // "um" or "nm"
};

ScanSizeText ScanSizeForCaption(const ImageHeaderType* image);
