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

#include <cstdio>
#include <fcntl.h>
#include <cstdlib>
#include <string>
#include <unistd.h>

#include "bench_support.h"
#include "files/tiff_write.h"
#include "platform/safe_replace.h"
#include "store/image_header.h"

namespace {

using bench::Clock;
using bench::Seconds;

constexpr int kSide = 4096;
constexpr size_t kFileBytes = 7124 + static_cast<size_t>(kSide) * kSide * 2;

const std::string& Directory() { return bench::ScratchDirectory("/tmp/tavrin-bench-XXXXXX"); }

std::string TiffPath() { return Directory() + "/image.tif"; }
std::string PlainPath() { return Directory() + "/plain.bin"; }

ImageHeaderType* Image()
{
    static ImageHeaderType* image = bench::MakeTestImage(kSide, 2654435761u);
    return image;
}

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

void LoadTiff() { bench::LoadAndDrop(TiffPath()); }

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

void BM_SaveTiff(benchmark::State& state) { bench::TimeStep(state, Prepare, SaveTiff, kFileBytes); }
void BM_WritePlain(benchmark::State& state) { bench::TimeStep(state, Prepare, WritePlain, kFileBytes); }
void BM_LoadTiff(benchmark::State& state) { bench::TimeStep(state, Prepare, LoadTiff, kFileBytes); }
void BM_ReadPlain(benchmark::State& state) { bench::TimeStep(state, Prepare, ReadPlain, kFileBytes); }

// The save here has its flush switched off, so there is no flush to count apart.
void BM_SaveRatio(benchmark::State& state) { bench::Ratio(state, Prepare, SaveTiffUnsynced, WritePlain, false); }

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

void BM_LoadRatio(benchmark::State& state) { bench::Ratio(state, Prepare, LoadTiff, ReadPlain, false); }

} // namespace

BENCHMARK(BM_SaveTiff)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_WritePlain)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_LoadTiff)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_ReadPlain)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_SaveRatio)->Unit(benchmark::kMillisecond)->Iterations(20);
BENCHMARK(BM_LoadRatio)->Unit(benchmark::kMillisecond)->Iterations(20);
BENCHMARK(BM_SafeSaveRatio)->Unit(benchmark::kMillisecond)->Iterations(20);
