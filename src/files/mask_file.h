// The mask file of the frequency domain ("window" file).
//
// New form: a header of 167 bytes - u16 700, u16 width, u16 height, u16 packed flag (1: one bit
// a pixel, least significant bit first; 0: one byte a pixel), the saving date (5 bytes) and
// time (4 bytes), 150 zero bytes - then the mask. Old form, when the first word is 0, 100 to
// 105 or 200 to 204: the u16 at offset 6 is the width, the u16 at offset 4 the height, and the
// bytes of the mask start at offset 8. Files hold masks of 128, 256 or 512 a side.
#pragma once

#include <cstddef>
#include <cstdint>

constexpr int kMaskFileHeaderBytes = 167;
constexpr uint16_t kMaskFileMark = 700;

// A mask side a file can hold.
bool MaskFileSide(int side);

// Writes the mask packed. The caller's buffer is packed in place and unpacked again, so it
// comes back with every non-zero byte as 255. A null mask reports 33541; a side other than
// 128, 256 or 512 reports 33539 and writes no file; open failure 32821; short and failed
// writes 32773 and 32823. Answers 0 on success, 1 on failure.
int SaveMask(const char* path, int width, int height, uint8_t* mask);

// Reads a mask of width by height (the image's size) into `mask` as 0 / 255 bytes. A null
// buffer or zero size reports "LoadMask"; open failure 32776; a header that is neither form or
// a packed flag other than 0 or 1 32777; sides other than 128, 256 or 512 32777 (with
// "Mask x=%d y=%d\n" in the log in debug mode); sides other than the image's 33539; a short
// file 32774. On failure `mask` is left as it was. Answers 0 on success, 1 on failure.
int LoadMask(const char* path, int width, int height, uint8_t* mask);

// The same on bytes in memory (the file's whole content), for the loader's checks and fuzzing.
int LoadMaskBytes(const uint8_t* bytes, size_t size, int width, int height, uint8_t* mask);
