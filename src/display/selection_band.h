// The rubber band of a point selection: lines straight in the pixel layer of the frame store,
// in colour index 22, with the pixels under them kept in the selection's save buffer (four
// strips of 768 bytes, one a line; a circle uses the whole buffer) so that the band can be
// taken away again without a trace.
#pragma once

#include <cstdint>

constexpr uint8_t kBandColour = 22;
constexpr int kBandStripBytes = 768;
constexpr int kBandCircleLimit = 3070;

// Modes of ShowSelectedRegion.
constexpr int kBandErase = 1;     // take away what is shown
constexpr int kBandReplace = 2;   // take it away and show the shape of these points

// The shape of `n` points (frame pixels, from the corner of the selection bounds) by region
// type: 1 a line from the last point but one to the last, 2 a rectangle with corners at points
// 0 and 1, 3 a parallelogram of points 0, 1, 2 (fourth corner p0 + p2 - p1), 4 a lattice cell
// (edges p0 p1 and p0 p2, fourth corner p1 + p2 - p0; only the first line when p2 is p1), 5 a
// triangle, 6 a circle about point 0 through point 1. Types 3, 4 and 5 show one line between
// the last two points while only two are set. Only pixels inside the selection bounds change.
void ShowSelectedRegion(const int16_t* xs, const int16_t* ys, int n, int regionType, uint8_t* buffer, int mode);
