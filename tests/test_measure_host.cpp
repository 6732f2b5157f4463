// End-to-end: tavrin measure on the sample topography, and the script lines of the measuring
// object.
#include "support/test_host.h"

#include "files/sample_data.h"
#include "files/tiff_write.h"

#include <sys/wait.h>

#include <cstdlib>
#include <filesystem>
#include <string>

namespace {

class MeasureHostTest : public LibraryTest {
protected:
    void SetUp() override
    {
        LibraryTest::SetUp();
        ASSERT_EQ(host.Start(), 0);
        ImageHeaderType* item = MakeSampleTopography(nullptr);
        ASSERT_NE(item, nullptr);
        ASSERT_EQ(saveTiffImage(item, Path("topography.tif").c_str(), 0), 0);
    }
    int Run(const std::string& arguments)
    {
        const std::string command = "cd '" + data + "' && TAVRIN_HOME='" + home + "' TAVRIN_DATA='" + data + "' '" +
                                    TAVRIN_HOST_BINARY + "' " + arguments + " > stdout.txt 2> stderr.txt";
        const int raw = std::system(command.c_str());
        return WIFEXITED(raw) ? WEXITSTATUS(raw) : -1;
    }
    std::string Out() const { return ReadFileBytes(Path("stdout.txt")); }
    std::string Err() const { return ReadFileBytes(Path("stderr.txt")); }
};

TEST_F(MeasureHostTest, CircleOverAParticleGivesItsHeightAndTheExport)
{
    // A particle of the model at pixel (361, 399), 8 nm (8.2 pixels) in radius.
    ASSERT_EQ(Run("measure topography.tif --circle 361,399,369,399 --point 10,10 --point 100,50 "
                  "--json --export m.txt -o m.png"),
              0)
        << Err();
    const std::string out = Out();
    const size_t marker = out.find("\"type\": \"circle\"");
    ASSERT_NE(marker, std::string::npos) << out;
    const double min = std::atof(out.c_str() + out.find("\"min\": ", marker) + 7);
    const double max = std::atof(out.c_str() + out.find("\"max\": ", marker) + 7);
    EXPECT_NEAR(max - min, SampleTopography::kParticleHeight, 0.1 * SampleTopography::kParticleHeight) << out;
    const std::string text = ReadFileBytes(Path("m.txt"));
    EXPECT_EQ(text.rfind("Tavrin Version 3.10(18)\n", 0), 0u);
    EXPECT_NE(text.find("Circle:  \"1\" (361,399) - (369,399)\n"), std::string::npos);
    EXPECT_NE(text.find("Point:  \"3\" (100,50)\n"), std::string::npos);
    EXPECT_TRUE(std::filesystem::exists(Path("m.png")));
}

TEST_F(MeasureHostTest, SummaryTableWithoutMarkersHasTheFourRows)
{
    ASSERT_EQ(Run("measure topography.tif"), 0) << Err();
    const std::string out = Out();
    EXPECT_NE(out.find("Point                           0"), std::string::npos) << out;
    EXPECT_NE(out.find("\nWhole image                     0"), std::string::npos) << out;
    EXPECT_NE(out.find("250,000"), std::string::npos) << out;
}

// The number after "key": in the JSON object that starts at `from`.
double JsonNumber(const std::string& out, size_t from, const std::string& key)
{
    const size_t at = out.find("\"" + key + "\": ", from);
    return at == std::string::npos ? -1e30 : std::atof(out.c_str() + at + key.size() + 4);
}

TEST_F(MeasureHostTest, BasePlaneOptionsSetTheWholeImageVolume)
{
    // Above and below the plane at 1 nm make up the volume of both sides.
    double volume[3];
    const char* bases[3] = {"above", "below", "both"};
    for (int k = 0; k < 3; ++k) {
        ASSERT_EQ(Run(std::string("measure topography.tif --json --base-height 1 --base ") + bases[k]), 0) << Err();
        const std::string out = Out();
        const size_t whole = out.find("\"name\": \"Whole image\"");
        ASSERT_NE(whole, std::string::npos) << out;
        volume[k] = JsonNumber(out, whole, "vol_csa");
    }
    EXPECT_GT(volume[0], 0.0);
    EXPECT_GT(volume[1], 0.0);
    EXPECT_NEAR(volume[0] + volume[1], volume[2], 1e-5 * volume[2]);
    ASSERT_EQ(Run("measure topography.tif --json --base none"), 0) << Err();
    const std::string out = Out();
    EXPECT_EQ(JsonNumber(out, out.find("\"name\": \"Whole image\""), "vol_csa"), 0.0) << out;
}

TEST_F(MeasureHostTest, SpectraOfMarkersOnAnIVMappingGoToFiles)
{
    ImageHeaderType* mapping = MakeSampleIVMapping(nullptr);
    ASSERT_NE(mapping, nullptr);
    ASSERT_EQ(saveTiffImage(mapping, Path("iv.tif").c_str(), 0), 0);
    ASSERT_EQ(Run("measure iv.tif --rect 2,2,10,2,10,10 --point 40,40 --spectra s --dat"), 0) << Err();
    EXPECT_NE(Out().find("3 spectrum files\n"), std::string::npos) << Out();
    // The last row of each file is the bias of +1 V: I = G (1 + kCubic), G by the domain of
    // the pixels (the rectangle lies in domain A, the point in B), the average weighted by the
    // pixels (81 and 1).
    using namespace SampleIVMapping;
    auto lastCurrent = [&](const std::string& name) {
        const std::string text = ReadFileBytes(Path(name));
        const size_t end = text.find_last_not_of("\r\n");
        const size_t start = text.rfind('\n', end);
        int index = 0;
        double x = 0, y = 0;
        if (end == std::string::npos || start == std::string::npos ||
            std::sscanf(text.c_str() + start + 1, "%d %lf %lf", &index, &x, &y) != 3)
            return -1e30;
        EXPECT_EQ(index, kImages) << name;
        EXPECT_NEAR(x, kHighBias, 1e-6) << name;
        return y;
    };
    const double a = kConductanceA * (1 + kCubic), b = kConductanceB * (1 + kCubic);
    EXPECT_NEAR(lastCurrent("s_Rect(2,2)(10,2)(10,10).dat"), a, 1e-3 * b);
    EXPECT_NEAR(lastCurrent("s_Point(40,40).dat"), b, 1e-3 * b);
    EXPECT_NEAR(lastCurrent("s_Average.dat"), (81 * a + b) / 82, 1e-3 * b);
}

TEST_F(MeasureHostTest, UsageErrors)
{
    EXPECT_EQ(Run("measure topography.tif --circle 1,2,3"), 2);
    EXPECT_NE(Err().find("--circle takes 4 numbers"), std::string::npos) << Err();
    EXPECT_EQ(Run("measure topography.tif --seed 3,3"), 2);
    EXPECT_EQ(Run("measure topography.tif --base sideways"), 2);
    EXPECT_EQ(Run("measure topography.tif --spectra s"), 2);
    // Spectra need a mapping set.
    EXPECT_EQ(Run("measure topography.tif --spectra s --spc"), 1);
}

TEST_F(MeasureHostTest, ScriptLinesSetMarkersAndExport)
{
    WriteFileBytes(Path("script.txt"),
                   "OpenSTMData 0 \"topography.tif\"\n"
                   "Measure.Initialise 0\n"
                   "Measure.Add 8 \"361,399,369,399\" 0 0\n"
                   "Measure.Add 16 \"300,100,340,100,320,140\" 320 110\n"
                   "Measure.Display\n"
                   "Measure.Export \"s.txt\"\n");
    ASSERT_EQ(Run("run script.txt"), 0) << Err();
    const std::string out = Out();
    EXPECT_NE(out.find("Measure.Initialise = 0\n"), std::string::npos) << out;
    EXPECT_NE(out.find("Measure.Add = 1\n"), std::string::npos) << out;
    EXPECT_NE(out.find("Measure.Export = 1\n"), std::string::npos) << out;
    const std::string text = ReadFileBytes(Path("s.txt"));
    EXPECT_NE(text.find("Polygon:  \"2\" (300,100) - (340,100) - (320,140)\n"), std::string::npos) << text;
    EXPECT_NE(text.find("\nArea                            2"), std::string::npos) << text;
}

} // namespace
