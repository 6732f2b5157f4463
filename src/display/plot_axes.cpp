// Axes, ticks, number labels and grids of the current plot area.
#include "display/plot.h"
#include "display/vfs.h"

#include <algorithm>
#include <cmath>
#include <cstdio>

namespace {

// Positions within a decade of a log axis: log10 of 1 to 10.
constexpr double kDecadeFractions[10] = {0, 0.301, 0.4771, 0.6021, 0.699, 0.7782, 0.8451, 0.9031, 0.9542, 1.0};
// No axis draws more steps than this on one side of its origin, nor more decades.
constexpr int kMaxSteps = 5000;
constexpr int kMaxDecades = 90;
constexpr int kMinGridPixels = 4;
constexpr int kDecimalsLimit = 20;

void WorldLine(double x0, double y0, double x1, double y1)
{
    FSMoveTo(WorldToPixelX(static_cast<float>(x0)), WorldToPixelY(static_cast<float>(y0)));
    FSLineTo(WorldToPixelX(static_cast<float>(x1)), WorldToPixelY(static_cast<float>(y1)), 1);
}

// Calls `at` for origin + k step (k = 1, 2, ...) up to hi, then origin - k step down to lo;
// with `withOrigin` the origin itself first. Positions outside lo to hi are skipped.
template <typename F>
void ForEachStep(double origin, double step, double lo, double hi, bool withOrigin, F at)
{
    step = std::fabs(step);
    if (!std::isfinite(step) || step == 0 || !std::isfinite(origin) || !std::isfinite(lo) || !std::isfinite(hi))
        return;
    if (withOrigin && origin >= lo && origin <= hi) at(origin);
    // Start near the world when the origin lies far outside it.
    const double upFrom = origin < lo ? std::floor((lo - origin) / step) : 0;
    const double downFrom = origin > hi ? std::floor((origin - hi) / step) : 0;
    for (int k = 1; k <= kMaxSteps; ++k) {
        const double v = origin + (upFrom + k) * step;
        if (v > hi) break;
        if (v >= lo) at(v);
    }
    for (int k = 1; k <= kMaxSteps; ++k) {
        const double v = origin - (downFrom + k) * step;
        if (v < lo) break;
        if (v <= hi) at(v);
    }
}

int Decades(float lo, float hi)
{
    if (!std::isfinite(lo) || !std::isfinite(hi)) return 1;
    const int d = PlotExponent(hi) - PlotExponent(lo);
    return d == 0 ? 1 : std::clamp(d, 1, kMaxDecades);
}

int16_t Short(double v) { return static_cast<int16_t>(std::clamp(PlotRound(v), -32768, 32767)); }

// Every position of a log axis: each decade at its ten fractions.
template <typename F>
void ForEachDecadePosition(double lo, double tick, int decades, F at)
{
    for (int i = 0; i < decades; ++i)
        for (double f : kDecadeFractions) at(lo + (i + f) * tick, i);
}

void Label(int x, int y, uint32_t align, const char* text)
{
    FSSetTextAlign(align);
    FSTextOut(x, y, text);
}

// The multiple of a grid step that keeps lines at least 4 pixels apart.
double GridFactor(double step, double pixelsPerUnit)
{
    const double pixels = std::fabs(step * pixelsPerUnit);
    if (!(pixels > 0)) return 1;
    return pixels < kMinGridPixels ? std::ceil(kMinGridPixels / pixels) : 1;
}

double PixelsPerUnitX(const PlotAreaType& a)
{
    const double w = static_cast<double>(a.WorldX1) - a.WorldX0;
    return w == 0 ? 0 : (a.PlotRight - a.PlotLeft) / w;
}

double PixelsPerUnitY(const PlotAreaType& a)
{
    const double h = static_cast<double>(a.WorldY1) - a.WorldY0;
    return h == 0 ? 0 : (a.PlotBottom - a.PlotTop) / h;
}

} // namespace

