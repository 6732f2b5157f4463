#include "image/background_methods.h"
#include "image/fit.h"
#include "image/image_frame.h"
#include "image/z_range.h"
#include "host/errors.h"
#include "store/memory.h"

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <limits>

namespace {

// The frame of the integer methods: values of difference and background per pixel, tracked
// range, then the stretch and the Z range.
class IntegerOutput {
public:
    explicit IntegerOutput(const BackgroundJob& job)
        : job_(job),
          diff_(static_cast<unsigned char*>(job.scratch)),
          back_(job.background ? reinterpret_cast<unsigned char*>(job.background->PixData) : nullptr)
    {
    }
    void Put(size_t i, int64_t difference, int64_t background)
    {
        const int32_t d = Clamp(difference);
        std::memcpy(diff_ + i * sizeof d, &d, sizeof d);
        lo_ = std::min(lo_, d);
        hi_ = std::max(hi_, d);
        if (back_) {
            const int32_t b = Clamp(background);
            std::memcpy(back_ + i * sizeof b, &b, sizeof b);
            blo_ = std::min(blo_, b);
            bhi_ = std::max(bhi_, b);
        }
    }
    void Finish()
    {
        ScaleIntegersToCodes(diff_, job_.result, lo_, hi_);
        SetZRangeFromCodes(job_.result, job_.source, lo_, hi_);
        if (back_) {
            ScaleIntegersToCodes(back_, job_.background, blo_, bhi_);
            SetZRangeFromCodes(job_.background, job_.source, blo_, bhi_);
        }
    }

private:
    static int32_t Clamp(int64_t v)
    {
        return static_cast<int32_t>(std::clamp<int64_t>(v, std::numeric_limits<int32_t>::min(),
                                                        std::numeric_limits<int32_t>::max()));
    }
    const BackgroundJob& job_;
    unsigned char* diff_;
    unsigned char* back_;
    int32_t lo_ = std::numeric_limits<int32_t>::max(), hi_ = std::numeric_limits<int32_t>::min();
    int32_t blo_ = std::numeric_limits<int32_t>::max(), bhi_ = std::numeric_limits<int32_t>::min();
};

bool CheckJob(const BackgroundJob& job, const char* routine)
{
    const ImageHeaderType* r = job.result;
    const ImageHeaderType* s = job.source;
    const bool ok = r && s && job.scratch && r->PixData && s->PixData && r->nx == s->nx && r->ny == s->ny &&
                    s->nx > 0 && s->ny > 0 &&
                    (!job.background || (job.background->PixData && job.background->nx == s->nx &&
                                         job.background->ny == s->ny));
    if (!ok)
        ProgramError("%s %p %p %p %d %d %d %d", routine, static_cast<const void*>(r), static_cast<const void*>(s), job.scratch,
                     r ? r->nx : 0, r ? r->ny : 0, s ? s->nx : 0, s ? s->ny : 0);
    return ok;
}

const uint16_t* Row(const ImageHeaderType* image, int y)
{
    return image->PixData + static_cast<size_t>(y) * static_cast<size_t>(image->nx);
}

// c0 + c1 v + c2 v^2 ..., the powers by repeated multiplication.
double EvaluatePoly(const double* c, int n, double v)
{
    double sum = 0.0, power = 1.0;
    for (int k = 0; k <= n; ++k) {
        sum += c[k] * power;
        power *= v;
    }
    return sum;
}

} // namespace

int SubtOffsets(const BackgroundJob& job)
{
    if (!CheckJob(job, "SubtOffsets")) return 1;
    IntegerOutput out(job);
    const int w = job.source->nx;
    for (int y = 0; y < job.source->ny; ++y) {
        const uint16_t* row = Row(job.source, y);
        const int m = *std::min_element(row, row + w);
        for (int x = 0; x < w; ++x) out.Put(static_cast<size_t>(y) * w + x, row[x] - m, m);
    }
    out.Finish();
    return 0;
}

int SubtLineAveraging(const BackgroundJob& job, int low, int high)
{
    if (!CheckJob(job, "SubtLineAveraging")) return 1;
    IntegerOutput out(job);
    const int w = job.source->nx;
    for (int y = 0; y < job.source->ny; ++y) {
        const uint16_t* row = Row(job.source, y);
        int64_t sumIn = 0, countIn = 0, sumOut = 0, countOut = 0;
        for (int x = 0; x < w; ++x) {
            if (row[x] >= low && row[x] <= high) {
                sumIn += row[x];
                ++countIn;
            } else {
                sumOut += row[x];
                ++countOut;
            }
        }
        const int64_t m = countIn ? sumIn / countIn : sumOut / countOut;
        for (int x = 0; x < w; ++x) out.Put(static_cast<size_t>(y) * w + x, row[x] - m, m);
    }
    out.Finish();
    return 0;
}

