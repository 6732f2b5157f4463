// Commands on an image's ImageLUT: the live contrast, brightness and gamma sliders, the
// threshold sliders, the fixed table operations, linearising, equalisation, the transform of
// the codes through the table, and the removal of the colour ramp of a colour image. Each
// command makes a new item behind the current one (the sliders: a working copy while they
// run) and notes itself in its history.
#pragma once

#include <cstdint>

#include "tavrin/image_header.h"

// A new item directly behind `source` with its header and a copy of its codes; not current.
// Null after the report (the list as it was).
ImageHeaderType* CopyImageItem(const ImageHeaderType* source);

// Contrast, brightness and gamma: opens the three sliders of id 500.
void AdjustLUT();
// One move of those sliders: state 0 previews through the palette, 1 accepts, 2 cancels.
// The first call of a dialogue puts the current item aside and makes a copy with an identity
// table current. Answers 0, or 1 when the dialogue could not start.
int AdjustContrast(float brightness, float contrast, float gamma, int state);

// Thresholds: opens the two sliders of id 201 over the physical range of the image.
void SetWindow();
// One move of those sliders, in levels (0 to 255).
int AdjustThresholds(int low, int high, int state);
// The level of a physical slider value of `image`: back through the calibration, then
// (value - Zlo) * 65535 / (Zhi - Zlo) / 256, limited to 0 to 255 (0 when Zhi equals Zlo).
int ThresholdLevel(const ImageHeaderType* image, float value);

// True while a slider dialogue of either kind runs.
bool LutDialogueRunning();

void MathLUT(int op);
void LineariseImageLUT();
// Answers 1, or 0 when nothing was made.
int HistEqualise();
// The new item, or null.
ImageHeaderType* TransformThroughLUT();
// The code of `code` through `table`: 0 gives entry 0 and codes from 65280 entry 255, both as
// they stand; any other the table interpolated between its two levels,
// table[l] * (255 - f) + table[l + 1] * f with l = code >> 8, f = code & 255.
uint16_t CodeThroughTable(const uint8_t table[256], uint16_t code);
ImageHeaderType* RemoveLUTColours();
// The hand-over to the selection of two images: process type 3, the frame store recorded,
// the host's marker panel asked for.
void FixImageZScale();
// The frame store that FixImageZScale recorded (-1: none).
extern int16_t FixZScaleVFS;

void ResetContrastState();
