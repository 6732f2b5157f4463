// The polynomial surface fit of an image, with thresholds, a region and sampling.
#include "image/fit.h"
#include "image/fit_chunks.h"
#include "host/errors.h"
#include "store/memory.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>
#include <vector>

namespace {

constexpr int kMaxPower = 2 * kMaxFitDegree;        // 38
constexpr int kMomentSide = kMaxPower + 1;          // 39
constexpr int kMaxTerms = (kMaxFitDegree + 1) * (kMaxFitDegree + 1);
// Sampled rows a chunk of the moments holds, image rows a chunk of the residual holds.
constexpr int kMomentChunkRows = 16;
constexpr int kResidualChunkRows = 32;

// The rows and columns that enter the sums.
struct Sampling {
    bool region = false;
    Parallelogram shape{};
    int firstRow = 0, lastRow = -1;
    int step = 1;
    int64_t count = 0;   // N
};

Sampling ChooseSampling(const ImageHeaderType* source, int useRegion, const int16_t points[6])
{
    const int w = source->nx, h = source->ny;
    Sampling s;
    if (useRegion) {
        s.region = true;
        s.shape = MakeParallelogram(SquareToPixel(points[0], w), SquareToPixel(points[1], h),
                                    SquareToPixel(points[2], w), SquareToPixel(points[3], h),
                                    SquareToPixel(points[4], w), SquareToPixel(points[5], h));
        // A region of no area holds no pixels, even where its edges still cross rows.
        if (s.shape.cross != 0) {
            s.firstRow = std::clamp(s.shape.minY, 0, h - 1);
            s.lastRow = std::clamp(s.shape.maxY, 0, h - 1);
            for (int y = s.firstRow; y <= s.lastRow; ++y) {
                int a, b;
                RowSpan(s.shape, y, w, &a, &b);
                if (b >= a) s.count += b - a + 1;
            }
        }
    } else {
        s.firstRow = 0;
        s.lastRow = h - 1;
        s.count = int64_t{w} * h;
    }
    s.step = FitSampleStep(s.count);
    return s;
}

// The moments M[a][b] (a up to 2 dy, b up to 2 dx) and the right side R of the sampled codes
// within low..high.
struct Moments {
    double m[kMomentSide * kMomentSide];
    double r[kMaxTerms];
};

void SumMoments(const ImageHeaderType* source, const Sampling& s, const double* powers, int columns, int low,
                int high, int dx, int dy, int threads, Moments* out)
{
    const int w = source->nx;
    const int sampledRows = s.lastRow >= s.firstRow ? (s.lastRow - s.firstRow) / s.step + 1 : 0;
    const int chunks = (sampledRows + kMomentChunkRows - 1) / kMomentChunkRows;
    const int nxTerms = dx + 1;
    std::vector<Moments> parts(static_cast<size_t>(chunks));
    RunFixedChunks(chunks, threads, [&](int k) {
        Moments& part = parts[static_cast<size_t>(k)];
        std::memset(&part, 0, sizeof part);
        const int rowEnd = std::min(sampledRows, (k + 1) * kMomentChunkRows);
        for (int sr = k * kMomentChunkRows; sr < rowEnd; ++sr) {
            const int y = s.firstRow + sr * s.step;
            int x0 = 0, x1 = w - 1;
            if (s.region) RowSpan(s.shape, y, w, &x0, &x1);
            const uint16_t* row = source->PixData + static_cast<size_t>(y) * w;
            const double* ty = powers + static_cast<size_t>(y) * columns;
            for (int x = x0; x <= x1; x += s.step) {
                const int p = row[x];
                if (p < low || p > high) continue;
                const double* tx = powers + static_cast<size_t>(x) * columns;
                for (int a = 0; a <= 2 * dy; ++a) {
                    double* m = part.m + a * kMomentSide;
                    for (int b = 0; b <= 2 * dx; ++b) {
                        const double t = tx[b] * ty[a];
                        m[b] += t;
                        if (a <= dy && b <= dx) part.r[a * nxTerms + b] += p * t;
                    }
                }
            }
        }
    });
    std::memset(out, 0, sizeof *out);
    for (const Moments& part : parts) {
        for (int i = 0; i < kMomentSide * kMomentSide; ++i) out->m[i] += part.m[i];
        for (int i = 0; i < kMaxTerms; ++i) out->r[i] += part.r[i];
    }
}

struct Range {
    double lo = std::numeric_limits<double>::infinity();
    double hi = -std::numeric_limits<double>::infinity();
    void Add(double v)
    {
        lo = std::min(lo, v);
        hi = std::max(hi, v);
    }
    void Add(const Range& o)
    {
        lo = std::min(lo, o.lo);
        hi = std::max(hi, o.hi);
    }
    double Gain() const { return hi > lo ? 65535.0 / (hi - lo) : 0.0; }
};

uint16_t StretchCode(double v, double lo, double gain)
{
    const double c = (v - lo) * gain + 0.0;
    if (!(c > 0.0)) return 0;   // also NaN
    if (c >= 65535.0) return 65535;
    return static_cast<uint16_t>(c);
}

} // namespace

