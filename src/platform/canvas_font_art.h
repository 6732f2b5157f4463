// The hand-drawn art of the canvas font: one table of glyphs for each master size.
//
// A glyph is a list of rows from the top of the cell, '#' for ink and '.' for paper, all of
// the same width (the glyph's ink width); rows not given are blank. Byte 0 holds the hollow
// box drawn for bytes that have no glyph of their own.
#pragma once

#include <cstddef>
#include <cstdint>

constexpr int32_t kFontArtMaxRows = 15;

struct GlyphArt {
    unsigned char code;
    const char* rows[kFontArtMaxRows];
};

struct FontMasterArt {
    int32_t height;    // cell height in pixels
    int32_t ascent;    // rows above the baseline
    int32_t xHeight;   // rows of a lower-case x
    const GlyphArt* glyphs;
    size_t count;
};

extern const FontMasterArt kFontArtSmall;
extern const FontMasterArt kFontArtMedium;
extern const FontMasterArt kFontArtLarge;
