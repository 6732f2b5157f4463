// The host's lut, math, math2, normalise and histogram commands and scripted slider sessions,
// run as a user runs them: the binary in the test's own directories, on the sample topography
// saved there.
#include "test_host_binary_support.h"

#include "display/contrast_map.h"
#include "display/default_tables.h"
#include "files/sample_data.h"
#include "files/tiff_read.h"
#include "files/tiff_write.h"
#include "image/contrast.h"
#include "png_decoder.h"
#include "store/data_list.h"
#include "store/history.h"

#include <string>
#include <vector>

namespace {

class ContrastHostTest : public HostBinaryTest {
protected:
    void SetUp() override
    {
        HostBinaryTest::SetUp();
        ASSERT_EQ(host.Start(), 0);
        ImageHeaderType* item = MakeSampleTopography(nullptr);
        ASSERT_NE(item, nullptr);
        ASSERT_EQ(saveTiffImage(item, Path("t.tif").c_str(), 0), 0);
    }
    // `input` is the binary's standard input.
    int Run(const std::string& arguments, const std::string& input = "") { return RunHostWithInput(arguments, input); }
    std::string Err() const { return ReadFileBytes(data + "stderr.txt"); }
    // The image of a saved file, current in this process.
    ImageHeaderType* Load(const std::string& name)
    {
        if (LoadImageFile(Path(name).c_str(), 0, 1, 1) != 0) return nullptr;
        return CurrentItem;
    }
    static std::vector<uint8_t> Table(const ImageHeaderType* image) { return {image->ImageLUT, image->ImageLUT + 256}; }
    static int LastHistoryCode(const ImageHeaderType* item)
    {
        int n = 0;
        while (n < kProcessListLength && item->ProcessList[n]) ++n;
        return n ? item->ProcessList[n - 1] : 0;
    }
    // The picture is a 512 by 512 RGB image.
    void ExpectPicture(const std::string& name)
    {
        const png_check::DecodedPng png = png_check::DecodePngFile(data, Path(name), 3);
        EXPECT_EQ(png.width, 512) << name;
        EXPECT_EQ(png.height, 512) << name;
    }
};

} // namespace

TEST_F(ContrastHostTest, EveryCommandWritesAPictureOfItsResult)
{
    const char* commands[] = {
        "lut t.tif a.png --contrast 10,200,1.2", "lut t.tif b.png --threshold 1,4 --transform",
        "lut t.tif c.png --equalise",           "lut t.tif d.png --linearise",
        "lut t.tif e.png --op xor:85",          "math t.tif f.png --op mul:1.5",
        "math2 t.tif t.tif g.png --op diff",    "normalise t.tif h.png",
        "normalise t.tif i.png --sd 2",         "histogram t.tif -o j.png",
    };
    const char* outputs[] = {"a.png", "b.png", "c.png", "d.png", "e.png", "f.png", "g.png", "h.png", "i.png", "j.png"};
    for (size_t i = 0; i < std::size(commands); ++i) {
        ASSERT_EQ(Run(commands[i]), 0) << commands[i] << "\n" << Err();
        ExpectPicture(outputs[i]);
    }
}

TEST_F(ContrastHostTest, AScriptedContrastSessionEqualsTheCommandAndTheDirectTable)
{
    ASSERT_EQ(Run("run -", "OpenSTMData 0 t.tif\nAdjustLUT\nslider 500 0 10 200 1.2\nslider 500 1 10 200 1.2\n"
                           "SaveData 1 s.tif 0 0\n"),
              0)
        << Err();
    ASSERT_EQ(Run("lut t.tif c.tif --contrast 10,200,1.2"), 0) << Err();
    ImageHeaderType* scripted = Load("s.tif");
    ASSERT_NE(scripted, nullptr);
    const auto table = Table(scripted);
    ImageHeaderType* command = Load("c.tif");
    ASSERT_NE(command, nullptr);
    EXPECT_EQ(Table(command), table);
    uint8_t direct[256];
    PlainContrastTable(10.0, 200.0, static_cast<double>(1.2f), direct);
    EXPECT_EQ(table, std::vector<uint8_t>(direct, direct + 256));
    EXPECT_EQ(LastHistoryCode(command), 81);
    EXPECT_FLOAT_EQ(command->Contrast, 200.0f);
}

TEST_F(ContrastHostTest, AScriptedCancelChangesNothing)
{
    ASSERT_EQ(Run("run -", "OpenSTMData 0 t.tif\nAdjustLUT\nslider 500 0 60 250 3\nslider 500 2 60 250 3\n"
                           "SaveData 1 s.tif 0 0\n"),
              0)
        << Err();
    ImageHeaderType* saved = Load("s.tif");
    ASSERT_NE(saved, nullptr);
    EXPECT_TRUE(IsIdentityTable(saved->ImageLUT));
    EXPECT_EQ(LastHistoryCode(saved), 0);
}

