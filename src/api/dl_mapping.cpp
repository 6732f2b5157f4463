// Entry points: SPS Mapping data sets.
#include "tavrin/dl_mapping.h"
#include "host/trace.h"
#include "mapping/cits.h"
#include "mapping/cits_display.h"
#include "store/data_list.h"

TAVRIN_API int32_t dl_IsFCMappingData(void)
{
    TraceEntry("dl_IsFCMappingData");
    return IsFCMappingData(CurrentItem);
}

TAVRIN_API int32_t dl_IsFVMappingData(void)
{
    TraceEntry("dl_IsFVMappingData");
    return IsFVMappingData(CurrentItem);
}

TAVRIN_API int32_t dl_GetCITSCurrentImageVoltages(double* out)
{
    TraceEntry("dl_GetCITSCurrentImageVoltages");
    return GetCITSCurrentImageVoltages(CurrentItem, out);
}

TAVRIN_API int32_t dl_GetLMCantileverParam(wint_LMCantileverImageParamType* param)
{
    TraceEntry("dl_GetLMCantileverParam");
    return GetLMCantileverParam(CurrentItem, param);
}

TAVRIN_API void dl_SetLMCantileverParam(const wint_LMCantileverImageParamType* param)
{
    TraceEntry("dl_SetLMCantileverParam");
    SetLMCantileverParamCommand(param);
}

TAVRIN_API void dl_pb_CITSDisplay(void)
{
    TraceEntry("dl_pb_CITSDisplay");
    CITSDisplayCommand();
}

TAVRIN_API void dl_pb_CITSNext(void)
{
    TraceEntry("dl_pb_CITSNext");
    CITSNextCommand();
}

TAVRIN_API void dl_pb_CITSPrevious(void)
{
    TraceEntry("dl_pb_CITSPrevious");
    CITSPreviousCommand();
}

TAVRIN_API void dl_pb_CITSSetCurrent(int16_t n)
{
    TraceEntry("dl_pb_CITSSetCurrent");
    CITSSetCurrentCommand(n);
}

TAVRIN_API void dl_CITSSelect(void)
{
    TraceEntry("dl_CITSSelect");
    CITSSelectCommand();
}

TAVRIN_API void dl_CITSEdit(void)
{
    TraceEntry("dl_CITSEdit");
    CITSEditCommand();
}

TAVRIN_API void dl_GetCITSDispParam(wint_CITSDispParamType* param)
{
    TraceEntry("dl_GetCITSDispParam");
    if (param) GetCITSDispParam(param);
}

TAVRIN_API void dl_SetCITSDispParam(const wint_CITSDispParamType* param)
{
    TraceEntry("dl_SetCITSDispParam");
    if (param) SetCITSDispParam(param);
}

TAVRIN_API void dl_pb_CITSDispParamSetV(int16_t slot)
{
    TraceEntry("dl_pb_CITSDispParamSetV");
    CITSDispParamSetV(slot);
}

TAVRIN_API int32_t dl_CITSGetDesc(int16_t n, char* out)
{
    TraceEntry("dl_CITSGetDesc");
    return out ? CITSGetDesc(n, out) : 4;
}

TAVRIN_API void dl_pb_CITSEditTitle(int16_t n)
{
    TraceEntry("dl_pb_CITSEditTitle");
    CITSEditTitle(n);
}

TAVRIN_API void dl_CITSDisplayXxY(int32_t size)
{
    TraceEntry("dl_CITSDisplayXxY");
    CITSDisplayXxY(size);
}

TAVRIN_API void dl_CITSRapidReplay(void)
{
    TraceEntry("dl_CITSRapidReplay");
    CITSRapidReplay();
}
