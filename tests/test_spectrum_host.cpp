// The host's plot and spec commands, run as a user runs them: the binary in the test's own
// directories, on sample spectra saved there.
#include "test_host_binary_support.h"

#include "files/sample_data.h"
#include "files/spectrum_files.h"
#include "files/attached_spectra.h"
#include "files/tiff_write.h"
#include "png_decoder.h"
#include "test_spectrum_support.h"
#include "test_tiff_support.h"
#include "store/data_list.h"
#include "store/history.h"

#include <sys/wait.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <string>

namespace {

class SpecHostTest : public HostBinaryTest {
protected:
    void SetUp() override
    {
        HostBinaryTest::SetUp();
        ASSERT_EQ(host.Start(), 0);
    }

    int Run(const std::string& arguments) { return RunHost(arguments); }
    void Save(ImageHeaderType* item, const std::string& name) { ASSERT_EQ(SaveSpecFile(item, Path(name).c_str()), 0); }
    ImageHeaderType* Load(const std::string& name)
    {
        if (LoadSpecFile(Path(name).c_str(), 0, 1) != 0) return nullptr;
        return CurrentItem;
    }
    static std::vector<float> Ys(const ImageHeaderType* item)
    {
        const float* s = reinterpret_cast<const float*>(item->PixData);
        return std::vector<float>(s, s + item->nx);
    }
};

} // namespace

TEST_F(SpecHostTest, PlotWritesThePictureOfTheIVCurve)
{
    Save(MakeSampleIVCurve(nullptr), "iv.spc");
    ASSERT_EQ(Run("plot iv.spc -o iv.png --grid --size 300x200"), 0);
    const png_check::DecodedPng png = png_check::DecodePngFile(data, Path("iv.png"), 3);
    EXPECT_EQ(png.width, 512);
    EXPECT_EQ(png.height, 512);
    // Something besides the background is drawn inside the plot's place, nothing below it.
    int inside = 0, below = 0;
    for (int y = 0; y < 512; ++y)
        for (int x = 0; x < 512; ++x) {
            const size_t i = (static_cast<size_t>(y) * 512 + x) * 3;
            const bool white = png.pixels[i] == 255 && png.pixels[i + 1] == 255 && png.pixels[i + 2] == 255;
            if (!white) (y < 200 && x < 300 ? inside : below) += 1;
        }
    EXPECT_GT(inside, 500);
    EXPECT_EQ(below, 0);
}

TEST_F(SpecHostTest, PlotRefusesAnImageAndAMissingOutput)
{
    EXPECT_EQ(Run("plot nothing.spc"), 2);
    Save(MakeSampleIVCurve(nullptr), "iv.spc");
    EXPECT_EQ(Run("plot iv.spc -o iv.png --size 10x10"), 2);
}

TEST_F(SpecHostTest, SpecRoundTripsThroughSpc)
{
    ImageHeaderType* source = MakeSampleIVCurve(nullptr);
    Save(source, "iv.spc");
    ASSERT_EQ(Run("spec iv.spc smooth.spc --smooth 3"), 0);
    ImageHeaderType* result = Load("smooth.spc");
    ASSERT_NE(result, nullptr);
    ASSERT_EQ(result->nx, source->nx);
    const std::vector<float> y = Ys(source), s = Ys(result);
    for (int i = 1; i + 1 < source->nx; ++i) EXPECT_FLOAT_EQ(s[i], (y[i - 1] + y[i] + y[i + 1]) / 3.0f) << i;
    EXPECT_EQ(SeeIfProcessDone(result, 50), 1);
}

TEST_F(SpecHostTest, SpecArithmeticTakesItsConstantAndTwoSpectraCombine)
{
    Save(MakeSampleIVCurve(nullptr), "iv.spc");
    ASSERT_EQ(Run("spec iv.spc plus.spc --math-y 1,2.5"), 0);
    EXPECT_EQ(Run("spec iv.spc plus.spc --math-y 1"), 2);
    ASSERT_EQ(Run("spec plus.spc diff.spc --with iv.spc --op 2"), 0);
    ImageHeaderType* diff = Load("diff.spc");
    ASSERT_NE(diff, nullptr);
    for (float v : Ys(diff)) EXPECT_NEAR(v, 2.5f, 1e-5f);
    EXPECT_EQ(SeeIfProcessDone(diff, 66), 1);
}

