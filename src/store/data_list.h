// The data list: all items in memory on one doubly linked list of records.
//
// The order is the order of the user's work: a new item goes directly behind the item named at
// allocation, usually the current one. Links are the Next and Prev fields of the record.
#pragma once

#include <cstdint>

#include "tavrin/image_header.h"

extern ImageHeaderType* FirstItem;     // head of the list, null when empty
extern ImageHeaderType* CurrentItem;   // the current item, null when empty

// A new record behind `after` (the head when null), filled by InitImageHeader(-1, -1).
// 32769 on failure, and the list is untouched.
ImageHeaderType* AllocateListItem(ImageHeaderType* after);
// Unlinks and frees the record (not its pixels); answers Next, or Prev if there is no Next.
ImageHeaderType* UnlinkListItem(ImageHeaderType* item);
// The one full erase of an item, with its pixels or samples and every block.
void EraseItem(ImageHeaderType* item);
// Erases every item with no question (the end of a run).
void EraseAllItems();
// The neighbour, or the item itself at the end of the list (or when a link does not point
// back, which is reported).
ImageHeaderType* NextItem(ImageHeaderType* item);
ImageHeaderType* PrevItem(ImageHeaderType* item);
ImageHeaderType* FindItemById(uint32_t id);
int CountItems();
bool IsInList(const ImageHeaderType* item);

// The one call site for "show the current item" after the list changed.
void DisplayCurrentItem();

void ResetDataListState();
