// Span flood fill over a grid of 16-bit codes, and the bilevel test of a grid.
//
// The fill replaces the connected region of the seed's code by a new code. Runs of the seed
// code are found by walking along a row while the code equals the seed code inside the grid;
// each run is filled whole, and the runs it touches on the rows above and below are pushed
// once each, by their right end, onto a stack of (x, y) pairs. With connectivity 8 the runs
// that touch a span only at a corner (one column beyond either end) are pushed as well.
//
// The stack is a block of u16 pairs that grows by 30 pairs at a time. A caller that fills
// many regions in a row (the object measurement) hands in one stack for all of them and frees
// it at the end; otherwise the fill takes and frees its own.
#pragma once

#include <cstddef>
#include <cstdint>

// Grids of this many columns or rows and more cannot be filled: the stack holds u16 positions.
constexpr int kFillLimit = 65536;

// The bounding box of a filled region, inclusive.
struct FillBox {
    int x1, y1, x2, y2;
};

struct FillStack {
    uint16_t* pairs = nullptr;   // x, y, x, y ...
    size_t count = 0;            // pairs held
    size_t capacity = 0;         // pairs room
};
void FreeFillStack(FillStack* stack);

// Fills the region of (x, y) with `newCode`. `connectivity` is 4 or 8 (any other value counts
// as 4). `box`, when given, receives the bounding box of the filled pixels (the seed alone
// when the seed already has the new code, in which case nothing is done). A seed outside the
// grid, or a grid of no size or beyond kFillLimit, fills nothing and answers true with an
// empty box (x1 > x2). A failed growth of the stack reports 32769 and answers false; the
// region is then partly filled, so callers that must not change their data on failure fill a
// private copy.
bool FloodFill(uint16_t* codes, int nx, int ny, int x, int y, int connectivity, uint16_t newCode, FillBox* box,
               FillStack* stack = nullptr);

// Whether every code of the grid is 0 or 65535, looked at row by row from the top, each row
// from its right end; the first other code ends the test.
bool CodesAreBilevel(const uint16_t* codes, int nx, int ny);
