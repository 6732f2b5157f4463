// Titles and units of the default plot, and the test of a ramp that goes out and back.
#include "display/plot_spectrum.h"
#include "host/errors.h"
#include "host/text.h"
#include "settings/cantilever.h"
#include "store/titles.h"
#include "store/units.h"

#include <cstring>
#include <string>

namespace {

constexpr const char* kBias = "Bias Voltage [V]";
constexpr const char* kDisplacement = "Probe Displacement [nm]";
constexpr const char* kFrequency = "Frequency [Hz]";
constexpr const char* kUnknown = "au";

// The X title of a spectrum by its acquisition mode (or, for a mapping, its mapping kind).
const char* SweepTitle(uint32_t mode, const ImageHeaderType* item)
{
    switch (mode) {
    case 12: case 13: case 19: case 60: return kBias;
    case 14: case 15: case 16: return kDisplacement;
    case 71: return kFrequency;
    case 51:
        switch (item->LMCMode) {
        case 1: return kDisplacement;
        case 2: return kFrequency;
        case 4: return "LM Amplitude [nm]";
        case 8:
            if (item->LMCSweepType == 1) return kDisplacement;
            if (item->LMCSweepType == 2) return kBias;
            return kUnknown;
        default: return kUnknown;
        }
    default: return kUnknown;
    }
}

const char* Calibrated(bool on) { return on ? "Force [nN]" : "Volts [V]"; }

// The X title of a histogram by the channel of its data.
const char* HistogramTitle(const ImageHeaderType* item)
{
    const wint_SPMCalType& cal = CantileverCalibration();
    switch (item->AdcSrc) {
    case 0: return "Grey Level";
    case 1: return "Height [nm]";
    case 4: case 8: return "Current [nA]";
    case 16: case 0x600002: return Calibrated(cal.ForceOn != 0);
    case 32: return Calibrated(cal.FrictionOn != 0);
    case 128: return Calibrated(cal.AmpOn != 0);
    case 512: case 1024: case 2048: case 4096: case 0x20000: case 0x40000: case 0x600001: return "Volts [V]";
    default:
        ProgramError("XTitle adcsrc = %d", static_cast<int>(item->AdcSrc));
        return "Grey Level";
    }
}

// The title of the table, without the item's own text.
const char* TableXTitle(uint32_t imType1, const ImageHeaderType* item)
{
    switch (imType1) {
    case 1:
        if (item->AcqMode == 11 || item->AcqMode == 51) return SweepTitle(item->MapType, item);
        ProgramError("XTitle t1=%d", static_cast<int>(imType1));
        return kUnknown;
    case 2: return SweepTitle(item->AcqMode, item);
    case 3: return "Distance [nm]";
    case 4: return HistogramTitle(item);
    case 5: return kFrequency;
    case 7: return "Phase [deg]";
    case 8: case 9: return "Scan Distance [nm]";
    default: return kUnknown;
    }
}

bool Blank(const char* text, size_t size)
{
    for (size_t i = 0; i < size && text[i]; ++i)
        if (text[i] != ' ') return false;
    return true;
}

// The wrapping of a title by a derivative in the processing list, or null.
const char* const* Wrapping(int code)
{
    static const char* const first[2] = {"d(", ")/dV"};
    static const char* const second[2] = {"d2(", ")/d2V"};
    static const char* const firstLn[2] = {"dLn(", ")/dLnV"};
    static const char* const secondLn[2] = {"d2Ln(", ")/d2LnV"};
    switch (code) {
    case 55: return first;
    case 56: return second;
    case 78: return firstLn;
    case 79: return secondLn;
    default: return nullptr;
    }
}

} // namespace

void XTitle(uint32_t imType1, const ImageHeaderType* item, char* text, size_t size)
{
    if (!text || size == 0) return;
    text[0] = '\0';
    if (!item) return;
    const int n = static_cast<int>(size > 4096 ? 4096 : size);
    if (!Blank(item->SpecXTitle, sizeof item->SpecXTitle)) {
        char stored[sizeof item->SpecXTitle + 1];
        std::memcpy(stored, item->SpecXTitle, sizeof item->SpecXTitle);
        stored[sizeof item->SpecXTitle] = '\0';
        strncpy0(text, stored, n);
        return;
    }
    strncpy0(text, TableXTitle(imType1, item), n);
}

const char* XUnit(uint32_t imType1, const ImageHeaderType* item)
{
    static char unit[16];
    unit[0] = '\0';
    if (!item) return unit;
    const char* title = TableXTitle(imType1, item);
    const char* open = std::strchr(title, '[');
    const char* close = open ? std::strchr(open, ']') : nullptr;
    if (!open || !close) return unit;
    const size_t length = static_cast<size_t>(close - open - 1);
    if (length >= sizeof unit) return unit;
    std::memcpy(unit, open + 1, length);
    unit[length] = '\0';
    return unit;
}

void SpecTitle(const ImageHeaderType* item, char* text, size_t size)
{
    if (!text || size == 0) return;
    text[0] = '\0';
    if (!item) return;
    if (!Blank(item->SpecYTitle, sizeof item->SpecYTitle)) {
        std::string stored(item->SpecYTitle, strnlen(item->SpecYTitle, sizeof item->SpecYTitle));
        strncpy0(text, stored.c_str(), static_cast<int>(size));
        return;
    }
    std::string title = GetImageTitleStr(item);
    if (item->ImType1 != 5) {
        const char* unit = GetImageUnitStr(item, 0, 0);
        if (unit && *unit) {
            title += " [";
            title += unit;
            title += "]";
        }
    }
    for (int i = 0; i < static_cast<int>(sizeof item->ProcessList) && item->ProcessList[i]; ++i) {
        if (title.size() + 15 >= size) break;
        if (const char* const* wrap = Wrapping(item->ProcessList[i])) {
            std::string wrapped = wrap[0];
            wrapped += title;
            wrapped += wrap[1];
            title = wrapped;
        }
    }
    strncpy0(text, title.c_str(), static_cast<int>(size));
}

int IsLapSpec(const ImageHeaderType* item)
{
    if (!item) return 0;
    switch (item->AcqMode) {
    case 15: case 16: return 1;
    case 51: return item->LMCMode == 1 ? 1 : 0;
    case 21: return item->LapFlag != 0 ? 1 : 0;
    default: return 0;
    }
}
