// The force-curve core of the elastic modulus: the turn and plateau of a ramp, the split, the
// sensitivity and the contact point, against curves of known shape and the sample mapping.
#include "test_blocks_support.h"
#include "analysis/elastic_modulus.h"
#include "files/sample_data.h"
#include "mapping/cits.h"

#include <cmath>
#include <vector>

namespace {

// A curve of two ramps of `half` points each over 0 to `travel` nm: Out->In (X falling) first,
// then In->Out (X rising). In contact (x <= contact) the signal is slope * (contact - x) V;
// out of contact 0 V. On In->Out the tip sticks until x = contact + pullOff, so the signal
// falls to -slope * pullOff before it jumps back to 0.
struct Curve {
    std::vector<float> x, y;
};

Curve ContactCurve(int half, double travel, double contact, double slope, double pullOff)
{
    Curve c;
    for (int k = 0; k < half; ++k) {
        const double x = travel * (half - 1 - k) / (half - 1);
        c.x.push_back(static_cast<float>(x));
        c.y.push_back(static_cast<float>(x <= contact ? slope * (contact - x) : 0.0));
    }
    for (int k = 0; k < half; ++k) {
        const double x = travel * k / (half - 1);
        c.x.push_back(static_cast<float>(x));
        c.y.push_back(static_cast<float>(x <= contact + pullOff ? slope * (contact - x) : 0.0));
    }
    return c;
}

// A ramp of n X values rising for `up` points from 0, then falling.
std::vector<float> TurnAt(int n, int up)
{
    std::vector<float> x;
    for (int k = 0; k < n; ++k) x.push_back(static_cast<float>(k < up ? k : 2 * (up - 1) - k));
    return x;
}

} // namespace

TEST(ElasticRampTest, TheTurnIsTheFirstStepOfTheOtherSign)
{
    const std::vector<float> x = TurnAt(200, 100);   // 0 .. 99, then 98, 97, ...
    EXPECT_EQ(RampTurnPoint(x.data(), 200), 100);
}

TEST(ElasticRampTest, AZeroStepAtTheTurnCountsAsTheTurn)
{
    std::vector<float> x;
    for (int k = 0; k < 100; ++k) x.push_back(static_cast<float>(k));
    for (int k = 0; k < 100; ++k) x.push_back(static_cast<float>(99 - k));   // repeats 99
    EXPECT_EQ(RampTurnPoint(x.data(), 200), 100);
}

TEST(ElasticRampTest, ATurnNeedsANonZeroFirstStep)
{
    std::vector<float> x = TurnAt(200, 100);
    x[1] = x[0];
    EXPECT_EQ(RampTurnPoint(x.data(), 200), 0);
}

TEST(ElasticRampTest, ARampThatTurnsBackAgainHasNoTurn)
{
    std::vector<float> x = TurnAt(200, 100);
    x[150] = x[149] + 1.0f;   // one later step of the first sign
    EXPECT_EQ(RampTurnPoint(x.data(), 200), 0);
}

TEST(ElasticRampTest, AMonotonicRampHasNoTurn)
{
    std::vector<float> x;
    for (int k = 0; k < 200; ++k) x.push_back(static_cast<float>(k));
    EXPECT_EQ(RampTurnPoint(x.data(), 200), 0);
}

TEST(ElasticRampTest, ATurnMoreThanAQuarterFromTheMiddleIsRefused)
{
    // |t - n / 2| / n: 50 / 200 is accepted, 51 / 200 refused, on both sides.
    EXPECT_EQ(RampTurnPoint(TurnAt(200, 150).data(), 200), 150);
    EXPECT_EQ(RampTurnPoint(TurnAt(200, 151).data(), 200), 0);
    EXPECT_EQ(RampTurnPoint(TurnAt(200, 50).data(), 200), 50);
    EXPECT_EQ(RampTurnPoint(TurnAt(200, 49).data(), 200), 0);
    std::vector<float> y(200, 0.0f);
    int first = -1, count = -1;
    EXPECT_FALSE(SplitRamp(TurnAt(200, 151).data(), y.data(), 200, 1, 1000.0, &first, &count));
    EXPECT_EQ(first, -1);
}

TEST(ElasticRampTest, ThePlateauCountsTheEqualPairsAroundTheTurn)
{
    const std::vector<float> x = TurnAt(200, 100);
    std::vector<float> y(200);
    for (int k = 0; k < 200; ++k) y[k] = static_cast<float>(k < 100 ? k : 199.5 - k);
    // Saturated at 5.0 over 95 .. 104: pairs (99,100), (98,101), ... (95,104) are equal.
    for (int k = 95; k <= 104; ++k) y[k] = 5.0f;
    EXPECT_EQ(RampPlateau(x.data(), y.data(), 200), 5);
    // 105 made equal to 94: the pair (94,105) counts as well.
    y[105] = 94.0f;
    EXPECT_EQ(RampPlateau(x.data(), y.data(), 200), 6);
}

