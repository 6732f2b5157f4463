// Bands of rows computed on the processor's cores. The rows of a filter result depend only on
// the source, so each thread fills its own band of rows of the result; the calling thread then
// shows the rows in order, and the host sees the same row sequence as from one thread.
#pragma once

#include <functional>

// The number of threads of the filters: 0 (the default) chooses by the machine (at most 2) and
// keeps small images on the calling thread; 1 or more takes that many for any image of as many
// rows. Tests and the benchmark set it; the result does not depend on it.
void SetFilterThreads(int threads);
int FilterThreads();

// Calls band(first, last) for consecutive bands of rows [first, last) covering 0 to rows - 1,
// the first band on the calling thread, and returns when all are done. `pixels` is the size of
// the image, for the choice of the default.
void RunRowBands(int rows, long long pixels, const std::function<void(int first, int last)>& band);
