// Images of the frequency domain: the forward transform of an image into a new item that shows
// its centred log power spectrum and carries the complex data, the inverse transform back to a
// new image of the magnitude, the look-up enhancement of a spectrum, and the erase of the
// complex data.
#pragma once

#include <cstdint>

#include "tavrin/image_header.h"

// The log power of complex data of nx by ny pairs as codes, centred: the zero frequency lands
// at (nx / 2, ny / 2). With b = min - 1 and factor = 65535 / ln(max - b) (min and max of
// re^2 + im^2), code = trunc(ln(p - b) * factor). A factor or a value that is not finite (an
// all-zero input gives an infinite factor) writes code 0: nothing that is not finite is ever
// turned into an integer.
void PowerSpectrumToCodes(const float* complex, int nx, int ny, uint16_t* codes);

// The magnitude of complex data as codes in natural order, stretched: (m - min) * 65535 /
// (max - min), code 0 everywhere when max equals min. `scratch` holds nx floats.
void MagnitudeToCodes(const float* complex, int nx, int ny, uint16_t* codes);

// The forward transform of the current image (history code 61). Checks: an image (33536),
// both sides powers of two (33542), no complex data already (33543). Answers the new current
// item, or null: on any failure or a cancel the list and the current item are as before.
ImageHeaderType* ForwardFFT();

// The inverse transform of the current item's complex data (history code 62); without complex
// data it does nothing and reports nothing. The transform works on a copy of the data, so a
// cancel leaves the item and its data as they were. On success the complex data are erased
// from every item holding them. Answers the new current item or null.
ImageHeaderType* InverseFFT();

// ImageLUT[i] = ImageLUT[min(2 i, 255)] for i ascending, in place; redraws and logs.
// Checks: an image (33536), powers of two (33542).
void EnhanceFFTContrast();

// Frees the complex block and clears FFTData in every item of the list that holds it; logs
// "Erase FFT data.\n".
void EraseFFTData(float* block);

// The thread count of the transforms of these commands: 0 the cores.
void SetFFTCommandThreads(int threads);
