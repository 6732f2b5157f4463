// Colour tables: the palette layout, the eight built-in tables, the table operations and their
// reports, the palette sent to the host, start and end of a run, and the stored tables.
#include "support/test_host.h"
#include "display/colour_startup.h"
#include "display/default_tables.h"
#include "display/lut.h"
#include "display/lut_settings.h"
#include "display/palette.h"
#include "display/selected_table.h"
#include "host/reset.h"
#include "settings/configuration.h"
#include "settings/user_settings.h"

#include <cmath>
#include <cstring>
#include <string>

namespace {

struct Planes {
    uint16_t r[256], g[256], b[256];
};

Planes OutputTable(int table)
{
    Planes p{};
    EXPECT_EQ(GetOutputLUT(table, p.r, p.g, p.b), 0);
    return p;
}

Planes StoreTable(int table)
{
    Planes p{};
    EXPECT_EQ(GetColourTable(table, p.r, p.g, p.b), 0);
    return p;
}

// The ramp entry 35 + i of each built-in table, written here from the table of formulas.
void ExpectedRamp(int table, int i, int& r, int& g, int& b)
{
    switch (table) {
    case 0: r = g = b = 2 * i; break;
    case 1: r = g = b = 254 - 2 * i; break;
    case 2: r = g = b = static_cast<int>(std::log(2.0 * i + 1.0) * 255.0 / std::log(256.0)); break;
    case 3: {
        double p = 0.000041 * i * i * i + 0.015469 * i * i - 0.637319 * i + 6.544594;
        if (p < 0) p = 0;
        if (p > 255) p = 255;
        r = 2 * i;
        g = static_cast<int>(p);
        b = i < 99 ? 0 : (i - 98) * 255 / 29;
        if (b > 255) b = 255;
        break;
    }
    case 4: r = 0; g = 3 * i / 2; b = 2 * i; break;
    case 5: r = 2 * i; g = 2 * i; b = i / 2; break;
    case 6: r = 2 * i; g = i; b = 0; break;
    default: r = 2 * i; g = 0; b = i; break;
    }
}

// The fixed drawing colours 0 to 32.
const int kFixed[33][3] = {
    {255, 255, 255}, {0, 0, 255},     {0, 255, 0},   {255, 255, 128}, {255, 0, 0},     {255, 255, 255},
    {0, 0, 0},       {255, 0, 0},     {0, 255, 0},   {0, 0, 255},     {255, 255, 0},   {0, 255, 255},
    {255, 0, 255},   {255, 170, 85},  {85, 255, 170}, {255, 255, 255}, {254, 0, 0},     {0, 255, 0},
    {0, 255, 255},   {255, 255, 255}, {255, 255, 255}, {0, 0, 0},      {255, 0, 0},     {0, 0, 255},
    {0, 0, 255},     {0, 0, 255},     {255, 0, 255}, {128, 128, 255}, {255, 255, 255}, {255, 255, 255},
    {192, 192, 192}, {0, 255, 255},   {0, 255, 255},
};

void ExpectPlanesEqual(const Planes& a, const Planes& b)
{
    EXPECT_EQ(std::memcmp(a.r, b.r, sizeof a.r), 0);
    EXPECT_EQ(std::memcmp(a.g, b.g, sizeof a.g), 0);
    EXPECT_EQ(std::memcmp(a.b, b.b, sizeof a.b), 0);
}

} // namespace

class LutTest : public LibraryTest {
protected:
    void StartHost()
    {
        ASSERT_EQ(host.Start(), 0);
        host.ClearCalls();
    }
    void ExpectHostPalette(const Planes& p)
    {
        EXPECT_EQ(std::memcmp(host.palette[0], p.r, sizeof p.r), 0);
        EXPECT_EQ(std::memcmp(host.palette[1], p.g, sizeof p.g), 0);
        EXPECT_EQ(std::memcmp(host.palette[2], p.b, sizeof p.b), 0);
    }
    bool LogHas(const std::string& text) { return ReadLog().find(text) != std::string::npos; }
    std::string LastBoxText() { return host.messageBoxes.empty() ? "" : host.messageBoxes.back().text; }
};

