// The results of the measuring object as a text table and as spectrum files.
#include "test_measure_support.h"

#include "test_mapping_support.h"

#include "display/plot.h"
#include "display/plot_spectrum.h"
#include "display/vfs.h"
#include "files/measure_spectra.h"
#include "files/spectrum_files.h"
#include "platform/files.h"
#include "platform/safe_replace.h"
#include "store/value_text.h"

#include <algorithm>
#include <cstring>

namespace {

class MeasureExportTest : public MeasureTest {
protected:
    static std::string Pad(const std::string& text, size_t width, bool left)
    {
        const std::string pad(text.size() < width ? width - text.size() : 0, ' ');
        return left ? text + pad : pad + text;
    }
    static std::string Head()
    {
        std::string out = Pad("", 16, true);
        for (const char* c : {"#", "Min", "Mean", "Max", "RMS", "Ra", "Length/Area", "Surface Len/Area", "Volume/CSA"})
            out += " " + Pad(c, 16, false);
        return out + "\n";
    }
    static std::string Row(const std::string& name, int number, const std::vector<std::string>& values)
    {
        std::string out = Pad(name, 16, true) + " " + Pad(std::to_string(number), 16, false);
        for (const std::string& v : values) out += " " + Pad(v, 16, false);
        return out + "\n";
    }
    static std::string N(double v) { return Double2Str(v); }
};

TEST_F(MeasureExportTest, NoMarkersGiveTheSummaryRowsOnly)
{
    Image(10, 10, [](int, int) { return uint16_t{1000}; });
    Open();
    ms->DisplayImageWithMarkers();
    const std::string path = Path("measure.txt");
    ASSERT_EQ(ms->ExportToTXT(path.c_str()), 1);
    std::string expected = "Tavrin Version 3.10(18)\nMeasure data exported on  22/11/2026 at 14:05:09\n\n";
    expected += Head();
    expected += Row("Point", 0, {"-", N(0), "-", N(0), N(0), N(0), "-", "-"});
    expected += Row("Line", 0, {"-", N(0), "-", N(0), N(0), N(0), N(0), N(0)});
    expected += Row("Area", 0, {N(0), N(0), N(0), N(0), N(0), N(0), N(0), N(0)});
    expected += Row("Whole image", 0, {N(1.0f), N(1.0f), N(1.0f), N(ms->RMS[3]), N(ms->Ra[3]), N(10000), N(10000),
                                      N(10000)});
    expected += "\n\n";
    expected += Head() + "\n";
    EXPECT_EQ(ReadFileBytes(path), expected);
}

TEST_F(MeasureExportTest, MarkersAndTablesAreWrittenExactlyForAFixedClock)
{
    // z = x nm on 10 by 10 pixels of 10 nm: every number below is worked out by hand.
    Image(10, 10, [](int x, int) { return static_cast<uint16_t>(1000 * x); });
    Open();
    Add(TV_MARKER_POINT, {{2, 3}});
    Add(TV_MARKER_POINT, {{5, 7}});
    Add(TV_MARKER_RECT, {{1, 1}, {4, 1}, {4, 4}});
    ms->DisplayImageWithMarkers();
    const std::string path = Path("markers.txt");
    ASSERT_EQ(ms->ExportToTXT(path.c_str()), 1);
    std::string expected = "Tavrin Version 3.10(18)\nMeasure data exported on  22/11/2026 at 14:05:09\n\n";
    expected += Head();
    // Points z 2 and 5: mean 3.5, deviations 1.5; the second lies hypot(3, 4) / 9 * 100 nm on.
    expected += Row("Point", 2, {"2.0000", "3.5000", "5.0000", "1.5000", "1.5000", "55.556", "-", "-"});
    expected += Row("Line", 0, {"-", "0.0000", "-", "0.0000", "0.0000", "0.0000", "0.0000", "0.0000"});
    // The 4 by 4 rectangle over x = 1..4: rms sqrt(7.5 - 1.5^2), Ra 1.25, 16 cells of 100 nm^2,
    // surface (7 edge pixels x 200 + 9 x 2 sqrt(10100)) / 2, volume 40 nm x 100 nm^2.
    const std::vector<std::string> rect = {"1.0000", "2.5000", "4.0000", "2.2913", "1.2500",
                                           "1600.0", "1604.5", "4000.0"};
    expected += Row("Area", 1, rect);
    // The whole image, x = 0..9: rms sqrt(28.5 - 4.5^2), Ra 2.5, surface (19 x 200 + 81 x 2
    // sqrt(10100)) / 2, volume 450 nm x 100 nm^2.
    expected += Row("Whole image", 0, {"0.0000", "4.5000", "9.0000", "2.8723", "2.5000", "10,000", "10,040", "45,000"});
    expected += "\n\n";
    expected += "Point:  \"1\" (2,3)\n";
    expected += "Point:  \"2\" (5,7)\n";
    expected += "Rectangle:  \"3\" (1,1) - (4,1) - (4,4)\n";
    expected += Head() + "\n";
    expected += Row("1", 1, {"2.0000", "2.0000", "2.0000", "0.0000", "0.0000", "0.0000", "-", "-"});
    expected += Row("2", 2, {"5.0000", "5.0000", "5.0000", "0.0000", "0.0000", "55.556", "-", "-"});
    expected += Row("3", 3, rect);
    EXPECT_EQ(ReadFileBytes(path), expected);
}

TEST_F(MeasureExportTest, LargestFloatPrintsAsDash)
{
    Image(32, 32, [](int x, int) { return static_cast<uint16_t>(1000 * x); }, 32, 32, 0, 65.535f, 2);
    Open();
    Add(TV_MARKER_LINE, {{2, 5}, {20, 5}});
    ms->DisplayImageWithMarkers();
    ASSERT_EQ(ms->VolCSA[1], kNoStatistic);
    const std::string path = Path("dash.txt");
    ASSERT_EQ(ms->ExportToTXT(path.c_str()), 1);
    const std::string text = ReadFileBytes(path);
    const size_t line = text.find("\nLine ");
    ASSERT_NE(line, std::string::npos);
    const std::string row = text.substr(line + 1, text.find('\n', line + 1) - line);
    EXPECT_EQ(row.substr(row.size() - 34), Pad("-", 16, false) + " " + Pad("-", 16, false) + "\n");
}

TEST_F(MeasureExportTest, FailedWriteGivesZeroAndNoFile)
{
    Image(8, 8, [](int, int) { return uint16_t{5}; });
    Open();
    EXPECT_EQ(ms->ExportToTXT(Path("missing/dir/m.txt").c_str()), 0);
    SetFileWriteFailureAtCallForTests(0);
    EXPECT_EQ(ms->ExportToTXT(Path("half.txt").c_str()), 0);
    SetFileWriteFailureAtCallForTests(-1);
    // A disk that fills at the flush keeps the old file whole.
    WriteFileBytes(Path("old.txt"), "old contents");
    SetFileReplaceFaultForTests(ReplaceFault::Sync);
    EXPECT_EQ(ms->ExportToTXT(Path("old.txt").c_str()), 0);
    SetFileReplaceFaultForTests(ReplaceFault::None);
    EXPECT_EQ(ReadFileBytes(Path("old.txt")), "old contents");
    EXPECT_EQ(ReadFileBytes(Path("half.txt")), "");
    EXPECT_FALSE(std::ifstream(Path("half.txt")).good());
}

TEST_F(MeasureExportTest, DialogTextOfOneSpectrumEndsInUmAndAFullStop)
{
    char text[128];
    MeasureSpectraPrompt(1, false, text, sizeof text);
    EXPECT_STREQ(text, "Extract 1 spectrum.");
    MeasureSpectraPrompt(3, true, text, sizeof text);
    EXPECT_STREQ(text, "Extract 3 spectra, and the Average spectrum.");
}

TEST_F(MeasureExportTest, SpectraOfMarkersGoToFilesNamedByTheMarker)
{
    ImageHeaderType* image = maptest::MakeMappingImage(8, 6);
    ASSERT_NE(image, nullptr);
    CurrentItem = image;
    Open(true);
    Add(TV_MARKER_POINT, {{2, 3}});
    Add(TV_MARKER_CIRCLE, {{4, 4}, {5, 5}});
    Add(TV_MARKER_POINT, {{20, 30}});   // off the image: no spectrum
    ms->DisplayImageWithMarkers();
    EXPECT_EQ(ms->Markers[0].SpecCount, 1);
    EXPECT_EQ(ms->Markers[1].SpecCount, 9);
    EXPECT_EQ(ms->Markers[2].SpecCount, 0);
    // The point's spectrum is its pixel in every image.
    const CITSHeaderType* set = image->CITSHeaderPtr;
    for (int k = 0; k < 6; ++k)
        EXPECT_EQ(ms->Markers[0].SpecY[k], CITSData2Current(CITSEntry(set, k), CITSPixels(CITSEntry(set, k))[3 * 8 + 2]));
    host.entryAnswers.push_back(Path("spec.spc"));
    EXPECT_EQ(ms->ExportSpectra(ms), 3);
    EXPECT_NE(ReadLog().find("Extract 2 spectra, and the Average spectrum."), std::string::npos);
    EXPECT_EQ(ReadFileBytes(Path("spec_Point(2,3).spc")).size(), 6090u + 6 * 8);
    EXPECT_EQ(ReadFileBytes(Path("spec_Circle(4,4)-(5,5).spc")).size(), 6090u + 6 * 8);
    EXPECT_EQ(ReadFileBytes(Path("spec_Average.spc")).size(), 6090u + 6 * 8);
    EXPECT_EQ(ReadFileBytes(Path("spec_Point(20,30).spc")), "");
    // Once more: the existing file is kept when the user says no.
    host.messageBoxAnswers.push_back(TV_IDNO);
    EXPECT_EQ(ExportOneSpectrum(*ms, ms->SweepX, ms->Markers[0].SpecY, 0, Path("spec").c_str(), 0, false), 0);
    ASSERT_FALSE(host.messageBoxes.empty());
    EXPECT_EQ(host.messageBoxes.back().text, Path("spec_Point(2,3).spc") + " exists. Overwrite ?");
    // A marker without a spectrum does nothing.
    EXPECT_EQ(ExportOneSpectrum(*ms, ms->SweepX, ms->Markers[2].SpecY, 2, Path("other").c_str(), 1, true), 0);
    // As XY data.
    EXPECT_EQ(ExportOneSpectrum(*ms, ms->SweepX, ms->Markers[0].SpecY, 0, Path("xy").c_str(), 1, true), 1);
    EXPECT_NE(ReadFileBytes(Path("xy_Point(2,3).dat")), "");
    ms->MeasureFinish();
}

TEST_F(MeasureExportTest, SpectrumFilesAreDifferentiatedFirstAndMarkTheLMCMode)
{
    // 40 images whose pixels hold codes k * 1000 + 338: a straight line over the sweep, so the
    // first derivative is one slope everywhere inside.
    constexpr int kImages = 40;
    ImageHeaderType* image = maptest::MakeMappingImage(8, kImages);
    ASSERT_NE(image, nullptr);
    for (int k = 0; k < kImages; ++k) {
        uint16_t* pixels = CITSPixels(CITSEntry(image->CITSHeaderPtr, k));
        for (int i = 0; i < 64; ++i) pixels[i] = static_cast<uint16_t>(k * 1000 + 338);
    }
    image->AcqMode = 51;
    CurrentItem = image;
    Open(true);
    Add(TV_MARKER_POINT, {{2, 3}});
    ms->DisplayImageWithMarkers();
    ASSERT_EQ(ms->Markers[0].SpecCount, 1);
    ms->DiffType = 1;
    ASSERT_EQ(ExportOneSpectrum(*ms, ms->SweepX, ms->Markers[0].SpecY, 0, Path("d").c_str(), 1, true), 1);
    const CITSHeaderType* set = image->CITSHeaderPtr;
    const double slope = (CITSData2Current(CITSEntry(set, 3), 3 * 1000 + 338) -
                          CITSData2Current(CITSEntry(set, 2), 2 * 1000 + 338)) / 0.25;
    ASSERT_GT(std::fabs(slope), 0.1);
    const std::string text = ReadFileBytes(Path("d_Point(2,3).dat"));
    int rows = 0;
    for (size_t at = text.find('\n'); at != std::string::npos && at + 1 < text.size(); at = text.find('\n', at + 1)) {
        int index = 0;
        double x = 0, y = 0;
        ASSERT_EQ(std::sscanf(text.c_str() + at + 1, "%d %lf %lf", &index, &x, &y), 3) << text;
        ++rows;
        // The derivative's own X positions (from the derivative routine) go out with it.
        if (index >= 10 && index <= 30) {
            EXPECT_NEAR(y, slope, 1e-3 * std::fabs(slope)) << index;
        }
    }
    EXPECT_EQ(rows, kImages);
    // The spectrum file of an LMC acquisition is marked so.
    ASSERT_EQ(ExportOneSpectrum(*ms, ms->SweepX, ms->Markers[0].SpecY, 0, Path("d").c_str(), 0, true), 1);
    const FileHandle file = FileOpen(Path("d_Point(2,3).spc"), FileMode::Read);
    ASSERT_NE(file, kInvalidFile);
    ImageHeaderType* saved = loadSpec(file);
    FileClose(file);
    ASSERT_NE(saved, nullptr);
    EXPECT_EQ(saved->LMCMode, 1u);
    EXPECT_EQ(saved->nx, kImages);
    FreeSpectrumRecord(saved);
    // An existing XY file: the question names it by its stem.
    host.messageBoxAnswers.push_back(TV_IDNO);
    EXPECT_EQ(ExportOneSpectrum(*ms, ms->SweepX, ms->Markers[0].SpecY, 0, Path("d").c_str(), 1, false), 0);
    ASSERT_FALSE(host.messageBoxes.empty());
    EXPECT_EQ(host.messageBoxes.back().text, Path("d_Point(2,3)") + ".dat exists. Overwrite ?");
    EXPECT_EQ(ReadFileBytes(Path("d_Point(2,3).dat")), text);
    ms->MeasureFinish();
}

TEST_F(MeasureExportTest, UnknownDerivativeIsAProgramError)
{
    ImageHeaderType* image = maptest::MakeMappingImage(8, 6);
    ASSERT_NE(image, nullptr);
    CurrentItem = image;
    Open(true);
    std::vector<float> x(6, 1.0f), y(6, 2.0f), xo(6), yo(6);
    ms->DiffType = 9;
    EXPECT_EQ(ms->DifferentiateSPS(x.data(), y.data(), xo.data(), yo.data()), -1);
    EXPECT_NE(ReadLog().find("Program error - DifferentitateSPS(9)"), std::string::npos);
    ms->DiffType = 0;
    EXPECT_EQ(ms->DifferentiateSPS(x.data(), y.data(), xo.data(), yo.data()), 0);
    EXPECT_EQ(yo[5], 2.0f);
    ms->MeasureFinish();
}

} // namespace

