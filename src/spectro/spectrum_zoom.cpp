// Zoom into a box of the spectrum plot: the points inside, resampled to the spectrum's length.
#include "spectro/spectrum_tools.h"
#include "display/plot.h"
#include "display/plot_spectrum.h"
#include "display/selection.h"
#include "display/vfs.h"
#include "host/errors.h"
#include "host/log.h"
#include "spectro/spectro.h"
#include "store/duplicate.h"
#include "store/units.h"

#include <cmath>
#include <vector>

namespace {

constexpr int kZoomSelect = 14;
constexpr int kZoomCursor = 2;
constexpr int kBoxRegion = 2;
constexpr int kZoomCode = 54;
// A zoom holds at least this many points.
constexpr int kMinZoomPoints = 16;

int16_t g_boxX[2], g_boxY[2];

// The continuation: the corners from frame pixels of the plot to data values.
int ZoomBoxDone(int buttons)
{
    if (!(buttons & kButtonLeft)) return 1;
    ImageHeaderType* source = CurrentSpectrum();
    if (!source) return 1;
    const PlotAreaType& a = CurrentPlotArea();
    const int dx = SelectionState.BoundLeft - a.Left, dy = SelectionState.BoundTop - a.Top;
    const double x1 = PixelToWorldX(g_boxX[0] + dx), x2 = PixelToWorldX(g_boxX[1] + dx);
    const double y1 = PixelToWorldY(g_boxY[0] + dy), y2 = PixelToWorldY(g_boxY[1] + dy);
    ZoomSpectrum(source, x1, x2, y1, y2);
    return 1;
}

// The resampling step in f32, each operation rounded.
float Blend(float a, float b, float f)
{
    const float left = a * (1.0f - f);
    const float right = b * f;
    return left + right;
}

} // namespace

ImageHeaderType* ZoomSpectrum(ImageHeaderType* source, double x1, double x2, double y1, double y2)
{
    if (!source || !source->PixData || source->nx <= 0) {
        Error(ERR_NO_SPECTRA);
        return nullptr;
    }
    // Y corners from shown values back to stored ones, then sorted.
    double ylo = ImageDataValue2Calibrated(source, y1, 1), yhi = ImageDataValue2Calibrated(source, y2, 1);
    if (ylo > yhi) std::swap(ylo, yhi);
    double xlo = std::fmin(x1, x2), xhi = std::fmax(x1, x2);

    ImageHeaderType* item = CopyNewSpectrum(source);
    if (!item) return nullptr;
    const int n = item->nx;
    SortPair(SpecX(item), SpecY(item), n, true);
    std::vector<float> xs, ys;
    try {
        xs.assign(SpecX(item), SpecX(item) + n);
        ys.assign(SpecY(item), SpecY(item) + n);
    } catch (const std::bad_alloc&) {
        FreeResultItem(item);
        Error(ERR_NO_MEMORY);
        return nullptr;
    }
    if (xlo < xs[0]) xlo = xs[0];
    if (xhi > xs[static_cast<size_t>(n - 1)]) xhi = xs[static_cast<size_t>(n - 1)];
    int i1 = n, i2 = -1;
    if (xlo < xhi) {
        for (int i = 0; i < n && i1 == n; ++i)
            if (xs[static_cast<size_t>(i)] >= xlo) i1 = i;
        for (int i = n - 1; i >= 0 && i2 < 0; --i)
            if (xs[static_cast<size_t>(i)] <= xhi) i2 = i;
    }
    if (!(xlo < xhi) || !(i1 + kMinZoomPoints - 1 < i2)) {
        FreeResultItem(item);
        Error(ERR_INVALID_ENTRY);
        return nullptr;
    }
    float* outX = SpecX(item);
    float* outY = SpecY(item);
    const float span = static_cast<float>(i2 - i1), last = static_cast<float>(n - 1), start = static_cast<float>(i1);
    for (int k = 0; k < n; ++k) {
        const float t = span * static_cast<float>(k) / last + start;
        const float f = t - std::floor(t);
        const int i = static_cast<int>(t);
        if (i >= n - 1) {
            outX[k] = xs[static_cast<size_t>(n - 1)];
            outY[k] = ys[static_cast<size_t>(n - 1)];
        } else {
            outX[k] = Blend(xs[static_cast<size_t>(i)], xs[static_cast<size_t>(i + 1)], f);
            outY[k] = Blend(ys[static_cast<size_t>(i)], ys[static_cast<size_t>(i + 1)], f);
        }
        if (outY[k] < ylo) outY[k] = static_cast<float>(ylo);
        if (outY[k] > yhi) outY[k] = static_cast<float>(yhi);
    }
    char title[48];
    Log("Zoom into '%s'.\n", ItemTitle(source, title));
    FinishSpectrumCommand(item, kZoomCode);
    return item;
}

void ZoomSpec()
{
    ImageHeaderType* item = CurrentSpectrum();
    if (!item) return;
    DisplaySpectrum(item);
    SelectImagePoints(kZoomSelect, 2, g_boxX, g_boxY, kBoxRegion, 0, 0, 1, 0, 1, 0, kZoomCursor, ZoomBoxDone);
}
