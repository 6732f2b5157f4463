// The open and save commands: open codes by extension, the save types, default extensions and
// the overwrite question, the series save with its name cleaning, the path test, file names,
// window saves, and the file name helpers.
#include "test_spectrum_support.h"
#include "test_tiff_support.h"
#include "files/file_names.h"
#include "files/open_save.h"
#include "files/save_commands.h"
#include "files/save_window.h"
#include "files/tiff_write.h"
#include "platform/files.h"
#include "platform/locale.h"
#include "store/data_list_display.h"

#include <filesystem>

using namespace spectest;
using tifftest::MakeImage;
using tifftest::U32;

class OpenSaveTest : public LibraryTest {
protected:
    void SetUp() override
    {
        LibraryTest::SetUp();
        ASSERT_EQ(host.Start("tavrin.exe /DBG"), 0);
        host.ClearCalls();
    }

    static bool Contains(const std::string& text, const std::string& part)
    {
        return text.find(part) != std::string::npos;
    }

    bool Exists(const std::string& name) const { return std::filesystem::exists(Path(name)); }

    std::string SavedSpectrum(const std::string& name)
    {
        WriteFileBytes(Path(name), SpcBytes(SpectrumRecord(5), TAVRIN_HEADER_STORED_BYTES, Samples(5)));
        return Path(name);
    }

    std::string SavedImage(const std::string& name)
    {
        ImageHeaderType* image = MakeImage(16);
        EXPECT_EQ(saveTiffImage(image, Path(name).c_str(), 0), 0);
        EraseItem(image);
        host.ClearCalls();
        return Path(name);
    }
};

// ---- Open ------------------------------------------------------------------------------------

TEST_F(OpenSaveTest, TheExtensionPicksTheOpenCodeWithoutRegardToCase)
{
    EXPECT_EQ(OpenCodeForPath("a.TIF"), 2);
    EXPECT_EQ(OpenCodeForPath("a.tif"), 2);
    EXPECT_EQ(OpenCodeForPath("a.Spc"), 3);
    EXPECT_EQ(OpenCodeForPath("a.BIN"), 4);
    EXPECT_EQ(OpenCodeForPath("a.bft"), 5);
    EXPECT_EQ(OpenCodeForPath("a.asc"), 6);
    EXPECT_EQ(OpenCodeForPath("a.AFT"), 7);
    EXPECT_EQ(OpenCodeForPath("a.bmp"), 8);
    EXPECT_EQ(OpenCodeForPath("a"), 2);
    EXPECT_EQ(OpenCodeForPath("a.xyz"), 2);
    EXPECT_EQ(OpenCodeForPath("C:\\dir.spc\\file"), 2);
    EXPECT_EQ(OpenCodeForPath("a.spcx"), 2);
}

TEST_F(OpenSaveTest, OpeningASpcLoadsTheSpectrumAndAnswersZero)
{
    const std::string path = SavedSpectrum("s.spc");
    EXPECT_EQ(dl_OpenSTMData(3, path.c_str()), 0);
    ASSERT_NE(CurrentItem, nullptr);
    EXPECT_EQ(CurrentItem->nx, 5);
    EXPECT_EQ(CheckHeaderIsSpecType(CurrentItem), 1);
    EXPECT_TRUE(Contains(ReadLog(), "Load " + path));
}

TEST_F(OpenSaveTest, OpeningATifLoadsTheImageShowsItAndTracesTheCall)
{
    SavedImage("img.TIF");
    const int shown = DisplayRequests().shown;
    // The current directory is the data directory: a short name shows the padding of the trace.
    EXPECT_EQ(dl_OpenSTMData(2, "img.TIF"), 0);
    ASSERT_NE(CurrentItem, nullptr);
    EXPECT_EQ(CheckHeaderIsImageType(CurrentItem), 1);
    EXPECT_STREQ(CurrentItem->FileName, "img.TIF");
    EXPECT_EQ(DisplayRequests().shown, shown + 1);
    const std::string log = ReadLog();
    EXPECT_TRUE(Contains(log, "dl_OpenSTMData: 2 '                         img.TIF'"));
    EXPECT_TRUE(Contains(log, "Load img.TIF"));
}