int FitPoly2D(ImageHeaderType* result, const ImageHeaderType* source, ImageHeaderType* background, int low, int high,
              int useRegion, const int16_t points[6], int dx, int dy, double* coefficients, double* residual,
              int threads)
{
    const int w = source ? source->nx : 0, h = source ? source->ny : 0;
    if (!source || !result || !residual || !source->PixData || !result->PixData || w <= 0 || h <= 0 ||
        result->nx != w || result->ny != h || dx < 0 || dx > kMaxFitDegree || dy < 0 || dy > kMaxFitDegree ||
        (useRegion && !points) || (background && (!background->PixData || background->nx != w || background->ny != h))) {
        ProgramError("FitPoly2D imi %p degx %d degy %d nx %d ny %d %p", static_cast<const void*>(source), dx, dy, w, h,
                     static_cast<void*>(residual));
        return -1;
    }
    const Sampling s = ChooseSampling(source, useRegion, points);

    // One table of powers serves both axes: the Y coordinate of row j is u[j], normalised by W
    // like X; the list of u runs to max(W, H) so that a tall image's rows have their entries.
    const int side = std::max(w, h);
    const int columns = 2 * std::max(dx, dy) + 1;
    // Behind the table, the same X powers once more as dx + 1 planes of W values each, so that
    // the residual pass runs along contiguous memory.
    const size_t tableValues = static_cast<size_t>(side) * columns;
    auto* powers = static_cast<double*>(
        emalloc(sizeof(double) * (tableValues + static_cast<size_t>(dx + 1) * static_cast<size_t>(w))));
    const int terms = (dx + 1) * (dy + 1);
    auto* matrix = static_cast<double*>(emalloc(sizeof(double) * static_cast<size_t>(terms) * terms));
    auto* moments = static_cast<Moments*>(emalloc(sizeof(Moments)));
    if (!powers || !matrix || !moments) {
        efree(powers);
        efree(matrix);
        efree(moments);
        Error(ERR_NO_MEMORY);
        return kSolveNoMemory;
    }
    for (int i = 0; i < side; ++i) {
        const double u = static_cast<double>(i - w / 2) / w;
        for (int k = 0; k < columns; ++k) powers[static_cast<size_t>(i) * columns + k] = std::pow(u, k);
    }
    double* xPlanes = powers + tableValues;
    for (int b = 0; b <= dx; ++b)
        for (int x = 0; x < w; ++x)
            xPlanes[static_cast<size_t>(b) * w + x] = powers[static_cast<size_t>(x) * columns + b];
    SumMoments(source, s, powers, columns, low, high, dx, dy, threads, moments);

    const int nxTerms = dx + 1;
    for (int i = 0; i < terms; ++i)
        for (int j = 0; j < terms; ++j)
            matrix[static_cast<size_t>(i) * terms + j] =
                moments->m[(i / nxTerms + j / nxTerms) * kMomentSide + (i % nxTerms + j % nxTerms)];
    double c[kMaxTerms] = {};
    const int status = SolveLinearSystemFinite(matrix, c, moments->r, terms, terms);
    if (status != kSolveOk) std::fill(c, c + terms, 0.0);
    if (coefficients) std::memcpy(coefficients, c, sizeof(double) * static_cast<size_t>(terms));
    efree(matrix);
    efree(moments);
    if (status == kSolveNoMemory) {
        efree(powers);
        return status;
    }

    // Residual and surface of every pixel. The surface of a row is summed over Y first, then
    // along the row: F = sum_b (sum_a C[a][b] T[y][a]) T[x][b].
    auto* bytes = background ? reinterpret_cast<unsigned char*>(background->PixData) : nullptr;
    const int chunks = (h + kResidualChunkRows - 1) / kResidualChunkRows;
    std::vector<Range> eRange(static_cast<size_t>(chunks)), fRange(static_cast<size_t>(chunks));
    RunFixedChunks(chunks, threads, [&](int k) {
        double rowCoef[kMaxFitDegree + 1];
        std::vector<double> surface(static_cast<size_t>(w));
        Range& eChunk = eRange[static_cast<size_t>(k)];
        Range& fChunk = fRange[static_cast<size_t>(k)];
        const int yEnd = std::min(h, (k + 1) * kResidualChunkRows);
        for (int y = k * kResidualChunkRows; y < yEnd; ++y) {
            const double* ty = powers + static_cast<size_t>(y) * columns;
            for (int b = 0; b <= dx; ++b) {
                double v = 0.0;
                for (int a = 0; a <= dy; ++a) v += c[a * nxTerms + b] * ty[a];
                rowCoef[b] = v;
            }
            // The surface of the row term by term: each pixel's sum keeps the order b = 0 to dx.
            double* fRow = surface.data();
            std::fill(fRow, fRow + w, 0.0);
            if (status == kSolveOk)
                for (int b = 0; b <= dx; ++b) {
                    const double r = rowCoef[b];
                    const double* tx = xPlanes + static_cast<size_t>(b) * w;
                    for (int x = 0; x < w; ++x) fRow[x] += r * tx[x];
                }
            const uint16_t* row = source->PixData + static_cast<size_t>(y) * w;
            double* eRow = residual + static_cast<size_t>(y) * w;
            if (status == kSolveOk)
                for (int x = 0; x < w; ++x) eRow[x] = row[x] - fRow[x];
            else
                std::fill(eRow, eRow + w, 0.0);
            for (int x = 0; x < w; ++x) eChunk.Add(eRow[x]);
            if (bytes) {
                std::memcpy(bytes + static_cast<size_t>(y) * w * sizeof(double), fRow, sizeof(double) * static_cast<size_t>(w));
                for (int x = 0; x < w; ++x) fChunk.Add(fRow[x]);
            }
        }
    });
    efree(powers);
    Range e, f;
    for (int k = 0; k < chunks; ++k) {
        e.Add(eRange[static_cast<size_t>(k)]);
        f.Add(fRange[static_cast<size_t>(k)]);
    }
    const double eGain = e.Gain();
    const size_t total = static_cast<size_t>(w) * h;
    RunFixedChunks(chunks, threads, [&](int k) {
        const size_t from = static_cast<size_t>(k) * kResidualChunkRows * w;
        const size_t to = std::min(total, static_cast<size_t>(k + 1) * kResidualChunkRows * w);
        for (size_t i = from; i < to; ++i) result->PixData[i] = StretchCode(residual[i], e.lo, eGain);
    });
    if (bytes) {
        // In place and in order: a pixel's f64 is read before its code can overwrite it.
        const double fGain = f.Gain();
        for (size_t i = 0; i < total; ++i) {
            double v;
            std::memcpy(&v, bytes + i * sizeof(double), sizeof v);
            const uint16_t code = StretchCode(v, f.lo, fGain);
            std::memcpy(bytes + i * sizeof(uint16_t), &code, sizeof code);
        }
    }
    return status;
}
