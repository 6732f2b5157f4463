// The cost of the polynomial surface fit of degree (3, 3) on a 4096 by 4096 image of tilt, bow
// and noise: sampling (every 16th row and column), moments, solve, and the residual and
// stretch of every pixel, on one thread and on two. The input goes to TAVRIN_FIT_INPUT
// (default /tmp/tavrin-fit-4096.u16, raw u16, row 0 first) for bench/fit_numpy.py, which times
// numpy's lstsq on the same sampled points and the same per-pixel evaluation; the best time of
// each run goes to the same name with ".times" appended, for its ratios.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <map>
#include <random>
#include <string>
#include <vector>

#include "image/fit.h"
#include "store/image_header.h"

namespace {

constexpr int kSize = 4096;

std::string InputPath()
{
    const char* path = std::getenv("TAVRIN_FIT_INPUT");
    return path && *path ? path : "/tmp/tavrin-fit-4096.u16";
}

std::vector<uint16_t>& Input()
{
    static std::vector<uint16_t> codes = [] {
        std::vector<uint16_t> v(static_cast<size_t>(kSize) * kSize);
        std::mt19937 random(4096);
        std::normal_distribution<double> noise(0.0, 200.0);
        for (int y = 0; y < kSize; ++y)
            for (int x = 0; x < kSize; ++x) {
                const double u = (x - 2048) / 4096.0, w = (y - 2048) / 4096.0;
                const double z = 30000.0 + 9000.0 * u - 4000.0 * w + 16000.0 * (u * u + w * w) + 3000.0 * u * u * u +
                                 noise(random);
                v[static_cast<size_t>(y) * kSize + x] = static_cast<uint16_t>(std::clamp(z, 0.0, 65535.0));
            }
        if (FILE* f = std::fopen(InputPath().c_str(), "wb")) {
            std::fwrite(v.data(), 2, v.size(), f);
            std::fclose(f);
        }
        return v;
    }();
    return codes;
}

struct BestTimes {
    std::map<std::string, double> seconds;
    ~BestTimes()
    {
        if (seconds.empty()) return;
        if (FILE* f = std::fopen((InputPath() + ".times").c_str(), "w")) {
            for (const auto& [name, s] : seconds) std::fprintf(f, "%s %.6f\n", name.c_str(), s);
            std::fclose(f);
        }
        if (seconds.count("poly33/1") && seconds.count("poly33/2"))
            std::printf("FitPoly2D (3, 3) scaling: 1 thread %.1f ms, 2 threads %.1f ms, speed-up %.2f\n",
                        seconds["poly33/1"] * 1e3, seconds["poly33/2"] * 1e3, seconds["poly33/1"] / seconds["poly33/2"]);
    }
} Best;

void BM_FitPoly2D33(benchmark::State& state)
{
    static ImageHeaderType source, result;
    InitImageHeader(&source, kSize, kSize);
    InitImageHeader(&result, kSize, kSize);
    std::vector<uint16_t> out(static_cast<size_t>(kSize) * kSize);
    std::vector<double> residual(out.size());
    source.PixData = Input().data();
    result.PixData = out.data();
    const int threads = static_cast<int>(state.range(0));
    double best = 1e30, c[16];
    for (auto _ : state) {
        const auto start = std::chrono::steady_clock::now();
        FitPoly2D(&result, &source, nullptr, 0, 65535, 0, nullptr, 3, 3, c, residual.data(), threads);
        best = std::min(best, std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count());
        benchmark::DoNotOptimize(out.data());
    }
    const std::string key = "poly33/" + std::to_string(threads);
    Best.seconds[key] = std::min(Best.seconds.count(key) ? Best.seconds[key] : 1e30, best);
    state.SetItemsProcessed(static_cast<int64_t>(state.iterations()) * kSize * kSize);
}

} // namespace

BENCHMARK(BM_FitPoly2D33)->Arg(1)->Arg(2)->Unit(benchmark::kMillisecond)->UseRealTime();
