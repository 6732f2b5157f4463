// What the data list asks of the display: the plug points between the list and the frame
// stores. Each request has exactly one routine, so that the frame stores take them over in one
// place each.
#pragma once

#include "tavrin/image_header.h"

// Each request is also counted, so that the commands of the list can show that they asked for
// it whether or not a frame store is open.
struct DisplayRequestCounts {
    int shown = 0;                              // DisplayCurrentItem
    const ImageHeaderType* lastShown = nullptr; // CurrentItem at the last DisplayCurrentItem
    int cleared = 0;                            // ClearDisplay
    int cachesClosed = 0;                       // CloseFrameStoreCaches
    int referencesDropped = 0;                  // DropFrameStoreReferences
};
const DisplayRequestCounts& DisplayRequests();

// Clears the current frame store and its parameter text (the caption of the shown item); with
// no frame store open, the parameter text only.
void ClearDisplay();
// Closes the frame store caches, whose pictures may show an item that is gone.
void CloseFrameStoreCaches();
// Removes every frame store reference to an item that is about to be freed, so that no
// contents grid keeps a dangling pointer.
void DropFrameStoreReferences(const ImageHeaderType* item);
// Whether the frame store filter accepts the item (selection mode 64): a cell of the current
// frame store's contents grid holds it.
bool FrameStoreFilterAccepts(const ImageHeaderType* item);

void ResetDisplayRequests();
