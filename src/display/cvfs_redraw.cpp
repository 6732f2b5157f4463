// The repaint of the display list: every item that touches the rectangle of interest is drawn
// again, scaled and offset onto the destination rectangle.
#include "display/cvfs.h"
#include "display/vfs.h"
#include "host/errors.h"

#include <algorithm>

namespace {

enum ContextSource { kContextHeld = 1, kContextGiven = 2, kContextOfWindow = 3 };

RECT Normalised(const RECT& r)
{
    return {std::min(r.left, r.right), std::min(r.top, r.bottom), std::max(r.left, r.right),
            std::max(r.top, r.bottom)};
}

} // namespace

void CVfs::DrawItem(const CVfsItem& item, const RECT& interest)
{
    switch (item.Kind) {
    case VFS_ITEM_LINE: AddLine(item.X1, item.Y1, item.X2, item.Y2, item.Colour, item.LineWidth); break;
    case VFS_ITEM_PIXEL: AddPixel(item.X1, item.Y1, item.Colour); break;
    case VFS_ITEM_TEXT:
        AddText(item.X1, item.Y1, item.Font, &item.Bounds, item.Text.c_str(),
                TextAlignWord(item.AlignH, item.AlignV, item.BackMode), item.Colour, item.BackColour);
        break;
    case VFS_ITEM_RECT: AddRect(item.X1, item.Y1, item.X2, item.Y2, item.Colour); break;
    case VFS_ITEM_FILL: {
        // A fill is cut to the rectangle of interest first.
        const double left = std::max(std::min(item.X1, item.X2), static_cast<double>(interest.left));
        const double top = std::max(std::min(item.Y1, item.Y2), static_cast<double>(interest.top));
        const double right = std::min(std::max(item.X1, item.X2), static_cast<double>(interest.right));
        const double bottom = std::min(std::max(item.Y1, item.Y2), static_cast<double>(interest.bottom));
        if (left <= right && top <= bottom) AddFill(left, top, right, bottom, item.Colour);
        break;
    }
    default: break;
    }
}

void CVfs::RedrawVFS(const RECT& dest, const RECT& clip, DrawContext* dc)
{
    if (BatchDepth != 0) return;   // the end of the batch repaints

    int source;
    if (DC) {
        source = kContextHeld;
    } else if (dc) {
        source = kContextGiven;
        DC = dc;
    } else {
        source = kContextOfWindow;
        PrepareForDrawing(nullptr);
    }

    Replaying = 1;
    const double savedScaleX = ScaleX, savedScaleY = ScaleY, savedOffsetX = OffsetX, savedOffsetY = OffsetY;
    const RECT target = Normalised(dest);
    ScaleX = (static_cast<double>(target.right) - target.left + 1) / BitsWidth;
    ScaleY = (static_cast<double>(target.bottom) - target.top + 1) / BitsHeight;
    OffsetX = target.left;
    OffsetY = target.top;

    RECT interest;
    if (ScaleX == 1.0 && ScaleY == 1.0) {
        const RECT limit = Normalised(clip);
        interest = {std::max(limit.left, target.left), std::max(limit.top, target.top),
                    std::min(limit.right, target.right), std::min(limit.bottom, target.bottom)};
        if (BitsWidth != ClientWidth) interest.right = ClientWidth - 1;
    } else {
        interest = {0, 0, ClientWidth, ClientHeight};
    }

    const int32_t saved = DC ? SaveDC(DC) : 0;
    if (DC && interest.left <= interest.right && interest.top <= interest.bottom) {
        for (size_t i = 0; i < Items.size(); ++i)
            if (Intersect(Items[i], interest)) DrawItem(Items[i], interest);
    }

    ScaleX = savedScaleX, ScaleY = savedScaleY, OffsetX = savedOffsetX, OffsetY = savedOffsetY;
    Replaying = 0;
    if (DC && saved) RestoreDC(DC, saved);
    switch (source) {
    case kContextHeld: break;                        // the context stays with its holder
    case kContextGiven: DC = nullptr; break;         // forgotten
    case kContextOfWindow: FinishDrawing(); break;   // released
    default: ProgramError("RedrawVFS flag_prepare=%d", source); break;
    }
}
