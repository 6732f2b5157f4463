// The deflate compressor of PNG pictures: LZ77 over a 32 KiB window with hash chains and
// one-step lazy matching, in blocks of up to 16384 symbols. Each block is written in the
// smallest of the three forms - stored, fixed Huffman codes, or Huffman codes built for the
// block (limited to 15 bits, code lengths run-length coded) - so that data that does not
// compress grows by no more than a few bytes in 64 KiB.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

// Counts of the block forms that a compression wrote.
struct DeflateBlockCounts {
    int32_t stored;
    int32_t fixed;
    int32_t dynamic;
};

// A raw deflate stream of the data, ending in a final block; `counts`, when given, receives
// the forms of its blocks.
std::vector<uint8_t> DeflateCompress(const uint8_t* data, size_t size, DeflateBlockCounts* counts = nullptr);

// A zlib stream: the two header bytes (32 KiB window, no dictionary), the deflate stream,
// and the Adler-32 of the data, high byte first.
std::vector<uint8_t> ZlibCompress(const uint8_t* data, size_t size);
