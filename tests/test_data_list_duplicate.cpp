// New items from existing records: the result item of a command, and a record entering the list.
#include "test_data_list_items.h"
#include "store/duplicate.h"

#include <algorithm>
#include <cstddef>
#include <cstring>

class DataListDuplicateTest : public DataListTest {
protected:
    static void SetOldStamps(ImageHeaderType* item)
    {
        item->CreatedDate = DosDateType{3, 4, 2001, 2};
        item->CreatedTime = DosTimeType{5, 6, 7, 8};
        item->SavedDate = DosDateType{9, 10, 2002, 3};
        item->SavedTime = DosTimeType{11, 12, 13, 14};
    }
    // The stored bytes of two records agree everywhere but in the saved stamps.
    static bool StoredBytesAgreeButSavedStamps(const ImageHeaderType* x, const ImageHeaderType* y)
    {
        std::vector<unsigned char> bx(TAVRIN_HEADER_STORED_BYTES), by(TAVRIN_HEADER_STORED_BYTES);
        std::memcpy(bx.data(), x, bx.size());
        std::memcpy(by.data(), y, by.size());
        for (auto* bytes : {&bx, &by}) {
            std::memset(bytes->data() + offsetof(ImageHeaderType, SavedDate), 0, sizeof(DosDateType));
            std::memset(bytes->data() + offsetof(ImageHeaderType, SavedTime), 0, sizeof(DosTimeType));
            std::memset(bytes->data() + offsetof(ImageHeaderType, SavedFileTime), 0, sizeof(uint64_t));
        }
        return bx == by;
    }
    using V = std::vector<ImageHeaderType*>;
};

TEST_F(DataListDuplicateTest, TheResultGoesDirectlyBehindTheSourceWithItsHeaderAndFreshPixels)
{
    ImageHeaderType* a = AddImage(nullptr, 32, "C:\\d\\scan.tif", "Scan");
    ImageHeaderType* b = AddImage(a);
    a->BiasVoltage = 0.75f;
    a->DataSource = 5;
    CurrentItem = a;
    ImageHeaderType* r = DuplicateForResult(a);
    ASSERT_NE(r, nullptr);
    EXPECT_EQ(Items(), (V{a, r, b}));
    EXPECT_EQ(CurrentItem, a);   // the command makes it current, not the copy
    EXPECT_NE(r->DataId, a->DataId);
    EXPECT_EQ(r->nx, 32);
    EXPECT_EQ(r->ny, 32);
    EXPECT_EQ(r->BiasVoltage, 0.75f);
    EXPECT_EQ(r->DataSource, 5u);
    EXPECT_STREQ(r->Title, "Scan");
    EXPECT_STREQ(r->FileName, "C:\\d\\scan.tif");
    ASSERT_NE(r->PixData, nullptr);
    EXPECT_NE(r->PixData, a->PixData);
    EXPECT_EQ(r->PixHandle, 1u);
    EXPECT_TRUE(std::all_of(r->PixData, r->PixData + 32 * 32, [](uint16_t code) { return code == 0; }));
    EXPECT_EQ(a->PixData[32 * 32 - 1], 32 * 32 - 1);   // the source is untouched
    EXPECT_TRUE(StoredBytesAgreeButSavedStamps(a, r));
}

TEST_F(DataListDuplicateTest, TheResultIsStampedSavedNowAndKeepsTheCreatedStamp)
{
    ImageHeaderType* a = AddImage(nullptr);
    SetOldStamps(a);
    ImageHeaderType* r = DuplicateForResult(a);
    ASSERT_NE(r, nullptr);
    // The clock of the tests: Sunday 22 November 2026, 14:05:09.250.
    EXPECT_EQ(r->SavedDate.day, 22);
    EXPECT_EQ(r->SavedDate.month, 11);
    EXPECT_EQ(r->SavedDate.year, 2026);
    EXPECT_EQ(r->SavedDate.dayofweek, 0);
    EXPECT_EQ(r->SavedTime.hour, 14);
    EXPECT_EQ(r->SavedTime.minute, 5);
    EXPECT_EQ(r->SavedTime.second, 9);
    EXPECT_EQ(r->SavedTime.hsecond, 25);
    EXPECT_EQ(r->CreatedDate.year, 2001);
    EXPECT_EQ(r->CreatedDate.month, 4);
    EXPECT_EQ(r->CreatedTime.hour, 5);
    EXPECT_EQ(r->CreatedTime.hsecond, 8);
    EXPECT_TRUE(StoredBytesAgreeButSavedStamps(a, r));
    EXPECT_NE(std::memcmp(&a->SavedDate, &r->SavedDate, sizeof(DosDateType)), 0);
}

