// The display list: the item array, hit tests, erasing, the drawing context pair and the pen
// rule of lines.
#include "test_frame_support.h"

#include <cstring>

namespace {

constexpr uint32_t kRed = RgbColour(255, 0, 0);
constexpr uint32_t kGreen = RgbColour(0, 255, 0);
constexpr uint32_t kBlue = RgbColour(0, 0, 255);

class CVfsTest : public FrameStoreTest {
protected:
    void SetUp() override
    {
        FrameStoreTest::SetUp();
        Make(512, 512);
    }
    void TearDown() override
    {
        CVfs::Destroy(vfs);
        tv_canvas_destroy(canvas);
        FrameStoreTest::TearDown();
    }
    void Make(int width, int height)
    {
        CVfs::Destroy(vfs);
        tv_canvas_destroy(canvas);
        canvas = tv_canvas_create(width, height);
        vfs = CVfs::Create(canvas, 512, 512, width, height);
        ASSERT_NE(vfs, nullptr);
    }
    uint32_t Pixel(int x, int y) const
    {
        return tv_canvas_pixels(canvas)[static_cast<size_t>(y) * tv_canvas_width(canvas) + x] & 0xffffffu;
    }
    CVfsItem Line(double x1, double y1, double x2, double y2) const
    {
        CVfsItem item;
        item.Kind = VFS_ITEM_LINE;
        item.X1 = x1, item.Y1 = y1, item.X2 = x2, item.Y2 = y2;
        return item;
    }
    void Redraw(RECT dest, RECT clip, DrawContext* dc = nullptr) { vfs->RedrawVFS(dest, clip, dc); }

    TvCanvas* canvas = nullptr;
    CVfs* vfs = nullptr;
};

} // namespace

TEST_F(CVfsTest, ItemsAndListStartAsConstructed)
{
    CVfsItem item;
    EXPECT_EQ(item.Kind, 1u);
    EXPECT_EQ(item.Colour, 0xffffffu);
    EXPECT_EQ(item.BackColour, 0xffffffu);
    EXPECT_EQ(item.AlignH, 255);
    EXPECT_EQ(item.AlignV, 255);
    EXPECT_EQ(item.BackMode, 255);
    EXPECT_EQ(vfs->PenColour, 0xffffffu);
    EXPECT_EQ(vfs->Pen.style, PS_SOLID);
    EXPECT_EQ(vfs->Pen.width, 1);
    EXPECT_EQ(vfs->Pen.colour, 0xffffffu);
    EXPECT_EQ(vfs->ScaleX, 1.0);
    EXPECT_EQ(vfs->ScaleY, 1.0);
    EXPECT_EQ(vfs->OffsetX, 0.0);
    EXPECT_EQ(vfs->OffsetY, 0.0);
    EXPECT_EQ(vfs->Replaying, 0);
    EXPECT_EQ(vfs->PrepareCount, 0);
    EXPECT_EQ(vfs->DC, nullptr);
    EXPECT_EQ(vfs->OwnDC, nullptr);
}

TEST_F(CVfsTest, TheItemArrayGrowsBy1500WhenFewerThanTenAreSpare)
{
    ASSERT_TRUE(vfs->AddItem(Line(0, 0, 1, 1)));
    EXPECT_EQ(vfs->Items.capacity(), 1500u);
    while (vfs->Items.size() < 1491) ASSERT_TRUE(vfs->AddItem(Line(0, 0, 1, 1)));
    EXPECT_EQ(vfs->Items.capacity(), 1500u);   // 9 spare now
    ASSERT_TRUE(vfs->AddItem(Line(0, 0, 1, 1)));
    EXPECT_EQ(vfs->Items.capacity(), 3000u);
    EXPECT_EQ(vfs->Items.size(), 1492u);
}

