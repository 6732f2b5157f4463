// Speed of the mapping block: loading and saving an image with a set of 512 images of 256 by
// 256 pixels (64 MiB of planes) against reading and writing the same number of bytes with plain
// stream calls (one fresh buffer for the read). The ratio counters say how many times the plain
// I/O each takes.
#include <benchmark/benchmark.h>

#include <cstdio>
#include <cstdlib>
#include <string>

#include "bench_support.h"
#include "files/tiff_write.h"
#include "mapping/cits.h"
#include "store/image_header.h"

namespace {

constexpr int kSide = 256;
constexpr int kImages = 512;
constexpr size_t kPlaneBytes = static_cast<size_t>(kSide) * kSide * 2;
constexpr size_t kFileBytes = 7124 + kPlaneBytes + 390 + kImages * (165 + kPlaneBytes);

const std::string& Directory() { return bench::ScratchDirectory("/tmp/tavrin-bench-XXXXXX"); }

std::string TiffPath() { return Directory() + "/mapping.tif"; }
std::string PlainPath() { return Directory() + "/mapping.bin"; }

ImageHeaderType* Image()
{
    static ImageHeaderType* image = [] {
        ImageHeaderType* item = bench::MakeTestImage(kSide, 31);
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
        return item;
    }();
    return image;
}

void SaveMapping()
{
    if (saveTiffImage(Image(), TiffPath().c_str(), 0) != 0) std::abort();
}

void LoadMapping() { bench::LoadAndDrop(TiffPath(), true); }

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

void BM_SaveMapping(benchmark::State& state) { bench::TimeStep(state, Prepare, SaveMapping, kFileBytes); }
void BM_WritePlain(benchmark::State& state) { bench::TimeStep(state, Prepare, WritePlain, kFileBytes); }
void BM_LoadMapping(benchmark::State& state) { bench::TimeStep(state, Prepare, LoadMapping, kFileBytes); }
void BM_ReadPlain(benchmark::State& state) { bench::TimeStep(state, Prepare, ReadPlain, kFileBytes); }

// A save flushes its file to the disk before it renames it over the old one; that flush is the
// disk's time, not the save's, so it is counted apart (ours_fsync_ms) and the plain write has none.
void BM_MappingSaveRatio(benchmark::State& state) { bench::Ratio(state, Prepare, SaveMapping, WritePlain, true); }
void BM_MappingLoadRatio(benchmark::State& state) { bench::Ratio(state, Prepare, LoadMapping, ReadPlain, true); }

} // namespace

BENCHMARK(BM_SaveMapping)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_WritePlain)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_LoadMapping)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_ReadPlain)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_MappingSaveRatio)->Unit(benchmark::kMillisecond)->Iterations(10);
BENCHMARK(BM_MappingLoadRatio)->Unit(benchmark::kMillisecond)->Iterations(10);
