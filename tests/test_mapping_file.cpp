// Mapping sets in image files: the block at its offsets, round trips byte for byte, blocks built
// by hand, every refusal with what the item keeps, failed allocations, and the hit data.
#include "test_blocks_support.h"
#include "test_mapping_support.h"
#include "test_spectrum_support.h"
#include "files/cits_file.h"
#include "files/image_blocks.h"
#include "files/tiff_read.h"
#include "files/tiff_write.h"
#include "host/text.h"
#include "host/wait.h"
#include "platform/files.h"
#include "store/data_list_display.h"

#include <cfloat>

using namespace maptest;
using tifftest::Contains;

namespace {

constexpr size_t kPixels16 = 7124 + 16 * 16 * 2;   // the file up to the mapping block, 16 x 16

} // namespace

class MappingFileTest : public BlockCountTest {
protected:
    void TearDown() override
    {
        EraseAllAndExpectStartBlocks();
        EXPECT_EQ(LiveCITSPixelBlocks(), 0u);
        BlockCountTest::TearDown();
    }

    // The bytes of a saved 16 by 16 image without a set, with the mapping flag set and `block`
    // behind the pixels.
    std::string FileWithBlock(const std::string& block, uint32_t hitFlag = 0)
    {
        ImageHeaderType* image = tifftest::MakeImage(16, "Topography", 3);
        image->AcqMode = 11;
        image->MapType = 12;
        EXPECT_EQ(saveTiffImage(image, Path("plain.tif").c_str(), 0), 0);
        EraseItem(image);
        host.ClearCalls();
        std::string f = ReadFileBytes(Path("plain.tif"));
        Put<uint32_t>(f, 10 + 702, 1);
        Put<uint32_t>(f, 10 + 3392, hitFlag);
        return f + block;
    }

    // A block of `ni` 16 x 16 images, entry k at voltage 0.5 k.
    static std::string Block(int ni, int rev = 700)
    {
        std::string b = HeaderBytes(ni, 16, rev);
        for (int k = 0; k < ni; ++k) {
            const std::string title = "Plane " + std::to_string(k);
            b += EntryBytes(0.5f * static_cast<float>(k), -2.0f, 3.0f, 4, title.c_str(), 10, 5, -20);
        }
        for (int k = 0; k < ni; ++k) b += PlaneBytes(16, k);
        return b;
    }

    // Loads the bytes; answers the new current item (null when none came).
    ImageHeaderType* Load(const std::string& bytes, const std::string& name = "in.tif")
    {
        WriteFileBytes(Path(name), bytes);
        ImageHeaderType* before = CurrentItem;
        LoadImageFile(Path(name).c_str(), 0, 1, 1);
        return CurrentItem != before ? CurrentItem : nullptr;
    }

    int Boxes(const std::string& text) const
    {
        int n = 0;
        for (const MessageBoxCall& box : host.messageBoxes) n += box.text == text;
        return n;
    }

    // The item of a refused block: the topography whole, no set, no hit data, no spectra.
    static void ExpectTopographyOnly(const ImageHeaderType* item, uint32_t seed = 3)
    {
        ASSERT_NE(item, nullptr);
        EXPECT_EQ(item->CITSHeaderPtr, nullptr);
        EXPECT_EQ(item->CITSHeader, 0u);
        EXPECT_EQ(item->LMCHitDataPtr, nullptr);
        EXPECT_EQ(item->LMCThresholdHitDataPtr, 0u);
        EXPECT_EQ(item->SPSRefDataPtr, nullptr);
        for (int i = 0; i < 256; ++i)
            ASSERT_EQ(item->PixData[i], static_cast<uint16_t>((i % 16) * 251 + (i / 16) * 4099 + seed));
    }
};

// ---- byte-exact ----

