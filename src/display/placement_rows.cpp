// What the placement asks of the parameter text. The row writer is display/render_rows.cpp;
// the caption and scale bars are display/render_caption.cpp.
#include "display/placement.h"

void ShowParameterText(const ImageHeaderType* /*image*/) {}
