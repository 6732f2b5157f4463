// The PNG writer and its parts - CRC-32, Adler-32, deflate, zlib - checked against Python's
// zlib and PIL, which decode what we write.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <filesystem>
#include <string>
#include <vector>

#include "platform/checksums.h"
#include "platform/deflate.h"
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

Bytes Text(size_t size)
{
    const std::string line = "Topography 512 x 512, scan 2.00 um, bias -0.350 V, set point 1.20 nA, line ";
    std::string text;
    for (int i = 0; text.size() < size; ++i) text += line + std::to_string(i * 7919 % 1000) + "\n";
    return Bytes(text.begin(), text.begin() + static_cast<ptrdiff_t>(size));
}

Bytes Random(size_t size)
{
    Noise noise;
    Bytes bytes(size);
    for (uint8_t& b : bytes) b = noise.Next();
    return bytes;
}

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

// ---- Checksums ----

TEST(PngChecksums, Crc32OfKnownTexts)
{
    auto crc = [](const std::string& s) { return Crc32(reinterpret_cast<const uint8_t*>(s.data()), s.size()); };
    EXPECT_EQ(crc(""), 0x00000000u);
    EXPECT_EQ(crc("a"), 0xE8B7BE43u);
    EXPECT_EQ(crc("123456789"), 0xCBF43926u);
    EXPECT_EQ(crc("The quick brown fox jumps over the lazy dog"), 0x414FA339u);
    EXPECT_EQ(Crc32(nullptr, 10), 0u);
}

TEST(PngChecksums, Crc32InPiecesEqualsCrc32OfTheWhole)
{
    Bytes ff(1000000, 0xFF);
    EXPECT_EQ(Crc32(ff.data(), ff.size()), 0x13FBDA0Du);
    uint32_t running = Crc32(ff.data(), 333333);
    running = Crc32(ff.data() + 333333, ff.size() - 333333, running);
    EXPECT_EQ(running, 0x13FBDA0Du);
}

TEST(PngChecksums, Adler32OfKnownTexts)
{
    auto adler = [](const std::string& s) { return Adler32(reinterpret_cast<const uint8_t*>(s.data()), s.size()); };
    EXPECT_EQ(adler(""), 0x00000001u);
    EXPECT_EQ(adler("a"), 0x00620062u);
    EXPECT_EQ(adler("Wikipedia"), 0x11E60398u);
    EXPECT_EQ(adler("123456789"), 0x091E01DEu);
    EXPECT_EQ(adler("The quick brown fox jumps over the lazy dog"), 0x5BDC0FDAu);
}

TEST(PngChecksums, Adler32OfAMillionHighBytesStaysReducedAndContinuesInPieces)
{
    Bytes ff(1000000, 0xFF);
    EXPECT_EQ(Adler32(ff.data(), ff.size()), 0x3843E1BEu);
    uint32_t running = Adler32(ff.data(), 7);
    running = Adler32(ff.data() + 7, ff.size() - 7, running);
    EXPECT_EQ(running, 0x3843E1BEu);
}

// ---- Deflate ----

TEST_F(PngTest, DeflateOfNothingIsOneFixedBlockAndInflatesToNothing)
{
    DeflateBlockCounts counts{};
    Bytes stream = DeflateCompress(nullptr, 0, &counts);
    EXPECT_EQ(counts.fixed, 1);
    EXPECT_EQ(counts.stored + counts.dynamic, 0);
    EXPECT_EQ(stream.size(), 2u);   // 3 header bits and the 7-bit end of block
    EXPECT_TRUE(Inflate("deflate", stream).empty());
}

TEST_F(PngTest, DeflateOfAFewBytesUsesTheFixedCode)
{
    Bytes data = {'a', 'b', 'c'};
    DeflateBlockCounts counts{};
    Bytes stream = DeflateCompress(data.data(), data.size(), &counts);
    EXPECT_EQ(counts.fixed, 1);
    EXPECT_EQ(Inflate("deflate", stream), data);
}

TEST_F(PngTest, DeflateOfTextUsesItsOwnCodesAndRoundTrips)
{
    Bytes data = Text(300000);
    DeflateBlockCounts counts{};
    Bytes stream = DeflateCompress(data.data(), data.size(), &counts);
    EXPECT_GE(counts.dynamic, 1);
    EXPECT_LT(stream.size(), data.size() / 5);
    EXPECT_EQ(Inflate("deflate", stream), data);
}

TEST_F(PngTest, DeflateOfNoiseIsStoredAndGrowsByAFewBytesOnly)
{
    Bytes data = Random(200000);
    DeflateBlockCounts counts{};
    Bytes stream = DeflateCompress(data.data(), data.size(), &counts);
    EXPECT_GE(counts.stored, 1);
    EXPECT_EQ(counts.fixed + counts.dynamic, 0);
    // 5 bytes of header for every piece of at most 65535 bytes, over 13 blocks.
    EXPECT_LE(stream.size(), data.size() + 5 * 20);
    EXPECT_EQ(Inflate("deflate", stream), data);
}

TEST_F(PngTest, DeflateOfAMillionZerosIsTiny)
{
    Bytes data(1000000, 0);
    Bytes stream = DeflateCompress(data.data(), data.size());
    EXPECT_LT(stream.size(), 2000u);
    EXPECT_EQ(Inflate("deflate", stream), data);
}

TEST_F(PngTest, DeflateFindsRepeatsAsFarBackAsTheWholeWindow)
{
    Bytes block = Random(32768);
    Bytes data = block;
    data.insert(data.end(), block.begin(), block.end());
    Bytes stream = DeflateCompress(data.data(), data.size());
    EXPECT_LT(stream.size(), 32768u + 2000u);   // the second copy is matches at distance 32768
    EXPECT_EQ(Inflate("deflate", stream), data);
}

TEST_F(PngTest, DeflateRoundTripsRepeatsBeyondTheWindow)
{
    Bytes block = Random(40000);
    Bytes data = block;
    data.insert(data.end(), block.begin(), block.end());
    Bytes stream = DeflateCompress(data.data(), data.size());
    EXPECT_GT(stream.size(), 80000u);   // out of reach: nothing to match
    EXPECT_EQ(Inflate("deflate", stream), data);
}

TEST_F(PngTest, DeflateRoundTripsEveryMatchLengthAndShortRuns)
{
    Bytes data;
    Noise noise;
    for (int32_t length = 1; length <= 300; ++length) {
        uint8_t value = noise.Next();
        data.insert(data.end(), static_cast<size_t>(length), value);
        for (int32_t k = 0; k < length % 7; ++k) data.push_back(noise.Next());
    }
    for (int32_t i = 0; i < 20000; ++i) data.push_back(static_cast<uint8_t>(i % 256));
    EXPECT_EQ(Inflate("deflate", DeflateCompress(data.data(), data.size())), data);
}

TEST_F(PngTest, ZlibStreamHasItsHeaderAndTheAdlerOfTheData)
{
    Bytes data = Text(5000);
    Bytes stream = ZlibCompress(data.data(), data.size());
    ASSERT_GE(stream.size(), 6u);
    EXPECT_EQ(stream[0], 0x78);
    EXPECT_EQ(stream[1], 0x9C);
    EXPECT_EQ((stream[0] * 256 + stream[1]) % 31, 0);
    EXPECT_EQ(BigEndian(stream.data() + stream.size() - 4), Adler32(data.data(), data.size()));
    EXPECT_EQ(Inflate("zlib", stream), data);
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
