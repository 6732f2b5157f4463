// The four line markers of the multi-spectra plot: drawn over the curves, their positions in the
// units of the plot, where the X markers cross each shown curve, and the export of those values.
#include "analysis/multispec.h"
#include "display/palette.h"
#include "display/plot.h"
#include "display/vfs.h"
#include "spectro/spectro.h"
#include "store/data_list.h"
#include "store/units.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <string>

namespace {

// Markers 0 and 2 are the Y markers (lines across), 1 and 3 the X markers (lines up).
bool IsXMarker(int m) { return m % 2 == 1; }

std::string ValueText(bool known, double value)
{
    if (!known) return "n/a";
    char text[40];
    std::snprintf(text, sizeof text, "%g", value);
    return text;
}

} // namespace

void SetPaletteEntryColour(int entry, uint32_t colour)
{
    PaletteRed[entry] = static_cast<uint8_t>(colour & 0xFF);
    PaletteGreen[entry] = static_cast<uint8_t>((colour >> 8) & 0xFF);
    PaletteBlue[entry] = static_cast<uint8_t>((colour >> 16) & 0xFF);
}

void CMultiSpecDisp::DrawLineMarkers()
{
    FSSetClip(0, 0, kMultiPlotSize - 1, kMultiPlotSize - 1);
    for (int m = 0; m < 4; ++m) {
        if (!param_.MarkerOn[m]) continue;
        const int at = static_cast<int>(std::lround(std::clamp(param_.MarkerPos[m], 0.0, kMultiPlotSize - 1.0)));
        SetPaletteEntryColour(kMultiCurvePaletteEntry, param_.MarkerColour[m]);
        FSSetColour(kMultiCurvePaletteEntry);
        if (IsXMarker(m)) {
            FSMoveTo(at, 0);
            FSLineTo(at, kMultiPlotSize - 1, 1);
        } else {
            FSMoveTo(0, at);
            FSLineTo(kMultiPlotSize - 1, at, 1);
        }
    }
}

bool CMultiSpecDisp::CurveValueAt(int i, double x, double* y) const
{
    const ImageHeaderType* s = nullptr;
    int from = 0, count = 0;
    if (!GetSpec_Nx_Nx1_Ofs(i, &s, &from, &count) || count <= 0) return false;
    const float* ys = reinterpret_cast<const float*>(s->PixData) + from;
    const float* xs = reinterpret_cast<const float*>(s->PixData) + s->nx + from;
    auto curveY = [&](int k) { return ConvertY(i, ImageDataValue2Calibrated(s, ys[k], 0)); };
    if (count == 1) {
        if (ConvertX(i, xs[0]) != x) return false;
        *y = curveY(0);
        return std::isfinite(*y);
    }
    for (int k = 0; k + 1 < count; ++k) {
        const double x0 = ConvertX(i, xs[k]), x1 = ConvertX(i, xs[k + 1]);
        if (!(std::min(x0, x1) <= x && x <= std::max(x0, x1))) continue;
        const double ya = curveY(k), yb = curveY(k + 1);
        *y = x0 == x1 ? (ya + yb) / 2 : ya + (yb - ya) * (x - x0) / (x1 - x0);
        return std::isfinite(*y);
    }
    return false;
}

void CMultiSpecDisp::UpdateLineMarkerData()
{
    markerData_.clear();
    for (bool& known : markerKnown_) known = false;
    if (!havePlot_) return;
    // The marker positions through the scale of the last plot, whatever area is current now.
    PlotAreaType& area = CurrentPlotArea();
    const PlotAreaType keptArea = area;
    const float keptScaleX = LogScaleX, keptScaleY = LogScaleY;
    area = plotArea_;
    LogScaleX = plotLogScale_[0];
    LogScaleY = plotLogScale_[1];
    for (int m = 0; m < 4; ++m) {
        if (!param_.MarkerOn[m]) continue;
        const int at = static_cast<int>(std::lround(std::clamp(param_.MarkerPos[m], 0.0, kMultiPlotSize - 1.0)));
        markerValue_[m] = IsXMarker(m) ? PixelToWorldX(at) : PixelToWorldY(at);
        markerKnown_[m] = std::isfinite(markerValue_[m]);
    }
    area = keptArea;
    LogScaleX = keptScaleX;
    LogScaleY = keptScaleY;
    for (int i = 0; i < ItemCount(); ++i) {
        if (!SelectedForDisplay(items_[static_cast<size_t>(i)])) continue;
        MultiSpecMarkerData d{};
        d.item = i;
        for (int j = 0; j < 2; ++j) {
            const int m = 2 * j + 1;
            d.x[j] = markerValue_[m];
            d.has[j] = markerKnown_[m] && CurveValueAt(i, markerValue_[m], &d.y[j]);
        }
        markerData_.push_back(d);
    }
}

