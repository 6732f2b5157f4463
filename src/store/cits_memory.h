// The memory of an SPS Mapping set: its header block with the image entries, the pixel block
// of every image, and the items of the data list that share the set.
//
// The set belongs to the data list like the pixels of an item: it lives as long as an item
// holds it, and its pointer is rewritten in every holder when the header block moves.
#pragma once

#include <cstddef>
#include <cstdint>

#include "tavrin/dl_mapping.h"
#include "tavrin/image_header.h"

constexpr int kMaxCITSImages = 4096;

// Bytes of a header block of `ni` entries: 392 + ni * 173.
size_t CITSHeaderBlockBytes(int ni);
// Entry k of the set (no bound test: callers keep within ni).
CITSImageEntryType* CITSEntry(CITSHeaderType* header, int k);
const CITSImageEntryType* CITSEntry(const CITSHeaderType* header, int k);
// The pixel block of an entry, or null when it has none.
uint16_t* CITSPixels(const CITSImageEntryType* entry);

// A new zero-filled header block for 1 <= ni < 4097 images (program error "GetCITSHeader"
// otherwise; 32769 when memory is out): rev 700, ci 0, display block of a new set, set_id from
// the DataId counter.
CITSHeaderType* GetCITSHeader(int ni, int16_t cx, int16_t cy);
// The header and ni pixel blocks of cx * cy codes. A failed block frees all taken before it and
// the header (32797 from the block allocator); answers null then.
CITSHeaderType* AllocateCITSDataSet(int ni, int16_t cx, int16_t cy);
// Pixel block of one entry, cx * cy codes, registered in the entry; false (32797) on failure.
bool AllocateCITSPixels(CITSHeaderType* header, CITSImageEntryType* entry);
// Frees the pixel block of one entry and clears its words.
void FreeCITSPixels(CITSImageEntryType* entry);
// The header block alone; null: program error "FreeCITSHeader".
void FreeCITSHeader(CITSHeaderType* header);
// Every pixel block, then the header; null: program error "DeallocateCITSDataSet".
void DeallocateCITSDataSet(CITSHeaderType* header);
// Rewrites CITSHeaderPtr of every image item of the data list that holds `old`.
void ReplaceCITSHeaderPointers(const CITSHeaderType* old, CITSHeaderType* replacement);
// Frees the set of the image and clears the pointer in every item that held it.
void FreeCITSDataSetOfImage(ImageHeaderType* image);

// The square mapping test: the image has a set, cx is one of 16, 32, 64, 128, 256, 512, and
// nx, ny, cx and cy are all equal.
bool IsSquareMappingImage(const ImageHeaderType* image);

// Live pixel blocks of mapping sets (for leak checks of tests and fuzz targets).
size_t LiveCITSPixelBlocks();
