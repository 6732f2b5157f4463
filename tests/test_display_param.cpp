// The display settings record: its layout, the limits and reports of setting it, the fixed words
// of reading it, the fonts at a sixth of their height, and the settings kept in the user file.
#include "test_render_support.h"

#include "display/fonts.h"
#include "display/placement.h"
#include "settings/configuration.h"

#include <cstddef>
#include <cstring>

namespace {

class DisplayParamTest : public RenderTest {
protected:
    static wint_DisplayParamType Read()
    {
        wint_DisplayParamType p;
        std::memset(&p, 0x5a, sizeof p);
        dl_GetDisplayParam(&p);
        return p;
    }
};

} // namespace

TEST_F(DisplayParamTest, TheRecordHasItsFieldsAtTheirOffsets)
{
    EXPECT_EQ(sizeof(wint_DisplayParamType), 395u);
    EXPECT_EQ(offsetof(wint_DisplayParamType, ImageDisplaySize), 0u);
    EXPECT_EQ(offsetof(wint_DisplayParamType, wint_TextOverlay), 4u);
    EXPECT_EQ(offsetof(wint_DisplayParamType, DispMode), 8u);
    EXPECT_EQ(offsetof(wint_DisplayParamType, ReservedParam1), 12u);
    EXPECT_EQ(offsetof(wint_DisplayParamType, ReservedParam2), 16u);
    EXPECT_EQ(offsetof(wint_DisplayParamType, ContourLevels), 24u);
    EXPECT_EQ(offsetof(wint_DisplayParamType, DisplayFactor), 26u);
    EXPECT_EQ(offsetof(wint_DisplayParamType, ScaleBarMode), 30u);
    EXPECT_EQ(offsetof(wint_DisplayParamType, OverlayText), 38u);
    EXPECT_EQ(offsetof(wint_DisplayParamType, CaptionFont), 197u);
    EXPECT_EQ(offsetof(wint_DisplayParamType, BarFont), 257u);
    EXPECT_EQ(offsetof(wint_DisplayParamType, ThirdFont), 317u);
    EXPECT_EQ(offsetof(wint_DisplayParamType, CaptionColour), 377u);
    EXPECT_EQ(offsetof(wint_DisplayParamType, BarColour), 381u);
    EXPECT_EQ(offsetof(wint_DisplayParamType, ThirdColour), 385u);
    EXPECT_EQ(offsetof(wint_DisplayParamType, FullDisplayOn), 391u);
}

TEST_F(DisplayParamTest, ReadingGivesTheDefaultsAndTheFixedWords)
{
    const wint_DisplayParamType p = Read();
    EXPECT_EQ(p.DispMode, 0);
    EXPECT_EQ(p.ReservedParam1, 1u);
    EXPECT_EQ(p.ReservedParam2, 0.0f);
    EXPECT_EQ(p.Reserved20, 2);
    EXPECT_EQ(p.Reserved34, 2);
    EXPECT_EQ(p.Reserved193, 2);
    EXPECT_EQ(p.Reserved389, 1);
    EXPECT_EQ(p.Reserved390, 0);
    EXPECT_EQ(p.ContourLevels, 16);
    EXPECT_EQ(p.DisplayFactor, 5.0f);
    EXPECT_EQ(p.ScaleBarMode, 4);
    EXPECT_EQ(p.FullDisplayOn, 0);
    EXPECT_EQ(Display.LightPolar, 45.0f);
    EXPECT_EQ(Display.LightAzimuth, 45.0f);
    EXPECT_EQ(Display.Ambient, 64);
    EXPECT_EQ(Display.Diffuse, 128);
}

TEST_F(DisplayParamTest, DisplayFactorIsKeptBetweenOneAndTen)
{
    wint_DisplayParamType p = Read();
    p.DisplayFactor = 0.5f;
    dl_SetDisplayParam(&p);
    EXPECT_EQ(Read().DisplayFactor, 1.0f);
    p.DisplayFactor = 20.0f;
    dl_SetDisplayParam(&p);
    EXPECT_EQ(Read().DisplayFactor, 10.0f);
    p.DisplayFactor = 7.25f;
    dl_SetDisplayParam(&p);
    EXPECT_EQ(Read().DisplayFactor, 7.25f);
}

TEST_F(DisplayParamTest, ADisplayModeOutsideTheFiveIsReportedAndTakenAsZero)
{
    wint_DisplayParamType p = Read();
    p.DispMode = 3;
    dl_SetDisplayParam(&p);
    EXPECT_EQ(FSState.DispMode, 3);
    p.DispMode = 7;
    dl_SetDisplayParam(&p);
    EXPECT_TRUE(LogHasProgramError("dl_SetDisplayParam DispMode=7"));
    EXPECT_EQ(FSState.DispMode, 0);
    FSState.DispMode = 9;
    EXPECT_EQ(Read().DispMode, 9);
    EXPECT_TRUE(LogHasProgramError("dl_GetDisplayParam DispMode=9"));
}