TEST_F(DataListDuplicateTest, FftDataAndAttachedSpectraStayWithTheSourceAndAMappingSetIsShared)
{
    ImageHeaderType* a = AddImage(nullptr);
    SetFFTBlock(a, static_cast<float*>(ecalloc(16 * 16 * 2, sizeof(float))));
    ImageHeaderType* attached = AllocateHeader();
    attached->ImType1 = 2;
    SetSPSRefChain(a, attached);
    a->nSPSRefData = 1;
    SetCITSBlock(a, StandInMappingSet());
    ImageHeaderType* r = DuplicateForResult(a);
    ASSERT_NE(r, nullptr);
    EXPECT_EQ(r->FFTDataPtr, nullptr);
    EXPECT_EQ(r->FFTData, 0);
    EXPECT_EQ(r->SPSRefDataPtr, nullptr);
    EXPECT_EQ(r->SPSRefData, 0u);
    EXPECT_EQ(r->nSPSRefData, 0);
    EXPECT_EQ(r->CITSHeaderPtr, StandInMappingSet());
    EXPECT_EQ(r->CITSHeader, 1u);
    EXPECT_NE(a->FFTDataPtr, nullptr);
    EXPECT_EQ(a->SPSRefDataPtr, attached);
    // Both erase without a double free.
    SetCITSBlock(a, nullptr);
    SetCITSBlock(r, nullptr);
    EraseAllItems();
    EXPECT_EQ(LiveBlockCount(), startBlocks);
}

TEST_F(DataListDuplicateTest, TheResultOfASpectrumHasFreshZeroSamplesOfBothPlanes)
{
    ImageHeaderType* s = AddSpectrum(nullptr, 50, 3, "p.spc", "Profile");
    s->AcqMode = 4;
    ImageHeaderType* r = DuplicateForResult(s);
    ASSERT_NE(r, nullptr);
    EXPECT_EQ(s->Next, r);
    EXPECT_EQ(r->ImType1, 3u);
    EXPECT_EQ(r->nx, 50);
    EXPECT_EQ(r->AcqMode, 4u);
    ASSERT_NE(r->PixData, nullptr);
    EXPECT_NE(r->PixData, s->PixData);
    const float* y = SpecY(r);
    const float* x = SpecX(r);
    EXPECT_TRUE(std::all_of(y, y + 50, [](float v) { return v == 0.0f; }));
    EXPECT_TRUE(std::all_of(x, x + 50, [](float v) { return v == 0.0f; }));
    EXPECT_EQ(SpecX(s)[49], 49.0f);
    EraseAllItems();
    EXPECT_EQ(LiveBlockCount(), startBlocks);
}

TEST_F(DataListDuplicateTest, ANullSourceIsReportedAsCopyNewHeader)
{
    AddImage(nullptr);
    Snapshot before = TakeSnapshot();
    size_t blocks = LiveBlockCount();
    EXPECT_EQ(DuplicateForResult(nullptr), nullptr);
    EXPECT_TRUE(TakeSnapshot() == before);
    EXPECT_EQ(LiveBlockCount(), blocks);
    EXPECT_NE(ReadLog().find("Program error - CopyNewHEader"), std::string::npos);
}

