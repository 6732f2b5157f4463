// The data list entry points: the empty list, stepping, stepping by class, the erase questions,
// the current item's bits, and the traces.
#include "test_data_list_items.h"
#include "store/data_list_display.h"

#include <cstring>
#include <string>

namespace {

std::string Id(const ImageHeaderType* item) { return std::to_string(item->DataId); }

} // namespace

class DataListCommandTest : public DataListTest {
protected:
    // The one message box of a question: its text, Yes/No buttons, default No, the product
    // caption.
    void ExpectQuestion(const std::string& text)
    {
        ASSERT_EQ(host.messageBoxes.size(), 1u);
        const MessageBoxCall& box = host.messageBoxes[0];
        EXPECT_EQ(box.text, text);
        EXPECT_EQ(box.caption, "Tavrin Processing");
        EXPECT_EQ(box.style & TV_MB_TYPEMASK, TV_MB_YESNO);
        EXPECT_EQ(box.style & TV_MB_DEFMASK, TV_MB_DEFBUTTON2);
        EXPECT_EQ(box.style & TV_MB_TASKMODAL, TV_MB_TASKMODAL);
    }
    static size_t Occurrences(const std::string& text, const std::string& part)
    {
        size_t n = 0;
        for (size_t at = text.find(part); at != std::string::npos; at = text.find(part, at + 1)) ++n;
        return n;
    }
    using V = std::vector<ImageHeaderType*>;
};

// ---- the empty list ----

TEST_F(DataListCommandTest, EmptyListTheStepsAndTheCloseCommandsReport33536)
{
    void (*const commands[])() = {dl_NextData1,        dl_PreviousData1, dl_NextDataType1,
                                  dl_PreviousDataType1, dl_EraseDataNext, dl_EraseDataPrevious};
    for (auto command : commands) command();
    EXPECT_EQ(BoxTexts(), std::vector<std::string>(6, "No images in memory"));
    EXPECT_EQ(DisplayRequests().shown, 0);
    EXPECT_EQ(FirstItem, nullptr);
    EXPECT_EQ(CurrentItem, nullptr);
}

TEST_F(DataListCommandTest, EmptyListTheOtherEntryPointsReturnQuietly)
{
    char text[512];
    std::strcpy(text, "old");
    EXPECT_EQ(dl_GetDataDescriptor(0, text, 0, 16), 4);
    EXPECT_STREQ(text, "");
    EXPECT_EQ(dl_GetCurrentImagePtr(), nullptr);
    dl_SetDataItem(0);
    dl_EraseAllData();
    dl_EraseAllDataExceptCurrent();
    dl_SetCurrentImagePtr(nullptr);
    EXPECT_EQ(dl_IsCurrentDataTypeImage(), 0);
    EXPECT_TRUE(host.messageBoxes.empty());
    EXPECT_EQ(DisplayRequests().shown, 0);
    EXPECT_EQ(DisplayRequests().cleared, 0);
    EXPECT_EQ(CurrentItem, nullptr);
}

// ---- the current item ----

TEST_F(DataListCommandTest, GetAndSetTheCurrentItemWithNoRedraw)
{
    ImageHeaderType* a = AddImage(nullptr);
    ImageHeaderType* b = AddSpectrum(a);
    CurrentItem = a;
    EXPECT_EQ(dl_GetCurrentImagePtr(), a);
    dl_SetCurrentImagePtr(b);
    EXPECT_EQ(CurrentItem, b);
    EXPECT_EQ(dl_GetCurrentImagePtr(), b);
    EXPECT_EQ(DisplayRequests().shown, 0);
    EXPECT_TRUE(host.messageBoxes.empty());
}

TEST_F(DataListCommandTest, SetCurrentImagePtrRefusesARecordThatIsNotOnTheList)
{
    ImageHeaderType* a = AddImage(nullptr);
    CurrentItem = a;
    ImageHeaderType* scratch = AllocateHeader();
    dl_SetCurrentImagePtr(scratch);
    EXPECT_EQ(CurrentItem, a);
    dl_SetCurrentImagePtr(nullptr);
    EXPECT_EQ(CurrentItem, a);
    EXPECT_EQ(Occurrences(ReadLog(), "Program error - SetCurrentImagePtr"), 2u);
    FreeHeader(scratch);
}

