// The row writer: scale factors, the outline rows, reduction and magnification, the contour
// masks, the colour map, and the checks and reports of each row.
#include "test_render_support.h"

#include "display/colour_map.h"
#include "display/frame_commands.h"
#include "display/shading.h"

namespace {

class RenderRowsTest : public RenderTest {
protected:
    static int Ramp(int level) { return level / 2 + 35; }
    int CountIndex(int index, int left, int top, int right, int bottom) const
    {
        int n = 0;
        for (int y = top; y <= bottom; ++y)
            for (int x = left; x <= right; ++x)
                if (fs.Index(x, y) == index) ++n;
        return n;
    }
};

} // namespace

TEST_F(RenderRowsTest, AnImageOf512At512LeavesTheOuterRowsForTheOutline)
{
    FSState.ImageDisplaySize = 512;
    ImageHeaderType* image = AddFlatImage(512, 0x8000);
    DisplayImage(image, 1, 0);
    EXPECT_EQ(FSState.ImPntsX, 1);
    EXPECT_EQ(FSState.ImPntsY, 1);
    for (int x : {0, 1, 255, 510, 511}) {
        EXPECT_EQ(fs.Index(x, 0), 0) << x;
        EXPECT_EQ(fs.Index(x, 511), 0) << x;
        EXPECT_EQ(fs.Index(x, 1), Ramp(0x80)) << x;
        EXPECT_EQ(fs.Index(x, 510), Ramp(0x80)) << x;
    }
    EXPECT_EQ(CountIndex(Ramp(0x80), 0, 0, 511, 511), 510 * 512);
    EXPECT_FALSE(LogHasProgramErrors());
}

TEST_F(RenderRowsTest, AnImageOf1024At512SumsFourPointsAndKeepsFullLevelAt255)
{
    FSState.ImageDisplaySize = 512;
    // Full code everywhere but one 2 by 2 block of four different codes at (40, 60).
    ImageHeaderType* image = AddImage(1024, 1024, [](int x, int y) -> uint16_t {
        if (x >= 40 && x < 42 && y >= 60 && y < 62) return static_cast<uint16_t>(0x1000 + 0x2000 * ((x - 40) + 2 * (y - 60)));
        return 0xffff;
    });
    DisplayImage(image, 1, 0);
    EXPECT_EQ(FSState.ImPntsX, 2);
    EXPECT_EQ(FSState.ImPntsY, 2);
    EXPECT_EQ(CurrentRowWriterSettings().ShiftSum, 2);
    // 4 * 65535 = 262140; >> 8 = 1023; >> 2 = 255: full level stays full.
    EXPECT_EQ(((4 * 65535) >> 8) >> 2, 255);
    EXPECT_EQ(fs.Index(100, 100), Ramp(255));
    EXPECT_EQ(fs.Index(100, 100), 162);
    // The block: 0x1000 + 0x3000 + 0x5000 + 0x7000 = 0x10000; >> 8 = 256; >> 2 = level 64.
    EXPECT_EQ(fs.Index(20, 30), Ramp(64));
    EXPECT_EQ(fs.Index(21, 30), 162);
    EXPECT_EQ(fs.Index(20, 31), 162);
}