TEST_F(CVfsTest, AGrowthWithoutMemoryIsReportedAndTheListStays)
{
    while (vfs->Items.size() < 1491) ASSERT_TRUE(vfs->AddItem(Line(0, 0, 1, 1)));
    FailAllocationsForTests(1);
    vfs->AddLine(5, 5, 6, 6, kRed, 1);
    EXPECT_EQ(vfs->Items.size(), 1491u);
    EXPECT_EQ(vfs->Items.capacity(), 1500u);
    EXPECT_TRUE(LogHas("ERROR : Not enough memory\n"));
    vfs->AddLine(5, 5, 6, 6, kRed, 1);   // memory is back
    EXPECT_EQ(vfs->Items.size(), 1492u);
}

TEST_F(CVfsTest, ConsecutiveClipRectanglesCollapseToTheLastOne)
{
    vfs->AddClip(0, 0, 10, 10);
    vfs->AddClip(20, 30, 5, 6);
    ASSERT_EQ(vfs->Items.size(), 1u);
    EXPECT_EQ(vfs->Items[0].Kind, 64u);
    EXPECT_EQ(vfs->Items[0].Bounds.left, 5);
    EXPECT_EQ(vfs->Items[0].Bounds.top, 6);
    EXPECT_EQ(vfs->Items[0].Bounds.right, 20);
    EXPECT_EQ(vfs->Items[0].Bounds.bottom, 30);
    vfs->AddPixel(1, 1, kRed);
    vfs->AddClip(0, 0, 1, 1);
    EXPECT_EQ(vfs->Items.size(), 3u);
}

TEST_F(CVfsTest, IntersectFollowsTheKindOfTheItem)
{
    const RECT rect{100, 100, 200, 200};
    CVfsItem none;
    EXPECT_FALSE(vfs->Intersect(none, rect));
    CVfsItem clip;
    clip.Kind = VFS_ITEM_CLIP;
    clip.Bounds = {0, 0, 511, 511};
    EXPECT_FALSE(vfs->Intersect(clip, rect));

    EXPECT_TRUE(vfs->Intersect(Line(150, 150, 160, 160), rect));
    EXPECT_TRUE(vfs->Intersect(Line(0, 150, 511, 150), rect));
    EXPECT_FALSE(vfs->Intersect(Line(0, 0, 99, 300), rect));     // both left
    EXPECT_FALSE(vfs->Intersect(Line(201, 0, 300, 300), rect));  // both right
    EXPECT_FALSE(vfs->Intersect(Line(0, 50, 300, 99), rect));    // both above
    EXPECT_FALSE(vfs->Intersect(Line(0, 201, 300, 300), rect));  // both below
    EXPECT_TRUE(vfs->Intersect(Line(0, 100, 100, 0), rect));     // touches a corner

    CVfsItem pixel;
    pixel.Kind = VFS_ITEM_PIXEL;
    pixel.X1 = 200, pixel.Y1 = 100;
    EXPECT_TRUE(vfs->Intersect(pixel, rect));   // borders included
    pixel.X1 = 201;
    EXPECT_FALSE(vfs->Intersect(pixel, rect));

    for (uint32_t kind : {VFS_ITEM_TEXT, VFS_ITEM_RECT, VFS_ITEM_FILL}) {
        CVfsItem box;
        box.Kind = kind;
        box.Bounds = {200, 200, 300, 300};
        EXPECT_TRUE(vfs->Intersect(box, rect)) << kind;
        box.Bounds = {201, 0, 300, 300};
        EXPECT_FALSE(vfs->Intersect(box, rect)) << kind;
    }
    EXPECT_TRUE(vfs->Intersect(Line(150, 150, 150, 150), RECT{200, 200, 100, 100}));   // normalised

    CVfsItem odd;
    odd.Kind = 3;
    EXPECT_FALSE(vfs->Intersect(odd, rect));
    EXPECT_TRUE(LogHasProgramError("CVfs::Intersect type=3"));
}