TEST_F(DataListCommandTest, SetDataItemMakesTheNthItemCurrentAndShowsIt)
{
    ImageHeaderType* a = AddImage(nullptr);
    ImageHeaderType* s = AddSpectrum(a);
    ImageHeaderType* b = AddImage(s);
    CurrentItem = a;
    dl_SetDataItem(1);
    EXPECT_EQ(CurrentItem, s);
    EXPECT_EQ(DisplayRequests().shown, 1);
    EXPECT_EQ(DisplayRequests().lastShown, s);
    dl_SetDataItem(2);
    EXPECT_EQ(CurrentItem, b);
    dl_SetDataItem(3);   // no such item: nothing happens
    EXPECT_EQ(CurrentItem, b);
    EXPECT_EQ(DisplayRequests().shown, 2);
}

// ---- stepping ----

TEST_F(DataListCommandTest, ASingleItemNextDataStaysOnItAndRedrawsIt)
{
    ImageHeaderType* a = AddImage(nullptr);
    CurrentItem = a;
    dl_NextData1();
    EXPECT_EQ(CurrentItem, a);
    EXPECT_EQ(DisplayRequests().shown, 1);
    EXPECT_EQ(DisplayRequests().lastShown, a);
    EXPECT_NE(ReadLog().find("Next Data\r\n"), std::string::npos);
    EXPECT_TRUE(host.messageBoxes.empty());
}

TEST_F(DataListCommandTest, NextAndPreviousDataStepAlongTheListAndStopAtTheEnds)
{
    ImageHeaderType* a = AddImage(nullptr);
    ImageHeaderType* s = AddSpectrum(a);
    ImageHeaderType* b = AddImage(s);
    CurrentItem = a;
    dl_NextData1();
    EXPECT_EQ(CurrentItem, s);
    dl_NextData1();
    EXPECT_EQ(CurrentItem, b);
    dl_NextData1();
    EXPECT_EQ(CurrentItem, b);
    dl_PreviousData1();
    EXPECT_EQ(CurrentItem, s);
    dl_PreviousData1();
    dl_PreviousData1();
    EXPECT_EQ(CurrentItem, a);
    EXPECT_EQ(DisplayRequests().shown, 6);
    std::string log = ReadLog();
    EXPECT_EQ(Occurrences(log, "Next Data\r\n"), 3u);
    EXPECT_EQ(Occurrences(log, "Previous Data\r\n"), 3u);
}

TEST_F(DataListCommandTest, NextDataTypeFromTheFirstImageLandsOnTheSecondImage)
{
    ImageHeaderType* a = AddImage(nullptr);
    ImageHeaderType* s = AddSpectrum(a);
    ImageHeaderType* b = AddImage(s);
    CurrentItem = a;
    dl_NextDataType1();
    EXPECT_EQ(CurrentItem, b);
    EXPECT_EQ(DisplayRequests().shown, 1);
    EXPECT_EQ(DisplayRequests().lastShown, b);
    EXPECT_NE(ReadLog().find("Next Type\r\n"), std::string::npos);
}

TEST_F(DataListCommandTest, NextDataTypeFromTheSpectrumBetweenTwoImagesStays)
{
    ImageHeaderType* a = AddImage(nullptr);
    ImageHeaderType* s = AddSpectrum(a);
    AddImage(s);
    CurrentItem = s;
    dl_NextDataType1();
    EXPECT_EQ(CurrentItem, s);
    dl_PreviousDataType1();
    EXPECT_EQ(CurrentItem, s);
    EXPECT_EQ(DisplayRequests().shown, 2);   // redrawn in any case
    EXPECT_EQ(DisplayRequests().lastShown, s);
    std::string log = ReadLog();
    EXPECT_NE(log.find("Next Type\r\n"), std::string::npos);
    EXPECT_NE(log.find("Previous Type\r\n"), std::string::npos);
}

TEST_F(DataListCommandTest, PreviousDataTypeFromTheSecondImageLandsOnTheFirstImage)
{
    ImageHeaderType* a = AddImage(nullptr);
    ImageHeaderType* s = AddSpectrum(a);
    ImageHeaderType* b = AddImage(s);
    CurrentItem = b;
    dl_PreviousDataType1();
    EXPECT_EQ(CurrentItem, a);
    dl_PreviousDataType1();   // the head: stays
    EXPECT_EQ(CurrentItem, a);
}

