#include "image/image_math.h"
#include "display/current_image.h"
#include "display/plot_spectrum.h"
#include "display/render_histogram.h"
#include "host/entry.h"
#include "host/errors.h"
#include "host/log.h"
#include "image/any_image_command.h"
#include "image/image_frame.h"
#include "image/z_range.h"
#include "store/data_list.h"
#include "store/data_list_select.h"
#include "store/duplicate.h"
#include "store/history.h"
#include "store/image_header.h"
#include "store/memory.h"
#include "store/value_text.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <cstring>

namespace {

constexpr int kIntegerChars = 5;
constexpr int kRealChars = 9;
constexpr int kAddCode = 100;
constexpr int kSubtractCode = 101;
constexpr int kNormaliseCode = 19;
constexpr int kNormaliseSDCode = 83;
constexpr double kSmallestSD = 1e-5;
constexpr int kLevels = 256;

constexpr int kSingleCodes[8] = {23, 24, 77, 25, 26, 27, kAddCode, kSubtractCode};
constexpr int kDoubleCodes[10] = {30, 31, 32, 33, 34, 35, 36, 37, 98, 99};

uint16_t Clip(double v)
{
    if (!(v > 0.0)) return 0;
    return v >= 65535.0 ? uint16_t{65535} : static_cast<uint16_t>(v);
}

int32_t ClipLevel(int64_t v) { return static_cast<int32_t>(std::clamp<int64_t>(v, 0, 255)); }

// Rows of the result, each code from the source code at the same place, each row shown.
template <class Map>
void MapRows(const ImageHeaderType* source, ImageHeaderType* result, Map map)
{
    const size_t nx = static_cast<size_t>(source->nx);
    for (int y = 0; y < source->ny; ++y) {
        const size_t row = static_cast<size_t>(y) * nx;
        for (size_t x = 0; x < nx; ++x) result->PixData[row + x] = map(source->PixData[row + x], row + x);
        ShowCommandRow(result, y);
    }
}

// The signed amount of ops 7 and 8: op 8 negates the entry, so that a negative entry adds.
int64_t AddAmount(int op, int32_t c) { return op == 7 ? int64_t{c} : -int64_t{c}; }

} // namespace

void SingleImageMath(int op)
{
    if (op <= 0) return;
    ImageCommand command = AnyImageCommand(0, "Please wait");
    ImageHeaderType* source = CheckImageCommand(command);
    if (!source) return;
    int32_t c = 0;
    double f = 1.0;
    if (op > 3) {
        if (!EnterInteger(0, "Enter constant (0-65535) : ", kProductName, &c, kIntegerChars)) return;
    } else if (op >= 2) {
        char text[32] = {};
        if (!EnterString("1.0", "Enter constant", kProductName, text, kRealChars)) return;
        text[sizeof text - 1] = '\0';
        f = Str2Double(text);
        if (op == 3 && f == 0.0) f = 1.0;
    }
    ImageHeaderType* result = MakeCommandResult(command, source);
    if (!result) return;
    if (op > 8) {
        ProgramError("SingleImageMath %d", op);
        FreeResultItem(result);
        return;
    }
    const int64_t amount = op >= 7 ? AddAmount(op, c) : 0;
    command.code = op >= 7 ? (amount >= 0 ? kAddCode : kSubtractCode) : kSingleCodes[op - 1];
    TitleBuffer title;
    TitleText(source, title);
    if (op == 1)
        Log("Invert '%s'\n", title);
    else if (op == 2)
        Log("Multiply '%s' by %7.2lf\n", title, f);
    else if (op == 3)
        Log("Divide '%s' by %7.2lf\n", title, f);
    else if (op <= 6)
        Log("%s '%s' with %d\n", GetProcessName(command.code - 1), title, c);
    else
        Log("%s '%s' with %lld\n", GetProcessName(command.code - 1), title, static_cast<long long>(std::llabs(amount)));
    BeginCommandRows(command, source, result);
    const uint32_t k = static_cast<uint32_t>(c) & 0xFFFF;
    const int64_t magnitude = std::llabs(amount);
    MapRows(source, result, [&](uint16_t p, size_t) -> uint16_t {
        switch (op) {
        case 1: return static_cast<uint16_t>(65535 - p);
        case 2: return Clip(std::trunc(p * f));
        case 3: return Clip(std::trunc(p / f));
        case 4: return static_cast<uint16_t>(p & k);
        case 5: return static_cast<uint16_t>(p | k);
        case 6: return static_cast<uint16_t>(p ^ k);
        default:
            return amount >= 0 ? static_cast<uint16_t>(std::min<int64_t>(p + magnitude, 65535))
                               : static_cast<uint16_t>(std::max<int64_t>(p - magnitude, 0));
        }
    });
    FinishImageCommand(command, result, nullptr);
}

