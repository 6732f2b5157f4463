// The background methods: each makes the corrected image of `source` in `result` and, when
// `background` is not null, the background taken away (its buffer holds 8 bytes a pixel),
// using the scratch area of 8 bytes a pixel. All but the polynomial surface form a signed
// difference per pixel, stretch it into the codes with ScaleIntegersToCodes and set the Z
// range with SetZRangeFromCodes.
//
// Result and source must be the same size and the scratch area present, else program error
// "<routine> %p %p %p %d %d %d %d" (result, source, scratch, the four sizes). Each answers 0,
// or non-zero when it stopped (the result then stays as it was).
#pragma once

#include <cstddef>
#include <cstdint>

#include "tavrin/dl_background.h"
#include "tavrin/image_header.h"

struct BackgroundJob {
    const ImageHeaderType* source;
    ImageHeaderType* result;
    ImageHeaderType* background;   // or null
    void* scratch;                 // nx * ny * 8 bytes
};

// Each row less its smallest code.
int SubtOffsets(const BackgroundJob& job);
// Each row less the mean of its codes within low..high, or, with none inside, of all its codes.
int SubtLineAveraging(const BackgroundJob& job, int low, int high);
// A polynomial of degree n through the column means (inY false: X^n) or the row means (Y^n).
// X^n takes trunc(p - f(x)); Y^n takes p - trunc(f(y)).
int NonLinearBackgroundY(const BackgroundJob& job, int n, bool inY);
// The plane through three points of the 0 to 511 square; collinear points give 0 everywhere.
int Fit3PointPlane(const BackgroundJob& job, const int16_t points[6]);
// The plane of slopes sx (across the width) and sy (down the height) added.
int FitManualPlane(const BackgroundJob& job, int32_t sx, int32_t sy);

// The three x, y pairs at `offset` of the packed record (PlanePoints, RegionPoints).
void RecordPoints(const wint_SubtBckgrndParamType& p, size_t offset, int16_t points[6]);

// The thresholds and region the polynomial surface uses, in the preview or on apply.
struct SurfaceOptions {
    int low, high;
    bool region;
};
SurfaceOptions PolySurfaceOptions(const wint_SubtBckgrndParamType& p, bool apply);

// The method of the record, with its thresholds; answers 0, the method's failure, or -2 for
// a method outside the table (nothing done).
int RunBackgroundMethod(const BackgroundJob& job, const wint_SubtBckgrndParamType& p, bool apply);

// History code, or 0 for a method outside the table.
int BackgroundHistoryCode(uint32_t method);
// The log line of the method for the new item's title.
const char* BackgroundLogText(const wint_SubtBckgrndParamType& p, const char* title);
