// The colour parameters: the settable colours, indices 33 and 34, the current table, and the
// copy of a table into an image's own colour planes.
#include "support/test_host.h"
#include "display/colour_param.h"
#include "display/lut.h"
#include "display/palette.h"
#include "store/data_list.h"

#include <cstring>
#include <string>

class ColourParamTest : public LibraryTest {
protected:
    void SetUp() override
    {
        LibraryTest::SetUp();
        ASSERT_EQ(host.Start(), 0);
        host.ClearCalls();
    }
    ImageHeaderType* MakeCurrentItem()
    {
        ImageHeaderType* item = AllocateListItem(CurrentItem);
        EXPECT_NE(item, nullptr);
        CurrentItem = item;
        return item;
    }
    void ExpectEntry(int table, int index, int r, int g, int b)
    {
        int er = -1, eg = -1, eb = -1;
        ASSERT_EQ(GetOutputLUTEntry(table, index, &er, &eg, &eb), 0);
        EXPECT_EQ(er, r) << "table " << table << " index " << index;
        EXPECT_EQ(eg, g) << "table " << table << " index " << index;
        EXPECT_EQ(eb, b) << "table " << table << " index " << index;
    }
    void ExpectStoreEntry(int table, int index, int r, int g, int b)
    {
        int er = -1, eg = -1, eb = -1;
        ASSERT_EQ(GetColourTableEntry(table, index, &er, &eg, &eb), 0);
        EXPECT_EQ(er, r) << "store " << table << " index " << index;
        EXPECT_EQ(eg, g) << "store " << table << " index " << index;
        EXPECT_EQ(eb, b) << "store " << table << " index " << index;
    }
    bool LogHas(const std::string& text) { return ReadLog().find(text) != std::string::npos; }
    void SetParam(int table, int item, int source)
    {
        wint_ColourParamType p{};
        p.ColourTableNo = static_cast<int16_t>(table);
        p.ColourItem = static_cast<int16_t>(item);
        p.ColourSource = source;
        dl_SetColourParam(&p);
    }
};

TEST_F(ColourParamTest, RecordIsSixteenPackedBytes)
{
    EXPECT_EQ(sizeof(wint_ColourParamType), 16u);
    EXPECT_EQ(offsetof(wint_ColourParamType, ColourItem), 2u);
    EXPECT_EQ(offsetof(wint_ColourParamType, ColourSource), 4u);
    EXPECT_EQ(offsetof(wint_ColourParamType, RGBItemState1), 8u);
    EXPECT_EQ(offsetof(wint_ColourParamType, RGBItemState2), 12u);
}

TEST_F(ColourParamTest, AllEighteenSettableColoursMapToTheirIndex)
{
    const int expected[18] = {16, 17, 18, 21, 22, 23, 26, 27, 30, 32, 7, 8, 9, 10, 12, 13, 12, 14};
    for (int item = 0; item < 18; ++item) EXPECT_EQ(GetColurLUTIndex(item), expected[item]) << item;
    EXPECT_EQ(ReadLog().find("GetColurLUTIndex"), std::string::npos);
}

TEST_F(ColourParamTest, AnyOtherItemIsReportedAndGivesIndexZero)
{
    EXPECT_EQ(GetColurLUTIndex(18), 0);
    EXPECT_TRUE(LogHas("ERROR : Program error - GetColurLUTIndex (18) "));
    EXPECT_EQ(GetColurLUTIndex(-1), 0);
    EXPECT_TRUE(LogHas("ERROR : Program error - GetColurLUTIndex (-1) "));
}

TEST_F(ColourParamTest, ReadingAfterStartupGivesTheDefaults)
{
    wint_ColourParamType p;
    std::memset(&p, 0x55, sizeof p);
    dl_GetColourParam(&p);
    EXPECT_EQ(p.ColourTableNo, 3);
    EXPECT_EQ(p.ColourItem, 0);
    EXPECT_EQ(p.ColourSource, 0);
    EXPECT_EQ(p.RGBItemState1, 2);
    EXPECT_EQ(p.RGBItemState2, 2);
}

