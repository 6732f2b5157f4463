// Profile reading and profile roughness.
#include "analysis/profile.h"

#include <algorithm>
#include <cfloat>
#include <cmath>
#include <cstdlib>

#include "store/memory.h"
#include "store/units.h"

namespace {

// One of the two triangles of a crossing, or a trapezium, to the side its sign names.
void AddArea(double area, bool isAbove, double* above, double* below)
{
    if (isAbove) *above += area;
    else *below += area;
}

// Keeps the 5 most extreme values; `higher` true keeps the highest.
struct ExtremeSlots {
    double slot[5];
    int seen = 0;
    bool higher;
    explicit ExtremeSlots(bool h) : higher(h)
    {
        for (double& s : slot) s = h ? -static_cast<double>(FLT_MAX) : static_cast<double>(FLT_MAX);
    }
    void Offer(double v)
    {
        ++seen;
        int least = 0;
        for (int k = 1; k < 5; ++k)
            if (higher ? slot[k] < slot[least] : slot[k] > slot[least]) least = k;
        if (higher ? v > slot[least] : v < slot[least]) slot[least] = v;
    }
};

} // namespace

float ProfileRzjis(const float* y, int n, float mean, int* divisor)
{
    float result = 0.0f;
    int d = 1;
    for (;; ++d) {
        const int half = (n / d) / 2;
        ExtremeSlots peaks(true), valleys(false);
        for (int i = 0; i < n; ++i) {
            if (i > 0 && y[i - 1] == y[i]) continue;   // a run of equal values counts once
            const int lo = std::max(0, i - half), hi = std::min(n - 1, i + half);
            bool peak = true, valley = true;
            for (int j = lo; j <= hi && (peak || valley); ++j) {
                if (y[j] > y[i]) peak = false;
                if (y[j] < y[i]) valley = false;
            }
            if (peak) peaks.Offer(y[i]);
            if (valley) valleys.Offer(y[i]);
        }
        result = 0.0f;
        if (peaks.seen >= 5 && valleys.seen >= 5) {
            double s = 0;
            for (int k = 0; k < 5; ++k) s += std::fabs(peaks.slot[k] - mean) + std::fabs(valleys.slot[k] - mean);
            result = static_cast<float>(s / 5.0);
        }
        if (result != 0.0f || d >= 3) break;
    }
    if (divisor) *divisor = d;
    return result;
}

void ProfileStatistics(const float* x, const float* y, int n, float* Ra, float* Rq, float* Rzjis, float* Rz,
                       float* surface, float* above, float* below, float m, float c)
{
    if (!x || !y || n <= 0) return;
    double mean = 0;
    for (int i = 0; i < n; ++i) mean += y[i];
    mean /= n;
    double ra = 0, rq = 0, up = 0, down = 0, surf = 0;
    float lo = y[0], hi = y[0];
    for (int i = 0; i < n; ++i) {
        const double d = y[i] - mean;
        ra += std::fabs(d);
        rq += d * d;
        lo = std::min(lo, y[i]);
        hi = std::max(hi, y[i]);
        if (i == 0) continue;
        const double xa = x[i - 1], xb = x[i], ya = y[i - 1], yb = y[i];
        const double l0 = m * xa + c, l1 = m * xb + c;
        const double slope = (ya - yb) / (xa - xb);
        const double intercept = ya - slope * xa;
        const double xc = (intercept - c) / (m - slope);
        const bool crosses = std::isfinite(xc) && ((xa < xc && xc < xb) || (xb < xc && xc < xa));
        if (crosses) {
            AddArea(std::fabs((ya - l0) / 2.0 * (xc - xa)), ya - l0 >= 0, &up, &down);
            AddArea(std::fabs((yb - l1) / 2.0 * (xb - xc)), yb - l1 >= 0, &up, &down);
        } else {
            AddArea(std::fabs((yb + ya - l0 - l1) / 2.0 * (xb - xa)), ya >= l0, &up, &down);
        }
        surf += std::hypot(xb - xa, yb - ya);
    }
    if (Ra) *Ra = static_cast<float>(ra / n);
    if (Rq) *Rq = static_cast<float>(std::sqrt(rq / n));
    if (Rz) *Rz = hi - lo;
    if (surface) *surface = static_cast<float>(surf);
    if (above) *above = static_cast<float>(up);
    if (below) *below = static_cast<float>(down);
    if (Rzjis) *Rzjis = ProfileRzjis(y, n, static_cast<float>(mean), nullptr);
}

bool ProfileLine(const ImageHeaderType* image, float x1, float y1, float x2, float y2, int width, float* x, float* z,
                 int n, bool physical, bool interpolate)
{
    if (!image || !image->PixData || image->nx <= 0 || image->ny <= 0 || n < 1 || !x || !z) return false;
    const int nx = image->nx, ny = image->ny;
    const double L = std::hypot(static_cast<double>(x2) - x1, static_cast<double>(y2) - y1);
    const double theta = std::atan2(static_cast<double>(y2) - y1, static_cast<double>(x2) - x1);
    const int m = std::max(10, static_cast<int>(std::lround(L)));
    double step;
    if (physical) {
        const double sx = (x2 - x1) * static_cast<double>(image->ImageSizeX) / std::max(1, nx - 1);
        const double sy = (y2 - y1) * static_cast<double>(image->ImageSizeY) / std::max(1, ny - 1);
        step = std::hypot(sx, sy) / (m - 1);
    } else {
        step = L / n;
    }
    // One block for the samples: X then Z. A failed allocation skips the line.
    double* block = static_cast<double*>(ecalloc(2 * static_cast<size_t>(m), sizeof(double)));
    if (!block) return false;
    double* sx = block;
    double* sz = block + m;
    const double cs = std::cos(theta), sn = std::sin(theta);
    const int half = std::abs(width) / 2;
    auto pixel = [&](int px, int py) { return static_cast<double>(image->PixData[static_cast<size_t>(py) * nx + px]); };
    for (int i = 0; i < m; ++i) {
        double total = 0;
        int count = 0;
        for (int k = -half; k <= half; ++k) {
            const double px = i * cs - k * sn + x1;
            const double py = i * sn + k * cs + y1;
            if (!(px >= 0 && py >= 0 && px <= nx - 1 && py <= ny - 1)) continue;
            const int ix = static_cast<int>(px), iy = static_cast<int>(py);
            const int ix1 = std::min(ix + 1, nx - 1), iy1 = std::min(iy + 1, ny - 1);   // last row twice
            const double fx = px - ix, fy = py - iy;
            const double top = pixel(ix, iy) * (1 - fx) + pixel(ix1, iy) * fx;
            const double bottom = pixel(ix, iy1) * (1 - fx) + pixel(ix1, iy1) * fx;
            total += top * (1 - fy) + bottom * fy;
            ++count;
        }
        const double raw = count ? total / count : 0.0;
        sx[i] = i * step;
        sz[i] = interpolate ? GetImageDataValue(0, static_cast<float>(raw), image) : raw;
    }
    for (int j = 0; j < n; ++j) {
        const double pos = static_cast<double>(m) * j / n;
        if (pos >= m - 1) {
            x[j] = static_cast<float>(sx[m - 1]);
            z[j] = static_cast<float>(sz[m - 1]);
            continue;
        }
        const int a = static_cast<int>(pos);
        const double f = pos - a;
        x[j] = static_cast<float>(sx[a] + (sx[a + 1] - sx[a]) * f);
        z[j] = static_cast<float>(sz[a] + (sz[a + 1] - sz[a]) * f);
    }
    efree(block);
    return true;
}
