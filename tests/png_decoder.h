// Readers of what the PNG writer produces: libpng for the picture (the library the writer uses,
// with its own checks of every chunk), Python's zlib for the raw image data and its filter
// bytes; a fixture that gives each test a temporary directory of its own.
#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

namespace png_check {

using Bytes = std::vector<uint8_t>;

Bytes ReadFile(const std::filesystem::path& path);
void WriteFile(const std::filesystem::path& path, const Bytes& bytes);

// A PNG file as libpng reads it: mode ("RGB", "RGBA", "P"), size, pixel bytes and, for a
// palette image, the palette.
struct DecodedPng {
    std::string mode;
    int32_t width = 0;
    int32_t height = 0;
    Bytes pixels;
    Bytes palette;
};

// The decoder run in a working directory of the caller's (the script is written there).
Bytes RunDecoder(const std::filesystem::path& dir, const std::string& kind, const std::filesystem::path& file);
DecodedPng DecodePngFile(const std::filesystem::path& dir, const std::filesystem::path& file, size_t bytesPerPixel);

class PngDecoderTest : public ::testing::Test {
protected:
    void SetUp() override;
    void TearDown() override;

    // Runs Python's zlib over a file and answers what it wrote; fails the test when Python
    // reports an error. Kinds: "zlib" and "deflate" inflate a stream; "idat" checks the CRC
    // of every chunk of a PNG file and inflates its image data (filter bytes included).
    Bytes Decode(const std::string& kind, const std::filesystem::path& file);

    // Writes a stream to a file and inflates it.
    Bytes Inflate(const std::string& kind, const Bytes& stream);

    using Decoded = DecodedPng;
    Decoded DecodePng(const std::filesystem::path& file, size_t bytesPerPixel);

    std::filesystem::path dir;
};

} // namespace png_check
