/* Tavrin Processing: the filter commands of the image menu - 3x3 and 5x5 kernels, edge
 * enhancement, the derivative at an angle and the 5- and 9-point medians, and the kernel tables.
 *
 * Each command makes a new item behind the current image from it and makes that current; the
 * source stays. Kernels are tables of signed 8-bit values, row-major, applied as a correlation
 * (not flipped). Without an image every command reports 33536 "No images in memory". */
#ifndef TAVRIN_DL_FILTERS_H
#define TAVRIN_DL_FILTERS_H

#include "tavrin/types.h"

/* 3x3 kernel 1 to 7: low pass, medium pass, high pass, horizontal smooth, vertical smooth,
 * user 1, user 2. */
TAVRIN_API void dl_Convolve3x3(int16_t index);
/* 5x5 kernel 1 to 7, in the same order. */
TAVRIN_API void dl_Convolve5x5(int16_t index);
/* Edge kernel 1 to 5: vertical, horizontal, diagonal (/), diagonal (\), Laplace. */
TAVRIN_API void dl_EdgeEnhance3x3(int16_t index);

/* Copy a kernel out, sign extended: nine values (twenty-five for 5x5). A bad index is a
 * program error and leaves the values as they were. */
TAVRIN_API void dl_Get3x3KernelParam(int16_t index, int16_t* values);
TAVRIN_API void dl_Get5x5KernelParam(int16_t index, int16_t* values);
TAVRIN_API void dl_GetEE3x3KernelParam(int16_t index, int16_t* values);
/* Store the low byte of each value in user kernel 6 or 7 (200 is stored as -56). Another index
 * is a program error and stores nothing. The edge kernels cannot be changed. */
TAVRIN_API void dl_Set3x3KernelParam(int16_t index, const int16_t* values);
TAVRIN_API void dl_Set5x5KernelParam(int16_t index, const int16_t* values);

/* Prompts for an angle in degrees and takes the derivative of the image in that direction;
 * negative slopes give 0. */
TAVRIN_API void dl_DifferentiateImage(void);
/* Median of the cross of five points, and of the 3x3 neighbourhood. */
TAVRIN_API void dl_ImageMedianFilter5(void);
TAVRIN_API void dl_ImageMedianFilter9(void);

#endif