TEST_F(OpenSaveTest, ABinOf1000BytesIsTriedAsAnImageFileAndFailsOnItsHeader)
{
    WriteFileBytes(Path("small.bin"), std::string(1000, 'x'));
    EXPECT_EQ(dl_OpenSTMData(0, Path("small.bin").c_str()), 0);
    EXPECT_EQ(FirstItem, nullptr);
    ASSERT_EQ(host.messageBoxes.size(), 1u);
    EXPECT_EQ(host.messageBoxes[0].text, "Invalid header");
    EXPECT_FALSE(Contains(ReadLog(), "OpenSTMData 4"));
    EXPECT_TRUE(Contains(ReadLog(), "Error on loading " + Path("small.bin")));
}

TEST_F(OpenSaveTest, ABftOfAnotherSizeIsTriedAsAnImageFile)
{
    WriteFileBytes(Path("odd.bft"), std::string(32768, 'x'));
    EXPECT_EQ(dl_OpenSTMData(0, Path("odd.bft").c_str()), 0);
    ASSERT_EQ(host.messageBoxes.size(), 1u);
    EXPECT_EQ(host.messageBoxes[0].text, "Invalid header");
}

TEST_F(OpenSaveTest, RawSizesGoToTheRawReaderWhichAnswersAsAnUnknownFormatForNow)
{
    for (long long size : {32768LL, 131072LL, 524288LL}) {
        WriteFileBytes(Path("raw.bin"), std::string(static_cast<size_t>(size), '\0'));
        EXPECT_EQ(OpenSTMData(4, Path("raw.bin").c_str(), 0, 1, 0), 1) << size;
    }
    for (long long size : {131072LL, 524288LL, 2097152LL}) {
        WriteFileBytes(Path("raw.bft"), std::string(static_cast<size_t>(size), '\0'));
        EXPECT_EQ(OpenSTMData(5, Path("raw.bft").c_str(), 0, 1, 0), 1) << size;
    }
    const std::string log = ReadLog();
    size_t four = 0, five = 0;
    for (size_t at = log.find("ERROR : Program error - OpenSTMData 4"); at != std::string::npos;
         at = log.find("ERROR : Program error - OpenSTMData 4", at + 1))
        ++four;
    for (size_t at = log.find("ERROR : Program error - OpenSTMData 5"); at != std::string::npos;
         at = log.find("ERROR : Program error - OpenSTMData 5", at + 1))
        ++five;
    EXPECT_EQ(four, 3u);
    EXPECT_EQ(five, 3u);
    EXPECT_EQ(FirstItem, nullptr);
}

TEST_F(OpenSaveTest, AsciiFilesAndBitmapsAnswerWithTheProgramErrorOfTheirCode)
{
    WriteFileBytes(Path("a.asc"), "1 2 3\n");
    WriteFileBytes(Path("a.aft"), "1.0 2.0\n");
    WriteFileBytes(Path("a.bmp"), "BM");
    EXPECT_EQ(dl_OpenSTMData(0, Path("a.asc").c_str()), 0);
    EXPECT_EQ(dl_OpenSTMData(0, Path("a.aft").c_str()), 0);
    EXPECT_EQ(dl_OpenSTMData(0, Path("a.bmp").c_str()), 0);
    const std::string log = ReadLog();
    EXPECT_TRUE(Contains(log, "ERROR : Program error - OpenSTMData 6"));
    EXPECT_TRUE(Contains(log, "ERROR : Program error - OpenSTMData 7"));
    EXPECT_TRUE(Contains(log, "ERROR : Program error - OpenSTMData 8"));
    EXPECT_EQ(FirstItem, nullptr);
}

TEST_F(OpenSaveTest, CodeOnePicksBySpcAnywhereInTheUpperCasedPath)
{
    const std::string spectrum = SavedSpectrum("curve.spc.bak");
    EXPECT_EQ(OpenSTMData(1, spectrum.c_str(), 0, 1, 1), 0);
    EXPECT_EQ(CheckHeaderIsSpecType(CurrentItem), 1);
    const std::string image = SavedImage("scan.img");
    EXPECT_EQ(OpenSTMData(1, image.c_str(), 0, 1, 1), 0);
    EXPECT_EQ(CheckHeaderIsImageType(CurrentItem), 1);
    EXPECT_EQ(CountItems(), 2);
}

TEST_F(OpenSaveTest, AnUnknownOpenCodeIsAProgramError)
{
    EXPECT_EQ(OpenSTMData(9, Path("x.tif").c_str(), 0, 1, 0), 1);
    EXPECT_TRUE(Contains(ReadLog(), "ERROR : Program error - OpenSTMData 9"));
}

