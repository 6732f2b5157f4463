// Entry points: the display settings, showing items, the full display, the 3-D view.
#include "tavrin/dl_display.h"
#include "display/display_param.h"
#include "display/full_display.h"
#include "display/view3d.h"
#include "host/trace.h"

TAVRIN_API void dl_GetDisplayParam(wint_DisplayParamType* param)
{
    TraceEntry("dl_GetDisplayParam");
    GetDisplayParam(param);
}

TAVRIN_API void dl_SetDisplayParam(const wint_DisplayParamType* param)
{
    TraceEntry("dl_SetDisplayParam");
    SetDisplayParam(param);
}

TAVRIN_API void dl_pb_DisplayImage(void)
{
    TraceEntry("dl_pb_DisplayImage");
    DisplayData();
}

TAVRIN_API void dl_pb_DisplaySpec(void)
{
    TraceEntry("dl_pb_DisplaySpec");
    DisplayData();
}

TAVRIN_API void dl_DisplayData(void)
{
    TraceEntry("dl_DisplayData");
    DisplayDataTimed();
}

TAVRIN_API void dl_FullDisplay(void)
{
    TraceEntry("dl_FullDisplay");
    ToggleFullDisplay();
}

TAVRIN_API int32_t dl_Get3DParam(C3DParam* p, int32_t fromCurrent, int32_t clear)
{
    TraceEntry("dl_Get3DParam: %d %d", fromCurrent, clear);
    return Get3DParam(p, fromCurrent, clear);
}

TAVRIN_API void dl_Set3DParam(const C3DParam* p)
{
    TraceEntry("dl_Set3DParam");
    Set3DParam(p);
}

TAVRIN_API int32_t dl_3D_SelectImage(C3DParam* p, char* text)
{
    TraceEntry("dl_3D_SelectImage");
    return SelectImage3D(p, text);
}
