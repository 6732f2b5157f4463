// The two live slider dialogues on an image's table: contrast, brightness and gamma (id 500),
// and the threshold pair (id 201). While one runs, the item the user started from is put
// aside, a working copy is current, and only the palette changes; accept gives the copy its
// new table, cancel frees it.
#include "image/contrast.h"
#include "display/contrast_map.h"
#include "display/current_image.h"
#include "display/default_tables.h"
#include "display/frame_commands.h"
#include "display/full_display.h"
#include "display/lut.h"
#include "display/palette.h"
#include "display/scroll_bars.h"
#include "display/vfs.h"
#include "host/errors.h"
#include "host/log.h"
#include "host/prompts.h"
#include "image/z_range.h"
#include "store/data_list.h"
#include "store/duplicate.h"
#include "store/history.h"
#include "store/image_header.h"
#include "store/units.h"

#include <cmath>
#include <cstdio>
#include <cstring>

namespace {

constexpr int kContrastSliders = 500;
constexpr int kThresholdSliders = 201;
constexpr int kContrastCode = 81;
constexpr int kThresholdCode = 47;

struct LutDialogue {
    bool LutInProgress = false;
    ImageHeaderType* held = nullptr;     // the item the user started from
    ImageHeaderType* copy = nullptr;     // the working copy, current while the dialogue runs
    uint16_t saved[3][256] = {};         // the output table in force at the start
    uint16_t working[3][256] = {};
    float last[3] = {NAN, NAN, NAN};
};
LutDialogue g_dialogue;

// The start of a dialogue on the current item: it is put aside and a copy with an identity
// table becomes current. False after the report.
bool StartDialogue()
{
    ImageHeaderType* source = RequireReadableImage();
    if (!source) return false;
    ImageHeaderType* copy = CopyImageItem(source);
    if (!copy) return false;
    IdentityTable(copy->ImageLUT);
    g_dialogue = LutDialogue{};
    g_dialogue.held = source;
    g_dialogue.copy = copy;
    GetOutputLUT(CurrentOutputLUT(), g_dialogue.saved[0], g_dialogue.saved[1], g_dialogue.saved[2]);
    g_dialogue.LutInProgress = true;
    CurrentItem = copy;
    return true;
}

// The live preview: the ramp of the saved table through the map goes to the output table, the
// fixed drawing colours kept. In True-RGB mode the full display is drawn with the table the
// accept would give, when a value has changed.
void Preview(float brightness, float contrast, float gamma, bool plainOnAccept)
{
    uint8_t entries[256] = {};
    const RampThresholds t = ContrastRampMap(brightness, ContrastAngle(contrast), gamma, entries);
    ThresholdLow = t.low;
    ThresholdHigh = t.high;
    for (int p = 0; p < 3; ++p) {
        std::memcpy(g_dialogue.working[p], g_dialogue.saved[p], sizeof g_dialogue.working[p]);
        for (int i = kRampFirst; i <= kRampLast; ++i) g_dialogue.working[p][i] = g_dialogue.saved[p][entries[i]];
    }
    for (int i = 0; i < kFixedColours; ++i) {
        uint8_t r, g, b;
        FixedColour(i, &r, &g, &b);
        g_dialogue.working[0][i] = r;
        g_dialogue.working[1][i] = g;
        g_dialogue.working[2][i] = b;
    }
    SetOutputLUT(CurrentOutputLUT(), g_dialogue.working[0], g_dialogue.working[1], g_dialogue.working[2]);
    const float values[3] = {brightness, contrast, gamma};
    const bool changed = std::memcmp(values, g_dialogue.last, sizeof values) != 0;
    std::memcpy(g_dialogue.last, values, sizeof values);
    if (TrueRGB && changed && CurrentVFS && plainOnAccept) {
        if (g_dialogue.copy->ColourImage)
            ColourContrastTable(brightness, contrast, gamma, g_dialogue.copy->ImageLUT);
        else
            PlainContrastTable(brightness, contrast, gamma, g_dialogue.copy->ImageLUT);
        FullDisplay(0);
    }
}

// The common end of both dialogues: thresholds idle, the saved table back in force.
void EndPreview()
{
    ThresholdLow = 0;
    ThresholdHigh = 255;
    SetOutputLUT(CurrentOutputLUT(), g_dialogue.saved[0], g_dialogue.saved[1], g_dialogue.saved[2]);
}

void Cancel()
{
    EndPreview();
    if (IsInList(g_dialogue.copy)) FreeResultItem(g_dialogue.copy);
    if (IsInList(g_dialogue.held)) CurrentItem = g_dialogue.held;
    DisplayData();
}

void CloseDialogue() { g_dialogue = LutDialogue{}; }

// A dialogue whose working copy has left the list meanwhile (erased by another command) is
// over: the palette goes back, and the next move starts afresh.
void DropLostDialogue()
{
    if (!g_dialogue.LutInProgress || IsInList(g_dialogue.copy)) return;
    EndPreview();
    CloseDialogue();
}

int ContrastMove(int state, const float* values, int count)
{
    return AdjustContrast(values[0], values[1], count >= 3 ? values[2] : 1.0f, state);
}

int ThresholdMove(int state, const float* values, int count)
{
    const ImageHeaderType* image = RequireReadableImage();
    if (!image) return 1;
    const int low = ThresholdLevel(image, values[0]);
    const int high = ThresholdLevel(image, count >= 2 ? values[1] : values[0]);
    return AdjustThresholds(low, high, state);
}

void SliderBar(wint_ScrollBarParamType* bar, const char* title, float min, float max, float value, float small,
               float large)
{
    std::memset(bar, 0, sizeof *bar);
    bar->Min = min;
    bar->Max = max;
    bar->Value = value;
    std::snprintf(bar->Title, sizeof bar->Title, "%s", title);
    std::snprintf(bar->MinText, sizeof bar->MinText, "%.1f", static_cast<double>(min));
    std::snprintf(bar->MaxText, sizeof bar->MaxText, "%.1f", static_cast<double>(max));
    bar->SmallStep = small;
    bar->LargeStep = large;
    bar->Flag = 1;
}

} // namespace