int NonLinearBackgroundY(const BackgroundJob& job, int n, bool inY)
{
    if (!CheckJob(job, "NonLinearBackgroundY")) return 1;
    const int w = job.source->nx, h = job.source->ny;
    const int count = inY ? h : w;
    auto* position = static_cast<double*>(emalloc(sizeof(double) * static_cast<size_t>(count)));
    auto* mean = static_cast<double*>(emalloc(sizeof(double) * static_cast<size_t>(count)));
    auto* c = static_cast<double*>(ecalloc(static_cast<size_t>(n) + 1, sizeof(double)));
    if (!position || !mean || !c) {
        efree(position);
        efree(mean);
        efree(c);
        Error(ERR_NO_MEMORY);
        return ERR_NO_MEMORY;
    }
    for (int i = 0; i < count; ++i) position[i] = i;
    if (inY) {
        for (int y = 0; y < h; ++y) {
            const uint16_t* row = Row(job.source, y);
            int64_t sum = 0;
            for (int x = 0; x < w; ++x) sum += row[x];
            mean[y] = static_cast<double>(sum) / w;
        }
    } else {
        std::fill(mean, mean + w, 0.0);
        for (int y = 0; y < h; ++y) {
            const uint16_t* row = Row(job.source, y);
            for (int x = 0; x < w; ++x) mean[x] += row[x];
        }
        for (int x = 0; x < w; ++x) mean[x] /= h;
    }
    // A singular fit has reported "Fit Poly" and left the coefficients 0: the image is only
    // stretched.
    const int fit = FitPolyLine(position, mean, count, n, c);
    if (fit == ERR_NO_MEMORY) {
        efree(position);
        efree(mean);
        efree(c);
        return fit;
    }
    IntegerOutput out(job);
    for (int y = 0; y < h; ++y) {
        const uint16_t* row = Row(job.source, y);
        const int32_t rowBack = inY ? TruncClampI32(EvaluatePoly(c, n, y)) : 0;
        for (int x = 0; x < w; ++x) {
            const size_t i = static_cast<size_t>(y) * w + x;
            if (inY) {
                out.Put(i, int64_t{row[x]} - rowBack, rowBack);
            } else {
                const double f = EvaluatePoly(c, n, x);
                out.Put(i, TruncClampI32(row[x] - f), TruncClampI32(f));
            }
        }
    }
    out.Finish();
    efree(position);
    efree(mean);
    efree(c);
    return 0;
}

int Fit3PointPlane(const BackgroundJob& job, const int16_t points[6])
{
    if (!CheckJob(job, "Fit3PointPlane")) return 1;
    const ImageHeaderType* s = job.source;
    const int w = s->nx, h = s->ny;
    double a[9], z[3], abc[3] = {0, 0, 0};
    for (int i = 0; i < 3; ++i) {
        // Points outside the square are held to the image's edge.
        const int x = std::clamp(SquareToPixel(points[2 * i], w), 0, w - 1);
        const int y = std::clamp(SquareToPixel(points[2 * i + 1], h), 0, h - 1);
        a[3 * i] = x;
        a[3 * i + 1] = y;
        a[3 * i + 2] = 1.0;
        z[i] = Row(s, y)[x];
    }
    const bool singular = SolveLinearSystemFinite(a, abc, z, 3, 3) != kSolveOk;
    IntegerOutput out(job);
    for (int y = 0; y < h; ++y) {
        const uint16_t* row = Row(s, y);
        for (int x = 0; x < w; ++x) {
            const size_t i = static_cast<size_t>(y) * w + x;
            if (singular) {
                out.Put(i, 0, 0);
            } else {
                const int32_t v = TruncClampI32(x * abc[0] + (y * abc[1] + abc[2]));
                out.Put(i, int64_t{row[x]} - v, v);
            }
        }
    }
    out.Finish();
    return 0;
}

int FitManualPlane(const BackgroundJob& job, int32_t sx, int32_t sy)
{
    if (!CheckJob(job, "FitManualPlane")) return 1;
    const int w = job.source->nx, h = job.source->ny;
    IntegerOutput out(job);
    for (int y = 0; y < h; ++y) {
        const auto g = static_cast<float>(static_cast<double>(sy) / h);
        const uint16_t* row = Row(job.source, y);
        for (int x = 0; x < w; ++x) {
            const double v = static_cast<double>(static_cast<float>(y) * g) + static_cast<double>(x) * sx / w;
            out.Put(static_cast<size_t>(y) * w + x, TruncClampI32(row[x] + v), TruncClampI32(-v));
        }
    }
    out.Finish();
    return 0;
}

