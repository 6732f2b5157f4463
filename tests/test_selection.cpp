// Point selection: the events of the pick mode, the rubber band in the pixel layer, the cursor
// panel, the end of a selection and its handler; the sliders; the item lists.
#include "test_frame_support.h"

#include "tavrin/dl_geometry.h"
#include "tavrin/dl_selection.h"
#include "display/scroll_bars.h"
#include "display/select_items.h"
#include "display/plot.h"
#include "display/selection.h"
#include "display/selection_band.h"
#include "display/selection_panel.h"
#include "image/geometry.h"
#include "store/units.h"
#include "store/value_text.h"

#include <vector>

namespace {

int g_handlerCalls = 0;
int g_handlerButtons = -1;
int16_t g_handlerX[16], g_handlerY[16];
int g_handlerAnswer = 1;

int RecordingHandler(int buttons)
{
    ++g_handlerCalls;
    g_handlerButtons = buttons;
    for (int i = 0; i < SelectionState.PointCount && i < 16; ++i) {
        g_handlerX[i] = SelectionState.PointsX[i];
        g_handlerY[i] = SelectionState.PointsY[i];
    }
    return g_handlerAnswer;
}

class SelectionTest : public FrameStoreTest {
protected:
    void SetUp() override
    {
        FrameStoreTest::SetUp();
        ASSERT_EQ(fs.Open(1), 0);
        g_handlerCalls = 0;
        g_handlerButtons = -1;
        g_handlerAnswer = 1;
    }

    // An image of n by n shown at `size` frame pixels (0: its own size).
    ImageHeaderType* Shown(int n, int size = 0)
    {
        ImageHeaderType* image = AddImage(n, n, [](int x, int y) { return static_cast<uint16_t>((x * 97 + y * 211) * 37); });
        FSState.ImageDisplaySize = size;
        DisplayImage(image, 0, 1);
        host.ClearCalls();
        return image;
    }
    // Starts a selection of type 1 (which has a row) with the recording handler.
    void Start(int count, int region, int keepFrame = 0, int abortY = 0)
    {
        ASSERT_EQ(SelectImagePoints(1, count, xs, ys, region, 0, 0, 0, abortY, keepFrame, 0, 2, RecordingHandler), 0);
    }
    static int Event(int x, int y, int buttons, int type = 1)
    {
        return dl_SelectPointInVFS_Callback(static_cast<int16_t>(type), static_cast<int16_t>(x), static_cast<int16_t>(y),
                                            static_cast<int16_t>(buttons), 0);
    }
    // A move, a left click and, while the selection goes on, the release.
    static int Click(int x, int y, int type = 1)
    {
        Event(x, y, 0, type);
        const int answer = Event(x, y, TV_PICK_LEFT, type);
        if (!answer) Event(x, y, 0, type);
        return answer;
    }
    std::vector<uint8_t> Frame() const { return fs.frame; }
    std::string PanelLine(int column, int row) const
    {
        std::string last;
        const std::string prefix = std::to_string(column * 2 / 3) + " " + std::to_string(row) + " ";
        for (const auto& call : host.Calls("ap_PrintInWindow")) {
            const size_t at = call.args.find(' ');
            if (at != std::string::npos && call.args.compare(at + 1, prefix.size(), prefix) == 0)
                last = call.args.substr(at + 2 + prefix.size(), call.args.size() - at - 3 - prefix.size());
        }
        return last;
    }

    TestFrameStore fs;
    int16_t xs[16] = {}, ys[16] = {};
};

} // namespace

// The events.

TEST_F(SelectionTest, AMoveBeforeTheFirstClickShowsThePositionAndDrawsNoBand)
{
    Shown(128);
    Start(2, 2);
    const auto before = Frame();
    EXPECT_EQ(Event(30, 40, 0), 0);
    EXPECT_EQ(Frame(), before);
    EXPECT_EQ(SelectionState.BandShown, 0);
    EXPECT_NE(PanelLine(2, 2).find("Cursor position (30,40)"), std::string::npos) << PanelLine(2, 2);
    EXPECT_EQ(SelectionState.CurrentPoint, 0);
}

