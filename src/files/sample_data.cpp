#include "files/sample_data.h"
#include "host/text.h"
#include "store/data_list.h"
#include "store/image_header.h"
#include "store/memory.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <vector>

namespace {

constexpr double kPi = 3.14159265358979323846;

// A small deterministic generator (SplitMix64) and normal deviates by Box-Muller, so that the
// data are the same on every machine and with every standard library.
struct Random {
    uint64_t state;
    uint64_t Next()
    {
        uint64_t z = (state += 0x9E3779B97F4A7C15ull);
        z = (z ^ (z >> 30)) * 0xBF58476D1CE4E5B9ull;
        z = (z ^ (z >> 27)) * 0x94D049BB133111EBull;
        return z ^ (z >> 31);
    }
    double Uniform() { return static_cast<double>(Next() >> 11) * (1.0 / 9007199254740992.0); }
    double Normal()
    {
        double u1 = std::max(Uniform(), 1e-300), u2 = Uniform();
        return std::sqrt(-2.0 * std::log(u1)) * std::cos(2 * kPi * u2);
    }
};

void SetText(char* field, size_t size, const char* text) { strncpy0(field, text, static_cast<int>(size)); }

// The header fields every sample shares: an instrument record of this revision.
void CommonFields(ImageHeaderType* r, const char* title, const char* fileName)
{
    r->SPMData = 1;
    SetText(r->Title, sizeof r->Title, title);
    SetText(r->FileName, sizeof r->FileName, fileName);
    r->ScanRevNo = 700;
    r->ProcessListOff = 0;
}

} // namespace

ImageHeaderType* SpectrumFromSamples(ImageHeaderType* after, const std::vector<double>& x,
                                     const std::vector<double>& y)
{
    int n = static_cast<int>(x.size());
    ImageHeaderType* item = AllocateListItem(after);
    if (!item) return nullptr;
    float* samples = AllocSpecMem(n);
    if (!samples) {
        UnlinkListItem(item);
        return nullptr;
    }
    InitImageHeader(item, n, 1);
    item->ImType1 = 2;
    item->PixHandle = 1;
    item->PixData = reinterpret_cast<uint16_t*>(samples);
    for (int i = 0; i < n; ++i) {
        samples[i] = static_cast<float>(y[i]);
        samples[n + i] = static_cast<float>(x[i]);
    }
    auto [lo, hi] = std::minmax_element(y.begin(), y.end());
    item->Zlo = static_cast<float>(*lo);
    item->Zhi = static_cast<float>(*hi);
    return item;
}

namespace {

void PlaceParticles(SampleParticle* out)
{
    using namespace SampleTopography;
    Random random{kSeed ^ 0xC0FFEEull};
    int placed = 0;
    const double margin = 2 * kParticleRadius, spacing = 3 * kParticleRadius;
    while (placed < kParticleCount) {
        double x = margin + random.Uniform() * (kSizeNm - 2 * margin);
        double y = margin + random.Uniform() * (kSizeNm - 2 * margin);
        bool clear = true;
        for (int i = 0; i < placed && clear; ++i) clear = std::hypot(out[i].x - x, out[i].y - y) >= spacing;
        if (clear) out[placed++] = {x, y};
    }
}

} // namespace

ImageHeaderType* ImageFromHeights(ImageHeaderType* after, const std::vector<double>& z, int n)
{
    ImageHeaderType* item = AllocateListItem(after);
    if (!item) return nullptr;
    MemHandleType pixels;
    if (!AllocateMem(static_cast<size_t>(n) * n, 2, &pixels)) {
        UnlinkListItem(item);
        return nullptr;
    }
    InitImageHeader(item, n, n);
    item->PixHandle = pixels.Handle;
    item->PixData = static_cast<uint16_t*>(pixels.Ptr);
    auto [lo, hi] = std::minmax_element(z.begin(), z.end());
    double range = *hi - *lo > 0 ? *hi - *lo : 1.0;
    for (size_t i = 0; i < z.size(); ++i)
        item->PixData[i] = static_cast<uint16_t>(std::lround((z[i] - *lo) / range * 65535.0));
    item->Zlo = static_cast<float>(*lo);
    item->Zhi = static_cast<float>(*lo + range);
    return item;
}

void SampleTopographyParticles(SampleParticle out[SampleTopography::kParticleCount]) { PlaceParticles(out); }

