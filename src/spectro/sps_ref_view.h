// The image of attached spectra with the places where they were taken, and the plot of the one
// chosen.
#pragma once

#include <cstdint>

#include "tavrin/image_header.h"

// The spectra of the host's list: the chosen one and which are checked (null: none).
struct SPSRefListType {
    ImageHeaderType** spectra;
    int count;
    int selected;
    const uint8_t* checked;
};

// With `ini` set and `fin` clear: the frame store cleared, the current image shown in it, and
// its store, region and size noted. With both clear: the image shown again at the origin, the
// chosen spectrum plotted (its region holds no item) and the places of the spectra marked over
// the image. All of it with display size 256 and plot size 512 by 256, restored at the end.
void ShowSPSRefSpec(const SPSRefListType& list, int ini, int fin, int single);
// Nothing without a current image with attached spectra; else the start of ShowSPSRefSpec over
// its chain, then the first spectrum of the chain plotted with the marks.
void ShowSPSSpectrum();
// The index of v in a rising list: the first equal value; else the nearer of the two values
// that enclose it; else the end of the list nearer to v. -1 for an empty list.
int NearestIndex(const float* values, int n, float v);
// The frame position of the mark of the place p (0 to size - 1) in a region of `extent` pixels
// from `origin`: (1024 / size) * p in integer steps, scaled from 1024 to the region.
int SPSMarkPosition(int p, int size, int origin, int extent);
