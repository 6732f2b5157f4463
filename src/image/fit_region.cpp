// The fit region: a parallelogram given by three corners, and the span of one row inside it.
#include "image/fit.h"

#include <algorithm>
#include <cmath>

int SquareToPixel(int v, int size)
{
    return static_cast<int>(static_cast<int64_t>(v) * (size - 1) / 511);
}

Parallelogram MakeParallelogram(int ax, int ay, int bx, int by, int cx, int cy)
{
    Parallelogram p{};
    p.ax = ax;
    p.ay = ay;
    p.bx = bx;
    p.by = by;
    p.cx = cx;
    p.cy = cy;
    p.abx = bx - ax;
    p.aby = by - ay;
    p.acx = cx - ax;
    p.acy = cy - ay;
    p.dx = bx + cx - ax;
    p.dy = by + cy - ay;
    p.minX = std::min({ax, bx, cx, p.dx});
    p.maxX = std::max({ax, bx, cx, p.dx});
    p.minY = std::min({ay, by, cy, p.dy});
    p.maxY = std::max({ay, by, cy, p.dy});
    p.cross = int64_t{p.abx} * p.acy - int64_t{p.aby} * p.acx;
    return p;
}

void RowSpan(const Parallelogram& region, int y, int w, int* start, int* end)
{
    const int32_t edges[4][4] = {
        {region.ax, region.ay, region.bx, region.by},
        {region.bx, region.by, region.dx, region.dy},
        {region.dx, region.dy, region.cx, region.cy},
        {region.cx, region.cy, region.ax, region.ay},
    };
    bool crossed = false;
    int64_t lo = 0, hi = 0;
    for (const auto& e : edges) {
        const int64_t xa = e[0], ya = e[1], xb = e[2], yb = e[3];
        if (ya == yb || y < std::min(ya, yb) || y > std::max(ya, yb)) continue;
        const int64_t x = xa + (y - ya) * (xb - xa) / (yb - ya);
        lo = crossed ? std::min(lo, x) : x;
        hi = crossed ? std::max(hi, x) : x;
        crossed = true;
    }
    if (!crossed) {   // empty; left unclipped so that it stays empty on a one-column image
        *start = 1;
        *end = 0;
        return;
    }
    const int64_t last = std::max(w - 1, 0);
    *start = static_cast<int>(std::clamp<int64_t>(lo, 0, last));
    *end = static_cast<int>(std::clamp<int64_t>(hi, 0, last));
}

int FitSampleStep(int64_t n)
{
    if (n <= kFitSampleTarget) return 1;
    const int s = static_cast<int>(std::sqrt(static_cast<double>(n / kFitSampleTarget)));
    return std::max(s, 1);
}
