// The cost of the curve fit of a mapping set: PolyRegression of degree 5 with all its
// statistics (coefficients, fitted values, residuals, standard deviation, errors, correlation)
// over 65536 curves of 512 points. The curves come from a pool of 1024 that is walked 64 times;
// bench/poly_regression_numpy.py builds the same pool from the same formula and times numpy's
// lstsq on the same 65536 fits. The best time goes to TAVRIN_POLYREG_TIMES (default
// /tmp/tavrin-polyreg.times) for the script's ratio.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include "image/poly_regression.h"

namespace {

constexpr int kPoints = 512;
constexpr int kPool = 1024;
constexpr int kCurves = 65536;
constexpr int kDegree = 5;

std::string TimesPath()
{
    const char* path = std::getenv("TAVRIN_POLYREG_TIMES");
    return path && *path ? path : "/tmp/tavrin-polyreg.times";
}

// Sweep values from -1 to 1; curve s is a quintic with coefficients from s and a small ripple.
const std::vector<double>& Sweep()
{
    static const std::vector<double> x = [] {
        std::vector<double> v(kPoints);
        for (int k = 0; k < kPoints; ++k) v[static_cast<size_t>(k)] = -1.0 + 2.0 * k / (kPoints - 1);
        return v;
    }();
    return x;
}

const std::vector<double>& Pool()
{
    static const std::vector<double> y = [] {
        std::vector<double> v(static_cast<size_t>(kPool) * kPoints);
        const std::vector<double>& x = Sweep();
        for (int s = 0; s < kPool; ++s)
            for (int k = 0; k < kPoints; ++k) {
                double value = 0.0, power = 1.0;
                for (int j = 0; j <= kDegree; ++j) {
                    value += std::sin(0.01 * s * (j + 1) + j) * power;
                    power *= x[static_cast<size_t>(k)];
                }
                v[static_cast<size_t>(s) * kPoints + k] = value + 0.01 * std::sin(0.37 * k * k + s);
            }
        return v;
    }();
    return y;
}

double g_best = 1e30;

struct WriteBest {
    ~WriteBest()
    {
        if (g_best >= 1e30) return;
        if (FILE* f = std::fopen(TimesPath().c_str(), "w")) {
            std::fprintf(f, "polyreg5 %.6f\n", g_best);
            std::fclose(f);
        }
        std::printf("PolyRegression degree 5, %d curves of %d points: best %.1f ms (%.2f us a curve)\n", kCurves,
                    kPoints, g_best * 1e3, g_best * 1e6 / kCurves);
    }
} g_writeBest;

void BM_PolyRegressionDegree5(benchmark::State& state)
{
    const std::vector<double>& x = Sweep();
    const std::vector<double>& pool = Pool();
    std::vector<double> fitted(kPoints), residual(kPoints);
    PolyRegressionStats stats{};
    double sink = 0.0;
    for (auto _ : state) {
        const auto start = std::chrono::steady_clock::now();
        for (int c = 0; c < kCurves; ++c) {
            const double* y = pool.data() + static_cast<size_t>(c % kPool) * kPoints;
            PolyRegression(x.data(), y, kPoints, kDegree, fitted.data(), residual.data(), &stats);
            sink += stats.coefficients[kDegree];
        }
        g_best = std::min(g_best, std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count());
        benchmark::DoNotOptimize(sink);
    }
    state.SetItemsProcessed(static_cast<int64_t>(state.iterations()) * kCurves);
}

} // namespace

BENCHMARK(BM_PolyRegressionDegree5)->Unit(benchmark::kMillisecond)->UseRealTime()->MinTime(2.0);
