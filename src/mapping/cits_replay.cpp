// The rapid replay: a slider runs through the images of a set, each drawn on the colour scale of
// the whole set (the smallest z_low to the largest z_high), so that the images compare.
//
// Per image an offset and a slope are found once; per pixel it is one multiplication, an
// addition and a shift.
#include "display/contents_grid.h"
#include "display/placement.h"
#include "display/scroll_bars.h"
#include "display/vfs.h"
#include "host/error_numbers.h"
#include "host/errors.h"
#include "host/log.h"
#include "mapping/cits_display.h"
#include "store/memory.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstring>

namespace {

constexpr int kOutlineColour = 17;

struct ReplayState {
    bool active = false;
    bool nearest = false;
    uint8_t* row = nullptr;
    int last = -1;
    int x = 0, y = 0;
    float low = 0.0f, high = 0.0f;
};
ReplayState g_replay;

int Sign(float v) { return v > 0.0f ? 1 : v < 0.0f ? -1 : 0; }

// A float into an int without leaving the int range; no number gives 0.
int ToInt(double v)
{
    if (!(v == v)) return 0;
    return static_cast<int>(std::clamp(v, -2147483648.0, 2147483647.0));
}

void ReleaseReplay()
{
    efree(g_replay.row);
    g_replay.row = nullptr;
    g_replay.active = false;
}

void Outline(int cx, int cy)
{
    const int X = g_replay.x, Y = g_replay.y;
    FillFSLine(kOutlineColour, cx, X, Y);
    FillFSLine(kOutlineColour, cx, X, Y + cy - 1);
    for (int r = 1; r < cy - 1; ++r) {
        PutFSPixel(kOutlineColour, 0, X, Y + r);
        PutFSPixel(kOutlineColour, 0, X + cx - 1, Y + r);
    }
}

void DrawReplayImage(ImageHeaderType* image, int index)
{
    CITSHeaderType* set = image->CITSHeaderPtr;
    const int cx = set->cx, cy = set->cy;
    float low = 0.0f, high = 0.0f;
    GetCITSDataRange(set, &low, &high);
    const CITSImageEntryType* e = CITSEntry(set, index);
    const float span = high - low;
    const int offset = ToInt(static_cast<double>((e->z_low - low) / span) * 65535.0);
    const float slope = (e->z_high - e->z_low) / span;
    // When every product of a code and the slope, offset added, stays well inside the int range
    // the plain conversion serves; a set with extreme or broken ranges takes the guarded one.
    const double reach = std::fabs(static_cast<double>(slope)) * 65535.0 + std::fabs(static_cast<double>(offset));
    const bool plain = reach < 1073741824.0;
    uint8_t* row = g_replay.row;
    BeginBatch();
    for (int r = 1; r <= cy - 2; ++r) {
        const uint16_t* src = GetCITSImagePtr(set, index, static_cast<uint32_t>(r));
        if (!src) continue;
        if (plain) {
            for (int x = 1; x <= cx - 3; ++x)
                row[x] = static_cast<uint8_t>(((static_cast<int>(src[x] * slope) + offset) >> 9) + kCITSLevelBase);
        } else {
            for (int x = 1; x <= cx - 3; ++x)
                row[x] = static_cast<uint8_t>(((ToInt(src[x] * slope) + offset) >> 9) + kCITSLevelBase);
        }
        WriteFSLine(row, cx - 2, g_replay.x + 1, g_replay.y + r);
    }
    EndBatchAndShow(g_replay.x, g_replay.y, g_replay.x + cx - 1, g_replay.y + cy - 1);
    const int16_t saved = set->ci;
    set->ci = static_cast<int16_t>(index);
    CITSImageText(image);
    set->ci = saved;
}

int ReplayMove(int state, const float* values, int count)
{
    DoCITSReplay(count > 0 ? values[0] : 0.0f, state != 0);
    return 0;
}

} // namespace

bool CITSReplayActive() { return g_replay.active; }

bool CITSSweepMonotonic(const CITSHeaderType* set)
{
    if (set->ni < 2) return true;
    const int first = Sign(CITSEntry(set, 1)->voltage - CITSEntry(set, 0)->voltage);
    for (int k = 2; k < set->ni; ++k)
        if (Sign(CITSEntry(set, k)->voltage - CITSEntry(set, k - 1)->voltage) != first) return false;
    return true;
}

