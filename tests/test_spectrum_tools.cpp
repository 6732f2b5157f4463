// The tools on the spectrum plot: fit, zoom, the windowed magnitude spectrum, the measuring
// cursor, the group plot, the text table and the value of a curve at a plot position.
#include "test_spectrum_commands_support.h"

#include "display/plot.h"
#include "display/plot_spectrum.h"
#include "display/selection.h"
#include "files/sample_data.h"
#include "host/wait.h"
#include "files/spectrum_files.h"
#include "image/poly_regression.h"
#include "spectro/spectrum_tools.h"

#include <cmath>
#include <complex>
#include <cstdio>

namespace {

class SpecToolsTest : public SpecTest {
protected:
    // A line y = 2 x + 1 over X = 0 .. n - 1.
    ImageHeaderType* AddLine(int n, const char* title = "line")
    {
        std::vector<float> x = Ramp(n, 0, 1), y(static_cast<size_t>(n));
        for (int i = 0; i < n; ++i) y[static_cast<size_t>(i)] = 2.0f * x[static_cast<size_t>(i)] + 1.0f;
        return AddCurve(x, y, title);
    }
    bool Logged(const std::string& text) const { return LogHas(text); }
    static int FitLines() { return CountLines(IndexColour(5)); }
    static bool HasTextStarting(const std::string& prefix)
    {
        for (const CVfsItem& item : Items(VFS_ITEM_TEXT))
            if (item.Text.rfind(prefix, 0) == 0) return true;
        return false;
    }
};

// The transform of the independent route: real parts the samples, imaginary parts the
// odd samples below n / 2 and zero above, a direct DFT in double with the forward scale 1 / n.
std::vector<std::complex<double>> IndependentTransform(const std::vector<double>& s)
{
    const size_t n = s.size();
    std::vector<std::complex<double>> in(n), out(n);
    for (size_t k = 0; k < n; ++k) in[k] = {s[k], k < n / 2 ? s[2 * k + 1] : 0.0};
    for (size_t k = 0; k < n; ++k) {
        std::complex<double> sum = 0;
        for (size_t j = 0; j < n; ++j) sum += in[j] * std::polar(1.0, -2.0 * M_PI * double(j * k % n) / double(n));
        out[k] = sum / double(n);
    }
    return out;
}

} // namespace

// ---- zoom ----

TEST_F(SpecToolsTest, ZoomBoxWhollyOutsideTheXRangeIsInvalid)
{
    AddLine(64);
    const int items = CountItems();
    EXPECT_EQ(ZoomSpectrum(CurrentItem, 100.0, 200.0, -1e9, 1e9), nullptr);
    EXPECT_EQ(CountItems(), items);
    EXPECT_TRUE(LogHasError("Invalid data entry"));
}

TEST_F(SpecToolsTest, ZoomOfSixteenPointsIsRefusedAndSeventeenPass)
{
    ImageHeaderType* source = AddLine(64);
    const int items = CountItems();
    EXPECT_EQ(ZoomSpectrum(source, 10.0, 25.0, -1e9, 1e9), nullptr);   // i1 = 10, i2 = 25
    EXPECT_EQ(CountItems(), items);
    EXPECT_TRUE(LogHasError("Invalid data entry"));
    ImageHeaderType* zoomed = ZoomSpectrum(source, 10.0, 26.0, -1e9, 1e9);   // i2 = 26
    ASSERT_NE(zoomed, nullptr);
    EXPECT_EQ(CountItems(), items + 1);
    EXPECT_EQ(zoomed->nx, 64);
    EXPECT_EQ(Xs(zoomed).front(), 10.0f);
    EXPECT_EQ(Xs(zoomed).back(), 26.0f);
}

TEST_F(SpecToolsTest, ZoomOfAStraightLineIsThatLine)
{
    ImageHeaderType* source = AddLine(128);
    ImageHeaderType* zoomed = ZoomSpectrum(source, 20.5, 90.2, -1e9, 1e9);
    ASSERT_NE(zoomed, nullptr);
    EXPECT_EQ(CurrentItem, zoomed);
    EXPECT_EQ(LastCode(zoomed), 54);
    EXPECT_TRUE(Logged("Zoom into 'line'.\n"));
    const std::vector<float> x = Xs(zoomed), y = Ys(zoomed);
    EXPECT_EQ(x.front(), 21.0f);
    EXPECT_EQ(x.back(), 90.0f);
    for (size_t k = 0; k < x.size(); ++k) {
        const double expected = 2.0 * x[k] + 1.0;
        EXPECT_NEAR(y[k], expected, 4.0 * std::ldexp(1.0, -24) * std::fabs(expected)) << k;
        if (k) {
            EXPECT_GT(x[k], x[k - 1]);
        }
    }
    // The source is as it was.
    EXPECT_EQ(Xs(source), Ramp(128, 0, 1));
}

