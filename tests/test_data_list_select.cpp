// Selection on the data list: the seven modes, the descriptor texts, selection by position and
// by the host's dialog.
#include "test_data_list_items.h"
#include "store/data_list_display.h"
#include "store/data_list_select.h"

#include <cstring>
#include <string>

namespace {

std::string Id(const ImageHeaderType* item) { return std::to_string(item->DataId); }

} // namespace

class DataListSelectTest : public DataListTest {
protected:
    // A mixed list:
    //   a  image 16x16, DataSource 1, AcqMode 11       - a mapping topography
    //   s  spectrum of 8 points, AcqMode 3
    //   f  image 32x32, DataSource 2, with FFT data
    //   c  image 16x16, DataSource 1, AcqMode 51, with a mapping set
    //   p  profile of 8 points, AcqMode 5, DataSource 7
    //   d  image 16x16, DataSource 1, AcqMode 51       - a mapping topography
    void BuildMixedList()
    {
        a = AddImage(nullptr, 16, "C:\\data\\topo.tif", "Topo");
        a->AcqMode = 11;
        s = AddSpectrum(a, 8, 2, "C:\\data\\curve.spc", "I-V");
        s->AcqMode = 3;
        f = AddImage(s, 32, "fft.tif", "Power");
        f->DataSource = 2;
        SetFFTBlock(f, static_cast<float*>(ecalloc(32 * 32 * 2, sizeof(float))));
        c = AddImage(f, 16, "/home/u/map.v2.tif", "Map");
        c->AcqMode = 51;
        SetCITSBlock(c, StandInMappingSet());
        p = AddSpectrum(c, 8, 3, "line", "Profile");
        p->AcqMode = 5;
        p->DataSource = 7;
        d = AddImage(p, 16, "", "Lm");
        d->AcqMode = 51;
        CurrentItem = a;
    }

    // Every item counted in a mode, from n = 0 until the first null.
    static std::vector<ImageHeaderType*> Selected(int md, const ImageHeaderType* reference, int sameSize = 0,
                                                  int matchClass = 0, int matchSource = 0)
    {
        std::vector<ImageHeaderType*> items;
        for (int n = 0; n < 100; ++n) {
            ImageHeaderType* item = GetPtrData2DataItem(n, sameSize, md, matchClass, matchSource, reference);
            if (!item) break;
            items.push_back(item);
        }
        return items;
    }

    ImageHeaderType *a = nullptr, *s = nullptr, *f = nullptr, *c = nullptr, *p = nullptr, *d = nullptr;
    using V = std::vector<ImageHeaderType*>;
};

TEST_F(DataListSelectTest, Mode1CountsPlainImagesOfAcqMode11Or51WithoutAMappingSet)
{
    BuildMixedList();
    EXPECT_EQ(Selected(1, a), (V{a, d}));
}

TEST_F(DataListSelectTest, Mode2CountsTheSpectrumClasses)
{
    BuildMixedList();
    EXPECT_EQ(Selected(2, a), (V{s, p}));
}

TEST_F(DataListSelectTest, Mode4CountsImagesOfTheReferenceDataSource)
{
    BuildMixedList();
    EXPECT_EQ(Selected(4, a), (V{a, c, d}));
    EXPECT_EQ(Selected(4, f), (V{f}));
}

TEST_F(DataListSelectTest, Mode8CountsItemsOfTheReferenceClassImageOrNot)
{
    BuildMixedList();
    EXPECT_EQ(Selected(8, a), (V{a, f, c, d}));
    EXPECT_EQ(Selected(8, s), (V{s, p}));
}

TEST_F(DataListSelectTest, Mode16CountsEverything)
{
    BuildMixedList();
    EXPECT_EQ(Selected(16, a), (V{a, s, f, c, p, d}));
}

TEST_F(DataListSelectTest, Mode32CountsImages)
{
    BuildMixedList();
    EXPECT_EQ(Selected(32, s), (V{a, f, c, d}));
}

