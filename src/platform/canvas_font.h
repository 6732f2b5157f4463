// The embedded bitmap font of the software canvas: one sans-serif face, drawn by hand at three
// master sizes and scaled by whole pixels to every other size.
//
// Glyph cell. A text of pixel height H is one row of cells, each H pixels high. A cell is
// divided by the baseline into an ascent (the rows above the baseline, capitals and digits
// stand on it) and a descent (rows for g, j, p, q, y and the underscore):
//
//     master   H    ascent  descent  capital height  x-height  digit width  space width
//     small    9      7       2           7             5          5            3
//     medium  12      9       3           8             6          6            3
//     large   15     12       3          10             7          7            4
//
// These are the cells of 7, 9 and 11 point text at 96 pixels per inch.
//
// Advance. Each glyph has an ink width w (its drawn columns, counted from the left edge of
// the cell) and advances the pen by w + 1: the last column of every cell is blank, so two
// glyphs never touch and the width of a text already holds the gap after its last glyph. A
// bold face (weight 700 and above) draws every ink pixel once more one column to the right
// and advances by w + 2. There is no kerning: the width of a text is the sum of the
// advances of its bytes, and its height is H, whatever the text (an empty text is 0 wide).
//
// Other sizes. A height H that is a whole multiple of a master's height is drawn from the
// largest such master; any other height from the largest master not taller than H (the small
// master below 9 pixels). Target pixel (c, r) of a cell shows master pixel
// (floor((2c + 1) * h / 2H), floor((2r + 1) * h / 2H)), h the master's height: a pixel-centre
// sample, exact at whole multiples. Ink width, advance and ascent scale by the same map, so
// every measure stays an exact integer that depends on nothing but the height, the weight
// and the bytes of the text.
//
// Characters. Bytes are Latin-1: printable ASCII 32 to 126, the degree sign 0xB0 and the
// micro sign 0xB5 have glyphs; every other byte is drawn as a hollow box of digit width, as
// the desktop platform shows a character that its font lacks.
//
// Decorations. Underline takes the row under the baseline, strike-out the row half an
// x-height above it; both are one master pixel thick and run across the whole advance.
// Italic text is drawn upright.
#pragma once

#include <cstddef>
#include <cstdint>

// Pixel heights outside this range are limited to it.
constexpr int32_t kFontMinPixelHeight = 1;
constexpr int32_t kFontMaxPixelHeight = 2048;

// A face at one pixel height: which master it is drawn from and how it scales.
struct FontFace {
    int32_t height;         // H, the cell height in pixels
    int32_t masterIndex;    // 0 small, 1 medium, 2 large
    int32_t masterHeight;   // h
    int32_t ascent;         // rows above the baseline, after scaling
    bool bold;
    bool underline;
    bool strikeOut;
};

struct FontMetrics {
    int32_t height;
    int32_t ascent;
    int32_t descent;
    int32_t averageWidth;   // the advance of 'x'
    int32_t maxWidth;       // the widest advance of the face
    int32_t digitWidth;     // the advance of every digit
};

// The face of a cell height (limited to the range above) and weight.
FontFace MakeFontFace(int32_t pixelHeight, int32_t weight, bool underline, bool strikeOut);

FontMetrics GetFontMetrics(const FontFace& face);

// The advance of one byte, and the width of a text: the sum of the advances of its bytes.
int32_t GlyphAdvance(const FontFace& face, unsigned char code);
int64_t TextWidth(const FontFace& face, const char* text, size_t length);

// Whether pixel (column, row) of the cell of a byte is ink, decorations included. Columns
// run from 0 to GlyphAdvance - 1 and rows from 0 to height - 1; outside them nothing is ink.
bool CellInk(const FontFace& face, unsigned char code, int32_t column, int32_t row);

// The master art, for tests of its own consistency: the number of masters, and for one
// master its cell height, ascent and the ink width of a byte (-1 for a byte without glyph).
int32_t FontMasterCount();
int32_t FontMasterHeight(int32_t master);
int32_t FontMasterAscent(int32_t master);
int32_t FontMasterGlyphWidth(int32_t master, unsigned char code);
// Whether every glyph of a master is well formed: rows of equal width, no more rows than the
// cell, only '#' and '.' in them. Answers the first faulty byte, or -1 when all are sound.
int32_t FontMasterFirstFaultyGlyph(int32_t master);
