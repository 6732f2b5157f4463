// The table of plot areas, their rectangles and worlds, and the mapping between world and
// pixels.
#include "display/plot.h"
#include "display/cvfs.h"
#include "display/vfs.h"

#include <algorithm>
#include <cmath>

float LogScaleX = 1.0f;
float LogScaleY = 1.0f;
bool TwoColourSuppressed = false;
PlotCurveEnds LastCurveEnds{};

namespace {

PlotAreaType g_areas[kPlotAreaCount];
int g_current = 1;

// The start-up rectangle (left, top, right, bottom) and margins (left, top, right, bottom).
struct StartLayout {
    float rect[4];
    float margins[4];
};
constexpr StartLayout kStartLayout[kPlotAreaCount] = {
    {{0.1f, 0.1f, 0.9f, 0.9f}, {0.15f, 0.12f, 0.05f, 0.12f}},
    {{0.1f, 0.1f, 0.9f, 0.9f}, {0.15f, 0.12f, 0.05f, 0.12f}},
    {{0.01f, 0.01f, 0.99f, 0.99f}, {0.14f, 0.12f, 0.05f, 0.12f}},
    {{0.01f, 0.01f, 0.99f, 0.49f}, {0.15f, 0.14f, 0.05f, 0.14f}},
    {{0.01f, 0.501f, 0.99f, 0.99f}, {0.15f, 0.14f, 0.05f, 0.14f}},
    {{0.01f, 0.01f, 0.49f, 0.99f}, {0.21f, 0.14f, 0.06f, 0.14f}},
    {{0.501f, 0.01f, 0.99f, 0.99f}, {0.21f, 0.14f, 0.06f, 0.14f}},
    {{0.001f, 0.01f, 0.49f, 0.49f}, {0.21f, 0.19f, 0.05f, 0.19f}},
    {{0.501f, 0.01f, 0.99f, 0.49f}, {0.21f, 0.19f, 0.05f, 0.19f}},
    {{0.01f, 0.501f, 0.49f, 0.99f}, {0.21f, 0.19f, 0.06f, 0.19f}},
    {{0.501f, 0.501f, 0.99f, 0.99f}, {0.21f, 0.18f, 0.05f, 0.18f}},
};
constexpr float kNewWorld = 1000.0f;
constexpr float kStartWorld = 100.0f;
constexpr double kPixelLimit = 1000.0;

int16_t Short(int v) { return static_cast<int16_t>(std::clamp(v, -32768, 32767)); }

// The plot rectangle from the area and its margins.
void PlaceRectangle(PlotAreaType& a)
{
    const double w = a.Right - a.Left, h = a.Bottom - a.Top;
    a.PlotLeft = Short(a.Left + PlotRound(w * a.MarginLeft));
    a.PlotRight = Short(a.Right - PlotRound(w * a.MarginRight));
    a.PlotBottom = Short(a.Bottom - PlotRound(h * a.MarginBottom));
    a.PlotTop = Short(a.Top + PlotRound(h * a.MarginTop));
}

// The world of the plot rectangle and with it the full world of the area.
void SetWorld(PlotAreaType& a, float x0, float y0, float x1, float y1)
{
    a.WorldX0 = x0, a.WorldY0 = y0, a.WorldX1 = x1, a.WorldY1 = y1;
    double w = 1.0 - a.MarginLeft - a.MarginRight;
    if (w == 0) w = 1;
    double h = 1.0 - a.MarginBottom - a.MarginTop;
    if (h == 0) h = 1;
    const double dx = static_cast<double>(x1) - x0, dy = static_cast<double>(y1) - y0;
    a.FullX0 = static_cast<float>(x0 - dx * a.MarginLeft / w);
    a.FullX1 = static_cast<float>(x1 + dx * a.MarginRight / w);
    a.FullY0 = static_cast<float>(y0 - dy * a.MarginBottom / h);
    a.FullY1 = static_cast<float>(y1 + dy * a.MarginTop / h);
}

// The log nudge: whole decades around the limits, just inside.
void LogLimits(float lo, float hi, float* outLo, float* outHi)
{
    const double h = static_cast<double>(hi) - hi / 1000.0, l = static_cast<double>(lo) + lo / 1e7;
    *outLo = static_cast<float>(std::pow(10.0, PlotExponent(l)) + l / 1e7);
    *outHi = static_cast<float>(std::pow(10.0, PlotExponent(h) + 1) + h / 1e7);
}

double Scale(double pixels, double world) { return world == 0 || !std::isfinite(world) ? 1.0 : pixels / world; }

double Limited(double v) { return std::isnan(v) ? 0.0 : std::clamp(v, 0.0, kPixelLimit); }

} // namespace

int PlotRound(double x)
{
    const double v = std::floor(x + 0.49999);
    if (std::isnan(v)) return 0;
    return static_cast<int>(std::clamp(v, -1e9, 1e9));
}

PlotAreaType& PlotArea(int n) { return g_areas[n >= 0 && n < kPlotAreaCount ? n : g_current]; }
PlotAreaType& CurrentPlotArea() { return g_areas[g_current]; }
int CurrentPlotAreaNumber() { return g_current; }

void SetPlotArea(int left, int top, int right, int bottom, int n)
{
    if (n < 0 || n >= kPlotAreaCount) return;
    g_current = n;
    PlotAreaType& a = g_areas[n];
    a.Left = Short(left), a.Top = Short(top), a.Right = Short(right), a.Bottom = Short(bottom);
    a.LogX = a.LogY = 0;
    PlaceRectangle(a);
    SetWorld(a, 0, 0, kNewWorld, kNewWorld);
}

