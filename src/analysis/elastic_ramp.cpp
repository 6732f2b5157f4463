// The two ramps of a force curve: the turn, a saturated plateau at the turn, and the split.
#include "analysis/elastic_modulus.h"

#include <cstdlib>

namespace {

int SignOf(float v) { return (v > 0.0f) - (v < 0.0f); }

} // namespace

int RampTurnPoint(const float* x, int n)
{
    if (!x || n < 3) return 0;
    const int first = SignOf(x[1] - x[0]);
    if (first == 0) return 0;
    int t = 0;
    for (int i = 2; i < n; ++i) {
        const int s = SignOf(x[i] - x[i - 1]);
        if (t == 0) {
            if (s != first) t = i;
        } else if (s == first) {
            return 0;   // the ramp turns back again
        }
    }
    if (t == 0) return 0;
    if (std::abs(t - n / 2) > 0.25 * n) return 0;
    return t;
}

int RampPlateau(const float* x, const float* y, int n)
{
    const int t = RampTurnPoint(x, n);
    if (t < 2 || t + 1 >= n || !y) return 0;
    if (!(y[t - 1] == y[t - 2]) || !(y[t] == y[t + 1])) return 0;
    int pairs = 0;
    while (t - 1 - pairs >= 0 && t + pairs <= n - 1 && y[t - 1 - pairs] == y[t + pairs]) ++pairs;
    if (pairs == 0) return 0;
    const int last = pairs - 1;
    if (t - 1 - last < 2 || t + last >= n - 1) return 0;
    return pairs;
}

bool SplitRamp(const float* x, const float* y, int n, int direction, double limit, int* first, int* count)
{
    if (!x || !y || n < 100) return false;
    const int t = RampTurnPoint(x, n);
    if (t == 0) return false;
    const int plateau = RampPlateau(x, y, n);
    const bool rising = x[1] > x[0];
    int begin, size;
    if (rising == (direction == 1)) {
        begin = 0;
        size = t - plateau;
    } else {
        begin = t + plateau;
        size = n - t - plateau;
    }
    while (size > 5 && x[begin] > limit) {
        ++begin;
        --size;
    }
    while (size >= 6 && x[begin + size - 1] > limit) --size;
    if (size < 50) return false;
    *first = begin;
    *count = size;
    return true;
}
