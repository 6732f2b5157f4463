// The measuring cursor over a spectrum plot, the group plot, and the value of a curve at a
// plot position.
#include "spectro/spectrum_tools.h"
#include "display/frame_commands.h"
#include "display/plot.h"
#include "display/plot_spectrum.h"
#include "display/selection.h"
#include "display/vfs.h"
#include "host/ap_callbacks.h"
#include "host/errors.h"
#include "spectro/spectro.h"
#include "store/data_list.h"
#include "store/units.h"

#include <cstdio>
#include <vector>

namespace {

constexpr char kMeasureTool[] = "Measure";
constexpr char kGroupTool[] = "Group Plot";
constexpr int kMeasureSelect = 13;
constexpr int kMeasureCursor = 1;
constexpr int kMeasureArea = 511;
constexpr int kGroupMode = 1;
constexpr int kTextColour = 25;
constexpr int kTextLeft = 516;
constexpr int kTextTop = 20;
constexpr int kTextStep = 20;

struct MeasureState {
    uint32_t dataId = 0;
    bool haveReference = false;
    float refX = 0, refY = 0;
    int flag = 0;
};
MeasureState g_measure;
int g_groupStore = -1;
int g_groupMode = 0;

ImageHeaderType* MeasuredItem() { return FindItemById(g_measure.dataId); }

// The cursor's values and distances in the strip right of the plot.
void ShowMeasureText(const ImageHeaderType* item, float x, float y)
{
    const char* xunit = XUnit(item->ImType1, item);
    const char* yunit = GetImageUnitStr(item, 0, 0);
    const char* prompt = g_measure.flag ? "Press right mouse button to Switch Plot / Exit" : "Press right mouse button to Exit";
    char lines[6][96];
    std::snprintf(lines[0], sizeof lines[0], "X Values / %s:", xunit);
    std::snprintf(lines[1], sizeof lines[1], "%g", static_cast<double>(x));
    std::snprintf(lines[2], sizeof lines[2], "Y Values / %s:", yunit);
    std::snprintf(lines[3], sizeof lines[3], "%g", static_cast<double>(y));
    int count = 4;
    char distance[4][96];
    if (g_measure.haveReference) {
        std::snprintf(distance[0], sizeof distance[0], "X Distance / %s:", xunit);
        std::snprintf(distance[1], sizeof distance[1], "%g", static_cast<double>(x - g_measure.refX));
        std::snprintf(distance[2], sizeof distance[2], "Y Distance / %s:", yunit);
        std::snprintf(distance[3], sizeof distance[3], "%g", static_cast<double>(y - g_measure.refY));
    }
    BeginBatch();
    FSSetClip(0, 0, kToolWindowWidth - 1, kToolWindowHeight - 1);
    FSBox(VFS_ITEM_FILL, kTextLeft, 0, kToolWindowWidth - 1, kToolWindowHeight - 1);
    FSSetTextColour(kTextColour);
    FSSetTextAlign(TextAlignWord(0, 2, 0));
    int row = kTextTop;
    for (int i = 0; i < count; ++i, row += kTextStep) FSTextOut(kTextLeft, row, lines[i]);
    if (g_measure.haveReference)
        for (const auto& line : distance) FSTextOut(kTextLeft, row, line), row += kTextStep;
    FSTextOut(kTextLeft, kToolWindowHeight - kTextStep, prompt);
    EndBatchAndShow(kTextLeft, 0, kToolWindowWidth - 1, kToolWindowHeight - 1);
}

int MeasureEvent(int buttons, int x, int /*y*/, int32_t /*hndl*/)
{
    if (buttons & kButtonRight) return 1;
    const ImageHeaderType* item = MeasuredItem();
    if (!item) return 1;
    const int n = item->nx;
    std::vector<float> px, py;
    try {
        px.resize(static_cast<size_t>(n));
        py.resize(static_cast<size_t>(n));
    } catch (const std::bad_alloc&) {
        Error(ERR_NO_MEMORY);
        return 1;
    }
    if (!SpectrumPlotPoints(item, px.data(), py.data())) return 1;
    const float wx = PixelToWorldX(x - CurrentPlotArea().Left);
    const float wy = SpectrumValueAt(px.data(), py.data(), n, wx);
    if (buttons & kButtonLeft) {
        g_measure.haveReference = true;
        g_measure.refX = wx;
        g_measure.refY = wy;
    }
    ShowMeasureText(item, wx, wy);
    return 0;
}

} // namespace

float SpectrumValueAt(const float* x, const float* y, int n, float plotX)
{
    if (!x || !y || n <= 0) return 0.0f;
    int i = 0;
    while (i < n && x[i] < plotX) ++i;
    if (i >= n) return y[n - 1];
    if (i == 0) return y[0];
    if (x[i] == x[i - 1]) return (y[i] + y[i - 1]) / 2.0f;
    const float f = (plotX - x[i - 1]) / (x[i] - x[i - 1]);
    return y[i - 1] + (y[i] - y[i - 1]) * f;
}

void SpecMeasure(int flag)
{
    ImageHeaderType* item = CurrentSpectrum();
    if (!item) return;
    char title[96];
    ToolWindowTitle(kMeasureTool, item, title, sizeof title);
    Ap.ap_OpenPlotWindow(kToolWindowWidth, kToolWindowHeight, title);
    ClearFrameStore();
    DisplaySpectrum(item);
    g_measure = MeasureState{};
    g_measure.dataId = item->DataId;
    g_measure.flag = flag;
    SelectInRectangle(kMeasureSelect, 1, 0, 0, kMeasureArea, kMeasureArea, kMeasureCursor, MeasureEvent);
}

void GroupSpecPlot()
{
    Ap.ap_OpenPlotWindow(kToolWindowWidth, kToolWindowHeight, kGroupTool);
    g_groupStore = CurrentVFS ? CurrentVFS->VFSNo : -1;
    g_groupMode = kGroupMode;
}

int GroupPlotStore() { return g_groupStore; }
int GroupPlotMode() { return g_groupMode; }

void ResetSpecToolsState()
{
    g_measure = MeasureState{};
    g_groupStore = -1;
    g_groupMode = 0;
}
