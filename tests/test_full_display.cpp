// Showing the current item, and the full display: the image at 400 by 400, the colour bar, the
// ruler, the text block and the histogram of levels.
#include "test_render_support.h"

#include "display/frame_commands.h"
#include "display/full_display.h"
#include "display/render_histogram.h"

#include <set>

namespace {

class FullDisplayTest : public RenderTest {
protected:
    // Left half level 0x10, right half level 0xf0; a physical image of 500 nm, 0 to 20 nm high.
    ImageHeaderType* HalfAndHalf()
    {
        ImageHeaderType* image = AddImage(256, 256, [](int x, int) { return uint16_t(x < 128 ? 0x1000 : 0xf000); }, "Halves");
        image->SPMData = 1;
        image->ImageSizeX = image->ImageSizeY = 500.0f;
        image->Zlo = 0.0f;
        image->Zhi = 20.0f;
        return image;
    }
    static std::set<std::string> Texts()
    {
        std::set<std::string> out;
        for (const CVfsItem& item : CurrentVfs()->Items)
            if (item.Kind == VFS_ITEM_TEXT) out.insert(item.Text);
        return out;
    }
    bool ShowsFullDisplay() const
    {
        // The colour bar's left edge has index 6 on every row.
        for (int r = 0; r < 400; r += 37)
            if (fs.Index(405, r) != 6) return false;
        return true;
    }
};

} // namespace

TEST_F(FullDisplayTest, TheColourBarShowsTheLevelsThroughTheImageLut)
{
    ImageHeaderType* image = HalfAndHalf();
    for (int i = 0; i < 256; ++i) image->ImageLUT[i] = static_cast<uint8_t>(255 - i);
    ASSERT_EQ(FullDisplay(1), 0);
    for (int r : {0, 1, 100, 250, 398, 399}) {
        const int level = (399 - r) * 255 / 399;
        EXPECT_EQ(fs.Index(406, r), image->ImageLUT[level] / 2 + 35) << r;
        EXPECT_EQ(fs.Index(415, r), image->ImageLUT[level] / 2 + 35) << r;
        EXPECT_EQ(fs.Index(405, r), 6) << r;
        EXPECT_EQ(fs.Index(424, r), 6) << r;
        EXPECT_EQ(ColourBarIndex(image, r), image->ImageLUT[level] / 2 + 35) << r;
    }
    // A colour image: ImageLUT[(399 - r) * 127 / 399 + 128] + 35.
    image->ColourImage = 1;
    for (int r : {0, 200, 399}) EXPECT_EQ(ColourBarIndex(image, r), image->ImageLUT[(399 - r) * 127 / 399 + 128] + 35) << r;
}

TEST_F(FullDisplayTest, ColourBarRowsOutsideTheThresholdsAreMarked)
{
    HalfAndHalf();
    ThresholdLow = 60;
    ThresholdHigh = 140;
    ASSERT_EQ(FullDisplay(1), 0);
    // Row 0: level 255, index 162 above the upper threshold: the whole row index 2.
    for (int x = 405; x < 425; ++x) EXPECT_EQ(fs.Index(x, 0), 2) << x;
    // Row 399: level 0, index 35 below the lower one.
    EXPECT_EQ(fs.Index(405, 399), 2);
    // Row 200: level 127, index 98 inside.
    EXPECT_EQ(fs.Index(410, 200), 127 / 2 + 35);
    EXPECT_EQ(fs.Index(405, 200), 6);
}

TEST_F(FullDisplayTest, TheImageIsShownAt400AndItsCopyIsFreedAgain)
{
    ImageHeaderType* image = HalfAndHalf();
    const int items = CountItems();
    ASSERT_EQ(FullDisplay(1), 0);
    EXPECT_EQ(CountItems(), items);
    // The display list holds tracked blocks too: a second full display in the same state
    // leaves the count of blocks as the first left it (the copy's pixels are gone again).
    const size_t blocks = LiveBlockCount();
    ASSERT_EQ(FullDisplay(1), 0);
    EXPECT_EQ(LiveBlockCount(), blocks);
    EXPECT_EQ(CurrentItem, image);
    EXPECT_EQ(FSState.NPixelsX, 400);
    // 256 to 400 by linear groups of 16 codes to 25: inside the left half level 0x10 * 127 / 128
    // of the row stage, inside the right half 0xf0 likewise.
    EXPECT_EQ(fs.Index(50, 200), ((0x1000 * 127) >> 7 >> 8) / 2 + 35);
    EXPECT_EQ(fs.Index(350, 200), ((0xf000 * 127) >> 7 >> 8) / 2 + 35);
    // The settings are back, and the contents grid gives the image over the whole frame.
    EXPECT_EQ(FSState.ImageDisplaySize, 512);
    EXPECT_EQ(GetFSContentsCoords(450, 450), image);
    EXPECT_EQ(GetFSContentsCoords(10, 10), image);
    EXPECT_EQ(BatchDepth, 0);
}

