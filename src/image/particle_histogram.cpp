// The object histogram of the band page: counts of shape, perimeter or area in equal bins
// from the smallest to the largest value.
#include "image/particle_state.h"
#include "image/particles.h"
#include "store/value_text.h"

#include <cmath>
#include <cstdio>
#include <cstring>

namespace {

// The histogram routine takes no more bins than the record has room for, whatever record
// it is handed.
constexpr int kMostBins = 256;

const char* TitleOf(uint32_t kind)
{
    switch (kind) {
    case TV_PARTICLE_HIST_SHAPE: return "Shape";
    case TV_PARTICLE_HIST_PERIMETER: return "Perimeter";
    case TV_PARTICLE_HIST_AREA: return "Area";
    default: return nullptr;
    }
}

float ValueOf(const ParticleObject& o, uint32_t kind)
{
    switch (kind) {
    case TV_PARTICLE_HIST_SHAPE: return static_cast<float>(ParticleShape(o));
    case TV_PARTICLE_HIST_PERIMETER: return static_cast<float>(o.Perimeter);
    default: return static_cast<float>(o.Area);
    }
}

} // namespace

void DisplayParticleHistogram()
{
    ParticleModule& m = Particles();
    wint_ParticleParamType& p = m.param;
    std::memset(p.HistogramCounts, 0, sizeof p.HistogramCounts);
    std::memset(p.HistogramLabels, 0, sizeof p.HistogramLabels);
    std::memset(p.HistogramTitle, 0, sizeof p.HistogramTitle);
    const ImageHeaderType* item = m.bilevel.Get();
    const ParticleStats& stats = m.stats;
    const char* title = TitleOf(p.HistogramKind);
    if (!item || !IsBilevel(item, false) || stats.ObjectCount <= 0 || !title) return;
    int bins = p.HistogramBins;
    if (bins > kMostBins) bins = kMostBins;
    if (bins < 1) bins = 1;
    float low = ValueOf(stats.Objects[0], p.HistogramKind), high = low;
    for (int i = 1; i < stats.ObjectCount; ++i) {
        const float v = ValueOf(stats.Objects[i], p.HistogramKind);
        if (v < low) low = v;
        if (v > high) high = v;
    }
    std::snprintf(p.HistogramTitle, sizeof p.HistogramTitle, "%s", title);
    const double range = static_cast<double>(high) - static_cast<double>(low);
    for (int i = 0; i < bins; ++i) {
        const double edge = i * range / bins + low;
        std::snprintf(p.HistogramLabels[i], sizeof p.HistogramLabels[i], "%.*f", DecimalsFor(edge), edge);
    }
    for (int i = 0; i < stats.ObjectCount; ++i) {
        // All values equal (no range): every object falls into bin 0. Otherwise the factor
        // 0.9999 keeps the largest value inside the last bin.
        int bin = 0;
        if (range > 0.0) {
            const double v = ValueOf(stats.Objects[i], p.HistogramKind);
            bin = static_cast<int>((v - low) * 0.9999 / range * (bins - 1));
            if (bin < 0) bin = 0;
            if (bin > bins - 1) bin = bins - 1;
        }
        ++p.HistogramCounts[bin];
    }
}
