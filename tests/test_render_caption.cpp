// What is drawn over a placed image: the size caption and the scale bars.
#include "test_render_support.h"

#include "display/fonts.h"
#include "display/frame_commands.h"
#include "display/scale_bars.h"

#include <cmath>

namespace {

class RenderCaptionTest : public RenderTest {
protected:
    ImageHeaderType* Physical(int n, float sizeX, float sizeY)
    {
        ImageHeaderType* image = AddFlatImage(n, 0x8000);
        image->SPMData = 1;
        image->ImageSizeX = sizeX;
        image->ImageSizeY = sizeY;
        return image;
    }
    static std::vector<const CVfsItem*> Items(uint32_t kind)
    {
        std::vector<const CVfsItem*> out;
        for (const CVfsItem& item : CurrentVfs()->Items)
            if (item.Kind == kind) out.push_back(&item);
        return out;
    }
    static const CVfsItem* Text(const std::string& text)
    {
        for (const CVfsItem* item : Items(VFS_ITEM_TEXT))
            if (item->Text == text) return item;
        return nullptr;
    }
    // The wide lines (the bars; the outline lines have width 1).
    static std::vector<const CVfsItem*> Bars()
    {
        std::vector<const CVfsItem*> out;
        for (const CVfsItem* item : Items(VFS_ITEM_LINE))
            if (item->LineWidth == 2) out.push_back(item);
        return out;
    }
};

} // namespace

TEST_F(RenderCaptionTest, TheCaptionGivesTheSizeInNanometresOrMicrometres)
{
    FSState.ImageDisplaySize = 256;
    FSState.TextOverlayOn = 1;
    FSState.TextOverlayMode = 0;
    Display.ScaleBarMode = SCALE_BAR_NONE;
    DisplayImage(Physical(256, 500.0f, 25.0f), 1, 0);
    const CVfsItem* caption = Text("500.0x25.0 nm");
    ASSERT_NE(caption, nullptr);
    EXPECT_EQ(caption->X1, 128);
    EXPECT_EQ(caption->Y1, 8);
    EXPECT_EQ(caption->AlignH, 1);
    EXPECT_EQ(caption->AlignV, 1);
    EXPECT_NE(caption->BackMode, kBackModeOpaque);

    // Both sizes at 1000 nm or more: micrometres; the opaque ground with TextOverlayMode.
    FSState.TextOverlayMode = 1;
    DisplayImage(Physical(256, 2000.0f, 1500.0f), 1, 0);
    const CVfsItem* um = Text("2.00x1.50 um");
    ASSERT_NE(um, nullptr);
    EXPECT_EQ(um->X1, 256 + 128);
    EXPECT_EQ(um->BackMode, kBackModeOpaque);
    // One of them below 1000: nanometres.
    DisplayImage(Physical(256, 2000.0f, 999.0f), 1, 0);
    EXPECT_NE(Text("2000.0x999.0 nm"), nullptr);
    // Below 1 nm: three decimals.
    DisplayImage(Physical(256, 0.5f, 0.25f), 1, 0);
    EXPECT_NE(Text("0.500x0.250 nm"), nullptr);
}

TEST_F(RenderCaptionTest, NoCaptionWithoutTheSwitchOrAPhysicalSize)
{
    FSState.ImageDisplaySize = 256;
    Display.ScaleBarMode = SCALE_BAR_NONE;
    FSState.TextOverlayOn = 0;
    DisplayImage(Physical(256, 500.0f, 500.0f), 1, 0);
    EXPECT_TRUE(Items(VFS_ITEM_TEXT).empty());
    FSState.TextOverlayOn = 1;
    ImageHeaderType* plain = Physical(256, 500.0f, 500.0f);
    plain->SPMData = 0;
    DisplayImage(plain, 1, 0);
    EXPECT_TRUE(Items(VFS_ITEM_TEXT).empty());
}

TEST_F(RenderCaptionTest, TheScaleBarsOfA500NanometreImageAt256)
{
    FSState.ImageDisplaySize = 256;
    NamedFont(FONT_BAR).FontColour = 0x00a0b0c0;
    DisplayImage(Physical(256, 500.0f, 500.0f), 1, 0);
    // length = 255 / 2 = 127, at most 100; size = 100 * 500 / 256 = 195.3 nm; p 100, m 1.95:
    // the factor 2 / m makes 200 nm and a length of trunc(100 * 2 / 1.953125) = 102.
    const float size = 100.0f * 500.0f / 256.0f;
    const float factor = 2.0f / (size / 100.0f);
    const int length = static_cast<int>(100.0f * factor);
    ASSERT_EQ(length, 102);
    const auto bars = Bars();
    ASSERT_EQ(bars.size(), 2u);
    EXPECT_EQ(bars[0]->X1, 6);
    EXPECT_EQ(bars[0]->Y1, 249);
    EXPECT_EQ(bars[0]->X2, 6 + length);
    EXPECT_EQ(bars[0]->Y2, 249);
    EXPECT_EQ(bars[0]->Colour, 0x00a0b0c0u);
    EXPECT_EQ(bars[1]->X1, 6);
    EXPECT_EQ(bars[1]->X2, 6);
    EXPECT_EQ(bars[1]->Y2, 249 - length);
    const CVfsItem* label = Text("200.0 nm");
    ASSERT_NE(label, nullptr);
    EXPECT_EQ(label->X1, 9);
    EXPECT_EQ(label->Y1, 246);
}

