// Lattice average: the image is cut into the cells of a lattice given by an origin and two
// cell vectors, the cells that lie wholly inside the image are added up, and the averaged
// cell, stretched to the display range, can be repeated over the whole image.
#pragma once

#include <cstdint>
#include <vector>

#include "tavrin/image_header.h"
#include "image/regions.h"

// Rows of the span table and the accumulator; a cell box must be smaller.
constexpr int kLatticeRows = 2048;
// An entry of the span table that holds no crossing (0x8080 in each byte).
constexpr int16_t kSpanMarker = -32640;
// Four column crossings a row.
using SpanRow = int16_t[4];

// The cell of vectors a = B - A and b = C - A and its bounding box over the corners 0, a, b,
// a + b.
struct LatticeCell {
    RegionPoint origin{}, a{}, b{};
    int minX = 0, minY = 0, maxX = 0, maxY = 0;
    int width = 0, height = 0;   // maxX - minX + 1, maxY - minY + 1
};
LatticeCell MakeLatticeCell(RegionPoint origin, RegionPoint endA, RegionPoint endB);

// Fills kLatticeRows rows with the marker and then, for each row r of the box, the columns at
// which the cell outline (corners 0, a, a + b, b, moved into the box) crosses it: every edge
// that is not horizontal and has min(y) <= r <= max(y) crosses at
// x = xa + (r - ya) * (xb - xa) / (yb - ya) (integer division); the crossings are sorted
// ascending and the first four kept.
void FillSpanTable(const LatticeCell& cell, SpanRow* table);

// The columns of a span row that belong to the cell: none when the first entry is the marker;
// e0 alone when e1 is; e0 to e1 when e2 is; e0 to e2 when e3 is; none when all four are set.
// Answers false for none.
bool SpanColumns(const SpanRow& row, int* first, int* last);

// The lattice indices that can reach the image: i and j of the image corners (0, 0), (W, 0),
// (0, H), (W, H) in index space, with det = B.x C.y - B.y C.x of the absolute points (100000
// when 0), i = (C.y X - C.x Y) / det, j = (B.x Y - B.y X) / det in integer division, widened by
// 10 on each side. The loops run from the low limit to the high one, the high one excluded.
struct LatticeRange {
    int64_t det = 0;
    int64_t iLow = 0, iHigh = 0, jLow = 0, jHigh = 0;
};
LatticeRange MakeLatticeRange(RegionPoint endA, RegionPoint endB, int w, int h);

// The averaged cell of the last lattice average: its box, the number of cells added, the
// extremes of the sums, and the display codes of the box, row by row.
struct LatticeResult {
    int minX = 0, minY = 0, width = 0, height = 0;
    int64_t cells = 0;
    int64_t min = 0, max = 0;
    std::vector<uint32_t> sums;     // width * height, before the stretch (0 outside the spans)
    std::vector<uint16_t> codes;    // width * height
};
const LatticeResult& LastLatticeResult();

// The points of the lattice selection (origin, end of a, end of b), image pixels.
extern int16_t LatticePointsX[3], LatticePointsY[3];

// First half: checks the image, shows it and starts the selection of three points.
void StartLatticeAverage();
// The continuation with the selection's status word (bit 2: the user aborted) on the points in
// LatticePointsX, LatticePointsY. Answers 1 when the cell was refused and the user is to choose
// again, else 0. History code 80.
int LatticeAverage(int status);

void ResetLatticeState();
