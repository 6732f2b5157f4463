#include "platform/canvas.h"

#include <algorithm>
#include <climits>
#include <cmath>
#include <cstdlib>
#include <new>

#include "platform/canvas_font.h"

namespace {

constexpr int32_t kDefaultFontHeight = 12;   // 9 point at 96 pixels per inch

int32_t ClampCoordinate(int64_t value)
{
    return static_cast<int32_t>(std::clamp<int64_t>(value, -kCanvasCoordinateLimit, kCanvasCoordinateLimit));
}

// A rectangle in 64-bit arithmetic, right and bottom exclusive; sizes of text and sums of
// coordinates may pass the 32-bit range before they are clipped.
struct Box {
    int64_t left, top, right, bottom;
};

bool BoxEmpty(const Box& box)
{
    return box.left >= box.right || box.top >= box.bottom;
}

Box Intersect(const Box& a, const Box& b)
{
    return {std::max(a.left, b.left), std::max(a.top, b.top), std::min(a.right, b.right), std::min(a.bottom, b.bottom)};
}

// The box between two corners, in order, each coordinate limited.
Box BetweenCorners(int64_t x0, int64_t y0, int64_t x1, int64_t y1)
{
    x0 = ClampCoordinate(x0), y0 = ClampCoordinate(y0), x1 = ClampCoordinate(x1), y1 = ClampCoordinate(y1);
    return {std::min(x0, x1), std::min(y0, y1), std::max(x0, x1), std::max(y0, y1)};
}

Box Ordered(const RECT& rect)
{
    return BetweenCorners(rect.left, rect.top, rect.right, rect.bottom);
}

RECT ToRect(const Box& box)
{
    return {ClampCoordinate(box.left), ClampCoordinate(box.top), ClampCoordinate(box.right),
            ClampCoordinate(box.bottom)};
}

Box CanvasBox(const TvCanvas* canvas)
{
    return canvas != nullptr ? Box{0, 0, canvas->width, canvas->height} : Box{0, 0, 0, 0};
}

// The part of the canvas that drawing reaches: the clip rectangle within the canvas.
Box ReachableBox(const DrawContext* dc)
{
    return Intersect(Ordered(dc->state.clip), CanvasBox(dc->canvas));
}

int32_t RegionKind(const Box& box)
{
    return BoxEmpty(box) ? NULLREGION : SIMPLEREGION;
}

uint32_t Opaque(COLORREF colour)
{
    return 0xFF000000u | (colour & 0x00FFFFFFu);
}

// The one place where pixels are written: a box already within the canvas.
void FillBox(TvCanvas* canvas, const Box& box, COLORREF colour)
{
    if (BoxEmpty(box)) return;
    uint32_t pixel = Opaque(colour);
    for (int64_t y = box.top; y < box.bottom; ++y) {
        uint32_t* row = canvas->pixels.data() + y * canvas->width;
        std::fill(row + box.left, row + box.right, pixel);
    }
}

// Fills a box, clipped to what the context reaches (and to `limit` as well).
void FillClipped(DrawContext* dc, const Box& box, const Box& limit, COLORREF colour)
{
    FillBox(dc->canvas, Intersect(Intersect(box, limit), ReachableBox(dc)), colour);
}

DrawState DefaultState(const TvCanvas* canvas)
{
    DrawState state{};
    state.position = {0, 0};
    state.pen = CanvasPen{PS_SOLID, 1, 0};
    state.font = CanvasFont{kDefaultFontHeight, FW_NORMAL, false, false, false, 0};
    state.textColour = 0;
    state.bkColour = 0xFFFFFF;
    state.bkMode = OPAQUE;
    state.textAlign = TA_LEFT | TA_TOP;
    state.clip = ToRect(CanvasBox(canvas));
    return state;
}

// Whether step `index` of a one-pixel line of a style is drawn.
bool StyleDrawsStep(int32_t style, int64_t index)
{
    static const int32_t dash[] = {18, 6};
    static const int32_t dot[] = {3, 3};
    static const int32_t dashDot[] = {9, 6, 3, 6};
    static const int32_t dashDotDot[] = {9, 3, 3, 3, 3, 3};
    const int32_t* pattern = nullptr;
    int32_t count = 0;
    switch (style) {
    case PS_DASH: pattern = dash; count = 2; break;
    case PS_DOT: pattern = dot; count = 2; break;
    case PS_DASHDOT: pattern = dashDot; count = 4; break;
    case PS_DASHDOTDOT: pattern = dashDotDot; count = 6; break;
    default: return true;
    }
    int64_t period = 0;
    for (int32_t k = 0; k < count; ++k) period += pattern[k];
    int64_t at = ((index % period) + period) % period;
    for (int32_t k = 0; k < count; ++k) {
        if (at < pattern[k]) return k % 2 == 0;
        at -= pattern[k];
    }
    return true;
}

bool PenIsWide(const CanvasPen& pen)
{
    return pen.width > 1;
}

// The first index in [lo, hi] for which a rising condition holds, or hi + 1.
template <class Condition>
int64_t FirstWhere(int64_t lo, int64_t hi, Condition holds)
{
    while (lo <= hi) {
        int64_t mid = lo + (hi - lo) / 2;
        if (holds(mid)) hi = mid - 1;
        else lo = mid + 1;
    }
    return lo;
}

// A line from (x0, y0) to (x1, y1) without its end point. Step i (0 <= i < n, n the extent
// along the long axis) draws at long-axis coordinate start + i and short-axis coordinate
// start + round(i * shortExtent / n), halves rounded away from the start; `phase` is the
// style step of the first pixel. Only the steps that can reach the visible box are walked.
void DrawLine(DrawContext* dc, int32_t x0, int32_t y0, int32_t x1, int32_t y1, const CanvasPen& pen, int64_t phase)
{
    if (pen.style == PS_NULL) return;
    Box reach = ReachableBox(dc);
    if (BoxEmpty(reach)) return;
    int64_t dx = int64_t{x1} - x0;
    int64_t dy = int64_t{y1} - y0;
    bool alongX = std::llabs(dx) >= std::llabs(dy);
    int64_t steps = alongX ? std::llabs(dx) : std::llabs(dy);
    if (steps == 0) return;
    int64_t across = alongX ? std::llabs(dy) : std::llabs(dx);
    int64_t stepSign = (alongX ? dx : dy) < 0 ? -1 : 1;
    int64_t acrossSign = (alongX ? dy : dx) < 0 ? -1 : 1;
    int64_t along0 = alongX ? x0 : y0;
    int64_t across0 = alongX ? y0 : x0;
    int64_t alongLo = alongX ? reach.left : reach.top;
    int64_t alongHi = (alongX ? reach.right : reach.bottom) - 1;
    int64_t acrossLo = alongX ? reach.top : reach.left;
    int64_t acrossHi = (alongX ? reach.bottom : reach.right) - 1;

    bool wide = PenIsWide(pen);
    int64_t run = 1;
    if (wide) {
        double length = std::hypot(static_cast<double>(dx), static_cast<double>(dy));
        run = std::max<int64_t>(
            1, std::llround(std::min(pen.width, kCanvasCoordinateLimit) * length / static_cast<double>(steps)));
    }
    int64_t before = run / 2;
    int64_t after = run - 1 - before;
    auto offset = [&](int64_t i) { return (2 * i * across + steps) / (2 * steps); };

    // Steps whose long-axis coordinate is visible.
    int64_t first = 0;
    int64_t last = steps - 1;
    if (stepSign > 0) {
        first = std::max(first, alongLo - along0);
        last = std::min(last, alongHi - along0);
    } else {
        first = std::max(first, along0 - alongHi);
        last = std::min(last, along0 - alongLo);
    }
    if (first > last) return;
    // Steps whose run across the line can be visible: the offset is monotonic in i.
    int64_t offsetLo = acrossSign > 0 ? acrossLo - across0 - after : across0 - before - acrossHi;
    int64_t offsetHi = acrossSign > 0 ? acrossHi - across0 + before : across0 + after - acrossLo;
    first = std::max(first, FirstWhere(first, last, [&](int64_t i) { return offset(i) >= offsetLo; }));
    last = std::min(last, FirstWhere(first, last, [&](int64_t i) { return offset(i) > offsetHi; }) - 1);

    uint32_t pixel = Opaque(pen.colour);
    TvCanvas* canvas = dc->canvas;
    for (int64_t i = first; i <= last; ++i) {
        if (!wide && !StyleDrawsStep(pen.style, phase + i)) continue;
        int64_t along = along0 + stepSign * i;
        int64_t centre = across0 + acrossSign * offset(i);
        int64_t from = std::max(centre - before, acrossLo);
        int64_t to = std::min(centre + after, acrossHi);
        for (int64_t k = from; k <= to; ++k) {
            int64_t x = alongX ? along : k;
            int64_t y = alongX ? k : along;
            canvas->pixels[static_cast<size_t>(y * canvas->width + x)] = pixel;
        }
    }
}

FontFace FaceOf(const CanvasFont& font)
{
    return MakeFontFace(font.height, font.weight, font.underline, font.strikeOut);
}

// The pixel of a source canvas that a destination step samples (see StretchBlt).
int64_t SourceStep(int64_t start, int64_t sourceExtent, int64_t destExtent, int64_t i)
{
    int64_t sign = sourceExtent < 0 ? -1 : 1;
    int64_t s = std::llabs(sourceExtent);
    int64_t d = std::llabs(destExtent);
    return start + sign * ((2 * i + 1) * s / (2 * d));
}

// The steps i in [0, |extent|) of an area from `origin` in the direction of extent's sign
// whose coordinate lies in [lo, hi).
void VisibleSteps(int64_t origin, int64_t extent, int64_t lo, int64_t hi, int64_t* first, int64_t* last)
{
    int64_t n = std::llabs(extent);
    if (extent > 0) {
        *first = std::max<int64_t>(0, lo - origin);
        *last = std::min<int64_t>(n - 1, hi - 1 - origin);
    } else {
        *first = std::max<int64_t>(0, origin - (hi - 1));
        *last = std::min<int64_t>(n - 1, origin - lo);
    }
}

} // namespace

