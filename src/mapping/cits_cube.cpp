#include "mapping/cits.h"

#include <cstring>

size_t CITSCubeBytes(const ImageHeaderType* image, bool codes)
{
    if (!image || !image->CITSHeaderPtr) return 0;
    const CITSHeaderType* set = image->CITSHeaderPtr;
    if (set->ni < 1 || set->cx <= 0 || set->cy <= 0) return 0;
    return static_cast<size_t>(set->ni) * static_cast<size_t>(set->cx) * static_cast<size_t>(set->cy) *
           (codes ? sizeof(uint16_t) : sizeof(float));
}

bool CITSCube(const ImageHeaderType* image, bool codes, void* out)
{
    if (!out || CITSCubeBytes(image, codes) == 0) return false;
    const CITSHeaderType* set = image->CITSHeaderPtr;
    const size_t plane = static_cast<size_t>(set->cx) * static_cast<size_t>(set->cy);
    for (int k = 0; k < set->ni; ++k)
        if (!CITSPixels(CITSEntry(set, k))) return false;
    for (int k = 0; k < set->ni; ++k) {
        const CITSImageEntryType* entry = CITSEntry(set, k);
        const uint16_t* pixels = CITSPixels(entry);
        if (codes) {
            std::memcpy(static_cast<uint16_t*>(out) + k * plane, pixels, plane * sizeof(uint16_t));
            continue;
        }
        float* values = static_cast<float*>(out) + k * plane;
        for (size_t i = 0; i < plane; ++i) values[i] = CITSData2Current(entry, pixels[i]);
    }
    return true;
}
