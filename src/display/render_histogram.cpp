#include "display/render_histogram.h"
#include "host/errors.h"

#include <cstring>

void CalcHistogram(const ImageHeaderType* image, int32_t bins[kHistogramBins])
{
    if (!bins) {
        ProgramError("CalcHistogram");
        return;
    }
    std::memset(bins, 0, sizeof(int32_t) * kHistogramBins);
    if (!image || !image->PixData || image->nx <= 0 || image->ny <= 0) {
        ProgramError("CalcHistogram");
        return;
    }
    const size_t count = static_cast<size_t>(image->nx) * static_cast<size_t>(image->ny);
    const uint16_t* p = image->PixData;
    for (size_t i = 0; i < count; ++i) ++bins[p[i] >> 8];
}
