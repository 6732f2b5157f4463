// Selection of items on the data list: by position within a selection mode, by the host's
// choice, and the descriptor text of the host's data menu.
#pragma once

#include "tavrin/image_header.h"

// Selection modes (`md`): which items are counted.
enum SelectionMode : int {
    SELECT_MAPPING_TOPOGRAPHIES = 1,  // plain images with AcqMode 11 or 51 and no mapping set
    SELECT_SPECTRA = 2,               // spectrum classes
    SELECT_SAME_SOURCE = 4,           // images with the DataSource of the reference
    SELECT_SAME_CLASS = 8,            // items of the reference's class (image or not)
    SELECT_ALL = 16,                  // everything
    SELECT_IMAGES = 32,               // images
    SELECT_FRAME_STORE = 64,          // items the frame store filter accepts
};

// The size of a descriptor text, terminator included.
constexpr int kDataDescriptorBytes = 512;

// The n-th item (from 0) counted by mode `md` with `reference` as the item to compare with.
// `sameSize` skips items whose nx or ny differ from the reference; `matchClass` skips spectra
// of another AcqMode; `matchSource` skips items of another DataSource. Null when there is no
// such item, with a null reference, or with n = -1. An n below -1 is reported; another md is
// logged and counts as SELECT_ALL.
ImageHeaderType* GetPtrData2DataItem(int n, int sameSize, int md, int matchClass, int matchSource,
                                     const ImageHeaderType* reference);

// The class letter of an item: 'S' spectrum class, 'C' image with a mapping set, 'F' image
// with complex FFT data, 'I' other image, ' ' neither.
char ClassLetter(const ImageHeaderType* item);

// Fills `text` (kDataDescriptorBytes) with the descriptor of the n-th item selected against
// the current item. Answers 1 when it is the current item, 2 for another item, 4 for none
// (the text is then empty). A null text is left alone; the answer is the same.
int GetDataDescriptor(char* text, int n, int sameSize, int md);

// Makes the n-th selected item current and shows it; answers it, or null (nothing changes).
ImageHeaderType* SelectDataItem(int n, int sameSize, int md);

// Lets the user pick an item through the host's data dialog, counted against the current item;
// answers it (not made current), or null when the user cancelled or there is no item.
ImageHeaderType* SelectDataByHost(int sameSize, int md);
