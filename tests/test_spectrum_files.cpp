// Spectrum files: ".spc" load and save, old short records, the ".dat" table, and every failure
// of the readers and writers.
#include "test_spectrum_support.h"
#include "files/spectrum_files.h"
#include "host/globals.h"
#include "host/wait.h"
#include "platform/files.h"
#include "settings/cantilever.h"
#include "store/data_list_display.h"

#include <filesystem>

using namespace spectest;

class SpectrumFileTest : public LibraryTest {
protected:
    void SetUp() override
    {
        LibraryTest::SetUp();
        ASSERT_EQ(host.Start(), 0);
        host.ClearCalls();
    }

    static bool Contains(const std::string& text, const std::string& part)
    {
        return text.find(part) != std::string::npos;
    }

    // A failed load leaves the list and the live blocks as they were, with one error box.
    void ExpectRefused(const std::string& path, const std::string& boxText)
    {
        ImageHeaderType* first = FirstItem;
        ImageHeaderType* current = CurrentItem;
        const int items = CountItems();
        const size_t blocks = LiveBlockCount();
        EXPECT_EQ(LoadSpecFile(path.c_str(), 1, 0), 1);
        EXPECT_EQ(FirstItem, first);
        EXPECT_EQ(CurrentItem, current);
        EXPECT_EQ(CountItems(), items);
        EXPECT_EQ(LiveBlockCount(), blocks);
        ASSERT_EQ(host.messageBoxes.size(), 1u);
        EXPECT_EQ(host.messageBoxes[0].text, boxText);
        EXPECT_TRUE(Contains(ReadLog(), "Error on loading " + path));
    }
};

TEST_F(SpectrumFileTest, ASpectrumOfThreePointsLoads)
{
    const ImageHeaderType record = SpectrumRecord(3);
    WriteFileBytes(Path("three.spc"), SpcBytes(record, TAVRIN_HEADER_STORED_BYTES, Samples(3)));
    ASSERT_EQ(LoadSpecFile(Path("three.spc").c_str(), 1, 0), 0);
    ASSERT_NE(CurrentItem, nullptr);
    EXPECT_EQ(FirstItem, CurrentItem);
    EXPECT_EQ(CurrentItem->nx, 3);
    EXPECT_EQ(CurrentItem->ImType1, static_cast<uint32_t>(IMTYPE_SPECTRUM));
    EXPECT_EQ(CurrentItem->SPSOwnerId, -1);
    EXPECT_STREQ(CurrentItem->FileName, Path("three.spc").c_str());
    const std::vector<float> s = Samples(3);
    for (int i = 0; i < 6; ++i) EXPECT_EQ(reinterpret_cast<float*>(CurrentItem->PixData)[i], s[i]) << i;
    EXPECT_TRUE(host.messageBoxes.empty());
    EXPECT_TRUE(Contains(ReadLog(), "Load " + Path("three.spc")));
}

TEST_F(SpectrumFileTest, ASpectrumOfTwoPointsIsRefusedWithInvalidHeader)
{
    const ImageHeaderType record = SpectrumRecord(2);
    WriteFileBytes(Path("two.spc"), SpcBytes(record, TAVRIN_HEADER_STORED_BYTES, Samples(2)));
    ExpectRefused(Path("two.spc"), "Invalid header");
}

TEST_F(SpectrumFileTest, FewerSampleBytesThanNxTimesEightAreRefusedAndNoItemRemains)
{
    const ImageHeaderType record = SpectrumRecord(16);
    std::string bytes = SpcBytes(record, TAVRIN_HEADER_STORED_BYTES, Samples(16));
    bytes.resize(bytes.size() - 1);
    WriteFileBytes(Path("short.spc"), bytes);
    ExpectRefused(Path("short.spc"), "Data file too short");
    EXPECT_EQ(FirstItem, nullptr);
}

TEST_F(SpectrumFileTest, AFileOfNothingButARecordIsTooShort)
{
    const ImageHeaderType record = SpectrumRecord(16);
    WriteFileBytes(Path("bare.spc"), SpcBytes(record, TAVRIN_HEADER_STORED_BYTES, {}));
    ExpectRefused(Path("bare.spc"), "Data file too short");
}

