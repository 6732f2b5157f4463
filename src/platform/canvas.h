// The drawing context of the software canvas: the drawing operations that the frame stores'
// display list and the wallpaper use, under the names and with the conventions of the
// desktop drawing contexts they were written for.
//
// Conventions kept from the desktop platform:
//   - Colours are COLORREF 0x00BBGGRR, red in the low byte; the high byte is ignored.
//   - Coordinates are canvas pixels, origin top left, y downward. Rectangles include their
//     left and top edges and exclude their right and bottom edges. Coordinates are limited to
//     plus or minus 2^27; a point beyond is moved to that limit.
//   - A line excludes its end point, so that a polyline draws each joint once.
//   - Nothing is drawn outside the clip rectangle of the context or outside the canvas.
//
// A pen of width 0 or 1 draws one-pixel lines, in its style (solid, dashed, dotted, or
// nothing at all for PS_NULL). A wider pen draws solid, whatever its style: at each step
// along the long axis of the line a run of pixels across it, as long as the pen width
// measured square to the line (width * length / long-axis extent, rounded), centred on the
// one-pixel line with the odd pixel before the centre (run n covers c - n/2 .. c - n/2 + n - 1).
// Rectangle outlines of wide pens are four bands of the pen width centred on the one-pixel
// outline in the same way; a PS_INSIDEFRAME pen keeps them inside the rectangle. No brush is
// selected: Rectangle draws the outline only.
#pragma once

#include <cstdint>
#include <vector>

#include "tavrin/canvas.h"
#include "tavrin/types.h"

using COLORREF = uint32_t;

constexpr COLORREF RgbColour(uint8_t red, uint8_t green, uint8_t blue)
{
    return static_cast<COLORREF>(red) | (static_cast<COLORREF>(green) << 8) | (static_cast<COLORREF>(blue) << 16);
}

constexpr COLORREF CLR_INVALID = 0xFFFFFFFFu;

// Limits of a canvas (see tv_canvas_create).
constexpr int32_t kCanvasMaxEdge = 32767;
constexpr int64_t kCanvasMaxPixels = int64_t{1} << 26;
// Limit of every coordinate given to a drawing operation.
constexpr int32_t kCanvasCoordinateLimit = 1 << 27;
// Deepest stack of saved states.
constexpr int32_t kMaxSavedStates = 1024;

struct TvCanvas {
    int32_t width = 0;
    int32_t height = 0;
    std::vector<uint32_t> pixels;   // 0xAABBGGRR, row-major, row 0 at the top
};

struct RECT {
    int32_t left;
    int32_t top;
    int32_t right;
    int32_t bottom;
};

struct POINT {
    int32_t x;
    int32_t y;
};

struct SIZE {
    int32_t cx;
    int32_t cy;
};

// The 60-byte font description stored in records and settings.
using LOGFONT = TvLogFont;

struct TEXTMETRIC {
    int32_t tmHeight;
    int32_t tmAscent;
    int32_t tmDescent;
    int32_t tmAveCharWidth;
    int32_t tmMaxCharWidth;
};

// Pen styles.
constexpr int32_t PS_SOLID = 0;
constexpr int32_t PS_DASH = 1;         // 18 on, 6 off
constexpr int32_t PS_DOT = 2;          // 3 on, 3 off
constexpr int32_t PS_DASHDOT = 3;      // 9 on, 6 off, 3 on, 6 off
constexpr int32_t PS_DASHDOTDOT = 4;   // 9 on, 3 off, 3 on, 3 off, 3 on, 3 off
constexpr int32_t PS_NULL = 5;
constexpr int32_t PS_INSIDEFRAME = 6;

// Background modes.
constexpr int32_t TRANSPARENT = 1;
constexpr int32_t OPAQUE = 2;