int16_t FixZScaleVFS = -1;

bool LutDialogueRunning() { return g_dialogue.LutInProgress; }

void AdjustLUT()
{
    const ImageHeaderType* image = RequireReadableImage();
    if (!image) return;
    if (TrueRGB && FullDisplay(0) != 0) return;
    wint_ScrollBarParamType bars[3];
    SliderBar(&bars[0], "Brightness", -128.0f, 128.0f, image->Brightness, 1.0f, 10.0f);
    SliderBar(&bars[1], "Contrast", 0.0f, 256.0f, image->Contrast, 1.0f, 10.0f);
    SliderBar(&bars[2], "Gamma", 0.1f, 10.0f, image->Gamma, 0.1f, 1.0f);
    SetSliderCommand(kContrastSliders, ContrastMove);
    OpenScrollBar3(&bars[0], &bars[1], &bars[2], kContrastSliders, 0);
}

int AdjustContrast(float brightness, float contrast, float gamma, int state)
{
    DropLostDialogue();
    if (!g_dialogue.LutInProgress && !StartDialogue()) return 1;
    Preview(brightness, contrast, gamma, true);
    if (state != 1 && state != 2) return 0;
    ImageHeaderType* copy = g_dialogue.copy;
    TitleBuffer title;
    TitleText(copy, title);
    if (state == 1) {
        EndPreview();
        if (CurrentVFS) ClearFrameStore();
        if (copy->ColourImage)
            ColourContrastTable(brightness, contrast, gamma, copy->ImageLUT);
        else
            PlainContrastTable(brightness, contrast, gamma, copy->ImageLUT);
        copy->Brightness = brightness;
        copy->Contrast = contrast;
        copy->Gamma = gamma;
        AddImProc2List(copy, kContrastCode);
        CurrentItem = copy;
        DisplayData();
    } else {
        Cancel();
    }
    Log("Adjust contrast and brightness of '%s'\n", title);
    CloseDialogue();
    return 0;
}

int ThresholdLevel(const ImageHeaderType* image, float value)
{
    const double raw = ImageDataValue2Calibrated(image, value, 1);
    const double range = static_cast<double>(image->Zhi) - image->Zlo;
    if (range == 0.0 || !std::isfinite(range)) return 0;
    const double level = (raw - image->Zlo) * 65535.0 / range / 256.0;
    if (!(level > 0.0)) return 0;
    return level >= 255.0 ? 255 : static_cast<int>(level);
}

void SetWindow()
{
    const ImageHeaderType* image = RequireReadableImage();
    if (!image) return;
    const float lo = GetImageDataValue(1, 0.0f, image), hi = GetImageDataValue(1, 65535.0f, image);
    const float range = hi - lo;
    const char* unit = GetImageUnitStr(image, 0, 0);
    char low[80], high[80];
    std::snprintf(low, sizeof low, "Low Threshold [%s]", unit);
    std::snprintf(high, sizeof high, "High Threshold [%s]", unit);
    wint_ScrollBarParamType bars[2];
    SliderBar(&bars[0], low, lo, hi, lo, range / 256.0f, range / 25.6f);
    SliderBar(&bars[1], high, lo, hi, hi, range / 256.0f, range / 25.6f);
    SetSliderCommand(kThresholdSliders, ThresholdMove);
    OpenScrollBar2(&bars[0], &bars[1], kThresholdSliders, 0);
}

int AdjustThresholds(int low, int high, int state)
{
    if (high < low) high = low;
    DropLostDialogue();
    if (!g_dialogue.LutInProgress) {
        const ImageHeaderType* image = RequireReadableImage();
        if (!image) return 1;
        if (!IsIdentityTable(image->ImageLUT)) {
            ShowInfo("Original LUT had been changed.\n Tavrin will make a new Image.");
            if (!TransformThroughLUT()) return 1;
        }
        if (!StartDialogue()) return 1;
    }
    const ThresholdSettings s = ThresholdBrightnessContrast(low, high);
    Preview(s.brightness, s.contrast, 1.0f, false);
    if (state != 1 && state != 2) return 0;
    if (state == 2) {
        Cancel();
        CloseDialogue();
        return 0;
    }
    ImageHeaderType* copy = g_dialogue.copy;
    EndPreview();
    if (CurrentVFS) ClearFrameStore();
    ThresholdBandTable(low, high, copy->ImageLUT);
    copy->Brightness = s.brightness;
    copy->Contrast = s.contrast;
    AddImProc2List(copy, kThresholdCode);
    CurrentItem = copy;
    DisplayData();
    if (AskYesNo("Transform underlying image data?", false) == 1) {
        // The codes take the stretch the table showed; the table goes back to the identity, so
        // that the picture stays the one the user accepted.
        // The Z range follows the header as it was before the change.
        const ImageHeaderType before = *copy;
        const size_t n = static_cast<size_t>(copy->nx) * static_cast<size_t>(copy->ny);
        for (size_t i = 0; i < n; ++i) copy->PixData[i] = ThresholdCode(copy->PixData[i], low, high);
        SetZRangeFromCodes(copy, &before, low * 256, high * 256);
        IdentityTable(copy->ImageLUT);
        DisplayData();
    }
    CloseDialogue();
    return 0;
}

void ResetContrastState()
{
    g_dialogue = LutDialogue{};
    FixZScaleVFS = -1;
}
