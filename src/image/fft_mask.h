// The frequency mask ("window"): one buffer of the module, not tied to any item, of nx by ny
// bytes in the centred order of the spectrum pixels; 0 stops, 255 passes. Made by frequency
// bands and by cursor circles (with the conjugate mirror of a real image), applied to the
// current spectrum and its complex data.
#pragma once

#include <cstdint>

#include "tavrin/dl_fft.h"
#include "tavrin/image_header.h"

// The mask dialog's record as the library keeps it (the defaults at start).
wint_FFTWinParamType& FFTWinParam();
void ResetFFTWinParam();

bool MaskExists();
int MaskWidth();
int MaskHeight();
uint8_t* MaskData();

// A new mask of nx by ny, all 0 (log name GetMaskMem). Sides outside 32 to 4096 report the
// program error "GerMaskMem %d %d" and make a 128 by 128 mask; an existing mask reports
// "GetMaskMem" and stays. Answers false when no new mask was made.
bool GetMaskMem(int nx, int ny);
void FreeMask();

// The Nyquist radius in spatial frequency of nx by ny pixels over sizeX by sizeY,
// hypot(nx / sizeX, ny / sizeY) / 2, rounded up to its printed digits.
double NyquistLimit(double sizeX, double sizeY, int nx, int ny);

// Fills the record's control states from the current item and mask, after limiting its band
// values to the Nyquist limits of the current item.
void FillFFTWinParam(wint_FFTWinParamType* param);

// A band of frequencies from `low` to `high` set to `value`: mode 1 temporal (sizes over the
// scan speeds), 2 spatial. Checks: an item with complex data (33538), a mask of its size
// (33539), scan speeds for mode 1 (32807), 0 <= low < high <= the limit (32782). Answers 0 on
// success.
int AddMaskBand(int mode, double low, double high, uint8_t value);

// A circle set to `value`, centre (cx, cy) and a rim point (rx, ry) in the zoomed display of
// `zoom`, with its conjugate mirror; writes nothing outside the mask. Checks a mask of the
// current item's size (33539). Answers 0 on success.
int AddMaskCircle(int cx, int cy, int rx, int ry, int zoom, uint8_t value);

// The continuation of the cursor selection: with bit 0 of `status` clear it does nothing; the
// passing value follows MaskPass. Answers 0 when the selection goes on, 1 when it ended.
int AddMaskCircleFromSelection(int status, int cx, int cy, int rx, int ry);

// Applies the mask to the current item (history code 63): each spectrum code becomes
// (code * M) >> 8 and each complex pair is multiplied by M. Checks: an item (33536), complex
// data (33538), a mask of its size (33539). Answers 0 on success.
int ApplyMask();

// The colour indices of the mask overlay of `image` at zoom Z, nx by ny, row 0 first: the
// central part of the spectrum drawn Z times larger, stopped pixels as (ImageLUT[level] >> 1)
// + 35, passing pixels inside a run as (ImageLUT[level] >> 1) + 83 (at most 162), the ends of
// a run colour 2. False when the mask is not of the image's size.
bool MaskOverlayIndices(const ImageHeaderType* image, int zoom, uint8_t* indices);

// Draws the overlay over the current item's place in the frame store.
void ShowMask(bool begin, bool finish, int zoom);
