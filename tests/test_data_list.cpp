// The data list core: allocation, links, unlinking, the full erase, the erase-all loop.
#include "test_data_list_items.h"
#include "store/data_list_display.h"

#include <cstring>

class DataListCoreTest : public DataListTest {};

TEST_F(DataListCoreTest, ANewItemBehindTheLastLeavesFirstItemUnchanged)
{
    ImageHeaderType* a = AddImage(nullptr);
    ImageHeaderType* b = AddImage(a);
    ASSERT_NE(b, nullptr);
    ImageHeaderType* c = AllocateListItem(b);
    ASSERT_NE(c, nullptr);
    EXPECT_EQ(FirstItem, a);
    EXPECT_EQ(b->Next, c);
    EXPECT_EQ(c->Prev, b);
    EXPECT_EQ(c->Next, nullptr);
    EXPECT_EQ(Items(), (std::vector<ImageHeaderType*>{a, b, c}));
}

TEST_F(DataListCoreTest, ANewItemWithNoPredecessorBecomesTheHead)
{
    ImageHeaderType* a = AddImage(nullptr);
    EXPECT_EQ(FirstItem, a);
    ImageHeaderType* b = AllocateListItem(nullptr);
    ASSERT_NE(b, nullptr);
    EXPECT_EQ(FirstItem, b);
    EXPECT_EQ(b->Prev, nullptr);
    EXPECT_EQ(b->Next, a);
    EXPECT_EQ(a->Prev, b);
    EXPECT_EQ(Items(), (std::vector<ImageHeaderType*>{b, a}));
}

TEST_F(DataListCoreTest, ANewItemGoesDirectlyBehindTheNamedItem)
{
    ImageHeaderType* a = AddImage(nullptr);
    ImageHeaderType* c = AddImage(a);
    ImageHeaderType* b = AllocateListItem(a);
    ASSERT_NE(b, nullptr);
    EXPECT_EQ(Items(), (std::vector<ImageHeaderType*>{a, b, c}));
    EXPECT_EQ(a->Next, b);
    EXPECT_EQ(b->Prev, a);
    EXPECT_EQ(b->Next, c);
    EXPECT_EQ(c->Prev, b);
}

TEST_F(DataListCoreTest, ANewItemIsAnEmptyRecordOfSizeMinusOne)
{
    ImageHeaderType* item = AllocateListItem(nullptr);
    ASSERT_NE(item, nullptr);
    EXPECT_EQ(item->nx, -1);
    EXPECT_EQ(item->ny, -1);
    EXPECT_EQ(item->ImType1, 1u);
    EXPECT_EQ(item->SPSOwnerId, -1);
    EXPECT_EQ(item->PixData, nullptr);
    EXPECT_EQ(CheckValidImageHeader(item), 0);
    EXPECT_EQ(CurrentItem, nullptr);   // allocation does not make an item current
}

TEST_F(DataListCoreTest, ARecordAllocationFailureReports32769AndLeavesTheListAsItWas)
{
    ImageHeaderType* a = AddImage(nullptr);
    AddImage(a);
    CurrentItem = a;
    Snapshot before = TakeSnapshot();
    size_t blocks = LiveBlockCount();
    FailAllocationsForTests(2);
    EXPECT_EQ(AllocateListItem(a), nullptr);
    EXPECT_EQ(AllocateListItem(nullptr), nullptr);
    EXPECT_EQ(BoxTexts(), (std::vector<std::string>{"Not enough memory", "Not enough memory"}));
    EXPECT_TRUE(TakeSnapshot() == before);
    EXPECT_EQ(LiveBlockCount(), blocks);
}

TEST_F(DataListCoreTest, ANewItemBehindARecordThatIsNotOnTheListIsRefused)
{
    ImageHeaderType* a = AddImage(nullptr);
    ImageHeaderType* scratch = AllocateHeader();
    Snapshot before = TakeSnapshot();
    size_t blocks = LiveBlockCount();
    EXPECT_EQ(AllocateListItem(scratch), nullptr);
    EXPECT_TRUE(TakeSnapshot() == before);
    EXPECT_EQ(LiveBlockCount(), blocks);
    EXPECT_EQ(scratch->Next, nullptr);
    EXPECT_NE(ReadLog().find("Program error - AllocateListItem"), std::string::npos);
    FreeHeader(scratch);
    EXPECT_EQ(Items(), (std::vector<ImageHeaderType*>{a}));
}

