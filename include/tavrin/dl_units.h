/* Tavrin Processing: number texts, float comparison and the square unit suffix. */
#ifndef TAVRIN_DL_UNITS_H
#define TAVRIN_DL_UNITS_H

#include "tavrin/types.h"

/* The suffix of a square unit in the locale in use: "^2" by default; the superscript two of
 * the code page where it has one (0xB2 in the Western European classes and English, 0xA9 0xF7
 * in Korean). */
TAVRIN_API const char* dl_AreaUnits(void);

/* 1 when both are 0, or when neither is 0 and |(a - b) / a| is below 100 times the unit
 * round-off of the type; otherwise 0. */
TAVRIN_API BOOL32 dl_AreDoublesEqual(double a, double b);
TAVRIN_API BOOL32 dl_AreFloatsEqual(float a, float b);

/* Number texts. The answer lives in a buffer of the library that the next call of the same
 * function overwrites. */
/* Digits of the magnitude with a "," behind every third from the right, "-" for a negative. */
TAVRIN_API const char* dl_Int2Str(int32_t value);
/* The digits follow the magnitude: "0.0000" for 0, "%.5f" to "%.1f" from 0.0001 to 10000,
 * grouped integer digits up to 1e9, "%.3e" otherwise. */
TAVRIN_API const char* dl_Double2Str(double value);
/* Every "," is removed, then the text is read as a number; null reads as 0. */
TAVRIN_API int32_t dl_Str2Int(const char* text);
TAVRIN_API double dl_Str2Double(const char* text);

#endif
