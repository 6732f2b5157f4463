#include "display/cvfs.h"
#include "display/vfs.h"
#include "host/errors.h"
#include "store/memory.h"

#include <algorithm>
#include <cmath>
#include <limits>

template <typename T>
T* TrackedAllocator<T>::allocate(size_t count)
{
    if (count > std::numeric_limits<size_t>::max() / sizeof(T)) throw std::bad_alloc();
    void* block = emalloc(count * sizeof(T));
    if (!block) throw std::bad_alloc();
    return static_cast<T*>(block);
}

template <typename T>
void TrackedAllocator<T>::deallocate(T* block, size_t) noexcept
{
    efree(block);
}

template struct TrackedAllocator<CVfsItem>;

int32_t FrameInt(double value)
{
    if (std::isnan(value)) return 0;
    const double limit = kCanvasCoordinateLimit;
    return static_cast<int32_t>(std::clamp(value, -limit, limit));
}

CVfs::CVfs(TvCanvas* wnd, int32_t bitsWidth, int32_t bitsHeight, int32_t clientWidth, int32_t clientHeight)
    : Wnd(wnd),
      Pen(CreatePen(PS_SOLID, 1, kWhite)),
      BitsWidth(bitsWidth),
      BitsHeight(bitsHeight),
      ClientWidth(clientWidth),
      ClientHeight(clientHeight)
{
}

CVfs::~CVfs()
{
    if (OwnDC) ReleaseDC(Wnd, OwnDC);
}

CVfs* CVfs::Create(TvCanvas* wnd, int32_t bitsWidth, int32_t bitsHeight, int32_t clientWidth, int32_t clientHeight)
{
    void* block = emalloc(sizeof(CVfs));
    if (!block) return nullptr;
    return new (block) CVfs(wnd, bitsWidth, bitsHeight, clientWidth, clientHeight);
}

void CVfs::Destroy(CVfs* vfs)
{
    if (!vfs) return;
    vfs->~CVfs();
    efree(vfs);
}

bool CVfs::AddItem(const CVfsItem& item)
{
    try {
        if (Items.capacity() - Items.size() < kItemSpareMinimum) Items.reserve(Items.capacity() + kItemGrowth);
        if (!Items.empty() && item.Kind == VFS_ITEM_CLIP && Items.back().Kind == VFS_ITEM_CLIP)
            Items.back() = item;
        else
            Items.push_back(item);
    } catch (const std::bad_alloc&) {
        Error(ERR_NO_MEMORY);
        return false;
    }
    return true;
}

bool CVfs::Intersect(const CVfsItem& item, const RECT& rect) const
{
    const double left = std::min(rect.left, rect.right), right = std::max(rect.left, rect.right);
    const double top = std::min(rect.top, rect.bottom), bottom = std::max(rect.top, rect.bottom);
    switch (item.Kind) {
    case VFS_ITEM_NONE:
    case VFS_ITEM_CLIP: return false;
    case VFS_ITEM_LINE:
        if (item.X1 < left && item.X2 < left) return false;
        if (item.X1 > right && item.X2 > right) return false;
        if (item.Y1 < top && item.Y2 < top) return false;
        if (item.Y1 > bottom && item.Y2 > bottom) return false;
        return true;
    case VFS_ITEM_PIXEL: return item.X1 >= left && item.X1 <= right && item.Y1 >= top && item.Y1 <= bottom;
    case VFS_ITEM_TEXT:
    case VFS_ITEM_RECT:
    case VFS_ITEM_FILL:
        return !(item.Bounds.right < left || item.Bounds.left > right || item.Bounds.bottom < top ||
                 item.Bounds.top > bottom);
    default: ProgramError("CVfs::Intersect type=%d", static_cast<int>(item.Kind)); return false;
    }
}

void CVfs::EraseItems(int32_t left, int32_t top, int32_t right, int32_t bottom)
{
    const RECT rect{left, top, right, bottom};
    // The items before the last erased run did not touch the rectangle, so each search goes on
    // from where the run stood.
    size_t from = 0;
    for (;;) {
        size_t first = from;
        while (first < Items.size() && !Intersect(Items[first], rect)) ++first;
        if (first >= Items.size()) return;
        size_t end = first + 1;
        while (end < Items.size() && Intersect(Items[end], rect)) ++end;
        Items.erase(Items.begin() + static_cast<ptrdiff_t>(first), Items.begin() + static_cast<ptrdiff_t>(end));
        from = first;
    }
}

void CVfs::EraseItemsRow(int32_t x, int32_t y, int32_t width)
{
    if (y % 32 != 0) return;
    EraseItems(x, y, x + width - 1, y + 15);
}

void CVfs::EraseItemsColumn(int32_t x, int32_t y, int32_t height)
{
    if (x % 32 != 0) return;
    EraseItems(x, y, x + 15, y + height - 1);
}

void CVfs::EraseAll() { Items.clear(); }

void CVfs::PrepareForDrawing(DrawContext* dc)
{
    if (Replaying) return;
    if (++PrepareCount != 1) return;
    if (DC) {
        ProgramError("PrepareForDrawing windc");
        return;
    }
    if (dc) {
        DC = dc;
        return;
    }
    OwnDC = GetDC(Wnd);
    DC = OwnDC;
}

void CVfs::FinishDrawing()
{
    if (Replaying) return;
    if (PrepareCount <= 0) {
        ProgramError("FinishDrawing %d", PrepareCount);
        PrepareCount = 0;
        return;
    }
    if (--PrepareCount > 0) return;
    if (OwnDC) {
        if (DC != OwnDC) ProgramError("FinishDrawing %p %p", static_cast<void*>(DC), static_cast<void*>(OwnDC));
        ReleaseDC(Wnd, OwnDC);
        OwnDC = nullptr;
    }
    DC = nullptr;
}