TEST_F(SelectionTest, TheRightButtonAtTheFirstPointEndsAtOnceWithTheRightButtonFlag)
{
    Shown(128);
    Start(3, 5);
    EXPECT_NE(Event(10, 10, TV_PICK_RIGHT), 0);
    EXPECT_EQ(g_handlerCalls, 1);
    EXPECT_EQ(g_handlerButtons & TV_PICK_RIGHT, TV_PICK_RIGHT);
    EXPECT_EQ(g_handlerButtons & TV_PICK_LEFT, 0);
    EXPECT_FALSE(SelectionActive());
    EXPECT_EQ(SelectionState.SaveBuffer, nullptr);
    EXPECT_EQ(host.Count("ap_CloseTextWindow"), 1);
}

TEST_F(SelectionTest, AHeldButtonGivesNoSecondPointUnlessAutoRepeat)
{
    Shown(128);
    Start(3, 5);
    Event(10, 10, TV_PICK_LEFT);
    Event(20, 10, TV_PICK_LEFT);   // still held
    EXPECT_EQ(SelectionState.CurrentPoint, 1);
    Event(20, 10, 0);
    Event(20, 10, TV_PICK_LEFT);
    EXPECT_EQ(SelectionState.CurrentPoint, 2);

    Start(3, 5);
    SelectionState.AutoRepeat = 1;
    Event(10, 10, TV_PICK_LEFT);
    Event(20, 10, TV_PICK_LEFT);
    EXPECT_EQ(SelectionState.CurrentPoint, 2);
}

TEST_F(SelectionTest, ANestedEventWhileBusyIsDropped)
{
    Shown(128);
    Start(2, 1);
    SelectionState.Busy = 1;
    EXPECT_EQ(Event(10, 10, TV_PICK_LEFT), 0);
    EXPECT_EQ(SelectionState.CurrentPoint, 0);
    SelectionState.Busy = 0;
}

TEST_F(SelectionTest, KeepFrameCoordsLeavesFramePixels)
{
    Shown(512, 256);   // two image pixels a frame pixel
    Start(2, 2, 1);
    Click(10, 20);
    EXPECT_NE(Click(100, 60), 0);
    EXPECT_EQ(g_handlerX[0], 10);
    EXPECT_EQ(g_handlerY[1], 60);
}

TEST_F(SelectionTest, ARectangleOverAnImageAtHalfSizeReturnsTwiceTheFrameValues)
{
    Shown(512, 256);
    Start(2, 2);
    Click(10, 20);
    EXPECT_NE(Click(100, 60), 0);
    EXPECT_EQ(g_handlerX[0], 20);
    EXPECT_EQ(g_handlerY[0], 40);
    EXPECT_EQ(g_handlerX[1], 200);
    EXPECT_EQ(g_handlerY[1], 120);
    EXPECT_EQ(g_handlerButtons, TV_PICK_LEFT);
}

TEST_F(SelectionTest, ACutOffScanLimitsTheLowerBoundFromTheImageTop)
{
    // 512 rows shown at 256: two rows a frame pixel; the scan stopped at row 100.
    Shown(512, 256);
    ASSERT_EQ(FSState.ImageTop, 0);
    Start(2, 2, 0, 100);
    EXPECT_EQ(SelectionState.BoundBottom, 49);
    // The same image placed lower in the frame: the bound moves with it.
    AddImage(512, 512, [](int, int) { return uint16_t{7}; });
    DisplayImage(CurrentItem, 0, 1);
    DisplayImage(CurrentItem, 0, 1);
    ASSERT_EQ(FSState.ImageTop, 256);
    Start(2, 2, 0, 100);
    EXPECT_EQ(SelectionState.BoundBottom, 256 + 49);
    Start(2, 2, 0, -3);
    EXPECT_TRUE(LogHasProgramError("SelectImagePoints AbortY=-3"));
}

TEST_F(SelectionTest, PositionsAreLimitedToTheBounds)
{
    Shown(128);
    Start(2, 1, 1);
    Click(-40, 900);
    EXPECT_EQ(xs[0], 0);
    EXPECT_EQ(ys[0], 127);
}

