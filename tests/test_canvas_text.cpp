// Text on the software canvas: fonts from point sizes, measuring, placing and drawing.
#include <gtest/gtest.h>

#include <climits>
#include <cstring>
#include <string>

#include "canvas_art.h"
#include "platform/canvas.h"

namespace {

using namespace canvas_check;

using CanvasTextTest = CanvasFixture;

SIZE Extent(const DrawContext* dc, const char* text)
{
    return GetTextExtent(dc, text, static_cast<int32_t>(std::strlen(text)));
}

bool Draw(DrawContext* dc, int32_t x, int32_t y, const char* text, uint32_t options = 0, const RECT* rect = nullptr)
{
    return ExtTextOut(dc, x, y, options, rect, text, static_cast<int32_t>(std::strlen(text)));
}

// ---- Fonts and measures ----

TEST_F(CanvasTextTest, ExtentsOfAgAndAValueTextAtTheDefaultSizes)
{
    struct Case {
        int32_t tenths;
        const char* text;
        int32_t cx, cy;
    };
    const Case cases[] = {{70, "Ag", 12, 9},  {70, "12.5 nm", 36, 9},  {90, "Ag", 14, 12},
                          {90, "12.5 nm", 42, 12}, {110, "Ag", 15, 15}, {110, "12.5 nm", 47, 15}};
    for (const Case& c : cases) {
        SCOPED_TRACE(std::to_string(c.tenths) + " " + c.text);
        Font(c.tenths);
        SIZE size = Extent(dc, c.text);
        EXPECT_EQ(size.cx, c.cx);
        EXPECT_EQ(size.cy, c.cy);
    }
}

TEST_F(CanvasTextTest, PointHeightsBecomePixelsAtNinetySixPerInchRounded)
{
    struct Case {
        int32_t tenths;
        int32_t pixels;
    };
    const Case cases[] = {{70, 9},   {90, 12},  {110, 15},  {75, 10},      {80, 11},     {100, 13},
                          {120, 16}, {180, 24}, {-90, 12},  {5, 1},        {INT_MAX, 2048}, {INT_MIN, 2048}};
    for (const Case& c : cases) {
        LOGFONT lf{};
        lf.lfHeight = c.tenths;
        EXPECT_EQ(CreatePointFontIndirect(&lf, dc).height, c.pixels) << c.tenths;
    }
}

TEST_F(CanvasTextTest, HeightZeroOrTooSmallToRoundToAPixelGivesTheNinePointDefault)
{
    LOGFONT lf{};
    EXPECT_EQ(CreatePointFontIndirect(&lf, dc).height, 12);
    lf.lfHeight = 3;   // 0.4 pixels
    EXPECT_EQ(CreatePointFontIndirect(&lf, dc).height, 12);
    EXPECT_EQ(CreatePointFontIndirect(nullptr, dc).height, 12);
}

TEST_F(CanvasTextTest, TheFontKeepsWeightAndStyleBytes)
{
    LOGFONT lf{};
    lf.lfHeight = 90;
    lf.lfWeight = 700;
    lf.lfItalic = 1;
    lf.lfUnderline = 1;
    lf.lfStrikeOut = 1;
    CanvasFont font = CreatePointFontIndirect(&lf, dc);
    EXPECT_EQ(font.weight, 700);
    EXPECT_TRUE(font.italic);
    EXPECT_TRUE(font.underline);
    EXPECT_TRUE(font.strikeOut);
    lf.lfWeight = 0;   // "any weight" is normal
    EXPECT_EQ(CreatePointFontIndirect(&lf, dc).weight, FW_NORMAL);
}

TEST_F(CanvasTextTest, EmptyTextHasTheFontHeightAndNoWidth)
{
    Font(110);
    SIZE size = GetTextExtent(dc, "", 0);
    EXPECT_EQ(size.cx, 0);
    EXPECT_EQ(size.cy, 15);
    size = GetTextExtent(dc, nullptr, 0);
    EXPECT_EQ(size.cx, 0);
    EXPECT_EQ(size.cy, 15);
}

TEST_F(CanvasTextTest, BadTextArgumentsMeasureNothing)
{
    SIZE size = GetTextExtent(dc, nullptr, 3);
    EXPECT_EQ(size.cx, 0);
    EXPECT_EQ(size.cy, 0);
    size = GetTextExtent(dc, "Ag", -1);
    EXPECT_EQ(size.cx, 0);
    EXPECT_EQ(size.cy, 0);
    size = GetTextExtent(nullptr, "Ag", 2);
    EXPECT_EQ(size.cx, 0);
    EXPECT_EQ(size.cy, 0);
}

TEST_F(CanvasTextTest, TheWidthOfATextIsTheSumOfTheWidthsOfItsCharacters)
{
    const char* text = "Tip bias -1.25 V, I = 0.5 nA (set point) \xb0 \xb5m ~{}";
    for (int32_t tenths : {70, 90, 110, 135}) {
        Font(tenths);
        int32_t sum = 0;
        for (size_t i = 0; i < std::strlen(text); ++i) sum += GetTextExtent(dc, text + i, 1).cx;
        EXPECT_EQ(Extent(dc, text).cx, sum) << tenths;
    }
}

TEST_F(CanvasTextTest, BoldAddsOnePixelToEveryCharacter)
{
    Font(90, FW_BOLD);
    EXPECT_EQ(Extent(dc, "Ag").cx, 16);
    EXPECT_EQ(Extent(dc, "12.5 nm").cx, 49);
    Font(90, 699);
    EXPECT_EQ(Extent(dc, "Ag").cx, 14);
}

TEST_F(CanvasTextTest, DigitsShareOneWidthAtEverySize)
{
    for (int32_t tenths : {70, 90, 110, 100, 180}) {
        Font(tenths);
        int32_t zero = Extent(dc, "0").cx;
        for (char digit = '1'; digit <= '9'; ++digit)
            EXPECT_EQ(GetTextExtent(dc, &digit, 1).cx, zero) << tenths << digit;
    }
}

TEST_F(CanvasTextTest, TextMetricsOfTheDefaultSizes)
{
    struct Case {
        int32_t tenths, height, ascent, descent, average, widest;
    };
    const Case cases[] = {{70, 9, 7, 2, 6, 6}, {90, 12, 9, 3, 7, 8}, {110, 15, 12, 3, 8, 10}};
    for (const Case& c : cases) {
        Font(c.tenths);
        TEXTMETRIC tm{};
        ASSERT_TRUE(GetTextMetrics(dc, &tm));
        EXPECT_EQ(tm.tmHeight, c.height) << c.tenths;
        EXPECT_EQ(tm.tmAscent, c.ascent) << c.tenths;
        EXPECT_EQ(tm.tmDescent, c.descent) << c.tenths;
        EXPECT_EQ(tm.tmAveCharWidth, c.average) << c.tenths;
        EXPECT_EQ(tm.tmMaxCharWidth, c.widest) << c.tenths;
    }
    EXPECT_FALSE(GetTextMetrics(dc, nullptr));
}

TEST_F(CanvasTextTest, SizesBetweenTheMastersScaleFromTheLargestNotTaller)
{
    Font(100);   // 13 pixels, from the 12 pixel master
    EXPECT_EQ(Extent(dc, "Ag").cx, 16);
    EXPECT_EQ(Extent(dc, "Ag").cy, 13);
    TEXTMETRIC tm{};
    GetTextMetrics(dc, &tm);
    EXPECT_EQ(tm.tmAscent, 10);
    Font(60);    // 8 pixels, below the smallest master
    EXPECT_EQ(Extent(dc, "Ag").cx, 10);
    EXPECT_EQ(Extent(dc, "Ag").cy, 8);
}

// ---- Glyphs ----

TEST_F(CanvasTextTest, CapitalHAtSevenPoints)
{
    Use(6, 9);
    Font(70);
    SetBkMode(dc, TRANSPARENT);
    ASSERT_TRUE(Draw(dc, 0, 0, "H"));
    EXPECT_EQ(Art(), "#...#.\n"
                     "#...#.\n"
                     "#...#.\n"
                     "#####.\n"
                     "#...#.\n"
                     "#...#.\n"
                     "#...#.\n"
                     "......\n"
                     "......\n");
}

TEST_F(CanvasTextTest, SmallGWithItsDescenderAtNinePoints)
{
    Use(7, 12);
    Font(90);
    SetBkMode(dc, TRANSPARENT);
    ASSERT_TRUE(Draw(dc, 0, 0, "g"));
    EXPECT_EQ(Art(), ".......\n"
                     ".......\n"
                     ".......\n"
                     ".###.#.\n"
                     "#...##.\n"
                     "#....#.\n"
                     "#....#.\n"
                     "#...##.\n"
                     ".###.#.\n"
                     ".....#.\n"
                     ".####..\n"
                     ".......\n");
}

TEST_F(CanvasTextTest, CapitalAAtElevenPoints)
{
    Use(8, 15);
    Font(110);
    SetBkMode(dc, TRANSPARENT);
    ASSERT_TRUE(Draw(dc, 0, 0, "A"));
    EXPECT_EQ(Art(), "........\n"
                     "........\n"
                     "...#....\n"
                     "..#.#...\n"
                     "..#.#...\n"
                     ".#...#..\n"
                     ".#...#..\n"
                     "#.....#.\n"
                     "#######.\n"
                     "#.....#.\n"
                     "#.....#.\n"
                     "#.....#.\n"
                     "........\n"
                     "........\n"
                     "........\n");
}

TEST_F(CanvasTextTest, BoldDrawsEveryInkPixelAgainOneColumnToTheRight)
{
    Use(5, 9);
    Font(70, FW_BOLD);
    SetBkMode(dc, TRANSPARENT);
    ASSERT_TRUE(Draw(dc, 0, 0, "I"));
    EXPECT_EQ(Art(), "####.\n"
                     ".##..\n"
                     ".##..\n"
                     ".##..\n"
                     ".##..\n"
                     ".##..\n"
                     "####.\n"
                     ".....\n"
                     ".....\n");
}

TEST_F(CanvasTextTest, BytesWithoutAGlyphAreDrawnAsAHollowBoxOfDigitWidth)
{
    Use(7, 12);
    Font(90);
    EXPECT_EQ(Extent(dc, "\x01").cx, Extent(dc, "0").cx);
    for (const char* text : {"\x7f", "\x80", "\xa0", "\xff", "\t"}) EXPECT_EQ(Extent(dc, text).cx, 7);
    SetBkMode(dc, TRANSPARENT);
    ASSERT_TRUE(Draw(dc, 0, 0, "\x01"));
    EXPECT_EQ(Art(), ".......\n"
                     "######.\n"
                     "#....#.\n"
                     "#....#.\n"
                     "#....#.\n"
                     "#....#.\n"
                     "#....#.\n"
                     "#....#.\n"
                     "######.\n"
                     ".......\n"
                     ".......\n"
                     ".......\n");
}

TEST_F(CanvasTextTest, DegreeAndMicroSignsHaveGlyphsOfTheirOwn)
{
    Use(8, 12);
    Font(90);
    SetBkMode(dc, TRANSPARENT);
    EXPECT_EQ(Extent(dc, "\xb0").cx, 5);
    ASSERT_TRUE(Draw(dc, 0, 0, "\xb0"));
    EXPECT_EQ(CanvasArt(canvas, 0, 0, 5, 6), ".....\n"
                                             ".##..\n"
                                             "#..#.\n"
                                             "#..#.\n"
                                             ".##..\n"
                                             ".....\n");
    tv_canvas_clear(canvas, kArtWhite);
    EXPECT_EQ(Extent(dc, "\xb5").cx, 7);
    ASSERT_TRUE(Draw(dc, 0, 0, "\xb5"));
    // The tail of the micro sign hangs below the baseline on the left.
    EXPECT_EQ(CanvasArt(canvas, 0, 8, 7, 11), "####.#.\n"
                                              "#......\n"
                                              "#......\n");
}

TEST_F(CanvasTextTest, UnderlineAndStrikeOutRunAcrossTheWholeAdvance)
{
    Use(10, 12);
    LOGFONT lf{};
    lf.lfHeight = 90;
    lf.lfUnderline = 1;
    SelectObject(dc, CreatePointFontIndirect(&lf, dc));
    SetBkMode(dc, TRANSPARENT);
    ASSERT_TRUE(Draw(dc, 0, 0, "ii"));
    EXPECT_EQ(CanvasArt(canvas, 0, 9, 10, 10), "########..\n");   // the row under the baseline
    tv_canvas_clear(canvas, kArtWhite);
    lf.lfUnderline = 0;
    lf.lfStrikeOut = 1;
    SelectObject(dc, CreatePointFontIndirect(&lf, dc));
    ASSERT_TRUE(Draw(dc, 0, 0, "ii"));
    EXPECT_EQ(CanvasArt(canvas, 0, 5, 10, 6), "########..\n");    // half an x-height up
    EXPECT_EQ(CanvasArt(canvas, 0, 9, 10, 10), "..........\n");
}

TEST_F(CanvasTextTest, DoubleSizeShowsEveryPixelOfTheNinePointTextTwice)
{
    Font(90);
    const int32_t width = Extent(dc, "Hg5").cx;
    ASSERT_EQ(width, 21);
    Use(2 * width, 24);
    Font(90);
    SetBkMode(dc, TRANSPARENT);
    Draw(dc, 0, 0, "Hg5");
    std::string single = CanvasArt(canvas, 0, 0, width, 12);
    tv_canvas_clear(canvas, kArtWhite);
    Font(180);   // 24 pixels
    EXPECT_EQ(Extent(dc, "Hg5").cx, 2 * width);
    Draw(dc, 0, 0, "Hg5");
    std::string doubled;
    for (int32_t y = 0; y < 24; ++y) {
        for (int32_t x = 0; x < 2 * width; ++x) doubled += single[static_cast<size_t>((y / 2) * (width + 1) + x / 2)];
        doubled += '\n';
    }
    EXPECT_EQ(Art(), doubled);
}

// ---- Placing text ----

TEST_F(CanvasTextTest, EveryAlignmentPlacesTheCellAroundTheReferencePoint)
{
    // "Ag" at 9 points is 14 by 12 pixels with 9 rows above the baseline.
    struct Case {
        uint32_t align;
        RECT cell;
    };
    const Case cases[] = {
        {TA_LEFT | TA_TOP, {60, 30, 74, 42}},        {TA_RIGHT | TA_TOP, {46, 30, 60, 42}},
        {TA_CENTER | TA_TOP, {53, 30, 67, 42}},      {TA_LEFT | TA_BOTTOM, {60, 18, 74, 30}},
        {TA_RIGHT | TA_BOTTOM, {46, 18, 60, 30}},    {TA_CENTER | TA_BOTTOM, {53, 18, 67, 30}},
        {TA_LEFT | TA_BASELINE, {60, 21, 74, 33}},   {TA_RIGHT | TA_BASELINE, {46, 21, 60, 33}},
        {TA_CENTER | TA_BASELINE, {53, 21, 67, 33}},
    };
    Use(140, 60);
    Font(90);
    SetBkColor(dc, kArtBlue);
    int64_t ink = -1;
    for (const Case& c : cases) {
        SCOPED_TRACE(c.align);
        tv_canvas_clear(canvas, kArtWhite);
        SetTextAlign(dc, c.align);
        ASSERT_TRUE(Draw(dc, 60, 30, "Ag"));
        RECT box = CanvasInkBox(canvas, kArtWhite);
        EXPECT_TRUE(SameRect(box, c.cell)) << ShowRect(box);
        int64_t area = int64_t{c.cell.right - c.cell.left} * (c.cell.bottom - c.cell.top);
        EXPECT_EQ(CanvasCount(canvas, kArtBlue) + CanvasCount(canvas, kArtBlack), area);
        if (ink < 0) ink = CanvasCount(canvas, kArtBlack);
        EXPECT_EQ(CanvasCount(canvas, kArtBlack), ink);
    }
    EXPECT_GT(ink, 20);
}

TEST_F(CanvasTextTest, AnUpwardEscapementOnlyComesFromNinetyDegrees)
{
    LOGFONT lf{};
    lf.lfHeight = 90;
    lf.lfEscapement = 900;
    EXPECT_EQ(CreatePointFontIndirect(&lf, dc).escapement, kEscapementUp);
    lf.lfEscapement = 450;
    EXPECT_EQ(CreatePointFontIndirect(&lf, dc).escapement, 0);
}

TEST_F(CanvasTextTest, TextTurnedUpwardIsTheLevelTextTurnedAQuarterAnticlockwise)
{
    // "Ag" at 9 points: 14 by 12. Level at (0, 0) from the top left; turned with its start at
    // the bottom left of a 12 by 14 canvas, text column c and row r land at (r, 13 - c).
    Use(14, 12);
    Font(90);
    SetBkMode(dc, TRANSPARENT);
    ASSERT_TRUE(Draw(dc, 0, 0, "Ag"));
    std::string level = Art();
    TvCanvas* turned = tv_canvas_create(12, 14);
    ASSERT_NE(turned, nullptr);
    tv_canvas_clear(turned, kArtWhite);
    DrawContext* up = GetDC(turned);
    ASSERT_NE(up, nullptr);
    LOGFONT lf{};
    lf.lfHeight = 90;
    lf.lfEscapement = 900;
    SelectObject(up, CreatePointFontIndirect(&lf, up));
    SetBkMode(up, TRANSPARENT);
    ASSERT_TRUE(ExtTextOut(up, 0, 14, 0, nullptr, "Ag", 2));
    int64_t inked = 0;
    for (int32_t c = 0; c < 14; ++c)
        for (int32_t r = 0; r < 12; ++r) {
            const bool ink = level[static_cast<size_t>(r * 15 + c)] == '#';
            inked += ink;
            EXPECT_EQ(CanvasColourAt(turned, r, 13 - c), ink ? kArtBlack : kArtWhite) << c << "," << r;
        }
    EXPECT_GT(inked, 20);
    EXPECT_EQ(ReleaseDC(turned, up), 1);
    tv_canvas_destroy(turned);
}

TEST_F(CanvasTextTest, TextTurnedUpwardCentresAlongItsBaselineAndMovesThePositionUp)
{
    // Centred and top aligned at (20, 40): the 12-pixel cell stands right of x 20, the
    // 14-pixel run centred on y 40.
    Use(60, 80);
    LOGFONT lf{};
    lf.lfHeight = 90;
    lf.lfEscapement = 900;
    SelectObject(dc, CreatePointFontIndirect(&lf, dc));
    SetBkColor(dc, kArtBlue);
    SetTextAlign(dc, TA_CENTER | TA_TOP);
    ASSERT_TRUE(Draw(dc, 20, 40, "Ag"));
    EXPECT_TRUE(SameRect(CanvasInkBox(canvas, kArtWhite), RECT{20, 33, 32, 47})) << ShowRect(CanvasInkBox(canvas, kArtWhite));
    tv_canvas_clear(canvas, kArtWhite);
    SetTextAlign(dc, TA_LEFT | TA_TOP | TA_UPDATECP);
    MoveTo(dc, 5, 60);
    ASSERT_TRUE(Draw(dc, 0, 0, "Ag"));
    const POINT at = MoveTo(dc, 0, 0);
    EXPECT_EQ(at.x, 5);
    EXPECT_EQ(at.y, 46);
}

TEST_F(CanvasTextTest, CentringATextOfOddWidthRoundsItsLeftEdgeUp)
{
    Use(100, 40);
    Font(90);
    SetBkColor(dc, kArtBlue);
    SetTextAlign(dc, TA_CENTER | TA_TOP);
    ASSERT_EQ(Extent(dc, "A").cx, 7);
    Draw(dc, 60, 10, "A");
    RECT box = CanvasInkBox(canvas, kArtWhite);
    EXPECT_TRUE(SameRect(box, RECT{57, 10, 64, 22})) << ShowRect(box);
}

TEST_F(CanvasTextTest, BaselineAlignmentStandsCapitalsOnTheRowAboveTheReference)
{
    Use(40, 40);
    Font(90);
    SetBkMode(dc, TRANSPARENT);
    SetTextAlign(dc, TA_LEFT | TA_BASELINE);
    Draw(dc, 10, 30, "H");
    RECT box = CanvasInkBox(canvas, kArtWhite);
    EXPECT_TRUE(SameRect(box, RECT{10, 22, 16, 30})) << ShowRect(box);
}

TEST_F(CanvasTextTest, TransparentModeChangesOnlyTheInkPixels)
{
    Use(80, 30);
    Font(110);
    SetBkColor(dc, kArtBlue);
    Draw(dc, 5, 5, "12.5 nm");
    std::string opaque = Art();
    tv_canvas_clear(canvas, kArtWhite);
    EXPECT_EQ(SetBkMode(dc, TRANSPARENT), OPAQUE);
    Draw(dc, 5, 5, "12.5 nm");
    for (char& c : opaque)
        if (c == 'b') c = '.';
    EXPECT_EQ(Art(), opaque);
    EXPECT_GT(CanvasCount(canvas, kArtBlack), 40);
}

TEST_F(CanvasTextTest, TextTakesTheTextColour)
{
    Use(30, 15);
    Font(90);
    SetBkMode(dc, TRANSPARENT);
    SetTextColor(dc, kArtRed);
    Draw(dc, 0, 0, "Ag");
    EXPECT_GT(CanvasCount(canvas, kArtRed), 20);
    EXPECT_EQ(CanvasCount(canvas, kArtRed) + CanvasCount(canvas, kArtWhite), 30 * 15);
}

TEST_F(CanvasTextTest, OpaqueOptionFillsTheRectangleInEitherMode)
{
    Use(30, 12);
    SetBkMode(dc, TRANSPARENT);
    SetBkColor(dc, kArtGreen);
    RECT rect{10, 5, 20, 8};
    ASSERT_TRUE(ExtTextOut(dc, 0, 0, ETO_OPAQUE, &rect, "", 0));
    RECT box = CanvasInkBox(canvas, kArtWhite);
    EXPECT_TRUE(SameRect(box, rect)) << ShowRect(box);
    EXPECT_EQ(CanvasCount(canvas, kArtGreen), 30);
}

TEST_F(CanvasTextTest, OpaqueOptionWithoutClippingLetsTheTextPassTheRectangle)
{
    Use(40, 20);
    Font(90);
    SetBkMode(dc, TRANSPARENT);
    SetBkColor(dc, kArtGreen);
    RECT rect{0, 0, 5, 5};
    Draw(dc, 2, 2, "Ag", ETO_OPAQUE, &rect);
    RECT box = CanvasInkBox(canvas, kArtWhite);
    EXPECT_EQ(box.left, 0);
    EXPECT_EQ(box.top, 0);
    EXPECT_GT(box.right, 12);   // the ink of the text reaches beyond the rectangle
    EXPECT_GT(box.bottom, 9);
}

TEST_F(CanvasTextTest, ClippedOptionClipsTheCellAndTheInk)
{
    Use(140, 60);
    Font(90);
    SetBkColor(dc, kArtBlue);
    RECT rect{62, 30, 68, 36};
    ASSERT_TRUE(Draw(dc, 60, 30, "Ag", ETO_CLIPPED, &rect));
    RECT box = CanvasInkBox(canvas, kArtWhite);
    EXPECT_TRUE(SameRect(box, rect)) << ShowRect(box);
    EXPECT_EQ(CanvasCount(canvas, kArtBlue) + CanvasCount(canvas, kArtBlack), 36);
}

TEST_F(CanvasTextTest, ClippedAndOpaqueTogetherFillTheRectangleAndShowTheInkWithinIt)
{
    Use(140, 60);
    Font(90);
    SetBkMode(dc, TRANSPARENT);
    Draw(dc, 60, 30, "Ag");
    std::string whole = CanvasArt(canvas, 62, 30, 68, 36);
    tv_canvas_clear(canvas, kArtWhite);
    SetBkColor(dc, kArtGreen);
    RECT rect{62, 30, 68, 36};
    ASSERT_TRUE(Draw(dc, 60, 30, "Ag", ETO_OPAQUE | ETO_CLIPPED, &rect));
    for (char& c : whole)
        if (c == '.') c = 'g';
    EXPECT_EQ(CanvasArt(canvas, 62, 30, 68, 36), whole);
    RECT box = CanvasInkBox(canvas, kArtWhite);
    EXPECT_TRUE(SameRect(box, rect)) << ShowRect(box);
}

TEST_F(CanvasTextTest, TextIsClippedToTheClipOfTheContext)
{
    Use(40, 20);
    Font(90);
    SetBkColor(dc, kArtBlue);
    IntersectClipRect(dc, 0, 0, 5, 20);
    Draw(dc, 2, 3, "Ag");
    RECT box = CanvasInkBox(canvas, kArtWhite);
    EXPECT_TRUE(SameRect(box, RECT{2, 3, 5, 15})) << ShowRect(box);
}

TEST_F(CanvasTextTest, CentredTextLosesNoInkToTheCentredBoxOfTheDisplayList)
{
    // The display list clips centred text to x - w/2 - 1 .. x + w/2 and right-aligned text to
    // x - w .. x; the blank last column of every glyph keeps all ink inside even for odd w.
    Use(120, 40);
    SetBkMode(dc, TRANSPARENT);
    for (int32_t tenths : {70, 90, 110}) {
        Font(tenths);
        SIZE size = Extent(dc, "12.5 nm");
        for (uint32_t align : {TA_CENTER, TA_RIGHT}) {
            SCOPED_TRACE(std::to_string(tenths) + " " + std::to_string(align));
            SetTextAlign(dc, align | TA_TOP);
            tv_canvas_clear(canvas, kArtWhite);
            Draw(dc, 60, 10, "12.5 nm");
            int64_t unclipped = CanvasCount(canvas, kArtBlack);
            RECT box = align == TA_CENTER ? RECT{60 - size.cx / 2 - 1, 10, 60 + size.cx / 2, 10 + size.cy}
                                          : RECT{60 - size.cx, 10, 60, 10 + size.cy};
            tv_canvas_clear(canvas, kArtWhite);
            Draw(dc, 60, 10, "12.5 nm", ETO_CLIPPED, &box);
            EXPECT_EQ(CanvasCount(canvas, kArtBlack), unclipped);
            EXPECT_GT(unclipped, 30);
        }
    }
}

TEST_F(CanvasTextTest, UpdateCpDrawsAtTheCurrentPositionAndMovesItPastTheText)
{
    Use(60, 30);
    Font(90);
    SetBkColor(dc, kArtBlue);
    SetTextAlign(dc, TA_UPDATECP | TA_LEFT | TA_TOP);
    MoveTo(dc, 10, 5);
    ASSERT_TRUE(Draw(dc, 40, 20, "Ag"));
    RECT box = CanvasInkBox(canvas, kArtWhite);
    EXPECT_TRUE(SameRect(box, RECT{10, 5, 24, 17})) << ShowRect(box);
    EXPECT_EQ(dc->state.position.x, 24);
    EXPECT_EQ(dc->state.position.y, 5);
    SetTextAlign(dc, TA_UPDATECP | TA_RIGHT | TA_TOP);
    Draw(dc, 0, 0, "Ag");
    EXPECT_EQ(dc->state.position.x, 10);
    SetTextAlign(dc, TA_UPDATECP | TA_CENTER | TA_TOP);
    Draw(dc, 0, 0, "Ag");
    EXPECT_EQ(dc->state.position.x, 10);
}

TEST_F(CanvasTextTest, OnlyTheVisibleGlyphsOfALongTextAreDrawn)
{
    Use(20, 12);
    Font(90);
    SetBkMode(dc, TRANSPARENT);
    Draw(dc, 0, 0, "W");
    std::string one = Art();
    int32_t advance = Extent(dc, "W").cx;
    tv_canvas_clear(canvas, kArtWhite);
    std::string many(100000, 'W');
    ASSERT_TRUE(ExtTextOut(dc, -advance * 99999, 0, 0, nullptr, many.data(), static_cast<int32_t>(many.size())));
    EXPECT_EQ(Art(), one);
}

TEST_F(CanvasTextTest, BadTextArgumentsDrawNothing)
{
    EXPECT_FALSE(ExtTextOut(nullptr, 0, 0, 0, nullptr, "Ag", 2));
    EXPECT_FALSE(ExtTextOut(dc, 0, 0, ETO_OPAQUE, nullptr, nullptr, 2));
    EXPECT_FALSE(ExtTextOut(dc, 0, 0, 0, nullptr, "Ag", -1));
    EXPECT_TRUE(ExtTextOut(dc, INT_MIN, INT_MAX, ETO_OPAQUE | ETO_CLIPPED, nullptr, "Ag", 2));
    EXPECT_TRUE(ExtTextOut(dc, INT_MAX, INT_MIN, 0, nullptr, "Ag", 2));
    EXPECT_EQ(CanvasCount(canvas, kArtWhite), 16 * 12);
}

} // namespace