// ---- Save ------------------------------------------------------------------------------------

TEST_F(OpenSaveTest, EachSaveTypeHasItsDefaultExtension)
{
    const char* const expected[] = {".tif", ".tif", ".bin", ".bft", ".asc", ".aft", ".spc", ".dat", ".hdr"};
    for (int type = 1; type <= 9; ++type) EXPECT_STREQ(DefaultSaveExtension(type), expected[type - 1]) << type;
    EXPECT_EQ(DefaultSaveExtension(0), nullptr);
    EXPECT_EQ(DefaultSaveExtension(10), nullptr);
}

TEST_F(OpenSaveTest, APathWithNoExtensionAndType7OnAnImageAppendsSpcAsksAndGivesTheProgramError)
{
    MakeImage(16);
    WriteFileBytes(Path("img.spc"), "old");
    host.messageBoxAnswers.push_back(TV_IDYES);
    EXPECT_EQ(dl_SaveData(7, Path("img").c_str(), 5, 1), 1);
    ASSERT_GE(host.messageBoxes.size(), 1u);
    EXPECT_EQ(host.messageBoxes[0].text, "File exists. Overwrite ?  ");
    EXPECT_EQ(host.messageBoxes[0].style & TV_MB_TYPEMASK, TV_MB_YESNO);
    EXPECT_EQ(host.messageBoxes[0].style & TV_MB_DEFMASK, TV_MB_DEFBUTTON2);
    EXPECT_EQ(host.messageBoxes[0].style & 0xF0u, TV_MB_ICONWARNING);
    const std::string log = ReadLog();
    EXPECT_TRUE(Contains(log, "dl_SaveData: 7 '" + Path("img.spc") + "' 5"));
    EXPECT_TRUE(Contains(log, "ERROR : Program error - SaveSTMData Image 7"));
    EXPECT_EQ(ReadFileBytes(Path("img.spc")), "old");
}

TEST_F(OpenSaveTest, ANewNameWithType7OnAnImageGivesTheProgramErrorWithoutAQuestion)
{
    MakeImage(16);
    EXPECT_EQ(dl_SaveData(7, Path("fresh").c_str(), 0, 1), 1);
    EXPECT_EQ(host.messageBoxes.size(), 0u);
    EXPECT_TRUE(Contains(ReadLog(), "ERROR : Program error - SaveSTMData Image 7"));
    EXPECT_FALSE(Exists("fresh.spc"));
}

TEST_F(OpenSaveTest, ADeclinedOverwriteChangesNothingOnDisk)
{
    ImageHeaderType* image = MakeImage(16);
    strncpy(image->FileName, "before.tif", sizeof image->FileName - 1);
    WriteFileBytes(Path("keep.tif"), "keep");
    host.messageBoxAnswers.push_back(TV_IDNO);
    EXPECT_EQ(dl_SaveData(1, Path("keep.tif").c_str(), 0, 1), 1);
    ASSERT_EQ(host.messageBoxes.size(), 1u);
    EXPECT_EQ(host.messageBoxes[0].text, "File exists. Overwrite ?  ");
    EXPECT_EQ(ReadFileBytes(Path("keep.tif")), "keep");
    EXPECT_STREQ(image->FileName, "before.tif");
    EXPECT_FALSE(Contains(ReadLog(), "ERROR"));
}

TEST_F(OpenSaveTest, ACheckedSaveOfType1GivesTheItemItsNewNameAndShowsItAgain)
{
    ImageHeaderType* image = MakeImage(16);
    WriteFileBytes(Path("over.tif"), "old");
    host.messageBoxAnswers.push_back(TV_IDYES);
    const int shown = DisplayRequests().shown;
    EXPECT_EQ(dl_SaveData(1, Path("over").c_str(), 0, 1), 0);
    EXPECT_EQ(ReadFileBytes(Path("over.tif")).size(), 7124u + 512);
    EXPECT_STREQ(image->FileName, Path("over.tif").c_str());
    EXPECT_EQ(DisplayRequests().shown, shown + 1);
}

