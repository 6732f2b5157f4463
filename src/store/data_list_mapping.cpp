#include "store/data_list_mapping.h"
#include "store/cits_memory.h"
#include "store/data_list.h"
#include "store/image_header.h"

bool HasMappingSet(const ImageHeaderType* item) { return item && item->CITSHeaderPtr != nullptr; }

bool IsForceCurveMapping(const ImageHeaderType* item)
{
    return HasMappingSet(item) && (item->MapType == 15 || item->MapType == 51);
}

int MappingSquareSize(const ImageHeaderType* item)
{
    return IsSquareMappingImage(item) ? item->CITSHeaderPtr->cx : 0;
}

void ReleaseMappingSet(ImageHeaderType* item)
{
    CITSHeaderType* set = item ? item->CITSHeaderPtr : nullptr;
    if (!set) return;
    SetCITSBlock(item, nullptr);
    // Items split off an image share its set: the set goes with the last of them.
    for (const ImageHeaderType* other = FirstItem; other; other = other->Next)
        if (other != item && other->CITSHeaderPtr == set) return;
    DeallocateCITSDataSet(set);
}
