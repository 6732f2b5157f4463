#include "display/selection.h"
#include "display/selection_band.h"
#include "display/selection_panel.h"
#include "display/vfs.h"
#include "host/ap_callbacks.h"
#include "host/errors.h"
#include "host/log.h"
#include "platform/platform_table.h"
#include "store/memory.h"

#include <algorithm>
#include <cmath>
#include <cstdio>

SelectionStateType SelectionState{};

namespace {

constexpr int kVirtualKeyShift = 0x10;

// Rotation (1) and translation (7) of images, the rectangle of an extract (9), the measuring
// cursor of a plot (13) that takes every event, the zoom box of a plot (14) and the cell of a
// lattice average (15); the FFT mask circles to pass (16) and to stop (25) stay open for the
// next circle until the right button; the pointer of the paged mapping browser (20) goes
// straight to its handler.
const SelectTypeRow kSelectTypes[] = {
    {1, 3, 5, SelectionEnd::Handler},
    {7, 2, 1, SelectionEnd::Handler},
    {9, 2, 2, SelectionEnd::Handler},
    {13, 0, 0, SelectionEnd::Direct},
    {14, 2, 2, SelectionEnd::Handler},
    {15, 3, 4, SelectionEnd::Handler},
    {16, 2, 6, SelectionEnd::UntilRightButton},
    {20, 0, 0, SelectionEnd::Direct},
    {25, 2, 6, SelectionEnd::UntilRightButton},
};

// The lower bound of a scan cut off at row abortY, in frame pixels from the image top.
int CutOffBound(int abortY)
{
    const int step = FSState.ImPntsY;
    if (step >= 1) return (abortY - 1) / step;
    if (step < 0) return -step * (abortY - 1) - 1;
    return abortY - 1;
}

// Frame position (from the rectangle's corner) to image pixel.
int ToImagePixels(int value, int pixels, int low, int high)
{
    const int extent = high - low + 1;
    return extent > 0 ? value * pixels / extent : value;
}

void EndSelection()
{
    CloseSelectionPanel();
    efree(SelectionState.SaveBuffer);
    SelectionState.SaveBuffer = nullptr;
    SelectionState.Handler = nullptr;
    SelectionState.Direct = nullptr;
    SelectionState.Type = 0;
    SelectionState.BandShown = 0;
}

// The bounds as the clip of the frame store, and the band's colour.
void SetSelectionClip()
{
    const SelectionStateType& s = SelectionState;
    FSSetClip(s.BoundLeft, s.BoundTop, s.BoundRight, s.BoundBottom);
    FSSetColour(kSelectionColour);
}

void CallHost(int type, int cursor)
{
    const SelectionStateType& s = SelectionState;
    Log("ap_SelectPointInVFS xy1 (%d %d) xy2 (%d %d) hndl %d)\n", s.BoundLeft, s.BoundTop, s.BoundRight,
        s.BoundBottom, type);
    Ap.ap_SelectPointInVFS(static_cast<uint16_t>(s.BoundLeft), static_cast<uint16_t>(s.BoundTop),
                           static_cast<uint16_t>(s.BoundRight), static_cast<uint16_t>(s.BoundBottom),
                           static_cast<uint16_t>(type), static_cast<uint16_t>(cursor));
}

// The angle between the two arms of a triangle, written as text at a third of the first arm
// into the display list over the picture (the codes of the image stay as they are).
void MarkTriangleAngle()
{
    const SelectionStateType& s = SelectionState;
    const double a1 = std::atan2(s.PointsY[1] - s.PointsY[0], s.PointsX[1] - s.PointsX[0]);
    const double a2 = std::atan2(s.PointsY[2] - s.PointsY[0], s.PointsX[2] - s.PointsX[0]);
    char text[32];
    std::snprintf(text, sizeof text, "%.1f", (a1 - a2) * 57.29577951471995);
    FSSetTextColour(kSelectionColour);
    FSTextOut(s.PointsX[0] + (s.PointsX[1] - s.PointsX[0]) / 3, s.PointsY[0] + (s.PointsY[1] - s.PointsY[0]) / 3, text);
}

int RunHandler(int type, int buttons)
{
    SelectionStateType& s = SelectionState;
    const SelectTypeRow* row = FindSelectType(type);
    if (!row || type != s.Type || !s.Handler) {
        ProgramError("SelectPointInVFS_Callback (%d)", type);
        return 1;
    }
    const int result = s.Handler(buttons);
    if (row->end == SelectionEnd::UntilRightButton) return (buttons & kButtonRight) ? 1 : 0;
    return result;
}

} // namespace

