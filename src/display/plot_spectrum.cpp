// The default plot of one spectrum: the frame of axes and titles placed like an image, and the
// curve or the bars of the data.
#include "display/plot_spectrum.h"
#include "display/contents_grid.h"
#include "display/display_param.h"
#include "display/fonts.h"
#include "display/placement.h"
#include "display/plot.h"
#include "display/plot_buffer.h"
#include "display/vfs.h"
#include "host/errors.h"
#include "host/prompts.h"
#include "host/trace.h"
#include "store/data_list.h"
#include "store/image_header.h"
#include "store/units.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <cstring>

namespace {

constexpr int kPlotArea = 1;
constexpr int kMinPlotSize = 16;
constexpr int kTitleBytes = 80;
constexpr float kEdgeFraction = 0.05f;
constexpr int kPolarTextColour = 26;

int PlotWidthPixels() { return std::clamp(PlotParam.PlotWidth, kMinPlotSize, kFrameWidth); }
int PlotHeightPixels() { return std::clamp(PlotParam.PlotHeight, kMinPlotSize, kFrameHeight); }

bool IsSpectrum(const ImageHeaderType* item)
{
    return item && item->PixData && item->nx > 0 && item->ImType1 != 1 && CheckHeaderIsSpecType(item);
}

bool Valid(float lo, float hi) { return std::isfinite(lo) && std::isfinite(hi) && lo <= hi; }

// Whether v lies within 5% of the range from lo.
bool NearLow(float v, float lo, float hi) { return std::fabs(static_cast<double>(v) - lo) <= kEdgeFraction * std::fabs(static_cast<double>(hi) - lo); }

// Margins that leave room for the numbers where the axes stand at an edge.
void FitMargins(const PlotAreaType& a)
{
    const float s = static_cast<float>(std::abs(static_cast<int64_t>(NamedFont(FONT_PLOT_TITLE3).Font.lfHeight))) / 90.0f;
    float left = 0.05f, right = 0.05f, bottom = 0.07f, top = 0.07f;
    if (NearLow(a.OriginX, a.WorldX0, a.WorldX1))
        left = s * 0.13f;
    else if (NearLow(a.OriginX, a.WorldX1, a.WorldX0))
        right = s * 0.13f;
    if (NearLow(a.OriginY, a.WorldY0, a.WorldY1))
        bottom = 0.13f;
    else if (NearLow(a.OriginY, a.WorldY1, a.WorldY0))
        top = 0.13f;
    SetPlotMargins(kPlotArea, std::min(left, 0.45f), top, std::min(right, 0.45f), bottom);
}

// Plots prepared points with the settings in force: log scale, limits, frame, curve. The data
// arrays are scaled in place on a log axis.
void PlotPoints(ImageHeaderType* item, float* x, float* y, int n, int asBars, int width, int colour,
                const char* xtitle, const char* title, int polar)
{
    float xmin, xmax, ymin, ymax;
    GetPlotExtremes(x, n, &xmin, &xmax);
    GetPlotExtremes(y, n, &ymin, &ymax);
    if (PlotParam.LogAxisX || PlotParam.LogAxisY)
        ApplyLogScale(x, y, n, PlotParam.LogAxisX, PlotParam.LogAxisY, &xmin, &xmax, &ymin, &ymax);
    else
        LogScaleX = LogScaleY = 1.0f;
    if (!Valid(xmin, xmax) || !(PlotParam.AutoAxes & 1)) xmin = PlotParam.MinX, xmax = PlotParam.MaxX;
    if (!Valid(ymin, ymax) || !(PlotParam.AutoAxes & 2)) ymin = PlotParam.MinY, ymax = PlotParam.MaxY;
    DrawPlotFrame(xmin, xmax, ymin, ymax, xtitle, title, polar);
    PlotSpectrum(item, x, y, n, asBars, width, colour);
}

} // namespace

bool SpectrumPlotPoints(const ImageHeaderType* item, float* x, float* y)
{
    if (!IsSpectrum(item) || !x || !y) return false;
    const int n = item->nx;
    const float* samples = reinterpret_cast<const float*>(item->PixData);
    const bool histogram = item->ImType1 == 4;
    for (int i = 0; i < n; ++i) {
        const float first = samples[i], second = samples[n + i];
        if (histogram) {
            x[i] = first;
            y[i] = second;
        } else {
            x[i] = second;
            y[i] = static_cast<float>(ImageDataValue2Calibrated(item, first, 0));
        }
    }
    return true;
}

