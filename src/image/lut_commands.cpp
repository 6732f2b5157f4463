// The one-step commands on an image's table and on its codes through the table.
#include "image/contrast.h"
#include "display/contrast_map.h"
#include "display/current_image.h"
#include "display/render_histogram.h"
#include "display/select_items.h"
#include "display/vfs.h"
#include "host/ap_callbacks.h"
#include "host/entry.h"
#include "host/errors.h"
#include "image/any_image_command.h"
#include "image/image_frame.h"
#include "image/z_range.h"
#include "store/data_list.h"
#include "store/duplicate.h"
#include "store/image_header.h"
#include "store/value_text.h"

#include <algorithm>
#include <cstring>

namespace {

constexpr int kLinearCode = 85;
constexpr int kRemoveColoursCode = 86;
constexpr int kTransformCode = 103;
constexpr int kEqualiseCode = 18;
constexpr int kFirstMathLUTCode = 90;
constexpr int kIntegerChars = 3;
constexpr int kRealChars = 9;
constexpr unsigned kErrNotColourImage = 33550;   // "Image is not colour image"
constexpr uint16_t kFixedColourCodes = 35 * 256;

// Rows of the result as codes of the source through `map`, each shown.
template <class Map>
void MapRows(const ImageHeaderType* source, ImageHeaderType* result, Map map)
{
    const size_t nx = static_cast<size_t>(source->nx);
    for (int y = 0; y < source->ny; ++y) {
        const uint16_t* in = source->PixData + static_cast<size_t>(y) * nx;
        uint16_t* out = result->PixData + static_cast<size_t>(y) * nx;
        for (size_t x = 0; x < nx; ++x) out[x] = map(in[x]);
        ShowCommandRow(result, y);
    }
}

void CopyRows(const ImageHeaderType* source, ImageHeaderType* result)
{
    MapRows(source, result, [](uint16_t p) { return p; });
}

// The constant of a fixed table operation; false when the user cancelled.
bool EnterLUTConstant(int op, double* k)
{
    if (op >= 3 && op <= 6) {
        int32_t value = 0;
        if (!EnterInteger(0, "Enter constant (0-255) : ", kProductName, &value, kIntegerChars)) return false;
        *k = value;
        return true;
    }
    if (op == 7 || op == 8) {
        char text[32] = {};
        if (!EnterString("1.0", "Enter constant : ", kProductName, text, kRealChars)) return false;
        text[sizeof text - 1] = '\0';
        *k = Str2Double(text);
    }
    return true;
}

} // namespace

ImageHeaderType* CopyImageItem(const ImageHeaderType* source)
{
    ImageHeaderType* copy = DuplicateForResult(source);
    if (!copy) return nullptr;
    std::memcpy(copy->PixData, source->PixData, CodeCount(source) * sizeof(uint16_t));
    return copy;
}

void MathLUT(int op)
{
    if (!RequireReadableImage()) return;
    const char* name = MathLUTName(op);
    if (!name) {
        ProgramError("MathLUT %d", op);
        return;
    }
    double k = 0.0;
    if (!EnterLUTConstant(op, &k)) return;
    RunImageCommand(
        AnyImageCommand(kFirstMathLUTCode + op - 1),
        [op, k](const ImageHeaderType* source, ImageHeaderType* result) {
            MathLUTTable(op, k, result->ImageLUT);
            CopyRows(source, result);
        },
        "%2$s of '%1$s'.\n", name);
}

void LineariseImageLUT()
{
    RunImageCommand(
        AnyImageCommand(kLinearCode),
        [](const ImageHeaderType* source, ImageHeaderType* result) {
            IdentityTable(result->ImageLUT);
            result->Brightness = 0.0f;
            result->Contrast = 128.0f;
            result->Gamma = 1.0f;
            CopyRows(source, result);
        },
        "Linearise LUT '%s'\n");
}

int HistEqualise()
{
    const ImageHeaderType* made = RunImageCommand(
        AnyImageCommand(kEqualiseCode, "Please wait while performing histogram equalisation"),
        [](const ImageHeaderType* source, ImageHeaderType* result) {
            int32_t bins[kHistogramBins];
            CalcHistogram(source, bins);
            uint8_t table[256];
            EqualiseTable(bins, static_cast<int64_t>(CodeCount(source)), table);
            for (int i = 0; i < 256; ++i) result->ImageLUT[i] = table[source->ImageLUT[i]];
            CopyRows(source, result);
        },
        "Equalize '%s'\n");
    return made ? 1 : 0;
}

uint16_t CodeThroughTable(const uint8_t table[256], uint16_t code)
{
    if (code == 0) return table[0];
    if (code >= 0xFF00) return table[255];
    const int l = code >> 8, f = code & 255;
    return static_cast<uint16_t>(table[l] * (255 - f) + table[l + 1] * f);
}

ImageHeaderType* TransformThroughLUT()
{
    return RunImageCommand(
        AnyImageCommand(kTransformCode),
        [](const ImageHeaderType* source, ImageHeaderType* result) {
            const uint8_t* table = source->ImageLUT;
            MapRows(source, result, [table](uint16_t p) { return CodeThroughTable(table, p); });
            IdentityTable(result->ImageLUT);
            // The new codes span the table's lowest to highest entry as levels of the source.
            const auto [lo, hi] = std::minmax_element(table, table + 256);
            SetZRangeFromCodes(result, source, *lo * 257, *hi * 257);
        },
        "Transform %s through LUT.\n");
}

ImageHeaderType* RemoveLUTColours()
{
    const ImageHeaderType* image = RequireReadableImage();
    if (!image) return nullptr;
    if (!image->ColourImage) {
        Error(kErrNotColourImage);
        return nullptr;
    }
    return RunImageCommand(
        AnyImageCommand(kRemoveColoursCode),
        [](const ImageHeaderType* source, ImageHeaderType* result) {
            result->ColourImage = 0;
            MapRows(source, result, [](uint16_t p) {
                if (p <= kFixedColourCodes) return uint16_t{0};
                return static_cast<uint16_t>(std::min(int32_t{p} * 2 - 70, int32_t{65535}));
            });
        },
        "Remove LUT colours '%s'\n");
}

void FixImageZScale()
{
    SelectItemCol_ProcessType = TV_SELECT_ITEMS_MEASURE;
    FixZScaleVFS = CurrentVFS ? CurrentVFS->VFSNo : int16_t{-1};
    Ap.ap_MarkerPanel(TV_SELECT_ITEMS_MEASURE);
}