TEST_F(DataListSelectTest, Mode64CountsNothingWhileTheFrameStoresHoldNothing)
{
    BuildMixedList();
    EXPECT_EQ(Selected(64, a), V{});
}

TEST_F(DataListSelectTest, AnotherModeIsLoggedAndCountsAsEverything)
{
    BuildMixedList();
    EXPECT_EQ(GetPtrData2DataItem(4, 0, 3, 0, 0, a), p);
    EXPECT_EQ(Selected(99, a), (V{a, s, f, c, p, d}));
    std::string log = ReadLog();
    EXPECT_NE(log.find("GetPtrData2DataItem data_type=3\r\n"), std::string::npos);
    EXPECT_NE(log.find("GetPtrData2DataItem data_type=99\r\n"), std::string::npos);
    EXPECT_TRUE(host.messageBoxes.empty());
}

TEST_F(DataListSelectTest, TheSameSizeFlagSkipsItemsOfAnotherSize)
{
    BuildMixedList();
    EXPECT_EQ(Selected(16, a, 1), (V{a, c, d}));
    EXPECT_EQ(Selected(16, s, 1), (V{s, p}));
    EXPECT_EQ(Selected(32, f, 1), (V{f}));
}

TEST_F(DataListSelectTest, TheMatchClassFlagSkipsSpectraOfAnotherAcqMode)
{
    BuildMixedList();
    EXPECT_EQ(Selected(2, s, 0, 1), (V{s}));
    EXPECT_EQ(Selected(2, p, 0, 1), (V{p}));
    // Images are not spectra: the flag leaves them alone.
    EXPECT_EQ(Selected(32, a, 0, 1), (V{a, f, c, d}));
}

TEST_F(DataListSelectTest, TheMatchSourceFlagSkipsItemsOfAnotherDataSource)
{
    BuildMixedList();
    EXPECT_EQ(Selected(16, a, 0, 0, 1), (V{a, s, c, d}));
    EXPECT_EQ(Selected(16, p, 0, 0, 1), (V{p}));
}

TEST_F(DataListSelectTest, NMinusOneWalksTheWholeListAndAnswersNull)
{
    BuildMixedList();
    EXPECT_EQ(GetPtrData2DataItem(-1, 0, 16, 0, 0, a), nullptr);
    EXPECT_EQ(ReadLog().find("GetPtr2DataItem"), std::string::npos);
}

TEST_F(DataListSelectTest, NBelowMinusOneIsReportedAndAnswersNull)
{
    BuildMixedList();
    EXPECT_EQ(GetPtrData2DataItem(-2, 0, 16, 0, 0, a), nullptr);
    EXPECT_NE(ReadLog().find("Program error - GetPtr2DataItem (n=-2)"), std::string::npos);
}

TEST_F(DataListSelectTest, ANullReferenceAnswersNull)
{
    BuildMixedList();
    EXPECT_EQ(GetPtrData2DataItem(0, 0, 16, 0, 0, nullptr), nullptr);
}

TEST_F(DataListSelectTest, NPastTheLastCountedItemAnswersNull)
{
    BuildMixedList();
    EXPECT_EQ(GetPtrData2DataItem(5, 0, 16, 0, 0, a), d);
    EXPECT_EQ(GetPtrData2DataItem(6, 0, 16, 0, 0, a), nullptr);
    EXPECT_EQ(GetPtrData2DataItem(2, 0, 2, 0, 0, a), nullptr);
}

TEST_F(DataListSelectTest, ClassLettersOfEveryKindOfItem)
{
    BuildMixedList();
    EXPECT_EQ(ClassLetter(a), 'I');
    EXPECT_EQ(ClassLetter(s), 'S');
    EXPECT_EQ(ClassLetter(f), 'F');
    EXPECT_EQ(ClassLetter(c), 'C');
    EXPECT_EQ(ClassLetter(p), 'S');
    SetFFTBlock(c, f->FFTDataPtr);   // a mapping set wins over FFT data
    EXPECT_EQ(ClassLetter(c), 'C');
    SetFFTBlock(c, nullptr);
    d->ImType1 = 6;
    EXPECT_EQ(ClassLetter(d), ' ');
    d->ImType1 = 1;
}

