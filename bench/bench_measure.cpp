// The cost of the area statistics of the measuring object over a 4096 by 4096 topography of
// tilt, bumps and noise: min, max, mean, rms, Ra, area, the surface of the two triangles of
// every pixel and the volume above a base plane, in one call on the whole image. The codes go
// to TAVRIN_MEASURE_INPUT (default /tmp/tavrin-measure-4096.u16, raw u16, row 0 first) for
// bench/measure_numpy.py, which computes the same sums, volume and surface with numpy; the best
// time goes to the same name with ".times" appended, for its ratio.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <random>
#include <string>
#include <vector>

#include "analysis/measure.h"
#include "store/image_header.h"

namespace {

constexpr int kSize = 4096;

std::string InputPath()
{
    const char* path = std::getenv("TAVRIN_MEASURE_INPUT");
    return path && *path ? path : "/tmp/tavrin-measure-4096.u16";
}

std::vector<uint16_t>& Input()
{
    static std::vector<uint16_t> codes = [] {
        std::vector<uint16_t> v(static_cast<size_t>(kSize) * kSize);
        std::mt19937 random(36);
        std::normal_distribution<double> noise(0.0, 150.0);
        for (int y = 0; y < kSize; ++y)
            for (int x = 0; x < kSize; ++x) {
                const double u = x / 4096.0, w = y / 4096.0;
                const double z = 20000.0 + 8000.0 * u + 5000.0 * w + 9000.0 * std::sin(40 * u) * std::cos(30 * w) +
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

double g_best = 1e30;

void BM_MarkerAreaCalcs(benchmark::State& state)
{
    static ImageHeaderType image;
    InitImageHeader(&image, kSize, kSize);
    image.PixData = Input().data();
    image.SPMData = 1;
    image.DataSource = 1;
    image.ImageSizeX = image.ImageSizeY = 1000.0f;   // nm
    image.Zlo = 0.0f;
    image.Zhi = 65.535f;                               // nm: 1 pm a code
    static CMeasure measure;
    measure.BaseMode = TV_BASE_ABOVE;
    measure.BaseHeight = 30.0f;
    AreaStats s;
    for (auto _ : state) {
        const auto start = std::chrono::steady_clock::now();
        measure.MarkerAreaCalcs(nullptr, false, &image, nullptr, nullptr, s.Outputs());
        g_best = std::min(g_best, std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count());
        benchmark::DoNotOptimize(s);
    }
    state.counters["mean"] = s.mean;
    state.counters["surface"] = s.surface;
    state.counters["volume"] = s.volume;
    state.SetItemsProcessed(static_cast<int64_t>(state.iterations()) * kSize * kSize);
    if (FILE* f = std::fopen((InputPath() + ".times").c_str(), "w")) {
        std::fprintf(f, "area %.6f\n", g_best);
        std::fprintf(f, "values %.9g %.9g %.9g %.9g %.9g %.9g %.9g\n", s.min, s.max, s.mean, s.rms, s.ra, s.surface,
                     s.volume);
        std::fclose(f);
    }
}

} // namespace

BENCHMARK(BM_MarkerAreaCalcs)->Unit(benchmark::kMillisecond)->UseRealTime()->Iterations(5);
