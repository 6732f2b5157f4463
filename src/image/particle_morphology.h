// Erosion, dilation and the size filter of a bilevel grid.
#pragma once

#include <cstdint>

#include "image/particle_measure.h"

// One step of erosion (`dilate` false) or dilation of `source` into `result`, both nx by ny,
// with the 4 or 8 neighbours of `connectivity`. Neighbours outside the grid are ignored, so
// the edge of the grid does not eat into objects:
//   erode:  65535 if the pixel and all its neighbours inside the grid are non-zero, else 0;
//   dilate: 65535 if the pixel or any of its neighbours inside the grid is non-zero, else 0.
// The rows are computed in bands on the cores of the filters (SetFilterThreads); the result
// does not depend on the number of bands.
void ErodeOrDilate(const uint16_t* source, uint16_t* result, int nx, int ny, int connectivity, bool dilate);

// Removes from the grid every object of `smallest` pixels or fewer (as MeasureObject counts
// them, with the connectivity of `frame`): all non-zero codes become 1, each 1 in scan order
// is measured with fill 65535, and a small one is filled again with 0. Answers the number of
// objects removed, or -1 when the fill ran out of memory (reported there; the grid is then
// partly changed, so callers work on a private copy).
int RemoveSmallObjects(uint16_t* codes, int nx, int ny, uint32_t smallest, const MeasureFrame& frame);
