// ColourMap: the last step from an image level (code >> 8) to a colour index of the frame.
#pragma once

#include "tavrin/image_header.h"

// Builds FSState.ColourMap for the image about to be shown:
//   colour image         256 entries ImageLUT[i] (i with no item): indices of the whole palette
//   LineDispMode 1       the 1024 entries of the shading table (the light of the settings)
//   otherwise            ImageLUT[i] / 2 + 35, or i / 2 + 35 with no item: the image ramp
void BuildColourMap(const ImageHeaderType* image, int isColour);