TEST_F(OpenSaveTest, AnUncheckedSaveDoesNotAskAndKeepsTheItemsName)
{
    ImageHeaderType* image = MakeImage(16);
    strncpy(image->FileName, "before.tif", sizeof image->FileName - 1);
    WriteFileBytes(Path("quiet.tif"), "old");
    EXPECT_EQ(dl_SaveData(2, Path("quiet.tif").c_str(), 0, 0), 0);
    EXPECT_TRUE(host.messageBoxes.empty());
    const std::string file = ReadFileBytes(Path("quiet.tif"));
    EXPECT_EQ(file.size(), 7124u + 256 + 3 * 256 * 2);
    EXPECT_EQ(static_cast<uint8_t>(file[10 + 701]), 8);
    EXPECT_STREQ(image->FileName, "before.tif");
}

TEST_F(OpenSaveTest, ANameWithAnExtensionKeepsIt)
{
    MakeImage(16);
    EXPECT_EQ(dl_SaveData(1, Path("scan.img").c_str(), 0, 0), 0);
    EXPECT_TRUE(Exists("scan.img"));
    EXPECT_FALSE(Exists("scan.img.tif"));
}

TEST_F(OpenSaveTest, AnUnknownSaveTypeIsTheProgramErrorOfDlSaveData)
{
    MakeImage(16);
    EXPECT_EQ(dl_SaveData(10, Path("u").c_str(), 0, 1), 1);
    EXPECT_TRUE(Contains(ReadLog(), "ERROR : Program error - dl_SaveData (10)"));
    EXPECT_FALSE(Exists("u"));
}

TEST_F(OpenSaveTest, SpectraSaveAsSpcAndAsTableAndRefuseImageTypes)
{
    ImageHeaderType* spectrum = MakeSpectrumItem(4);
    EXPECT_EQ(dl_SaveData(7, Path("curve").c_str(), 0, 1), 0);
    EXPECT_EQ(ReadFileBytes(Path("curve.spc")).size(), 6090u + 32);
    EXPECT_STREQ(spectrum->FileName, Path("curve.spc").c_str());
    EXPECT_EQ(dl_SaveData(8, Path("curve").c_str(), 0, 1), 0);
    EXPECT_TRUE(Contains(ReadFileBytes(Path("curve.dat")), "No.\tX\tY\r\n1\t"));
    EXPECT_STREQ(spectrum->FileName, Path("curve.spc").c_str());
    EXPECT_EQ(dl_SaveData(1, Path("curve").c_str(), 0, 1), 1);
    EXPECT_TRUE(Contains(ReadLog(), "ERROR : Program error - SaveSTMData Spec 1"));
    EXPECT_FALSE(Exists("curve.tif"));
}

TEST_F(OpenSaveTest, ComplexTypesNeedFFTData)
{
    ImageHeaderType* image = MakeImage(16);
    EXPECT_EQ(dl_SaveData(4, Path("c").c_str(), 0, 1), 1);
    EXPECT_EQ(dl_SaveData(6, Path("c").c_str(), 0, 1), 1);
    ASSERT_EQ(host.messageBoxes.size(), 2u);
    EXPECT_EQ(host.messageBoxes[0].text, "Image is not of type FFT");
    EXPECT_EQ(host.messageBoxes[1].text, "Image is not of type FFT");
    MemHandleType fft;
    ASSERT_TRUE(AllocateMem(16 * 16, 8, &fft));
    SetFFTBlock(image, static_cast<float*>(fft.Ptr));
    EXPECT_EQ(dl_SaveData(4, Path("c").c_str(), 0, 1), 1);
    EXPECT_TRUE(Contains(ReadLog(), "ERROR : Program error - SaveSTMData Image 4"));
}

TEST_F(OpenSaveTest, RawAsciiAndHeaderSavesAnswerAsUnknownTypesForNow)
{
    MakeImage(16);
    EXPECT_EQ(dl_SaveData(3, Path("r").c_str(), 0, 1), 1);
    EXPECT_EQ(dl_SaveData(5, Path("r").c_str(), 0, 1), 1);
    EXPECT_EQ(dl_SaveData(9, Path("r").c_str(), 0, 1), 1);
    MakeSpectrumItem(4);
    EXPECT_EQ(dl_SaveData(9, Path("r").c_str(), 0, 1), 1);
    const std::string log = ReadLog();
    EXPECT_TRUE(Contains(log, "ERROR : Program error - SaveSTMData Image 3"));
    EXPECT_TRUE(Contains(log, "ERROR : Program error - SaveSTMData Image 5"));
    EXPECT_TRUE(Contains(log, "ERROR : Program error - SaveSTMData Image 9"));
    EXPECT_TRUE(Contains(log, "ERROR : Program error - SaveSTMData Spec 9"));
    EXPECT_FALSE(Exists("r.bin"));
    EXPECT_FALSE(Exists("r.hdr"));
}