const SelectTypeRow* FindSelectType(int type)
{
    for (const SelectTypeRow& row : kSelectTypes)
        if (row.type == type) return &row;
    return nullptr;
}

int SelectImagePoints(int type, int count, int16_t* xs, int16_t* ys, int regionType, int squareForced,
                      int allowFull, int worldCursor, int abortY, int keepFrameCoords, int allowEarlyEnd,
                      int cursor, SelectionHandler handler)
{
    SelectionStateType& s = SelectionState;
    efree(s.SaveBuffer);
    s.SaveBuffer = static_cast<uint8_t*>(ecalloc(kSelectionSaveBytes, 1));
    if (!s.SaveBuffer) {
        Error(ERR_NO_MEMORY);
        return 1;
    }
    s.BoundLeft = FSState.ImageLeft;
    s.BoundTop = FSState.ImageTop;
    s.BoundRight = FSState.ImageRight;
    s.BoundBottom = FSState.ImageBottom;
    if (abortY >= 1)
        s.BoundBottom = static_cast<int16_t>(s.BoundTop + CutOffBound(abortY));
    else if (abortY < 0)
        ProgramError("SelectImagePoints AbortY=%d", abortY);
    SetSelectionClip();

    s.Type = static_cast<int16_t>(type);
    s.Handler = handler;
    s.Direct = nullptr;
    s.PointsX = xs;
    s.PointsY = ys;
    s.PointCount = static_cast<int16_t>(count);
    s.RegionType = static_cast<int16_t>(regionType);
    s.FramePixels = 0;
    s.SquareForced = static_cast<int16_t>(squareForced);
    s.AllowFull = static_cast<int16_t>(allowFull);
    s.WorldCursor = static_cast<int16_t>(worldCursor);
    s.KeepFrameCoords = static_cast<int16_t>(keepFrameCoords);
    s.AllowEarlyEnd = static_cast<int16_t>(allowEarlyEnd);
    s.AutoRepeat = 0;
    s.BandShown = 0;
    s.Busy = 0;
    s.LastButtons = 0;
    OpenSelectionPanel();
    s.CurrentPoint = 0;
    CallHost(type, cursor);
    return 0;
}

void SelectInRectangle(int type, int autoRepeat, int left, int top, int right, int bottom, int cursor,
                       DirectHandler direct)
{
    SelectionStateType& s = SelectionState;
    s.BoundLeft = static_cast<int16_t>(left);
    s.BoundTop = static_cast<int16_t>(top);
    s.BoundRight = static_cast<int16_t>(right);
    s.BoundBottom = static_cast<int16_t>(bottom);
    s.AutoRepeat = static_cast<int16_t>(autoRepeat);
    s.Type = static_cast<int16_t>(type);
    s.Direct = direct;
    s.Handler = nullptr;
    s.Busy = 0;
    s.LastButtons = 0;
    CallHost(type, cursor);
}