DrawContext* GetDC(TvCanvas* wnd)
{
    if (wnd == nullptr) return nullptr;
    DrawContext* dc = new (std::nothrow) DrawContext{};
    if (dc == nullptr) return nullptr;
    dc->canvas = wnd;
    dc->state = DefaultState(wnd);
    return dc;
}

int32_t ReleaseDC(TvCanvas* wnd, DrawContext* dc)
{
    if (dc == nullptr || dc->canvas != wnd) return 0;
    delete dc;
    return 1;
}

bool GetClientRect(const TvCanvas* wnd, RECT* rect)
{
    if (wnd == nullptr || rect == nullptr) return false;
    *rect = ToRect(CanvasBox(wnd));
    return true;
}

int32_t GetClipBox(const DrawContext* dc, RECT* rect)
{
    if (dc == nullptr || rect == nullptr) return RGN_ERROR;
    Box reach = ReachableBox(dc);
    if (BoxEmpty(reach)) reach = {0, 0, 0, 0};
    *rect = ToRect(reach);
    return RegionKind(reach);
}

int32_t IntersectClipRect(DrawContext* dc, int32_t left, int32_t top, int32_t right, int32_t bottom)
{
    if (dc == nullptr) return RGN_ERROR;
    Box clip = Intersect(Ordered(dc->state.clip), BetweenCorners(left, top, right, bottom));
    if (BoxEmpty(clip)) clip = {0, 0, 0, 0};
    dc->state.clip = ToRect(clip);
    return RegionKind(ReachableBox(dc));
}