void FormatAxisNumber(float value, float lo, float hi, float step, int isLog, char* out, size_t size)
{
    if (!out || size == 0) return;
    // Decades of f32 values: 1e12f is 999999995904, and it is the decade of 1e12 all the same.
    const auto decade = [](float v) { return PlotExponent(static_cast<double>(v) * (1.0 + 1e-6)); };
    const int d = isLog ? decade(value) : decade(std::max(std::fabs(lo), std::fabs(hi)));
    const int e = isLog ? decade(value) : decade(step) - 1;
    // Digits after the point for an exponent of the step in the unit of the row.
    const auto decimals = [](int exponent) { return exponent < 0 ? std::min(-exponent, kDecimalsLimit) : 0; };
    const int row = d + 4;
    if (row >= 0 && row <= 6)
        std::snprintf(out, size, "%*.*f", 1, decimals(e), static_cast<double>(value));
    else if (row >= 7 && row <= 9)
        std::snprintf(out, size, "%*.*fK", 1, decimals(e - 3), value / 1e3);
    else if (row >= 10 && row <= 12)
        std::snprintf(out, size, "%*.*fM", 1, decimals(e - 6), value / 1e6);
    else if (row >= 13 && row <= 15)
        std::snprintf(out, size, "%*.*fB", 1, decimals(e - 9), value / 1e9);
    else
        std::snprintf(out, size, "%*.*e", 1, 2, static_cast<double>(value));
}

void DrawAxisX(float step, int side)
{
    PlotAreaType& a = CurrentPlotArea();
    const double length = (static_cast<double>(a.WorldY1) - a.WorldY0) * 0.015 * (side ? -1 : 1);
    if (a.LogX) {
        a.DecadesX = static_cast<int16_t>(Decades(a.WorldX0, a.WorldX1));
        a.TickX = (a.WorldX1 - a.WorldX0) / a.DecadesX;
        const double y0 = a.WorldY0;
        int lastDecade = -1;
        ForEachDecadePosition(a.WorldX0, a.TickX, a.DecadesX, [&](double x, int decade) {
            WorldLine(x, y0, x, y0 + length);
            if (decade != lastDecade) {
                WorldLine(a.WorldX0 + decade * static_cast<double>(a.TickX), y0,
                          a.WorldX0 + (decade + 1) * static_cast<double>(a.TickX), y0);
                lastDecade = decade;
            }
        });
        return;
    }
    if (step == 0) step = 1;
    a.DecadesX = Short((a.WorldX1 - a.WorldX0) / step);
    a.TickX = step;
    const double y = a.OriginY;
    ForEachStep(a.OriginX, step, a.WorldX0, a.WorldX1, false, [&](double x) { WorldLine(x, y, x, y + length); });
    WorldLine(a.WorldX0, y, a.WorldX1, y);
}

void DrawAxisY(float step, int side)
{
    PlotAreaType& a = CurrentPlotArea();
    const double length = (static_cast<double>(a.WorldX1) - a.WorldX0) * 0.01 * (side ? -1 : 1);
    if (a.LogY) {
        a.DecadesY = static_cast<int16_t>(Decades(a.WorldY0, a.WorldY1));
        a.TickY = (a.WorldY1 - a.WorldY0) / a.DecadesY;
        const double x0 = a.WorldX0;
        WorldLine(x0, a.WorldY0, x0, a.WorldY1);
        ForEachDecadePosition(a.WorldY0, a.TickY, a.DecadesY, [&](double y, int) { WorldLine(x0, y, x0 + length, y); });
        return;
    }
    if (step == 0) step = 1;
    a.DecadesY = Short((a.WorldY1 - a.WorldY0) / step);
    a.TickY = step;
    const double x = a.OriginX;
    WorldLine(x, a.WorldY0, x, a.WorldY1);
    ForEachStep(a.OriginY, step, a.WorldY0, a.WorldY1, false, [&](double y) { WorldLine(x, y, x + length, y); });
}