TEST_F(DataListCommandTest, DataTypeStepsCompareTheItemTypeNotOnlyImageOrNot)
{
    ImageHeaderType* s = AddSpectrum(nullptr, 8, 2);
    ImageHeaderType* prof = AddSpectrum(s, 8, 3);
    ImageHeaderType* s2 = AddSpectrum(prof, 8, 2);
    CurrentItem = s;
    dl_NextDataType1();
    EXPECT_EQ(CurrentItem, s2);
    CurrentItem = prof;
    dl_NextDataType1();
    EXPECT_EQ(CurrentItem, prof);
}

// ---- closing one item ----

TEST_F(DataListCommandTest, EraseDataNextAsksAboutAnImageAndOnNoKeepsIt)
{
    ImageHeaderType* a = AddImage(nullptr);
    CurrentItem = a;
    Snapshot before = TakeSnapshot();
    host.messageBoxAnswers = {TV_IDNO};
    dl_EraseDataNext();
    ExpectQuestion("Close current image ?  ");
    EXPECT_TRUE(TakeSnapshot() == before);
    EXPECT_EQ(ReadLog().find("Erase.\r\n"), std::string::npos);
    EXPECT_EQ(DisplayRequests().shown, 0);
}

TEST_F(DataListCommandTest, EraseDataPreviousAsksAboutASpectrumAndTheDefaultAnswerKeepsIt)
{
    ImageHeaderType* s = AddSpectrum(nullptr);
    CurrentItem = s;
    Snapshot before = TakeSnapshot();
    dl_EraseDataPrevious();   // no queued answer: the default button, No
    ExpectQuestion("Close current spectrum ?  ");
    EXPECT_EQ(host.messageBoxes[0].answer, TV_IDNO);
    EXPECT_TRUE(TakeSnapshot() == before);
}

TEST_F(DataListCommandTest, EraseDataNextOnYesErasesAndTheNextItemStandsIn)
{
    ImageHeaderType* a = AddImage(nullptr);
    ImageHeaderType* b = AddImage(a);
    ImageHeaderType* c = AddImage(b);
    CurrentItem = b;
    host.messageBoxAnswers = {TV_IDYES};
    dl_EraseDataNext();
    ExpectQuestion("Close current image ?  ");
    EXPECT_EQ(Items(), (V{a, c}));
    EXPECT_EQ(CurrentItem, c);
    EXPECT_EQ(DisplayRequests().shown, 1);
    EXPECT_EQ(DisplayRequests().lastShown, c);
    EXPECT_EQ(DisplayRequests().cleared, 0);
    EXPECT_EQ(DisplayRequests().cachesClosed, 1);
    EXPECT_NE(ReadLog().find("Erase.\r\n"), std::string::npos);
}

TEST_F(DataListCommandTest, EraseDataNextOfTheLastItemLeavesThePreviousOne)
{
    ImageHeaderType* a = AddImage(nullptr);
    ImageHeaderType* b = AddSpectrum(a);
    CurrentItem = b;
    host.messageBoxAnswers = {TV_IDYES};
    dl_EraseDataNext();
    ExpectQuestion("Close current spectrum ?  ");
    EXPECT_EQ(Items(), (V{a}));
    EXPECT_EQ(CurrentItem, a);
    EXPECT_EQ(DisplayRequests().lastShown, a);
}

TEST_F(DataListCommandTest, EraseDataNextOfTheOnlyItemClearsTheDisplay)
{
    ImageHeaderType* a = AddImage(nullptr);
    CurrentItem = a;
    host.messageBoxAnswers = {TV_IDYES};
    dl_EraseDataNext();
    EXPECT_EQ(FirstItem, nullptr);
    EXPECT_EQ(CurrentItem, nullptr);
    EXPECT_EQ(DisplayRequests().shown, 0);
    EXPECT_EQ(DisplayRequests().cleared, 1);
    EXPECT_EQ(DisplayRequests().cachesClosed, 1);
    EXPECT_EQ(LiveBlockCount(), startBlocks);
}

TEST_F(DataListCommandTest, EraseDataPreviousOnYesLetsThePreviousItemStandIn)
{
    ImageHeaderType* a = AddImage(nullptr);
    ImageHeaderType* b = AddImage(a);
    ImageHeaderType* c = AddImage(b);
    CurrentItem = b;
    host.messageBoxAnswers = {TV_IDYES};
    dl_EraseDataPrevious();
    EXPECT_EQ(Items(), (V{a, c}));
    EXPECT_EQ(CurrentItem, a);
    EXPECT_EQ(DisplayRequests().shown, 1);
    EXPECT_EQ(DisplayRequests().lastShown, a);
    EXPECT_EQ(DisplayRequests().cachesClosed, 0);
    EXPECT_NE(ReadLog().find("Erase.\r\n"), std::string::npos);
}

