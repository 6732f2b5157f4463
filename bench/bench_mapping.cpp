// Speed of the mapping block: loading and saving an image with a set of 512 images of 256 by
// 256 pixels (64 MiB of planes) against reading and writing the same number of bytes with plain
// stream calls (one fresh buffer for the read). The ratio counters say how many times the plain
// I/O each takes.
#include <benchmark/benchmark.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <unistd.h>

#include "files/tiff_read.h"
#include "files/tiff_write.h"
#include "host/reset.h"
#include "mapping/cits.h"
#include "platform/safe_replace.h"
#include "store/data_list.h"
#include "store/image_header.h"
#include "store/memory.h"

namespace {

constexpr int kSide = 256;
constexpr int kImages = 512;
constexpr size_t kPlaneBytes = static_cast<size_t>(kSide) * kSide * 2;
constexpr size_t kFileBytes = 7124 + kPlaneBytes + 390 + kImages * (165 + kPlaneBytes);

const std::string& Directory()
{
    static const std::string dir = [] {
        char pattern[] = "/tmp/tavrin-bench-XXXXXX";
        const char* made = mkdtemp(pattern);
        return std::string(made ? made : "/tmp");
    }();
    return dir;
}

std::string TiffPath() { return Directory() + "/mapping.tif"; }
std::string PlainPath() { return Directory() + "/mapping.bin"; }

ImageHeaderType* Image()
{
    static ImageHeaderType* image = [] {
        ResetProcessState();
        ImageHeaderType* item = AllocateListItem(nullptr);
        InitImageHeader(item, kSide, kSide);
        MemHandleType pair;
        if (!AllocateMem(static_cast<size_t>(kSide) * kSide, 2, &pair)) std::abort();
        item->PixHandle = pair.Handle;
        item->PixData = static_cast<uint16_t*>(pair.Ptr);
        for (size_t i = 0; i < static_cast<size_t>(kSide) * kSide; ++i) item->PixData[i] = static_cast<uint16_t>(i * 31);
        CITSHeaderType* set = AllocateCITSDataSet(kImages, kSide, kSide);
        if (!set) std::abort();
        for (int k = 0; k < kImages; ++k) {
            CITSImageEntryType* e = CITSEntry(set, k);
            e->adc_gain = 1;
            e->i_divider = 1;
            e->voltage = static_cast<float>(k) / kImages;
            e->z_high = 1.0f;
            e->data_type = 4;
            uint16_t* p = CITSPixels(e);
            for (size_t i = 0; i < static_cast<size_t>(kSide) * kSide; ++i)
                p[i] = static_cast<uint16_t>(i * 2654435761u + static_cast<unsigned>(k));
        }
        SetCITSBlock(item, set);
        item->MapType = 12;
        CurrentItem = item;
        return item;
    }();
    return image;
}

using Clock = std::chrono::steady_clock;

double Seconds(Clock::time_point from) { return std::chrono::duration<double>(Clock::now() - from).count(); }

void SaveMapping()
{
    if (saveTiffImage(Image(), TiffPath().c_str(), 0) != 0) std::abort();
}

void LoadMapping()
{
    ImageHeaderType* keep = CurrentItem;
    if (LoadImageFile(TiffPath().c_str(), 0, 0, 1) != 0 || !CurrentItem->CITSHeaderPtr) std::abort();
    EraseItem(CurrentItem);
    CurrentItem = keep;
}

// The same bytes in one buffer, written in one call.
const std::string& PlainBytes()
{
    static const std::string bytes(kFileBytes, '\x5A');
    return bytes;
}

void WritePlain()
{
    FILE* f = std::fopen(PlainPath().c_str(), "wb");
    if (!f) std::abort();
    std::fwrite(PlainBytes().data(), 1, PlainBytes().size(), f);
    std::fclose(f);
}

void ReadPlain()
{
    FILE* f = std::fopen(PlainPath().c_str(), "rb");
    if (!f) std::abort();
    auto* bytes = static_cast<char*>(std::malloc(kFileBytes));
    if (std::fread(bytes, 1, kFileBytes, f) != kFileBytes) std::abort();
    benchmark::DoNotOptimize(bytes[kFileBytes - 1]);
    std::free(bytes);
    std::fclose(f);
}

void Prepare()
{
    Image();
    SaveMapping();
    WritePlain();
}

void BM_SaveMapping(benchmark::State& state)
{
    Prepare();
    for (auto _ : state) SaveMapping();
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * kFileBytes));
}

void BM_WritePlain(benchmark::State& state)
{
    Prepare();
    for (auto _ : state) WritePlain();
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * kFileBytes));
}

void BM_LoadMapping(benchmark::State& state)
{
    Prepare();
    for (auto _ : state) LoadMapping();
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * kFileBytes));
}

void BM_ReadPlain(benchmark::State& state)
{
    Prepare();
    for (auto _ : state) ReadPlain();
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * kFileBytes));
}

// Both in each iteration, alternating, so that both see the same state of the machine. A save
// flushes its file to the disk before it renames it over the old one; that flush is the disk's
// time, not the save's, so it is counted apart (ours_fsync_ms) and the plain write has none.
void Ratio(benchmark::State& state, void (*ours)(), void (*plain)())
{
    Prepare();
    double oursTotal = 0, plainTotal = 0, flushTotal = 0;
    for (auto _ : state) {
        const double flushedBefore = FileReplaceSyncSeconds();
        Clock::time_point t = Clock::now();
        ours();
        const double flush = FileReplaceSyncSeconds() - flushedBefore;
        oursTotal += Seconds(t) - flush;
        flushTotal += flush;
        t = Clock::now();
        plain();
        plainTotal += Seconds(t);
    }
    state.counters["ours_ms"] = 1000 * oursTotal / static_cast<double>(state.iterations());
    state.counters["plain_ms"] = 1000 * plainTotal / static_cast<double>(state.iterations());
    state.counters["ours_fsync_ms"] = 1000 * flushTotal / static_cast<double>(state.iterations());
    state.counters["ratio"] = plainTotal > 0 ? oursTotal / plainTotal : 0;
}

void BM_MappingSaveRatio(benchmark::State& state) { Ratio(state, SaveMapping, WritePlain); }
void BM_MappingLoadRatio(benchmark::State& state) { Ratio(state, LoadMapping, ReadPlain); }

} // namespace

BENCHMARK(BM_SaveMapping)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_WritePlain)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_LoadMapping)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_ReadPlain)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_MappingSaveRatio)->Unit(benchmark::kMillisecond)->Iterations(10);
BENCHMARK(BM_MappingLoadRatio)->Unit(benchmark::kMillisecond)->Iterations(10);