TEST_F(LutTest, EveryBuiltInTableFollowsItsFormulaOverTheWholeRamp)
{
    StartHost();
    for (int table = 0; table < N_OLUTS; ++table) {
        Planes p = OutputTable(table);
        for (int i = 0; i < 128; ++i) {
            int r, g, b;
            ExpectedRamp(table, i, r, g, b);
            EXPECT_EQ(p.r[35 + i], r) << "table " << table << " i " << i;
            EXPECT_EQ(p.g[35 + i], g) << "table " << table << " i " << i;
            EXPECT_EQ(p.b[35 + i], b) << "table " << table << " i " << i;
        }
    }
}

TEST_F(LutTest, BuiltInTablesAtChosenEntries)
{
    StartHost();
    Planes t0 = OutputTable(0), t1 = OutputTable(1), t2 = OutputTable(2), t3 = OutputTable(3);
    Planes t4 = OutputTable(4), t5 = OutputTable(5), t6 = OutputTable(6), t7 = OutputTable(7);
    // i = 0 lands on index 35, i = 127 on index 162.
    EXPECT_EQ(t0.r[35], 0);
    EXPECT_EQ(t0.b[162], 254);
    EXPECT_EQ(t1.g[35], 254);
    EXPECT_EQ(t1.g[162], 0);
    // log(2i + 1) * 255 / log(256), truncated: i 1 -> 50, 64 -> 223, 127 -> 254.
    EXPECT_EQ(t2.r[36], 50);
    EXPECT_EQ(t2.g[35 + 64], 223);
    EXPECT_EQ(t2.b[162], 254);
    // The cubic of table 3: i 0 -> 6, 19 -> 0 (its lowest), 64 -> 39, 100 -> 138, 127 -> 255 (limited).
    EXPECT_EQ(t3.g[35], 6);
    EXPECT_EQ(t3.g[35 + 19], 0);
    EXPECT_EQ(t3.g[35 + 64], 39);
    EXPECT_EQ(t3.g[35 + 100], 138);
    EXPECT_EQ(t3.g[162], 255);
    // Blue of table 3 starts after i 98: 99 -> 8, 100 -> 17, 127 -> 255.
    EXPECT_EQ(t3.b[35 + 98], 0);
    EXPECT_EQ(t3.b[35 + 99], 8);
    EXPECT_EQ(t3.b[35 + 100], 17);
    EXPECT_EQ(t3.b[162], 255);
    EXPECT_EQ(t3.r[35 + 100], 200);
    EXPECT_EQ(t4.r[162], 0);
    EXPECT_EQ(t4.g[36], 1);     // 3 * 1 / 2
    EXPECT_EQ(t4.g[162], 190);  // 3 * 127 / 2
    EXPECT_EQ(t5.b[162], 63);
    EXPECT_EQ(t6.g[162], 127);
    EXPECT_EQ(t6.b[162], 0);
    EXPECT_EQ(t7.g[162], 0);
    EXPECT_EQ(t7.b[162], 127);
}

TEST_F(LutTest, FixedDrawingColoursAreTheSameInEveryTable)
{
    StartHost();
    for (int table = 0; table < N_OLUTS; ++table) {
        Planes p = OutputTable(table);
        for (int i = 0; i < 33; ++i) {
            EXPECT_EQ(p.r[i], kFixed[i][0]) << table << " " << i;
            EXPECT_EQ(p.g[i], kFixed[i][1]) << table << " " << i;
            EXPECT_EQ(p.b[i], kFixed[i][2]) << table << " " << i;
        }
        // The two settable colours start black.
        for (int i = 33; i < 35; ++i) EXPECT_EQ(p.r[i] + p.g[i] + p.b[i], 0) << table << " " << i;
    }
    // FixedColour answers the same table.
    for (int i = 0; i < 33; ++i) {
        uint8_t r, g, b;
        FixedColour(i, &r, &g, &b);
        EXPECT_EQ(r, kFixed[i][0]);
        EXPECT_EQ(g, kFixed[i][1]);
        EXPECT_EQ(b, kFixed[i][2]);
    }
}

