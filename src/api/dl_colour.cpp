// Entry points: colour tables and the colour parameters.
#include "tavrin/dl_colour.h"
#include "display/colour_file.h"
#include "display/colour_param.h"
#include "host/trace.h"

TAVRIN_API void dl_GetColourParam(wint_ColourParamType* param)
{
    TraceEntry("dl_GetColourParam");
    GetColourParam(param);
}

TAVRIN_API void dl_SetColourParam(const wint_ColourParamType* param)
{
    TraceEntry("dl_SetColourParam");
    SetColourParam(param);
}

TAVRIN_API void dl_pb_ColourOpen(const char* path)
{
    TraceEntry("dl_pb_ColourOpen");
    ColourOpen(path);
}

TAVRIN_API void dl_pb_ColourSave(const char* path)
{
    TraceEntry("dl_pb_ColourSave");
    SaveLUT(path);
}

TAVRIN_API void dl_pb_ColourSet(int16_t red, int16_t green, int16_t blue)
{
    TraceEntry("dl_pb_ColourSet");
    ColourSet(red, green, blue);
}

TAVRIN_API void dl_pb_ColourDefine(int16_t red, int16_t green, int16_t blue)
{
    TraceEntry("dl_pb_ColourDefine");
    ColourDefine(red, green, blue);
}

TAVRIN_API void dl_pb_Colour_CopyToImage(void)
{
    TraceEntry("dl_pb_Colour_CopyToImage");
    CopyColourTableToImage();
}
