// Entry points: geometry of images.
#include "tavrin/dl_geometry.h"
#include "host/trace.h"
#include "image/geometry.h"

TAVRIN_API void dl_ImageMirrorX(void)
{
    TraceEntry("DLL_ImageMirrorX");
    ImageMirrorX();
}

TAVRIN_API void dl_ImageMirrorY(void)
{
    TraceEntry("DLL_ImageMirrorY");
    ImageMirrorY();
}

TAVRIN_API void dl_TransposeImage(void)
{
    TraceEntry("DLL_TransposeImage");
    TransposeImage();
}

TAVRIN_API void dl_RotateImage90(void)
{
    TraceEntry("DLL_RotateImage90");
    RotateImage90();
}

TAVRIN_API void dl_RotateImage180(void)
{
    TraceEntry("DLL_RotateImage180");
    RotateImage180();
}

TAVRIN_API void dl_RotateImage270(void)
{
    TraceEntry("DLL_RotateImage270");
    RotateImage270();
}

TAVRIN_API void dl_RotateImageA(void)
{
    TraceEntry("DLL_RotateImageA");
    RotateImageA();
}

TAVRIN_API void dl_ImageTranslate(void)
{
    TraceEntry("DLL_ImageTranslate");
    ImageTranslate();
}

TAVRIN_API void dl_PadTo256Points(void)
{
    TraceEntry("DLL_PadTo256Points");
    PadToPoints(256);
}

TAVRIN_API void dl_PadTo512Points(void)
{
    TraceEntry("DLL_PadTo512Points");
    PadToPoints(512);
}

TAVRIN_API void dl_Interpolate128(void)
{
    TraceEntry("DLL_Interpolate128");
    InterpolateTo(128);
}

TAVRIN_API void dl_Interpolate256(void)
{
    TraceEntry("DLL_Interpolate256");
    InterpolateTo(256);
}

TAVRIN_API void dl_Interpolate512(void)
{
    TraceEntry("DLL_Interpolate512");
    InterpolateTo(512);
}
