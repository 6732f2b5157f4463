// Magnify: an upright rectangle of the image cut out and resampled to a square.
#include "image/regions.h"
#include "image/image_frame.h"
#include "display/placement.h"
#include "host/errors.h"
#include "host/log.h"
#include "host/wait.h"
#include "store/data_list.h"
#include "store/duplicate.h"

#include <algorithm>
#include <cstring>

namespace {

constexpr int kMagnifyCode = 46;
constexpr int kLargestSide = 4096;

// The first of 128, 256, ... 4096 that holds `side`, at most 4096.
int MagnifiedSide(int side)
{
    int n = 128;
    while (n < side && n < kLargestSide) n *= 2;
    return n;
}

// The rectangle's rows that lie within the source; the rest of the item stays 0.
void CopyRectangle(const ImageHeaderType* source, ImageHeaderType* item, int x1, int y1)
{
    const int w = item->nx, h = item->ny;
    std::memset(item->PixData, 0, static_cast<size_t>(w) * static_cast<size_t>(h) * sizeof(uint16_t));
    const int from = std::max(x1, 0), to = std::min(x1 + w - 1, source->nx - 1);
    if (to < from) return;
    for (int y = 0; y < h; ++y) {
        const int row = y1 + y;
        if (row < 0 || row >= source->ny) continue;
        std::memcpy(item->PixData + static_cast<size_t>(y) * w + (from - x1),
                    source->PixData + static_cast<size_t>(row) * source->nx + from,
                    static_cast<size_t>(to - from + 1) * sizeof(uint16_t));
    }
}

} // namespace

ImageHeaderType* MagnifyArea(RegionPoint first, RegionPoint second)
{
    if (first == second) {
        Error(ERR_INVALID_ENTRY);
        return nullptr;
    }
    ImageCommand check;
    ImageHeaderType* source = CheckImageCommand(check);
    if (!source) return nullptr;
    const int x1 = std::min(first.x, second.x), x2 = std::max(first.x, second.x);
    const int y1 = std::min(first.y, second.y), y2 = std::max(first.y, second.y);
    const int w = x2 - x1 + 1, h = y2 - y1 + 1;
    if (w < 2 || h < 2) {
        Error(ERR_IMAGE_TOO_SMALL);
        return nullptr;
    }
    // An item holds at most 32767 points a side.
    if (w > INT16_MAX || h > INT16_MAX) {
        Error(ERR_IMAGE_TOO_LARGE);
        return nullptr;
    }
    ImageHeaderType* temporary = DuplicateResized(source, w, h);
    if (!temporary) return nullptr;
    // The physical size follows the rectangle: a real quotient, as a whole-number one would
    // be 0 for every rectangle narrower than the image.
    temporary->ImageSizeX = static_cast<float>(source->ImageSizeX * (static_cast<double>(w) / source->nx));
    temporary->ImageSizeY = static_cast<float>(source->ImageSizeY * (static_cast<double>(h) / source->ny));
    CopyRectangle(source, temporary, x1, y1);

    ShowWait("Please wait for linear interpolation");
    ImageHeaderType* result = ResampleTemporary(temporary, MagnifiedSide(std::max(w, h)), kMagnifyCode);
    if (result) Log("Magnify (%d,%d) (%d,%d) in '%s'.\n", x1, y1, x2, y2, result->Title);
    HideWait();
    if (CurrentItem) ShowParameterText(CurrentItem);
    return result;
}
