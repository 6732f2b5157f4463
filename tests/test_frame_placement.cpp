// Placing images in the frame: the cursor and its wrap, the outlines, the erase under a new
// image, and the rows of the plain row writer.
#include "test_frame_support.h"

#include "display/frame_commands.h"
#include "store/data_list_display.h"

namespace {

class FramePlacementTest : public FrameStoreTest {
protected:
    void SetUp() override
    {
        FrameStoreTest::SetUp();
        ASSERT_EQ(fs.Open(1), 0);
        host.ClearCalls();
    }
    struct Placed {
        int left, top, right, bottom;
    };
    static Placed Show(ImageHeaderType* image)
    {
        DisplayImage(image, 1, 1);
        return {FSState.ImageLeft, FSState.ImageTop, FSState.ImageRight, FSState.ImageBottom};
    }
    // The line items of one colour, as (x1, y1, x2, y2).
    static std::vector<std::vector<double>> Lines(uint32_t colour)
    {
        std::vector<std::vector<double>> lines;
        for (const CVfsItem& item : CurrentVfs()->Items)
            if (item.Kind == VFS_ITEM_LINE && item.Colour == colour) lines.push_back({item.X1, item.Y1, item.X2, item.Y2});
        return lines;
    }
    static std::vector<std::vector<double>> Outline(double l, double t, double r, double b)
    {
        return {{l, t, r, t}, {r, t, r, b}, {r, b, l, b}, {l, b, l, t}};
    }
    TestFrameStore fs;
};

} // namespace

TEST_F(FramePlacementTest, TheFirstImageGoesToTheTopLeftWithItsOutlineRowsAndGrid)
{
    FSState.ImageDisplaySize = 256;
    ImageHeaderType* image = AddImage(256, 256, [](int x, int y) { return static_cast<uint16_t>((x + y) << 7); });
    const Placed p = Show(image);
    EXPECT_EQ(p.left, 0);
    EXPECT_EQ(p.top, 0);
    EXPECT_EQ(p.right, 255);
    EXPECT_EQ(p.bottom, 255);
    EXPECT_EQ(FSState.CursorX, 256);
    EXPECT_EQ(FSState.CursorY, 0);
    EXPECT_EQ(FSState.RowHeight, 256);
    EXPECT_EQ(FSState.ImagePixelsX, 256);
    EXPECT_EQ(FSState.ImagePixelsY, 256);
    EXPECT_EQ(FSState.ImPntsX, 1);
    EXPECT_EQ(FSState.ImPntsY, 1);
    EXPECT_EQ(FSState.DisplayBusy, 1);
    EXPECT_EQ(FSState.FrameDrawn, 1);
    EXPECT_EQ(BatchDepth, 0);
    // Level (code >> 8) through the grey ramp: level / 2 + 35. The first and the last row of
    // the rectangle are left to the outline: the rows keep the cleared index 0.
    auto ramp = [](int x, int y) { return ((((x + y) << 7) & 0xffff) >> 8) / 2 + 35; };
    EXPECT_EQ(fs.Index(10, 20), ramp(10, 20));
    EXPECT_EQ(fs.Index(0, 1), ramp(0, 1));
    EXPECT_EQ(fs.Index(255, 254), ramp(255, 254));
    EXPECT_NE(ramp(255, 254), 0);
    for (int x : {0, 1, 128, 255}) {
        EXPECT_EQ(fs.Index(x, 0), 0) << x;
        EXPECT_EQ(fs.Index(x, 255), 0) << x;
    }
    EXPECT_EQ(fs.Index(256, 0), 0);
    EXPECT_EQ(host.Count("ap_PutPixelRow"), 0);   // rows go straight into the buffer
    ASSERT_EQ(host.Count("ap_UpdateVFS"), 1);
    EXPECT_EQ(host.Calls("ap_UpdateVFS")[0].args, "0 0 255 255");
    EXPECT_EQ(Lines(IndexColour(17)), Outline(0, 0, 255, 255));
    EXPECT_EQ(GetFSContentsCoords(255, 255), image);
    EXPECT_EQ(GetFSContentsCoords(256, 0), nullptr);
}

