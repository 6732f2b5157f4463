// Arithmetic on the X or Y values of a spectrum, and operations between two spectra.
#include "host/entry.h"
#include "host/errors.h"
#include "host/log.h"
#include "spectro/spectro.h"
#include "store/data_list_select.h"
#include "store/duplicate.h"
#include "store/image_header.h"
#include "store/units.h"
#include "store/value_text.h"

#include <algorithm>
#include <cfloat>
#include <cmath>

namespace {

constexpr int kConstantChars = 9;
constexpr float kResultSearchStart = 1e38f;

// A double as f32; beyond the range it becomes an infinity of its sign, NaN stays NaN.
float ToF32(double v)
{
    if (v > FLT_MAX) return INFINITY;
    if (v < -FLT_MAX) return -INFINITY;
    return static_cast<float>(v);
}

double Apply(int op, double v, double c)
{
    switch (op) {
    case 1: return v + c;
    case 2: return v * c;
    case 3: return v / c;
    case 4: return v == 0 ? -static_cast<double>(kMarker) : static_cast<double>(ToF32(std::log(v)));
    case 5: return -v;
    case 6: return static_cast<double>(ToF32(std::fabs(v)));
    case 7: return v == 0 ? static_cast<double>(kMarker) : 1.0 / v;
    default: return v;
    }
}

// The constant of operations 1 to 3; false when the user cancelled or entered 0 to divide by.
bool EnterConstant(int op, double* c)
{
    char text[32] = {};
    if (!EnterString(op == 1 ? "0" : "1", "Enter constant : ", kProductName, text, kConstantChars)) return false;
    text[sizeof text - 1] = '\0';
    *c = Str2Double(text);
    if (op == 3 && *c == 0) {
        Error(ERR_ZERO_VALUE);
        return false;
    }
    return true;
}

float Combine(int op, float a, float b)
{
    switch (op) {
    case 1: return a + b;
    case 2: return a - b;
    case 3: return std::fabs(a - b);
    case 4: return a * b;
    case 5: return b == 0.0f ? kMarker : a / b;
    default: return (a + b) / 2.0f;
    }
}

constexpr int kDoubleCodes[6] = {64, 66, 67, 68, 69, 65};

} // namespace

void SpecMath(int onY, int op)
{
    ImageHeaderType* source = CurrentSpectrum();
    if (!source) return;
    if (op < 1 || op > 8) {
        ProgramError("SpecMath %d", op);
        return;
    }
    double c = 0;
    if (op <= 3 && !EnterConstant(op, &c)) return;
    ImageHeaderType* item = CopyNewSpectrum(source);
    if (!item) return;
    const int n = item->nx;
    float* plane = onY ? SpecY(item) : SpecX(item);
    float* other = onY ? SpecX(item) : SpecY(item);
    char title[48];
    ItemTitle(item, title);
    if (op == 8) {
        SortPair(plane, other, n, true);
        // The words of the two sort lines are crossed: the texts were always so.
        Log(onY ? "Sort '%s'in order of X.\n" : "Sort '%s'in order of Y.\n", title);
        FinishSpectrumCommand(item, onY ? 59 : 58);
        return;
    }
    for (int i = 0; i < n; ++i) {
        const double shown = onY ? ImageDataValue2Calibrated(item, plane[i], 0) : plane[i];
        const double result = Apply(op, shown, c);
        if (std::fabs(result) == static_cast<double>(kMarker))
            plane[i] = static_cast<float>(result);
        else
            plane[i] = ToF32(onY ? ImageDataValue2Calibrated(item, result, 1) : result);
    }
    ReplaceMarkers(plane, n);
    Log(onY ? "Math op. to Y values of %s\n" : "Math op. to X values of %s\n", title);
    FinishSpectrumCommand(item, onY ? 52 : 51);
}

void DoubleSpecMath(int op)
{
    ImageHeaderType* source = CurrentSpectrum();
    if (!source) return;
    if (op < 1 || op > 6) {
        ProgramError("DoubleSpecMath (%d)", op);
        return;
    }
    ImageHeaderType* item = CopyNewSpectrum(source);
    if (!item) return;
    const ImageHeaderType* second = SelectDataByHost(0, SELECT_SPECTRA);
    if (!second || second->ImType1 == IMTYPE_IMAGE || !second->PixData || second->nx <= 0) {
        FreeResultItem(item);
        return;
    }
    // Index by index; reads stop at the end of the shorter spectrum, and the points beyond keep
    // the first spectrum's values.
    const int count = std::min<int>(item->nx, second->nx);
    float* a = SpecY(item);
    const float* b = reinterpret_cast<const float*>(second->PixData);
    float lo = kResultSearchStart, hi = -kResultSearchStart;
    for (int i = 0; i < count; ++i) {
        a[i] = Combine(op, a[i], b[i]);
        if (IsMarker(a[i])) continue;
        lo = std::min(lo, a[i]);
        hi = std::max(hi, a[i]);
    }
    for (int i = 0; i < count; ++i)
        if (IsMarker(a[i])) a[i] = (hi - lo) * 0.2f + hi;
    char title[48], secondTitle[48];
    Log("Math. op. between '%s' and '%s'.\n", ItemTitle(item, title), ItemTitle(second, secondTitle));
    FinishSpectrumCommand(item, kDoubleCodes[op - 1]);
}
