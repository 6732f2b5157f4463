// Ground truth on the sample topography: levelled with the background tool (polynomial surface
// of degree 2 in x and y), the band taken from the model's documented heights, the objects
// must be exactly the model's particles, with the disc area and the coverage of the model.
#include "test_particle_support.h"

#include "tavrin/dl_background.h"
#include "files/sample_data.h"
#include "host/ap_callbacks.h"
#include "image/subt_back.h"
#include "store/units.h"

#include <algorithm>
#include <cmath>
#include <cstdio>

namespace {

TestFrameStore* g_second = nullptr;

// The band starts this far over the median of the levelled terraces: over half a step
// (0.235 nm peak to peak after levelling), the row offsets (0.05 nm) and three sigma of noise.
constexpr double kBackgroundMargin = 0.25;

class ParticleTruthTest : public ParticleTest {
protected:
    void SetUp() override
    {
        ParticleTest::SetUp();
        g_second = &second;
        Ap.ap_OpenGraphWindow = [](const char*) {
            if (g_second && !g_second->open) g_second->Open(5);
        };
        Ap.ap_CloseGraphWindow = [] {
            if (g_second && g_second->open) g_second->Close();
        };
    }
    void TearDown() override
    {
        g_second = nullptr;
        ParticleTest::TearDown();
    }
    // The sample levelled: answers the new current item.
    ImageHeaderType* LevelledSample()
    {
        ImageHeaderType* sample = MakeSampleTopography(nullptr);
        if (!sample) return nullptr;
        CurrentItem = sample;
        wint_SubtBckgrndParamType p;
        dl_GetSubtBckgrndParam(&p, TV_SUBT_OPEN);
        p = DefaultSubtBckgrndParam();
        p.Method = TV_SUBT_POLY_SURFACE;
        p.DegreeX = 2;
        p.DegreeY = 2;
        dl_SubtBackUpdateImageDisplay(dl_SetSubtBckgrndParam(&p));
        dl_GetSubtBckgrndParam(&p, TV_SUBT_APPLY);
        return CurrentItem != sample ? CurrentItem : nullptr;
    }
    // The lowest grey level of the levelled item that lies `above` nm over its median height.
    // The levelled codes keep the source's Z range while the tool stretches them, so the
    // heights are scaled by the model: the particle centres stand kParticleHeight over the
    // median (the median of the 24 centres, in codes).
    static int BandStart(const ImageHeaderType* item, double above)
    {
        using namespace SampleTopography;
        const auto code = [item](int x, int y) {
            return static_cast<double>(item->PixData[static_cast<size_t>(y) * item->nx + x]);
        };
        std::vector<uint16_t> codes(item->PixData, item->PixData + static_cast<size_t>(item->nx) * item->ny);
        std::nth_element(codes.begin(), codes.begin() + codes.size() / 2, codes.end());
        const double base = codes[codes.size() / 2];
        SampleParticle centres[kParticleCount];
        SampleTopographyParticles(centres);
        std::vector<double> tops;
        for (const SampleParticle& c : centres)
            tops.push_back(code(static_cast<int>(c.x / kSizeNm * kSize), static_cast<int>(c.y / kSizeNm * kSize)));
        std::nth_element(tops.begin(), tops.begin() + kParticleCount / 2, tops.end());
        const double perNm = (tops[kParticleCount / 2] - base) / kParticleHeight;
        const double threshold = base + above * perNm;
        for (int level = 0; level < 256; ++level)
            if (item->ImageLUT[level] == level && level * 256.0 >= threshold) return level;
        return 255;
    }

    TestFrameStore second;
};

TEST_F(ParticleTruthTest, LevelledSampleTopographyHasTheModelsParticles)
{
    using namespace SampleTopography;
    ImageHeaderType* levelled = LevelledSample();
    ASSERT_NE(levelled, nullptr);
    const int low = BandStart(levelled, kBackgroundMargin);
    ImageHeaderType* bilevel = Start(low, 255, 8);
    ASSERT_NE(bilevel, nullptr);
    const ParticleStats& stats = CurrentParticleStats();
    EXPECT_EQ(stats.ObjectCount, kParticleCount) << "band from level " << low;
    const double disc = M_PI * kParticleRadius * kParticleRadius;
    double area = 0;
    for (int i = 0; i < stats.ObjectCount; ++i) area += stats.Objects[i].Area;
    const double mean = stats.ObjectCount ? area / stats.ObjectCount : 0;
    EXPECT_NEAR(mean, disc, 0.1 * disc);
    const double coverage = kParticleCount * disc / (kSizeNm * kSizeNm);
    const double ratio = area / (kSizeNm * kSizeNm);
    EXPECT_NEAR(ratio, coverage, 0.1 * coverage);
    char line[TV_PARTICLE_SUMMARY_TEXT];
    std::snprintf(line, sizeof line, "No of particles : %d", kParticleCount);
    EXPECT_STREQ(stts.SummaryLines[3], line);
    std::printf("[ figures  ] band %d..255, %d particles, mean area %.2f nm2 (disc %.2f), S Ratio %.4f (model %.4f)\n",
                low, stats.ObjectCount, mean, disc, ratio, coverage);
}

} // namespace
