#include "image/fit_chunks.h"

#include <algorithm>
#include <system_error>
#include <thread>
#include <vector>

void RunFixedChunks(int count, int threads, const std::function<void(int)>& work)
{
    if (threads <= 0) threads = static_cast<int>(std::clamp(std::thread::hardware_concurrency(), 1u, 2u));
    threads = std::clamp(threads, 1, std::max(count, 1));
    auto lane = [&](int t) {
        for (int k = t; k < count; k += threads) work(k);
    };
    std::vector<std::thread> pool;
    std::vector<int> leftover;
    for (int t = 1; t < threads; ++t) {
        try {
            pool.emplace_back(lane, t);
        } catch (const std::system_error&) {
            leftover.push_back(t);
        }
    }
    lane(0);
    for (int t : leftover) lane(t);
    for (auto& th : pool) th.join();
}