int32_t SelectClipRect(DrawContext* dc, const RECT* rect)
{
    if (dc == nullptr) return RGN_ERROR;
    dc->state.clip = rect != nullptr ? ToRect(Ordered(*rect)) : ToRect(CanvasBox(dc->canvas));
    return RegionKind(ReachableBox(dc));
}

POINT MoveTo(DrawContext* dc, int32_t x, int32_t y)
{
    if (dc == nullptr) return {0, 0};
    POINT former = dc->state.position;
    dc->state.position = {ClampCoordinate(x), ClampCoordinate(y)};
    return former;
}

bool LineTo(DrawContext* dc, int32_t x, int32_t y)
{
    if (dc == nullptr) return false;
    POINT to{ClampCoordinate(x), ClampCoordinate(y)};
    DrawLine(dc, dc->state.position.x, dc->state.position.y, to.x, to.y, dc->state.pen, 0);
    dc->state.position = to;
    return true;
}

bool Rectangle(DrawContext* dc, int32_t left, int32_t top, int32_t right, int32_t bottom)
{
    if (dc == nullptr) return false;
    Box box = BetweenCorners(left, top, right, bottom);
    const CanvasPen& pen = dc->state.pen;
    if (BoxEmpty(box) || pen.style == PS_NULL) return true;
    int64_t l = box.left, t = box.top, r = box.right - 1, b = box.bottom - 1;   // the outline, inclusive
    if (!PenIsWide(pen)) {
        if (l == r && t == b) {
            if (StyleDrawsStep(pen.style, 0)) FillClipped(dc, box, box, pen.colour);
            return true;
        }
        // Clockwise from the top left corner, each side without its last pixel, so that the
        // style runs on around the corners and each corner is drawn once.
        int64_t w = r - l, h = b - t;
        auto side = [&](int64_t ax, int64_t ay, int64_t bx, int64_t by, int64_t phase) {
            DrawLine(dc, static_cast<int32_t>(ax), static_cast<int32_t>(ay), static_cast<int32_t>(bx),
                     static_cast<int32_t>(by), pen, phase);
        };
        side(l, t, r, t, 0);
        side(r, t, r, b, w);
        side(r, b, l, b, w + h);
        side(l, b, l, t, 2 * w + h);
        return true;
    }
    int64_t width = std::min(pen.width, kCanvasCoordinateLimit);
    int64_t before = width / 2, after = width - 1 - before;
    // The outer edge of the bands: around the outline, or the rectangle itself.
    Box outer = pen.style == PS_INSIDEFRAME ? box : Box{l - before, t - before, r + after + 1, b + after + 1};
    FillClipped(dc, {outer.left, outer.top, outer.right, outer.top + width}, outer, pen.colour);
    FillClipped(dc, {outer.left, outer.bottom - width, outer.right, outer.bottom}, outer, pen.colour);
    FillClipped(dc, {outer.left, outer.top, outer.left + width, outer.bottom}, outer, pen.colour);
    FillClipped(dc, {outer.right - width, outer.top, outer.right, outer.bottom}, outer, pen.colour);
    return true;
}

