// The row writer. Each row of an image is brought to the frame size (summed for a reduced
// image, repeated and averaged for a magnified one), turned into colour indices by the display
// mode through ColourMap, and written as a whole row with WriteFSLine.
//
// Display modes, with cur the level of a point, left that of the point before it and above
// the stored level of the same point in the row before:
//   0  ColourMap[cur]
//   1  relief: ColourMap[a + 32 b], a = left - cur + 16, b = above - cur + 16, each 0 to 31
//   2  contour lines on the ground ColourMap[0], each line in the colour of its band
//   3  the image at half level, contour lines in the upper half of the table
//   4  the same, with the image itself in bands
// In modes 1 to 4 the first point of a row has index 0.
#include "display/colour_map.h"
#include "display/colour_param.h"
#include "display/display_param.h"
#include "display/lut.h"
#include "display/palette.h"
#include "display/placement.h"
#include "display/render.h"
#include "display/vfs.h"
#include "host/errors.h"

#include <algorithm>
#include <cstring>

namespace {

constexpr int kLevels = 256;
constexpr int kMaxLevel = kLevels - 1;

struct RowWriter {
    int32_t acc[kLongestRow];     // the row accumulator
    uint16_t prev[kLongestRow];   // the previous-row store
    uint8_t row[kLongestRow];     // the indices of the row being written
    uint16_t level[kLongestRow];  // the levels of the row being compared
    uint16_t entry[kLongestRow];  // the colour map entries of the row being compared
    int bandMask = 0, inBandMask = 0, shift = 0, edgeBit = 0;
    int shiftSum = 0;
    int nx = 0, ny = 0;           // data size of the image in writing
};

RowWriter g_writer;

int16_t ScaleFactor(int points, int pixels)
{
    const int factor = points >= pixels ? points / pixels : -(pixels / points);
    return static_cast<int16_t>(std::clamp(factor, -32768, 32767));
}

int Log2Floor(int value)
{
    int bits = 0;
    while (value > 1) {
        value >>= 1;
        ++bits;
    }
    return bits;
}

int Mode() { return FSState.LineDispMode >= 0 && FSState.LineDispMode < kDisplayModes ? FSState.LineDispMode : 0; }

// Modes 1 to 4 on the row of levels in `level`, from point `first` to `last` (absolute point
// numbers; the level of point first - 1 is there too when first is above 0): the indices go to
// `out`, and each level becomes the stored above value of its point. The first point of a row
// has index 0. The work is split in two passes: the colour map entry of each point, without
// branches and on whole arrays, so that the compiler can do many points at once; then the
// look-up of the entries in ColourMap.
void ComparingRow(int mode, int first, int last, uint8_t* out)
{
    if (first > last) return;
    RowWriter& w = g_writer;
    int x = first;
    if (x == 0) {
        out[0] = 0;
        w.prev[0] = w.level[0];
        x = 1;
    }
    const int from = x;
    if (mode == 1) {
        // Relief: entry a + 32 b, a = left - cur + 16 and b = above - cur + 16, each 0 to 31.
        // Levels are at most 255: all of it fits in 16-bit lanes.
        for (x = from; x <= last; ++x) {
            const int16_t cur = static_cast<int16_t>(w.level[x]), left = static_cast<int16_t>(w.level[x - 1]),
                          above = static_cast<int16_t>(w.prev[x]);
            const int16_t a = std::min<int16_t>(std::max<int16_t>(static_cast<int16_t>(left - cur + 16), 0), 31);
            const int16_t b = std::min<int16_t>(std::max<int16_t>(static_cast<int16_t>(above - cur + 16), 0), 31);
            w.entry[x] = static_cast<uint16_t>(a + 32 * b);
            w.prev[x] = static_cast<uint16_t>(cur);
        }
    } else {
        // Contours: within one band under BandMask, entry (cur & InBandMask) >> Shift; else the
        // band of the largest of the three, ((v & BandMask) >> Shift) | EdgeBit.
        const uint16_t bandMask = static_cast<uint16_t>(w.bandMask), inBandMask = static_cast<uint16_t>(w.inBandMask),
                       edgeBit = static_cast<uint16_t>(w.edgeBit);
        const int shift = w.shift;
        for (x = from; x <= last; ++x) {
            const uint16_t cur = w.level[x], left = w.level[x - 1], above = w.prev[x];
            const uint16_t band = cur & bandMask;
            const uint16_t differs = static_cast<uint16_t>((band ^ (left & bandMask)) | (band ^ (above & bandMask)));
            const uint16_t v = std::max(cur, std::max(left, above));
            const uint16_t inside = static_cast<uint16_t>((cur & inBandMask) >> shift);
            const uint16_t edge = static_cast<uint16_t>(((v & bandMask) >> shift) | edgeBit);
            w.entry[x] = differs == 0 ? inside : edge;
            w.prev[x] = cur;
        }
    }
    const uint8_t* map = FSState.ColourMap;
    for (x = from; x <= last; ++x) out[x] = map[w.entry[x]];
}

// The levels of points from `first` - 1 (when there is such a point) to `last` into the level
// row: the level of a code, or of an accumulator value shifted by `shiftSum`, at most 255.
void CodeLevels(const uint16_t* data, int first, int last)
{
    for (int x = std::max(first - 1, 0); x <= last; ++x) g_writer.level[x] = static_cast<uint16_t>(data[x] >> 8);
}

inline int LevelOfSum(int32_t sum, int shiftSum) { return std::min((sum >> 8) >> shiftSum, kMaxLevel); }

void SumLevels(int first, int last, int shiftSum)
{
    RowWriter& w = g_writer;
    for (int x = std::max(first - 1, 0); x <= last; ++x)
        w.level[x] = static_cast<uint16_t>(LevelOfSum(w.acc[x], shiftSum));
}

// A row written to the frame: along a row, or down a column.
void WriteRow(const uint8_t* indices, int first, int n, int line, int vertDisp)
{
    if (!vertDisp) {
        WriteFSLine(indices + first, n, FSState.CursorX + first, FSState.CursorY + line);
        return;
    }
    for (int k = first; k < first + n; ++k) PutFSPixel(indices[k], 0, FSState.CursorX + line, FSState.CursorY + k);
}

// Factor 1: one image point to one frame pixel. The first and the last row (column) of the
// rectangle are not written: the outline stands there. Their levels are still stored.
void RowAtFactor1(int line, const uint16_t* data, int xs, int n, int vertDisp)
{
    const int rows = vertDisp ? FSState.NPixelsX : FSState.NPixelsY;
    if (line >= rows) return;   // beyond the image rectangle
    const bool outline = line == 0 || line == rows - 1;
    const int mode = Mode();
    uint8_t* out = g_writer.row;
    if (mode == 0) {
        if (outline) return;
        const uint8_t* map = FSState.ColourMap;
        const uint16_t* src = data + xs;
        uint8_t* dst = out + xs;
        for (int i = 0; i < n; ++i) dst[i] = map[src[i] >> 8];
    } else {
        CodeLevels(data, xs, xs + n - 1);
        ComparingRow(mode, xs, xs + n - 1, out);
        if (outline) return;
    }
    WriteRow(out, xs, n, line, vertDisp);
}

// Sums of p points into the accumulator: value j takes the points from j * p. With P fixed the
// compiler unrolls the inner sum; P = 0 takes p as it comes.
template <int P>
void SumPoints(int32_t* acc, const uint16_t* data, int first, int n, int p = P)
{
    const int step = P != 0 ? P : p;
    for (int j = first; j < first + n; ++j) {
        const uint16_t* q = data + static_cast<size_t>(j) * step;
        int32_t sum = 0;
        for (int k = 0; k < step; ++k) sum += q[k];
        acc[j] += sum;
    }
}

// Brings a row to its frame values in the accumulator.
void FillAccumulator(const uint16_t* data, int xs, int n)
{
    int32_t* acc = g_writer.acc;
    const int factor = FSState.ImPntsX;
    const int length = g_writer.nx;
    if (factor > 0) {
        // Only whole groups of points that the data hold.
        const int groups = std::max(0, std::min(xs + n, length / factor) - xs);
        switch (factor) {
        case 2: SumPoints<2>(acc, data, xs, groups); break;
        case 4: SumPoints<4>(acc, data, xs, groups); break;
        case 8: SumPoints<8>(acc, data, xs, groups); break;
        case 16: SumPoints<16>(acc, data, xs, groups); break;
        case 32: SumPoints<32>(acc, data, xs, groups); break;
        default: SumPoints<0>(acc, data, xs, groups, factor); break;
        }
        return;
    }
    // Magnified by f: point i yields f values, the first f / 2 the point itself, the others the
    // mean of it and the next point; the last point yields f values of itself. Values beyond
    // the last point of the data are 0.
    const int f = -factor, half = f / 2, last = length - 1;
    for (int j = xs; j < xs + n; ++j) {
        const int i = j / f;
        if (i > last)
            acc[j] = 0;
        else if (i == last || j % f < half)
            acc[j] = data[i];
        else
            acc[j] = (data[i] + data[i + 1]) >> 1;
    }
}

// A reduced image: ImPntsY rows make one output row.
void ReducedRows(int line, int xs, int n)
{
    const int p = FSState.ImPntsY;
    if ((line - p + 1) % p != 0) return;
    const int r = line / p;
    int32_t* acc = g_writer.acc;
    const int shiftSum = g_writer.shiftSum;
    if (r >= FSState.NPixelsY) {   // beyond the image rectangle
        std::fill(acc + xs, acc + xs + n, 0);
        return;
    }
    const bool firstOrLast = r == 0 || r == FSState.NPixelsY - 1;
    const int mode = Mode();
    uint8_t* out = g_writer.row;
    if (firstOrLast) {
        if (mode == 0)
            FillFSLine(0, n, FSState.CursorX + xs, FSState.CursorY);
        else
            for (int x = xs; x < xs + n; ++x) g_writer.prev[x] = static_cast<uint16_t>((acc[x] >> shiftSum) & kMaxLevel);
    } else if (mode == 0) {
        const uint8_t* map = FSState.ColourMap;
        for (int x = xs; x < xs + n; ++x) out[x] = map[LevelOfSum(acc[x], shiftSum)];
    } else {
        SumLevels(xs, xs + n - 1, shiftSum);
        ComparingRow(mode, xs, xs + n - 1, out);
    }
    std::fill(acc + xs, acc + xs + n, 0);
    if (mode >= 2 && r == 0 && FSState.NPixelsY == 1) return;
    WriteRow(out, xs, n, r, 0);
}

// A magnified image: each data row yields f frame rows; the first and last frame row of the
// rectangle are left for the outline.
void MagnifiedRows(int line, int xs, int n)
{
    const int f = -FSState.ImPntsY;
    int32_t* acc = g_writer.acc;
    uint16_t* prev = g_writer.prev;
    uint8_t* out = g_writer.row;
    const int mode = Mode();
    const int rows = FSState.NPixelsY;
    auto visible = [rows](int frameRow) { return frameRow > 0 && frameRow < rows - 1; };
    if (mode == 0) {
        // Rows between the row before and this one, in f steps.
        const uint8_t* map = FSState.ColourMap;
        for (int k = 0; k < f; ++k) {
            const int frameRow = k + line * f;
            if (!visible(frameRow)) continue;
            for (int x = xs; x < xs + n; ++x) {
                const int64_t value = f > 1 ? (int64_t{acc[x]} * k + int64_t{prev[x]} * (f - 1 - k)) / (f - 1) : acc[x];
                out[x] = map[std::min<int64_t>(value >> 8, kMaxLevel)];
            }
            WriteRow(out, xs, n, frameRow, 0);
        }
        for (int x = xs; x < xs + n; ++x) prev[x] = static_cast<uint16_t>(acc[x] & 0xffff);
    } else {
        SumLevels(xs, xs + n - 1, 0);
        ComparingRow(mode, xs, xs + n - 1, out);
        for (int k = 0; k < f; ++k) {
            const int frameRow = k + line * f;
            if (visible(frameRow)) WriteRow(out, xs, n, frameRow, 0);
        }
    }
    std::fill(acc + xs, acc + xs + n, 0);
}

// Line -1: the start of an image.
void StartOfImage()
{
    RowWriter& w = g_writer;
    std::memset(w.acc, 0, sizeof w.acc);
    std::memset(w.prev, 0, sizeof w.prev);
    std::memset(w.row, 0, sizeof w.row);
    const int levels = std::max<int>(Display.ContourLevels, 1);
    w.bandMask = kLevels - kLevels / levels;
    switch (Mode()) {
    case 3:
        w.inBandMask = kMaxLevel;
        w.shift = 1;
        w.edgeBit = 128;
        break;
    case 4:
        w.inBandMask = w.bandMask;
        w.shift = 1;
        w.edgeBit = 128;
        break;
    default:
        w.inBandMask = 0;
        w.shift = 0;
        w.edgeBit = 0;
        break;
    }
}

} // namespace