TEST_F(SelectionTest, AnEarlyEndWithTheMiddleButtonMarksTheUnusedPoints)
{
    Shown(128);
    ASSERT_EQ(SelectImagePoints(1, 5, xs, ys, 1, 0, 0, 0, 0, 1, 1, 2, RecordingHandler), 0);
    Click(5, 5);
    Event(9, 9, TV_PICK_MIDDLE);
    EXPECT_EQ(g_handlerCalls, 1);
    EXPECT_EQ(xs[1], 9);
    for (int i = 2; i < 5; ++i) {
        EXPECT_EQ(xs[i], -1);
        EXPECT_EQ(ys[i], -1);
    }
}

TEST_F(SelectionTest, LeftWithShiftHeldCountsAsTheMiddleButton)
{
    Shown(128);
    ASSERT_EQ(SelectImagePoints(1, 4, xs, ys, 1, 0, 0, 0, 0, 1, 1, 2, RecordingHandler), 0);
    Click(5, 5);
    host.keysDown.insert(0x10);
    Event(9, 9, TV_PICK_LEFT);
    host.keysDown.clear();
    EXPECT_EQ(g_handlerButtons, TV_PICK_MIDDLE);
    EXPECT_EQ(xs[2], -1);
}

TEST_F(SelectionTest, ATypeWithoutARowIsReportedWhenItsSelectionEnds)
{
    Shown(128);
    ASSERT_EQ(SelectImagePoints(10, 1, xs, ys, 2, 0, 0, 0, 0, 0, 0, 2, RecordingHandler), 0);
    EXPECT_NE(dl_SelectPointInVFS_Callback(10, 3, 3, TV_PICK_LEFT, 0), 0);
    EXPECT_TRUE(LogHasProgramError("SelectPointInVFS_Callback (10)"));
    EXPECT_EQ(g_handlerCalls, 0);
    EXPECT_FALSE(SelectionActive());
}

TEST_F(SelectionTest, AHandlerAnsweringZeroKeepsTheSelectionOpenForTheNextShape)
{
    Shown(128);
    g_handlerAnswer = 0;
    ASSERT_EQ(SelectImagePoints(16, 2, xs, ys, 6, 0, 0, 0, 0, 1, 0, 6, RecordingHandler), 0);
    Click(60, 60);
    EXPECT_EQ(dl_SelectPointInVFS_Callback(16, 70, 60, TV_PICK_LEFT, 0), 0);
    dl_SelectPointInVFS_Callback(16, 70, 60, 0, 0);
    EXPECT_EQ(g_handlerCalls, 1);
    EXPECT_EQ(SelectionState.CurrentPoint, 0);
    EXPECT_TRUE(SelectionActive());
    // The right button ends it.
    EXPECT_NE(dl_SelectPointInVFS_Callback(16, 10, 10, TV_PICK_RIGHT, 0), 0);
    EXPECT_FALSE(SelectionActive());
}

// The rubber band.

TEST_F(SelectionTest, DrawingThenErasingEveryShapeRestoresTheFrameByteForByte)
{
    Shown(512);   // the whole frame, so that the band reaches its edges
    const std::vector<std::vector<std::pair<int, int>>> shapes = {
        {{0, 0}, {511, 511}}, {{3, 500}, {511, 0}}, {{511, 2}, {0, 511}},   // lines to the corners
        {{10, 10}, {200, 300}, {400, 20}},                                   // three points
        {{0, 0}, {511, 200}, {300, 511}},
    };
    for (int region = 1; region <= 6; ++region) {
        for (const auto& shape : shapes) {
            const int n = region == 2 || region == 6 ? 2 : static_cast<int>(shape.size());
            Start(n, region, 1);
            const auto before = Frame();
            int16_t px[4], py[4];
            for (int i = 0; i < n; ++i) px[i] = static_cast<int16_t>(shape[i].first), py[i] = static_cast<int16_t>(shape[i].second);
            ShowSelectedRegion(px, py, n, region, SelectionState.SaveBuffer, kBandReplace);
            EXPECT_NE(Frame(), before) << region;
            ShowSelectedRegion(nullptr, nullptr, 0, region, SelectionState.SaveBuffer, kBandErase);
            ASSERT_EQ(Frame(), before) << "region " << region << " from " << shape[0].first << "," << shape[0].second;
        }
    }
}

