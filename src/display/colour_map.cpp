#include "display/colour_map.h"
#include "display/default_tables.h"
#include "display/display_param.h"
#include "display/shading.h"
#include "display/vfs.h"

void BuildColourMap(const ImageHeaderType* image, int isColour)
{
    uint8_t* map = FSState.ColourMap;
    if (isColour) {
        for (int i = 0; i < kPaletteSize; ++i) map[i] = image ? image->ImageLUT[i] : static_cast<uint8_t>(i);
        return;
    }
    if (FSState.LineDispMode == 1) {
        static_assert(kShadingEntries == kColourMapEntries, "the shading table fills the colour map");
        BuildShadingTable(map, Display.LightPolar, Display.LightAzimuth, Display.Ambient, Display.Diffuse);
        return;
    }
    for (int i = 0; i < kPaletteSize; ++i)
        map[i] = static_cast<uint8_t>((image ? image->ImageLUT[i] : i) / 2 + kRampFirst);
}