TEST_F(SpectrumFileTest, ARecordShorterThanItsRevisionStoresIsTooShort)
{
    ImageHeaderType record = SpectrumRecord(4);
    WriteFileBytes(Path("r700.spc"), SpcBytes(record, 6089, {}));
    ExpectRefused(Path("r700.spc"), "Data file too short");
    host.messageBoxes.clear();
    record.RevNo = 404;
    WriteFileBytes(Path("r404.spc"), SpcBytes(record, 1871, {}));
    ExpectRefused(Path("r404.spc"), "Data file too short");
    host.messageBoxes.clear();
    record.RevNo = 303;
    WriteFileBytes(Path("r303.spc"), SpcBytes(record, 901, {}));
    ExpectRefused(Path("r303.spc"), "Data file too short");
}

TEST_F(SpectrumFileTest, ASpectrumOfTheOldestRecordIsClearedBehindByte902UpgradedAndScaled)
{
    // Revision 200 with the old type 6 stored its Y values in Angstrom: they are divided by 0.1.
    ImageHeaderType record = SpectrumRecord(4);
    record.RevNo = 200;
    record.OldImageType = 6;
    std::string bytes = SpcBytes(record, 902, Samples(4));
    WriteFileBytes(Path("old.spc"), bytes);
    ASSERT_EQ(LoadSpecFile(Path("old.spc").c_str(), 1, 1), 0);
    const ImageHeaderType* item = CurrentItem;
    EXPECT_EQ(item->RevNo, 700);
    EXPECT_EQ(item->SubRevNo, 42);
    EXPECT_EQ(CheckHeaderIsSpecType(item), 1);
    const std::vector<float> s = Samples(4);
    const float* y = SpecY(item);
    const float* x = SpecX(item);
    for (int i = 0; i < 4; ++i) {
        float expected = s[static_cast<size_t>(i)];
        expected /= 0.1f;
        EXPECT_EQ(y[i], expected) << i;
        EXPECT_EQ(x[i], s[static_cast<size_t>(4 + i)]) << i;
    }
    // The samples came right behind the 902 bytes; the colour planes of the record are the
    // default table again, not the samples that followed in the file.
    ImageHeaderType fresh;
    std::memset(&fresh, 0, sizeof fresh);
    InitImageHeader(&fresh, 4, 1);
    EXPECT_EQ(std::memcmp(item->LutRed, fresh.LutRed, 256), 0);
    EXPECT_EQ(std::memcmp(item->LutBlue, fresh.LutBlue, 256), 0);
}

TEST_F(SpectrumFileTest, ASpectrumOfRevision404IsReadFromItsFirst1872Bytes)
{
    ImageHeaderType record = SpectrumRecord(5);
    record.RevNo = 404;
    WriteFileBytes(Path("r404.spc"), SpcBytes(record, 1872, Samples(5, 3)));
    ASSERT_EQ(LoadSpecFile(Path("r404.spc").c_str(), 0, 1), 0);
    const std::vector<float> s = Samples(5, 3);
    for (int i = 0; i < 10; ++i) EXPECT_EQ(reinterpret_cast<float*>(CurrentItem->PixData)[i], s[i]) << i;
    EXPECT_EQ(CurrentItem->RevNo, 700);
}

TEST_F(SpectrumFileTest, ARecordOfTheImageClassIsAnInvalidHeader)
{
    ImageHeaderType record = SpectrumRecord(16);
    record.ImType1 = IMTYPE_IMAGE;
    record.ny = 16;
    WriteFileBytes(Path("img.spc"), SpcBytes(record, TAVRIN_HEADER_STORED_BYTES, Samples(16)));
    ExpectRefused(Path("img.spc"), "Invalid header");
}

TEST_F(SpectrumFileTest, SpectraOf8192PointsLoadAndOf8193AreRefused)
{
    WriteFileBytes(Path("max.spc"), SpcBytes(SpectrumRecord(8192), TAVRIN_HEADER_STORED_BYTES, Samples(8192)));
    EXPECT_EQ(LoadSpecFile(Path("max.spc").c_str(), 0, 1), 0);
    WriteFileBytes(Path("over.spc"), SpcBytes(SpectrumRecord(8193), TAVRIN_HEADER_STORED_BYTES, Samples(8193)));
    ExpectRefused(Path("over.spc"), "Invalid header");
}

