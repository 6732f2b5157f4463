// The tool's parameter record: defaults, clipping, comparison.
#include "image/subt_back.h"

#include <algorithm>
#include <cstring>

wint_SubtBckgrndParamType DefaultSubtBckgrndParam()
{
    wint_SubtBckgrndParamType p{};
    p.Method = TV_SUBT_POLY_SURFACE;
    p.DegreeX = 1;
    p.DegreeY = 1;
    p.PolyOrder = 1;
    const int16_t plane[6] = {170, 341, 341, 341, 256, 170};
    const int16_t region[6] = {64, 448, 448, 448, 64, 64};
    std::memcpy(p.PlanePoints, plane, sizeof plane);
    std::memcpy(p.RegionPoints, region, sizeof region);
    p.LowThreshold = 0;
    p.HighThreshold = 65535;
    return p;
}

void ClipSubtBckgrndParam(wint_SubtBckgrndParamType* p)
{
    p->DegreeX = std::clamp<int16_t>(p->DegreeX, 0, 19);
    p->DegreeY = std::clamp<int16_t>(p->DegreeY, 0, 19);
    p->PolyOrder = std::clamp<int16_t>(p->PolyOrder, 0, 29);
    if (p->LowThreshold > p->HighThreshold) {
        const uint16_t low = p->HighThreshold;
        p->HighThreshold = p->LowThreshold;
        p->LowThreshold = low;
    }
    p->ManualSlopeX = std::clamp<int32_t>(p->ManualSlopeX, -65535, 65535);
    p->ManualSlopeY = std::clamp<int32_t>(p->ManualSlopeY, -65535, 65535);
}

uint32_t CompareSubtBckgrndParam(const wint_SubtBckgrndParamType& stored, const wint_SubtBckgrndParamType& given)
{
    uint32_t bits = 0;
    if (stored.LowThreshold != given.LowThreshold || stored.HighThreshold != given.HighThreshold ||
        stored.Method != given.Method || stored.UseThreshold != given.UseThreshold)
        bits |= TV_SUBT_THRESHOLDS;
    if (std::memcmp(&stored, &given, sizeof stored) != 0) bits |= TV_SUBT_RESULT;
    return bits;
}

bool WantsRegionOverlay(const wint_SubtBckgrndParamType& p)
{
    return p.UseRegion != 0 && (p.DegreeX != 0 || p.DegreeY != 0) && p.Method == TV_SUBT_POLY_SURFACE &&
           p.DegreeX < 3 && p.DegreeY < 3;
}
