// Curves, bars, symbols and titles of the current plot area, and the preparation of data for a
// log axis.
#include "display/cvfs.h"
#include "display/plot.h"
#include "display/vfs.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr int kMaxScaleSteps = 100;

// While it lives the area maps points: on a log axis through log10 of the world limits (a value
// at or below 0 to the lower limit, one beyond the upper limit to the upper), on a linear axis
// limited to the world. The area is put back at the end.
class PointMapping {
public:
    PointMapping() : area_(CurrentPlotArea()), saved_(area_)
    {
        const float x0 = Log(area_.LogX, area_.WorldX0), x1 = Log(area_.LogX, area_.WorldX1);
        const float y0 = Log(area_.LogY, area_.WorldY0), y1 = Log(area_.LogY, area_.WorldY1);
        area_.LogX = area_.LogY = 0;
        SetAxisRange(x0, y0, x1, y1);
    }
    ~PointMapping() { area_ = saved_; }
    PointMapping(const PointMapping&) = delete;
    PointMapping& operator=(const PointMapping&) = delete;

    float X(float x) const { return Value(saved_.LogX, x, saved_.WorldX0, saved_.WorldX1); }
    float Y(float y) const { return Value(saved_.LogY, y, saved_.WorldY0, saved_.WorldY1); }
    int PixelX(float x) const { return WorldToPixelX(X(x)); }
    int PixelY(float y) const { return WorldToPixelY(Y(y)); }

private:
    static float Log(bool isLog, float v) { return isLog && v > 0 ? std::log10(v) : v; }
    static float Value(bool isLog, float v, float lo, float hi)
    {
        if (std::isnan(v)) return v;
        if (isLog) {
            if (v <= 0) return Log(true, lo);
            if (v > hi) return Log(true, hi);
            return std::log10(v);
        }
        return std::clamp(v, std::min(lo, hi), std::max(lo, hi));
    }
    PlotAreaType& area_;
    PlotAreaType saved_;
};

// Symbol outlines on a unit grid: polylines of up to 5 points, -1 ends a set.
struct SymbolShape {
    int points;
    float x[5], y[5];
};
constexpr SymbolShape kSymbols[3][2] = {
    {{2, {-1, 1}, {0, 0}}, {2, {0, 0}, {-1, 1}}},                                       // cross
    {{5, {-1, 1, 1, -1, -1}, {-1, -1, 1, 1, -1}}, {0, {}, {}}},                          // square
    {{4, {-1, 1, 0, -1}, {-1, -1, 1, -1}}, {0, {}, {}}},                                 // triangle
};

int AreaLeft() { return CurrentPlotArea().Left; }
int AreaTop() { return CurrentPlotArea().Top; }

} // namespace

void PlotCurve(const float* x, const float* y, int n, int colour, int colour2, int width, int breakAtHalf,
               int twoColour)
{
    if (!x || !y || n <= 0) return;
    const PointMapping map;
    const bool second = twoColour && !TwoColourSuppressed;
    FSMoveTo(map.PixelX(x[0]), map.PixelY(y[0]));
    for (int i = 1; i < n; ++i) {
        const int px = map.PixelX(x[i]), py = map.PixelY(y[i]);
        if (breakAtHalf && i == n / 2) {
            FSMoveTo(px, py);
            continue;
        }
        FSSetColour(!(x[i] < x[i - 1]) && second ? colour2 : colour);
        FSLineTo(px, py, width);
    }
    const int last = second && !breakAtHalf && n / 2 - 1 >= 0 ? n / 2 - 1 : n - 1;
    LastCurveEnds = {AreaLeft() + map.PixelX(x[0]), AreaTop() + map.PixelY(y[0]), AreaLeft() + map.PixelX(x[last]),
                     AreaTop() + map.PixelY(y[last])};
}

void PlotBars(const float* x, const float* y, int n, float barWidth, int colour, int fillStyle)
{
    if (!x || !y || n <= 0) return;
    const PlotAreaType& a = CurrentPlotArea();
    float base = a.WorldY0 >= 0 ? a.WorldY0 : a.WorldY1 > 0 ? 0.0f : a.WorldY1;
    if (a.LogY) base = a.WorldY0;
    const PointMapping map;
    FSSetColour(colour);
    const int baseY = map.PixelY(base);
    for (int i = 0; i < n; ++i) {
        double w = barWidth;
        if (w == 0) {
            if (a.LogX) w = (std::log10(std::max(a.WorldX1, 1e-30f)) - std::log10(std::max(a.WorldX0, 1e-30f))) / (n * 1.1);
            else if (n > 1) w = 1.2 * std::fabs(static_cast<double>(x[i > 0 ? i : 1]) - x[i > 0 ? i - 1 : 0]);
        }
        const double cx = map.X(x[i]);
        const int left = WorldToPixelX(static_cast<float>(cx - w / 2)), right = WorldToPixelX(static_cast<float>(cx + w / 2));
        FSBox(fillStyle ? VFS_ITEM_RECT : VFS_ITEM_FILL, left, baseY, std::max(left, right), map.PixelY(y[i]));
    }
}

