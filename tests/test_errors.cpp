// Numbered errors and their display.
#include "support/test_host.h"
#include "host/errors.h"

#include <cerrno>
#include <cstring>

class ErrorsTest : public LibraryTest {
protected:
    void SetUp() override
    {
        LibraryTest::SetUp();
        ASSERT_EQ(host.Start(), 0);
        host.ClearCalls();
    }
    int Occurrences(const std::string& text)
    {
        std::string log = ReadLog();
        int n = 0;
        for (size_t at = log.find(text); at != std::string::npos; at = log.find(text, at + 1)) ++n;
        return n;
    }
};

TEST_F(ErrorsTest, OfTwelveProgramErrorsOnlyTheTwelfthShowsABox)
{
    for (int i = 1; i <= 12; ++i) {
        ProgramError("step %d", i);
        EXPECT_EQ(host.messageBoxes.size(), i < 12 ? 0u : 1u) << i;
    }
    ASSERT_EQ(host.messageBoxes.size(), 1u);
    EXPECT_EQ(host.messageBoxes[0].caption, "Tavrin Processing");
    EXPECT_EQ(host.messageBoxes[0].style, TV_MB_OK | TV_MB_ICONSTOP | TV_MB_TASKMODAL);
    EXPECT_EQ(host.messageBoxes[0].text.rfind("Program error - step 12", 0), 0u);
    for (int i = 1; i <= 12; ++i)
        EXPECT_EQ(Occurrences("ERROR : Program error - step " + std::to_string(i) + " "), 1) << i;
}

TEST_F(ErrorsTest, AnyBoxResetsTheCountOfProgramErrors)
{
    for (int i = 0; i < 10; ++i) ProgramError("quiet");
    Error(ERR_NO_MEMORY);   // a box of another number
    ASSERT_EQ(host.messageBoxes.size(), 1u);
    for (int i = 0; i < 11; ++i) ProgramError("again");
    EXPECT_EQ(host.messageBoxes.size(), 1u);
    ProgramError("twelfth");
    EXPECT_EQ(host.messageBoxes.size(), 2u);
}

TEST_F(ErrorsTest, ProgramErrorTextIsPaddedToSeventyCharacters)
{
    for (int i = 0; i < 11; ++i) ProgramError("x");
    ProgramError("GetImageData %d %d", 3, 4);
    ASSERT_EQ(host.messageBoxes.size(), 1u);
    EXPECT_EQ(host.messageBoxes[0].text, "Program error - GetImageData 3 4" + std::string(70 - 16, ' '));
}

TEST_F(ErrorsTest, AMessageWithALineFeedShowsAndLogsOnlyTheFirstLine)
{
    ShowErrorText(ERR_NO_MEMORY, "first line\nsecond line");
    ASSERT_EQ(host.messageBoxes.size(), 1u);
    EXPECT_EQ(host.messageBoxes[0].text, "first line");
    EXPECT_EQ(Occurrences("ERROR : first line\r\n"), 1);
    EXPECT_EQ(Occurrences("second line"), 0);
}

TEST_F(ErrorsTest, AnUnknownNumberAboveTheTableIsTheProgramErrorInvalidErrorNumber)
{
    Error(40000);
    EXPECT_EQ(Occurrences("ERROR : Program error - Invalid error number 9c40"), 1);
    Error(32801);   // a gap inside the table
    EXPECT_EQ(Occurrences("ERROR : Program error - Invalid error number 8021"), 1);
    EXPECT_TRUE(host.messageBoxes.empty());
}

TEST_F(ErrorsTest, NumberZeroDoesNothing)
{
    std::string before = ReadLog();
    Error(0);
    EXPECT_EQ(ReadLog(), before);
    EXPECT_TRUE(host.messageBoxes.empty());
}

TEST_F(ErrorsTest, TableTextsShowAsTheyStand)
{
    Error(ERR_INVALID_HEADER);
    Error(ERR_NO_IMAGES);
    Error(33564);
    ASSERT_EQ(host.messageBoxes.size(), 3u);
    EXPECT_EQ(host.messageBoxes[0].text, "Invalid header");
    EXPECT_EQ(host.messageBoxes[1].text, "No images in memory");
    EXPECT_EQ(host.messageBoxes[2].text,
              "The topo image is too rough compared to the SPS displacement for a Cross Section Dislpay");
    EXPECT_EQ(Occurrences("ERROR : Invalid header\r\n"), 1);
}

TEST_F(ErrorsTest, SystemErrorsShowTheSystemText)
{
    Error(ENOENT);
    ASSERT_EQ(host.messageBoxes.size(), 1u);
    EXPECT_EQ(host.messageBoxes[0].text, std::strerror(ENOENT));
    Error(5);   // not one of the accepted system errors
    EXPECT_EQ(Occurrences("Program error - Invalid error number 5"), 1);
}

TEST_F(ErrorsTest, FormattedNumbersEmbedTheirText)
{
    Error(ERR_COMMAND_LINE, "bad switch %s", "/X");
    Error(35076, "%d", 7);
    Error(ERR_TIGA);
    Error(ERR_HELP_FILE, "Acrobat Reader");
    ASSERT_EQ(host.messageBoxes.size(), 4u);
    EXPECT_EQ(host.messageBoxes[0].text, "Command line - bad switch /X" + std::string(70 - 13, ' '));
    EXPECT_EQ(host.messageBoxes[1].text, "Lock-In-Amp: 7" + std::string(69, ' '));
    EXPECT_EQ(host.messageBoxes[2].text, " Error with TIGA 8d00");
    EXPECT_EQ(host.messageBoxes[3].text,
              "Error on loading help file. Please try again, and also ensure Acrobat Reader is installed.");
}

TEST_F(ErrorsTest, DlErrorServesTheApplicationRange)
{
    dl_Error(ERR_APPLICATION, "%s %d", "value", 3);
    dl_Error(ERR_MULTISPEC_LOAD);
    dl_Error(ERR_MEASURE_EXPORT);
    ASSERT_EQ(host.messageBoxes.size(), 3u);
    EXPECT_EQ(host.messageBoxes[0].text, "Application Error: value 3" + std::string(70 - 7, ' '));
    EXPECT_EQ(host.messageBoxes[1].text, "Failed to load Multi Spectra Display file.");
    EXPECT_EQ(host.messageBoxes[2].text, "Failed to export Measure data.");
}

TEST_F(ErrorsTest, WithALogFileThatCannotBeOpenedNoCallFails)
{
    // The log path is a directory: it can be neither opened nor created.
    std::string dir = home + "TavrinProc310.log";
    std::filesystem::remove(dir);
    std::filesystem::create_directories(dir);
    Error(ERR_NO_MEMORY);
    ProgramError("still fine");
    dl_Log2Disk("line %d\n", 1);
    EXPECT_EQ(host.messageBoxes.size(), 1u);
    EXPECT_TRUE(std::filesystem::is_directory(dir));
}
