#include "platform/png_writer.h"
#include "platform/safe_replace.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>

#include <png.h>

namespace {

int32_t BytesPerPixel(int32_t colourType)
{
    switch (colourType) {
    case kPngColourRgb: return 3;
    case kPngColourRgba: return 4;
    case kPngColourPalette: return 1;
    default: return 0;
    }
}

const uint8_t* RowOf(const PngImage& image, int32_t y)
{
    return image.pixels + static_cast<ptrdiff_t>(y) * image.stride;
}

bool ImageIsSound(const PngImage& image)
{
    int32_t bpp = BytesPerPixel(image.colourType);
    if (bpp == 0 || image.width <= 0 || image.height <= 0 || image.pixels == nullptr) return false;
    if (image.filter < kPngAdaptiveFilter || image.filter > kPngFilterPaeth) return false;
    uint64_t rowBytes = static_cast<uint64_t>(image.width) * static_cast<uint64_t>(bpp);
    if (static_cast<uint64_t>(std::llabs(static_cast<long long>(image.stride))) < rowBytes) return false;
    if (rowBytes * static_cast<uint64_t>(image.height) > kPngMaxPixelBytes) return false;
    if (image.colourType != kPngColourPalette) return true;
    if (image.palette == nullptr || image.paletteSize < 1 || image.paletteSize > 256) return false;
    for (int32_t y = 0; y < image.height; ++y) {
        const uint8_t* row = RowOf(image, y);
        for (int32_t x = 0; x < image.width; ++x)
            if (row[x] >= image.paletteSize) return false;
    }
    return true;
}

// libpng reports a failure by a long jump back to this frame; nothing with a destructor lives
// between the jump buffer and the calls that may jump.
void AppendBytes(png_structp png, png_bytep data, size_t length)
{
    auto* out = static_cast<std::vector<uint8_t>*>(png_get_io_ptr(png));
    out->insert(out->end(), data, data + length);
}

void NoFlush(png_structp) {}

// The filters libpng may choose among for each row.
int FilterMask(const PngImage& image)
{
    if (image.filter == kPngAdaptiveFilter)
        return image.colourType == kPngColourPalette ? PNG_FILTER_NONE : PNG_ALL_FILTERS;
    return PNG_FILTER_NONE << image.filter;
}

bool Encode(const PngImage& image, std::vector<uint8_t>* out, png_structp png, png_infop info)
{
    if (setjmp(png_jmpbuf(png))) return false;
    png_set_write_fn(png, out, AppendBytes, NoFlush);
    png_set_IHDR(png, info, static_cast<png_uint_32>(image.width), static_cast<png_uint_32>(image.height), 8,
                 image.colourType == kPngColourRgb       ? PNG_COLOR_TYPE_RGB
                 : image.colourType == kPngColourRgba    ? PNG_COLOR_TYPE_RGB_ALPHA
                                                         : PNG_COLOR_TYPE_PALETTE,
                 PNG_INTERLACE_NONE, PNG_COMPRESSION_TYPE_DEFAULT, PNG_FILTER_TYPE_DEFAULT);
    png_color palette[256];
    if (image.colourType == kPngColourPalette) {
        for (int32_t i = 0; i < image.paletteSize; ++i)
            palette[i] = {image.palette[3 * i], image.palette[3 * i + 1], image.palette[3 * i + 2]};
        png_set_PLTE(png, info, palette, image.paletteSize);
    }
    png_set_filter(png, PNG_FILTER_TYPE_BASE, FilterMask(image));
    png_write_info(png, info);
    for (int32_t y = 0; y < image.height; ++y) png_write_row(png, RowOf(image, y));
    png_write_end(png, nullptr);
    return true;
}

} // namespace

bool EncodePng(const PngImage& image, std::vector<uint8_t>* out)
{
    if (out == nullptr) return false;
    out->clear();
    if (!ImageIsSound(image)) return false;
    png_structp png = png_create_write_struct(PNG_LIBPNG_VER_STRING, nullptr, nullptr, nullptr);
    png_infop info = png ? png_create_info_struct(png) : nullptr;
    const bool encoded = info && Encode(image, out, png, info);
    png_destroy_write_struct(&png, &info);
    if (!encoded) out->clear();
    return encoded;
}

int32_t WritePng(const char* path, const PngImage& image)
{
    if (path == nullptr || path[0] == '\0') return 1;
    std::vector<uint8_t> file;
    if (!EncodePng(image, &file)) return 1;
    return FileReplaceWithBytes(path, file.data(), file.size()) == ReplaceOutcome::Done ? 0 : 1;
}
