#include "display/scale_bars.h"
#include "display/display_param.h"
#include "display/fonts.h"
#include "display/vfs.h"
#include "store/value_text.h"

#include <cmath>
#include <cstdio>

namespace {

constexpr int kLongestFirstGuess = 100;
constexpr int kBarInset = 6;
constexpr int kLabelInset = 9;
constexpr int kBarWidth = 2;
constexpr int kBarTextColour = 6;
constexpr float kNanometresPerMicrometre = 1000.0f;

} // namespace

ScaleBar ChooseScaleBar(int left, int right, float imageSizeX)
{
    ScaleBar bar{};
    bar.length = (right - left) / 2;
    if (bar.length > kLongestFirstGuess) bar.length = kLongestFirstGuess;
    bar.size = static_cast<float>(bar.length) * imageSizeX / static_cast<float>(right - left + 1);
    if (!(bar.size > 0.0f) || !std::isfinite(bar.size)) return bar;
    const float p = std::pow(10.0f, std::floor(std::log10(bar.size)));
    const float m = bar.size / p;
    float factor;
    if (m <= 1.5f)
        factor = 1.0f / m;
    else if (m <= 2.5f)
        factor = 2.0f / m;
    else if (m <= 7.5f)
        factor = 5.0f / m;
    else
        factor = 10.0f / m;
    bar.size *= factor;
    bar.length = static_cast<int>(static_cast<float>(bar.length) * factor);
    return bar;
}

void DrawScaleBars(int left, int top, int right, int bottom, const ImageHeaderType* image)
{
    CVfs* vfs = CurrentVfs();
    if (!vfs || !image || right <= left || bottom <= top || !image->SPMData || image->FFTData ||
        Display.ScaleBarMode == SCALE_BAR_NONE)
        return;
    const float sizeX = image->ImageSizeX, sizeY = image->ImageSizeY;
    const ScaleBar bar = ChooseScaleBar(left, right, sizeX);
    if (!(bar.size > 0.0f) || !std::isfinite(bar.size)) return;

    BeginBatch();
    const FontRecType& font = NamedFont(FONT_BAR);
    const uint32_t colour = font.FontColour;
    const int x0 = left + kBarInset, y0 = bottom - kBarInset;
    if (Display.ScaleBarMode != SCALE_BAR_Y) vfs->AddLine(x0, y0, x0 + bar.length, y0, colour, kBarWidth);
    if (Display.ScaleBarMode != SCALE_BAR_X && sizeY != 0.0f) {
        const float rise = static_cast<float>(bar.length) * sizeX / sizeY * static_cast<float>(bottom - top + 1) /
                           static_cast<float>(right - left + 1);
        vfs->AddLine(x0, y0, x0, FrameInt(static_cast<double>(y0) - rise), colour, kBarWidth);
    }
    char text[64];
    if (bar.size >= kNanometresPerMicrometre) {
        const double um = bar.size / kNanometresPerMicrometre;
        std::snprintf(text, sizeof text, "%.*f um", DecimalsFor(um), um);
    } else {
        std::snprintf(text, sizeof text, "%.*f nm", DecimalsFor(bar.size), static_cast<double>(bar.size));
    }
    vfs->AddText(left + kLabelInset, bottom - kLabelInset, font, nullptr, text, TextAlignWord(0, 0, 0),
                 IndexColour(kBarTextColour), kWhite);
    EndBatchAndShow(left, top, right, bottom);
}
