// The lattice average and the drift correction on a 4096 by 4096 image.
//   - LatticeAverage of an 8 by 8 cell (accumulation only, and with the repeat) beside one read
//     pass of the image; the ratio is printed as the counter "x_read".
//   - DriftResample of a 3800 by 3800 parallelogram leaning 5 pixels in 100 (bilinear), and the
//     whole DriftCorrect command with its resampling to 512. The source codes and the frame go
//     to TAVRIN_DRIFT_INPUT (default /tmp/tavrin-drift-4096.u16, raw u16) and ".frame" beside
//     it, and the best time of DriftResample to ".times", for bench/drift_scipy.py, which times
//     scipy.ndimage.map_coordinates (order 1) on the same coordinates.
#include <benchmark/benchmark.h>

#include <chrono>
#include <ctime>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <limits>
#include <random>
#include <string>
#include <vector>

#include "host/reset.h"
#include "image/lattice.h"
#include "image/regions.h"
#include "platform/platform_table.h"
#include "store/data_list.h"
#include "store/duplicate.h"
#include "store/image_header.h"
#include "store/memory.h"

namespace {

constexpr int kSide = 4096;
// The ratios are taken in the processor time of this thread: on a machine shared with other
// work, wall time measures the others as well.
struct Clock {
    static std::chrono::duration<double> now()
    {
        timespec t{};
        clock_gettime(CLOCK_THREAD_CPUTIME_ID, &t);
        return std::chrono::duration<double>(static_cast<double>(t.tv_sec) + 1e-9 * static_cast<double>(t.tv_nsec));
    }
};

int32_t g_answer = TV_IDNO;
int32_t Answer(void*, const char*, const char*, uint32_t) { return g_answer; }

std::string InputPath()
{
    const char* path = std::getenv("TAVRIN_DRIFT_INPUT");
    return path && *path ? path : "/tmp/tavrin-drift-4096.u16";
}

// The image in the data list, current; written once for the scipy script.
ImageHeaderType* Source()
{
    static ImageHeaderType* item = [] {
        ResetProcessState();
        static TavrinPlatformTable platform{};
        platform.MessageBox = Answer;
        SetPlatformTable(&platform);
        ImageHeaderType* image = AllocateListItem(nullptr);
        InitImageHeader(image, kSide, kSide);
        MemHandleType pair;
        if (!AllocateMem(static_cast<size_t>(kSide) * kSide, 2, &pair)) std::abort();
        image->PixHandle = pair.Handle;
        image->PixData = static_cast<uint16_t*>(pair.Ptr);
        std::mt19937 random(8);
        std::normal_distribution<double> noise(0.0, 300.0);
        for (int y = 0; y < kSide; ++y)
            for (int x = 0; x < kSide; ++x) {
                const double z = 30000 + 12000 * std::cos(2 * M_PI * x / 8) * std::cos(2 * M_PI * y / 8) + noise(random);
                image->PixData[static_cast<size_t>(y) * kSide + x] = static_cast<uint16_t>(std::clamp(z, 0.0, 65535.0));
            }
        image->ImageSizeX = image->ImageSizeY = 100.0f;
        if (FILE* f = std::fopen(InputPath().c_str(), "wb")) {
            std::fwrite(image->PixData, 2, static_cast<size_t>(kSide) * kSide, f);
            std::fclose(f);
        }
        return image;
    }();
    CurrentItem = item;
    return item;
}

// The best of three single read passes over the codes.
double ReadPassSeconds(const ImageHeaderType* image)
{
    double best = std::numeric_limits<double>::max();
    for (int k = 0; k < 3; ++k) {
        const auto start = Clock::now();
        uint64_t sum = 0;
        for (size_t i = 0; i < static_cast<size_t>(kSide) * kSide; ++i) sum += image->PixData[i];
        benchmark::DoNotOptimize(sum);
        best = std::min(best, std::chrono::duration<double>(Clock::now() - start).count());
    }
    return best;
}

void EraseResults(ImageHeaderType* source)
{
    while (source->Next) EraseItem(source->Next);
    CurrentItem = source;
}

void BM_ReadPass(benchmark::State& state)
{
    const ImageHeaderType* image = Source();
    for (auto _ : state) {
        uint64_t sum = 0;
        for (size_t i = 0; i < static_cast<size_t>(kSide) * kSide; ++i) sum += image->PixData[i];
        benchmark::DoNotOptimize(sum);
    }
}
BENCHMARK(BM_ReadPass)->Unit(benchmark::kMillisecond);

void BM_LatticeAverage(benchmark::State& state)
{
    ImageHeaderType* source = Source();
    const double read = ReadPassSeconds(source);
    g_answer = state.range(0) ? TV_IDYES : TV_IDNO;
    LatticePointsX[0] = 0, LatticePointsY[0] = 0;
    LatticePointsX[1] = 8, LatticePointsY[1] = 0;
    LatticePointsX[2] = 0, LatticePointsY[2] = 8;
    // The best time beside the best read pass: both as near to the machine's own speed as the
    // load of other processes lets them come.
    double best = std::numeric_limits<double>::max();
    for (auto _ : state) {
        const auto start = Clock::now();
        LatticeAverage(1);
        best = std::min(best, std::chrono::duration<double>(Clock::now() - start).count());
        state.PauseTiming();
        EraseResults(source);
        state.ResumeTiming();
    }
    state.counters["x_read"] = best / read;
    state.counters["cells"] = static_cast<double>(LastLatticeResult().cells);
    state.SetLabel(state.range(0) ? "with the repeat" : "accumulation, cell and question");
}
BENCHMARK(BM_LatticeAverage)->Arg(0)->Arg(1)->Unit(benchmark::kMillisecond);

// The part of the lattice average that is not the accumulation: the new item of the image's
// size, zeroed, made and freed, beside the same read pass.
void BM_NewZeroedItem(benchmark::State& state)
{
    ImageHeaderType* source = Source();
    const double read = ReadPassSeconds(source);
    double best = std::numeric_limits<double>::max();
    for (auto _ : state) {
        const auto start = Clock::now();
        ImageHeaderType* item = DuplicateForResult(source);
        benchmark::DoNotOptimize(item);
        FreeResultItem(item);
        best = std::min(best, std::chrono::duration<double>(Clock::now() - start).count());
    }
    state.counters["x_read"] = best / read;
}
BENCHMARK(BM_NewZeroedItem)->Unit(benchmark::kMillisecond);

const RegionPoint kP0{50, 50}, kP1{3850, 50}, kP2{4040, 3850};

void BM_DriftResample(benchmark::State& state)
{
    const ImageHeaderType* source = Source();
    const DriftFrame f = MakeDriftFrame(kP0, kP1, kP2);
    std::vector<uint16_t> out(static_cast<size_t>(f.width * f.height));
    if (FILE* file = std::fopen((InputPath() + ".frame").c_str(), "w")) {
        std::fprintf(file, "%d %d %.17g %.17g %.17g %.17g %lld %lld\n", f.p0.x, f.p0.y, f.ux, f.uy, f.cosine, f.sine,
                     static_cast<long long>(f.width), static_cast<long long>(f.height));
        std::fclose(file);
    }
    double best = std::numeric_limits<double>::max();
    for (auto _ : state) {
        const auto start = Clock::now();
        DriftResample(source, f, out.data());
        benchmark::DoNotOptimize(out.data());
        best = std::min(best, std::chrono::duration<double>(Clock::now() - start).count());
    }
    if (FILE* file = std::fopen((InputPath() + ".times").c_str(), "w")) {
        std::fprintf(file, "DriftResample %.6f\n", best);
        std::fclose(file);
    }
    state.counters["pixels"] = static_cast<double>(f.width * f.height);
}
BENCHMARK(BM_DriftResample)->Unit(benchmark::kMillisecond);

void BM_DriftCorrect(benchmark::State& state)
{
    ImageHeaderType* source = Source();
    for (auto _ : state) {
        DriftCorrect(kP0, kP1, kP2);
        state.PauseTiming();
        EraseResults(source);
        state.ResumeTiming();
    }
}
BENCHMARK(BM_DriftCorrect)->Unit(benchmark::kMillisecond);

} // namespace
