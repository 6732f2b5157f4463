#include "display/fonts.h"
#include "host/text.h"

#include <cstring>

namespace {

FontRecType g_fonts[kFontCount];

struct FontDefault {
    int32_t height;      // tenths of a point
    uint32_t colour;
    uint32_t useGiven;
};

constexpr FontDefault kDefaults[kFontCount] = {
    {70, 0xffffffffu, 1},   // general
    {90, 0, 0},             // plot titles
    {90, 0, 0},
    {90, 0, 0},
    {110, 0xffffffu, 0},    // caption
    {110, 0xffffffu, 0},    // scale bar
    {70, 0xffffffu, 0},     // third overlay
    {70, 0xffffffu, 0},     // spare
};

bool ValidNumber(int number) { return number >= 0 && number < kFontCount; }

} // namespace

FontRecType DefaultFont(int number)
{
    const FontDefault& d = kDefaults[ValidNumber(number) ? number : FONT_GENERAL];
    FontRecType font;
    std::memset(&font, 0, sizeof font);
    font.Font.lfHeight = d.height;
    font.Font.lfWeight = FW_NORMAL;
    strncpy0(font.Font.lfFaceName, kDefaultFontFace, sizeof font.Font.lfFaceName);
    font.FontColour = d.colour;
    font.UseGivenColour = d.useGiven;
    return font;
}

FontRecType& NamedFont(int number) { return g_fonts[ValidNumber(number) ? number : FONT_GENERAL]; }

FontRecType* FontTable() { return g_fonts; }

void ResetFonts()
{
    for (int n = 0; n < kFontCount; ++n) g_fonts[n] = DefaultFont(n);
}

namespace {

// The fonts hold their defaults from the load of the library on.
struct FontsAtLoad {
    FontsAtLoad() { ResetFonts(); }
} g_fontsAtLoad;

} // namespace
