#include "image/particle_morphology.h"
#include "image/filter_bands.h"

namespace {

// One row of the result. The pixel's own code and its neighbours inside the grid decide; the
// rows above and below are null at the grid's edge.
void MorphRow(const uint16_t* above, const uint16_t* row, const uint16_t* below, uint16_t* out, int nx, bool eight,
              bool dilate)
{
    for (int x = 0; x < nx; ++x) {
        const int left = x > 0 ? x - 1 : x, right = x + 1 < nx ? x + 1 : x;
        // Clamping a neighbour outside the grid onto the pixel itself ignores it: the pixel
        // takes part anyway.
        bool any = row[x] || row[left] || row[right];
        bool all = row[x] && row[left] && row[right];
        const uint16_t* lines[2] = {above, below};
        for (const uint16_t* line : lines) {
            if (!line) continue;
            any = any || line[x];
            all = all && line[x];
            if (eight) {
                any = any || line[left] || line[right];
                all = all && line[left] && line[right];
            }
        }
        out[x] = (dilate ? any : all) ? kObjectCode : 0;
    }
}

} // namespace

void ErodeOrDilate(const uint16_t* source, uint16_t* result, int nx, int ny, int connectivity, bool dilate)
{
    if (!source || !result || nx <= 0 || ny <= 0) return;
    const bool eight = connectivity == 8;
    const size_t width = static_cast<size_t>(nx);
    RunRowBands(ny, static_cast<long long>(nx) * ny, [&](int first, int last) {
        for (int y = first; y < last; ++y) {
            const uint16_t* row = source + static_cast<size_t>(y) * width;
            MorphRow(y > 0 ? row - width : nullptr, row, y + 1 < ny ? row + width : nullptr,
                     result + static_cast<size_t>(y) * width, nx, eight, dilate);
        }
    });
}

int RemoveSmallObjects(uint16_t* codes, int nx, int ny, uint32_t smallest, const MeasureFrame& frame)
{
    if (!codes || nx <= 0 || ny <= 0 || nx >= kFillLimit || ny >= kFillLimit) return 0;
    const size_t count = static_cast<size_t>(nx) * static_cast<size_t>(ny);
    for (size_t i = 0; i < count; ++i)
        if (codes[i]) codes[i] = kUnmeasuredCode;
    FillStack stack;
    int removed = 0;
    for (int y = 0; y < ny && removed >= 0; ++y) {
        for (int x = 0; x < nx; ++x) {
            if (codes[static_cast<size_t>(y) * static_cast<size_t>(nx) + x] != kUnmeasuredCode) continue;
            ParticleObject object;
            if (!MeasureObject(codes, nx, ny, x, y, kObjectCode, frame, &stack, &object) ||
                (object.Pixels <= smallest && !FloodFill(codes, nx, ny, x, y, frame.connectivity, 0, nullptr, &stack))) {
                removed = -1;
                break;
            }
            if (object.Pixels <= smallest) ++removed;
        }
    }
    FreeFillStack(&stack);
    return removed;
}