TEST_F(MappingFileTest, TheBlockStandsBehindThePixelsAtItsOffsets)
{
    ImageHeaderType* a = MakeMappingImage(16, 3);
    a->CITSHeaderPtr->set_id = 0xABCD5678;
    a->CITSHeaderPtr->disp.v_high = 10.0;
    a->CITSHeaderPtr->ci = 2;
    ASSERT_EQ(saveTiffImage(a, Path("m.tif").c_str(), 0), 0);
    const std::string f = ReadFileBytes(Path("m.tif"));
    ASSERT_EQ(f.size(), kPixels16 + 390 + 3 * 165 + 3 * 512);
    EXPECT_EQ(Get<uint32_t>(f, 10 + 702), 1u);
    const size_t h = kPixels16;
    EXPECT_EQ(Get<int16_t>(f, h + 0), 700);
    EXPECT_EQ(Get<int16_t>(f, h + 2), 3);
    EXPECT_EQ(Get<int16_t>(f, h + 4), 16);
    EXPECT_EQ(Get<int16_t>(f, h + 6), 16);
    EXPECT_EQ(Get<int16_t>(f, h + 8), 2);
    EXPECT_EQ(Get<uint16_t>(f, h + 10), 7);
    EXPECT_EQ(Get<int16_t>(f, h + 12), 2);
    EXPECT_EQ(Get<uint8_t>(f, h + 14), 0);
    EXPECT_EQ(Get<double>(f, h + 23), 10.0);
    EXPECT_EQ(Get<uint8_t>(f, h + 31), 2);
    EXPECT_EQ(Get<int16_t>(f, h + 32), -1);
    EXPECT_EQ(Get<int16_t>(f, h + 32 + 126), -1);
    EXPECT_EQ(Get<uint16_t>(f, h + 388), 0x5678);   // the low half of set_id only
    for (int k = 0; k < 3; ++k) {
        const size_t e = h + 390 + 165 * static_cast<size_t>(k);
        EXPECT_EQ(Get<uint16_t>(f, e + 7), 1);
        EXPECT_EQ(Get<int32_t>(f, e + 9), 1);
        EXPECT_EQ(Get<float>(f, e + 13), -1.0f + 0.25f * static_cast<float>(k));
        EXPECT_EQ(Get<float>(f, e + 17), -1.0f);
        EXPECT_EQ(Get<float>(f, e + 21), 1.0f);
        EXPECT_EQ(f.substr(e + 25, 8), "Image " + std::to_string(k) + std::string(1, '\0'));
        EXPECT_EQ(Get<uint32_t>(f, e + 65), 4u);
        const size_t p = h + 390 + 3 * 165 + 512 * static_cast<size_t>(k);
        EXPECT_EQ(Get<uint16_t>(f, p + 2 * 200), static_cast<uint16_t>((k * 4099 + 200 * 13) & 0xFFFF));
    }
}

TEST_F(MappingFileTest, WriteReadWriteGivesTheSameBytesWithHitData)
{
    ImageHeaderType* a = MakeMappingImage(16, 4);
    a->LMCThreshold1On = 1;
    a->LMCPoints = 16;
    ASSERT_EQ(AllocateHeaderMemory_LMCThresholdHitDataPtr(a, 16, 16), 0);
    const std::string hit = HitBytes(2, 0x20000, 37.5f);
    std::memcpy(a->LMCHitDataPtr + 74 * 17, hit.data(), 74);
    strncpy0(a->FileName, Path("w1.tif").c_str(), sizeof a->FileName);
    ASSERT_EQ(saveTiffImage(a, Path("w1.tif").c_str(), 0), 0);
    ASSERT_EQ(LoadImageFile(Path("w1.tif").c_str(), 0, 1, 1), 0);
    ImageHeaderType* b = CurrentItem;
    ASSERT_NE(b, a);
    ASSERT_NE(b->CITSHeaderPtr, nullptr);
    ASSERT_NE(b->CITSHeaderPtr, a->CITSHeaderPtr);
    ASSERT_NE(b->LMCHitDataPtr, nullptr);
    EXPECT_EQ(std::memcmp(b->LMCHitDataPtr, a->LMCHitDataPtr, 256 * 74), 0);
    for (int k = 0; k < 4; ++k)
        EXPECT_EQ(std::memcmp(CITSPixels(CITSEntry(b->CITSHeaderPtr, k)), CITSPixels(CITSEntry(a->CITSHeaderPtr, k)), 512), 0);
    ASSERT_EQ(saveTiffImage(b, Path("w2.tif").c_str(), 0), 0);
    const std::string one = ReadFileBytes(Path("w1.tif"));
    const std::string two = ReadFileBytes(Path("w2.tif"));
    ASSERT_EQ(one.size(), kPixels16 + 390 + 4 * 165 + 4 * 512 + 256 * 74);
    EXPECT_TRUE(one == two);
}

