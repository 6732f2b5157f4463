// Entry points: the cantilever record and the calibration in force.
#include "tavrin/dl_calibration.h"
#include "host/trace.h"
#include "settings/cantilever.h"

TAVRIN_API void dl_GetCantiParam(wint_CantileverParamType* record)
{
    TraceEntry("dl_GetCantiParam");
    GetCantileverParam(record);
}

TAVRIN_API void dl_SetCantiParam(const wint_CantileverParamType* record)
{
    TraceEntry("dl_GetCantiParam");
    SetCantileverParam(record);
}

TAVRIN_API void dl_SetDefaultCantiParam(wint_CantileverParamType* record)
{
    TraceEntry("dl_SetDefaultCantiParam");
    SetDefaultCantileverParam(record);
}

TAVRIN_API void dl_GetSPMCalParam(wint_SPMCalType* record)
{
    TraceEntry("dl_GetSPMCalParam");
    GetSPMCalParam(record);
}

TAVRIN_API void dl_SetSPMCalParam(const wint_SPMCalType* record)
{
    TraceEntry("dl_SetSPMCalParam");
    SetSPMCalParam(record);
}
