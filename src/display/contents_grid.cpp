#include "display/contents_grid.h"
#include "host/errors.h"

#include <algorithm>
#include <cstring>

namespace {

bool InFrame(int x, int y) { return x >= 0 && x < kFrameWidth && y >= 0 && y < kFrameHeight; }

void ClearItemData(FSContentsType* cell)
{
    cell->ImType1 = 0;
    cell->CreatedFileTime = cell->SavedFileTime = 0;
    cell->PixelsX = cell->PixelsY = 0;
    cell->OffsetX = cell->OffsetY = 0.0f;
    cell->SizeX = cell->SizeY = 0.0f;
}

void WriteItemData(FSContentsType* cell, const ImageHeaderType* image)
{
    cell->ImType1 = image->ImType1;
    cell->CreatedFileTime = image->CreatedFileTime;
    cell->SavedFileTime = image->SavedFileTime;
    cell->PixelsX = static_cast<uint16_t>(image->nx);
    cell->PixelsY = static_cast<uint16_t>(image->ny);
    cell->OffsetX = image->ImageOffsetX;
    cell->OffsetY = image->ImageOffsetY;
    cell->SizeX = image->ImageSizeX;
    cell->SizeY = image->ImageSizeY;
}

void SetRectangle(FSContentsType* cell, int left, int top, int right, int bottom)
{
    cell->Left = static_cast<uint16_t>(left);
    cell->Top = static_cast<uint16_t>(top);
    cell->Right = static_cast<uint16_t>(right);
    cell->Bottom = static_cast<uint16_t>(bottom);
}

void RemoveFromGrid(FSContentsType (&grid)[kGridColumns][kGridRows], const ImageHeaderType* image)
{
    for (auto& column : grid)
        for (FSContentsType& cell : column)
            if (cell.Image == image) cell.Image = nullptr;
}

} // namespace

void SetFSContents(ImageHeaderType* image, int keep)
{
    const int left = FSState.ImageLeft, top = FSState.ImageTop;
    const int right = FSState.ImageRight, bottom = FSState.ImageBottom;
    for (int x = left; x < right; x += kCellWidth) {
        for (int y = top; y < bottom; y += kCellHeight) {
            if (!InFrame(x, y)) continue;
            FSContentsType& cell = FSState.Contents[x / kCellWidth][y / kCellHeight];
            cell.Image = image;
            if (keep)
                SetRectangle(&cell, left, top, right, bottom);
            else
                SetRectangle(&cell, 0, 0, 0, 0);
        }
    }
    if (image && keep) SetFSContentsParams(image);
}

void SetFSContentsParams(const ImageHeaderType* image)
{
    if (!image) return;
    const int firstColumn = std::clamp<int>(FSState.ImageLeft, 0, kFrameWidth - 1) / kCellWidth;
    const int lastColumn = std::clamp<int>(FSState.ImageRight, 0, kFrameWidth - 1) / kCellWidth;
    const int firstRow = std::clamp<int>(FSState.ImageTop, 0, kFrameHeight - 1) / kCellHeight;
    const int lastRow = std::clamp<int>(FSState.ImageBottom, 0, kFrameHeight - 1) / kCellHeight;
    for (int cx = firstColumn; cx <= lastColumn; ++cx)
        for (int cy = firstRow; cy <= lastRow; ++cy) WriteItemData(&FSState.Contents[cx][cy], image);
}

void SetFSContentsAll(ImageHeaderType* image)
{
    for (auto& column : FSState.Contents) {
        for (FSContentsType& cell : column) {
            cell.Image = image;
            SetRectangle(&cell, 0, 0, kFrameWidth - 1, kFrameHeight - 1);
            if (image) {
                WriteItemData(&cell, image);
            } else {
                ClearItemData(&cell);
                cell.ImType1 = kClearedCellType;
            }
        }
    }
}

void RemoveFromFS(const ImageHeaderType* image)
{
    if (!image) return;
    RemoveFromGrid(FSState.Contents, image);
    for (VFSDataType* p = FirstVFS; p; p = p->Next) RemoveFromGrid(p->State.Contents, image);
}

ImageHeaderType* GetFSContentsCoords(int x, int y)
{
    if (!InFrame(x, y)) {
        ProgramError("GetFSContentsCoords (%d %d)", x, y);
        return nullptr;
    }
    return FSState.Contents[x / kCellWidth][y / kCellHeight].Image;
}

ImageHeaderType* GetFSContentsCoords(int x, int y, int* left, int* top, int* right, int* bottom)
{
    if (!InFrame(x, y)) {
        ProgramError("GetFSContentsCoords (%d %d)", x, y);
        return nullptr;
    }
    const FSContentsType& cell = FSState.Contents[x / kCellWidth][y / kCellHeight];
    if (left) *left = cell.Left;
    if (top) *top = cell.Top;
    if (right) *right = cell.Right;
    if (bottom) *bottom = cell.Bottom;
    return cell.Image;
}

FSContentsType* GetFSContentsParamPtrCoords(int x, int y)
{
    if (!InFrame(x, y)) {
        ProgramError("GetFSContentsParamPtrCoords (%d %d)", x, y);
        return nullptr;
    }
    return &FSState.Contents[x / kCellWidth][y / kCellHeight];
}

bool HeldByCurrentFrameStore(const ImageHeaderType* image)
{
    if (!CurrentVFS || !image) return false;
    for (const auto& column : FSState.Contents)
        for (const FSContentsType& cell : column)
            if (cell.Image == image) return true;
    return false;
}
