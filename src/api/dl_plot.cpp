// Entry points: the spectrum plot settings and the log axis checks.
#include "tavrin/dl_plot.h"
#include "display/plot_spectrum.h"
#include "host/trace.h"
#include "store/data_list.h"

TAVRIN_API void dl_GetPlotParam(wint_PlotParamType* param)
{
    TraceEntry("dl_GetPlotParam");
    GetPlotParam(param);
}

TAVRIN_API void dl_SetPlotParam(const wint_PlotParamType* param)
{
    TraceEntry("dl_SetPlotParam");
    SetPlotParam(param);
}

TAVRIN_API void dl_CheckLogAxesX(void)
{
    TraceEntry("dl_CheckLogAxesX");
    CheckLogAxesCommand(1, 0);
}

TAVRIN_API void dl_CheckLogAxesY(void)
{
    TraceEntry("dl_CheckLogAxesY");
    CheckLogAxesCommand(0, 1);
}

TAVRIN_API void dl_CheckLogAxesXY(void)
{
    TraceEntry("dl_CheckLogAxesXY");
    CheckLogAxesCommand(1, 1);
}

TAVRIN_API int32_t dl_IsLapSpec(void)
{
    TraceEntry("dl_IsLapSpec");
    return IsLapSpec(CurrentItem);
}
