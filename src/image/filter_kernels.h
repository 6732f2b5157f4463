// The kernel tables of the convolution commands: seven 3x3 kernels, seven 5x5 kernels and five
// edge kernels, each with its log text and history code.
//
// A kernel is a table of signed 8-bit values in row-major order, index 0 at the top left. The
// first entry of a row multiplies the pixel left of the centre, the first row the pixels above
// it: a correlation, the kernel is not flipped. Kernels 6 and 7 of each square family are the
// user's and start as the unit kernel; every other kernel is constant.
#pragma once

#include <cstdint>

enum class KernelFamily {
    Square3,   // dl_Convolve3x3, indices 1 to 7
    Square5,   // dl_Convolve5x5, indices 1 to 7
    Edge3,     // dl_EdgeEnhance3x3, indices 1 to 5
};

struct FilterKernel {
    const int8_t* values;   // size * size entries
    int size;               // 3 or 5
    const char* log;        // the log line, with the new item's title for %s
    int code;               // the history code of the result
};

constexpr int kUserKernelFirst = 6;
constexpr int kUserKernelLast = 7;

// The kernel of `index` (1-based) in a family, or null when there is none.
const FilterKernel* FindKernel(KernelFamily family, int index);
// Side length of the kernels of a family.
int KernelSize(KernelFamily family);

// Copies kernel `index` out, sign extended. A bad index reports the program error
// "GetKernelParam3x3 %d", "GetKernelParam5x5 %d" or "GetKernelParamEE3 %d" and leaves `out` as
// it was.
void GetKernelParam(KernelFamily family, int index, int16_t* out);
// Stores the low byte of each value in user kernel 6 or 7 of a square family (200 is stored as
// -56). Another index reports "SetKernelParam3x3 %d" or "SetKernelParam5x5 %d" and stores
// nothing.
void SetKernelParam(KernelFamily family, int index, const int16_t* values);

// The signed sum of a kernel's entries.
int32_t KernelSum(const int8_t* values, int size);

// The derivative kernel at `angle` degrees to the x-axis: 0 s 0 / 0 -(s + c) c / 0 0 0, with
// s and c the sine and cosine times 32, truncated to signed 8 bits.
void DerivativeKernel(int angle, int8_t out[9]);

// The user kernels back to the unit kernel.
void ResetFilterKernels();