TEST_F(CVfsTest, ALineWhoseBoxTouchesTheClearedRectangleIsErasedThoughItPassesBy)
{
    vfs->AddLine(0, 100, 100, 0, kRed, 1);   // passes (80, 20) .. (20, 80), far from the rectangle
    vfs->AddLine(0, 0, 70, 0, kRed, 1);      // its box stays above and left
    vfs->EraseItems(80, 80, 120, 120);
    ASSERT_EQ(vfs->Items.size(), 1u);
    EXPECT_EQ(vfs->Items[0].X2, 70.0);
}

TEST_F(CVfsTest, EraseItemsTakesEveryRunOfTouchingItemsAndKeepsTheOrderOfTheRest)
{
    vfs->AddPixel(10, 10, kRed);   // in
    vfs->AddPixel(300, 10, kRed);  // out
    vfs->AddPixel(11, 11, kRed);   // in
    vfs->AddPixel(12, 12, kRed);   // in
    vfs->AddPixel(400, 10, kRed);  // out
    vfs->AddPixel(13, 13, kRed);   // in
    vfs->EraseItems(0, 0, 50, 50);
    ASSERT_EQ(vfs->Items.size(), 2u);
    EXPECT_EQ(vfs->Items[0].X1, 300.0);
    EXPECT_EQ(vfs->Items[1].X1, 400.0);
}

TEST_F(CVfsTest, RowAndColumnErasesActOnlyAtMultiplesOf32OverSixteenPixels)
{
    vfs->AddPixel(10, 70, kRed);
    vfs->AddPixel(10, 80, kRed);
    vfs->EraseItemsRow(0, 40, 512);   // 40 is no multiple of 32
    EXPECT_EQ(vfs->Items.size(), 2u);
    vfs->EraseItemsRow(0, 64, 512);   // rows 64 to 79
    ASSERT_EQ(vfs->Items.size(), 1u);
    EXPECT_EQ(vfs->Items[0].Y1, 80.0);
    vfs->EraseItemsRow(0, 64, 10);    // columns 0 to 9 only
    EXPECT_EQ(vfs->Items.size(), 1u);

    vfs->AddPixel(100, 5, kRed);
    vfs->AddPixel(112, 5, kRed);
    vfs->EraseItemsColumn(100, 0, 512);   // 100 is no multiple of 32
    EXPECT_EQ(vfs->Items.size(), 3u);
    vfs->EraseItemsColumn(96, 0, 512);    // columns 96 to 111
    ASSERT_EQ(vfs->Items.size(), 2u);
    EXPECT_EQ(vfs->Items[1].X1, 112.0);
}

TEST_F(CVfsTest, ABlackFillErasesTheTextUnderItAndAWhiteFillDoesNot)
{
    vfs->AddText(100, 100, NamedFont(FONT_GENERAL), nullptr, "Under", TextAlignWord(0, 2, 0), kRed, kWhite);
    vfs->AddFill(90, 90, 200, 200, kWhite);
    ASSERT_EQ(vfs->Items.size(), 2u);
    EXPECT_EQ(vfs->Items[0].Kind, 8u);
    vfs->AddFill(90, 90, 200, 200, kBlack);
    ASSERT_EQ(vfs->Items.size(), 1u);   // text and white fill gone
    EXPECT_EQ(vfs->Items[0].Kind, 32u);
    EXPECT_EQ(vfs->Items[0].Colour, 0u);
}

TEST_F(CVfsTest, PrepareAndFinishAreACountedPair)
{
    vfs->PrepareForDrawing(nullptr);
    DrawContext* own = vfs->DC;
    ASSERT_NE(own, nullptr);
    EXPECT_EQ(vfs->OwnDC, own);
    vfs->PrepareForDrawing(nullptr);
    EXPECT_EQ(vfs->PrepareCount, 2);
    EXPECT_EQ(vfs->DC, own);
    vfs->FinishDrawing();
    EXPECT_EQ(vfs->DC, own);
    vfs->FinishDrawing();
    EXPECT_EQ(vfs->DC, nullptr);
    EXPECT_EQ(vfs->OwnDC, nullptr);
    EXPECT_EQ(vfs->PrepareCount, 0);
    EXPECT_FALSE(LogHasProgramErrors());
    vfs->FinishDrawing();
    EXPECT_TRUE(LogHasProgramError("FinishDrawing 0"));
    EXPECT_EQ(vfs->PrepareCount, 0);
}