void CheckLogAxes(const ImageHeaderType* item, int start, int n, uint16_t box)
{
    if (PlotParam.LogAxisX || PlotParam.LogAxisY) {
        const int count = IsSpectrum(item) ? item->nx : 0;
        PlotBuffer x(static_cast<size_t>(count)), y(static_cast<size_t>(count));
        if (!x.Ok() || !y.Ok()) {
            PlotParam.LogAxisX = PlotParam.LogAxisY = 0;
        } else if (SpectrumPlotPoints(item, x.Data(), y.Data())) {
            const int from = std::clamp(start, 0, count), to = static_cast<int>(std::clamp<int64_t>(int64_t{from} + n, from, count));
            float xmin, xmax, ymin, ymax;
            GetPlotExtremes(x.Data() + from, to - from, &xmin, &xmax);
            GetPlotExtremes(y.Data() + from, to - from, &ymin, &ymax);
            if (xmin <= 0) PlotParam.LogAxisX = 0;
            if (ymin <= 0) PlotParam.LogAxisY = 0;
        }
    }
    if (PlotParam.LogAxisX) PlotParam.AutoAxes |= 1;
    if (PlotParam.LogAxisY) PlotParam.AutoAxes |= 2;
    PlotParam.BoxAxes = PlotParam.LogAxisX || PlotParam.LogAxisY ? 1 : box;
}

void DrawPlotFrame(float xmin, float xmax, float ymin, float ymax, const char* xtitle, const char* title, int polar)
{
    BeginBatch();
    CVfs* vfs = CurrentVfs();
    if (vfs) vfs->PrepareForDrawing(nullptr);
    const int32_t savedSize = FSState.ImageDisplaySize, savedOverlay = FSState.TextOverlayOn;
    FSState.ImageDisplaySize = 0;
    FSState.TextOverlayOn = 0;
    FSSetTextColour(0);
    FSSetClip(0, 0, kFrameWidth - 1, kFrameHeight - 1);
    FSSetTextAlign(TextAlignWord(0, 2, 0));
    FSSetTextFont(NamedFont(FONT_GENERAL));

    const int width = PlotWidthPixels(), height = PlotHeightPixels();
    PrepareImageDisplay(width, height, 1, nullptr);
    const int x = FSState.CursorX, y = FSState.CursorY;
    SetPlotArea(x, y, x - 1 + width, y - 1 + height, kPlotArea);
    PlotLimits limits{std::min(xmin, xmax), std::max(xmin, xmax), PlotParam.TickStepX,
                      std::min(ymin, ymax), std::max(ymin, ymax), PlotParam.TickStepY};
    SetLogAxes(PlotParam.LogAxisX, PlotParam.LogAxisY);
    const int autoFlags = PlotParam.AutoAxes & 3;
    if (!polar) {
        SetPlotMargins(kPlotArea, 0.1f, 0.1f, 0.1f, 0.1f);
        PlotLimits trial = limits;
        DrawAxes(PlotParam.BoxAxes, 0, 0, kPlotGridColour, autoFlags, &trial, nullptr, 0);
        FitMargins(CurrentPlotArea());
    } else {
        SetPlotMargins(kPlotArea, 0.2f, 0.12f, 0.2f, 0.12f);
    }
    SelectPlotArea(kPlotArea);
    FSSetColour(kPlotAxisColour);
    const FontRecType numbers = NamedFont(FONT_PLOT_TITLE3);
    DrawAxes(PlotParam.BoxAxes, PlotParam.GridX, PlotParam.GridY, kPlotGridColour, autoFlags, &limits, &numbers, 1);

    FSSetTextColour(kPlotXTitleColour);
    FSSetTextFont(NamedFont(FONT_PLOT_TITLE2));
    PlotTitleBottom(xtitle);
    FSSetTextColour(kPlotTitleColour);
    FSSetTextFont(NamedFont(FONT_PLOT_TITLE1));
    PlotTitleTop(title);
    FSSetTextFont(NamedFont(FONT_GENERAL));

    const int32_t savedBars = Display.ScaleBarMode;
    Display.ScaleBarMode = SCALE_BAR_NONE;
    FinishImageDisplay(width, height);
    Display.ScaleBarMode = savedBars;
    FSState.ImageDisplaySize = savedSize;
    FSState.TextOverlayOn = savedOverlay;
    FSState.DisplayBusy = 0;

    if (polar) {
        const PlotAreaType& a = CurrentPlotArea();
        FSSetTextColour(kPolarTextColour);
        FSSetTextAlign(TextAlignWord(0, 2, 0));
        const int tx = x + static_cast<int>(width * 0.8f) + 4 - a.Left;
        FSTextOut(tx, y + static_cast<int>(height * 0.12f) - a.Top, "-180[deg]");
        FSTextOut(tx, y + static_cast<int>(height * 0.88f) - a.Top, "   0[deg]");
    }
    if (vfs) vfs->FinishDrawing();
    EndBatchAndShow(x, y, x + width - 1, y + height - 1);
}

