// The contents grid of a frame store: from any point of the frame to the data item shown
// there, with the item's geometry.
//
// A point is tested by its cell only (x / 64, y / 16): images placed closer than a cell shadow
// each other, and the last one placed wins the shared cell. The caller decides with the exact
// rectangle kept in the cell.
#pragma once

#include "display/vfs.h"

// Marks the cells whose sample point (from ImageLeft by 64, from ImageTop by 16, below
// ImageRight and ImageBottom) lies in the last image rectangle. With `keep` the cells keep the
// rectangle, else it is zeroed; with `keep` and an image, SetFSContentsParams follows.
void SetFSContents(ImageHeaderType* image, int keep);
// Writes the item's type, time stamps, size, offsets and physical size into every cell that
// the last image rectangle touches.
void SetFSContentsParams(const ImageHeaderType* image);
// Every cell holds `image` with the rectangle 0, 0, 511, 511; with null, the cleared form
// (ImType1 6, no item data).
void SetFSContentsAll(ImageHeaderType* image);
// Drops every reference to the item, in the working grid and in the saved grids of all frame
// stores. Called whenever an item is freed.
void RemoveFromFS(const ImageHeaderType* image);

// The item of the cell of (x, y); a point outside the frame is reported as
// "GetFSContentsCoords (%d %d)" and gives null.
ImageHeaderType* GetFSContentsCoords(int x, int y);
// The same, and the cell's rectangle into every out argument that is not null.
ImageHeaderType* GetFSContentsCoords(int x, int y, int* left, int* top, int* right, int* bottom);
// The cell of (x, y); outside: "GetFSContentsParamPtrCoords (%d %d)" and null.
FSContentsType* GetFSContentsParamPtrCoords(int x, int y);

// Whether a cell of the current frame store's grid holds the item (false with no frame store).
bool HeldByCurrentFrameStore(const ImageHeaderType* image);
