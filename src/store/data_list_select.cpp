#include "store/data_list_select.h"
#include "host/ap_callbacks.h"
#include "host/errors.h"
#include "host/log.h"
#include "store/data_list.h"
#include "store/data_list_display.h"
#include "store/data_list_mapping.h"
#include "store/image_header.h"

#include <cstdio>
#include <cstring>

namespace {

bool IsLegalMode(int md)
{
    switch (md) {
    case SELECT_MAPPING_TOPOGRAPHIES: case SELECT_SPECTRA: case SELECT_SAME_SOURCE: case SELECT_SAME_CLASS:
    case SELECT_ALL: case SELECT_IMAGES: case SELECT_FRAME_STORE: return true;
    default: return false;
    }
}

// What the walk keeps of the reference item.
struct Reference {
    int16_t nx;
    int16_t ny;
    bool image;
    uint32_t dataSource;
    uint32_t acqMode;
};

bool PassesMode(const ImageHeaderType* item, int md, const Reference& ref)
{
    switch (md) {
    case SELECT_MAPPING_TOPOGRAPHIES:
        return CheckHeaderIsImageType(item) && (item->AcqMode == 11 || item->AcqMode == 51) && !HasMappingSet(item);
    case SELECT_SPECTRA: return CheckHeaderIsSpecType(item) != 0;
    case SELECT_SAME_SOURCE: return CheckHeaderIsImageType(item) && item->DataSource == ref.dataSource;
    case SELECT_SAME_CLASS: return (CheckHeaderIsImageType(item) != 0) == ref.image;
    case SELECT_IMAGES: return CheckHeaderIsImageType(item) != 0;
    case SELECT_FRAME_STORE: return FrameStoreFilterAccepts(item);
    default: return true;
    }
}

// The file name part of a stored path, without its extension; both separators and a drive
// colon end the directory part.
void NamePart(const char* path, size_t size, char* out, size_t outSize)
{
    size_t length = strnlen(path, size);
    size_t start = 0;
    for (size_t i = 0; i < length; ++i)
        if (path[i] == '\\' || path[i] == '/' || path[i] == ':') start = i + 1;
    size_t end = length;
    for (size_t i = length; i > start; --i)
        if (path[i - 1] == '.') {
            end = i - 1;
            break;
        }
    size_t n = end - start < outSize ? end - start : outSize - 1;
    std::memcpy(out, path + start, n);
    out[n] = '\0';
}

} // namespace

ImageHeaderType* GetPtrData2DataItem(int n, int sameSize, int md, int matchClass, int matchSource,
                                     const ImageHeaderType* reference)
{
    if (!reference) return nullptr;
    if (n < -1) {
        ProgramError("GetPtr2DataItem (n=%d)\n", n);
        return nullptr;
    }
    if (!IsLegalMode(md)) {
        Log("GetPtrData2DataItem data_type=%d\n", md);
        md = SELECT_ALL;
    }
    const Reference ref{reference->nx, reference->ny, CheckHeaderIsImageType(reference) != 0, reference->DataSource,
                        reference->AcqMode};
    int count = 0;
    for (ImageHeaderType* item = FirstItem; item; item = item->Next) {
        if (sameSize && (item->nx != ref.nx || item->ny != ref.ny)) continue;
        if (!PassesMode(item, md, ref)) continue;
        if (matchClass && CheckHeaderIsSpecType(item) && item->AcqMode != ref.acqMode) continue;
        if (matchSource && item->DataSource != ref.dataSource) continue;
        if (count == n) return item;
        ++count;
    }
    return nullptr;
}

char ClassLetter(const ImageHeaderType* item)
{
    if (CheckHeaderIsImageType(item)) {
        if (HasMappingSet(item)) return 'C';
        if (item->FFTDataPtr) return 'F';
        return 'I';
    }
    if (CheckHeaderIsSpecType(item)) return 'S';
    return ' ';
}

int GetDataDescriptor(char* text, int n, int sameSize, int md)
{
    ImageHeaderType* item = GetPtrData2DataItem(n, sameSize, md, 0, 0, CurrentItem);
    if (!item) {
        if (text) text[0] = '\0';
        return 4;
    }
    if (text) {
        char name[sizeof item->FileName];
        NamePart(item->FileName, sizeof item->FileName, name, sizeof name);
        const int titleLength = static_cast<int>(strnlen(item->Title, sizeof item->Title));
        if (md == SELECT_ALL)
            std::snprintf(text, kDataDescriptorBytes, "%c:(%d) %s.  \"%.*s\"", ClassLetter(item),
                          static_cast<int>(item->DataId), name, titleLength, item->Title);
        else
            std::snprintf(text, kDataDescriptorBytes, "(%d) %s.  \"%.*s\"", static_cast<int>(item->DataId), name,
                          titleLength, item->Title);
    }
    return item == CurrentItem ? 1 : 2;
}

ImageHeaderType* SelectDataItem(int n, int sameSize, int md)
{
    ImageHeaderType* item = GetPtrData2DataItem(n, sameSize, md, 0, 0, CurrentItem);
    if (!item) return nullptr;
    CurrentItem = item;
    DisplayCurrentItem();
    return item;
}

ImageHeaderType* SelectDataByHost(int sameSize, int md)
{
    // With no item there is nothing the dialog could offer.
    if (!CurrentItem) return nullptr;
    int n = Ap.ap_SelectDataDialog(static_cast<uint16_t>(sameSize), static_cast<uint16_t>(md));
    if (n < 0) return nullptr;
    return GetPtrData2DataItem(n, sameSize, md, 0, 0, CurrentItem);
}