// The cursor wraps once the frame is full: with four images of 256 the frame is full, so the
// fifth image goes to the top left over the first, and the sixth over the second.
TEST_F(FramePlacementTest, ImagesOf256WrapToTheTopLeftOnceTheFrameIsFull)
{
    FSState.ImageDisplaySize = 256;
    std::vector<ImageHeaderType*> images;
    std::vector<Placed> places;
    for (int k = 0; k < 6; ++k) {
        images.push_back(AddFlatImage(256, static_cast<uint16_t>((k + 1) * 0x2000)));
        places.push_back(Show(images.back()));
    }
    const int expected[6][2] = {{0, 0}, {256, 0}, {0, 256}, {256, 256}, {0, 0}, {256, 0}};
    for (int k = 0; k < 6; ++k) {
        EXPECT_EQ(places[k].left, expected[k][0]) << k;
        EXPECT_EQ(places[k].top, expected[k][1]) << k;
    }
    // The grid holds the new images where they wrapped to.
    EXPECT_EQ(GetFSContentsCoords(0, 0), images[4]);
    EXPECT_EQ(GetFSContentsCoords(255, 255), images[4]);
    EXPECT_EQ(GetFSContentsCoords(300, 10), images[5]);
    EXPECT_EQ(GetFSContentsCoords(0, 300), images[2]);
    EXPECT_EQ(GetFSContentsCoords(300, 300), images[3]);
    // And the pixels are the new image's: level 0xa0 of the fifth.
    EXPECT_EQ(fs.Index(10, 10), 0xa0 / 2 + 35);
    EXPECT_EQ(fs.Index(10, 300), 0x60 / 2 + 35);
}

TEST_F(FramePlacementTest, AnImageThatDoesNotFitTheRowStartsTheNextBelowTheTallest)
{
    FSState.ImageDisplaySize = 0;
    Show(AddFlatImage(200, 0x1000));
    Show(AddImage(200, 120, [](int, int) { return uint16_t{0x1000}; }));
    const Placed third = Show(AddFlatImage(200, 0x1000));
    EXPECT_EQ(third.left, 0);
    EXPECT_EQ(third.top, 200);
    EXPECT_EQ(FSState.PrevCursorX, 400);
    EXPECT_EQ(FSState.PrevCursorY, 0);
    EXPECT_EQ(FSState.PrevRowHeight, 200);
    EXPECT_EQ(FSState.RowHeight, 200);
    EXPECT_EQ(FSState.CursorX, 200);
}

TEST_F(FramePlacementTest, OwnSizeIsLimitedTo512)
{
    FSState.ImageDisplaySize = 0;
    PrepareImageDisplay(1024, 1024, 0, nullptr);
    EXPECT_EQ(FSState.NPixelsX, 512);
    EXPECT_EQ(FSState.NPixelsY, 512);
    EXPECT_EQ(FSState.ImPntsX, 2);
    PrepareImageDisplay(128, 128, 0, nullptr);
    EXPECT_EQ(FSState.NPixelsX, 128);
    FSState.ImageDisplaySize = 512;
    PrepareImageDisplay(128, 128, 0, nullptr);
    EXPECT_EQ(FSState.ImPntsX, -4);
    EXPECT_EQ(FSState.ImPntsY, -4);
}

TEST_F(FramePlacementTest, WithTheLowerFrameEdgeOffNoImageStartsAtRow480)
{
    FSState.ImageDisplaySize = 32;
    FSState.CursorY = 480;
    EXPECT_EQ(Show(AddFlatImage(32, 0)).top, 480);
    LowerFrameEdgeOn = false;
    FSState.CursorX = 0;
    FSState.CursorY = 480;
    const Placed p = Show(AddFlatImage(32, 0));
    EXPECT_EQ(p.left, 0);
    EXPECT_EQ(p.top, 0);
}