void PlotSpectrum(ImageHeaderType* item, const float* x, const float* y, int n, int asBars, int width, int colour)
{
    BeginBatch();
    CVfs* vfs = CurrentVfs();
    if (vfs) vfs->PrepareForDrawing(nullptr);
    if (!NoUserInterface) ShowParameterText(item);
    if (!asBars)
        PlotCurve(x, y, n, colour, kPlotSecondColour, width, item && item->ImType1 == 5, IsLapSpec(item));
    else
        PlotBars(x, y, n, static_cast<float>(width), colour, 0);
    if (vfs) vfs->FinishDrawing();
    const PlotAreaType& a = CurrentPlotArea();
    EndBatchAndShow(a.Left, a.Top, a.Right, a.Bottom);
}

void DisplaySpectrum(ImageHeaderType* item)
{
    if (!IsSpectrum(item)) {
        Error(ERR_NO_SPECTRA);
        return;
    }
    const int n = item->nx;
    PlotBuffer x(static_cast<size_t>(n)), y(static_cast<size_t>(n));
    if (!x.Ok() || !y.Ok()) return;
    SpectrumPlotPoints(item, x.Data(), y.Data());
    const SavedPlotSettings saved = SavePlotSettings();
    CheckLogAxes(item, 0, n, saved.BoxAxes);
    char xtitle[kTitleBytes], title[kTitleBytes];
    XTitle(item->ImType1, item, xtitle, sizeof xtitle);
    SpecTitle(item, title, sizeof title);
    const bool bars = item->ImType1 == 4;
    PlotPoints(item, x.Data(), y.Data(), n, bars, bars ? 0 : 1, kPlotCurveColour, xtitle, title, 0);
    SetFSContents(item, 0);
    RestorePlotSettings(saved);
}

void DisplaySpecWithSettings(ImageHeaderType* item, const float* x, const float* y, int n, int logX, int logY,
                             int mode, int width, int colour, const char* xtitle, const char* title, int polar)
{
    if (!x || !y || n <= 0) {
        Error(ERR_NO_SPECTRA);
        return;
    }
    PlotBuffer px(static_cast<size_t>(n)), py(static_cast<size_t>(n));
    if (!px.Ok() || !py.Ok()) return;
    std::memcpy(px.Data(), x, sizeof(float) * static_cast<size_t>(n));
    std::memcpy(py.Data(), y, sizeof(float) * static_cast<size_t>(n));
    const SavedPlotSettings saved = SavePlotSettings();
    float lo, hi;
    GetPlotExtremes(px.Data(), n, &lo, &hi);
    PlotParam.LogAxisX = logX && lo > 0 ? 1 : 0;
    GetPlotExtremes(py.Data(), n, &lo, &hi);
    PlotParam.LogAxisY = logY && lo > 0 ? 1 : 0;
    CheckLogAxes(nullptr, 0, 0, saved.BoxAxes);
    PlotPoints(item, px.Data(), py.Data(), n, mode == 1, width, colour, xtitle, title, polar);
    if (item) SetFSContents(item, 0);
    RestorePlotSettings(saved);
}

void CheckLogAxesCommand(int checkX, int checkY)
{
    ImageHeaderType* item = RequireCurrentSpectrum();
    if (!item) return;
    if (!IsSpectrum(item)) {
        Error(ERR_NO_SPECTRA);
        return;
    }
    const SavedPlotSettings saved = SavePlotSettings();
    CheckLogAxes(item, 0, item->nx, saved.BoxAxes);
    const bool lostX = checkX && saved.LogAxisX && !PlotParam.LogAxisX;
    const bool lostY = checkY && saved.LogAxisY && !PlotParam.LogAxisY;
    RestorePlotSettings(saved);
    if (lostX && lostY)
        ShowInfo("Cannot use logarithmic scale for the axis X and Y, because there is value of 0 and under.", nullptr,
                 true);
    else if (lostX)
        ShowInfo("Cannot use logarithmic scale for the axis X, because there is value of 0 and under.", nullptr, true);
    else if (lostY)
        ShowInfo("Cannot use logarithmic scale for the axis Y, because there is value of 0 and under.", nullptr, true);
}
