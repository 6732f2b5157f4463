#include "files/sample_data.h"
#include "host/text.h"
#include "mapping/cits.h"
#include "store/data_list.h"
#include "store/image_header.h"
#include "store/memory.h"

#include <algorithm>
#include <cfloat>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <vector>

namespace {

using ModelFn = double (*)(int x, int y, int k, const void* context);

struct SetModel {
    int size;
    int images;
    uint32_t dataType;
    const char* unitTitle;       // title of every image, "%s %.3f" with the sweep value
    double (*sweep)(int k);
    ModelFn value;
    double (*height)(int x, int y, const void* context);   // the topography
    const void* context;
};

// The texts of a sample item.
struct ItemTexts {
    const char* title;
    const char* fileName;
    const char* note;
};

bool InDisc(int x, int y)
{
    using namespace SampleForceMapping;
    return std::hypot(x - kDiscX, y - kDiscY) <= kDiscRadius;
}

double PullOff(int x, int y)
{
    using namespace SampleForceMapping;
    return InDisc(x, y) ? kPullOffInside : kPullOffOutside;
}

double ContactZ(int x, bool step)
{
    using namespace SampleForceMapping;
    return step && x >= kStepColumn ? kContact - kStep : kContact;
}

// The set of the model: one entry and one plane per sweep value, all planes between the
// lowest and the highest model value.
CITSHeaderType* MakeSet(const SetModel& model)
{
    double low = DBL_MAX, high = -DBL_MAX;
    for (int k = 0; k < model.images; ++k)
        for (int y = 0; y < model.size; ++y)
            for (int x = 0; x < model.size; ++x) {
                const double v = model.value(x, y, k, model.context);
                low = std::min(low, v);
                high = std::max(high, v);
            }
    if (high <= low) high = low + 1.0;
    const auto side = static_cast<int16_t>(model.size);
    CITSHeaderType* set = AllocateCITSDataSet(model.images, side, side);
    if (!set) return nullptr;
    for (int k = 0; k < model.images; ++k) {
        CITSImageEntryType* entry = CITSEntry(set, k);
        entry->raw_low = -32768;
        entry->raw_high = 32767;
        entry->adc_gain = 1;
        entry->i_divider = 1;
        entry->voltage = static_cast<float>(model.sweep(k));
        entry->z_low = static_cast<float>(low);
        entry->z_high = static_cast<float>(high);
        entry->data_type = model.dataType;
        std::snprintf(entry->title, sizeof entry->title, "%s %.3f", model.unitTitle, entry->voltage);
        uint16_t* pixels = CITSPixels(entry);
        const float span = entry->z_high - entry->z_low;
        for (int y = 0; y < model.size; ++y)
            for (int x = 0; x < model.size; ++x) {
                const double code = (model.value(x, y, k, model.context) - entry->z_low) / span * 65535.0;
                pixels[static_cast<size_t>(y) * model.size + x] =
                    static_cast<uint16_t>(std::clamp(std::lround(code), 0L, 65535L));
            }
    }
    return set;
}

// The topography item with its set, its texts and its side in nm, or null (reported) with the
// list as it was.
ImageHeaderType* MakeMappingItem(ImageHeaderType* after, const SetModel& model, const ItemTexts& texts, float sizeNm)
{
    std::vector<double> heights(static_cast<size_t>(model.size) * model.size);
    for (int y = 0; y < model.size; ++y)
        for (int x = 0; x < model.size; ++x)
            heights[static_cast<size_t>(y) * model.size + x] = model.height(x, y, model.context);
    ImageHeaderType* item = ImageFromHeights(after, heights, model.size);
    if (!item) return nullptr;
    CITSHeaderType* set = MakeSet(model);
    if (!set) {
        FreeMem(item->PixHandle, item->PixData);
        item->PixData = nullptr;
        UnlinkListItem(item);
        return nullptr;
    }
    SetCITSBlock(item, set);
    item->SPMData = 1;
    item->ScanRevNo = 700;
    item->AcqMode = 11;
    item->AdcSrc = 1;
    item->DataSource = 1;
    item->ScanMode = 2;
    item->ClockSpeed = 1.0f;
    strncpy0(item->Title, texts.title, sizeof item->Title);
    strncpy0(item->FileName, texts.fileName, sizeof item->FileName);
    strncpy0(item->GeneralText[0], texts.note, sizeof item->GeneralText[0]);
    item->ImageSizeX = item->ImageSizeY = sizeNm;
    return item;
}

double IVValue(int x, int y, int k, const void*) { return SampleIVMappingValue(x, y, k); }
double ForceValue(int x, int y, int k, const void* context)
{
    return SampleForceMappingValue(x, y, k, *static_cast<const bool*>(context));
}
double FVValue(int x, int y, int k, const void*) { return SampleFVMappingValue(x, y, k); }

// The topographies: two domains on a tilt; the contact height, with or without the step; a
// step at the middle column.
double IVHeight(int x, int y, const void*)
{
    using namespace SampleIVMapping;
    return kTilt * x + (x + y / 2.0 < kDomainEdge ? 0.0 : kDomainStep);
}
double ForceHeight(int x, int, const void* context)
{
    using namespace SampleForceMapping;
    return kContact - ContactZ(x, *static_cast<const bool*>(context));
}
double FVHeight(int x, int, const void*)
{
    using namespace SampleFVMapping;
    return x >= kSize / 2 ? 0.2 : 0.0;
}

} // namespace