void PlotSymbols(const float* x, const float* y, int n, int colour, int symbol)
{
    if (!x || !y || n <= 0) return;
    if (symbol < 0 || symbol > 2) symbol = 0;
    const PlotAreaType& a = CurrentPlotArea();
    const int size = std::max(2, (a.PlotRight - a.PlotLeft) / 100);
    const PointMapping map;
    FSSetColour(colour);
    for (int i = 0; i < n; ++i) {
        const int px = map.PixelX(x[i]), py = map.PixelY(y[i]);
        for (const SymbolShape& s : kSymbols[symbol]) {
            if (s.points < 2) continue;
            FSMoveTo(px + PlotRound(s.x[0] * size), py - PlotRound(s.y[0] * size));
            for (int k = 1; k < s.points; ++k) FSLineTo(px + PlotRound(s.x[k] * size), py - PlotRound(s.y[k] * size), 1);
        }
    }
}

void PlotTitleBottom(const char* text)
{
    if (!text) return;
    const PlotAreaType& a = CurrentPlotArea();
    FSSetTextAlign(TextAlignWord(1, 1, 0));
    FSTextOut((a.PlotLeft + a.PlotRight) / 2 - a.Left, a.PlotBottom - a.Top + (a.Bottom - a.PlotBottom) * 3 / 5, text);
}

void PlotTitleTop(const char* text)
{
    if (!text) return;
    const PlotAreaType& a = CurrentPlotArea();
    FSSetTextAlign(TextAlignWord(1, 1, 0));
    FSTextOut((a.PlotLeft + a.PlotRight) / 2 - a.Left, (a.PlotTop - a.Top) / 2, text);
}

void PlotTitleLeft(const char* text)
{
    if (!text) return;
    const PlotAreaType& a = CurrentPlotArea();
    // The current font turned a quarter anticlockwise: the title reads upward, centred on the
    // plot's height, its top a quarter of the left margin in from the area's edge.
    const FontRecType level = FSGetTextFont();
    FontRecType turned = level;
    turned.Font.lfEscapement = kEscapementUp;
    turned.Font.lfOrientation = kEscapementUp;
    FSSetTextFont(turned);
    FSSetTextAlign(TextAlignWord(1, 2, 0));
    FSTextOut(std::max(0, (a.PlotLeft - a.Left) / 4), (a.PlotTop + a.PlotBottom) / 2 - a.Top, text);
    FSSetTextFont(level);
}

void GetPlotExtremes(const float* x, int n, float* min, float* max)
{
    float lo = kNoExtreme, hi = -kNoExtreme;
    for (int i = 0; x && i < n; ++i) {
        if (!std::isfinite(x[i])) continue;
        lo = std::min(lo, x[i]);
        hi = std::max(hi, x[i]);
    }
    if (min) *min = lo;
    if (max) *max = hi;
}

namespace {

// The power of ten that brings a positive minimum between 1 and 10.
float DecadeScale(float* min, float* max)
{
    float scale = 1.0f;
    if (!(*min > 0) || !std::isfinite(*min)) return scale;
    for (int k = 0; k < kMaxScaleSteps && *min < 1.0f; ++k) {
        scale *= 10.0f, *min *= 10.0f, *max *= 10.0f;
    }
    for (int k = 0; k < kMaxScaleSteps && *min > 10.0f; ++k) {
        scale /= 10.0f, *min /= 10.0f, *max /= 10.0f;
    }
    return scale;
}

void Multiply(float* v, int n, float scale)
{
    if (!v || scale == 1.0f) return;
    for (int i = 0; i < n; ++i) v[i] *= scale;
}

} // namespace

void ApplyLogScale(float* x, float* y, int n, int logX, int logY, float* xmin, float* xmax, float* ymin, float* ymax)
{
    LogScaleX = LogScaleY = 1.0f;
    if (logX && xmin && xmax) LogScaleX = DecadeScale(xmin, xmax);
    if (logY && ymin && ymax) LogScaleY = DecadeScale(ymin, ymax);
    Multiply(x, n, LogScaleX);
    Multiply(y, n, LogScaleY);
}