TEST_F(CVfsTest, AGivenContextIsUsedAndNotReleased)
{
    DrawContext* dc = GetDC(canvas);
    vfs->PrepareForDrawing(dc);
    EXPECT_EQ(vfs->DC, dc);
    EXPECT_EQ(vfs->OwnDC, nullptr);
    vfs->FinishDrawing();
    EXPECT_EQ(vfs->DC, nullptr);
    EXPECT_EQ(ReleaseDC(canvas, dc), 1);   // still the caller's
}

TEST_F(CVfsTest, AContextHeldAlreadyIsAProgramError)
{
    DrawContext* dc = GetDC(canvas);
    vfs->DC = dc;
    vfs->PrepareForDrawing(nullptr);
    EXPECT_TRUE(LogHasProgramError("PrepareForDrawing windc"));
    EXPECT_EQ(vfs->DC, dc);
    vfs->FinishDrawing();
    EXPECT_EQ(vfs->DC, nullptr);
    ReleaseDC(canvas, dc);
}

TEST_F(CVfsTest, ALostWindowContextIsReportedWhenItIsReleased)
{
    vfs->PrepareForDrawing(nullptr);
    ASSERT_NE(vfs->OwnDC, nullptr);
    vfs->DC = nullptr;   // the context in use went astray
    vfs->FinishDrawing();
    EXPECT_TRUE(LogHas("ERROR : Program error - FinishDrawing (nil) 0x"));
    EXPECT_EQ(vfs->OwnDC, nullptr);   // released all the same
}

TEST_F(CVfsTest, PrepareAndFinishDoNothingDuringAReplay)
{
    vfs->Replaying = 1;
    vfs->PrepareForDrawing(nullptr);
    EXPECT_EQ(vfs->PrepareCount, 0);
    EXPECT_EQ(vfs->DC, nullptr);
    vfs->FinishDrawing();
    vfs->Replaying = 0;
    EXPECT_FALSE(LogHasProgramErrors());
}

TEST_F(CVfsTest, WithoutWindowItemsAreKeptAndNothingIsDrawnOrReported)
{
    CVfs* bare = CVfs::Create(nullptr, 512, 512, 512, 512);
    ASSERT_NE(bare, nullptr);
    bare->AddLine(0, 0, 10, 10, kRed, 1);
    bare->AddText(5, 5, NamedFont(FONT_GENERAL), nullptr, "x", 0, kRed, kWhite);
    bare->RedrawVFS({0, 0, 511, 511}, {0, 0, 511, 511}, nullptr);
    EXPECT_EQ(bare->Items.size(), 2u);
    EXPECT_EQ(bare->PrepareCount, 0);
    EXPECT_FALSE(LogHasProgramErrors());
    CVfs::Destroy(bare);
}

TEST_F(CVfsTest, ItemsAreDrawnAtOnceOnlyWithNoBatchOpen)
{
    tv_canvas_clear(canvas, 0);
    BatchDepth = 1;
    vfs->AddLine(10, 10, 100, 10, kRed, 1);
    EXPECT_EQ(Pixel(50, 10), 0u);
    BatchDepth = 0;
    vfs->AddLine(10, 20, 100, 20, kRed, 1);
    EXPECT_EQ(Pixel(50, 20), kRed);
    EXPECT_EQ(vfs->Items.size(), 2u);
    vfs->AddPixel(3, 4, kGreen);
    EXPECT_EQ(Pixel(3, 4), kGreen);
    vfs->AddFill(30, 30, 40, 40, kBlue);   // right and bottom edges included
    EXPECT_EQ(Pixel(40, 40), kBlue);
    EXPECT_EQ(Pixel(41, 40), 0u);
    EXPECT_EQ(Pixel(29, 30), 0u);
    vfs->AddRect(60, 60, 70, 65, kGreen);
    EXPECT_EQ(Pixel(60, 60), kGreen);
    EXPECT_EQ(Pixel(70, 65), kGreen);
    EXPECT_EQ(Pixel(65, 62), 0u);
    EXPECT_EQ(Pixel(71, 65), 0u);
}

