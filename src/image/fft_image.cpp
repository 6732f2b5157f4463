#include "image/fft_image.h"

#include "display/placement.h"
#include "host/ap_callbacks.h"
#include "host/error_numbers.h"
#include "host/errors.h"
#include "host/log.h"
#include "host/wait.h"
#include "image/fft.h"
#include "store/data_list.h"
#include "store/duplicate.h"
#include "store/history.h"
#include "store/image_header.h"
#include "store/memory.h"

#include <cmath>
#include <cstring>
#include <vector>

namespace {

constexpr int kForwardCode = 61;
constexpr int kInverseCode = 62;
int g_threads = 0;

// A finite value as a code, truncated and held to 0..65535; anything else is code 0.
uint16_t CodeOf(float value)
{
    if (!std::isfinite(value) || value <= 0.0f) return 0;
    if (value >= 65535.0f) return 65535;
    return static_cast<uint16_t>(value);
}

bool IsImageItem(const ImageHeaderType* item)
{
    return item && CheckHeaderIsImageType(item) && item->PixData && item->nx > 0 && item->ny > 0;
}

FFTProgress CommandProgress()
{
    FFTProgress steps;
    steps.progress = [](int percent) {
        Ap.ap_Progress("2D Fast Fourier Transform", static_cast<uint16_t>(percent));
    };
    steps.cancel = [] { return Ap.ap_Poll() != 0; };
    return steps;
}

size_t PixelCount(const ImageHeaderType* item)
{
    return static_cast<size_t>(item->nx) * static_cast<size_t>(item->ny);
}

} // namespace

void SetFFTCommandThreads(int threads) { g_threads = threads < 0 ? 0 : threads; }

void PowerSpectrumToCodes(const float* complex, int nx, int ny, uint16_t* codes)
{
    const size_t count = static_cast<size_t>(nx) * static_cast<size_t>(ny);
    float lo = 1e38f, hi = -1e38f;
    for (size_t i = 0; i < count; ++i) {
        const float p = complex[2 * i] * complex[2 * i] + complex[2 * i + 1] * complex[2 * i + 1];
        if (p < lo) lo = p;
        if (p > hi) hi = p;
    }
    const float b = lo - 1.0f;
    const float factor = 65535.0f / std::log(hi - b);
    for (int y = 0; y < ny; ++y) {
        const float* row = complex + static_cast<size_t>(y) * nx * 2;
        uint16_t* out = codes + static_cast<size_t>((ny / 2 + y) % ny) * nx;
        for (int x = 0; x < nx; ++x) {
            const float p = row[2 * x] * row[2 * x] + row[2 * x + 1] * row[2 * x + 1];
            // An all-zero input: ln(max - b) = 0, the factor is infinite and 0 * inf is NaN.
            out[(nx / 2 + x) % nx] = std::isfinite(factor) ? CodeOf(std::log(p - b) * factor) : 0;
        }
    }
}

void MagnitudeToCodes(const float* complex, int nx, int ny, uint16_t* codes)
{
    const size_t count = static_cast<size_t>(nx) * static_cast<size_t>(ny);
    float lo = 1e38f, hi = -1e38f;
    for (size_t i = 0; i < count; ++i) {
        const float m = std::hypot(complex[2 * i + 1], complex[2 * i]);
        if (m < lo) lo = m;
        if (m > hi) hi = m;
    }
    const float factor = 65535.0f / (hi - lo);
    for (size_t i = 0; i < count; ++i) {
        const float m = std::hypot(complex[2 * i + 1], complex[2 * i]);
        codes[i] = std::isfinite(factor) ? CodeOf((m - lo) * factor) : 0;
    }
}

void EraseFFTData(float* block)
{
    if (!block) return;
    Log("Erase FFT data.\n");
    for (ImageHeaderType* item = FirstItem; item; item = item->Next)
        if (item->FFTDataPtr == block) SetFFTBlock(item, nullptr);
    efree(block);
}

