#include "display/histogram_display.h"
#include "display/current_image.h"
#include "display/full_display.h"
#include "display/plot.h"
#include "display/plot_spectrum.h"
#include "display/render_histogram.h"
#include "host/errors.h"
#include "host/log.h"
#include "host/text.h"
#include "store/data_list.h"
#include "store/image_header.h"
#include "store/memory.h"
#include "store/units.h"

#include <cstring>

namespace {

constexpr int kLevels = kHistogramBins;

// The histogram item behind `image`: the header fields that name its values, 256 points.
ImageHeaderType* MakeHistogramItem(ImageHeaderType* image, const float* values, const int32_t* bins)
{
    ImageHeaderType* item = AllocateListItem(image);
    if (!item) return nullptr;
    float* samples = AllocSpecMem(kLevels);
    if (!samples) {
        UnlinkListItem(item);
        CurrentItem = image;
        return nullptr;
    }
    InitImageHeader(item, kLevels, 1);
    item->ImType1 = IMTYPE_HISTOGRAM;
    item->SPMData = image->SPMData;
    item->DataSource = image->DataSource;
    item->AdcSrc = image->AdcSrc;
    item->Zlo = image->Zlo;
    item->Zhi = image->Zhi;
    strncpy0(item->Title, "Histogram", sizeof item->Title);
    item->PixHandle = 1;
    item->PixData = reinterpret_cast<uint16_t*>(samples);
    for (int i = 0; i < kLevels; ++i) {
        samples[i] = values[i];
        samples[kLevels + i] = static_cast<float>(bins[i]);
    }
    return item;
}

} // namespace

void DisplayImageLUT()
{
    const ImageHeaderType* image = RequireReadableImage();
    if (!image) return;
    float x[kLevels], y[kLevels];
    for (int i = 0; i < kLevels; ++i) {
        x[i] = static_cast<float>(i);
        y[i] = image->ImageLUT[i];
    }
    DisplaySpecWithSettings(nullptr, x, y, kLevels, PlotParam.LogAxisX, PlotParam.LogAxisY, 0, 1, kPlotCurveColour,
                            "data value", "LUT level", 0);
    TitleBuffer title;
    Log("Display LUT of '%s'\n", TitleText(image, title));
}

ImageHeaderType* DisplayHistogram()
{
    ImageHeaderType* image = RequireReadableImage();
    if (!image) return nullptr;
    int32_t bins[kLevels];
    CalcHistogram(image, bins);
    float x[kLevels], y[kLevels];
    for (int i = 0; i < kLevels; ++i) {
        x[i] = GetImageDataValue(1, static_cast<float>(i << 8), image);
        y[i] = static_cast<float>(bins[i]);
    }
    char xtitle[80];
    XTitle(IMTYPE_HISTOGRAM, image, xtitle, sizeof xtitle);
    DisplaySpecWithSettings(nullptr, x, y, kLevels, PlotParam.LogAxisX, PlotParam.LogAxisY, 1, 1, kPlotCurveColour,
                            xtitle, "Grey level histogram", 0);
    // The item keeps the stored values, as the other items of the list.
    for (int i = 0; i < kLevels; ++i) x[i] = static_cast<float>(ImageDataValue2Calibrated(image, x[i], 1));
    ImageHeaderType* item = MakeHistogramItem(image, x, bins);
    if (!item) return nullptr;
    CurrentItem = item;
    DisplayData();
    TitleBuffer title;
    Log("Display histogram of '%s'.\n", TitleText(image, title));
    return item;
}
