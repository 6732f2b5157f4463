// Loading an image file: the header, the pixels in every packing of the releases, the blocks
// behind them, and the new item of the data list.
#pragma once

#include "platform/files.h"
#include "tavrin/image_header.h"

// Set by Find File while it loads files for its index: a header-only load then keeps
// nSPSRefData, and no 3-D view is opened.
extern bool FindFileLoad;

// Pixels of revision 104 and later, by Compression (0 plain, 16 bilevel, others delta rows
// with shift Compression - 1), then the FFT block, mapping block, attached spectra and hit
// data. The record's pixel block must hold nx * ny codes. 1 on success.
int loadImageVer104Later(FileHandle file, ImageHeaderType* record);
// Pixels of revision 103 and older (Compression 0: one byte a pixel; others delta rows with
// shift Compression + 7), then only an FFT block. 1 on success.
int loadImageUptoVer103(FileHandle file, ImageHeaderType* record);

// Loads the file at `path` into a new item behind the current one and makes it current; the
// item is shown unless `quiet`. `headerOnly` skips the blocks behind the pixels; `report`
// logs "Load %s" on success. 0 on success, 1 on failure (the data list is then unchanged).
int LoadImageFile(const char* path, int headerOnly, int report, int quiet);

// Back to a fresh library: the static header block zeroed, no Find File load.
void ResetTiffFileState();
