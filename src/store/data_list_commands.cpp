#include "store/data_list_commands.h"
#include "host/errors.h"
#include "host/log.h"
#include "host/prompts.h"
#include "store/data_list.h"
#include "store/data_list_display.h"
#include "store/data_list_mapping.h"
#include "store/image_header.h"

namespace {

ImageHeaderType* Step(ImageHeaderType* item, StepDirection direction)
{
    return direction == StepDirection::Forward ? NextItem(item) : PrevItem(item);
}

bool SameClass(const ImageHeaderType* a, const ImageHeaderType* b) { return a->ImType1 == b->ImType1; }

} // namespace

void StepData(StepDirection direction)
{
    if (!CurrentItem) {
        Error(ERR_NO_IMAGES);
        return;
    }
    CurrentItem = Step(CurrentItem, direction);
    DisplayCurrentItem();
    Log(direction == StepDirection::Forward ? "Next Data\n" : "Previous Data\n");
}

void StepDataType(StepDirection direction)
{
    ImageHeaderType* start = CurrentItem;
    if (!start) {
        Error(ERR_NO_IMAGES);
        return;
    }
    ImageHeaderType* item = start;
    for (;;) {
        ImageHeaderType* next = Step(item, direction);
        if (next == item) break;   // the end of the list
        item = next;
        if (item == start || SameClass(item, start)) break;
    }
    if (!SameClass(item, start)) item = start;
    CurrentItem = item;
    DisplayCurrentItem();
    Log(direction == StepDirection::Forward ? "Next Type\n" : "Previous Type\n");
}

void EraseCurrentData(StepDirection standIn)
{
    ImageHeaderType* item = CurrentItem;
    if (!item) {
        Error(ERR_NO_IMAGES);
        return;
    }
    const char* question = CheckHeaderIsImageType(item) ? "Close current image ?  " : "Close current spectrum ?  ";
    if (!AskYesNo(question, false)) return;
    Log("Erase.\n");
    ImageHeaderType* previous = PrevItem(item);
    EraseItem(item);
    if (CurrentItem == item) return;   // an item of no class is not erased
    if (standIn == StepDirection::Backward && previous != item) CurrentItem = previous;
    if (CurrentItem)
        DisplayCurrentItem();
    else
        ClearDisplay();
    if (standIn == StepDirection::Forward) CloseFrameStoreCaches();
}

void EraseAllData()
{
    if (!FirstItem) return;
    if (!AskYesNo("Close all data ?  ", false)) return;
    Log("Close all data.\n");
    EraseAllItems();
    ClearDisplay();
}

void EraseAllDataExceptCurrent()
{
    if (!CurrentItem) return;
    if (!AskYesNo("Close all data except current ?  ", false)) return;
    EraseAllItems(CurrentItem);
    Log("Close all data except current.\n");
}

int32_t CurrentDataTypeBits()
{
    const ImageHeaderType* item = CurrentItem;
    if (!item) return 0;
    int32_t bits = 0;
    if (CheckHeaderIsImageType(item)) {
        bits |= DATA_IMAGE | DATA_IMAGE_CLASS;
        if (item->FFTDataPtr) bits |= DATA_FFT;
        if (HasMappingSet(item)) bits |= DATA_MAPPING;
        if (IsForceCurveMapping(item)) bits |= DATA_FORCE_CURVE_MAPPING;
        const int square = MappingSquareSize(item);
        if (square >= 64) bits |= DATA_SQUARE_MAPPING_64;
        if (square >= 128) bits |= DATA_SQUARE_MAPPING_128;
        if (item->SPSRefDataPtr) bits |= DATA_ATTACHED_SPECTRA;
    } else if (CheckHeaderIsSpecType(item)) {
        bits |= DATA_SPECTRUM;
        if (item->SPSOwnerId != -1) bits |= DATA_OWNED_SPECTRUM;
    }
    if (item != FirstItem) bits |= DATA_NOT_FIRST;
    if (item->Next) bits |= DATA_NOT_LAST;
    for (const ImageHeaderType* p = FirstItem; p && p != item; p = p->Next)
        if (SameClass(p, item)) bits |= DATA_SAME_CLASS_BEFORE;
    for (const ImageHeaderType* p = item->Next; p; p = p->Next)
        if (SameClass(p, item)) bits |= DATA_SAME_CLASS_BEHIND;
    return bits;
}

void SetCurrentItemFromHost(ImageHeaderType* item)
{
    if (item ? !IsInList(item) : FirstItem != nullptr) {
        ProgramError("SetCurrentImagePtr");
        return;
    }
    CurrentItem = item;
}
