// Fixed chunks of work spread over threads. Chunk k always covers the same items whatever the
// number of threads, and the caller combines the chunks' partial results in chunk order, so
// that one thread and two give the same bits.
#pragma once

#include <functional>

// Runs work(k) for k from 0 to count - 1 on up to `threads` threads (0: the cores, at most 2).
// Thread t takes chunks t, t + threads, ... A thread that cannot be started leaves its chunks
// to the calling thread.
void RunFixedChunks(int count, int threads, const std::function<void(int)>& work);
