// The pixel layer of the current frame store: inside a batch, and with a buffer, straight into
// the host's buffers; otherwise through the host's callbacks. Frame row y is buffer row 511 - y.
#include "display/palette.h"
#include "display/vfs.h"
#include "host/ap_callbacks.h"

#include <algorithm>
#include <cstring>

namespace {

bool WritesToBuffer() { return BatchDepth > 0 && CurrentFrameBuffer != nullptr; }

size_t PixelOffset(int x, int y)
{
    return static_cast<size_t>(kFrameHeight - 1 - y) * kFrameWidth + static_cast<size_t>(x);
}

bool InFrame(int x, int y) { return x >= 0 && x < kFrameWidth && y >= 0 && y < kFrameHeight; }

// The part of a run of n points from x on row y that lies in the frame: `skip` points are left
// out at the start, `x` and `n` become the part that remains. False when nothing remains.
bool ClipRun(int* x, int y, int* n, int* skip)
{
    if (y < 0 || y >= kFrameHeight || *n <= 0) return false;
    int64_t first = *x, count = *n, left = 0;
    if (first < 0) {
        left = -first;
        if (left >= count) return false;
        count -= left;
        first = 0;
    }
    if (first >= kFrameWidth) return false;
    count = std::min<int64_t>(count, kFrameWidth - first);
    *x = static_cast<int>(first);
    *n = static_cast<int>(count);
    *skip = static_cast<int>(left);
    return true;
}

// The 24-bit layer at a buffer offset: the palette colour of an index, blue, green, red.
void SetRGB(size_t offset, uint8_t red, uint8_t green, uint8_t blue, int add)
{
    if (!CurrentRGBBuffer) return;
    uint8_t* p = CurrentRGBBuffer + offset * 3;
    if (add) {
        p[0] = static_cast<uint8_t>(std::min(255, p[0] + blue / 3));
        p[1] = static_cast<uint8_t>(std::min(255, p[1] + green / 3));
        p[2] = static_cast<uint8_t>(std::min(255, p[2] + red / 3));
    } else {
        p[0] = blue;
        p[1] = green;
        p[2] = red;
    }
}

void SetRGBIndex(size_t offset, uint8_t index, int add)
{
    SetRGB(offset, PaletteRed[index], PaletteGreen[index], PaletteBlue[index], add);
}

} // namespace

void WriteFSLine(const uint8_t* indices, int n, int x, int y)
{
    int skip = 0;
    if (!indices || !ClipRun(&x, y, &n, &skip)) return;
    indices += skip;
    if (!WritesToBuffer()) {
        Ap.ap_PutPixelRow(indices, static_cast<uint16_t>(n), static_cast<uint16_t>(x), static_cast<uint16_t>(y));
        return;
    }
    const size_t offset = PixelOffset(x, y);
    std::memcpy(CurrentFrameBuffer + offset, indices, static_cast<size_t>(n));
    if (CurrentRGBBuffer)
        for (int i = 0; i < n; ++i) SetRGBIndex(offset + i, indices[i], 0);
}

void ReadFSLine(uint8_t* indices, int n, int x, int y)
{
    if (!indices || n <= 0) return;
    std::memset(indices, 0, static_cast<size_t>(n));
    int skip = 0;
    if (!ClipRun(&x, y, &n, &skip)) return;
    indices += skip;
    // A read changes nothing the host shows: the buffer serves whenever there is one.
    if (CurrentFrameBuffer)
        std::memcpy(indices, CurrentFrameBuffer + PixelOffset(x, y), static_cast<size_t>(n));
    else
        Ap.ap_GetPixelRow(indices, static_cast<uint16_t>(n), static_cast<uint16_t>(x), static_cast<uint16_t>(y));
}

void FillFSLine(uint8_t index, int n, int x, int y)
{
    int skip = 0;
    if (!ClipRun(&x, y, &n, &skip)) return;
    if (!WritesToBuffer()) {
        Ap.ap_FillPixelRow(index, static_cast<uint16_t>(n), static_cast<uint16_t>(x), static_cast<uint16_t>(y));
        return;
    }
    const size_t offset = PixelOffset(x, y);
    std::memset(CurrentFrameBuffer + offset, index, static_cast<size_t>(n));
    if (CurrentRGBBuffer)
        for (int i = 0; i < n; ++i) SetRGBIndex(offset + i, index, 0);
}

void PutFSPixel(uint8_t index, int add, int x, int y)
{
    if (!InFrame(x, y)) return;
    if (!WritesToBuffer()) {
        Ap.ap_PutPixel(index, static_cast<uint8_t>(add ? 1 : 0), static_cast<uint16_t>(x), static_cast<uint16_t>(y));
        return;
    }
    const size_t offset = PixelOffset(x, y);
    CurrentFrameBuffer[offset] = index;
    SetRGBIndex(offset, index, add);
}

void PutFSColour(uint32_t rgb, int add, int x, int y)
{
    if (!InFrame(x, y)) return;
    const auto red = static_cast<uint8_t>(rgb & 0xff);
    const auto green = static_cast<uint8_t>((rgb >> 8) & 0xff);
    const auto blue = static_cast<uint8_t>((rgb >> 16) & 0xff);
    if (!WritesToBuffer()) {
        Ap.ap_PutPixel(red, static_cast<uint8_t>(add ? 1 : 0), static_cast<uint16_t>(x), static_cast<uint16_t>(y));
        return;
    }
    const size_t offset = PixelOffset(x, y);
    CurrentFrameBuffer[offset] = red;
    SetRGB(offset, red, green, blue, add);
}

int GetFSPixel(uint8_t* out, int x, int y)
{
    if (!out || !CurrentFrameBuffer || !InFrame(x, y)) return 0;
    *out = CurrentFrameBuffer[PixelOffset(x, y)];
    return 1;
}
