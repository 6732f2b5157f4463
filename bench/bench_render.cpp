// Speed of the row writer: a 4096 by 4096 image and a 512 by 512 image shown at 512 in each of the
// five display modes, against a plain pass that reads every source pixel once (the memory
// bandwidth floor). Each display and the floor run alternately in the same iteration, so that
// both see the same state of the machine; the counters give nanoseconds per source pixel of
// each, and "x_floor", how many times the floor the display takes.
#include <benchmark/benchmark.h>

#include <chrono>
#include <cstdlib>
#include <vector>

#include "display/placement.h"
#include "display/vfs.h"
#include "host/reset.h"
#include "store/data_list.h"
#include "store/image_header.h"
#include "store/memory.h"

namespace {

using Clock = std::chrono::steady_clock;

double Seconds(Clock::time_point from) { return std::chrono::duration<double>(Clock::now() - from).count(); }

std::vector<uint8_t>& FrameBuffer()
{
    static std::vector<uint8_t> frame(static_cast<size_t>(kFrameWidth) * kFrameHeight);
    return frame;
}

void OpenFrame()
{
    static const bool opened = [] {
        ResetProcessState();
        if (VFS_open_vfs(FrameBuffer().data(), nullptr, nullptr, 1, kFrameWidth, kFrameHeight, kFrameWidth,
                         kFrameHeight) != 0)
            std::abort();
        return true;
    }();
    (void)opened;
}

// A topography-like image: a tilted plane with a ripple, every code different from its
// neighbours, so that the relief and contour modes take all their branches.
ImageHeaderType* Image(int side)
{
    OpenFrame();
    ImageHeaderType* item = AllocateListItem(CurrentItem);
    if (!item) std::abort();
    InitImageHeader(item, side, side);
    MemHandleType pair;
    if (!AllocateMem(static_cast<size_t>(side) * side, 2, &pair)) std::abort();
    item->PixHandle = pair.Handle;
    item->PixData = static_cast<uint16_t*>(pair.Ptr);
    for (int y = 0; y < side; ++y)
        for (int x = 0; x < side; ++x) {
            const uint32_t plane = static_cast<uint32_t>(x + y) * 65535u / static_cast<uint32_t>(2 * side);
            const uint32_t ripple = (static_cast<uint32_t>(x * 2654435761u + y * 40503u) >> 20) & 0x3ff;
            item->PixData[static_cast<size_t>(y) * side + x] = static_cast<uint16_t>((plane + ripple) & 0xffff);
        }
    return item;
}

ImageHeaderType* Large()
{
    static ImageHeaderType* image = Image(4096);
    return image;
}

ImageHeaderType* Small()
{
    static ImageHeaderType* image = Image(512);
    return image;
}

// Reads every code once.
uint64_t Floor(const ImageHeaderType* image)
{
    const size_t n = static_cast<size_t>(image->nx) * image->ny;
    const uint16_t* p = image->PixData;
    uint64_t sum = 0;
    for (size_t i = 0; i < n; ++i) sum += p[i];
    return sum;
}

void Display(benchmark::State& state, ImageHeaderType* (*which)())
{
    ImageHeaderType* image = which();
    const int mode = static_cast<int>(state.range(0));
    const double pixels = static_cast<double>(image->nx) * image->ny;
    double displayTotal = 0, floorTotal = 0;
    for (auto _ : state) {
        FSState.CursorX = FSState.CursorY = FSState.RowHeight = 0;
        FSState.ImageDisplaySize = kFrameWidth;
        FSState.DispMode = mode;
        Clock::time_point t = Clock::now();
        DisplayImage(image, 1, 0);
        displayTotal += Seconds(t);
        t = Clock::now();
        benchmark::DoNotOptimize(Floor(image));
        floorTotal += Seconds(t);
    }
    const double iterations = static_cast<double>(state.iterations());
    state.counters["ns_per_pixel"] = displayTotal / iterations / pixels * 1e9;
    state.counters["floor_ns_per_pixel"] = floorTotal / iterations / pixels * 1e9;
    state.counters["x_floor"] = floorTotal > 0 ? displayTotal / floorTotal : 0;
    if (FSState.ImPntsX != image->nx / kFrameWidth) std::abort();
}

void BM_Display4096At512(benchmark::State& state) { Display(state, Large); }
void BM_Display512At512(benchmark::State& state) { Display(state, Small); }

} // namespace

BENCHMARK(BM_Display4096At512)->DenseRange(0, 4)->ArgName("mode")->Unit(benchmark::kMillisecond);
BENCHMARK(BM_Display512At512)->DenseRange(0, 4)->ArgName("mode")->Unit(benchmark::kMicrosecond);