TEST_F(ColourParamTest, ReadingCopiesTheSelectedColourIntoIndex34OfTheCurrentOutputTable)
{
    ASSERT_EQ(CurrentOutputLUT(), 0);
    ExpectEntry(0, 34, 0, 0, 0);
    wint_ColourParamType p{};
    dl_GetColourParam(&p);
    ExpectEntry(0, 34, 254, 0, 0);   // item 0 is index 16
    EXPECT_EQ(host.palette[0][34], 254);
    EXPECT_EQ(PaletteRed[34], 254);
    ExpectStoreEntry(0, 34, 0, 0, 0);   // the store keeps its own index 34
}

TEST_F(ColourParamTest, ItemStatesAreOneOnlyInTrueRGBModeWithACurrentItem)
{
    wint_ColourParamType p{};
    TrueRGB = true;
    dl_GetColourParam(&p);
    EXPECT_EQ(p.RGBItemState1, 2);
    EXPECT_EQ(p.RGBItemState2, 2);
    MakeCurrentItem();
    dl_GetColourParam(&p);
    EXPECT_EQ(p.RGBItemState1, 1);
    EXPECT_EQ(p.RGBItemState2, 1);
    TrueRGB = false;
    dl_GetColourParam(&p);
    EXPECT_EQ(p.RGBItemState1, 2);
    EXPECT_EQ(p.RGBItemState2, 2);
}

TEST_F(ColourParamTest, SettingSelectsTheTableAndShowsTheItemColourAtIndex34)
{
    SetParam(5, 11, 0);   // item 11 is index 8, green
    EXPECT_EQ(ColourTableNo, 5);
    EXPECT_EQ(CurrentOutputLUT(), 5);
    ExpectEntry(5, 34, 0, 255, 0);
    EXPECT_EQ(host.palette[1][34], 255);
    EXPECT_EQ(host.palette[2][35 + 100], 50);   // table 5: blue i / 2
    wint_ColourParamType back{};
    dl_GetColourParam(&back);
    EXPECT_EQ(back.ColourTableNo, 5);
    EXPECT_EQ(back.ColourItem, 11);
    EXPECT_EQ(back.ColourSource, 0);
}

TEST_F(ColourParamTest, SettingTakesTheTableNumberModuloEight)
{
    SetParam(14, 0, 0);
    EXPECT_EQ(ColourTableNo, 6);
    EXPECT_EQ(CurrentOutputLUT(), 6);
    SetParam(-3, 0, 0);
    EXPECT_EQ(ColourTableNo, 5);
    EXPECT_EQ(CurrentOutputLUT(), 5);
}

TEST_F(ColourParamTest, SettingABadItemReportsItAndShowsColourZero)
{
    SetParam(4, 18, 0);
    EXPECT_TRUE(LogHas("GetColurLUTIndex (18) "));
    ExpectEntry(4, 34, 255, 255, 255);
}

TEST_F(ColourParamTest, SourceTwoInTrueRGBModePutsTheSelectedTableIntoTheImage)
{
    ImageHeaderType* item = MakeCurrentItem();
    std::memset(item->LutRed, 0, 256);
    TrueRGB = true;
    SetParam(6, 0, 2);
    EXPECT_EQ(item->LutRed[35 + 100], 200);
    EXPECT_EQ(item->LutGreen[35 + 100], 100);
    EXPECT_EQ(item->LutBlue[35 + 100], 0);
    EXPECT_EQ(item->LutGreen[13], 170);
}

TEST_F(ColourParamTest, SourceTwoWithoutTrueRGBLeavesTheImageAlone)
{
    ImageHeaderType* item = MakeCurrentItem();
    std::memset(item->LutRed, 9, 256);
    SetParam(6, 0, 2);
    EXPECT_EQ(item->LutRed[35 + 100], 9);
    TrueRGB = true;
    SetParam(6, 0, 1);
    EXPECT_EQ(item->LutRed[35 + 100], 9);
}

