#include "display/placement.h"
#include "display/contents_grid.h"
#include "display/vfs.h"
#include "host/errors.h"
#include "store/image_header.h"

#include <algorithm>

int ParameterTextSwitch = 1;
bool LowerFrameEdgeOn = true;

namespace {

MappingView g_mappingView = nullptr;

int16_t Short(int value) { return static_cast<int16_t>(std::clamp(value, -32768, 32767)); }

// The cursor and the row go back to the top left corner.
void WrapToTop()
{
    FSState.CursorX = FSState.CursorY = 0;
    FSState.RowHeight = 0;
}

} // namespace

void DisplayImage(ImageHeaderType* image, int allowMapping, int withText)
{
    const int savedSwitch = ParameterTextSwitch;
    ParameterTextSwitch = withText;
    if (!image || !CheckHeaderIsImageType(image) || !image->PixData || image->nx <= 0 || image->ny <= 0) {
        Error(ERR_NO_IMAGES);
        ParameterTextSwitch = savedSwitch;
        return;
    }
    if (allowMapping && image->CITSHeaderPtr && g_mappingView) {
        g_mappingView(image);
        ParameterTextSwitch = savedSwitch;
        return;
    }
    if (!NoUserInterface) ShowParameterText(image);

    PlaceImageRows(image, image);
    ParameterTextSwitch = savedSwitch;
}

MappingView SetMappingView(MappingView view)
{
    const MappingView previous = g_mappingView;
    g_mappingView = view;
    return previous;
}

void PlaceImageRows(const ImageHeaderType* look, ImageHeaderType* image)
{
    const int nx = image->nx, ny = image->ny;
    BeginRowDisplay(nx, ny, look);
    for (int line = 0; line < ny; ++line) ShowDisplayRow(line, image->PixData + static_cast<size_t>(line) * nx);
    FinishRowDisplay(nx, ny);
    RegisterImageRegion(image);
    EndRowDisplay();
}

void BeginRowDisplay(int width, int height, const ImageHeaderType* look)
{
    BeginBatch();
    PrepareImageDisplay(width, height, look && look->ColourImage != 0, look);
}

void ShowDisplayRow(int line, const uint16_t* data)
{
    DisplayImageDataTypeLine1(line, data, 0, FSState.NPixelsX, 0);
}

void FinishRowDisplay(int width, int height)
{
    FSState.DisplayBusy = 1;
    FinishImageDisplay(width, height);
}

void RegisterImageRegion(ImageHeaderType* image) { SetFSContents(image, 1); }

void EndRowDisplay()
{
    EndBatchAndShow(FSState.ImageLeft, FSState.ImageTop, FSState.ImageRight, FSState.ImageBottom);
}

void PrepareImageDisplay(int nx, int ny, int isColour, const ImageHeaderType* image)
{
    nx = std::max(nx, 1);
    ny = std::max(ny, 1);
    FSState.LineDispMode = isColour ? 0 : FSState.DispMode;
    FSState.PrevCursorY = FSState.CursorY;
    FSState.PrevCursorX = FSState.CursorX;
    FSState.PrevRowHeight = FSState.RowHeight;

    const int size = std::clamp(FSState.ImageDisplaySize, 0, 32767);
    FSState.NPixelsX = Short(size ? size : std::min(nx, kFrameWidth));
    FSState.NPixelsY = Short(size ? size : std::min(ny, kFrameHeight));

    if (FSState.CursorX + FSState.NPixelsX > kFrameWidth) {
        FSState.CursorY = Short(FSState.CursorY + FSState.RowHeight);
        FSState.RowHeight = 0;
        FSState.CursorX = 0;
    }
    if (FSState.CursorY + FSState.NPixelsY > kFrameHeight) WrapToTop();
    if (!LowerFrameEdgeOn && FSState.CursorY >= kLowerFrameEdge) WrapToTop();

    // The vector graphics under the new image go, so that a long-lived frame does not grow
    // without bound.
    if (CVfs* vfs = CurrentVfs())
        vfs->EraseItems(FSState.CursorX, FSState.CursorY, FSState.CursorX + FSState.NPixelsX - 1,
                        FSState.CursorY + FSState.NPixelsY - 1);

    FSState.FrameDrawn = 0;
    if (FSState.NPixelsX < kFrameWidth || FSState.NPixelsY < kFrameHeight) {
        DrawImageFrame(FSState.ImageLeft, FSState.ImageTop, FSState.ImageRight, FSState.ImageBottom,
                       kOutlineFormerColour);
        FSState.FrameDrawn = 0;
    }
    StartImageRows(nx, ny, isColour, image);
}

void FinishImageDisplay(int nx, int ny)
{
    const int x0 = FSState.CursorX, y0 = FSState.CursorY;
    DrawImageFrame(x0, y0, x0 + FSState.NPixelsX - 1, y0 + FSState.NPixelsY - 1, kOutlineCurrentColour);
    FSState.CursorX = Short(FSState.CursorX + FSState.NPixelsX);
    FSState.RowHeight = std::max(FSState.RowHeight, FSState.NPixelsY);
    FSState.ImagePixelsX = Short(nx);
    FSState.ImagePixelsY = Short(ny);
    DrawImageCaptionAndBars(x0, y0);
}

void DrawImageFrame(int left, int top, int right, int bottom, int colour)
{
    if (NoUserInterface) colour = kOutlineFormerColour;
    const bool draw = FSState.FrameDrawn == 0 && right > left && bottom > top;
    FSState.ImageLeft = Short(left);
    FSState.ImageTop = Short(top);
    FSState.ImageRight = Short(right);
    FSState.ImageBottom = Short(bottom);
    FSState.FrameDrawn = 1;
    CVfs* vfs = CurrentVfs();
    if (!draw || !vfs) return;
    // Drawn outside the batch, the four lines are display list items at once.
    const int32_t savedDepth = BatchDepth;
    if (!NoUserInterface) BatchDepth = 0;
    const uint32_t c = IndexColour(colour);
    vfs->AddLine(left, top, right, top, c, 1);
    vfs->AddLine(right, top, right, bottom, c, 1);
    vfs->AddLine(right, bottom, left, bottom, c, 1);
    vfs->AddLine(left, bottom, left, top, c, 1);
    BatchDepth = savedDepth;
}

void ResetPlacementState()
{
    ParameterTextSwitch = 1;
    LowerFrameEdgeOn = true;
}
