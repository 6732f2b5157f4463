// Lattice average: cells added up, the averaged cell shown, and on request repeated.
#include "image/lattice.h"
#include "image/image_frame.h"
#include "display/placement.h"
#include "display/selection.h"
#include "display/vfs.h"
#include "host/errors.h"
#include "host/log.h"
#include "host/prompts.h"
#include "host/wait.h"
#include "platform/platform_table.h"
#include "store/data_list.h"
#include "store/duplicate.h"
#include "store/history.h"
#include "store/memory.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <new>

int16_t LatticePointsX[3], LatticePointsY[3];

namespace {

constexpr int kLatticeCode = 80;
constexpr int kSelectLattice = 15;
constexpr int kLatticeRegion = 4;
constexpr int kLatticeCursor = 4;
constexpr int kStatusAborted = 4;
constexpr int kLargestBox = 2048;
constexpr int kSmallestBox = 3;
constexpr int64_t kNoMinimum = 2147483647;

LatticeResult g_last;

// The span table and the accumulator of one run, freed together.
struct WorkAreas {
    SpanRow* spans = nullptr;
    uint32_t* sums = nullptr;
    bool Take()
    {
        spans = static_cast<SpanRow*>(ecalloc(kLatticeRows, sizeof(SpanRow)));
        sums = static_cast<uint32_t*>(ecalloc(static_cast<size_t>(kLatticeRows) * kLatticeRows, sizeof(uint32_t)));
        return spans && sums;
    }
    ~WorkAreas()
    {
        efree(spans);
        efree(sums);
    }
    // The rows of the accumulator lie one box width apart: a cell's rows then sit side by side
    // instead of a power of two apart, where they would all fall into one set of the cache.
    int stride = kLatticeRows;
    uint32_t* Row(int r) const { return sums + static_cast<size_t>(r) * static_cast<size_t>(stride); }
};

// The columns of each row of the box that belong to the cell; last < first where none do.
struct CellSpans {
    int first[kLatticeRows];
    int last[kLatticeRows];
};
void ReadSpans(const SpanRow* table, int rows, CellSpans* spans)
{
    for (int r = 0; r < rows; ++r)
        if (!SpanColumns(table[r], &spans->first[r], &spans->last[r])) {
            spans->first[r] = 0;
            spans->last[r] = -1;
        }
}

int64_t FloorDiv(int64_t a, int64_t b)
{
    const int64_t q = a / b;
    return (a % b != 0 && ((a < 0) != (b < 0))) ? q - 1 : q;
}
int64_t CeilDiv(int64_t a, int64_t b) { return -FloorDiv(-a, b); }

// Narrows the index run [*low, *high) to the i with lowest <= base + i * step <= highest. The
// loops visit only the indices whose cell can pass their test, which is the same as testing
// each index of the whole range.
void ClipIndexRun(int64_t base, int64_t step, int64_t lowest, int64_t highest, int64_t* low, int64_t* high)
{
    if (step == 0) {
        if (base < lowest || base > highest) *high = *low;
        return;
    }
    int64_t from = 0, to = 0;
    if (step > 0) {
        from = CeilDiv(lowest - base, step);
        to = FloorDiv(highest - base, step);
    } else {
        from = CeilDiv(highest - base, step);
        to = FloorDiv(lowest - base, step);
    }
    *low = std::max(*low, from);
    *high = std::min(*high, to + 1);
    if (*high < *low) *high = *low;
}

bool EscapePressed() { return PlatformKeyDown(TV_VK_ESCAPE); }

// A line of frame pixels in the selection colour.
void FrameLine(int x0, int y0, int x1, int y1)
{
    const int dx = std::abs(x1 - x0), dy = -std::abs(y1 - y0);
    const int sx = x0 < x1 ? 1 : -1, sy = y0 < y1 ? 1 : -1;
    int err = dx + dy;
    for (;;) {
        PutFSPixel(kSelectionColour, 0, x0, y0);
        if (x0 == x1 && y0 == y1) return;
        const int e2 = 2 * err;
        if (e2 >= dy) {
            err += dy;
            x0 += sx;
        }
        if (e2 <= dx) {
            err += dx;
            y0 += sy;
        }
    }
}

// The outline of the cell at origin (ox, oy) over the image on the screen, when the image
// shown is one of the source's size.
struct OutlineView {
    bool on = false;
    int left = 0, top = 0, width = 1, height = 1, pixelsX = 1, pixelsY = 1;
    int FrameX(int64_t x) const { return left + static_cast<int>(x * width / pixelsX); }
    int FrameY(int64_t y) const { return top + static_cast<int>(y * height / pixelsY); }
};
OutlineView ViewOf(const ImageHeaderType* source)
{
    OutlineView v;
    v.on = FSState.ImagePixelsX == source->nx && FSState.ImagePixelsY == source->ny &&
           FSState.ImageRight >= FSState.ImageLeft && FSState.ImageBottom >= FSState.ImageTop;
    v.left = FSState.ImageLeft;
    v.top = FSState.ImageTop;
    v.width = FSState.ImageRight - FSState.ImageLeft + 1;
    v.height = FSState.ImageBottom - FSState.ImageTop + 1;
    v.pixelsX = std::max<int>(FSState.ImagePixelsX, 1);
    v.pixelsY = std::max<int>(FSState.ImagePixelsY, 1);
    return v;
}
void DrawCellOutline(const OutlineView& v, const LatticeCell& cell, int64_t ox, int64_t oy)
{
    if (!v.on) return;
    const int64_t xs[4] = {ox, ox + cell.a.x, ox + cell.a.x + cell.b.x, ox + cell.b.x};
    const int64_t ys[4] = {oy, oy + cell.a.y, oy + cell.a.y + cell.b.y, oy + cell.b.y};
    for (int k = 0; k < 4; ++k)
        FrameLine(v.FrameX(xs[k]), v.FrameY(ys[k]), v.FrameX(xs[(k + 1) % 4]), v.FrameY(ys[(k + 1) % 4]));
}

// One row of a cell added into its accumulator row, columns first to last. The limits are
// values of their own and the rows cannot overlap, so the loop runs over whole vectors.
inline void AddSpan(const uint16_t* __restrict in, uint32_t* __restrict sum, int first, int last)
{
    for (int c = first; c <= last; ++c) sum[c] += in[c];
}

// The cells wholly inside the image added into the accumulator; Escape ends the loop.
int64_t AddCells(const ImageHeaderType* source, const LatticeCell& cell, const LatticeRange& range,
                 const CellSpans& spans, const WorkAreas& work)
{
    const int w = source->nx, h = source->ny;
    const OutlineView view = ViewOf(source);
    if (view.on) BeginBatch();
    int64_t cells = 0;
    for (int64_t j = range.jLow; j < range.jHigh; ++j) {
        if (EscapePressed()) break;
        const int64_t baseX = cell.origin.x + j * cell.b.x, baseY = cell.origin.y + j * cell.b.y;
        int64_t low = range.iLow, high = range.iHigh;
        ClipIndexRun(baseX, cell.a.x, -cell.minX, w - 1 - cell.maxX, &low, &high);
        ClipIndexRun(baseY, cell.a.y, -cell.minY, h - 1 - cell.maxY, &low, &high);
        if (high <= low) continue;
        if (view.on)
            for (int64_t i = low; i < high; ++i) DrawCellOutline(view, cell, baseX + i * cell.a.x, baseY + i * cell.a.y);
        // Row by row of the cell over the whole run of cells: one accumulator row at a time,
        // the image rows read along the run. The sums are those of cell after cell.
        const uint16_t* first = source->PixData + (baseY + low * cell.a.y + cell.minY) * w + (baseX + low * cell.a.x + cell.minX);
        const int64_t step = static_cast<int64_t>(cell.a.y) * w + cell.a.x;
        for (int r = 0; r < cell.height; ++r) {
            if (spans.last[r] < spans.first[r]) continue;
            const uint16_t* in = first + static_cast<int64_t>(r) * w;
            for (int64_t i = low; i < high; ++i, in += step) AddSpan(in, work.Row(r), spans.first[r], spans.last[r]);
        }
        cells += high - low;
    }
    if (view.on) EndBatchAndShow(FSState.ImageLeft, FSState.ImageTop, FSState.ImageRight, FSState.ImageBottom);
    return cells;
}

// The sums of the cell turned into display codes in place: ((v - min) * 255 / range) << 8 for
// each non-zero sum, in 64 bits.
void StretchSums(const LatticeCell& cell, const CellSpans& spans, const WorkAreas& work, LatticeResult* out)
{
    int64_t low = kNoMinimum, high = 0;
    for (int r = 0; r < cell.height; ++r)
        for (int c = spans.first[r]; c <= spans.last[r]; ++c) {
            const int64_t v = work.Row(r)[c];
            low = std::min(low, v);
            high = std::max(high, v);
        }
    const int64_t range = high != low ? high - low : 1000;
    out->min = low;
    out->max = high;
    for (int r = 0; r < cell.height; ++r) {
        uint32_t* row = work.Row(r);
        for (int c = 0; c < cell.width; ++c) {
            const int64_t v = row[c];
            if (v) row[c] = static_cast<uint32_t>(((v - low) * 255 / range) << 8);
        }
    }
}

// Keeps the box, the sums and the codes for the host (nothing is kept when memory is short).
void KeepResult(const LatticeCell& cell, const WorkAreas& work, bool codes, LatticeResult* out)
{
    try {
        std::vector<uint32_t> values(static_cast<size_t>(cell.width) * cell.height);
        for (int r = 0; r < cell.height; ++r)
            std::copy(work.Row(r), work.Row(r) + cell.width, values.begin() + static_cast<ptrdiff_t>(r) * cell.width);
        if (codes) out->codes.assign(values.begin(), values.end());
        else out->sums = std::move(values);
    } catch (const std::bad_alloc&) {
        out->sums.clear();
        out->codes.clear();
    }
}

// The averaged cell shown at the smallest of 64, 128, 256, 512 that holds its box.
void ShowCell(const LatticeCell& cell, const WorkAreas& work, const ImageHeaderType* look)
{
    const int side = std::max(cell.width, cell.height);
    const int n = side <= 64 ? 64 : side <= 128 ? 128 : side <= 256 ? 256 : 512;
    uint16_t line[512];
    BeginRowDisplay(n, n, look);
    for (int r = 0; r < n; ++r) {
        for (int c = 0; c < n; ++c)
            line[c] = r < cell.height && c < cell.width ? static_cast<uint16_t>(work.Row(r)[c]) : 0;
        ShowDisplayRow(r, line);
    }
    FinishRowDisplay(n, n);
    EndRowDisplay();
}

// `count` codes of the averaged cell into a row of the result.
inline void PutSpan(const uint32_t* __restrict code, uint16_t* __restrict out, int count)
{
    for (int c = 0; c < count; ++c) out[c] = static_cast<uint16_t>(code[c]);
}

// The averaged cell repeated over the result from the same lattice origins. The box offset is
// not added, so the repeat stands shifted by (minX, minY) against the averaged cells; rows and
// columns that fall before the image are left out like those beyond it.
void RepeatCell(ImageHeaderType* result, const LatticeCell& cell, const LatticeRange& range, const CellSpans& spans,
                const WorkAreas& work)
{
    const int w = result->nx, h = result->ny;
    for (int64_t j = range.jLow; j < range.jHigh; ++j) {
        if (EscapePressed()) break;
        const int64_t baseX = cell.origin.x + j * cell.b.x, baseY = cell.origin.y + j * cell.b.y;
        int64_t low = range.iLow, high = range.iHigh;
        ClipIndexRun(baseX, cell.a.x, -cell.width, w - 1, &low, &high);
        ClipIndexRun(baseY, cell.a.y, -cell.height, h - 1, &low, &high);
        for (int64_t i = low; i < high; ++i) {
            const int64_t ox = baseX + i * cell.a.x, oy = baseY + i * cell.a.y;
            for (int r = 0; r < cell.height; ++r) {
                const int64_t y = oy + r;
                if (y < 0) continue;
                if (y >= h) break;
                // The columns of the span that land inside the row.
                const int64_t from = std::max<int64_t>(spans.first[r], -ox);
                const int64_t to = std::min<int64_t>(spans.last[r], w - 1 - ox);
                if (to < from) continue;
                PutSpan(work.Row(r) + from, result->PixData + static_cast<size_t>(y) * w + (ox + from),
                        static_cast<int>(to - from + 1));
            }
        }
    }
}

int LatticeSelected(int buttons) { return LatticeAverage(buttons) == 1 ? 0 : 1; }

} // namespace

