// Row-delta packed pixels of old plain image files.
//
// One row decodes from a byte pointer with a shift s: the first code is byte 0 shifted left by
// s; the rest of the row is a stream of 4-bit symbols, high nibble first, from byte 1. A symbol
// d of 1 to 15 adds (d - 8) shifted left by s to the previous code (kept to 16 bits). A 0 is a
// literal: in a high nibble the next 8 bits of the stream (this byte's low nibble, then the next
// byte's high nibble) are the value, and the stream goes on at that next byte's low nibble; in
// a low nibble the whole next byte is the value, and the stream goes on at the byte after it.
// A literal sets the code to value shifted left by s. A row ends after nx codes; the next row
// starts at the next whole byte.
#pragma once

#include <cstddef>
#include <cstdint>

#include "platform/files.h"

// Decodes one row of `nx` codes from `bytes` (of which `available` may be read) into `out`.
// Answers the row's length in bytes, or 0 when the row would need more than `available` bytes.
// A shift of 16 or more leaves only zero codes; a negative shift is not a packing.
size_t DecodeDeltaRow(const uint8_t* bytes, size_t available, int nx, int shift, uint16_t* out);

// The read buffer of packed rows and its refill step.
constexpr size_t kDeltaBufferBytes = 8192;
constexpr size_t kDeltaRefillBytes = 4096;

// The refill test: fewer than nx * 3 / 2 bytes left (one more for the reader of the oldest
// revisions) while the file has not ended.
bool DeltaBufferNeedsRefill(size_t bytesLeft, int nx, bool oldReader);

enum class DeltaReadResult { Complete, Short, ReadFailed, NoMemory };

// Reads `ny` packed rows of `nx` codes from the file's position into `pixels`. `consumed`
// gets the number of packed bytes the rows took (what a block behind them is positioned by).
// Reports nothing; the caller turns the result into its error.
DeltaReadResult ReadDeltaRows(FileHandle file, int nx, int ny, int shift, bool oldReader, uint16_t* pixels,
                              long long* consumed);