void SetPlotAreaFraction(float left, float top, float right, float bottom, int n)
{
    SetPlotArea(PlotRound(left * kFrameWidth), PlotRound(top * kFrameHeight), PlotRound(right * kFrameWidth),
                PlotRound(bottom * kFrameHeight), n);
}

void SetPlotMargins(int n, float left, float top, float right, float bottom)
{
    PlotAreaType& a = PlotArea(n);
    a.MarginLeft = left, a.MarginTop = top, a.MarginRight = right, a.MarginBottom = bottom;
    PlaceRectangle(a);
    SetWorld(a, a.WorldX0, a.WorldY0, a.WorldX1, a.WorldY1);
}

void SelectPlotArea(int n)
{
    if (n < 0 || n >= kPlotAreaCount) return;
    g_current = n;
    const PlotAreaType& a = g_areas[n];
    FSSetClip(a.Left, a.Top, a.Right, a.Bottom);
}

void ClearPlotArea()
{
    const PlotAreaType& a = CurrentPlotArea();
    const int left = std::clamp<int>(a.PlotLeft, 0, kFrameWidth - 1), right = std::clamp<int>(a.PlotRight, 0, kFrameWidth - 1);
    const int top = std::clamp<int>(a.PlotTop, 0, kFrameHeight - 1), bottom = std::clamp<int>(a.PlotBottom, 0, kFrameHeight - 1);
    if (left > right || top > bottom) return;
    for (int y = top; y <= bottom; ++y) FillFSLine(0, right - left + 1, left, y);
    if (CVfs* vfs = CurrentVfs()) vfs->EraseItems(left, top, right, bottom);
}

void SetLogAxes(int x, int y)
{
    PlotAreaType& a = CurrentPlotArea();
    a.LogX = x == 1 ? 1 : 0;
    a.LogY = y == 1 ? 1 : 0;
}

void SetAxisRange(float x0, float y0, float x1, float y1)
{
    PlotAreaType& a = CurrentPlotArea();
    if (a.LogX) LogLimits(x0, x1, &x0, &x1);
    if (a.LogY) LogLimits(y0, y1, &y0, &y1);
    SetWorld(a, x0, y0, x1, y1);
}

void SetAxisOrigin(float x, float y)
{
    PlotAreaType& a = CurrentPlotArea();
    a.OriginX = x;
    a.OriginY = y;
}

int WorldToPixelX(float x)
{
    const PlotAreaType& a = CurrentPlotArea();
    const double sx = Scale(a.Right - a.Left, static_cast<double>(a.FullX1) - a.FullX0);
    return PlotRound(Limited((static_cast<double>(x) - a.FullX0) * sx));
}

int WorldToPixelY(float y)
{
    const PlotAreaType& a = CurrentPlotArea();
    const double sy = Scale(a.Bottom - a.Top, static_cast<double>(a.FullY1) - a.FullY0);
    return (a.Bottom - a.Top) - PlotRound(Limited((static_cast<double>(y) - a.FullY0) * sy));
}

float PixelToWorldX(int px)
{
    const PlotAreaType& a = CurrentPlotArea();
    if (a.LogX && a.WorldX0 > 0 && a.WorldX1 > 0) {
        const double l0 = std::log10(a.WorldX0), l1 = std::log10(a.WorldX1);
        const double s = Scale(a.PlotRight - a.PlotLeft, l1 - l0);
        return static_cast<float>(std::pow(10.0, (px - (a.PlotLeft - a.Left)) / s + l0) / LogScaleX);
    }
    const double sx = Scale(a.Right - a.Left, static_cast<double>(a.FullX1) - a.FullX0);
    return static_cast<float>(px / sx + a.FullX0);
}

float PixelToWorldY(int py)
{
    const PlotAreaType& a = CurrentPlotArea();
    const int up = (a.Bottom - a.Top) - py;
    if (a.LogY && a.WorldY0 > 0 && a.WorldY1 > 0) {
        const double l0 = std::log10(a.WorldY0), l1 = std::log10(a.WorldY1);
        const double s = Scale(a.PlotBottom - a.PlotTop, l1 - l0);
        return static_cast<float>(std::pow(10.0, (up - (a.Bottom - a.PlotBottom)) / s + l0) / LogScaleY);
    }
    const double sy = Scale(a.Bottom - a.Top, static_cast<double>(a.FullY1) - a.FullY0);
    return static_cast<float>(up / sy + a.FullY0);
}

void ResetPlotAreas()
{
    for (int n = kPlotAreaCount - 1; n >= 0; --n) {
        g_areas[n] = PlotAreaType{};
        const StartLayout& s = kStartLayout[n];
        g_areas[n].MarginLeft = s.margins[0], g_areas[n].MarginTop = s.margins[1];
        g_areas[n].MarginRight = s.margins[2], g_areas[n].MarginBottom = s.margins[3];
        SetPlotAreaFraction(s.rect[0], s.rect[1], s.rect[2], s.rect[3], n);
        SetWorld(g_areas[n], 0, 0, kStartWorld, kStartWorld);
        g_areas[n].TickX = g_areas[n].TickY = 10.0f;
    }
    g_current = 1;
    LogScaleX = LogScaleY = 1.0f;
    TwoColourSuppressed = false;
    LastCurveEnds = PlotCurveEnds{};
}

namespace {
// The areas hold their start-up layout from the load of the library on.
const bool g_areasStarted = (ResetPlotAreas(), true);
} // namespace
