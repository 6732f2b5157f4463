// The relief mode: the table from the slopes around a point to its brightness under a light.
#pragma once

#include <cstdint>

// Entries of the table: 32 steps of the slope to the left by 32 steps of the slope above.
constexpr int kShadingEntries = 1024;
constexpr int kShadingSlopeSteps = 32;
constexpr int kShadingSlopeCentre = 16;

// Entry i, with a = i mod 32 - 16 and b = i / 32 - 16 the level differences to the left and
// above (each limited to -16 to 15), is the colour index of a point lit from the light
// direction (polar and azimuth angle in degrees): d = a lx + b ly + lz with lx = sin(polar)
// cos(azimuth), ly = sin(polar) sin(azimuth), lz = cos(polar); the diffuse part
// d / (a^2 + 1 + b^2) * diffuse * d where d is above 0, plus the ambient part, at most 255, then
// halved onto the ramp of the palette.
void BuildShadingTable(uint8_t table[kShadingEntries], float polarDegrees, float azimuthDegrees, int ambient,
                       int diffuse);
