// The cost of writing frame store pictures: a 512 by 512 palette frame and a 512 by 512
// canvas as RGB, both of smooth height-map content, and deflate alone on text.
#include <benchmark/benchmark.h>

#include <cmath>
#include <string>
#include <vector>

#include "platform/png_writer.h"

namespace {

constexpr int32_t kSize = 512;

uint8_t Level(int32_t x, int32_t y)
{
    double z = 0.5 + 0.25 * std::sin(x / 37.0) * std::cos(y / 53.0) + 0.2 * std::sin((x + y) / 91.0);
    return static_cast<uint8_t>(z * 255.0);
}

void BM_PngPaletteFrame(benchmark::State& state)
{
    std::vector<uint8_t> indices(kSize * kSize);
    for (int32_t y = 0; y < kSize; ++y)
        for (int32_t x = 0; x < kSize; ++x)
            indices[static_cast<size_t>(y * kSize + x)] = static_cast<uint8_t>(35 + Level(x, y) / 2);
    std::vector<uint8_t> palette(256 * 3);
    for (size_t i = 0; i < palette.size(); ++i) palette[i] = static_cast<uint8_t>(i / 3);
    PngImage image{kSize, kSize, kPngColourPalette, indices.data(), kSize, palette.data(), 256, kPngAdaptiveFilter};
    std::vector<uint8_t> file;
    for (auto _ : state) {
        EncodePng(image, &file);
        benchmark::DoNotOptimize(file.data());
    }
    state.counters["bytes"] = static_cast<double>(file.size());
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations()) * kSize * kSize);
}
BENCHMARK(BM_PngPaletteFrame)->Unit(benchmark::kMillisecond);

void BM_PngRgbCanvas(benchmark::State& state)
{
    std::vector<uint8_t> pixels;
    for (int32_t y = 0; y < kSize; ++y) {
        for (int32_t x = 0; x < kSize; ++x) {
            uint8_t level = Level(x, y);
            pixels.push_back(level);
            pixels.push_back(static_cast<uint8_t>(level / 2));
            pixels.push_back(static_cast<uint8_t>(255 - level));
        }
    }
    PngImage image{kSize, kSize, kPngColourRgb, pixels.data(), kSize * 3, nullptr, 0, kPngAdaptiveFilter};
    std::vector<uint8_t> file;
    for (auto _ : state) {
        EncodePng(image, &file);
        benchmark::DoNotOptimize(file.data());
    }
    state.counters["bytes"] = static_cast<double>(file.size());
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations()) * static_cast<int64_t>(pixels.size()));
}
BENCHMARK(BM_PngRgbCanvas)->Unit(benchmark::kMillisecond);


} // namespace
