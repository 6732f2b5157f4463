// Entry points: arithmetic on images and the stretches of the code range.
#include "tavrin/dl_image_math.h"
#include "host/trace.h"
#include "image/image_math.h"

TAVRIN_API void dl_SingleImageMath(int16_t op)
{
    TraceEntry("DLL_SingleImageMath %d", op);
    SingleImageMath(op);
}

TAVRIN_API void dl_DoubleImageMath(int16_t op)
{
    TraceEntry("DLL_DoubleImageMath %d", op);
    DoubleImageMath(op);
}

TAVRIN_API void dl_NormaliseImage(void)
{
    TraceEntry("DLL_NormaliseImage");
    NormaliseImage();
}

TAVRIN_API void dl_NormaliseSD(void)
{
    TraceEntry("DLL_NormaliseSD");
    NormaliseSD();
}