TEST_F(ContrastHostTest, AScriptedThresholdSessionEqualsTheCommand)
{
    ASSERT_EQ(Run("run -", "OpenSTMData 0 t.tif\nSetWindow\nslider 201 0 1 4\nanswer yes\nslider 201 1 1 4\n"
                           "SaveData 1 s.tif 0 0\n"),
              0)
        << Err();
    ASSERT_EQ(Run("lut t.tif c.tif --threshold 1,4 --transform"), 0) << Err();
    ImageHeaderType* scripted = Load("s.tif");
    ASSERT_NE(scripted, nullptr);
    ImageHeaderType* command = Load("c.tif");
    ASSERT_NE(command, nullptr);
    const size_t n = static_cast<size_t>(command->nx) * command->ny;
    EXPECT_EQ(std::vector<uint16_t>(scripted->PixData, scripted->PixData + n),
              std::vector<uint16_t>(command->PixData, command->PixData + n));
    EXPECT_EQ(LastHistoryCode(command), 47);
    EXPECT_FLOAT_EQ(command->Zlo, 0.0f);
    EXPECT_FLOAT_EQ(scripted->Zhi, command->Zhi);
    EXPECT_GT(command->Zhi, 2.5f);
    EXPECT_LT(command->Zhi, 3.5f);
}

TEST_F(ContrastHostTest, TheFullDisplayPictureShowsTheThresholdRows)
{
    ASSERT_EQ(Run("run -", "OpenSTMData 0 t.tif\nAdjustLUT\nslider 500 0 0 256 1\nFullDisplay\nrender full.png\n"),
              0)
        << Err();
    const png_check::DecodedPng png = png_check::DecodePngFile(data, Path("full.png"), 3);
    ASSERT_EQ(png.width, 512);
    uint8_t r, g, b;
    FixedColour(2, &r, &g, &b);
    auto at = [&png](int x, int y, int c) { return png.pixels[(static_cast<size_t>(y) * 512 + x) * 3 + c]; };
    // The top and bottom rows of the colour bar lie beyond the thresholds of the preview.
    for (int y : {1, 50, 350, 398}) {
        EXPECT_EQ(at(412, y, 0), r) << y;
        EXPECT_EQ(at(412, y, 1), g) << y;
        EXPECT_EQ(at(412, y, 2), b) << y;
    }
    // The middle row shows the ramp.
    EXPECT_FALSE(at(412, 200, 0) == r && at(412, 200, 1) == g && at(412, 200, 2) == b);
}

TEST_F(ContrastHostTest, MathTwoAndNormaliseResultsAsFiles)
{
    ASSERT_EQ(Run("math2 t.tif t.tif s.tif --op sub"), 0) << Err();
    ImageHeaderType* sub = Load("s.tif");
    ASSERT_NE(sub, nullptr);
    EXPECT_EQ(sub->PixData[0], 32767);
    EXPECT_EQ(sub->PixData[12345], 32767);
    EXPECT_EQ(LastHistoryCode(sub), 31);
    ASSERT_EQ(Run("math t.tif m.tif --op sub:-5"), 0) << Err();
    EXPECT_EQ(LastHistoryCode(Load("m.tif")), 100);
    ASSERT_EQ(Run("normalise t.tif n.tif --sd 0"), 0) << Err();
    EXPECT_EQ(LastHistoryCode(Load("n.tif")), 83);
    ASSERT_EQ(Run("histogram t.tif -o h.dat"), 0) << Err();
    EXPECT_FALSE(ReadFileBytes(Path("h.dat")).empty());
}

TEST_F(ContrastHostTest, WrongWordsAreUsageErrors)
{
    EXPECT_EQ(Run("lut t.tif x.png --op bogus"), 2);
    EXPECT_EQ(Run("lut t.tif x.png --op add"), 2);
    EXPECT_EQ(Run("lut t.tif x.png --op invert:3"), 2);
    EXPECT_EQ(Run("lut t.tif x.png --contrast 1,2"), 2);
    EXPECT_EQ(Run("lut t.tif x.png --equalise --linearise"), 2);
    EXPECT_EQ(Run("lut t.tif x.png --transform --equalise"), 2);
    EXPECT_EQ(Run("math t.tif x.png --op add:z"), 2);
    EXPECT_EQ(Run("math2 t.tif t.tif x.png --op add:3"), 2);
    EXPECT_EQ(Run("normalise t.tif x.png --sd abc"), 2);
    EXPECT_EQ(Run("histogram t.tif -o x.txt"), 2);
}
