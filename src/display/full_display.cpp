#include "display/full_display.h"
#include "display/contents_grid.h"
#include "display/default_tables.h"
#include "display/display_param.h"
#include "display/fonts.h"
#include "display/frame_commands.h"
#include "display/lut.h"
#include "display/placement.h"
#include "display/plot_scale.h"
#include "display/plot_spectrum.h"
#include "display/render_histogram.h"
#include "display/size_text.h"
#include "display/vfs.h"
#include "host/errors.h"
#include "host/log.h"
#include "image/convert_size.h"
#include "files/spectrum_files.h"
#include "store/duplicate.h"
#include "platform/clock.h"
#include "store/data_list.h"
#include "store/image_header.h"
#include "store/titles.h"
#include "store/units.h"
#include "store/value_text.h"

#include <algorithm>
#include <cmath>
#include <cstdio>

int16_t ThresholdLow = 0;
int16_t ThresholdHigh = 255;

namespace {

constexpr int kLastRow = kFullDisplaySize - 1;
constexpr uint8_t kEdgeIndex = 6;        // black: edges of the bar and the histogram, text
constexpr uint8_t kMarkIndex = 2;        // green: histogram bars, rows beyond the thresholds
constexpr int kRulerColour = 21;
constexpr int kTextColour = 6;
// Levels that the ruler places values on, and the rows of the levels.
constexpr int kRulerLevels = 252;
constexpr int kRulerLabelX = kRulerLeft + 8;
constexpr int kLabelSpacing = 14;
constexpr int kMaxRulerTicks = 2001;
// The text block.
constexpr int kTextLeft = 5;
constexpr int kTextTop = kFullDisplaySize;
constexpr int kTitleX = 200;
constexpr int kGeneralTextX = 234;
constexpr int kGeneralTextTop = 432;
constexpr int kGeneralTextStep = 16;
constexpr int kGeneralRuleX = 226;
constexpr int kGeneralRuleTop = 426;
constexpr int kGeneralRuleMinBottom = 433;

uint32_t AlignLeft() { return TextAlignWord(0, 1, 0); }
uint32_t AlignCentre() { return TextAlignWord(1, 1, 0); }

int LevelRow(int level) { return (255 - level) * kLastRow / 255; }

// The fixed drawing colours of table 0 of the colour table store back to their defaults.
void DefaultDrawingColours()
{
    for (int i = 0; i < kFixedColours; ++i) {
        uint8_t r, g, b;
        FixedColour(i, &r, &g, &b);
        SetColourTableEntry(0, i, r, g, b);
    }
}

void DrawColourBar(const ImageHeaderType* image)
{
    uint8_t row[kColourBarWidth];
    for (int r = 0; r < kFullDisplaySize; ++r) {
        const uint8_t index = ColourBarIndex(image, r);
        std::fill(row, row + kColourBarWidth, index);
        row[0] = row[kColourBarWidth - 1] = kEdgeIndex;
        if (index < ThresholdLow || index > ThresholdHigh) std::fill(row, row + kColourBarWidth, kMarkIndex);
        WriteFSLine(row, kColourBarWidth, kColourBarLeft, r);
    }
}

void DrawHistogram(const ImageHeaderType* image)
{
    int32_t bins[kHistogramBins];
    CalcHistogram(image, bins);
    const int64_t largest = *std::max_element(bins, bins + kHistogramBins);
    uint8_t row[kHistogramWidth];
    for (int r = 0; r < kFullDisplaySize; ++r) {
        std::fill(row, row + kHistogramWidth, kEdgeIndex);
        if (r != 0 && r != kLastRow) {
            const int64_t bin = bins[r * 255 / kLastRow];
            const int length = largest > 0 ? static_cast<int>(bin * kHistogramWidth / largest) : 0;
            std::fill(row, row + std::min(length, kHistogramWidth), kMarkIndex);
            row[0] = row[kHistogramWidth - 1] = kEdgeIndex;
        }
        WriteFSLine(row, kHistogramWidth, kHistogramLeft, kLastRow - r);
    }
}

void DrawRuler(const ImageHeaderType* image)
{
    for (const RulerTick& tick : ValueRuler(image)) {
        FSMoveTo(kRulerLeft, tick.row);
        FSLineTo(kRulerLeft + tick.length, tick.row, 1);
        if (!tick.label.empty()) FSTextOut(kRulerLabelX, tick.row, tick.label.c_str());
    }
}

// A value with the unit of its own magnitude: "%.*f %-2s" (two values: "%.2f : %.2f %-2s").
void HeightLine(const ImageHeaderType* image, char* text, size_t size)
{
    const double lo = GetImageDataValue(1, 0.0f, image), hi = GetImageDataValue(1, 65535.0f, image);
    if (image->DataSource == 1) {
        const double height = std::fabs(lo - hi);
        double divisor = 1.0;
        const int exponent = ChooseUnitScale(height, &divisor);
        const double shown = height / divisor;
        std::snprintf(text, size, "Image height   %.*f %-2s", DecimalsFor(shown), shown,
                      GetImageUnitStr(image, exponent, 0));
        return;
    }
    double divisor = 1.0;
    const int exponent = ChooseUnitScale(std::max(std::fabs(lo), std::fabs(hi)), &divisor);
    std::snprintf(text, size, "Image height   %.2f : %.2f %-2s", lo / divisor, hi / divisor,
                  GetImageUnitStr(image, exponent, 0));
}

bool Printable(const char* text)
{
    for (; *text; ++text)
        if (static_cast<unsigned char>(*text) > ' ') return true;
    return false;
}

void DrawTextBlock(const ImageHeaderType* image)
{
    char text[160];
    FSSetTextAlign(AlignCentre());
    if (image->Title[0]) {
        std::snprintf(text, sizeof text, "%.*s", static_cast<int>(sizeof image->Title), image->Title);
        FSTextOut(kTitleX, kTextTop + 10, text);
    }
    FSSetTextAlign(AlignLeft());
    if (image->SPMData) {
        std::snprintf(text, sizeof text, "%s [%s]", GetImageTitleStr(image), GetImageUnitStr(image, 0, 0));
        FSTextOut(kTextLeft, kTextTop + 20, text);
        const ScanSizeText s = ScanSizeForCaption(image);
        std::snprintf(text, sizeof text, "Size           %.*f x %.*f %s", DecimalsFor(s.x), s.x, DecimalsFor(s.y), s.y,
                      s.unit);
        FSTextOut(kTextLeft, kTextTop + 36, text);
        if (image->ImType1 == IMTYPE_IMAGE) {
            HeightLine(image, text, sizeof text);
            FSTextOut(kTextLeft, kTextTop + 52, text);
            if (image->ScanMode == 2)
                std::snprintf(text, sizeof text, "Tunnel current %7.3f nA", static_cast<double>(image->TunnelCurrent));
            else
                std::snprintf(text, sizeof text, "Tip reference  %7.3f V", static_cast<double>(image->TunnelCurrent));
            FSTextOut(kTextLeft, kTextTop + 68, text);
            std::snprintf(text, sizeof text, "Bias voltage   %7.3f V", static_cast<double>(image->BiasVoltage));
            FSTextOut(kTextLeft, kTextTop + 84, text);
        }
    }
    int lastY = -1;
    bool printable = false;
    for (int i = 0; i < 5; ++i) {
        const char* line = image->GeneralText[i];
        if (!line[0]) break;
        std::snprintf(text, sizeof text, "%.*s", static_cast<int>(sizeof image->GeneralText[i]), line);
        lastY = kGeneralTextTop + i * kGeneralTextStep;
        FSTextOut(kGeneralTextX, lastY, text);
        printable = printable || Printable(text);
    }
    if (printable && lastY + kGeneralTextStep > kGeneralRuleMinBottom) {
        FSMoveTo(kGeneralRuleX, lastY + kGeneralTextStep);
        FSLineTo(kGeneralRuleX, kGeneralRuleTop, 1);
    }
}

bool Between(double v, double a, double b) { return a <= b ? v >= a && v <= b : v >= b && v <= a; }

} // namespace

