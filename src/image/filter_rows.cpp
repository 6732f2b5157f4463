#include "image/filter_rows.h"
#include "image/filter_bands.h"
#include "image/filter_kernels.h"

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <vector>

namespace {

constexpr int32_t kLargestCode = 65535;

// The border part of row y for a filter reaching `h` pixels out: a row without inner pixels is
// copied (`keep`) or zeroed whole; a row with inner pixels gets its first and last h codes.
// Answers whether the row has inner pixels, x from h to nx - 1 - h.
bool FillBorder(const uint16_t* in, uint16_t* out, int nx, int ny, int y, int h, bool keep)
{
    const bool inner = y >= h && y < ny - h && nx > 2 * h;
    const int n = inner ? h : nx;
    for (int x = 0; x < n; ++x) {
        out[x] = keep ? in[x] : 0;
        out[nx - 1 - x] = keep ? in[nx - 1 - x] : 0;
    }
    return inner;
}

uint16_t Clip(int32_t q) { return static_cast<uint16_t>(std::clamp(q, 0, kLargestCode)); }

// The quotients of a row of sums: truncated toward zero, clipped. The division is done in double
// precision, which is exact after truncation for 32-bit sums and divisors below 2^15, and lets
// the loop run on vector units, which have no integer division.
void StoreQuotients(const int32_t* sums, int n, int32_t divisor, uint16_t* out)
{
    if (divisor == 1) {
        for (int x = 0; x < n; ++x) out[x] = Clip(sums[x]);
        return;
    }
    const double d = divisor;
    for (int x = 0; x < n; ++x) out[x] = Clip(static_cast<int32_t>(static_cast<double>(sums[x]) / d));
}

// The inner pixels of one row for a K x K kernel: rows[r] is the source row y - K/2 + r, and
// sums holds nx entries of scratch. Each non-zero entry of the kernel adds one weighted row
// to the sums.
template <int K>
void CorrelateInner(const uint16_t* const rows[K], int nx, const int32_t* kernel, int32_t divisor, int32_t* sums,
                    uint16_t* out)
{
    const int n = nx - (K - 1);
    std::fill(sums, sums + n, 0);
    for (int r = 0; r < K; ++r)
        for (int c = 0; c < K; ++c) {
            const int32_t w = kernel[r * K + c];
            if (w == 0) continue;
            const uint16_t* p = rows[r] + c;
            for (int x = 0; x < n; ++x) sums[x] += w * static_cast<int32_t>(p[x]);
        }
    StoreQuotients(sums, n, divisor, out);
}

// The all-ones kernel: column sums, then the sum of K neighbouring columns over K * K. The codes
// are all non-negative and the mean of codes is a code, so there is nothing to clip; the result
// is that of the general rule.
template <int K>
void BoxInner(const uint16_t* const rows[K], int nx, int32_t* sums, uint16_t* out)
{
    uint32_t* columns = reinterpret_cast<uint32_t*>(sums);
    for (int x = 0; x < nx; ++x) columns[x] = rows[0][x];
    for (int r = 1; r < K; ++r)
        for (int x = 0; x < nx; ++x) columns[x] += rows[r][x];
    const int n = nx - (K - 1);
    for (int x = 0; x < n; ++x) {
        uint32_t t = 0;
        for (int c = 0; c < K; ++c) t += columns[x + c];
        out[x] = static_cast<uint16_t>(t / static_cast<uint32_t>(K * K));
    }
}

template <int K>
void CorrelateBand(const uint16_t* source, uint16_t* result, int nx, int ny, const int8_t* kernel, int first,
                   int last)
{
    constexpr int h = K / 2;
    int32_t weights[K * K];
    bool allOnes = true;
    for (int i = 0; i < K * K; ++i) {
        weights[i] = kernel[i];
        allOnes = allOnes && kernel[i] == 1;
    }
    const int32_t sum = KernelSum(kernel, K);
    const int32_t divisor = sum != 0 ? sum : 1;
    std::vector<int32_t> sums(static_cast<size_t>(nx));
    for (int y = first; y < last; ++y) {
        const size_t at = static_cast<size_t>(y) * static_cast<size_t>(nx);
        uint16_t* out = result + at;
        if (!FillBorder(source + at, out, nx, ny, y, h, sum != 0)) continue;
        const uint16_t* rows[K];
        for (int r = 0; r < K; ++r) rows[r] = source + at + static_cast<std::ptrdiff_t>(r - h) * nx;
        if (allOnes)
            BoxInner<K>(rows, nx, sums.data(), out + h);
        else
            CorrelateInner<K>(rows, nx, weights, divisor, sums.data(), out + h);
    }
}

// One exchange of a network: a gets the smaller, b the larger.
inline void Order(uint16_t& a, uint16_t& b)
{
    const uint16_t low = std::min(a, b), high = std::max(a, b);
    a = low;
    b = high;
}

// Nineteen exchanges on values held in registers: sort the three rows, then the columns, then
// the middle diagonal; p4 is then the fifth smallest.
inline uint16_t Middle9(uint16_t p0, uint16_t p1, uint16_t p2, uint16_t p3, uint16_t p4, uint16_t p5, uint16_t p6,
                        uint16_t p7, uint16_t p8)
{
    Order(p1, p2);
    Order(p4, p5);
    Order(p7, p8);
    Order(p0, p1);
    Order(p3, p4);
    Order(p6, p7);
    Order(p1, p2);
    Order(p4, p5);
    Order(p7, p8);
    Order(p0, p3);
    Order(p5, p8);
    Order(p4, p7);
    Order(p3, p6);
    Order(p1, p4);
    Order(p2, p5);
    Order(p4, p7);
    Order(p4, p2);
    Order(p6, p4);
    Order(p4, p2);
    return p4;
}

void MedianBand(const uint16_t* source, uint16_t* result, int nx, int ny, int points, int first, int last)
{
    for (int y = first; y < last; ++y) {
        const size_t at = static_cast<size_t>(y) * static_cast<size_t>(nx);
        uint16_t* out = result + at;
        if (!FillBorder(source + at, out, nx, ny, y, 1, true)) continue;
        const uint16_t* up = source + at - nx;
        const uint16_t* mid = source + at;
        const uint16_t* down = source + at + nx;
        const int n = nx - 2;
        out += 1;
        if (points == 5) {
            for (int x = 0; x < n; ++x) out[x] = MedianOf5(up[x + 1], mid[x], mid[x + 1], mid[x + 2], down[x + 1]);
        } else {
            for (int x = 0; x < n; ++x)
                out[x] = Middle9(up[x], up[x + 1], up[x + 2], mid[x], mid[x + 1], mid[x + 2], down[x], down[x + 1],
                                 down[x + 2]);
        }
    }
}

} // namespace

