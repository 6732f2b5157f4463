// Speed of the image file: loading and saving a 4096 by 4096 image against reading and
// writing the same number of bytes with plain stream calls (a fresh buffer for each read, as
// any loader needs one). The ratio counters say how many times the plain I/O each takes.
//
// A save writes a temporary file, flushes it to the disk (fsync) and renames it over the old
// file. The flush is the disk's time, not the save's, so BM_SafeSaveRatio compares the save
// without its flush against a plain write of the very bytes of the saved file over an
// existing file (open with truncation, write, close), without its flush; each flush is timed
// on its own and printed beside (safe_fsync_ms, plain_fsync_ms). The save's flush time is what
// the file layer counts inside its fsync calls. BM_SaveRatio keeps the first comparison, with
// the save's flush switched off.
#include <benchmark/benchmark.h>

#include <chrono>
#include <cstdio>
#include <fcntl.h>
#include <cstdlib>
#include <cstring>
#include <string>
#include <unistd.h>

#include "files/tiff_read.h"
#include "files/tiff_write.h"
#include "host/reset.h"
#include "platform/safe_replace.h"
#include "store/data_list.h"
#include "store/image_header.h"
#include "store/memory.h"

namespace {

constexpr int kSide = 4096;
constexpr size_t kFileBytes = 7124 + static_cast<size_t>(kSide) * kSide * 2;

const std::string& Directory()
{
    static const std::string dir = [] {
        char pattern[] = "/tmp/tavrin-bench-XXXXXX";
        const char* made = mkdtemp(pattern);
        return std::string(made ? made : "/tmp");
    }();
    return dir;
}

std::string TiffPath() { return Directory() + "/image.tif"; }
std::string PlainPath() { return Directory() + "/plain.bin"; }

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
        for (size_t i = 0; i < static_cast<size_t>(kSide) * kSide; ++i)
            item->PixData[i] = static_cast<uint16_t>(i * 2654435761u);
        CurrentItem = item;
        return item;
    }();
    return image;
}

using Clock = std::chrono::steady_clock;

double Seconds(Clock::time_point from) { return std::chrono::duration<double>(Clock::now() - from).count(); }

void SaveTiff()
{
    if (saveTiffImage(Image(), TiffPath().c_str(), 0) != 0) std::abort();
}

void SaveTiffUnsynced()
{
    SetFileReplaceSync(false);
    SaveTiff();
    SetFileReplaceSync(true);
}

// The bytes of the saved image file, read once.
const std::string& SavedBytes()
{
    static const std::string bytes = [] {
        SaveTiff();
        std::string all(kFileBytes, '\0');
        FILE* f = std::fopen(TiffPath().c_str(), "rb");
        if (!f || std::fread(all.data(), 1, all.size(), f) != all.size()) std::abort();
        std::fclose(f);
        return all;
    }();
    return bytes;
}

std::string SameBytesPath() { return Directory() + "/same.bin"; }

// The saved file's bytes written over an existing file in place: truncate, write, close.
void WriteSameBytes()
{
    const std::string& bytes = SavedBytes();
    const int fd = ::open(SameBytesPath().c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0644);
    if (fd < 0) std::abort();
    for (size_t done = 0; done < bytes.size();) {
        const ssize_t put = ::write(fd, bytes.data() + done, bytes.size() - done);
        if (put <= 0) std::abort();
        done += static_cast<size_t>(put);
    }
    ::close(fd);
}

void SyncFile(const std::string& path)
{
    const int fd = ::open(path.c_str(), O_WRONLY | O_CLOEXEC);
    if (fd < 0 || ::fsync(fd) != 0) std::abort();
    ::close(fd);
}

void LoadTiff()
{
    ImageHeaderType* keep = CurrentItem;
    if (LoadImageFile(TiffPath().c_str(), 0, 0, 1) != 0) std::abort();
    EraseItem(CurrentItem);
    CurrentItem = keep;
}

void WritePlain()
{
    static std::string header(7124, '\0');
    FILE* f = std::fopen(PlainPath().c_str(), "wb");
    if (!f) std::abort();
    std::fwrite(header.data(), 1, header.size(), f);
    std::fwrite(Image()->PixData, 2, static_cast<size_t>(kSide) * kSide, f);
    std::fclose(f);
}

