#include "display/clip_line.h"

#include <algorithm>

namespace {

enum OutCode : unsigned { kInside = 0, kLeft = 1, kRight = 2, kTop = 4, kBottom = 8 };

struct Limits {
    double left, top, right, bottom;
};

unsigned CodeOf(double x, double y, const Limits& r)
{
    unsigned code = kInside;
    if (x < r.left) code |= kLeft;
    else if (x > r.right) code |= kRight;
    if (y < r.top) code |= kTop;
    else if (y > r.bottom) code |= kBottom;
    return code;
}

} // namespace

int ClipLineCohenSutherland(int32_t* x1, int32_t* y1, int32_t* x2, int32_t* y2, const RECT& rect)
{
    if (!x1 || !y1 || !x2 || !y2) return 0;
    const Limits r{static_cast<double>(std::min(rect.left, rect.right)), static_cast<double>(std::min(rect.top, rect.bottom)),
                   static_cast<double>(std::max(rect.left, rect.right)), static_cast<double>(std::max(rect.top, rect.bottom))};
    double xa = *x1, ya = *y1, xb = *x2, yb = *y2;
    unsigned codeA = CodeOf(xa, ya, r), codeB = CodeOf(xb, yb, r);
    // Each pass moves one end onto an edge line and clears that edge's bit for good; four
    // edges and two ends bound the number of passes.
    for (int pass = 0; pass < 8; ++pass) {
        if ((codeA | codeB) == kInside) {
            *x1 = static_cast<int32_t>(xa);
            *y1 = static_cast<int32_t>(ya);
            *x2 = static_cast<int32_t>(xb);
            *y2 = static_cast<int32_t>(yb);
            return 1;
        }
        if (codeA & codeB) return 0;
        const unsigned out = codeA ? codeA : codeB;
        double x, y;
        if (out & kTop) {
            x = xa + (xb - xa) * (r.top - ya) / (yb - ya);
            y = r.top;
        } else if (out & kBottom) {
            x = xa + (xb - xa) * (r.bottom - ya) / (yb - ya);
            y = r.bottom;
        } else if (out & kRight) {
            y = ya + (yb - ya) * (r.right - xa) / (xb - xa);
            x = r.right;
        } else {
            y = ya + (yb - ya) * (r.left - xa) / (xb - xa);
            x = r.left;
        }
        if (out == codeA) {
            xa = x, ya = y;
            codeA = CodeOf(xa, ya, r);
        } else {
            xb = x, yb = y;
            codeB = CodeOf(xb, yb, r);
        }
    }
    return 0;
}