TEST_F(DataListCoreTest, DataIdGapsTheSecondLoadedImageHasANumberAboveOne)
{
    // Each load reads into a scratch record, which burns one number, then moves the header
    // and the pixels into a new list item.
    auto load = []() {
        ImageHeaderType* scratch = AllocateHeader();
        ImageHeaderType* item = AllocateListItem(CurrentItem);
        CopyImageHeader(item, scratch, 1);
        FreeHeader(scratch);
        CurrentItem = item;
        return item;
    };
    ImageHeaderType* first = load();
    ImageHeaderType* second = load();
    EXPECT_EQ(first->DataId, 1u);
    EXPECT_EQ(second->DataId, 3u);
    EXPECT_EQ(FindItemById(0), nullptr);
    EXPECT_EQ(FindItemById(1), first);
    EXPECT_EQ(FindItemById(2), nullptr);
    EXPECT_EQ(FindItemById(3), second);
}

TEST_F(DataListCoreTest, UnlinkAnswersTheNextItemOrThePreviousOneAtTheEnd)
{
    ImageHeaderType* a = AddImage(nullptr);
    ImageHeaderType* b = AddImage(a);
    ImageHeaderType* c = AddImage(b);
    uint16_t* pixelsB = b->PixData;
    uint16_t* pixelsC = c->PixData;
    uint16_t* pixelsA = a->PixData;
    size_t blocks = LiveBlockCount();
    EXPECT_EQ(UnlinkListItem(b), c);
    EXPECT_EQ(LiveBlockCount(), blocks - 1);   // the record only, not the pixels
    EXPECT_EQ(Items(), (std::vector<ImageHeaderType*>{a, c}));
    EXPECT_EQ(a->Next, c);
    EXPECT_EQ(c->Prev, a);
    EXPECT_EQ(UnlinkListItem(c), a);
    EXPECT_EQ(a->Next, nullptr);
    EXPECT_EQ(UnlinkListItem(a), nullptr);
    EXPECT_EQ(FirstItem, nullptr);
    efree(pixelsA);
    efree(pixelsB);
    efree(pixelsC);
    EXPECT_EQ(LiveBlockCount(), startBlocks);
}

TEST_F(DataListCoreTest, UnlinkOfTheHeadMovesTheHead)
{
    ImageHeaderType* a = AddImage(nullptr);
    ImageHeaderType* b = AddImage(a);
    uint16_t* pixels = a->PixData;
    EXPECT_EQ(UnlinkListItem(a), b);
    EXPECT_EQ(FirstItem, b);
    EXPECT_EQ(b->Prev, nullptr);
    efree(pixels);
}

TEST_F(DataListCoreTest, UnlinkOfARecordThatIsNotOnTheListIsRefused)
{
    ImageHeaderType* a = AddImage(nullptr);
    ImageHeaderType* scratch = AllocateHeader();
    scratch->Prev = a;   // a stray link must not reach the list
    Snapshot before = TakeSnapshot();
    EXPECT_EQ(UnlinkListItem(scratch), nullptr);
    EXPECT_EQ(UnlinkListItem(nullptr), nullptr);
    EXPECT_TRUE(TakeSnapshot() == before);
    EXPECT_NE(ReadLog().find("Program error - UnlinkListItem"), std::string::npos);
    FreeHeader(scratch);
}

TEST_F(DataListCoreTest, NextAndPreviousAtTheEndsAnswerTheItemItself)
{
    ImageHeaderType* a = AddImage(nullptr);
    ImageHeaderType* b = AddImage(a);
    EXPECT_EQ(NextItem(a), b);
    EXPECT_EQ(NextItem(b), b);
    EXPECT_EQ(PrevItem(b), a);
    EXPECT_EQ(PrevItem(a), a);
    EXPECT_EQ(NextItem(nullptr), nullptr);
    EXPECT_EQ(PrevItem(nullptr), nullptr);
}

