// The marks of the spectra attached to an image, drawn over the image when it is shown.
#pragma once

#include "tavrin/image_header.h"

// The one call site of the image display for the marks of attached spectra; the plot window
// draws them (the positions of the spectra, with their numbers).
void DrawAttachedSpectraMarks(const ImageHeaderType* image);
