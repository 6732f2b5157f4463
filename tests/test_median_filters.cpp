// The median networks against a full sort, and the 9-point median on an image with spikes.
#include "test_filters_support.h"

#include "tavrin/dl_filters.h"
#include "image/filter_rows.h"

#include <algorithm>
#include <cmath>
#include <vector>

namespace {

class MedianTest : public FilterTestBase {};

uint16_t SortedMiddle(std::vector<uint16_t> v)
{
    std::sort(v.begin(), v.end());
    return v[v.size() / 2];
}

} // namespace

TEST_F(MedianTest, TheNetworksGiveTheMiddleOfEveryZeroOneInput)
{
    // A network of exchanges that picks the middle of every input of 0s and 1s picks the middle
    // of any input.
    for (int bits = 0; bits < 512; ++bits) {
        std::vector<uint16_t> v(9);
        for (int i = 0; i < 9; ++i) v[static_cast<size_t>(i)] = static_cast<uint16_t>((bits >> i) & 1);
        ASSERT_EQ(MedianOf9(v.data()), SortedMiddle(v)) << bits;
        if (bits < 32) {
            const std::vector<uint16_t> f(v.begin(), v.begin() + 5);
            ASSERT_EQ(MedianOf5(f[0], f[1], f[2], f[3], f[4]), SortedMiddle(f)) << bits;
        }
    }
}

TEST_F(MedianTest, TheNetworksMatchAFullSortOnRandomCodesWithTies)
{
    std::mt19937 random(7);
    for (int n = 0; n < 20000; ++n) {
        const uint32_t range = n % 2 ? 4u : 65536u;   // many ties, and the whole range
        std::vector<uint16_t> v(9);
        for (auto& x : v) x = static_cast<uint16_t>(random() % range);
        ASSERT_EQ(MedianOf9(v.data()), SortedMiddle(v));
        ASSERT_EQ(MedianOf5(v[0], v[1], v[2], v[3], v[4]), SortedMiddle({v.begin(), v.begin() + 5}));
    }
}

TEST_F(MedianTest, TheNinePointMedianRemovesEveryIsolatedSpikeOfASmoothImage)
{
    constexpr int n = 128;
    auto smooth = [](int x, int y) {
        return 20000.0 + 3000.0 * std::sin(x / 17.0) * std::cos(y / 23.0) + 15.0 * x - 8.0 * y;
    };
    std::mt19937 random(2024);
    std::vector<std::pair<int, int>> spikes;
    std::vector<int> taken(n * n, 0);
    while (spikes.size() < 200) {
        const int x = 2 + static_cast<int>(random() % (n - 4)), y = 2 + static_cast<int>(random() % (n - 4));
        bool free = true;
        for (int dy = -2; dy <= 2; ++dy)
            for (int dx = -2; dx <= 2; ++dx) free = free && !taken[(y + dy) * n + x + dx];
        if (!free) continue;
        taken[y * n + x] = 1;
        spikes.push_back({x, y});
    }
    ImageHeaderType* source = AddImage(n, n, [&](int x, int y) {
        if (taken[y * n + x]) return static_cast<uint16_t>(x % 2 ? 65535 : 0);
        return static_cast<uint16_t>(smooth(x, y));
    });
    dl_ImageMedianFilter9();
    ASSERT_EQ(CurrentItem, source->Next);
    for (const auto& [x, y] : spikes) {
        // The result lies within the smooth neighbours of the spike.
        uint16_t lo = 65535, hi = 0;
        for (int dy = -1; dy <= 1; ++dy)
            for (int dx = -1; dx <= 1; ++dx)
                if (dx || dy) {
                    lo = std::min(lo, At(source, x + dx, y + dy));
                    hi = std::max(hi, At(source, x + dx, y + dy));
                }
        const uint16_t r = At(CurrentItem, x, y);
        EXPECT_GE(r, lo) << x << " " << y;
        EXPECT_LE(r, hi) << x << " " << y;
        EXPECT_LT(std::abs(r - smooth(x, y)), 200.0) << x << " " << y;
    }
}