TEST_F(RenderRowsTest, AnImageOf128At512MagnifiesByFourWithTwoEqualValuesTwoMeansAndInterpolatedRows)
{
    FSState.ImageDisplaySize = 512;
    FSState.DispMode = 0;
    // Row y: point x has level 4x + y (modulo 256): the mean of two neighbours is two levels
    // away from either, one step of the ramp.
    auto code = [](int x, int y) { return static_cast<uint16_t>(((x * 4 + y) * 0x100) & 0xffff); };
    ImageHeaderType* image = AddImage(128, 128, code);
    DisplayImage(image, 1, 0);
    EXPECT_EQ(FSState.ImPntsX, -4);
    EXPECT_EQ(FSState.ImPntsY, -4);
    // Frame row 4 * line + 3 is the accumulator of data row `line` itself (k = 3 = f - 1).
    const int line = 10, y = 4 * line + 3;
    for (int i = 5; i < 8; ++i) {
        const int a = code(i, line), b = code(i + 1, line);
        EXPECT_EQ(fs.Index(4 * i, y), Ramp(a >> 8)) << i;
        EXPECT_EQ(fs.Index(4 * i + 1, y), Ramp(a >> 8)) << i;
        EXPECT_EQ(fs.Index(4 * i + 2, y), Ramp(((a + b) >> 1) >> 8)) << i;
        EXPECT_EQ(fs.Index(4 * i + 3, y), Ramp(((a + b) >> 1) >> 8)) << i;
        EXPECT_NE(Ramp(a >> 8), Ramp(((a + b) >> 1) >> 8));
    }
    // The last data point yields four values of itself.
    for (int j = 508; j < 512; ++j) EXPECT_EQ(fs.Index(j, y), Ramp(code(127, line) >> 8)) << j;
    // The rows between two data rows: (acc * k + prev * (3 - k)) / 3, k = 0 to 3.
    const int x = 20;   // point 5, first half: acc = the code itself
    const int prev = code(5, line - 1), acc = code(5, line);
    for (int k = 0; k < 4; ++k)
        EXPECT_EQ(fs.Index(x, 4 * line + k), Ramp(((acc * k + prev * (3 - k)) / 3) >> 8)) << k;
    EXPECT_NE(fs.Index(x, 4 * line), fs.Index(x, 4 * line + 3));
    // The first data row rises from black: frame row 1 is a third of the way from 0.
    EXPECT_EQ(fs.Index(x, 1), Ramp(((code(5, 0) * 1) / 3) >> 8));
    EXPECT_EQ(fs.Index(x, 0), 0);
    EXPECT_EQ(fs.Index(x, 511), 0);
}

TEST_F(RenderRowsTest, AnImageOf512By256At512ReportsOnEveryRowAndStaysEmpty)
{
    FSState.ImageDisplaySize = 512;
    ImageHeaderType* image = AddImage(512, 256, [](int, int) { return uint16_t{0x8000}; });
    DisplayImage(image, 1, 0);
    EXPECT_EQ(FSState.ImPntsX, 1);
    EXPECT_EQ(FSState.ImPntsY, -2);
    EXPECT_EQ(CountInLog("Program error - Unable to display this image at this size: ImPntsX = 1 "), 256);
    EXPECT_EQ(CountIndex(0, 0, 0, 511, 511), 512 * 512);
}

TEST_F(RenderRowsTest, SizesThatAreNoPowerOfTwoAreRefusedRowByRow)
{
    FSState.ImageDisplaySize = 512;
    ImageHeaderType* image = AddImage(1536, 1536, [](int, int) { return uint16_t{0x8000}; });
    DisplayImage(image, 1, 0);
    EXPECT_EQ(FSState.ImPntsX, 3);
    EXPECT_EQ(CountInLog("Program error - Unable to display this image at this size: ImPntsX = 3 "), 1536);
    EXPECT_EQ(CountIndex(0, 0, 0, 511, 511), 512 * 512);
}

TEST_F(RenderRowsTest, SixteenContourLevelsGiveBandMask240AndTheMasksOfEachMode)
{
    wint_DisplayParamType p{};
    dl_GetDisplayParam(&p);
    EXPECT_EQ(p.ContourLevels, 16);
    ImageHeaderType* image = AddFlatImage(256, 0x4000);
    FSState.ImageDisplaySize = 256;
    struct Row {
        int mode, inBand, shift, edge;
    };
    for (const Row& r : {Row{2, 0, 0, 0}, Row{3, 255, 1, 128}, Row{4, 240, 1, 128}}) {
        FSState.DispMode = r.mode;
        ClearFrameStore();
        DisplayImage(image, 1, 0);
        const RowWriterSettings s = CurrentRowWriterSettings();
        EXPECT_EQ(s.BandMask, 240) << r.mode;
        EXPECT_EQ(s.InBandMask, r.inBand) << r.mode;
        EXPECT_EQ(s.Shift, r.shift) << r.mode;
        EXPECT_EQ(s.EdgeBit, r.edge) << r.mode;
    }
}