// Text alignment: one horizontal and one vertical flag, and whether the current position is
// used and moved.
constexpr uint32_t TA_NOUPDATECP = 0;
constexpr uint32_t TA_UPDATECP = 1;
constexpr uint32_t TA_LEFT = 0;
constexpr uint32_t TA_RIGHT = 2;
constexpr uint32_t TA_CENTER = 6;
constexpr uint32_t TA_TOP = 0;
constexpr uint32_t TA_BOTTOM = 8;
constexpr uint32_t TA_BASELINE = 24;

// ExtTextOut options.
constexpr uint32_t ETO_OPAQUE = 2;    // fill the given rectangle with the background colour
constexpr uint32_t ETO_CLIPPED = 4;   // clip the text to the given rectangle

// Raster operation of BitBlt and StretchBlt: the source is copied.
constexpr uint32_t SRCCOPY = 0x00CC0020u;

// Answers of the clip operations.
constexpr int32_t RGN_ERROR = 0;
constexpr int32_t NULLREGION = 1;
constexpr int32_t SIMPLEREGION = 2;

constexpr int32_t FW_NORMAL = 400;
constexpr int32_t FW_BOLD = 700;

struct CanvasPen {
    int32_t style;
    int32_t width;
    COLORREF colour;
};

// A font made for a context: its cell height in pixels and its style.
// escapement: the direction of the baseline in tenths of a degree, 0 or 900 (upward, the
// letters turned a quarter anticlockwise); the alignment flags keep their meaning along the
// turned baseline.
struct CanvasFont {
    int32_t height;
    int32_t weight;
    bool italic;
    bool underline;
    bool strikeOut;
    int32_t escapement;
};
constexpr int32_t kEscapementUp = 900;

// Everything SaveDC keeps and RestoreDC brings back.
struct DrawState {
    POINT position;      // the current position, start of the next LineTo
    CanvasPen pen;       // solid black, width 1, on a new context
    CanvasFont font;     // 9 point, normal weight, on a new context
    COLORREF textColour; // black
    COLORREF bkColour;   // white
    int32_t bkMode;      // OPAQUE
    uint32_t textAlign;  // TA_LEFT | TA_TOP
    RECT clip;           // the whole canvas
};

struct DrawContext {
    TvCanvas* canvas;
    DrawState state;
    std::vector<DrawState> saved;
};

// A context that draws on the canvas of a window; null for a null window or when memory runs
// out. ReleaseDC frees it and answers 1, or answers 0 (and frees nothing) when the context is
// null or belongs to another window.
DrawContext* GetDC(TvCanvas* wnd);
int32_t ReleaseDC(TvCanvas* wnd, DrawContext* dc);

// The client area of a window: 0, 0, width, height.
bool GetClientRect(const TvCanvas* wnd, RECT* rect);

// Clipping. GetClipBox gives the part of the canvas that drawing can reach.
// IntersectClipRect narrows the clip rectangle; SelectClipRect replaces it (null: the whole
// canvas). All three answer NULLREGION, SIMPLEREGION or RGN_ERROR for bad arguments.
int32_t GetClipBox(const DrawContext* dc, RECT* rect);
int32_t IntersectClipRect(DrawContext* dc, int32_t left, int32_t top, int32_t right, int32_t bottom);
int32_t SelectClipRect(DrawContext* dc, const RECT* rect);

// Lines with the selected pen. MoveTo answers the former position.
POINT MoveTo(DrawContext* dc, int32_t x, int32_t y);
bool LineTo(DrawContext* dc, int32_t x, int32_t y);
// The outline of a rectangle with the selected pen; reversed corners are put in order.
bool Rectangle(DrawContext* dc, int32_t left, int32_t top, int32_t right, int32_t bottom);

// One pixel; SetPixel answers the colour set, both answer CLR_INVALID outside the clip.
COLORREF SetPixel(DrawContext* dc, int32_t x, int32_t y, COLORREF colour);
COLORREF GetPixel(const DrawContext* dc, int32_t x, int32_t y);