COLORREF SetPixel(DrawContext* dc, int32_t x, int32_t y, COLORREF colour)
{
    if (dc == nullptr) return CLR_INVALID;
    Box reach = ReachableBox(dc);
    if (x < reach.left || x >= reach.right || y < reach.top || y >= reach.bottom) return CLR_INVALID;
    FillBox(dc->canvas, {x, y, int64_t{x} + 1, int64_t{y} + 1}, colour);
    return colour & 0x00FFFFFFu;
}

COLORREF GetPixel(const DrawContext* dc, int32_t x, int32_t y)
{
    if (dc == nullptr) return CLR_INVALID;
    Box reach = ReachableBox(dc);
    if (x < reach.left || x >= reach.right || y < reach.top || y >= reach.bottom) return CLR_INVALID;
    return dc->canvas->pixels[static_cast<size_t>(int64_t{y} * dc->canvas->width + x)] & 0x00FFFFFFu;
}

void FillSolidRect(DrawContext* dc, int32_t x, int32_t y, int32_t w, int32_t h, COLORREF colour)
{
    if (dc == nullptr) return;
    Box box = BetweenCorners(x, y, int64_t{x} + w, int64_t{y} + h);
    FillClipped(dc, box, box, colour);
}

void FillSolidRect(DrawContext* dc, const RECT* rect, COLORREF colour)
{
    if (dc == nullptr || rect == nullptr) return;
    Box box = BetweenCorners(rect->left, rect->top, rect->right, rect->bottom);
    FillClipped(dc, box, box, colour);
}

