#include "image/geometry.h"
#include "image/image_frame.h"
#include "store/data_list.h"

#include <cstring>

namespace {

constexpr const char* kMirrorWait = "Please wait while taking mirror image";
constexpr const char* kRotateWait = "Please wait while rotating image";

uint16_t* Row(ImageHeaderType* image, int line, int width)
{
    return image->PixData + static_cast<size_t>(line) * static_cast<size_t>(width);
}

const uint16_t* Row(const ImageHeaderType* image, int line)
{
    return image->PixData + static_cast<size_t>(line) * static_cast<size_t>(image->nx);
}

// A quarter turn or a transpose exchanges the axes of the physical size and the scan speeds.
void ExchangeAxes(ImageHeaderType* result)
{
    const float sizeX = result->ImageSizeX, speedX = result->ScanSpeedX;
    result->ImageSizeX = result->ImageSizeY;
    result->ImageSizeY = sizeX;
    result->ScanSpeedX = result->ScanSpeedY;
    result->ScanSpeedY = speedX;
}

// Rows of length H = ny, W = nx of them, each code taken from the source by `from`; an index
// outside the source leaves code 0.
template <class Source>
void QuarterTurnRows(const ImageHeaderType* source, ImageHeaderType* result, Source from)
{
    const int w = source->nx, h = source->ny;
    for (int r = 0; r < w; ++r) {
        uint16_t* out = Row(result, r, h);
        for (int c = 0; c < h; ++c) {
            const int64_t i = from(r, c, w, h);
            out[c] = i >= 0 ? source->PixData[i] : 0;
        }
        ShowCommandRow(result, r, h);
    }
}

// The command of a quarter turn: rows of the turned length, the size fields kept.
ImageCommand QuarterTurn(const ImageHeaderType* image, int code)
{
    ImageCommand c;
    c.wait = kRotateWait;
    c.code = code;
    if (image) {
        c.rowsWidth = image->ny;
        c.rowsHeight = image->nx;
    }
    return c;
}

// A quarter turn: the axes exchanged, each result code from the source index `from` gives.
void QuarterTurnCommand(int code, int64_t (*from)(int, int, int, int), const char* log)
{
    RunImageCommand(
        QuarterTurn(CurrentItem, code),
        [from](const ImageHeaderType* source, ImageHeaderType* result) {
            ExchangeAxes(result);
            QuarterTurnRows(source, result, from);
        },
        log);
}

} // namespace

int64_t Rotate90Source(int r, int c, int w, int h)
{
    // The formula walks the source by linear index; on an image that is not square it leaves
    // the source for some (r, c), and those result pixels stay 0.
    const int64_t i = int64_t{c} * w + h - 1 - r;
    return i >= 0 && i < int64_t{w} * h ? i : -1;
}

int64_t Rotate270Source(int r, int c, int w, int h)
{
    const int64_t i = (int64_t{w} - 1 - c) * w + r;
    return i >= 0 && i < int64_t{w} * h ? i : -1;
}

void ImageMirrorX()
{
    ImageCommand c;
    c.wait = kMirrorWait;
    c.code = 29;
    RunImageCommand(
        c,
        [](const ImageHeaderType* source, ImageHeaderType* result) {
            const int nx = source->nx;
            for (int y = 0; y < source->ny; ++y) {
                const uint16_t* in = Row(source, y);
                uint16_t* out = Row(result, y, nx);
                for (int x = 0; x < nx; ++x) out[x] = in[nx - 1 - x];
                ShowCommandRow(result, y);
            }
        },
        "Take mirror image in X of '%s'\n");
}

void ImageMirrorY()
{
    ImageCommand c;
    c.wait = kMirrorWait;
    c.code = 28;
    RunImageCommand(
        c,
        [](const ImageHeaderType* source, ImageHeaderType* result) {
            // Rows are drawn as they are made: the last row first.
            const int nx = source->nx, ny = source->ny;
            for (int y = 0; y < ny; ++y) {
                std::memcpy(Row(result, ny - 1 - y, nx), Row(source, y), static_cast<size_t>(nx) * sizeof(uint16_t));
                ShowCommandRow(result, ny - 1 - y);
            }
        },
        "Take mirror image in Y of '%s'\n");
}

void TransposeImage()
{
    // nx and ny of the result stay as they were although its rows are ny long: only a square
    // image, the normal case of the instrument, comes out as a transpose.
    ImageCommand c = QuarterTurn(CurrentItem, 42);
    c.wait = "Please wait while transposing image";
    RunImageCommand(
        c,
        [](const ImageHeaderType* source, ImageHeaderType* result) {
            ExchangeAxes(result);
            QuarterTurnRows(source, result, [](int r, int col, int w, int) { return int64_t{col} * w + r; });
        },
        "Transpose %s\n");
}

void RotateImage90() { QuarterTurnCommand(38, Rotate90Source, "Rotate '%s' by 90 degrees.\n"); }

void RotateImage270() { QuarterTurnCommand(40, Rotate270Source, "Rotate '%s' by 270 degrees.\n"); }

void RotateImage180()
{
    ImageCommand c;
    c.wait = kRotateWait;
    c.code = 39;
    c.registerTwice = true;
    RunImageCommand(
        c,
        [](const ImageHeaderType* source, ImageHeaderType* result) {
            const int nx = source->nx, ny = source->ny;
            for (int y = 0; y < ny; ++y) {
                const uint16_t* in = Row(source, ny - 1 - y);
                uint16_t* out = Row(result, y, nx);
                for (int x = 0; x < nx; ++x) out[nx - 1 - x] = in[x];
                ShowCommandRow(result, y);
            }
        },
        "Rotate '%s' by 180 degrees.\n");
}