TEST_F(OpenSaveTest, WithNoItemASaveIsNoImagesInMemory)
{
    EXPECT_EQ(dl_SaveData(1, Path("none").c_str(), 0, 1), 1);
    ASSERT_EQ(host.messageBoxes.size(), 1u);
    EXPECT_EQ(host.messageBoxes[0].text, "No images in memory");
    EXPECT_FALSE(Exists("none.tif"));
}

// ---- Series saves ----------------------------------------------------------------------------

TEST_F(OpenSaveTest, AnEmptyNameInTheSeriesSaveGivesAFileWithOnlyTheExtension)
{
    MakeImage(16);
    EXPECT_EQ(dl_pb_SaveDataAndRepeat(1, "", 0), 1);   // no next item picked
    EXPECT_EQ(ReadFileBytes(Path(".tif")).size(), 7124u + 512);
    EXPECT_STREQ(CurrentItem->FileName, ".tif");
}

TEST_F(OpenSaveTest, TheSeriesNameKeepsOnlyLettersDigitsAndUnderscores)
{
    char out[260];
    CleanSaveName("a-b c.d_e/9\\x:", out, sizeof out);
    EXPECT_STREQ(out, "abcd_e9x");
    CleanSaveName("", out, sizeof out);
    EXPECT_STREQ(out, "");
    CleanSaveName("abcdef", out, 4);
    EXPECT_STREQ(out, "abc");
}

TEST_F(OpenSaveTest, UnderShiftJisALeadByteAtAnEvenPositionKeepsItsCharacter)
{
    SetLocaleNameForTests("ja_JP.SJIS");
    char out[260];
    // Lead 0x82 at 0 with trail 0xA0 (no letter of its own): both stay; 'a' at 2 stays.
    CleanSaveName("\x82\xa0" "a", out, sizeof out);
    EXPECT_STREQ(out, "\x82\xa0" "a");
    // A trail byte that is itself in the lead range stays with its lead.
    CleanSaveName("\x82\x82", out, sizeof out);
    EXPECT_STREQ(out, "\x82\x82");
}

TEST_F(OpenSaveTest, UnderShiftJisALeadByteAtAnOddPositionIsNotTakenForOne)
{
    SetLocaleNameForTests("ja_JP.SJIS");
    char out[260];
    // 0x82 at 1 is no letter and goes; its trail 0xA0 at 2 is no lead and no letter and goes.
    CleanSaveName("x\x82\xa0", out, sizeof out);
    EXPECT_STREQ(out, "x");
    // 0x82 at 1 goes; the second 0x82, at 2, is taken as a lead and keeps 'y' behind it.
    CleanSaveName("x\x82\x82y", out, sizeof out);
    EXPECT_STREQ(out, "x\x82y");
    // 0xE0 at 1 is a letter of the 8-bit set and stays; the next 0xE0, at 2, leads 'A'.
    CleanSaveName("x\xe0\xe0" "Az", out, sizeof out);
    EXPECT_STREQ(out, "x\xe0\xe0" "Az");
    // A lead byte at the end keeps its place and nothing else.
    CleanSaveName("ab\x82", out, sizeof out);
    EXPECT_STREQ(out, "ab\x82");
}

TEST_F(OpenSaveTest, UnderUtf8NoByteLeadsAndOnlyLetterBytesOfTheEightBitSetStay)
{
    SetLocaleNameForTests("en_GB.UTF-8");
    char out[260];
    // "e" with acute is C3 A9: C3 is a letter of the 8-bit set, A9 is not.
    CleanSaveName("\xc3\xa9t\xc3\xa9", out, sizeof out);
    EXPECT_STREQ(out, "\xc3t\xc3");
    CleanSaveName("\x82\xa0" "a", out, sizeof out);
    EXPECT_STREQ(out, "a");
}

