// Drift correction: a parallelogram whose slow side leans because the sample drifted during
// the scan is resampled into an upright image, each scan row along the scan direction and the
// rows stacked along the slow direction's perpendicular, shifted by the drift.
#include "image/regions.h"
#include "image/image_frame.h"
#include "display/placement.h"
#include "host/errors.h"
#include "host/log.h"
#include "store/data_list.h"
#include "store/duplicate.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <utility>

namespace {

constexpr int kDriftCode = 49;
constexpr int kSmallestSide = 5;
constexpr int kLargestSide = 4097;   // refused from this side on

// A parallelogram of a single column of pixels leans without limit: the slope stands in for
// the infinite one.
constexpr int64_t kUprightSlope = 1050;

double Length(RegionPoint from, RegionPoint to)
{
    return std::hypot(static_cast<double>(to.x - from.x), static_cast<double>(to.y - from.y));
}

// One side's physical length: each pixel step times the pixel size, the products in f32.
double PhysicalLength(RegionPoint from, RegionPoint to, const ImageHeaderType* source)
{
    const float dx = static_cast<float>(to.x - from.x) * source->ImageSizeX;
    const float dy = static_cast<float>(to.y - from.y) * source->ImageSizeY;
    // A source of one column or row has no pixel step; it is taken as one pixel.
    const double stepsX = std::max(source->nx - 1, 1), stepsY = std::max(source->ny - 1, 1);
    return std::hypot(dx / stepsX, dy / stepsY);
}

// The code at (x, y), 0 <= x < nx, 0 <= y < ny: bilinear from the four neighbours, a neighbour
// beyond the last row or column taking the value of the one inside.
uint16_t Bilinear(const ImageHeaderType* source, double x, double y)
{
    const int nx = source->nx, ny = source->ny;
    const int x0 = static_cast<int>(x), y0 = static_cast<int>(y);
    const int x1 = std::min(x0 + 1, nx - 1), y1 = std::min(y0 + 1, ny - 1);
    const double fx = x - x0, fy = y - y0;
    const uint16_t* top = source->PixData + static_cast<size_t>(y0) * nx;
    const uint16_t* bottom = source->PixData + static_cast<size_t>(y1) * nx;
    const double upper = top[x0] + (top[x1] - static_cast<double>(top[x0])) * fx;
    const double lower = bottom[x0] + (bottom[x1] - static_cast<double>(bottom[x0])) * fx;
    const double v = upper + (lower - upper) * fy;
    return static_cast<uint16_t>(std::clamp(v, 0.0, 65535.0));
}

} // namespace

DriftFrame MakeDriftFrame(RegionPoint p0, RegionPoint p1, RegionPoint p2)
{
    DriftFrame f;
    if (p0 == p1 || p0 == p2 || p1 == p2) return f;
    RegionPoint p3{p0.x + p2.x - p1.x, p0.y + p2.y - p1.y};
    // The scan runs to the right ...
    if (p1.x < p0.x) {
        std::swap(p0, p1);
        std::swap(p2, p3);
    }
    // ... and the slow direction goes down the image.
    const int64_t rise = static_cast<int64_t>(p1.y - p0.y) * (p2.x - p0.x);
    const int64_t t = p1.x != p0.x ? rise / (p1.x - p0.x) : rise * kUprightSlope;
    if (p0.y + t > p2.y) {
        std::swap(p0, p3);
        std::swap(p1, p2);
    }
    f.valid = true;
    f.p0 = p0;
    f.p1 = p1;
    f.p2 = p2;
    f.p3 = p3;
    f.a = Length(p0, p1);
    f.b = Length(p1, p2);
    f.c = Length(p0, p2);
    f.ux = (p1.x - p0.x) / f.a;
    f.uy = (p1.y - p0.y) / f.a;
    // The cosine of the angle between the scan direction and the slow side; rounding may take
    // it a hair beyond 1 for points on one line, which are held at 1 (no area).
    f.cosine = std::clamp((f.c * f.c - f.a * f.a - f.b * f.b) / 2 / f.a / f.b, -1.0, 1.0);
    f.sine = std::abs(std::sin(std::acos(f.cosine)));
    f.width = static_cast<int64_t>(std::trunc(f.a));
    f.height = static_cast<int64_t>(std::trunc(f.b * f.sine));
    return f;
}

void DriftResample(const ImageHeaderType* source, const DriftFrame& f, uint16_t* out)
{
    const int nx = source->nx, ny = source->ny;
    const double shear = f.cosine / f.sine;
    for (int64_t j = 0; j < f.height; ++j) {
        uint16_t* row = out + static_cast<size_t>(j) * static_cast<size_t>(f.width);
        std::memset(row, 0, static_cast<size_t>(f.width) * sizeof(uint16_t));
        const double jd = static_cast<double>(j);
        for (int64_t i = 0; i < f.width; ++i) {
            const double t = static_cast<double>(i) + jd * shear;
            const double x = f.p0.x + t * f.ux - jd * f.uy;
            const double y = f.p0.y + jd * f.ux + t * f.uy;
            if (x >= 0 && x < nx && y >= 0 && y < ny) row[i] = Bilinear(source, x, y);
        }
    }
}

ImageHeaderType* DriftCorrect(RegionPoint p0, RegionPoint p1, RegionPoint p2)
{
    const DriftFrame f = MakeDriftFrame(p0, p1, p2);
    if (!f.valid) {
        Error(ERR_INVALID_ENTRY);
        return nullptr;
    }
    ImageCommand check;
    check.refuseSpecial = false;
    ImageHeaderType* source = CheckImageCommand(check);
    if (!source) return nullptr;
    if (f.width < kSmallestSide || f.height < kSmallestSide) {
        Error(ERR_IMAGE_TOO_SMALL);
        return nullptr;
    }
    if (f.width >= kLargestSide || f.height >= kLargestSide) {
        Error(ERR_IMAGE_TOO_LARGE);
        return nullptr;
    }
    const int w = static_cast<int>(f.width), h = static_cast<int>(f.height);
    ImageHeaderType* temporary = DuplicateResized(source, w, h);
    if (!temporary) return nullptr;
    temporary->ImageSizeX = static_cast<float>(PhysicalLength(f.p0, f.p1, source));
    temporary->ImageSizeY = static_cast<float>(PhysicalLength(f.p1, f.p2, source));
    DriftResample(source, f, temporary->PixData);

    const int side = std::max(w, h);
    const int n = side < 128 ? 128 : side < 256 ? 256 : 512;
    char title[sizeof temporary->Title + 1] = {};
    std::memcpy(title, temporary->Title, sizeof temporary->Title);
    ImageHeaderType* result = ResampleTemporary(temporary, n, kDriftCode);
    if (CurrentItem) ShowParameterText(CurrentItem);
    Log("Drift correct '%s'.\n", title);
    return result;
}
