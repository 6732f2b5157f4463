// Number texts, float comparison, the scale and digits of printed values, and the display-range
// text of values with their unit.
#include "support/test_host.h"
#include "store/units.h"
#include "store/value_text.h"

#include <cmath>
#include <cstdint>
#include <limits>
#include <string>

namespace {

const char* Lengths(int exponent) { return UnitsZ(exponent, 0); }

} // namespace

class ValueTextTest : public LibraryTest {
protected:
    void SetUp() override
    {
        LibraryTest::SetUp();
        ASSERT_EQ(host.Start(), 0);
    }
};

// ---- integers -----------------------------------------------------------------------------

TEST_F(ValueTextTest, IntegerTextGroupsEveryThreeDigits)
{
    EXPECT_EQ(Int2Str(0), "0");
    EXPECT_EQ(Int2Str(7), "7");
    EXPECT_EQ(Int2Str(999), "999");
    EXPECT_EQ(Int2Str(1000), "1,000");
    EXPECT_EQ(Int2Str(12345), "12,345");
    EXPECT_EQ(Int2Str(123456), "123,456");
    EXPECT_EQ(Int2Str(1234567), "1,234,567");
    EXPECT_EQ(Int2Str(-1), "-1");
    EXPECT_EQ(Int2Str(-999), "-999");
    EXPECT_EQ(Int2Str(-1000), "-1,000");
    EXPECT_EQ(Int2Str(-1234567), "-1,234,567");
}

TEST_F(ValueTextTest, IntegerTextAtTheEndsOfTheRange)
{
    EXPECT_EQ(Int2Str(std::numeric_limits<int32_t>::max()), "2,147,483,647");
    EXPECT_EQ(Int2Str(std::numeric_limits<int32_t>::min()), "-2,147,483,648");
}

TEST_F(ValueTextTest, IntegerTextReadsBackThroughStr2Int)
{
    for (int64_t v = -2147483648LL; v <= 2147483647LL; v += 9876543) {
        const auto i = static_cast<int32_t>(v);
        ASSERT_EQ(Str2Int(Int2Str(i).c_str()), i) << i;
    }
}

TEST_F(ValueTextTest, ReadingNumbersDropsEveryComma)
{
    EXPECT_EQ(Str2Int("1,234,567"), 1234567);
    EXPECT_EQ(Str2Int("-1,000"), -1000);
    EXPECT_EQ(Str2Int(",1,,2,"), 12);
    EXPECT_EQ(Str2Int("abc"), 0);
    EXPECT_EQ(Str2Int(""), 0);
    EXPECT_EQ(Str2Int(nullptr), 0);
    EXPECT_DOUBLE_EQ(Str2Double("1,234.5"), 1234.5);
    EXPECT_DOUBLE_EQ(Str2Double("-12,345,678"), -12345678.0);
    EXPECT_DOUBLE_EQ(Str2Double("1.5e3"), 1500.0);
    EXPECT_EQ(Str2Double("x"), 0.0);
    EXPECT_EQ(Str2Double(nullptr), 0.0);
}

// ---- doubles ------------------------------------------------------------------------------

TEST_F(ValueTextTest, DoubleTextOfZero)
{
    EXPECT_EQ(Double2Str(0.0), "0.0000");
    EXPECT_EQ(Double2Str(-0.0), "0.0000");
}

TEST_F(ValueTextTest, DoubleTextBelowTheSmallestBandIsExponential)
{
    EXPECT_EQ(Double2Str(0.00009999), "9.999e-05");
    EXPECT_EQ(Double2Str(-0.00009999), "-9.999e-05");
    EXPECT_EQ(Double2Str(1e-300), "1.000e-300");
}

TEST_F(ValueTextTest, DoubleTextBandFromTenThousandthsToOne)
{
    EXPECT_EQ(Double2Str(0.0001), "0.00010");
    EXPECT_EQ(Double2Str(-0.0001), "-0.00010");
    EXPECT_EQ(Double2Str(0.5), "0.50000");
    EXPECT_EQ(Double2Str(0.99999), "0.99999");
    EXPECT_EQ(Double2Str(-0.99999), "-0.99999");
}

TEST_F(ValueTextTest, DoubleTextBandFromOneToTen)
{
    EXPECT_EQ(Double2Str(1.0), "1.0000");
    EXPECT_EQ(Double2Str(-1.0), "-1.0000");
    EXPECT_EQ(Double2Str(9.9999), "9.9999");
    EXPECT_EQ(Double2Str(-9.9999), "-9.9999");
}

TEST_F(ValueTextTest, DoubleTextBandFromTenToHundred)
{
    EXPECT_EQ(Double2Str(10.0), "10.000");
    EXPECT_EQ(Double2Str(-10.0), "-10.000");
    EXPECT_EQ(Double2Str(99.999), "99.999");
    EXPECT_EQ(Double2Str(-99.999), "-99.999");
}

