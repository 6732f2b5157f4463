// The frame of the commands that take any image as it is: FFT and SPS Mapping images too, the
// result the source's size. Used by the arithmetic and the table commands.
#pragma once

#include <cstddef>

#include "image/image_frame.h"

// A command of the frame that refuses nothing but a missing image.
inline ImageCommand AnyImageCommand(int code, const char* wait = nullptr)
{
    ImageCommand c;
    c.wait = wait;
    c.code = code;
    c.refuseSpecial = false;
    return c;
}

// The number of codes of an image, nx by ny.
inline size_t CodeCount(const ImageHeaderType* image)
{
    return static_cast<size_t>(image->nx) * static_cast<size_t>(image->ny);
}
