#include "image/filter_bands.h"

#include <algorithm>
#include <thread>
#include <vector>

namespace {

int Threads = 0;

// Below this many pixels a second thread costs more than it saves.
constexpr long long kThreadedPixels = 64 * 1024;
constexpr int kMostThreads = 2;

int BandCount(int rows, long long pixels)
{
    int threads = Threads;
    if (threads <= 0) {
        if (pixels < kThreadedPixels) return 1;
        threads = std::clamp(static_cast<int>(std::thread::hardware_concurrency()), 1, kMostThreads);
    }
    return std::clamp(std::min(threads, rows), 1, 64);
}

} // namespace

void SetFilterThreads(int threads) { Threads = std::max(threads, 0); }
int FilterThreads() { return Threads; }

void RunRowBands(int rows, long long pixels, const std::function<void(int first, int last)>& band)
{
    if (rows <= 0) return;
    const int bands = BandCount(rows, pixels);
    auto first = [rows, bands](int b) { return static_cast<int>(static_cast<long long>(rows) * b / bands); };
    std::vector<std::thread> helpers;
    helpers.reserve(static_cast<size_t>(bands - 1));
    // A band whose thread cannot be started runs here after the first one: the rows are the same.
    int lastStarted = 1;
    for (; lastStarted < bands; ++lastStarted) {
        try {
            helpers.emplace_back(band, first(lastStarted), first(lastStarted + 1));
        } catch (...) {
            break;
        }
    }
    band(0, first(1));
    for (int b = lastStarted; b < bands; ++b) band(first(b), first(b + 1));
    for (std::thread& t : helpers) t.join();
}
