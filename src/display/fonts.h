// The fonts of all text that the library draws into a frame store.
//
// A font is a LOGFONT whose height counts tenths of a point, followed by its colour word and
// a switch: with UseGivenColour 0 a text takes FontColour, otherwise the colour passed with
// the text. The library keeps eight named fonts; the settings store them as one block of
// eight records.
#pragma once

#include <cstdint>

#include "platform/canvas.h"

#pragma pack(push, 1)
struct TAVRIN_PACKED FontRecType {
    LOGFONT Font;              // height in tenths of a point
    uint32_t FontColour;       // COLORREF, red in the low byte
    uint32_t UseGivenColour;   // 0: the text takes FontColour; else the colour passed with it
};
#pragma pack(pop)
static_assert(sizeof(FontRecType) == 68, "a font record is 68 bytes");

// The eight named fonts, in the order of the stored block.
enum FontNumber : int {
    FONT_GENERAL = 0,       // plot and general text
    FONT_PLOT_TITLE1 = 1,   // three plot title fonts
    FONT_PLOT_TITLE2 = 2,
    FONT_PLOT_TITLE3 = 3,
    FONT_CAPTION = 4,       // image overlay 1: the size caption
    FONT_BAR = 5,           // image overlay 2: the scale bar label
    FONT_THIRD = 6,         // image overlay 3
    FONT_SPARE = 7,
};
constexpr int kFontCount = 8;
constexpr const char* kDefaultFontFace = "MS Shell Dlg";

// The font of a number (0 to 7); any other number gives the general font.
FontRecType& NamedFont(int number);
// All eight, in order: the block the settings read and write.
FontRecType* FontTable();

// The built-in default of one font.
FontRecType DefaultFont(int number);
// Every font back to its default.
void ResetFonts();
