/* Frequency domain of images: forward and inverse 2-D transforms, the mask ("window") of
 * frequency bands and cursor circles, its file, and the dialog record exchanged with the host. */
#ifndef TAVRIN_DL_FFT_H
#define TAVRIN_DL_FFT_H

#include <stdint.h>

#include "tavrin/types.h"

#ifdef __cplusplus
extern "C" {
#endif

#pragma pack(push, 1)
/* The mask dialog's record, 90 bytes packed. Control states: 1 enabled, 2 disabled, 3 always on. */
typedef struct wint_FFTWinParamType {
    uint32_t BandMode;          /*  0  1 temporal band, 2 spatial band, 3 cursor circles */
    uint32_t MaskControls[6];   /*  4 */
    double TimeFreqLow;         /* 28 */
    double TimeFreqHigh;        /* 36 */
    double SpaceFreqLow;        /* 44 */
    double SpaceFreqHigh;       /* 52 */
    uint32_t MaskPass;          /* 60  1: the added area passes (255), else it stops (0) */
    int16_t MaskZoom;           /* 64  magnification of the mask display, at least 1 */
    uint32_t ImageControls[6];  /* 66 */
} wint_FFTWinParamType;
#pragma pack(pop)

#ifdef __cplusplus
static_assert(sizeof(wint_FFTWinParamType) == 90, "wint_FFTWinParamType is 90 bytes");
static_assert(offsetof(wint_FFTWinParamType, MaskControls) == 4, "MaskControls");
static_assert(offsetof(wint_FFTWinParamType, TimeFreqLow) == 28, "TimeFreqLow");
static_assert(offsetof(wint_FFTWinParamType, TimeFreqHigh) == 36, "TimeFreqHigh");
static_assert(offsetof(wint_FFTWinParamType, SpaceFreqLow) == 44, "SpaceFreqLow");
static_assert(offsetof(wint_FFTWinParamType, SpaceFreqHigh) == 52, "SpaceFreqHigh");
static_assert(offsetof(wint_FFTWinParamType, MaskPass) == 60, "MaskPass");
static_assert(offsetof(wint_FFTWinParamType, MaskZoom) == 64, "MaskZoom");
static_assert(offsetof(wint_FFTWinParamType, ImageControls) == 66, "ImageControls");
#endif

TAVRIN_API void dl_ForwardFFT(void);
TAVRIN_API void dl_InverseFFT(void);
TAVRIN_API void dl_EnhanceFFTContrast(void);
TAVRIN_API void dl_CloseFFTData1(void);
TAVRIN_API void dl_DisplayFFTImage(void);
TAVRIN_API void dl_GetFFTWinParam(wint_FFTWinParamType* param);
TAVRIN_API void dl_SetFFTWinParam(const wint_FFTWinParamType* param);
TAVRIN_API void dl_pb_FFTWin_New(void);
TAVRIN_API void dl_pb_FFTWin_Add(void);
TAVRIN_API void dl_pb_FFTWin_Open(const char* path);
TAVRIN_API void dl_pb_FFTWin_Save(const char* path);
TAVRIN_API void dl_pb_FFTWin_Close(void);
TAVRIN_API void dl_pb_FFTWin_Apply(void);

#ifdef __cplusplus
}
#endif

#endif
