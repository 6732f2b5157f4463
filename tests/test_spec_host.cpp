// The host's plot and spec commands, run as a user runs them: the binary in the test's own
// directories, on sample spectra saved there.
#include "test_host_binary_support.h"

#include "files/sample_data.h"
#include "files/spectrum_files.h"
#include "png_decoder.h"
#include "store/data_list.h"
#include "store/history.h"

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