TEST_F(LutTest, WhiteAndRedRampsAndTheBlackTail)
{
    StartHost();
    for (int table = 0; table < N_OLUTS; ++table) {
        Planes p = OutputTable(table);
        for (int k = 0; k < 32; ++k) {
            int v = 255 * k / 31;
            EXPECT_EQ(p.r[163 + k], v);
            EXPECT_EQ(p.g[163 + k], v);
            EXPECT_EQ(p.b[163 + k], v);
            EXPECT_EQ(p.r[195 + k], v);
            EXPECT_EQ(p.g[195 + k], 0);
            EXPECT_EQ(p.b[195 + k], 0);
        }
        EXPECT_EQ(p.r[163 + 16], 131);   // 255 * 16 / 31
        EXPECT_EQ(p.r[194], 255);
        EXPECT_EQ(p.r[226], 255);
        for (int i = 227; i < 256; ++i) EXPECT_EQ(p.r[i] + p.g[i] + p.b[i], 0) << table << " " << i;
    }
}

TEST_F(LutTest, StartupLoadsOutputTableZeroIntoThePalette)
{
    ASSERT_EQ(host.Start(), 0);
    EXPECT_EQ(CurrentOutputLUT(), 0);
    EXPECT_EQ(CurrentInputLUT(), 0);
    EXPECT_EQ(ColourTableNo, 3);
    EXPECT_GE(host.Count("ap_SetPalette"), 1);
    for (int i = 0; i < 128; ++i) {
        EXPECT_EQ(host.palette[0][35 + i], 2 * i);
        EXPECT_EQ(host.palette[2][35 + i], 2 * i);
    }
    EXPECT_EQ(host.palette[0][16], 254);
    // The kept byte tables hold the same palette.
    EXPECT_EQ(PaletteRed[35 + 100], 200);
    EXPECT_EQ(PaletteGreen[13], 170);
    EXPECT_EQ(PaletteBlue[3], 128);
}

TEST_F(LutTest, StartupBuildsTheDefaultSetAgain)
{
    // Tables changed before the start are built anew by it.
    ASSERT_EQ(SetOutputLUTEntry(2, 40, 1, 2, 3), 0);
    ASSERT_EQ(SetColourTableEntry(4, 40, 1, 2, 3), 0);
    uint16_t zeros[256] = {};
    ASSERT_EQ(SetInputLUT(1, zeros), 0);
    ASSERT_EQ(host.Start(), 0);
    int r, g, b;
    ASSERT_EQ(GetOutputLUTEntry(2, 40, &r, &g, &b), 0);
    int er, eg, eb;
    ExpectedRamp(2, 5, er, eg, eb);
    EXPECT_EQ(r, er);
    ASSERT_EQ(GetColourTableEntry(4, 40, &r, &g, &b), 0);
    EXPECT_EQ(g, 3 * 5 / 2);
    uint16_t input[256];
    ASSERT_EQ(GetInputLUT(1, input), 0);
    EXPECT_EQ(input[100], 85);
}

TEST_F(LutTest, TableSevenRedPlaneOfTheStoreIsTheLevelScratchAfterStartup)
{
    StartHost();
    Planes store7 = StoreTable(7);
    for (int i = 0; i < 255; ++i) EXPECT_EQ(store7.r[i], i / 2 + 35) << i;
    EXPECT_EQ(store7.r[255], 0);
    // Green and blue of the store's table 7 stay the built-in table.
    EXPECT_EQ(store7.b[162], 127);
    EXPECT_EQ(store7.g[17], 255);
    // The output table 7 itself keeps its red ramp.
    EXPECT_EQ(OutputTable(7).r[162], 254);
    // Input tables 0 to 6 are this array; table 7 is not loaded.
    for (int t = 0; t < 7; ++t) {
        uint16_t input[256];
        ASSERT_EQ(GetInputLUT(t, input), 0);
        EXPECT_EQ(std::memcmp(input, store7.r, sizeof input), 0) << t;
    }
    uint16_t input7[256];
    ASSERT_EQ(GetInputLUT(7, input7), 0);
    EXPECT_EQ(input7[100], 0);
    // Selecting table 7 from the store shows the scratch values as red.
    EXPECT_EQ(SelectColourTable(7), 7);
    EXPECT_EQ(host.palette[0][0], 35);
    EXPECT_EQ(host.palette[0][16], 43);
    EXPECT_EQ(host.palette[0][254], 162);
    EXPECT_EQ(host.palette[0][255], 0);
    EXPECT_EQ(PaletteRed[16], 43);
}

