#include "image/convert_size.h"
#include "display/contents_grid.h"
#include "display/placement.h"
#include "display/vfs.h"
#include "host/errors.h"
#include "host/log.h"
#include "store/data_list.h"
#include "store/duplicate.h"
#include "store/image_header.h"
#include "store/memory.h"

#include <algorithm>
#include <cstring>

namespace {

using u32 = uint32_t;

// Codes at or below this are gaps of a cross section: never blended.
constexpr u32 kGapCode = 8960;

// Where output k of m stands on a line of n points, in 128ths of a point.
uint64_t Position128(int k, int n, int m)
{
    return m > 1 ? uint64_t{static_cast<u32>(k)} * 128u * static_cast<u32>(n - 1) / static_cast<u32>(m - 1) : 0;
}

// Linear groups: p codes to 25; output k of a group stands at k * p / 25, in 25ths.
void LinearGroups(int n, int p, const uint16_t* in, uint16_t* out)
{
    const int groups = n / p;
    for (int g = 0; g < groups; ++g) {
        for (int k = 0; k < 25; ++k) {
            const int i = g * p + k * p / 25;
            const u32 w = static_cast<u32>(k * p % 25);
            const u32 a = in[i];
            const u32 b = i + 1 < n ? in[i + 1] : in[n - 1];
            out[g * 25 + k] = static_cast<uint16_t>(((25 - w) * a + w * b) / 25);
        }
    }
}

bool SpecialCase(int n, int m, const uint16_t* in, uint16_t* out)
{
    if ((n == 128 && m == 256) || (n == 256 && m == 512)) {
        out[0] = in[0];
        for (int i = 0; i < n - 1; ++i) {
            out[1 + 2 * i] = in[i];
            out[2 + 2 * i] = static_cast<uint16_t>((u32{in[i]} + in[i + 1]) >> 1);
        }
        out[m - 1] = in[n - 1];
        return true;
    }
    if (n == 128 && m == 512) {
        out[0] = in[0];
        out[1] = in[0];
        for (int i = 0; i < 127; ++i) {
            const u32 a = in[i], b = in[i + 1];
            uint16_t* o = out + 2 + 4 * i;
            o[0] = static_cast<uint16_t>(a);
            o[1] = static_cast<uint16_t>((3 * a + b) >> 2);
            o[2] = static_cast<uint16_t>((a + b) >> 1);
            o[3] = static_cast<uint16_t>((a + 3 * b) >> 2);
        }
        out[510] = in[127];
        out[511] = in[127];
        return true;
    }
    if (n == 128 && m == 384) {
        out[0] = in[0];
        for (int i = 0; i < 127; ++i) {
            const u32 a = in[i], b = in[i + 1];
            uint16_t* o = out + 1 + 3 * i;
            o[0] = static_cast<uint16_t>(a);
            o[1] = static_cast<uint16_t>((2 * a + b) / 3);
            o[2] = static_cast<uint16_t>((a + 2 * b) / 3);
        }
        out[382] = in[127];
        out[383] = in[127];
        return true;
    }
    if (n == 256 && m == 384) {
        for (int g = 0; g < 127; ++g) {
            const u32 a0 = in[2 * g], a1 = in[2 * g + 1], a2 = in[2 * g + 2];
            out[3 * g] = static_cast<uint16_t>(a0);
            out[3 * g + 1] = static_cast<uint16_t>((a0 + 2 * a1) / 3);
            out[3 * g + 2] = static_cast<uint16_t>((2 * a1 + a2) / 3);
        }
        out[381] = in[254];
        out[382] = static_cast<uint16_t>((u32{in[254]} + in[255]) >> 1);
        out[383] = in[255];
        return true;
    }
    if (n == 512 && m == 384) {
        for (int g = 0; g < 127; ++g) {
            const u32 a0 = in[4 * g], a1 = in[4 * g + 1], a2 = in[4 * g + 2], a3 = in[4 * g + 3];
            out[3 * g] = static_cast<uint16_t>(a0);
            out[3 * g + 1] = static_cast<uint16_t>((2 * a1 + a2) / 3);
            out[3 * g + 2] = static_cast<uint16_t>((a2 + 2 * a3) / 3);
        }
        out[381] = in[508];
        out[382] = in[509];
        out[383] = in[510];
        return true;
    }
    if ((n == 128 || n == 256) && m == 400) {
        LinearGroups(n, n / 16, in, out);
        return true;
    }
    if (n == 512 && m == 400) {
        for (int k = 0; k < 400; ++k) out[k] = in[k * 511 / 399];
        return true;
    }
    if ((n == 256 && m == 128) || (n == 512 && m == 256)) {
        for (int k = 0; k < m; ++k) out[k] = static_cast<uint16_t>((u32{in[2 * k]} + in[2 * k + 1]) >> 1);
        return true;
    }
    if (n == 512 && m == 128) {
        for (int k = 0; k < m; ++k) {
            const uint16_t* q = in + 4 * k;
            out[k] = static_cast<uint16_t>((u32{q[0]} + q[1] + q[2] + q[3]) >> 2);
        }
        return true;
    }
    return false;
}

// Blocks of b x b codes, summed and shifted by `bits`.
void BlockDown(const ImageHeaderType* source, ImageHeaderType* result, int b, int bits)
{
    const int nx = source->nx, n = result->nx;
    for (int y = 0; y < n; ++y) {
        uint16_t* out = result->PixData + static_cast<size_t>(y) * n;
        for (int x = 0; x < n; ++x) {
            u32 sum = 0;
            for (int dy = 0; dy < b; ++dy) {
                const uint16_t* in = source->PixData + static_cast<size_t>(y * b + dy) * nx + static_cast<size_t>(x) * b;
                for (int dx = 0; dx < b; ++dx) sum += in[dx];
            }
            out[x] = static_cast<uint16_t>(sum >> bits);
        }
    }
}

// 2 x up: each source point a[x] gives a 2 x 2 block with the means towards its right and
// lower neighbours.
void TwoTimesUp(const ImageHeaderType* source, ImageHeaderType* result)
{
    const int nx = source->nx, n = result->nx;
    for (int y = 0; y < n; y += 2) {
        const int ra = y >> 1, rb = y >= n - 2 ? ra : ra + 1;
        const uint16_t* a = source->PixData + static_cast<size_t>(ra) * nx;
        const uint16_t* b = source->PixData + static_cast<size_t>(rb) * nx;
        uint16_t* o0 = result->PixData + static_cast<size_t>(y) * n;
        uint16_t* o1 = o0 + n;
        for (int x = 0; x < nx - 1; ++x) {
            const u32 a0 = a[x], a1 = a[x + 1], b0 = b[x], b1 = b[x + 1];
            o0[2 * x] = static_cast<uint16_t>(a0);
            o0[2 * x + 1] = static_cast<uint16_t>((a0 + a1) >> 1);
            o1[2 * x] = static_cast<uint16_t>((a0 + b0) >> 1);
            o1[2 * x + 1] = static_cast<uint16_t>((a0 + a1 + b0 + b1) >> 2);
        }
        const u32 a0 = a[nx - 1], b0 = b[nx - 1];
        o0[n - 2] = o0[n - 1] = static_cast<uint16_t>(a0);
        o1[n - 2] = o1[n - 1] = static_cast<uint16_t>((a0 + b0) >> 1);
    }
}

// 4 x up: each source point gives a 4 x 4 block, linear in quarters across and down.
void FourTimesUp(const ImageHeaderType* source, ImageHeaderType* result)
{
    const int nx = source->nx, n = result->nx;
    for (int y = 0; y < n; y += 4) {
        const int ra = y >> 2, rb = y >= n - 4 ? ra : ra + 1;
        const uint16_t* a = source->PixData + static_cast<size_t>(ra) * nx;
        const uint16_t* b = source->PixData + static_cast<size_t>(rb) * nx;
        uint16_t* o[4];
        for (int r = 0; r < 4; ++r) o[r] = result->PixData + static_cast<size_t>(y + r) * n;
        for (int x = 0; x < nx - 1; ++x) {
            const u32 a0 = a[x], a1 = a[x + 1], b0 = b[x], b1 = b[x + 1];
            const u32 top[4] = {a0, (3 * a0 + a1) >> 2, (a0 + a1) >> 1, (a0 + 3 * a1) >> 2};
            const u32 low[4] = {b0, (3 * b0 + b1) >> 2, (b0 + b1) >> 1, (b0 + 3 * b1) >> 2};
            for (int c = 0; c < 4; ++c) {
                const u32 t = top[c], u = low[c];
                o[0][4 * x + c] = static_cast<uint16_t>(t);
                o[1][4 * x + c] = static_cast<uint16_t>((3 * t + u) >> 2);
                o[2][4 * x + c] = static_cast<uint16_t>((t + u) >> 1);
                o[3][4 * x + c] = static_cast<uint16_t>((t + 3 * u) >> 2);
            }
        }
        const u32 a0 = a[nx - 1], b0 = b[nx - 1];
        const u32 last[4] = {a0, (3 * a0 + b0) >> 2, (a0 + b0) >> 1, (a0 + 3 * b0) >> 2};
        for (int r = 0; r < 4; ++r)
            for (int c = n - 4; c < n; ++c) o[r][c] = static_cast<uint16_t>(last[r]);
    }
}

// The rules of any two lengths: the integer mean of each run when shrinking, the blend in
// 128ths (weights adding up to 127) when growing. The last output of a growing line stands on
// in[n - 1] with weight 0 for its neighbour, which is not read.
void ResampleLineGeneral(int n, int m, const uint16_t* in, uint16_t* out)
{
    if (n == m) {
        std::memcpy(out, in, static_cast<size_t>(n) * sizeof *in);
        return;
    }
    if (n > m) {
        const uint64_t step = uint64_t{static_cast<u32>(n)} * 64u / static_cast<u32>(m);
        for (int k = 0; k < m; ++k) {
            const uint64_t from = (k * step) >> 6, to = ((k + 1) * step) >> 6;
            uint64_t sum = 0;
            for (uint64_t i = from; i < to; ++i) sum += in[i];
            out[k] = static_cast<uint16_t>(to > from ? sum / (to - from) : in[from]);
        }
        return;
    }
    for (int k = 0; k < m; ++k) {
        const uint64_t pos = Position128(k, n, m);
        const size_t i = static_cast<size_t>(pos >> 7);
        const u32 f = static_cast<u32>(pos & 127);
        const u32 next = i + 1 < static_cast<size_t>(n) ? in[i + 1] : in[i];
        out[k] = static_cast<uint16_t>((in[i] * (127 - f) + next * f) >> 7);
    }
}

// The line stage of the gap-keeping resampler: when growing, a pair with a gap is not blended
// (the nearer code stands); shrinking is the plain integer mean.
void ResampleLineKeepGaps(int n, int m, const uint16_t* in, uint16_t* out)
{
    if (n >= m) {
        ResampleLineGeneral(n, m, in, out);
        return;
    }
    for (int k = 0; k < m; ++k) {
        const uint64_t pos = Position128(k, n, m);
        const size_t i = static_cast<size_t>(pos >> 7);
        const u32 f = static_cast<u32>(pos & 127);
        const u32 a = in[i], b = i + 1 < static_cast<size_t>(n) ? in[i + 1] : in[i];
        if (a > kGapCode && b > kGapCode)
            out[k] = static_cast<uint16_t>((a * (127 - f) + b * f) >> 7);
        else
            out[k] = static_cast<uint16_t>(f < 64 ? a : b);
    }
}

// The separable path: rows resampled by the line stage, then blended between the two source
// rows around each result row. `upper` and `lower` hold n codes each.
void Separable(const ImageHeaderType* source, ImageHeaderType* result, uint16_t* upper, uint16_t* lower, bool keepGaps)
{
    const int nx = source->nx, ny = source->ny, n = result->nx;
    void (*const line)(int, int, const uint16_t*, uint16_t*) = keepGaps ? ResampleLineKeepGaps : ResampleLine;
    line(nx, n, source->PixData, lower);
    int held = 0;
    for (int j = 0; j < n; ++j) {
        const uint64_t pos = Position128(j, ny, n);
        const int next = static_cast<int>(pos >> 7) + 1;
        if (next != held) {
            std::swap(upper, lower);
            held = next;
            if (held < ny) line(nx, n, source->PixData + static_cast<size_t>(held) * nx, lower);
        }
        const u32 f = static_cast<u32>(pos & 127), g = 127 - f;
        uint16_t* out = result->PixData + static_cast<size_t>(j) * n;
        if (!keepGaps) {
            for (int x = 0; x < n; ++x) out[x] = static_cast<uint16_t>((upper[x] * g + lower[x] * f) >> 7);
            continue;
        }
        // The test is ">" on the upper row and ">=" on the lower one.
        for (int x = 0; x < n; ++x) {
            if (upper[x] > kGapCode && lower[x] >= kGapCode)
                out[x] = static_cast<uint16_t>((upper[x] * g + lower[x] * f) >> 7);
            else
                out[x] = g > f ? upper[x] : lower[x];
        }
    }
}

bool Square(const ImageHeaderType* image, int size) { return image->nx == size && image->ny == size; }

void ShowResult(ImageHeaderType* source, ImageHeaderType* result)
{
    const int n = result->nx;
    PlaceImageRows(source, result);
    Log("Convert size of '%s' from (%d,%d) to (%d,%d)\n", result->Title, static_cast<int>(source->nx),
        static_cast<int>(source->ny), n, n);
}

bool ValidSource(const ImageHeaderType* source, int n)
{
    return source && IsInList(source) && CheckHeaderIsImageType(source) && source->PixData && source->nx > 0 &&
           source->ny > 0 && n > 0 && n <= INT16_MAX;
}

// The separable path with its two scratch rows; frees the result when they cannot be had.
bool SeparableWithScratch(const ImageHeaderType* source, ImageHeaderType* result, bool keepGaps)
{
    const int n = result->nx;
    auto* upper = static_cast<uint16_t*>(ecalloc(static_cast<size_t>(n), sizeof(uint16_t)));
    auto* lower = static_cast<uint16_t*>(ecalloc(static_cast<size_t>(n), sizeof(uint16_t)));
    if (!upper || !lower) {
        efree(upper);
        efree(lower);
        FreeResultItem(result);
        Error(ERR_NO_MEMORY);
        return false;
    }
    Separable(source, result, upper, lower, keepGaps);
    efree(upper);
    efree(lower);
    return true;
}

} // namespace