TEST_F(ValueTextTest, DoubleTextBandFromHundredToThousand)
{
    EXPECT_EQ(Double2Str(100.0), "100.00");
    EXPECT_EQ(Double2Str(-100.0), "-100.00");
    EXPECT_EQ(Double2Str(999.99), "999.99");
    EXPECT_EQ(Double2Str(-999.99), "-999.99");
}

TEST_F(ValueTextTest, DoubleTextBandFromThousandToTenThousand)
{
    EXPECT_EQ(Double2Str(1000.0), "1000.0");
    EXPECT_EQ(Double2Str(-1000.0), "-1000.0");
    EXPECT_EQ(Double2Str(9999.9), "9999.9");
    EXPECT_EQ(Double2Str(-9999.9), "-9999.9");
}

TEST_F(ValueTextTest, DoubleTextFromTenThousandIsTheTruncatedGroupedInteger)
{
    EXPECT_EQ(Double2Str(10000.0), "10,000");
    EXPECT_EQ(Double2Str(-10000.0), "-10,000");
    EXPECT_EQ(Double2Str(10000.99), "10,000");
    EXPECT_EQ(Double2Str(-10000.99), "-10,000");
    EXPECT_EQ(Double2Str(1234567.8), "1,234,567");
    EXPECT_EQ(Double2Str(999999999.9), "999,999,999");
    EXPECT_EQ(Double2Str(-999999999.9), "-999,999,999");
}

TEST_F(ValueTextTest, DoubleTextFromOneBillionIsExponential)
{
    EXPECT_EQ(Double2Str(1e9), "1.000e+09");
    EXPECT_EQ(Double2Str(-1e9), "-1.000e+09");
    EXPECT_EQ(Double2Str(2.5e20), "2.500e+20");
}

TEST_F(ValueTextTest, DoubleTextOfNonFiniteValuesIsExponential)
{
    EXPECT_EQ(Double2Str(std::numeric_limits<double>::infinity()), "inf");
    EXPECT_EQ(Double2Str(-std::numeric_limits<double>::infinity()), "-inf");
    EXPECT_EQ(Double2Str(std::nan("")), "nan");
}

// ---- comparison ---------------------------------------------------------------------------

TEST_F(ValueTextTest, DoublesAreEqualWithinAHundredUnitRoundoffs)
{
    EXPECT_TRUE(AreDoublesEqual(0.0, 0.0));
    EXPECT_TRUE(AreDoublesEqual(0.0, -0.0));
    EXPECT_FALSE(AreDoublesEqual(0.0, 1e-300));
    EXPECT_FALSE(AreDoublesEqual(1e-300, 0.0));
    EXPECT_TRUE(AreDoublesEqual(1.0, 1.0));
    EXPECT_TRUE(AreDoublesEqual(1.0, 1.0 + 2e-14));
    EXPECT_FALSE(AreDoublesEqual(1.0, 1.0 + 2.3e-14));
    EXPECT_TRUE(AreDoublesEqual(-5e10, -5e10 * (1 + 1e-14)));
    EXPECT_FALSE(AreDoublesEqual(1.0, 2.0));
    EXPECT_FALSE(AreDoublesEqual(std::nan(""), std::nan("")));
}

TEST_F(ValueTextTest, FloatsAreEqualWithinAHundredUnitRoundoffsOfTheFloatQuotient)
{
    EXPECT_TRUE(AreFloatsEqual(0.0f, 0.0f));
    EXPECT_FALSE(AreFloatsEqual(0.0f, 1e-30f));
    EXPECT_FALSE(AreFloatsEqual(1e-30f, 0.0f));
    EXPECT_TRUE(AreFloatsEqual(1.0f, 1.000005f));
    EXPECT_FALSE(AreFloatsEqual(1.0f, 1.00001f));
    EXPECT_TRUE(AreFloatsEqual(-300.0f, -300.0015f));
    EXPECT_FALSE(AreFloatsEqual(3.0f, 4.0f));
}

TEST_F(ValueTextTest, ComparisonEntryPointsAnswerOneOrZero)
{
    EXPECT_EQ(dl_AreDoublesEqual(2.0, 2.0), 1);
    EXPECT_EQ(dl_AreDoublesEqual(2.0, 0.0), 0);
    EXPECT_EQ(dl_AreFloatsEqual(2.0f, 2.0f), 1);
    EXPECT_EQ(dl_AreFloatsEqual(2.0f, 2.5f), 0);
}

// ---- scale and digits ---------------------------------------------------------------------