TEST_F(SpectrumFileTest, AMissingFileIsUnableToOpenFile)
{
    ExpectRefused(Path("missing.spc"), "Unable to open file");
}

TEST_F(SpectrumFileTest, AFailedReadIsAnErrorWhileReading)
{
    WriteFileBytes(Path("r.spc"), SpcBytes(SpectrumRecord(3), TAVRIN_HEADER_STORED_BYTES, Samples(3)));
    SetFileReadFailureForTests(true);
    ExpectRefused(Path("r.spc"), "Error occurred while reading from input device");
}

TEST_F(SpectrumFileTest, EachFailedAllocationOfALoadLeavesTheListAsItWas)
{
    WriteFileBytes(Path("a.spc"), SpcBytes(SpectrumRecord(3), TAVRIN_HEADER_STORED_BYTES, Samples(3)));
    ImageHeaderType* kept = MakeSpectrumItem(4, 9);
    ASSERT_NE(kept, nullptr);
    // The record, the samples, the list item: in that order.
    const char* const texts[] = {"Not enough memory", "Exceeded maximum number of allowed spectra",
                                 "Not enough memory"};
    for (int skip = 0; skip < 3; ++skip) {
        host.messageBoxes.clear();
        FailAllocationsForTests(1, skip);
        ExpectRefused(Path("a.spc"), texts[skip]);
        FailAllocationsForTests(0);
        EXPECT_EQ(CurrentItem, kept) << skip;
    }
    EXPECT_EQ(LoadSpecFile(Path("a.spc").c_str(), 0, 1), 0);
}

TEST_F(SpectrumFileTest, TheLoadedItemGoesBehindTheCurrentItemAndIsShownUnlessQuiet)
{
    WriteFileBytes(Path("b.spc"), SpcBytes(SpectrumRecord(3), TAVRIN_HEADER_STORED_BYTES, Samples(3)));
    ImageHeaderType* first = MakeSpectrumItem(4, 1);
    ImageHeaderType* last = MakeSpectrumItem(4, 2);
    CurrentItem = first;
    const int shown = DisplayRequests().shown;
    ASSERT_EQ(LoadSpecFile(Path("b.spc").c_str(), 0, 1), 0);
    EXPECT_EQ(DisplayRequests().shown, shown);
    EXPECT_EQ(first->Next, CurrentItem);
    EXPECT_EQ(CurrentItem->Next, last);
    ASSERT_EQ(LoadSpecFile(Path("b.spc").c_str(), 0, 0), 0);
    EXPECT_EQ(DisplayRequests().shown, shown + 1);
    EXPECT_EQ(DisplayRequests().lastShown, CurrentItem);
    EXPECT_FALSE(Contains(ReadLog(), "Load " + Path("b.spc")));
}

TEST_F(SpectrumFileTest, ASavedSpectrumLoadsBackByteForByte)
{
    ImageHeaderType* item = MakeSpectrumItem(37, 4);
    strncpy(item->FileName, Path("round.spc").c_str(), sizeof item->FileName - 1);
    item->RevNo = 600;
    item->SubRevNo = 3;
    item->BiasVoltage = 1.25f;
    ASSERT_EQ(SaveSpecFile(item, Path("round.spc").c_str()), 0);
    EXPECT_EQ(item->RevNo, 700);
    EXPECT_EQ(item->SubRevNo, 42);
    EXPECT_EQ(item->SavedDate.day, 22);
    EXPECT_EQ(item->SavedDate.month, 11);
    EXPECT_EQ(item->SavedDate.year, 2026);
    EXPECT_EQ(item->SavedTime.hour, 14);
    EXPECT_EQ(item->SavedTime.minute, 5);
    EXPECT_EQ(item->SavedTime.second, 9);
    EXPECT_EQ(item->SavedTime.hsecond, 25);
    const std::string file = ReadFileBytes(Path("round.spc"));
    ASSERT_EQ(file.size(), 6090u + 37 * 8);
    EXPECT_EQ(file.substr(0, 6090), Stored(item));
    EXPECT_EQ(std::memcmp(file.data() + 6090, item->PixData, 37 * 8), 0);
    EXPECT_TRUE(Contains(ReadLog(), "Save spectrum " + Path("round.spc")));
    EXPECT_EQ(HourGlassCount(), 0);

    ASSERT_EQ(LoadSpecFile(Path("round.spc").c_str(), 0, 1), 0);
    ASSERT_NE(CurrentItem, item);
    EXPECT_EQ(Stored(CurrentItem), Stored(item));
    EXPECT_EQ(std::memcmp(CurrentItem->PixData, item->PixData, 37 * 8), 0);
}