void ResampleLine(int n, int m, const uint16_t* in, uint16_t* out)
{
    if (!in || !out || n <= 0 || m <= 0) {
        ProgramError("ResampleLine %d %d", n, m);
        return;
    }
    if (n != m && SpecialCase(n, m, in, out)) return;
    ResampleLineGeneral(n, m, in, out);
}

ImageHeaderType* ConvertImageSize(ImageHeaderType* source, int n, int show)
{
    if (!ValidSource(source, n)) {
        ProgramError("ConvertImageSize %d", n);
        return nullptr;
    }
    ImageHeaderType* result = DuplicateResized(source, n, n);
    if (!result) return nullptr;

    if ((Square(source, 256) && n == 128) || (Square(source, 512) && n == 256)) {
        BlockDown(source, result, 2, 2);
    } else if (Square(source, 512) && n == 128) {
        BlockDown(source, result, 4, 4);
    } else if ((Square(source, 128) && n == 256) || (Square(source, 256) && n == 512)) {
        TwoTimesUp(source, result);
    } else if (Square(source, 128) && n == 512) {
        FourTimesUp(source, result);
    } else if (!SeparableWithScratch(source, result, false)) {
        return nullptr;
    }
    if (show) ShowResult(source, result);
    return result;
}

ImageHeaderType* ConvertImageSizeKeepGaps(ImageHeaderType* source, int n, int show)
{
    if (!ValidSource(source, n)) {
        ProgramError("ConvertImageSizeKeepGaps %d", n);
        return nullptr;
    }
    ImageHeaderType* result = DuplicateResized(source, n, n);
    if (!result || !SeparableWithScratch(source, result, true)) return nullptr;
    if (show) ShowResult(source, result);
    return result;
}