void CITSReplaySlider(const ImageHeaderType* image, CITSReplaySliderRecord* record, bool* nearest)
{
    const CITSHeaderType* set = image->CITSHeaderPtr;
    std::memset(record, 0, sizeof *record);
    wint_ScrollBarParamType* bar = &record->bar;
    std::snprintf(bar->Title, sizeof bar->Title, "SPS Mapping Rapid Replay");
    bar->Flag = 1;
    bar->PosX = bar->PosY = -1;
    if (!CITSSweepMonotonic(set)) {
        bar->Min = 1.0f;
        bar->Max = static_cast<float>(set->ni);
        bar->Value = static_cast<float>(set->ni / 2);
        std::snprintf(bar->MinText, sizeof bar->MinText, "%d", 1);
        std::snprintf(bar->MaxText, sizeof bar->MaxText, "%d", static_cast<int>(set->ni));
        bar->SmallStep = 1.0f;
        bar->LargeStep = 10.0f;
        record->decimals = 0;
        *nearest = false;
        return;
    }
    float low = 0.0f, high = 0.0f;
    GetCITSVoltageRange(set, &low, &high);
    const float larger = std::max(std::fabs(low), std::fabs(high));
    const int decimals = larger >= 100.0f ? 1 : larger >= 10.0f ? 2 : 3;
    bar->Min = low;
    bar->Max = high;
    bar->Value = (low + high) / 2.0f;
    std::snprintf(bar->MinText, sizeof bar->MinText, "%.*f", decimals, static_cast<double>(low));
    std::snprintf(bar->MaxText, sizeof bar->MaxText, "%.*f", decimals, static_cast<double>(high));
    bar->SmallStep = (high - low) / static_cast<float>(set->ni) / 1.05f;
    bar->LargeStep = bar->SmallStep * 4.0f;
    record->decimals = decimals;
    *nearest = true;
}

void CITSRapidReplay()
{
    const ImageHeaderType* image = RequireCITSImage();
    if (!image) return;
    CITSReplaySliderRecord record;
    CITSReplaySlider(image, &record, &g_replay.nearest);
    SetSliderCommand(kCITSReplaySliderId, ReplayMove);
    OpenScrollBar1(&record.bar, kCITSReplaySliderId);
}

int CITSReplayIndex(float value, const CITSHeaderType* set, bool nearest)
{
    if (nearest) return GetNearestCITSVoltage(value, set);
    const int k = ToInt(static_cast<double>(value) + 0.5);
    return k <= 1 ? 0 : std::min(k - 1, set->ni - 1);
}

void DoCITSReplay(float value, int finish)
{
    ImageHeaderType* image = RequireCITSImage();
    if (!image) {
        ReleaseReplay();
        return;
    }
    CITSHeaderType* set = image->CITSHeaderPtr;
    if (!g_replay.active) {
        g_replay.row = static_cast<uint8_t*>(ecalloc(static_cast<size_t>(std::max<int>(set->cx, 1)), 1));
        if (!g_replay.row) {
            Error(ERR_NO_MEMORY);
            return;
        }
        g_replay.active = true;
        FSState.DisplayBusy = 1;
        GetCITSVoltageRange(set, &g_replay.low, &g_replay.high);
        g_replay.last = -1;
        PrepareImageDisplay(set->cx, set->cy, 0, nullptr);
        g_replay.x = FSState.CursorX;
        g_replay.y = FSState.CursorY;
        BeginBatch();
        Outline(set->cx, set->cy);
        EndBatchAndShow(g_replay.x, g_replay.y, g_replay.x + set->cx - 1, g_replay.y + set->cy - 1);
    }
    const int index = CITSReplayIndex(value, set, g_replay.nearest);
    if (index != g_replay.last) {
        DrawReplayImage(image, index);
        g_replay.last = index;
    }
    if (finish) {
        FinishImageDisplay(set->cx, set->cy);
        SetFSContents(image, 0);
        FSState.DisplayBusy = 0;
        Log("Replay '%.40s'.\n", image->Title);
        ReleaseReplay();
    }
}

void ResetCITSReplayState()
{
    ReleaseReplay();
    g_replay = ReplayState{};
}