TEST_F(RenderRowsTest, OneContourLevelGivesBandMask0AndNoEdge)
{
    Display.ContourLevels = 1;
    // A steep ramp: neighbours differ by many levels, which would be edges with any band.
    ImageHeaderType* image = AddImage(256, 256, [](int x, int y) { return static_cast<uint16_t>((x * 7 + y * 13) << 8); });
    FSState.ImageDisplaySize = 256;
    FSState.DispMode = 2;
    DisplayImage(image, 1, 0);
    EXPECT_EQ(CurrentRowWriterSettings().BandMask, 0);
    // Mode 2: every point after the first of a row is ColourMap[0] = 35, the ground.
    EXPECT_EQ(CountIndex(35, 1, 1, 255, 254), 255 * 254);
    // Mode 3: the image at half level and nothing from the upper half of the table.
    FSState.DispMode = 3;
    ClearFrameStore();
    DisplayImage(image, 1, 0);
    for (int y = 1; y < 255; y += 17)
        for (int x = 1; x < 256; x += 11) {
            const int level = ((x * 7 + y * 13) << 8 & 0xffff) >> 8;
            EXPECT_EQ(fs.Index(x, y), Ramp(level >> 1)) << x << "," << y;
        }
}

TEST_F(RenderRowsTest, AnImageLutOfAll255GivesIndex162Everywhere)
{
    ImageHeaderType* image = AddImage(256, 256, [](int x, int y) { return static_cast<uint16_t>((x + y) << 7); });
    std::fill(std::begin(image->ImageLUT), std::end(image->ImageLUT), uint8_t{255});
    FSState.ImageDisplaySize = 256;
    DisplayImage(image, 1, 0);
    EXPECT_EQ(CountIndex(162, 0, 1, 255, 254), 256 * 254);
}

TEST_F(RenderRowsTest, TheColourMapOfEachCase)
{
    ImageHeaderType* image = AddFlatImage(16, 0);
    for (int i = 0; i < 256; ++i) image->ImageLUT[i] = static_cast<uint8_t>(255 - i);
    FSState.LineDispMode = 0;
    BuildColourMap(image, 0);
    EXPECT_EQ(FSState.ColourMap[0], 255 / 2 + 35);
    EXPECT_EQ(FSState.ColourMap[200], 55 / 2 + 35);
    BuildColourMap(nullptr, 0);
    EXPECT_EQ(FSState.ColourMap[200], 200 / 2 + 35);
    // A colour image: the table straight into the whole palette.
    BuildColourMap(image, 1);
    EXPECT_EQ(FSState.ColourMap[200], 55);
    BuildColourMap(nullptr, 1);
    EXPECT_EQ(FSState.ColourMap[200], 200);
    // The relief mode: the 1024 entries of the shading table.
    FSState.LineDispMode = 1;
    BuildColourMap(image, 0);
    const std::vector<int> shading = render_ref::ColourMap(1, image->ImageLUT);
    for (int i = 0; i < 1024; ++i) ASSERT_EQ(FSState.ColourMap[i], shading[i]) << i;
    // Flat ground (a = b = 16, entry 528): d = lz = cos 45; s = d * d * 128 = 64 -> 64 + 64.
    EXPECT_EQ(FSState.ColourMap[16 + 32 * 16], (64 + 64) / 2 + 35);
}

TEST_F(RenderRowsTest, TheShadingTableFollowsTheLight)
{
    uint8_t table[kShadingEntries];
    // Light from straight above: lz = 1, flat ground gets ambient + diffuse, limited to 255.
    BuildShadingTable(table, 0.0f, 0.0f, 64, 128);
    EXPECT_EQ(table[16 + 32 * 16], (64 + 128) / 2 + 35);
    // A slope a = 1, b = 0: d = 1, s = 1 / 2 * 128 = 64.
    EXPECT_EQ(table[17 + 32 * 16], (64 + 64) / 2 + 35);
    BuildShadingTable(table, 0.0f, 0.0f, 200, 128);
    EXPECT_EQ(table[16 + 32 * 16], 255 / 2 + 35);
    // Light along x (polar 90, azimuth 0): d = a; where a <= 0 only the ambient part.
    BuildShadingTable(table, 90.0f, 0.0f, 10, 100);
    EXPECT_EQ(table[15 + 32 * 16], 10 / 2 + 35);
    // a = 2, b = 0: d = 2, s = 2 / (4 + 1) * 100 * 2 = 80.
    EXPECT_EQ(table[18 + 32 * 16], (80 + 10) / 2 + 35);
}

