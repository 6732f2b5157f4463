// Statistics of a set of pixels of the measured image: the whole image, a rectangle, or the
// pixels of a mask; with a mapping set in spectroscopy mode also the mean spectrum of them.
#include "analysis/measure.h"

#include <algorithm>
#include <cmath>
#include <cstring>

#include "display/vfs.h"
#include "host/wait.h"
#include "mapping/cits.h"
#include "platform/clock.h"
#include "platform/platform_table.h"
#include "store/memory.h"
#include "store/units.h"

namespace {

// The DataSource of topography: the only kind with a volume and a surface.
constexpr uint32_t kTopography = 1;
constexpr uint32_t kLogCurrent = 3;
// The data type flag of a set whose images decode logarithmically.
constexpr uint32_t kLogSetType = 8;

struct Bounds {
    int left, top, right, bottom;   // inclusive
};

// The pixels to visit: the whole image, or the rectangle put in order and limited to it.
Bounds PassBounds(const RECT* rect, int nx, int ny)
{
    if (!rect) return {0, 0, nx - 1, ny - 1};
    auto limit = [](int v, int hi) { return v < 1 ? 0 : std::min(v, hi); };
    int l = static_cast<int>(std::min(rect->left, rect->right));
    int r = static_cast<int>(std::max(rect->left, rect->right));
    int t = static_cast<int>(std::min(rect->top, rect->bottom));
    int b = static_cast<int>(std::max(rect->top, rect->bottom));
    return {limit(l, nx - 1), limit(t, ny - 1), limit(r, nx - 1), limit(b, ny - 1)};
}

inline bool InMask(const int16_t* mask, size_t i) { return !mask || (mask[i] & 0x7fff) != 0; }

// The surface of row y of the pass, doubled: two triangles per pixel of the set, each spanned
// by the pixel, its left and upper neighbours and the one above left. A pixel of the pass's
// first row or column has no neighbours there and adds two flat triangles; so does a triangle
// whose neighbours are not all in the set. Heights are of a linear image (raw times scale);
// the factors dx and dy stand crossed over, which square pixels do not notice.
double RowSurface(const uint16_t* pix, int nx, int y, const Bounds& pass, const int16_t* mask, double scale,
                  double dx, double dy, double cell)
{
    const size_t row = static_cast<size_t>(y) * static_cast<size_t>(nx);
    const double cell2 = cell * cell;
    double flat = 0, tilted = 0, tilted2 = 0;
    if (y == pass.top) {
        for (int x = pass.left; x <= pass.right; ++x)
            if (InMask(mask, row + static_cast<size_t>(x))) flat += 2.0 * cell;
        return flat;
    }
    const uint16_t* cur = pix + row;
    const uint16_t* up = cur - nx;
    const double sx = scale * dx, sy = scale * dy;
    if (!mask) {
        // Every pixel is in the set: two independent sums keep the square roots in flight.
        flat = 2.0 * cell;
        for (int x = pass.left + 1; x <= pass.right; ++x) {
            const double p = up[x - 1], q = up[x], r = cur[x - 1], s = cur[x];
            const double a1 = (q - p) * sx, c1 = (s - q) * sy;
            const double a2 = (s - r) * sx, c2 = (r - p) * sy;
            tilted += std::sqrt(a1 * a1 + c1 * c1 + cell2);
            tilted2 += std::sqrt(a2 * a2 + c2 * c2 + cell2);
        }
        return flat + tilted + tilted2;
    }
    for (int x = pass.left; x <= pass.right; ++x) {
        const size_t i = row + static_cast<size_t>(x);
        if (!InMask(mask, i)) continue;
        if (x == pass.left) {
            flat += 2.0 * cell;
            continue;
        }
        const double p = up[x - 1], q = up[x], r = cur[x - 1], s = cur[x];
        const size_t u = i - static_cast<size_t>(nx);
        if (InMask(mask, u) && InMask(mask, u - 1)) {
            const double a = (q - p) * sx, c = (s - q) * sy;
            tilted += std::sqrt(a * a + c * c + cell2);
        } else {
            flat += cell;
        }
        if (InMask(mask, i - 1) && InMask(mask, u - 1)) {
            const double a = (s - r) * sx, c = (r - p) * sy;
            tilted2 += std::sqrt(a * a + c * c + cell2);
        } else {
            flat += cell;
        }
    }
    return flat + tilted + tilted2;
}

} // namespace