TEST_F(DataListCommandTest, EraseDataPreviousOfTheLastItemLeavesItsOwnPredecessor)
{
    ImageHeaderType* a = AddImage(nullptr);
    ImageHeaderType* b = AddImage(a);
    ImageHeaderType* c = AddImage(b);
    CurrentItem = c;
    host.messageBoxAnswers = {TV_IDYES};
    dl_EraseDataPrevious();
    EXPECT_EQ(Items(), (V{a, b}));
    EXPECT_EQ(CurrentItem, b);
}

TEST_F(DataListCommandTest, EraseDataPreviousOfTheHeadLetsTheNextItemStandIn)
{
    ImageHeaderType* a = AddImage(nullptr);
    ImageHeaderType* b = AddImage(a);
    CurrentItem = a;
    host.messageBoxAnswers = {TV_IDYES};
    dl_EraseDataPrevious();
    EXPECT_EQ(Items(), (V{b}));
    EXPECT_EQ(CurrentItem, b);
    EXPECT_EQ(DisplayRequests().lastShown, b);
}

TEST_F(DataListCommandTest, EraseDataPreviousOfTheOnlyItemClearsTheDisplay)
{
    CurrentItem = AddSpectrum(nullptr);
    host.messageBoxAnswers = {TV_IDYES};
    dl_EraseDataPrevious();
    EXPECT_EQ(FirstItem, nullptr);
    EXPECT_EQ(DisplayRequests().cleared, 1);
    EXPECT_EQ(LiveBlockCount(), startBlocks);
}

TEST_F(DataListCommandTest, EraseDataNextOfAnItemOfNoClassKeepsItAndShowsNothing)
{
    ImageHeaderType* a = AddImage(nullptr);
    a->ImType1 = 6;
    CurrentItem = a;
    host.messageBoxAnswers = {TV_IDYES};
    dl_EraseDataNext();
    EXPECT_EQ(Items(), (V{a}));
    EXPECT_EQ(CurrentItem, a);
    EXPECT_EQ(DisplayRequests().shown, 0);
    EXPECT_EQ(DisplayRequests().cleared, 0);
    EXPECT_NE(ReadLog().find("Program error - Erase current data 6"), std::string::npos);
    a->ImType1 = 1;
}

// ---- closing all ----

TEST_F(DataListCommandTest, EraseAllDataAsksAndOnNoKeepsEverything)
{
    ImageHeaderType* a = AddImage(nullptr);
    AddSpectrum(a);
    CurrentItem = a;
    Snapshot before = TakeSnapshot();
    host.messageBoxAnswers = {TV_IDNO};
    dl_EraseAllData();
    ExpectQuestion("Close all data ?  ");
    EXPECT_TRUE(TakeSnapshot() == before);
    EXPECT_EQ(ReadLog().find("Close all data."), std::string::npos);
    EXPECT_EQ(DisplayRequests().cleared, 0);
}

TEST_F(DataListCommandTest, EraseAllDataOnYesErasesEverythingAndClearsTheDisplay)
{
    ImageHeaderType* a = AddImage(nullptr);
    ImageHeaderType* s = AddSpectrum(a);
    AddImage(s);
    CurrentItem = s;
    host.messageBoxAnswers = {TV_IDYES};
    dl_EraseAllData();
    ExpectQuestion("Close all data ?  ");
    EXPECT_EQ(FirstItem, nullptr);
    EXPECT_EQ(CurrentItem, nullptr);
    EXPECT_EQ(DisplayRequests().cleared, 1);
    EXPECT_EQ(LiveBlockCount(), startBlocks);
    EXPECT_EQ(host.Count("ap_Close3DView"), 2);
    EXPECT_NE(ReadLog().find("Close all data.\r\n"), std::string::npos);
}

TEST_F(DataListCommandTest, EraseAllDataExceptCurrentAsksAndOnNoKeepsEverything)
{
    ImageHeaderType* a = AddImage(nullptr);
    AddImage(a);
    CurrentItem = a;
    Snapshot before = TakeSnapshot();
    host.messageBoxAnswers = {TV_IDNO};
    dl_EraseAllDataExceptCurrent();
    ExpectQuestion("Close all data except current ?  ");
    EXPECT_TRUE(TakeSnapshot() == before);
    EXPECT_EQ(ReadLog().find("Close all data except current."), std::string::npos);
}

