#include "image/fft_commands.h"

#include "display/selection.h"
#include "host/error_numbers.h"
#include "host/errors.h"
#include "host/prompts.h"
#include "host/wait.h"
#include "image/fft.h"
#include "image/fft_image.h"
#include "image/fft_mask.h"
#include "store/data_list.h"
#include "store/image_header.h"

namespace {

constexpr int kSelectPassCircle = 16;
constexpr int kSelectStopCircle = 25;
constexpr int kCircleCursor = 6;
constexpr int kCircleRegion = 6;

int16_t g_circleX[2], g_circleY[2];

bool IsImage(const ImageHeaderType* item) { return item && CheckHeaderIsImageType(item) && item->PixData; }
bool HasFFT(const ImageHeaderType* item) { return IsImage(item) && item->FFTData && item->FFTDataPtr; }

uint8_t PassValue() { return FFTWinParam().MaskPass == 1 ? 255 : 0; }

int CircleDone(int buttons)
{
    return AddMaskCircleFromSelection(buttons, g_circleX[0], g_circleY[0], g_circleX[1], g_circleY[1]);
}

void StartCircles()
{
    ShowMask(true, false, FFTWinParam().MaskZoom);
    const int type = FFTWinParam().MaskPass == 1 ? kSelectPassCircle : kSelectStopCircle;
    SelectImagePoints(type, 2, g_circleX, g_circleY, kCircleRegion, 0, 0, 0, 0, 0, 0, kCircleCursor, CircleDone);
}

void AddToMask()
{
    wint_FFTWinParamType& param = FFTWinParam();
    switch (param.BandMode) {
    case 1:
        AddMaskBand(1, param.TimeFreqLow, param.TimeFreqHigh, PassValue());
        break;
    case 2:
        AddMaskBand(2, param.SpaceFreqLow, param.SpaceFreqHigh, PassValue());
        break;
    case 3:
        StartCircles();
        break;
    default:
        Error(ERR_INVALID_ENTRY);
        break;
    }
}

} // namespace

void ForwardFFTCommand() { ForwardFFT(); }

void InverseFFTCommand()
{
    if (!HasFFT(CurrentItem)) return;
    if (MaskExists()) ApplyMask();
    if (InverseFFT()) FreeMask();
}

void EnhanceFFTContrastCommand() { EnhanceFFTContrast(); }

void CloseFFTData()
{
    ImageHeaderType* item = CurrentItem;
    if (!IsImage(item)) {
        Error(ERR_NO_IMAGES);
        return;
    }
    if (!HasFFT(item)) {
        Error(ERR_NOT_FFT);
        return;
    }
    if (!PowerOfTwoExponent(item->nx) || !PowerOfTwoExponent(item->ny)) {
        Error(ERR_NOT_POWER_OF_2);
        return;
    }
    if (AskYesNo("Erase complex FFT data ?  ", false) != 1) return;
    EraseFFTData(item->FFTDataPtr);
    FFTWinClose();
}

void DisplayFFTImage()
{
    if (!HasFFT(CurrentItem)) {
        Error(ERR_NOT_FFT);
        return;
    }
    DisplayCurrentItem();
}

void GetFFTWinParam(wint_FFTWinParamType* param)
{
    if (!param) return;
    wint_FFTWinParamType& stored = FFTWinParam();
    FillFFTWinParam(&stored);
    *param = stored;
}

void SetFFTWinParam(const wint_FFTWinParamType* param)
{
    if (!param) return;
    wint_FFTWinParamType& stored = FFTWinParam();
    const int16_t oldZoom = stored.MaskZoom;
    stored = *param;
    if (stored.MaskZoom < 1) stored.MaskZoom = 1;
    if (stored.MaskZoom != oldZoom && MaskExists()) ShowMask(true, true, stored.MaskZoom);
}

void FFTWinNew()
{
    ImageHeaderType* item = CurrentItem;
    if (!HasFFT(item)) {
        Error(ERR_NOT_FFT);
        return;
    }
    if (MaskExists()) {
        Error(ERR_WINDOW_EXISTS);
        return;
    }
    if (!GetMaskMem(item->nx, item->ny)) return;
    AddToMask();
}

void FFTWinAdd()
{
    if (!MaskExists()) {
        FFTWinNew();
        return;
    }
    AddToMask();
}

void FFTWinClose()
{
    if (!MaskExists()) return;
    if (AskYesNo("Erase Mask ?  ", false) != 1) return;
    FreeMask();
    if (IsImage(CurrentItem)) DisplayCurrentItem();
}

void FFTWinApply()
{
    ShowWait("Apply FFT Mask");
    const int failed = ApplyMask();
    HideWait();
    if (!failed) DisplayCurrentItem();
}

bool FFTWinOpenChecks()
{
    if (!IsImage(CurrentItem)) {
        Error(ERR_NO_IMAGES);
        return false;
    }
    if (!HasFFT(CurrentItem)) {
        Error(ERR_NOT_FFT);
        return false;
    }
    if (MaskExists()) {
        Error(ERR_WINDOW_EXISTS);
        return false;
    }
    return true;
}

void ResetFFTState()
{
    ResetFFTWinParam();
    SetFFTCommandThreads(0);
    SetFFTThreads(0);
}