TEST_F(SpectrumFileTest, SavingAnItemThatIsNoSpectrumIsNoSpectraInMemory)
{
    ImageHeaderType* item = MakeSpectrumItem(4);
    item->ImType1 = IMTYPE_IMAGE;
    EXPECT_EQ(SaveSpecFile(item, Path("no.spc").c_str()), 1);
    ASSERT_EQ(host.messageBoxes.size(), 1u);
    EXPECT_EQ(host.messageBoxes[0].text, "No spectra in memory");
    EXPECT_FALSE(std::filesystem::exists(Path("no.spc")));
    item->ImType1 = IMTYPE_SPECTRUM;
}

TEST_F(SpectrumFileTest, AShortWriteIsNotEnoughDiskSpace)
{
    ImageHeaderType* item = MakeSpectrumItem(8);
    const int items = CountItems();
    const size_t blocks = LiveBlockCount();
    SetFileWriteLimitForTests(6090 + 10);
    EXPECT_EQ(SaveSpecFile(item, Path("full.spc").c_str()), 1);
    ASSERT_EQ(host.messageBoxes.size(), 1u);
    EXPECT_EQ(host.messageBoxes[0].text, "Not enough disk space");
    EXPECT_FALSE(std::filesystem::exists(Path("full.spc")));   // no half-written file
    EXPECT_EQ(CountItems(), items);
    EXPECT_EQ(LiveBlockCount(), blocks);
    EXPECT_EQ(HourGlassCount(), 0);
}

TEST_F(SpectrumFileTest, AFailedWriteIsAnErrorOnWriting)
{
    if (!std::filesystem::exists("/dev/full")) GTEST_FAIL() << "/dev/full is needed for a failing write";
    ImageHeaderType* item = MakeSpectrumItem(8);
    EXPECT_EQ(SaveSpecFile(item, "/dev/full"), 1);
    ASSERT_EQ(host.messageBoxes.size(), 1u);
    EXPECT_EQ(host.messageBoxes[0].text, "Error occurred on writing to output device");
    EXPECT_TRUE(Contains(ReadLog(), "Error on saving spectrum /dev/full"));
}

TEST_F(SpectrumFileTest, AFileThatCannotBeMadeIsUnableToOpenFile)
{
    ImageHeaderType* item = MakeSpectrumItem(8);
    item->RevNo = 650;
    EXPECT_EQ(SaveSpecFile(item, Path("no/such/dir/x.spc").c_str()), 1);
    ASSERT_EQ(host.messageBoxes.size(), 1u);
    EXPECT_EQ(host.messageBoxes[0].text, "Unable to open file");
    EXPECT_EQ(item->RevNo, 650);
}

// ---- The ".dat" table ------------------------------------------------------------------------

TEST_F(SpectrumFileTest, TheTableHasAHeadingAndOneLinePerPointWithTheDefaultTab)
{
    ImageHeaderType* item = MakeSpectrumItem(3, 2);   // Y 2, 2.5, 3; X -1, -0.75, -0.5
    ASSERT_EQ(SaveSpecData(item, Path("t.dat").c_str()), 0);
    EXPECT_EQ(ReadFileBytes(Path("t.dat")), "No.\tX\tY\r\n"
                                            "1\t-1.000000E+00\t2.000000E+00\r\n"
                                            "2\t-7.500000E-01\t2.500000E+00\r\n"
                                            "3\t-5.000000E-01\t3.000000E+00\r\n");
}