TEST_F(DataListCommandTest, EraseAllDataExceptCurrentOnYesErasesTheOthersFromTheHead)
{
    ImageHeaderType* a = AddImage(nullptr);
    ImageHeaderType* b = AddImage(a);
    ImageHeaderType* s = AddSpectrum(b);
    ImageHeaderType* c = AddImage(s);
    CurrentItem = b;
    const uint32_t idA = a->DataId, idC = c->DataId;
    uint16_t* pixels = b->PixData;
    host.messageBoxAnswers = {TV_IDYES};
    dl_EraseAllDataExceptCurrent();
    ExpectQuestion("Close all data except current ?  ");
    EXPECT_EQ(Items(), (V{b}));
    EXPECT_EQ(CurrentItem, b);
    EXPECT_EQ(b->PixData, pixels);
    EXPECT_EQ(b->Prev, nullptr);
    EXPECT_EQ(b->Next, nullptr);
    ASSERT_EQ(host.Count("ap_Close3DView"), 2);
    EXPECT_EQ(host.Calls("ap_Close3DView")[0].args, std::to_string(idA));
    EXPECT_EQ(host.Calls("ap_Close3DView")[1].args, std::to_string(idC));
    EXPECT_NE(ReadLog().find("Close all data except current.\r\n"), std::string::npos);
    EXPECT_EQ(DisplayRequests().shown, 0);
}

// ---- the current item's bits ----

TEST_F(DataListCommandTest, BitsOfALoneImage)
{
    CurrentItem = AddImage(nullptr);
    EXPECT_EQ(dl_IsCurrentDataTypeImage(), TV_DATA_IMAGE | TV_DATA_IMAGE_CLASS);
    EXPECT_EQ(dl_IsCurrentDataTypeImage(), 0x12);
}

TEST_F(DataListCommandTest, BitsOfAnImageWithFftData)
{
    ImageHeaderType* a = AddImage(nullptr);
    SetFFTBlock(a, static_cast<float*>(ecalloc(16 * 16 * 2, sizeof(float))));
    CurrentItem = a;
    EXPECT_EQ(dl_IsCurrentDataTypeImage(), 0x16);
}

TEST_F(DataListCommandTest, BitsOfAnImageWithAMappingSet)
{
    ImageHeaderType* a = AddImage(nullptr);
    SetCITSBlock(a, StandInMappingSet());
    a->MapType = 15;
    CurrentItem = a;
    // 0x800 for a force-curve mapping; 0x1000 and 0x2000 read the set's side, which the
    // stand-in set holds as 0.
    EXPECT_EQ(dl_IsCurrentDataTypeImage(), 0x81A);
}

TEST_F(DataListCommandTest, BitsOfAnImageWithAttachedSpectra)
{
    ImageHeaderType* a = AddImage(nullptr);
    ImageHeaderType* attached = AllocateHeader();
    attached->ImType1 = 2;
    SetSPSRefChain(a, attached);
    a->nSPSRefData = 1;
    CurrentItem = a;
    EXPECT_EQ(dl_IsCurrentDataTypeImage(), 0x412);
}

TEST_F(DataListCommandTest, BitsOfASpectrumAndOfASpectrumThatBelongsToAnImage)
{
    ImageHeaderType* a = AddImage(nullptr);
    ImageHeaderType* s = AddSpectrum(a);
    CurrentItem = s;
    EXPECT_EQ(dl_IsCurrentDataTypeImage(), TV_DATA_SPECTRUM | TV_DATA_NOT_FIRST);
    s->SPSOwnerId = static_cast<int32_t>(a->DataId);
    EXPECT_EQ(dl_IsCurrentDataTypeImage(), 0x4021);
    s->SPSOwnerId = 0;   // an owner id of 0 is an owner too
    EXPECT_EQ(dl_IsCurrentDataTypeImage(), 0x4021);
}

TEST_F(DataListCommandTest, BitsOfThePositionAndOfTheSameClassAround)
{
    ImageHeaderType* a = AddImage(nullptr);
    ImageHeaderType* b = AddImage(a);
    ImageHeaderType* c = AddImage(b);
    CurrentItem = a;
    EXPECT_EQ(dl_IsCurrentDataTypeImage(), 0x12 | 0x80 | 0x100);
    CurrentItem = b;
    EXPECT_EQ(dl_IsCurrentDataTypeImage(), 0x12 | 0x20 | 0x40 | 0x80 | 0x100);
    CurrentItem = c;
    EXPECT_EQ(dl_IsCurrentDataTypeImage(), 0x12 | 0x20 | 0x40);
}

