#include "display/selection_band.h"
#include "display/selection.h"
#include "display/vfs.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>

namespace {

struct Point {
    int x, y;
};

struct Segment {
    Point a, b;
};

// The segments of a shape (at most four), in the order of their strips.
int ShapeSegments(const Point* p, int n, int regionType, Segment out[4])
{
    if (n < 2) return 0;
    if (n == 2 && (regionType == 3 || regionType == 4 || regionType == 5)) {
        out[0] = {p[0], p[1]};
        return 1;
    }
    switch (regionType) {
    case 1:
        out[0] = {p[n - 2], p[n - 1]};
        return 1;
    case 2: {
        const Point q0 = p[0], q1 = p[1];
        out[0] = {{q1.x, q0.y}, {q0.x, q0.y}};   // top, from p1's side to p0
        out[1] = {{q0.x, q0.y}, {q0.x, q1.y}};   // left
        out[2] = {{q0.x, q1.y}, {q1.x, q1.y}};   // bottom
        out[3] = {{q1.x, q1.y}, {q1.x, q0.y}};   // right
        return 4;
    }
    case 3: {
        const Point q3{p[0].x + p[2].x - p[1].x, p[0].y + p[2].y - p[1].y};
        out[0] = {p[0], p[1]};
        out[1] = {p[1], p[2]};
        out[2] = {p[2], q3};
        out[3] = {q3, p[0]};
        return 4;
    }
    case 4: {
        out[0] = {p[0], p[1]};
        if (p[2].x == p[1].x && p[2].y == p[1].y) return 1;
        const Point q3{p[1].x + p[2].x - p[0].x, p[1].y + p[2].y - p[0].y};
        out[1] = {p[0], p[2]};
        out[2] = {p[1], q3};
        out[3] = {p[2], q3};
        return 4;
    }
    case 5:
        out[0] = {p[0], p[1]};
        out[1] = {p[1], p[2]};
        out[2] = {p[2], p[0]};
        return 3;
    default:
        return 0;
    }
}

bool InBounds(int x, int y)
{
    const SelectionStateType& s = SelectionState;
    return x >= s.BoundLeft && x <= s.BoundRight && y >= s.BoundTop && y <= s.BoundBottom && x >= 0 &&
           x < kFrameWidth && y >= 0 && y < kFrameHeight;
}

// Draws (saving what was there) or erases (writing back all but bytes of the band's colour) one
// pixel; `saved` is the next byte of the strip. Answers false when the strip is full.
struct Tracer {
    uint8_t* strip;
    int limit;
    bool draw;
    int used = 0;
    bool Visit(int x, int y)
    {
        if (!InBounds(x, y)) return true;
        if (used >= limit) return false;
        uint8_t& saved = strip[used++];
        if (draw) {
            uint8_t old = 0;
            GetFSPixel(&old, x, y);
            saved = old;
            PutFSPixel(kBandColour, 0, x, y);
        } else if (saved != kBandColour) {
            PutFSPixel(saved, 0, x, y);
        }
        return true;
    }
};

void TraceLine(Point a, Point b, Tracer& t)
{
    // Bresenham stepping from a to b, both ends included.
    int x = a.x, y = a.y;
    const int dx = std::abs(b.x - a.x), dy = -std::abs(b.y - a.y);
    const int sx = a.x < b.x ? 1 : -1, sy = a.y < b.y ? 1 : -1;
    int err = dx + dy;
    for (;;) {
        if (!t.Visit(x, y)) return;
        if (x == b.x && y == b.y) return;
        const int e2 = 2 * err;
        if (e2 >= dy) {
            err += dy;
            x += sx;
        }
        if (e2 <= dx) {
            err += dx;
            y += sy;
        }
    }
}

void TraceCircle(Point c, Point rim, Tracer& t)
{
    const double dxr = rim.x - c.x, dyr = rim.y - c.y;
    const int r = static_cast<int>(std::sqrt(dxr * dxr + dyr * dyr));
    for (int dy = -r; dy <= r; ++dy) {
        const int h = static_cast<int>(std::sqrt(static_cast<double>(r) * r - static_cast<double>(dy) * dy));
        if (!t.Visit(c.x - h, c.y + dy) || !t.Visit(c.x + h, c.y + dy)) return;
    }
}

// Draws or erases a shape; answers the frame rectangle it touched.
void TraceShape(const Point* p, int n, int regionType, uint8_t* buffer, bool draw, int rect[4])
{
    rect[0] = rect[1] = kFrameWidth;
    rect[2] = rect[3] = -1;
    auto grow = [rect](Point q, int margin) {
        rect[0] = std::min(rect[0], q.x - margin);
        rect[1] = std::min(rect[1], q.y - margin);
        rect[2] = std::max(rect[2], q.x + margin);
        rect[3] = std::max(rect[3], q.y + margin);
    };
    if (regionType == 6 && n >= 2) {
        Tracer t{buffer, kBandCircleLimit, draw};
        TraceCircle(p[0], p[1], t);
        const double dx = p[1].x - p[0].x, dy = p[1].y - p[0].y;
        grow(p[0], static_cast<int>(std::sqrt(dx * dx + dy * dy)) + 1);
        return;
    }
    Segment segments[4];
    const int count = ShapeSegments(p, n, regionType, segments);
    for (int i = 0; i < count; ++i) {
        Tracer t{buffer + i * kBandStripBytes, kBandStripBytes, draw};
        TraceLine(segments[i].a, segments[i].b, t);
        grow(segments[i].a, 1);
        grow(segments[i].b, 1);
    }
}

void Traced(const int16_t* xs, const int16_t* ys, int n, int regionType, uint8_t* buffer, bool draw)
{
    const SelectionStateType& s = SelectionState;
    Point p[kSelectionShownPoints];
    n = std::min(n, kSelectionShownPoints);
    for (int i = 0; i < n; ++i) p[i] = {s.BoundLeft + xs[i], s.BoundTop + ys[i]};
    int rect[4];
    BeginBatch();
    TraceShape(p, n, regionType, buffer, draw, rect);
    // The host repaints the rectangle, and the display list is drawn again over it.
    EndBatchAndShow(std::max(rect[0], 0), std::max(rect[1], 0), std::min(rect[2], kFrameWidth - 1),
                    std::min(rect[3], kFrameHeight - 1));
}

} // namespace

void ShowSelectedRegion(const int16_t* xs, const int16_t* ys, int n, int regionType, uint8_t* buffer, int mode)
{
    SelectionStateType& s = SelectionState;
    if (!buffer) return;
    if (s.BandShown) {
        Traced(s.ShownX, s.ShownY, s.ShownCount, s.ShownType, buffer, false);
        s.BandShown = 0;
    }
    if (mode != kBandReplace || !xs || !ys || n < 2) return;
    // A line is drawn from the last point but one: only those two are kept.
    const int from = regionType == 1 ? n - 2 : 0;
    const int kept = std::min(n - from, kSelectionShownPoints);
    for (int i = 0; i < kept; ++i) {
        s.ShownX[i] = xs[from + i];
        s.ShownY[i] = ys[from + i];
    }
    s.ShownCount = static_cast<int16_t>(kept);
    s.ShownType = static_cast<int16_t>(regionType);
    Traced(s.ShownX, s.ShownY, s.ShownCount, s.ShownType, buffer, true);
    s.BandShown = 1;
}
