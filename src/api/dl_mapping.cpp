// Entry points: SPS Mapping data sets.
#include "tavrin/dl_mapping.h"
#include "host/trace.h"
#include "mapping/cits.h"
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