TEST_F(DataListCoreTest, ALinkThatDoesNotPointBackIsReportedAndTreatedAsTheEnd)
{
    ImageHeaderType* a = AddImage(nullptr);
    ImageHeaderType* b = AddImage(a);
    ImageHeaderType* c = AddImage(b);
    b->Prev = c;   // a->Next is b, but b does not point back at a
    EXPECT_EQ(NextItem(a), a);
    EXPECT_NE(ReadLog().find("Program error - next image"), std::string::npos);
    b->Prev = a;
    a->Next = c;   // b->Prev is a, but a does not point on to b
    EXPECT_EQ(PrevItem(b), b);
    EXPECT_NE(ReadLog().find("Program error - previous image"), std::string::npos);
    a->Next = b;
    EXPECT_EQ(NextItem(a), b);
    EXPECT_EQ(PrevItem(b), a);
}

TEST_F(DataListCoreTest, FindItemByIdWalksFromTheHead)
{
    ImageHeaderType* a = AddImage(nullptr);
    ImageHeaderType* b = AddImage(a);
    EXPECT_EQ(FindItemById(a->DataId), a);
    EXPECT_EQ(FindItemById(b->DataId), b);
    EXPECT_EQ(FindItemById(b->DataId + 100), nullptr);
}

TEST_F(DataListCoreTest, EraseOfAnImageFreesPixelsFftAttachedSpectraAndHitDataAndTellsThe3DView)
{
    ImageHeaderType* a = AddImage(nullptr);
    ImageHeaderType* b = AddImage(a);
    auto* fft = static_cast<float*>(ecalloc(16 * 16 * 2, sizeof(float)));
    SetFFTBlock(b, fft);
    ImageHeaderType* s1 = AllocateHeader();
    ImageHeaderType* s2 = AllocateHeader();
    s1->PixData = reinterpret_cast<uint16_t*>(AllocSpecMem(8));
    s2->PixData = reinterpret_cast<uint16_t*>(AllocSpecMem(8));
    s1->SPSRefDataPtr = s2;
    SetSPSRefChain(b, s1);
    b->nSPSRefData = 2;
    ASSERT_TRUE(AllocateHitRecords(b, 16, 16));
    CurrentItem = b;
    const uint32_t id = b->DataId;
    const int dropped = DisplayRequests().referencesDropped;
    EraseItem(b);
    EXPECT_EQ(Items(), (std::vector<ImageHeaderType*>{a}));
    EXPECT_EQ(CurrentItem, a);   // no Next: the previous item stands in
    EXPECT_EQ(host.Count("ap_Close3DView"), 1);
    EXPECT_EQ(host.Calls("ap_Close3DView")[0].args, std::to_string(id));
    EXPECT_EQ(DisplayRequests().referencesDropped, dropped + 1);
    ImageHeaderType* keep = a;
    EraseItem(keep);
    EXPECT_EQ(FirstItem, nullptr);
    EXPECT_EQ(CurrentItem, nullptr);
    EXPECT_EQ(LiveBlockCount(), startBlocks);
}

TEST_F(DataListCoreTest, EraseOfTheCurrentItemMakesTheNextOneCurrent)
{
    ImageHeaderType* a = AddImage(nullptr);
    ImageHeaderType* b = AddImage(a);
    ImageHeaderType* c = AddImage(b);
    CurrentItem = b;
    EraseItem(b);
    EXPECT_EQ(CurrentItem, c);
    EXPECT_EQ(Items(), (std::vector<ImageHeaderType*>{a, c}));
}

TEST_F(DataListCoreTest, EraseOfAnotherItemLeavesTheCurrentItem)
{
    ImageHeaderType* a = AddImage(nullptr);
    ImageHeaderType* b = AddImage(a);
    CurrentItem = b;
    EraseItem(a);
    EXPECT_EQ(CurrentItem, b);
    EXPECT_EQ(FirstItem, b);
}

TEST_F(DataListCoreTest, EraseOfASpectrumFreesItsSamplesWithNo3DViewCall)
{
    ImageHeaderType* s = AddSpectrum(nullptr, 100);
    CurrentItem = s;
    EraseItem(s);
    EXPECT_EQ(FirstItem, nullptr);
    EXPECT_EQ(CurrentItem, nullptr);
    EXPECT_EQ(host.Count("ap_Close3DView"), 0);
    EXPECT_EQ(LiveBlockCount(), startBlocks);
}

