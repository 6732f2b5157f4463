#include "display/selection.h"
#include "display/vfs.h"
#include "host/ap_callbacks.h"
#include "host/errors.h"
#include "host/log.h"
#include "store/memory.h"

#include <algorithm>
#include <cstring>

SelectionStateType SelectionState{};

namespace {

// The lower bound of a scan cut off at row abortY, in frame pixels from the image top.
int CutOffBound(int abortY)
{
    const int step = FSState.ImPntsY;
    if (step >= 1) return (abortY - 1) / step;
    if (step < 0) return -step * (abortY - 1) - 1;
    return abortY - 1;
}

// Frame position (from the rectangle's corner) to image pixel.
int16_t ToImagePixels(int value, int pixels, int low, int high)
{
    const int extent = high - low + 1;
    return static_cast<int16_t>(extent > 0 ? value * pixels / extent : value);
}

void EndSelection()
{
    efree(SelectionState.SaveBuffer);
    SelectionState.SaveBuffer = nullptr;
    SelectionState.Handler = nullptr;
    SelectionState.Type = 0;
}

} // namespace

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
        s.BoundBottom = static_cast<int16_t>(std::min<int>(s.BoundBottom, s.BoundTop + CutOffBound(abortY)));
    else if (abortY < 0)
        ProgramError("SelectImagePoints AbortY=%d", abortY);

    s.Type = static_cast<int16_t>(type);
    s.Handler = handler;
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
    s.CurrentPoint = 0;
    Log("ap_SelectPointInVFS xy1 (%d %d) xy2 (%d %d) hndl %d)\n", s.BoundLeft, s.BoundTop, s.BoundRight,
        s.BoundBottom, type);
    Ap.ap_SelectPointInVFS(static_cast<uint16_t>(s.BoundLeft), static_cast<uint16_t>(s.BoundTop),
                           static_cast<uint16_t>(s.BoundRight), static_cast<uint16_t>(s.BoundBottom),
                           static_cast<uint16_t>(type), static_cast<uint16_t>(cursor));
    return 0;
}

int SelectPointInVFS_Callback(int type, int x, int y, int buttons, int32_t /*hndl*/)
{
    SelectionStateType& s = SelectionState;
    if (s.Busy || (buttons && s.LastButtons && !s.AutoRepeat)) return 0;
    s.Busy = 1;
    s.LastButtons = static_cast<int16_t>(buttons);
    if (!s.Handler || !s.PointsX || !s.PointsY || s.CurrentPoint >= s.PointCount) {
        // No selection is running: the event ends whatever the host thinks is open.
        ProgramError("SelectPointInVFS_Callback (%d)", type);
        s.Busy = 0;
        EndSelection();
        return 1;
    }
    x = std::clamp(x, 0, std::min(std::max(s.BoundRight - s.BoundLeft, 0), 511));
    y = std::clamp(y, 0, std::min(std::max(s.BoundBottom - s.BoundTop, 0), 511));
    s.PointsX[s.CurrentPoint] = static_cast<int16_t>(x);
    s.PointsY[s.CurrentPoint] = static_cast<int16_t>(y);
    if (buttons == 0) {
        s.Busy = 0;
        return 0;
    }
    ++s.CurrentPoint;
    const bool right = (buttons & kButtonRight) != 0;
    const bool early = s.AllowEarlyEnd && (buttons & kButtonMiddle) != 0;
    if (s.CurrentPoint < s.PointCount && !right && !early) {
        s.Busy = 0;
        return 0;
    }
    if (!right && !early && !s.FramePixels && !s.KeepFrameCoords) {
        for (int i = 0; i < s.PointCount; ++i) {
            s.PointsX[i] = ToImagePixels(s.PointsX[i], FSState.ImagePixelsX, FSState.ImageLeft, FSState.ImageRight);
            s.PointsY[i] = ToImagePixels(s.PointsY[i], FSState.ImagePixelsY, FSState.ImageTop, FSState.ImageBottom);
        }
    }
    if (early)
        for (int i = s.CurrentPoint; i < s.PointCount; ++i) s.PointsX[i] = s.PointsY[i] = -1;

    int result = 1;
    if (type != s.Type) {
        ProgramError("SelectPointInVFS_Callback (%d)", type);
    } else {
        const SelectionHandler handler = s.Handler;
        result = handler(buttons);
    }
    if (result) {
        EndSelection();
    } else {
        // The command keeps the selection open for its next shape.
        s.CurrentPoint = 0;
        s.BandShown = 0;
        s.LastButtons = 0;
    }
    s.Busy = 0;
    return result;
}

bool SelectionActive() { return SelectionState.Handler != nullptr; }

void ResetSelectionState()
{
    efree(SelectionState.SaveBuffer);
    SelectionState = SelectionStateType{};
}
