#include "host/errors.h"
#include "mapping/cits.h"

#include <cmath>

uint16_t* GetCITSImagePtr(const CITSHeaderType* header, int image, uint32_t row)
{
    if (!header || image < 0 || image >= kMaxCITSImages) {
        ProgramError("GetCITSImagePtr");
        return nullptr;
    }
    // Images from ni up have no entry of this set: nothing is read behind the entries.
    if (image >= header->ni) return nullptr;
    uint16_t* pixels = CITSPixels(CITSEntry(header, image));
    if (!pixels) return nullptr;
    return pixels + static_cast<size_t>(header->cx > 0 ? header->cx : 0) * row;
}

int GetNearestCITSVoltage(float voltage, const CITSHeaderType* header)
{
    if (!header) {
        ProgramError("GetNearestCITSVoltage");
        return 0;
    }
    float best = 1e30f;
    int nearest = 0;
    for (int k = 0; k < header->ni; ++k) {
        // The exact difference of the two f32 values: a strictly smaller one wins.
        const float distance = std::fabs(CITSEntry(header, k)->voltage - voltage);
        if (distance < best) {
            best = distance;
            nearest = k;
        }
    }
    return nearest;
}

void GetCITSVoltageRange(const CITSHeaderType* header, float* low, float* high)
{
    if (!header || !low || !high) {
        ProgramError("GetCITSVoltageRange");
        return;
    }
    if (header->ni < 1) {
        *low = *high = 0.0f;
        return;
    }
    *low = *high = CITSEntry(header, 0)->voltage;
    for (int k = 1; k < header->ni; ++k) {
        const float v = CITSEntry(header, k)->voltage;
        if (v < *low) *low = v;
        if (v > *high) *high = v;
    }
}

void GetCITSDataRange(const CITSHeaderType* header, float* low, float* high)
{
    if (!header || !low || !high) {
        ProgramError("GetCITSDataRange");
        return;
    }
    if (header->ni < 1) {
        *low = *high = 0.0f;
        return;
    }
    *low = CITSEntry(header, 0)->z_low;
    *high = CITSEntry(header, 0)->z_high;
    for (int k = 1; k < header->ni; ++k) {
        const CITSImageEntryType* entry = CITSEntry(header, k);
        if (entry->z_low < *low) *low = entry->z_low;
        if (entry->z_high > *high) *high = entry->z_high;
    }
}

bool IsCITSVoltageAxis(const ImageHeaderType* image)
{
    if (!image) return false;
    const uint32_t kind = image->MapType;
    return kind == 12 || kind == 13 || kind == 60 || (kind == 51 && image->LMCSweepType == 2);
}

const char* GetCITSSweepUnit(const ImageHeaderType* image) { return IsCITSVoltageAxis(image) ? "V" : "nm"; }
