// What FinishImageDisplay draws over a placed image: the size caption, the scale bars and the
// marks of attached spectra.
#include "display/display_param.h"
#include "display/fonts.h"
#include "display/placement.h"
#include "display/render_marks.h"
#include "display/scale_bars.h"
#include "display/size_text.h"
#include "display/vfs.h"
#include "store/data_list.h"
#include "store/image_header.h"
#include "store/value_text.h"

#include <cstdio>

namespace {

constexpr int kCaptionTop = 8;
constexpr int kCaptionColour = 6;

// "%.*fx%.*f um" when both sizes reach 1000 nm, else "%.*fx%.*f nm".
void CaptionText(const ImageHeaderType* image, char* text, size_t size)
{
    const ScanSizeText s = ScanSizeForCaption(image);
    std::snprintf(text, size, "%.*fx%.*f %s", DecimalsFor(s.x), s.x, DecimalsFor(s.y), s.y, s.unit);
}

} // namespace

void DrawImageCaptionAndBars(int x0, int y0)
{
    const ImageHeaderType* image = CurrentItem;
    CVfs* vfs = CurrentVfs();
    if (!vfs || !image) return;
    if (FSState.TextOverlayOn && FSState.NPixelsX != 0 && image->SPMData) {
        char text[96];
        CaptionText(image, text, sizeof text);
        const uint8_t backMode = FSState.TextOverlayMode ? kBackModeOpaque : 1;
        vfs->AddText(x0 + FSState.NPixelsX / 2, y0 + kCaptionTop, NamedFont(FONT_CAPTION), nullptr, text,
                     TextAlignWord(1, 1, backMode), IndexColour(kCaptionColour), IndexColour(kCaptionColour));
    }
    if (image->CITSHeader) return;
    DrawScaleBars(FSState.ImageLeft, FSState.ImageTop, FSState.ImageRight, FSState.ImageBottom, image);
    if (image->ImType1 == IMTYPE_IMAGE && AttachedSpectraMarksOn) DrawAttachedSpectraMarks(image);
}
