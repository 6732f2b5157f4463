// The frame of the filter commands. It differs from the frame of the geometry commands: the
// status text is shown before the result item is made (by the command), FFT and SPS Mapping
// images are not refused, and a result item that cannot be made ends the status text and
// writes no log line. The order of a filter command:
//   status text; the result (new item, rows filled and shown, display finished, the result
//   current, its region registered); log line; history code; parameter text; status ended.
#pragma once

#include <functional>

#include "tavrin/image_header.h"

// Fills all pixels of the result from the source's, same size.
using FilterFill = std::function<void(const uint16_t* source, uint16_t* result, int nx, int ny)>;

// The current image, or null after 33536 "No images in memory". Filters check only for an item.
ImageHeaderType* FilterSource();

// The result of a filter on `source`: a new item behind it (CopyNewHEader, zeroed pixels) with
// the row display begun, all rows filled by `fill` and then shown in row order, the display
// finished, the result made current and its region registered. `displayFirst` begins the row
// display before the new item is made. When the new item cannot be made (already reported),
// any begun display is closed, the status text is ended, and null is answered.
ImageHeaderType* FilterResult(ImageHeaderType* source, bool displayFirst, const FilterFill& fill);

// The end of a filter command with a result: the log line (already formatted), the history
// code, the parameter text, the status text ended.
void FinishFilterCommand(ImageHeaderType* result, const char* logText, int code);
