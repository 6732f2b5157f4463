#include "store/history.h"
#include "host/errors.h"

#include <cstring>

const char* const im_pstr[] = {
    "Low 3x3 filter",
    "Med 3x3 filter",
    "Hi 3x3 filter",
    "Horz smooth 3",
    "Vert smooth 3",
    "Low 5x5 filter",
    "Med 5x5 filter",
    "Hi 5x5 filter",
    "Horz smooth 5",
    "Vert smooth 5",
    "Vert Edge",
    "Horz edge",
    "Diag / Edge",
    "Diag \\ Edge",
    "Laplace",
    "Differentiate",
    "Stretch hist",
    "Equalise",
    "Normalise",
    "Median 5",
    "Median 9",
    "Subtract Background",
    "Invert",
    "Multiply",
    "Bitwise AND",
    "Bitwise OR",
    "Bitwise XOR",
    "Reflect in Y axis",
    "Reflect in X axis",
    "Add image",
    "Subtract Image",
    "Difference",
    "Multiply",
    "divide",
    "Bitwise AND",
    "Bitwise OR",
    "Bitwise XOR",
    "Rotate 90",
    "Rotate 180",
    "Rotate 270",
    "Rotate theta",
    "Transpose",
    "Interpolate 128",
    "Interpolate 256",
    "Interpolate 512",
    "Magnify",
    "Window",
    "Translate",
    "Drift Correction",
    "Smooth",
    "Math op. to X",
    "Math op. to Y",
    "Reflect",
    "Zoom",
    "1st derivative",
    "2nd derivative",
    "3rd derivative",
    "X sort",
    "Y sort",
    "Merge Images",
    "FFT",
    "Inverse FFT",
    "Mask",
    "Add spectra",
    "Average spectra",
    "Subtract spectra",
    "Difference",
    "Product",
    "Divide spectra",
    "Remove DC Bias",
    "Separate ramp directions",
    "Pad Image",
    "User 1 3x3 filter",
    "User 2 3x3 filter",
    "User 1 5x5 filter",
    "User 2 5x5 filter",
    "Divide",
    "1'st normalised derivative",
    "2'nd normalised derivative",
    "Average unit cell",
    "Adjust contrast & brightness",
    "Nonlinear background",
    "Normalise SD",
    "Trim",
    "Linearise LUT",
    "Remove LUT colours",
    "Extract",
    "Replace",
    "Median",
    "Invert LUT",
    "Reverse LUT",
    "Add LUT",
    "Bitwise AND LUT",
    "Bitwise OR LUT",
    "Bitwise XOR LUT",
    "Multiply LUT",
    "Divide LUT",
    "Minimum",
    "Maximum",
    "Add",
    "Subtract",
    "Fix Z Scale",
    "Transform Data",
    "SPS Mapping Average 2",
    "SPS Mapping Average 4",
    "SPS Mapping Average 8",
    "SPS Mapping Average 16",
    "SPS Mapping Average 32",
    "Isolate",
    "Bilevel",
    "Erode",
    "Dilate",
    "Shoot",
    "Nonlinear X background",
    "Nonlinear Y background",
    "SPS Mapping Average",
    "Remove DC Offsets",
    "Line By Line Averaging",
    "Subtract polynomial surface",
    "Subtract 3 point plane",
    "Subtract manual plane",
    "Img Proc Str Error",
};

int ProcessNameCount() { return static_cast<int>(sizeof im_pstr / sizeof im_pstr[0]); }

namespace {

int ListLength(const ImageHeaderType* record)
{
    int n = 0;
    while (n < kProcessListLength && record->ProcessList[n]) ++n;
    return n;
}

} // namespace

void AddImProc2List(ImageHeaderType* record, int code)
{
    if (!record) {
        ProgramError("AddImProc2List");
        return;
    }
    int n = ListLength(record);
    if (n >= kProcessListLength) {
        // Drop the oldest entry; bytes 48 and 49 of the field (the last list byte and
        // ProcessListOff) become zero, which also shows the history again.
        std::memmove(record->ProcessList, record->ProcessList + 1, kProcessListLength - 1);
        record->ProcessList[kProcessListLength - 1] = 0;
        record->ProcessListOff = 0;
        n = kProcessListLength - 1;
    }
    record->ProcessList[n] = static_cast<uint8_t>(code);
}

int SeeIfProcessDone(const ImageHeaderType* record, int code)
{
    if (!record) {
        ProgramError("SeeIfProcessDone");
        return 0;
    }
    int from = ListLength(record);
    if (from > kProcessListLength - 1) from = kProcessListLength - 1;
    for (int i = from; i >= 0; --i)
        if (record->ProcessList[i] == code) return 1;
    return 0;
}

const char* GetProcessName(int index)
{
    if (index < 0 || index >= ProcessNameCount()) return im_pstr[kProcessNameCount - 1];
    return im_pstr[index];
}

int ProcessHistoryLines(const ImageHeaderType* record, const char* names[kProcessListLength])
{
    if (!record || record->ProcessListOff >= 255) return 0;
    const int n = ListLength(record);
    for (int i = 0; i < n; ++i) names[i] = GetProcessName(record->ProcessList[i] - 1);
    return n;
}
