// The colour table file: 768 bytes, red, green, blue planes; the reader keeps entries 0 to 35.
#include "support/test_host.h"
#include "display/colour_file.h"
#include "display/colour_param.h"
#include "display/lut.h"
#include "display/palette.h"
#include "platform/files.h"
#include "store/data_list.h"

#include <cstring>
#include <filesystem>
#include <string>

namespace {

struct Planes {
    uint16_t r[256], g[256], b[256];
};

// Bytes 0, 1, 2, ... 255, 0, 1, ... of the given length.
std::string CountingBytes(size_t length)
{
    std::string bytes(length, '\0');
    for (size_t k = 0; k < length; ++k) bytes[k] = static_cast<char>(k & 0xff);
    return bytes;
}

} // namespace

class ColourFileTest : public LibraryTest {
protected:
    void SetUp() override
    {
        LibraryTest::SetUp();
        ASSERT_EQ(host.Start(), 0);
        SelectTable(6);
        host.ClearCalls();
    }
    void SelectTable(int table)
    {
        wint_ColourParamType p{};
        p.ColourTableNo = static_cast<int16_t>(table);
        dl_SetColourParam(&p);
    }
    Planes Store(int table)
    {
        Planes p{};
        EXPECT_EQ(GetColourTable(table, p.r, p.g, p.b), 0);
        return p;
    }
    Planes Output(int table)
    {
        Planes p{};
        EXPECT_EQ(GetOutputLUT(table, p.r, p.g, p.b), 0);
        return p;
    }
    static bool Same(const Planes& a, const Planes& b) { return std::memcmp(&a, &b, sizeof a) == 0; }
    std::string LastBoxText() { return host.messageBoxes.empty() ? "" : host.messageBoxes.back().text; }
    bool LogHas(const std::string& text) { return ReadLog().find(text) != std::string::npos; }
};

TEST_F(ColourFileTest, LoadingACountingFileIntoTableSixKeepsEntriesZeroToThirtyFive)
{
    Planes before = Store(6);
    WriteFileBytes(Path("count.lut"), CountingBytes(768));
    dl_pb_ColourOpen(Path("count.lut").c_str());
    EXPECT_TRUE(host.messageBoxes.empty());
    Planes after = Store(6);
    for (int i = 0; i <= 35; ++i) {
        EXPECT_EQ(after.r[i], before.r[i]) << i;
        EXPECT_EQ(after.g[i], before.g[i]) << i;
        EXPECT_EQ(after.b[i], before.b[i]) << i;
    }
    // Byte k of the file is k & 255: entry i of every plane is i.
    for (int i = 36; i < 256; ++i) {
        EXPECT_EQ(after.r[i], i) << i;
        EXPECT_EQ(after.g[i], i) << i;
        EXPECT_EQ(after.b[i], i) << i;
    }
    EXPECT_EQ(after.r[16], 254);   // a fixed drawing colour
    EXPECT_EQ(after.r[35], 0);     // the first ramp step of table 6
}

TEST_F(ColourFileTest, ALoadedTableIsPutIntoEffectAsIfSelected)
{
    SelectOutputLUT(0);
    host.ClearCalls();
    WriteFileBytes(Path("count.lut"), CountingBytes(768));
    dl_pb_ColourOpen(Path("count.lut").c_str());
    EXPECT_EQ(CurrentOutputLUT(), 6);
    EXPECT_TRUE(Same(Output(6), Store(6)));
    EXPECT_GE(host.Count("ap_SetPalette"), 1);
    EXPECT_EQ(host.palette[0][200], 200);
    EXPECT_EQ(host.palette[0][16], 254);
    EXPECT_EQ(PaletteBlue[100], 100);
}

TEST_F(ColourFileTest, LoadingTableSevenReplacesTheScratchRampAboveThirtyFive)
{
    SelectTable(7);
    WriteFileBytes(Path("count.lut"), CountingBytes(768));
    dl_pb_ColourOpen(Path("count.lut").c_str());
    Planes after = Store(7);
    EXPECT_EQ(after.r[35], 52);    // the scratch value 35 / 2 + 35 stays
    EXPECT_EQ(after.r[36], 36);
    EXPECT_EQ(host.palette[0][34], 52);
}

TEST_F(ColourFileTest, AFileOf767BytesIsTooShort)
{
    Planes before = Store(6);
    WriteFileBytes(Path("short.lut"), CountingBytes(767));
    dl_pb_ColourOpen(Path("short.lut").c_str());
    EXPECT_EQ(LastBoxText(), "Data file too short");
    EXPECT_EQ(host.messageBoxes.size(), 1u);
    EXPECT_TRUE(Same(Store(6), before));
}

