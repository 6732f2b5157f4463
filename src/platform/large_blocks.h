// Large data blocks straight from the kernel, with their pages touched at once.
//
// A fresh block from malloc gets its pages one fault at a time on first touch; a 32 MB read
// into one spends most of its time in those faults. Blocks from here start on a huge-page
// boundary, are backed by huge pages where the kernel grants them, and have every page
// present before they are handed out, so a file read into one runs at the speed of the copy;
// they go back to the system with munmap when freed. Mapped memory reads as zeros.
#pragma once

#include <cstddef>

// Blocks of at least this many bytes come from here.
constexpr size_t kLargeBlockBytes = size_t{1} << 20;

// A block of `bytes` (at least one), zeroed; null when the system refuses it.
void* MapLargeBlock(size_t bytes);
// Gives back a block of `bytes` from MapLargeBlock.
void UnmapLargeBlock(void* block, size_t bytes);
// The block at a new size, its contents kept up to the smaller size; null (and the old block
// untouched) when the system refuses.
void* RemapLargeBlock(void* block, size_t oldBytes, size_t newBytes);
