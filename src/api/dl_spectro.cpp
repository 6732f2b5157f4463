// Entry points: commands on spectra.
#include "tavrin/dl_spectro.h"
#include "host/trace.h"
#include "spectro/spectro.h"
#include "spectro/spectrum_tools.h"
#include "spectro/sps_ref_view.h"

TAVRIN_API void dl_SmoothSpec(void)
{
    TraceEntry("dl_SmoothSpec");
    SmoothSpecCommand();
}

TAVRIN_API void dl_GetSmoothSpecParam(wint_SmoothSpecParamType* param)
{
    TraceEntry("dl_GetSmoothSpecParam");
    GetSmoothSpecParam(param);
}

TAVRIN_API void dl_SetSmoothSpecParam(wint_SmoothSpecParamType* param)
{
    TraceEntry("dl_SetSmoothSpecParam");
    SetSmoothSpecParam(param);
}

TAVRIN_API void dl_DiffSpec(void)
{
    TraceEntry("dl_DiffSpec");
    DiffSpecCommand();
}

TAVRIN_API void dl_GetDiffSpecParam(wint_DiffSpecParamType* param)
{
    TraceEntry("dl_GetDiffSpecParam");
    GetDiffSpecParam(param);
}

TAVRIN_API void dl_SetDiffSpecParam(wint_DiffSpecParamType* param)
{
    TraceEntry("dl_SetDiffSpecParam");
    SetDiffSpecParam(param);
}

TAVRIN_API void dl_SpecMathX(uint16_t op)
{
    TraceEntry("dl_SpecMathX: %d", op);
    SpecMath(0, op);
}

TAVRIN_API void dl_SpecMathY(uint16_t op)
{
    TraceEntry("dl_SpecMathY: %d", op);
    SpecMath(1, op);
}

TAVRIN_API void dl_DoubleSpecMath(uint16_t op)
{
    TraceEntry("dl_DoubleSpecMath: %d", op);
    DoubleSpecMath(op);
}

TAVRIN_API void dl_RemoveDCBias(void)
{
    TraceEntry("dl_RemoveDCBias");
    RemoveDCBias();
}

TAVRIN_API void dl_SeparateRampDirections(void)
{
    TraceEntry("dl_SeparateRampDirections");
    SeparateRampDirections();
}

TAVRIN_API void dl_FitPoly2Spec(void)
{
    TraceEntry("dl_FitPoly2Spec");
    FitPoly2Spec();
}

TAVRIN_API void dl_ZoomSpec(void)
{
    TraceEntry("dl_ZoomSpec");
    ZoomSpec();
}

TAVRIN_API void dl_SpecMeasure(uint8_t flag)
{
    TraceEntry("dl_SpecMeasure: %d", flag);
    SpecMeasure(flag);
}

TAVRIN_API void dl_GroupSpecPlot(void)
{
    TraceEntry("dl_GroupSpecPlot");
    GroupSpecPlot();
}

TAVRIN_API void dl_ShowSpecFFT(uint16_t window)
{
    TraceEntry("dl_ShowSpecFFT: %d", window);
    ShowSpecFFT(window);
}

TAVRIN_API void dl_ShowSPSSpectrum(void)
{
    TraceEntry("dl_ShowSPSSpectrum");
    ShowSPSSpectrum();
}
