// Which image each frame of a sheet shows. The rules are integer arithmetic on the frame
// number, the image count and the display block; a frame that needs a predecessor (the
// difference modes) never shows image 0 itself.
#include "host/errors.h"
#include "mapping/cits_display.h"

namespace {

int SpreadSlot(int f, int ni, int n, bool topography)
{
    if (topography) {
        if (n <= ni) {
            const int d = n > 2 ? n : kCITSNoStep;
            return ((f - 1) * ni) / (d - 1);
        }
        return f - 1;
    }
    if (n < ni) {
        const int d = n != 0 ? n : kCITSNoStep;
        return (f * ni) / d;
    }
    return f;
}

int SpreadDifference(int f, int ni, int n, bool topography)
{
    if (n >= ni) return f;
    if (topography) {
        const int d = n > 2 ? n : kCITSNoStep;
        return ((f - 1) * (ni - 1)) / (d - 1) + 1;
    }
    const int d = n != 0 ? n : kCITSNoStep;
    return ((ni - 1) * f) / d + 1;
}

} // namespace

int CITSDispImageNo(int f, int ni, const CITSDispBlockType* disp)
{
    const bool topography = (disp->flags & 1) != 0;
    const int n = disp->n;
    const int m = disp->mode;
    if (f == 0 && topography) return kCITSTopographyFrame;
    if (f >= ni) return kCITSBlankFrame;

    int r = 0;
    switch (disp->select) {
    case 0: return kCITSBlankFrame;
    case 1:
    case 2:
    case 3:
        if (m > 4) {
            ProgramError("Invalid CITS display mode");
            return kCITSBlankFrame;
        }
        if (disp->select == 1)
            r = m == 0 ? SpreadSlot(f, ni, n, topography) : SpreadDifference(f, ni, n, topography);
        else if (disp->select == 2)
            r = m == 0 ? (topography ? f - 1 : f) : (topography ? f : f + 1);
        else
            r = topography ? ni - f : ni - f - 1;
        break;
    case 4: {
        const int slot = topography ? f - 1 : f;
        // The list has 64 slots; a frame beyond it has no entry.
        if (slot < 0 || slot >= 64) return kCITSBlankFrame;
        r = disp->im_no[slot];
        break;
    }
    default: ProgramError("Invlid CITS display mode"); return kCITSBlankFrame;
    }
    const int first = m == 0 ? 0 : 1;
    return r >= first && r < ni ? r : kCITSBlankFrame;
}
