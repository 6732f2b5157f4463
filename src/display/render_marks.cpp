#include "display/render_marks.h"

void DrawAttachedSpectraMarks(const ImageHeaderType* /*image*/)
{
    // The plot window draws the marks; until it does, an image shows without them.
}