TEST_F(ColourFileTest, AFileOf769BytesIsAcceptedAndItsLastByteIgnored)
{
    std::string bytes = CountingBytes(769);
    bytes[768] = static_cast<char>(0xAB);
    WriteFileBytes(Path("long.lut"), bytes);
    EXPECT_EQ(LoadLUT(Path("long.lut").c_str()), 0);
    EXPECT_TRUE(host.messageBoxes.empty());
    Planes after = Store(6);
    for (int i = 36; i < 256; ++i) EXPECT_EQ(after.b[i], i) << i;
    EXPECT_EQ(after.b[255], 255);
}

TEST_F(ColourFileTest, SavingAfterLoadingGivesTheLoadedBytesAboveThirtyFiveAndTheTableBelow)
{
    Planes own = Store(6);
    std::string file(768, '\0');
    for (int k = 0; k < 768; ++k) file[k] = static_cast<char>((k * 3 + 1) & 0xff);
    WriteFileBytes(Path("in.lut"), file);
    ASSERT_EQ(LoadLUT(Path("in.lut").c_str()), 0);
    dl_pb_ColourSave(Path("out.lut").c_str());
    EXPECT_TRUE(host.messageBoxes.empty());
    std::string saved = ReadFileBytes(Path("out.lut"));
    ASSERT_EQ(saved.size(), 768u);
    const uint16_t* planes[3] = {own.r, own.g, own.b};
    for (int p = 0; p < 3; ++p) {
        for (int i = 0; i < 256; ++i) {
            int k = p * 256 + i;
            uint8_t expected = i > 35 ? static_cast<uint8_t>(file[k]) : static_cast<uint8_t>(planes[p][i]);
            EXPECT_EQ(static_cast<uint8_t>(saved[k]), expected) << "plane " << p << " entry " << i;
        }
    }
    // Spot checks: red of fixed colour 13 is 255, green 170; entry 36 of green is byte 292.
    EXPECT_EQ(static_cast<uint8_t>(saved[13]), 255);
    EXPECT_EQ(static_cast<uint8_t>(saved[256 + 13]), 170);
    EXPECT_EQ(static_cast<uint8_t>(saved[256 + 36]), (292 * 3 + 1) & 0xff);
}

TEST_F(ColourFileTest, SavingWritesTheLowBytesOfTheCurrentTable)
{
    ASSERT_EQ(SetColourTableEntry(6, 100, 1, 2, 3), 0);
    ASSERT_EQ(SaveLUT(Path("t6.lut").c_str()), 0);
    std::string saved = ReadFileBytes(Path("t6.lut"));
    ASSERT_EQ(saved.size(), 768u);
    EXPECT_EQ(saved[100], 1);
    EXPECT_EQ(saved[256 + 100], 2);
    EXPECT_EQ(saved[512 + 100], 3);
    EXPECT_EQ(static_cast<uint8_t>(saved[35 + 120]), 240);         // red 2i
    EXPECT_EQ(static_cast<uint8_t>(saved[256 + 35 + 120]), 120);   // green i
}

TEST_F(ColourFileTest, AFileThatCannotBeOpenedLeavesTheTable)
{
    Planes before = Store(6);
    dl_pb_ColourOpen(Path("missing.lut").c_str());
    EXPECT_EQ(LastBoxText(), "Unable to open file");
    EXPECT_TRUE(Same(Store(6), before));
}

TEST_F(ColourFileTest, AFailedReadLeavesTheTable)
{
    Planes before = Store(6);
    WriteFileBytes(Path("count.lut"), CountingBytes(768));
    SetFileReadFailureForTests(true);
    EXPECT_EQ(LoadLUT(Path("count.lut").c_str()), 1);
    EXPECT_EQ(LastBoxText(), "Error occurred while reading from input device");
    EXPECT_TRUE(Same(Store(6), before));
}

TEST_F(ColourFileTest, ADirectoryGivesAReadError)
{
    Planes before = Store(6);
    std::filesystem::create_directories(Path("folder.lut"));
    EXPECT_EQ(LoadLUT(Path("folder.lut").c_str()), 1);
    EXPECT_EQ(LastBoxText(), "Error occurred while reading from input device");
    EXPECT_TRUE(Same(Store(6), before));
}