ImageHeaderType* ForwardFFT()
{
    ImageHeaderType* source = CurrentItem;
    if (!IsImageItem(source)) {
        Error(ERR_NO_IMAGES);
        return nullptr;
    }
    const int ex = PowerOfTwoExponent(source->nx), ey = PowerOfTwoExponent(source->ny);
    if (!ex || !ey) {
        Error(ERR_NOT_POWER_OF_2);
        return nullptr;
    }
    if (source->FFTData) {
        Error(ERR_FFT_IMAGE);
        return nullptr;
    }
    const size_t count = PixelCount(source);
    auto* complex = static_cast<float*>(emalloc(count * 8));
    if (!complex) {
        Error(ERR_NO_MEMORY);
        return nullptr;
    }
    ImageHeaderType* result = DuplicateForResult(source);
    if (!result) {
        efree(complex);
        return nullptr;
    }
    SetFFTBlock(result, complex);

    ShowWait("Put image into complex format");
    for (size_t i = 0; i < count; ++i) {
        // A code over 64, by the exponent for non-zero codes: exact in f32.
        complex[2 * i] = static_cast<float>(source->PixData[i]) / 64.0f;
        complex[2 * i + 1] = 0.0f;
    }
    HideWait();
    const bool done = FFT2D(complex, ey, ex, source->nx, true, CommandProgress(), g_threads);
    Ap.ap_ProgressEnd();
    if (!done) {
        SetFFTBlock(result, nullptr);
        efree(complex);
        FreeResultItem(result);
        CurrentItem = source;
        return nullptr;
    }
    ShowWait("Put FFT into image format");
    PowerSpectrumToCodes(complex, result->nx, result->ny, result->PixData);
    HideWait();
    AddImProc2List(result, kForwardCode);
    Log("FFT of '%s'.\n", result->Title);
    CurrentItem = result;
    DisplayCurrentItem();
    return result;
}

ImageHeaderType* InverseFFT()
{
    ImageHeaderType* source = CurrentItem;
    if (!IsImageItem(source) || !source->FFTData || !source->FFTDataPtr) return nullptr;
    const int ex = PowerOfTwoExponent(source->nx), ey = PowerOfTwoExponent(source->ny);
    if (!ex || !ey) {
        Error(ERR_NOT_POWER_OF_2);
        return nullptr;
    }
    const size_t count = PixelCount(source);
    auto* work = static_cast<float*>(emalloc(count * 8));
    if (!work) {
        Error(ERR_NO_MEMORY);
        return nullptr;
    }
    ImageHeaderType* result = DuplicateForResult(source);
    if (!result) {
        efree(work);
        return nullptr;
    }
    std::memcpy(work, source->FFTDataPtr, count * 8);
    const bool done = FFT2D(work, ey, ex, source->nx, false, CommandProgress(), g_threads);
    Ap.ap_ProgressEnd();
    for (int i = 0; i < 256; ++i) result->ImageLUT[i] = static_cast<uint8_t>(i);
    if (!done) {
        efree(work);
        FreeResultItem(result);
        CurrentItem = source;
        return nullptr;
    }
    ShowWait("Put FFT into image format");
    MagnitudeToCodes(work, result->nx, result->ny, result->PixData);
    HideWait();
    efree(work);
    AddImProc2List(result, kInverseCode);
    EraseFFTData(source->FFTDataPtr);
    Log("Inverse FFT of '%s'.\n", result->Title);
    CurrentItem = result;
    DisplayCurrentItem();
    return result;
}

void EnhanceFFTContrast()
{
    ImageHeaderType* item = CurrentItem;
    if (!IsImageItem(item)) {
        Error(ERR_NO_IMAGES);
        return;
    }
    if (!PowerOfTwoExponent(item->nx) || !PowerOfTwoExponent(item->ny)) {
        Error(ERR_NOT_POWER_OF_2);
        return;
    }
    for (int i = 0; i < 256; ++i) item->ImageLUT[i] = item->ImageLUT[i * 2 < 255 ? i * 2 : 255];
    DisplayCurrentItem();
    Log("Enhance FFT contrast.\n");
}
