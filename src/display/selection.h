// Point selection in a frame store: the library asks the host for a pick mode over a rectangle
// of the frame, the host reports every mouse event back, and when the last point is set the
// command that asked goes on with the points.
//
// Positions count from the top left of the pick rectangle; unless the selection keeps frame
// coordinates they are turned into image pixels: ix = x * ImagePixelsX / rectangle width.
// While points are set a rubber band shows the shape over the picture, and the "Cursor
// Information" panel the position, the height under the cursor and the size selected.
#pragma once

#include <cstdint>

// Buttons of an event: 0 a move; bit 0 left, bit 1 middle, bit 2 right.
constexpr int kButtonLeft = 1;
constexpr int kButtonMiddle = 2;
constexpr int kButtonRight = 4;

// The colour of the band and of the clip of a selection.
constexpr int kSelectionColour = 22;
// Bytes under the rubber band that a selection keeps: four strips of 768 pixels.
constexpr int kSelectionSaveBytes = 3072;
// The points of the band that are kept for erasing it.
constexpr int kSelectionShownPoints = 4;

// What a command does when the last point is set (or the right button ends the selection):
// `buttons` is the buttons word of that event, bit 0 set when the user set every point with the
// left button. Answers 1 when the selection is over; 0 keeps it open for the next shape, from
// its first point again.
using SelectionHandler = int (*)(int buttons);
// The handler of a selection without points (SelectInRectangle): every event goes to it.
// Answers non-zero when the selection is over.
using DirectHandler = int (*)(int buttons, int x, int y, int32_t hndl);

struct SelectionStateType {
    int16_t* PointsX;
    int16_t* PointsY;
    int16_t PointCount;
    int16_t CurrentPoint;
    int16_t RegionType;
    int16_t FramePixels;
    int16_t SquareForced;
    int16_t AllowFull;
    int16_t WorldCursor;
    int16_t KeepFrameCoords;
    int16_t AllowEarlyEnd;
    int16_t AutoRepeat;
    uint8_t* SaveBuffer;
    int16_t BoundLeft, BoundRight, BoundTop, BoundBottom;
    int16_t BandShown;
    int16_t ShownX[kSelectionShownPoints], ShownY[kSelectionShownPoints];
    int16_t ShownCount, ShownType;
    int16_t Busy;
    int16_t LastButtons;
    int16_t Type;
    SelectionHandler Handler;
    DirectHandler Direct;
};
extern SelectionStateType SelectionState;

// The select types the library knows, with what ends them. A type without a row is reported
// when its selection ends.
enum class SelectionEnd {
    Handler,           // the handler's answer
    UntilRightButton,  // the handler runs for each shape; the right button ends the selection
    Direct,            // every event goes to a direct handler
};
struct SelectTypeRow {
    int type;
    int points;
    int region;
    SelectionEnd end;
};
const SelectTypeRow* FindSelectType(int type);

// Starts a selection of `count` points over the image rectangle of the current frame store,
// the results left in xs and ys, and `handler` run at the end. `abortY` of 1 or more is the row
// at which the scan was cut off (the lower bound follows it); a negative value is reported.
// Answers 1 when the selection could not start (no memory), else 0.
int SelectImagePoints(int type, int count, int16_t* xs, int16_t* ys, int regionType, int squareForced,
                      int allowFull, int worldCursor, int abortY, int keepFrameCoords, int allowEarlyEnd,
                      int cursor, SelectionHandler handler);
// Starts a selection whose events all go to `direct`, over the given frame rectangle.
void SelectInRectangle(int type, int autoRepeat, int left, int top, int right, int bottom, int cursor,
                       DirectHandler direct);

// One event of the pick mode. Answers non-zero when the selection has ended.
int SelectPointInVFS_Callback(int type, int x, int y, int buttons, int32_t hndl);

// A position of the running selection (from the corner of its bounds) as an image pixel, by
// the image rectangle of the frame store; unchanged when the selection counts frame pixels.
int SelectionPixelX(int x);
int SelectionPixelY(int y);

// True while a selection waits for points.
bool SelectionActive();

void ResetSelectionState();
