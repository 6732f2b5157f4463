#include "store/data_list_mapping.h"
#include "store/image_header.h"

bool HasMappingSet(const ImageHeaderType* item) { return item && item->CITSHeaderPtr != nullptr; }

bool IsForceCurveMapping(const ImageHeaderType*)
{
    // The mapping subsystem reads the kind of the set here. Until it exists no set can be read,
    // and no item counts as a force-curve mapping.
    return false;
}

int MappingSquareSize(const ImageHeaderType*)
{
    // The mapping subsystem reads `cx` and `cy` of the set here. Until it exists no set can be
    // read, and the answer is that of an image without a set.
    return 0;
}

void ReleaseMappingSet(ImageHeaderType* item)
{
    // The mapping subsystem frees the set here when this was the last item that points at it.
    // Until it exists no set is ever allocated, and the item only lets go of the pointer.
    SetCITSBlock(item, nullptr);
}