bool ImageScaleWorkable(int imPntsX, int imPntsY)
{
    if (imPntsX == 1) return imPntsY == 1;
    const int f = imPntsX < 0 ? -imPntsX : imPntsX;
    return f >= 2 && f <= 32 && (f & (f - 1)) == 0;
}

RowWriterSettings CurrentRowWriterSettings()
{
    const RowWriter& w = g_writer;
    return {w.bandMask, w.inBandMask, w.shift, w.edgeBit, w.shiftSum};
}

void StartImageRows(int nx, int ny, int isColour, const ImageHeaderType* image)
{
    nx = std::max(nx, 1);
    ny = std::max(ny, 1);
    FSState.ImPntsX = ScaleFactor(nx, std::max<int>(FSState.NPixelsX, 1));
    FSState.ImPntsY = ScaleFactor(ny, std::max<int>(FSState.NPixelsY, 1));
    g_writer.nx = nx;
    g_writer.ny = ny;
    if (FSState.ImPntsY > 0) g_writer.shiftSum = Log2Floor(FSState.ImPntsX * FSState.ImPntsX);
    else g_writer.shiftSum = 0;
    DisplayImageDataTypeLine1(-1, nullptr, 0, 0, 0);
    BuildColourMap(image, isColour);
    if (TrueRGB && ColourSource == kColourSourceImage && image)
        LoadPaletteBytes(image->LutRed, image->LutGreen, image->LutBlue);
    else
        ReloadPalette();
    FSState.DisplayBusy = 0;
}

