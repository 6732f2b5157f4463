#include "store/data_list.h"
#include "host/ap_callbacks.h"
#include "host/errors.h"
#include "store/image_header.h"
#include "store/memory.h"

ImageHeaderType* FirstItem = nullptr;
ImageHeaderType* CurrentItem = nullptr;

namespace {

void FreeAttachedSpectra(ImageHeaderType* image)
{
    ImageHeaderType* spectrum = image->SPSRefDataPtr;
    while (spectrum) {
        ImageHeaderType* next = spectrum->SPSRefDataPtr;
        efree(spectrum->PixData);
        FreeHeader(spectrum);
        spectrum = next;
    }
    SetSPSRefChain(image, nullptr);
    image->nSPSRefData = 0;
}

} // namespace

ImageHeaderType* AllocateListItem(ImageHeaderType* after)
{
    ImageHeaderType* item = AllocateHeader();
    if (!item) return nullptr;
    InitImageHeader(item, -1, -1);
    item->Prev = after;
    if (!after) {
        item->Next = FirstItem;
        if (FirstItem) FirstItem->Prev = item;
    } else {
        item->Next = after->Next;
        if (after->Next) after->Next->Prev = item;
        after->Next = item;
    }
    if (!item->Prev) FirstItem = item;
    return item;
}

ImageHeaderType* UnlinkListItem(ImageHeaderType* item)
{
    if (!item) {
        ProgramError("UnlinkListItem");
        return nullptr;
    }
    ImageHeaderType* next = item->Next;
    ImageHeaderType* prev = item->Prev;
    if (prev) prev->Next = next;
    if (next) next->Prev = prev;
    if (FirstItem == item) FirstItem = next;
    if (CurrentItem == item) CurrentItem = nullptr;
    FreeHeader(item);
    return next ? next : prev;
}

void EraseItem(ImageHeaderType* item)
{
    if (!item) return;
    const bool wasCurrent = item == CurrentItem;
    if (CheckHeaderIsImageType(item)) {
        efree(item->FFTDataPtr);
        SetFFTBlock(item, nullptr);
        FreeAttachedSpectra(item);
        Ap.ap_Close3DView(item->DataId);
        FreeMem(item->PixHandle, item->PixData);
    } else if (CheckHeaderIsSpecType(item)) {
        efree(item->PixData);
    } else {
        ProgramError("Erase current data %d", static_cast<int>(item->ImType1));
        return;
    }
    item->PixData = nullptr;
    item->PixHandle = 0;
    ImageHeaderType* standIn = UnlinkListItem(item);
    if (wasCurrent) CurrentItem = standIn;
}

void EraseAllItems()
{
    while (FirstItem) {
        ImageHeaderType* before = FirstItem;
        CurrentItem = FirstItem;
        EraseItem(FirstItem);
        if (FirstItem == before) {
            // An item of no known class cannot be erased by class: drop its record.
            UnlinkListItem(before);
        }
    }
    CurrentItem = nullptr;
}

ImageHeaderType* NextItem(ImageHeaderType* item)
{
    if (!item || !item->Next) return item;
    if (item->Next->Prev != item) {
        ProgramError("next image");
        return item;
    }
    return item->Next;
}

ImageHeaderType* PrevItem(ImageHeaderType* item)
{
    if (!item || !item->Prev) return item;
    if (item->Prev->Next != item) {
        ProgramError("previous image");
        return item;
    }
    return item->Prev;
}

ImageHeaderType* FindItemById(uint32_t id)
{
    for (ImageHeaderType* p = FirstItem; p; p = p->Next)
        if (p->DataId == id) return p;
    return nullptr;
}

int CountItems()
{
    int n = 0;
    for (ImageHeaderType* p = FirstItem; p; p = p->Next) ++n;
    return n;
}

bool IsInList(const ImageHeaderType* item)
{
    for (ImageHeaderType* p = FirstItem; p; p = p->Next)
        if (p == item) return true;
    return false;
}

void DisplayCurrentItem()
{
    // The display of items arrives with the frame stores; until then a change of the current
    // item is not drawn.
}

void ResetDataListState()
{
    EraseAllItems();
    FirstItem = CurrentItem = nullptr;
}
