#include "platform/canvas_font.h"

#include <algorithm>
#include <array>

#include "platform/canvas_font_art.h"

namespace {

// A master glyph as bit rows: bit c of rows[r] is pixel (c, r). Width -1: no glyph.
struct MasterGlyph {
    int32_t width = -1;
    uint32_t rows[kFontArtMaxRows] = {};
};

struct Master {
    int32_t height = 0;
    int32_t ascent = 0;
    int32_t xHeight = 0;
    int32_t firstFault = -1;   // first byte whose art is malformed, -1 when none
    std::array<MasterGlyph, 256> glyphs;
};

constexpr int32_t kMasterCount = 3;

// Reads the art of one master into bit rows, noting the first malformed glyph (a fault is
// drawn as far as it can be read; the font test reports it).
Master ReadMaster(const FontMasterArt& art)
{
    Master master;
    master.height = art.height;
    master.ascent = art.ascent;
    master.xHeight = art.xHeight;
    for (size_t g = 0; g < art.count; ++g) {
        const GlyphArt& glyph = art.glyphs[g];
        MasterGlyph& out = master.glyphs[glyph.code];
        bool faulty = out.width >= 0;   // a byte drawn twice
        int32_t width = -1;
        for (int32_t r = 0; r < kFontArtMaxRows; ++r) {
            const char* row = glyph.rows[r];
            if (row == nullptr) continue;
            if (r >= art.height) faulty = true;
            int32_t length = 0;
            for (; row[length] != '\0'; ++length) {
                if (row[length] == '#') {
                    if (length < 32 && r < art.height) out.rows[r] |= 1u << length;
                } else if (row[length] != '.') {
                    faulty = true;
                }
            }
            if (width >= 0 && length != width) faulty = true;
            width = std::max(width, length);
        }
        if (width <= 0 || width > 32) faulty = true;
        out.width = std::clamp(width, 0, 32);
        if (faulty && master.firstFault < 0) master.firstFault = glyph.code;
    }
    if (master.glyphs[0].width <= 0 && master.firstFault < 0) master.firstFault = 0;
    return master;
}

const Master& GetMaster(int32_t index)
{
    static const std::array<Master, kMasterCount> masters = {
        ReadMaster(kFontArtSmall), ReadMaster(kFontArtMedium), ReadMaster(kFontArtLarge)};
    return masters[static_cast<size_t>(std::clamp(index, 0, kMasterCount - 1))];
}

// The master pixel index sampled by target index t: the pixel under the centre of t.
int32_t MasterIndex(int32_t t, int32_t target, int32_t master)
{
    return static_cast<int32_t>((2 * static_cast<int64_t>(t) + 1) * master / (2 * static_cast<int64_t>(target)));
}

// The number of target pixels that sample the first n master pixels.
int32_t ScaleLength(int32_t n, int32_t target, int32_t master)
{
    if (n <= 0) return 0;
    return static_cast<int32_t>((2 * static_cast<int64_t>(target) * n + master - 1) /
                                (2 * static_cast<int64_t>(master)));
}

const MasterGlyph& GlyphOf(const Master& master, unsigned char code)
{
    const MasterGlyph& glyph = master.glyphs[code];
    return glyph.width >= 0 ? glyph : master.glyphs[0];
}

bool MasterInk(const MasterGlyph& glyph, int32_t column, int32_t row)
{
    if (column < 0 || column >= glyph.width || row < 0 || row >= kFontArtMaxRows) return false;
    return (glyph.rows[row] >> column) & 1u;
}

} // namespace

FontFace MakeFontFace(int32_t pixelHeight, int32_t weight, bool underline, bool strikeOut)
{
    FontFace face{};
    face.height = std::clamp(pixelHeight, kFontMinPixelHeight, kFontMaxPixelHeight);
    // A whole multiple of a master scales cleanly; failing that, the largest master that is
    // not taller, so that no row of its art is dropped.
    int32_t chosen = -1;
    for (int32_t m = kMasterCount - 1; m >= 0 && chosen < 0; --m)
        if (face.height % GetMaster(m).height == 0) chosen = m;
    for (int32_t m = kMasterCount - 1; m >= 0 && chosen < 0; --m)
        if (GetMaster(m).height <= face.height) chosen = m;
    if (chosen < 0) chosen = 0;
    const Master& master = GetMaster(chosen);
    face.masterIndex = chosen;
    face.masterHeight = master.height;
    face.ascent = ScaleLength(master.ascent, face.height, master.height);
    face.bold = weight >= 700;
    face.underline = underline;
    face.strikeOut = strikeOut;
    return face;
}

int32_t GlyphAdvance(const FontFace& face, unsigned char code)
{
    const MasterGlyph& glyph = GlyphOf(GetMaster(face.masterIndex), code);
    return ScaleLength(glyph.width + 1, face.height, face.masterHeight) + (face.bold ? 1 : 0);
}

int64_t TextWidth(const FontFace& face, const char* text, size_t length)
{
    if (text == nullptr) return 0;
    int64_t width = 0;
    for (size_t i = 0; i < length; ++i) width += GlyphAdvance(face, static_cast<unsigned char>(text[i]));
    return width;
}

FontMetrics GetFontMetrics(const FontFace& face)
{
    FontMetrics metrics{};
    metrics.height = face.height;
    metrics.ascent = face.ascent;
    metrics.descent = face.height - face.ascent;
    metrics.averageWidth = GlyphAdvance(face, 'x');
    metrics.digitWidth = GlyphAdvance(face, '0');
    for (int32_t code = 0; code < 256; ++code)
        metrics.maxWidth = std::max(metrics.maxWidth, GlyphAdvance(face, static_cast<unsigned char>(code)));
    return metrics;
}

bool CellInk(const FontFace& face, unsigned char code, int32_t column, int32_t row)
{
    if (column < 0 || row < 0 || row >= face.height || column >= GlyphAdvance(face, code)) return false;
    const Master& master = GetMaster(face.masterIndex);
    int32_t masterRow = MasterIndex(row, face.height, master.height);
    if (face.underline && masterRow == master.ascent) return true;
    if (face.strikeOut && masterRow == master.ascent - 1 - master.xHeight / 2) return true;
    const MasterGlyph& glyph = GlyphOf(master, code);
    if (MasterInk(glyph, MasterIndex(column, face.height, master.height), masterRow)) return true;
    return face.bold && column > 0 && MasterInk(glyph, MasterIndex(column - 1, face.height, master.height), masterRow);
}

int32_t FontMasterCount()
{
    return kMasterCount;
}

int32_t FontMasterHeight(int32_t master)
{
    return GetMaster(master).height;
}

int32_t FontMasterAscent(int32_t master)
{
    return GetMaster(master).ascent;
}

int32_t FontMasterGlyphWidth(int32_t master, unsigned char code)
{
    return GetMaster(master).glyphs[code].width;
}

int32_t FontMasterFirstFaultyGlyph(int32_t master)
{
    return GetMaster(master).firstFault;
}
