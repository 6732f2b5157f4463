// Ground truth of the spectrum commands on the sample spectra, whose models are known.
#include "test_spectrum_commands_support.h"

#include "files/sample_data.h"

#include <cfloat>
#include <cmath>

namespace {

class SpecTruthTest : public SpecTest {};

// Y at X = 0 by linear interpolation between the two points around it (X ascending).
float ValueAtZero(const std::vector<float>& x, const std::vector<float>& y)
{
    for (size_t i = 1; i < x.size(); ++i)
        if (x[i - 1] <= 0 && x[i] >= 0) {
            const float f = (0 - x[i - 1]) / (x[i] - x[i - 1]);
            return y[i - 1] + (y[i] - y[i - 1]) * f;
        }
    return NAN;
}

} // namespace

// The widest window (25 points, m = 11) of the ramp of the sample curve: step h, and the sums
// of j^2 and j^4 over the window. The slope that a quadratic Savitzky-Golay window gives at the
// centre of V + c V^3 is 1 + c h^2 S4 / S2, and its noise is sigma / (h sqrt(S2)).
struct Window25 {
    static constexpr double h = 2.0 / (SampleIVCurve::kPoints - 1);
    static constexpr double S2 = 1300.0;     // 2 (1 + 4 + ... + 144)
    static constexpr double S4 = 121420.0;   // 2 (1 + 16 + ... + 20736)
    static double Slope() { return SampleIVCurve::kConductance * (1.0 + SampleIVCurve::kCubic * h * h * S4 / S2); }
    static double Noise() { return SampleIVCurve::kNoise / (h * std::sqrt(S2)); }
};

float ConductanceAtZero(ImageHeaderType* item)
{
    CurrentItem = item;
    wint_DiffSpecParamType p{1, 25};
    dl_SetDiffSpecParam(&p);
    dl_DiffSpec();
    if (CurrentItem == item) return NAN;
    const float* s = reinterpret_cast<const float*>(CurrentItem->PixData);
    const int n = CurrentItem->nx;
    return ValueAtZero(std::vector<float>(s + n, s + 2 * n), std::vector<float>(s, s + n));
}

TEST_F(SpecTruthTest, ConductanceOfTheNoiseFreeIVModelAtZeroBiasIsWithinTwoPercent)
{
    std::vector<float> v(SampleIVCurve::kPoints), i(SampleIVCurve::kPoints);
    for (int k = 0; k < SampleIVCurve::kPoints; ++k) {
        const double bias = -1.0 + 2.0 * k / (SampleIVCurve::kPoints - 1);
        v[k] = static_cast<float>(bias);
        i[k] = static_cast<float>(SampleIVCurve::kConductance * (bias + SampleIVCurve::kCubic * bias * bias * bias));
    }
    const float g = ConductanceAtZero(AddCurve(v, i, "model"));
    EXPECT_NEAR(g, SampleIVCurve::kConductance, 0.02 * SampleIVCurve::kConductance);
    EXPECT_NEAR(g, Window25::Slope(), 1e-3 * SampleIVCurve::kConductance);
}

TEST_F(SpecTruthTest, ConductanceOfTheSampleIVCurveAtZeroBiasIsWithinItsNoise)
{
    ImageHeaderType* iv = MakeSampleIVCurve(nullptr);
    ASSERT_NE(iv, nullptr);
    const float g = ConductanceAtZero(iv);
    EXPECT_EQ(LastCode(CurrentItem), 55);
    // Three standard deviations of the noise of the derivative (0.007 nA/V).
    EXPECT_NEAR(g, Window25::Slope(), 3 * Window25::Noise());
}

TEST_F(SpecTruthTest, NormalisedDerivativeOfALinearCurveIsOne)
{
    // The bias ramp of the sample curve with a purely ohmic current.
    std::vector<float> v(SampleIVCurve::kPoints), i(SampleIVCurve::kPoints);
    for (int k = 0; k < SampleIVCurve::kPoints; ++k) {
        v[k] = static_cast<float>(-1.0 + 2.0 * k / (SampleIVCurve::kPoints - 1));
        i[k] = static_cast<float>(SampleIVCurve::kConductance) * v[k];
    }
    AddCurve(v, i, "ohmic");
    wint_DiffSpecParamType p{3, 9};
    dl_SetDiffSpecParam(&p);
    dl_DiffSpec();
    ASSERT_EQ(LastCode(CurrentItem), 78);
    // Every point of the result lies inside the margins of the window.
    for (float value : Ys(CurrentItem)) EXPECT_NEAR(value, 1.0f, 0.01f);
}

TEST_F(SpecTruthTest, DCBiasRemovalMakesTheCurrentAtZeroBiasZero)
{
    CurrentItem = MakeSampleIVCurve(nullptr);
    ASSERT_NE(CurrentItem, nullptr);
    const float before = ValueAtZero(Xs(CurrentItem), Ys(CurrentItem));
    dl_RemoveDCBias();
    ASSERT_EQ(LastCode(CurrentItem), 70);
    const std::vector<float> y = Ys(CurrentItem);
    float largest = 0;
    for (float value : y) largest = std::max(largest, std::fabs(value));
    EXPECT_NE(before, 0.0f);
    EXPECT_NEAR(ValueAtZero(Xs(CurrentItem), y), 0.0f, 4 * FLT_EPSILON * largest);
}

TEST_F(SpecTruthTest, TheForceCurveOutAndBackSplitsAtTheTurningIndex)
{
    ImageHeaderType* approach = MakeSampleForceCurve(nullptr);
    ASSERT_NE(approach, nullptr);
    CurrentItem = approach;
    // The generator makes the approach alone: one direction, refused.
    dl_SeparateRampDirections();
    EXPECT_TRUE(LogHasError("Spectroscopy ramp is one direction only"));
    // Approach then the same samples back (the retract): the turn is the generator's last index.
    std::vector<float> x = Xs(approach), y = Ys(approach);
    x.insert(x.end(), x.rbegin(), x.rend());
    y.insert(y.end(), y.rbegin(), y.rend());
    ImageHeaderType* both = AddCurve(x, y, "force");
    both->AcqMode = 15;
    dl_SeparateRampDirections();
    ImageHeaderType* first = CurrentItem;
    ASSERT_EQ(both->Next, first);
    EXPECT_EQ(first->nx, SampleForceCurve::kPoints);
    ASSERT_NE(first->Next, nullptr);
    EXPECT_EQ(first->Next->nx, SampleForceCurve::kPoints);
    EXPECT_EQ(Xs(first), Xs(approach));
    EXPECT_EQ(Ys(first), Ys(approach));
}
