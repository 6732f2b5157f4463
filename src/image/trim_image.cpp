// Trim: the codes inside a parallelogram kept, everything else 0.
#include "image/regions.h"
#include "image/fit.h"
#include "image/image_frame.h"

#include <cstring>

namespace {
constexpr int kTrimCode = 84;
}

ImageHeaderType* TrimImage(RegionPoint a, RegionPoint b, RegionPoint c)
{
    ImageCommand command;
    command.refuseSpecial = false;
    command.code = kTrimCode;
    if (!CheckImageCommand(command)) return nullptr;
    if (a == b || a == c || b == c) return nullptr;
    const Parallelogram region = MakeParallelogram(a.x, a.y, b.x, b.y, c.x, c.y);
    return RunImageCommand(
        command,
        [&region](const ImageHeaderType* source, ImageHeaderType* result) {
            const int nx = source->nx;
            for (int y = 0; y < source->ny; ++y) {
                const size_t at = static_cast<size_t>(y) * nx;
                std::memset(result->PixData + at, 0, static_cast<size_t>(nx) * sizeof(uint16_t));
                int start = 0, end = 0;
                RowSpan(region, y, nx, &start, &end);
                if (start >= 0 && end < nx && end >= start)
                    std::memcpy(result->PixData + at + start, source->PixData + at + start,
                                static_cast<size_t>(end - start + 1) * sizeof(uint16_t));
                ShowCommandRow(result, y);
            }
        },
        "Trim '%s'\n");
}
