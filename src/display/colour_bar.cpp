#include "display/colour_bar.h"

void RedrawColourBar()
{
    // No colour bar is on screen yet: the full display of the image rendering draws it.
}
