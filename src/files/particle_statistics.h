// The particle statistics text: one line for each object of the bilevel item, measured afresh,
// in detection order.
//
// A heading line unless the export settings of the ".dat" table turn headings off:
//   Number X1 Y1 X2 Y2 Area/nm<sq> Area/pix Perimeter/nm Area/Perimeter<sq>
// (<sq> the square suffix of the locale), then for each object its number from 1, its box,
// area, pixels, perimeter and shape ("%E" for the real numbers). The separator is the one of
// the ".dat" export (blank, comma or tab). Lines end in CR LF, as the ".dat" table's do.
#pragma once

#include <cstdint>

// 1 on success: the file is written, or there are no objects (logged with 0, no file made).
// 0 on failure: 33536 no bilevel item, 33559 not bilevel, 32769 no memory, 32776 the file
// cannot be made, 32779 a failed write (the half-written file is removed).
int32_t WriteObjectStatistics(const char* path);