TEST_F(DataListDuplicateTest, ASourceNotOnTheListOrWithoutASizeIsRefused)
{
    ImageHeaderType* a = AddImage(nullptr);
    ImageHeaderType* scratch = AllocateHeader();
    Snapshot before = TakeSnapshot();
    size_t blocks = LiveBlockCount();
    EXPECT_EQ(DuplicateForResult(scratch), nullptr);
    ImageHeaderType* empty = AllocateListItem(a);   // nx and ny are -1
    EXPECT_EQ(DuplicateForResult(empty), nullptr);
    UnlinkListItem(empty);
    EXPECT_TRUE(TakeSnapshot() == before);
    EXPECT_EQ(LiveBlockCount(), blocks);
    std::string log = ReadLog();
    size_t first = log.find("Program error - CopyNewHEader");
    ASSERT_NE(first, std::string::npos);
    EXPECT_NE(log.find("Program error - CopyNewHEader", first + 1), std::string::npos);
    FreeHeader(scratch);
}

TEST_F(DataListDuplicateTest, ARecordAllocationFailureReports32769AndLeavesTheListAsItWas)
{
    ImageHeaderType* a = AddImage(nullptr);
    AddImage(a);
    CurrentItem = a;
    Snapshot before = TakeSnapshot();
    size_t blocks = LiveBlockCount();
    FailAllocationsForTests(1);
    EXPECT_EQ(DuplicateForResult(a), nullptr);
    EXPECT_EQ(BoxTexts(), (std::vector<std::string>{"Not enough memory"}));
    EXPECT_TRUE(TakeSnapshot() == before);
    EXPECT_EQ(LiveBlockCount(), blocks);
}

TEST_F(DataListDuplicateTest, APixelAllocationFailureReports32769AndLeavesTheListAsItWas)
{
    ImageHeaderType* a = AddImage(nullptr);
    AddImage(a);
    CurrentItem = a;
    Snapshot before = TakeSnapshot();
    size_t blocks = LiveBlockCount();
    FailAllocationsForTests(1, 1);   // the record is had, the pixels are not
    EXPECT_EQ(DuplicateForResult(a), nullptr);
    EXPECT_EQ(BoxTexts(), (std::vector<std::string>{"Not enough memory"}));
    EXPECT_TRUE(TakeSnapshot() == before);
    EXPECT_EQ(LiveBlockCount(), blocks);
}

TEST_F(DataListDuplicateTest, ASampleAllocationFailureOfASpectrumLeavesTheListAsItWas)
{
    ImageHeaderType* s = AddSpectrum(nullptr, 20);
    CurrentItem = s;
    Snapshot before = TakeSnapshot();
    size_t blocks = LiveBlockCount();
    FailAllocationsForTests(1, 1);
    EXPECT_EQ(DuplicateForResult(s), nullptr);
    EXPECT_EQ(BoxTexts(), (std::vector<std::string>{"Not enough memory"}));
    EXPECT_TRUE(TakeSnapshot() == before);
    EXPECT_EQ(LiveBlockCount(), blocks);
}

TEST_F(DataListDuplicateTest, AHitDataCopyFailureIsReportedAndLeavesTheListAsItWas)
{
    ImageHeaderType* a = AddImage(nullptr);
    SetCITSBlock(a, StandInMappingSet());
    a->LMCThreshold1On = 1;
    ASSERT_TRUE(AllocateHitRecords(a, 16, 16));
    CurrentItem = a;
    Snapshot before = TakeSnapshot();
    size_t blocks = LiveBlockCount();
    FailAllocationsForTests(1, 1);   // the record is had, the copy of the hit data is not
    EXPECT_EQ(DuplicateForResult(a), nullptr);
    EXPECT_TRUE(TakeSnapshot() == before);
    EXPECT_EQ(LiveBlockCount(), blocks);
    EXPECT_NE(ReadLog().find("Program error - CopyImageHeader 2"), std::string::npos);
    // Without the failure the copy has hit data of its own.
    ImageHeaderType* r = DuplicateForResult(a);
    ASSERT_NE(r, nullptr);
    ASSERT_NE(r->LMCHitDataPtr, nullptr);
    EXPECT_NE(r->LMCHitDataPtr, a->LMCHitDataPtr);
    EXPECT_EQ(std::memcmp(r->LMCHitDataPtr, a->LMCHitDataPtr, 16 * 16 * kHitRecordBytes), 0);
}