uint8_t ColourBarIndex(const ImageHeaderType* image, int row)
{
    row = std::clamp(row, 0, kLastRow);
    if (image->ColourImage) {
        const int index = image->ImageLUT[(kLastRow - row) * 127 / kLastRow + 128] + kRampFirst;
        return static_cast<uint8_t>(std::min(index, 255));
    }
    const int level = (kLastRow - row) * 255 / kLastRow;
    return static_cast<uint8_t>(image->ImageLUT[level] / 2 + kRampFirst);
}

std::vector<RulerTick> ValueRuler(const ImageHeaderType* image)
{
    std::vector<RulerTick> ticks;
    if (!image) return ticks;
    const double zlo = GetImageDataValue(1, 0.0f, image), zhi = GetImageDataValue(1, 65535.0f, image);
    if (!std::isfinite(zlo) || !std::isfinite(zhi) || zlo == zhi) return ticks;
    double divisor = 1.0;
    const int exponent = ChooseUnitScale(std::max(std::fabs(zlo), std::fabs(zhi)), &divisor);
    const char* unit = GetImageUnitStr(image, exponent, 0);
    const double lo = zlo / divisor, hi = zhi / divisor;

    // The value of each level, in the unit of the ruler.
    double levelValue[kRulerLevels + 1];
    for (int level = 0; level <= kRulerLevels; ++level)
        levelValue[level] = GetImageDataValue(1, static_cast<float>(level * 256), image) / divisor;

    float a = static_cast<float>(std::min(lo, hi)), b = static_cast<float>(std::max(lo, hi)), s = 0.0f;
    AutoScale(&a, &b, &s);
    double start, step, end;
    int direction = 1;
    if (s > 0.0f && std::fabs(hi - lo) / s >= 20.0) {
        step = static_cast<double>(s) * 10.0;
        start = a;
        end = b;
    } else {
        step = std::fabs(hi - lo) / 5.0;
        start = lo;
        end = hi;
        direction = hi > lo ? 1 : -1;
    }
    if (!(step > 0.0) || !std::isfinite(step)) return ticks;

    int lastLabelRow = -1000;
    for (int k = 0; k < kMaxRulerTicks; ++k) {
        const double value = start + direction * k * (step / 10.0);
        if (direction > 0 ? value > end + step * 1e-6 : value < end - step * 1e-6) break;
        int level = -1;
        for (int l = 0; l < kRulerLevels; ++l) {
            if (Between(value, levelValue[l], levelValue[l + 1])) {
                level = l;
                break;
            }
        }
        if (level < 0) continue;
        RulerTick tick{LevelRow(level), k % 10 == 0 ? 6 : k % 5 == 0 ? 4 : 2, ""};
        if (k % 10 == 0 && std::abs(tick.row - lastLabelRow) >= kLabelSpacing) {
            const double shown = level == 0 ? levelValue[0] : value;
            char text[48];
            std::snprintf(text, sizeof text, "%.*f %s", DecimalsFor(shown), shown, unit);
            tick.label = text;
            lastLabelRow = tick.row;
        }
        ticks.push_back(std::move(tick));
    }
    return ticks;
}

