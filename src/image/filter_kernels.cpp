#include "image/filter_kernels.h"
#include "host/errors.h"

#include <cmath>
#include <cstring>

namespace {

constexpr int8_t kLow3[9] = {1, 1, 1, 1, 1, 1, 1, 1, 1};
constexpr int8_t kMedium3[9] = {1, 2, 1, 2, 4, 2, 1, 2, 1};
constexpr int8_t kHigh3[9] = {-1, -1, -1, -1, 9, -1, -1, -1, -1};
constexpr int8_t kHorizontal3[9] = {0, 0, 0, 1, 1, 1, 0, 0, 0};
constexpr int8_t kVertical3[9] = {0, 1, 0, 0, 1, 0, 0, 1, 0};
constexpr int8_t kUnit3[9] = {0, 0, 0, 0, 1, 0, 0, 0, 0};

constexpr int8_t kLow5[25] = {1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1};
constexpr int8_t kMedium5[25] = {1, 2, 4, 2, 1, 2, 4, 8, 4, 2, 4, 8, 16, 8, 4, 2, 4, 8, 4, 2, 1, 2, 4, 2, 1};
constexpr int8_t kHigh5[25] = {-1, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1, 25,
                               -1, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1};
constexpr int8_t kHorizontal5[25] = {0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 1, 1, 1, 1, 1, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0};
constexpr int8_t kVertical5[25] = {0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0};
constexpr int8_t kUnit5[25] = {0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 1, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0};

constexpr int8_t kEdgeVertical[9] = {-1, 2, -1, -1, 2, -1, -1, 2, -1};
constexpr int8_t kEdgeHorizontal[9] = {-1, -1, -1, 2, 2, 2, -1, -1, -1};
constexpr int8_t kEdgeRising[9] = {-1, -1, 2, -1, 2, -1, 2, -1, -1};
constexpr int8_t kEdgeFalling[9] = {2, -1, -1, -1, 2, -1, -1, -1, 2};
constexpr int8_t kLaplace[9] = {-1, -1, -1, -1, 8, -1, -1, -1, -1};

// The user kernels, writable; [0] is kernel 6, [1] kernel 7.
int8_t UserKernel3[2][9];
int8_t UserKernel5[2][25];

const FilterKernel kSquare3[] = {
    {kLow3, 3, "Apply low pass 3x3 to '%s'\n", 1},
    {kMedium3, 3, "Apply medium pass 3x3 to '%s'\n", 2},
    {kHigh3, 3, "Apply high pass 3x3 to '%s'\n", 3},
    {kHorizontal3, 3, "Apply horizontal 3x3 smooth to '%s'\n", 4},
    {kVertical3, 3, "Apply vertical 3x3 smooth to '%s'\n", 5},
    {UserKernel3[0], 3, "Apply 3x3 filter User 1 to '%s'\n", 73},
    {UserKernel3[1], 3, "Apply 3x3 filter User 2 to '%s'\n", 74},
};

const FilterKernel kSquare5[] = {
    {kLow5, 5, "Apply low pass 5x5 to '%s'\n", 6},
    {kMedium5, 5, "Apply medium pass 5x5 to '%s'\n", 7},
    {kHigh5, 5, "Apply high pass 5x5 to '%s'\n", 8},
    {kHorizontal5, 5, "Apply horizontal 5x5 smooth to '%s'\n", 9},
    {kVertical5, 5, "Apply vertical 5x5 smooth to '%s'\n", 10},
    {UserKernel5[0], 5, "Apply 5x5 filter User 1 to '%s'\n", 75},
    {UserKernel5[1], 5, "Apply 5x5 filter User 2 to '%s'\n", 76},
};

const FilterKernel kEdge3[] = {
    {kEdgeVertical, 3, "Apply Vertical edge enhance to '%s'\n", 11},
    {kEdgeHorizontal, 3, "Apply Horizontal edge enhance to '%s'\n", 12},
    {kEdgeRising, 3, "Apply Diagonal (/) edge enhance to '%s'\n", 13},
    {kEdgeFalling, 3, "Apply Diagonal (\\) edge enhance to '%s'\n", 14},
    {kLaplace, 3, "Apply Laplace filter to '%s'\n", 15},
};

struct FamilyTable {
    const FilterKernel* kernels;
    int count;
    const char* getText;   // program error of a bad index when copying out
    const char* setText;   // program error of a bad index when storing; null: not writable
    int8_t* user;          // the first user kernel; the second follows it
};

FamilyTable Table(KernelFamily family)
{
    switch (family) {
    case KernelFamily::Square3: return {kSquare3, 7, "GetKernelParam3x3 %d", "SetKernelParam3x3 %d", UserKernel3[0]};
    case KernelFamily::Square5: return {kSquare5, 7, "GetKernelParam5x5 %d", "SetKernelParam5x5 %d", UserKernel5[0]};
    case KernelFamily::Edge3: break;
    }
    return {kEdge3, 5, "GetKernelParamEE3 %d", nullptr, nullptr};
}

// The one 8-bit wrap of the kernels: the low byte, read as signed.
int8_t LowByte(int value) { return static_cast<int8_t>(static_cast<uint8_t>(value & 0xff)); }

} // namespace

int KernelSize(KernelFamily family) { return family == KernelFamily::Square5 ? 5 : 3; }

const FilterKernel* FindKernel(KernelFamily family, int index)
{
    const FamilyTable table = Table(family);
    if (index < 1 || index > table.count) return nullptr;
    return &table.kernels[index - 1];
}

void GetKernelParam(KernelFamily family, int index, int16_t* out)
{
    const FilterKernel* kernel = FindKernel(family, index);
    if (!kernel || !out) {
        ProgramError(Table(family).getText, index);
        return;
    }
    for (int i = 0; i < kernel->size * kernel->size; ++i) out[i] = kernel->values[i];
}

void SetKernelParam(KernelFamily family, int index, const int16_t* values)
{
    const FamilyTable table = Table(family);
    if (!table.user || index < kUserKernelFirst || index > kUserKernelLast || !values) {
        if (table.setText)
            ProgramError(table.setText, index);
        else
            ProgramError("SetKernelParam");   // the edge kernels stay constant
        return;
    }
    const int n = KernelSize(family) * KernelSize(family);
    int8_t* user = table.user + (index - kUserKernelFirst) * n;
    for (int i = 0; i < n; ++i) user[i] = LowByte(values[i]);
}

int32_t KernelSum(const int8_t* values, int size)
{
    int32_t sum = 0;
    for (int i = 0; i < size * size; ++i) sum += values[i];
    return sum;
}

void DerivativeKernel(int angle, int8_t out[9])
{
    // The angle in radians with the constant of the instrument's tables, not the full pi.
    const double radians = angle * 3.14159 / 180.0;
    const int8_t s = LowByte(static_cast<int>(std::trunc(std::sin(radians) * 32.0)));
    const int8_t c = LowByte(static_cast<int>(std::trunc(std::cos(radians) * 32.0)));
    const int8_t kernel[9] = {0, s, 0, 0, LowByte(-(s + c)), c, 0, 0, 0};
    std::memcpy(out, kernel, sizeof kernel);
}

void ResetFilterKernels()
{
    for (auto& k : UserKernel3) std::memcpy(k, kUnit3, sizeof kUnit3);
    for (auto& k : UserKernel5) std::memcpy(k, kUnit5, sizeof kUnit5);
}

namespace {
// The user kernels start as the unit kernel when the library is loaded.
const bool kUserKernelsReady = (ResetFilterKernels(), true);
} // namespace