TEST_F(SpecHostTest, SpecSplitOfAOneWayRampFailsAndTheDerivativeGoesToATable)
{
    Save(MakeSampleForceCurve(nullptr), "force.spc");
    EXPECT_EQ(Run("spec force.spc parts.spc --split"), 1);
    ASSERT_EQ(Run("spec force.spc slope.dat --diff 1,25"), 0);
    EXPECT_NE(ReadFileBytes(Path("slope.dat")).find("No."), std::string::npos);
    ASSERT_EQ(Run("spec force.spc force.png --dc"), 0);
    EXPECT_FALSE(ReadFileBytes(Path("force.png")).empty());
}

// The spectrum tools, the attached spectra and the multi-spectra display from the command line.
namespace {

std::string Stdout(const std::string& data) { return ReadFileBytes(data + "stdout.txt"); }

// A spectrum of n points in the list, Y = sin of the index, X the index.
ImageHeaderType* SineSpectrum(int n, const char* title)
{
    ImageHeaderType* item = spectest::MakeSpectrumItem(n);
    if (!item) return nullptr;
    float* samples = reinterpret_cast<float*>(item->PixData);
    for (int i = 0; i < n; ++i) samples[i] = std::sin(0.7f * static_cast<float>(i)), samples[n + i] = static_cast<float>(i);
    std::snprintf(item->Title, sizeof item->Title, "%s", title);
    return item;
}

} // namespace

TEST_F(SpecHostTest, SpecFitOfTheSampleIVCurvePrintsTheGeneratorWithinOnePercent)
{
    Save(MakeSampleIVCurve(nullptr), "iv.spc");
    ASSERT_EQ(Run("specfit iv.spc --degree 3 --json"), 0);
    const std::string out = Stdout(data);
    double c[4] = {0, 0, 0, 0};
    const size_t at = out.find("\"coefficients\": [");
    ASSERT_NE(at, std::string::npos) << out;
    ASSERT_EQ(std::sscanf(out.c_str() + at, "\"coefficients\": [%lf, %lf, %lf, %lf]", &c[0], &c[1], &c[2], &c[3]), 4)
        << out;
    const double g = SampleIVCurve::kConductance, c3 = g * SampleIVCurve::kCubic;
    EXPECT_NEAR(c[1], g, 0.01 * g);
    EXPECT_NEAR(c[3], c3, 0.01 * c3);
    EXPECT_NE(out.find("\"stddev\": "), std::string::npos);
    EXPECT_NE(out.find("\"r\": "), std::string::npos);
    // A degree outside 1 to 19 is a usage error.
    EXPECT_EQ(Run("specfit iv.spc --degree 20"), 2);
}

TEST_F(SpecHostTest, SpecFFTPlotsEachWindowAndRefusesAPointCountThatIsNoPowerOfTwo)
{
    ImageHeaderType* item = SineSpectrum(64, "sine");
    ASSERT_NE(item, nullptr);
    Save(item, "sine.spc");
    for (int w = 1; w <= 5; ++w) {
        const std::string png = "fft" + std::to_string(w) + ".png";
        ASSERT_EQ(Run("specfft sine.spc --window " + std::to_string(w) + " -o " + png), 0) << w;
        const png_check::DecodedPng picture = png_check::DecodePngFile(data, Path(png), 3);
        EXPECT_EQ(picture.width, 512) << w;
    }
    ASSERT_EQ(Run("specfft sine.spc --window 4 --csv"), 0);
    const std::string csv = Stdout(data);
    EXPECT_EQ(csv.rfind("k,magnitude\n0,", 0), 0u);
    EXPECT_EQ(std::count(csv.begin(), csv.end(), '\n'), 33);
    // 12 points: no power of two (a 2-point file is no valid spectrum file to begin with).
    ImageHeaderType* twelve = SineSpectrum(12, "twelve");
    ASSERT_NE(twelve, nullptr);
    Save(twelve, "twelve.spc");
    EXPECT_EQ(Run("specfft twelve.spc --window 1 -o twelve.png"), 1);
    EXPECT_NE(ReadFileBytes(Path("stderr.txt")).find("Number of points in spectrum must be a power of 2"),
              std::string::npos) << ReadFileBytes(Path("stderr.txt")) << Stdout(data);
}

