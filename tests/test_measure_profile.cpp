// Line profiles and their roughness numbers: hand-computed profiles, ground truth in closed
// form, and reference sums in long double.
#include "test_measure_support.h"

#include <random>

namespace {

class MeasureProfileTest : public MeasureTest {};

TEST_F(MeasureProfileTest, RzjisOfFlatProfileIsZeroAfterTheThirdDivisor)
{
    std::vector<float> y(40, 2.5f);
    int divisor = 0;
    EXPECT_EQ(ProfileRzjis(y.data(), 40, 2.5f, &divisor), 0.0f);
    EXPECT_EQ(divisor, 3);
}

TEST_F(MeasureProfileTest, FewerThanFivePeaksGiveRzjisZero)
{
    // A ramp has one peak (its top end) and one valley for every window.
    std::vector<float> y(30);
    for (int i = 0; i < 30; ++i) y[static_cast<size_t>(i)] = static_cast<float>(i);
    int divisor = 0;
    EXPECT_EQ(ProfileRzjis(y.data(), 30, 14.5f, &divisor), 0.0f);
    EXPECT_EQ(divisor, 3);
}

TEST_F(MeasureProfileTest, RzjisOfFivePeaksAndValleys)
{
    // Ten points: 5 peaks of 2 and 5 valleys of -2 alternate. Equal values apart are separate
    // peaks; no window holds a point above 2 or below -2. (5 * 2 + 5 * 2) / 5 = 4.
    std::vector<float> y = {2, -2, 2, -2, 2, -2, 2, -2, 2, -2};
    int divisor = 0;
    EXPECT_FLOAT_EQ(ProfileRzjis(y.data(), 10, 0.0f, &divisor), 4.0f);
    EXPECT_EQ(divisor, 1);
}

TEST_F(MeasureProfileTest, CrossingBetweenTwoPointsIsSplitIntoTwoTriangles)
{
    const float x[2] = {0, 1}, y[2] = {-1, 1};
    float above = -1, below = -1;
    ProfileStatistics(x, y, 2, nullptr, nullptr, nullptr, nullptr, nullptr, &above, &below, 0.0f, 0.0f);
    EXPECT_FLOAT_EQ(above, 0.25f);
    EXPECT_FLOAT_EQ(below, 0.25f);
    // No crossing: one trapezium on the side of the first point.
    const float y2[2] = {1, 3};
    ProfileStatistics(x, y2, 2, nullptr, nullptr, nullptr, nullptr, nullptr, &above, &below, 0.0f, 0.0f);
    EXPECT_FLOAT_EQ(above, 2.0f);
    EXPECT_FLOAT_EQ(below, 0.0f);
}

TEST_F(MeasureProfileTest, AboveAndBelowMeanEqualTheIntegralOfTheDeviation)
{
    // y = x on 0..9: the mean 4.5 lies strictly between two points; the integral of |x - 4.5|
    // over 0..9 is 2 * 4.5^2 / 2 = 20.25, half on each side.
    std::vector<float> x(10), y(10);
    for (int i = 0; i < 10; ++i) x[static_cast<size_t>(i)] = y[static_cast<size_t>(i)] = static_cast<float>(i);
    float above = 0, below = 0, surface = 0;
    ProfileStatistics(x.data(), y.data(), 10, nullptr, nullptr, nullptr, nullptr, &surface, &above, &below, 0.0f, 4.5f);
    EXPECT_FLOAT_EQ(above + below, 20.25f);
    EXPECT_FLOAT_EQ(above, 10.125f);
    EXPECT_FLOAT_EQ(below, 10.125f);
    EXPECT_NEAR(surface, 9 * std::sqrt(2.0), 1e-5);
}

TEST_F(MeasureProfileTest, RaRqRzOfRandomProfilesMatchReferenceSums)
{
    std::mt19937 random(36);
    std::uniform_real_distribution<float> value(-5.0f, 7.0f);
    for (int trial = 0; trial < 5; ++trial) {
        const int n = 50 + trial * 97;
        std::vector<float> x(static_cast<size_t>(n)), y(static_cast<size_t>(n));
        for (int i = 0; i < n; ++i) {
            x[static_cast<size_t>(i)] = static_cast<float>(i) * 0.5f;
            y[static_cast<size_t>(i)] = value(random);
        }
        long double mean = 0;
        for (float v : y) mean += v;
        mean /= n;
        long double ra = 0, rq = 0;
        for (float v : y) {
            ra += std::fabs(static_cast<long double>(v) - mean);
            rq += (v - mean) * (v - mean);
        }
        float Ra = 0, Rq = 0, Rz = 0;
        ProfileStatistics(x.data(), y.data(), n, &Ra, &Rq, nullptr, &Rz, nullptr, nullptr, nullptr, 0.0f, 0.0f);
        EXPECT_NEAR(Ra, static_cast<double>(ra / n), 1e-5) << trial;
        EXPECT_NEAR(Rq, static_cast<double>(std::sqrt(rq / n)), 1e-5) << trial;
        EXPECT_EQ(Rz, *std::max_element(y.begin(), y.end()) - *std::min_element(y.begin(), y.end())) << trial;
    }
}

TEST_F(MeasureProfileTest, ProfileLineReadsTheRampAndResamples)
{
    ImageHeaderType* image = Image(16, 16, [](int x, int) { return static_cast<uint16_t>(100 * x); });
    std::vector<float> x(10), z(10);
    ASSERT_TRUE(ProfileLine(image, 0, 3, 9, 3, 1, x.data(), z.data(), 10, false, false));
    for (int j = 0; j < 10; ++j) {
        EXPECT_FLOAT_EQ(z[static_cast<size_t>(j)], 100.0f * j) << j;
        EXPECT_FLOAT_EQ(x[static_cast<size_t>(j)], 0.9f * j) << j;
    }
    // Physical values and distances: 100 codes are 0.1 nm; pixels are 100 / 15 nm apart.
    ASSERT_TRUE(ProfileLine(image, 0, 3, 9, 3, 1, x.data(), z.data(), 10, true, true));
    EXPECT_NEAR(z[4], 0.4f, 1e-6);
    EXPECT_NEAR(x[9], 9 * 100.0 / 15.0, 1e-4);
}

TEST_F(MeasureProfileTest, ProfileLineAveragesAcrossItsWidth)
{
    ImageHeaderType* image = Image(16, 16, [](int, int y) { return static_cast<uint16_t>(100 * y * y); });
    std::vector<float> x(12), z(12);
    ASSERT_TRUE(ProfileLine(image, 2, 5, 13, 5, 3, x.data(), z.data(), 12, false, false));
    const float expected = (1600.0f + 2500.0f + 3600.0f) / 3.0f;
    for (float v : z) EXPECT_FLOAT_EQ(v, expected);
}

TEST_F(MeasureProfileTest, ProfileLineOnTheLastRowUsesItTwice)
{
    ImageHeaderType* image = Image(12, 12, [](int x, int y) { return static_cast<uint16_t>(10 * x + 1000 * y); });
    std::vector<float> x(11), z(11);
    ASSERT_TRUE(ProfileLine(image, 0, 11, 10, 11, 1, x.data(), z.data(), 11, false, false));
    // Ten samples (x = 0 to 9) resampled to 11 points at 10 j / 11; from 9 on, the last.
    for (int j = 0; j < 11; ++j)
        EXPECT_NEAR(z[static_cast<size_t>(j)], 11000.0 + 10.0 * std::min(10.0 * j / 11.0, 9.0), 1e-3) << j;
    // A diagonal sample between pixels is the bilinear mean of the four around it.
    ASSERT_TRUE(ProfileLine(image, 0.5f, 0.5f, 10.5f, 0.5f, 1, x.data(), z.data(), 11, false, false));
    EXPECT_FLOAT_EQ(z[0], (0 + 10 + 1000 + 1010) / 4.0f);
}

TEST_F(MeasureProfileTest, ProfileLineRefusesBadArguments)
{
    ImageHeaderType* image = Image(4, 4, [](int, int) { return uint16_t{1}; });
    float x[1], z[1];
    EXPECT_FALSE(ProfileLine(nullptr, 0, 0, 3, 3, 1, x, z, 1, false, false));
    EXPECT_FALSE(ProfileLine(image, 0, 0, 3, 3, 1, x, z, 0, false, false));
    FailAllocationsForTests(1);
    EXPECT_FALSE(ProfileLine(image, 0, 0, 3, 3, 1, x, z, 1, false, false));
    FailAllocationsForTests(0);
}

} // namespace
