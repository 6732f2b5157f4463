// What the benchmark programs share: a scratch directory, a library image of test pixels, the
// load-and-drop of an image file, the loops that time one step or compare it with plain I/O,
// and, for the programs with a python reference script, the input codes written to a file and
// the best times written beside them.
//
// Header only: each bench/bench_*.cpp is a program of its own, so shared code cannot live in a
// .cpp file of this folder.
#pragma once

#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <map>
#include <random>
#include <string>
#include <unistd.h>
#include <vector>

#include "files/tiff_read.h"
#include "host/reset.h"
#include "image/filter_bands.h"
#include "platform/safe_replace.h"
#include "store/data_list.h"
#include "store/image_header.h"
#include "store/memory.h"

namespace bench {

using Clock = std::chrono::steady_clock;

inline double Seconds(Clock::time_point from) { return std::chrono::duration<double>(Clock::now() - from).count(); }

// A fresh directory below /tmp for the files of this program, made on the first call;
// `pattern` is the mkdtemp pattern and a program passes the same one on every call.
inline const std::string& ScratchDirectory(const char* pattern)
{
    static const std::string dir = [pattern] {
        std::string name(pattern);
        const char* made = mkdtemp(name.data());
        if (!made) std::abort();
        return std::string(made);
    }();
    return dir;
}

// A new side by side image at the head of a fresh data list, made the current item, its pixels
// i * `step` (modulo 2^16) in storage order.
inline ImageHeaderType* MakeTestImage(int side, uint32_t step)
{
    ResetProcessState();
    ImageHeaderType* item = AllocateListItem(nullptr);
    InitImageHeader(item, side, side);
    MemHandleType pair;
    const size_t pixels = static_cast<size_t>(side) * side;
    if (!AllocateMem(pixels, 2, &pair)) std::abort();
    item->PixHandle = pair.Handle;
    item->PixData = static_cast<uint16_t*>(pair.Ptr);
    for (size_t i = 0; i < pixels; ++i) item->PixData[i] = static_cast<uint16_t>(i * step);
    CurrentItem = item;
    return item;
}

// Loads the image file at `path` into the data list and erases it again, the current item kept;
// with `needsMappingSet`, the loaded image must carry its set of images.
inline void LoadAndDrop(const std::string& path, bool needsMappingSet = false)
{
    ImageHeaderType* keep = CurrentItem;
    if (LoadImageFile(path.c_str(), 0, 0, 1) != 0) std::abort();
    if (needsMappingSet && !CurrentItem->CITSHeaderPtr) std::abort();
    EraseItem(CurrentItem);
    CurrentItem = keep;
}

// Times `step` alone, `bytes` counted for each run.
inline void TimeStep(benchmark::State& state, void (*prepare)(), void (*step)(), size_t bytes)
{
    prepare();
    for (auto _ : state) step();
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * bytes));
}

// Both in each iteration, alternating, so that both see the same state of the machine. With
// `flushApart`, the time `ours` spends flushing replaced files to the disk is not its own: it is
// taken out of ours_ms and shown as ours_fsync_ms.
inline void Ratio(benchmark::State& state, void (*prepare)(), void (*ours)(), void (*plain)(), bool flushApart)
{
    prepare();
    double oursTotal = 0, plainTotal = 0, flushTotal = 0;
    for (auto _ : state) {
        const double flushedBefore = flushApart ? FileReplaceSyncSeconds() : 0;
        Clock::time_point t = Clock::now();
        ours();
        const double flush = flushApart ? FileReplaceSyncSeconds() - flushedBefore : 0;
        oursTotal += Seconds(t) - flush;
        flushTotal += flush;
        t = Clock::now();
        plain();
        plainTotal += Seconds(t);
    }
    const double n = static_cast<double>(state.iterations());
    state.counters["ours_ms"] = 1000 * oursTotal / n;
    state.counters["plain_ms"] = 1000 * plainTotal / n;
    if (flushApart) state.counters["ours_fsync_ms"] = 1000 * flushTotal / n;
    state.counters["ratio"] = plainTotal > 0 ? oursTotal / plainTotal : 0;
}

// The file of a program's input codes: the environment variable `variable` if set and not
// empty, else `fallback`.
inline std::string InputPath(const char* variable, const char* fallback)
{
    const char* path = std::getenv(variable);
    return path && *path ? path : fallback;
}

// Writes the codes to `path`, raw u16, for the reference script; nothing when it cannot.
inline void WriteCodes(const std::string& path, const std::vector<uint16_t>& codes)
{
    if (FILE* f = std::fopen(path.c_str(), "wb")) {
        std::fwrite(codes.data(), 2, codes.size(), f);
        std::fclose(f);
    }
}

// A side by side image of a smooth height with noise, `height(x, y, noise)` clamped to the
// codes; the noise normal with the given deviation, from a fixed seed.
template <class Height>
std::vector<uint16_t> SmoothCodes(int side, double deviation, Height height)
{
    std::vector<uint16_t> v(static_cast<size_t>(side) * side);
    std::mt19937 random(4096);
    std::normal_distribution<double> noise(0.0, deviation);
    for (int y = 0; y < side; ++y)
        for (int x = 0; x < side; ++x)
            v[static_cast<size_t>(y) * side + x] =
                static_cast<uint16_t>(std::clamp(height(x, y, noise(random)), 0.0, 65535.0));
    return v;
}

// The best time per run of each benchmark, written at the end of the program to the input file's
// name with ".times" appended, one "name seconds" line each; then `report`, if any.
class BestTimes {
public:
    BestTimes(std::string (*path)(), void (*report)(std::map<std::string, double>&) = nullptr)
        : path_(path), report_(report)
    {
    }
    BestTimes(const BestTimes&) = delete;
    BestTimes& operator=(const BestTimes&) = delete;

    void Keep(const std::string& key, double s) { seconds_[key] = std::min(seconds_.count(key) ? seconds_[key] : 1e30, s); }

    ~BestTimes()
    {
        if (seconds_.empty()) return;
        if (FILE* f = std::fopen((path_() + ".times").c_str(), "w")) {
            for (const auto& [name, s] : seconds_) std::fprintf(f, "%s %.6f\n", name.c_str(), s);
            std::fclose(f);
        }
        if (report_) report_(seconds_);
    }

private:
    std::string (*path_)();
    void (*report_)(std::map<std::string, double>&);
    std::map<std::string, double> seconds_;
};

// The shortest time of one call of `work` over the benchmark's runs.
template <class Work>
double BestSeconds(benchmark::State& state, Work work)
{
    double best = 1e30;
    for (auto _ : state) {
        const Clock::time_point start = Clock::now();
        work();
        best = std::min(best, Seconds(start));
    }
    return best;
}

// BestSeconds with the filter threads set to the benchmark's argument for the runs and back to
// the default after, kept in `times` as `name`/threads.
template <class Work>
void BestOnThreads(benchmark::State& state, const std::string& name, BestTimes& times, Work work)
{
    const int threads = static_cast<int>(state.range(0));
    SetFilterThreads(threads);
    const double best = BestSeconds(state, work);
    SetFilterThreads(0);
    times.Keep(name + "/" + std::to_string(threads), best);
}

} // namespace bench