void RecordPoints(const wint_SubtBckgrndParamType& p, size_t offset, int16_t points[6])
{
    std::memcpy(points, reinterpret_cast<const char*>(&p) + offset, 6 * sizeof(int16_t));
}

SurfaceOptions PolySurfaceOptions(const wint_SubtBckgrndParamType& p, bool apply)
{
    const bool anyDegree = p.DegreeX != 0 || p.DegreeY != 0;
    SurfaceOptions o{0, 65535, false};
    // A threshold left in the record acts on apply even with UseThreshold clear; the preview
    // shows it only when UseThreshold is set.
    if (anyDegree && (apply || p.UseThreshold)) {
        o.low = p.LowThreshold;
        o.high = p.HighThreshold;
    }
    o.region = p.UseRegion && anyDegree && p.DegreeX < 3 && p.DegreeY < 3;
    return o;
}

int RunBackgroundMethod(const BackgroundJob& job, const wint_SubtBckgrndParamType& p, bool apply)
{
    switch (p.Method) {
    case TV_SUBT_OFFSETS: return SubtOffsets(job);
    case TV_SUBT_POLY_X: return NonLinearBackgroundY(job, p.PolyOrder, false);
    case TV_SUBT_POLY_Y: return NonLinearBackgroundY(job, p.PolyOrder, true);
    case TV_SUBT_LINES:
        return p.UseThreshold ? SubtLineAveraging(job, p.LowThreshold, p.HighThreshold)
                              : SubtLineAveraging(job, 0, 65535);
    case TV_SUBT_PLANE3: {
        int16_t points[6];
        RecordPoints(p, offsetof(wint_SubtBckgrndParamType, PlanePoints), points);
        return Fit3PointPlane(job, points);
    }
    case TV_SUBT_MANUAL: return FitManualPlane(job, p.ManualSlopeX, p.ManualSlopeY);
    case TV_SUBT_POLY_SURFACE: {
        const SurfaceOptions o = PolySurfaceOptions(p, apply);
        int16_t points[6];
        RecordPoints(p, offsetof(wint_SubtBckgrndParamType, RegionPoints), points);
        const int status = FitPoly2D(job.result, job.source, job.background, o.low, o.high, o.region ? 1 : 0,
                                     points, p.DegreeX, p.DegreeY, nullptr, static_cast<double*>(job.scratch));
        return status == kSolveSingular ? 0 : status;   // a singular fit leaves a zero result
    }
    default: return -2;
    }
}

int BackgroundHistoryCode(uint32_t method)
{
    switch (method) {
    case TV_SUBT_OFFSETS: return 117;
    case TV_SUBT_POLY_X: return 114;
    case TV_SUBT_POLY_Y: return 115;
    case TV_SUBT_LINES: return 118;
    case TV_SUBT_PLANE3: return 120;
    case TV_SUBT_POLY_SURFACE: return 119;
    case TV_SUBT_MANUAL: return 121;
    default: return 0;
    }
}

const char* BackgroundLogText(const wint_SubtBckgrndParamType& p, const char* title)
{
    switch (p.Method) {
    case TV_SUBT_OFFSETS: return CommandLogText("Subtract offsets from '%s'\n", title);
    case TV_SUBT_POLY_X: return CommandLogText("Subtract polynomial X^%d background from '%s'\n", p.PolyOrder, title);
    case TV_SUBT_POLY_Y: return CommandLogText("Subtract polynomial Y^%d background from '%s'\n", p.PolyOrder, title);
    case TV_SUBT_LINES: return CommandLogText("Subtract line averaging background from '%s'\n", title);
    case TV_SUBT_PLANE3:
        return CommandLogText("Subtract 3 point plane (%d,%d) (%d,%d) (%d,%d) from '%s'\n", p.PlanePoints[0],
                              p.PlanePoints[1], p.PlanePoints[2], p.PlanePoints[3], p.PlanePoints[4], p.PlanePoints[5],
                              title);
    case TV_SUBT_POLY_SURFACE:
        return CommandLogText("Subtract polynomial surface X^%d Y^%d background from '%s'\n", p.DegreeX, p.DegreeY,
                              title);
    case TV_SUBT_MANUAL:
        return CommandLogText("Subtract manual plane (%d,%d) from '%s'\n", p.ManualSlopeX, p.ManualSlopeY, title);
    default: return CommandLogText("%s", "");
    }
}