TEST_F(DataListSelectTest, WhereSeveralRowsOfTheLetterTableApplyTheFirstWins)
{
    // The rows in order: S, C, F, I.
    BuildMixedList();
    SetCITSBlock(s, StandInMappingSet());   // a spectrum with a mapping block stays S
    EXPECT_EQ(ClassLetter(s), 'S');
    SetCITSBlock(s, nullptr);
    SetFFTBlock(a, f->FFTDataPtr);          // an image with FFT data is F, not I
    EXPECT_EQ(ClassLetter(a), 'F');
    SetCITSBlock(a, StandInMappingSet());   // and with a mapping set as well, C
    EXPECT_EQ(ClassLetter(a), 'C');
    SetCITSBlock(a, nullptr);
    SetFFTBlock(a, nullptr);
    EXPECT_EQ(ClassLetter(a), 'I');
}

TEST_F(DataListSelectTest, TheLongDescriptorOfMode16ByteForByte)
{
    BuildMixedList();
    char text[kDataDescriptorBytes];
    EXPECT_EQ(GetDataDescriptor(text, 0, 0, 16), 1);
    EXPECT_EQ(std::string(text), "I:(" + Id(a) + ") topo.  \"Topo\"");
    EXPECT_EQ(GetDataDescriptor(text, 1, 0, 16), 2);
    EXPECT_EQ(std::string(text), "S:(" + Id(s) + ") curve.  \"I-V\"");
    EXPECT_EQ(GetDataDescriptor(text, 2, 0, 16), 2);
    EXPECT_EQ(std::string(text), "F:(" + Id(f) + ") fft.  \"Power\"");
    EXPECT_EQ(GetDataDescriptor(text, 3, 0, 16), 2);
    EXPECT_EQ(std::string(text), "C:(" + Id(c) + ") map.v2.  \"Map\"");
    EXPECT_EQ(GetDataDescriptor(text, 4, 0, 16), 2);
    EXPECT_EQ(std::string(text), "S:(" + Id(p) + ") line.  \"Profile\"");
    EXPECT_EQ(GetDataDescriptor(text, 5, 0, 16), 2);
    EXPECT_EQ(std::string(text), "I:(" + Id(d) + ") .  \"Lm\"");
}

TEST_F(DataListSelectTest, TheShortDescriptorOfOtherModesByteForByte)
{
    BuildMixedList();
    char text[kDataDescriptorBytes];
    EXPECT_EQ(GetDataDescriptor(text, 0, 0, 2), 2);
    EXPECT_EQ(std::string(text), "(" + Id(s) + ") curve.  \"I-V\"");
    EXPECT_EQ(GetDataDescriptor(text, 0, 0, 32), 1);
    EXPECT_EQ(std::string(text), "(" + Id(a) + ") topo.  \"Topo\"");
    CurrentItem = c;
    EXPECT_EQ(GetDataDescriptor(text, 2, 0, 32), 1);
    EXPECT_EQ(std::string(text), "(" + Id(c) + ") map.v2.  \"Map\"");
}

TEST_F(DataListSelectTest, TheDescriptorOfAnItemOfNoClassHasABlankLetter)
{
    BuildMixedList();
    d->ImType1 = 6;
    char text[kDataDescriptorBytes];
    EXPECT_EQ(GetDataDescriptor(text, 5, 0, 16), 2);
    EXPECT_EQ(std::string(text), " :(" + Id(d) + ") .  \"Lm\"");
    d->ImType1 = 1;
}

