// The lists behind the host's list controls: the items of one use (the spectra of a group
// plot, the spectra attached to the current image, the images to measure), rebuilt from the
// data list, with the user's choices, colours and symbols kept across rebuilds.
#pragma once

#include "tavrin/dl_selection.h"

// The use of the next list (TV_SELECT_ITEMS_...), set by the command that opens its dialog.
extern int SelectItemCol_ProcessType;

int GetSelectItemCol(wint_SelectItemCol* list, int fresh, int apply);
void SetSelectItemCol(const wint_SelectItemCol* list);
void SelectItemColAdd(wint_SelectItemCol* list);
void SelectItemColRemove(wint_SelectItemCol* list);
void SelectItemColPickup(wint_SelectItemCol* list);
void GetPrintEditItem(wint_SelectItemCol* list, int which);

// The list as last stored (null before any), for the commands that work on the chosen items.
const wint_SelectItemCol* StoredSelectItemCol();

void ResetSelectItems();