TEST(ElasticRampTest, NoPlateauUnlessBothNeighboursOfTheTurnRepeat)
{
    const std::vector<float> x = TurnAt(200, 100);
    std::vector<float> y(200);
    for (int k = 0; k < 200; ++k) y[k] = static_cast<float>(k < 100 ? k : 199.5 - k);
    y[100] = y[99];   // the pair at the turn is equal, but y[98] != y[99]
    EXPECT_EQ(RampPlateau(x.data(), y.data(), 200), 0);
}

TEST(ElasticRampTest, APlateauReachingTheEndsIsNoPlateau)
{
    const std::vector<float> x = TurnAt(200, 100);
    std::vector<float> y(200, 1.0f);   // every pair equal up to the ends
    EXPECT_EQ(RampPlateau(x.data(), y.data(), 200), 0);
}

TEST(ElasticRampTest, ASaturatedPlateauIsCutFromBothRamps)
{
    const std::vector<float> x = TurnAt(200, 100);
    std::vector<float> y(200);
    for (int k = 0; k < 200; ++k) y[k] = static_cast<float>(k < 100 ? k : 199.5 - k);
    for (int k = 95; k <= 104; ++k) y[k] = 5.0f;
    int first = 0, count = 0;
    ASSERT_TRUE(SplitRamp(x.data(), y.data(), 200, 1, 1000.0, &first, &count));   // rising first part
    EXPECT_EQ(first, 0);
    EXPECT_EQ(count, 95);
    ASSERT_TRUE(SplitRamp(x.data(), y.data(), 200, 0, 1000.0, &first, &count));
    EXPECT_EQ(first, 105);
    EXPECT_EQ(count, 95);
}

TEST(ElasticRampTest, AForceCurveOfFewerThan100PointsFailsTheSplit)
{
    std::vector<float> y(100, 0.0f);
    int first = -1, count = -1;
    EXPECT_FALSE(SplitRamp(TurnAt(99, 50).data(), y.data(), 99, 1, 1000.0, &first, &count));
    EXPECT_EQ(count, -1);
    EXPECT_TRUE(SplitRamp(TurnAt(100, 50).data(), y.data(), 100, 1, 1000.0, &first, &count));
    EXPECT_EQ(first, 0);
    EXPECT_EQ(count, 50);
}

TEST(ElasticRampTest, PointsAboveTheLimitAreCutFromTheEndsAndUnder50LeftFail)
{
    const std::vector<float> x = TurnAt(200, 100);   // rising 0 .. 99
    std::vector<float> y(200, 0.0f);
    int first = 0, count = 0;
    ASSERT_TRUE(SplitRamp(x.data(), y.data(), 200, 1, 60.0, &first, &count));
    EXPECT_EQ(first, 0);
    EXPECT_EQ(count, 61);   // 0 .. 60
    ASSERT_TRUE(SplitRamp(x.data(), y.data(), 200, 0, 60.0, &first, &count));
    EXPECT_EQ(first, 138);  // the falling ramp holds 198 - k at index k: 60 at index 138
    EXPECT_EQ(count, 62);
    EXPECT_FALSE(SplitRamp(x.data(), y.data(), 200, 1, 48.5, &first, &count));   // 49 points left
}

TEST(ElasticSlopeTest, TheSensitivityOfAContactLineIsRecovered)
{
    const Curve c = ContactCurve(512, 100.0, 40.0, 0.05, 5.0);
    for (int direction : {0, 1}) {
        double slope = 0.0;
        ASSERT_EQ(CalculateSlope(c.x.data(), c.y.data(), 1024, direction, 9, 1000.0, &slope), 0) << direction;
        EXPECT_NEAR(slope, 0.05, 1e-4) << direction;
    }
}

TEST(ElasticSlopeTest, ACurveWithoutAFallingStartGivesResult1)
{
    // Contact only in the first 5 nm: under 10 points of falling signal.
    const Curve c = ContactCurve(512, 100.0, 0.5, 0.05, 0.0);
    double slope = -7.0;
    EXPECT_EQ(CalculateSlope(c.x.data(), c.y.data(), 1024, 1, 9, 1000.0, &slope), 1);
    EXPECT_EQ(slope, -7.0);
}

TEST(ElasticSlopeTest, ACurveThatCannotBeSplitGivesMinus1)
{
    std::vector<float> x(80), y(80, 0.0f);
    for (int k = 0; k < 80; ++k) x[k] = static_cast<float>(k < 40 ? k : 79 - k);
    double slope = -7.0;
    EXPECT_EQ(CalculateSlope(x.data(), y.data(), 80, 0, 9, 1000.0, &slope), -1);
    float z = -7.0f;
    EXPECT_EQ(CalculateContactPoint(x.data(), y.data(), 80, 0, 9, 1000.0, &z), 1);
    EXPECT_EQ(z, -7.0f);
}