void CMeasure::MarkerAreaCalcs(int32_t* state, bool hourglass, const ImageHeaderType* image, const RECT* rect,
                               const int16_t* mask, const AreaOutputs& out)
{
    int32_t localState = kCalcRunOn;
    int32_t& st = state ? *state : localState;
    if (!image || !image->PixData || image->nx <= 0 || image->ny <= 0) {
        if (out.count) *out.count = 0;
        return;
    }
    const int nx = image->nx, ny = image->ny;
    if (hourglass) PlatformSetWaitCursor(true);
    const bool linear = image->DataSource != kLogCurrent;
    const bool topo = image->DataSource == kTopography;
    const double dx = static_cast<double>(image->ImageSizeX) / nx;
    const double dy = static_cast<double>(image->ImageSizeY) / ny;
    const double cell = std::sqrt(dx * dx * dy * dy);
    const double scale = (static_cast<double>(image->Zhi) - image->Zlo) / 65535.0;
    const double z0 = GetImageDataValue(0, 0.0f, image);
    auto zOf = [&](uint16_t raw) -> double {
        return linear ? raw * scale : static_cast<double>(GetImageDataValue(0, raw, image));
    };

    // The spectrum path.
    const CITSHeaderType* set = image->CITSHeaderPtr;
    const bool spectra = out.spectrum && set && Spectroscopy && set->ni >= 1;
    const int ni = spectra ? set->ni : 0;
    const bool linearSet = spectra && CITSEntry(set, 0)->data_type != kLogSetType;
    uint64_t* rawSums = nullptr;
    double* valueSums = nullptr;
    if (spectra) {
        if (linearSet)
            rawSums = static_cast<uint64_t*>(ecalloc(static_cast<size_t>(ni), sizeof(uint64_t)));
        else
            valueSums = static_cast<double*>(ecalloc(static_cast<size_t>(ni), sizeof(double)));
        if (!rawSums && !valueSums) {
            if (hourglass) PlatformSetWaitCursor(false);
            if (out.count) *out.count = 0;
            return;
        }
    }
    const uint32_t start = TickMilliseconds();
    bool cursorSet = false;

    double b = BaseHeight;
    if (linear) b -= z0;
    const Bounds pass = PassBounds(rect, nx, ny);
    int64_t n = 0;
    uint16_t rawMin = 65535, rawMax = 0;
    double sum = 0, sumsq = 0, vol = 0, surf = 0;
    bool interrupted = false;
    for (int y = pass.top; y <= pass.bottom && !interrupted; ++y) {
        if (spectra && st == kCalcInterruptible) {
            if (TickMilliseconds() - start < kCalcGiveWayMs) {
                if (PeekUserActivity()) interrupted = true;
            } else if (PeekUserActivity()) {
                interrupted = true;
            } else {
                st = kCalcRunOn;
                PlatformSetWaitCursor(true);
                cursorSet = true;
            }
            if (interrupted) break;
        }
        const size_t row = static_cast<size_t>(y) * static_cast<size_t>(nx);
        for (int x = pass.left; x <= pass.right; ++x) {
            const size_t i = row + static_cast<size_t>(x);
            if (!InMask(mask, i)) continue;
            const uint16_t raw = image->PixData[i];
            ++n;
            rawMin = std::min(rawMin, raw);
            rawMax = std::max(rawMax, raw);
            const double z = zOf(raw);
            sum += z;
            sumsq += z * z;
            if (topo) {
                if (BaseMode == TV_BASE_ABOVE && z > b) vol += z - b;
                else if (BaseMode == TV_BASE_BELOW && z < b) vol += b - z;
                else if (BaseMode == TV_BASE_BOTH) vol += std::fabs(b - z);
            }
            if (spectra) {
                const int sx = static_cast<int>(static_cast<int64_t>(x) * set->cx / nx);
                const int sy = static_cast<int>(static_cast<int64_t>(y) * set->cy / ny);
                for (int k = 0; k < ni; ++k) {
                    const uint16_t* line = GetCITSImagePtr(set, k, static_cast<uint32_t>(sy));
                    if (!line) continue;
                    if (linearSet) rawSums[k] += line[sx];
                    else valueSums[k] += CITSData2Current(CITSEntry(set, k), line[sx]);
                }
            }
        }
        if (topo) surf += RowSurface(image->PixData, nx, y, pass, mask, scale, dx, dy, cell);
    }
    if (interrupted) {
        st = kCalcInterrupted;
        PostRedraw();
    }
    if (interrupted || n == 0) {
        if (out.count) *out.count = 0;
    } else {
        const double meanFromBase = sum / static_cast<double>(n);
        const float minV = linear ? static_cast<float>(rawMin * scale + z0) : GetImageDataValue(0, rawMin, image);
        const float maxV = linear ? static_cast<float>(rawMax * scale + z0) : GetImageDataValue(0, rawMax, image);
        const float meanV = static_cast<float>(linear ? meanFromBase + z0 : meanFromBase);
        // The deviations of a linear image are taken from the raw minimum.
        const double m = linear ? static_cast<double>(meanV) - minV : static_cast<double>(meanV);
        const double rms = std::sqrt(std::max(0.0, sumsq / static_cast<double>(n) - m * m));
        if (out.min) *out.min = minV;
        if (out.max) *out.max = maxV;
        if (out.mean) *out.mean = meanV;
        if (out.area) *out.area = static_cast<float>(static_cast<double>(n) * dx * dy);
        if (out.surface) *out.surface = topo ? static_cast<float>(surf / 2.0) : kNoStatistic;
        if (out.volume) {
            const float cellArea = (image->ImageSizeX / static_cast<float>(nx)) * (image->ImageSizeY / static_cast<float>(ny));
            *out.volume = topo ? static_cast<float>(vol) * cellArea : kNoStatistic;
        }
        if (out.rms) *out.rms = static_cast<float>(rms);
        if (out.ra) {
            double ra = 0;
            for (int y = pass.top; y <= pass.bottom; ++y)
                for (int x = pass.left; x <= pass.right; ++x) {
                    const size_t i = static_cast<size_t>(y) * static_cast<size_t>(nx) + static_cast<size_t>(x);
                    if (!InMask(mask, i)) continue;
                    ra += std::fabs(zOf(image->PixData[i]) - m);
                }
            *out.ra = static_cast<float>(ra / static_cast<double>(n));
        }
        if (spectra) {
            for (int k = 0; k < ni; ++k) {
                if (linearSet) {
                    const uint64_t mean = rawSums[k] / static_cast<uint64_t>(n);
                    out.spectrum[k] = CITSData2Current(CITSEntry(set, k), static_cast<uint16_t>(mean));
                } else {
                    out.spectrum[k] = static_cast<float>(valueSums[k]) / static_cast<float>(n);
                }
            }
        }
        if (out.count) *out.count = static_cast<int32_t>(n);
    }
    efree(rawSums);
    efree(valueSums);
    if (cursorSet) PlatformSetWaitCursor(false);
    if (hourglass) PlatformSetWaitCursor(false);
}

int32_t CMeasure::CalcNoOfPointsThatOverlapWithMask(const RECT& rect, const int16_t* mask, int32_t w, int32_t h) const
{
    if (!mask || w <= 0 || h <= 0) return 0;
    auto limit = [](int v) { return v < 1 ? 0 : std::min(v, kFrameWidth - 1); };
    const int left = limit(rect.left), right = limit(rect.right);
    const int top = limit(rect.top), bottom = limit(rect.bottom);
    int32_t count = 0;
    for (int y = top; y < bottom; ++y) {
        const int row = y * h / kFrameHeight;
        for (int x = left; x < right; ++x) {
            const int col = x * w / kFrameWidth;
            if (mask[static_cast<size_t>(row) * static_cast<size_t>(w) + static_cast<size_t>(col)] != 0) ++count;
        }
    }
    return count;
}
