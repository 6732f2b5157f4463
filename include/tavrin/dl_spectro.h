/* Tavrin Processing: commands on spectra - smoothing, median, derivatives, arithmetic on X or
 * Y, sorting, operations between two spectra, DC bias removal and the split of a two-way ramp.
 *
 * Each command works on the current spectrum, makes a new item behind it with the result,
 * notes the command in the new item's processing history, writes a log line, makes the new
 * item current and plots it. The source stays in the list. */
#ifndef TAVRIN_DL_SPECTRO_H
#define TAVRIN_DL_SPECTRO_H

#include "tavrin/types.h"

#pragma pack(push, 1)
/* Smoothing: Mode 1 average, 2 median; Points the window (odd, 3 to 25). */
typedef struct wint_SmoothSpecParamType {
    uint32_t Mode;     /* 0 */
    int16_t Points;    /* 4 */
} TAVRIN_PACKED wint_SmoothSpecParamType;
/* Derivative: Mode 1 first, 2 second, 3 normalised first, 4 normalised second; Points the
 * window (5 to 25). */
typedef struct wint_DiffSpecParamType {
    uint32_t Mode;     /* 0 */
    int16_t Points;    /* 4 */
} TAVRIN_PACKED wint_DiffSpecParamType;
#pragma pack(pop)

#ifdef __cplusplus
static_assert(sizeof(wint_SmoothSpecParamType) == 6, "smoothing settings are 6 bytes");
static_assert(offsetof(wint_SmoothSpecParamType, Mode) == 0, "Mode at 0");
static_assert(offsetof(wint_SmoothSpecParamType, Points) == 4, "Points at 4");
static_assert(sizeof(wint_DiffSpecParamType) == 6, "derivative settings are 6 bytes");
static_assert(offsetof(wint_DiffSpecParamType, Mode) == 0, "Mode at 0");
static_assert(offsetof(wint_DiffSpecParamType, Points) == 4, "Points at 4");
#endif

/* Smoothing or median by the stored settings. */
TAVRIN_API void dl_SmoothSpec(void);
/* The settings copied whole; Set makes Points odd, limits it to 3 to 25 and writes it back. */
TAVRIN_API void dl_GetSmoothSpecParam(wint_SmoothSpecParamType* param);
TAVRIN_API void dl_SetSmoothSpecParam(wint_SmoothSpecParamType* param);
/* Derivative by the stored settings. A spectrum of fewer than 32 points cannot be
 * differentiated; its copy stays in the list. */
TAVRIN_API void dl_DiffSpec(void);
/* The same with Points limited to 5 to 25. */
TAVRIN_API void dl_GetDiffSpecParam(wint_DiffSpecParamType* param);
TAVRIN_API void dl_SetDiffSpecParam(wint_DiffSpecParamType* param);
/* Arithmetic on the X or the Y values: 1 add, 2 multiply, 3 divide by a constant the user
 * enters; 4 natural logarithm, 5 negate, 6 absolute value, 7 reciprocal, 8 sort by these
 * values. */
TAVRIN_API void dl_SpecMathX(uint16_t op);
TAVRIN_API void dl_SpecMathY(uint16_t op);
/* Between the current spectrum and one the user chooses, point by point: 1 add, 2 subtract,
 * 3 absolute difference, 4 product, 5 divide, 6 average. */
TAVRIN_API void dl_DoubleSpecMath(uint16_t op);
/* Subtracts the Y value at X = 0 (or the mean of Y when 0 is outside the ramp); the result is
 * sorted by X. */
TAVRIN_API void dl_RemoveDCBias(void);
/* Splits a ramp that goes out and back at its turning point into two spectra. */
TAVRIN_API void dl_SeparateRampDirections(void);

/* The tools on the spectrum plot; each needs a current spectrum ("No spectra in memory").
 * Polynomial fit: asks for degrees (1 to 19) until Cancel, each fit drawn over the plot with
 * its standard deviation, correlation and coefficients; no item is made. */
TAVRIN_API void dl_FitPoly2Spec(void);
/* Zoom: the user draws a box over the plot; the points inside (at least 16) become a new
 * spectrum of the same length. */
TAVRIN_API void dl_ZoomSpec(void);
/* The measuring cursor over the plot; a non-zero flag offers the switch of plot. */
TAVRIN_API void dl_SpecMeasure(uint8_t flag);
/* Opens a frame store for a group plot. */
TAVRIN_API void dl_GroupSpecPlot(void);
/* The magnitude spectrum under window 1 none, 2 cosine taper, 3 Parzen, 4 Hamming, 5 cosine
 * arch; the number of points must be a power of two of at least 4. No item is made. */
TAVRIN_API void dl_ShowSpecFFT(uint16_t window);
/* The current image with the places of its attached spectra, and the first of them plotted;
 * nothing for an item without attached spectra. */
TAVRIN_API void dl_ShowSPSSpectrum(void);

#endif
