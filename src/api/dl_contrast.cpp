// Entry points: contrast, thresholds, table operations, equalisation and their plots.
#include "tavrin/dl_contrast.h"
#include "display/histogram_display.h"
#include "host/trace.h"
#include "image/contrast.h"

TAVRIN_API void dl_AdjustLUT(void)
{
    TraceEntry("DLL_AdjustLUT");
    AdjustLUT();
}

TAVRIN_API void dl_SetWindow(void)
{
    TraceEntry("DLL_SetWindow");
    SetWindow();
}

TAVRIN_API int32_t dl_HistEqualise(void)
{
    TraceEntry("DLL_HistEqualise");
    return HistEqualise();
}

TAVRIN_API void dl_DisplayHistogram(void)
{
    TraceEntry("DLL_DisplayHistogram");
    DisplayHistogram();
}

TAVRIN_API void dl_DisplayImageLUT(void)
{
    TraceEntry("DLL_DisplayImageLUT");
    DisplayImageLUT();
}

TAVRIN_API void dl_LineariseImageLUT(void)
{
    TraceEntry("DLL_LineariseImageLUT");
    LineariseImageLUT();
}

TAVRIN_API void dl_MathLUT(int16_t op)
{
    TraceEntry("DLL_MathLUT %d", op);
    MathLUT(op);
}

TAVRIN_API void dl_FixImageZScale(void)
{
    TraceEntry("DLL_FixImageZScale");
    FixImageZScale();
}