TEST_F(SpecToolsTest, ZoomClampsYToTheBox)
{
    ImageHeaderType* source = AddLine(64);
    ImageHeaderType* zoomed = ZoomSpectrum(source, 0.0, 63.0, 30.0, 50.0);
    ASSERT_NE(zoomed, nullptr);
    for (float v : Ys(zoomed)) {
        EXPECT_GE(v, 30.0f);
        EXPECT_LE(v, 50.0f);
    }
    EXPECT_EQ(Ys(zoomed).front(), 30.0f);
    EXPECT_EQ(Ys(zoomed).back(), 50.0f);
}

TEST_F(SpecToolsTest, ZoomSortsAnUnsortedSpectrumByX)
{
    std::vector<float> x = Ramp(32, 31, -1), y(32);
    for (int i = 0; i < 32; ++i) y[static_cast<size_t>(i)] = x[static_cast<size_t>(i)];
    ImageHeaderType* source = AddCurve(x, y, "down");
    ImageHeaderType* zoomed = ZoomSpectrum(source, 0.0, 31.0, -100, 100);
    ASSERT_NE(zoomed, nullptr);
    EXPECT_EQ(Xs(zoomed), Ramp(32, 0, 1));
    EXPECT_EQ(Ys(zoomed), Ramp(32, 0, 1));
}

TEST_F(SpecToolsTest, ZoomCopyFailureLeavesTheList)
{
    ImageHeaderType* source = AddLine(64);
    const int items = CountItems();
    FailAllocationsForTests(1);
    EXPECT_EQ(ZoomSpectrum(source, 0.0, 63.0, -1e9, 1e9), nullptr);
    EXPECT_EQ(CountItems(), items);
    EXPECT_EQ(CurrentItem, source);
    EXPECT_TRUE(LogHasError("Not enough memory"));
}

TEST_F(SpecToolsTest, ZoomThroughTheBoxSelection)
{
    ImageHeaderType* source = AddLine(64);
    dl_ZoomSpec();
    const auto calls = host.Calls("ap_SelectPointInVFS");
    ASSERT_EQ(calls.size(), 1u);
    EXPECT_NE(calls[0].args.find(" 14 2"), std::string::npos);
    // Corners at X = 5 and X = 60 over the whole Y range, from world to frame pixels.
    const PlotAreaType& a = CurrentPlotArea();
    const int dx = a.Left - SelectionState.BoundLeft, dy = a.Top - SelectionState.BoundTop;
    const int x1 = WorldToPixelX(5.0f) + dx, x2 = WorldToPixelX(60.0f) + dx;
    const int y1 = WorldToPixelY(a.WorldY1) + dy, y2 = WorldToPixelY(a.WorldY0) + dy;
    dl_SelectPointInVFS_Callback(14, x1, y1, 1, 0);
    dl_SelectPointInVFS_Callback(14, x1, y1, 0, 0);
    dl_SelectPointInVFS_Callback(14, x2, y2, 1, 0);
    ASSERT_NE(CurrentItem, source);
    EXPECT_EQ(LastCode(CurrentItem), 54);
    const std::vector<float> x = Xs(CurrentItem);
    EXPECT_NEAR(x.front(), 5.0f, 1.0f);
    EXPECT_NEAR(x.back(), 60.0f, 1.0f);
}

// ---- FFT ----

TEST_F(SpecToolsTest, FFTOfTwoPointsIsRefused)
{
    AddCurve({0, 1}, {1, 2}, "two");
    const int items = CountItems();
    dl_ShowSpecFFT(1);
    EXPECT_TRUE(LogHasError("Number of points in spectrum must be a power of 2"));
    EXPECT_FALSE(Logged("Show FFT of"));
    EXPECT_EQ(CountItems(), items);
}

TEST_F(SpecToolsTest, FFTOfAPointCountThatIsNoPowerOfTwoIsRefused)
{
    AddLine(48);
    dl_ShowSpecFFT(1);
    EXPECT_TRUE(LogHasError("Number of points in spectrum must be a power of 2"));
}

