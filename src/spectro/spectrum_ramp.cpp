// The DC bias of a spectrum, and the split of a ramp that goes out and back.
#include "host/errors.h"
#include "host/log.h"
#include "spectro/spectro.h"
#include "store/duplicate.h"
#include "store/history.h"
#include "store/memory.h"

#include <cstring>

namespace {

// The Y value at X = 0 of a spectrum sorted by X whose ramp crosses 0, else the mean of Y.
float Bias(const float* x, const float* y, int n)
{
    if (x[0] < 0 && x[n - 1] > 0) {
        int k = 1;
        while (k < n - 1 && x[k] < 0) ++k;
        const float d = x[k] - x[k - 1];
        if (d != 0) return y[k - 1] + (y[k] - y[k - 1]) * x[k - 1] / (x[k - 1] - x[k]);
        return y[k];
    }
    double sum = 0;
    for (int i = 0; i < n; ++i) sum += y[i];
    return static_cast<float>(sum / n);
}

} // namespace

int TurningPoint(const float* x, int n)
{
    if (n < 3) return 0;
    const float s = x[1] > x[0] ? 1.0f : -1.0f;
    for (int i = 2; i < n; ++i)
        if (!((x[i] - x[i - 1]) * s > 0)) return i - 1;
    return 0;
}

namespace {

// One part of a spectrum: a new item behind `after` with the points from..from + count - 1 of
// `source`. Null after a report.
ImageHeaderType* RampPart(const ImageHeaderType* source, ImageHeaderType* after, int from, int count)
{
    ImageHeaderType* item = DuplicateForResult(after);
    if (!item) return nullptr;
    MemHandleType pair{item->PixHandle, item->PixData};
    if (!ReallocateMemNoErr(static_cast<size_t>(count), 2 * sizeof(float), &pair)) {
        Error(ERR_NO_MEMORY);
        FreeResultItem(item);
        return nullptr;
    }
    item->PixHandle = pair.Handle;
    item->PixData = static_cast<uint16_t*>(pair.Ptr);
    item->nx = static_cast<int16_t>(count);
    const float* samples = reinterpret_cast<const float*>(source->PixData);
    std::memcpy(SpecY(item), samples + from, sizeof(float) * static_cast<size_t>(count));
    std::memcpy(SpecX(item), samples + source->nx + from, sizeof(float) * static_cast<size_t>(count));
    return item;
}

} // namespace

void RemoveDCBias()
{
    ImageHeaderType* source = CurrentSpectrum();
    if (!source) return;
    ImageHeaderType* item = CopyNewSpectrum(source);
    if (!item) return;
    const int n = item->nx;
    float* x = SpecX(item);
    float* y = SpecY(item);
    SortPair(x, y, n, true);
    const float bias = Bias(x, y, n);
    for (int i = 0; i < n; ++i) y[i] -= bias;
    char title[48];
    Log("Remove DC bias from '%s'.\n", ItemTitle(item, title));
    FinishSpectrumCommand(item, 70);
}

void SeparateRampDirections()
{
    ImageHeaderType* source = CurrentSpectrum();
    if (!source) return;
    const int n = source->nx;
    const int k = TurningPoint(reinterpret_cast<const float*>(source->PixData) + n, n) + 1;
    if (k < 2 || k >= n) {
        Error(ERR_RAMP_ONE_DIRECTION);
        return;
    }
    ImageHeaderType* first = RampPart(source, source, 0, k);
    if (!first) return;
    ImageHeaderType* second = RampPart(source, first, k, n - k);
    if (!second) {
        FreeResultItem(first);
        return;
    }
    AddImProc2List(second, 71);
    char title[48];
    Log("Split Ramp Directions '%s' at X=%d.\n", ItemTitle(first, title), k);
    FinishSpectrumCommand(first, 71);
}
