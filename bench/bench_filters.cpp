// The cost of the filters on a 4096 by 4096 image of smooth content with noise: the 5- and
// 9-point medians, the 3x3 and 5x5 low pass and the Laplace kernel, on one thread and on two.
// The input image is written to TAVRIN_FILTER_INPUT (default /tmp/tavrin-filters-4096.u16, raw
// u16, row 0 first) for bench/filters_scipy.py, which times scipy.ndimage on the same codes;
// the best time of each benchmark goes to the same name with ".times" appended, for its ratios.
#include <benchmark/benchmark.h>

#include <cmath>
#include <string>
#include <vector>

#include "bench_support.h"
#include "image/filter_kernels.h"
#include "image/filter_rows.h"

namespace {

constexpr int kSize = 4096;

std::string InputPath() { return bench::InputPath("TAVRIN_FILTER_INPUT", "/tmp/tavrin-filters-4096.u16"); }

const std::vector<uint16_t>& Input()
{
    static const std::vector<uint16_t> codes = [] {
        std::vector<uint16_t> v = bench::SmoothCodes(kSize, 300.0, [](int x, int y, double noise) {
            return 30000.0 + 12000.0 * std::sin(x / 151.0) * std::cos(y / 97.0) + noise;
        });
        bench::WriteCodes(InputPath(), v);
        return v;
    }();
    return codes;
}

bench::BestTimes Best{InputPath};

template <class Work>
void Time(benchmark::State& state, const std::string& name, Work work)
{
    const std::vector<uint16_t>& in = Input();
    std::vector<uint16_t> out(in.size());
    bench::BestOnThreads(state, name, Best, [&] {
        work(in.data(), out.data());
        benchmark::DoNotOptimize(out.data());
    });
    state.SetItemsProcessed(static_cast<int64_t>(state.iterations()) * kSize * kSize);
}

void Kernel(benchmark::State& state, const char* name, KernelFamily family, int index)
{
    const FilterKernel* kernel = FindKernel(family, index);
    Time(state, name, [kernel](const uint16_t* in, uint16_t* out) {
        CorrelateImage(in, out, kSize, kSize, kernel->values, kernel->size);
    });
}

void BM_Median5(benchmark::State& state)
{
    Time(state, "median5", [](const uint16_t* in, uint16_t* out) { MedianImage(in, out, kSize, kSize, 5); });
}
void BM_Median9(benchmark::State& state)
{
    Time(state, "median9", [](const uint16_t* in, uint16_t* out) { MedianImage(in, out, kSize, kSize, 9); });
}
void BM_LowPass3(benchmark::State& state) { Kernel(state, "low3", KernelFamily::Square3, 1); }
void BM_LowPass5(benchmark::State& state) { Kernel(state, "low5", KernelFamily::Square5, 1); }
void BM_MediumPass5(benchmark::State& state) { Kernel(state, "med5", KernelFamily::Square5, 2); }
void BM_Laplace(benchmark::State& state) { Kernel(state, "laplace", KernelFamily::Edge3, 5); }

} // namespace

BENCHMARK(BM_Median5)->Arg(1)->Arg(2)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(BM_Median9)->Arg(1)->Arg(2)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(BM_LowPass3)->Arg(1)->Arg(2)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(BM_LowPass5)->Arg(1)->Arg(2)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(BM_MediumPass5)->Arg(1)->Arg(2)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(BM_Laplace)->Arg(1)->Arg(2)->Unit(benchmark::kMillisecond)->UseRealTime();
