// Derivatives of curves by Savitzky-Golay windows.
//
// With a window of N points (m = N / 2 - 1, so 2m + 3 points centred on each result) the
// derivative is computed for the L = n - 2m - 2 positions whose window fits, divided by the
// local step of X (the mean spacing over the window, raised to the order; the global mean
// spacing where the window is flat), with the sign of the local direction of X. Normalised, the
// first derivative becomes (x / y) dy/dx, the normalised conductance of tunnelling
// spectroscopy. The L values are then spread over all n points by linear interpolation, so the
// result has as many points as the source and its X range shrinks by the window's margins.
#include "display/plot_buffer.h"
#include "host/errors.h"
#include "spectro/spectro.h"

#include <cmath>
#include <cstdlib>
#include <cstring>

namespace {

constexpr int kMaxWindow = 26;
constexpr int kMinPoints = 32;

float Step(const float* x, int from, int count, int order)
{
    float sum = 0.0f;
    for (int j = 0; j < count; ++j) sum += std::fabs(x[from + j + 1] - x[from + j]);
    return static_cast<float>(std::pow(sum / static_cast<float>(count), order));
}

} // namespace

int DifferentiateData(int order, int normalise, int N, int n, const float* x, const float* y, float* outX,
                      float* outY)
{
    const int m = N / 2 - 1;
    if (N >= kMaxWindow || m < 1) {
        ProgramError("DifferentiateData() - diffN2 invalid");
        return -1;
    }
    if (n < kMinPoints || !x || !y || !outX || !outY || (order != 1 && order != 2)) {
        ProgramError("DifferentiateData() - Invalid parameter");
        return -1;
    }
    PlotBuffer tmpX(static_cast<size_t>(n)), tmpY(static_cast<size_t>(n));
    if (!tmpX.Ok() || !tmpY.Ok()) return -1;
    float* ty = tmpY.Data();
    float* tx = tmpX.Data();

    // The results are built in the temporary planes, so that the outputs may be the inputs.
    std::memset(ty, 0, sizeof(float) * static_cast<size_t>(n));
    float global = Step(x, 0, n / 2 - 1, order);
    if (global == 0.0f) global = 1.0f;
    const int L = n - 2 * m - 2;
    for (int i = 0; i < L; ++i) {
        float step = Step(x, i, 2 * m + 2, order);
        if (step == 0.0f) step = global;
        if (x[i + 1] < x[i]) step = -step;
        ty[i + m + 1] = SavitzkyGolay(y + i, order, m) / step;
    }
    std::memcpy(tx, x, sizeof(float) * static_cast<size_t>(n));
    if (normalise) {
        for (int i = 0; i < L; ++i) {
            float sum = 0.0f;
            for (int j = 0; j <= 2 * m + 2; ++j) sum += y[i + j];
            const float a = sum / static_cast<float>(2 * m + 3);
            ty[i + m + 1] = a != 0.0f ? (x[i + m + 1] / a) * ty[i + m + 1] : kMarker;
        }
        ReplaceMarkers(ty + m + 1, L);
    }
    for (int i = 0; i < n; ++i) {
        const float t = static_cast<float>(L - 1) * static_cast<float>(i) / static_cast<float>(n - 1);
        const int k = static_cast<int>(t);
        const float f = t - std::floor(t);
        // The last point takes the last value alone (the next one was never computed).
        outY[i] = f == 0.0f ? ty[k + m + 1] : ty[k + m + 1] * (1.0f - f) + ty[k + m + 2] * f;
        outX[i] = f == 0.0f ? tx[k + m + 1] : tx[k + m + 1] * (1.0f - f) + tx[k + m + 2] * f;
    }
    return 0;
}
