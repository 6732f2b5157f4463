// Large images against the disk: a 4096 by 4096 TIFF (32 MiB of pixels) loaded and saved.
//   - whole process: `tavrin convert IN OUT` beside `cat IN > OUT`, interleaved, medians;
//   - the peak resident memory of that convert against the pixel block;
//   - in process: the loader beside one read of the file into fresh pre-faulted memory.
// Each prints its ratio as a counter.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <climits>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <spawn.h>
#include <string>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

#include "bench_support.h"
#include "files/tiff_write.h"
#include "platform/large_blocks.h"
#include "store/image_header.h"

extern char** environ;

namespace {

constexpr int kSide = 4096;
constexpr size_t kPixelBytes = static_cast<size_t>(kSide) * kSide * 2;

using bench::Clock;
using bench::Seconds;

const std::string& Directory() { return bench::ScratchDirectory("/tmp/tavrin-large-XXXXXX"); }

std::string InPath() { return Directory() + "/in.tif"; }

// The image file, written once by the library.
void Prepare()
{
    static const bool done = [] {
        ImageHeaderType* item = bench::MakeTestImage(kSide, 2654435761u);
        if (saveTiffImage(item, InPath().c_str(), 0) != 0) std::abort();
        return true;
    }();
    (void)done;
}

std::string HostPath()
{
    char self[PATH_MAX];
    const ssize_t n = readlink("/proc/self/exe", self, sizeof self - 1);
    if (n <= 0) std::abort();
    std::string path(self, static_cast<size_t>(n));
    return path.substr(0, path.rfind('/') + 1) + "tavrin";
}

struct Finished {
    double seconds;
    long peakKiB;
};

// Runs a program to its end with standard output to `out` (or /dev/null); its time and peak
// resident memory.
Finished Spawn(const std::vector<std::string>& argv, const std::string& out)
{
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, 1, out.empty() ? "/dev/null" : out.c_str(), O_WRONLY | O_CREAT | O_TRUNC,
                                     0644);
    std::vector<char*> args;
    for (const std::string& a : argv) args.push_back(const_cast<char*>(a.c_str()));
    args.push_back(nullptr);
    const Clock::time_point start = Clock::now();
    pid_t pid = 0;
    if (posix_spawn(&pid, args[0], &actions, nullptr, args.data(), environ) != 0) std::abort();
    int status = 0;
    rusage usage{};
    if (wait4(pid, &status, 0, &usage) != pid || !WIFEXITED(status) || WEXITSTATUS(status) != 0) std::abort();
    const double seconds = Seconds(start);
    posix_spawn_file_actions_destroy(&actions);
    return {seconds, usage.ru_maxrss};
}

double Median(std::vector<double> v)
{
    std::sort(v.begin(), v.end());
    return v.empty() ? 0 : v[v.size() / 2];
}

void BM_ConvertProcessBesideCat(benchmark::State& state)
{
    Prepare();
    setenv("TAVRIN_HOME", (Directory() + "/home").c_str(), 1);
    const std::string host = HostPath(), out = Directory() + "/out.tif", copy = Directory() + "/copy.tif";
    std::vector<double> ours, cat;
    long peak = 0;
    for (auto _ : state) {
        const Finished t = Spawn({host, "convert", InPath(), out}, "");
        ours.push_back(t.seconds);
        peak = std::max(peak, t.peakKiB);
        cat.push_back(Spawn({"/bin/cat", InPath()}, copy).seconds);
    }
    const double o = Median(ours), c = Median(cat);
    state.counters["convert_ms"] = 1000 * o;
    state.counters["cat_ms"] = 1000 * c;
    state.counters["ratio"] = c > 0 ? o / c : 0;
    state.counters["peak_rss_MiB"] = static_cast<double>(peak) / 1024.0;
    state.counters["peak_rss_ratio"] = static_cast<double>(peak) * 1024.0 / static_cast<double>(kPixelBytes);
}

void LoadOnce() { bench::LoadAndDrop(InPath()); }

void ReadIntoPrefaulted()
{
    struct stat st{};
    if (stat(InPath().c_str(), &st) != 0) std::abort();
    const auto bytes = static_cast<size_t>(st.st_size);
    void* block = MapLargeBlock(bytes);
    const int fd = open(InPath().c_str(), O_RDONLY);
    if (!block || fd < 0) std::abort();
    size_t done = 0;
    while (done < bytes) {
        const ssize_t got = read(fd, static_cast<char*>(block) + done, bytes - done);
        if (got <= 0) std::abort();
        done += static_cast<size_t>(got);
    }
    benchmark::DoNotOptimize(static_cast<char*>(block)[12345]);
    close(fd);
    UnmapLargeBlock(block, bytes);
}

void BM_LoadBesidePrefaultedRead(benchmark::State& state)
{
    Prepare();
    std::vector<double> ours, plain;
    for (auto _ : state) {
        Clock::time_point t = Clock::now();
        LoadOnce();
        ours.push_back(Seconds(t));
        t = Clock::now();
        ReadIntoPrefaulted();
        plain.push_back(Seconds(t));
    }
    const double o = Median(ours), p = Median(plain);
    state.counters["load_ms"] = 1000 * o;
    state.counters["read_ms"] = 1000 * p;
    state.counters["ratio"] = p > 0 ? o / p : 0;
}

} // namespace

BENCHMARK(BM_ConvertProcessBesideCat)->Unit(benchmark::kMillisecond)->Iterations(7);
BENCHMARK(BM_LoadBesidePrefaultedRead)->Unit(benchmark::kMillisecond)->Iterations(15);
