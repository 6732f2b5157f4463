// Entry points: pick-mode events, slider moves, item lists.
#include "tavrin/dl_selection.h"
#include "display/scroll_bars.h"
#include "display/select_items.h"
#include "display/selection.h"
#include "host/trace.h"

#include <cstddef>

static_assert(sizeof(wint_ScrollBarParamType) == 192, "slider record");
static_assert(offsetof(wint_ScrollBarParamType, Title) == 12 && offsetof(wint_ScrollBarParamType, SmallStep) == 172 &&
                  offsetof(wint_ScrollBarParamType, PosY) == 188,
              "slider fields");
static_assert(offsetof(wint_SelectItemCol, Texts) == 4 && offsetof(wint_SelectItemCol, Colours) == 240004 &&
                  offsetof(wint_SelectItemCol, Symbols) == 248004 && offsetof(wint_SelectItemCol, Header) == 256004 &&
                  offsetof(wint_SelectItemCol, Selected) == 256016 && offsetof(wint_SelectItemCol, Items) == 264016 &&
                  offsetof(wint_SelectItemCol, Extra) == 264016 + TV_SELECT_ITEM_ROWS * sizeof(void*),
              "item list fields");
static_assert(sizeof(wint_SelectItemCol) == 264024 + TV_SELECT_ITEM_ROWS * sizeof(void*), "item list record");

TAVRIN_API int16_t dl_SelectPointInVFS_Callback(int16_t type, int16_t x, int16_t y, int16_t buttons, int32_t hndl)
{
    TraceEntry("dl_SelectPointInVFS_Callback");
    return static_cast<int16_t>(SelectPointInVFS_Callback(type, x, y, buttons, hndl));
}

TAVRIN_API int16_t dl_Horz_Scroll_Bar1_Callback(int16_t id, int16_t state, float value)
{
    TraceEntry("dl_Horz_Scroll_Bar1_Callback");
    return static_cast<int16_t>(ScrollBar1Moved(id, state, value));
}

TAVRIN_API int16_t dl_Horz_Scroll_Bar2_Callback(int16_t id, int16_t state, float value1, float value2)
{
    TraceEntry("dl_Horz_Scroll_Bar2_Callback");
    return static_cast<int16_t>(ScrollBar2Moved(id, state, value1, value2));
}

TAVRIN_API int16_t dl_Horz_Scroll_Bar3_Callback(int16_t id, int16_t state, float value1, float value2, float value3)
{
    TraceEntry("dl_Horz_Scroll_Bar3_Callback");
    return static_cast<int16_t>(ScrollBar3Moved(id, state, value1, value2, value3));
}

TAVRIN_API int16_t dl_Horz_Vert_Scroll_Bar_Callback(int16_t id, int16_t state, float value1, float value2)
{
    TraceEntry("dl_Horz_Vert_Scroll_Bar_Callback");
    return static_cast<int16_t>(HorzVertScrollBarMoved(id, state, value1, value2));
}

TAVRIN_API int16_t dl_Horz_Vert_Scroll_Bar1_Callback(int16_t /*id*/, int16_t /*state*/, float /*value1*/,
                                                     float /*value2*/)
{
    TraceEntry("dl_Horz_Vert_Scroll_Bar1_Callback");
    return 1;
}

TAVRIN_API int16_t dl_Horz2_Vert_Scroll_Bar1_Callback(int16_t /*id*/, int16_t /*state*/, float /*value1*/,
                                                      float /*value2*/)
{
    TraceEntry("dl_Horz2_Vert_Scroll_Bar1_Callback");
    return 1;
}

TAVRIN_API int16_t dl_GetSelectItemCol(wint_SelectItemCol* list, int16_t fresh, int16_t apply)
{
    TraceEntry("dl_GetSelectItemCol");
    return static_cast<int16_t>(GetSelectItemCol(list, fresh, apply));
}

TAVRIN_API void dl_SetSelectItemCol(const wint_SelectItemCol* list)
{
    TraceEntry("dl_SetSelectItemCol");
    SetSelectItemCol(list);
}

TAVRIN_API void dl_pb_SelectItemCol_Add(wint_SelectItemCol* list)
{
    TraceEntry("dl_pb_SelectItemCol_Add");
    SelectItemColAdd(list);
}

TAVRIN_API void dl_pb_SelectItemCol_Remove(wint_SelectItemCol* list)
{
    TraceEntry("dl_pb_SelectItemCol_Remove");
    SelectItemColRemove(list);
}

TAVRIN_API void dl_pb_SelectItemCol_Pickup(wint_SelectItemCol* list)
{
    TraceEntry("dl_pb_SelectItemCol_Pickup");
    SelectItemColPickup(list);
}

TAVRIN_API void dl_GetPrintEditItem(wint_SelectItemCol* list, int16_t which)
{
    TraceEntry("dl_GetPrintEditItem");
    GetPrintEditItem(list, which);
}