TEST_F(FullDisplayTest, TheHistogramOfLevelsStandsBesideTheBar)
{
    ImageHeaderType* image = HalfAndHalf();
    int32_t bins[kHistogramBins];
    CalcHistogram(image, bins);
    EXPECT_EQ(bins[0x10], 128 * 256);
    EXPECT_EQ(bins[0xf0], 128 * 256);
    EXPECT_EQ(bins[0x11], 0);
    ASSERT_EQ(FullDisplay(1), 0);
    // Row r shows bin r * 255 / 399, drawn at 399 - r. The rows of bin 0x10: r from
    // ceil(16 * 399 / 255) on while r * 255 / 399 stays 16.
    int r16 = 0;
    while (r16 * 255 / 399 != 0x10) ++r16;
    const int y = 399 - r16;
    EXPECT_EQ(fs.Index(427, y), 6);
    for (int x = 428; x < 456; ++x) EXPECT_EQ(fs.Index(x, y), 2) << x;
    EXPECT_EQ(fs.Index(456, y), 6);
    // A row of an empty bin: index 6 all along.
    const int empty = 399 - 200;
    ASSERT_EQ(bins[200 * 255 / 399], 0);
    for (int x = 427; x < 457; ++x) EXPECT_EQ(fs.Index(x, empty), 6) << x;
    // The first and last rows: index 6 all along.
    for (int x = 427; x < 457; ++x) {
        EXPECT_EQ(fs.Index(x, 0), 6);
        EXPECT_EQ(fs.Index(x, 399), 6);
    }
}

TEST_F(FullDisplayTest, TheTextBlockGivesTitleSizeHeightAndVoltages)
{
    ImageHeaderType* image = HalfAndHalf();
    image->ScanMode = 2;
    image->TunnelCurrent = 0.5f;
    image->BiasVoltage = -1.25f;
    ASSERT_EQ(FullDisplay(1), 0);
    const auto texts = Texts();
    EXPECT_TRUE(texts.count("Halves"));
    EXPECT_TRUE(texts.count("Size           500.0 x 500.0 nm"));
    EXPECT_TRUE(texts.count("Tunnel current   0.500 nA"));
    EXPECT_TRUE(texts.count("Bias voltage    -1.250 V"));
    bool height = false;
    for (const std::string& t : texts) height = height || t.rfind("Image height   ", 0) == 0;
    EXPECT_TRUE(height);

    image->ScanMode = 1;
    ClearFrameStore();
    ASSERT_EQ(FullDisplay(0), 0);
    EXPECT_FALSE(Texts().count("Halves"));
    ClearFrameStore();
    ASSERT_EQ(FullDisplay(1), 0);
    EXPECT_TRUE(Texts().count("Tip reference    0.500 V"));
}

TEST_F(FullDisplayTest, TheRulerHasTicksOfThreeLengthsAndSpacedLabels)
{
    ImageHeaderType* image = HalfAndHalf();
    const std::vector<RulerTick> ticks = ValueRuler(image);
    ASSERT_GT(ticks.size(), 10u);
    int labels = 0, lastLabel = -1000;
    for (const RulerTick& t : ticks) {
        EXPECT_TRUE(t.length == 2 || t.length == 4 || t.length == 6) << t.length;
        EXPECT_GE(t.row, 0);
        EXPECT_LE(t.row, 399);
        if (!t.label.empty()) {
            ++labels;
            EXPECT_EQ(t.length, 6);
            EXPECT_GE(std::abs(t.row - lastLabel), 14);
            lastLabel = t.row;
            EXPECT_NE(t.label.find(" nm"), std::string::npos) << t.label;
        }
    }
    EXPECT_GE(labels, 2);
    // 0 to 20 nm: the first label is the value of level 0 at its row.
    EXPECT_EQ(ticks.front().label, "0.000 nm");
    EXPECT_EQ(ticks.front().row, 399);
}