TEST_F(DataListSelectTest, TheDescriptorTakesTheNameWithoutDirectoryOrExtension)
{
    ImageHeaderType* item = AddImage(nullptr, 16, "", "T");
    CurrentItem = item;
    char text[kDataDescriptorBytes];
    const char* const paths[][2] = {
        {"C:\\Tavrin\\Data\\Au111.tif", "Au111"}, {"/srv/scans/run.7.tif", "run.7"}, {"C:scan.tif", "scan"},
        {"mixed/dir\\name.spc", "name"},          {"noext", "noext"},                {"dir.d\\file", "file"},
        {"", ""},                                  {".tif", ""},
    };
    for (const auto& [path, name] : paths) {
        strncpy0(item->FileName, path, sizeof item->FileName);
        EXPECT_EQ(GetDataDescriptor(text, 0, 0, 16), 1);
        EXPECT_EQ(std::string(text), "I:(" + Id(item) + ") " + name + ".  \"T\"") << path;
    }
}

TEST_F(DataListSelectTest, FullLengthFieldsWithoutTerminatorsStayInsideTheirRecord)
{
    ImageHeaderType* item = AddImage(nullptr, 16);
    CurrentItem = item;
    std::memset(item->Title, 'T', sizeof item->Title);
    std::memset(item->FileName, 'n', sizeof item->FileName);
    char text[kDataDescriptorBytes];
    EXPECT_EQ(GetDataDescriptor(text, 0, 0, 16), 1);
    std::string expected = "I:(" + Id(item) + ") " + std::string(259, 'n') + ".  \"" + std::string(40, 'T') + "\"";
    EXPECT_EQ(std::string(text), expected);
}

TEST_F(DataListSelectTest, NoSuchItemAnswersFourWithAnEmptyText)
{
    BuildMixedList();
    char text[kDataDescriptorBytes];
    std::strcpy(text, "old");
    EXPECT_EQ(GetDataDescriptor(text, 6, 0, 16), 4);
    EXPECT_STREQ(text, "");
    EXPECT_EQ(GetDataDescriptor(nullptr, 0, 0, 16), 1);
    EXPECT_EQ(GetDataDescriptor(nullptr, 9, 0, 16), 4);
}

TEST_F(DataListSelectTest, SelectDataItemMakesTheItemCurrentAndShowsIt)
{
    BuildMixedList();
    const int shown = DisplayRequests().shown;
    EXPECT_EQ(SelectDataItem(1, 0, 2), p);
    EXPECT_EQ(CurrentItem, p);
    EXPECT_EQ(DisplayRequests().shown, shown + 1);
    EXPECT_EQ(DisplayRequests().lastShown, p);
}

TEST_F(DataListSelectTest, SelectDataItemWithNoSuchItemChangesNothing)
{
    BuildMixedList();
    const int shown = DisplayRequests().shown;
    EXPECT_EQ(SelectDataItem(2, 0, 2), nullptr);
    EXPECT_EQ(CurrentItem, a);
    EXPECT_EQ(DisplayRequests().shown, shown);
}

TEST_F(DataListSelectTest, SelectDataByHostCountsTheHostsAnswerInTheMode)
{
    BuildMixedList();
    host.selectAnswers = {1};
    EXPECT_EQ(SelectDataByHost(0, 2), p);
    ASSERT_EQ(host.Count("ap_SelectDataDialog"), 1);
    EXPECT_EQ(host.Calls("ap_SelectDataDialog")[0].args, "0 2");
    EXPECT_EQ(CurrentItem, a);   // picked, not made current
    host.selectAnswers = {2};
    EXPECT_EQ(SelectDataByHost(1, 4), d);
    EXPECT_EQ(host.Calls("ap_SelectDataDialog")[1].args, "1 4");
}

TEST_F(DataListSelectTest, SelectDataByHostWithACancelAnswersNull)
{
    BuildMixedList();
    host.selectAnswers = {-1};
    EXPECT_EQ(SelectDataByHost(0, 16), nullptr);
    host.selectAnswers = {7};   // past the counted items
    EXPECT_EQ(SelectDataByHost(0, 2), nullptr);
    EXPECT_EQ(host.Count("ap_SelectDataDialog"), 2);
}

TEST_F(DataListSelectTest, SelectDataByHostWithAnEmptyListDoesNotAsk)
{
    host.selectAnswers = {0};
    EXPECT_EQ(SelectDataByHost(0, 16), nullptr);
    EXPECT_EQ(host.Count("ap_SelectDataDialog"), 0);
}
