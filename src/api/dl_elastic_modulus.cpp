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

TAVRIN_API int32_t dl_ElasticModulus_SelectFC(char* text)
{
    TraceEntry("dl_ElasticModulus_SelectFC");
    return ElasticModulusSelectFC(text);
}

TAVRIN_API int32_t dl_ElasticModulus_Calculate(void)
{
    TraceEntry("dl_ElasticModulus_Calculate");
    return ElasticModulusCalculate();
}

TAVRIN_API int32_t dl_ElasticModulus_Apply1(void)
{
    TraceEntry("dl_ElasticModulus_Apply1");
    return ElasticModulusApply(1);
}

TAVRIN_API int32_t dl_ElasticModulus_Apply2(void)
{
    TraceEntry("dl_ElasticModulus_Apply2");
    return ElasticModulusApply(2);
}

TAVRIN_API int32_t dl_ElasticModulus_Apply3(void)
{
    TraceEntry("dl_ElasticModulus_Apply3");
    return ElasticModulusApply(3);
}

TAVRIN_API void dl_ElasticModulus_CloseDlg(void)
{
    TraceEntry("dl_ElasticModulus_CloseDlg");
    ElasticModulusCloseDlg();
}