TEST_F(MappingFileTest, AByteBuiltBlockLoadsWithItsVoltagesEntriesAndPlanes)
{
    const uint32_t nextId = NextDataId() + 3;   // scratch record, list item, set header
    ImageHeaderType* item = Load(FileWithBlock(Block(3)));
    ASSERT_NE(item, nullptr);
    const CITSHeaderType* set = item->CITSHeaderPtr;
    ASSERT_NE(set, nullptr);
    EXPECT_EQ(set->ni, 3);
    EXPECT_EQ(set->cx, 16);
    EXPECT_EQ(set->disp.mode, 1);
    EXPECT_EQ(set->disp.select, 4);
    EXPECT_EQ(set->disp.v_high, 10.0);
    EXPECT_EQ(set->disp.im_no[2], 2);
    EXPECT_EQ(set->disp.im_no[3], -1);
    // The low half of set_id is the file's, the high half that of the new set.
    EXPECT_EQ(set->set_id & 0xFFFF, 0x1234u);
    EXPECT_EQ(set->set_id >> 16, nextId >> 16);
    for (int k = 0; k < 3; ++k) {
        const CITSImageEntryType* e = CITSEntry(set, k);
        EXPECT_EQ(e->voltage, 0.5f * static_cast<float>(k));
        EXPECT_EQ(e->z_low, -2.0f);
        EXPECT_EQ(e->z_high, 3.0f);
        EXPECT_EQ(e->adc_gain, 10);
        EXPECT_EQ(e->i_divider, 5);
        EXPECT_EQ(e->adc_offset, -20);
        EXPECT_STREQ(e->title, ("Plane " + std::to_string(k)).c_str());
        EXPECT_EQ(e->data_type, 4u);
        const uint16_t* p = CITSPixels(e);
        for (int i = 0; i < 256; ++i) ASSERT_EQ(p[i], static_cast<uint16_t>((k * 1000 + i) & 0xFFFF));
    }
    double v[3];
    EXPECT_EQ(dl_GetCITSCurrentImageVoltages(v), 3);
    EXPECT_EQ(v[2], 1.0);
    EXPECT_EQ(host.messageBoxes.size(), 0u);
}

TEST_F(MappingFileTest, TheLoadShowsTheHourglassForItsDuration)
{
    // Read directly, outside the hourglass of the whole load: the block's own turns the wait
    // cursor on and off.
    WriteFileBytes(Path("hg.bin"), Block(2));
    ImageHeaderType* record = AllocateHeader();
    InitImageHeader(record, 16, 16);
    record->CITSHeader = 1;
    const FileHandle file = FileOpen(Path("hg.bin"), FileMode::Read);
    host.ClearCalls();
    ASSERT_EQ(LoadCITSDataSet(file, record), 1);
    FileClose(file);
    EXPECT_EQ(HourGlassCount(), 0);
    ASSERT_EQ(host.Count("SetWaitCursor"), 2);
    EXPECT_EQ(host.Calls("SetWaitCursor")[0].args, "1");
    EXPECT_EQ(host.Calls("SetWaitCursor")[1].args, "0");
    DeallocateCITSDataSet(record->CITSHeaderPtr);
    FreeHeader(record);
}

TEST_F(MappingFileTest, ModeFourLivesOnlyUntilTheNextLoad)
{
    std::string block = Block(2);
    block[14] = 4;
    ImageHeaderType* item = Load(FileWithBlock(block));
    ASSERT_NE(item, nullptr);
    EXPECT_EQ(item->CITSHeaderPtr->disp.mode, 2);
}

TEST_F(MappingFileTest, AnUnknownRevisionReportsOncePerEntryAndKeepsModeFour)
{
    std::string block = Block(3, 650);
    block[14] = 4;
    ImageHeaderType* item = Load(FileWithBlock(block));
    ASSERT_NE(item, nullptr);
    ASSERT_NE(item->CITSHeaderPtr, nullptr);
    EXPECT_EQ(item->CITSHeaderPtr->disp.mode, 4);
    const std::string log = ReadLog();
    size_t count = 0;
    for (size_t at = log.find("Program error - UpdateCITSImageHeader 650"); at != std::string::npos;
         at = log.find("Program error - UpdateCITSImageHeader 650", at + 1))
        ++count;
    EXPECT_EQ(count, 3u);
}

