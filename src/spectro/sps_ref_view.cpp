#include "spectro/sps_ref_view.h"
#include "display/contents_grid.h"
#include "display/frame_commands.h"
#include "display/placement.h"
#include "display/plot_spectrum.h"
#include "display/vfs.h"
#include "host/trace.h"
#include "spectro/spectro.h"
#include "store/data_list.h"
#include "store/image_header.h"

#include <cmath>
#include <cstdio>
#include <vector>

namespace {

constexpr int kViewDisplaySize = 256;
constexpr int kViewPlotWidth = 512;
constexpr int kViewPlotHeight = 256;
constexpr int kMarkScale = 1024;
// Below this revision a spectrum was taken at a fixed point.
constexpr int kRouteRevision = 510;
constexpr int kMarkColour = 22;
constexpr int kMarkHalf = 2;

struct NotedView {
    int store = -1;
    int left = 0, top = 0, right = -1, bottom = -1;
    int nx = 0, ny = 0;
};
NotedView g_view;

bool Marked(const SPSRefListType& list, int i, int single)
{
    const ImageHeaderType* s = list.spectra[i];
    if (s->RevNo < kRouteRevision) return (list.checked && list.checked[i]) || i == list.selected;
    return !single || i == list.selected;
}

void MarkSpectrum(const ImageHeaderType* s, int number)
{
    const int w = g_view.right - g_view.left + 1, h = g_view.bottom - g_view.top + 1;
    const int x = SPSMarkPosition(s->STSPosX, g_view.nx, g_view.left, w);
    const int y = SPSMarkPosition(s->STSPosY, g_view.ny, g_view.top, h);
    FSSetColour(kMarkColour);
    FSSetTextColour(kMarkColour);
    char text[16];
    std::snprintf(text, sizeof text, "%d", number);
    if (s->RevNo >= kRouteRevision && !(s->RouteEndX == -1 && s->RouteEndY == -1)) {
        FSMoveTo(x, y);
        FSLineTo(SPSMarkPosition(s->RouteEndX, g_view.nx, g_view.left, w),
                 SPSMarkPosition(s->RouteEndY, g_view.ny, g_view.top, h), 1);
    } else {
        FSBox(VFS_ITEM_RECT, x - kMarkHalf, y - kMarkHalf, x + kMarkHalf, y + kMarkHalf);
    }
    FSTextOut(x + 2 * kMarkHalf, y, text);
}

} // namespace

int SPSMarkPosition(int p, int size, int origin, int extent)
{
    if (size <= 0) return origin;
    const int scaled = (kMarkScale / size) * p;
    return origin + static_cast<int>(static_cast<int64_t>(scaled) * extent / kMarkScale);
}

int NearestIndex(const float* values, int n, float v)
{
    if (!values || n <= 0) return -1;
    for (int i = 0; i < n; ++i)
        if (values[i] == v) return i;
    for (int i = 0; i + 1 < n; ++i)
        if (values[i] < v && v < values[i + 1]) return v - values[i] <= values[i + 1] - v ? i : i + 1;
    return std::fabs(values[0] - v) <= std::fabs(values[n - 1] - v) ? 0 : n - 1;
}

void ShowSPSRefSpec(const SPSRefListType& list, int ini, int fin, int single)
{
    TraceEntry("ShowSPSRefSpec ini=%d fin=%d", ini, fin);
    const int32_t savedSize = FSState.ImageDisplaySize;
    const int32_t savedWidth = PlotParam.PlotWidth, savedHeight = PlotParam.PlotHeight;
    FSState.ImageDisplaySize = kViewDisplaySize;
    PlotParam.PlotWidth = kViewPlotWidth;
    PlotParam.PlotHeight = kViewPlotHeight;
    ImageHeaderType* image = CurrentItem;
    if (ini && !fin) {
        ClearFrameStore();
        if (image) {
            DisplayImage(image, 0, 0);
            g_view = NotedView{CurrentVFS ? CurrentVFS->VFSNo : -1, FSState.ImageLeft, FSState.ImageTop,
                               FSState.ImageRight, FSState.ImageBottom, image->nx, image->ny};
        }
    } else if (!ini && !fin && image && list.spectra && list.count > 0) {
        if (g_view.store >= 0) VFS_set_current_vfs(g_view.store);
        FSState.CursorX = FSState.CursorY = 0;
        DisplayImage(image, 0, 0);
        if (list.selected >= 0 && list.selected < list.count && list.spectra[list.selected]) {
            DisplaySpectrum(list.spectra[list.selected]);
            SetFSContents(nullptr, 0);
        }
        BeginBatch();
        FSSetClip(0, 0, kFrameWidth - 1, kFrameHeight - 1);
        for (int i = 0; i < list.count; ++i)
            if (list.spectra[i] && Marked(list, i, single)) MarkSpectrum(list.spectra[i], i + 1);
        EndBatchAndShow(g_view.left, g_view.top, g_view.right, g_view.bottom);
    }
    FSState.ImageDisplaySize = savedSize;
    PlotParam.PlotWidth = savedWidth;
    PlotParam.PlotHeight = savedHeight;
}

void ShowSPSSpectrum()
{
    ImageHeaderType* image = CurrentItem;
    if (!image || image->ImType1 != IMTYPE_IMAGE || !image->SPSRefDataPtr) return;
    std::vector<ImageHeaderType*> chain;
    for (ImageHeaderType* s = image->SPSRefDataPtr; s && chain.size() < 0x7FFF; s = s->SPSRefDataPtr) chain.push_back(s);
    const SPSRefListType list{chain.data(), static_cast<int>(chain.size()), 0, nullptr};
    ShowSPSRefSpec(list, 1, 0, 0);
    ShowSPSRefSpec(list, 0, 0, 0);
}
