// The user's commands on the data list: stepping, erasing, and what the host's menus need to
// know of the current item.
#pragma once

#include <cstdint>

#include "tavrin/image_header.h"

enum class StepDirection { Backward, Forward };

// One step along the list; at an end the item stays. Shows the item and logs "Next Data" or
// "Previous Data". 33536 with no item.
void StepData(StepDirection direction);
// To the nearest item of the current item's class (its ImType1) in that direction, or back to
// the start when there is none. Shows the item and logs "Next Type" or "Previous Type". 33536
// with no item.
void StepDataType(StepDirection direction);
// Asks, then erases the current item. Forward: the next item stands in (or the previous one at
// the end of the list), and the frame store caches are closed. Backward: the previous item
// stands in (or the next one at the head). With none left the display is cleared. 33536 with
// no item.
void EraseCurrentData(StepDirection standIn);
// Asks "Close all data ?  ", then erases every item and clears the display.
void EraseAllData();
// Asks "Close all data except current ?  ", then erases every item but the current one.
void EraseAllDataExceptCurrent();

// Bits of the current item for the host's menus; 0 with no item.
enum CurrentDataBits : int32_t {
    DATA_SPECTRUM = 0x1,
    DATA_IMAGE = 0x2,
    DATA_FFT = 0x4,
    DATA_MAPPING = 0x8,
    DATA_IMAGE_CLASS = 0x10,
    DATA_NOT_FIRST = 0x20,
    DATA_SAME_CLASS_BEFORE = 0x40,
    DATA_NOT_LAST = 0x80,
    DATA_SAME_CLASS_BEHIND = 0x100,
    DATA_ATTACHED_SPECTRA = 0x400,
    DATA_FORCE_CURVE_MAPPING = 0x800,
    DATA_SQUARE_MAPPING_64 = 0x1000,
    DATA_SQUARE_MAPPING_128 = 0x2000,
    DATA_OWNED_SPECTRUM = 0x4000,
};
int32_t CurrentDataTypeBits();

// The host names the current item. Any item of the list is taken as it is, without a redraw;
// a pointer that is not an item of the list is reported and changes nothing.
void SetCurrentItemFromHost(ImageHeaderType* item);
