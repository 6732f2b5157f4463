/* Tavrin Processing: contrast, brightness, gamma and thresholds of an image's level table,
 * the fixed operations on the table, histogram equalisation, and the table and histogram as
 * plots.
 *
 * An image is shown through its ImageLUT, 256 levels onto the ramp of the palette. The
 * commands here change that table in a new item behind the current one and leave the codes
 * alone; only the threshold dialogue may, on request, transform the codes too.
 *
 * The two slider dialogues run in the host: dl_AdjustLUT opens three sliders of id 500
 * (brightness -128 to 128, contrast 0 to 256, gamma 0.1 to 10), dl_SetWindow two of id 201
 * (low and high threshold, in the physical unit of the image). The host reports each move
 * through dl_Horz_Scroll_Bar3_Callback or dl_Horz_Scroll_Bar2_Callback (dl_selection.h) with
 * a state word: 0 a move (only the palette changes), 1 accept, 2 cancel. While a dialogue
 * runs, a working copy of the image is the current item. */
#ifndef TAVRIN_DL_CONTRAST_H
#define TAVRIN_DL_CONTRAST_H

#include "tavrin/types.h"

/* Opens the contrast, brightness and gamma sliders (id 500). Accept: process code 81. */
TAVRIN_API void dl_AdjustLUT(void);
/* Opens the threshold sliders (id 201). Accept: a band table, process code 47, then the
 * question whether the codes are to be transformed too. */
TAVRIN_API void dl_SetWindow(void);
/* Equalises the histogram through the table (code 18); 1 when done, else 0. */
TAVRIN_API int32_t dl_HistEqualise(void);
/* Plots the level histogram and inserts it as a new histogram item "Histogram". */
TAVRIN_API void dl_DisplayHistogram(void);
/* Plots the table: x the data level, y the table entry. */
TAVRIN_API void dl_DisplayImageLUT(void);
/* A copy with the identity table, brightness 0, contrast 128, gamma 1 (code 85). */
TAVRIN_API void dl_LineariseImageLUT(void);
/* Table operations (codes 90 to 97): 1 invert, 2 reverse, 3 add, 4 AND, 5 OR, 6 XOR (a
 * constant 0 to 255 is asked for), 7 multiply, 8 divide (a real constant; 0 divides as
 * 1e-8). Every entry is limited to 0 to 255. */
TAVRIN_API void dl_MathLUT(int16_t op);
/* Hands the Z scale fix over to the selection of two images: the host's marker panel shows
 * the list of images to measure. */
TAVRIN_API void dl_FixImageZScale(void);

#endif