TEST_F(DataListDuplicateTest, DuplicateFullBringsARecordWithItsPixelsIntoTheList)
{
    ImageHeaderType* a = AddImage(nullptr);
    ImageHeaderType* b = AddImage(a);
    CurrentItem = a;
    ImageHeaderType* scratch = AllocateHeader();
    InitImageHeader(scratch, 16, 16);
    strncpy0(scratch->Title, "Read", sizeof scratch->Title);
    MemHandleType pair;
    ASSERT_TRUE(AllocateMem(16 * 16, 2, &pair));
    scratch->PixHandle = pair.Handle;
    scratch->PixData = static_cast<uint16_t*>(pair.Ptr);
    scratch->PixData[7] = 4321;
    ImageHeaderType* item = DuplicateFull(scratch, a);
    ASSERT_NE(item, nullptr);
    EXPECT_EQ(Items(), (V{a, item, b}));
    EXPECT_EQ(item->PixData, scratch->PixData);
    EXPECT_EQ(item->PixHandle, scratch->PixHandle);
    EXPECT_EQ(item->PixData[7], 4321);
    EXPECT_STREQ(item->Title, "Read");
    EXPECT_NE(item->DataId, scratch->DataId);
    FreeHeader(scratch);   // the record goes; the pixels now belong to the item
    EraseAllItems();
    EXPECT_EQ(LiveBlockCount(), startBlocks);
}

TEST_F(DataListDuplicateTest, DuplicateFullWithNoItemToFollowMakesTheHead)
{
    ImageHeaderType* a = AddImage(nullptr);
    ImageHeaderType* scratch = AllocateHeader();
    ImageHeaderType* item = DuplicateFull(scratch, nullptr);
    ASSERT_NE(item, nullptr);
    EXPECT_EQ(Items(), (V{item, a}));
    FreeHeader(scratch);
}

TEST_F(DataListDuplicateTest, DuplicateFullRefusesAnItemOfTheListSoThatNoTwoItemsOwnOneBlock)
{
    ImageHeaderType* a = AddImage(nullptr);
    Snapshot before = TakeSnapshot();
    size_t blocks = LiveBlockCount();
    EXPECT_EQ(DuplicateFull(a, a), nullptr);
    EXPECT_EQ(DuplicateFull(nullptr, a), nullptr);
    EXPECT_TRUE(TakeSnapshot() == before);
    EXPECT_EQ(LiveBlockCount(), blocks);
    std::string log = ReadLog();
    size_t first = log.find("Program error - DuplicateFull");
    ASSERT_NE(first, std::string::npos);
    EXPECT_NE(log.find("Program error - DuplicateFull", first + 1), std::string::npos);
}

TEST_F(DataListDuplicateTest, DuplicateFullFailureLeavesTheListAndTheSourceAsTheyWere)
{
    ImageHeaderType* a = AddImage(nullptr);
    CurrentItem = a;
    ImageHeaderType* scratch = AllocateHeader();
    MemHandleType pair;
    ASSERT_TRUE(AllocateMem(16, 2, &pair));
    scratch->PixHandle = pair.Handle;
    scratch->PixData = static_cast<uint16_t*>(pair.Ptr);
    Snapshot before = TakeSnapshot();
    size_t blocks = LiveBlockCount();
    FailAllocationsForTests(1);
    EXPECT_EQ(DuplicateFull(scratch, a), nullptr);
    EXPECT_EQ(BoxTexts(), (std::vector<std::string>{"Not enough memory"}));
    EXPECT_TRUE(TakeSnapshot() == before);
    EXPECT_EQ(LiveBlockCount(), blocks);
    EXPECT_EQ(scratch->PixData, pair.Ptr);
    FreeMem(scratch->PixHandle, scratch->PixData);
    FreeHeader(scratch);
}
