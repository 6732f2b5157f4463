// The elastic modulus dialog record: its layout, defaults, checks and the stages it clears.
#include "test_blocks_support.h"
#include "test_mapping_support.h"
#include "tavrin/dl_elastic_modulus.h"
#include "analysis/elastic_modulus.h"

#include <cstring>
#include <string>

class ElasticParamTest : public BlockCountTest {
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
    // A current mapping image of 4 by 4 pixels and 8 images.
    static void MakeCurrentMapping()
    {
        ImageHeaderType* image = maptest::MakeMappingImage(4, 8);
        ASSERT_NE(image, nullptr);
        CurrentItem = image;
    }
    static void SetAllStages(bool done)
    {
        ElasticModulusState& s = ElasticModulus();
        s.CalcDone = s.Apply1Done = s.Apply2Done = s.Apply3Done = done;
    }
};

TEST_F(ElasticParamTest, TheRecordStartsWithItsBuiltInValues)
{
    MakeCurrentMapping();
    wint_ElasticModulusType p;
    std::memset(&p, 0x55, sizeof p);
    ASSERT_EQ(dl_GetElasticModulusParam(&p), 1);
    EXPECT_EQ(p.SmoothPoints, 9);
    EXPECT_EQ(p.SlopeOutIn, 0.0);
    EXPECT_EQ(p.SlopeInOut, 0.0);
    EXPECT_EQ(p.ContactMethod, 1);
    EXPECT_EQ(p.RampLimit, 1000.0);
    EXPECT_EQ(p.SpringConstant, 1.0);
    EXPECT_EQ(p.TipRadius, 2.0);
    EXPECT_EQ(p.PoissonRatio, 0.3);
    EXPECT_STREQ(p.ValidText1, "");
    EXPECT_STREQ(p.ResultText, "");
    EXPECT_EQ(p.FCStatus, 2);
    EXPECT_EQ(p.CalcStatus, 2);
    EXPECT_EQ(p.Apply1Status, 2);
    EXPECT_EQ(p.Apply2Status, 2);
}

TEST_F(ElasticParamTest, GetWithoutAnImageReportsAndAnswers0)
{
    wint_ElasticModulusType p;
    std::memset(&p, 0x55, sizeof p);
    EXPECT_EQ(dl_GetElasticModulusParam(&p), 0);
    EXPECT_TRUE(Shown("No images in memory"));
    EXPECT_EQ(p.SmoothPoints, 0x55555555);
}

TEST_F(ElasticParamTest, SetNeedsAMappingImage)
{
    wint_ElasticModulusType p;
    DefaultElasticModulusParam(&p);
    EXPECT_EQ(dl_SetElasticModulusParam(&p), 1);
    EXPECT_TRUE(Shown("No images in memory"));
    ImageHeaderType* plain = tifftest::MakeImage(4, "Plain");
    ASSERT_NE(plain, nullptr);
    CurrentItem = plain;
    p.TipRadius = 9.0;
    EXPECT_EQ(dl_SetElasticModulusParam(&p), 1);
    EXPECT_TRUE(Shown("Image is not SPS Mapping type"));
    EXPECT_EQ(ElasticModulus().Param.TipRadius, 2.0);
}

TEST_F(ElasticParamTest, SmoothPointsAreMadeOddWithin5To25)
{
    MakeCurrentMapping();
    const int cases[][2] = {{2, 5}, {4, 5}, {5, 5}, {8, 9}, {13, 13}, {24, 25}, {26, 25}, {-3, 5}};
    for (const auto& c : cases) {
        wint_ElasticModulusType p;
        DefaultElasticModulusParam(&p);
        p.SmoothPoints = c[0];
        ASSERT_EQ(dl_SetElasticModulusParam(&p), 0);
        EXPECT_EQ(p.SmoothPoints, c[1]) << c[0];
        EXPECT_EQ(ElasticModulus().Param.SmoothPoints, c[1]) << c[0];
    }
}