TEST_F(LutTest, AnOutputTableNumberOutsideZeroToSevenIsReported)
{
    StartHost();
    Planes p = OutputTable(1);
    EXPECT_EQ(SetOutputLUT(8, p.r, p.g, p.b), 32771);
    EXPECT_TRUE(LogHas("ERROR : Program error - N_OLUTS 8 "));
    EXPECT_EQ(GetOutputLUT(-1, p.r, p.g, p.b), 32771);
    EXPECT_TRUE(LogHas("ERROR : Program error - N_OLUTS -1 "));
    EXPECT_EQ(SelectOutputLUT(9), 32771);
    EXPECT_TRUE(LogHas("N_OLUTS 9 "));
    EXPECT_EQ(CurrentOutputLUT(), 0);
    EXPECT_EQ(host.Count("ap_SetPalette"), 0);
    int r, g, b;
    EXPECT_EQ(SetOutputLUTEntry(100, 0, 1, 1, 1), 32771);
    EXPECT_EQ(GetOutputLUTEntry(8, 0, &r, &g, &b), 32771);
    EXPECT_EQ(SetColourTable(8, p.r, p.g, p.b), 32771);
}

TEST_F(LutTest, AnInputTableNumberOutsideZeroToSevenIsReported)
{
    StartHost();
    uint16_t entries[256] = {};
    EXPECT_EQ(SetInputLUT(8, entries), 32771);
    EXPECT_TRUE(LogHas("ERROR : Program error - N_ILUTS 8 "));
    EXPECT_EQ(SelectInputLUT(-2), 32771);
    EXPECT_TRUE(LogHas("ERROR : Program error - N_ILUTS -2 "));
    EXPECT_EQ(CurrentInputLUT(), 0);
    uint8_t bytes[256] = {};
    EXPECT_EQ(SetInputLUTBytes(12, bytes), 32771);
    EXPECT_TRUE(LogHas("N_ILUTS 12 "));
}

TEST_F(LutTest, AnEntryAboveTwoFiftyFiveStoresNothingOfTheWholeTable)
{
    StartHost();
    Planes before = OutputTable(0);
    Planes bad{};
    for (int i = 0; i < 256; ++i) bad.r[i] = bad.g[i] = bad.b[i] = 7;
    bad.b[255] = 256;   // the very last entry is checked before the first is taken
    EXPECT_EQ(SetOutputLUT(0, bad.r, bad.g, bad.b), 34916);
    EXPECT_EQ(LastBoxText(), "Invalid parameter passed to FG routine");
    EXPECT_TRUE(LogHas("ERROR : Invalid parameter passed to FG routine"));
    ExpectPlanesEqual(OutputTable(0), before);
    EXPECT_EQ(host.Count("ap_SetPalette"), 0);
    EXPECT_EQ(SetColourTable(0, bad.r, bad.g, bad.b), 34916);
    ExpectPlanesEqual(StoreTable(0), before);
}

TEST_F(LutTest, AnEntryOutOfRangeOrAtABadIndexIsReported)
{
    StartHost();
    Planes before = OutputTable(0);
    EXPECT_EQ(SetOutputLUTEntry(0, 40, 0, 256, 0), 34916);
    EXPECT_EQ(SetOutputLUTEntry(0, 40, -1, 0, 0), 34916);
    EXPECT_EQ(SetOutputLUTEntry(0, 256, 1, 1, 1), 34916);
    EXPECT_EQ(SetOutputLUTEntry(0, -1, 1, 1, 1), 34916);
    EXPECT_EQ(host.messageBoxes.size(), 4u);
    ExpectPlanesEqual(OutputTable(0), before);
    uint16_t input[256];
    for (int i = 0; i < 256; ++i) input[i] = static_cast<uint16_t>(i);
    input[0] = 300;
    EXPECT_EQ(SetInputLUT(3, input), 34916);
    uint16_t after[256];
    ASSERT_EQ(GetInputLUT(3, after), 0);
    EXPECT_EQ(after[0], 35);
    EXPECT_EQ(after[200], 135);
    EXPECT_EQ(SetOutputLUT(0, nullptr, before.g, before.b), 34916);
}