TEST_F(OpenSaveTest, TheSeriesSaveUsesTheCleanedNameAndGoesOnWithThePickedItem)
{
    SetLocaleNameForTests("ja_JP.SJIS");
    ImageHeaderType* a = MakeImage(16, "A");
    ImageHeaderType* b = MakeImage(16, "B");
    CurrentItem = a;
    host.selectAnswers.push_back(1);
    EXPECT_EQ(dl_pb_SaveDataAndRepeat(1, "x\x82\x82y.z", 0), 0);
    EXPECT_TRUE(Exists("x\x82yz.tif"));
    EXPECT_EQ(CurrentItem, b);
    ASSERT_EQ(host.Calls("ap_SelectDataDialog").size(), 1u);
    EXPECT_EQ(host.Calls("ap_SelectDataDialog")[0].args, "0 8");
    // The series save runs the save command, then the pick command, each traced in turn.
    const std::string log = ReadLog();
    const size_t series = log.find("dl_pb_SaveDataAndRepeat: 1 ");
    const size_t save = log.find("dl_SaveData: 1 'x\x82yz.tif' 0");
    const size_t pick = log.find("dl_SelectDataForSaving");
    ASSERT_NE(series, std::string::npos);
    ASSERT_NE(save, std::string::npos);
    ASSERT_NE(pick, std::string::npos);
    EXPECT_LT(series, save);
    EXPECT_LT(save, pick);
}

TEST_F(OpenSaveTest, AFailedSeriesSaveAnswersOneAndPicksNoItem)
{
    MakeImage(16);
    WriteFileBytes(Path("taken.tif"), "old");
    host.messageBoxAnswers.push_back(TV_IDNO);
    EXPECT_EQ(dl_pb_SaveDataAndRepeat(1, "taken", 0), 1);
    EXPECT_EQ(host.Count("ap_SelectDataDialog"), 0);
    EXPECT_EQ(ReadFileBytes(Path("taken.tif")), "old");
}

TEST_F(OpenSaveTest, SelectingForSavingMakesThePickedItemCurrentAndShowsIt)
{
    ImageHeaderType* a = MakeImage(16, "A");
    MakeSpectrumItem(4);
    ImageHeaderType* c = MakeImage(16, "C");
    CurrentItem = a;
    host.selectAnswers.push_back(1);   // the second image: spectra are of another class
    const int shown = DisplayRequests().shown;
    EXPECT_EQ(dl_SelectDataForSaving(), 1);
    EXPECT_EQ(CurrentItem, c);
    EXPECT_EQ(DisplayRequests().shown, shown + 1);
    EXPECT_EQ(dl_SelectDataForSaving(), -1);   // cancelled
    EXPECT_EQ(CurrentItem, c);
    EXPECT_EQ(DisplayRequests().shown, shown + 1);
    EXPECT_TRUE(Contains(ReadLog(), "dl_SelectDataForSaving"));
}

// ---- Path test and file names ----------------------------------------------------------------

TEST_F(OpenSaveTest, AReadablePathCanBeOpened)
{
    WriteFileBytes(Path("here.tif"), "x");
    EXPECT_NE(dl_CanOpenFile(Path("here.tif").c_str(), 1), 0);
    EXPECT_TRUE(host.messageBoxes.empty());
}

TEST_F(OpenSaveTest, AMissingFileOrDirectoryIsAnInvalidPathWithItsCause)
{
    EXPECT_EQ(dl_CanOpenFile(Path("missing.tif").c_str(), 1), 0);
    EXPECT_EQ(dl_CanOpenFile(Path("nodir/missing.tif").c_str(), 1), 0);
    EXPECT_EQ(dl_CanOpenFile(data.c_str(), 1), 0);
    ASSERT_EQ(host.messageBoxes.size(), 3u);
    EXPECT_EQ(host.messageBoxes[0].text, Path("missing.tif") + " contain an invalid path (exception=2)");
    EXPECT_EQ(host.messageBoxes[1].text, Path("nodir/missing.tif") + " contain an invalid path (exception=3)");
    EXPECT_EQ(host.messageBoxes[2].text, data + " contain an invalid path (exception=5)");
}

TEST_F(OpenSaveTest, AWritablePathIsTestedWithADumFileThatIsDeletedAgain)
{
    EXPECT_NE(dl_CanOpenFile(Path("new.tif").c_str(), 0), 0);
    EXPECT_FALSE(Exists("new.tif.dum"));
    EXPECT_FALSE(Exists("new.tif"));
    EXPECT_TRUE(host.messageBoxes.empty());
}

TEST_F(OpenSaveTest, AFailureToCreateAnswersZeroWithoutLeavingTheEntryPoint)
{
    EXPECT_EQ(dl_CanOpenFile(Path("nodir/new.tif").c_str(), 0), 0);
    ASSERT_EQ(host.messageBoxes.size(), 1u);
    EXPECT_EQ(host.messageBoxes[0].text, Path("nodir/new.tif") + " contain an invalid path (exception=3)");
}