void DrawLabelsX(int multiple, int side)
{
    PlotAreaType& a = CurrentPlotArea();
    const double height = static_cast<double>(a.WorldY1) - a.WorldY0, sign = side ? -1 : 1;
    const double y = a.LogX ? a.WorldY0 : a.OriginY;
    const uint32_t align = TextAlignWord(1, side ? 0 : 2, 0);
    char text[64];
    const auto label = [&](double x, double value, bool isLog) {
        WorldLine(x, y, x, y + height * 0.03 * sign);
        FormatAxisNumber(static_cast<float>(value), a.WorldX0, a.WorldX1, a.LabelStepX, isLog, text, sizeof text);
        Label(WorldToPixelX(static_cast<float>(x)), WorldToPixelY(static_cast<float>(y - height * 0.035 * sign)), align,
              text);
    };
    if (a.LogX) {
        for (int i = 0; i <= a.DecadesX && i <= kMaxDecades; ++i)
            label(a.WorldX0 + i * static_cast<double>(a.TickX), std::pow(10.0, i) * a.WorldX0 / LogScaleX, true);
        return;
    }
    a.LabelStepX = a.TickX * static_cast<float>(multiple);
    // Compared in pixels: the world of a log axis is nudged off its origin of 1.
    const bool skipOrigin = WorldToPixelY(a.OriginY) != WorldToPixelY(side ? a.WorldY1 : a.WorldY0);
    ForEachStep(a.OriginX, a.LabelStepX, a.WorldX0, a.WorldX1, !skipOrigin, [&](double x) { label(x, x, false); });
}

void DrawLabelsY(int multiple, int side)
{
    PlotAreaType& a = CurrentPlotArea();
    const double width = static_cast<double>(a.WorldX1) - a.WorldX0, sign = side ? -1 : 1;
    const double x = a.LogY ? a.WorldX0 : a.OriginX;
    const uint32_t align = TextAlignWord(side ? 0 : 2, 1, 0);
    char text[64];
    const auto label = [&](double y, double value, bool isLog) {
        WorldLine(x, y, x + width * 0.015 * sign, y);
        FormatAxisNumber(static_cast<float>(value), a.WorldY0, a.WorldY1, a.LabelStepY, isLog, text, sizeof text);
        Label(WorldToPixelX(static_cast<float>(x - width * 0.02 * sign)), WorldToPixelY(static_cast<float>(y)), align,
              text);
    };
    if (a.LogY) {
        for (int i = 0; i <= a.DecadesY && i <= kMaxDecades; ++i)
            label(a.WorldY0 + i * static_cast<double>(a.TickY), std::pow(10.0, i) * a.WorldY0 / LogScaleY, true);
        return;
    }
    a.LabelStepY = a.TickY * static_cast<float>(multiple);
    const bool skipOrigin = WorldToPixelX(a.OriginX) != WorldToPixelX(side ? a.WorldX1 : a.WorldX0);
    ForEachStep(a.OriginY, a.LabelStepY, a.WorldY0, a.WorldY1, !skipOrigin, [&](double y) { label(y, y, false); });
}

void DrawGridX(int multiple)
{
    const PlotAreaType& a = CurrentPlotArea();
    const auto line = [&](double x) { WorldLine(x, a.WorldY0, x, a.WorldY1); };
    if (a.LogX) {
        ForEachDecadePosition(a.WorldX0, a.TickX, std::clamp<int>(a.DecadesX, 1, kMaxDecades), [&](double x, int) { line(x); });
        return;
    }
    double step = static_cast<double>(a.TickX) * multiple;
    step *= GridFactor(step, PixelsPerUnitX(a));
    ForEachStep(a.OriginX, step, a.WorldX0, a.WorldX1, false, line);
}