CanvasPen CreatePen(int32_t style, int32_t width, COLORREF colour)
{
    CanvasPen pen{};
    pen.style = style >= PS_SOLID && style <= PS_INSIDEFRAME ? style : PS_SOLID;
    pen.width = std::max(width, 0);
    pen.colour = colour & 0x00FFFFFFu;
    return pen;
}

CanvasPen SelectObject(DrawContext* dc, const CanvasPen& pen)
{
    if (dc == nullptr) return DefaultState(nullptr).pen;
    CanvasPen former = dc->state.pen;
    dc->state.pen = CreatePen(pen.style, pen.width, pen.colour);
    return former;
}

CanvasFont SelectObject(DrawContext* dc, const CanvasFont& font)
{
    if (dc == nullptr) return DefaultState(nullptr).font;
    CanvasFont former = dc->state.font;
    dc->state.font = font;
    dc->state.font.height = std::clamp(font.height, kFontMinPixelHeight, kFontMaxPixelHeight);
    return former;
}

CanvasFont CreatePointFontIndirect(const LOGFONT* font, const DrawContext* /*dc: all contexts have 96 pixels per inch*/)
{
    CanvasFont made = DefaultState(nullptr).font;
    if (font == nullptr) return made;
    int64_t tenths = std::llabs(int64_t{font->lfHeight});
    int64_t pixels = (tenths * 96 + 360) / 720;
    if (pixels > 0) made.height = static_cast<int32_t>(std::min<int64_t>(pixels, kFontMaxPixelHeight));
    made.weight = font->lfWeight > 0 ? font->lfWeight : FW_NORMAL;
    made.italic = font->lfItalic != 0;
    made.underline = font->lfUnderline != 0;
    made.strikeOut = font->lfStrikeOut != 0;
    made.escapement = font->lfEscapement == kEscapementUp ? kEscapementUp : 0;
    return made;
}

SIZE GetTextExtent(const DrawContext* dc, const char* text, int32_t length)
{
    if (dc == nullptr || length < 0 || (length > 0 && text == nullptr)) return {0, 0};
    FontFace face = FaceOf(dc->state.font);
    int64_t width = TextWidth(face, text, static_cast<size_t>(length));
    return {static_cast<int32_t>(std::min<int64_t>(width, INT32_MAX)), face.height};
}

bool GetTextMetrics(const DrawContext* dc, TEXTMETRIC* metrics)
{
    if (dc == nullptr || metrics == nullptr) return false;
    FontMetrics m = GetFontMetrics(FaceOf(dc->state.font));
    *metrics = {m.height, m.ascent, m.descent, m.averageWidth, m.maxWidth};
    return true;
}

COLORREF SetTextColor(DrawContext* dc, COLORREF colour)
{
    if (dc == nullptr) return CLR_INVALID;
    COLORREF former = dc->state.textColour;
    dc->state.textColour = colour & 0x00FFFFFFu;
    return former;
}

COLORREF SetBkColor(DrawContext* dc, COLORREF colour)
{
    if (dc == nullptr) return CLR_INVALID;
    COLORREF former = dc->state.bkColour;
    dc->state.bkColour = colour & 0x00FFFFFFu;
    return former;
}

int32_t SetBkMode(DrawContext* dc, int32_t mode)
{
    if (dc == nullptr || (mode != TRANSPARENT && mode != OPAQUE)) return 0;
    int32_t former = dc->state.bkMode;
    dc->state.bkMode = mode;
    return former;
}

uint32_t SetTextAlign(DrawContext* dc, uint32_t flags)
{
    if (dc == nullptr) return 0;
    uint32_t former = dc->state.textAlign;
    dc->state.textAlign = flags;
    return former;
}

