// Vector drawing of the current frame store for the other parts of the library. Coordinates are
// relative to the origin of the clip rectangle; what lies outside the clip rectangle is not
// drawn.
#include "display/clip_line.h"
#include "display/vfs.h"
#include "host/errors.h"

#include <algorithm>

namespace {

struct FSDrawState {
    RECT clip{0, 0, kFrameWidth - 1, kFrameHeight - 1};   // inclusive, frame coordinates
    int colour = 0;
    int textColour = 0;
    POINT position{0, 0};                                   // frame coordinates
    bool fontSet = false;
    FontRecType font{};
    uint32_t alignWord = 0;
};

FSDrawState g_draw;

bool InClip(int x, int y)
{
    return x >= g_draw.clip.left && x <= g_draw.clip.right && y >= g_draw.clip.top && y <= g_draw.clip.bottom;
}

int AbsoluteX(int x) { return static_cast<int>(std::clamp<int64_t>(int64_t{g_draw.clip.left} + x, INT32_MIN, INT32_MAX)); }
int AbsoluteY(int y) { return static_cast<int>(std::clamp<int64_t>(int64_t{g_draw.clip.top} + y, INT32_MIN, INT32_MAX)); }

} // namespace

void FSSetClip(int left, int top, int right, int bottom)
{
    g_draw.clip = {std::min(left, right), std::min(top, bottom), std::max(left, right), std::max(top, bottom)};
    if (CVfs* vfs = CurrentVfs())
        vfs->AddClip(g_draw.clip.left, g_draw.clip.top, g_draw.clip.right, g_draw.clip.bottom);
}

void FSGetClip(int* left, int* top, int* right, int* bottom)
{
    if (left) *left = g_draw.clip.left;
    if (top) *top = g_draw.clip.top;
    if (right) *right = g_draw.clip.right;
    if (bottom) *bottom = g_draw.clip.bottom;
}

void FSSetColour(int index) { g_draw.colour = index & 0xff; }
int FSGetColour() { return g_draw.colour; }
void FSSetTextColour(int index) { g_draw.textColour = index & 0xff; }
int FSGetTextColour() { return g_draw.textColour; }

void FSSetTextFont(const FontRecType& font)
{
    g_draw.font = font;
    g_draw.fontSet = true;
}

void FSSetTextAlign(uint32_t alignWord) { g_draw.alignWord = alignWord; }

void FSMoveTo(int x, int y)
{
    const int ax = AbsoluteX(x), ay = AbsoluteY(y);
    // A move outside the clip rectangle goes to its origin.
    g_draw.position = InClip(ax, ay) ? POINT{ax, ay} : POINT{g_draw.clip.left, g_draw.clip.top};
}

void FSLineTo(int x, int y, int width)
{
    int32_t x1 = g_draw.position.x, y1 = g_draw.position.y;
    int32_t x2 = AbsoluteX(x), y2 = AbsoluteY(y);
    g_draw.position = {x2, y2};
    CVfs* vfs = CurrentVfs();
    if (!vfs || !ClipLineCohenSutherland(&x1, &y1, &x2, &y2, g_draw.clip)) return;
    vfs->AddLine(x1, y1, x2, y2, IndexColour(g_draw.colour), width);
}

void FSBox(int kind, int x1, int y1, int x2, int y2)
{
    if (kind != VFS_ITEM_RECT && kind != VFS_ITEM_FILL) {
        ProgramError("FSBox %d", kind);
        return;
    }
    const int ax1 = AbsoluteX(x1), ay1 = AbsoluteY(y1), ax2 = AbsoluteX(x2), ay2 = AbsoluteY(y2);
    const int left = std::max(std::min(ax1, ax2), static_cast<int>(g_draw.clip.left));
    const int top = std::max(std::min(ay1, ay2), static_cast<int>(g_draw.clip.top));
    const int right = std::min(std::max(ax1, ax2), static_cast<int>(g_draw.clip.right));
    const int bottom = std::min(std::max(ay1, ay2), static_cast<int>(g_draw.clip.bottom));
    CVfs* vfs = CurrentVfs();
    if (!vfs || left > right || top > bottom) return;
    if (kind == VFS_ITEM_RECT)
        vfs->AddRect(left, top, right, bottom, IndexColour(g_draw.colour));
    else
        vfs->AddFill(left, top, right, bottom, IndexColour(g_draw.colour));
}

const FontRecType& FSGetTextFont() { return g_draw.fontSet ? g_draw.font : NamedFont(FONT_GENERAL); }

void FSTextOut(int x, int y, const char* text)
{
    const int ax = AbsoluteX(x), ay = AbsoluteY(y);
    CVfs* vfs = CurrentVfs();
    if (!vfs || !text || !InClip(ax, ay)) return;
    const FontRecType& font = FSGetTextFont();
    vfs->AddText(ax, ay, font, nullptr, text, g_draw.alignWord, IndexColour(g_draw.textColour), kWhite);
}

void ResetFSDrawState() { g_draw = FSDrawState{}; }