TEST(ElasticSlopeTest, TheContactPointLiesAtTheJumpOffContact)
{
    // Sticking until 45 nm on In->Out: the signal jumps from its minimum back to 0 there.
    const Curve c = ContactCurve(512, 100.0, 40.0, 0.05, 5.0);
    const double dx = 100.0 / 511;
    float z = 0.0f;
    ASSERT_EQ(CalculateContactPoint(c.x.data(), c.y.data(), 1024, 1, 9, 1000.0, &z), 0);
    EXPECT_NEAR(z, 45.0, 8 * dx);
    EXPECT_LT(z, 45.0);
}

TEST(ElasticSlopeTest, ARampWithoutAJumpHasNoContactPoint)
{
    // Out->In of the same curve has no adhesion: its derivative is never positive.
    const Curve c = ContactCurve(512, 100.0, 40.0, 0.05, 5.0);
    float z = -7.0f;
    EXPECT_EQ(CalculateContactPoint(c.x.data(), c.y.data(), 1024, 0, 9, 1000.0, &z), 1);
    EXPECT_EQ(z, -7.0f);
}

TEST(ElasticSlopeTest, AFlatCurveHasNoContactPoint)
{
    const Curve c = ContactCurve(512, 100.0, -10.0, 0.05, 0.0);   // never in contact
    float z = -7.0f;
    EXPECT_EQ(CalculateContactPoint(c.x.data(), c.y.data(), 1024, 1, 9, 1000.0, &z), 1);
    EXPECT_EQ(z, -7.0f);
}

// The sample force mapping: 64 points approach from 0 to 100 nm, 64 retract back; the signal
// rises with the displacement in contact (contact at the high end of X).
class ElasticSampleTest : public BlockCountTest {
protected:
    void TearDown() override
    {
        EraseAllAndExpectStartBlocks();
        BlockCountTest::TearDown();
    }
    static Curve PixelCurve(const ImageHeaderType* item, int px, int py)
    {
        const CITSHeaderType* set = item->CITSHeaderPtr;
        Curve c;
        for (int k = 0; k < set->ni; ++k) {
            const CITSImageEntryType* e = CITSEntry(set, k);
            c.x.push_back(e->voltage);
            c.y.push_back(CITSData2Current(e, GetCITSImagePtr(set, k, static_cast<uint32_t>(py))[px]));
        }
        return c;
    }
};

TEST_F(ElasticSampleTest, TheSampleMappingSplitsIntoItsApproachAndRetract)
{
    ImageHeaderType* item = MakeSampleForceMapping(nullptr, false);
    ASSERT_NE(item, nullptr);
    const Curve c = PixelCurve(item, 5, 5);
    ASSERT_EQ(c.x.size(), 128u);
    EXPECT_EQ(RampTurnPoint(c.x.data(), 128), 64);   // image 64 repeats 100 nm
    EXPECT_EQ(RampPlateau(c.x.data(), c.y.data(), 128), 0);
    int first = 0, count = 0;
    ASSERT_TRUE(SplitRamp(c.x.data(), c.y.data(), 128, 1, 1000.0, &first, &count));
    EXPECT_EQ(first, 0);
    EXPECT_EQ(count, 64);
    ASSERT_TRUE(SplitRamp(c.x.data(), c.y.data(), 128, 0, 1000.0, &first, &count));
    EXPECT_EQ(first, 64);
    EXPECT_EQ(count, 64);
    // A limit of 80 nm keeps the images up to 100 * 50 / 63 = 79.4 nm: 51 of each ramp.
    ASSERT_TRUE(SplitRamp(c.x.data(), c.y.data(), 128, 1, 80.0, &first, &count));
    EXPECT_EQ(count, 51);
    ASSERT_TRUE(SplitRamp(c.x.data(), c.y.data(), 128, 0, 80.0, &first, &count));
    EXPECT_EQ(first, 64 + 13);
    EXPECT_EQ(count, 51);
    EXPECT_FALSE(SplitRamp(c.x.data(), c.y.data(), 128, 1, 70.0, &first, &count));   // 45 left
}

TEST_F(ElasticSampleTest, TheSampleMappingHasNoFallingContactSoNoSensitivity)
{
    // The sample's signal is flat first and rises in contact: no falling start, result 1.
    ImageHeaderType* item = MakeSampleForceMapping(nullptr, false);
    ASSERT_NE(item, nullptr);
    const Curve c = PixelCurve(item, 5, 5);
    double slope = -7.0;
    EXPECT_EQ(CalculateSlope(c.x.data(), c.y.data(), 128, 1, 9, 1000.0, &slope), 1);
    EXPECT_EQ(CalculateSlope(c.x.data(), c.y.data(), 128, 0, 9, 1000.0, &slope), 1);
    EXPECT_EQ(slope, -7.0);
}