TEST_F(MappingFileTest, AnOldRevisionGetsItsDataTypesFromTheOldType)
{
    std::string block = HeaderBytes(2, 16, 300);
    block += EntryBytes(0.0f, 0, 1, 0, "a", 1, 1, 0, 0, 0, 1);
    block += EntryBytes(1.0f, 0, 1, 0, "b", 1, 1, 0, 0, 0, 2);
    block += PlaneBytes(16, 0) + PlaneBytes(16, 1);
    ImageHeaderType* item = Load(FileWithBlock(block));
    ASSERT_NE(item, nullptr);
    ASSERT_NE(item->CITSHeaderPtr, nullptr);
    EXPECT_EQ(CITSEntry(item->CITSHeaderPtr, 0)->data_type, 8u);
    EXPECT_EQ(CITSEntry(item->CITSHeaderPtr, 1)->data_type, 4u);
}

// ---- the entry stop ----

TEST_F(MappingFileTest, AnEntryWithGainZeroEndsTheEntriesSilentlyAndTheSetStays)
{
    std::string block = HeaderBytes(4, 16);
    block += EntryBytes(0.0f, 0, 1, 4, "first", 1);
    block += EntryBytes(1.0f, 0, 1, 4, "gain zero", 0);
    block += EntryBytes(2.0f, 0, 1, 4, "never read", 1);
    block += EntryBytes(3.0f, 0, 1, 4, "never read", 1);
    for (int k = 0; k < 4; ++k) block += PlaneBytes(16, k);
    ImageHeaderType* item = Load(FileWithBlock(block));
    ASSERT_NE(item, nullptr);
    const CITSHeaderType* set = item->CITSHeaderPtr;
    ASSERT_NE(set, nullptr);
    EXPECT_EQ(host.messageBoxes.size(), 0u);
    EXPECT_STREQ(CITSEntry(set, 0)->title, "first");
    EXPECT_STREQ(CITSEntry(set, 1)->title, "gain zero");   // the failing entry as it was read
    for (int k = 2; k < 4; ++k) {
        const CITSImageEntryType* e = CITSEntry(set, k);
        EXPECT_EQ(e->voltage, 0.0f);
        EXPECT_EQ(e->adc_gain, 0);
        EXPECT_EQ(e->title[0], '\0');
        EXPECT_EQ(e->data_type, 0u);
    }
    // The planes are read from their own place, behind all four stored entries.
    for (int k = 0; k < 4; ++k) EXPECT_EQ(CITSPixels(CITSEntry(set, k))[7], static_cast<uint16_t>(k * 1000 + 7));
}

// ---- refusals ----

TEST_F(MappingFileTest, AShortHeaderIsTooShortAndCostsOnlyTheSet)
{
    ImageHeaderType* item = Load(FileWithBlock(Block(2).substr(0, 389)));
    EXPECT_EQ(Boxes("Data file too short"), 1);
    ExpectTopographyOnly(item);
    EXPECT_TRUE(Contains(ReadLog(), "Load " + Path("in.tif")));
}

TEST_F(MappingFileTest, AShortEntryIsTooShortAndCostsOnlyTheSet)
{
    ImageHeaderType* item = Load(FileWithBlock(Block(2).substr(0, 390 + 165 + 100)));
    EXPECT_EQ(Boxes("Data file too short"), 1);
    ExpectTopographyOnly(item);
}

TEST_F(MappingFileTest, ShortPlanesAreTooShortAndCostOnlyTheSet)
{
    const std::string block = Block(3);
    ImageHeaderType* item = Load(FileWithBlock(block.substr(0, block.size() - 1)));
    EXPECT_EQ(Boxes("Data file too short"), 1);
    ExpectTopographyOnly(item);
}