TEST_F(LutTest, SettingTheCurrentOutputTableReloadsThePaletteAtOnce)
{
    StartHost();
    ASSERT_EQ(SetOutputLUTEntry(0, 100, 10, 20, 30), 0);
    EXPECT_EQ(host.Count("ap_SetPalette"), 1);
    EXPECT_EQ(host.palette[0][100], 10);
    EXPECT_EQ(host.palette[1][100], 20);
    EXPECT_EQ(host.palette[2][100], 30);
    EXPECT_EQ(PaletteRed[100], 10);
    EXPECT_EQ(PaletteGreen[100], 20);
    EXPECT_EQ(PaletteBlue[100], 30);
    // Another table changes nothing on screen.
    ASSERT_EQ(SetOutputLUTEntry(5, 100, 1, 2, 3), 0);
    Planes t6 = OutputTable(6);
    ASSERT_EQ(SetOutputLUT(6, t6.r, t6.g, t6.b), 0);
    EXPECT_EQ(host.Count("ap_SetPalette"), 1);
    EXPECT_EQ(host.palette[0][100], 10);
}

TEST_F(LutTest, SelectingAnOutputTableSendsItsPlanesAndKeepsTheirLowBytes)
{
    StartHost();
    ASSERT_EQ(SelectOutputLUT(4), 0);
    EXPECT_EQ(CurrentOutputLUT(), 4);
    EXPECT_EQ(host.Count("ap_SetPalette"), 1);
    Planes t4 = OutputTable(4);
    ExpectHostPalette(t4);
    for (int i = 0; i < 256; ++i) {
        EXPECT_EQ(PaletteRed[i], t4.r[i]);
        EXPECT_EQ(PaletteGreen[i], t4.g[i]);
        EXPECT_EQ(PaletteBlue[i], t4.b[i]);
    }
    ASSERT_EQ(SelectInputLUT(5), 0);
    EXPECT_EQ(CurrentInputLUT(), 5);
    EXPECT_EQ(host.Count("ap_SetPalette"), 1);   // input tables do not touch the palette
}

TEST_F(LutTest, BytePlanesGoInAndOutUnchanged)
{
    StartHost();
    uint8_t r[256], g[256], b[256];
    for (int i = 0; i < 256; ++i) {
        r[i] = static_cast<uint8_t>(i);
        g[i] = static_cast<uint8_t>(255 - i);
        b[i] = static_cast<uint8_t>(i * 7);
    }
    ASSERT_EQ(SetOutputLUTBytes(2, r, g, b), 0);
    Planes p = OutputTable(2);
    EXPECT_EQ(p.r[200], 200);
    EXPECT_EQ(p.g[200], 55);
    EXPECT_EQ(p.b[200], (200 * 7) & 255);
    uint8_t r2[256], g2[256], b2[256];
    ASSERT_EQ(GetOutputLUTBytes(2, r2, g2, b2), 0);
    EXPECT_EQ(std::memcmp(r, r2, 256), 0);
    EXPECT_EQ(std::memcmp(g, g2, 256), 0);
    EXPECT_EQ(std::memcmp(b, b2, 256), 0);
    ASSERT_EQ(SetInputLUTBytes(7, g), 0);
    uint16_t input[256];
    ASSERT_EQ(GetInputLUT(7, input), 0);
    EXPECT_EQ(input[0], 255);
    EXPECT_EQ(input[255], 0);
}

TEST_F(LutTest, LoadingBytePlanesIntoThePalette)
{
    StartHost();
    uint8_t r[256], g[256], b[256];
    for (int i = 0; i < 256; ++i) {
        r[i] = static_cast<uint8_t>(i);
        g[i] = 9;
        b[i] = static_cast<uint8_t>(255 - i);
    }
    LoadPaletteBytes(r, g, b);
    EXPECT_EQ(host.Count("ap_SetPalette"), 1);
    EXPECT_EQ(host.palette[0][77], 77);
    EXPECT_EQ(host.palette[1][77], 9);
    EXPECT_EQ(host.palette[2][77], 178);
    EXPECT_EQ(PaletteBlue[77], 178);
}