namespace {

// The glyphs of a text whose cell starts at `left` along the baseline (x right) and at `top`
// across it (y down), drawn inside `visible`.
void DrawGlyphsLevel(TvCanvas* canvas, const FontFace& face, const char* text, int32_t length, int64_t left,
                     int64_t top, const Box& visible, uint32_t ink)
{
    int64_t penX = left;
    for (int32_t i = 0; i < length && penX < visible.right; ++i) {
        unsigned char code = static_cast<unsigned char>(text[i]);
        int64_t advance = GlyphAdvance(face, code);
        int64_t from = std::max(penX, visible.left);
        int64_t to = std::min(penX + advance, visible.right);
        for (int64_t py = visible.top; py < visible.bottom; ++py) {
            uint32_t* row = canvas->pixels.data() + py * canvas->width;
            for (int64_t px = from; px < to; ++px)
                if (CellInk(face, code, static_cast<int32_t>(px - penX), static_cast<int32_t>(py - top)))
                    row[px] = ink;
        }
        penX += advance;
    }
}

// The same with the baseline running upward from the reference point: text column c and row
// r of the cell land at x = refX + across + r, y = refY - 1 - (along + c).
void DrawGlyphsUp(TvCanvas* canvas, const FontFace& face, const char* text, int32_t length, int64_t refX,
                  int64_t refY, int64_t along, int64_t across, const Box& visible, uint32_t ink)
{
    int64_t pen = along;
    for (int32_t i = 0; i < length; ++i) {
        unsigned char code = static_cast<unsigned char>(text[i]);
        int64_t advance = GlyphAdvance(face, code);
        for (int64_t c = 0; c < advance; ++c) {
            int64_t py = refY - 1 - (pen + c);
            if (py < visible.top || py >= visible.bottom) continue;
            uint32_t* row = canvas->pixels.data() + py * canvas->width;
            for (int64_t r = 0; r < face.height; ++r) {
                int64_t px = refX + across + r;
                if (px >= visible.left && px < visible.right &&
                    CellInk(face, code, static_cast<int32_t>(c), static_cast<int32_t>(r)))
                    row[px] = ink;
            }
        }
        pen += advance;
    }
}

} // namespace

bool ExtTextOut(DrawContext* dc, int32_t x, int32_t y, uint32_t options, const RECT* rect, const char* text,
                int32_t length)
{
    if (dc == nullptr || length < 0 || (length > 0 && text == nullptr)) return false;
    const DrawState& state = dc->state;
    FontFace face = FaceOf(state.font);
    const bool up = state.font.escapement == kEscapementUp;
    int64_t width = TextWidth(face, text, static_cast<size_t>(length));
    uint32_t align = state.textAlign;
    bool updateCp = (align & TA_UPDATECP) != 0;
    int64_t refX = updateCp ? state.position.x : ClampCoordinate(x);
    int64_t refY = updateCp ? state.position.y : ClampCoordinate(y);

    // The cell relative to the reference point, along the baseline and across it.
    int64_t along = 0;
    uint32_t horizontal = align & TA_CENTER;
    if (horizontal == TA_CENTER) along = -(width / 2);
    else if (horizontal == TA_RIGHT) along = -width;
    int64_t across = 0;
    uint32_t vertical = align & TA_BASELINE;
    if (vertical == TA_BASELINE) across = -face.ascent;
    else if (vertical == TA_BOTTOM) across = -face.height;

    Box unlimited{INT64_MIN / 4, INT64_MIN / 4, INT64_MAX / 4, INT64_MAX / 4};
    Box given = rect != nullptr ? Ordered(*rect) : unlimited;
    if ((options & ETO_OPAQUE) != 0 && rect != nullptr) FillClipped(dc, given, given, state.bkColour);
    Box limit = (options & ETO_CLIPPED) != 0 ? given : unlimited;
    Box cell = up ? Box{refX + across, refY - (along + width), refX + across + face.height, refY - along}
                  : Box{refX + along, refY + across, refX + along + width, refY + across + face.height};
    if (state.bkMode == OPAQUE) FillClipped(dc, cell, limit, state.bkColour);

    Box visible = Intersect(Intersect(cell, limit), ReachableBox(dc));
    if (!BoxEmpty(visible)) {
        uint32_t ink = Opaque(state.textColour);
        if (up)
            DrawGlyphsUp(dc->canvas, face, text, length, refX, refY, along, across, visible, ink);
        else
            DrawGlyphsLevel(dc->canvas, face, text, length, refX + along, refY + across, visible, ink);
    }

    if (updateCp) {
        int64_t moved = horizontal == TA_LEFT ? width : horizontal == TA_RIGHT ? -width : 0;
        if (up) dc->state.position.y = ClampCoordinate(refY - moved);
        else dc->state.position.x = ClampCoordinate(refX + moved);
    }
    return true;
}

