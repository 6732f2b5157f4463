// Entry points: elastic modulus from a force-curve mapping.
#include "tavrin/dl_elastic_modulus.h"
#include "analysis/elastic_modulus.h"
#include "host/trace.h"

TAVRIN_API int32_t dl_GetElasticModulusParam(wint_ElasticModulusType* param)
{
    TraceEntry("dl_GetElasticModulusParam");
    return GetElasticModulusParam(param);
}

TAVRIN_API int32_t dl_SetElasticModulusParam(wint_ElasticModulusType* param)
{
    TraceEntry("dl_SetElasticModulusParam");
    return SetElasticModulusParam(param);
}
