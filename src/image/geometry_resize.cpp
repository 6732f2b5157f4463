// Padding and resampling: the commands that change the number of points.
#include "image/convert_size.h"
#include "image/geometry.h"
#include "image/image_frame.h"
#include "display/placement.h"
#include "host/errors.h"
#include "store/data_list.h"
#include "store/history.h"

#include <cstring>

void PadToPoints(int n)
{
    ImageCommand c;
    c.code = 72;
    c.below = n;
    c.shape = ResultShape::Resized;
    c.nx = c.ny = n;
    RunImageCommand(
        c,
        [n](const ImageHeaderType* source, ImageHeaderType* result) {
            // The pixel size stays: the physical size grows with the number of points.
            result->ImageSizeX *= static_cast<float>(n) / static_cast<float>(source->nx);
            result->ImageSizeY *= static_cast<float>(n) / static_cast<float>(source->ny);
            const int top = (n - source->ny) >> 1, left = (n - source->nx) >> 1;
            for (int y = 0; y < n; ++y) {
                uint16_t* out = result->PixData + static_cast<size_t>(y) * n;
                std::memset(out, 0, static_cast<size_t>(n) * sizeof(uint16_t));
                if (y >= top && y < top + source->ny)
                    std::memcpy(out + left, source->PixData + static_cast<size_t>(y - top) * source->nx,
                                static_cast<size_t>(source->nx) * sizeof(uint16_t));
                ShowCommandRow(result, y);
            }
        },
        "Pad %s to %d points\n", n);
}

void InterpolateTo(int n)
{
    ImageCommand c;
    ImageHeaderType* source = CheckImageCommand(c);
    if (!source) return;
    if (source->nx == n && source->ny == n) {
        Error(ERR_ALREADY_THIS_SIZE);
        return;
    }
    ImageHeaderType* result = ConvertImageSize(source, n, 1);
    if (!result) return;
    CurrentItem = result;
    AddImProc2List(result, n == 128 ? 43 : n == 256 ? 44 : 45);
    ShowParameterText(result);
}
