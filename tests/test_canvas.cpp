// The software canvas: the host's C interface and the drawing context, pixel by pixel.
#include <gtest/gtest.h>

#include <climits>
#include <cstring>
#include <string>

#include "canvas_art.h"
#include "platform/canvas.h"
#include "tavrin/canvas.h"

namespace {

using namespace canvas_check;

using CanvasTest = CanvasFixture;

// ---- The host's interface ----

TEST(CanvasSurface, CreateGivesOpaqueBlackPixelsOfTheGivenSize)
{
    TvCanvas* c = tv_canvas_create(5, 3);
    ASSERT_NE(c, nullptr);
    EXPECT_EQ(tv_canvas_width(c), 5);
    EXPECT_EQ(tv_canvas_height(c), 3);
    uint32_t* pixels = tv_canvas_pixels(c);
    ASSERT_NE(pixels, nullptr);
    for (int i = 0; i < 15; ++i) EXPECT_EQ(pixels[i], 0xFF000000u) << i;
    tv_canvas_destroy(c);
}

TEST(CanvasSurface, CreateRefusesNegativeAndOversizedSizes)
{
    EXPECT_EQ(tv_canvas_create(-1, 10), nullptr);
    EXPECT_EQ(tv_canvas_create(10, -1), nullptr);
    EXPECT_EQ(tv_canvas_create(32768, 1), nullptr);
    EXPECT_EQ(tv_canvas_create(1, 32768), nullptr);
    EXPECT_EQ(tv_canvas_create(10000, 10000), nullptr);   // above 2^26 pixels
    TvCanvas* largest = tv_canvas_create(32767, 2);
    EXPECT_NE(largest, nullptr);
    tv_canvas_destroy(largest);
}

TEST(CanvasSurface, AnEmptyCanvasHasNoPixelsAndTakesDrawingHarmlessly)
{
    TvCanvas* c = tv_canvas_create(0, 7);
    ASSERT_NE(c, nullptr);
    EXPECT_EQ(tv_canvas_width(c), 0);
    EXPECT_EQ(tv_canvas_pixels(c), nullptr);
    tv_canvas_clear(c, 0x123456);
    DrawContext* d = GetDC(c);
    ASSERT_NE(d, nullptr);
    MoveTo(d, -5, -5);
    EXPECT_TRUE(LineTo(d, 5, 5));
    EXPECT_TRUE(Rectangle(d, 0, 0, 4, 4));
    FillSolidRect(d, 0, 0, 3, 3, 0);
    EXPECT_EQ(SetPixel(d, 0, 0, 0), CLR_INVALID);
    EXPECT_TRUE(ExtTextOut(d, 0, 0, ETO_OPAQUE, nullptr, "Ag", 2));
    RECT box{1, 1, 1, 1};
    EXPECT_EQ(GetClipBox(d, &box), NULLREGION);
    EXPECT_TRUE(SameRect(box, RECT{0, 0, 0, 0})) << ShowRect(box);
    EXPECT_EQ(tv_canvas_write_png(c, "/tmp/tavrin_empty_canvas.png"), 1);
    EXPECT_EQ(ReleaseDC(c, d), 1);
    tv_canvas_destroy(c);
}

TEST(CanvasSurface, ClearFillsWithAnOpaqueColourStoredAsRedGreenBlueAlphaBytes)
{
    TvCanvas* c = tv_canvas_create(2, 2);
    tv_canvas_clear(c, 0x7F332211u);   // the high byte of a colour is ignored
    uint32_t* pixels = tv_canvas_pixels(c);
    EXPECT_EQ(pixels[3], 0xFF332211u);
    const uint8_t* bytes = reinterpret_cast<const uint8_t*>(pixels);
    EXPECT_EQ(bytes[0], 0x11);   // red
    EXPECT_EQ(bytes[1], 0x22);   // green
    EXPECT_EQ(bytes[2], 0x33);   // blue
    EXPECT_EQ(bytes[3], 0xFF);   // alpha
    tv_canvas_destroy(c);
}

TEST(CanvasSurface, NullCanvasArgumentsAreHarmless)
{
    EXPECT_EQ(tv_canvas_width(nullptr), 0);
    EXPECT_EQ(tv_canvas_height(nullptr), 0);
    EXPECT_EQ(tv_canvas_pixels(nullptr), nullptr);
    tv_canvas_clear(nullptr, 0);
    tv_canvas_destroy(nullptr);
    EXPECT_EQ(tv_canvas_write_png(nullptr, "/tmp/x.png"), 1);
    EXPECT_EQ(GetDC(nullptr), nullptr);
    EXPECT_EQ(ReleaseDC(nullptr, nullptr), 0);
    RECT r{};
    EXPECT_FALSE(GetClientRect(nullptr, &r));
}

// ---- Contexts ----

TEST_F(CanvasTest, ANewContextHasTheDesktopDefaults)
{
    EXPECT_EQ(dc->canvas, canvas);
    EXPECT_EQ(dc->state.position.x, 0);
    EXPECT_EQ(dc->state.position.y, 0);
    EXPECT_EQ(dc->state.pen.style, PS_SOLID);
    EXPECT_EQ(dc->state.pen.width, 1);
    EXPECT_EQ(dc->state.pen.colour, 0u);
    EXPECT_EQ(dc->state.font.height, 12);
    EXPECT_EQ(dc->state.font.weight, FW_NORMAL);
    EXPECT_EQ(dc->state.textColour, 0u);
    EXPECT_EQ(dc->state.bkColour, 0xFFFFFFu);
    EXPECT_EQ(dc->state.bkMode, OPAQUE);
    EXPECT_EQ(dc->state.textAlign, TA_LEFT | TA_TOP);
    EXPECT_TRUE(SameRect(dc->state.clip, RECT{0, 0, 16, 12})) << ShowRect(dc->state.clip);
    EXPECT_TRUE(dc->saved.empty());
}

TEST_F(CanvasTest, ReleaseDCRefusesAContextOfAnotherWindow)
{
    TvCanvas* other = tv_canvas_create(4, 4);
    EXPECT_EQ(ReleaseDC(other, dc), 0);   // not freed: still usable below
    EXPECT_NE(SetPixel(dc, 1, 1, 0), CLR_INVALID);
    tv_canvas_destroy(other);
}

TEST_F(CanvasTest, ClientRectIsTheWholeCanvas)
{
    RECT r{};
    ASSERT_TRUE(GetClientRect(canvas, &r));
    EXPECT_TRUE(SameRect(r, RECT{0, 0, 16, 12})) << ShowRect(r);
    EXPECT_FALSE(GetClientRect(canvas, nullptr));
}

// ---- Lines ----

TEST_F(CanvasTest, HorizontalLineLeavesOutItsEndPoint)
{
    Use(8, 3);
    Line(1, 1, 6, 1);
    EXPECT_EQ(Art(), "........\n"
                     ".#####..\n"
                     "........\n");
}

TEST_F(CanvasTest, LineDrawnRightToLeftStartsAtItsFirstPoint)
{
    Use(8, 3);
    Line(6, 1, 1, 1);
    EXPECT_EQ(Art(), "........\n"
                     "..#####.\n"
                     "........\n");
}

TEST_F(CanvasTest, VerticalLine)
{
    Use(5, 4);
    Line(2, 0, 2, 3);
    EXPECT_EQ(Art(), "..#..\n"
                     "..#..\n"
                     "..#..\n"
                     ".....\n");
}

TEST_F(CanvasTest, DiagonalLine)
{
    Use(5, 5);
    Line(0, 0, 4, 4);
    EXPECT_EQ(Art(), "#....\n"
                     ".#...\n"
                     "..#..\n"
                     "...#.\n"
                     ".....\n");
}

TEST_F(CanvasTest, ShallowLineRoundsTheShortAxisAwayFromTheStartOnHalves)
{
    Use(7, 3);
    Line(0, 0, 6, 2);
    EXPECT_EQ(Art(), "##.....\n"
                     "..###..\n"
                     ".....#.\n");
}

TEST_F(CanvasTest, SteepLineUpwards)
{
    Use(5, 6);
    Line(1, 5, 3, 0);
    EXPECT_EQ(Art(), ".....\n"
                     "...#.\n"
                     "..#..\n"
                     "..#..\n"
                     ".#...\n"
                     ".#...\n");
}

TEST_F(CanvasTest, LineToItsOwnStartDrawsNothingAndMovesThePosition)
{
    Use(4, 4);
    MoveTo(dc, 2, 2);
    EXPECT_TRUE(LineTo(dc, 2, 2));
    EXPECT_EQ(CanvasCount(canvas, kArtBlack), 0);
    POINT former = MoveTo(dc, 0, 0);
    EXPECT_EQ(former.x, 2);
    EXPECT_EQ(former.y, 2);
}

TEST_F(CanvasTest, LineToMovesTheCurrentPositionSoThatJointsAreDrawnOnce)
{
    Use(6, 4);
    Pen(PS_SOLID, 1, kArtRed);
    MoveTo(dc, 0, 0);
    LineTo(dc, 4, 0);
    LineTo(dc, 4, 3);
    EXPECT_EQ(dc->state.position.x, 4);
    EXPECT_EQ(dc->state.position.y, 3);
    EXPECT_EQ(Art(), "rrrrr.\n"
                     "....r.\n"
                     "....r.\n"
                     "......\n");
}

TEST_F(CanvasTest, PenWidthsZeroAndOneDrawTheSameOnePixelLine)
{
    Use(8, 4);
    Pen(PS_SOLID, 0);
    Line(0, 0, 7, 3);
    std::string zero = Art();
    tv_canvas_clear(canvas, kArtWhite);
    Pen(PS_SOLID, 1);
    Line(0, 0, 7, 3);
    EXPECT_EQ(Art(), zero);
    EXPECT_EQ(CanvasCount(canvas, kArtBlack), 7);
}

TEST_F(CanvasTest, WideHorizontalLineOfOddWidthIsCentred)
{
    Use(8, 5);
    Pen(PS_SOLID, 3);
    Line(1, 2, 6, 2);
    EXPECT_EQ(Art(), "........\n"
                     ".#####..\n"
                     ".#####..\n"
                     ".#####..\n"
                     "........\n");
}

TEST_F(CanvasTest, WideLineOfEvenWidthPutsTheOddPixelBeforeTheCentre)
{
    Use(8, 5);
    Pen(PS_SOLID, 2);
    Line(1, 2, 6, 2);
    EXPECT_EQ(Art(), "........\n"
                     ".#####..\n"
                     ".#####..\n"
                     "........\n"
                     "........\n");
}

TEST_F(CanvasTest, WideVerticalLine)
{
    Use(6, 6);
    Pen(PS_SOLID, 2);
    Line(3, 1, 3, 5);
    EXPECT_EQ(Art(), "......\n"
                     "..##..\n"
                     "..##..\n"
                     "..##..\n"
                     "..##..\n"
                     "......\n");
}

TEST_F(CanvasTest, WideDiagonalLineKeepsItsWidthSquareToTheLine)
{
    // Width 2 at 45 degrees: runs of round(2 * sqrt 2) = 3 pixels in each column.
    Use(7, 7);
    Pen(PS_SOLID, 2);
    Line(1, 1, 5, 5);
    EXPECT_EQ(Art(), ".#.....\n"
                     ".##....\n"
                     ".###...\n"
                     "..###..\n"
                     "...##..\n"
                     "....#..\n"
                     ".......\n");
}

TEST_F(CanvasTest, DottedPenDrawsThreeOnThreeOff)
{
    Use(15, 1);
    Pen(PS_DOT, 1);
    Line(0, 0, 14, 0);
    EXPECT_EQ(Art(), "###...###...##.\n");
}

TEST_F(CanvasTest, DashedPenDrawsEighteenOnSixOff)
{
    Use(30, 1);
    Pen(PS_DASH, 0);
    Line(0, 0, 30, 0);
    EXPECT_EQ(Art(), "##################......######\n");
}

TEST_F(CanvasTest, DashDotAndDashDotDotPatterns)
{
    Use(36, 2);
    Pen(PS_DASHDOT, 1);
    Line(0, 0, 36, 0);
    Pen(PS_DASHDOTDOT, 1);
    Line(0, 1, 36, 1);
    EXPECT_EQ(Art(), "#########......###......#########...\n"
                     "#########...###...###...#########...\n");
}

TEST_F(CanvasTest, WideStyledPenDrawsSolid)
{
    Use(12, 3);
    Pen(PS_DOT, 3);
    Line(0, 1, 12, 1);
    EXPECT_EQ(CanvasCount(canvas, kArtBlack), 36);
}

TEST_F(CanvasTest, NullPenDrawsNothing)
{
    Pen(PS_NULL, 1);
    Line(0, 0, 15, 11);
    EXPECT_TRUE(Rectangle(dc, 1, 1, 8, 8));
    Pen(PS_NULL, 5);
    Line(0, 5, 15, 5);
    EXPECT_EQ(CanvasCount(canvas, kArtBlack), 0);
}

TEST_F(CanvasTest, LineIsClippedToTheClipRectangle)
{
    Use(8, 3);
    IntersectClipRect(dc, 2, 0, 5, 3);
    Line(0, 1, 8, 1);
    EXPECT_EQ(Art(), "........\n"
                     "..###...\n"
                     "........\n");
}

TEST_F(CanvasTest, WideLineIsClippedAcrossItsRuns)
{
    Use(6, 6);
    IntersectClipRect(dc, 0, 2, 6, 6);
    Pen(PS_SOLID, 3);
    Line(0, 2, 6, 2);
    EXPECT_EQ(Art(), "......\n"
                     "......\n"
                     "######\n"
                     "######\n"
                     "......\n"
                     "......\n");
}

TEST_F(CanvasTest, FarAwayEndPointsAreLimitedAndOnlyTheVisiblePartIsWalked)
{
    Use(8, 3);
    Line(-2000000000, 1, 2000000000, 1);
    EXPECT_EQ(Art(), "........\n"
                     "########\n"
                     "........\n");
    Use(6, 6);
    Line(-100000, -100000, 100000, 100000);
    EXPECT_EQ(Art(), "#.....\n"
                     ".#....\n"
                     "..#...\n"
                     "...#..\n"
                     "....#.\n"
                     ".....#\n");
    EXPECT_EQ(dc->state.position.x, 100000);
    MoveTo(dc, INT_MIN, INT_MIN);
    EXPECT_EQ(dc->state.position.x, -kCanvasCoordinateLimit);
    EXPECT_EQ(dc->state.position.y, -kCanvasCoordinateLimit);
}

TEST_F(CanvasTest, LineEntirelyOutsideDrawsNothing)
{
    Line(-10, -3, 30, -3);
    Line(20, 0, 40, 11);
    Pen(PS_SOLID, 4);
    Line(-5, -8, 20, -8);
    EXPECT_EQ(CanvasCount(canvas, kArtBlack), 0);
}

// ---- Rectangles ----

TEST_F(CanvasTest, RectangleOutlineExcludesRightAndBottomEdges)
{
    Use(8, 6);
    EXPECT_TRUE(Rectangle(dc, 1, 1, 6, 5));
    EXPECT_EQ(Art(), "........\n"
                     ".#####..\n"
                     ".#...#..\n"
                     ".#...#..\n"
                     ".#####..\n"
                     "........\n");
}

TEST_F(CanvasTest, RectangleWithReversedCornersIsPutInOrder)
{
    Use(8, 6);
    Rectangle(dc, 1, 1, 6, 5);
    std::string ordered = Art();
    tv_canvas_clear(canvas, kArtWhite);
    Rectangle(dc, 6, 5, 1, 1);
    EXPECT_EQ(Art(), ordered);
}

TEST_F(CanvasTest, RectangleOfOnePixelAndOfOneColumn)
{
    Use(5, 5);
    Rectangle(dc, 1, 1, 2, 2);
    Rectangle(dc, 3, 0, 4, 4);
    EXPECT_EQ(Art(), "...#.\n"
                     ".#.#.\n"
                     "...#.\n"
                     "...#.\n"
                     ".....\n");
}

TEST_F(CanvasTest, EmptyRectangleDrawsNothing)
{
    Rectangle(dc, 3, 3, 3, 9);
    Rectangle(dc, 2, 4, 9, 4);
    EXPECT_EQ(CanvasCount(canvas, kArtBlack), 0);
}

TEST_F(CanvasTest, RectangleLeavesItsInsideAlone)
{
    Use(6, 5);
    FillSolidRect(dc, 0, 0, 6, 5, kArtGreen);
    Pen(PS_SOLID, 1, kArtRed);
    Rectangle(dc, 0, 0, 6, 5);
    EXPECT_EQ(Art(), "rrrrrr\n"
                     "rggggr\n"
                     "rggggr\n"
                     "rggggr\n"
                     "rrrrrr\n");
}

TEST_F(CanvasTest, WideRectangleBandsAreCentredOnTheOutline)
{
    Use(12, 11);
    Pen(PS_SOLID, 3);
    Rectangle(dc, 2, 2, 10, 9);
    EXPECT_EQ(Art(), "............\n"
                     ".##########.\n"
                     ".##########.\n"
                     ".##########.\n"
                     ".###....###.\n"
                     ".###....###.\n"
                     ".###....###.\n"
                     ".##########.\n"
                     ".##########.\n"
                     ".##########.\n"
                     "............\n");
}

TEST_F(CanvasTest, InsideFramePenKeepsTheBandsInsideTheRectangle)
{
    Use(9, 8);
    Pen(PS_INSIDEFRAME, 2);
    Rectangle(dc, 1, 1, 8, 7);
    EXPECT_EQ(Art(), ".........\n"
                     ".#######.\n"
                     ".#######.\n"
                     ".##...##.\n"
                     ".##...##.\n"
                     ".#######.\n"
                     ".#######.\n"
                     ".........\n");
}

TEST_F(CanvasTest, InsideFramePenWiderThanTheRectangleFillsIt)
{
    Use(6, 6);
    Pen(PS_INSIDEFRAME, 5);
    Rectangle(dc, 1, 1, 4, 5);
    EXPECT_EQ(Art(), "......\n"
                     ".###..\n"
                     ".###..\n"
                     ".###..\n"
                     ".###..\n"
                     "......\n");
}

TEST_F(CanvasTest, DottedRectangleRunsItsPatternOnAroundTheCorners)
{
    Use(6, 4);
    Pen(PS_DOT, 1);
    Rectangle(dc, 0, 0, 6, 4);
    EXPECT_EQ(Art(), "###...\n"
                     ".....#\n"
                     "#....#\n"
                     "##...#\n");
}

TEST_F(CanvasTest, RectangleIsClipped)
{
    Use(6, 5);
    IntersectClipRect(dc, 0, 0, 4, 3);
    Rectangle(dc, 1, 1, 6, 5);
    EXPECT_EQ(Art(), "......\n"
                     ".###..\n"
                     ".#....\n"
                     "......\n"
                     "......\n");
}

// ---- Pixels and fills ----

TEST_F(CanvasTest, SetPixelAnswersTheColourAndGetPixelReadsIt)
{
    EXPECT_EQ(SetPixel(dc, 3, 4, 0xAB0000FFu), 0x0000FFu);
    EXPECT_EQ(GetPixel(dc, 3, 4), 0x0000FFu);
    EXPECT_EQ(tv_canvas_pixels(canvas)[4 * 16 + 3], 0xFF0000FFu);
    EXPECT_EQ(GetPixel(dc, 2, 4), 0xFFFFFFu);
}

TEST_F(CanvasTest, SetPixelOutsideTheClipWritesNothing)
{
    IntersectClipRect(dc, 2, 2, 5, 5);
    EXPECT_EQ(SetPixel(dc, 1, 2, 0), CLR_INVALID);
    EXPECT_EQ(SetPixel(dc, 5, 2, 0), CLR_INVALID);
    EXPECT_EQ(SetPixel(dc, -1, -1, 0), CLR_INVALID);
    EXPECT_EQ(SetPixel(dc, 16, 3, 0), CLR_INVALID);
    EXPECT_EQ(GetPixel(dc, 1, 2), CLR_INVALID);
    EXPECT_EQ(SetPixel(dc, 4, 4, 0), 0u);
    EXPECT_EQ(CanvasCount(canvas, kArtBlack), 1);
}

TEST_F(CanvasTest, FillSolidRectFillsWidthByHeightPixels)
{
    Use(6, 5);
    FillSolidRect(dc, 1, 1, 3, 2, kArtBlue);
    EXPECT_EQ(Art(), "......\n"
                     ".bbb..\n"
                     ".bbb..\n"
                     "......\n"
                     "......\n");
}

TEST_F(CanvasTest, FillSolidRectWithNegativeSizeExtendsLeftAndUp)
{
    Use(6, 5);
    FillSolidRect(dc, 4, 3, -2, -2, kArtRed);
    EXPECT_EQ(Art(), "......\n"
                     "..rr..\n"
                     "..rr..\n"
                     "......\n"
                     "......\n");
}

TEST_F(CanvasTest, FillSolidRectLeavesTheBackgroundColourAsItWas)
{
    SetBkColor(dc, kArtGreen);
    FillSolidRect(dc, 0, 0, 4, 4, kArtRed);
    EXPECT_EQ(dc->state.bkColour, kArtGreen);
}

TEST_F(CanvasTest, FillSolidRectIsClippedToTheCanvasAndTheClip)
{
    Use(5, 4);
    FillSolidRect(dc, -100, -100, 102, 102, kArtBlue);
    IntersectClipRect(dc, 3, 0, 5, 4);
    FillSolidRect(dc, INT_MIN, 3, INT_MAX, 1, kArtRed);
    FillSolidRect(dc, 0, 3, INT_MAX, 1, kArtRed);
    EXPECT_EQ(Art(), "bb...\n"
                     "bb...\n"
                     ".....\n"
                     "...rr\n");
}

TEST_F(CanvasTest, FillSolidRectOfARect)
{
    Use(5, 3);
    RECT r{3, 2, 1, 0};   // reversed corners are put in order
    FillSolidRect(dc, &r, kArtGreen);
    FillSolidRect(dc, nullptr, kArtRed);
    EXPECT_EQ(Art(), ".gg..\n"
                     ".gg..\n"
                     ".....\n");
}

// ---- Pens and the selection of objects ----

TEST_F(CanvasTest, CreatePenKeepsKnownStylesAndNonNegativeWidths)
{
    CanvasPen pen = CreatePen(PS_DASHDOT, 4, 0xFF123456u);
    EXPECT_EQ(pen.style, PS_DASHDOT);
    EXPECT_EQ(pen.width, 4);
    EXPECT_EQ(pen.colour, 0x123456u);
    EXPECT_EQ(CreatePen(99, -3, 0).style, PS_SOLID);
    EXPECT_EQ(CreatePen(-1, -3, 0).width, 0);
}

TEST_F(CanvasTest, SelectObjectAnswersThePenAndFontSelectedBefore)
{
    CanvasPen red = CreatePen(PS_SOLID, 2, kArtRed);
    CanvasPen former = SelectObject(dc, red);
    EXPECT_EQ(former.colour, 0u);
    EXPECT_EQ(former.width, 1);
    EXPECT_EQ(SelectObject(dc, former).colour, kArtRed);

    LOGFONT lf{};
    lf.lfHeight = 110;
    CanvasFont big = CreatePointFontIndirect(&lf, dc);
    CanvasFont formerFont = SelectObject(dc, big);
    EXPECT_EQ(formerFont.height, 12);
    EXPECT_EQ(SelectObject(dc, formerFont).height, 15);
    EXPECT_EQ(SelectObject(nullptr, red).colour, 0u);
}

TEST_F(CanvasTest, TextStateSettersAnswerTheFormerValues)
{
    EXPECT_EQ(SetTextColor(dc, kArtRed), 0u);
    EXPECT_EQ(SetTextColor(dc, kArtBlue), kArtRed);
    EXPECT_EQ(SetBkColor(dc, 0xFF00FF00u), 0xFFFFFFu);
    EXPECT_EQ(dc->state.bkColour, kArtGreen);
    EXPECT_EQ(SetBkMode(dc, TRANSPARENT), OPAQUE);
    EXPECT_EQ(SetBkMode(dc, 7), 0);
    EXPECT_EQ(dc->state.bkMode, TRANSPARENT);
    EXPECT_EQ(SetTextAlign(dc, TA_RIGHT | TA_BOTTOM), TA_LEFT | TA_TOP);
    EXPECT_EQ(SetTextAlign(dc, 0), TA_RIGHT | TA_BOTTOM);
    EXPECT_EQ(SetTextColor(nullptr, 0), CLR_INVALID);
}

// ---- Clipping ----

TEST_F(CanvasTest, ClipBoxIsTheClipWithinTheCanvas)
{
    RECT box{};
    EXPECT_EQ(GetClipBox(dc, &box), SIMPLEREGION);
    EXPECT_TRUE(SameRect(box, RECT{0, 0, 16, 12})) << ShowRect(box);
    RECT wide{-5, 4, 40, 9};
    EXPECT_EQ(SelectClipRect(dc, &wide), SIMPLEREGION);
    EXPECT_EQ(GetClipBox(dc, &box), SIMPLEREGION);
    EXPECT_TRUE(SameRect(box, RECT{0, 4, 16, 9})) << ShowRect(box);
    EXPECT_EQ(GetClipBox(dc, nullptr), RGN_ERROR);
}

TEST_F(CanvasTest, IntersectClipRectNarrowsAndSelectClipRectResets)
{
    EXPECT_EQ(IntersectClipRect(dc, 2, 3, 10, 8), SIMPLEREGION);
    EXPECT_EQ(IntersectClipRect(dc, 5, 0, 20, 6), SIMPLEREGION);
    RECT box{};
    GetClipBox(dc, &box);
    EXPECT_TRUE(SameRect(box, RECT{5, 3, 10, 6})) << ShowRect(box);
    EXPECT_EQ(SelectClipRect(dc, nullptr), SIMPLEREGION);
    GetClipBox(dc, &box);
    EXPECT_TRUE(SameRect(box, RECT{0, 0, 16, 12})) << ShowRect(box);
}

TEST_F(CanvasTest, AnEmptyClipStopsAllDrawing)
{
    EXPECT_EQ(IntersectClipRect(dc, 20, 20, 30, 30), NULLREGION);
    FillSolidRect(dc, 0, 0, 16, 12, kArtRed);
    Line(0, 0, 15, 11);
    Rectangle(dc, 0, 0, 16, 12);
    ExtTextOut(dc, 0, 0, ETO_OPAQUE, nullptr, "Ag", 2);
    EXPECT_EQ(CanvasCount(canvas, kArtWhite), 16 * 12);
}

TEST(CanvasRects, IntersectRectOfOverlappingRectangles)
{
    RECT a{0, 0, 10, 10}, b{5, -3, 20, 4}, out{};
    EXPECT_TRUE(IntersectRect(&out, &a, &b));
    EXPECT_TRUE(SameRect(out, RECT{5, 0, 10, 4})) << ShowRect(out);
}

TEST(CanvasRects, IntersectRectOfDisjointOrTouchingRectanglesIsEmpty)
{
    RECT a{0, 0, 10, 10}, touching{10, 0, 20, 10}, out{1, 2, 3, 4};
    EXPECT_FALSE(IntersectRect(&out, &a, &touching));
    EXPECT_TRUE(SameRect(out, RECT{0, 0, 0, 0})) << ShowRect(out);
    RECT reversed{8, 8, 2, 2};   // an unordered rectangle is empty
    out = RECT{1, 2, 3, 4};
    EXPECT_FALSE(IntersectRect(&out, &a, &reversed));
    EXPECT_TRUE(SameRect(out, RECT{0, 0, 0, 0})) << ShowRect(out);
    EXPECT_FALSE(IntersectRect(nullptr, &a, &a));
    EXPECT_FALSE(IntersectRect(&out, nullptr, &a));
}

// ---- Saved states ----

TEST_F(CanvasTest, RestoreDCBringsBackTheWholeState)
{
    MoveTo(dc, 3, 4);
    int32_t index = SaveDC(dc);
    EXPECT_EQ(index, 1);
    SelectObject(dc, CreatePen(PS_DOT, 3, kArtRed));
    LOGFONT lf{};
    lf.lfHeight = 110;
    SelectObject(dc, CreatePointFontIndirect(&lf, dc));
    SetTextColor(dc, kArtBlue);
    SetBkColor(dc, kArtGreen);
    SetBkMode(dc, TRANSPARENT);
    SetTextAlign(dc, TA_CENTER | TA_BASELINE);
    IntersectClipRect(dc, 1, 1, 2, 2);
    MoveTo(dc, 9, 9);
    ASSERT_TRUE(RestoreDC(dc, -1));
    EXPECT_EQ(dc->state.position.x, 3);
    EXPECT_EQ(dc->state.position.y, 4);
    EXPECT_EQ(dc->state.pen.style, PS_SOLID);
    EXPECT_EQ(dc->state.pen.width, 1);
    EXPECT_EQ(dc->state.pen.colour, 0u);
    EXPECT_EQ(dc->state.font.height, 12);
    EXPECT_EQ(dc->state.textColour, 0u);
    EXPECT_EQ(dc->state.bkColour, 0xFFFFFFu);
    EXPECT_EQ(dc->state.bkMode, OPAQUE);
    EXPECT_EQ(dc->state.textAlign, 0u);
    EXPECT_TRUE(SameRect(dc->state.clip, RECT{0, 0, 16, 12})) << ShowRect(dc->state.clip);
    EXPECT_TRUE(dc->saved.empty());
}

TEST_F(CanvasTest, RestoreDCByIndexDropsThatStateAndEveryLaterOne)
{
    SetTextColor(dc, 1);
    EXPECT_EQ(SaveDC(dc), 1);
    SetTextColor(dc, 2);
    EXPECT_EQ(SaveDC(dc), 2);
    SetTextColor(dc, 3);
    EXPECT_EQ(SaveDC(dc), 3);
    SetTextColor(dc, 4);
    ASSERT_TRUE(RestoreDC(dc, 2));
    EXPECT_EQ(dc->state.textColour, 2u);
    EXPECT_EQ(dc->saved.size(), 1u);
    ASSERT_TRUE(RestoreDC(dc, -1));
    EXPECT_EQ(dc->state.textColour, 1u);
}

TEST_F(CanvasTest, RestoreDCOfAStateNotSavedChangesNothing)
{
    SaveDC(dc);
    SetTextColor(dc, 7);
    EXPECT_FALSE(RestoreDC(dc, 2));
    EXPECT_FALSE(RestoreDC(dc, -2));
    EXPECT_FALSE(RestoreDC(dc, 0));
    EXPECT_FALSE(RestoreDC(nullptr, -1));
    EXPECT_EQ(dc->state.textColour, 7u);
    EXPECT_EQ(dc->saved.size(), 1u);
}

TEST_F(CanvasTest, SaveDCRefusesBeyondTheDeepestStack)
{
    for (int32_t i = 1; i <= kMaxSavedStates; ++i) ASSERT_EQ(SaveDC(dc), i);
    EXPECT_EQ(SaveDC(dc), 0);
    EXPECT_TRUE(RestoreDC(dc, 1));
    EXPECT_TRUE(dc->saved.empty());
}

TEST_F(CanvasTest, DrawingInsideASavedStateIsClippedAndTheClipReturnsAfterwards)
{
    Use(6, 3);
    SaveDC(dc);
    IntersectClipRect(dc, 0, 0, 3, 3);
    FillSolidRect(dc, 0, 0, 6, 1, kArtRed);
    RestoreDC(dc, -1);
    FillSolidRect(dc, 0, 2, 6, 1, kArtBlue);
    EXPECT_EQ(Art(), "rrr...\n"
                     "......\n"
                     "bbbbbb\n");
}

// ---- Copies between canvases ----

class CanvasBlitTest : public CanvasTest {
protected:
    void SetUp() override
    {
        CanvasTest::SetUp();
        source = tv_canvas_create(4, 3);
        ASSERT_NE(source, nullptr);
        for (int32_t y = 0; y < 3; ++y)
            for (int32_t x = 0; x < 4; ++x) tv_canvas_pixels(source)[y * 4 + x] = 0xFF000000u | Code(x, y);
        sourceDc = GetDC(source);
    }
    void TearDown() override
    {
        ReleaseDC(source, sourceDc);
        tv_canvas_destroy(source);
        CanvasTest::TearDown();
    }
    static COLORREF Code(int32_t x, int32_t y)
    {
        return RgbColour(static_cast<uint8_t>(10 + x), static_cast<uint8_t>(20 + y), 99);
    }

