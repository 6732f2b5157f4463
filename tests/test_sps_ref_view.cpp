// The image of attached spectra with their places marked, and the index of a value in a list.
#include "test_spectrum_commands_support.h"
#include "test_spectrum_support.h"

#include "files/attached_spectra.h"
#include "display/plot_spectrum.h"
#include "spectro/sps_ref_view.h"

using namespace spectest;

namespace {

class SPSRefViewTest : public SpecTest {
protected:
    // A 64 by 64 image with a chain of three spectra taken at (8, 16), (32, 32) and a route
    // from (40, 8) to (60, 20).
    ImageHeaderType* ImageWithThree()
    {
        ImageHeaderType* image = AddImage(64, 64, [](int x, int y) { return static_cast<uint16_t>(x * 1000 + y); });
        ImageHeaderType* s[3];
        for (int i = 0; i < 3; ++i) {
            s[i] = MakeBareSpectrum(32, 10 + i);
            s[i]->RevNo = 700;
            s[i]->RouteEndX = s[i]->RouteEndY = -1;
        }
        s[0]->STSPosX = 8, s[0]->STSPosY = 16;
        s[1]->STSPosX = 32, s[1]->STSPosY = 32;
        s[2]->STSPosX = 40, s[2]->STSPosY = 8, s[2]->RouteEndX = 60, s[2]->RouteEndY = 20;
        SetSPSRefChain(image, s[0]);
        SetSPSRefChain(s[0], s[1]);
        SetSPSRefChain(s[1], s[2]);
        image->nSPSRefData = 3;
        return image;
    }
};

} // namespace

TEST(NearestIndexTest, EqualBetweenAndEnds)
{
    const float v[5] = {0, 1, 2, 4, 8};
    EXPECT_EQ(NearestIndex(v, 5, 2.0f), 2);
    EXPECT_EQ(NearestIndex(v, 5, 2.9f), 2);
    EXPECT_EQ(NearestIndex(v, 5, 3.1f), 3);
    EXPECT_EQ(NearestIndex(v, 5, 3.0f), 2);   // the lower of two equally near
    EXPECT_EQ(NearestIndex(v, 5, -5.0f), 0);
    EXPECT_EQ(NearestIndex(v, 5, 100.0f), 4);
    EXPECT_EQ(NearestIndex(v, 0, 1.0f), -1);
    const float falling[3] = {5, 3, 1};
    EXPECT_EQ(NearestIndex(falling, 3, 3.0f), 1);
    EXPECT_EQ(NearestIndex(falling, 3, 0.0f), 2);
}

TEST(NearestIndexTest, MarkPositionsTakeTheIntegerStepFirst)
{
    // 1024 / 100 = 10 in integers: place 50 is 500 of 1024, on a region of 256 from 0.
    EXPECT_EQ(SPSMarkPosition(50, 100, 0, 256), 500 * 256 / 1024);
    EXPECT_EQ(SPSMarkPosition(32, 64, 10, 256), 10 + 128);
    EXPECT_EQ(SPSMarkPosition(5, 0, 7, 256), 7);
}

TEST_F(SPSRefViewTest, ShowMarksEachPlaceAndPlotsTheFirstSpectrum)
{
    ImageWithThree();
    const int32_t width = PlotParam.PlotWidth, displaySize = FSState.ImageDisplaySize;
    dl_ShowSPSSpectrum();
    EXPECT_TRUE(HasText("1"));
    EXPECT_TRUE(HasText("2"));
    EXPECT_TRUE(HasText("3"));
    EXPECT_GT(Items(VFS_ITEM_RECT).size(), 0u);
    EXPECT_GT(CountLines(IndexColour(22)), 0);
    EXPECT_EQ(PlotParam.PlotWidth, width);
    EXPECT_EQ(FSState.ImageDisplaySize, displaySize);
}

TEST_F(SPSRefViewTest, WithTheSingleFlagOnlyTheChosenIsMarked)
{
    ImageHeaderType* image = ImageWithThree();
    std::vector<ImageHeaderType*> chain;
    for (ImageHeaderType* s = image->SPSRefDataPtr; s; s = s->SPSRefDataPtr) chain.push_back(s);
    const SPSRefListType list{chain.data(), 3, 1, nullptr};
    ShowSPSRefSpec(list, 1, 0, 1);
    ShowSPSRefSpec(list, 0, 0, 1);
    EXPECT_FALSE(HasText("1"));
    EXPECT_TRUE(HasText("2"));
    EXPECT_FALSE(HasText("3"));
}

TEST_F(SPSRefViewTest, FixedPointSpectraAreMarkedWhenCheckedOrChosen)
{
    ImageHeaderType* image = ImageWithThree();
    std::vector<ImageHeaderType*> chain;
    for (ImageHeaderType* s = image->SPSRefDataPtr; s; s = s->SPSRefDataPtr) {
        s->RevNo = 405;
        chain.push_back(s);
    }
    const uint8_t checked[3] = {0, 0, 1};
    const SPSRefListType list{chain.data(), 3, 0, checked};
    ShowSPSRefSpec(list, 1, 0, 0);
    ShowSPSRefSpec(list, 0, 0, 0);
    EXPECT_TRUE(HasText("1"));
    EXPECT_FALSE(HasText("2"));
    EXPECT_TRUE(HasText("3"));
}

TEST_F(SPSRefViewTest, AnItemWithoutAttachedSpectraShowsNothing)
{
    AddFlatImage(16, 5);
    host.ClearCalls();
    dl_ShowSPSSpectrum();
    EXPECT_EQ(host.Count("ap_UpdateVFS"), 0);
    EXPECT_EQ(CountOwnedSpectra(-1), 0);
}
