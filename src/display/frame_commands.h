// Commands on the whole frame store: clearing it, loading an image from its pixels, a click in
// the frame, the host's repaint, and the print layout's redisplay.
#pragma once

#include <cstdint>

#include "platform/canvas.h"
#include "tavrin/image_header.h"

// Fills the index layer with 0 in a batch (the whole frame is invalidated when the depth
// returns to 0), erases the display list, and adds two white fills: the strip right of the
// frame (when the client area is wider than 512) and the frame itself.
void ClearFrame();
// ClearFrame, the contents grid cleared, the host's parameter text cleared, and the cursor, row
// height, image rectangle and DisplayBusy back to 0.
void ClearFrameStore();

// Asks "Keep colours ?  "; on yes or no, the area of `which` (1 to 6) becomes a new image item
// behind the current one, which becomes current and is shown.
void LoadFrame(int which);

// Whether a click in the frame store selects: on by default.
void EnableSelectionFromFS(bool enabled);
bool SelectionFromFSEnabled();
// A click at (x, y): with no item there the text panel is cleared; button 2 or 4 shows the
// item's parameter text; button 1 makes it current and shows it; any other button is
// reported as "SelectFromFS but=%d". Nothing while selection is disabled.
void SelectImageFromFS(int x, int y, int button);

// The host's repaint of a frame store by number, on `dest`, into `dc` (null: the window), with
// the clip box of the context. The frame store is current for the time of the call.
void RedrawFrameStore(const RECT& dest, DrawContext* dc, int number);

// For print layouts: makes `item` current (when not null) and, with `redisplay`, shows it at
// display size 512; the former size is restored.
void PrintEditUpdateVFS(ImageHeaderType* item, int redisplay);

void ResetFrameCommandState();
