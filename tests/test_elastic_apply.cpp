// The stages of the elastic modulus over whole mappings: adhesive contact curves of known
// modulus are recovered, invalid pixels stay invalid, and the stages keep their order.
#include "test_blocks_support.h"
#include "test_elastic_support.h"
#include "tavrin/dl_elastic_modulus.h"
#include "analysis/elastic_modulus.h"
#include "files/sample_data.h"

#include <cmath>
#include <string>

using elastictest::Contact;

namespace {

// Points of each ramp. The zero-force deformation d0 is taken at a sample, so the modulus is
// off by up to 1.5 times one deformation step over d1 - d0: at 1024 points a ramp that is
// 1.2% for the 20 MPa curve (d1 - d0 = 12.8 nm), at 2048 points 0.6%.
constexpr int kHalf = 2048;
constexpr double kTravel = 100.0;  // nm

} // namespace

class ElasticApplyTest : public BlockCountTest {
protected:
    void TearDown() override
    {
        ResetElasticModulus();
        EraseAllAndExpectStartBlocks();
        BlockCountTest::TearDown();
    }
    bool Shown(const std::string& text) const
    {
        for (const auto& box : host.messageBoxes)
            if (box.text.find(text) != std::string::npos) return true;
        return false;
    }
    // Program errors go to the log (a box only after several).
    bool Logged(const std::string& text) const { return ReadLog().find(text) != std::string::npos; }
    // The reference curve of a hard sample behind the map, chosen as the dialog's curve; the
    // map stays current.
    static void ChooseHardReference(ImageHeaderType* map)
    {
        std::vector<double> x, y;
        elastictest::HardCurve(kHalf, kTravel, 60.0, 0.05, &x, &y);
        ImageHeaderType* curve = SpectrumFromSamples(map, x, y);
        ASSERT_NE(curve, nullptr);
        ElasticModulus().FCNumber = 1;
        ElasticModulus().FCDataId = curve->DataId;
        CurrentItem = map;
    }
    static void SetConstants(int method)
    {
        wint_ElasticModulusType p;
        ASSERT_EQ(dl_GetElasticModulusParam(&p), 1);
        p.SpringConstant = 1.0;
        p.TipRadius = 20.0;
        p.PoissonRatio = 0.3;
        p.ContactMethod = method;
        ASSERT_EQ(dl_SetElasticModulusParam(&p), 0);
    }
    static const ElasticPointType& Point(int x, int y) { return ElasticModulus().Table[y * kElasticTableSize + x]; }
};

// Pixels (0,0), (1,0), (0,1): 5, 10 and 20 MPa; pixel (1,1) never touches the sample.
static const double kModuli[3] = {0.005, 0.010, 0.020};   // nN/nm^2

static ImageHeaderType* MakeThreeModulusMap()
{
    Contact c[3];
    for (int i = 0; i < 3; ++i) c[i].E = kModuli[i];
    return elastictest::MakeForceMap(2, kHalf, kTravel, [&c](int x, int y, double X, bool approach) {
        const int i = y * 2 + x;
        return i < 3 ? c[i].Signal(X, approach) : 0.0;
    });
}

TEST_F(ElasticApplyTest, AdhesiveCurvesOfKnownModulusAreRecoveredWithin1Percent)
{
    for (int method : {1, 2}) {
        ImageHeaderType* map = MakeThreeModulusMap();
        ASSERT_NE(map, nullptr);
        ChooseHardReference(map);
        SetConstants(method);
        ASSERT_EQ(dl_ElasticModulus_Calculate(), 0);
        const wint_ElasticModulusType& p = ElasticModulus().Param;
        EXPECT_NEAR(p.SlopeOutIn, 0.05, 1e-4);
        EXPECT_NEAR(p.SlopeInOut, 0.05, 1e-4);
        ASSERT_EQ(dl_ElasticModulus_Apply1(), 0);
        ASSERT_EQ(dl_ElasticModulus_Apply2(), 0);
        ASSERT_EQ(dl_ElasticModulus_Apply3(), 0);
        const double pullOff = Contact().PullOff();
        for (int i = 0; i < 3; ++i) {
            const ElasticPointType point = Point(i % 2, i / 2);
            ASSERT_EQ(point.Valid2, 1) << method << " " << i;
            const float F1 = point.F1, modulus = point.ElasticMod;
            EXPECT_NEAR(F1, pullOff, 0.001 * std::fabs(pullOff)) << method << " " << i;
            EXPECT_GT(modulus, 0.0f);
            EXPECT_NEAR(modulus, kModuli[i], 0.01 * kModuli[i]) << method << " " << i;
        }
        EXPECT_EQ(Point(1, 1).Valid1, 0);
        EXPECT_EQ(Point(1, 1).Valid2, 0);
        const float lowest = Point(0, 0).ElasticMod, highest = Point(0, 1).ElasticMod;
        // The image: current, 2 by 2, from the smallest to the largest modulus.
        ImageHeaderType* image = CurrentItem;
        ASSERT_NE(image, map);
        EXPECT_EQ(image->CITSHeaderPtr, nullptr);
        EXPECT_EQ(image->nx, 2);
        EXPECT_EQ(image->DataSource, 27u);
        EXPECT_EQ(image->ImType1, 1u);
        EXPECT_EQ(image->Zlo, lowest);
        EXPECT_EQ(image->Zhi, highest);
        EXPECT_EQ(image->PixData[0], 0);
        EXPECT_EQ(image->PixData[2], 65535);
        ResetElasticModulus();
        EraseAllItems();
    }
}

