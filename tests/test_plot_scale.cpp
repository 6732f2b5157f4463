// Round limits and tick steps of a plot axis.
#include "support/test_host.h"

#include "display/plot_scale.h"

namespace {

class PlotScaleTest : public LibraryTest {};

struct Scaled {
    float lo, hi, tick;
};

Scaled Scale(float lo, float hi)
{
    float tick = -1.0f;
    AutoScale(&lo, &hi, &tick);
    return {lo, hi, tick};
}

} // namespace

TEST_F(PlotScaleTest, ZeroToOneGivesLimitsZeroToElevenTenthsAndTickTwoHundredths)
{
    // p 0.1, top 11, bot 0, r 11, t 2.
    const Scaled s = Scale(0.0f, 1.0f);
    EXPECT_FLOAT_EQ(s.lo, 0.0f);
    EXPECT_FLOAT_EQ(s.hi, 1.1f);
    EXPECT_FLOAT_EQ(s.tick, 0.02f);
}

TEST_F(PlotScaleTest, ZeroToHundredGivesLimitsZeroTo110AndTickTwo)
{
    const Scaled s = Scale(0.0f, 100.0f);
    EXPECT_FLOAT_EQ(s.lo, 0.0f);
    EXPECT_FLOAT_EQ(s.hi, 110.0f);
    EXPECT_FLOAT_EQ(s.tick, 2.0f);
}

TEST_F(PlotScaleTest, MinusThreeToSevenGivesLimitsMinusFourToEightAndTickTwoTenths)
{
    const Scaled s = Scale(-3.0f, 7.0f);
    EXPECT_FLOAT_EQ(s.lo, -4.0f);
    EXPECT_FLOAT_EQ(s.hi, 8.0f);
    EXPECT_FLOAT_EQ(s.tick, 0.2f);
}

TEST_F(PlotScaleTest, OnePointTwoToThreePointFourGivesLimitsOneToFourAndTickFiveHundredths)
{
    // p 0.1; top = ceil(34 + 1.1) = 36 -> 40; bot = floor(12 - 1.1) = 10 -> 10; r 30, t 5.
    const Scaled s = Scale(1.2f, 3.4f);
    EXPECT_FLOAT_EQ(s.lo, 1.0f);
    EXPECT_FLOAT_EQ(s.hi, 4.0f);
    EXPECT_FLOAT_EQ(s.tick, 0.05f);
}

TEST_F(PlotScaleTest, LargeLimitsAreRoundedToStepsOfTen)
{
    // 0 to 700: p 10, a 70 -> top = ceil(70 + 3.5) = 74 -> 74 / 10 * 10 + 10 = 80; r 80, t 20.
    const Scaled s = Scale(0.0f, 700.0f);
    EXPECT_FLOAT_EQ(s.hi, 800.0f);
    EXPECT_FLOAT_EQ(s.lo, 0.0f);
    EXPECT_FLOAT_EQ(s.tick, 20.0f);
    // -650 to -100: p 10; a -10, b -65; top = ceil(-10 + 2.75) = -7 (stays); bot = floor(-65 -
    // 2.75) = -68 -> -68 / 10 * 10 = -60, above the old limit: the old limits widened by 1%.
    const Scaled w = Scale(-650.0f, -100.0f);
    EXPECT_FLOAT_EQ(w.lo, -650.0f * 1.01f);
    EXPECT_FLOAT_EQ(w.hi, -100.0f * 0.99f);
}

TEST_F(PlotScaleTest, EqualLimitsAreWidenedByOnePercentWithAHundredthOfTheRangeAsTick)
{
    // 5 to 5: the range counts as 1e-16, so the rounded limits miss the value; the old limits
    // widened by 1% stand, and the tick would give more than 1000 ticks: a hundredth of the range.
    const Scaled s = Scale(5.0f, 5.0f);
    EXPECT_FLOAT_EQ(s.lo, 5.0f * 0.99f);
    EXPECT_FLOAT_EQ(s.hi, 5.0f * 1.01f);
    EXPECT_FLOAT_EQ(s.tick, (5.0f * 1.01f - 5.0f * 0.99f) / 100.0f);
}

TEST_F(PlotScaleTest, NullArgumentsAreIgnored)
{
    float lo = 1.0f, hi = 2.0f;
    AutoScale(&lo, &hi, nullptr);
    EXPECT_EQ(lo, 1.0f);
    EXPECT_EQ(hi, 2.0f);
}
