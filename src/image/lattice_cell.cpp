// The geometry of the lattice average: the cell box, the span table of the cell outline and
// the range of lattice indices.
#include "image/lattice.h"

#include <algorithm>

namespace {
// A zero determinant (the points on one line through 0) stands in as this.
constexpr int64_t kFlatDeterminant = 100000;
// The index range is widened by this on each side.
constexpr int64_t kRangeMargin = 10;
} // namespace

LatticeCell MakeLatticeCell(RegionPoint origin, RegionPoint endA, RegionPoint endB)
{
    LatticeCell c;
    c.origin = origin;
    c.a = {endA.x - origin.x, endA.y - origin.y};
    c.b = {endB.x - origin.x, endB.y - origin.y};
    c.minX = std::min({0, c.a.x, c.b.x, c.a.x + c.b.x});
    c.maxX = std::max({0, c.a.x, c.b.x, c.a.x + c.b.x});
    c.minY = std::min({0, c.a.y, c.b.y, c.a.y + c.b.y});
    c.maxY = std::max({0, c.a.y, c.b.y, c.a.y + c.b.y});
    c.width = c.maxX - c.minX + 1;
    c.height = c.maxY - c.minY + 1;
    return c;
}

void FillSpanTable(const LatticeCell& cell, SpanRow* table)
{
    for (int r = 0; r < kLatticeRows; ++r) std::fill(table[r], table[r] + 4, kSpanMarker);
    const RegionPoint corner[4] = {
        {-cell.minX, -cell.minY},
        {cell.a.x - cell.minX, cell.a.y - cell.minY},
        {cell.a.x + cell.b.x - cell.minX, cell.a.y + cell.b.y - cell.minY},
        {cell.b.x - cell.minX, cell.b.y - cell.minY},
    };
    const int rows = std::min(cell.height, kLatticeRows);
    for (int r = 0; r < rows; ++r) {
        int64_t crossing[4];
        int n = 0;
        for (int e = 0; e < 4; ++e) {
            const RegionPoint p = corner[e], q = corner[(e + 1) % 4];
            if (p.y == q.y || r < std::min(p.y, q.y) || r > std::max(p.y, q.y)) continue;
            // Kept in ascending order as they come (at most four).
            int64_t x = p.x + static_cast<int64_t>(r - p.y) * (q.x - p.x) / (q.y - p.y);
            int k = n++;
            for (; k > 0 && crossing[k - 1] > x; --k) crossing[k] = crossing[k - 1];
            crossing[k] = x;
        }
        for (int k = 0; k < n; ++k) table[r][k] = static_cast<int16_t>(crossing[k]);
    }
}

bool SpanColumns(const SpanRow& row, int* first, int* last)
{
    if (row[0] == kSpanMarker) return false;
    *first = row[0];
    if (row[1] == kSpanMarker) *last = row[0];
    else if (row[2] == kSpanMarker) *last = row[1];
    else if (row[3] == kSpanMarker) *last = row[2];
    else return false;
    return *last >= *first;
}

LatticeRange MakeLatticeRange(RegionPoint endA, RegionPoint endB, int w, int h)
{
    LatticeRange range;
    int64_t det = static_cast<int64_t>(endA.x) * endB.y - static_cast<int64_t>(endA.y) * endB.x;
    if (det == 0) det = kFlatDeterminant;
    range.det = det;
    const int64_t corners[4][2] = {{0, 0}, {w, 0}, {0, h}, {w, h}};
    for (int k = 0; k < 4; ++k) {
        const int64_t x = corners[k][0], y = corners[k][1];
        const int64_t i = (endB.y * x - endB.x * y) / det;
        const int64_t j = (endA.x * y - endA.y * x) / det;
        range.iLow = k ? std::min(range.iLow, i) : i;
        range.iHigh = k ? std::max(range.iHigh, i) : i;
        range.jLow = k ? std::min(range.jLow, j) : j;
        range.jHigh = k ? std::max(range.jHigh, j) : j;
    }
    range.iLow -= kRangeMargin;
    range.iHigh += kRangeMargin;
    range.jLow -= kRangeMargin;
    range.jHigh += kRangeMargin;
    return range;
}