void ReadPlain()
{
    FILE* f = std::fopen(PlainPath().c_str(), "rb");
    if (!f) std::abort();
    char header[7124];
    auto* pixels = static_cast<uint16_t*>(std::malloc(static_cast<size_t>(kSide) * kSide * 2));
    if (std::fread(header, 1, sizeof header, f) != sizeof header ||
        std::fread(pixels, 2, static_cast<size_t>(kSide) * kSide, f) != static_cast<size_t>(kSide) * kSide)
        std::abort();
    benchmark::DoNotOptimize(pixels[12345]);
    std::free(pixels);
    std::fclose(f);
}

void Prepare()
{
    Image();
    SavedBytes();
    SaveTiff();
    WritePlain();
    WriteSameBytes();
    SyncFile(SameBytesPath());
}

void BM_SaveTiff(benchmark::State& state)
{
    Prepare();
    for (auto _ : state) SaveTiff();
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * kFileBytes));
}

void BM_WritePlain(benchmark::State& state)
{
    Prepare();
    for (auto _ : state) WritePlain();
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * kFileBytes));
}

void BM_LoadTiff(benchmark::State& state)
{
    Prepare();
    for (auto _ : state) LoadTiff();
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * kFileBytes));
}

void BM_ReadPlain(benchmark::State& state)
{
    Prepare();
    for (auto _ : state) ReadPlain();
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * kFileBytes));
}

// Both in each iteration, alternating, so that both see the same state of the machine.
void Ratio(benchmark::State& state, void (*ours)(), void (*plain)())
{
    Prepare();
    double oursTotal = 0, plainTotal = 0;
    for (auto _ : state) {
        Clock::time_point t = Clock::now();
        ours();
        oursTotal += Seconds(t);
        t = Clock::now();
        plain();
        plainTotal += Seconds(t);
    }
    state.counters["ours_ms"] = 1000 * oursTotal / static_cast<double>(state.iterations());
    state.counters["plain_ms"] = 1000 * plainTotal / static_cast<double>(state.iterations());
    state.counters["ratio"] = plainTotal > 0 ? oursTotal / plainTotal : 0;
}

void BM_SaveRatio(benchmark::State& state) { Ratio(state, SaveTiffUnsynced, WritePlain); }

// The safe save against a plain write of the same bytes, alternating, each over a file that is
// on the disk already; the flushes timed apart.
void BM_SafeSaveRatio(benchmark::State& state)
{
    Prepare();
    double safe = 0, safeSync = 0, plain = 0, plainSync = 0;
    for (auto _ : state) {
        const double flushedBefore = FileReplaceSyncSeconds();
        Clock::time_point t = Clock::now();
        SaveTiff();
        const double whole = Seconds(t);
        const double flush = FileReplaceSyncSeconds() - flushedBefore;
        safe += whole - flush;
        safeSync += flush;
        t = Clock::now();
        WriteSameBytes();
        plain += Seconds(t);
        t = Clock::now();
        SyncFile(SameBytesPath());
        plainSync += Seconds(t);
    }
    const double n = static_cast<double>(state.iterations());
    state.counters["safe_ms"] = 1000 * safe / n;
    state.counters["plain_ms"] = 1000 * plain / n;
    state.counters["ratio"] = plain > 0 ? safe / plain : 0;
    state.counters["safe_fsync_ms"] = 1000 * safeSync / n;
    state.counters["plain_fsync_ms"] = 1000 * plainSync / n;
}

void BM_LoadRatio(benchmark::State& state) { Ratio(state, LoadTiff, ReadPlain); }

} // namespace

BENCHMARK(BM_SaveTiff)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_WritePlain)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_LoadTiff)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_ReadPlain)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_SaveRatio)->Unit(benchmark::kMillisecond)->Iterations(20);
BENCHMARK(BM_LoadRatio)->Unit(benchmark::kMillisecond)->Iterations(20);
BENCHMARK(BM_SafeSaveRatio)->Unit(benchmark::kMillisecond)->Iterations(20);
