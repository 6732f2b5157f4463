#include "image/fft.h"

#include "image/fit_chunks.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <complex>
#include <cstring>
#include <memory>
#include <mutex>
#include <thread>
#include <vector>

#if defined(__SSE2__)
#include <xmmintrin.h>
#endif

namespace {

constexpr int kMaxExponent = 24;

// Tables of one size 2^n: the bit-reversed index of every position, and the twiddle factors
// exp(-2 pi i k / N) for k below N / 2.
struct FFTTables {
    std::vector<uint32_t> reversed;
    std::vector<float> cosines;
    std::vector<float> sines;
};

std::array<std::unique_ptr<FFTTables>, kMaxExponent + 1> g_tables;
std::mutex g_tablesLock;
int g_threads = 0;

const FFTTables& TablesFor(int n)
{
    std::lock_guard<std::mutex> hold(g_tablesLock);
    std::unique_ptr<FFTTables>& slot = g_tables[static_cast<size_t>(n)];
    if (!slot) {
        auto tables = std::make_unique<FFTTables>();
        const uint32_t size = 1u << n;
        tables->reversed.resize(size);
        for (uint32_t i = 0; i < size; ++i) {
            uint32_t r = 0;
            for (int b = 0; b < n; ++b)
                if (i & (1u << b)) r |= 1u << (n - 1 - b);
            tables->reversed[i] = r;
        }
        const uint32_t half = size / 2;
        tables->cosines.resize(half);
        tables->sines.resize(half);
        for (uint32_t k = 0; k < half; ++k) {
            const double angle = 6.283185307179586476925286766559 * static_cast<double>(k) / static_cast<double>(size);
            tables->cosines[k] = static_cast<float>(std::cos(angle));
            tables->sines[k] = static_cast<float>(-std::sin(angle));
        }
        slot = std::move(tables);
    }
    return *slot;
}

void NegateImaginary(float* data, uint32_t size)
{
    for (uint32_t i = 0; i < size; ++i) data[2 * i + 1] = -data[2 * i + 1];
}

// Radix-2 decimation in time on data already in bit-reversed order, forward sign, unscaled.
void Butterflies(float* data, int n, const FFTTables& tables)
{
    const uint32_t size = 1u << n;
    // Length 2: no multiplication.
    for (uint32_t i = 0; i < size; i += 2) {
        float* a = data + 2 * i;
        const float re = a[2], im = a[3];
        a[2] = a[0] - re;
        a[3] = a[1] - im;
        a[0] += re;
        a[1] += im;
    }
    for (uint32_t span = 2; span < size; span *= 2) {
        const uint32_t step = size / (2 * span);   // twiddle index step of this stage
        for (uint32_t start = 0; start < size; start += 2 * span) {
            float* lo = data + 2 * start;
            float* hi = lo + 2 * span;
            for (uint32_t k = 0; k < span; ++k) {
                const float c = tables.cosines[k * step];
                const float s = tables.sines[k * step];
                const float hr = hi[2 * k], hm = hi[2 * k + 1];
                const float tr = hr * c - hm * s;
                const float ti = hr * s + hm * c;
                const float lr = lo[2 * k], lm = lo[2 * k + 1];
                hi[2 * k] = lr - tr;
                hi[2 * k + 1] = lm - ti;
                lo[2 * k] = lr + tr;
                lo[2 * k + 1] = lm + ti;
            }
        }
    }
}

// Line `line` of the 2-D pass: rows are lines 0 to ny - 1, columns ny to ny + nx - 1.
struct Pass {
    float* data;
    int log2ny, log2nx, rowLength;
    bool forward;
};

// Eight lines are transformed side by side: position j of the batch holds the eight real
// parts, then the eight imaginary parts, so that every butterfly works on eight lines at once
// with the same twiddle factor. Each line sees the same operations, in the same order, as
// FFT1D gives it: the result of a line does not depend on its neighbours in the batch.
constexpr int kLanes = 8;
constexpr int kPosition = 2 * kLanes;   // floats per position of a batch

#if defined(__SSE2__)
// Whole batches move four lanes at a time through SSE registers. Columns: the eight pairs of a
// position lie side by side in a row and are split into real and imaginary parts. Rows: two
// pairs of each of four rows form a 4 x 4 block that is transposed into two positions.
template <bool Columns>
void GatherFull(float* batch, const float* data, size_t rowLength, uint32_t size, const uint32_t* reversed,
                float sign)
{
    const __m128 imSign = _mm_set1_ps(sign);
    if (Columns) {
        for (uint32_t j = 0; j < size; ++j) {
            float* out = batch + static_cast<size_t>(reversed[j]) * kPosition;
            const float* in = data + 2 * static_cast<size_t>(j) * rowLength;
            for (int half = 0; half < 2; ++half) {
                const __m128 a = _mm_loadu_ps(in + 8 * half);
                const __m128 b = _mm_loadu_ps(in + 8 * half + 4);
                _mm_storeu_ps(out + 4 * half, _mm_shuffle_ps(a, b, _MM_SHUFFLE(2, 0, 2, 0)));
                _mm_storeu_ps(out + kLanes + 4 * half, _mm_mul_ps(imSign, _mm_shuffle_ps(a, b, _MM_SHUFFLE(3, 1, 3, 1))));
            }
        }
        return;
    }
    for (uint32_t j = 0; j < size; j += 2) {
        float* out0 = batch + static_cast<size_t>(reversed[j]) * kPosition;
        float* out1 = batch + static_cast<size_t>(reversed[j + 1]) * kPosition;
        for (int quad = 0; quad < 2; ++quad) {
            const float* in = data + 2 * (static_cast<size_t>(4 * quad) * rowLength + j);
            __m128 r0 = _mm_loadu_ps(in);
            __m128 r1 = _mm_loadu_ps(in + 2 * rowLength);
            __m128 r2 = _mm_loadu_ps(in + 4 * rowLength);
            __m128 r3 = _mm_loadu_ps(in + 6 * rowLength);
            _MM_TRANSPOSE4_PS(r0, r1, r2, r3);   // real j, imaginary j, real j + 1, imaginary j + 1
            _mm_storeu_ps(out0 + 4 * quad, r0);
            _mm_storeu_ps(out0 + kLanes + 4 * quad, _mm_mul_ps(imSign, r1));
            _mm_storeu_ps(out1 + 4 * quad, r2);
            _mm_storeu_ps(out1 + kLanes + 4 * quad, _mm_mul_ps(imSign, r3));
        }
    }
}

template <bool Columns>
void ScatterFull(const float* batch, float* data, size_t rowLength, uint32_t size, float scale, float sign)
{
    const __m128 reScale = _mm_set1_ps(scale);
    const __m128 imScale = _mm_set1_ps(sign);
    if (Columns) {
        for (uint32_t j = 0; j < size; ++j) {
            const float* in = batch + static_cast<size_t>(j) * kPosition;
            float* out = data + 2 * static_cast<size_t>(j) * rowLength;
            for (int half = 0; half < 2; ++half) {
                const __m128 re = _mm_mul_ps(_mm_loadu_ps(in + 4 * half), reScale);
                const __m128 im = _mm_mul_ps(_mm_loadu_ps(in + kLanes + 4 * half), imScale);
                _mm_storeu_ps(out + 8 * half, _mm_unpacklo_ps(re, im));
                _mm_storeu_ps(out + 8 * half + 4, _mm_unpackhi_ps(re, im));
            }
        }
        return;
    }
    for (uint32_t j = 0; j < size; j += 2) {
        const float* in0 = batch + static_cast<size_t>(j) * kPosition;
        const float* in1 = in0 + kPosition;
        for (int quad = 0; quad < 2; ++quad) {
            __m128 r0 = _mm_mul_ps(_mm_loadu_ps(in0 + 4 * quad), reScale);
            __m128 r1 = _mm_mul_ps(_mm_loadu_ps(in0 + kLanes + 4 * quad), imScale);
            __m128 r2 = _mm_mul_ps(_mm_loadu_ps(in1 + 4 * quad), reScale);
            __m128 r3 = _mm_mul_ps(_mm_loadu_ps(in1 + kLanes + 4 * quad), imScale);
            _MM_TRANSPOSE4_PS(r0, r1, r2, r3);   // the four rows, two pairs each
            float* out = data + 2 * (static_cast<size_t>(4 * quad) * rowLength + j);
            _mm_storeu_ps(out, r0);
            _mm_storeu_ps(out + 2 * rowLength, r1);
            _mm_storeu_ps(out + 4 * rowLength, r2);
            _mm_storeu_ps(out + 6 * rowLength, r3);
        }
    }
}
#endif

// Lines `width` (at most kLanes) starting at `first`, gathered in bit-reversed order: value j
// of lane b comes from pair b * laneStride + j * stride of `data`, where rows have stride 1
// and columns lane stride 1 (the compiler sees the unit stride of each). The imaginary parts
// are negated for the inverse; lanes without a line hold zeros.
template <bool Columns>
void GatherBatch(float* batch, const float* data, size_t rowLength, int width, int n, const FFTTables& tables,
                 bool forward)
{
    const size_t laneStride = Columns ? 1 : rowLength;
    const size_t stride = Columns ? rowLength : 1;
    const uint32_t size = 1u << n;
    const float sign = forward ? 1.0f : -1.0f;
#if defined(__SSE2__)
    if (width == kLanes && size >= 2) {
        GatherFull<Columns>(batch, data, rowLength, size, tables.reversed.data(), sign);
        return;
    }
#endif
    for (uint32_t j = 0; j < size; ++j) {
        float* out = batch + static_cast<size_t>(tables.reversed[j]) * kPosition;
        const float* in = data + 2 * j * stride;
        if (width == kLanes) {
            for (int b = 0; b < kLanes; ++b) {
                out[b] = in[2 * b * laneStride];
                out[kLanes + b] = sign * in[2 * b * laneStride + 1];
            }
        } else {
            int b = 0;
            for (; b < width; ++b) {
                out[b] = in[2 * b * laneStride];
                out[kLanes + b] = sign * in[2 * b * laneStride + 1];
            }
            for (; b < kLanes; ++b) out[b] = out[kLanes + b] = 0.0f;
        }
    }
}

// The way back: the forward pass scales by 2^-n, the inverse negates the imaginary parts again.
template <bool Columns>
void ScatterBatch(const float* batch, float* data, size_t rowLength, int width, int n, bool forward)
{
    const size_t laneStride = Columns ? 1 : rowLength;
    const size_t stride = Columns ? rowLength : 1;
    const uint32_t size = 1u << n;
    const float scale = forward ? std::ldexp(1.0f, -n) : 1.0f;
    const float sign = forward ? scale : -1.0f;
#if defined(__SSE2__)
    if (width == kLanes && size >= 2) {
        ScatterFull<Columns>(batch, data, rowLength, size, scale, sign);
        return;
    }
#endif
    for (uint32_t j = 0; j < size; ++j) {
        const float* in = batch + static_cast<size_t>(j) * kPosition;
        float* out = data + 2 * j * stride;
        if (width == kLanes) {
            for (int b = 0; b < kLanes; ++b) {
                out[2 * b * laneStride] = in[b] * scale;
                out[2 * b * laneStride + 1] = in[kLanes + b] * sign;
            }
        } else {
            for (int b = 0; b < width; ++b) {
                out[2 * b * laneStride] = in[b] * scale;
                out[2 * b * laneStride + 1] = in[kLanes + b] * sign;
            }
        }
    }
}

// Eight lanes as one value: the compiler keeps it in one 256-bit register or in two 128-bit
// ones, lane by lane the same operations.
typedef float Lanes __attribute__((vector_size(kLanes * sizeof(float))));

// Loads and stores go through memcpy: the batch positions need no particular alignment.
#define TAVRIN_LOAD_LANES(name, from) \
    Lanes name;                       \
    std::memcpy(&name, (from), sizeof name)
#define TAVRIN_STORE_LANES(to, value)            \
    do {                                         \
        const Lanes stored_ = (value);           \
        std::memcpy((to), &stored_, sizeof stored_); \
    } while (0)

// One butterfly on eight lanes: hi times the twiddle (c, s) is added to lo and taken from it.
inline void LaneButterfly(float* lo, float* hi, float c, float s)
{
    TAVRIN_LOAD_LANES(hr, hi);
    TAVRIN_LOAD_LANES(hm, hi + kLanes);
    const Lanes tr = hr * c - hm * s;
    const Lanes ti = hr * s + hm * c;
    TAVRIN_LOAD_LANES(lr, lo);
    TAVRIN_LOAD_LANES(lm, lo + kLanes);
    TAVRIN_STORE_LANES(hi, lr - tr);
    TAVRIN_STORE_LANES(hi + kLanes, lm - ti);
    TAVRIN_STORE_LANES(lo, lr + tr);
    TAVRIN_STORE_LANES(lo + kLanes, lm + ti);
}

// The butterflies of FFT1D on a batch in bit-reversed order. Two stages at a time go through
// each group of four positions while it is in registers: the same butterflies, in an order in
// which no value is read before the butterfly that makes it. Where the processor has them, the
// eight lanes go through one set of 256-bit registers; the arithmetic is the same either way.
__attribute__((target_clones("avx2", "default"))) void BatchButterflies(float* batch, int n,
                                                                        const FFTTables& tables)
{
    const uint32_t size = 1u << n;
    for (uint32_t i = 0; i + 1 < size; i += 2) {
        float* a = batch + static_cast<size_t>(i) * kPosition;
        float* h = a + kPosition;
        for (int part = 0; part < kPosition; part += kLanes) {
            TAVRIN_LOAD_LANES(x, a + part);
            TAVRIN_LOAD_LANES(y, h + part);
            TAVRIN_STORE_LANES(h + part, x - y);
            TAVRIN_STORE_LANES(a + part, x + y);
        }
    }
    const float* cosines = tables.cosines.data();
    const float* sines = tables.sines.data();
    uint32_t span = 2;
    for (; 2 * span < size; span *= 4) {
        const uint32_t step1 = size / (2 * span), step2 = size / (4 * span);
        const size_t gap = static_cast<size_t>(span) * kPosition;
        for (uint32_t start = 0; start < size; start += 4 * span) {
            float* p0 = batch + static_cast<size_t>(start) * kPosition;
            for (uint32_t k = 0; k < span; ++k, p0 += kPosition) {
                float* p1 = p0 + gap;
                float* p2 = p1 + gap;
                float* p3 = p2 + gap;
                LaneButterfly(p0, p1, cosines[k * step1], sines[k * step1]);
                LaneButterfly(p2, p3, cosines[k * step1], sines[k * step1]);
                LaneButterfly(p0, p2, cosines[k * step2], sines[k * step2]);
                LaneButterfly(p1, p3, cosines[(k + span) * step2], sines[(k + span) * step2]);
            }
        }
    }
    if (span < size) {   // one stage left over
        float* lo = batch;
        float* hi = batch + static_cast<size_t>(span) * kPosition;
        for (uint32_t k = 0; k < span; ++k, lo += kPosition, hi += kPosition)
            LaneButterfly(lo, hi, cosines[k], sines[k]);
    }
}

// Lines first to last of one kind in batches of kLanes: rows run along the data, columns
// across it.
template <bool Columns>
void TransformLines(const Pass& pass, int first, int last)
{
    const int n = Columns ? pass.log2ny : pass.log2nx;
    const FFTTables& tables = TablesFor(n);
    const size_t rowLength = static_cast<size_t>(pass.rowLength);
    std::vector<float> batch((static_cast<size_t>(1) << n) * kPosition);
    for (int line = first; line < last; line += kLanes) {
        const int width = std::min(kLanes, last - line);
        float* start = pass.data + 2 * static_cast<size_t>(line) * (Columns ? 1 : rowLength);
        GatherBatch<Columns>(batch.data(), start, rowLength, width, n, tables, pass.forward);
        BatchButterflies(batch.data(), n, tables);
        ScatterBatch<Columns>(batch.data(), start, rowLength, width, n, pass.forward);
    }
}

// Lines first to last of one kind, in steps: before each step its progress calls, then the
// step spread over the threads in fixed parts, then the cancel test.
bool RunLines(const Pass& pass, bool columns, int count, int offset, int total, const FFTProgress& steps,
              int threads, int lineLength)
{
    // A step holds enough work (a million values) to be worth starting a thread for, in whole
    // multiples of 16 lines; the cancel test still comes every few tens of milliseconds.
    int stepLines = 16;
    while (stepLines < count && static_cast<long long>(stepLines) * lineLength < (1 << 20)) stepLines *= 2;
    for (int first = 0; first < count; first += stepLines) {
        const int last = std::min(count, first + stepLines);
        if (steps.progress)
            for (int line = first; line < last; ++line)
                if (line % 16 == 0) steps.progress((offset + line) * 100 / total);
        // Parts are multiples of 8 lines, so column blocks never split.
        const int parts = std::max(1, std::min(threads, (last - first) / 8));
        const int partLines = ((last - first) / parts + 7) / 8 * 8;
        RunFixedChunks(parts, parts, [&](int k) {
            const int a = first + k * partLines;
            const int b = std::min(last, a + partLines);
            if (a >= b) return;
            if (columns)
                TransformLines<true>(pass, a, b);
            else
                TransformLines<false>(pass, a, b);
        });
        if (steps.cancel && steps.cancel()) return false;
    }
    return true;
}

} // namespace