TEST_F(DataListCoreTest, EraseOfAnItemOfNoClassReportsItsTypeAndKeepsIt)
{
    ImageHeaderType* a = AddImage(nullptr);
    a->ImType1 = 6;
    CurrentItem = a;
    size_t blocks = LiveBlockCount();
    EraseItem(a);
    EXPECT_EQ(Items(), (std::vector<ImageHeaderType*>{a}));
    EXPECT_EQ(CurrentItem, a);
    EXPECT_EQ(LiveBlockCount(), blocks);
    EXPECT_NE(ReadLog().find("Program error - Erase current data 6"), std::string::npos);
    a->ImType1 = 1;
}

TEST_F(DataListCoreTest, EraseOfARecordThatIsNotOnTheListIsRefused)
{
    AddImage(nullptr);
    ImageHeaderType* scratch = AllocateHeader();
    Snapshot before = TakeSnapshot();
    size_t blocks = LiveBlockCount();
    EraseItem(scratch);
    EXPECT_TRUE(TakeSnapshot() == before);
    EXPECT_EQ(LiveBlockCount(), blocks);
    EXPECT_EQ(host.Count("ap_Close3DView"), 0);
    EXPECT_NE(ReadLog().find("Program error - EraseItem"), std::string::npos);
    FreeHeader(scratch);
}

TEST_F(DataListCoreTest, EraseAllItemsEmptiesTheListFromTheHead)
{
    ImageHeaderType* a = AddImage(nullptr);
    ImageHeaderType* s = AddSpectrum(a);
    ImageHeaderType* b = AddImage(s);
    CurrentItem = b;
    const uint32_t idA = a->DataId, idB = b->DataId;
    EraseAllItems();
    EXPECT_EQ(FirstItem, nullptr);
    EXPECT_EQ(CurrentItem, nullptr);
    ASSERT_EQ(host.Count("ap_Close3DView"), 2);
    EXPECT_EQ(host.Calls("ap_Close3DView")[0].args, std::to_string(idA));
    EXPECT_EQ(host.Calls("ap_Close3DView")[1].args, std::to_string(idB));
    EXPECT_EQ(LiveBlockCount(), startBlocks);
}

TEST_F(DataListCoreTest, EraseAllItemsKeepsTheNamedItemAndMakesItCurrent)
{
    ImageHeaderType* a = AddImage(nullptr);
    ImageHeaderType* b = AddImage(a);
    AddImage(b);
    CurrentItem = a;
    uint16_t* kept = b->PixData;
    EraseAllItems(b);
    EXPECT_EQ(Items(), (std::vector<ImageHeaderType*>{b}));
    EXPECT_EQ(CurrentItem, b);
    EXPECT_EQ(b->Prev, nullptr);
    EXPECT_EQ(b->Next, nullptr);
    EXPECT_EQ(b->PixData, kept);
    EXPECT_EQ(b->PixData[255], 255);
}

TEST_F(DataListCoreTest, EraseAllItemsDropsAnItemOfNoClassSoThatTheLoopEnds)
{
    ImageHeaderType* a = AddImage(nullptr);
    ImageHeaderType* odd = AddImage(a);
    odd->ImType1 = 6;
    AddSpectrum(odd);
    CurrentItem = odd;
    EraseAllItems();
    EXPECT_EQ(FirstItem, nullptr);
    EXPECT_EQ(CurrentItem, nullptr);
    EXPECT_EQ(LiveBlockCount(), startBlocks);
    EXPECT_NE(ReadLog().find("Program error - Erase current data 6"), std::string::npos);
}

TEST_F(DataListCoreTest, EraseAllItemsWithAKeptRecordNotOnTheListIsRefused)
{
    AddImage(nullptr);
    ImageHeaderType* scratch = AllocateHeader();
    Snapshot before = TakeSnapshot();
    EraseAllItems(scratch);
    EXPECT_TRUE(TakeSnapshot() == before);
    FreeHeader(scratch);
}

TEST_F(DataListCoreTest, FinishErasesWithTheSameLoopAnItemOfNoClassIncluded)
{
    ImageHeaderType* a = AddImage(nullptr);
    ImageHeaderType* odd = AddSpectrum(a);
    odd->ImType1 = 6;
    CurrentItem = a;
    host.messageBoxAnswers = {TV_IDOK, TV_IDNO};
    EXPECT_EQ(dl_Finish(), 1);
    EXPECT_EQ(FirstItem, nullptr);
    EXPECT_EQ(CurrentItem, nullptr);
    EXPECT_EQ(LiveBlockCount(), startBlocks);
}