ImageHeaderType* MakeSampleTopography(ImageHeaderType* after)
{
    using namespace SampleTopography;
    SampleParticle particles[kParticleCount];
    PlaceParticles(particles);
    Random random{kSeed};
    std::vector<double> rowOffset(kSize);
    for (double& o : rowOffset) o = (2 * random.Uniform() - 1) * kRowOffset;
    const double pixel = kSizeNm / kSize, centre = kSizeNm / 2;
    // The sphere whose cap has the given radius and height.
    const double sphere = (kParticleRadius * kParticleRadius + kParticleHeight * kParticleHeight) / (2 * kParticleHeight);
    std::vector<double> z(static_cast<size_t>(kSize) * kSize);
    for (int row = 0; row < kSize; ++row) {
        double y = (row + 0.5) * pixel;
        for (int col = 0; col < kSize; ++col) {
            double x = (col + 0.5) * pixel;
            double h = kTiltX * x + kTiltY * y;
            h += kBow * ((x - centre) * (x - centre) + (y - centre) * (y - centre)) / (centre * centre);
            h += kStepHeight * std::floor((x + 0.35 * y) / kTerraceWidth);
            h += rowOffset[row];
            for (const SampleParticle& p : particles) {
                double d2 = (x - p.x) * (x - p.x) + (y - p.y) * (y - p.y);
                if (d2 < kParticleRadius * kParticleRadius) h += std::sqrt(sphere * sphere - d2) - (sphere - kParticleHeight);
            }
            h += kNoise * random.Normal();
            z[static_cast<size_t>(row) * kSize + col] = h;
        }
    }
    ImageHeaderType* item = ImageFromHeights(after, z, kSize);
    if (!item) return nullptr;
    CommonFields(item, "Au(111) terraces with clusters", "Sample topography");
    item->ImageSizeX = item->ImageSizeY = kSizeNm;
    item->ScanMode = 2;
    item->AcqMode = 3;
    item->AdcSrc = 1;
    item->DataSource = 1;
    item->BiasVoltage = 1.2f;
    item->TunnelCurrent = 0.5f;
    item->ClockSpeed = 1.0f;
    item->LoopGain = 4;
    item->ScanDirection = 1;
    SetText(item->GeneralText[0], sizeof item->GeneralText[0], "Built-in sample: STM, 24 clusters");
    return item;
}

ImageHeaderType* MakeSampleLattice(ImageHeaderType* after)
{
    using namespace SampleLattice;
    Random random{kSeed};
    const double pixel = kSizeNm / kSize;
    // Three reciprocal directions of a hexagonal lattice: a wave of period a * sqrt(3) / 2
    // along each.
    const double k = 2 * kPi / (kLatticeConstant * std::sqrt(3.0) / 2);
    std::vector<double> z(static_cast<size_t>(kSize) * kSize);
    for (int row = 0; row < kSize; ++row) {
        double y = (row + 0.5) * pixel;
        for (int col = 0; col < kSize; ++col) {
            double x = (col + 0.5) * pixel + kDriftShear * y;
            double h = 0;
            for (int d = 0; d < 3; ++d) {
                double angle = kPi / 6 + d * kPi / 3;
                h += std::cos(k * (x * std::cos(angle) + y * std::sin(angle)));
            }
            z[static_cast<size_t>(row) * kSize + col] = kCorrugation * h / 3 + kNoise * random.Normal();
        }
    }
    ImageHeaderType* item = ImageFromHeights(after, z, kSize);
    if (!item) return nullptr;
    CommonFields(item, "Graphite lattice, drift", "Sample lattice");
    item->ImageSizeX = item->ImageSizeY = kSizeNm;
    item->ScanMode = 2;
    item->AcqMode = 4;
    item->AdcSrc = 1;
    item->DataSource = 1;
    item->BiasVoltage = 0.05f;
    item->TunnelCurrent = 2.0f;
    item->ClockSpeed = 0.2f;
    return item;
}

ImageHeaderType* MakeSampleIVCurve(ImageHeaderType* after)
{
    using namespace SampleIVCurve;
    Random random{kSeed};
    std::vector<double> x(kPoints), y(kPoints);
    for (int i = 0; i < kPoints; ++i) {
        double v = -1.0 + 2.0 * i / (kPoints - 1);
        x[i] = v;
        y[i] = kConductance * (v + kCubic * v * v * v) + kNoise * random.Normal();
    }
    ImageHeaderType* item = SpectrumFromSamples(after, x, y);
    if (!item) return nullptr;
    CommonFields(item, "I-V on terrace", "Sample I-V curve");
    item->ScanMode = 2;
    item->AcqMode = 12;
    item->AdcSrc = 4;
    item->DataSource = 2;
    item->BiasVoltage = 1.0f;
    item->TunnelCurrent = 0.5f;
    item->STSPosX = 128;
    item->STSPosY = 200;
    SetText(item->SpecXTitle, sizeof item->SpecXTitle, "Bias [V]");
    SetText(item->SpecYTitle, sizeof item->SpecYTitle, "Current [nA]");
    return item;
}

ImageHeaderType* MakeSampleForceCurve(ImageHeaderType* after)
{
    using namespace SampleForceCurve;
    Random random{kSeed};
    std::vector<double> x(kPoints), y(kPoints);
    for (int i = 0; i < kPoints; ++i) {
        double z = 200.0 * i / (kPoints - 1);
        double d = 0;
        if (z >= kContact) d = kSlope * (z - kContact);
        else if (z > kContact - kAdhesionRange) d = kAdhesion * (z - (kContact - kAdhesionRange)) / kAdhesionRange;
        x[i] = z;
        y[i] = d + kNoise * random.Normal();
    }
    ImageHeaderType* item = SpectrumFromSamples(after, x, y);
    if (!item) return nullptr;
    CommonFields(item, "Force curve on mica", "Sample force curve");
    item->ScanMode = 1;
    item->AFMMode = 1;
    item->AcqMode = 15;
    item->AdcSrc = 16;
    item->DataSource = 8;
    SetText(item->SpecXTitle, sizeof item->SpecXTitle, "Displacement [nm]");
    SetText(item->SpecYTitle, sizeof item->SpecYTitle, "Deflection [V]");
    return item;
}
