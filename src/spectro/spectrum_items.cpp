// The frame of the spectrum commands: the source, the new item, the end; and the two helpers
// that every command shares, marker replacement and the pair sort.
#include "spectro/spectro.h"
#include "display/full_display.h"
#include "host/errors.h"
#include "store/data_list.h"
#include "store/duplicate.h"
#include "store/history.h"
#include "store/image_header.h"

#include <cmath>
#include <cstring>

namespace {

constexpr float kMarkerSearchStart = 9.9e20f;
constexpr float kMarkerSpread = 0.2f;

} // namespace

bool IsMarker(float v) { return std::fabs(std::fabs(v) - kMarker) < kMarkerTolerance; }

ImageHeaderType* CurrentSpectrum()
{
    ImageHeaderType* item = CurrentItem;
    if (!item || item->ImType1 == IMTYPE_IMAGE || !item->PixData || item->nx <= 0 || !CheckHeaderIsSpecType(item)) {
        Error(ERR_NO_SPECTRA);
        return nullptr;
    }
    return item;
}

ImageHeaderType* CopyNewSpectrum(const ImageHeaderType* source)
{
    if (!source || !source->PixData) {
        ProgramError("CopyNewSpectrum");
        return nullptr;
    }
    ImageHeaderType* item = DuplicateForResult(source);
    if (!item) return nullptr;
    std::memcpy(item->PixData, source->PixData, static_cast<size_t>(source->nx) * 2 * sizeof(float));
    return item;
}

void FinishSpectrumCommand(ImageHeaderType* item, int code)
{
    CurrentItem = item;
    AddImProc2List(item, code);
    DisplayData();
}

const char* ItemTitle(const ImageHeaderType* item, char (&buffer)[48])
{
    buffer[0] = '\0';
    if (!item) return buffer;
    const size_t n = strnlen(item->Title, sizeof item->Title);
    std::memcpy(buffer, item->Title, n);
    buffer[n] = '\0';
    return buffer;
}

void ReplaceMarkers(float* values, int n)
{
    if (!values || n <= 0) return;
    float lo = kMarkerSearchStart, hi = -kMarkerSearchStart;
    for (int i = 0; i < n; ++i) {
        if (IsMarker(values[i])) continue;
        if (values[i] < lo) lo = values[i];
        if (values[i] > hi) hi = values[i];
    }
    const float spread = kMarkerSpread * (hi - lo);
    for (int i = 0; i < n; ++i) {
        if (!IsMarker(values[i])) continue;
        values[i] = values[i] > 0 ? hi + spread : lo - spread;
    }
}

void SortPair(float* key, float* other, int n, bool ascending)
{
    if (!key || !other || n <= 1) return;
    for (int i = 1; i < n; ++i) {
        const float k = key[i], o = other[i];
        int j = i;
        for (; j > 0 && key[j - 1] > k; --j) {
            key[j] = key[j - 1];
            other[j] = other[j - 1];
        }
        key[j] = k;
        other[j] = o;
    }
    if (ascending) return;
    for (int i = 0, j = n - 1; i < j; ++i, --j) {
        std::swap(key[i], key[j]);
        std::swap(other[i], other[j]);
    }
}