TEST_F(FramePlacementTest, PlacingAnImageErasesTheVectorItemsUnderIt)
{
    FSState.ImageDisplaySize = 256;
    CVfs* vfs = CurrentVfs();
    vfs->AddLine(10, 10, 50, 10, RgbColour(255, 0, 0), 1);
    vfs->AddLine(300, 400, 400, 400, RgbColour(255, 0, 0), 1);
    vfs->AddText(100, 100, NamedFont(FONT_GENERAL), nullptr, "gone", 0, 0, kWhite);
    Show(AddFlatImage(256, 0));
    EXPECT_EQ(Lines(RgbColour(255, 0, 0)), (std::vector<std::vector<double>>{{300, 400, 400, 400}}));
    for (const CVfsItem& item : vfs->Items) EXPECT_NE(item.Kind, 8u);
}

TEST_F(FramePlacementTest, TheFirstImageErasesTheWhiteFrameOfAClearedFrameButNotTheStrip)
{
    fs.Close();
    ASSERT_EQ(fs.Open(1, 600, 512), 0);
    ClearFrame();
    ASSERT_EQ(CurrentVfs()->Items.size(), 2u);
    FSState.ImageDisplaySize = 256;
    Show(AddFlatImage(256, 0));
    int fills = 0;
    for (const CVfsItem& item : CurrentVfs()->Items) {
        if (item.Kind != VFS_ITEM_FILL) continue;
        ++fills;
        EXPECT_EQ(item.Bounds.left, 512);
        EXPECT_EQ(item.Bounds.right, 599);
    }
    EXPECT_EQ(fills, 1);
}

TEST_F(FramePlacementTest, TheFormerImageIsOutlinedAgainInColour16)
{
    FSState.ImageDisplaySize = 256;
    Show(AddFlatImage(256, 0));
    Show(AddFlatImage(256, 0));
    EXPECT_EQ(Lines(IndexColour(16)), Outline(0, 0, 255, 255));
    const auto current = Lines(IndexColour(17));
    ASSERT_EQ(current.size(), 8u);   // the first image's own outline lies outside the second
    EXPECT_EQ(std::vector<std::vector<double>>(current.begin() + 4, current.end()), Outline(256, 0, 511, 255));
}

TEST_F(FramePlacementTest, AnImageFillingTheFrameDrawsNoFormerOutline)
{
    FSState.ImageDisplaySize = 256;
    Show(AddFlatImage(256, 0));
    FSState.ImageDisplaySize = 512;
    Show(AddFlatImage(512, 0));
    EXPECT_TRUE(Lines(IndexColour(16)).empty());
    EXPECT_EQ(Lines(IndexColour(17)), Outline(0, 0, 511, 511));   // the rest lay under it
}

TEST_F(FramePlacementTest, TheOutlineIsDrawnOnTheWindowAtOnceAndTheBatchIsPutBack)
{
    tv_canvas_clear(fs.window, 0);
    BeginBatch();
    FSState.FrameDrawn = 0;
    DrawImageFrame(10, 20, 100, 80, 17);
    EXPECT_EQ(BatchDepth, 1);
    EXPECT_EQ(fs.WindowPixel(50, 20), kOutlineGreen);
    EXPECT_EQ(fs.WindowPixel(100, 50), kOutlineGreen);
    EXPECT_EQ(fs.WindowPixel(50, 50), 0u);
    EndBatch();
}

TEST_F(FramePlacementTest, WithoutUserInterfaceTheOutlineIsColour16AndWaitsForTheBatch)
{
    NoUserInterface = true;
    tv_canvas_clear(fs.window, 0);
    BeginBatch();
    FSState.FrameDrawn = 0;
    DrawImageFrame(10, 20, 100, 80, 17);
    EXPECT_EQ(Lines(IndexColour(16)), Outline(10, 20, 100, 80));
    EXPECT_EQ(fs.WindowPixel(50, 20), 0u);
    EndBatchAndShow(0, 0, 511, 511);
    EXPECT_EQ(fs.WindowPixel(50, 20), kOutlineRed);
}