TEST_F(LutTest, SelectColourTableTakesTheNumberModuloEightAndCopiesTheStore)
{
    StartHost();
    ASSERT_EQ(SetOutputLUTEntry(3, 50, 9, 9, 9), 0);
    ASSERT_EQ(SetColourTableEntry(3, 60, 1, 2, 3), 0);
    EXPECT_EQ(SelectColourTable(11), 3);
    EXPECT_EQ(CurrentOutputLUT(), 3);
    ExpectPlanesEqual(OutputTable(3), StoreTable(3));
    EXPECT_EQ(host.palette[0][60], 1);
    EXPECT_EQ(host.palette[2][60], 3);
    EXPECT_EQ(host.palette[0][50], 30);   // the store's own value, 2 * 15
    // A negative number counts down from 8.
    EXPECT_EQ(SelectColourTable(-1), 7);
    EXPECT_EQ(CurrentOutputLUT(), 7);
    EXPECT_EQ(ColourTableNo, 3);   // the number of the current table is the caller's to set
}

TEST_F(LutTest, SelectedColourTableIsTheTableInForce)
{
    StartHost();
    ASSERT_EQ(SetColourTableEntry(6, 100, 11, 22, 33), 0);
    SelectColourTable(6);
    Planes p{};
    SelectedColourTable(p.r, p.g, p.b);
    EXPECT_EQ(p.r[100], 11);
    EXPECT_EQ(p.g[100], 22);
    EXPECT_EQ(p.b[100], 33);
    ExpectPlanesEqual(p, OutputTable(6));
    ASSERT_EQ(SelectOutputLUT(1), 0);
    SelectedColourTable(p.r, p.g, p.b);
    EXPECT_EQ(p.r[35], 254);
}

TEST_F(LutTest, TrueRGBIsBitZeroOfHostDataOne)
{
    for (uint32_t flags : {0u, 1u, 2u, 3u, 0xfffffffeu}) {
        ResetProcessState();
        TavrinPlatformTable platform = host.Platform();
        dl_SetPlatformTable(&platform);
        ApCallbackFunctionTableType table = host.Table();
        wint_DLLInitialiseType record{};
        record.HostData1 = flags;
        ASSERT_EQ(dl_Initialise(&table, &record), 0);
        EXPECT_EQ(TrueRGB, (flags & 1u) != 0) << flags;
    }
}

TEST_F(LutTest, HostDataTwoDoesNotDecideTrueRGB)
{
    ApCallbackFunctionTableType table = host.Table();
    wint_DLLInitialiseType record{};
    record.HostData2 = 1;
    ASSERT_EQ(dl_Initialise(&table, &record), 0);
    EXPECT_FALSE(TrueRGB);
}

TEST_F(LutTest, FinishReloadsOutputTableZero)
{
    StartHost();
    SelectColourTable(5);
    ASSERT_EQ(CurrentOutputLUT(), 5);
    host.messageBoxAnswers = {TV_IDOK, TV_IDNO};
    ASSERT_EQ(dl_Finish(), 1);
    EXPECT_EQ(CurrentOutputLUT(), 0);
    ExpectHostPalette(OutputTable(0));
}

TEST_F(LutTest, FinishOnCancelKeepsTheTableInForce)
{
    StartHost();
    SelectColourTable(5);
    host.messageBoxAnswers = {TV_IDCANCEL};
    ASSERT_EQ(dl_Finish(), 0);
    EXPECT_EQ(CurrentOutputLUT(), 5);
}

