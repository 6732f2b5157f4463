// The plain row writer: each point of an image shown at its own size (one image point to one
// frame pixel) goes to the grey ramp at its level, level / 2 + 35. The full row writer (the
// display modes, reduction and magnification, the colour map) and the caption and scale bars
// replace this file.
#include "display/lut.h"
#include "display/placement.h"
#include "display/vfs.h"

#include <algorithm>

namespace {

constexpr int kRampFirst = 35;
constexpr int kLongestRow = 4128;

int16_t Factor(int points, int pixels)
{
    return static_cast<int16_t>(points >= pixels ? points / pixels : -(pixels / points));
}

} // namespace

void StartImageRows(int nx, int ny, int /*isColour*/, const ImageHeaderType* /*image*/)
{
    FSState.ImPntsX = Factor(std::max(nx, 1), std::max<int>(FSState.NPixelsX, 1));
    FSState.ImPntsY = Factor(std::max(ny, 1), std::max<int>(FSState.NPixelsY, 1));
    DisplayImageDataTypeLine1(-1, nullptr, 0, 0, 0);
    ReloadPalette();
    FSState.DisplayBusy = 0;
}

void DisplayImageDataTypeLine1(int line, const uint16_t* data, int xs, int n, int vertDisp)
{
    if (line < 0 || !data || vertDisp) return;
    if (FSState.ImPntsX != 1 || FSState.ImPntsY != 1) return;
    if (line >= FSState.NPixelsY || xs < 0) return;
    n = std::min({n, FSState.NPixelsX - xs, kLongestRow});
    if (n <= 0) return;
    FSState.DisplayBusy = 1;
    uint8_t row[kLongestRow];
    for (int i = 0; i < n; ++i) row[i] = static_cast<uint8_t>((data[xs + i] >> 8) / 2 + kRampFirst);
    WriteFSLine(row, n, FSState.CursorX + xs, FSState.CursorY + line);
}

void DrawImageCaptionAndBars(int /*x0*/, int /*y0*/) {}

void ShowParameterText(const ImageHeaderType* /*image*/) {}