int FullDisplay(int withText)
{
    ImageHeaderType* image = CurrentItem;
    if (!image || !CheckHeaderIsImageType(image) || !image->PixData) {
        Error(ERR_NO_IMAGES);
        return 1;
    }
    if (!CurrentVFS) return 1;
    BeginBatch();
    DefaultDrawingColours();
    const int32_t savedSize = FSState.ImageDisplaySize, savedOverlay = FSState.TextOverlayOn;
    FSState.ImageDisplaySize = 0;
    FSState.TextOverlayOn = 0;
    ClearFrameStore();
    ImageHeaderType* copy = ConvertImageSize(image, kFullDisplaySize, 0);
    if (!copy) {
        FSState.ImageDisplaySize = savedSize;
        FSState.TextOverlayOn = savedOverlay;
        EndBatchAndShow(0, 0, kFrameWidth - 1, kFrameHeight - 1);
        return 1;
    }
    DisplayImage(copy, 0, 0);
    if (withText && !NoUserInterface) ShowParameterText(image);
    DrawColourBar(image);
    FSSetClip(0, 0, kFrameWidth - 1, kFrameHeight - 1);
    FSSetColour(kRulerColour);
    FSSetTextColour(kTextColour);
    FSSetTextFont(NamedFont(FONT_GENERAL));
    FSSetTextAlign(AlignLeft());
    DrawRuler(image);
    if (withText) DrawTextBlock(image);
    DrawHistogram(image);
    FreeResultItem(copy);
    FSState.ImageDisplaySize = savedSize;
    FSState.TextOverlayOn = savedOverlay;
    SetFSContentsAll(image);
    EndBatchAndShow(0, 0, kFrameWidth - 1, kFrameHeight - 1);
    return 0;
}

void DisplayData()
{
    ImageHeaderType* item = CurrentItem;
    CVfs* vfs = CurrentVfs();
    if (!item || !vfs || vfs->ClientWidth < vfs->BitsWidth) return;
    const uint32_t started = TickMilliseconds();
    if (CheckHeaderIsImageType(item)) {
        if (Display.FullDisplayOn == 1 && !item->FFTData && !item->CITSHeader && !FullDisplaySuppressed)
            FullDisplay(1);
        else
            DisplayImage(item, 1, 1);
    } else if (IsSpectrumClass(item->ImType1)) {
        DisplaySpectrum(item);
    }
    if (DisplayTimingOn) Log("Elapsed time = %d\n", static_cast<int>(TickMilliseconds() - started));
}

void DisplayDataTimed()
{
    const uint32_t started = TickMilliseconds();
    DisplayData();
    Log("Display time = %d\n", static_cast<int>(TickMilliseconds() - started));
}

void ToggleFullDisplay()
{
    ImageHeaderType* image = CurrentItem;
    if (!image || !CheckHeaderIsImageType(image)) {
        Error(ERR_NO_IMAGES);
        return;
    }
    if (!CurrentVFS) return;
    if (Display.FullDisplayOn == 1)
        DisplayImage(image, 1, 1);
    else
        FullDisplay(1);
}

void ResetFullDisplayState()
{
    ThresholdLow = 0;
    ThresholdHigh = 255;
}