TEST_F(SpecToolsTest, WindowWeightsAreTheHandComputedValues)
{
    // Cosine taper over n = 40: M = 4, i below 3 tapered, at both ends.
    EXPECT_DOUBLE_EQ(SpecFFTWindowWeight(2, 0, 40), 0.0);
    EXPECT_NEAR(SpecFFTWindowWeight(2, 1, 40), 0.14644660940672624, 1e-15);
    EXPECT_NEAR(SpecFFTWindowWeight(2, 2, 40), 0.5, 1e-15);
    EXPECT_DOUBLE_EQ(SpecFFTWindowWeight(2, 3, 40), 1.0);
    EXPECT_NEAR(SpecFFTWindowWeight(2, 38, 40), 0.14644660940672624, 1e-15);
    EXPECT_DOUBLE_EQ(SpecFFTWindowWeight(2, 39, 40), 0.0);
    EXPECT_DOUBLE_EQ(SpecFFTWindowWeight(2, 20, 40), 1.0);
    // Parzen over n = 8: c = 3.5, half length 4.5.
    EXPECT_NEAR(SpecFFTWindowWeight(3, 0, 8), 1.0 - 2.5 / 4.5, 1e-15);
    EXPECT_NEAR(SpecFFTWindowWeight(3, 3, 8), 1.0 - 0.5 / 4.5, 1e-15);
    EXPECT_NEAR(SpecFFTWindowWeight(3, 7, 8), 0.0, 1e-15);
    // Hamming over n = 8 at i = 2: the quarter turn of the f32 2 pi.
    EXPECT_NEAR(SpecFFTWindowWeight(4, 0, 8), 0.08, 1e-15);
    EXPECT_NEAR(SpecFFTWindowWeight(4, 2, 8), 0.54, 1e-7);
    EXPECT_NEAR(SpecFFTWindowWeight(4, 4, 8), 1.0, 1e-12);
    // The arch: (j - c)^2 over the half length, negative at the ends.
    EXPECT_NEAR(SpecFFTWindowWeight(5, 0, 8), 1.0 - 6.25 / 4.5, 1e-15);
    EXPECT_LT(SpecFFTWindowWeight(5, 0, 8), 0.0);
    EXPECT_NEAR(SpecFFTWindowWeight(5, 3, 8), 1.0 - 0.25 / 4.5, 1e-15);
    EXPECT_DOUBLE_EQ(SpecFFTWindowWeight(1, 5, 8), 1.0);
    EXPECT_STREQ(SpecFFTWindowName(1), "No window");
    EXPECT_STREQ(SpecFFTWindowName(2), "Cosine window");
    EXPECT_STREQ(SpecFFTWindowName(3), "Parzen window");
    EXPECT_STREQ(SpecFFTWindowName(4), "Hamming window");
    EXPECT_STREQ(SpecFFTWindowName(5), "Cosine arch window");
    EXPECT_EQ(SpecFFTWindowName(6), nullptr);
}

TEST_F(SpecToolsTest, FFTMagnitudesEqualTheIndependentRoute)
{
    for (int n : {4, 64, 256}) {
        std::vector<float> y(static_cast<size_t>(n));
        for (int i = 0; i < n; ++i)
            y[static_cast<size_t>(i)] = static_cast<float>(std::sin(0.3 * i) + 0.5 * std::cos(1.7 * i) + 0.01 * i);
        for (int window = 1; window <= 5; ++window) {
            std::vector<float> m(static_cast<size_t>(n / 2));
            ASSERT_EQ(SpectrumMagnitudes(y.data(), n, window, m.data()), 0);
            double mean = 0;
            for (float v : y) mean += v;
            mean /= n;
            std::vector<double> s(static_cast<size_t>(n));
            for (int i = 0; i < n; ++i)
                s[static_cast<size_t>(i)] = static_cast<float>((y[static_cast<size_t>(i)] - mean) * SpecFFTWindowWeight(window, i, n));
            const auto X = IndependentTransform(s);
            double norm = 0;
            for (const auto& v : X) norm += std::norm(v);
            norm = std::sqrt(norm);
            const double bound = 32.0 * std::ldexp(1.0, -24) * std::log2(n) * norm;
            for (int k = 0; k < n / 2; ++k)
                EXPECT_NEAR(m[static_cast<size_t>(k)], std::abs(X[static_cast<size_t>(k)]), bound)
                    << "n " << n << " window " << window << " k " << k;
        }
    }
}