TEST_F(ElasticParamTest, ARampLimit0Point0005AwayKeepsTheStagesAnd0Point002ClearsThem)
{
    MakeCurrentMapping();
    SetAllStages(true);
    wint_ElasticModulusType p;
    ASSERT_EQ(dl_GetElasticModulusParam(&p), 1);
    p.RampLimit += 0.0005;
    ASSERT_EQ(dl_SetElasticModulusParam(&p), 0);
    const ElasticModulusState& s = ElasticModulus();
    EXPECT_TRUE(s.CalcDone && s.Apply1Done && s.Apply2Done && s.Apply3Done);
    EXPECT_EQ(s.Param.RampLimit, 1000.0005);
    p.RampLimit += 0.002;
    ASSERT_EQ(dl_SetElasticModulusParam(&p), 0);
    EXPECT_TRUE(s.CalcDone);
    EXPECT_FALSE(s.Apply1Done || s.Apply2Done || s.Apply3Done);
}

TEST_F(ElasticParamTest, AnotherContactMethodClearsApply1To3AndTheTable)
{
    MakeCurrentMapping();
    ResetElasticTable();
    ElasticModulusState& s = ElasticModulus();
    ASSERT_NE(s.Table, nullptr);
    s.Table[3 * kElasticTableSize + 2].Valid1 = 1;
    SetAllStages(true);
    wint_ElasticModulusType p;
    ASSERT_EQ(dl_GetElasticModulusParam(&p), 1);
    p.ContactMethod = 2;
    ASSERT_EQ(dl_SetElasticModulusParam(&p), 0);
    EXPECT_TRUE(s.CalcDone);
    EXPECT_FALSE(s.Apply1Done || s.Apply2Done || s.Apply3Done);
    EXPECT_EQ(s.Table[3 * kElasticTableSize + 2].Valid1, 0);
    EXPECT_EQ(s.Param.ContactMethod, 2);
}

TEST_F(ElasticParamTest, ConstantsOf0OrLessKeepTheStoredValue)
{
    MakeCurrentMapping();
    wint_ElasticModulusType p;
    DefaultElasticModulusParam(&p);
    p.SpringConstant = 3.5;
    p.TipRadius = 20.0;
    p.PoissonRatio = 0.25;
    ASSERT_EQ(dl_SetElasticModulusParam(&p), 0);
    p.SpringConstant = 0.0;
    p.TipRadius = -1.0;
    p.PoissonRatio = -0.5;
    ASSERT_EQ(dl_SetElasticModulusParam(&p), 0);
    EXPECT_EQ(p.SpringConstant, 3.5);
    EXPECT_EQ(p.TipRadius, 20.0);
    EXPECT_EQ(p.PoissonRatio, 0.25);
    EXPECT_EQ(ElasticModulus().Param.TipRadius, 20.0);
}

TEST_F(ElasticParamTest, AConstantWithNoPositiveStoredValueBecomes1)
{
    MakeCurrentMapping();
    ElasticModulus().Param.TipRadius = 0.0;   // as a record read from an old settings file may hold
    wint_ElasticModulusType p;
    DefaultElasticModulusParam(&p);
    p.TipRadius = 0.0;
    ASSERT_EQ(dl_SetElasticModulusParam(&p), 0);
    EXPECT_EQ(ElasticModulus().Param.TipRadius, 1.0);
}

TEST_F(ElasticParamTest, TheStatusWordsAndTextsFollowTheStages)
{
    MakeCurrentMapping();
    ResetElasticTable();
    ElasticModulusState& s = ElasticModulus();
    s.cx = s.cy = 4;
    for (int y = 0; y < 4; ++y)
        for (int x = 0; x < 4; ++x) {
            s.Table[y * kElasticTableSize + x].Valid1 = 1;
            s.Table[y * kElasticTableSize + x].Valid2 = (x + y) % 4 != 0;   // 4 of 16 invalid
        }
    s.FCNumber = 3;
    SetAllStages(true);
    s.Minimum = 1.0f;
    s.Maximum = 2.5f;
    s.Average = 1.75f;
    wint_ElasticModulusType p;
    ASSERT_EQ(dl_GetElasticModulusParam(&p), 1);
    EXPECT_EQ(p.FCStatus, 1);
    EXPECT_EQ(p.CalcStatus, 1);
    EXPECT_EQ(p.Apply1Status, 1);
    EXPECT_EQ(p.Apply2Status, 1);
    EXPECT_STREQ(p.ValidText1, "All points valid.");
    EXPECT_STREQ(p.ValidText2, "4 (25.00%) invalid points");
    EXPECT_STREQ(p.ResultText, "Min=1.000. Max=2.500. Avrg=1.750");
}
