// The magnitude spectrum of a spectrum under one of five windows, plotted against the index.
#include "spectro/spectrum_tools.h"
#include "display/contents_grid.h"
#include "display/plot.h"
#include "display/plot_spectrum.h"
#include "host/errors.h"
#include "host/log.h"
#include "host/wait.h"
#include "image/fft.h"
#include "spectro/spectro.h"
#include "store/memory.h"

#include <cmath>
#include <cstdio>
#include <cstring>

namespace {

constexpr double kPi = 3.14159265358979323846;
// The f32 value of 2 pi that the Hamming window has always used.
constexpr double kHammingTwoPi = 6.2831855;
constexpr int kCosineTaperDivisor = 10;
constexpr int kMagnitudeColour = 26;

const char* const kWindowNames[5] = {"No window", "Cosine window", "Parzen window", "Hamming window",
                                     "Cosine arch window"};

} // namespace

const char* SpecFFTWindowName(int window)
{
    return window >= 1 && window <= 5 ? kWindowNames[window - 1] : nullptr;
}

double SpecFFTWindowWeight(int window, int i, int n)
{
    // Parzen and the arch: sample j = i + 1 against the centre (n - 1) / 2 and the half length
    // (n + 1) / 2, both as real numbers. The arch divides the square by the half length, not
    // by its square, so its weights fall below zero towards the ends; they are kept.
    const double j = i + 1.0, c = (n - 1) / 2.0, half = (n + 1) / 2.0;
    switch (window) {
    case 1: return 1.0;
    case 2: {
        const int m = n / kCosineTaperDivisor;
        const int k = i < n - 1 - i ? i : n - 1 - i;
        if (k < m - 1) return (1.0 - std::cos(k * kPi / m)) / 2.0;
        return 1.0;
    }
    case 3: return 1.0 - std::fabs(j - c) / half;
    case 4: return 0.54 - 0.46 * std::cos(i * kHammingTwoPi / n);
    case 5: return 1.0 - (j - c) * (j - c) / half;
    default: return 0.0;
    }
}

int SpectrumMagnitudes(const float* y, int n, int window, float* magnitude)
{
    const int exponent = PowerOfTwoExponent(n);
    if (exponent < 2) {
        Error(ERR_SPEC_NOT_POWER_OF_2);
        return 1;
    }
    if (!SpecFFTWindowName(window)) {
        ProgramError("ShowSpecFFT %d", window);
        return 1;
    }
    // The work array: n samples, then room for them as n complex pairs.
    auto* work = static_cast<float*>(ecalloc(static_cast<size_t>(n) * 2, sizeof(float)));
    if (!work) {
        Error(ERR_NO_MEMORY);
        return 1;
    }
    double mean = 0.0;
    for (int i = 0; i < n; ++i) mean += y[i];
    mean /= n;
    for (int i = 0; i < n; ++i)
        work[i] = static_cast<float>((y[i] - mean) * SpecFFTWindowWeight(window, i, n));
    // Each sample to the real part of pair i, from the top down; the imaginary parts keep what
    // the slots held: odd samples in the lower half, zero in the upper.
    for (int i = n - 1; i >= 0; --i) work[2 * i] = work[i];
    FFT1D(work, exponent, true);
    for (int k = 0; k < n / 2; ++k) magnitude[k] = std::hypot(work[2 * k], work[2 * k + 1]);
    efree(work);
    return 0;
}

void ShowSpecFFT(int window)
{
    ImageHeaderType* item = CurrentSpectrum();
    if (!item) return;
    const int n = item->nx;
    if (PowerOfTwoExponent(n) < 2) {
        Error(ERR_SPEC_NOT_POWER_OF_2);
        return;
    }
    // Magnitudes in the first half, the abscissa in the second.
    auto* plot = static_cast<float*>(emalloc(static_cast<size_t>(n) * sizeof(float)));
    if (!plot) {
        Error(ERR_NO_MEMORY);
        return;
    }
    if (SpectrumMagnitudes(SpecY(item), n, window, plot) != 0) {
        efree(plot);
        return;
    }
    for (int k = 0; k < n / 2; ++k) plot[n / 2 + k] = static_cast<float>(k);
    ShowWait("Please wait");
    char title[48], caption[96];
    Log("Show FFT of '%s'.\n", ItemTitle(item, title));
    std::snprintf(caption, sizeof caption, "%s FFT : %s", title, SpecFFTWindowName(window));
    DisplaySpecWithSettings(nullptr, plot + n / 2, plot, n / 2, 0, 0, 0, 1, kMagnitudeColour, "", caption, 0);
    SetFSContents(nullptr, 0);
    HideWait();
    efree(plot);
}