TEST_F(MappingFileTest, EachHeaderRuleRefusesTheSetWithItsLogLine)
{
    struct Case {
        std::string block;
        std::string line;
    };
    std::vector<Case> cases;
    cases.push_back({HeaderBytes(4097, 16), "SPS Mapping Header: rev=700 ni=4097 cx=16 cy=16 disp.n=2 ci=0\r\n"});
    cases.push_back({HeaderBytes(2, 1024), "SPS Mapping Header: rev=700 ni=2 cx=1024 cy=1024 disp.n=2 ci=0\r\n"});
    cases.push_back({HeaderBytes(2, 16, 701), "SPS Mapping Header: rev=701 ni=2 cx=16 cy=16 disp.n=2 ci=0\r\n"});
    cases.push_back({HeaderBytes(2, 16, 700, 2), "SPS Mapping Header: rev=700 ni=2 cx=16 cy=16 disp.n=2 ci=2\r\n"});
    std::string space = HeaderBytes(2, 16);
    space[260 + 10] = static_cast<char>(0xF0);
    cases.push_back({space, "CheckValidCITSHeader i=10 IHspace=240 0 0\r\n"});
    std::string numbers = HeaderBytes(2, 16);
    Put<int16_t>(numbers, 32 + 2 * 63, 4096);
    cases.push_back({numbers, "CheckValidCITSHeader i=63 disp.im_no=4096 0 0\r\n"});
    int n = 0;
    for (const Case& c : cases) {
        host.messageBoxes.clear();
        ImageHeaderType* item = Load(FileWithBlock(c.block + std::string(2000, '\0')), "rule" + std::to_string(n++) + ".tif");
        EXPECT_EQ(Boxes("Invalid header"), 1) << c.line;
        EXPECT_TRUE(Contains(ReadLog(), c.line)) << c.line;
        ExpectTopographyOnly(item);
    }
}

TEST_F(MappingFileTest, AFailedBlockAlsoDropsTheSpectraAndHitDataBehindIt)
{
    std::string f = FileWithBlock(Block(2).substr(0, 100), 1);
    Put<int16_t>(f, 10 + 2764, 1);   // nSPSRefData
    Put<uint32_t>(f, 10 + 2766, 1);  // SPSRefData
    ImageHeaderType* item = Load(f);
    ExpectTopographyOnly(item);
    EXPECT_EQ(item->SPSRefData, 0u);
}

// ---- hit data ----

TEST_F(MappingFileTest, OneBadHitRecordDiscardsTheWholeSet)
{
    std::string hits;
    for (int i = 0; i < 256; ++i) hits += HitBytes(0, 0, FLT_MAX);
    hits.replace(74 * 100, 74, HitBytes(1, 0x80000, 3.0f));
    ImageHeaderType* item = Load(FileWithBlock(Block(2) + hits, 1));
    EXPECT_EQ(Boxes("Invalid header"), 1);
    ExpectTopographyOnly(item);
}

TEST_F(MappingFileTest, ShortHitDataDiscardTheWholeSet)
{
    std::string hits;
    for (int i = 0; i < 255; ++i) hits += HitBytes(0, 0, FLT_MAX);
    ImageHeaderType* item = Load(FileWithBlock(Block(2) + hits, 1));
    EXPECT_EQ(Boxes("Data file too short"), 1);
    ExpectTopographyOnly(item);
}

TEST_F(MappingFileTest, GoodHitDataLoadWithTheSet)
{
    std::string hits;
    for (int i = 0; i < 256; ++i) hits += HitBytes(i % 3 == 0 ? 1 : 0, i % 3 == 0 ? 16 : 0, static_cast<float>(i));
    std::string f = FileWithBlock(Block(2) + hits, 1);
    f[10 + 3246] = 1;   // threshold 1 on: the list item gets the copy of the records
    ImageHeaderType* item = Load(f);
    ASSERT_NE(item, nullptr);
    ASSERT_NE(item->CITSHeaderPtr, nullptr);
    ASSERT_NE(item->LMCHitDataPtr, nullptr);
    EXPECT_EQ(std::memcmp(item->LMCHitDataPtr, hits.data(), hits.size()), 0);
    EXPECT_EQ(host.messageBoxes.size(), 0u);
}

TEST_F(MappingFileTest, HitDataThatCannotBeAllocatedCostOnlyThemselves)
{
    std::string hits(256 * 74, '\0');
    const std::string f = FileWithBlock(Block(2) + hits, 1);
    WriteFileBytes(Path("h.tif"), f);
    // Allocations of the load in order: scratch record, pixels, set header, two planes, then the
    // hit records.
    FailAllocationsForTests(1, 5);
    ASSERT_EQ(LoadImageFile(Path("h.tif").c_str(), 0, 1, 1), 0);
    ImageHeaderType* item = CurrentItem;
    ASSERT_NE(item, nullptr);
    EXPECT_NE(item->CITSHeaderPtr, nullptr);
    EXPECT_EQ(item->LMCHitDataPtr, nullptr);
    EXPECT_EQ(Boxes("Not enough memory for Threshold Data"), 1);
}

