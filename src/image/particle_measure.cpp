#include "image/particle_measure.h"
#include "host/errors.h"
#include "store/memory.h"

#include <algorithm>
#include <cmath>

namespace {

// A view of the grid with its edge tests.
struct Grid {
    const uint16_t* codes;
    int nx, ny;
    uint16_t At(int x, int y) const { return codes[static_cast<size_t>(y) * static_cast<size_t>(nx) + x]; }
    bool Inside(int x, int y) const { return x >= 0 && y >= 0 && x < nx && y < ny; }
};

constexpr int kStepX[8] = {1, -1, 0, 0, 1, 1, -1, -1};   // the 4 neighbours first, then the corners
constexpr int kStepY[8] = {0, 0, 1, -1, 1, -1, 1, -1};

// Whether one of the first `count` neighbours (4 or 8) inside the grid holds a code for which
// `test` is true.
template <class Test>
bool AnyNeighbour(const Grid& g, int x, int y, int count, Test test)
{
    for (int k = 0; k < count; ++k) {
        const int nx = x + kStepX[k], ny = y + kStepY[k];
        if (g.Inside(nx, ny) && test(g.At(nx, ny))) return true;
    }
    return false;
}

// The step a qualifying pixel adds to a boundary walk of `count` neighbours.
double BoundaryStep(const Grid& g, int x, int y, uint16_t fill, int count, double dx, double dy, double diag)
{
    const auto counts = [&](int px, int py) {
        return g.Inside(px, py) && g.At(px, py) == fill &&
               AnyNeighbour(g, px, py, count, [](uint16_t c) { return c != kUnmeasuredCode; });
    };
    if (counts(x + 1, y)) return dx;
    if (counts(x, y + 1)) return dy;
    if (counts(x + 1, y + 1)) return diag;
    return 0.0;
}

bool Grow(ParticleStats* stats)
{
    const int capacity = stats->Capacity + kParticleGrowth;
    void* objects = erealloc(stats->Objects, static_cast<size_t>(capacity) * sizeof(ParticleObject));
    if (!objects) return false;
    stats->Objects = static_cast<ParticleObject*>(objects);
    void* order = erealloc(stats->Order, static_cast<size_t>(capacity) * sizeof(int32_t));
    if (!order) return false;
    stats->Order = static_cast<int32_t*>(order);
    stats->Capacity = capacity;
    return true;
}

void RestoreObjects(uint16_t* codes, size_t count)
{
    for (size_t i = 0; i < count; ++i)
        if (codes[i]) codes[i] = kObjectCode;
}

} // namespace

void FreeParticleStats(ParticleStats* stats)
{
    if (!stats) return;
    efree(stats->Objects);
    efree(stats->Order);
    *stats = ParticleStats{};
}

bool MeasureObject(uint16_t* codes, int nx, int ny, int x, int y, uint16_t fill, const MeasureFrame& frame,
                   FillStack* stack, ParticleObject* out)
{
    FillBox box;
    if (!FloodFill(codes, nx, ny, x, y, frame.connectivity, fill, &box, stack)) return false;
    const Grid g{codes, nx, ny};
    const double dx = frame.dx, dy = frame.dy, diag = std::hypot(dx, dy);
    uint32_t pixels = 0;
    double p4 = 0.0, p8 = 0.0;
    const auto notFill = [fill](uint16_t c) { return c != fill; };
    for (int py = box.y1; py <= box.y2; ++py) {
        const uint16_t* row = codes + static_cast<size_t>(py) * static_cast<size_t>(nx);
        for (int px = box.x1; px <= box.x2; ++px) {
            if (row[px] != fill) continue;
            ++pixels;
            const bool edge4 = AnyNeighbour(g, px, py, 4, notFill);
            const bool edge8 = edge4 || AnyNeighbour(g, px, py, 8, notFill);
            if (edge4) p4 += BoundaryStep(g, px, py, fill, 4, dx, dy, diag);
            if (edge8) p8 += BoundaryStep(g, px, py, fill, 8, dx, dy, diag);
        }
    }
    out->Pixels = pixels;
    out->Area = pixels * dx * dy;
    out->Perimeter = std::sqrt(p4 * p8);
    out->X1 = static_cast<int16_t>(box.x1);
    out->Y1 = static_cast<int16_t>(box.y1);
    out->X2 = static_cast<int16_t>(box.x2);
    out->Y2 = static_cast<int16_t>(box.y2);
    return true;
}

bool MeasureAllObjects(uint16_t* codes, int nx, int ny, const MeasureFrame& frame, ParticleStats* stats)
{
    FreeParticleStats(stats);
    if (!codes || nx <= 0 || ny <= 0 || nx >= kFillLimit || ny >= kFillLimit) {
        ProgramError("MeasureAllObjects");
        return false;
    }
    const size_t count = static_cast<size_t>(nx) * static_cast<size_t>(ny);
    for (size_t i = 0; i < count; ++i)
        if (codes[i]) codes[i] = kUnmeasuredCode;
    FillStack stack;
    bool ok = true;
    for (int y = 0; ok && y < ny; ++y) {
        const uint16_t* row = codes + static_cast<size_t>(y) * static_cast<size_t>(nx);
        for (int x = 0; x < nx; ++x) {
            if (row[x] != kUnmeasuredCode) continue;
            if (stats->ObjectCount == stats->Capacity && !Grow(stats)) {
                Error(ERR_NO_MEMORY);
                ok = false;
                break;
            }
            ParticleObject object;
            if (!MeasureObject(codes, nx, ny, x, y, kObjectCode, frame, &stack, &object)) {
                ok = false;
                break;
            }
            stats->Objects[stats->ObjectCount] = object;
            stats->Order[stats->ObjectCount] = stats->ObjectCount;
            ++stats->ObjectCount;
        }
    }
    FreeFillStack(&stack);
    RestoreObjects(codes, count);
    if (!ok) FreeParticleStats(stats);
    return ok;
}

double ParticleShape(const ParticleObject& object)
{
    if (object.Perimeter <= 0.0) return 0.0;
    return object.Area / (object.Perimeter * object.Perimeter);
}

double ParticleSortValue(const ParticleObject& object, uint32_t key)
{
    switch (key) {
    case kSortArea: return object.Area;
    case kSortPerimeter: return object.Perimeter;
    case kSortShape: return ParticleShape(object);
    default: return 0.0;
    }
}

void SortParticles(ParticleStats* stats, uint32_t key)
{
    if (!stats || stats->ObjectCount <= 0) return;
    int32_t* first = stats->Order;
    int32_t* last = stats->Order + stats->ObjectCount;
    if (key != kSortArea && key != kSortPerimeter && key != kSortShape) {
        std::sort(first, last);
        return;
    }
    const ParticleObject* objects = stats->Objects;
    // A stable sort gives the order of an insertion sort: ascending keys, ties as they were.
    std::stable_sort(first, last, [objects, key](int32_t a, int32_t b) {
        return ParticleSortValue(objects[a], key) < ParticleSortValue(objects[b], key);
    });
}
