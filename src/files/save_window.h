// Saving the picture of a host window.
#pragma once

#include <cstdint>

enum SaveWindowKind : int {
    SAVE_WINDOW_BITMAP = 1,   // the device independent bitmap the host hands over
    SAVE_WINDOW_IMAGE = 2,    // the current image, as a 16-bit image file that opens its 3-D view
};

// Kind 1: `bitmap` is a block led by a BITMAPINFO, whose first 32-bit word holds the length of
// the whole block; the block is written as it is, in one piece, to `path` (an existing file is
// truncated). Failures: 32776 when the file cannot be made, 32779 on a failed write. Answers 1.
// Kind 2: the current image is saved as save type 1 with DisplayMode 4 for the time of the
// call; answers the save's result. Another kind: the program error "dl_SaveWindow swt=%d",
// answer 1. `bits` and `count` are the host's pixel block of the window; the bitmap block
// already holds what is written.
int SaveWindow(const char* path, const void* bitmap, const void* bits, int32_t count, int kind);