TEST_F(SelectionTest, PixelsOfTheBandColourUnderTheBandStayThatColourAfterErasing)
{
    Shown(256);
    Start(2, 1, 1);
    // Colour 22 already stands on part of the line.
    for (int x = 20; x < 40; ++x) fs.frame[(511 - 50) * 512 + x] = kBandColour;
    const auto before = Frame();
    int16_t px[2] = {10, 100}, py[2] = {50, 50};
    ShowSelectedRegion(px, py, 2, 1, SelectionState.SaveBuffer, kBandReplace);
    for (int x = 10; x <= 100; ++x) EXPECT_EQ(fs.Index(x, 50), kBandColour);
    ShowSelectedRegion(nullptr, nullptr, 0, 1, SelectionState.SaveBuffer, kBandErase);
    EXPECT_EQ(Frame(), before);
    EXPECT_EQ(fs.Index(30, 50), kBandColour);
}

TEST_F(SelectionTest, TheBandFollowsTheCursorAndEndsWithTheFinalShape)
{
    Shown(256);
    Start(2, 2, 1);
    const auto before = Frame();
    Click(20, 20);
    Event(60, 40, 0);   // the rectangle to (60, 40)
    EXPECT_EQ(fs.Index(40, 20), kBandColour);
    EXPECT_EQ(fs.Index(60, 30), kBandColour);
    Event(80, 90, 0);   // moved on: the old edges are gone
    EXPECT_NE(fs.Index(60, 30), kBandColour);
    EXPECT_EQ(fs.Index(80, 50), kBandColour);
    Event(80, 90, TV_PICK_LEFT);
    // Ended: the final shape stays drawn over the picture, nothing else changed.
    int changed = 0;
    for (int y = 0; y < 512; ++y)
        for (int x = 0; x < 512; ++x)
            if (fs.frame[(511 - y) * 512 + x] != before[(511 - y) * 512 + x]) {
                ++changed;
                const bool onEdge = ((x == 20 || x == 80) && y >= 20 && y <= 90) || ((y == 20 || y == 90) && x >= 20 && x <= 80);
                ASSERT_TRUE(onEdge) << x << " " << y;
            }
    EXPECT_GT(changed, 200);
}

TEST_F(SelectionTest, ATriangleAngleIsTextOverThePictureNotInTheCodes)
{
    ImageHeaderType* image = Shown(256);
    const std::vector<uint16_t> codes(image->PixData, image->PixData + 256 * 256);
    const size_t items = CurrentVfs()->Items.size();
    Start(3, 5);
    Click(30, 30);
    Click(120, 30);
    EXPECT_NE(Click(30, 120), 0);
    EXPECT_EQ(std::vector<uint16_t>(image->PixData, image->PixData + 256 * 256), codes);
    bool found = false;
    for (const auto& item : CurrentVfs()->Items)
        if (item.Kind == VFS_ITEM_TEXT && item.Text == "-90.0") found = true;
    EXPECT_TRUE(found);
    EXPECT_GT(CurrentVfs()->Items.size(), items);
}

// The panel.

