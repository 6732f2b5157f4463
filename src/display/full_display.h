// Showing the current item, and the full display: the current image alone at 400 by 400 with
// everything a report needs - a colour bar, a ruler of physical values, a text block with the
// image's parameters and the histogram of its levels.
//
// Layout of the frame in the full display:
//   0 to 399        the image, resampled to 400 by 400
//   405 to 424      the colour bar, level 255 at the top
//   427 to 456      the histogram of levels, the same rows as the bar
//   457 on          the ruler: ticks and labels of physical values
//   below row 400   the title and parameters (from x 5) and the general text (from x 234)
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "tavrin/image_header.h"

constexpr int kFullDisplaySize = 400;
constexpr int kColourBarLeft = 405;
constexpr int kColourBarWidth = 20;
constexpr int kHistogramLeft = 427;
constexpr int kHistogramWidth = 30;
constexpr int kRulerLeft = 457;

// The level thresholds of a live contrast adjustment (palette indices): colour bar rows whose
// index lies outside them are marked. Idle values 0 and 255.
extern int16_t ThresholdLow;
extern int16_t ThresholdHigh;

// Shows the current item in the way that fits it, when a frame store is current, its window
// shows the whole frame width, and an item is current: an image as the full display when
// FullDisplayOn is 1 and it has neither FFT nor mapping data (and the full display is not
// suppressed), else at the placement cursor; a spectrum, profile or histogram as a plot.
void DisplayData();
// DisplayData, then "Display time = %d\n" with the milliseconds it took to the log.
void DisplayDataTimed();
// The full display in place of the plain image, or the other way round: the opposite of
// FullDisplayOn.
void ToggleFullDisplay();

// The full display of the current image; with `withText` the text block too. Answers 0, or 1
// when nothing was shown (no image, no frame store, or no memory for the resampled copy, which
// reports "Not enough memory" and leaves the frame cleared).
int FullDisplay(int withText);

// One tick of the ruler: its frame row, length (2, 4 or 6) and label ("" for none).
struct RulerTick {
    int row;
    int length;
    std::string label;
};
// The ticks of the ruler of an image, top of the list first drawn.
std::vector<RulerTick> ValueRuler(const ImageHeaderType* image);

// The colour bar index of bar row r (0 at the top) for an image: the level (399 - r) * 255 /
// 399 through ImageLUT onto the ramp, or for a colour image ImageLUT[(399 - r) * 127 / 399 +
// 128] + 35.
uint8_t ColourBarIndex(const ImageHeaderType* image, int row);

void ResetFullDisplayState();