TEST_F(RenderRowsTest, ARowBeyondTheFrameIsReportedAndCutBack)
{
    FSState.ImageDisplaySize = 256;
    ImageHeaderType* image = AddFlatImage(256, 0x6000);
    BeginBatch();
    PrepareImageDisplay(256, 256, 0, image);
    std::vector<uint16_t> row(600, 0x6000);
    DisplayImageDataTypeLine1(5, row.data(), 10, 300, 0);
    EndBatch();
    EXPECT_TRUE(LogHasProgramError("DisplayImageDataTypeLine1 VertDisp=0 xe=309 NPixelsX=256"));
    // Cut back to xs 0, n 256: the whole row written.
    EXPECT_EQ(fs.Index(0, 5), Ramp(0x60));
    EXPECT_EQ(fs.Index(255, 5), Ramp(0x60));
    EXPECT_EQ(fs.Index(256, 5), 0);
    EXPECT_EQ(FSState.DisplayBusy, 1);
}

TEST_F(RenderRowsTest, AColumnDisplayWritesColumnsAtFactorOneAndIsRefusedOtherwise)
{
    FSState.ImageDisplaySize = 256;
    ImageHeaderType* image = AddFlatImage(256, 0x6000);
    BeginBatch();
    PrepareImageDisplay(256, 256, 0, image);
    std::vector<uint16_t> column(256);
    for (int k = 0; k < 256; ++k) column[k] = static_cast<uint16_t>(k << 8);
    DisplayImageDataTypeLine1(7, column.data(), 0, 256, 1);
    for (int k : {0, 1, 100, 255}) EXPECT_EQ(fs.Index(7, k), Ramp(k)) << k;
    // The first column is the outline's.
    DisplayImageDataTypeLine1(0, column.data(), 0, 256, 1);
    EndBatch();
    EXPECT_EQ(fs.Index(0, 100), 0);
    EXPECT_FALSE(LogHasProgramErrors());
    // Not at factor 1: reported, nothing written.
    ImageHeaderType* big = AddFlatImage(512, 0x6000);
    PrepareImageDisplay(512, 512, 0, big);
    std::vector<uint16_t> longColumn(512, 0x7000);
    DisplayImageDataTypeLine1(9, longColumn.data(), 0, 256, 1);
    EXPECT_TRUE(LogHasProgramError("DisplayImageDataTypeLine1 VertDisp ImPntsX/Y=2,2.  xs=0"));
}

TEST_F(RenderRowsTest, ReducedRowsWriteOnceEveryFactorRows)
{
    FSState.ImageDisplaySize = 256;
    ImageHeaderType* image = AddFlatImage(1024, 0x9000);
    BeginBatch();
    PrepareImageDisplay(1024, 1024, 0, image);
    EXPECT_EQ(FSState.ImPntsX, 4);
    EXPECT_EQ(CurrentRowWriterSettings().ShiftSum, 4);
    std::vector<uint16_t> row(1024, 0x9000);
    // Rows 4 to 6 only add; row 7 writes output row 1.
    for (int line = 4; line < 7; ++line) DisplayImageDataTypeLine1(line, row.data(), 0, 256, 0);
    EXPECT_EQ(fs.Index(50, 1), 0);
    DisplayImageDataTypeLine1(7, row.data(), 0, 256, 0);
    EndBatch();
    EXPECT_EQ(fs.Index(50, 1), Ramp(0x90));
}

TEST_F(RenderRowsTest, DisplayBusyIsClearedByTheStartAndSetByEachRow)
{
    FSState.ImageDisplaySize = 256;
    ImageHeaderType* image = AddFlatImage(256, 0x6000);
    FSState.DisplayBusy = 1;
    PrepareImageDisplay(256, 256, 0, image);
    EXPECT_EQ(FSState.DisplayBusy, 0);
    DisplayImageDataTypeLine1(3, image->PixData, 0, 256, 0);
    EXPECT_EQ(FSState.DisplayBusy, 1);
}
