// The commands of the frequency-domain dialog: transforms, the complex data, and the mask.
// Each checks what it needs in order and reports by number.
#pragma once

#include "tavrin/dl_fft.h"

void ForwardFFTCommand();
// Applies an existing mask first, transforms back, and erases the mask after; silent without
// an item with complex data.
void InverseFFTCommand();
void EnhanceFFTContrastCommand();
// Checks an item (33536), complex data (33538), powers of two (33542); asks "Erase complex FFT
// data ?  " (default no); on yes erases the data and then asks about the mask.
void CloseFFTData();
// Redraws an item with complex data, else 33538.
void DisplayFFTImage();
void GetFFTWinParam(wint_FFTWinParamType* param);
// Stores the record (MaskZoom at least 1); redraws the overlay when MaskZoom changed and a
// mask exists.
void SetFFTWinParam(const wint_FFTWinParamType* param);
// Item with complex data (33538), no mask (33540): a mask of the item's size, then Add.
void FFTWinNew();
// Adds by BandMode: 1 temporal band, 2 spatial band, 3 circles by the cursor; without a mask
// it acts as New.
void FFTWinAdd();
// Asks "Erase Mask ?  " (default no) when a mask exists; yes erases it.
void FFTWinClose();
// Status "Apply FFT Mask": the mask applied to the current item, which is redrawn.
void FFTWinApply();

// Checks of opening a mask: an item (33536), complex data (33538), no mask (33540). Answers
// true when a mask may be made for the current item.
bool FFTWinOpenChecks();

void ResetFFTState();
