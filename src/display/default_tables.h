// The eight built-in colour tables and the palette layout they share.
//
// Index 0 to 32: fixed drawing colours; 33 and 34: two settable colours; 35 to 162: the
// 128-step image ramp (image level v shows as 35 + v / 2); 163 to 194: a ramp towards white;
// 195 to 226: a ramp towards red; 227 to 255: black.
#pragma once

#include <cstdint>

constexpr int kPaletteSize = 256;
constexpr int kFixedColours = 33;
constexpr int kRampFirst = 35;
constexpr int kRampSteps = 128;
constexpr int kRampLast = kRampFirst + kRampSteps - 1;   // 162
constexpr int kDefaultTableCount = 8;

// Writes built-in table `number` (0 to 7) into three planes of 256 entries, each 0 to 255.
void BuildDefaultColourTable(int number, uint16_t red[256], uint16_t green[256], uint16_t blue[256]);
// The same as bytes.
void BuildDefaultColourTableBytes(int number, uint8_t red[256], uint8_t green[256], uint8_t blue[256]);
// The fixed drawing colour of index 0 to 32 as red, green, blue.
void FixedColour(int index, uint8_t* red, uint8_t* green, uint8_t* blue);