TEST_F(CVfsTest, ARepaintAtDoubleSizeDrawsDoubleWidthButAWidthChangeAloneKeepsTheOldPen)
{
    Make(1024, 1024);
    BatchDepth = 1;   // the items wait for the repaint
    vfs->AddLine(10, 100, 200, 100, kRed, 1);
    vfs->AddLine(10, 200, 200, 200, kGreen, 1);
    vfs->AddLine(10, 300, 200, 300, kGreen, 3);   // same colour, wider
    BatchDepth = 0;
    tv_canvas_clear(canvas, 0);
    Redraw({0, 0, 1023, 1023}, {0, 0, 1023, 1023});
    // Line 1 at y 200, two pixels wide: rows 199 and 200.
    EXPECT_EQ(Pixel(100, 198), 0u);
    EXPECT_EQ(Pixel(100, 199), kRed);
    EXPECT_EQ(Pixel(100, 200), kRed);
    EXPECT_EQ(Pixel(100, 201), 0u);
    EXPECT_EQ(Pixel(100, 399), kGreen);
    EXPECT_EQ(Pixel(100, 400), kGreen);
    EXPECT_EQ(Pixel(100, 401), 0u);
    // Line 3 asked for width 3 (6 at this size) but keeps the pen of line 2.
    EXPECT_EQ(Pixel(100, 598), 0u);
    EXPECT_EQ(Pixel(100, 599), kGreen);
    EXPECT_EQ(Pixel(100, 600), kGreen);
    EXPECT_EQ(Pixel(100, 601), 0u);
    EXPECT_EQ(vfs->PenColour, kGreen);
    EXPECT_EQ(vfs->Pen.width, 2);
    EXPECT_EQ(vfs->ScaleX, 1.0);   // restored
    EXPECT_EQ(vfs->Replaying, 0);
}

TEST_F(CVfsTest, AHairLineStaysOnePixelAtAnySize)
{
    Make(1024, 1024);
    BatchDepth = 1;
    vfs->AddLine(10, 100, 200, 100, kBlue, -1);
    BatchDepth = 0;
    tv_canvas_clear(canvas, 0);
    Redraw({0, 0, 1023, 1023}, {0, 0, 1023, 1023});
    EXPECT_EQ(Pixel(100, 200), kBlue);
    EXPECT_EQ(Pixel(100, 199), 0u);
    EXPECT_EQ(Pixel(100, 201), 0u);
}

TEST_F(CVfsTest, ARepaintAtScaleOneDrawsOnlyTheItemsThatTouchTheClipRectangle)
{
    BatchDepth = 1;
    vfs->AddLine(10, 10, 100, 10, kRed, 1);
    vfs->AddLine(10, 400, 100, 400, kRed, 1);
    vfs->AddFill(0, 0, 511, 511, kBlue);
    vfs->AddPixel(300, 300, kGreen);
    BatchDepth = 0;
    tv_canvas_clear(canvas, 0);
    Redraw({0, 0, 511, 511}, {0, 0, 200, 100});
    EXPECT_EQ(Pixel(150, 150), 0u);    // the fill is cut to the rectangle of interest
    EXPECT_EQ(Pixel(200, 100), kBlue);
    EXPECT_EQ(Pixel(201, 100), 0u);
    EXPECT_EQ(Pixel(50, 10), kBlue);   // the line lies under the fill drawn after it
    EXPECT_EQ(Pixel(50, 400), 0u);
    EXPECT_EQ(Pixel(300, 300), 0u);
}

