// The interactive polynomial fit of a spectrum.
#include "spectro/spectrum_tools.h"
#include "display/frame_commands.h"
#include "display/plot.h"
#include "display/plot_buffer.h"
#include "display/plot_spectrum.h"
#include "display/vfs.h"
#include "host/ap_callbacks.h"
#include "host/entry.h"
#include "host/errors.h"
#include "host/log.h"
#include "spectro/spectro.h"
#include "store/memory.h"
#include "store/units.h"

#include <algorithm>
#include <cstdio>
#include <cstring>

namespace {

constexpr char kFitTool[] = "Fit Polynomial";
constexpr int kDefaultDegree = 3;
constexpr int kDegreeChars = 2;
constexpr int kFitColour = 5;
constexpr int kToolPlotSize = 512;
constexpr int kTextTop = 20;
constexpr int kTextStep = 20;
constexpr int kTextGap = 4;

// The fitted values over the plot, in the plot's log scaling.
void OverlayFit(const SpecFitWork& work, int n)
{
    PlotBuffer px(static_cast<size_t>(n)), py(static_cast<size_t>(n));
    if (!px.Ok() || !py.Ok()) return;
    for (int i = 0; i < n; ++i) {
        px.Data()[i] = static_cast<float>(work.x[i]) * LogScaleX;
        py.Data()[i] = static_cast<float>(work.fitted[i]) * LogScaleY;
    }
    BeginBatch();
    CVfs* vfs = CurrentVfs();
    if (vfs) vfs->PrepareForDrawing(nullptr);
    PlotCurve(px.Data(), py.Data(), n, kFitColour, kFitColour, 1, 0, 0);
    if (vfs) vfs->FinishDrawing();
    const PlotAreaType& a = CurrentPlotArea();
    EndBatchAndShow(a.Left, a.Top, a.Right, a.Bottom);
}

// The statistics right of the plot, one line each 20 pixels from the top.
void WriteFitText(const PolyRegressionStats& s, int degree)
{
    const PlotAreaType& a = CurrentPlotArea();
    FSSetClip(0, 0, kToolWindowWidth - 1, kToolWindowHeight - 1);
    FSSetTextColour(kFitColour);
    FSSetTextAlign(TextAlignWord(0, 2, 0));
    const int x = a.Right + kTextGap;
    char line[96];
    int y = kTextTop;
    std::snprintf(line, sizeof line, " Standard Deviation : %.6f", s.stddev);
    FSTextOut(x, y, line);
    y += kTextStep;
    std::snprintf(line, sizeof line, " Correlation coefficient : %.6f", s.correlation);
    FSTextOut(x, y, line);
    for (int k = 0; k <= degree; ++k) {
        y += kTextStep;
        std::snprintf(line, sizeof line, " X%d :  %9f", k, s.coefficients[k]);
        FSTextOut(x, y, line);
    }
}

} // namespace

void ToolWindowTitle(const char* tool, const ImageHeaderType* item, char* text, int size)
{
    char title[48];
    ItemTitle(item, title);
    if (title[0])
        std::snprintf(text, static_cast<size_t>(size), "%s < %s >", tool, title);
    else
        std::snprintf(text, static_cast<size_t>(size), "%s", tool);
}

bool AllocateSpecFitWork(int n, SpecFitWork* work)
{
    const size_t bytes = static_cast<size_t>(std::max(n, 1)) * sizeof(double);
    work->x = static_cast<double*>(emalloc(bytes));
    work->y = work->x ? static_cast<double*>(emalloc(bytes)) : nullptr;
    work->fitted = work->y ? static_cast<double*>(emalloc(bytes)) : nullptr;
    if (work->fitted) return true;
    FreeSpecFitWork(work);
    Error(ERR_NO_MEMORY);
    return false;
}

void FreeSpecFitWork(SpecFitWork* work)
{
    efree(work->x);
    efree(work->y);
    efree(work->fitted);
    *work = SpecFitWork{};
}

int FitSpectrumPolynomial(const ImageHeaderType* item, int degree, int plot, const SpecFitWork& work,
                          PolyRegressionStats* stats)
{
    const int n = item->nx;
    const float* samples = reinterpret_cast<const float*>(item->PixData);
    for (int i = 0; i < n; ++i) {
        work.x[i] = samples[n + i];
        work.y[i] = ImageDataValue2Calibrated(item, samples[i], 0);
    }
    const int result = PolyRegression(work.x, work.y, n, degree, work.fitted, nullptr, stats);
    if (result == 0 && plot) {
        OverlayFit(work, n);
        WriteFitText(*stats, degree);
    }
    char title[48];
    Log("Fit poly degree %d to '%s'.\n", degree, ItemTitle(item, title));
    return result;
}

void FitPoly2Spec()
{
    ImageHeaderType* item = CurrentSpectrum();
    if (!item) return;
    SpecFitWork work{};
    if (!AllocateSpecFitWork(item->nx, &work)) return;
    char title[96];
    ToolWindowTitle(kFitTool, item, title, sizeof title);
    Ap.ap_OpenPlotWindow(kToolWindowWidth, kToolWindowHeight, title);
    const int32_t savedWidth = PlotParam.PlotWidth, savedHeight = PlotParam.PlotHeight;
    PlotParam.PlotWidth = PlotParam.PlotHeight = kToolPlotSize;
    ClearFrameStore();
    DisplaySpectrum(item);
    int32_t degree = kDefaultDegree;
    for (;;) {
        int32_t entered = degree;
        if (!EnterInteger(degree, "Enter polynomial degrees : ", kProductName, &entered, kDegreeChars)) break;
        degree = std::clamp<int32_t>(entered, 1, kMaxFitDegree);
        ClearFrameStore();
        DisplaySpectrum(item);
        PolyRegressionStats stats;
        FitSpectrumPolynomial(item, degree, 1, work, &stats);
    }
    PlotParam.PlotWidth = savedWidth;
    PlotParam.PlotHeight = savedHeight;
    FreeSpecFitWork(&work);
}
