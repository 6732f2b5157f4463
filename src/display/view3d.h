// The parameters of the host's 3-D view of an image (C3DParam, tavrin/dl_display.h).
//
// The host draws the view; the library hands it the item's stored 3-D settings (View3DBlock)
// unchanged, the pixels, and the size and height of the image in one unit with the unit texts.
// An item with a view open has View3DOpen set in its block.
#pragma once

#include "tavrin/dl_display.h"

// Fills `param` from an image item. The size goes into the unit that the larger of the sizes
// and (for a topography) the height chooses; the height of other data into its own unit.
void Populate3DParam(C3DParam* param, const ImageHeaderType* image);

int Get3DParam(C3DParam* param, int fromCurrent, int clear);
void Set3DParam(const C3DParam* param);
int SelectImage3D(C3DParam* param, char* text);

// After a file with DisplayMode 4 was loaded and shown: the 3-D view of the item is handed to
// the host (ap_Open3DView with flag 1), unless a Find File load or a replay is running.
void Open3DViewOfLoadedItem(ImageHeaderType* item);

void ResetView3DState();