TEST_F(SpecHostTest, MultiSpecRoundTripsItsSettingsAndExportsTheMarkers)
{
    Save(MakeSampleIVCurve(nullptr), "a.spc");
    Save(SineSpectrum(64, "sine"), "b.spc");
    ASSERT_EQ(Run("multispec a.spc b.spc -o m1.png --shift 2:0.5,1 --gain 1:2,1 --save s1.txt --export e.txt"), 0)
        << ReadFileBytes(Path("stderr.txt"));
    const png_check::DecodedPng picture = png_check::DecodePngFile(data, Path("m1.png"), 3);
    EXPECT_EQ(picture.width, 768);
    EXPECT_EQ(picture.height, 512);
    const std::string first = ReadFileBytes(Path("s1.txt"));
    EXPECT_NE(first.find("Number of Spectra=2\n"), std::string::npos) << first;
    EXPECT_NE(first.find("Shifts and gains 1.0=0.000000 0.000000 2.000000 1.000000\n"), std::string::npos) << first;
    EXPECT_NE(first.find("Shifts and gains 2.0=0.500000 1.000000 1.000000 1.000000\n"), std::string::npos) << first;
    const std::string exported = ReadFileBytes(Path("e.txt"));
    EXPECT_NE(exported.find("\nLine Markers: Y1=1 "), std::string::npos) << exported;
    EXPECT_NE(exported.find("Filename 2.0=b.spc\nTitle 2.0=sine\n"), std::string::npos) << exported;

    ASSERT_EQ(Run("multispec a.spc b.spc -o m2.png --load s1.txt --save s2.txt"), 0);
    const std::string second = ReadFileBytes(Path("s2.txt"));
    // The same text but for the date line.
    const auto body = [](const std::string& text) { return text.substr(text.find("\n\n")); };
    EXPECT_EQ(body(second), body(first));
    EXPECT_EQ(ReadFileBytes(Path("m2.png")), ReadFileBytes(Path("m1.png")));
    EXPECT_EQ(Run("multispec a.spc b.spc -o m3.png --shift 3:1,1"), 2);
}

TEST_F(SpecHostTest, AttachedMarksThePlacesOfTheSpectraOfAnImage)
{
    ImageHeaderType* image = tifftest::MakeImage(64);
    ASSERT_NE(image, nullptr);
    ImageHeaderType* last = image;
    for (int i = 0; i < 3; ++i) {
        ImageHeaderType* s = spectest::MakeBareSpectrum(32, 10 + i);
        ASSERT_NE(s, nullptr);
        s->STSPosX = static_cast<int16_t>(8 + 20 * i);
        s->STSPosY = 30;
        SetSPSRefChain(last, s);
        last = s;
    }
    image->nSPSRefData = 3;
    host.messageBoxAnswers.push_back(TV_IDYES);
    ASSERT_EQ(saveTiffImage(image, Path("with.tif").c_str(), 0), 0);
    ASSERT_EQ(Run("attached with.tif -o places.png"), 0) << ReadFileBytes(Path("stderr.txt"));
    EXPECT_EQ(Stdout(data), "places.png: 3 spectra\n");
    const png_check::DecodedPng picture = png_check::DecodePngFile(data, Path("places.png"), 3);
    EXPECT_EQ(picture.width, 512);

    ImageHeaderType* plain = tifftest::MakeImage(64);
    ASSERT_EQ(saveTiffImage(plain, Path("plain.tif").c_str(), 0), 0);
    EXPECT_EQ(Run("attached plain.tif -o none.png"), 1);
    EXPECT_NE(ReadFileBytes(Path("stderr.txt")).find("holds no attached spectra"), std::string::npos);
}