TEST_F(SelectionTest, ThePanelOpensOnceAndShowsPointSizeAndHeight)
{
    ImageHeaderType* image = Shown(128, 256);
    image->Zlo = 0.0f;
    image->Zhi = 6.5535f;
    image->ImageSizeX = 100.0f;
    image->ImageSizeY = 50.0f;
    image->SPMData = 1;
    Start(2, 2);
    const auto opens = host.Calls("ap_OpenTextWindow");
    ASSERT_EQ(opens.size(), 1u);
    EXPECT_NE(opens[0].args.find("Cursor Information"), std::string::npos);
    Event(20, 30, 0);
    EXPECT_EQ(PanelLine(2, 1), "Select point 1/2      ");
    EXPECT_EQ(PanelLine(2, 2), "Cursor position (10,15)    ");
    const int code = image->PixData[15 * 128 + 10];
    char height[64];
    std::snprintf(height, sizeof height, "Image height %8.2f %-2s",
                  static_cast<double>(GetImageDataValue(0, static_cast<float>(code), image)), GetImageUnitStr(image, 0, 0));
    ASSERT_NE(std::string(GetImageUnitStr(image, 0, 0)), "");
    EXPECT_EQ(PanelLine(2, 3), height);
    Click(20, 30);
    Event(59, 69, 0);   // image pixels (29, 34): 20 by 20 pixels
    EXPECT_EQ(PanelLine(2, 1), "Select point 2/2      ");
    EXPECT_EQ(PanelLine(30, 2), "No of pixels (20,20)      ");
    // 20 pixels of 100 / 128 nm by 20 of 50 / 128 nm.
    char area[96];
    std::snprintf(area, sizeof area, "Selected area %.*fx%.*f%s           ", DecimalsFor(20 * 100.0 / 128),
                  20 * 100.0 / 128, DecimalsFor(20 * 50.0 / 128), 20 * 50.0 / 128, "nm");
    EXPECT_EQ(std::string(area), "Selected area 15.6x7.81nm           ");
    EXPECT_EQ(PanelLine(30, 3), area);
    Start(2, 2);
    EXPECT_EQ(host.Count("ap_OpenTextWindow"), 1);
    EXPECT_GE(host.Count("ap_ClearTextWindow"), 1);
}

TEST_F(SelectionTest, AWorldCursorShowsTheValuesOfThePlotUnderIt)
{
    Shown(128);
    // A plot area over the frame's top left 200 by 100 pixels, world 0..10 by 0..5, no margins.
    SetPlotArea(0, 0, 200, 100, 1);
    SetPlotMargins(1, 0.0f, 0.0f, 0.0f, 0.0f);
    SelectPlotArea(1);
    SetAxisRange(0.0f, 0.0f, 10.0f, 5.0f);
    ASSERT_EQ(SelectImagePoints(14, 2, xs, ys, 1, 0, 0, 1, 0, 1, 0, 2, RecordingHandler), 0);
    Event(50, 20, 0);
    char expected[96];
    std::snprintf(expected, sizeof expected, "Cursor position (%8.5g,%8.5g)    ", static_cast<double>(PixelToWorldX(50)),
                  static_cast<double>(PixelToWorldY(20)));
    EXPECT_EQ(std::string(expected), "Cursor position (     2.5,       4)    ");
    EXPECT_EQ(PanelLine(2, 2), expected);
}

TEST_F(SelectionTest, ForceSquareMakesAPhysicalSquareOnNonSquarePixels)
{
    ImageHeaderType* image = Shown(128, 256);
    image->ImageSizeX = 100.0f;   // pixels twice as wide as high
    image->ImageSizeY = 50.0f;
    ASSERT_EQ(SelectImagePoints(1, 2, xs, ys, 2, 1, 0, 0, 0, 0, 0, 2, RecordingHandler), 0);
    Click(100, 200);
    Click(140, 230);
    // 20 image pixels across (40 frame pixels) need 40 image pixels up.
    const double sx = 100.0 / 128, sy = 50.0 / 128;
    const double width = std::abs(g_handlerX[1] - g_handlerX[0]) * sx;
    const double height = std::abs(g_handlerY[1] - g_handlerY[0]) * sy;
    EXPECT_NEAR(width, height, 2 * sx);
    EXPECT_LT(g_handlerY[1], g_handlerY[0]);
}

// Rotation and translation by events against their continuations.