TEST_F(SpecToolsTest, ShowFFTPlotsHalfTheSpectrumWithoutAnItem)
{
    std::vector<float> x = Ramp(64, 0, 1), y(64);
    for (int i = 0; i < 64; ++i) y[static_cast<size_t>(i)] = static_cast<float>(std::sin(2 * M_PI * 8 * i / 64.0));
    AddCurve(x, y, "wave");
    const int items = CountItems();
    dl_ShowSpecFFT(4);
    EXPECT_EQ(CountItems(), items);
    EXPECT_TRUE(Logged("Show FFT of 'wave'.\n"));
    EXPECT_TRUE(HasText("wave FFT : Hamming window"));
    ASSERT_GE(host.Count("ap_ShowWait"), 1);
    EXPECT_EQ(host.Calls("ap_ShowWait")[0].args, "'Please wait'");
    EXPECT_FALSE(WaitShown());
    EXPECT_GT(CountLines(IndexColour(26)), 0);
    // The region of the plot holds no item.
    EXPECT_EQ(GetFSContentsCoords(100, 100), nullptr);
}

TEST_F(SpecToolsTest, ShowFFTWithAnUnknownWindowIsAProgramError)
{
    AddLine(64);
    dl_ShowSpecFFT(6);
    EXPECT_TRUE(LogHasError("Program error - ShowSpecFFT 6"));
    EXPECT_FALSE(Logged("Show FFT of"));
}

TEST_F(SpecToolsTest, ShowFFTAllocationFailuresLoseNothing)
{
    AddLine(64);
    const int items = CountItems();
    for (int skip = 0; skip < 2; ++skip) {
        FailAllocationsForTests(1, skip);
        dl_ShowSpecFFT(1);
        FailAllocationsForTests(0);
        EXPECT_EQ(CountItems(), items);
    }
    EXPECT_TRUE(LogHasError("Not enough memory"));
    EXPECT_FALSE(Logged("Show FFT of"));
}

// ---- fit ----

TEST_F(SpecToolsTest, FitAsksForDegreesAndDrawsTheStatistics)
{
    std::vector<float> x = Ramp(50, -1, 0.04f), y(50);
    for (int i = 0; i < 50; ++i) {
        const float v = x[static_cast<size_t>(i)];
        y[static_cast<size_t>(i)] = 1.0f + 2.0f * v - 0.5f * v * v;
    }
    AddCurve(x, y, "IV");
    host.entryAnswers = {"2"};
    const int32_t width = PlotParam.PlotWidth, height = PlotParam.PlotHeight;
    dl_FitPoly2Spec();
    ASSERT_EQ(host.Count("ap_OpenPlotWindow"), 1);
    EXPECT_EQ(host.Calls("ap_OpenPlotWindow")[0].args, "768 512 'Fit Polynomial < IV >'");
    const auto prompts = host.Calls("ap_EnterInteger");
    ASSERT_EQ(prompts.size(), 2u);
    EXPECT_EQ(prompts[0].args.rfind("3 'Enter polynomial degrees : '", 0), 0u);
    EXPECT_EQ(prompts[1].args.rfind("2 'Enter polynomial degrees : '", 0), 0u);
    EXPECT_NE(prompts[0].args.find(" 2"), std::string::npos);
    EXPECT_TRUE(Logged("Fit poly degree 2 to 'IV'.\n"));
    EXPECT_TRUE(HasTextStarting(" Standard Deviation : 0.0000"));
    EXPECT_TRUE(HasText(" Correlation coefficient : 1.000000"));
    EXPECT_TRUE(HasText(" X0 :   1.000000"));
    EXPECT_TRUE(HasText(" X1 :   2.000000"));
    EXPECT_TRUE(HasText(" X2 :  -0.500000"));
    EXPECT_GT(FitLines(), 0);
    EXPECT_EQ(PlotParam.PlotWidth, width);
    EXPECT_EQ(PlotParam.PlotHeight, height);
}

TEST_F(SpecToolsTest, FitDegreeNineteenOnTenPointsDrawsNothingNew)
{
    AddCurve(Ramp(10, 0, 1), Ramp(10, 0, 2), "ten");
    host.entryAnswers = {"19"};
    dl_FitPoly2Spec();
    EXPECT_TRUE(Logged("Fit poly degree 19 to 'ten'.\n"));
    EXPECT_EQ(FitLines(), 0);
    EXPECT_FALSE(HasTextStarting(" Standard Deviation"));
    EXPECT_FALSE(HasTextStarting(" X0 :"));
}