void DrawGridY(int multiple)
{
    const PlotAreaType& a = CurrentPlotArea();
    const auto line = [&](double y) { WorldLine(a.WorldX0, y, a.WorldX1, y); };
    if (a.LogY) {
        ForEachDecadePosition(a.WorldY0, a.TickY, std::clamp<int>(a.DecadesY, 1, kMaxDecades), [&](double y, int) { line(y); });
        return;
    }
    double step = static_cast<double>(a.TickY) * multiple;
    step *= GridFactor(step, PixelsPerUnitY(a));
    ForEachStep(a.OriginY, step, a.WorldY0, a.WorldY1, false, line);
}

void DrawGridXY(int multiple)
{
    DrawGridX(multiple);
    DrawGridY(multiple);
}

namespace {

// Limits of a range below 1e-10 are spread by a tenth of their magnitude (to 0 to 1 when both
// are 0), with a tick of a fifth of the new span.
void SpreadEmptyRange(float* lo, float* hi, float* tick)
{
    if (!(std::fabs(*hi - *lo) < 1e-10f)) return;
    const float d = std::max(std::fabs(*lo), std::fabs(*hi)) / 10.0f;
    *lo -= d;
    *hi += d;
    if (!(std::fabs(*hi - *lo) >= 1e-10f)) *hi = 1.0f;
    *tick = (*hi - *lo) / 5.0f;
}

// Where an axis crosses the other: see DrawAxes. `farSide` is set when the range is all at or
// below 0.
float Origin(int box, float lo, float hi, bool* farSide)
{
    *farSide = false;
    if (box) return lo;
    if (lo >= 0 && hi >= 0) return lo;
    if (lo < 0 && hi > 0) return 0;
    *farSide = true;
    return hi;
}

} // namespace

int DrawAxes(int box, int gridX, int gridY, int gridColour, int autoFlags, PlotLimits* limits,
             const FontRecType* font, int draw)
{
    if (!limits) return 0;
    PlotAreaType& a = CurrentPlotArea();
    PlotLimits& l = *limits;
    if (draw) ClearPlotArea();
    if (a.LogX && l.xmin < 1e-5f) l.xmin = 1;
    if (a.LogY && l.ymin < 0.0001f) l.ymin = 1;
    if (autoFlags & 1) AutoScale(&l.xmin, &l.xmax, &l.xtick);
    if (autoFlags & 2) AutoScale(&l.ymin, &l.ymax, &l.ytick);
    SpreadEmptyRange(&l.xmin, &l.xmax, &l.xtick);
    SpreadEmptyRange(&l.ymin, &l.ymax, &l.ytick);

    bool yAllNegative = false, xAllNegative = false;
    float originX = Origin(box, l.xmin, l.xmax, &xAllNegative);
    float originY = Origin(box, l.ymin, l.ymax, &yAllNegative);
    // The labels of the other axis go to the far side of an axis at the upper limit.
    const int sideX = yAllNegative ? 1 : 0, sideY = xAllNegative ? 1 : 0;
    if (a.LogX) originX = l.xmin = 1;
    if (a.LogY) originY = l.ymin = 1;
    SetAxisRange(l.xmin, l.ymin, l.xmax, l.ymax);
    SetAxisOrigin(originX, originY);

    const int labelsY = 10, labelsX = a.PlotRight - a.PlotLeft < 401 ? 20 : 10;
    if (!draw) return labelsX;
    DrawAxisY(l.ytick, sideY);
    DrawAxisX(l.xtick, sideX);
    const int formerColour = FSGetColour();
    if (gridX) {
        FSSetColour(gridColour);
        DrawGridX(labelsX);
        FSSetColour(formerColour);
    }
    if (gridY) {
        FSSetColour(gridColour);
        DrawGridY(labelsY);
        FSSetColour(formerColour);
    }
    if (font) FSSetTextFont(*font);
    DrawLabelsY(labelsY, sideY);
    DrawLabelsX(labelsX, sideX);
    if (font) FSSetTextFont(NamedFont(FONT_GENERAL));
    return labelsX;
}