TEST_F(SelectionTest, RotateAndTranslateByEventsEqualTheirContinuations)
{
    ImageHeaderType* source = Shown(128, 256);
    dl_RotateImageA();
    Click(100, 100);
    Click(200, 100);
    Click(200, 160);
    const ImageHeaderType* picked = CurrentItem;
    const std::vector<uint16_t> byEvents(picked->PixData, picked->PixData + 128 * 128);
    CurrentItem = source;
    dl_RotateImageA();
    RotatePointsX[0] = 50, RotatePointsY[0] = 50;
    RotatePointsX[1] = 100, RotatePointsY[1] = 50;
    RotatePointsX[2] = 100, RotatePointsY[2] = 80;
    RotateImageA_Continue(1);
    EXPECT_EQ(CountInLog("Rotate (50 50) (100 50) (100 80)"), 2);
    EXPECT_EQ(std::vector<uint16_t>(CurrentItem->PixData, CurrentItem->PixData + 128 * 128), byEvents);

    CurrentItem = source;
    dl_ImageTranslate();
    Click(20, 20, 7);
    Click(50, 10, 7);
    const std::vector<uint16_t> shifted(CurrentItem->PixData, CurrentItem->PixData + 128 * 128);
    CurrentItem = source;
    TranslatePointsX[0] = 10, TranslatePointsY[0] = 10;
    TranslatePointsX[1] = 25, TranslatePointsY[1] = 5;
    ImageTranslate_Continue(1);
    EXPECT_EQ(CountInLog("by (15,-5)"), 2);
    EXPECT_FALSE(LogHasProgramErrors());
    EXPECT_EQ(std::vector<uint16_t>(CurrentItem->PixData, CurrentItem->PixData + 128 * 128), shifted);
}

// Sliders.

TEST_F(SelectionTest, SliderIdsWithoutACommandAreReportedWithTheirValues)
{
    EXPECT_EQ(dl_Horz_Scroll_Bar1_Callback(117, 1, 2.5f), 0);
    EXPECT_TRUE(LogHasProgramError("dl_Horz_Scroll_Bar1_Callback (117,1,2.500000)"));
    EXPECT_EQ(dl_Horz_Scroll_Bar2_Callback(9, 0, 1.0f, 2.0f), 0);
    EXPECT_TRUE(LogHasProgramError("dl_Horz_Scroll_Bar2_Callback (9,0,1.000000,2.000000)"));
    EXPECT_EQ(dl_Horz_Scroll_Bar3_Callback(500, 2, 1.0f, 2.0f, 3.0f), 0);
    EXPECT_TRUE(LogHasProgramError("dl_Horz_Scroll_Bar3_Callback (500,2,1.000000,2.000000 3.000000)"));
    EXPECT_EQ(dl_Horz_Vert_Scroll_Bar_Callback(4, 5, 0.5f, 0.25f), 0);
    EXPECT_TRUE(LogHasProgramError("dl_Horz_Vert_Scroll_Bar_Callback (4,5,0.500000,0.250000)"));
    EXPECT_EQ(dl_Horz_Vert_Scroll_Bar1_Callback(4, 5, 0.5f, 0.25f), 1);
    EXPECT_EQ(dl_Horz2_Vert_Scroll_Bar1_Callback(4, 5, 0.5f, 0.25f), 1);
}

namespace {
float g_slid[3];
int g_slidState = -1, g_slidCount = 0;
int RecordSlide(int state, const float* values, int count)
{
    g_slidState = state;
    g_slidCount = count;
    for (int i = 0; i < count; ++i) g_slid[i] = values[i];
    return 7;
}
} // namespace

TEST_F(SelectionTest, ASliderMoveReachesTheCommandOfItsIdAndOpeningUsesTheDefaultPlace)
{
    SetSliderCommand(201, RecordSlide);
    EXPECT_EQ(dl_Horz_Scroll_Bar2_Callback(201, 3, 1.5f, 4.0f), 7);
    EXPECT_EQ(g_slidState, 3);
    EXPECT_EQ(g_slidCount, 2);
    EXPECT_EQ(g_slid[1], 4.0f);
    wint_ScrollBarParamType bar{};
    OpenScrollBar1(&bar, 201);
    EXPECT_EQ(bar.PosX, -1);
    EXPECT_EQ(bar.PosY, -1);
    bar.PosX = 30;
    bar.PosY = 0;
    OpenScrollBar1(&bar, 201);
    EXPECT_EQ(bar.PosX, 30);
    EXPECT_EQ(bar.PosY, 0);
    EXPECT_EQ(host.Count("ap_ScrollBar1"), 2);
    SetSliderCommand(201, nullptr);
    EXPECT_EQ(dl_Horz_Scroll_Bar2_Callback(201, 3, 1.5f, 4.0f), 0);
}

// Item lists.

