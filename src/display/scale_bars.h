// Scale bars: a horizontal and a vertical bar of a round physical length at the lower left
// corner of an image, with the length as a label.
#pragma once

#include "tavrin/image_header.h"

// The bar over an image rectangle from `left` to `right` showing `imageSizeX` nm across:
// length in frame pixels and size in nm. The first guess is half the width, at most 100
// pixels; its size s = p m (p a power of ten, 1 <= m < 10) is then made round by the factor
// 1 / m (m up to 1.5), 2 / m (up to 2.5), 5 / m (up to 7.5) or 10 / m, which multiplies both
// the size and the length (truncated). So a bar may grow to just under twice the first guess.
struct ScaleBar {
    int length;
    float size;
};
ScaleBar ChooseScaleBar(int left, int right, float imageSizeX);

// Draws the bars of `image` over the rectangle, within a batch, when the rectangle is not
// empty, the item has a physical size (SPMData) and no FFT data, and ScaleBarMode is not 8:
// the X bar (unless mode 2) and the Y bar (unless mode 1 or ImageSizeY is 0) from
// (left + 6, bottom - 6), width 2, in the colour of the bar font, and the label "%.*f um" or
// "%.*f nm" at (left + 9, bottom - 9).
void DrawScaleBars(int left, int top, int right, int bottom, const ImageHeaderType* image);
