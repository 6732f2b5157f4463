#include "store/data_list.h"
#include "host/ap_callbacks.h"
#include "host/errors.h"
#include "store/data_list_display.h"
#include "store/data_list_mapping.h"
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

// The record leaves the list and is freed; the caller has dealt with its blocks.
ImageHeaderType* Unlink(ImageHeaderType* item)
{
    ImageHeaderType* next = item->Next;
    ImageHeaderType* prev = item->Prev;
    if (prev) prev->Next = next;
    if (next) next->Prev = prev;
    if (FirstItem == item) FirstItem = next;
    if (CurrentItem == item) CurrentItem = nullptr;
    DropFrameStoreReferences(item);
    FreeHeader(item);
    return next ? next : prev;
}

bool FFTBlockHeldElsewhere(const ImageHeaderType* item)
{
    if (!item->FFTDataPtr) return false;
    for (const ImageHeaderType* other = FirstItem; other; other = other->Next)
        if (other != item && other->FFTDataPtr == item->FFTDataPtr) return true;
    return false;
}

// EraseItem on an item known to be on the list. Answers false when the item's class has no
// erase and the item stays.
bool EraseListItem(ImageHeaderType* item)
{
    const bool wasCurrent = item == CurrentItem;
    if (CheckHeaderIsImageType(item)) {
        // The complex block may be shared by copies of the header: it goes with the last.
        if (!FFTBlockHeldElsewhere(item)) efree(item->FFTDataPtr);
        SetFFTBlock(item, nullptr);
        ReleaseMappingSet(item);
        FreeAttachedSpectra(item);
        Ap.ap_Close3DView(item->DataId);
        FreeMem(item->PixHandle, item->PixData);
    } else if (CheckHeaderIsSpecType(item)) {
        efree(item->PixData);
    } else {
        ProgramError("Erase current data %d", static_cast<int>(item->ImType1));
        return false;
    }
    item->PixData = nullptr;
    item->PixHandle = 0;
    ImageHeaderType* standIn = Unlink(item);
    if (wasCurrent) CurrentItem = standIn;
    return true;
}

} // namespace

ImageHeaderType* AllocateListItem(ImageHeaderType* after)
{
    if (after && !IsInList(after)) {
        ProgramError("AllocateListItem");
        return nullptr;
    }
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
    if (!item || !IsInList(item)) {
        ProgramError("UnlinkListItem");
        return nullptr;
    }
    return Unlink(item);
}

void EraseItem(ImageHeaderType* item)
{
    if (!item) return;
    if (!IsInList(item)) {
        ProgramError("EraseItem");
        return;
    }
    EraseListItem(item);
}

void EraseAllItems(ImageHeaderType* keep)
{
    if (keep && !IsInList(keep)) {
        ProgramError("EraseAllItems");
        return;
    }
    ImageHeaderType* item = FirstItem;
    while (item) {
        ImageHeaderType* next = item->Next;
        if (item != keep && !EraseListItem(item)) {
            // No erase by class: the record goes with the one block the registry knows.
            efree_check(item->PixData);
            Unlink(item);
        }
        item = next;
    }
    CurrentItem = keep;
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
    if (!item) return false;
    for (ImageHeaderType* p = FirstItem; p; p = p->Next)
        if (p == item) return true;
    return false;
}

void ResetDataListState()
{
    EraseAllItems();
    FirstItem = CurrentItem = nullptr;
    ResetDisplayRequests();
}
