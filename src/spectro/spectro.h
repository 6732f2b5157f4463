// Spectroscopy: commands that change a spectrum. Each makes a new item behind the current one,
// leaves the source alone, notes its process code, writes its log line and plots the result.
//
// A spectrum holds nx f32 samples of Y, then nx of X, in PixData.
#pragma once

#include <cstdint>

#include "tavrin/dl_spectro.h"
#include "tavrin/image_header.h"

// A value that could not be computed, and the tolerance of a scan for it.
constexpr float kMarker = 9.999e30f;
constexpr float kMarkerTolerance = 9.999e26f;
bool IsMarker(float v);

// The planes of a spectrum.
inline float* SpecY(ImageHeaderType* item) { return reinterpret_cast<float*>(item->PixData); }
inline float* SpecX(ImageHeaderType* item) { return reinterpret_cast<float*>(item->PixData) + item->nx; }

// The current item when it is a spectrum with samples; else 33280 "No spectra in memory" and
// null.
ImageHeaderType* CurrentSpectrum();
// A new item behind `source` with its header and a copy of its samples, stamped with the
// clock; not current. Null after a report, with the list as it was.
ImageHeaderType* CopyNewSpectrum(const ImageHeaderType* source);
// The end of a command: the item becomes current, gets the process code and is plotted.
void FinishSpectrumCommand(ImageHeaderType* item, int code);
// The title of an item as text.
const char* ItemTitle(const ImageHeaderType* item, char (&buffer)[48]);

// Each marker (within the tolerance, either sign) becomes max + 0.2 (max - min) when positive,
// min - 0.2 (max - min) when negative, with min and max over the other values (from 9.9e20 and
// -9.9e20).
void ReplaceMarkers(float* values, int n);
// Stable insertion sort of the pairs by `key`; descending reverses both at the end.
void SortPair(float* key, float* other, int n, bool ascending);

// The quadratic Savitzky-Golay derivative of order 1 or 2 at the centre of 2m + 3 points from
// p, m from 1 to 11; 0 for anything else.
float SavitzkyGolay(const float* p, int order, int m);
// The integer coefficients of the second derivative over 2m + 3 points (index j for offset
// j - m - 1) and their normaliser; null for m outside 1 to 11.
const int32_t* SavitzkyGolaySecondCoefficients(int m);
int32_t SavitzkyGolaySecondNormaliser(int m);
int32_t SavitzkyGolayFirstDivisor(int m);

// Derivative of the curve (x, y) of n points over a window of N: 0, or -1 after a program
// error or a failed allocation, with the outputs untouched. See differentiate.cpp.
int DifferentiateData(int order, int normalise, int N, int n, const float* x, const float* y, float* outX,
                      float* outY);

// The last index of the first direction of a ramp of n X values, 0 when there is no turn.
int TurningPoint(const float* x, int n);

// The commands.
void SmoothSpectrum(int points);
void MedianSpectrum(int points);
void SmoothSpecCommand();
void GetSmoothSpecParam(wint_SmoothSpecParamType* param);
void SetSmoothSpecParam(wint_SmoothSpecParamType* param);
void DiffSpecCommand();
void GetDiffSpecParam(wint_DiffSpecParamType* param);
void SetDiffSpecParam(wint_DiffSpecParamType* param);
void SpecMath(int onY, int op);
void DoubleSpecMath(int op);
void RemoveDCBias();
void SeparateRampDirections();

// The parameters back to their defaults, and the plot window with them.
void ResetSpectroState();