TEST_F(ColourFileTest, AFileThatCannotBeCreatedIsReported)
{
    EXPECT_EQ(SaveLUT(Path("no/such/dir/out.lut").c_str()), 1);
    EXPECT_EQ(LastBoxText(), "Unable to open file");
}

TEST_F(ColourFileTest, AFailedWriteIsReported)
{
    // The full device refuses every write.
    EXPECT_EQ(SaveLUT("/dev/full"), 1);
    EXPECT_EQ(LastBoxText(), "Error occurred on writing to output device");
}

TEST_F(ColourFileTest, AShortWriteIsDiskFullAndTheOldFileIsLeftAsItIs)
{
    SetFileWriteLimitForTests(100);
    EXPECT_EQ(SaveLUT(Path("part.lut").c_str()), 1);
    EXPECT_EQ(LastBoxText(), "Not enough disk space");
    EXPECT_FALSE(std::filesystem::exists(Path("part.lut")));   // no half-written table
    const std::string old = CountingBytes(768);
    WriteFileBytes(Path("old.lut"), old);
    EXPECT_EQ(SaveLUT(Path("old.lut").c_str()), 1);
    EXPECT_EQ(ReadFileBytes(Path("old.lut")), old);
}

// A path of exactly `length` characters inside the data directory, its folders made.
static std::string PathOfLength(const std::string& data, size_t length)
{
    std::string path = data;
    while (path.size() + 41 < length) path += std::string(40, 'd') + "/";
    std::filesystem::create_directories(path);
    path += std::string(length - path.size(), 'f');
    return path;
}

TEST_F(ColourFileTest, APathOf259CharactersIsTaken)
{
    std::string path = PathOfLength(data, 259);
    ASSERT_EQ(path.size(), 259u);
    WriteFileBytes(path, CountingBytes(768));
    EXPECT_EQ(LoadLUT(path.c_str()), 0);
    EXPECT_EQ(Store(6).r[100], 100);
    EXPECT_EQ(SaveLUT(path.c_str()), 0);
    EXPECT_TRUE(host.messageBoxes.empty());
}

TEST_F(ColourFileTest, APathOf260CharactersOrMoreIsNotOpened)
{
    Planes before = Store(6);
    std::string path = PathOfLength(data, 260);
    ASSERT_EQ(path.size(), 260u);
    WriteFileBytes(path, CountingBytes(768));   // the file is there, but its name is too long
    EXPECT_EQ(LoadLUT(path.c_str()), 1);
    EXPECT_EQ(LastBoxText(), "Unable to open file");
    EXPECT_TRUE(Same(Store(6), before));
    std::filesystem::remove(path);
    EXPECT_EQ(SaveLUT(path.c_str()), 1);
    EXPECT_EQ(host.messageBoxes.size(), 2u);
    EXPECT_FALSE(std::filesystem::exists(path));
    EXPECT_EQ(LoadLUT(nullptr), 1);
    EXPECT_EQ(SaveLUT(""), 1);
    EXPECT_EQ(host.messageBoxes.size(), 4u);
    EXPECT_TRUE(Same(Store(6), before));
}

TEST_F(ColourFileTest, ATableOtherThanSixOrSevenTouchesNoFile)
{
    SelectTable(3);
    Planes before = Store(3);
    WriteFileBytes(Path("count.lut"), CountingBytes(768));
    EXPECT_EQ(LoadLUT(Path("count.lut").c_str()), 1);
    EXPECT_TRUE(LogHas("ERROR : Program error - LoadLUT ColourTableNo=3 "));
    EXPECT_TRUE(Same(Store(3), before));
    EXPECT_EQ(SaveLUT(Path("out.lut").c_str()), 1);
    EXPECT_TRUE(LogHas("ERROR : Program error - SaveLUT ColourTableNo=3 "));
    EXPECT_FALSE(std::filesystem::exists(Path("out.lut")));
}

TEST_F(ColourFileTest, OpeningInTrueRGBModeWithSourceTwoPutsTheTableIntoTheImage)
{
    ImageHeaderType* item = AllocateListItem(CurrentItem);
    ASSERT_NE(item, nullptr);
    CurrentItem = item;
    TrueRGB = true;
    wint_ColourParamType p{};
    p.ColourTableNo = 6;
    p.ColourSource = 2;
    dl_SetColourParam(&p);
    WriteFileBytes(Path("count.lut"), CountingBytes(768));
    dl_pb_ColourOpen(Path("count.lut").c_str());
    EXPECT_EQ(item->LutRed[200], 200);
    EXPECT_EQ(item->LutBlue[100], 100);
    EXPECT_EQ(item->LutRed[16], 254);
}
