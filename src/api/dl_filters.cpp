// Entry points: the filter commands.
#include "tavrin/dl_filters.h"
#include "host/trace.h"
#include "image/filter_kernels.h"
#include "image/filters.h"
#include "image/median_filters.h"

TAVRIN_API void dl_Convolve3x3(int16_t index)
{
    TraceEntry("dl_Convolve3x3: %d", index);
    Convolve3x3(index);
}

TAVRIN_API void dl_Convolve5x5(int16_t index)
{
    TraceEntry("dl_Convolve5x5: %d", index);
    Convolve5x5(index);
}

TAVRIN_API void dl_EdgeEnhance3x3(int16_t index)
{
    TraceEntry("dl_EdgeEnhance3x3: %d", index);
    EdgeEnhance3x3(index);
}

TAVRIN_API void dl_Get3x3KernelParam(int16_t index, int16_t* values)
{
    TraceEntry("dl_Get3x3KernelParam");
    GetKernelParam(KernelFamily::Square3, index, values);
}

TAVRIN_API void dl_Get5x5KernelParam(int16_t index, int16_t* values)
{
    TraceEntry("dl_Get5x5KernelParam");
    GetKernelParam(KernelFamily::Square5, index, values);
}

TAVRIN_API void dl_GetEE3x3KernelParam(int16_t index, int16_t* values)
{
    TraceEntry("dl_GetEE3x3KernelParam");
    GetKernelParam(KernelFamily::Edge3, index, values);
}

TAVRIN_API void dl_Set3x3KernelParam(int16_t index, const int16_t* values)
{
    TraceEntry("dl_Set3x3KernelParam");
    SetKernelParam(KernelFamily::Square3, index, values);
}

TAVRIN_API void dl_Set5x5KernelParam(int16_t index, const int16_t* values)
{
    TraceEntry("dl_Set5x5KernelParam");
    SetKernelParam(KernelFamily::Square5, index, values);
}

TAVRIN_API void dl_DifferentiateImage(void)
{
    TraceEntry("dl_DifferentiateImage");
    DifferentiateImage();
}

TAVRIN_API void dl_ImageMedianFilter5(void)
{
    TraceEntry("dl_ImageMedianFilter5");
    ImageMedianFilter5();
}

TAVRIN_API void dl_ImageMedianFilter9(void)
{
    TraceEntry("dl_ImageMedianFilter9");
    ImageMedianFilter9();
}