uint16_t CombineCodes(int op, uint16_t a, uint16_t b)
{
    const uint32_t ua = a, ub = b;
    switch (op) {
    case 1: return static_cast<uint16_t>((ua + ub) >> 1);
    case 2: return static_cast<uint16_t>((ua + 65535u - ub) >> 1);
    case 3: return static_cast<uint16_t>(a > b ? a - b : b - a);
    case 4: return static_cast<uint16_t>(ua * ub / 65535u);
    case 5: return static_cast<uint16_t>(b == 0 ? a : a / b);
    case 6: return static_cast<uint16_t>(a & b);
    case 7: return static_cast<uint16_t>(a | b);
    case 8: return static_cast<uint16_t>(a ^ b);
    case 9: return std::min(a, b);
    case 10: return std::max(a, b);
    default: return 0;
    }
}

void DoubleImageMath(int op)
{
    if (op <= 0) return;
    ImageCommand command = AnyImageCommand(0, "Please wait");
    ImageHeaderType* source = CheckImageCommand(command);
    if (!source) return;
    const ImageHeaderType* second = SelectDataByHost(1, SELECT_SAME_SOURCE);
    // Only an image of the same size can be read point by point beside the current one.
    if (!IsReadableImage(second) || second->nx != source->nx || second->ny != source->ny)
        return;
    ImageHeaderType* result = MakeCommandResult(command, source);
    if (!result) return;
    if (op > 10) {
        ProgramError("Double Math");
        return;
    }
    command.code = kDoubleCodes[op - 1];
    BeginCommandRows(command, source, result);
    MapRows(source, result, [op, second](uint16_t a, size_t i) { return CombineCodes(op, a, second->PixData[i]); });
    TitleBuffer title, secondTitle;
    FinishImageCommand(command, result,
                       CommandLogText("%s '%s' with %s\n", GetProcessName(command.code - 1), TitleText(source, title),
                                      TitleText(second, secondTitle)));
}

CodeExtremes ScanCodeExtremes(const ImageHeaderType* image)
{
    CodeExtremes e{65535, 0};
    const size_t n = CodeCount(image);
    for (size_t i = 0; i < n; ++i) {
        const uint32_t p = image->PixData[i];
        if (p > e.max)
            e.max = p;
        else if (p < e.min)
            e.min = p;
    }
    return e;
}

CodeExtremes NormaliseCodes(ImageHeaderType* result, const ImageHeaderType* source, bool show)
{
    const CodeExtremes e = ScanCodeExtremes(source);
    const uint32_t range = e.max - e.min;
    const size_t nx = static_cast<size_t>(source->nx);
    for (int y = 0; y < source->ny; ++y) {
        const uint16_t* in = source->PixData + static_cast<size_t>(y) * nx;
        uint16_t* out = result->PixData + static_cast<size_t>(y) * nx;
        for (size_t x = 0; x < nx; ++x) {
            if (range == 0) {
                out[x] = 0;
                continue;
            }
            const uint32_t v = (in[x] - e.min) * 65535u / range;
            out[x] = static_cast<uint16_t>(std::min<uint32_t>(v, 65535u));
        }
        if (show) ShowCommandRow(result, y);
    }
    SetZRangeFromCodes(result, source, static_cast<int32_t>(e.min), static_cast<int32_t>(e.max));
    return e;
}

void NormaliseImage()
{
    const ImageCommand command = AnyImageCommand(kNormaliseCode, "Please wait while normalising image");
    ImageHeaderType* source = CheckImageCommand(command);
    if (!source) return;
    ImageHeaderType* result = MakeCommandResult(command, source);
    if (!result) return;
    BeginCommandRows(command, source, result);
    const CodeExtremes e = NormaliseCodes(result, source, true);
    TitleBuffer title;
    FinishImageCommand(command, result,
                       CommandLogText("Normalise pixel range %u-%u. '%s'\n", e.min, e.max, TitleText(source, title)));
}