TEST_F(FramePlacementTest, TheRectangleIsKeptEvenWhenNoOutlineIsDrawn)
{
    FSState.FrameDrawn = 1;
    DrawImageFrame(5, 6, 50, 60, 17);
    EXPECT_TRUE(CurrentVfs()->Items.empty());
    EXPECT_EQ(FSState.ImageLeft, 5);
    EXPECT_EQ(FSState.ImageBottom, 60);
    FSState.FrameDrawn = 0;
    DrawImageFrame(5, 6, 5, 60, 17);   // empty in x
    EXPECT_TRUE(CurrentVfs()->Items.empty());
    EXPECT_EQ(FSState.FrameDrawn, 1);
    EXPECT_EQ(FSState.ImageRight, 5);
}

TEST_F(FramePlacementTest, ColourImagesShowInModeZero)
{
    FSState.DispMode = 3;
    PrepareImageDisplay(256, 256, 1, nullptr);
    EXPECT_EQ(FSState.LineDispMode, 0);
    PrepareImageDisplay(256, 256, 0, nullptr);
    EXPECT_EQ(FSState.LineDispMode, 3);
}

TEST_F(FramePlacementTest, WhatIsNoImageIsRefused)
{
    ImageHeaderType* spectrum = AddSpectrum(16);
    DisplayImage(spectrum, 1, 1);
    DisplayImage(nullptr, 1, 1);
    EXPECT_EQ(CountInLog("ERROR : No images in memory\n"), 2);
    EXPECT_EQ(host.Count("ap_UpdateVFS"), 0);
    EXPECT_TRUE(CurrentVfs()->Items.empty());
    EXPECT_EQ(FSState.CursorX, 0);
}

TEST_F(FramePlacementTest, TheTextSwitchHoldsOnlyForTheCall)
{
    ParameterTextSwitch = 1;
    DisplayImage(AddFlatImage(256, 0), 1, 0);
    EXPECT_EQ(ParameterTextSwitch, 1);
    ParameterTextSwitch = 0;
    DisplayImage(AddFlatImage(256, 0), 1, 1);
    EXPECT_EQ(ParameterTextSwitch, 0);
}

TEST_F(FramePlacementTest, ShowingTheCurrentItemGoesThroughTheFrameStore)
{
    FSState.ImageDisplaySize = 256;
    ImageHeaderType* image = AddFlatImage(256, 0x8000);
    DisplayCurrentItem();
    EXPECT_EQ(GetFSContentsCoords(0, 0), image);
    EXPECT_EQ(host.Count("ap_UpdateVFS"), 1);
    AddSpectrum(16);   // a spectrum goes to the plot window
    DisplayCurrentItem();
    EXPECT_GT(host.Count("ap_UpdateVFS"), 1);
    EXPECT_FALSE(LogHas("ERROR"));
    EXPECT_EQ(DisplayRequests().shown, 2);
}

TEST_F(FramePlacementTest, TheListsStepCommandsShowTheirItemInTheFrame)
{
    FSState.ImageDisplaySize = 256;
    ImageHeaderType* a = AddFlatImage(256, 0x2000);
    ImageHeaderType* b = AddFlatImage(256, 0x4000);
    CurrentItem = a;
    dl_NextData1();
    EXPECT_EQ(CurrentItem, b);
    EXPECT_EQ(GetFSContentsCoords(0, 0), b);
    // Row 0 is left to the outline; the rows inside show the level 0x40 on the ramp.
    EXPECT_EQ(fs.Index(0, 0), 0);
    EXPECT_EQ(fs.Index(0, 1), 0x40 / 2 + 35);
    EXPECT_EQ(fs.Index(255, 254), 0x40 / 2 + 35);
}