TEST_F(SpecToolsTest, FitDegreeIsClippedToOneToNineteen)
{
    AddCurve(Ramp(40, 0, 0.025f), Ramp(40, 0, 2), "c");
    host.entryAnswers = {"25", "0"};
    dl_FitPoly2Spec();
    EXPECT_TRUE(Logged("Fit poly degree 19 to 'c'.\n"));
    EXPECT_TRUE(Logged("Fit poly degree 1 to 'c'.\n"));
    const auto prompts = host.Calls("ap_EnterInteger");
    ASSERT_EQ(prompts.size(), 3u);
    EXPECT_EQ(prompts[1].args.rfind("19 ", 0), 0u);
}

TEST_F(SpecToolsTest, FitWindowOfAnUntitledSpectrumIsTheToolName)
{
    AddCurve(Ramp(8, 0, 1), Ramp(8, 0, 1), "");
    dl_FitPoly2Spec();
    ASSERT_EQ(host.Count("ap_OpenPlotWindow"), 1);
    EXPECT_EQ(host.Calls("ap_OpenPlotWindow")[0].args, "768 512 'Fit Polynomial'");
}

TEST_F(SpecToolsTest, FitOfTheSampleIVCurveGivesTheGenerator)
{
    ImageHeaderType* item = MakeSampleIVCurve(CurrentItem);
    ASSERT_NE(item, nullptr);
    SpecFitWork work{};
    ASSERT_TRUE(AllocateSpecFitWork(item->nx, &work));
    PolyRegressionStats s;
    EXPECT_EQ(FitSpectrumPolynomial(item, 3, 0, work, &s), 0);
    FreeSpecFitWork(&work);
    const double g = SampleIVCurve::kConductance, c3 = g * SampleIVCurve::kCubic;
    EXPECT_NEAR(s.coefficients[1], g, 0.01 * g);
    EXPECT_NEAR(s.coefficients[3], c3, 0.01 * c3);
    EXPECT_NEAR(s.stddev, SampleIVCurve::kNoise, 0.2 * SampleIVCurve::kNoise);
}

TEST_F(SpecToolsTest, FitWorkArrayFailuresLoseNothing)
{
    AddLine(20);
    const int items = CountItems();
    for (int skip = 0; skip < 3; ++skip) {
        FailAllocationsForTests(1, skip);
        dl_FitPoly2Spec();
        FailAllocationsForTests(0);
        EXPECT_EQ(CountItems(), items);
        EXPECT_EQ(host.Count("ap_OpenPlotWindow"), 0) << skip;
    }
    EXPECT_TRUE(LogHasError("Not enough memory"));
}

TEST_F(SpecToolsTest, EveryToolNeedsASpectrum)
{
    AddFlatImage(16, 100);
    dl_FitPoly2Spec();
    dl_ZoomSpec();
    dl_SpecMeasure(0);
    dl_ShowSpecFFT(1);
    EXPECT_EQ(host.Count("ap_OpenPlotWindow"), 0);
    EXPECT_EQ(host.Count("ap_SelectPointInVFS"), 0);
    int errors = 0;
    const std::string log = ReadLog();
    for (size_t at = log.find("No spectra in memory"); at != std::string::npos; at = log.find("No spectra in memory", at + 1))
        ++errors;
    EXPECT_EQ(errors, 4);
}

// ---- measure and group plot ----

TEST_F(SpecToolsTest, MeasureShowsTheCursorValuesUntilTheRightButton)
{
    AddLine(64, "m");
    dl_SpecMeasure(0);
    EXPECT_EQ(host.Calls("ap_OpenPlotWindow")[0].args, "768 512 'Measure < m >'");
    const auto select = host.Calls("ap_SelectPointInVFS");
    ASSERT_EQ(select.size(), 1u);
    EXPECT_EQ(select[0].args, "0 0 511 511 13 1");
    const PlotAreaType& a = CurrentPlotArea();
    EXPECT_EQ(dl_SelectPointInVFS_Callback(13, a.Left + WorldToPixelX(10.0f), 100, 1, 0), 0);
    EXPECT_EQ(dl_SelectPointInVFS_Callback(13, a.Left + WorldToPixelX(20.0f), 100, 0, 0), 0);
    EXPECT_TRUE(HasTextStarting("X Values / "));
    EXPECT_TRUE(HasTextStarting("Y Values / "));
    EXPECT_TRUE(HasTextStarting("X Distance / "));
    EXPECT_TRUE(HasTextStarting("Y Distance / "));
    EXPECT_TRUE(HasText("Press right mouse button to Exit"));
    EXPECT_EQ(dl_SelectPointInVFS_Callback(13, 0, 0, 4, 0), 1);
}

