// New list items made from an existing record.
#pragma once

#include "tavrin/image_header.h"

// The result item of a command (log name CopyNewHEader): a new item directly behind `source`
// with a copy of its header and fresh, zeroed pixels of the same size (nx * ny codes for an
// image, nx samples of each plane for a spectrum). SavedDate and SavedTime are stamped with the
// clock; the created stamp stays the source's. The complex FFT block and the attached spectra
// describe the source's pixels and stay with the source; a mapping set is shared. A failed
// allocation reports 32769 "Not enough memory" and leaves the list as it was; a null source,
// one that is not on the list, or one of no size reports "CopyNewHEader". Answers the item or
// null. The new item is not made current.
ImageHeaderType* DuplicateForResult(const ImageHeaderType* source);

// The result item of a command that changes the size: a bare new item directly behind
// `source`, a copy of its header with nx and ny set to the new size, and pixels of that size
// (not zeroed). The saved stamp stays the source's; the FFT block, the mapping set and the
// attached spectra stay with the source. A failed allocation reports 32769 "Not enough
// memory", a failed header copy "CopyImageHeader 1" or "CopyImageHeader 2", and the list
// stays as it was. Answers the item (not current) or null.
ImageHeaderType* DuplicateResized(ImageHeaderType* source, int nx, int ny);

// Frees a result item that a command made and did not finish: its pixels, its frame store
// references, its record. The current item stays as it is.
void FreeResultItem(ImageHeaderType* item);

// A new item behind `after` (the head when null) with a copy of the header of `source` and
// its pixels and blocks: the new item takes over the blocks, and the caller then drops the
// source's record with FreeHeader, which frees neither. So a record read outside the list
// enters it, and no two items ever own one block: a source that is itself on the list is
// refused ("DuplicateFull"). Failure reports and leaves the list and the source as they were.
ImageHeaderType* DuplicateFull(ImageHeaderType* source, ImageHeaderType* after);
