// The sheet of a set: several images side by side as small frames in the 512 by 512 frame,
// each optionally labelled with its sweep value, a grid between them.
//
// One row buffer of 512 bytes carries every row; nothing frame-sized is kept. The difference
// modes 2 to 4 scale each frame to its own range, found by a first pass over the pixels the
// frame shows.
#include "display/contents_grid.h"
#include "display/placement.h"
#include "display/scale_bars.h"
#include "display/vfs.h"
#include "host/error_numbers.h"
#include "host/errors.h"
#include "host/wait.h"
#include "mapping/cits_display.h"
#include "mapping/cits_label.h"
#include "store/data_types.h"
#include "store/image_header.h"
#include "store/memory.h"

#include <algorithm>
#include <cfloat>
#include <cmath>
#include <cstdlib>

namespace {

// The hourglass and the display settings that the sheet borrows, given back on every way out.
class SheetScope {
public:
    SheetScope() : size_(FSState.ImageDisplaySize), mode_(FSState.DispMode)
    {
        ap_SetHourGlass(true);
        FSState.ImageDisplaySize = 0;
        FSState.DispMode = 0;
    }
    ~SheetScope()
    {
        efree(row_);
        FSState.ImageDisplaySize = size_;
        FSState.DispMode = mode_;
        ap_SetHourGlass(false);
    }
    SheetScope(const SheetScope&) = delete;
    SheetScope& operator=(const SheetScope&) = delete;
    bool Allocate()
    {
        row_ = static_cast<uint8_t*>(emalloc(kFrameWidth));
        return row_ != nullptr;
    }
    uint8_t* Row() const { return row_; }

private:
    int32_t size_;
    int32_t mode_;
    uint8_t* row_ = nullptr;
};

bool IsShrinkFactor(int shrink) { return shrink == 1 || shrink == 2 || shrink == 4 || shrink == 8 || shrink == 16; }

int Log2(int value)
{
    int s = 0;
    while ((1 << s) < value) ++s;
    return s;
}

bool IsPowerOfTwo(int value) { return value > 0 && (value & (value - 1)) == 0; }

int AutomaticFrameSize(int n, int width)
{
    const int size = n == 1 ? 512 : n <= 4 ? 256 : n <= 16 ? 128 : n <= 64 ? 64 : 32;
    return std::min(size, width);
}

// Level 0 to 127 of q in lo..hi; an empty range (lo = hi) or a quantity that is no number
// draws level 0.
int ScaledLevel(float q, float lo, float hi)
{
    const double t = static_cast<double>((q - lo) / (hi - lo)) * 127.0;
    if (!(t > 0.0)) return 0;
    return t >= 127.0 ? 127 : static_cast<int>(t);
}

// One frame's pair of images and what a pixel of it becomes.
struct FrameSource {
    const CITSHeaderType* set;
    int mode;
    int id, id2;
    int shrink;
    int size;
    CITSPixelDecoder a, b;
    float lo = FLT_MAX, hi = -FLT_MAX;
    float divider = 1.0f;

