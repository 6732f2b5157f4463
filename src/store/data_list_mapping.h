// What the data list needs to know of an item's mapping set. The mapping data set is the
// subject of its own subsystem; these routines are the one place where the list asks about it.
#pragma once

#include "tavrin/image_header.h"

// The image carries a mapping set.
bool HasMappingSet(const ImageHeaderType* item);
// The image carries a force-curve mapping set.
bool IsForceCurveMapping(const ImageHeaderType* item);
// The `cx` of the image's mapping set when the image passes the square mapping test (a set
// with `cx` one of 16 to 512, and `nx`, `ny`, `cx`, `cy` all equal); 0 otherwise.
int MappingSquareSize(const ImageHeaderType* item);
// The erase of an image lets go of its mapping set; the set itself is freed when no other item
// points at it.
void ReleaseMappingSet(ImageHeaderType* item);