TEST_F(DisplayParamTest, TheTextOverlayCodeSetsBothSwitchesAndABadOneChangesNothing)
{
    wint_DisplayParamType p = Read();
    p.wint_TextOverlay = 2;
    dl_SetDisplayParam(&p);
    EXPECT_EQ(FSState.TextOverlayOn, 1);
    EXPECT_EQ(FSState.TextOverlayMode, 1);
    EXPECT_EQ(Read().wint_TextOverlay, 2);
    p.wint_TextOverlay = 1;
    dl_SetDisplayParam(&p);
    EXPECT_EQ(FSState.TextOverlayOn, 1);
    EXPECT_EQ(FSState.TextOverlayMode, 0);
    p.wint_TextOverlay = 0;
    dl_SetDisplayParam(&p);
    EXPECT_EQ(FSState.TextOverlayOn, 0);
    EXPECT_EQ(Read().wint_TextOverlay, 0);

    p.wint_TextOverlay = 3;
    p.DispMode = 4;
    p.ContourLevels = 8;
    dl_SetDisplayParam(&p);
    EXPECT_TRUE(LogHasProgramError("wint_TextOverlay"));
    EXPECT_EQ(FSState.DispMode, 0);
    EXPECT_EQ(Display.ContourLevels, 16);
}

TEST_F(DisplayParamTest, SettingKeepsTheStoredFieldsAndSwitchesTheMarksOn)
{
    EXPECT_FALSE(AttachedSpectraMarksOn);
    wint_DisplayParamType p = Read();
    p.ImageDisplaySize = 256;
    p.ReservedParam1 = 77;
    p.ReservedParam2 = 3.5f;
    p.ContourLevels = 8;
    p.ScaleBarMode = 1;
    p.FullDisplayOn = 1;
    std::strcpy(p.OverlayText[2], "third text");
    dl_SetDisplayParam(&p);
    EXPECT_TRUE(AttachedSpectraMarksOn);
    const wint_DisplayParamType q = Read();
    EXPECT_EQ(q.ImageDisplaySize, 256);
    EXPECT_EQ(FSState.ImageDisplaySize, 256);
    EXPECT_EQ(q.ReservedParam1, 77u);
    EXPECT_EQ(q.ReservedParam2, 0.0f);
    EXPECT_EQ(q.ContourLevels, 8);
    EXPECT_EQ(q.ScaleBarMode, 1);
    EXPECT_EQ(q.FullDisplayOn, 1);
    EXPECT_STREQ(q.OverlayText[2], "third text");
}

TEST_F(DisplayParamTest, FontHeightsInTheRecordAreTheStoredHeightsDividedBySix)
{
    NamedFont(FONT_CAPTION).Font.lfHeight = 120;
    NamedFont(FONT_BAR).Font.lfHeight = -90;
    NamedFont(FONT_BAR).FontColour = 0x123456;
    wint_DisplayParamType p = Read();
    EXPECT_EQ(p.CaptionFont.lfHeight, 20);
    EXPECT_EQ(p.BarFont.lfHeight, -15);
    EXPECT_EQ(p.BarColour, 0x123456u);
    p.ThirdFont.lfHeight = 11;
    p.ThirdColour = 0xabcdef;
    dl_SetDisplayParam(&p);
    EXPECT_EQ(NamedFont(FONT_THIRD).Font.lfHeight, 66);
    EXPECT_EQ(NamedFont(FONT_THIRD).FontColour, 0xabcdefu);
    EXPECT_EQ(NamedFont(FONT_CAPTION).Font.lfHeight, 120);
}

TEST_F(DisplayParamTest, ANullRecordIsReported)
{
    dl_GetDisplayParam(nullptr);
    dl_SetDisplayParam(nullptr);
    EXPECT_TRUE(LogHasProgramError("dl_GetDisplayParam p=null"));
    EXPECT_TRUE(LogHasProgramError("dl_SetDisplayParam p=null"));
}

TEST_F(DisplayParamTest, TheLightAndTheLowerFrameEdgeAreKeptInTheUserSettings)
{
    Display.LightPolar = 30.0f;
    Display.LightAzimuth = 120.0f;
    Display.Ambient = 40;
    Display.Diffuse = 200;
    Display.ContourLevels = 4;
    LowerFrameEdgeOn = false;
    StoreDisplaySettings();
    ResetDisplaySettings();
    LowerFrameEdgeOn = true;
    EXPECT_EQ(Display.LightPolar, 45.0f);
    RetrieveDisplaySettings();
    EXPECT_EQ(Display.LightPolar, 30.0f);
    EXPECT_EQ(Display.LightAzimuth, 120.0f);
    EXPECT_EQ(Display.Ambient, 40);
    EXPECT_EQ(Display.Diffuse, 200);
    EXPECT_EQ(Display.ContourLevels, 4);
    EXPECT_FALSE(LowerFrameEdgeOn);
}