TEST_F(CVfsTest, ARepaintWithOffsetsMovesEveryItem)
{
    Make(700, 600);
    BatchDepth = 1;
    vfs->AddLine(150, 100, 300, 100, kRed, 1);
    vfs->AddPixel(200, 200, kGreen);
    BatchDepth = 0;
    tv_canvas_clear(canvas, 0);
    Redraw({100, 50, 611, 561}, {0, 0, 699, 599});
    EXPECT_EQ(Pixel(300, 150), kRed);
    EXPECT_EQ(Pixel(200, 100), 0u);
    EXPECT_EQ(Pixel(300, 250), kGreen);
}

TEST_F(CVfsTest, ARepaintAtDoubleSizeWithOffsetsScalesThenMoves)
{
    Make(1100, 1100);
    BatchDepth = 1;
    vfs->AddLine(10, 10, 60, 10, kRed, 1);
    vfs->AddFill(100, 100, 109, 104, kBlue);
    BatchDepth = 0;
    tv_canvas_clear(canvas, 0);
    Redraw({20, 10, 1043, 1033}, {0, 0, 1099, 1099});
    EXPECT_EQ(Pixel(80, 29), kRed);
    EXPECT_EQ(Pixel(80, 30), kRed);
    EXPECT_EQ(Pixel(80, 31), 0u);
    EXPECT_EQ(Pixel(39, 30), 0u);
    // (100, 100) - (109, 104) lands on (220, 210) - (238, 218).
    EXPECT_EQ(Pixel(220, 210), kBlue);
    EXPECT_EQ(Pixel(238, 218), kBlue);
    EXPECT_EQ(Pixel(219, 210), 0u);
    EXPECT_EQ(Pixel(239, 218), 0u);
}

TEST_F(CVfsTest, TheRectangleOfInterestReachesTheClientEdgeWhenTheWindowIsWider)
{
    Make(600, 512);
    BatchDepth = 1;
    vfs->AddLine(550, 5, 590, 5, kRed, 1);
    BatchDepth = 0;
    tv_canvas_clear(canvas, 0);
    Redraw({0, 0, 511, 511}, {0, 0, 100, 100});
    EXPECT_EQ(Pixel(560, 5), kRed);

    Make(512, 512);
    BatchDepth = 1;
    vfs->AddLine(300, 5, 400, 5, kRed, 1);
    BatchDepth = 0;
    tv_canvas_clear(canvas, 0);
    Redraw({0, 0, 511, 511}, {0, 0, 100, 100});
    EXPECT_EQ(Pixel(350, 5), 0u);
}

TEST_F(CVfsTest, NothingIsRepaintedWhileABatchIsOpen)
{
    vfs->AddLine(10, 10, 100, 10, kRed, 1);
    tv_canvas_clear(canvas, 0);
    BatchDepth = 1;
    Redraw({0, 0, 511, 511}, {0, 0, 511, 511});
    EXPECT_EQ(Pixel(50, 10), 0u);
    BatchDepth = 0;
}

TEST_F(CVfsTest, ARepaintIntoAGivenContextForgetsItAndRestoresItsState)
{
    BatchDepth = 1;
    vfs->AddLine(10, 10, 100, 10, kRed, 1);
    vfs->AddText(50, 50, NamedFont(FONT_GENERAL), nullptr, "Text", TextAlignWord(0, 2, 2), kGreen, kBlue);
    BatchDepth = 0;
    tv_canvas_clear(canvas, 0);
    DrawContext* dc = GetDC(canvas);
    SetTextColor(dc, kBlue);
    SetBkMode(dc, TRANSPARENT);
    Redraw({0, 0, 511, 511}, {0, 0, 511, 511}, dc);
    EXPECT_EQ(Pixel(50, 10), kRed);
    EXPECT_EQ(vfs->DC, nullptr);
    EXPECT_EQ(dc->state.textColour, kBlue);
    EXPECT_EQ(dc->state.bkMode, TRANSPARENT);
    EXPECT_EQ(ReleaseDC(canvas, dc), 1);
}