// Fills w by h pixels from (x, y) (a negative size extends to the left or up). The
// background colour of the context is left as it was.
void FillSolidRect(DrawContext* dc, int32_t x, int32_t y, int32_t w, int32_t h, COLORREF colour);
void FillSolidRect(DrawContext* dc, const RECT* rect, COLORREF colour);

// Pens and fonts are values; SelectObject answers the one selected before (a default pen or
// font for a null context).
CanvasPen CreatePen(int32_t style, int32_t width, COLORREF colour);
CanvasPen SelectObject(DrawContext* dc, const CanvasPen& pen);
CanvasFont SelectObject(DrawContext* dc, const CanvasFont& font);
// A font from a description whose height counts tenths of a point, at 96 pixels per inch:
// pixel height = round(|lfHeight| * 96 / 720). A height of 0 (or a null description) gives
// the 9 point default; weight 0 means normal.
CanvasFont CreatePointFontIndirect(const LOGFONT* font, const DrawContext* dc);

// The width and height of a text in the selected font (see canvas_font.h): {0, 0} for bad
// arguments, {0, height} for an empty text.
SIZE GetTextExtent(const DrawContext* dc, const char* text, int32_t length);
bool GetTextMetrics(const DrawContext* dc, TEXTMETRIC* metrics);

// Text state; each answers the former value. SetBkMode refuses a mode other than TRANSPARENT
// or OPAQUE and answers 0.
COLORREF SetTextColor(DrawContext* dc, COLORREF colour);
COLORREF SetBkColor(DrawContext* dc, COLORREF colour);
int32_t SetBkMode(DrawContext* dc, int32_t mode);
uint32_t SetTextAlign(DrawContext* dc, uint32_t flags);

// Draws a text at (x, y), placed by the text alignment: the reference point is the left
// edge, the right edge (x - width) or the middle (x - width / 2) of the text, and its top,
// bottom (y - height) or baseline (y - ascent). With TA_UPDATECP the current position is the
// reference point instead, and afterwards moves to the right end (TA_LEFT) or the left end
// (TA_RIGHT) of the text. In OPAQUE mode the text's cell, width by height, is first filled with
// the background colour. ETO_OPAQUE fills `rect` with the background colour first; ETO_CLIPPED
// clips the text and its background to `rect`. Text bytes are Latin-1.
bool ExtTextOut(DrawContext* dc, int32_t x, int32_t y, uint32_t options, const RECT* rect, const char* text,
                int32_t length);

// The intersection of two rectangles; when it is empty, `out` becomes 0, 0, 0, 0 and the
// answer is false.
bool IntersectRect(RECT* out, const RECT* a, const RECT* b);

// SaveDC pushes the state and answers its index (1 for the first), or 0 when the stack is
// full. RestoreDC brings back the state of an index, or with a negative argument the state
// that many saves back (-1: the last), and drops it and every later one.
int32_t SaveDC(DrawContext* dc);
bool RestoreDC(DrawContext* dc, int32_t saved);

// Copies pixels between the canvases of two contexts (or within one). Only SRCCOPY is
// served. StretchBlt maps dest pixel i of the w wide area (counted from x in the direction
// of w's sign) to source pixel xs + sign(ws) * floor((2i + 1) * |ws| / (2 |w|)), and likewise
// in y, so that opposite signs mirror. Sizes are limited as coordinates are. Source pixels
// outside the source canvas leave their destination pixels unchanged; the destination is
// clipped as every drawing is.
bool BitBlt(DrawContext* dest, int32_t x, int32_t y, int32_t w, int32_t h, const DrawContext* src, int32_t xs,
            int32_t ys, uint32_t rop);
bool StretchBlt(DrawContext* dest, int32_t x, int32_t y, int32_t w, int32_t h, const DrawContext* src, int32_t xs,
                int32_t ys, int32_t ws, int32_t hs, uint32_t rop);
