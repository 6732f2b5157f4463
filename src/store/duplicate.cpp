#include "store/duplicate.h"
#include "host/errors.h"
#include "store/data_list.h"
#include "store/image_header.h"
#include "store/memory.h"

#include <cstring>

namespace {

// The pixel block of a record's size: element count and element size; false when the record
// has no size or no class.
bool PixelBlockSize(const ImageHeaderType* record, size_t* count, size_t* size)
{
    if (CheckHeaderIsImageType(record)) {
        if (record->nx <= 0 || record->ny <= 0) return false;
        *count = static_cast<size_t>(record->nx) * static_cast<size_t>(record->ny);
        *size = 2;
        return true;
    }
    if (CheckHeaderIsSpecType(record)) {
        if (record->nx <= 0) return false;
        *count = static_cast<size_t>(record->nx);
        *size = 8;   // a Y and an X sample of f32
        return true;
    }
    return false;
}

// A new item behind `source` with a copy of its header. The FFT block and the attached spectra
// describe the source's own pixels and stay with it; so does the mapping set unless
// `shareMapping`. Null after a report, with the list as it was.
ImageHeaderType* NewItemWithHeader(const ImageHeaderType* source, int copyHitData, bool shareMapping)
{
    ImageHeaderType* item = AllocateListItem(const_cast<ImageHeaderType*>(source));
    if (!item) return nullptr;
    const int copyFailed = CopyImageHeader(item, source, copyHitData);
    SetFFTBlock(item, nullptr);
    if (!shareMapping) SetCITSBlock(item, nullptr);
    SetSPSRefChain(item, nullptr);
    item->nSPSRefData = 0;
    if (copyFailed) {
        UnlinkListItem(item);
        return nullptr;
    }
    return item;
}

// Gives the new item a pixel block of count elements of `size` bytes; on failure 32769 and the
// item leaves the list again.
bool AttachPixels(ImageHeaderType* item, size_t count, size_t size)
{
    MemHandleType pixels;
    if (!AllocateMemNoErr(count, size, &pixels)) {
        Error(ERR_NO_MEMORY);
        UnlinkListItem(item);
        return false;
    }
    item->PixHandle = pixels.Handle;
    item->PixData = static_cast<uint16_t*>(pixels.Ptr);
    return true;
}

} // namespace

ImageHeaderType* DuplicateForResult(const ImageHeaderType* source)
{
    size_t count = 0, size = 0;
    if (!source || !IsInList(source) || !PixelBlockSize(source, &count, &size)) {
        ProgramError("CopyNewHEader");
        return nullptr;
    }
    ImageHeaderType* item = NewItemWithHeader(source, 1, true);
    if (!item || !AttachPixels(item, count, size)) return nullptr;
    std::memset(item->PixData, 0, count * size);
    StampSaved(item);
    return item;
}

ImageHeaderType* DuplicateFull(ImageHeaderType* source, ImageHeaderType* after)
{
    if (!source || IsInList(source)) {
        ProgramError("DuplicateFull");
        return nullptr;
    }
    ImageHeaderType* item = AllocateListItem(after);
    if (!item) return nullptr;
    if (CopyImageHeader(item, source, 1)) {
        SetFFTBlock(item, nullptr);
        SetCITSBlock(item, nullptr);
        SetSPSRefChain(item, nullptr);
        UnlinkListItem(item);
        return nullptr;
    }
    CopyHeaderPointers(item, source);
    return item;
}

ImageHeaderType* DuplicateResized(ImageHeaderType* source, int nx, int ny)
{
    if (!source || !IsInList(source) || nx <= 0 || ny <= 0 || nx > INT16_MAX || ny > INT16_MAX) {
        ProgramError("DuplicateResized %d %d", nx, ny);
        return nullptr;
    }
    ImageHeaderType* item = NewItemWithHeader(source, 0, false);
    if (!item) return nullptr;
    item->nx = static_cast<int16_t>(nx);
    item->ny = static_cast<int16_t>(ny);
    if (!AttachPixels(item, static_cast<size_t>(nx) * static_cast<size_t>(ny), sizeof(uint16_t))) return nullptr;
    return item;
}

void FreeResultItem(ImageHeaderType* item)
{
    if (!item || !IsInList(item)) {
        ProgramError("FreeResultItem");
        return;
    }
    ImageHeaderType* const current = CurrentItem;
    FreeMem(item->PixHandle, item->PixData);
    item->PixData = nullptr;
    item->PixHandle = 0;
    UnlinkListItem(item);
    if (current != item) CurrentItem = current;
}
