// Ground truth for the filters on a terraced topography made in the test from the model of the
// sample data (plane tilt, monatomic terraces whose edges run at x + 0.35 y = constant,
// Gaussian noise), in codes: the noiseless surface is known here pixel by pixel.
#include "test_filters_support.h"

#include "tavrin/dl_filters.h"

#include <cmath>
#include <vector>

namespace {

class FilterTruthTest : public FilterTestBase {
protected:
    static constexpr int kSize = 256;
    static constexpr double kTerraceWidth = 46.0;   // pixels: 90 nm at 500 nm over 256 pixels
    static constexpr double kStep = 4700.0;         // codes: 0.235 nm at 20000 codes per nm
    static int Terrace(int x, int y) { return static_cast<int>(std::floor((x + 0.35 * y) / kTerraceWidth)); }
    static double Surface(int x, int y) { return 10000.0 + 4.0 * x - 2.0 * y + kStep * Terrace(x, y); }
    // True when the 3x3 neighbourhood of (x, y) lies on one terrace.
    static bool AwayFromEdges(int x, int y)
    {
        const int t = Terrace(x, y);
        for (int dy = -1; dy <= 1; ++dy)
            for (int dx = -1; dx <= 1; ++dx)
                if (Terrace(x + dx, y + dy) != t) return false;
        return true;
    }
    ImageHeaderType* AddTerraces(double noise, uint32_t seed)
    {
        std::mt19937 random(seed);
        std::normal_distribution<double> gauss(0.0, noise);
        return AddImage(kSize, kSize, [&](int x, int y) {
            return static_cast<uint16_t>(std::clamp(std::lround(Surface(x, y) + gauss(random)), 0L, 65535L));
        }, "Terraces");
    }
    // Standard deviation of image minus surface on inner pixels away from the terrace edges.
    static double NoiseSigma(const ImageHeaderType* image)
    {
        double sum = 0, squares = 0;
        int n = 0;
        for (int y = 2; y < kSize - 2; ++y)
            for (int x = 2; x < kSize - 2; ++x) {
                if (!AwayFromEdges(x, y)) continue;
                const double d = At(image, x, y) - Surface(x, y);
                sum += d;
                squares += d * d;
                ++n;
            }
        const double mean = sum / n;
        return std::sqrt(squares / n - mean * mean);
    }
};

} // namespace

TEST_F(FilterTruthTest, TheLowPassLowersTheNoiseToOneThird)
{
    ImageHeaderType* source = AddTerraces(400.0, 20261122);
    const double before = NoiseSigma(source);
    EXPECT_NEAR(before, 400.0, 20.0);
    dl_Convolve3x3(1);
    ASSERT_EQ(CurrentItem, source->Next);
    const double ratio = NoiseSigma(CurrentItem) / before;
    EXPECT_NEAR(ratio, 1.0 / 3.0, 1.0 / 30.0) << ratio;
}

TEST_F(FilterTruthTest, TheVerticalEdgeKernelPeaksOnTheTerraceEdges)
{
    ImageHeaderType* source = AddTerraces(20.0, 5);
    dl_EdgeEnhance3x3(1);
    ASSERT_EQ(CurrentItem, source->Next);
    int edgesSeen = 0;
    for (int y = 1; y < kSize - 1; ++y) {
        int best = 1;
        for (int x = 1; x < kSize - 1; ++x)
            if (At(CurrentItem, x, y) > At(CurrentItem, best, y)) best = x;
        // The strongest answer of the row stands on the first pixel of a higher terrace, or one
        // pixel beside it where the edge crosses between the rows.
        bool onEdge = false;
        for (int d = -1; d <= 1; ++d) onEdge = onEdge || Terrace(best + d, y) != Terrace(best + d - 1, y);
        EXPECT_TRUE(onEdge) << "row " << y << " peak at " << best;
        // Every edge of the row answers strongly; flat terrace far from edges answers little.
        for (int x = 3; x < kSize - 3; ++x) {
            if (Terrace(x, y) == Terrace(x - 1, y)) continue;
            const uint16_t peak = std::max({At(CurrentItem, x - 1, y), At(CurrentItem, x, y), At(CurrentItem, x + 1, y)});
            EXPECT_GT(peak, 0.75 * kStep) << x << " " << y;
            ++edgesSeen;
        }
    }
    EXPECT_GT(edgesSeen, 4 * (kSize - 2));
    EXPECT_LT(At(CurrentItem, 20, 10), 0.1 * kStep);
}
