#include "display/cvfs.h"
#include "display/fonts.h"
#include "display/vfs.h"
#include "host/errors.h"
#include "mapping/cits_label.h"
#include "store/units.h"

#include <algorithm>
#include <cmath>
#include <cstdio>

namespace {

constexpr uint8_t kBackModeTransparent = 1;
constexpr int kLabelTop = 8;
constexpr uint32_t kThresholdSource = 26;

} // namespace

CITSSweepScale CITSSweepScaleOf(const ImageHeaderType* image)
{
    const CITSHeaderType* set = image->CITSHeaderPtr;
    double largest = 0.0;
    for (int k = 0; set && k < set->ni; ++k) largest = std::max(largest, std::fabs(static_cast<double>(CITSEntry(set, k)->voltage)));
    CITSSweepScale s{1.0, 0, nullptr};
    if (largest >= 1e6) {
        s.scale = 1e6;
        s.exponent = 6;
    } else if (largest >= 1000.0) {
        s.scale = 1000.0;
        s.exponent = 3;
    }
    s.unit = IsCITSVoltageAxis(image) ? UnitsV(s.exponent) : UnitsZ(s.exponent, 0);
    return s;
}

int CITSLabelDecimals(double value)
{
    const double a = std::fabs(value);
    return a >= 10.0 ? 1 : a >= 1.0 ? 2 : 3;
}

CITSLabelStyle BeginCITSLabels(const ImageHeaderType* image, uint16_t flags)
{
    CITSLabelStyle style{};
    style.align = TextAlignWord(1, 1, (flags & 4) ? kBackModeOpaque : kBackModeTransparent);
    style.scale = CITSSweepScaleOf(image);
    FSSetColour(kCITSLabelColour);
    FSSetTextColour(kCITSLabelTextColour);
    return style;
}

void EndCITSLabels(const CITSLabelStyle& /*style*/) {}

bool CITSFrameLabelText(const CITSLabelStyle& style, const ImageHeaderType* image, int id, int id2, int d64_128,
                        char* out, size_t size)
{
    const CITSHeaderType* set = image->CITSHeaderPtr;
    out[0] = '\0';
    if (id == kCITSTopographyFrame) {
        std::snprintf(out, size, "%s", image->DataSource == kThresholdSource ? "Threshold" : "Topography");
        return true;
    }
    if (id < 0) return false;
    const int mode = set->disp.mode;
    if (mode == 0) {
        const double v = CITSEntry(set, id)->voltage / style.scale.scale;
        const int decimals = CITSLabelDecimals(v);
        if (d64_128 == 0)
            std::snprintf(out, size, "%.*f %s", decimals, v, style.scale.unit);
        else
            std::snprintf(out, size, "%.*f", std::max(decimals - 1, 0), v);
        return true;
    }
    if (mode > 4) {
        ProgramError("cits display string");
        return false;
    }
    if (id2 < 0) return false;
    // The mean of the pair is printed unscaled, in the sweep unit.
    const double mean = (static_cast<double>(CITSEntry(set, id)->voltage) + CITSEntry(set, id2)->voltage) / 2.0;
    if (d64_128 == 0)
        std::snprintf(out, size, "%.3f %s", mean, GetCITSSweepUnit(image));
    else
        std::snprintf(out, size, "%.2f", mean);
    return true;
}

void DrawCITSLabelText(const CITSLabelStyle& style, int x, int y, const RECT& clip, const char* text)
{
    CVfs* vfs = CurrentVfs();
    if (!vfs) return;
    vfs->AddText(x, y, NamedFont(FONT_GENERAL), &clip, text, style.align, IndexColour(kCITSLabelTextColour),
                 IndexColour(kCITSLabelColour));
}

void DrawCITSFrameLabel(const CITSLabelStyle& style, const ImageHeaderType* image, int x, int y, int S, int id, int id2,
                        int d64_128)
{
    char text[64];
    if (!CITSFrameLabelText(style, image, id, id2, d64_128, text, sizeof text)) return;
    const RECT clip{x, y, x + S - 1, y + S - 1};
    DrawCITSLabelText(style, x + S / 2, y + kLabelTop, clip, text);
}