namespace {

SIZE Extent(const FontRecType& font, const char* text)
{
    DrawContext dc{};
    dc.state.font = CreatePointFontIndirect(&font.Font, nullptr);
    return GetTextExtent(&dc, text, static_cast<int32_t>(std::strlen(text)));
}

} // namespace

TEST_F(CVfsTest, AddTextPlacesItsBoxForEachAlignment)
{
    const FontRecType& font = NamedFont(FONT_GENERAL);
    const SIZE e = Extent(font, "Abc");
    ASSERT_EQ(e.cy, 9);   // 7 point at 96 pixels per inch
    ASSERT_GT(e.cx, 0);
    const int w = e.cx, h = e.cy, x = 200, y = 100;
    struct Case {
        uint8_t h, v;
        RECT box;
    };
    const Case cases[] = {
        {0, 0, {x, y - h, x + w + 1, y}},
        {0, 2, {x, y, x + w + 1, y + h}},
        {0, 1, {x, y - h / 2, x + w + 1, y - h / 2 + h}},
        {2, 0, {x - w, y - h, x, y}},
        {2, 2, {x - w, y, x, y + h}},
        {1, 0, {x - w / 2 - 1, y - h, x + w / 2, y}},
        {1, 1, {x - w / 2 - 1, y - h / 2, x + w / 2, y - h / 2 + h}},
        {3, 7, {x - w / 2 - 1, y - h / 2, x + w / 2, y - h / 2 + h}},   // other values centre
    };
    for (const Case& c : cases) {
        vfs->EraseAll();
        vfs->AddText(x, y, font, nullptr, "Abc", TextAlignWord(c.h, c.v, 0), kRed, kWhite);
        ASSERT_EQ(vfs->Items.size(), 1u);
        const CVfsItem& item = vfs->Items[0];
        EXPECT_EQ(item.Bounds.left, c.box.left) << int(c.h) << " " << int(c.v);
        EXPECT_EQ(item.Bounds.top, c.box.top) << int(c.h) << " " << int(c.v);
        EXPECT_EQ(item.Bounds.right, c.box.right) << int(c.h) << " " << int(c.v);
        EXPECT_EQ(item.Bounds.bottom, c.box.bottom) << int(c.h) << " " << int(c.v);
        EXPECT_EQ(item.AlignH, c.h);
        EXPECT_EQ(item.AlignV, c.v);
        EXPECT_EQ(item.Text, "Abc");
        EXPECT_EQ(item.X1, x);
        EXPECT_EQ(item.Y1, y);
    }
}

TEST_F(CVfsTest, MeasureTextShiftsByTheWidthOrHeightOrTheirHalves)
{
    const FontRecType& font = NamedFont(FONT_CAPTION);
    const SIZE e = Extent(font, "Scale");
    ASSERT_EQ(e.cy, 15);   // 11 point
    const int w = e.cx, h = e.cy, x = 300, y = 200;
    struct Case {
        uint8_t h, v;
        int left, top;
    };
    const Case cases[] = {
        {0, 2, x, y},         {2, 2, x - w, y},     {1, 2, x - w / 2, y}, {3, 2, x, y},
        {0, 0, x, y - h},     {0, 4, x, y - h / 2}, {0, 1, x, y},         {2, 0, x - w, y - h},
    };
    for (const Case& c : cases) {
        RECT box;
        vfs->MeasureText(&box, x, y, font, "Scale", TextAlignWord(c.h, c.v, 0));
        EXPECT_EQ(box.left, c.left) << int(c.h) << " " << int(c.v);
        EXPECT_EQ(box.top, c.top) << int(c.h) << " " << int(c.v);
        EXPECT_EQ(box.right, c.left + w) << int(c.h) << " " << int(c.v);
        EXPECT_EQ(box.bottom, c.top + h) << int(c.h) << " " << int(c.v);
    }
    EXPECT_TRUE(vfs->Items.empty());
}

