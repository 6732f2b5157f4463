// The host's particles command as a user runs it: the sample topography saved, levelled with
// the background command, then analysed; the summary, the statistics text, the bilevel image
// and the JSON form, and the usage errors.
#include "test_host_binary_support.h"

#include "files/sample_data.h"
#include "files/tiff_write.h"
#include "png_decoder.h"

#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>

namespace {

class ParticleHostTest : public HostBinaryTest {
protected:
    void SetUp() override
    {
        HostBinaryTest::SetUp();
        ASSERT_EQ(host.Start(), 0);
    }
    int Run(const std::string& arguments) { return RunHost(arguments); }
    std::string Read(const std::string& name) const
    {
        std::ifstream in(Path(name), std::ios::binary);
        std::stringstream text;
        text << in.rdbuf();
        return text.str();
    }
    static int Lines(const std::string& text)
    {
        int n = 0;
        for (char c : text) n += c == '\n';
        return n;
    }
};

TEST_F(ParticleHostTest, LevelledSampleTopographyGivesItsParticlesFileAndPicture)
{
    ImageHeaderType* item = MakeSampleTopography(nullptr);
    ASSERT_NE(item, nullptr);
    ASSERT_EQ(saveTiffImage(item, Path("topography.tif").c_str(), 0), 0);
    ASSERT_EQ(Run("level topography.tif levelled.tif --method poly --degree 2,2"), 0) << Read("stderr.txt");
    // Grey level 37 is 0.25 nm over the levelled terraces (see the ground truth test).
    ASSERT_EQ(Run("particles levelled.tif --band 37,255 --connectivity 8 --sort area --stats stats.txt "
                  "--bilevel bilevel.png"),
              0)
        << Read("stderr.txt");
    const std::string out = Read("stdout.txt");
    EXPECT_NE(out.find("No of particles : 24\n"), std::string::npos) << out;
    EXPECT_NE(out.find("Mean area : 185.3nm"), std::string::npos) << out;
    const std::string stats = Read("stats.txt");
    EXPECT_EQ(Lines(stats), 25);   // the heading and one row for each particle
    EXPECT_NE(stats.find("\r\n24\t"), std::string::npos);
    const png_check::DecodedPng png = png_check::DecodePngFile(data, Path("bilevel.png"), 3);
    EXPECT_EQ(png.width, 512);
    EXPECT_EQ(png.height, 512);
}

TEST_F(ParticleHostTest, JsonGivesTheSummaryAndEveryObject)
{
    ImageHeaderType* item = MakeSampleTopography(nullptr);
    ASSERT_NE(item, nullptr);
    ASSERT_EQ(saveTiffImage(item, Path("topography.tif").c_str(), 0), 0);
    ASSERT_EQ(Run("particles topography.tif --band 250,255 --json"), 0) << Read("stderr.txt");
    const std::string out = Read("stdout.txt");
    EXPECT_EQ(out.rfind("{\n  \"summary\": [\"", 0), 0u) << out;
    EXPECT_NE(out.find("\"objects\": ["), std::string::npos);
    EXPECT_NE(out.find("{\"number\": 1, "), std::string::npos);
}

// The entry points from a script, as the host's dialogs call them, with a pointer event.
TEST_F(ParticleHostTest, ScriptDrivesTheDialogPagesAndThePointer)
{
    ImageHeaderType* item = MakeSampleTopography(nullptr);
    ASSERT_NE(item, nullptr);
    ASSERT_EQ(saveTiffImage(item, Path("t.tif").c_str(), 0), 0);
    std::ofstream(Path("script.txt")) << "OpenSTMData 0 t.tif\n"
                                         "GetParticleParam Initialise=1\n"
                                         "SetParticleParam LowLevel=250 HighLevel=255 Connectivity=8\n"
                                         "GetParticleParam Initialise=0\n"
                                         "GetParticleSttsParam 1 0\n"
                                         "GetConnectivity\n"
                                         "ParticleSttsGetDesc 1\n"
                                         "ShootObjects\n"
                                         "ParticlePointer_Callback 18 0 0 1\n"
                                         "ParticlePointer_Callback 7 0 0 1\n"
                                         "ToggleConnectivity\n"
                                         "WriteObjectStatistics s.txt\n"
                                         "GenerateBilevelImage\n";
    Run("run script.txt");
    const std::string out = Read("stdout.txt");
    EXPECT_NE(out.find("GetParticleParam = 8"), std::string::npos) << out;
    EXPECT_NE(out.find("Summary4=\"No of particles : 1\""), std::string::npos) << out;
    EXPECT_NE(out.find("GetConnectivity = 8"), std::string::npos) << out;
    EXPECT_NE(out.find("ParticleSttsGetDesc = 1\n  1)|"), std::string::npos) << out;
    EXPECT_NE(out.find("ParticlePointer_Callback = 0"), std::string::npos) << out;
    EXPECT_NE(out.find("WriteObjectStatistics = 1"), std::string::npos) << out;
    const std::string log = Read("stderr.txt") + out;
    EXPECT_NE(log.find("dl_ParticlePointer_Callback_handle=7"), std::string::npos) << log;
    EXPECT_NE(log.find("Should not execute dl_GenerateBilevelImage()"), std::string::npos) << log;
}

TEST_F(ParticleHostTest, UsageErrors)
{
    EXPECT_EQ(Run("particles missing.tif"), 2);
    EXPECT_NE(Read("stderr.txt").find("--band LO,HI is needed"), std::string::npos);
    EXPECT_EQ(Run("particles x.tif --band 10"), 2);
    EXPECT_EQ(Run("particles x.tif --band 10,300"), 2);
    EXPECT_EQ(Run("particles x.tif --band 1,2 --connectivity 6"), 2);
    EXPECT_EQ(Run("particles x.tif --band 1,2 --sort size"), 2);
    EXPECT_EQ(Run("particles x.tif --band 1,2 --bilevel out.bmp"), 2);
    EXPECT_EQ(Run("particles missing.tif --band 1,2"), 1);
}

} // namespace
