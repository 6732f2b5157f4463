// The line walk of the markers: from (x1, y1) to (x2, y2) in max(|dx|, |dy|) steps. Each axis
// keeps an error sum that starts at 0, grows by its own extent each step, and moves the axis
// one pixel (and drops by the step count) when it reaches the step count. Both ends are
// visited. Answers the number of pixels visited.
#pragma once

#include <cstdint>
#include <cstdlib>

template <typename Visit>
int32_t WalkLine(int x1, int y1, int x2, int y2, Visit visit)
{
    const int64_t ax = std::llabs(static_cast<int64_t>(x2) - x1), ay = std::llabs(static_cast<int64_t>(y2) - y1);
    const int sx = x2 >= x1 ? 1 : -1, sy = y2 >= y1 ? 1 : -1;
    const int64_t steps = ax > ay ? ax : ay;
    int64_t ex = 0, ey = 0;
    int x = x1, y = y1;
    for (int64_t s = 0;; ++s) {
        visit(x, y);
        if (s == steps) break;
        ex += ax;
        ey += ay;
        if (ex >= steps) {
            ex -= steps;
            x += sx;
        }
        if (ey >= steps) {
            ey -= steps;
            y += sy;
        }
    }
    return static_cast<int32_t>(steps + 1);
}