TEST_F(SpecHostTest, ScriptsReachTheSpectrumToolsAndTheMultiSpectraMethods)
{
    Save(MakeSampleIVCurve(nullptr), "a.spc");
    Save(SineSpectrum(64, "sine"), "b.spc");
    WriteFileBytes(Path("script.txt"), "OpenSTMData 0 a.spc\n"
                                       "OpenSTMData 0 b.spc\n"
                                       "ShowSpecFFT 3\n"
                                       "GetMultiSpecDisp\n"
                                       "MultiSpecInitialise -1 -1 -1\n"
                                       "MultiSpecGetItem 0\n"
                                       "MultiSpecSetItem 0 Selected=1 ShiftX=0.5 GainY=2\n"
                                       "MultiSpecConvertX 0 2\n"
                                       "MultiSpecConvertY 0 2\n"
                                       "MultiSpecSelectedForDisplay 0\n"
                                       "MultiSpecGetParam\n"
                                       "MultiSpecSetParamAndPlot MatchYUnits=1 AxisY1=4.5\n"
                                       "MultiSpecGetLowestID\n"
                                       "MultiSpecSave s.txt\n"
                                       "MultiSpecFinish 1\n"
                                       "MultiSpecLoad s.txt\n"
                                       "MultiSpecGetItem 0\n"
                                       "MultiSpecExport e.txt\n");
    ASSERT_EQ(Run("run script.txt"), 0) << ReadFileBytes(Path("stderr.txt"));
    const std::string out = Stdout(data);
    EXPECT_NE(out.find("GetMultiSpecDisp = set\n"), std::string::npos) << out;
    EXPECT_NE(out.find("MultiSpecInitialise = 2\n"), std::string::npos) << out;
    EXPECT_NE(out.find("MultiSpecConvertX = 2.5\n"), std::string::npos) << out;
    EXPECT_NE(out.find("MultiSpecConvertY = 4\n"), std::string::npos) << out;
    EXPECT_NE(out.find("MultiSpecSelectedForDisplay = 1\n"), std::string::npos) << out;
    EXPECT_NE(out.find("MultiSpecSave = 1\n"), std::string::npos) << out;
    EXPECT_NE(out.find("MultiSpecLoad = 1\n"), std::string::npos) << out;
    EXPECT_NE(out.find("MultiSpecExport = 1\n"), std::string::npos) << out;
    const std::string saved = ReadFileBytes(Path("s.txt"));
    EXPECT_NE(saved.find("Match Y units=1\n"), std::string::npos) << saved;
    EXPECT_NE(saved.find("Axes y=-3.000000 4.500000 0.100000\n"), std::string::npos) << saved;
    EXPECT_NE(saved.find("Shifts and gains 1.0=0.500000 0.000000 1.000000 2.000000\n"), std::string::npos) << saved;
}

TEST_F(SpecHostTest, SpecZoomResamplesIntoTheBoxAndTableWritesTheText)
{
    Save(SineSpectrum(64, "sine"), "sine.spc");
    ASSERT_EQ(Run("spec sine.spc zoom.spc --zoom 10,40"), 0) << ReadFileBytes(Path("stderr.txt"));
    ImageHeaderType* zoomed = Load("zoom.spc");
    ASSERT_NE(zoomed, nullptr);
    ASSERT_EQ(zoomed->nx, 64);
    const float* x = reinterpret_cast<const float*>(zoomed->PixData) + zoomed->nx;
    EXPECT_EQ(x[0], 10.0f);
    EXPECT_EQ(x[63], 40.0f);
    // A box wholly outside the X range.
    EXPECT_EQ(Run("spec sine.spc none.spc --zoom 100,200"), 1);
    EXPECT_NE(ReadFileBytes(Path("stderr.txt")).find("Invalid data entry"), std::string::npos)
        << ReadFileBytes(Path("stderr.txt"));
    ASSERT_EQ(Run("spec sine.spc table.txt --table --delimiter 1"), 0) << ReadFileBytes(Path("stderr.txt"));
    const std::string table = ReadFileBytes(Path("table.txt"));
    EXPECT_EQ(table.rfind("No.,X,Y\n1,0.000000E+00,0.000000E+00\n2,1.000000E+00,", 0), 0u) << table.substr(0, 80);
    ASSERT_EQ(Run("spec sine.spc bare.txt --table --no-header --delimiter 0"), 0);
    EXPECT_EQ(ReadFileBytes(Path("bare.txt")).rfind("1 0.000000E+00 0.000000E+00\n", 0), 0u);
}
