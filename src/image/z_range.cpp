#include "image/z_range.h"
#include "store/units.h"

#include <cstring>

void ScaleIntegersToCodes(const void* values, ImageHeaderType* item, int32_t min, int32_t max)
{
    float factor = 0.0f;
    if (max == min) {
        item->DataScale = 0.0f;
    } else {
        factor = 65535.0f / static_cast<float>(int64_t{max} - min);
        if (item->DataScale == 0.0f) item->DataScale = 1.0f;
        item->DataScale /= factor;
    }
    const auto* in = static_cast<const unsigned char*>(values);
    auto* out = reinterpret_cast<unsigned char*>(item->PixData);
    const size_t n = static_cast<size_t>(item->nx) * static_cast<size_t>(item->ny);
    for (size_t i = 0; i < n; ++i) {
        int32_t v;
        std::memcpy(&v, in + i * sizeof v, sizeof v);
        const float scaled = static_cast<float>(int64_t{v} - min) * factor;
        uint16_t code = 0;
        if (scaled >= 65535.0f) code = 65535;
        else if (scaled > 0.0f) code = static_cast<uint16_t>(scaled);
        std::memcpy(out + i * sizeof code, &code, sizeof code);
    }
}

void SetZRangeFromCodes(ImageHeaderType* result, const ImageHeaderType* source, int32_t min, int32_t max)
{
    result->Zlo = GetImageDataValue(0, static_cast<float>(min), source);
    result->Zhi = GetImageDataValue(0, static_cast<float>(max), source);
    if (source->DataSource == 1) {
        result->Zhi = result->Zhi - result->Zlo;
        result->Zlo = 0.0f;
    }
}