TEST_F(ColourParamTest, ColourSetSetsIndex33InTheOutputTableAndTheStore)
{
    SetParam(6, 0, 0);
    host.ClearCalls();
    dl_pb_ColourSet(10, 20, 30);
    ExpectEntry(6, 33, 10, 20, 30);
    ExpectStoreEntry(6, 33, 10, 20, 30);
    EXPECT_EQ(host.palette[0][33], 10);
    EXPECT_EQ(host.palette[2][33], 30);
    // It survives selecting the table again, since the store has it too.
    SetParam(6, 0, 0);
    ExpectEntry(6, 33, 10, 20, 30);
}

TEST_F(ColourParamTest, ColourSetWithAValueOutsideTheRangeStoresNothing)
{
    SetParam(6, 0, 0);
    dl_pb_ColourSet(10, 256, 30);
    EXPECT_EQ(host.messageBoxes.back().text, "Invalid parameter passed to FG routine");
    dl_pb_ColourSet(-1, 0, 0);
    EXPECT_EQ(host.messageBoxes.size(), 2u);
    ExpectEntry(6, 33, 0, 0, 0);
    ExpectStoreEntry(6, 33, 0, 0, 0);
}

TEST_F(ColourParamTest, ColourDefineSetsTheItemAndIndex34AndLogs)
{
    SetParam(6, 4, 0);   // item 4 is index 22
    dl_pb_ColourDefine(1, 2, 3);
    ExpectEntry(6, 22, 1, 2, 3);
    ExpectEntry(6, 34, 1, 2, 3);
    ExpectStoreEntry(6, 22, 1, 2, 3);
    ExpectStoreEntry(6, 34, 0, 0, 0);
    EXPECT_TRUE(LogHas("ColourDefine (1 2 3)\r\n"));
    EXPECT_EQ(host.palette[0][22], 1);
    EXPECT_EQ(host.palette[2][34], 3);
}

TEST_F(ColourParamTest, ColourDefineWithAValueOutsideTheRangeStoresAndLogsNothing)
{
    SetParam(6, 4, 0);
    dl_pb_ColourDefine(1, 2, 300);
    EXPECT_EQ(host.messageBoxes.back().text, "Invalid parameter passed to FG routine");
    ExpectEntry(6, 22, 255, 0, 0);
    ExpectStoreEntry(6, 22, 255, 0, 0);
    EXPECT_EQ(ReadLog().find("ColourDefine ("), std::string::npos);
}

TEST_F(ColourParamTest, CopyToImageCopiesTheCurrentTableOfTheStore)
{
    ImageHeaderType* item = MakeCurrentItem();
    SetParam(4, 0, 0);
    ASSERT_EQ(SetColourTableEntry(4, 200, 7, 8, 9), 0);
    dl_pb_Colour_CopyToImage();
    EXPECT_EQ(item->LutRed[200], 7);
    EXPECT_EQ(item->LutGreen[200], 8);
    EXPECT_EQ(item->LutBlue[200], 9);
    EXPECT_EQ(item->LutGreen[35 + 100], 150);   // table 4: 3i / 2
    EXPECT_EQ(item->LutBlue[35 + 100], 200);
    ASSERT_EQ(host.messageBoxes.size(), 1u);
    EXPECT_EQ(host.messageBoxes[0].text, "Look up table copied to image");
    EXPECT_EQ(host.messageBoxes[0].style, TV_MB_OK | TV_MB_ICONINFORMATION | TV_MB_TASKMODAL);
}

TEST_F(ColourParamTest, CopyToImageWithoutACurrentItemIsAProgramError)
{
    dl_pb_Colour_CopyToImage();
    EXPECT_TRUE(LogHas("ERROR : Program error - dl_pb_Colour_CopyToImage "));
    EXPECT_EQ(ReadLog().find("Look up table copied"), std::string::npos);
}

TEST_F(ColourParamTest, ANullRecordIsAProgramErrorAndChangesNothing)
{
    dl_GetColourParam(nullptr);
    EXPECT_TRUE(LogHas("Program error - dl_GetColourParam "));
    dl_SetColourParam(nullptr);
    EXPECT_TRUE(LogHas("Program error - dl_SetColourParam "));
    EXPECT_EQ(ColourTableNo, 3);
    EXPECT_EQ(CurrentOutputLUT(), 0);
}
