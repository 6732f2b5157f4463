#include "display/plot_buffer.h"
#include "host/errors.h"
#include "store/memory.h"

#include <cstdint>

PlotBuffer::PlotBuffer(size_t count, bool quiet)
{
    const size_t n = count ? count : 1;
    if (n <= SIZE_MAX / sizeof(float)) data_ = static_cast<float*>(emalloc(n * sizeof(float)));
    if (!data_) {
        if (!quiet) Error(ERR_NO_MEMORY);
        return;
    }
    count_ = count;
}

PlotBuffer::~PlotBuffer() { efree(data_); }
