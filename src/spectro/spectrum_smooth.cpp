// Smoothing, median and derivative of a spectrum, with their stored settings.
#include "display/plot_buffer.h"
#include "display/plot_spectrum.h"
#include "host/errors.h"
#include "host/log.h"
#include "host/wait.h"
#include "spectro/spectro.h"

#include <algorithm>

namespace {

constexpr wint_SmoothSpecParamType kDefaultSmooth{2, 7};
constexpr wint_DiffSpecParamType kDefaultDiff{1, 5};
constexpr int kSmoothMin = 3, kSmoothMax = 25;
constexpr int kDiffMin = 5, kDiffMax = 25;

wint_SmoothSpecParamType g_smooth = kDefaultSmooth;
wint_DiffSpecParamType g_diff = kDefaultDiff;

// Index j limited to the samples: the end values repeat.
int Clamped(int j, int n) { return std::clamp(j, 0, n - 1); }

struct DiffKind {
    int order, normalise, code;
    const char* log;
};
constexpr DiffKind kDiffKinds[4] = {
    {1, 0, 55, "1st derivative of '%s'.\n"},
    {2, 0, 56, "2nd derivative of '%s'.\n"},
    {1, 1, 78, "Normalised 1st derivative of '%s'.\n"},
    {2, 1, 79, "Normalised 2nd derivative of '%s'.\n"},
};

} // namespace

void SmoothSpectrum(int points)
{
    ImageHeaderType* source = CurrentSpectrum();
    if (!source || points < 1) return;
    ImageHeaderType* item = CopyNewSpectrum(source);
    if (!item) return;
    const int n = source->nx;
    const float* y = SpecY(source);
    float* out = SpecY(item);
    for (int i = 0; i < n; ++i) {
        float sum = 0.0f;
        for (int j = i - points / 2; j <= i + points / 2; ++j) sum += y[Clamped(j, n)];
        out[i] = sum / static_cast<float>(points);
    }
    char title[48];
    Log("Smooth '%s' over %d points.\n", ItemTitle(item, title), points);
    FinishSpectrumCommand(item, 50);
}

void MedianSpectrum(int points)
{
    ImageHeaderType* source = CurrentSpectrum();
    if (!source || points < 3) return;
    PlotBuffer line(static_cast<size_t>(points));
    if (!line.Ok()) return;
    ImageHeaderType* item = CopyNewSpectrum(source);
    if (!item) return;
    const int n = source->nx;
    const float* y = SpecY(source);
    float* out = SpecY(item);
    float* w = line.Data();
    for (int i = 0; i < n; ++i) {
        int count = 0;
        for (int j = i - points / 2; j <= i + points / 2 && count < points; ++j) {
            const float v = y[Clamped(j, n)];
            int k = count++;
            for (; k > 0 && w[k - 1] > v; --k) w[k] = w[k - 1];
            w[k] = v;
        }
        out[i] = w[std::min(points >> 1, count - 1)];
    }
    char title[48];
    Log("Median filter of '%s' over %d points.\n", ItemTitle(item, title), points);
    FinishSpectrumCommand(item, 89);
}

void SmoothSpecCommand()
{
    switch (g_smooth.Mode) {
    case 1: SmoothSpectrum(g_smooth.Points); break;
    case 2: MedianSpectrum(g_smooth.Points); break;
    default: ProgramError("dl_SmoothSpec (%d)", static_cast<int>(g_smooth.Mode)); break;
    }
}

void GetSmoothSpecParam(wint_SmoothSpecParamType* param)
{
    if (!param) {
        ProgramError("GetSmoothSpecParam");
        return;
    }
    *param = g_smooth;
}

void SetSmoothSpecParam(wint_SmoothSpecParamType* param)
{
    if (!param) {
        ProgramError("SetSmoothSpecParam");
        return;
    }
    param->Points = static_cast<int16_t>(std::clamp(param->Points | 1, kSmoothMin, kSmoothMax));
    g_smooth = *param;
}

void DiffSpecCommand()
{
    if (g_diff.Mode < 1 || g_diff.Mode > 4) return;
    ImageHeaderType* source = CurrentSpectrum();
    if (!source) return;
    const int N = g_diff.Points;
    if (N < kDiffMin) return;
    const DiffKind& kind = kDiffKinds[g_diff.Mode - 1];
    ShowWait("Please wait for derivative");
    ImageHeaderType* item = CopyNewSpectrum(source);
    if (item && DifferentiateData(kind.order, kind.normalise, N, source->nx, SpecX(source), SpecY(source), SpecX(item),
                                  SpecY(item)) == 0) {
        char title[48];
        Log(kind.log, ItemTitle(source, title));
        FinishSpectrumCommand(item, kind.code);
    }
    HideWait();
}

void GetDiffSpecParam(wint_DiffSpecParamType* param)
{
    if (!param) {
        ProgramError("GetDiffSpecParam");
        return;
    }
    *param = g_diff;
}

void SetDiffSpecParam(wint_DiffSpecParamType* param)
{
    if (!param) {
        ProgramError("SetDiffSpecParam");
        return;
    }
    param->Points = static_cast<int16_t>(std::clamp<int>(param->Points, kDiffMin, kDiffMax));
    g_diff = *param;
}

void ResetSpectroState()
{
    g_smooth = kDefaultSmooth;
    g_diff = kDefaultDiff;
    ResetPlotState();
}
