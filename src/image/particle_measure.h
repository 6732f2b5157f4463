// Objects of a bilevel grid and their measures.
//
// A bilevel grid holds 0 (background) and 65535 (object). While objects are measured, the
// pixels of objects not yet measured hold 1. Objects are found top to bottom, then left to
// right of the first pixel met (detection order), each filled with 65535 by FloodFill of the
// connectivity, and measured over its bounding box:
//   - Pixels: every pixel of the fill code in the box, rows and columns inclusive. Objects
//     measured before hold the same code, so one lying inside the box of a later object is
//     counted with it as well: that is how the numbers are defined.
//   - two boundary walks P4 and P8: a counted pixel qualifies for P4 when one of its 4
//     neighbours inside the grid is not the fill code (for P8, one of its 8 neighbours);
//     neighbours outside the grid do not qualify a pixel. A qualifying pixel adds, at the
//     first hit in this order: dx when its right neighbour is of the fill code, dy for the
//     lower neighbour, hypot(dx, dy) for the lower right one. A neighbour counts only if one
//     of its own 4 (for P8: 8) neighbours inside the grid holds a code other than 1.
//   - Perimeter = sqrt(P4 * P8), Area = Pixels * dx * dy.
#pragma once

#include <cstddef>
#include <cstdint>

#include "image/flood_fill.h"

// Codes of a bilevel grid.
constexpr uint16_t kObjectCode = 65535;
constexpr uint16_t kUnmeasuredCode = 1;

// The measures of one object.
struct ParticleObject {
    double Area;        // Pixels * dx * dy
    uint32_t Pixels;
    double Perimeter;   // sqrt(P4 * P8)
    int16_t X1, Y1, X2, Y2;   // bounding box, inclusive
};

// The statistics of all objects, in detection order, and Order, the display order as indices
// into Objects. Capacity grows by kParticleGrowth entries.
struct ParticleStats {
    ParticleObject* Objects = nullptr;
    int32_t* Order = nullptr;
    int ObjectCount = 0;
    int Capacity = 0;
};
constexpr int kParticleGrowth = 25;
void FreeParticleStats(ParticleStats* stats);

// The size of a pixel and the connectivity that objects are measured with.
struct MeasureFrame {
    double dx, dy;
    int connectivity;
};

// Fills the object of (x, y) with `fill` and measures it. False when the fill ran out of
// memory (reported there).
bool MeasureObject(uint16_t* codes, int nx, int ny, int x, int y, uint16_t fill, const MeasureFrame& frame,
                   FillStack* stack, ParticleObject* out);

// Measures every object of a bilevel grid into `stats` (freed first). All non-zero codes
// become 1, each 1 in scan order starts an object measured with fill 65535, and at the end all
// object pixels are 65535 again, so the grid leaves as it came. There is no limit on the
// count. On a failed allocation the statistics are freed, the count is 0, 32769 is reported,
// and false is answered. Grids of kFillLimit columns or rows or more are refused (false,
// program error "MeasureAllObjects").
bool MeasureAllObjects(uint16_t* codes, int nx, int ny, const MeasureFrame& frame, ParticleStats* stats);

// The shape value Area / Perimeter^2; an object with no perimeter (a single pixel, or one
// filling the whole grid) has shape 0, with no division.
double ParticleShape(const ParticleObject& object);

// Sort keys of the list.
enum ParticleSortKey : uint32_t { kSortNone = 1, kSortArea = 2, kSortPerimeter = 3, kSortShape = 4 };
// Sorts Order by ascending key; ties keep the order they had. kSortNone (and any unknown key)
// puts the list back into detection order.
void SortParticles(ParticleStats* stats, uint32_t key);
// The value of the key of an object.
double ParticleSortValue(const ParticleObject& object, uint32_t key);
