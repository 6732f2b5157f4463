#include "display/plot_scale.h"

#include <cmath>
#include <cstdint>
#include <cstdlib>

namespace {

constexpr double kSmallestMagnitude = 1e-16;

// A double as a 32-bit integer, limited to the range (NaN as 0).
int32_t ToInt32(double v)
{
    if (std::isnan(v)) return 0;
    if (v >= 2147483647.0) return INT32_MAX;
    if (v <= -2147483648.0) return INT32_MIN;
    return static_cast<int32_t>(v);
}

} // namespace

int PlotExponent(double v)
{
    const double a = std::fabs(v);
    if (std::isinf(a)) return 308;
    return static_cast<int>(std::floor(std::log10(a < kSmallestMagnitude || std::isnan(a) ? kSmallestMagnitude : a)));
}

void AutoScale(float* lo, float* hi, float* tick)
{
    if (!lo || !hi || !tick) return;
    const float oldLo = *lo, oldHi = *hi;
    float p = std::pow(10.0f, static_cast<float>(PlotExponent(static_cast<double>(oldHi - oldLo)) - 1));
    if (p == 0.0f || !std::isfinite(p)) p = 1.0f;
    const double a = static_cast<double>(oldHi) / p, b = static_cast<double>(oldLo) / p;

    int top = static_cast<int16_t>(static_cast<uint16_t>(ToInt32(std::ceil(a + 1e-6 + (a - b) * 0.05)) & 0xffff));
    if (top > 0 && a <= 0) top = 0;
    int32_t bot = ToInt32(std::floor(b - 1e-6 - (a - b) * 0.05));
    if (bot < 0 && b >= 0) bot = 0;

    const int topMagnitude = std::abs(top);
    if (topMagnitude >= 60)
        top = top / 10 * 10 + 10;
    else if (topMagnitude >= 20)
        top = top / 5 * 5 + 5;
    const int64_t botMagnitude = std::llabs(int64_t{bot});
    if (botMagnitude >= 60)
        bot = bot / 10 * 10;
    else if (botMagnitude >= 10)
        bot = bot / 5 * 5;

    float newLo = static_cast<float>(bot) * p, newHi = static_cast<float>(top) * p;
    const int64_t r = std::llabs(int64_t{top} - bot);
    float t;
    if (r < 10)
        t = static_cast<float>(r) / 5.0f;
    else if (r < 20)
        t = 2;
    else if (r < 50)
        t = 5;
    else if (r < 80)
        t = 10;
    else if (r < 151)
        t = 20;
    else if (r < 200)
        t = 50;
    else
        t = 100;
    float newTick = t * p / 10.0f;

    if (newLo > oldLo || newHi < oldHi) {
        newLo = oldLo * (oldLo < 0 ? 1.01f : 0.99f);
        newHi = oldHi * (oldHi < 0 ? 0.99f : 1.01f);
    }
    if (newTick == 0.0f) newTick = 1.0f;
    const float span = std::fabs(newHi - newLo);
    if (span / newTick > 1000.0f) newTick = span / 100.0f;
    *lo = newLo;
    *hi = newHi;
    *tick = newTick;
}
