#include "platform/png_writer.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "platform/checksums.h"
#include "platform/deflate.h"

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

uint8_t Paeth(int32_t left, int32_t up, int32_t upLeft)
{
    int32_t estimate = left + up - upLeft;
    int32_t dl = std::abs(estimate - left), du = std::abs(estimate - up), dul = std::abs(estimate - upLeft);
    if (dl <= du && dl <= dul) return static_cast<uint8_t>(left);
    if (du <= dul) return static_cast<uint8_t>(up);
    return static_cast<uint8_t>(upLeft);
}

// Filters one row; `above` is the unfiltered row above it (zeros for the first row).
void FilterRow(int32_t filter, const uint8_t* row, const uint8_t* above, size_t length, int32_t bpp, uint8_t* out)
{
    for (size_t i = 0; i < length; ++i) {
        int32_t left = i >= static_cast<size_t>(bpp) ? row[i - static_cast<size_t>(bpp)] : 0;
        int32_t up = above[i];
        int32_t upLeft = i >= static_cast<size_t>(bpp) ? above[i - static_cast<size_t>(bpp)] : 0;
        int32_t predicted = 0;
        switch (filter) {
        case kPngFilterSub: predicted = left; break;
        case kPngFilterUp: predicted = up; break;
        case kPngFilterAverage: predicted = (left + up) / 2; break;
        case kPngFilterPaeth: predicted = Paeth(left, up, upLeft); break;
        default: break;
        }
        out[i] = static_cast<uint8_t>(row[i] - predicted);
    }
}

// The sum of the filtered bytes read as signed values: the smaller, the better the row
// usually compresses.
uint64_t Cost(const uint8_t* filtered, size_t length)
{
    uint64_t sum = 0;
    for (size_t i = 0; i < length; ++i)
        sum += static_cast<uint64_t>(std::abs(static_cast<int32_t>(static_cast<int8_t>(filtered[i]))));
    return sum;
}

// Every row with its filter byte in front, as the image data is compressed.
std::vector<uint8_t> FilteredRows(const PngImage& image)
{
    int32_t bpp = BytesPerPixel(image.colourType);
    size_t length = static_cast<size_t>(image.width) * static_cast<size_t>(bpp);
    std::vector<uint8_t> out;
    out.reserve((length + 1) * static_cast<size_t>(image.height));
    std::vector<uint8_t> zeros(length, 0);
    std::vector<uint8_t> candidate(length), best(length);
    for (int32_t y = 0; y < image.height; ++y) {
        const uint8_t* row = RowOf(image, y);
        const uint8_t* above = y > 0 ? RowOf(image, y - 1) : zeros.data();
        int32_t chosen = image.filter;
        if (chosen == kPngAdaptiveFilter && image.colourType == kPngColourPalette) chosen = kPngFilterNone;
        if (chosen != kPngAdaptiveFilter) {
            FilterRow(chosen, row, above, length, bpp, best.data());
        } else {
            uint64_t bestCost = UINT64_MAX;
            for (int32_t f = kPngFilterNone; f <= kPngFilterPaeth; ++f) {
                FilterRow(f, row, above, length, bpp, candidate.data());
                uint64_t cost = Cost(candidate.data(), length);
                if (cost < bestCost) {
                    bestCost = cost;
                    chosen = f;
                    best.swap(candidate);
                }
            }
        }
        out.push_back(static_cast<uint8_t>(chosen));
        out.insert(out.end(), best.begin(), best.end());
    }
    return out;
}

void PutBigEndian(std::vector<uint8_t>* out, uint32_t value)
{
    for (int32_t shift = 24; shift >= 0; shift -= 8) out->push_back(static_cast<uint8_t>(value >> shift));
}

void PutChunk(std::vector<uint8_t>* out, const char type[4], const uint8_t* data, size_t size)
{
    PutBigEndian(out, static_cast<uint32_t>(size));
    size_t start = out->size();
    out->insert(out->end(), type, type + 4);
    if (size > 0) out->insert(out->end(), data, data + size);
    PutBigEndian(out, Crc32(out->data() + start, out->size() - start));
}

} // namespace

bool EncodePng(const PngImage& image, std::vector<uint8_t>* out)
{
    if (out == nullptr) return false;
    out->clear();
    if (!ImageIsSound(image)) return false;
    *out = {0x89, 'P', 'N', 'G', '\r', '\n', 0x1A, '\n'};

    std::vector<uint8_t> header;
    PutBigEndian(&header, static_cast<uint32_t>(image.width));
    PutBigEndian(&header, static_cast<uint32_t>(image.height));
    header.push_back(8);                                        // bits per sample
    header.push_back(static_cast<uint8_t>(image.colourType));
    header.push_back(0);                                        // deflate
    header.push_back(0);                                        // the five row filters
    header.push_back(0);                                        // not interlaced
    PutChunk(out, "IHDR", header.data(), header.size());
    if (image.colourType == kPngColourPalette)
        PutChunk(out, "PLTE", image.palette, static_cast<size_t>(image.paletteSize) * 3);
    std::vector<uint8_t> rows = FilteredRows(image);
    std::vector<uint8_t> compressed = ZlibCompress(rows.data(), rows.size());
    PutChunk(out, "IDAT", compressed.data(), compressed.size());
    PutChunk(out, "IEND", nullptr, 0);
    return true;
}

int32_t WritePng(const char* path, const PngImage& image)
{
    if (path == nullptr || path[0] == '\0') return 1;
    std::vector<uint8_t> file;
    if (!EncodePng(image, &file)) return 1;
    std::FILE* stream = std::fopen(path, "wb");
    if (stream == nullptr) return 1;
    bool written = std::fwrite(file.data(), 1, file.size(), stream) == file.size();
    bool closed = std::fclose(stream) == 0;
    if (written && closed) return 0;
    std::remove(path);
    return 1;
}
