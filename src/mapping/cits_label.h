// The labels of the frames of a sheet: the sweep value of the image (or the mean of the pair of
// a difference frame), "Topography" or "Threshold" for the topography frame.
#pragma once

#include <cstddef>
#include <cstdint>

#include "mapping/cits_display.h"
#include "platform/canvas.h"

struct CITSLabelStyle {
    uint32_t align;         // centred both ways, opaque or transparent background
    CITSSweepScale scale;   // unit scale of the set
};

// The label attributes of the sheet (colour 18, text colour 6) and the scale of the set.
CITSLabelStyle BeginCITSLabels(const ImageHeaderType* image, uint16_t flags);
void EndCITSLabels(const CITSLabelStyle& style);
// The text of frame (id, id2); false when the frame has no label.
bool CITSFrameLabelText(const CITSLabelStyle& style, const ImageHeaderType* image, int id, int id2, int d64_128,
                        char* out, size_t size);
// The label centred at (x + S / 2, y + 8).
void DrawCITSFrameLabel(const CITSLabelStyle& style, const ImageHeaderType* image, int x, int y, int S, int id, int id2,
                        int d64_128);
// A text in the label attributes centred at (x, y), clipped to the frame rectangle.
void DrawCITSLabelText(const CITSLabelStyle& style, int x, int y, const RECT& clip, const char* text);