TEST_F(LutTest, StoringWritesTablesZeroToSixOf1536Bytes)
{
    StartHost();
    ASSERT_EQ(SetOutputLUTEntry(2, 100, 1, 2, 3), 0);
    StoreConfiguration();
    for (int t = 0; t < 7; ++t) {
        uint16_t stored[3][256];
        ASSERT_TRUE(LoadSettingStruct(("LUT" + std::to_string(t)).c_str(), stored, sizeof stored)) << t;
        Planes p = OutputTable(t);
        EXPECT_EQ(std::memcmp(stored[0], p.r, sizeof p.r), 0) << t;
        EXPECT_EQ(std::memcmp(stored[1], p.g, sizeof p.g), 0) << t;
        EXPECT_EQ(std::memcmp(stored[2], p.b, sizeof p.b), 0) << t;
    }
    uint16_t stored2[3][256];
    ASSERT_TRUE(LoadSettingStruct("LUT2", stored2, sizeof stored2));
    EXPECT_EQ(stored2[0][100], 1);
    EXPECT_EQ(stored2[2][100], 3);
    // A stored table is exactly 1536 bytes: a read of another size fails.
    uint8_t wrongSize[1535];
    EXPECT_FALSE(LoadSettingStruct("LUT0", wrongSize, sizeof wrongSize));
    uint16_t none[3][256];
    EXPECT_FALSE(LoadSettingStruct("LUT7", none, sizeof none));
}

TEST_F(LutTest, RetrievingReadsBackOnlyTablesFiveAndSix)
{
    StartHost();
    for (int t = 0; t < 7; ++t) ASSERT_EQ(SetOutputLUTEntry(t, 120, t, t + 1, t + 2), 0);
    StoreConfiguration();
    for (int t = 0; t < 7; ++t) ASSERT_EQ(SetOutputLUTEntry(t, 120, 200, 200, 200), 0);
    RetrieveColourTableSettings();
    int r, g, b;
    for (int t = 0; t < 5; ++t) {
        ASSERT_EQ(GetOutputLUTEntry(t, 120, &r, &g, &b), 0);
        EXPECT_EQ(r, 200) << t;
    }
    for (int t = 5; t < 7; ++t) {
        ASSERT_EQ(GetOutputLUTEntry(t, 120, &r, &g, &b), 0);
        EXPECT_EQ(r, t) << t;
        EXPECT_EQ(g, t + 1) << t;
        EXPECT_EQ(b, t + 2) << t;
    }
}

TEST_F(LutTest, RetrievingTheConfigurationLoadsTheSelectedColourTable)
{
    StartHost();   // the first start writes the settings file
    ASSERT_EQ(CurrentOutputLUT(), 0);
    RetrieveConfiguration();
    EXPECT_EQ(CurrentOutputLUT(), 3);
    ExpectHostPalette(OutputTable(3));
    EXPECT_TRUE(LogHas("Retrieve software configuration from disk"));
}

TEST_F(LutTest, AStoredTableWithAnEntryAboveTwoFiftyFiveIsNotTaken)
{
    StartHost();
    Planes before = OutputTable(5);
    uint16_t bad[3][256];
    std::memcpy(bad[0], before.r, sizeof before.r);
    std::memcpy(bad[1], before.g, sizeof before.g);
    std::memcpy(bad[2], before.b, sizeof before.b);
    bad[0][40] = 99;
    bad[1][41] = 4000;
    ASSERT_TRUE(SaveSettingStruct("LUT5", bad, sizeof bad));
    RetrieveColourTableSettings();
    ExpectPlanesEqual(OutputTable(5), before);
    EXPECT_EQ(LastBoxText(), "Invalid parameter passed to FG routine");
}

TEST_F(LutTest, BeforeStartupTheTablesHoldTheBuiltInSetAndNothingReachesTheHost)
{
    for (int table = 0; table < N_OLUTS; ++table) {
        Planes p = OutputTable(table);
        int r, g, b;
        ExpectedRamp(table, 64, r, g, b);
        EXPECT_EQ(p.r[35 + 64], r) << table;
        EXPECT_EQ(p.g[35 + 64], g) << table;
        EXPECT_EQ(p.b[35 + 64], b) << table;
    }
    EXPECT_EQ(StoreTable(7).r[100], 85);
    EXPECT_EQ(CurrentOutputLUT(), 0);
    EXPECT_EQ(ColourTableNo, 3);
    EXPECT_FALSE(TrueRGB);
    EXPECT_EQ(host.Count("ap_SetPalette"), 0);
}