namespace {

int CountColour(TvCanvas* canvas, uint32_t colour)
{
    int n = 0;
    const uint32_t* p = tv_canvas_pixels(canvas);
    for (int i = 0; i < tv_canvas_width(canvas) * tv_canvas_height(canvas); ++i)
        if ((p[i] & 0xffffffu) == colour) ++n;
    return n;
}

} // namespace

TEST_F(CVfsTest, TextTakesTheFontColourUnlessTheFontAsksForTheGivenOne)
{
    FontRecType font = NamedFont(FONT_CAPTION);
    font.FontColour = kRed;
    font.UseGivenColour = 0;
    tv_canvas_clear(canvas, 0);
    vfs->AddText(100, 100, font, nullptr, "Hi", TextAlignWord(0, 2, 0), kGreen, kWhite);
    EXPECT_GT(CountColour(canvas, kRed), 0);
    EXPECT_EQ(CountColour(canvas, kGreen), 0);
    font.UseGivenColour = 1;
    tv_canvas_clear(canvas, 0);
    vfs->AddText(100, 100, font, nullptr, "Hi", TextAlignWord(0, 2, 0), kGreen, kWhite);
    EXPECT_EQ(CountColour(canvas, kRed), 0);
    EXPECT_GT(CountColour(canvas, kGreen), 0);
}

TEST_F(CVfsTest, BackModeTwoPaintsTheTextCellInTheBackColour)
{
    const FontRecType& font = NamedFont(FONT_GENERAL);   // takes the given colour
    const SIZE e = Extent(font, "Hi");
    tv_canvas_clear(canvas, 0);
    vfs->AddText(100, 100, font, nullptr, "Hi", TextAlignWord(0, 2, 0), kGreen, kBlue);
    EXPECT_EQ(CountColour(canvas, kBlue), 0);
    tv_canvas_clear(canvas, 0);
    vfs->AddText(100, 100, font, nullptr, "Hi", TextAlignWord(0, 2, kBackModeOpaque), kGreen, kBlue);
    EXPECT_EQ(CountColour(canvas, kBlue) + CountColour(canvas, kGreen), e.cx * e.cy);
}

TEST_F(CVfsTest, AGivenClipRectangleBoundsTheTextAndBecomesItsBounds)
{
    const FontRecType& font = NamedFont(FONT_CAPTION);
    const RECT clip{100, 100, 104, 120};
    tv_canvas_clear(canvas, 0);
    vfs->AddText(100, 100, font, &clip, "WWWW", TextAlignWord(0, 2, kBackModeOpaque), kGreen, kBlue);
    ASSERT_EQ(vfs->Items.size(), 1u);
    EXPECT_EQ(vfs->Items[0].Bounds.left, 100);
    EXPECT_EQ(vfs->Items[0].Bounds.right, 104);
    EXPECT_EQ(vfs->Items[0].Bounds.bottom, 120);
    EXPECT_NE(Pixel(100, 100), 0u);
    EXPECT_EQ(Pixel(104, 100), 0u);
    EXPECT_EQ(Pixel(110, 105), 0u);
}

TEST_F(CVfsTest, ARepaintDrawsTextAgainInItsBox)
{
    const FontRecType& font = NamedFont(FONT_CAPTION);
    BatchDepth = 1;
    vfs->AddText(200, 100, font, nullptr, "Text", TextAlignWord(1, 1, kBackModeOpaque), kGreen, kBlue);
    BatchDepth = 0;
    const RECT box = vfs->Items[0].Bounds;
    tv_canvas_clear(canvas, 0);
    EXPECT_EQ(CountColour(canvas, kBlue), 0);
    Redraw({0, 0, 511, 511}, {0, 0, 511, 511});
    const int inked = CountColour(canvas, kBlue) + CountColour(canvas, kWhite);
    EXPECT_GT(inked, 0);
    for (int y = 0; y < 512; ++y)
        for (int x = 0; x < 512; ++x)
            if (Pixel(x, y) != 0) {
                EXPECT_GE(x, box.left);
                EXPECT_LT(x, box.right);
                EXPECT_GE(y, box.top);
                EXPECT_LT(y, box.bottom);
            }
}