    TvCanvas* source = nullptr;
    DrawContext* sourceDc = nullptr;
};

TEST_F(CanvasBlitTest, BitBltCopiesABlock)
{
    Use(6, 5);
    ASSERT_TRUE(BitBlt(dc, 1, 1, 4, 3, sourceDc, 0, 0, SRCCOPY));
    for (int32_t y = 0; y < 5; ++y) {
        for (int32_t x = 0; x < 6; ++x) {
            bool inside = x >= 1 && x < 5 && y >= 1 && y < 4;
            EXPECT_EQ(CanvasColourAt(canvas, x, y), inside ? Code(x - 1, y - 1) : kArtWhite) << x << "," << y;
        }
    }
}

TEST_F(CanvasBlitTest, BitBltIsClippedAtTheDestination)
{
    Use(6, 5);
    IntersectClipRect(dc, 0, 0, 3, 5);
    BitBlt(dc, 1, 1, 4, 3, sourceDc, 0, 0, SRCCOPY);
    EXPECT_EQ(CanvasColourAt(canvas, 2, 1), Code(1, 0));
    EXPECT_EQ(CanvasColourAt(canvas, 3, 1), kArtWhite);
    EXPECT_EQ(CanvasCount(canvas, kArtWhite), 30 - 6);
    BitBlt(dc, -2, -1, 4, 3, sourceDc, 0, 0, SRCCOPY);
    EXPECT_EQ(CanvasColourAt(canvas, 0, 0), Code(2, 1));
}

TEST_F(CanvasBlitTest, SourcePixelsOutsideTheSourceLeaveTheDestinationAlone)
{
    Use(6, 5);
    BitBlt(dc, 0, 0, 4, 3, sourceDc, 2, 1, SRCCOPY);
    EXPECT_EQ(CanvasColourAt(canvas, 0, 0), Code(2, 1));
    EXPECT_EQ(CanvasColourAt(canvas, 1, 1), Code(3, 2));
    EXPECT_EQ(CanvasColourAt(canvas, 2, 0), kArtWhite);
    EXPECT_EQ(CanvasColourAt(canvas, 0, 2), kArtWhite);
    EXPECT_EQ(CanvasCount(canvas, kArtWhite), 30 - 4);
}

TEST_F(CanvasBlitTest, BitBltWithinOneCanvasReadsTheSourceBeforeWriting)
{
    ASSERT_TRUE(BitBlt(sourceDc, 1, 0, 3, 3, sourceDc, 0, 0, SRCCOPY));
    for (int32_t y = 0; y < 3; ++y) {
        EXPECT_EQ(CanvasColourAt(source, 0, y), Code(0, y));
        EXPECT_EQ(CanvasColourAt(source, 1, y), Code(0, y));
        EXPECT_EQ(CanvasColourAt(source, 2, y), Code(1, y));
        EXPECT_EQ(CanvasColourAt(source, 3, y), Code(2, y));
    }
}

TEST_F(CanvasBlitTest, OnlyTheSourceCopyIsServed)
{
    EXPECT_FALSE(BitBlt(dc, 0, 0, 4, 3, sourceDc, 0, 0, 0x00EE0086u));
    EXPECT_FALSE(BitBlt(dc, 0, 0, 4, 3, nullptr, 0, 0, SRCCOPY));
    EXPECT_FALSE(BitBlt(nullptr, 0, 0, 4, 3, sourceDc, 0, 0, SRCCOPY));
    EXPECT_EQ(CanvasCount(canvas, kArtWhite), 16 * 12);
}

TEST_F(CanvasBlitTest, StretchBltDoublesEachPixel)
{
    Use(8, 6);
    ASSERT_TRUE(StretchBlt(dc, 0, 0, 8, 6, sourceDc, 0, 0, 4, 3, SRCCOPY));
    for (int32_t y = 0; y < 6; ++y)
        for (int32_t x = 0; x < 8; ++x) EXPECT_EQ(CanvasColourAt(canvas, x, y), Code(x / 2, y / 2)) << x << "," << y;
}

TEST_F(CanvasBlitTest, StretchBltHalvesBySamplingPixelCentres)
{
    Use(2, 1);
    StretchBlt(dc, 0, 0, 2, 1, sourceDc, 0, 0, 4, 3, SRCCOPY);
    // Destination pixel i samples source floor((2i + 1) * 4 / 4) in x and floor(3 / 2) in y.
    EXPECT_EQ(CanvasColourAt(canvas, 0, 0), Code(1, 1));
    EXPECT_EQ(CanvasColourAt(canvas, 1, 0), Code(3, 1));
}

TEST_F(CanvasBlitTest, StretchBltWithOppositeSignsMirrors)
{
    Use(4, 3);
    ASSERT_TRUE(StretchBlt(dc, 3, 0, -4, 3, sourceDc, 0, 0, 4, 3, SRCCOPY));
    for (int32_t y = 0; y < 3; ++y)
        for (int32_t x = 0; x < 4; ++x) EXPECT_EQ(CanvasColourAt(canvas, x, y), Code(3 - x, y)) << x << "," << y;
    tv_canvas_clear(canvas, kArtWhite);
    ASSERT_TRUE(StretchBlt(dc, 0, 0, 4, 3, sourceDc, 0, 2, 4, -3, SRCCOPY));
    for (int32_t y = 0; y < 3; ++y)
        for (int32_t x = 0; x < 4; ++x) EXPECT_EQ(CanvasColourAt(canvas, x, y), Code(x, 2 - y)) << x << "," << y;
}

TEST_F(CanvasBlitTest, StretchBltOfNoPixelsChangesNothing)
{
    EXPECT_TRUE(StretchBlt(dc, 0, 0, 0, 3, sourceDc, 0, 0, 4, 3, SRCCOPY));
    EXPECT_TRUE(StretchBlt(dc, 0, 0, 4, 3, sourceDc, 0, 0, 4, 0, SRCCOPY));
    EXPECT_EQ(CanvasCount(canvas, kArtWhite), 16 * 12);
}

TEST_F(CanvasBlitTest, StretchBltOfAHugeAreaWalksOnlyTheVisiblePixels)
{
    // Every visible pixel lies near the middle of a 2000000 pixel wide area, over source
    // pixel (2, 1) of the 4 by 3 source.
    ASSERT_TRUE(StretchBlt(dc, -1000000, -1000000, 2000000, 2000000, sourceDc, 0, 0, 4, 3, SRCCOPY));
    EXPECT_EQ(CanvasCount(canvas, Code(2, 1)), 16 * 12);
}

TEST_F(CanvasBlitTest, ExtremeSizesAreLimitedLikeCoordinates)
{
    // From 2^27 leftwards over at most 2^27 pixels, and from -2^27 down to just above row 0.
    EXPECT_TRUE(StretchBlt(dc, INT_MAX, INT_MIN, INT_MIN, INT_MAX, sourceDc, 0, 0, 4, 3, SRCCOPY));
    EXPECT_EQ(CanvasCount(canvas, kArtWhite), 16 * 12);
}

} // namespace
