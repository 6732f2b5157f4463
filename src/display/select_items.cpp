#include "display/select_items.h"
#include "display/vfs.h"
#include "host/errors.h"
#include "host/text.h"
#include "store/data_list.h"
#include "store/data_list_select.h"
#include "store/image_header.h"
#include "store/memory.h"

#include <cstdio>
#include <cstring>

int SelectItemCol_ProcessType = TV_SELECT_ITEMS_GROUP_PLOT;

namespace {

constexpr uint32_t kPureBlue = 0xff0000;
constexpr uint32_t kChosenSymbol = 7;
constexpr int kFirstGroupColour = 7, kLastGroupColour = 14;

wint_SelectItemCol* g_stored = nullptr;

bool Listed(const ImageHeaderType* item, int use)
{
    switch (use) {
    case TV_SELECT_ITEMS_GROUP_PLOT:
        return CheckHeaderIsSpecType(item) != 0;
    case TV_SELECT_ITEMS_MEASURE:
        return CheckHeaderIsImageType(item) != 0;
    default:
        return false;
    }
}

// The file name without its directory.
const char* BaseName(const char* path)
{
    const char* base = path;
    for (const char* p = path; *p; ++p)
        if (*p == '/' || *p == '\\') base = p + 1;
    return base;
}

// No rows: what a rebuild starts from; the host's sort state and flags stay.
void ClearRows(wint_SelectItemCol* list)
{
    list->Count = 0;
    std::memset(list->Texts, 0, sizeof list->Texts);
    std::memset(list->Colours, 0, sizeof list->Colours);
    std::memset(list->Symbols, 0, sizeof list->Symbols);
    std::memset(list->Selected, 0, sizeof list->Selected);
    std::memset(list->Items, 0, sizeof list->Items);
}

void SetRow(wint_SelectItemCol* list, int row, ImageHeaderType* item, const char* first)
{
    char number[TV_SELECT_ITEM_TEXT];
    if (!first) {
        std::snprintf(number, sizeof number, "%d %c:(%u)", row + 1, ClassLetter(item), item->DataId);
        first = number;
    }
    strncpy0(list->Texts[row][0], first, TV_SELECT_ITEM_TEXT);
    strncpy0(list->Texts[row][1], item->Title, TV_SELECT_ITEM_TEXT);
    char name[sizeof item->FileName + 1] = {};
    std::memcpy(name, item->FileName, sizeof item->FileName);
    strncpy0(list->Texts[row][2], BaseName(name), TV_SELECT_ITEM_TEXT);
    list->Items[row] = item;
}

// The rows of the list's use: items of the data list in their order, or the spectra attached to
// the current image.
void Rebuild(wint_SelectItemCol* list, int use)
{
    ClearRows(list);
    auto add = [list](ImageHeaderType* item) {
        if (list->Count >= TV_SELECT_ITEM_ROWS) return;
        const int row = list->Count++;
        SetRow(list, row, item, nullptr);
    };
    if (use == TV_SELECT_ITEMS_IMAGE_SPECTRA) {
        if (CurrentItem)
            for (ImageHeaderType* s = CurrentItem->SPSRefDataPtr; s; s = s->SPSRefDataPtr) add(s);
        return;
    }
    for (ImageHeaderType* item = FirstItem; item; item = item->Next)
        if (Listed(item, use)) add(item);
}

// Choices, colours and symbols of the stored list for items that are still listed.
void KeepChoices(wint_SelectItemCol* list)
{
    if (!g_stored) return;
    for (int row = 0; row < list->Count; ++row)
        for (int old = 0; old < g_stored->Count; ++old)
            if (g_stored->Items[old] == list->Items[row]) {
                list->Selected[row] = g_stored->Selected[old];
                list->Colours[row] = g_stored->Colours[old];
                list->Symbols[row] = g_stored->Symbols[old];
                break;
            }
}

bool ColourInUse(const wint_SelectItemCol* list, uint32_t colour)
{
    for (int row = 0; row < list->Count; ++row)
        if (list->Selected[row] && list->Colours[row] == colour) return true;
    return false;
}

uint32_t NextColour(const wint_SelectItemCol* list)
{
    if (SelectItemCol_ProcessType != TV_SELECT_ITEMS_GROUP_PLOT) return kPureBlue;
    for (int index = kFirstGroupColour; index <= kLastGroupColour; ++index)
        if (!ColourInUse(list, IndexColour(index))) return IndexColour(index);
    return IndexColour(kFirstGroupColour);
}

// The row a button acts on, or -1 (reported) when it names none.
int ActedRow(const wint_SelectItemCol* list, const char* name)
{
    const int row = list ? list->Extra[1] : -1;
    if (!list || row < 0 || row >= list->Count || row >= TV_SELECT_ITEM_ROWS) {
        ProgramError("%s %d", name, row);
        return -1;
    }
    return row;
}

} // namespace

int GetSelectItemCol(wint_SelectItemCol* list, int fresh, int apply)
{
    if (!list) {
        ProgramError("dl_GetSelectItemCol");
        return 1;
    }
    Rebuild(list, SelectItemCol_ProcessType);
    if (!fresh) KeepChoices(list);
    if (list->Count == 0) {
        Error(ERR_NO_IMAGES);
        return 1;
    }
    if (apply) SetSelectItemCol(list);
    return 0;
}

void SetSelectItemCol(const wint_SelectItemCol* list)
{
    if (!list) return;
    if (!g_stored) g_stored = static_cast<wint_SelectItemCol*>(ecalloc(1, sizeof(wint_SelectItemCol)));
    if (!g_stored) {
        Error(ERR_NO_MEMORY);
        return;
    }
    std::memcpy(g_stored, list, sizeof *list);
}

void SelectItemColAdd(wint_SelectItemCol* list)
{
    const int row = ActedRow(list, "dl_pb_SelectItemCol_Add");
    if (row < 0 || list->Selected[row]) return;
    list->Colours[row] = NextColour(list);
    list->Symbols[row] = kChosenSymbol;
    list->Selected[row] = 1;
}

void SelectItemColRemove(wint_SelectItemCol* list)
{
    const int row = ActedRow(list, "dl_pb_SelectItemCol_Remove");
    if (row >= 0) list->Selected[row] = 0;
}

void SelectItemColPickup(wint_SelectItemCol* list)
{
    const int row = ActedRow(list, "dl_pb_SelectItemCol_Pickup");
    if (row < 0) return;
    ImageHeaderType* item = list->Items[row];
    if (!item || !IsInList(item)) return;   // an attached spectrum is no item of the list
    CurrentItem = item;
    DisplayCurrentItem();
}

void GetPrintEditItem(wint_SelectItemCol* list, int which)
{
    if (!list) return;
    if (which != 0 && which != 1) {
        ProgramError("dl_GetPrintEditItem type=%d", which);
        return;
    }
    ClearRows(list);
    for (ImageHeaderType* item = FirstItem; item && list->Count < TV_SELECT_ITEM_ROWS; item = item->Next) {
        const bool wanted = which == 0 ? CheckHeaderIsImageType(item) != 0 : CheckHeaderIsSpecType(item) != 0;
        if (!wanted) continue;
        const int row = list->Count++;
        SetRow(list, row, item, item == CurrentItem ? "(1)" : "---");
        list->Selected[row] = item == CurrentItem;
    }
}

const wint_SelectItemCol* StoredSelectItemCol() { return g_stored; }

void ResetSelectItems()
{
    efree(g_stored);
    g_stored = nullptr;
    SelectItemCol_ProcessType = TV_SELECT_ITEMS_GROUP_PLOT;
}
