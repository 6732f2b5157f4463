// The sensitivity and the contact point of one ramp of a force curve.
#include "analysis/elastic_modulus.h"
#include "host/error_numbers.h"
#include "host/errors.h"
#include "host/globals.h"
#include "host/log.h"
#include "spectro/spectro.h"

#include <new>
#include <utility>
#include <vector>

namespace {

const char* DirectionName(int direction) { return direction == 0 ? "Out->In" : "In->Out"; }

// One ramp, with its X rising when `rising` is asked (else in the order of the curve), and its
// first derivative dY/dX over `smooth` points.
struct RisingRamp {
    std::vector<float> x, y, dx, dy;
};

// False when the ramp cannot be split or differentiated (or memory runs out, reported).
bool PrepareRamp(const float* x, const float* y, int n, int direction, int smooth, double limit, bool rising,
                 RisingRamp* ramp)
{
    int first = 0, count = 0;
    if (!SplitRamp(x, y, n, direction, limit, &first, &count)) return false;
    try {
        ramp->x.assign(x + first, x + first + count);
        ramp->y.assign(y + first, y + first + count);
        ramp->dx.assign(static_cast<size_t>(count), 0.0f);
        ramp->dy.assign(static_cast<size_t>(count), 0.0f);
    } catch (const std::bad_alloc&) {
        Error(ERR_NO_MEMORY);
        return false;
    }
    if (rising && count > 1 && ramp->x[static_cast<size_t>(count) - 1] < ramp->x[0]) {
        for (int i = 0, j = count - 1; i < j; ++i, --j) {
            std::swap(ramp->x[static_cast<size_t>(i)], ramp->x[static_cast<size_t>(j)]);
            std::swap(ramp->y[static_cast<size_t>(i)], ramp->y[static_cast<size_t>(j)]);
        }
    }
    return DifferentiateData(1, 0, smooth, count, ramp->x.data(), ramp->y.data(), ramp->dx.data(), ramp->dy.data()) ==
           0;
}

double MeanOf(const std::vector<float>& v, int count)
{
    double sum = 0.0;
    for (int k = 0; k < count; ++k) sum += v[static_cast<size_t>(k)];
    return count > 0 ? sum / count : 0.0;
}

} // namespace

int CalculateSlope(const float* x, const float* y, int n, int direction, int smooth, double limit, double* slope)
{
    RisingRamp ramp;
    if (!PrepareRamp(x, y, n, direction, smooth, limit, true, &ramp)) return -1;
    const int count = static_cast<int>(ramp.dy.size());
    int i = count;
    for (int k = 0; k < count; ++k) {
        if (!(ramp.dy[static_cast<size_t>(k)] < 0.0f)) {
            i = k;
            break;
        }
    }
    --i;
    int result = 0;
    double value = 0.0;
    if (i < 10) {
        result = 1;
    } else {
        const double M = MeanOf(ramp.dy, i);
        while (i > 0 && ramp.dy[static_cast<size_t>(i)] > M) --i;
        if (i < 10) {
            result = 2;
        } else {
            value = -MeanOf(ramp.dy, i);
            *slope = value;
        }
    }
    if (DebugMode) {
        const size_t end = static_cast<size_t>(i < 0 ? 0 : i);
        Log("Slope calculation X: %s. ret=%d. slope_x[0]=%12.5f. slopy_x[1]=%12.5f. slope=%12.5f\n",
            DirectionName(direction), result, ramp.x[0], ramp.x[end], value);
        Log("Slope calculation Y: %s. ret=%d. slope_y[0]=%12.5f. slopy_y[1]=%12.5f.\n", DirectionName(direction),
            result, ramp.y[0], ramp.y[end]);
    }
    return result;
}

int CalculateContactPoint(const float* x, const float* y, int n, int direction, int smooth, double limit, float* z)
{
    RisingRamp ramp;
    // The ramp in its own order: on Out->In the walk back from the snap-in runs into the free
    // part, whose derivative is 0, so the contact point stays at the snap-in itself.
    if (!PrepareRamp(x, y, n, direction, smooth, limit, false, &ramp)) return 1;
    const int count = static_cast<int>(ramp.dy.size());
    int i = 0;
    for (int k = 1; k < count; ++k)
        if (ramp.dy[static_cast<size_t>(k)] > ramp.dy[static_cast<size_t>(i)]) i = k;
    if (!(ramp.dy[static_cast<size_t>(i)] > 0.0f)) return 1;
    int k = i;
    while (k > 0 && ramp.dy[static_cast<size_t>(k)] >= 0.0f) --k;
    if (k > 0) i = k;
    *z = ramp.dx[static_cast<size_t>(i)];
    return 0;
}
