// A block of f32 values from the library's tracked memory, freed with its owner. A failed
// allocation reports 32769 "Not enough memory" (or nothing with `quiet`), and the buffer is then
// empty: Data() is null.
#pragma once

#include <cstddef>

class PlotBuffer {
public:
    explicit PlotBuffer(size_t count, bool quiet = false);
    ~PlotBuffer();
    PlotBuffer(const PlotBuffer&) = delete;
    PlotBuffer& operator=(const PlotBuffer&) = delete;

    float* Data() const { return data_; }
    bool Ok() const { return data_ != nullptr; }
    size_t Size() const { return count_; }

private:
    float* data_ = nullptr;
    size_t count_ = 0;
};