bool IntersectRect(RECT* out, const RECT* a, const RECT* b)
{
    if (out == nullptr || a == nullptr || b == nullptr) return false;
    Box both = Intersect(Box{a->left, a->top, a->right, a->bottom}, Box{b->left, b->top, b->right, b->bottom});
    bool empty = BoxEmpty(both) || a->left >= a->right || a->top >= a->bottom || b->left >= b->right ||
                 b->top >= b->bottom;
    *out = empty ? RECT{0, 0, 0, 0} : ToRect(both);
    return !empty;
}

int32_t SaveDC(DrawContext* dc)
{
    if (dc == nullptr || dc->saved.size() >= static_cast<size_t>(kMaxSavedStates)) return 0;
    dc->saved.push_back(dc->state);
    return static_cast<int32_t>(dc->saved.size());
}

bool RestoreDC(DrawContext* dc, int32_t saved)
{
    if (dc == nullptr || saved == 0) return false;
    int64_t count = static_cast<int64_t>(dc->saved.size());
    int64_t index = saved > 0 ? saved : count + 1 + saved;
    if (index < 1 || index > count) return false;
    dc->state = dc->saved[static_cast<size_t>(index - 1)];
    dc->saved.resize(static_cast<size_t>(index - 1));
    return true;
}

bool BitBlt(DrawContext* dest, int32_t x, int32_t y, int32_t w, int32_t h, const DrawContext* src, int32_t xs,
            int32_t ys, uint32_t rop)
{
    return StretchBlt(dest, x, y, w, h, src, xs, ys, w, h, rop);
}

bool StretchBlt(DrawContext* dest, int32_t x, int32_t y, int32_t w, int32_t h, const DrawContext* src, int32_t xs,
                int32_t ys, int32_t ws, int32_t hs, uint32_t rop)
{
    if (dest == nullptr || src == nullptr || src->canvas == nullptr || rop != SRCCOPY) return false;
    if (w == 0 || h == 0 || ws == 0 || hs == 0) return true;
    w = ClampCoordinate(w), h = ClampCoordinate(h), ws = ClampCoordinate(ws), hs = ClampCoordinate(hs);
    int64_t ox = ClampCoordinate(x), oy = ClampCoordinate(y);
    int64_t sx0 = ClampCoordinate(xs), sy0 = ClampCoordinate(ys);
    Box reach = ReachableBox(dest);
    if (BoxEmpty(reach)) return true;
    int64_t iFirst, iLast, jFirst, jLast;
    VisibleSteps(ox, w, reach.left, reach.right, &iFirst, &iLast);
    VisibleSteps(oy, h, reach.top, reach.bottom, &jFirst, &jLast);
    const TvCanvas* source = src->canvas;
    // Within one canvas the source is read from a copy taken before any pixel is written.
    std::vector<uint32_t> copy;
    const uint32_t* from = source->pixels.data();
    if (source == dest->canvas) {
        copy = source->pixels;
        from = copy.data();
    }
    int64_t xSign = w < 0 ? -1 : 1, ySign = h < 0 ? -1 : 1;
    TvCanvas* canvas = dest->canvas;
    for (int64_t j = jFirst; j <= jLast; ++j) {
        int64_t sy = SourceStep(sy0, hs, h, j);
        if (sy < 0 || sy >= source->height) continue;
        int64_t dy = oy + ySign * j;
        for (int64_t i = iFirst; i <= iLast; ++i) {
            int64_t sx = SourceStep(sx0, ws, w, i);
            if (sx < 0 || sx >= source->width) continue;
            int64_t dx = ox + xSign * i;
            canvas->pixels[static_cast<size_t>(dy * canvas->width + dx)] = from[sy * source->width + sx];
        }
    }
    return true;
}