TEST_F(ElasticApplyTest, APixelWithNoCrossingStaysInvalidWithTheMinimumsCode)
{
    ImageHeaderType* map = MakeThreeModulusMap();
    ASSERT_NE(map, nullptr);
    ChooseHardReference(map);
    SetConstants(1);
    ASSERT_EQ(dl_ElasticModulus_Calculate(), 0);
    ASSERT_EQ(dl_ElasticModulus_Apply1(), 0);
    ASSERT_EQ(dl_ElasticModulus_Apply2(), 0);
    ASSERT_EQ(dl_ElasticModulus_Apply3(), 0);
    EXPECT_EQ(Point(1, 1).Valid1, 0);
    EXPECT_EQ(CurrentItem->PixData[3], 0);
    wint_ElasticModulusType p;
    ASSERT_EQ(dl_GetElasticModulusParam(&p), 1);
    EXPECT_STREQ(p.ValidText1, "1 (25.00%) invalid points");
}

TEST_F(ElasticApplyTest, AllPixelsInvalidGiveZloAndZhiOf0)
{
    ImageHeaderType* map =
        elastictest::MakeForceMap(2, kHalf, kTravel, [](int, int, double, bool) { return 0.0; });
    ASSERT_NE(map, nullptr);
    ElasticModulusState& s = ElasticModulus();
    s.Param.SlopeOutIn = s.Param.SlopeInOut = 0.05;
    s.CalcDone = true;
    ASSERT_EQ(dl_ElasticModulus_Apply1(), 0);
    ASSERT_EQ(dl_ElasticModulus_Apply2(), 0);
    ASSERT_EQ(dl_ElasticModulus_Apply3(), 0);
    ImageHeaderType* image = CurrentItem;
    ASSERT_NE(image, map);
    EXPECT_EQ(image->Zlo, 0.0f);
    EXPECT_EQ(image->Zhi, 0.0f);
    for (int i = 0; i < 4; ++i) EXPECT_EQ(image->PixData[i], 0);
    EXPECT_EQ(s.Minimum, 0.0f);
    EXPECT_EQ(s.Maximum, 0.0f);
    EXPECT_EQ(s.Average, 0.0f);
}

TEST_F(ElasticApplyTest, EachStageNeedsTheEarlierOnes)
{
    ImageHeaderType* map = MakeThreeModulusMap();
    ASSERT_NE(map, nullptr);
    EXPECT_EQ(dl_ElasticModulus_Apply1(), -1);
    ElasticModulus().CalcDone = true;
    EXPECT_EQ(dl_ElasticModulus_Apply2(), -1);
    ElasticModulus().Apply1Done = true;
    EXPECT_EQ(dl_ElasticModulus_Apply3(), -1);
    EXPECT_TRUE(host.messageBoxes.empty());
}

TEST_F(ElasticApplyTest, Apply1NeedsBothSlopesAboveZero)
{
    ImageHeaderType* map = MakeThreeModulusMap();
    ASSERT_NE(map, nullptr);
    ElasticModulusState& s = ElasticModulus();
    s.CalcDone = true;
    s.Param.SlopeOutIn = 0.05;
    s.Param.SlopeInOut = 0.0;
    EXPECT_EQ(dl_ElasticModulus_Apply1(), 1);
    EXPECT_TRUE(Logged("Program error - Apply1: both Out->In and In->Out must be > zero!"));
    EXPECT_FALSE(s.Apply1Done);
    EXPECT_EQ(s.XDeflec, nullptr);
}

TEST_F(ElasticApplyTest, CalculateWithoutAReferenceCurveReportsTheOutInSlope)
{
    ImageHeaderType* map = MakeThreeModulusMap();
    ASSERT_NE(map, nullptr);
    EXPECT_EQ(dl_ElasticModulus_Calculate(), 1);
    EXPECT_TRUE(Shown("Elastic Modulus: slope not found on Out->In"));
    EXPECT_FALSE(ElasticModulus().CalcDone);
}

TEST_F(ElasticApplyTest, CloseDlgFreesTheCurvesAndClearsTheApplyStages)
{
    ImageHeaderType* map = MakeThreeModulusMap();
    ASSERT_NE(map, nullptr);
    ChooseHardReference(map);
    SetConstants(1);
    ASSERT_EQ(dl_ElasticModulus_Calculate(), 0);
    ASSERT_EQ(dl_ElasticModulus_Apply1(), 0);
    ElasticModulusState& s = ElasticModulus();
    ASSERT_NE(s.XDeflec, nullptr);
    dl_ElasticModulus_CloseDlg();
    EXPECT_EQ(s.XDeflec, nullptr);
    EXPECT_EQ(s.YDeflec, nullptr);
    EXPECT_TRUE(s.CalcDone);
    EXPECT_FALSE(s.Apply1Done);
    EXPECT_EQ(Point(0, 0).Valid1, 0);
}
