// The state that the files of the particle module share.
#pragma once

#include <cstdint>

#include "image/particle_measure.h"
#include "tavrin/dl_particles.h"
#include "tavrin/image_header.h"

// An item held across entry points: the pointer answers only while the item with that DataId
// is still on the data list.
struct HeldItem {
    ImageHeaderType* item = nullptr;
    uint32_t id = 0;
    ImageHeaderType* Get() const;
    void Set(ImageHeaderType* to);
};

struct ParticleModule {
    HeldItem source;
    HeldItem bilevel;
    int lowMade = -1, highMade = -1;   // the band the bilevel item was made with
    int connectivity = 4;
    int selected = -1;                 // index in detection order
    int bilevelOK = -1;                // the last bilevel test and the DataId it was for
    int64_t bilevelId = -1;
    ParticleStats stats;
    bool started = false;              // the statistics page is open
    int pointerDepth = 0;              // re-entry guard of the pointer callback
    wint_ParticleParamType param;
    wint_ParticleSttsParamType stts;
};
ParticleModule& Particles();

// Whether an image of some item is shown in the current frame store.
bool AnyImageOnDisplay();
// The grid point (x, y) of a 0 to 255 square as a pixel of an image of nx by ny; points
// outside the square are taken at its edge.
int ViewToPixel(int v, int n);
// A pixel position as a point of the 0 to 255 square (0 for an image of one pixel a side).
int PixelToView(int p, int n);
// Fills SelectedRect and SelectedColour for the selected object, or clears them.
void MarkSelection();
// The five summary lines of the statistics page from the current list; unchanged when empty.
void ComputeSummaryLines();
