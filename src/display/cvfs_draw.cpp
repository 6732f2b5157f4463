// The vector items of the display list: each kind is added (outside a replay) and drawn (with
// no batch open, or during a replay) by one routine.
#include "display/cvfs.h"
#include "display/vfs.h"

#include <algorithm>
#include <climits>
#include <cmath>
#include <cstring>

namespace {

RECT NormalisedBounds(double x1, double y1, double x2, double y2)
{
    return {FrameInt(std::min(x1, x2)), FrameInt(std::min(y1, y2)), FrameInt(std::max(x1, x2)),
            FrameInt(std::max(y1, y2))};
}

int32_t Clamp32(int64_t value)
{
    return static_cast<int32_t>(std::clamp<int64_t>(value, INT32_MIN, INT32_MAX));
}

int32_t TextLength(const char* text)
{
    return static_cast<int32_t>(std::min<size_t>(std::strlen(text), INT32_MAX));
}

} // namespace

// The pen follows the colour only: a new colour builds a pen of the width asked for, scaled to
// the replay; the same colour keeps the pen as it is, whatever width is asked for now. The
// replay order of the list depends on this.
void CVfs::UsePen(uint32_t colour, int32_t width)
{
    if (colour != PenColour) {
        const int32_t penWidth = width == -1 ? 1 : FrameInt(width * std::min(ScaleX, ScaleY));
        Pen = CreatePen(PS_SOLID, penWidth, colour);
        PenColour = colour;
    }
}

void CVfs::AddLine(double x1, double y1, double x2, double y2, uint32_t colour, int32_t width)
{
    if (Replaying) {
        x1 = MapX(x1), y1 = MapY(y1), x2 = MapX(x2), y2 = MapY(y2);
    } else {
        CVfsItem item;
        item.Kind = VFS_ITEM_LINE;
        item.X1 = x1, item.Y1 = y1, item.X2 = x2, item.Y2 = y2;
        item.LineWidth = width;
        item.Colour = colour;
        if (!AddItem(item)) return;
    }
    if (BatchDepth != 0) return;
    PrepareForDrawing(nullptr);
    if (DC) {
        UsePen(colour, width);
        CanvasPen former = SelectObject(DC, Pen);
        MoveTo(DC, FrameInt(x1), FrameInt(y1));
        LineTo(DC, FrameInt(x2), FrameInt(y2));
        SelectObject(DC, former);
    }
    FinishDrawing();
}

void CVfs::AddRect(double x1, double y1, double x2, double y2, uint32_t colour)
{
    if (Replaying) {
        x1 = MapX(x1), y1 = MapY(y1), x2 = MapX(x2), y2 = MapY(y2);
    } else {
        CVfsItem item;
        item.Kind = VFS_ITEM_RECT;
        item.X1 = x1, item.Y1 = y1, item.X2 = x2, item.Y2 = y2;
        item.Bounds = NormalisedBounds(x1, y1, x2, y2);
        item.LineWidth = 1;
        item.Colour = colour;
        if (!AddItem(item)) return;
    }
    if (BatchDepth != 0) return;
    PrepareForDrawing(nullptr);
    if (DC) {
        UsePen(colour, 1);
        CanvasPen former = SelectObject(DC, Pen);
        const RECT box = NormalisedBounds(x1, y1, x2, y2);
        // The outline takes in its right and bottom edges.
        Rectangle(DC, box.left, box.top, Clamp32(int64_t{box.right} + 1), Clamp32(int64_t{box.bottom} + 1));
        SelectObject(DC, former);
    }
    FinishDrawing();
}

void CVfs::AddFill(double x1, double y1, double x2, double y2, uint32_t colour)
{
    if (Replaying) {
        x1 = MapX(x1), y1 = MapY(y1), x2 = MapX(x2), y2 = MapY(y2);
    } else {
        const RECT bounds = NormalisedBounds(x1, y1, x2, y2);
        // Black is the eraser of the list: what lies under a black fill goes.
        if (colour == kBlack) EraseItems(bounds.left, bounds.top, bounds.right, bounds.bottom);
        CVfsItem item;
        item.Kind = VFS_ITEM_FILL;
        item.X1 = x1, item.Y1 = y1, item.X2 = x2, item.Y2 = y2;
        item.Bounds = bounds;
        item.Colour = colour;
        if (!AddItem(item)) return;
    }
    if (BatchDepth != 0) return;
    PrepareForDrawing(nullptr);
    if (DC) {
        const RECT box = NormalisedBounds(x1, y1, x2, y2);
        FillSolidRect(DC, box.left, box.top, Clamp32(int64_t{box.right} - box.left + 1),
                      Clamp32(int64_t{box.bottom} - box.top + 1), colour);
    }
    FinishDrawing();
}

void CVfs::AddPixel(double x, double y, uint32_t colour)
{
    if (Replaying) {
        x = MapX(x), y = MapY(y);
    } else {
        CVfsItem item;
        item.Kind = VFS_ITEM_PIXEL;
        item.X1 = item.X2 = x;
        item.Y1 = item.Y2 = y;
        item.Bounds = NormalisedBounds(x, y, x, y);
        item.Colour = colour;
        if (!AddItem(item)) return;
    }
    if (BatchDepth != 0) return;
    PrepareForDrawing(nullptr);
    if (DC) SetPixel(DC, FrameInt(x), FrameInt(y), colour);
    FinishDrawing();
}