TEST_F(MappingFileTest, LMCPointsOtherThanCxWritesASectionTheNextLoadFindsTooShort)
{
    ImageHeaderType* a = MakeMappingImage(16, 2);
    a->LMCThreshold1On = 1;
    ASSERT_EQ(AllocateHeaderMemory_LMCThresholdHitDataPtr(a, 16, 16), 0);
    a->LMCPoints = 8;
    ASSERT_EQ(saveTiffImage(a, Path("p8.tif").c_str(), 0), 0);
    const std::string f = ReadFileBytes(Path("p8.tif"));
    EXPECT_EQ(f.size(), kPixels16 + 390 + 2 * 165 + 2 * 512 + 8 * 8 * 74);
    ImageHeaderType* item = Load(f, "p8b.tif");
    EXPECT_EQ(Boxes("Data file too short"), 1);
    ExpectTopographyOnly(item, 7);
}

TEST_F(MappingFileTest, HitDataThatFailCostTheSetButNotTheSpectraReadBeforeThem)
{
    ImageHeaderType* a = MakeMappingImage(16, 2);
    a->LMCThreshold1On = 1;
    ASSERT_EQ(AllocateHeaderMemory_LMCThresholdHitDataPtr(a, 16, 16), 0);
    a->LMCPoints = 16;
    a->LMCHitDataPtr[74 * 40] = 5;   // a hit outside 0 to 2: the records are bad
    SetSPSRefChain(a, spectest::MakeBareSpectrum(5, 1));
    a->nSPSRefData = 1;
    ASSERT_EQ(saveTiffImage(a, Path("hs.tif").c_str(), 0), 0);
    ASSERT_EQ(LoadImageFile(Path("hs.tif").c_str(), 0, 1, 1), 0);
    ImageHeaderType* item = CurrentItem;
    ASSERT_NE(item, a);
    EXPECT_EQ(Boxes("Invalid header"), 1);
    EXPECT_EQ(item->CITSHeaderPtr, nullptr);
    EXPECT_EQ(item->LMCHitDataPtr, nullptr);
    ASSERT_NE(item->SPSRefDataPtr, nullptr);
    EXPECT_EQ(item->SPSRefDataPtr->nx, 5);
    EXPECT_EQ(item->nSPSRefData, 1);
}

TEST_F(MappingFileTest, LMCPointsAboveCxWritesNewRecordsPastTheBlock)
{
    ImageHeaderType* a = MakeMappingImage(16, 1);
    a->LMCThreshold1On = 1;
    ASSERT_EQ(AllocateHeaderMemory_LMCThresholdHitDataPtr(a, 16, 16), 0);
    std::memcpy(a->LMCHitDataPtr + 74 * 255, HitBytes(1, 4, 5.0f).data(), 74);
    a->LMCPoints = 17;
    ASSERT_EQ(saveTiffImage(a, Path("p17.tif").c_str(), 0), 0);
    const std::string f = ReadFileBytes(Path("p17.tif"));
    const size_t hits = kPixels16 + 390 + 165 + 512;
    ASSERT_EQ(f.size(), hits + 17 * 17 * 74);
    EXPECT_EQ(f.substr(hits + 74 * 255, 74), HitBytes(1, 4, 5.0f));
    for (int i = 256; i < 289; ++i) ASSERT_EQ(f.substr(hits + 74 * static_cast<size_t>(i), 74), HitBytes(0, 0, FLT_MAX)) << i;
}

TEST_F(MappingFileTest, LMCPointsOfZeroOrBelowWritesNoRecords)
{
    ImageHeaderType* a = MakeMappingImage(16, 1);
    a->LMCThreshold1On = 1;
    ASSERT_EQ(AllocateHeaderMemory_LMCThresholdHitDataPtr(a, 16, 16), 0);
    a->LMCPoints = -16;
    ASSERT_EQ(saveTiffImage(a, Path("pm.tif").c_str(), 0), 0);
    EXPECT_EQ(ReadFileBytes(Path("pm.tif")).size(), kPixels16 + 390 + 165 + 512);
}