void HistogramMoments(const int32_t bins[256], int64_t points, double* mean, double* sd)
{
    uint32_t sum = 0;
    double squares = 0.0;
    for (int i = 0; i < kLevels; ++i) {
        sum += static_cast<uint32_t>(i) * static_cast<uint32_t>(bins[i]);
        squares += static_cast<double>(i) * i * bins[i];
    }
    const double n = points > 0 ? static_cast<double>(points) : 1.0;
    *mean = static_cast<int32_t>(sum) / n;
    const double variance = std::max(squares / n - *mean * *mean, 0.0);
    *sd = std::max(std::sqrt(variance), kSmallestSD);
}

SDStretch SDStretchFor(double mean, double sd, double range)
{
    SDStretch s{};
    s.mean = mean;
    s.sd = sd;
    const double r = std::isfinite(range) ? std::min(std::fabs(range), 1e6) : 0.0;
    s.lo = static_cast<int32_t>(std::trunc(mean - r * sd));
    s.hi = static_cast<int32_t>(std::trunc(mean + r * sd));
    s.span = s.hi != s.lo ? s.hi - s.lo : 1;
    s.k = 255.0 / s.span;
    s.offset = static_cast<int32_t>(std::trunc((1.0 - s.k) * mean));
    return s;
}

void SDStretchTable(const SDStretch& s, bool colour, uint16_t table[256])
{
    if (!colour) {
        for (int i = 0; i < kLevels; ++i)
            table[i] = static_cast<uint16_t>(ClipLevel(static_cast<int64_t>(std::trunc(i * s.k)) + s.offset));
        return;
    }
    for (int i = 0; i < 128; ++i) {
        table[i] = static_cast<uint16_t>(i);
        const int32_t v = ClipLevel(static_cast<int64_t>(std::trunc(2.0 * i * s.k)) + s.offset);
        table[i + 128] = static_cast<uint16_t>((v >> 1) | 128);
    }
}

uint16_t SDStretchCode(const uint16_t table[256], uint16_t p)
{
    if (p == 0) return table[0];
    if (p >= 0xFF00) return table[255];
    const int l = p >> 8;
    return static_cast<uint16_t>(table[l] * ((255 - p) & 255) + table[l + 1] * (p & 255));
}

void NormaliseSD()
{
    ImageCommand command = AnyImageCommand(kNormaliseSDCode, nullptr);
    command.registerTwice = true;   // the parameter text is left as it is
    ImageHeaderType* source = CheckImageCommand(command);
    if (!source) return;
    struct Work {
        int32_t bins[kLevels];
        float x[kLevels];
        float y[kLevels];
        uint16_t table[kLevels];
    };
    auto* work = static_cast<Work*>(ecalloc(1, sizeof(Work)));
    if (!work) {
        Error(ERR_NO_MEMORY);
        return;
    }
    CalcHistogram(source, work->bins);
    double mean = 0.0, sd = 1.0;
    HistogramMoments(work->bins, static_cast<int64_t>(CodeCount(source)), &mean, &sd);
    for (int i = 0; i < kLevels; ++i) {
        work->x[i] = static_cast<float>((i - mean) / sd);
        work->y[i] = static_cast<float>(work->bins[i]);
    }
    DisplaySpecWithSettings(nullptr, work->x, work->y, kLevels, PlotParam.LogAxisX, PlotParam.LogAxisY, 0, 1, 26,
                            "s.d. from mean", "No of pixels/grey level", 0);
    char text[32] = {};
    if (!EnterString("3.0", "Enter s.d.'s range to keep data ", kProductName, text, kRealChars)) {
        efree(work);
        return;
    }
    text[sizeof text - 1] = '\0';
    const SDStretch s = SDStretchFor(mean, sd, Str2Double(text));
    SDStretchTable(s, source->ColourImage != 0, work->table);
    ImageHeaderType* result = MakeCommandResult(command, source);
    if (!result) {
        efree(work);
        return;
    }
    BeginCommandRows(command, source, result);
    const uint16_t* table = work->table;
    MapRows(source, result, [table](uint16_t p, size_t) { return SDStretchCode(table, p); });
    efree(work);
    TitleBuffer title;
    FinishImageCommand(command, result, CommandLogText("Normalise SD '%s'\n", TitleText(source, title)));
}