TEST_F(SelectionTest, TheItemListOfAGroupPlotListsTheSpectraAndKeepsChoices)
{
    auto list = std::make_unique<wint_SelectItemCol>();
    EXPECT_EQ(dl_GetSelectItemCol(list.get(), 1, 0), 1);
    EXPECT_EQ(host.messageBoxes.back().text, "No images in memory");
    AddImage(16, 16, [](int, int) { return uint16_t{1}; }, "Image");
    ImageHeaderType* a = AddSpectrum(8);
    strncpy0(a->Title, "First", sizeof a->Title);
    ImageHeaderType* b = AddSpectrum(8);
    strncpy0(b->Title, "Second", sizeof b->Title);
    ASSERT_EQ(dl_GetSelectItemCol(list.get(), 1, 0), 0);
    ASSERT_EQ(list->Count, 2);
    EXPECT_EQ(std::string(list->Texts[0][0]), "1 S:(" + std::to_string(a->DataId) + ")");
    EXPECT_STREQ(list->Texts[1][1], "Second");
    EXPECT_EQ(list->Items[1], b);
    // Choose both: the colours of the table from entry 7 on, symbol 7.
    list->Extra[1] = 1;
    dl_pb_SelectItemCol_Add(list.get());
    list->Extra[1] = 0;
    dl_pb_SelectItemCol_Add(list.get());
    EXPECT_EQ(list->Colours[1], IndexColour(7));
    EXPECT_EQ(list->Colours[0], IndexColour(8));
    EXPECT_EQ(list->Symbols[0], 7u);
    dl_SetSelectItemCol(list.get());
    // A rebuild keeps them; a fresh one does not.
    auto again = std::make_unique<wint_SelectItemCol>();
    ASSERT_EQ(dl_GetSelectItemCol(again.get(), 0, 0), 0);
    EXPECT_EQ(again->Selected[1], 1);
    EXPECT_EQ(again->Colours[0], IndexColour(8));
    ASSERT_EQ(dl_GetSelectItemCol(again.get(), 1, 0), 0);
    EXPECT_EQ(again->Selected[1], 0);
    list->Extra[1] = 1;
    dl_pb_SelectItemCol_Remove(list.get());
    EXPECT_EQ(list->Selected[1], 0);
    dl_pb_SelectItemCol_Pickup(list.get());
    EXPECT_EQ(CurrentItem, b);
    list->Extra[1] = 5;
    dl_pb_SelectItemCol_Add(list.get());
    EXPECT_TRUE(LogHasProgramError("dl_pb_SelectItemCol_Add 5"));
}

TEST_F(SelectionTest, ListsOfOtherUsesChooseInPureBlue)
{
    auto list = std::make_unique<wint_SelectItemCol>();
    SelectItemCol_ProcessType = TV_SELECT_ITEMS_MEASURE;
    AddImage(16, 16, [](int, int) { return uint16_t{1}; }, "One");
    AddSpectrum(4);
    ASSERT_EQ(dl_GetSelectItemCol(list.get(), 1, 1), 0);
    ASSERT_EQ(list->Count, 1);
    EXPECT_EQ(list->Texts[0][0][2], 'I');
    list->Extra[1] = 0;
    dl_pb_SelectItemCol_Add(list.get());
    EXPECT_EQ(list->Colours[0], 0xff0000u);
}

TEST_F(SelectionTest, ThePrintLayoutListMarksTheCurrentItem)
{
    auto list = std::make_unique<wint_SelectItemCol>();
    AddImage(16, 16, [](int, int) { return uint16_t{1}; }, "One");
    ImageHeaderType* two = AddImage(16, 16, [](int, int) { return uint16_t{1}; }, "Two");
    AddSpectrum(4);
    CurrentItem = two;
    dl_GetPrintEditItem(list.get(), 0);
    ASSERT_EQ(list->Count, 2);
    EXPECT_STREQ(list->Texts[0][0], "---");
    EXPECT_STREQ(list->Texts[1][0], "(1)");
    EXPECT_STREQ(list->Texts[1][1], "Two");
    dl_GetPrintEditItem(list.get(), 1);
    EXPECT_EQ(list->Count, 1);
    EXPECT_STREQ(list->Texts[0][0], "---");
    dl_GetPrintEditItem(list.get(), 2);
    EXPECT_TRUE(LogHasProgramError("dl_GetPrintEditItem type=2"));
}
