// The colour table in force: the one that the palette of the frame stores shows and that an
// 8-bit image file carries as its palette.
#pragma once

#include <cstdint>

// The three planes (0 to 255 each) of the colour table selected now.
void SelectedColourTable(uint16_t red[256], uint16_t green[256], uint16_t blue[256]);