TEST_F(RenderCaptionTest, TheYBarFollowsTheAspectOfTheImage)
{
    FSState.ImageDisplaySize = 256;
    DisplayImage(Physical(256, 500.0f, 1000.0f), 1, 0);
    const auto bars = Bars();
    ASSERT_EQ(bars.size(), 2u);
    // 102 * 500 / 1000 * 256 / 256 = 51 pixels up.
    EXPECT_EQ(bars[1]->Y2, 249 - 51);
}

TEST_F(RenderCaptionTest, TheScaleBarModeChoosesTheBars)
{
    FSState.ImageDisplaySize = 256;
    struct Case {
        int32_t mode;
        size_t bars;
    };
    for (const Case c : {Case{SCALE_BAR_X, 1}, Case{SCALE_BAR_Y, 1}, Case{SCALE_BAR_BOTH, 2}, Case{SCALE_BAR_NONE, 0}}) {
        ClearFrameStore();
        Display.ScaleBarMode = c.mode;
        DisplayImage(Physical(256, 500.0f, 500.0f), 1, 0);
        const auto bars = Bars();
        ASSERT_EQ(bars.size(), c.bars) << c.mode;
        if (c.mode == SCALE_BAR_X) {
            EXPECT_EQ(bars[0]->Y2, 249);
        }
        if (c.mode == SCALE_BAR_Y) {
            EXPECT_EQ(bars[0]->X2, 6);
        }
        EXPECT_EQ(Text("200.0 nm") != nullptr, c.mode != SCALE_BAR_NONE) << c.mode;
    }
    // No Y bar for an image without a height.
    ClearFrameStore();
    Display.ScaleBarMode = SCALE_BAR_BOTH;
    DisplayImage(Physical(256, 500.0f, 0.0f), 1, 0);
    EXPECT_EQ(Bars().size(), 1u);
}

TEST_F(RenderCaptionTest, NoScaleBarsWithoutAPhysicalSizeOrOnFFTData)
{
    FSState.ImageDisplaySize = 256;
    ImageHeaderType* plain = Physical(256, 500.0f, 500.0f);
    plain->SPMData = 0;
    DisplayImage(plain, 1, 0);
    EXPECT_TRUE(Bars().empty());
    ImageHeaderType* fft = Physical(256, 500.0f, 500.0f);
    fft->FFTData = 1;   // the flag alone: the bars look at it
    DisplayImage(fft, 1, 0);
    fft->FFTData = 0;
    EXPECT_TRUE(Bars().empty());
}

TEST_F(RenderCaptionTest, TheMicrometreLabel)
{
    FSState.ImageDisplaySize = 512;
    DisplayImage(Physical(512, 20000.0f, 20000.0f), 1, 0);
    // size = 100 * 20000 / 512 = 3906 nm: p 1000, m 3.9: the factor 5 / m gives 5000 nm.
    EXPECT_NE(Text("5.00 um"), nullptr);
}

// The nice number may lengthen the first guess of 100 pixels: the factor 5 / m for m just above
// 2.5 is just below 2, so the longest bar the rule gives is 199 pixels - longer than the "about
// 150" one might expect. The bar follows the rule.
TEST_F(RenderCaptionTest, AScaleBarFollowsTheNiceNumberRuleUpToItsLongestLength)
{
    // The largest factor of the rule: sup over m in (1, 10) of 1/m (m <= 1.5), 2/m (<= 2.5),
    // 5/m (<= 7.5), 10/m - reached as m falls to 1, 1.5, 2.5 and 7.5: 1, 1.33, 2, 1.33.
    const double largestFactor = std::max({1.0 / 1.0, 2.0 / 1.5, 5.0 / 2.5, 10.0 / 7.5});
    const int longestBound = static_cast<int>(100 * largestFactor);   // 200, never reached
    int longest = 0;
    for (double s = 100.0; s < 100000.0; s *= 1.0003) {
        const ScaleBar bar = ChooseScaleBar(0, 511, static_cast<float>(s));
        ASSERT_LT(bar.length, longestBound) << s;
        ASSERT_GT(bar.length, 0) << s;
        longest = std::max(longest, bar.length);
    }
    EXPECT_EQ(longestBound, 200);
    EXPECT_GT(longest, 150);
    EXPECT_GE(longest, 198);
    // One case of the long bar: 1310.72 nm over 512 pixels gives a first guess of 256 nm, m =
    // 2.56, the factor 5 / 2.56 = 1.953: a bar of 500 nm and trunc(195.3) = 195 pixels.
    const ScaleBar bar = ChooseScaleBar(0, 511, 2.56f * 512.0f);
    EXPECT_EQ(bar.length, 195);
    EXPECT_NEAR(bar.size, 500.0f, 0.01f);
}
