// Opening and saving the frequency mask from the mask dialog.
#pragma once

// Checks an item (33536), complex data (33538), no mask (33540); makes a mask of the item's
// size and loads the file into it; the mask is erased again when the file cannot be read.
void FFTWinOpen(const char* path);
// Saves the mask, else 33541.
void FFTWinSave(const char* path);
