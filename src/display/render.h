// The row writer: turns the rows of an image into colour indices of the current frame store.
//
// It works in one pass over the image, row by row, with no picture of the whole image: a row
// accumulator sums the points of a reduced image (or holds the points of a magnified row), and
// a previous-row store keeps what the relief and contour modes compare with. Both are
// process-wide, so only one image can be in writing at a time.
//
// The routines of the row writer proper (StartImageRows, DisplayImageDataTypeLine1) are
// declared with the placement in display/placement.h.
#pragma once

#include <cstdint>

// The longest row: the accumulator and the previous-row store have this length.
constexpr int kLongestRow = 4128;

// Whether an image can be shown at the scale factors of the placement: ImPntsX 1 (with
// ImPntsY 1), 2, 4, 8, 16, 32, or -2 to -32 likewise.
bool ImageScaleWorkable(int imPntsX, int imPntsY);

// The settings of the row writer for the image in writing, as the start of the image made them.
struct RowWriterSettings {
    int BandMask;     // 256 - 256 / ContourLevels
    int InBandMask;   // the contour modes: 0, 255 or BandMask
    int Shift;        // 0 or 1
    int EdgeBit;      // 0 or 128
    int ShiftSum;     // bits taken off a sum of reduced points
};
RowWriterSettings CurrentRowWriterSettings();

void ResetRowWriter();
// Everything of the image display as a freshly loaded library holds it: the row writer, the
// display settings, the full display and the 3-D view state.
void ResetImageDisplayState();