double SampleIVMappingBias(int k)
{
    using namespace SampleIVMapping;
    return kLowBias + (kHighBias - kLowBias) * k / (kImages - 1);
}

double SampleIVMappingValue(int x, int y, int k)
{
    using namespace SampleIVMapping;
    const double v = static_cast<float>(SampleIVMappingBias(k));   // the bias as the entry holds it
    const double g = x + y / 2.0 < kDomainEdge ? kConductanceA : kConductanceB;
    return g * (v + kCubic * v * v * v);
}

double SampleForceMappingZ(int k)
{
    using namespace SampleForceMapping;
    const int half = kImages / 2;
    return k < half ? kTravel * k / (half - 1) : kTravel * (kImages - 1 - k) / (half - 1);
}

double SampleForceMappingValue(int x, int y, int k, bool step)
{
    using namespace SampleForceMapping;
    const double z = static_cast<float>(SampleForceMappingZ(k));
    const double contact = ContactZ(x, step);
    if (k < kImages / 2) return z < contact ? 0.0 : kStiffness * (z - contact);
    return z >= contact - PullOff(x, y) ? kStiffness * (z - contact) : 0.0;
}

double SampleFVMappingBias(int k)
{
    using namespace SampleFVMapping;
    return kLowBias + kBiasStep * k;
}

double SampleFVMappingValue(int x, int y, int k)
{
    using namespace SampleFVMapping;
    (void)y;
    const double v = static_cast<float>(SampleFVMappingBias(k));
    const double v0 = kV0Left + (kV0Right - kV0Left) * x / (kSize - 1);
    return kCurvature * (v + v0) * (v + v0) + kOffset;
}

ImageHeaderType* MakeSampleIVMapping(ImageHeaderType* after)
{
    using namespace SampleIVMapping;
    const SetModel model{kSize, kImages, 4, "I at", SampleIVMappingBias, IVValue, IVHeight, nullptr};
    ImageHeaderType* item =
        MakeMappingItem(after, model,
                        {"I-V mapping, two domains", "Sample I-V mapping", "Built-in sample: I-V mapping 64 x 64 x 128"},
                        kSizeNm);
    if (!item) return nullptr;
    item->MapType = 12;
    item->BiasVoltage = 1.0f;
    item->TunnelCurrent = 0.5f;
    return item;
}

ImageHeaderType* MakeSampleForceMapping(ImageHeaderType* after, bool step)
{
    using namespace SampleForceMapping;
    const SetModel model{kSize, kImages, 16, "F at", SampleForceMappingZ, ForceValue, ForceHeight, &step};
    ImageHeaderType* item = MakeMappingItem(after, model,
                                            {step ? "Force mapping, disc and step" : "Force mapping, disc",
                                             "Sample force mapping", "Built-in sample: force-curve mapping 64 x 64 x 128"},
                                            kSizeNm);
    if (!item) return nullptr;
    item->ScanMode = 1;
    item->AFMMode = 1;
    item->MapType = 15;
    item->LMCThreshold1On = 1;
    item->LMCThreshold1 = -kThreshold;
    item->LMCPoints = kSize;
    if (!AllocateHitRecords(item, kSize, kSize)) {
        // Without hit data the mapping is still whole.
        return item;
    }
    for (int y = 0; y < kSize; ++y)
        for (int x = 0; x < kSize; ++x) {
            if (kStiffness * PullOff(x, y) <= kThreshold) continue;
            LMCThresholdHitType record;
            std::memset(&record, 0, sizeof record);
            record.hit = 1;
            record.channel = 16;
            record.position = static_cast<float>(ContactZ(x, step) - PullOff(x, y));
            std::memcpy(item->LMCHitDataPtr + (static_cast<size_t>(y) * kSize + x) * sizeof record, &record, sizeof record);
        }
    return item;
}

ImageHeaderType* MakeSampleForceMappingWithStep(ImageHeaderType* after) { return MakeSampleForceMapping(after, true); }

ImageHeaderType* MakeSampleFVMapping(ImageHeaderType* after)
{
    using namespace SampleFVMapping;
    const SetModel model{kSize, kImages, 16, "F at", SampleFVMappingBias, FVValue, FVHeight, nullptr};
    ImageHeaderType* item = MakeMappingItem(
        after, model, {"F-V mapping, potential ramp", "Sample F-V mapping", "Built-in sample: F-V mapping 32 x 32 x 81"},
        kSizeNm);
    if (!item) return nullptr;
    item->ScanMode = 1;
    item->AFMMode = 2;
    item->MapType = 60;
    return item;
}
