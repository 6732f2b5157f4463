// The single-precision Fourier transform of images and spectra.
//
// Data are complex pairs of f32 (real, imaginary), in natural order: the zero frequency at
// index 0. The forward transform has the sign exp(-2 pi i j k / N) and the scale 1 / N: a
// forward pass of 2^n values divides every non-zero part by 2^n; the inverse pass is not
// scaled, so forward then inverse gives the data back.
//
// Twiddle factors and the bit-reversal order come from tables made once per transform size and
// kept for the life of the process (computed in double, rounded to f32).
#pragma once

#include <cstdint>
#include <functional>

// The exponent of a power of two of at least 2, else 0: 1 and 0 and any value with more than
// one bit set answer 0 (refused).
int PowerOfTwoExponent(int value);

// 2^n complex values in place; n from 0 to 24.
void FFT1D(float* data, int n, bool forward);

// Progress and cancel of the two-dimensional transform. `progress(percent)` is called on the
// calling thread at every 16th line (rows first, then columns counting on from ny) with
// line * 100 / (ny + nx - 1); `cancel()` is asked on the calling thread between blocks of
// lines and stops the transform when it answers true (the data are then part transformed).
struct FFTProgress {
    std::function<void(int percent)> progress;
    std::function<bool()> cancel;
};

// The two-dimensional transform of 2^log2ny rows of 2^log2nx pairs, `rowLength` pairs apart,
// rows first then columns. `threads`: 0 the cores (at most 2), else that many; the result is
// the same bits for any count. Answers false when cancelled.
bool FFT2D(float* data, int log2ny, int log2nx, int rowLength, bool forward, const FFTProgress& steps,
           int threads = 0);

// The thread count FFT2D uses when given 0 (0 again restores the cores). For tests and the
// benchmark.
void SetFFTThreads(int threads);