void DisplayImageDataTypeLine1(int line, const uint16_t* data, int xs, int n, int vertDisp)
{
    if (line < 0) {
        StartOfImage();
        return;
    }
    const int limit = vertDisp ? FSState.NPixelsY : FSState.NPixelsX;
    const int64_t xe = int64_t{xs} + n - 1;
    if (xe > limit - 1) {
        ProgramError("DisplayImageDataTypeLine1 VertDisp=%d xe=%d NPixelsX=%d", vertDisp,
                     static_cast<int>(std::clamp<int64_t>(xe, INT32_MIN, INT32_MAX)), static_cast<int>(FSState.NPixelsX));
        xs = 0;
        n = limit;
    }
    if (vertDisp && (FSState.ImPntsX != 1 || FSState.ImPntsY != 1 || xs != 0)) {
        ProgramError("DisplayImageDataTypeLine1 VertDisp ImPntsX/Y=%d,%d.  xs=%d", static_cast<int>(FSState.ImPntsX),
                     static_cast<int>(FSState.ImPntsY), xs);
        return;
    }
    if (!data || xs < 0 || n <= 0) {
        ProgramError("DisplayImageDataTypeLine1 line=%d xs=%d n=%d", line, xs, n);
        return;
    }
    FSState.DisplayBusy = 1;
    if (!ImageScaleWorkable(FSState.ImPntsX, FSState.ImPntsY)) {
        ProgramError("Unable to display this image at this size: ImPntsX = %d", static_cast<int>(FSState.ImPntsX));
        return;
    }
    // The accumulator holds the longest row; what lies beyond is beyond the frame anyway.
    if (xs >= kLongestRow) return;
    n = std::min(n, kLongestRow - xs);

    if (FSState.ImPntsX == 1) {
        // At factor 1 the data of a row hold at least the frame points (the image is at least
        // as large as the rectangle), but a caller's row may be shorter than the frame.
        const int length = vertDisp ? g_writer.ny : g_writer.nx;
        n = std::min(n, length - xs);
        if (n > 0) RowAtFactor1(line, data, xs, n, vertDisp);
        return;
    }
    FillAccumulator(data, xs, n);
    if (FSState.ImPntsY > 0)
        ReducedRows(line, xs, n);
    else
        MagnifiedRows(line, xs, n);
}

void ResetRowWriter()
{
    g_writer = RowWriter{};
}
