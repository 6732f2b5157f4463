// Shared pieces of the filter tests: a started library with a frame store and the user kernels
// at their start values, coded and random images, and plain reference filters written here
// (64-bit sums, a full sort) to compare the library's results with.
#pragma once

#include "test_frame_support.h"

#include "image/filter_bands.h"
#include "image/filter_kernels.h"

#include <algorithm>
#include <cstdint>
#include <random>
#include <vector>

class FilterTestBase : public FrameStoreTest {
protected:
    void SetUp() override
    {
        FrameStoreTest::SetUp();
        ResetFilterKernels();
        SetFilterThreads(0);
        ASSERT_EQ(fs.Open(1), 0);
        host.ClearCalls();
    }
    void TearDown() override
    {
        ResetFilterKernels();
        SetFilterThreads(0);
        FrameStoreTest::TearDown();
    }

    static uint16_t At(const ImageHeaderType* image, int x, int y)
    {
        return image->PixData[static_cast<size_t>(y) * image->nx + x];
    }
    // An image of random codes over the whole range, with runs of 0 and 65535 mixed in so that
    // both clips are reached.
    static ImageHeaderType* AddRandom(int nx, int ny, uint32_t seed, const char* title = "Random")
    {
        std::mt19937 random(seed);
        return AddImage(nx, ny, [&random](int, int) {
            const uint32_t r = random();
            if (r % 7 == 0) return static_cast<uint16_t>(0);
            if (r % 7 == 1) return static_cast<uint16_t>(65535);
            return static_cast<uint16_t>(r >> 16);
        }, title);
    }
    bool BoxShown(const std::string& text) const
    {
        for (const auto& box : host.messageBoxes)
            if (box.text == text) return true;
        return false;
    }

    TestFrameStore fs;
};

// The plain rule of a kernel, written out: 64-bit sums, truncating division, clipped; the
// border of size / 2 copied when the sum is not 0, else 0.
inline std::vector<uint16_t> ReferenceCorrelate(const std::vector<uint16_t>& in, int nx, int ny,
                                                const std::vector<int>& kernel, int size)
{
    const int h = size / 2;
    long long sum = 0;
    for (int k : kernel) sum += k;
    const long long divisor = sum != 0 ? sum : 1;
    std::vector<uint16_t> out(in.size());
    for (int y = 0; y < ny; ++y)
        for (int x = 0; x < nx; ++x) {
            const size_t i = static_cast<size_t>(y) * nx + x;
            if (x < h || y < h || x >= nx - h || y >= ny - h) {
                out[i] = sum != 0 ? in[i] : 0;
                continue;
            }
            long long t = 0;
            for (int r = 0; r < size; ++r)
                for (int c = 0; c < size; ++c)
                    t += static_cast<long long>(kernel[static_cast<size_t>(r) * size + c]) *
                         in[static_cast<size_t>(y + r - h) * nx + (x + c - h)];
            const long long q = t / divisor;
            out[i] = static_cast<uint16_t>(q <= 0 ? 0 : q >= 65535 ? 65535 : q);
        }
    return out;
}

// The plain median: the neighbourhood fully sorted, the middle taken; the border copied.
inline std::vector<uint16_t> ReferenceMedian(const std::vector<uint16_t>& in, int nx, int ny, int points)
{
    std::vector<uint16_t> out(in);
    for (int y = 1; y < ny - 1; ++y)
        for (int x = 1; x < nx - 1; ++x) {
            std::vector<uint16_t> v;
            for (int dy = -1; dy <= 1; ++dy)
                for (int dx = -1; dx <= 1; ++dx)
                    if (points == 9 || dx == 0 || dy == 0) v.push_back(in[static_cast<size_t>(y + dy) * nx + x + dx]);
            std::sort(v.begin(), v.end());
            out[static_cast<size_t>(y) * nx + x] = v[v.size() / 2];
        }
    return out;
}

inline std::vector<int> KernelValues(KernelFamily family, int index)
{
    const FilterKernel* kernel = FindKernel(family, index);
    if (!kernel) return {};
    return {kernel->values, kernel->values + kernel->size * kernel->size};
}