TEST_F(MappingFileTest, HitDataOfAnImageThatFailsTheSquareTestAreNotSaved)
{
    // A 32 by 32 image whose set is 16 by 16.
    ImageHeaderType* a = tifftest::MakeImage(32, "Not square");
    SetCITSBlock(a, AllocateCITSDataSet(1, 16, 16));
    CITSEntry(a->CITSHeaderPtr, 0)->adc_gain = 1;
    ASSERT_TRUE(AllocateHitRecords(a, 16, 16));
    a->LMCPoints = 16;
    EXPECT_EQ(saveTiffImage(a, Path("sq.tif").c_str(), 0), 1);
    EXPECT_TRUE(Contains(ReadLog(), "Program error - SaveLMCThresholdHitData np=16"));
}

TEST_F(MappingFileTest, HitDataWithoutASetAreRefusedAndTheImageLoads)
{
    ImageHeaderType* image = tifftest::MakeImage(16, "No set", 3);
    ASSERT_EQ(saveTiffImage(image, Path("ns.tif").c_str(), 0), 0);
    EraseItem(image);
    std::string f = ReadFileBytes(Path("ns.tif"));
    Put<uint32_t>(f, 10 + 3392, 1);
    f += std::string(256 * 74, '\0');
    ImageHeaderType* item = Load(f);
    EXPECT_TRUE(Contains(ReadLog(), "Program error - AllocateHeaderMemory_LMCThresholdHitDataPtr 0 0"));
    ExpectTopographyOnly(item);
}

// ---- a set of 0 images ----

TEST_F(MappingFileTest, ASetOfNoImagesIsSavedWithoutItsBlock)
{
    ImageHeaderType* a = MakeMappingImage(16, 1);
    FreeCITSPixels(CITSEntry(a->CITSHeaderPtr, 0));
    a->CITSHeaderPtr->ni = 0;
    a->LMCThreshold1On = 1;
    ASSERT_TRUE(AllocateHitRecords(a, 16, 16));
    ASSERT_EQ(saveTiffImage(a, Path("n0.tif").c_str(), 0), 0);
    const std::string f = ReadFileBytes(Path("n0.tif"));
    EXPECT_EQ(f.size(), kPixels16);
    EXPECT_EQ(Get<uint32_t>(f, 10 + 702), 0u);
    EXPECT_EQ(Get<uint32_t>(f, 10 + 3392), 0u);
    EXPECT_NE(a->CITSHeaderPtr, nullptr);   // the record keeps its set
    EXPECT_EQ(a->CITSHeader, 1u);
}

// ---- the 8-bit data flag ----

TEST_F(MappingFileTest, EightBitPlanesAreWidenedBy256)
{
    std::string block = HeaderBytes(2, 16);
    block += EntryBytes(0.0f, 0, 1, 4, "a") + EntryBytes(1.0f, 0, 1, 4, "b");
    block += PlaneBytes(16, 0, true) + PlaneBytes(16, 1, true);
    WriteFileBytes(Path("b8.bin"), block);
    ImageHeaderType* record = AllocateHeader();
    InitImageHeader(record, 16, 16);
    record->Compression = 1;
    record->CITSHeader = 1;
    const FileHandle file = FileOpen(Path("b8.bin"), FileMode::Read);
    ASSERT_EQ(LoadCITSDataSet(file, record), 1);
    FileClose(file);
    ASSERT_NE(record->CITSHeaderPtr, nullptr);
    for (int k = 0; k < 2; ++k)
        for (int i = 0; i < 256; ++i)
            ASSERT_EQ(CITSPixels(CITSEntry(record->CITSHeaderPtr, k))[i], static_cast<uint16_t>(((k * 16 + i) & 0xFF) * 256));
    DeallocateCITSDataSet(record->CITSHeaderPtr);
    FreeHeader(record);
}

