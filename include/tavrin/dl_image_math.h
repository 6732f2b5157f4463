/* Tavrin Processing: arithmetic on the codes of images and the stretches of the code range.
 *
 * Each command makes a new item behind the current image with the result, notes its process
 * code and logs itself; only a missing image is refused (33536 "No images in memory"). */
#ifndef TAVRIN_DL_IMAGE_MATH_H
#define TAVRIN_DL_IMAGE_MATH_H

#include "tavrin/types.h"

/* op 1 invert (code 23), 2 multiply by a real constant (24), 3 divide (77; 0 divides as 1),
 * 4 AND, 5 OR, 6 XOR with an integer constant (25 to 27), 7 add (100), 8 subtract (101); a
 * negative constant of 7 or 8 does the other of the two. 0 or below does nothing. */
TAVRIN_API void dl_SingleImageMath(int16_t op);
/* With a second image of the same size and DataSource chosen by the user: 1 (a + b) / 2,
 * 2 (a + 65535 - b) / 2, 3 |a - b|, 4 a * b / 65535, 5 a / b (b = 0 gives a), 6 AND, 7 OR,
 * 8 XOR, 9 minimum, 10 maximum (codes 30 to 37, 98, 99). Zlo and Zhi are kept. */
TAVRIN_API void dl_DoubleImageMath(int16_t op);
/* Stretches the codes between the extremes to 0 to 65535 (code 19). */
TAVRIN_API void dl_NormaliseImage(void);
/* Shows the level histogram against the s.d. from the mean, asks for the range in s.d. to
 * keep, and stretches that range over the levels (code 83). */
TAVRIN_API void dl_NormaliseSD(void);

#endif