int SelectPointInVFS_Callback(int type, int x, int y, int buttons, int32_t hndl)
{
    SelectionStateType& s = SelectionState;
    if (s.Busy || (buttons && s.LastButtons && !s.AutoRepeat)) return 0;
    s.Busy = 1;
    s.LastButtons = static_cast<int16_t>(buttons);
    if ((buttons & kButtonLeft) && PlatformKeyDown(kVirtualKeyShift)) buttons = kButtonMiddle;
    x = std::clamp(x, 0, std::min(std::max(s.BoundRight - s.BoundLeft, 0), 511));
    y = std::clamp(y, 0, std::min(std::max(s.BoundBottom - s.BoundTop, 0), 511));

    if (s.Direct) {
        if (type != s.Type) {
            ProgramError("SelectPointInVFS_Callback (%d)", type);
            s.Busy = 0;
            return 1;
        }
        const int result = s.Direct(buttons, x, y, hndl);
        if (result) s.Direct = nullptr;
        s.Busy = 0;
        return result;
    }
    if (!s.PointsX || !s.PointsY || s.CurrentPoint >= s.PointCount) {
        // No selection is running: the event ends whatever the host thinks is open.
        ProgramError("SelectPointInVFS_Callback (%d)", type);
        s.Busy = 0;
        EndSelection();
        return 1;
    }
    if (s.SquareForced && s.PointCount == 2 && s.CurrentPoint == 1) ForceSquare(s.PointsX, s.PointsY, &x, &y);
    s.PointsX[s.CurrentPoint] = static_cast<int16_t>(x);
    s.PointsY[s.CurrentPoint] = static_cast<int16_t>(y);
    WriteSelectionPanel(x, y);
    if (s.CurrentPoint != 0)
        ShowSelectedRegion(s.PointsX, s.PointsY, s.CurrentPoint + 1, s.RegionType, s.SaveBuffer, kBandReplace);
    if (buttons == 0) {
        s.Busy = 0;
        return 0;
    }

    ++s.CurrentPoint;
    const bool right = (buttons & kButtonRight) != 0;
    const bool early = s.AllowEarlyEnd && (buttons & kButtonMiddle) != 0;
    if (s.CurrentPoint < s.PointCount && !right && !early) {
        // A long polyline keeps its earlier segments on the screen.
        if (s.CurrentPoint > 1 && s.PointCount > 9) s.BandShown = 0;
        s.Busy = 0;
        return 0;
    }
    ShowSelectedRegion(nullptr, nullptr, 0, s.RegionType, s.SaveBuffer, kBandErase);
    if (!right && !early) {
        if (s.PointCount == 3 && s.RegionType == 5) MarkTriangleAngle();
        ShowSelectedRegion(s.PointsX, s.PointsY, s.PointCount, s.RegionType, s.SaveBuffer, kBandReplace);
        if (!s.FramePixels && !s.KeepFrameCoords) {
            for (int i = 0; i < s.PointCount; ++i) {
                s.PointsX[i] = static_cast<int16_t>(
                    ToImagePixels(s.PointsX[i], FSState.ImagePixelsX, FSState.ImageLeft, FSState.ImageRight));
                s.PointsY[i] = static_cast<int16_t>(
                    ToImagePixels(s.PointsY[i], FSState.ImagePixelsY, FSState.ImageTop, FSState.ImageBottom));
            }
        }
    }
    if (early)
        for (int i = s.CurrentPoint; i < s.PointCount; ++i) s.PointsX[i] = s.PointsY[i] = -1;

    const int result = RunHandler(type, buttons);
    if (result) {
        EndSelection();
    } else {
        // The command keeps the selection open for its next shape.
        ClearSelectionPanel();
        s.BandShown = 0;
        s.CurrentPoint = 0;
        s.LastButtons = 0;
    }
    s.Busy = 0;
    return result;
}

int SelectionPixelX(int x)
{
    return SelectionState.FramePixels ? x : ToImagePixels(x, FSState.ImagePixelsX, FSState.ImageLeft, FSState.ImageRight);
}

int SelectionPixelY(int y)
{
    return SelectionState.FramePixels ? y : ToImagePixels(y, FSState.ImagePixelsY, FSState.ImageTop, FSState.ImageBottom);
}

bool SelectionActive() { return SelectionState.Handler != nullptr || SelectionState.Direct != nullptr; }

void ResetSelectionState()
{
    efree(SelectionState.SaveBuffer);
    SelectionState = SelectionStateType{};
    ResetSelectionPanel();
}