namespace {

class MeasureSpectraPlotTest : public MeasureTest {};

TEST_F(MeasureSpectraPlotTest, MarkerSpectraArePlottedAndTheAverageIsWeightedByPixels)
{
    TestFrameStore plot;
    ASSERT_EQ(plot.Open(2), 0);
    VFS_set_current_vfs(1);
    ImageHeaderType* image = maptest::MakeMappingImage(8, 6);
    ASSERT_NE(image, nullptr);
    CurrentItem = image;
    Open(true);
    ms->SpectrumVFS = 2;   // the frame store the host opened for "Spectroscopy"
    Add(TV_MARKER_POINT, {{1, 1}});
    Add(TV_MARKER_RECT, {{3, 3}, {4, 3}, {4, 4}});
    ms->DisplayImageWithMarkers();
    ASSERT_EQ(ms->Markers[0].SpecCount, 1);
    ASSERT_EQ(ms->Markers[1].SpecCount, 4);
    EXPECT_EQ(ms->SpectrumValid, 1);
    for (int k = 0; k < 6; ++k) {
        const float expected = (ms->Markers[0].SpecY[k] + 4 * ms->Markers[1].SpecY[k]) / 5.0f;
        EXPECT_NEAR(ms->AveragedY[k], expected, 1e-6) << k;
    }
    // The remembered Y range of "no derivative" holds both curves.
    float lo = ms->Markers[0].SpecY[0], hi = lo;
    for (int i = 0; i < 2; ++i)
        for (int k = 0; k < 6; ++k) {
            lo = std::min(lo, ms->Markers[i].SpecY[k]);
            hi = std::max(hi, ms->Markers[i].SpecY[k]);
        }
    EXPECT_EQ(ms->YScaleLow[0], lo);
    EXPECT_EQ(ms->YScaleHigh[0], hi);
    // The plot went to frame store 2; the image's frame store is current again.
    EXPECT_EQ(CurrentVFS->VFSNo, 1);
    VFS_set_current_vfs(2);
    EXPECT_GT(CurrentVfs()->Items.size(), 0u);
    ms->MeasureFinish();
}

TEST_F(MeasureSpectraPlotTest, ALogAxisWithANonPositiveLowEndIsDrawnLinear)
{
    TestFrameStore plot;
    ASSERT_EQ(plot.Open(2), 0);
    VFS_set_current_vfs(1);
    ImageHeaderType* image = maptest::MakeMappingImage(8, 6);
    ASSERT_NE(image, nullptr);
    CurrentItem = image;
    Open(true);
    ms->SpectrumVFS = 2;
    Add(TV_MARKER_POINT, {{1, 1}});
    const int32_t savedX = PlotParam.LogAxisX, savedY = PlotParam.LogAxisY;
    PlotParam.LogAxisX = 0;
    PlotParam.LogAxisY = 1;
    // Currents of -1 to 1 nA: the low end is not positive, so the Y axis is linear.
    ms->DisplayImageWithMarkers();
    ASSERT_LE(ms->YScaleLow[0], 0.0f);
    EXPECT_EQ(PlotArea(1).LogY, 0);
    EXPECT_EQ(PlotParam.LogAxisY, 1);
    // All the currents above zero: a log axis, and the settings as they were afterwards.
    for (int k = 0; k < 6; ++k) {
        CITSEntry(image->CITSHeaderPtr, k)->z_low = 0.5f;
        CITSEntry(image->CITSHeaderPtr, k)->z_high = 2.0f;
    }
    ms->ResetYScale(0);
    ms->Markers[0].CalcValid = 0;
    ms->SpectrumValid = 0;
    ms->DisplayImageWithMarkers();
    ASSERT_GT(ms->YScaleLow[0], 0.0f);
    EXPECT_EQ(PlotArea(1).LogY, 1);
    EXPECT_EQ(PlotParam.LogAxisY, 1);
    EXPECT_EQ(LogScaleY, 1.0f);
    PlotParam.LogAxisX = savedX;
    PlotParam.LogAxisY = savedY;
    ms->MeasureFinish();
}

} // namespace
