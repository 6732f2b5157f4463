// The cost of the polynomial surface fit of degree (3, 3) on a 4096 by 4096 image of tilt, bow
// and noise: sampling (every 16th row and column), moments, solve, and the residual and
// stretch of every pixel, on one thread and on two. The input goes to TAVRIN_FIT_INPUT
// (default /tmp/tavrin-fit-4096.u16, raw u16, row 0 first) for bench/fit_numpy.py, which times
// numpy's lstsq on the same sampled points and the same per-pixel evaluation; the best time of
// each run goes to the same name with ".times" appended, for its ratios.
#include <benchmark/benchmark.h>

#include <cstdio>
#include <map>
#include <string>
#include <vector>

#include "bench_support.h"
#include "image/fit.h"
#include "store/image_header.h"

namespace {

constexpr int kSize = 4096;

std::string InputPath() { return bench::InputPath("TAVRIN_FIT_INPUT", "/tmp/tavrin-fit-4096.u16"); }

std::vector<uint16_t>& Input()
{
    static std::vector<uint16_t> codes = [] {
        std::vector<uint16_t> v = bench::SmoothCodes(kSize, 200.0, [](int x, int y, double noise) {
            const double u = (x - 2048) / 4096.0, w = (y - 2048) / 4096.0;
            return 30000.0 + 9000.0 * u - 4000.0 * w + 16000.0 * (u * u + w * w) + 3000.0 * u * u * u + noise;
        });
        bench::WriteCodes(InputPath(), v);
        return v;
    }();
    return codes;
}

void PrintScaling(std::map<std::string, double>& seconds)
{
    if (seconds.count("poly33/1") && seconds.count("poly33/2"))
        std::printf("FitPoly2D (3, 3) scaling: 1 thread %.1f ms, 2 threads %.1f ms, speed-up %.2f\n",
                    seconds["poly33/1"] * 1e3, seconds["poly33/2"] * 1e3, seconds["poly33/1"] / seconds["poly33/2"]);
}

bench::BestTimes Best{InputPath, PrintScaling};

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
    double c[16];
    const double best = bench::BestSeconds(state, [&] {
        FitPoly2D(&result, &source, nullptr, 0, 65535, 0, nullptr, 3, 3, c, residual.data(), threads);
        benchmark::DoNotOptimize(out.data());
    });
    Best.Keep("poly33/" + std::to_string(threads), best);
    state.SetItemsProcessed(static_cast<int64_t>(state.iterations()) * kSize * kSize);
}

} // namespace

BENCHMARK(BM_FitPoly2D33)->Arg(1)->Arg(2)->Unit(benchmark::kMillisecond)->UseRealTime();
