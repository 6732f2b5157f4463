// Statistics of pixel sets by the measuring object: hand-computed images whose answers are
// known in closed form.
#include "test_measure_support.h"

#include "test_mapping_support.h"

#include <chrono>
#include <thread>

namespace {

class MeasureAreaTest : public MeasureTest {};

TEST_F(MeasureAreaTest, EmptyMaskWritesNothingAndCountsZero)
{
    ImageHeaderType* image = Image(8, 8, [](int x, int y) { return static_cast<uint16_t>(x * 100 + y); });
    std::vector<int16_t> mask(64, 0);
    mask[5] = static_cast<int16_t>(0x8000);   // a label pixel is no member
    AreaStats s;
    s.min = s.mean = s.area = -7.0f;
    s.count = 99;
    ms->MarkerAreaCalcs(nullptr, false, image, nullptr, mask.data(), s.Outputs());
    EXPECT_EQ(s.count, 0);
    EXPECT_EQ(s.min, -7.0f);
    EXPECT_EQ(s.mean, -7.0f);
    EXPECT_EQ(s.area, -7.0f);
}

TEST_F(MeasureAreaTest, FlatAtRawZeroHasNoDeviation)
{
    ImageHeaderType* image = Image(10, 10, [](int, int) { return uint16_t{0}; }, 100, 100, 2.0f, 67.535f);
    const AreaStats s = Calc(image, nullptr, nullptr);
    EXPECT_EQ(s.count, 100);
    EXPECT_FLOAT_EQ(s.min, 2.0f);
    EXPECT_FLOAT_EQ(s.max, 2.0f);
    EXPECT_FLOAT_EQ(s.mean, 2.0f);
    EXPECT_EQ(s.rms, 0.0f);
    EXPECT_EQ(s.ra, 0.0f);
}

TEST_F(MeasureAreaTest, FlatAtRawCodeGivesCodeTimesScaleByTheRule)
{
    // Deviations are taken from Zlo while the mean is taken from the raw minimum: a flat image
    // at code 1000 (1 nm above Zlo) reports 1 nm for both.
    ImageHeaderType* image = Image(10, 10, [](int, int) { return uint16_t{1000}; });
    const AreaStats s = Calc(image, nullptr, nullptr);
    EXPECT_FLOAT_EQ(s.min, 1.0f);
    EXPECT_FLOAT_EQ(s.max, 1.0f);
    EXPECT_FLOAT_EQ(s.mean, 1.0f);
    EXPECT_NEAR(s.rms, 1.0f, 1e-6);
    EXPECT_NEAR(s.ra, 1.0f, 1e-6);
}

TEST_F(MeasureAreaTest, LowestPixelAboveRawZeroMakesRmsLargerThanTheDeviation)
{
    // Codes 1000 and 3000 (1 nm and 3 nm): the true deviation is 1 nm; the rule gives
    // sqrt(mean of squares 5 - (mean - min)^2 1) = 2.
    ImageHeaderType* image = Image(10, 10, [](int x, int) { return static_cast<uint16_t>(x % 2 ? 3000 : 1000); });
    const AreaStats s = Calc(image, nullptr, nullptr);
    EXPECT_NEAR(s.rms, 2.0f, 1e-5);
    EXPECT_GT(s.rms, 1.0f);
    EXPECT_NEAR(s.ra, 1.0f, 1e-5);   // |z - (mean - min)| = |1 - 1| and |3 - 1|, mean 1
}

TEST_F(MeasureAreaTest, FlatTopographySurfaceIsPixelsTimesCell)
{
    ImageHeaderType* image = Image(10, 10, [](int, int) { return uint16_t{500}; }, 100, 50);
    const AreaStats s = Calc(image, nullptr, nullptr);
    EXPECT_NEAR(s.surface, 100 * 10.0 * 5.0, 1e-3);
    EXPECT_NEAR(s.area, 100 * 10.0 * 5.0, 1e-3);
}

TEST_F(MeasureAreaTest, PlaneOfSlopeHasInteriorSurfaceOfTheTiltedCell)
{
    // z = 0.5 x (x in nm): 5 nm per 10 nm pixel. Interior pixels add dx^2 sqrt(1 + s^2); the
    // first row and column of the pass add dx^2.
    ImageHeaderType* image = Image(11, 11, [](int x, int) { return static_cast<uint16_t>(5000 * x); }, 110, 110);
    const AreaStats s = Calc(image, nullptr, nullptr);
    const double expected = 21 * 100.0 + 100 * 100.0 * std::sqrt(1.25);
    EXPECT_NEAR(s.surface, expected, expected * 1e-6);
    // The same plane seen through a rectangle: its own first row and column.
    const RECT r{3, 3, 6, 6};
    const AreaStats inner = Calc(image, &r, nullptr);
    const double innerExpected = 7 * 100.0 + 9 * 100.0 * std::sqrt(1.25);
    EXPECT_NEAR(inner.surface, innerExpected, innerExpected * 1e-6);
    EXPECT_EQ(inner.count, 16);
}

class MeasureBlockVolume : public MeasureAreaTest, public ::testing::WithParamInterface<std::pair<int, double>> {};

TEST_P(MeasureBlockVolume, BlockVolumeByBaseMode)
{
    // A 4 by 4 block 10 nm high on a 10 by 10 floor at 0, pixels of 10 by 10 nm, base at 5 nm.
    ImageHeaderType* image = Image(10, 10, [](int x, int y) {
        return static_cast<uint16_t>(x >= 3 && x < 7 && y >= 3 && y < 7 ? 10000 : 0);
    });
    ms->BaseMode = GetParam().first;
    ms->BaseHeight = 5.0f;
    const AreaStats s = Calc(image, nullptr, nullptr);
    EXPECT_NEAR(s.volume, GetParam().second, 1e-2);
}

INSTANTIATE_TEST_SUITE_P(BaseModes, MeasureBlockVolume,
                         ::testing::Values(std::make_pair(TV_BASE_NONE, 0.0), std::make_pair(TV_BASE_ABOVE, 8000.0),
                                           std::make_pair(TV_BASE_BELOW, 42000.0),
                                           std::make_pair(TV_BASE_BOTH, 50000.0)));

TEST_F(MeasureAreaTest, LogImagesHaveNoVolumeOrSurface)
{
    ImageHeaderType* image = Image(6, 6, [](int x, int) { return static_cast<uint16_t>(x * 1000); }, 10, 10, 0, 1, 3);
    const AreaStats s = Calc(image, nullptr, nullptr);
    EXPECT_EQ(s.count, 36);
    EXPECT_EQ(s.surface, kNoStatistic);
    EXPECT_EQ(s.volume, kNoStatistic);
    // Other non-topography kinds alike.
    image->DataSource = 2;
    const AreaStats current = Calc(image, nullptr, nullptr);
    EXPECT_EQ(current.surface, kNoStatistic);
    EXPECT_EQ(current.volume, kNoStatistic);
}

TEST_F(MeasureAreaTest, RectangleIsNormalisedFirst)
{
    ImageHeaderType* image = Image(8, 8, [](int x, int y) { return static_cast<uint16_t>(x * 10 + y * 1000); });
    const RECT forward{2, 3, 5, 6}, reversed{5, 6, 2, 3};
    const AreaStats a = Calc(image, &forward, nullptr), b = Calc(image, &reversed, nullptr);
    EXPECT_EQ(a.count, 16);
    EXPECT_EQ(b.count, 16);
    EXPECT_EQ(a.mean, b.mean);
    EXPECT_FLOAT_EQ(a.min, (2 * 10 + 3 * 1000) * 0.001f);
    EXPECT_FLOAT_EQ(a.max, (5 * 10 + 6 * 1000) * 0.001f);
    // Bounds beyond the image are limited to it; values below 1 become 0.
    const RECT wide{-5, -5, 100, 100};
    EXPECT_EQ(Calc(image, &wide, nullptr).count, 64);
}

TEST_F(MeasureAreaTest, MaskUsesLowFifteenBits)
{
    ImageHeaderType* image = Image(4, 4, [](int x, int) { return static_cast<uint16_t>(x * 1000); });
    std::vector<int16_t> mask(16, 0);
    mask[1] = 3;
    mask[2] = static_cast<int16_t>(0x8001);
    mask[3] = static_cast<int16_t>(0x8000);
    const AreaStats s = Calc(image, nullptr, mask.data());
    EXPECT_EQ(s.count, 2);
    EXPECT_FLOAT_EQ(s.mean, 1.5f);
}

TEST_F(MeasureAreaTest, MarkerSpectrumIsThePixelMeanByTheIntegerRule)
{
    ImageHeaderType* image = maptest::MakeMappingImage(8, 5);
    ASSERT_NE(image, nullptr);
    CurrentItem = image;
    Open(true);
    std::vector<int16_t> mask(64, 0);
    std::vector<int> members = {0, 9, 18, 27, 33, 63};
    for (int i : members) mask[static_cast<size_t>(i)] = 1;
    std::vector<float> spectrum(5, -1.0f);
    AreaStats s;
    ms->MarkerAreaCalcs(nullptr, false, image, nullptr, mask.data(), s.Outputs(spectrum.data()));
    EXPECT_EQ(s.count, 6);
    const CITSHeaderType* set = image->CITSHeaderPtr;
    for (int k = 0; k < 5; ++k) {
        uint64_t sum = 0;
        for (int i : members) sum += CITSPixels(CITSEntry(set, k))[i];
        const float expected = CITSData2Current(CITSEntry(set, k), static_cast<uint16_t>(sum / members.size()));
        EXPECT_EQ(spectrum[static_cast<size_t>(k)], expected) << k;
    }
    ms->MeasureFinish();
}

TEST_F(MeasureAreaTest, OverlapCountOfFrameRectangle)
{
    Image(64, 64, [](int, int) { return uint16_t{0}; });
    Open();
    std::vector<int16_t> mask(64 * 64, 0);
    mask[static_cast<size_t>(2 * 64 + 3)] = 1;   // frame 24..31 by 16..23
    EXPECT_EQ(ms->CalcNoOfPointsThatOverlapWithMask(RECT{0, 0, 40, 40}, mask.data(), 64, 64), 64);
    EXPECT_EQ(ms->CalcNoOfPointsThatOverlapWithMask(RECT{28, 20, 40, 40}, mask.data(), 64, 64), 16);
    EXPECT_EQ(ms->CalcNoOfPointsThatOverlapWithMask(RECT{-20, -20, 0, 0}, mask.data(), 64, 64), 0);
}

TEST_F(MeasureAreaTest, InterruptedRunWritesNothingAndPostsTheRedraw)
{
    ImageHeaderType* image = maptest::MakeMappingImage(8, 3);
    ASSERT_NE(image, nullptr);
    CurrentItem = image;
    Open(true);
    ms->UserActivityProbe = [](void*) { return true; };
    std::vector<float> spectrum(3, -1.0f);
    AreaStats s;
    s.mean = -5.0f;
    int32_t state = kCalcInterruptible;
    ms->MarkerAreaCalcs(&state, false, image, nullptr, nullptr, s.Outputs(spectrum.data()));
    EXPECT_EQ(state, kCalcInterrupted);
    EXPECT_EQ(s.mean, -5.0f);
    EXPECT_EQ(spectrum[0], -1.0f);
    EXPECT_EQ(ms->PostedMessages, 1);
    EXPECT_EQ(ms->LastPostedMessage, 0x493u);
    // Without the wish to be interrupted the same run goes through.
    state = kCalcRunOn;
    ms->MarkerAreaCalcs(&state, false, image, nullptr, nullptr, s.Outputs(spectrum.data()));
    EXPECT_EQ(s.count, 64);
    ms->MeasureFinish();
}

// A probe of the user that takes longer than the give-way time at its first look, and at
// later looks answers `lateAnswer`.
struct SlowProbe {
    int looks = 0;
    bool lateAnswer = false;
    static bool Look(void* context)
    {
        SlowProbe& p = *static_cast<SlowProbe*>(context);
        if (++p.looks == 1) {
            std::this_thread::sleep_for(std::chrono::milliseconds(kCalcGiveWayMs + 50));
            return false;
        }
        return p.lateAnswer;
    }
};

TEST_F(MeasureAreaTest, AfterTheGiveWayTimeTheRunGoesOnUnderTheWaitCursor)
{
    ImageHeaderType* image = maptest::MakeMappingImage(8, 3);
    ASSERT_NE(image, nullptr);
    CurrentItem = image;
    Open(true);
    SlowProbe probe;
    ms->UserActivityProbe = SlowProbe::Look;
    ms->UserActivityContext = &probe;
    std::vector<float> spectrum(3, -1.0f);
    AreaStats s;
    host.ClearCalls();
    int32_t state = kCalcInterruptible;
    ms->MarkerAreaCalcs(&state, false, image, nullptr, nullptr, s.Outputs(spectrum.data()));
    // The second row finds the time over and the user quiet: no more looks, the wait cursor on
    // for the rest of the run.
    EXPECT_EQ(state, kCalcRunOn);
    EXPECT_EQ(probe.looks, 2);
    EXPECT_EQ(s.count, 64);
    EXPECT_NE(spectrum[0], -1.0f);
    ASSERT_EQ(host.Count("SetWaitCursor"), 2);
    EXPECT_EQ(host.Calls("SetWaitCursor")[0].args, "1");
    EXPECT_EQ(host.Calls("SetWaitCursor")[1].args, "0");
    EXPECT_EQ(ms->PostedMessages, 0);

    // A user who moves after the give-way time still stops the run at that look.
    probe = SlowProbe{0, true};
    std::fill(spectrum.begin(), spectrum.end(), -1.0f);
    s.mean = -5.0f;
    host.ClearCalls();
    state = kCalcInterruptible;
    ms->MarkerAreaCalcs(&state, false, image, nullptr, nullptr, s.Outputs(spectrum.data()));
    EXPECT_EQ(state, kCalcInterrupted);
    EXPECT_EQ(probe.looks, 2);
    EXPECT_EQ(s.count, 0);
    EXPECT_EQ(s.mean, -5.0f);
    EXPECT_EQ(spectrum[0], -1.0f);
    EXPECT_EQ(host.Count("SetWaitCursor"), 0);
    EXPECT_EQ(ms->PostedMessages, 1);
    ms->MeasureFinish();
}

} // namespace