TEST_F(OpenSaveTest, APathTooLongForItsTestNameIsABadPathAndTouchesNoFile)
{
    // A test name cut to 263 characters would be the first 263 characters of the path itself.
    const std::string path = Path("") + std::string(300 - Path("").size(), 'p');
    const std::string cut = path.substr(0, 263);
    WriteFileBytes(cut, "precious");
    EXPECT_EQ(dl_CanOpenFile(path.c_str(), 0), 0);
    EXPECT_EQ(ReadFileBytes(cut), "precious");
    ASSERT_EQ(host.messageBoxes.size(), 1u);
    EXPECT_EQ(host.messageBoxes[0].text, path + " contain an invalid path (exception=3)");
}

TEST_F(OpenSaveTest, TheImageFileNameWithAndWithoutPathAndExtension)
{
    ImageHeaderType* image = MakeImage(16);
    strncpy(image->FileName, "C:\\data\\scan01.tif", sizeof image->FileName - 1);
    char text[260];
    EXPECT_EQ(dl_GetImageFileName(nullptr, text, 0, 0), 0);
    EXPECT_STREQ(text, "C:\\data\\scan01.tif");
    EXPECT_EQ(dl_GetImageFileName(image, text, 1, 0), 0);
    EXPECT_STREQ(text, "scan01.tif");
    EXPECT_EQ(dl_GetImageFileName(image, text, 1, 1), 0);
    EXPECT_STREQ(text, "scan01");
    EXPECT_EQ(dl_GetImageFileName(image, text, 0, 1), 0);
    EXPECT_STREQ(text, "C:\\data\\scan01");
    // The last four characters go, whatever they are.
    strncpy(image->FileName, "/d/name.tiff", sizeof image->FileName - 1);
    EXPECT_EQ(dl_GetImageFileName(image, text, 1, 1), 0);
    EXPECT_STREQ(text, "name.");
}

TEST_F(OpenSaveTest, ANameShorterThanFourCharactersWithStripExtensionLosesWhatIsThere)
{
    ImageHeaderType* image = MakeImage(16);
    std::memset(image->FileName, 0, sizeof image->FileName);
    strncpy(image->FileName, "C:\\ab", sizeof image->FileName - 1);
    char text[260] = "junk";
    EXPECT_EQ(dl_GetImageFileName(image, text, 1, 1), 0);
    EXPECT_STREQ(text, "");
    EXPECT_EQ(dl_GetImageFileName(image, text, 1, 0), 0);
    EXPECT_STREQ(text, "ab");
}

TEST_F(OpenSaveTest, SoftwareGeneratedAndEmptyNamesAnswerOneWithAnEmptyText)
{
    ImageHeaderType* image = MakeImage(16);
    std::memset(image->FileName, 0, sizeof image->FileName);
    strncpy(image->FileName, "Software generated", sizeof image->FileName - 1);
    char text[260] = "junk";
    EXPECT_EQ(dl_GetImageFileName(image, text, 0, 0), 1);
    EXPECT_STREQ(text, "");
    image->FileName[0] = '\0';
    std::strcpy(text, "junk");
    EXPECT_EQ(dl_GetImageFileName(image, text, 0, 0), 1);
    EXPECT_STREQ(text, "");
    EraseAllItems();
    std::strcpy(text, "junk");
    EXPECT_EQ(dl_GetImageFileName(nullptr, text, 0, 0), 1);
    EXPECT_STREQ(text, "");
}

TEST_F(OpenSaveTest, TheExtensionIsTheLastDotOfTheNameOnly)
{
    const char* p = "C:\\data\\a.b.tif";
    EXPECT_EQ(GetExtension(p), p + 11);
    EXPECT_STREQ(GetExtension("x.SPC"), ".SPC");
    EXPECT_STREQ(GetExtension("a."), ".");
    EXPECT_EQ(GetExtension("name"), nullptr);
    EXPECT_EQ(GetExtension(""), nullptr);
    EXPECT_EQ(GetExtension(nullptr), nullptr);
    EXPECT_EQ(GetExtension("C:\\dir.x\\file"), nullptr);   // a '.' before a backslash
    EXPECT_EQ(GetExtension("dir/x.d/file"), nullptr);
    EXPECT_EQ(GetExtension("C:\\dir\\.hidden"), nullptr);  // a '.' after a backslash
    EXPECT_EQ(GetExtension("a..b"), nullptr);              // a '.' behind a '.'
    EXPECT_EQ(GetExtension(".\\file"), nullptr);
}

