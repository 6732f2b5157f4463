#include "image/flood_fill.h"
#include "host/errors.h"
#include "store/memory.h"

namespace {

constexpr size_t kStackGrowth = 30;

bool Push(FillStack* stack, int x, int y)
{
    if (stack->count == stack->capacity) {
        const size_t capacity = stack->capacity + kStackGrowth;
        void* grown = erealloc(stack->pairs, capacity * 2 * sizeof(uint16_t));
        if (!grown) {
            Error(ERR_NO_MEMORY);
            return false;
        }
        stack->pairs = static_cast<uint16_t*>(grown);
        stack->capacity = capacity;
    }
    stack->pairs[2 * stack->count] = static_cast<uint16_t>(x);
    stack->pairs[2 * stack->count + 1] = static_cast<uint16_t>(y);
    ++stack->count;
    return true;
}

// Pushes every run of `seed` codes met on row `y` between columns first and last (clipped to
// the grid), each once by its right end.
bool PushRuns(FillStack* stack, const uint16_t* row, int nx, int y, int first, int last, uint16_t seed)
{
    if (first < 0) first = 0;
    if (last > nx - 1) last = nx - 1;
    int i = first;
    while (i <= last) {
        if (row[i] != seed) {
            ++i;
            continue;
        }
        int end = i;
        while (end + 1 < nx && row[end + 1] == seed) ++end;
        if (!Push(stack, end, y)) return false;
        i = end + 2;
    }
    return true;
}

} // namespace

void FreeFillStack(FillStack* stack)
{
    if (!stack) return;
    efree(stack->pairs);
    *stack = FillStack{};
}

bool FloodFill(uint16_t* codes, int nx, int ny, int x, int y, int connectivity, uint16_t newCode, FillBox* box,
               FillStack* stack)
{
    FillBox found{x, y, x - 1, y - 1};
    if (!codes || nx <= 0 || ny <= 0 || nx >= kFillLimit || ny >= kFillLimit || x < 0 || y < 0 || x >= nx ||
        y >= ny) {
        if (box) *box = FillBox{0, 0, -1, -1};
        return true;
    }
    const size_t width = static_cast<size_t>(nx);
    const uint16_t seed = codes[static_cast<size_t>(y) * width + static_cast<size_t>(x)];
    if (seed == newCode) {
        if (box) *box = FillBox{x, y, x, y};
        return true;
    }
    FillStack own;
    FillStack* work = stack ? stack : &own;
    work->count = 0;
    const int reach = connectivity == 8 ? 1 : 0;
    bool ok = true;
    {
        const uint16_t* row = codes + static_cast<size_t>(y) * width;
        int end = x;
        while (end + 1 < nx && row[end + 1] == seed) ++end;
        ok = Push(work, end, y);
    }
    found = FillBox{x, y, x, y};
    while (ok && work->count > 0) {
        --work->count;
        const int right = work->pairs[2 * work->count];
        const int line = work->pairs[2 * work->count + 1];
        uint16_t* row = codes + static_cast<size_t>(line) * width;
        // A run pushed twice is filled the first time it is popped.
        if (row[right] != seed) continue;
        int left = right;
        while (left > 0 && row[left - 1] == seed) --left;
        if (left < found.x1) found.x1 = left;
        if (right > found.x2) found.x2 = right;
        if (line < found.y1) found.y1 = line;
        if (line > found.y2) found.y2 = line;
        for (int i = left; i <= right; ++i) row[i] = newCode;
        if (line > 0) ok = PushRuns(work, row - width, nx, line - 1, left - reach, right + reach, seed);
        if (ok && line + 1 < ny) ok = PushRuns(work, row + width, nx, line + 1, left - reach, right + reach, seed);
    }
    if (!stack) FreeFillStack(&own);
    else work->count = 0;
    if (box) *box = found;
    return ok;
}

bool CodesAreBilevel(const uint16_t* codes, int nx, int ny)
{
    if (!codes || nx <= 0 || ny <= 0) return false;
    const size_t width = static_cast<size_t>(nx);
    for (int y = 0; y < ny; ++y) {
        const uint16_t* row = codes + static_cast<size_t>(y) * width;
        for (int x = nx - 1; x >= 0; --x)
            if (row[x] != 0 && row[x] != 65535) return false;
    }
    return true;
}
