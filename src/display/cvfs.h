// The display list of a frame store: vector items drawn over the pixel layer.
//
// Every line, pixel, text, outline and filled rectangle that the library draws into a frame
// store is kept as an item, in drawing order, so that the host's repaint (RedrawVFS) can draw
// the whole list again over its bitmap, at any size and on a printer. Items keep frame
// coordinates (0 to 511, y downward) unrounded. Frame rectangles include their right and
// bottom edges.
//
// Drawing of an item: outside a replay the item is added to the list and, when no batch is
// open (BatchDepth 0), drawn at once on the host window. During a replay (RedrawVFS) every
// coordinate is scaled and offset to the destination and nothing is added.
#pragma once

#include <cstddef>
#include <cstdint>
#include <new>
#include <string>
#include <vector>

#include "display/fonts.h"
#include "platform/canvas.h"

// Kinds of an item.
enum VfsItemKind : uint32_t {
    VFS_ITEM_NONE = 1,
    VFS_ITEM_LINE = 2,
    VFS_ITEM_PIXEL = 4,
    VFS_ITEM_TEXT = 8,
    VFS_ITEM_RECT = 16,   // rectangle outline
    VFS_ITEM_FILL = 32,   // filled rectangle (fill_rect)
    VFS_ITEM_CLIP = 64,   // clip rectangle (clip_rect)
};

constexpr uint32_t kWhite = 0xffffffu;
constexpr uint32_t kBlack = 0;
// Spare room below which the item array grows, and the size of each growth.
constexpr size_t kItemSpareMinimum = 10;
constexpr size_t kItemGrowth = 1500;

// Text placement word of AddText and MeasureText: AlignH in byte 0, AlignV in byte 1, BackMode
// in byte 2.
constexpr uint32_t TextAlignWord(uint8_t alignH, uint8_t alignV, uint8_t backMode)
{
    return static_cast<uint32_t>(alignH) | (static_cast<uint32_t>(alignV) << 8) | (static_cast<uint32_t>(backMode) << 16);
}
constexpr uint8_t kBackModeOpaque = 2;

class CVfsItem {
public:
    RECT Bounds{0, 0, 0, 0};   // bounding box in frame pixels, normalised; empty for a line
    uint32_t Kind = VFS_ITEM_NONE;
    std::string Text;
    double X1 = 0, Y1 = 0, X2 = 0, Y2 = 0;
    int32_t LineWidth = 0;     // -1 asks for a hair line
    uint32_t Colour = kWhite;
    uint32_t BackColour = kWhite;
    uint8_t AlignH = 255, AlignV = 255, BackMode = 255;
    FontRecType Font{};
};

// The item array takes its memory from the library's tracked blocks, so that a failed
// allocation is seen (and can be provoked in tests) like every other.
template <typename T>
struct TrackedAllocator {
    using value_type = T;
    TrackedAllocator() = default;
    template <typename U>
    TrackedAllocator(const TrackedAllocator<U>&) noexcept {}
    T* allocate(size_t count);
    void deallocate(T* block, size_t) noexcept;
    template <typename U>
    bool operator==(const TrackedAllocator<U>&) const noexcept { return true; }
};
using VfsItemArray = std::vector<CVfsItem, TrackedAllocator<CVfsItem>>;

class CVfs {
public:
    CVfs(TvCanvas* wnd, int32_t bitsWidth, int32_t bitsHeight, int32_t clientWidth, int32_t clientHeight);
    ~CVfs();
    CVfs(const CVfs&) = delete;
    CVfs& operator=(const CVfs&) = delete;

    // Made in the library's tracked memory; null (nothing reported) when memory runs out.
    static CVfs* Create(TvCanvas* wnd, int32_t bitsWidth, int32_t bitsHeight, int32_t clientWidth,
                        int32_t clientHeight);
    static void Destroy(CVfs* vfs);

    TvCanvas* Wnd;
    VfsItemArray Items;
    DrawContext* DC = nullptr;
    CanvasPen Pen;
    int32_t BitsWidth, BitsHeight;
    int32_t ClientWidth, ClientHeight;
    int32_t Replaying = 0;
    double ScaleX = 1.0, ScaleY = 1.0;
    double OffsetX = 0.0, OffsetY = 0.0;
    uint32_t PenColour = kWhite;
    DrawContext* OwnDC = nullptr;
    int32_t PrepareCount = 0;

    // The list. AddItem grows the array by kItemGrowth items when fewer than
    // kItemSpareMinimum are spare, and overwrites a last clip rectangle with a new one. When
    // memory runs out, "Not enough memory" is reported and the list stays as it was.
    bool AddItem(const CVfsItem& item);
    // Whether an item touches a frame rectangle (normalised first): a line unless both of its
    // ends lie beyond one side, a pixel inside it, a text, outline or fill whose Bounds meet it.
    bool Intersect(const CVfsItem& item, const RECT& rect) const;
    // Erases the items that touch the rectangle.
    void EraseItems(int32_t left, int32_t top, int32_t right, int32_t bottom);
    // The same for the 16 rows from y, only when y is a multiple of 32 (the 16 columns from x,
    // only when x is a multiple of 32).
    void EraseItemsRow(int32_t x, int32_t y, int32_t width);
    void EraseItemsColumn(int32_t x, int32_t y, int32_t height);
    void EraseAll();

    // The drawing context, counted: the first call takes `dc`, or the window's own context.
    // Neither does anything during a replay.
    void PrepareForDrawing(DrawContext* dc);
    void FinishDrawing();

    // Vector items.
    void AddLine(double x1, double y1, double x2, double y2, uint32_t colour, int32_t width);
    void AddRect(double x1, double y1, double x2, double y2, uint32_t colour);
    void AddFill(double x1, double y1, double x2, double y2, uint32_t colour);
    void AddPixel(double x, double y, uint32_t colour);
    void AddClip(double x1, double y1, double x2, double y2);
    // Text at (x, y) placed by the alignment word; `clip`, when given, replaces the text's box
    // for clipping and as the item's Bounds.
    void AddText(double x, double y, const FontRecType& font, const RECT* clip, const char* text,
                 uint32_t alignWord, uint32_t colour, uint32_t backColour);
    // The box of a text without drawing it.
    void MeasureText(RECT* out, double x, double y, const FontRecType& font, const char* text,
                     uint32_t alignWord);

    // Draws the list into `dc` (or the window's context) on the destination rectangle `dest`,
    // onto which the frame maps, limited by `clip`. Nothing happens while a batch is open.
    void RedrawVFS(const RECT& dest, const RECT& clip, DrawContext* dc);

private:
    double MapX(double x) const { return x * ScaleX + OffsetX; }
    double MapY(double y) const { return y * ScaleY + OffsetY; }
    void UsePen(uint32_t colour, int32_t width);
    void DrawItem(const CVfsItem& item, const RECT& interest);
    // The measuring context: the context in use, or a scratch context for text boxes.
    SIZE TextExtent(const FontRecType& font, const char* text);
};

// A double coordinate as an integer: truncated towards zero, limited to the range of the
// canvas, NaN as 0.
int32_t FrameInt(double value);