TEST_F(DataListCommandTest, BitsOfTheSameClassLookPastItemsOfAnotherClass)
{
    ImageHeaderType* a = AddImage(nullptr);
    ImageHeaderType* s = AddSpectrum(a);
    ImageHeaderType* prof = AddSpectrum(s, 8, 3);
    ImageHeaderType* b = AddImage(prof);
    CurrentItem = a;
    EXPECT_EQ(dl_IsCurrentDataTypeImage(), 0x12 | 0x80 | 0x100);
    CurrentItem = s;   // the profile is of another type
    EXPECT_EQ(dl_IsCurrentDataTypeImage(), 0x1 | 0x20 | 0x80);
    CurrentItem = b;
    EXPECT_EQ(dl_IsCurrentDataTypeImage(), 0x12 | 0x20 | 0x40);
}

TEST_F(DataListCommandTest, BitsOfAnItemOfNoClassAreOnlyThoseOfItsPlace)
{
    ImageHeaderType* a = AddImage(nullptr);
    ImageHeaderType* odd = AddImage(a);
    AddImage(odd);
    odd->ImType1 = 6;
    CurrentItem = odd;
    EXPECT_EQ(dl_IsCurrentDataTypeImage(), 0x20 | 0x80);
    odd->ImType1 = 1;
}

// ---- traces ----

class DataListTraceTest : public DataListTest {
protected:
    void SetUp() override
    {
        LibraryTest::SetUp();
        ASSERT_EQ(host.Start("tavrin.exe /DBG"), 0);
        host.ClearCalls();
        startBlocks = LiveBlockCount();
    }
};

TEST_F(DataListTraceTest, EveryEntryPointTracesItsText)
{
    ImageHeaderType* a = AddImage(nullptr, 16, "C:\\d\\one.tif", "First");
    ImageHeaderType* b = AddImage(a, 16, "two.tif", "Second");
    CurrentItem = a;
    char text[512];
    EXPECT_EQ(dl_GetDataDescriptor(1, text, 0, 16), 2);
    EXPECT_EQ(dl_GetDataDescriptor(0, text, 1, 32), 1);
    EXPECT_EQ(dl_GetDataDescriptor(5, text, 0, 16), 4);
    dl_SetDataItem(1);
    EXPECT_EQ(CurrentItem, b);
    dl_GetCurrentImagePtr();
    dl_SetCurrentImagePtr(a);
    dl_NextData1();
    dl_PreviousData1();
    dl_NextDataType1();
    dl_PreviousDataType1();
    dl_IsCurrentDataTypeImage();
    host.messageBoxAnswers = {TV_IDNO, TV_IDNO, TV_IDNO, TV_IDNO};
    dl_EraseDataNext();
    dl_EraseDataPrevious();
    dl_EraseAllData();
    dl_EraseAllDataExceptCurrent();
    std::string log = ReadLog();
    const std::string lines[] = {
        "2=dl_GetDataDesc(1,I:(" + Id(b) + ") two.  \"Second\")  (n=1 ms=0 md=16)\r\n",
        "1=dl_GetDataDesc(0,(" + Id(a) + ") one.  \"First\")  (n=0 ms=1 md=32)\r\n",
        "4=dl_GetDataDesc(5,)  (n=5 ms=0 md=16)\r\n",
        "SetDataItem 1\r\n",
        "dl_GetCurrentImagePtr\r\n",
        "dl_SetCurrentImagePtr\r\n",
        "dl_NextData1\r\n",
        "dl_PreviousData1\r\n",
        "dl_NextDataType1\r\n",
        "dl_PreviousDataType1\r\n",
        "dl_IsCurrentDataTypeImage\r\n",
        "dl_EraseDataNext\r\n",
        "dl_EraseDataPrevious\r\n",
        "DLL_EraseAllData\r\n",
        "dl_EraseAllDataExceptCurrent\r\n",
    };
    size_t at = 0;
    for (const std::string& line : lines) {
        size_t found = log.find(line, at);
        EXPECT_NE(found, std::string::npos) << line;
        if (found != std::string::npos) at = found + line.size();
    }
}
