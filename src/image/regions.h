// Commands on a region of the current image chosen on the screen: magnify an upright
// rectangle, straighten a drifted parallelogram, trim to a parallelogram, extract a rectangle
// and put it back after processing. Points are image pixels and may lie outside the image.
#pragma once

#include <cstdint>

#include "tavrin/image_header.h"

struct RegionPoint {
    int x, y;
};
inline bool operator==(RegionPoint a, RegionPoint b) { return a.x == b.x && a.y == b.y; }

// The corners may come in any order. A copy of the rectangle (zeros where it leaves the image)
// resampled to a square of 128, 256, 512, 1024, 2048 or 4096 points (the first that holds its
// longer side, at most 4096); its physical size is that of the rectangle. History code 46.
// Answers the new current item, or null (reported; the list as it was).
ImageHeaderType* MagnifyArea(RegionPoint first, RegionPoint second);

// The geometry of a drift correction: the corners put in scan order, the unit vector of the
// scan direction, the cosine and sine of the drift angle and the size of the straightened
// image. `valid` is false when two of the three points coincide.
struct DriftFrame {
    bool valid = false;
    RegionPoint p0{}, p1{}, p2{}, p3{};
    double a = 0, b = 0, c = 0;   // |P1 - P0|, |P2 - P1|, |P2 - P0|
    double ux = 0, uy = 0;        // (P1 - P0) / a
    double cosine = 0, sine = 0;
    int64_t width = 0, height = 0;
};
// P0 to P1 is one side and P1 to P2 the next, the fourth corner P0 + P2 - P1.
DriftFrame MakeDriftFrame(RegionPoint p0, RegionPoint p1, RegionPoint p2);
// The straightened codes, width by height of the frame, row by row into `out`: each pixel
// bilinear from the source where its place lies inside the source, else 0.
void DriftResample(const ImageHeaderType* source, const DriftFrame& frame, uint16_t* out);
// The parallelogram P0, P1, P2 straightened into an upright image and resampled to 128, 256
// or 512 points a side. History code 49. Answers the new current item or null.
ImageHeaderType* DriftCorrect(RegionPoint p0, RegionPoint p1, RegionPoint p2);

// The codes inside the parallelogram of corners A, B, C (fourth D = B + C - A), zeros
// outside. Two coinciding points end the command without a message. History code 84.
ImageHeaderType* TrimImage(RegionPoint a, RegionPoint b, RegionPoint c);

// The points of the extract selection, image pixels.
extern int16_t ExtractPointsX[2], ExtractPointsY[2];
// First half of the extract: checks the image, shows it and starts the selection of two points.
void StartExtractArea();
// The continuation: `status` bit 0 set when both points were set. A copy of the image with
// zeros outside the rectangle, which it remembers in ExtractX1 ... ExtractY2. History code 87.
// Answers 1 (the selection is over).
int ExtractArea(int status);
// Puts the rectangle of the current extract into a copy of an image of the same size that
// the user chooses. History code 88.
void ReplaceArea();

void ResetRegionState();

// The last step of magnify and drift correction: `temporary` (an item made for the command,
// current) resampled to n by n points and shown; the result, when there is one, current with
// the history code. The temporary item is then freed, and when it was still current the item
// before it becomes current again. Answers the result or null.
ImageHeaderType* ResampleTemporary(ImageHeaderType* temporary, int n, int code);