int PowerOfTwoExponent(int value)
{
    if (value < 2 || (value & (value - 1)) != 0) return 0;
    int n = 0;
    while ((1 << n) < value) ++n;
    return n;
}

void FFT1D(float* data, int n, bool forward)
{
    if (n < 0 || n > kMaxExponent) return;
    if (n == 0) return;   // one value: its own transform, scale 1
    const FFTTables& tables = TablesFor(n);
    const uint32_t size = 1u << n;
    if (!forward) NegateImaginary(data, size);
    for (uint32_t i = 0; i < size; ++i) {
        const uint32_t r = tables.reversed[i];
        if (r > i) {
            std::swap(data[2 * i], data[2 * r]);
            std::swap(data[2 * i + 1], data[2 * r + 1]);
        }
    }
    Butterflies(data, n, tables);
    if (forward) {
        // Dividing by 2^n only moves the binary exponent: multiplying by the exact power is
        // the same for every normal value, and zero stays zero.
        const float scale = std::ldexp(1.0f, -n);
        for (uint32_t i = 0; i < 2 * size; ++i) data[i] *= scale;
    } else {
        NegateImaginary(data, size);
    }
}

bool FFT2D(float* data, int log2ny, int log2nx, int rowLength, bool forward, const FFTProgress& steps, int threads)
{
    if (!data || log2ny < 0 || log2nx < 0 || log2ny > kMaxExponent || log2nx > kMaxExponent) return false;
    const int nx = 1 << log2nx, ny = 1 << log2ny;
    if (rowLength < nx) return false;
    if (threads <= 0) threads = g_threads;
    if (threads <= 0) threads = static_cast<int>(std::clamp(std::thread::hardware_concurrency(), 1u, 2u));
    // The tables are made before the workers start.
    TablesFor(log2nx);
    TablesFor(log2ny);
    const Pass pass{data, log2ny, log2nx, rowLength, forward};
    const int total = std::max(1, ny + nx - 1);
    if (!RunLines(pass, false, ny, 0, total, steps, threads, nx)) return false;
    return RunLines(pass, true, nx, ny, total, steps, threads, ny);
}

void SetFFTThreads(int threads) { g_threads = std::max(0, threads); }
