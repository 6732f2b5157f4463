// PNG pictures of canvases and frame stores: 8-bit RGB, RGBA and palette images, not
// interlaced, written by libpng.
//
// Rows are filtered before compression. By default (kPngAdaptiveFilter) libpng picks for each
// row of an RGB or RGBA image the filter it expects to compress best, and palette rows are not
// filtered (differences of colour indices carry no meaning); a filter number 0 to 4 forces that
// filter on every row.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

constexpr int32_t kPngColourRgb = 2;
constexpr int32_t kPngColourPalette = 3;
constexpr int32_t kPngColourRgba = 6;

constexpr int32_t kPngAdaptiveFilter = -1;
constexpr int32_t kPngFilterNone = 0;
constexpr int32_t kPngFilterSub = 1;
constexpr int32_t kPngFilterUp = 2;
constexpr int32_t kPngFilterAverage = 3;
constexpr int32_t kPngFilterPaeth = 4;

// Images larger than this many bytes of unfiltered pixels are refused.
constexpr uint64_t kPngMaxPixelBytes = uint64_t{1} << 30;

struct PngImage {
    int32_t width;
    int32_t height;
    int32_t colourType;      // kPngColourRgb, kPngColourPalette or kPngColourRgba
    const uint8_t* pixels;   // the top row: R G B, R G B A, or one colour index a pixel
    ptrdiff_t stride;        // bytes from a row to the row below it; negative for a buffer
                             // stored bottom-up (pixels then points at its last row)
    const uint8_t* palette;  // palette images: red, green, blue of each entry
    int32_t paletteSize;     // palette images: 1 to 256 entries, every index below it
    int32_t filter;          // kPngAdaptiveFilter or a filter number
};

// The PNG file of an image; false (and `out` emptied) for an image that breaks the rules
// above.
bool EncodePng(const PngImage& image, std::vector<uint8_t>* out);

// Writes the PNG file of an image; answers 0 on success, 1 on failure.
int32_t WritePng(const char* path, const PngImage& image);