TEST_F(FullDisplayTest, FullDisplayWithTheSettingOnGivesThePlainImage)
{
    ImageHeaderType* image = HalfAndHalf();
    FSState.ImageDisplaySize = 256;
    Display.FullDisplayOn = 1;
    dl_FullDisplay();
    EXPECT_FALSE(ShowsFullDisplay());
    EXPECT_EQ(FSState.ImageRight, 255);
    EXPECT_EQ(fs.Index(50, 100), 0x10 / 2 + 35);
    EXPECT_EQ(fs.Index(405, 100), 0);
    EXPECT_EQ(GetFSContentsCoords(50, 100), image);

    ClearFrameStore();
    Display.FullDisplayOn = 0;
    dl_FullDisplay();
    EXPECT_TRUE(ShowsFullDisplay());
}

TEST_F(FullDisplayTest, DisplayDataFollowsTheSettingAndLogsItsTime)
{
    HalfAndHalf();
    FSState.ImageDisplaySize = 256;
    Display.FullDisplayOn = 1;
    dl_DisplayData();
    EXPECT_TRUE(ShowsFullDisplay());
    EXPECT_TRUE(LogHas("Display time = "));
    ClearFrameStore();
    Display.FullDisplayOn = 0;
    dl_pb_DisplayImage();
    EXPECT_FALSE(ShowsFullDisplay());
    EXPECT_EQ(fs.Index(50, 100), 0x10 / 2 + 35);
    // Suppressed: the plain image.
    ClearFrameStore();
    Display.FullDisplayOn = 1;
    FullDisplaySuppressed = true;
    dl_DisplayData();
    EXPECT_FALSE(ShowsFullDisplay());
    EXPECT_EQ(fs.Index(50, 100), 0x10 / 2 + 35);
}

TEST_F(FullDisplayTest, ASpectrumIsPlottedQuietly)
{
    ImageHeaderType* spectrum = AddSpectrum(100);
    dl_DisplayData();
    dl_pb_DisplaySpec();
    EXPECT_FALSE(LogHasProgramErrors());
    EXPECT_TRUE(host.messageBoxes.empty());
    EXPECT_EQ(fs.Index(50, 100), 0);
    EXPECT_GT(host.Count("ap_UpdateVFS"), 0);
    EXPECT_EQ(GetFSContentsCoords(50, 100), spectrum);
}

TEST_F(FullDisplayTest, NothingIsShownWhenTheWindowIsNarrowerThanTheFrame)
{
    fs.Close();
    TestFrameStore narrow;
    ASSERT_EQ(narrow.Open(2, 300, 512), 0);
    HalfAndHalf();
    dl_DisplayData();
    EXPECT_EQ(narrow.Index(50, 100), 0);
    EXPECT_EQ(GetFSContentsCoords(50, 100), nullptr);
}

TEST_F(FullDisplayTest, LackOfMemoryReportsAndLeavesTheFrameCleared)
{
    ImageHeaderType* image = HalfAndHalf();
    FSState.ImageDisplaySize = 256;
    DisplayImage(image, 1, 0);
    ASSERT_NE(fs.Index(50, 100), 0);
    const int items = CountItems();
    host.ClearCalls();
    FailAllocationsForTests(1);
    EXPECT_EQ(FullDisplay(1), 1);
    FailAllocationsForTests(0);
    ASSERT_FALSE(host.messageBoxes.empty());
    EXPECT_EQ(host.messageBoxes[0].text, "Not enough memory");
    EXPECT_EQ(CountItems(), items);
    EXPECT_EQ(CurrentItem, image);
    EXPECT_EQ(fs.Index(50, 100), 0);
    EXPECT_EQ(fs.Index(405, 100), 0);
    EXPECT_EQ(FSState.ImageDisplaySize, 256);
}

TEST_F(FullDisplayTest, NoCurrentImageIsReported)
{
    EXPECT_EQ(FullDisplay(1), 1);
    ASSERT_FALSE(host.messageBoxes.empty());
    EXPECT_EQ(host.messageBoxes[0].text, "No images in memory");
}
