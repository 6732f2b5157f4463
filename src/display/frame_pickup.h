// Pick-up and drop of an item between frame stores: the clipboard form of an item, and a new
// item made from it.
#pragma once

#include "tavrin/dl_frame_store.h"

// Fills `out` for the item at frame point (x, y), or the current item for a point outside the
// frame (-1 included). Answers 0, or 1 when there is no item there.
int PickUpImage(int x, int y, VFSPickUpType* out);
// Makes a copy of the picked item a new item behind the current one, current and shown.
// Answers 0, or 1: "Data has invalid revision number for operation" for a null pick-up or a
// record newer than 700/42; "Unable to paste image - incorrect data format - check software
// versions." when a block's size does not match the record (all that was made is freed).
int DropImage(const VFSPickUpType* in);
