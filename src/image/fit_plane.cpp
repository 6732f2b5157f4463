// The plane of a sampled grid over a rectangle of i32 values, and its addition.
#include "image/fit.h"
#include "image/z_range.h"

#include <algorithm>
#include <limits>

int FitPlane(const int32_t* values, int w, int h, int x1, int y1, int x2, int y2, double out[3])
{
    if (!values || !out || w <= 0 || h <= 0) return 1;
    if (x1 > x2) std::swap(x1, x2);
    if (y1 > y2) std::swap(y1, y2);
    if (x1 == x2 || y1 == y2) return 1;
    int n = 128;
    while (n > 1 && ((x2 - x1 + 1) / n == 0 || (y2 - y1 + 1) / n == 0)) n /= 2;
    const int sx = (x2 - x1 + 1) / n, sy = (y2 - y1 + 1) / n;
    const int64_t lastX = x1 + int64_t{n - 1} * sx, lastY = y1 + int64_t{n - 1} * sy;
    if (x1 < 0 || y1 < 0 || lastX >= w || lastY >= h) return 1;

    const double g = n * (n - 1) / 2.0;                       // 0 + 1 + ... + n - 1
    const double g2 = (n - 1.0) * n * (2.0 * n - 1) / 6.0;    // the squares
    const double sumX = n * sx * g, sumY = n * sy * g;
    const double sumXX = n * double(sx) * sx * g2, sumYY = n * double(sy) * sy * g2;
    const double sumXY = double(sx) * sy * g * g;
    double s = 0, sX = 0, sY = 0;
    for (int j = 0; j < n; ++j) {
        const int y = y1 + j * sy;
        int64_t rowS = 0, rowX = 0;
        for (int i = 0; i < n; ++i) {
            const int64_t v = values[static_cast<size_t>(y) * w + x1 + static_cast<size_t>(i) * sx];
            rowS += v;
            rowX += int64_t{i} * sx * v;
        }
        s += static_cast<double>(rowS);
        sX += static_cast<double>(rowX);
        sY += static_cast<double>(j) * sy * static_cast<double>(rowS);
    }
    // Unknowns: the offset and the two slopes to add (hence the negated moments).
    double a[9] = {double(n) * n, -sumX, -sumY, sumX, -sumXX, -sumXY, sumY, -sumXY, -sumYY};
    const double b[3] = {s, sX, sY};
    return SolveLinearSystemFinite(a, out, b, 3, 3) == kSolveOk ? 0 : 1;
}

void ApplyPlane(bool on, int32_t* values, ImageHeaderType* item, double a, double b)
{
    if (!values || !item) return;
    if (!on) a = b = 0.0;
    const int w = item->nx, h = item->ny;
    int32_t lo = std::numeric_limits<int32_t>::max(), hi = std::numeric_limits<int32_t>::min();
    for (int y = 0; y < h; ++y)
        for (int x = 0; x < w; ++x) {
            int32_t& v = values[static_cast<size_t>(y) * w + x];
            v = TruncClampI32(v + x * a + y * b);
            lo = std::min(lo, v);
            hi = std::max(hi, v);
        }
    if (w > 0 && h > 0) ScaleIntegersToCodes(values, item, lo, hi);
}
