// The host's map composite, slice, page and replay commands and a scripted session of the
// mapping display entry points, run as a user runs them: the binary in the test's own
// directories, on the sample mapping sets saved there.
#include "support/test_host.h"
#include "files/sample_data.h"
#include "files/tiff_write.h"
#include "png_decoder.h"

#include <sys/wait.h>

#include <cstdlib>
#include <filesystem>
#include <string>

namespace {

class MappingDisplayHostTest : public LibraryTest {
protected:
    void SetUp() override
    {
        LibraryTest::SetUp();
        ASSERT_EQ(host.Start(), 0);
        ImageHeaderType* iv = MakeSampleIVMapping(nullptr);
        ASSERT_NE(iv, nullptr);
        ASSERT_EQ(saveTiffImage(iv, Path("iv.tif").c_str(), 0), 0);
        ImageHeaderType* fc = MakeSampleForceMappingWithStep(nullptr);
        ASSERT_NE(fc, nullptr);
        ASSERT_EQ(saveTiffImage(fc, Path("fc.tif").c_str(), 0), 0);
        ImageHeaderType* fv = MakeSampleFVMapping(nullptr);
        ASSERT_NE(fv, nullptr);
        ASSERT_EQ(saveTiffImage(fv, Path("fv.tif").c_str(), 0), 0);
    }
    int Run(const std::string& arguments, const std::string& input = "")
    {
        WriteFileBytes(data + "stdin.txt", input);
        const std::string command = "cd '" + data + "' && TAVRIN_HOME='" + home + "' TAVRIN_DATA='" + data + "' '" +
                                    TAVRIN_HOST_BINARY + "' " + arguments + " < stdin.txt > stdout.txt 2> stderr.txt";
        const int raw = std::system(command.c_str());
        return WIFEXITED(raw) ? WEXITSTATUS(raw) : -1;
    }
    std::string Out() const { return ReadFileBytes(data + "stdout.txt"); }
    std::string Err() const { return ReadFileBytes(data + "stderr.txt"); }
    void ExpectPicture(const std::string& name)
    {
        const png_check::DecodedPng png = png_check::DecodePngFile(data, Path(name), 3);
        EXPECT_EQ(png.width, 512) << name;
        EXPECT_EQ(png.height, 512) << name;
    }
};

TEST_F(MappingDisplayHostTest, CompositeSlicePageAndReplayWriteThePicturesOfTheSampleSets)
{
    for (const std::string set : {"iv", "fc", "fv"}) {
        SCOPED_TRACE(set);
        const std::string in = set + ".tif";
        ASSERT_EQ(Run("map composite " + in + " -o " + set + "-c.png --n 16 --select 1 --labels 1 --topo"), 0) << Err();
        ExpectPicture(set + "-c.png");
        ASSERT_EQ(Run("map slice " + in + " --image 3 -o " + set + "-s.png"), 0) << Err();
        ExpectPicture(set + "-s.png");
        ASSERT_EQ(Run("map slice " + in + " --at 0.5 -o " + set + "-a.png"), 0) << Err();
        ExpectPicture(set + "-a.png");
        ASSERT_EQ(Run("map page " + in + " --page 1 --size 64 -o " + set + "-p.png"), 0) << Err();
        ExpectPicture(set + "-p.png");
        ASSERT_EQ(Run("map replay " + in + " -o " + set + "-r"), 0) << Err();
        ExpectPicture(set + "-r/replay_0000.png");
    }
    // One picture per image: 128 images of the I-V set, 81 of the F-V set.
    EXPECT_TRUE(std::filesystem::exists(Path("iv-r/replay_0127.png")));
    EXPECT_FALSE(std::filesystem::exists(Path("iv-r/replay_0128.png")));
    EXPECT_TRUE(std::filesystem::exists(Path("fv-r/replay_0080.png")));
    EXPECT_FALSE(std::filesystem::exists(Path("fv-r/replay_0081.png")));
}

TEST_F(MappingDisplayHostTest, TheSameSetAndBlockGiveTheSamePictureAtEverySize)
{
    for (const std::string frame : {"0", "64", "128"}) {
        SCOPED_TRACE(frame);
        const std::string args = "map composite iv.tif --frame " + frame + " --n 16 --select 1 --mode 2 --labels 2 -o ";
        ASSERT_EQ(Run(args + "a.png"), 0) << Err();
        ASSERT_EQ(Run(args + "b.png"), 0) << Err();
        const std::string a = ReadFileBytes(Path("a.png"));
        EXPECT_FALSE(a.empty());
        EXPECT_EQ(a, ReadFileBytes(Path("b.png")));
    }
}

TEST_F(MappingDisplayHostTest, ABadOptionIsAUsageError)
{
    EXPECT_NE(Run("map composite iv.tif -o a.png --frame 100"), 0);
    EXPECT_NE(Run("map slice iv.tif -o a.png"), 0);
    EXPECT_NE(Run("map slice iv.tif --image 2 -o a.tif"), 0);
    EXPECT_FALSE(std::filesystem::exists(Path("a.tif")));
    EXPECT_NE(Run("map page iv.tif --size 32 -o a.png"), 0);
}

TEST_F(MappingDisplayHostTest, AScriptDrivesTheEntryPoints)
{
    ASSERT_EQ(Run("run -", "OpenSTMData 0 iv.tif\n"
                           "CITSGetDesc 2 -\n"
                           "pb_CITSSetCurrent 2\n"
                           "text\n"
                           "CITSGetDesc 2 -\n"
                           "GetCITSDispParam\n"
                           "CITSDisplayXxY 64\n"
                           "pick 70 5 left\n"
                           "pick 0 0 move\n"
                           "pick 0 0 right\n"
                           "CITSRapidReplay\n"
                           "slider 117 0 0.5\n"
                           "slider 117 1 0.5\n"),
              0)
        << Err();
    const std::string out = Out();
    EXPECT_NE(out.find("CITSGetDesc = 2\n2: -0.984 V"), std::string::npos) << out;   // image 1 is current
    EXPECT_NE(out.find("CITSGetDesc = 1\n2: -0.984 V"), std::string::npos) << out;   // then image 2
    // The text panel of image 2: the right-hand texts at their column beside the left-hand ones.
    EXPECT_NE(out.find("SPS Mapping Image (V) -0.984"), std::string::npos) << out;
    EXPECT_NE(out.find("No of pixels ( 64, 64). Filename : "), std::string::npos) << out;
    EXPECT_NE(out.find("CITSDispParam"), std::string::npos) << out;
    EXPECT_NE(out.find("pick: going on"), std::string::npos) << out;
    EXPECT_NE(out.find("pick: done"), std::string::npos) << out;
    EXPECT_NE(out.find("slider = 0"), std::string::npos) << out;
}

} // namespace
