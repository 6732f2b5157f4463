// Clipping of a line to a rectangle by the Cohen-Sutherland method.
#pragma once

#include "platform/canvas.h"

// Clips the line from (*x1, *y1) to (*x2, *y2) to `rect` (its edges included, reversed bounds
// put in order), computing in doubles. When a part remains, the ends are stored truncated and
// the answer is 1; otherwise the ends stay and the answer is 0. Null pointers answer 0.
int ClipLineCohenSutherland(int32_t* x1, int32_t* y1, int32_t* x2, int32_t* y2, const RECT& rect);
