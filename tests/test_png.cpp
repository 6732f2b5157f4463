// The PNG writer: its files read back by libpng pixel for pixel, their chunks and filter bytes
// checked with Python's zlib.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <filesystem>
#include <string>
#include <vector>

#include "platform/png_writer.h"
#include "png_decoder.h"

namespace {

using namespace png_check;

namespace fs = std::filesystem;
using PngTest = PngDecoderTest;

// Repeatable noise.
struct Noise {
    uint32_t state = 2463534242u;
    uint8_t Next()
    {
        state ^= state << 13;
        state ^= state >> 17;
        state ^= state << 5;
        return static_cast<uint8_t>(state >> 24);
    }
};

// An RGBA picture with ramps, noise and a varying alpha.
Bytes Picture(int32_t width, int32_t height, int32_t channels)
{
    Noise noise;
    Bytes bytes;
    for (int32_t y = 0; y < height; ++y) {
        for (int32_t x = 0; x < width; ++x) {
            bytes.push_back(static_cast<uint8_t>(x * 7));
            bytes.push_back(static_cast<uint8_t>(y * 11 + (x & 3)));
            bytes.push_back(noise.Next());
            if (channels == 4) bytes.push_back(static_cast<uint8_t>(255 - x - y));
        }
    }
    return bytes;
}

uint32_t BigEndian(const uint8_t* p)
{
    return (uint32_t{p[0]} << 24) | (uint32_t{p[1]} << 16) | (uint32_t{p[2]} << 8) | p[3];
}

// ---- PNG files ----

TEST_F(PngTest, RgbaImageDecodesPixelForPixel)
{
    Bytes pixels = Picture(37, 23, 4);
    PngImage image{37, 23, kPngColourRgba, pixels.data(), 37 * 4, nullptr, 0, kPngAdaptiveFilter};
    fs::path file = dir / "rgba.png";
    ASSERT_EQ(WritePng(file.c_str(), image), 0);
    Decoded d = DecodePng(file, 4);
    EXPECT_EQ(d.mode, "RGBA");
    EXPECT_EQ(d.width, 37);
    EXPECT_EQ(d.height, 23);
    EXPECT_EQ(d.pixels, pixels);
}

TEST_F(PngTest, RgbImageWithPaddedRowsDecodesPixelForPixel)
{
    Bytes packed = Picture(29, 31, 3);
    const size_t stride = 29 * 3 + 5;
    Bytes padded(stride * 31, 0xEE);
    for (size_t y = 0; y < 31; ++y) std::memcpy(padded.data() + y * stride, packed.data() + y * 29 * 3, 29 * 3);
    PngImage image{29,      31, kPngColourRgb,     padded.data(), static_cast<ptrdiff_t>(stride),
                   nullptr, 0,  kPngAdaptiveFilter};
    fs::path file = dir / "rgb.png";
    ASSERT_EQ(WritePng(file.c_str(), image), 0);
    Decoded d = DecodePng(file, 3);
    EXPECT_EQ(d.mode, "RGB");
    EXPECT_EQ(d.width, 29);
    EXPECT_EQ(d.height, 31);
    EXPECT_EQ(d.pixels, packed);
}

TEST_F(PngTest, EveryFilterForcedOnEveryRowDecodes)
{
    Bytes pixels = Picture(33, 19, 3);
    for (int32_t filter = kPngFilterNone; filter <= kPngFilterPaeth; ++filter) {
        SCOPED_TRACE(filter);
        PngImage image{33, 19, kPngColourRgb, pixels.data(), 33 * 3, nullptr, 0, filter};
        fs::path file = dir / ("filter" + std::to_string(filter) + ".png");
        ASSERT_EQ(WritePng(file.c_str(), image), 0);
        Bytes rows = Decode("idat", file);
        ASSERT_EQ(rows.size(), 19u * (33 * 3 + 1));
        for (size_t y = 0; y < 19; ++y) EXPECT_EQ(rows[y * (33 * 3 + 1)], filter) << y;
        EXPECT_EQ(DecodePng(file, 3).pixels, pixels);
    }
}

TEST_F(PngTest, AdaptiveFilteringTakesSubForARampAndUpBelowIt)
{
    // Every row the same ramp: Sub leaves 3s in the first row, Up leaves zeros below it.
    Bytes pixels;
    for (int32_t y = 0; y < 8; ++y)
        for (int32_t x = 0; x < 40; ++x)
            for (int32_t c = 0; c < 3; ++c) pixels.push_back(static_cast<uint8_t>(x * 3));
    PngImage image{40, 8, kPngColourRgb, pixels.data(), 40 * 3, nullptr, 0, kPngAdaptiveFilter};
    fs::path file = dir / "ramp.png";
    ASSERT_EQ(WritePng(file.c_str(), image), 0);
    Bytes rows = Decode("idat", file);
    ASSERT_EQ(rows.size(), 8u * 121);
    EXPECT_EQ(rows[0], kPngFilterSub);
    for (size_t y = 1; y < 8; ++y) EXPECT_EQ(rows[y * 121], kPngFilterUp) << y;
    EXPECT_EQ(DecodePng(file, 3).pixels, pixels);
}

TEST_F(PngTest, PaletteImageDecodesIndexForIndexWithItsPalette)
{
    const int32_t w = 31, h = 17, entries = 200;
    Bytes indices;
    for (int32_t y = 0; y < h; ++y)
        for (int32_t x = 0; x < w; ++x) indices.push_back(static_cast<uint8_t>((x * 13 + y * 7) % entries));
    Bytes palette;
    for (int32_t i = 0; i < entries; ++i) {
        palette.push_back(static_cast<uint8_t>(i));
        palette.push_back(static_cast<uint8_t>(255 - i));
        palette.push_back(static_cast<uint8_t>(i * 5));
    }
    PngImage image{w, h, kPngColourPalette, indices.data(), w, palette.data(), entries, kPngAdaptiveFilter};
    fs::path file = dir / "palette.png";
    ASSERT_EQ(WritePng(file.c_str(), image), 0);
    Decoded d = DecodePng(file, 1);
    EXPECT_EQ(d.mode, "P");
    EXPECT_EQ(d.pixels, indices);
    ASSERT_GE(d.palette.size(), palette.size());
    EXPECT_EQ(Bytes(d.palette.begin(), d.palette.begin() + static_cast<ptrdiff_t>(palette.size())), palette);
    Bytes rows = Decode("idat", file);
    for (size_t y = 0; y < static_cast<size_t>(h); ++y) EXPECT_EQ(rows[y * (w + 1)], kPngFilterNone) << y;
}

TEST_F(PngTest, BottomUpFrameBufferIsWrittenTopRowFirst)
{
    // A frame store keeps frame row y at buffer row 511 - y: pixels point at the last buffer
    // row and the stride is negative.
    const int32_t size = 512;
    Bytes buffer(static_cast<size_t>(size) * size);
    for (int32_t row = 0; row < size; ++row)
        for (int32_t x = 0; x < size; ++x)
            buffer[static_cast<size_t>(row * size + x)] = static_cast<uint8_t>((row + x / 64) % 256);
    Bytes palette(256 * 3);
    for (size_t i = 0; i < palette.size(); ++i) palette[i] = static_cast<uint8_t>(i / 3);
    PngImage image{size,           size, kPngColourPalette, buffer.data() + static_cast<size_t>(size - 1) * size, -size,
                   palette.data(), 256,  kPngAdaptiveFilter};
    fs::path file = dir / "frame.png";
    ASSERT_EQ(WritePng(file.c_str(), image), 0);
    Decoded d = DecodePng(file, 1);
    ASSERT_EQ(d.pixels.size(), buffer.size());
    for (int32_t y = 0; y < size; ++y)
        for (int32_t x = 0; x < size; x += 37)
            ASSERT_EQ(d.pixels[static_cast<size_t>(y * size + x)],
                      buffer[static_cast<size_t>((size - 1 - y) * size + x)])
                << x << "," << y;
}

TEST_F(PngTest, FileHasTheChunksInOrderWithTheImageHeader)
{
    Bytes indices(6 * 4, 1);
    Bytes palette = {0, 0, 0, 255, 255, 255};
    PngImage image{6, 4, kPngColourPalette, indices.data(), 6, palette.data(), 2, kPngAdaptiveFilter};
    Bytes file;
    ASSERT_TRUE(EncodePng(image, &file));
    const uint8_t signature[8] = {0x89, 'P', 'N', 'G', '\r', '\n', 0x1A, '\n'};
    ASSERT_GT(file.size(), 8u);
    EXPECT_EQ(std::memcmp(file.data(), signature, 8), 0);
    std::vector<std::string> types;
    size_t at = 8;
    while (at + 12 <= file.size()) {
        uint32_t length = BigEndian(file.data() + at);
        types.emplace_back(reinterpret_cast<const char*>(file.data() + at + 4), 4);
        if (types.back() == "IHDR") {
            ASSERT_EQ(length, 13u);
            const uint8_t* h = file.data() + at + 8;
            EXPECT_EQ(BigEndian(h), 6u);
            EXPECT_EQ(BigEndian(h + 4), 4u);
            EXPECT_EQ(h[8], 8);    // bits
            EXPECT_EQ(h[9], 3);    // palette
            EXPECT_EQ(h[10], 0);
            EXPECT_EQ(h[11], 0);
            EXPECT_EQ(h[12], 0);   // not interlaced
        }
        if (types.back() == "PLTE") {
            EXPECT_EQ(length, 6u);
        }
        at += 12 + length;
    }
    EXPECT_EQ(at, file.size());
    EXPECT_EQ(types, (std::vector<std::string>{"IHDR", "PLTE", "IDAT", "IEND"}));
    fs::path path = dir / "small.png";
    WriteFile(path, file);
    EXPECT_EQ(DecodePng(path, 1).pixels, indices);   // the decoder checks every CRC
}

TEST_F(PngTest, SmoothImageCompressesFarBelowItsRawSize)
{
    // A height map of the kind the frame stores show: smooth hills in a colour ramp.
    const int32_t size = 512;
    Bytes pixels;
    for (int32_t y = 0; y < size; ++y) {
        for (int32_t x = 0; x < size; ++x) {
            double z = 0.5 + 0.25 * std::sin(x / 37.0) * std::cos(y / 53.0) + 0.2 * std::sin((x + y) / 91.0);
            int32_t level = static_cast<int32_t>(z * 255.0);
            pixels.push_back(static_cast<uint8_t>(std::min(255, level * 2)));
            pixels.push_back(static_cast<uint8_t>(level));
            pixels.push_back(static_cast<uint8_t>(255 - level));
        }
    }
    PngImage image{size, size, kPngColourRgb, pixels.data(), size * 3, nullptr, 0, kPngAdaptiveFilter};
    fs::path file = dir / "smooth.png";
    ASSERT_EQ(WritePng(file.c_str(), image), 0);
    uintmax_t written = fs::file_size(file);
    EXPECT_LT(written, pixels.size() / 10) << written << " of " << pixels.size();
    EXPECT_EQ(DecodePng(file, 3).pixels, pixels);
}

TEST_F(PngTest, UnsoundImagesAreRefusedAndNoFileIsWritten)
{
    Bytes pixels(64 * 4, 7);
    Bytes palette(3 * 4, 0);
    const PngImage good{8, 8, kPngColourRgb, pixels.data(), 24, nullptr, 0, kPngAdaptiveFilter};
    Bytes out;
    ASSERT_TRUE(EncodePng(good, &out));
    std::vector<PngImage> bad;
    auto variant = [&](auto change) {
        PngImage image = good;
        change(image);
        bad.push_back(image);
    };
    variant([](PngImage& i) { i.width = 0; });
    variant([](PngImage& i) { i.height = -1; });
    variant([](PngImage& i) { i.pixels = nullptr; });
    variant([](PngImage& i) { i.stride = 23; });
    variant([](PngImage& i) { i.stride = -23; });
    variant([](PngImage& i) { i.colourType = 4; });
    variant([](PngImage& i) { i.filter = 5; });
    variant([](PngImage& i) { i.filter = -2; });
    variant([](PngImage& i) { i.width = 1 << 20, i.height = 1 << 20, i.stride = 3 << 20; });
    variant(
        [&](PngImage& i) { i.colourType = kPngColourPalette, i.stride = 8, i.palette = nullptr, i.paletteSize = 4; });
    variant([&](PngImage& i) {
        i.colourType = kPngColourPalette, i.stride = 8, i.palette = palette.data(), i.paletteSize = 0;
    });
    variant([&](PngImage& i) {
        i.colourType = kPngColourPalette, i.stride = 8, i.palette = palette.data(), i.paletteSize = 257;
    });
    variant([&](PngImage& i) {
        i.colourType = kPngColourPalette, i.stride = 8, i.palette = palette.data(), i.paletteSize = 4;
    }); // index 7
    for (size_t k = 0; k < bad.size(); ++k) {
        SCOPED_TRACE(k);
        out.assign(3, 1);
        EXPECT_FALSE(EncodePng(bad[k], &out));
        EXPECT_TRUE(out.empty());
        fs::path file = dir / ("bad" + std::to_string(k) + ".png");
        EXPECT_EQ(WritePng(file.c_str(), bad[k]), 1);
        EXPECT_FALSE(fs::exists(file));
    }
    EXPECT_FALSE(EncodePng(good, nullptr));
}

TEST_F(PngTest, WritingToAPathThatCannotBeCreatedFails)
{
    Bytes pixels(4 * 3, 0);
    PngImage image{2, 2, kPngColourRgb, pixels.data(), 6, nullptr, 0, kPngAdaptiveFilter};
    EXPECT_EQ(WritePng((dir / "no such folder" / "x.png").c_str(), image), 1);
    EXPECT_EQ(WritePng(nullptr, image), 1);
    EXPECT_EQ(WritePng("", image), 1);
}

} // namespace