TEST_F(ValueTextTest, UnitScaleSwitchesAtThousandAndMillion)
{
    double d = 0;
    EXPECT_EQ(ChooseUnitScale(999.999, &d), 0);
    EXPECT_EQ(d, 1.0);
    EXPECT_EQ(ChooseUnitScale(1000.0, &d), 3);
    EXPECT_EQ(d, 1000.0);
    EXPECT_EQ(ChooseUnitScale(999999.0, &d), 3);
    EXPECT_EQ(d, 1000.0);
    EXPECT_EQ(ChooseUnitScale(1e6, &d), 6);
    EXPECT_EQ(d, 1e6);
    EXPECT_EQ(ChooseUnitScale(5e12, &d), 6);
    EXPECT_EQ(d, 1e6);
    EXPECT_EQ(ChooseUnitScale(1500.0, nullptr), 3);
    EXPECT_EQ(ChooseUnitScale(-5000.0, &d), 0);   // the caller passes a magnitude
    EXPECT_EQ(d, 1.0);
}

TEST_F(ValueTextTest, DecimalsFollowTheMagnitude)
{
    EXPECT_EQ(DecimalsFor(10.0), 1);
    EXPECT_EQ(DecimalsFor(12345.0), 1);
    EXPECT_EQ(DecimalsFor(9.999), 2);
    EXPECT_EQ(DecimalsFor(1.0), 2);
    EXPECT_EQ(DecimalsFor(0.999), 3);
    EXPECT_EQ(DecimalsFor(0.0), 3);
    EXPECT_EQ(DecimalsFor(-10.0), 1);
    EXPECT_EQ(DecimalsFor(-1.0), 2);
    EXPECT_EQ(DecimalsFor(-0.5), 3);
}

// ---- display ranges -----------------------------------------------------------------------

TEST_F(ValueTextTest, FifteenHundredNanometresPrintAsOnePointFiveMicrometres)
{
    EXPECT_EQ(ValueWithUnitText(1500.0, Lengths), "1.50 um");
    EXPECT_EQ(ValueWithUnitText(999.0, Lengths), "999.0 nm");
    EXPECT_EQ(ValueWithUnitText(0.5, Lengths), "0.500 nm");
    EXPECT_EQ(ValueWithUnitText(2.5e6, Lengths), "2.50 mm");
    EXPECT_EQ(ValueWithUnitText(-1500.0, Lengths), "-1.50 um");
}

TEST_F(ValueTextTest, DisplayRangeGivesExponentDivisorAndUnit)
{
    const DisplayRange range = ChooseDisplayRange(25000.0, Lengths);
    EXPECT_EQ(range.exponent, 3);
    EXPECT_EQ(range.divisor, 1000.0);
    EXPECT_EQ(range.unit, "um");
    EXPECT_EQ(ScaledValueText(25000.0, range), "25.0");
    EXPECT_EQ(ScaledValueText(500.0, range), "0.500");
    const DisplayRange volts = ChooseDisplayRange(2000.0, UnitsV);
    EXPECT_EQ(volts.unit, "kV");
}

TEST_F(ValueTextTest, ImageSizeTakesItsScaleFromTheSmallerSide)
{
    EXPECT_EQ(PairWithUnitText(1500.0, 1500.0, Lengths), "1.50 x 1.50 um");
    EXPECT_EQ(PairWithUnitText(1500.0, 30000.0, Lengths), "1.50 x 30.0 um");
    EXPECT_EQ(PairWithUnitText(500.0, 30000.0, Lengths), "500.0 x 30000.0 nm");
}

TEST_F(ValueTextTest, ImageOffsetPicksMillimetresOrMicrometresOnlyWhenBothAxesReachTheThreshold)
{
    EXPECT_EQ(PairWithUnitText(2e6, -3e6, Lengths), "2.00 x -3.00 mm");
    EXPECT_EQ(PairWithUnitText(2e6, 500.0, Lengths), "2000000.0 x 500.0 nm");
    EXPECT_EQ(PairWithUnitText(2e6, -1000.0, Lengths), "2000.0 x -1.00 um");
    EXPECT_EQ(PairWithUnitText(-999.0, 5000.0, Lengths), "-999.0 x 5000.0 nm");
    EXPECT_EQ(PairWithUnitText(0.0, 0.0, Lengths), "0.000 x 0.000 nm");
}

TEST_F(ValueTextTest, HugeValuesPrintInFull)
{
    const std::string text = ValueWithUnitText(1e300, Lengths);
    EXPECT_EQ(text.size(), std::string("1").size() + 294 + 2 + 3);   // 295 digits, ".0", " mm"
    EXPECT_EQ(text.substr(text.size() - 5), ".0 mm");
}

// ---- entry points -------------------------------------------------------------------------

TEST_F(ValueTextTest, TextEntryPointsAnswerTheSameTexts)
{
    EXPECT_STREQ(dl_Int2Str(-1234567), "-1,234,567");
    EXPECT_STREQ(dl_Double2Str(12345.6), "12,345");
    EXPECT_STREQ(dl_Double2Str(0.25), "0.25000");
    EXPECT_EQ(dl_Str2Int("2,000"), 2000);
    EXPECT_DOUBLE_EQ(dl_Str2Double("2,000.25"), 2000.25);
}
