// The Savitzky-Golay derivative tables.
#include <gtest/gtest.h>

#include "spectro/spectro.h"

#include <vector>

TEST(SavitzkyGolayTest, SecondDerivativeTablesGiveTwoOnTheSquares)
{
    for (int m = 1; m <= 11; ++m) {
        const int32_t* c = SavitzkyGolaySecondCoefficients(m);
        ASSERT_NE(c, nullptr) << m;
        int64_t sum = 0, plain = 0;
        for (int j = 0; j <= 2 * m + 2; ++j) {
            const int64_t offset = j - (m + 1);
            sum += c[j] * offset * offset;
            plain += c[j];
        }
        EXPECT_EQ(sum, 2 * int64_t{SavitzkyGolaySecondNormaliser(m)}) << m;
        EXPECT_EQ(plain, 0) << m;   // no answer to a constant
    }
    EXPECT_EQ(SavitzkyGolaySecondCoefficients(0), nullptr);
    EXPECT_EQ(SavitzkyGolaySecondCoefficients(12), nullptr);
}

TEST(SavitzkyGolayTest, PublishedTablesOfFiveSevenAndNinePoints)
{
    EXPECT_EQ(std::vector<int32_t>(SavitzkyGolaySecondCoefficients(1), SavitzkyGolaySecondCoefficients(1) + 5),
              (std::vector<int32_t>{2, -1, -2, -1, 2}));
    EXPECT_EQ(std::vector<int32_t>(SavitzkyGolaySecondCoefficients(2), SavitzkyGolaySecondCoefficients(2) + 7),
              (std::vector<int32_t>{5, 0, -3, -4, -3, 0, 5}));
    EXPECT_EQ(std::vector<int32_t>(SavitzkyGolaySecondCoefficients(3), SavitzkyGolaySecondCoefficients(3) + 9),
              (std::vector<int32_t>{28, 7, -8, -17, -20, -17, -8, 7, 28}));
}

TEST(SavitzkyGolayTest, FirstOrderDivisors)
{
    EXPECT_EQ(SavitzkyGolayFirstDivisor(1), 10);
    EXPECT_EQ(SavitzkyGolayFirstDivisor(2), 28);
    EXPECT_EQ(SavitzkyGolayFirstDivisor(3), 60);
    EXPECT_EQ(SavitzkyGolayFirstDivisor(11), 1300);
}

TEST(SavitzkyGolayTest, FirstOrderGivesTheExactSlopeOfALine)
{
    for (int m = 1; m <= 11; ++m) {
        std::vector<float> p(2 * m + 3);
        for (size_t j = 0; j < p.size(); ++j) p[j] = 0.75f * static_cast<float>(j) - 4.0f;
        EXPECT_FLOAT_EQ(SavitzkyGolay(p.data(), 1, m), 0.75f) << m;
    }
}

TEST(SavitzkyGolayTest, SecondOrderGivesTheCurvatureOfAParabola)
{
    for (int m = 1; m <= 11; ++m) {
        std::vector<float> p(2 * m + 3);
        for (size_t j = 0; j < p.size(); ++j) {
            const float t = static_cast<float>(j) - static_cast<float>(m + 1);
            p[j] = 1.5f * t * t + 2.0f * t + 3.0f;
        }
        EXPECT_NEAR(SavitzkyGolay(p.data(), 2, m), 3.0f, 1e-4f) << m;
    }
    EXPECT_EQ(SavitzkyGolay(nullptr, 1, 1), 0.0f);
}