TEST_F(MappingFileTest, TheEightBitSaveRefillsItsBufferAsOftenAsAPlaneNeeds)
{
    // A 256 x 256 plane is four fillings of the 16384-byte buffer.
    ImageHeaderType* a = MakeMappingImage(256, 2);
    a->Compression = 1;
    const FileHandle file = FileCreate(Path("s8.bin"));
    ASSERT_EQ(SaveCITSDataSet(file, a), 1);
    FileClose(file);
    const std::string f = ReadFileBytes(Path("s8.bin"));
    ASSERT_EQ(f.size(), 390u + 2 * 165 + 2 * 65536);
    for (int k = 0; k < 2; ++k) {
        const uint16_t* p = CITSPixels(CITSEntry(a->CITSHeaderPtr, k));
        for (size_t i = 0; i < 65536; ++i)
            ASSERT_EQ(static_cast<uint8_t>(f[390 + 330 + 65536 * static_cast<size_t>(k) + i]), p[i] >> 8) << k << " " << i;
    }
    EXPECT_EQ(CITSBlockBytes(a), 2 * (65536 + 165) + 390);
    a->Compression = 0;
}

TEST_F(MappingFileTest, TheEightBitPaletteStandsBehindTheMappingBlock)
{
    ImageHeaderType* a = MakeMappingImage(16, 3);
    ASSERT_EQ(saveTiffImage(a, Path("pal.tif").c_str(), 1), 0);
    const std::string f = ReadFileBytes(Path("pal.tif"));
    const tifftest::Entry colours = tifftest::EntryAt(f, 16);
    EXPECT_EQ(colours.tag, 320);
    const size_t block = 390 + 3 * (256 * 2 + 165);
    EXPECT_EQ(colours.value, 7124u + 256u + block);
    EXPECT_EQ(MappingBlockBytes(a), static_cast<long long>(block));
}

TEST_F(MappingFileTest, AShortWriteOfTheBlockIsNotEnoughDiskSpace)
{
    ImageHeaderType* a = MakeMappingImage(16, 3);
    SetFileWriteLimitForTests(kPixels16 + 390 + 165);
    EXPECT_EQ(saveTiffImage(a, Path("full.tif").c_str(), 0), 1);
    SetFileWriteLimitForTests(-1);
    EXPECT_EQ(Boxes("Not enough disk space"), 1);
}

// ---- failed allocations during a load ----

TEST_F(MappingFileTest, EveryFailedAllocationOfALoadIsNamedAndLeaksNothing)
{
    std::string hits;
    for (int i = 0; i < 256; ++i) hits += HitBytes(0, 0, FLT_MAX);
    std::string f = FileWithBlock(Block(3) + hits, 1);
    f[10 + 3246] = 1;
    WriteFileBytes(Path("fail.tif"), f);
    std::set<std::string> named;
    for (int skip = 0; skip < 40; ++skip) {
        host.messageBoxes.clear();
        const size_t blocks = LiveBlockCount();
        FailAllocationsForTests(1, skip);
        LoadImageFile(Path("fail.tif").c_str(), 0, 1, 1);
        const bool failed = !host.messageBoxes.empty() || Contains(ReadLog(), "CopyImageHeader 2");
        FailAllocationsForTests(0);
        for (const MessageBoxCall& box : host.messageBoxes) named.insert(box.text);
        while (FirstItem) EraseItem(FirstItem);
        ASSERT_EQ(LiveBlockCount(), blocks) << skip;
        ASSERT_EQ(LiveCITSPixelBlocks(), 0u) << skip;
        if (!failed) break;
    }
    EXPECT_TRUE(named.count("Not enough memory"));              // the set's header, the record
    EXPECT_TRUE(named.count("Not enough memory for image"));    // each plane
    EXPECT_TRUE(named.count("Not enough memory for Threshold Data"));
}

TEST_F(MappingFileTest, AFailedPlaneAllocationLeavesTheTopographyWithoutASet)
{
    const std::string f = FileWithBlock(Block(3));
    WriteFileBytes(Path("k.tif"), f);
    for (int k = 0; k < 3; ++k) {
        host.messageBoxes.clear();
        FailAllocationsForTests(1, 3 + k);   // scratch record, pixels, set header, k planes
        ASSERT_EQ(LoadImageFile(Path("k.tif").c_str(), 0, 1, 1), 0);
        EXPECT_EQ(Boxes("Not enough memory for image"), 1) << k;
        ExpectTopographyOnly(CurrentItem);
        EXPECT_EQ(LiveCITSPixelBlocks(), 0u);
        EraseItem(CurrentItem);
    }
}