    double RawScaled(const CITSImageEntryType* e, uint16_t code) const
    {
        return (code - e->raw_low) * 65535.0 / (e->raw_high - e->raw_low);
    }
    // The frame quantity of modes 2 to 4 (mode 4 undivided).
    float Quantity(uint16_t pa, uint16_t pb) const
    {
        if (mode == 3) return static_cast<float>(RawScaled(a.entry, pa) - RawScaled(b.entry, pb));
        return a(pa) - b(pb);
    }
    // The first pass: the extremes over the pixels the frame shows.
    void FindRange()
    {
        for (int r = 0; r < size; ++r) {
            const uint16_t* ra = GetCITSImagePtr(set, id, static_cast<uint32_t>(r * shrink));
            const uint16_t* rb = GetCITSImagePtr(set, id2, static_cast<uint32_t>(r * shrink));
            if (!ra || !rb) continue;
            for (int c = 0; c < size; ++c) {
                const float q = Quantity(ra[c * shrink], rb[c * shrink]);
                lo = std::min(lo, q);
                hi = std::max(hi, q);
            }
        }
        if (mode == 4) {
            const float d = std::fabs(a.entry->voltage - b.entry->voltage);
            divider = d == 0.0f ? 1.0f : d;
            lo /= divider;
            hi /= divider;
        }
    }
    uint8_t Index(uint16_t pa, uint16_t pb) const
    {
        int level = 0;
        if (mode == 0)
            level = pa >> 9;
        else if (mode == 1)
            level = std::abs(pa - pb) >> 9;
        else if (mode == 4)
            level = ScaledLevel(Quantity(pa, pb) / divider, lo, hi);
        else
            level = ScaledLevel(Quantity(pa, pb), lo, hi);
        return static_cast<uint8_t>(kCITSLevelBase + level);
    }
};

// Step 10: a difference frame reads its image and the one before; image 0 moves up to 1.
void PairFrame(int ni, int mode, int* id, int* id2)
{
    *id2 = kCITSBlankFrame;
    if (*id < 0 || mode == 0) return;
    *id2 = *id - 1;
    if (*id2 < 0) {
        *id2 = *id;
        *id += 1;
        if (*id >= ni) *id = *id2 = kCITSBlankFrame;
    }
}

// The topography frame: row r * (nx / S) of the image's own pixels through the display table.
// Reduced, output pixel c takes source pixel c >> s: the left part of the row, not the whole
// row reduced.
void TopographyRow(const ImageHeaderType* image, const CITSSheetLayout& L, int r, uint8_t* out)
{
    const uint16_t* src = image->PixData + static_cast<size_t>(r) * L.shrink * image->nx;
    for (int c = 0; c < L.frameSize; ++c) out[c] = FSState.ColourMap[src[c >> L.shift] >> 8];
}

void DrawFrame(ImageHeaderType* image, const CITSSheetLayout& L, int x, int y, int id, int id2, uint8_t* row)
{
    const CITSHeaderType* set = image->CITSHeaderPtr;
    const int S = L.frameSize;
    if (id == kCITSTopographyFrame) {
        for (int r = 0; r < S; ++r) {
            TopographyRow(image, L, r, row);
            WriteFSLine(row, S, x, y + r);
        }
        return;
    }
    const int mode = set->disp.mode;
    const bool pair = mode != 0;
    if (id < 0 || mode > 4 || (pair && id2 < 0)) {
        for (int r = 0; r < S; ++r) FillFSLine(0, S, x, y + r);
        return;
    }
    FrameSource src{set, mode, id, id2, L.shrink, S, {CITSEntry(set, id), false}, {CITSEntry(set, pair ? id2 : id), false}};
    if (mode == 2 || mode == 4) {
        src.a = MakeCITSPixelDecoder(src.a.entry);
        src.b = MakeCITSPixelDecoder(src.b.entry);
    }
    if (mode >= 2) src.FindRange();
    for (int r = 0; r < S; ++r) {
        const uint16_t* ra = GetCITSImagePtr(set, id, static_cast<uint32_t>(r * L.shrink));
        const uint16_t* rb = pair ? GetCITSImagePtr(set, id2, static_cast<uint32_t>(r * L.shrink)) : ra;
        if (!ra || !rb) {
            FillFSLine(0, S, x, y + r);
            continue;
        }
        for (int c = 0; c < S; ++c) row[c] = src.Index(ra[c * L.shrink], rb[c * L.shrink]);
        WriteFSLine(row, S, x, y + r);
    }
}

// Step 14: full lines at the frame rows, single points at the frame columns.
void DrawGrid(const CITSSheetLayout& L, int X, int Y)
{
    const int S = L.frameSize;
    for (int r = 1; r < L.height; ++r) {
        if (r % S == 0) {
            FillFSLine(kCITSGridColour, L.width, X, Y + r);
            continue;
        }
        for (int c = S; c < L.width; c += S) PutFSPixel(kCITSGridColour, 0, X + c, Y + r);
    }
}

void InstalledMappingView(ImageHeaderType* image) { DisplayCITSDataSet1(image, 0); }

const bool g_installed = (InstallCITSDisplay(), true);

} // namespace

