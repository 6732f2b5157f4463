// The embedded canvas font: the consistency of its hand-drawn masters and the choice of the
// master for each size.
#include <gtest/gtest.h>

#include <string>

#include "platform/canvas_font.h"

namespace {

struct MasterShape {
    int32_t height;
    int32_t ascent;
    int32_t capitalHeight;
    int32_t xHeight;
};

const MasterShape kShapes[] = {{9, 7, 7, 5}, {12, 9, 8, 6}, {15, 12, 10, 7}};

FontFace MasterFace(int32_t master)
{
    return MakeFontFace(kShapes[master].height, 400, false, false);
}

// The first and last rows with ink in the cell of a byte; -1, -1 when it has none.
std::pair<int32_t, int32_t> InkRows(const FontFace& face, unsigned char code)
{
    int32_t first = -1, last = -1;
    for (int32_t row = 0; row < face.height; ++row) {
        for (int32_t col = 0; col < GlyphAdvance(face, code); ++col) {
            if (!CellInk(face, code, col, row)) continue;
            if (first < 0) first = row;
            last = row;
        }
    }
    return {first, last};
}

std::string Name(int32_t master, unsigned char code)
{
    return "master " + std::to_string(master) + " byte " + std::to_string(code) + " '" +
           std::string(1, static_cast<char>(code)) + "'";
}

TEST(CanvasFont, ThreeMastersOfNineTwelveAndFifteenPixels)
{
    ASSERT_EQ(FontMasterCount(), 3);
    for (int32_t m = 0; m < 3; ++m) {
        EXPECT_EQ(FontMasterHeight(m), kShapes[m].height);
        EXPECT_EQ(FontMasterAscent(m), kShapes[m].ascent);
    }
}

TEST(CanvasFont, EveryGlyphOfEveryMasterIsWellFormed)
{
    for (int32_t m = 0; m < FontMasterCount(); ++m) EXPECT_EQ(FontMasterFirstFaultyGlyph(m), -1) << "master " << m;
}

TEST(CanvasFont, EveryPrintableCharacterAndTheDegreeAndMicroSignsHaveGlyphs)
{
    for (int32_t m = 0; m < FontMasterCount(); ++m) {
        for (int32_t code = 32; code <= 126; ++code)
            EXPECT_GT(FontMasterGlyphWidth(m, static_cast<unsigned char>(code)), 0)
                << Name(m, static_cast<unsigned char>(code));
        EXPECT_GT(FontMasterGlyphWidth(m, 0xB0), 0) << m;
        EXPECT_GT(FontMasterGlyphWidth(m, 0xB5), 0) << m;
        for (int32_t code : {1, 9, 31, 127, 128, 0xA0, 0xB1, 0xFF})
            EXPECT_EQ(FontMasterGlyphWidth(m, static_cast<unsigned char>(code)), -1)
                << Name(m, static_cast<unsigned char>(code));
    }
}

TEST(CanvasFont, CapitalsAndDigitsStandOnTheBaselineAtCapitalHeight)
{
    for (int32_t m = 0; m < FontMasterCount(); ++m) {
        FontFace face = MasterFace(m);
        const MasterShape& shape = kShapes[m];
        std::string codes = "ABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789";
        for (char c : codes) {
            auto rows = InkRows(face, static_cast<unsigned char>(c));
            EXPECT_EQ(rows.first, shape.ascent - shape.capitalHeight) << Name(m, static_cast<unsigned char>(c));
            EXPECT_EQ(rows.second, shape.ascent - 1) << Name(m, static_cast<unsigned char>(c));
        }
    }
}

TEST(CanvasFont, ShortLowerCaseLettersFillTheXHeight)
{
    for (int32_t m = 0; m < FontMasterCount(); ++m) {
        FontFace face = MasterFace(m);
        const MasterShape& shape = kShapes[m];
        for (char c : std::string("acemnorsuvwxz")) {
            auto rows = InkRows(face, static_cast<unsigned char>(c));
            EXPECT_EQ(rows.first, shape.ascent - shape.xHeight) << Name(m, static_cast<unsigned char>(c));
            EXPECT_EQ(rows.second, shape.ascent - 1) << Name(m, static_cast<unsigned char>(c));
        }
    }
}

TEST(CanvasFont, AscendersReachCapitalHeight)
{
    for (int32_t m = 0; m < FontMasterCount(); ++m) {
        FontFace face = MasterFace(m);
        for (char c : std::string("bdfhkl"))
            EXPECT_EQ(InkRows(face, static_cast<unsigned char>(c)).first, kShapes[m].ascent - kShapes[m].capitalHeight)
                << Name(m, static_cast<unsigned char>(c));
    }
}

TEST(CanvasFont, OnlyLettersWithDescendersReachBelowTheBaseline)
{
    for (int32_t m = 0; m < FontMasterCount(); ++m) {
        FontFace face = MasterFace(m);
        for (char c : std::string("ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz")) {
            bool descends = std::string("gjpqy").find(c) != std::string::npos;
            int32_t last = InkRows(face, static_cast<unsigned char>(c)).second;
            EXPECT_EQ(last >= kShapes[m].ascent, descends) << Name(m, static_cast<unsigned char>(c));
        }
    }
}

TEST(CanvasFont, TheLastColumnOfEveryCellIsBlank)
{
    // Text boxes may clip one column off the right end of a centred text.
    for (int32_t m = 0; m < FontMasterCount(); ++m) {
        for (int32_t weight : {400, 700}) {
            FontFace face = MakeFontFace(kShapes[m].height, weight, false, false);
            for (int32_t code = 0; code < 256; ++code) {
                unsigned char c = static_cast<unsigned char>(code);
                int32_t last = GlyphAdvance(face, c) - 1;
                for (int32_t row = 0; row < face.height; ++row)
                    EXPECT_FALSE(CellInk(face, c, last, row)) << Name(m, c) << " weight " << weight;
            }
        }
    }
}

TEST(CanvasFont, NoInkOutsideTheCell)
{
    FontFace face = MakeFontFace(12, 700, true, true);
    for (int32_t code = 0; code < 256; ++code) {
        unsigned char c = static_cast<unsigned char>(code);
        int32_t advance = GlyphAdvance(face, c);
        EXPECT_FALSE(CellInk(face, c, -1, 3));
        EXPECT_FALSE(CellInk(face, c, advance, 9));
        EXPECT_FALSE(CellInk(face, c, 2, -1));
        EXPECT_FALSE(CellInk(face, c, 2, 12));
    }
}

TEST(CanvasFont, WholeMultiplesOfAMasterAreDrawnFromTheLargestSuchMaster)
{
    struct Case {
        int32_t height;
        int32_t master;
    };
    const Case cases[] = {{9, 0},  {12, 1}, {15, 2}, {18, 0}, {24, 1},
                          {30, 2}, {36, 1}, {45, 2}, {60, 2}, {27, 0}};
    for (const Case& c : cases) EXPECT_EQ(MakeFontFace(c.height, 400, false, false).masterIndex, c.master) << c.height;
}

TEST(CanvasFont, OtherHeightsAreDrawnFromTheLargestMasterNotTaller)
{
    struct Case {
        int32_t height;
        int32_t master;
    };
    const Case cases[] = {{10, 0}, {11, 0}, {13, 1}, {14, 1}, {16, 2}, {20, 2}, {8, 0}, {1, 0}};
    for (const Case& c : cases) EXPECT_EQ(MakeFontFace(c.height, 400, false, false).masterIndex, c.master) << c.height;
}

TEST(CanvasFont, HeightsAreLimited)
{
    EXPECT_EQ(MakeFontFace(0, 400, false, false).height, kFontMinPixelHeight);
    EXPECT_EQ(MakeFontFace(-7, 400, false, false).height, kFontMinPixelHeight);
    EXPECT_EQ(MakeFontFace(1 << 30, 400, false, false).height, kFontMaxPixelHeight);
    FontFace tiny = MakeFontFace(1, 400, false, false);
    EXPECT_GE(GlyphAdvance(tiny, 'W'), 0);
    EXPECT_EQ(TextWidth(tiny, nullptr, 5), 0);
}

TEST(CanvasFont, AscentScalesWithTheHeight)
{
    EXPECT_EQ(MakeFontFace(18, 400, false, false).ascent, 14);
    EXPECT_EQ(MakeFontFace(24, 400, false, false).ascent, 18);
    EXPECT_EQ(MakeFontFace(30, 400, false, false).ascent, 24);
    EXPECT_EQ(MakeFontFace(16, 400, false, false).ascent, 13);   // 12 rows of 15 scaled to 16
}

} // namespace
