// Entry points: the frequency domain of images and its mask.
#include "tavrin/dl_fft.h"
#include "files/mask_commands.h"
#include "host/trace.h"
#include "image/fft_commands.h"

TAVRIN_API void dl_ForwardFFT(void)
{
    TraceEntry("dl_ForwardFFT");
    ForwardFFTCommand();
}

TAVRIN_API void dl_InverseFFT(void)
{
    TraceEntry("dl_InverseFFT");
    InverseFFTCommand();
}

TAVRIN_API void dl_EnhanceFFTContrast(void)
{
    TraceEntry("dl_EnhanceFFTContrast");
    EnhanceFFTContrastCommand();
}

TAVRIN_API void dl_CloseFFTData1(void)
{
    TraceEntry("dl_CloseFFTData1");
    CloseFFTData();
}

TAVRIN_API void dl_DisplayFFTImage(void)
{
    TraceEntry("dl_DisplayFFTImage");
    DisplayFFTImage();
}

TAVRIN_API void dl_GetFFTWinParam(wint_FFTWinParamType* param)
{
    TraceEntry("dl_GetFFTWinParam");
    GetFFTWinParam(param);
}

TAVRIN_API void dl_SetFFTWinParam(const wint_FFTWinParamType* param)
{
    TraceEntry("dl_SetFFTWinParam");
    SetFFTWinParam(param);
}

TAVRIN_API void dl_pb_FFTWin_New(void)
{
    TraceEntry("dl_pb_FFTWin_New");
    FFTWinNew();
}

TAVRIN_API void dl_pb_FFTWin_Add(void)
{
    TraceEntry("dl_pb_FFTWin_Add");
    FFTWinAdd();
}

TAVRIN_API void dl_pb_FFTWin_Open(const char* path)
{
    TraceEntry("dl_pb_FFTWin_Open");
    FFTWinOpen(path);
}

TAVRIN_API void dl_pb_FFTWin_Save(const char* path)
{
    TraceEntry("dl_pb_FFTWin_Save");
    FFTWinSave(path);
}

TAVRIN_API void dl_pb_FFTWin_Close(void)
{
    TraceEntry("dl_pb_FFTWin_Close");
    FFTWinClose();
}

TAVRIN_API void dl_pb_FFTWin_Apply(void)
{
    TraceEntry("dl_pb_FFTWin_Apply");
    FFTWinApply();
}