void CVfs::AddClip(double x1, double y1, double x2, double y2)
{
    if (Replaying) return;
    CVfsItem item;
    item.Kind = VFS_ITEM_CLIP;
    item.X1 = x1, item.Y1 = y1, item.X2 = x2, item.Y2 = y2;
    item.Bounds = NormalisedBounds(x1, y1, x2, y2);
    AddItem(item);
}

SIZE CVfs::TextExtent(const FontRecType& font, const char* text)
{
    // Every context measures alike (one resolution), so a context without a canvas measures
    // for the box even when nothing is drawn.
    DrawContext scratch{};
    scratch.canvas = nullptr;
    scratch.state.font = CreatePointFontIndirect(&font.Font, DC);
    return GetTextExtent(&scratch, text, TextLength(text));
}

void CVfs::AddText(double x, double y, const FontRecType& font, const RECT* clip, const char* text,
                   uint32_t alignWord, uint32_t colour, uint32_t backColour)
{
    if (!text) text = "";
    const uint8_t alignH = static_cast<uint8_t>(alignWord & 0xff);
    const uint8_t alignV = static_cast<uint8_t>((alignWord >> 8) & 0xff);
    const uint8_t backMode = static_cast<uint8_t>((alignWord >> 16) & 0xff);

    RECT clipBox{0, 0, 0, 0};
    if (clip) clipBox = *clip;
    double px = x, py = y;
    if (Replaying) {
        px = MapX(x), py = MapY(y);
        if (clip)
            clipBox = {FrameInt(MapX(clip->left)), FrameInt(MapY(clip->top)), FrameInt(MapX(clip->right)),
                       FrameInt(MapY(clip->bottom))};
    }

    const bool draw = BatchDepth == 0;
    if (draw) PrepareForDrawing(nullptr);

    const SIZE extent = TextExtent(font, text);
    const int64_t w = extent.cx, h = extent.cy;
    int64_t ix = FrameInt(px), iy = FrameInt(py);
    // The box along the baseline (a0..a1) and across it (c0..c1), from the reference point.
    int64_t a0, a1, c0, c1;
    uint32_t flags = 0;
    switch (alignH) {
    case 0: a0 = 0, a1 = w + 1, flags |= TA_LEFT; break;
    case 2: a0 = -w, a1 = 0, flags |= TA_RIGHT; break;
    default: a0 = -w / 2 - 1, a1 = w / 2, flags |= TA_CENTER; break;
    }
    int64_t shift = 0;
    switch (alignV) {
    case 0: c0 = -h, c1 = 0, flags |= TA_BOTTOM; break;
    case 2: c0 = 0, c1 = h, flags |= TA_TOP; break;
    default: shift = h / 2, c0 = 0, c1 = h, flags |= TA_TOP; break;
    }
    // A text turned upward runs along -y, and its across direction is +x.
    const bool up = font.Font.lfEscapement == kEscapementUp;
    if (up) ix -= shift;
    else iy -= shift;
    RECT box = up ? RECT{Clamp32(ix + c0), Clamp32(iy - a1), Clamp32(ix + c1), Clamp32(iy - a0)}
                  : RECT{Clamp32(ix + a0), Clamp32(iy + c0), Clamp32(ix + a1), Clamp32(iy + c1)};
    if (clip) box = clipBox;

    if (draw && DC) {
        const uint32_t textColour = font.UseGivenColour == 0 ? font.FontColour : colour;
        CanvasFont former = SelectObject(DC, CreatePointFontIndirect(&font.Font, DC));
        SetBkMode(DC, backMode == kBackModeOpaque ? OPAQUE : TRANSPARENT);
        SetBkColor(DC, backColour);
        SetTextColor(DC, textColour);
        SetTextAlign(DC, flags);
        ExtTextOut(DC, Clamp32(ix), Clamp32(iy), ETO_CLIPPED, &box, text, TextLength(text));
        SelectObject(DC, former);
    }
    if (draw) FinishDrawing();

    if (!Replaying) {
        CVfsItem item;
        item.Kind = VFS_ITEM_TEXT;
        item.Bounds = box;
        item.Text = text;
        item.X1 = item.X2 = x;
        item.Y1 = item.Y2 = y;
        item.Colour = colour;
        item.BackColour = backColour;
        item.AlignH = alignH, item.AlignV = alignV, item.BackMode = backMode;
        item.Font = font;
        AddItem(item);
    }
}

void CVfs::MeasureText(RECT* out, double x, double y, const FontRecType& font, const char* text, uint32_t alignWord)
{
    if (!out) return;
    if (!text) text = "";
    const uint8_t alignH = static_cast<uint8_t>(alignWord & 0xff);
    const uint8_t alignV = static_cast<uint8_t>((alignWord >> 8) & 0xff);
    const SIZE extent = TextExtent(font, text);
    const int64_t w = extent.cx, h = extent.cy;
    int64_t left = FrameInt(x), top = FrameInt(y);
    if (alignH == 2) left -= w;
    if (alignH == 1) left -= w / 2;
    if (alignV == 0) top -= h;
    if (alignV == 4) top -= h / 2;
    *out = {Clamp32(left), Clamp32(top), Clamp32(left + w), Clamp32(top + h)};
}
