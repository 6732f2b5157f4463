#include "image/filters.h"
#include "host/entry.h"
#include "host/errors.h"
#include "host/wait.h"
#include "image/filter_frame.h"
#include "image/filter_kernels.h"
#include "image/filter_rows.h"
#include "image/image_frame.h"

#include <cstring>

namespace {

// The kernel is copied, so the result does not depend on later changes of a user kernel.
template <int K>
ImageHeaderType* ApplyKernel(ImageHeaderType* source, const int8_t* kernel, bool displayFirst)
{
    int8_t weights[K * K];
    std::memcpy(weights, kernel, sizeof weights);
    return FilterResult(source, displayFirst, [&weights](const uint16_t* in, uint16_t* out, int nx, int ny) {
        CorrelateImage(in, out, nx, ny, weights, K);
    });
}

void KernelCommand(KernelFamily family, int index, const char* wait, const char* badIndex)
{
    ImageHeaderType* source = FilterSource();
    if (!source) return;
    const FilterKernel* kernel = FindKernel(family, index);
    if (!kernel) {
        ProgramError(badIndex, index);
        return;
    }
    ShowWait("%s", wait);
    ImageHeaderType* result =
        kernel->size == 5 ? ApplyKernel5x5(source, kernel->values) : ApplyKernel3x3(source, kernel->values);
    if (!result) return;
    FinishFilterCommand(result, CommandLogText(kernel->log, result->Title), kernel->code);
}

constexpr int kDerivativeCode = 16;
constexpr int kAngleLength = 4;

} // namespace

ImageHeaderType* ApplyKernel3x3(ImageHeaderType* source, const int8_t kernel[9])
{
    return ApplyKernel<3>(source, kernel, false);
}

ImageHeaderType* ApplyKernel5x5(ImageHeaderType* source, const int8_t kernel[25])
{
    return ApplyKernel<5>(source, kernel, true);
}

void Convolve3x3(int index)
{
    KernelCommand(KernelFamily::Square3, index, "Please wait while performing 3x3 convolution", "Convolve3x3 %d");
}

void Convolve5x5(int index)
{
    KernelCommand(KernelFamily::Square5, index, "Please wait while performing 5x5 convolution", "Convolve5x5 %d");
}

void EdgeEnhance3x3(int index)
{
    KernelCommand(KernelFamily::Edge3, index, "Please wait while performing edge enhancement", "EdgeEnhance3x3 %d");
}

void DifferentiateImage()
{
    ImageHeaderType* source = FilterSource();
    if (!source) return;
    int32_t angle = 0;
    if (!EnterInteger(0, "Enter angle [degrees] : ", kProductName, &angle, kAngleLength)) return;
    int8_t kernel[9];
    DerivativeKernel(angle, kernel);
    ShowWait("Processing - Please wait");
    ImageHeaderType* result = ApplyKernel3x3(source, kernel);
    if (!result) return;
    FinishFilterCommand(result, CommandLogText("Differentiate '%s' at %d degrees to x-axis\n", result->Title, angle),
                        kDerivativeCode);
}
