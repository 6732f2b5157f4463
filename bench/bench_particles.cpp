// The cost of the particle measurement and of erosion and dilation on a 4096 by 4096 bilevel
// image of random discs (radius 3 to 12 pixels, about 30 % covered): MeasureAllObjects with
// connectivity 4 and 8, and one erosion and one dilation step on one thread and on two. The
// image is written to TAVRIN_PARTICLE_INPUT (default /tmp/tavrin-particles-4096.u16, raw u16,
// row 0 first) for bench/particles_scipy.py, which times scipy.ndimage.label with the same
// connectivity plus find_objects and bincount for the same boxes and areas; the best time of
// each benchmark goes to the same name with ".times" appended, for its ratios.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <map>
#include <random>
#include <string>
#include <vector>

#include "bench_support.h"
#include "image/particle_measure.h"
#include "image/particle_morphology.h"

namespace {

constexpr int kSize = 4096;

std::string InputPath() { return bench::InputPath("TAVRIN_PARTICLE_INPUT", "/tmp/tavrin-particles-4096.u16"); }

const std::vector<uint16_t>& Input()
{
    static const std::vector<uint16_t> codes = [] {
        std::vector<uint16_t> v(static_cast<size_t>(kSize) * kSize, 0);
        std::mt19937 random(4096);
        std::uniform_int_distribution<int> place(0, kSize - 1), radius(3, 12);
        for (int disc = 0; disc < 22000; ++disc) {
            const int cx = place(random), cy = place(random), r = radius(random);
            for (int y = std::max(0, cy - r); y <= std::min(kSize - 1, cy + r); ++y)
                for (int x = std::max(0, cx - r); x <= std::min(kSize - 1, cx + r); ++x)
                    if ((x - cx) * (x - cx) + (y - cy) * (y - cy) <= r * r) v[static_cast<size_t>(y) * kSize + x] = 65535;
        }
        bench::WriteCodes(InputPath(), v);
        return v;
    }();
    return codes;
}

bench::BestTimes Best{InputPath};

void BM_MeasureAllObjects(benchmark::State& state)
{
    std::vector<uint16_t> codes = Input();
    const int connectivity = static_cast<int>(state.range(0));
    double best = 1e30;
    int count = 0;
    for (auto _ : state) {
        ParticleStats stats;
        const bench::Clock::time_point start = bench::Clock::now();
        MeasureAllObjects(codes.data(), kSize, kSize, MeasureFrame{1.0, 1.0, connectivity}, &stats);
        best = std::min(best, bench::Seconds(start));
        count = stats.ObjectCount;
        FreeParticleStats(&stats);
    }
    state.counters["objects"] = count;
    Best.Keep("measure/" + std::to_string(connectivity), best);
}

void Morph(benchmark::State& state, bool dilate)
{
    const std::vector<uint16_t>& in = Input();
    std::vector<uint16_t> out(in.size());
    bench::BestOnThreads(state, dilate ? "dilate" : "erode", Best, [&] {
        ErodeOrDilate(in.data(), out.data(), kSize, kSize, 8, dilate);
        benchmark::DoNotOptimize(out.data());
    });
}

void BM_Erode8(benchmark::State& state) { Morph(state, false); }
void BM_Dilate8(benchmark::State& state) { Morph(state, true); }

} // namespace

BENCHMARK(BM_MeasureAllObjects)->Arg(4)->Arg(8)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(BM_Erode8)->Arg(1)->Arg(2)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(BM_Dilate8)->Arg(1)->Arg(2)->Unit(benchmark::kMillisecond)->UseRealTime();
