// The two checksums of PNG files and zlib streams.
#pragma once

#include <cstddef>
#include <cstdint>

// CRC-32 with the reflected polynomial 0xEDB88320, as in PNG chunks, zip and gzip. To
// checksum data in pieces, pass the answer for the first piece as `crc` of the next.
uint32_t Crc32(const uint8_t* data, size_t size, uint32_t crc = 0);

// Adler-32, the checksum at the end of a zlib stream; continues from `adler` likewise
// (1 for a start).
uint32_t Adler32(const uint8_t* data, size_t size, uint32_t adler = 1);