TEST_F(OpenSaveTest, SplitPathCutsAtTheLastSeparatorOrColon)
{
    char dir[260], name[260];
    SplitPath(dir, name, "C:\\data\\scan.tif", sizeof dir);
    EXPECT_STREQ(dir, "C:\\data\\");
    EXPECT_STREQ(name, "scan.tif");
    SplitPath(dir, name, "C:scan.tif", sizeof dir);
    EXPECT_STREQ(dir, "C:");
    EXPECT_STREQ(name, "scan.tif");
    SplitPath(dir, name, "scan.tif", sizeof dir);
    EXPECT_STREQ(dir, "");
    EXPECT_STREQ(name, "scan.tif");
    SplitPath(dir, name, "/tmp/a/", sizeof dir);
    EXPECT_STREQ(dir, "/tmp/a/");
    EXPECT_STREQ(name, "");
    SplitPath(dir, nullptr, "abc/defgh", 4);
    EXPECT_STREQ(dir, "abc");
}

// ---- Window saves ----------------------------------------------------------------------------

TEST_F(OpenSaveTest, ABitmapIsWrittenAsTheBlockItsFirstWordMeasures)
{
    std::vector<uint8_t> block(100, 0xEE);
    const uint32_t length = 60;
    std::memcpy(block.data(), &length, sizeof length);
    for (size_t i = 4; i < 60; ++i) block[i] = static_cast<uint8_t>(i);
    WriteFileBytes(Path("win.bmp"), std::string(500, 'z'));
    EXPECT_EQ(dl_SaveWindow(Path("win.bmp").c_str(), block.data(), nullptr, 0, 1), 1);
    EXPECT_EQ(ReadFileBytes(Path("win.bmp")), std::string(reinterpret_cast<const char*>(block.data()), 60));
    EXPECT_TRUE(host.messageBoxes.empty());
}

TEST_F(OpenSaveTest, BitmapFailuresAreShownAndStillAnswerOne)
{
    std::vector<uint8_t> block(40, 1);
    const uint32_t length = 40;
    std::memcpy(block.data(), &length, sizeof length);
    EXPECT_EQ(dl_SaveWindow(Path("nodir/win.bmp").c_str(), block.data(), nullptr, 0, 1), 1);
    ASSERT_EQ(host.messageBoxes.size(), 1u);
    EXPECT_EQ(host.messageBoxes[0].text, "Unable to open file");
    SetFileWriteLimitForTests(10);
    EXPECT_EQ(dl_SaveWindow(Path("win.bmp").c_str(), block.data(), nullptr, 0, 1), 1);
    SetFileWriteLimitForTests(-1);
    ASSERT_EQ(host.messageBoxes.size(), 2u);
    EXPECT_EQ(host.messageBoxes[1].text, "Error occurred on writing to output device");
}

TEST_F(OpenSaveTest, TheWindowOfAnImageIsSavedAsType1AndTheDisplayModeComesBack)
{
    ImageHeaderType* image = MakeImage(16);
    image->DisplayMode = 2;
    SetView3DOpen(image, 1);
    EXPECT_EQ(dl_SaveWindow(Path("w3d.tif").c_str(), nullptr, nullptr, 0, 2), 0);
    EXPECT_EQ(image->DisplayMode, 2u);
    const std::string with3D = ReadFileBytes(Path("w3d.tif"));
    EXPECT_EQ(with3D.size(), 7124u + 512);
    EXPECT_EQ(U32(with3D, 10 + 2006), 4u);
    // The image file writer sets DisplayMode by the 3-D view: without one the file holds 1.
    SetView3DOpen(image, 0);
    EXPECT_EQ(dl_SaveWindow(Path("w2d.tif").c_str(), nullptr, nullptr, 0, 2), 0);
    EXPECT_EQ(U32(ReadFileBytes(Path("w2d.tif")), 10 + 2006), 1u);
    EXPECT_EQ(image->DisplayMode, 2u);
}

TEST_F(OpenSaveTest, AnotherWindowTypeIsAProgramError)
{
    EXPECT_EQ(dl_SaveWindow(Path("w").c_str(), nullptr, nullptr, 0, 3), 1);
    EXPECT_TRUE(Contains(ReadLog(), "ERROR : Program error - dl_SaveWindow swt=3"));
}