uint16_t MedianOf5(uint16_t a, uint16_t b, uint16_t c, uint16_t d, uint16_t e)
{
    // Seven exchanges: after them the middle place holds the third smallest.
    Order(a, b);
    Order(d, e);
    Order(a, d);
    Order(b, e);
    Order(b, c);
    Order(c, d);
    Order(b, c);
    return c;
}

uint16_t MedianOf9(const uint16_t v[9]) { return Middle9(v[0], v[1], v[2], v[3], v[4], v[5], v[6], v[7], v[8]); }

void CorrelateRows(const uint16_t* source, uint16_t* result, int nx, int ny, const int8_t* kernel, int size,
                   int first, int last)
{
    if (size == 5)
        CorrelateBand<5>(source, result, nx, ny, kernel, first, last);
    else
        CorrelateBand<3>(source, result, nx, ny, kernel, first, last);
}

void CorrelateImage(const uint16_t* source, uint16_t* result, int nx, int ny, const int8_t* kernel, int size)
{
    RunRowBands(ny, static_cast<long long>(nx) * ny, [&](int first, int last) {
        CorrelateRows(source, result, nx, ny, kernel, size, first, last);
    });
}

void MedianRows(const uint16_t* source, uint16_t* result, int nx, int ny, int points, int first, int last)
{
    MedianBand(source, result, nx, ny, points, first, last);
}

void MedianImage(const uint16_t* source, uint16_t* result, int nx, int ny, int points)
{
    RunRowBands(ny, static_cast<long long>(nx) * ny,
                [&](int first, int last) { MedianBand(source, result, nx, ny, points, first, last); });
}
