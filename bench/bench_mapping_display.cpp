// Speed of the mapping display: the sheet of a 512 by 512 set of 256 images at frames of 32
// (shrink 16: 256 frames, one pixel of 16 by 16 read each), and 64 frames of the rapid replay
// of 512 by 512 images, each beside a plain pass that reads the pixels shown once (the floor).
// Each display and its floor run alternately in the same iteration; the counter "x_floor" is how
// many times the floor the display takes.
#include <benchmark/benchmark.h>

#include <chrono>
#include <cstdlib>
#include <vector>

#include "display/vfs.h"
#include "host/reset.h"
#include "mapping/cits_display.h"
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

// A 512 by 512 topography with a set of ni images, a sweep of ni rising values.
ImageHeaderType* MappingImage(int ni)
{
    ResetProcessState();
    if (VFS_open_vfs(FrameBuffer().data(), nullptr, nullptr, 1, kFrameWidth, kFrameHeight, kFrameWidth, kFrameHeight) != 0)
        std::abort();
    constexpr int side = 512;
    ImageHeaderType* item = AllocateListItem(CurrentItem);
    if (!item) std::abort();
    InitImageHeader(item, side, side);
    MemHandleType pair;
    if (!AllocateMem(static_cast<size_t>(side) * side, 2, &pair)) std::abort();
    item->PixHandle = pair.Handle;
    item->PixData = static_cast<uint16_t*>(pair.Ptr);
    CITSHeaderType* set = AllocateCITSDataSet(ni, side, side);
    if (!set) std::abort();
    for (int k = 0; k < ni; ++k) {
        CITSImageEntryType* e = CITSEntry(set, k);
        e->adc_gain = 1;
        e->i_divider = 1;
        e->voltage = -1.0f + 2.0f * static_cast<float>(k) / static_cast<float>(ni);
        e->z_low = -1.0f - 0.001f * static_cast<float>(k);
        e->z_high = 1.0f + 0.001f * static_cast<float>(k);
        e->data_type = 4;
        uint16_t* p = CITSPixels(e);
        for (int i = 0; i < side * side; ++i) p[i] = static_cast<uint16_t>(i * 2654435761u >> 9) ^ static_cast<uint16_t>(k * 97);
    }
    SetCITSBlock(item, set);
    item->MapType = 12;
    set->disp.flags = 0;
    set->disp.n = static_cast<int16_t>(ni);
    set->disp.mode = 0;
    set->disp.select = 2;
    CurrentItem = item;
    return item;
}

// Reads every shown pixel of the sheet once: frame f is image f, every 16th pixel of every 16th
// row.
uint64_t SheetFloor(const CITSHeaderType* set)
{
    uint64_t sum = 0;
    for (int k = 0; k < set->ni; ++k) {
        const uint16_t* p = CITSPixels(CITSEntry(set, k));
        for (int r = 0; r < 32; ++r)
            for (int c = 0; c < 32; ++c) sum += p[static_cast<size_t>(r) * 16 * set->cx + c * 16];
    }
    return sum;
}

void Sheet(benchmark::State& state)
{
    ImageHeaderType* image = MappingImage(256);
    const CITSHeaderType* set = image->CITSHeaderPtr;
    double shown = 0.0, floor = 0.0;
    for (auto _ : state) {
        FSState.CursorX = FSState.CursorY = 0;
        auto start = Clock::now();
        DisplayCITSDataSet1(image, 0);
        shown += Seconds(start);
        start = Clock::now();
        benchmark::DoNotOptimize(SheetFloor(set));
        floor += Seconds(start);
    }
    state.counters["x_floor"] = shown / floor;
    state.counters["ms_sheet"] = shown * 1e3 / static_cast<double>(state.iterations());
    ResetProcessState();
}
BENCHMARK(Sheet)->Unit(benchmark::kMillisecond);

// Reads every pixel of 64 images once.
uint64_t ReplayFloor(const CITSHeaderType* set)
{
    uint64_t sum = 0;
    for (int k = 0; k < 64; ++k) {
        const uint16_t* p = CITSPixels(CITSEntry(set, k));
        for (int i = 0; i < set->cx * set->cy; ++i) sum += p[i];
    }
    return sum;
}

void Replay(benchmark::State& state)
{
    ImageHeaderType* image = MappingImage(64);
    const CITSHeaderType* set = image->CITSHeaderPtr;
    double shown = 0.0, floor = 0.0;
    for (auto _ : state) {
        FSState.CursorX = FSState.CursorY = 0;
        CITSRapidReplay();
        auto start = Clock::now();
        for (int k = 0; k < 64; ++k) DoCITSReplay(CITSEntry(set, k)->voltage, 0);
        shown += Seconds(start);
        DoCITSReplay(CITSEntry(set, 63)->voltage, 1);
        start = Clock::now();
        benchmark::DoNotOptimize(ReplayFloor(set));
        floor += Seconds(start);
    }
    state.counters["x_floor"] = shown / floor;
    state.counters["ms_64_frames"] = shown * 1e3 / static_cast<double>(state.iterations());
    ResetProcessState();
}
BENCHMARK(Replay)->Unit(benchmark::kMillisecond);

} // namespace
