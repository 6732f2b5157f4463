// The eight named fonts of the text drawn into frame stores.
#include "test_frame_support.h"

#include "host/startup.h"

#include <cstring>

namespace {

class FrameFontTest : public FrameStoreTest {};

} // namespace

TEST_F(FrameFontTest, AFontRecordIsALogfontThenItsColourAndSwitch)
{
    EXPECT_EQ(sizeof(FontRecType), 68u);
    EXPECT_EQ(offsetof(FontRecType, FontColour), 60u);
    EXPECT_EQ(offsetof(FontRecType, UseGivenColour), 64u);
    EXPECT_EQ(sizeof(FontRecType) * kFontCount, 544u);   // the stored block of all eight
}

TEST_F(FrameFontTest, TheEightFontsHoldTheirDefaults)
{
    struct Expected {
        int height;
        uint32_t colour;
        uint32_t flag;
    };
    const Expected expected[kFontCount] = {
        {70, 0xffffffffu, 1}, {90, 0, 0}, {90, 0, 0}, {90, 0, 0},
        {110, 0xffffffu, 0},  {110, 0xffffffu, 0}, {70, 0xffffffu, 0}, {70, 0xffffffu, 0},
    };
    for (int n = 0; n < kFontCount; ++n) {
        const FontRecType& f = NamedFont(n);
        EXPECT_EQ(&f, &FontTable()[n]);
        EXPECT_EQ(f.Font.lfHeight, expected[n].height) << n;
        EXPECT_EQ(f.Font.lfWidth, 0) << n;
        EXPECT_EQ(f.Font.lfWeight, 400) << n;
        EXPECT_EQ(f.Font.lfItalic, 0) << n;
        EXPECT_STREQ(f.Font.lfFaceName, "MS Shell Dlg") << n;
        EXPECT_EQ(f.FontColour, expected[n].colour) << n;
        EXPECT_EQ(f.UseGivenColour, expected[n].flag) << n;
    }
    EXPECT_EQ(&NamedFont(FONT_CAPTION), &FontTable()[4]);
    EXPECT_EQ(&NamedFont(FONT_BAR), &FontTable()[5]);
    EXPECT_EQ(&NamedFont(8), &NamedFont(FONT_GENERAL));
    EXPECT_EQ(&NamedFont(-1), &NamedFont(FONT_GENERAL));
}

TEST_F(FrameFontTest, ResetFontsPutsEveryFontBack)
{
    NamedFont(FONT_BAR).Font.lfHeight = 200;
    std::strcpy(NamedFont(FONT_SPARE).Font.lfFaceName, "Other");
    ResetFonts();
    EXPECT_EQ(NamedFont(FONT_BAR).Font.lfHeight, 110);
    EXPECT_STREQ(NamedFont(FONT_SPARE).Font.lfFaceName, "MS Shell Dlg");
}

TEST_F(FrameFontTest, TheStartUpClearsTheFontsAndTheFrameStores)
{
    TestFrameStore fs;
    ASSERT_EQ(fs.Open(1), 0);
    BeginBatch();
    NamedFont(FONT_THIRD).FontColour = 5;
    Startup("tavrin.exe");
    EXPECT_EQ(NamedFont(FONT_THIRD).FontColour, 0xffffffu);
    EXPECT_EQ(FirstVFS, nullptr);
    EXPECT_EQ(CurrentVFS, nullptr);
    EXPECT_EQ(BatchDepth, 0);
    EXPECT_EQ(FSState.ImageDisplaySize, 512);
}
