// Writing and reading the header of an image file (layout in files/tiff_layout.h).
#pragma once

#include <cstddef>
#include <cstdint>

#include "files/tiff_layout.h"
#include "platform/files.h"
#include "tavrin/image_header.h"

// Fills the one static header block of 7124 bytes and writes it in one go; a palette file
// (BitsPerPixel 8 or fewer) first gets its palette at the position behind the mapping block.
// Non-zero on success, also when the write itself fell short (that shows as a short file).
int WRITE_TIFF_HEADER(FileHandle file, ImageHeaderType* record);

// The static header block that every save reuses (read-only view, for checks).
const uint8_t* TiffHeaderBuffer();

// Packs the values of the directory behind each other into a value area; each value is cut to
// what still fits. `fileOffset` is the file offset of the area's first byte.
struct TiffValueArea {
    uint8_t* base;
    size_t fileOffset;
    size_t capacity;
    size_t used;
};
// Places a NUL-terminated text; answers its file offset, `count` gets the bytes placed.
uint32_t PlaceTiffText(TiffValueArea* area, const char* text, size_t length, uint32_t* count);
// Places raw bytes; answers their file offset.
uint32_t PlaceTiffBytes(TiffValueArea* area, const void* bytes, size_t size);
// The check after filling: the next free offset must not have reached the area's end
// (program error "WRITE_TIFF_HEADER Overwrote memory"). Answers true when it is within.
bool CheckTiffValueArea(const TiffValueArea* area);

// The palette of a palette file: 3 planes of 2 ^ bits SHORT values, from the record's ImageLUT
// and the colour table in force.
size_t TiffPaletteEntries(int bitsPerPixel);
void BuildTiffPalette(const ImageHeaderType* record, int bitsPerPixel, uint16_t* palette);
// File offset of the palette: 7124 + pixels + FFT block + mapping block.
long long TiffPaletteOffset(const ImageHeaderType* record);

// Reads the header of an image file (TIFF or plain, any revision) into the scratch record and
// leaves the file at the first pixel. 1 if the header is accepted, else 0 with its error.
int loadImageHeader(FileHandle file, ImageHeaderType* scratch);

// True when the first 10 bytes of a file make it a TIFF file.
bool IsTiffSignature(const uint8_t first[10]);
// The revision test of a plain file: 0, 100, or 103 to 700.
bool IsAcceptedPlainRevision(int revNo);

void ResetTiffHeaderState();
