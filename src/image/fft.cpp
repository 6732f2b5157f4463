#include "image/fft.h"

#include "image/fit_chunks.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <complex>
#include <memory>
#include <mutex>
#include <thread>
#include <vector>

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

void TransformRows(const Pass& pass, int first, int last)
{
    for (int y = first; y < last; ++y)
        FFT1D(pass.data + static_cast<size_t>(y) * pass.rowLength * 2, pass.log2nx, pass.forward);
}

// Columns in blocks of eight, gathered into scratch lines so that the reads run along rows.
void TransformColumns(const Pass& pass, int first, int last)
{
    constexpr int kBlock = 8;
    const int ny = 1 << pass.log2ny;
    std::vector<float> scratch(static_cast<size_t>(kBlock) * ny * 2);
    for (int x0 = first; x0 < last; x0 += kBlock) {
        const int width = std::min(kBlock, last - x0);
        for (int y = 0; y < ny; ++y) {
            const float* row = pass.data + (static_cast<size_t>(y) * pass.rowLength + x0) * 2;
            for (int b = 0; b < width; ++b) {
                scratch[(static_cast<size_t>(b) * ny + y) * 2] = row[2 * b];
                scratch[(static_cast<size_t>(b) * ny + y) * 2 + 1] = row[2 * b + 1];
            }
        }
        for (int b = 0; b < width; ++b) FFT1D(scratch.data() + static_cast<size_t>(b) * ny * 2, pass.log2ny, pass.forward);
        for (int y = 0; y < ny; ++y) {
            float* row = pass.data + (static_cast<size_t>(y) * pass.rowLength + x0) * 2;
            for (int b = 0; b < width; ++b) {
                row[2 * b] = scratch[(static_cast<size_t>(b) * ny + y) * 2];
                row[2 * b + 1] = scratch[(static_cast<size_t>(b) * ny + y) * 2 + 1];
            }
        }
    }
}

// Lines first to last of one kind, in steps: before each step its progress calls, then the
// step spread over the threads in fixed parts, then the cancel test.
bool RunLines(const Pass& pass, bool columns, int count, int offset, int total, const FFTProgress& steps,
              int threads, int lineLength)
{
    // A step holds enough work to be worth starting threads for, in whole multiples of 16.
    int stepLines = 16;
    while (stepLines < count && static_cast<long long>(stepLines) * lineLength < 131072) stepLines *= 2;
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
                TransformColumns(pass, a, b);
            else
                TransformRows(pass, a, b);
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
