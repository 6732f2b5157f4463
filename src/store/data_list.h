// The data list: all items in memory on one doubly linked list of records.
//
// The order is the order of the user's work: a new item goes directly behind the item named at
// allocation, usually the current one. Links are the Next and Prev fields of the record.
// Every routine here that takes an item refuses (with a program error) a record that is not on
// the list, so that a stray pointer never reaches the links.
#pragma once

#include <cstdint>

#include "tavrin/image_header.h"

extern ImageHeaderType* FirstItem;     // head of the list, null when empty
extern ImageHeaderType* CurrentItem;   // the current item, null when empty

// A new record behind `after` (the head when null), filled by InitImageHeader(-1, -1).
// 32769 on failure, and the list is untouched.
ImageHeaderType* AllocateListItem(ImageHeaderType* after);
// Unlinks and frees the record (not its pixels); answers Next, or Prev if there is no Next.
// When the record was the current item, no item is current afterwards: the caller decides.
ImageHeaderType* UnlinkListItem(ImageHeaderType* item);
// The one full erase of an item, with its pixels or samples and every block. When it was the
// current item, the item that UnlinkListItem answers becomes current. An item that is neither
// image nor spectrum is reported ("Erase current data %d") and stays.
void EraseItem(ImageHeaderType* item);
// The one loop that empties the list: from the head, erases every item other than `keep`
// (null: every item) and steps over the kept one. An item that EraseItem cannot erase by its
// class is dropped with its known blocks, so that the loop always ends. `keep` stays current.
void EraseAllItems(ImageHeaderType* keep = nullptr);
// The neighbour, or the item itself at the end of the list (or when a link does not point
// back, which is reported as "next image" or "previous image").
ImageHeaderType* NextItem(ImageHeaderType* item);
ImageHeaderType* PrevItem(ImageHeaderType* item);
ImageHeaderType* FindItemById(uint32_t id);
int CountItems();
bool IsInList(const ImageHeaderType* item);

// The one call site for "show the current item" after the list changed.
void DisplayCurrentItem();

void ResetDataListState();