CITSPixelDecoder MakeCITSPixelDecoder(const CITSImageEntryType* entry)
{
    const DataTypeRow* row = FindDataType(entry->data_type);
    const bool decodes = row && row->decoding != PixelDecoding::None;
    // An image without decoding says so once for the frame.
    if (!decodes) (void)CITSData2Current(entry, 0);
    return CITSPixelDecoder{entry, decodes};
}

CITSSheetLayout CITSSheetLayoutOf(ImageHeaderType* image, int d64_128)
{
    CITSHeaderType* set = image->CITSHeaderPtr;
    CITSSheetLayout L{};
    if (set->disp.n > set->ni) set->disp.n = set->ni;
    if (d64_128 == 0) {
        L.frameSize = AutomaticFrameSize(set->disp.n, image->nx);
    } else if (d64_128 == 64 || d64_128 == 128) {
        L.frameSize = d64_128;
    } else {
        ProgramError("DisplayCITSDataSet1 d64_128=%d", d64_128);
        L.frameSize = std::min<int>(set->cx, 128);
    }
    if (set->disp.select == 4 && set->disp.n > 64) set->disp.n = 64;
    L.shrink = L.frameSize > 0 ? image->nx / L.frameSize : 0;
    if (!IsShrinkFactor(L.shrink) || (d64_128 != 0 && d64_128 != 64 && d64_128 != 128)) {
        ProgramError("DisplayCITSDataSet1  sizex=%d  d64_128=%d", static_cast<int>(image->nx), d64_128);
        return L;
    }
    L.shift = Log2(L.shrink);
    const int across = kFrameWidth / L.frameSize;
    L.frames = std::min(across * across, static_cast<int>(set->disp.n));
    if (!IsPowerOfTwo(L.frames)) {
        ProgramError("Invalid number of images to display");
        return L;
    }
    L.height = ((L.frames - 1) / across + 1) * L.frameSize;
    L.width = L.frames < across ? L.frames * L.frameSize : kFrameWidth;
    L.ok = true;
    return L;
}

void DisplayCITSDataSet1(ImageHeaderType* image, int d64_128)
{
    SheetScope scope;
    if (!scope.Allocate()) {
        Error(ERR_NO_MEMORY);
        return;
    }
    if (!image || !CheckHeaderIsImageType(image) || !image->PixData) {
        Error(ERR_NO_IMAGES);
        return;
    }
    if (!image->CITSHeaderPtr) {
        Error(ERR_NOT_MAPPING);
        return;
    }
    if (!IsSquareMappingImage(image)) {
        ProgramError("CITS Image size incorrect");
        return;
    }
    const CITSSheetLayout L = CITSSheetLayoutOf(image, d64_128);
    if (!L.ok) return;
    CITSHeaderType* set = image->CITSHeaderPtr;

    PrepareImageDisplay(L.width, L.height, 0, image);
    const int X = FSState.CursorX, Y = FSState.CursorY;
    BeginBatch();
    const CITSLabelStyle style = BeginCITSLabels(image, set->disp.flags);
    for (int f = 0; f < L.frames; ++f) {
        const int S = L.frameSize;
        const int x = X + (f * S) % kFrameWidth;
        const int y = Y + ((f * S) / kFrameWidth) * S;
        int id = CITSDispImageNo(f, set->ni, &set->disp);
        int id2 = kCITSBlankFrame;
        PairFrame(set->ni, set->disp.mode, &id, &id2);
        DrawFrame(image, L, x, y, id, id2, scope.Row());
        if (set->disp.flags & 2) DrawCITSFrameLabel(style, image, x, y, S, id, id2, d64_128);
        if (f == 0) DrawScaleBars(x, y, x + S - 1, y + S - 1, image);
    }
    EndCITSLabels(style);
    DrawGrid(L, X, Y);
    FinishImageDisplay(L.width, L.height);
    EndBatchAndShow(X, Y, X + L.width - 1, Y + L.height - 1);
    SetFSContents(image, 0);
    ShowParameterText(image);
    FSState.DisplayBusy = (L.frames == 1 && (set->disp.flags & 1)) ? 1 : 0;
}

void InstallCITSDisplay()
{
    (void)g_installed;
    SetMappingView(InstalledMappingView);
}
