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
