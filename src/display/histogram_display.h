// The table and the level histogram of the current image as plots; the histogram also as a new
// spectrum item of the data list.
#pragma once

#include "tavrin/image_header.h"

// Plots ImageLUT as a curve: x the level, y the table entry.
void DisplayImageLUT();
// Plots the histogram as bars over the physical value of each level, then inserts it behind
// the image as a 256-point histogram item "Histogram" (first plane the stored value of each
// level, second the counts), makes it current and shows it. Answers the item, or null.
ImageHeaderType* DisplayHistogram();