TEST_F(SpecToolsTest, MeasureWithTheFlagOffersTheSwitch)
{
    AddLine(64, "m");
    dl_SpecMeasure(1);
    dl_SelectPointInVFS_Callback(13, 100, 100, 0, 0);
    EXPECT_TRUE(HasText("Press right mouse button to Switch Plot / Exit"));
}

TEST_F(SpecToolsTest, GroupPlotAsksForItsFrameStore)
{
    dl_GroupSpecPlot();
    ASSERT_EQ(host.Count("ap_OpenPlotWindow"), 1);
    EXPECT_EQ(host.Calls("ap_OpenPlotWindow")[0].args, "768 512 'Group Plot'");
    EXPECT_EQ(GroupPlotMode(), 1);
    EXPECT_EQ(GroupPlotStore(), 1);
}

// ---- text table and value at ----

TEST_F(SpecToolsTest, TextTableWithEachDelimiterAndHeader)
{
    ImageHeaderType* item = AddCurve({0.5f, 1.0f}, {2.0f, -3.0f}, "t");
    const std::string path = Path("t.txt");
    EXPECT_EQ(WriteSpectrumText(item, path.c_str(), 0, 1), 0);
    EXPECT_EQ(ReadFileBytes(path), "No. X Y\n1 5.000000E-01 2.000000E+00\n2 1.000000E+00 -3.000000E+00\n");
    EXPECT_EQ(WriteSpectrumText(item, path.c_str(), 1, 1), 0);
    EXPECT_EQ(ReadFileBytes(path), "No.,X,Y\n1,5.000000E-01,2.000000E+00\n2,1.000000E+00,-3.000000E+00\n");
    EXPECT_EQ(WriteSpectrumText(item, path.c_str(), 2, 0), 0);
    EXPECT_EQ(ReadFileBytes(path), "1\t5.000000E-01\t2.000000E+00\n2\t1.000000E+00\t-3.000000E+00\n");
    EXPECT_TRUE(Logged("Write 't' data.\n"));
}

TEST_F(SpecToolsTest, TextTableThatCannotBeOpenedIs32776)
{
    ImageHeaderType* item = AddLine(4);
    EXPECT_EQ(WriteSpectrumText(item, (data + "no/such/dir/t.txt").c_str(), 0, 1), 32776);
    EXPECT_TRUE(LogHasError("Unable to open file"));
}

TEST(SpectrumValueAtTest, EndsInterpolationAndEqualAbscissae)
{
    const float x[5] = {0, 1, 2, 2, 4}, y[5] = {10, 20, 30, 50, 90};
    EXPECT_EQ(SpectrumValueAt(x, y, 5, -1.0f), 10.0f);
    EXPECT_EQ(SpectrumValueAt(x, y, 5, 0.0f), 10.0f);
    EXPECT_EQ(SpectrumValueAt(x, y, 5, 0.5f), 15.0f);
    EXPECT_EQ(SpectrumValueAt(x, y, 5, 9.0f), 90.0f);
    EXPECT_EQ(SpectrumValueAt(x, y, 5, 3.0f), 70.0f);
    // Position 2 finds index 2 (X 2 against X 1): interpolated to 30. The first index not below
    // the position never has an equal X before it, so pairs of equal X interpolate or end.
    EXPECT_EQ(SpectrumValueAt(x, y, 5, 2.0f), 30.0f);
    const float xe[2] = {1, 1}, ye[2] = {4, 8};
    EXPECT_EQ(SpectrumValueAt(xe, ye, 2, 1.0f), 4.0f);
    EXPECT_EQ(SpectrumValueAt(xe, ye, 2, 0.5f), 4.0f);
    const float xm[3] = {0, 1, 1}, ym[3] = {0, 4, 8};
    EXPECT_EQ(SpectrumValueAt(xm, ym, 3, 1.0f), 4.0f);
    EXPECT_EQ(SpectrumValueAt(nullptr, ym, 3, 1.0f), 0.0f);
}