const LatticeResult& LastLatticeResult() { return g_last; }

void StartLatticeAverage()
{
    ImageCommand check;
    check.refuseSpecial = false;
    ImageHeaderType* image = CheckImageCommand(check);
    if (!image) return;
    if (image->CITSHeader) {
        Error(ERR_MAPPING_IMAGE);
        return;
    }
    ShowImageForPointing(image);
    SelectImagePoints(kSelectLattice, 3, LatticePointsX, LatticePointsY, kLatticeRegion, 0, 0, 0, 0, 0, 0,
                      kLatticeCursor, LatticeSelected);
}

int LatticeAverage(int status)
{
    if (status & kStatusAborted) return 0;
    const RegionPoint origin{LatticePointsX[0], LatticePointsY[0]};
    const RegionPoint endA{LatticePointsX[1], LatticePointsY[1]};
    const RegionPoint endB{LatticePointsX[2], LatticePointsY[2]};
    if (origin == endA || origin == endB || endA == endB) {
        Error(ERR_INVALID_ENTRY);
        return 0;
    }
    ImageCommand check;
    check.refuseSpecial = false;
    ImageHeaderType* source = CheckImageCommand(check);
    if (!source) return 0;

    WorkAreas work;
    if (!work.Take()) {
        Error(ERR_NO_MEMORY);
        return 0;
    }
    ImageHeaderType* result = DuplicateForResult(source);
    if (!result) return 0;

    const LatticeCell cell = MakeLatticeCell(origin, endA, endB);
    if (cell.width >= kLargestBox || cell.height >= kLargestBox || cell.width < kSmallestBox ||
        cell.height < kSmallestBox) {
        Error(cell.width >= kLargestBox || cell.height >= kLargestBox ? ERR_CELL_TOO_LARGE : ERR_CELL_VECTORS_TOO_SMALL);
        FreeResultItem(result);
        return 1;
    }
    work.stride = cell.width;
    FillSpanTable(cell, work.spans);
    static CellSpans spans;
    ReadSpans(work.spans, cell.height, &spans);
    const LatticeRange range = MakeLatticeRange(endA, endB, source->nx, source->ny);

    g_last = LatticeResult{};
    g_last.minX = cell.minX;
    g_last.minY = cell.minY;
    g_last.width = cell.width;
    g_last.height = cell.height;
    g_last.cells = AddCells(source, cell, range, spans, work);
    KeepResult(cell, work, false, &g_last);
    StretchSums(cell, spans, work, &g_last);
    KeepResult(cell, work, true, &g_last);
    ShowCell(cell, work, result);

    if (!AskYesNo("Repeat the averaged cell over the whole image?", true)) {
        FreeResultItem(result);
        return 0;
    }
    ShowWait("Please wait");
    CurrentItem = result;
    AddImProc2List(result, kLatticeCode);
    RepeatCell(result, cell, range, spans, work);
    DisplayImage(result, 0, 1);
    Log("Average over lattice of '%s'\n", result->Title);
    HideWait();
    return 0;
}

void ResetLatticeState()
{
    g_last = LatticeResult{};
    std::memset(LatticePointsX, 0, sizeof LatticePointsX);
    std::memset(LatticePointsY, 0, sizeof LatticePointsY);
}