bool CMultiSpecDisp::MarkerValue(int m, double* value) const
{
    if (m < 0 || m > 3 || !markerKnown_[m]) return false;
    *value = markerValue_[m];
    return true;
}

int CMultiSpecDisp::ExportMultiSpecData(const char* path)
{
    FILE* f = path ? std::fopen(path, "w") : nullptr;
    if (!f) return 0;
    UpdateLineMarkerData();
    WriteFileHead(f);
    std::fprintf(f, "Line Markers: Y1=%d %s X1=%d %s Y2=%d %s X2=%d %s\n\n", param_.MarkerOn[0],
                 ValueText(markerKnown_[0], markerValue_[0]).c_str(), param_.MarkerOn[1],
                 ValueText(markerKnown_[1], markerValue_[1]).c_str(), param_.MarkerOn[2],
                 ValueText(markerKnown_[2], markerValue_[2]).c_str(), param_.MarkerOn[3],
                 ValueText(markerKnown_[3], markerValue_[3]).c_str());
    const std::vector<int> numbers = FileNumbers();
    for (const MultiSpecMarkerData& d : markerData_) {
        const MultiSpecParam_ItemType& item = items_[static_cast<size_t>(d.item)];
        const ImageHeaderType* s = FindItemById(static_cast<uint32_t>(item.ID));
        if (!s) continue;
        const int number = numbers[static_cast<size_t>(d.item)];
        std::fprintf(f, "Filename %d.%d=%s\n", number, item.Ramp, MultiSpecFileName(s->FileName).c_str());
        std::fprintf(f, "Title %d.%d=%s\n", number, item.Ramp, item.Title);
        std::fprintf(f, "Min/Max X=%s %s\n", ValueText(true, item.MinX).c_str(), ValueText(true, item.MaxX).c_str());
        std::fprintf(f, "Min/Max Y=%s %s\n", ValueText(true, item.MinY).c_str(), ValueText(true, item.MaxY).c_str());
        std::fprintf(f, "Shift X, Y=%s %s\n", ValueText(true, item.ShiftX).c_str(), ValueText(true, item.ShiftY).c_str());
        std::fprintf(f, "Gain  X, Y=%s %s\n", ValueText(true, item.GainX).c_str(), ValueText(true, item.GainY).c_str());
        std::fprintf(f, "X1=%s   Y1=%s   X2=%s   Y2=%s\n", ValueText(d.has[0], d.x[0]).c_str(),
                     ValueText(d.has[0], d.y[0]).c_str(), ValueText(d.has[1], d.x[1]).c_str(),
                     ValueText(d.has[1], d.y[1]).c_str());
        const bool both = d.has[0] && d.has[1];
        std::fprintf(f, "X2-X1=%s   Y2-Y1=%s\n", ValueText(both, d.x[1] - d.x[0]).c_str(),
                     ValueText(both, d.y[1] - d.y[0]).c_str());
        const bool slope = both && d.x[1] != d.x[0];
        std::fprintf(f, "dYdX=%s\n", ValueText(slope, slope ? (d.y[1] - d.y[0]) / (d.x[1] - d.x[0]) : 0.0).c_str());
    }
    const bool ok = !std::ferror(f);
    return std::fclose(f) == 0 && ok ? 1 : 0;
}
