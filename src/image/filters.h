// The kernel commands of the image menu: the 3x3 and 5x5 kernels, edge enhancement and the
// derivative at an angle. Each makes a new item behind the current one and leaves the source
// as it was.
#pragma once

#include <cstdint>

#include "tavrin/image_header.h"

// The kernel applied to `source` into a new item (see filter_rows.h for the rule and the
// border), shown row by row, made current, its region registered. The 5x5 form begins the row
// display before it makes the new item. Answers the result, or null when the new item could
// not be made (reported, status text ended, current item kept).
ImageHeaderType* ApplyKernel3x3(ImageHeaderType* source, const int8_t kernel[9]);
ImageHeaderType* ApplyKernel5x5(ImageHeaderType* source, const int8_t kernel[25]);

// The commands: kernel `index` of its table on the current image, with status text, log line,
// history code and parameter text. Without an image 33536 and no status text; an index
// outside the table reports the program error "Convolve3x3 %d", "Convolve5x5 %d" or
// "EdgeEnhance3x3 %d" and does nothing else.
void Convolve3x3(int index);
void Convolve5x5(int index);
void EdgeEnhance3x3(int index);

// Prompts for an angle in degrees (default 0) and applies the derivative kernel of that angle;
// a cancelled prompt ends the command.
void DifferentiateImage();