TEST_F(SpectrumFileTest, TheTableWithABlankAndACommaAndWithoutHeading)
{
    ImageHeaderType* item = MakeSpectrumItem(3, 2);
    SetSpecExportParam(SpecExportParam{0, 0});
    ASSERT_EQ(SaveSpecData(item, Path("blank.dat").c_str()), 0);
    EXPECT_EQ(ReadFileBytes(Path("blank.dat")), "No. X Y\r\n"
                                                "1 -1.000000E+00 2.000000E+00\r\n"
                                                "2 -7.500000E-01 2.500000E+00\r\n"
                                                "3 -5.000000E-01 3.000000E+00\r\n");
    SetSpecExportParam(SpecExportParam{1, 1});
    ASSERT_EQ(SaveSpecData(item, Path("comma.dat").c_str()), 0);
    EXPECT_EQ(ReadFileBytes(Path("comma.dat")), "1,-1.000000E+00,2.000000E+00\r\n"
                                                "2,-7.500000E-01,2.500000E+00\r\n"
                                                "3,-5.000000E-01,3.000000E+00\r\n");
    SetSpecExportParam(SpecExportParam{1, 2});
    ASSERT_EQ(SaveSpecData(item, Path("tab.dat").c_str()), 0);
    EXPECT_EQ(ReadFileBytes(Path("tab.dat")), "1\t-1.000000E+00\t2.000000E+00\r\n"
                                              "2\t-7.500000E-01\t2.500000E+00\r\n"
                                              "3\t-5.000000E-01\t3.000000E+00\r\n");
}

TEST_F(SpectrumFileTest, TheExportSettingsDefaultToHeadingAndTabAndRefuseAnotherSeparator)
{
    EXPECT_EQ(GetSpecExportParam().noHeading, 0);
    EXPECT_EQ(GetSpecExportParam().separator, 2);
    SetSpecExportParam(SpecExportParam{1, 3});
    EXPECT_EQ(GetSpecExportParam().noHeading, 0);
    EXPECT_EQ(GetSpecExportParam().separator, 2);
    EXPECT_TRUE(Contains(ReadLog(), "ERROR : Program error - SetSpecExportParam 3"));
    wint_SpecExportParamType param{1, 0};
    dl_SetSpecExportParam(&param);
    wint_SpecExportParamType back{};
    dl_GetSpecExportParam(&back);
    EXPECT_EQ(back.NoHeading, 1);
    EXPECT_EQ(back.Separator, 0);
}

TEST_F(SpectrumFileTest, TheTableGivesYThroughTheCalibrationInForceAndXAsStored)
{
    // A force spectrum with the force conversion on: Y = k * sens * (y - offset) = 6 * (y - 0.5).
    wint_SPMCalType cal{};
    cal.ForceOn = 1;
    cal.ForceK = 2.0;
    cal.ForceSens = 3.0;
    cal.ForceOffset = 0.5;
    SetCantileverCalibration(cal);
    ImageHeaderType* item = MakeSpectrumItem(2, 1);   // Y 1, 1.5; X -1, -0.75
    item->DataSource = 8;
    item->AcqMode = 15;
    ASSERT_EQ(SaveSpecData(item, Path("force.dat").c_str()), 0);
    EXPECT_EQ(ReadFileBytes(Path("force.dat")), "No.\tX\tY\r\n"
                                                "1\t-1.000000E+00\t3.000000E+00\r\n"
                                                "2\t-7.500000E-01\t6.000000E+00\r\n");
}

TEST_F(SpectrumFileTest, TheTableOfAnImageIsNoSpectraInMemory)
{
    ImageHeaderType* item = MakeSpectrumItem(3);
    item->ImType1 = IMTYPE_IMAGE;
    EXPECT_EQ(SaveSpecData(item, Path("i.dat").c_str()), 1);
    ASSERT_EQ(host.messageBoxes.size(), 1u);
    EXPECT_EQ(host.messageBoxes[0].text, "No spectra in memory");
    item->ImType1 = IMTYPE_SPECTRUM;
}

TEST_F(SpectrumFileTest, TableFailuresAreUnableToOpenFileAndErrorOnWriting)
{
    ImageHeaderType* item = MakeSpectrumItem(3);
    EXPECT_EQ(SaveSpecData(item, Path("no/dir/t.dat").c_str()), 1);
    ASSERT_EQ(host.messageBoxes.size(), 1u);
    EXPECT_EQ(host.messageBoxes[0].text, "Unable to open file");
    SetFileWriteLimitForTests(20);
    EXPECT_EQ(SaveSpecData(item, Path("short.dat").c_str()), 1);
    ASSERT_EQ(host.messageBoxes.size(), 2u);
    EXPECT_EQ(host.messageBoxes[1].text, "Error occurred on writing to output device");
    EXPECT_FALSE(std::filesystem::exists(Path("short.dat")));   // no half-written table
}
