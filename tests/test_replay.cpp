// Series names and the replay of a numbered series of image files.
#include "test_tiff_support.h"
#include "display/vfs.h"
#include "files/replay.h"
#include "files/tiff_write.h"
#include "host/log.h"
#include "host/prompts.h"
#include "store/data_list_display.h"

#include <filesystem>

using tifftest::MakeImage;

class ReplayTest : public LibraryTest {
protected:
    void SetUp() override
    {
        LibraryTest::SetUp();
        ASSERT_EQ(host.Start(), 0);
        host.ClearCalls();
    }

    // An image file of the series with its own creation stamp.
    void SaveSeriesFile(const std::string& name, uint64_t created, uint32_t displayMode = 1)
    {
        ImageHeaderType* image = MakeImage(16, name.c_str(), static_cast<uint32_t>(created));
        image->CreatedFileTime = created;
        ASSERT_EQ(saveTiffImage(image, Path(name).c_str(), 0), 0);
        EraseItem(image);
        if (displayMode != 1) {
            std::string bytes = ReadFileBytes(Path(name));
            std::memcpy(bytes.data() + 10 + 2006, &displayMode, sizeof displayMode);
            WriteFileBytes(Path(name), bytes);
        }
    }
};

TEST_F(ReplayTest, APathEndingInTwoDigitsMakesASeriesOfTwoDigitsFromZero)
{
    ParseSeriesName("C:\\d\\scan05.tif");
    EXPECT_EQ(FileSeries.Digits, 2);
    EXPECT_STREQ(FileSeries.Base, "C:\\d\\scan00");
    EXPECT_STREQ(FileSeries.Name, "C:\\d\\scan00.tif");
    ParseSeriesName("scan07");
    EXPECT_EQ(FileSeries.Digits, 2);
    EXPECT_STREQ(FileSeries.Base, "scan00");
    // Nine digits are not ten: the last two count.
    ParseSeriesName("123456789.tif");
    EXPECT_EQ(FileSeries.Digits, 2);
    EXPECT_STREQ(FileSeries.Base, "123456700");
}

TEST_F(ReplayTest, APathEndingInTenDigitsOrInNoneMakesASeriesOfTen)
{
    ParseSeriesName("run0000000042.tif");
    EXPECT_EQ(FileSeries.Digits, 10);
    EXPECT_STREQ(FileSeries.Base, "run0000000000");
    ParseSeriesName("plain.tif");
    EXPECT_EQ(FileSeries.Digits, 10);
    EXPECT_STREQ(FileSeries.Base, "plain0000000000");
    EXPECT_STREQ(FileSeries.Name, "plain0000000000.tif");
    ParseSeriesName("x5.tif");
    EXPECT_EQ(FileSeries.Digits, 10);
    EXPECT_STREQ(FileSeries.Base, "x50000000000");
}

TEST_F(ReplayTest, NextCountsUpAndFileIGivesTheNumberInTheSeriesWidth)
{
    ParseSeriesName("scan05.tif");
    EXPECT_STREQ(NextSeriesName(), "scan01.tif");
    EXPECT_STREQ(NextSeriesName(), "scan02.tif");
    EXPECT_STREQ(FileSeries.Base, "scan02");
    EXPECT_STREQ(SeriesFileName(7), "scan07.tif");
    EXPECT_STREQ(SeriesFileName(42), "scan42.tif");
    ParseSeriesName("run.tif");
    EXPECT_STREQ(NextSeriesName(), "run0000000001.tif");
    EXPECT_STREQ(SeriesFileName(12345), "run0000012345.tif");
}

TEST_F(ReplayTest, ASeriesNumbered00And01And03CountsTwo)
{
    SaveSeriesFile("img00.tif", 1);
    SaveSeriesFile("img01.tif", 2);
    SaveSeriesFile("img03.tif", 3);
    EXPECT_EQ(dl_ReplayInitialise(Path("img17.tif").c_str()), 2);
    EXPECT_TRUE(host.messageBoxes.empty());
}

TEST_F(ReplayTest, ADirectoryEndsTheCount)
{
    SaveSeriesFile("dir00.tif", 1);
    std::filesystem::create_directory(Path("dir01.tif"));
    SaveSeriesFile("dir02.tif", 3);
    EXPECT_EQ(dl_ReplayInitialise(Path("dir00.tif").c_str()), 1);
}

TEST_F(ReplayTest, ASeriesWithoutFilesIsAnInvalidReplayPath)
{
    const int cleared = DisplayRequests().cleared;
    EXPECT_EQ(dl_ReplayInitialise(Path("none00.tif").c_str()), 0);
    ASSERT_EQ(host.messageBoxes.size(), 1u);
    EXPECT_EQ(host.messageBoxes[0].text, "Invalid path specified for replay sequence");
    EXPECT_EQ(DisplayRequests().cleared, cleared + 1);
    EXPECT_EQ(dl_ReplayDisplay(0), 0u);
}

TEST_F(ReplayTest, TheReplayShowsEachFileInTurnAndAnswersItsCreationStamp)
{
    const uint64_t stamps[] = {133000000000000000ull, 133000000010000000ull, 133000000025000000ull};
    SaveSeriesFile("rep00.tif", stamps[0]);
    SaveSeriesFile("rep01.tif", stamps[1]);
    SaveSeriesFile("rep02.tif", stamps[2]);
    ImageHeaderType* kept = MakeImage(16, "kept");
    const size_t blocks = LiveBlockCount();
    ASSERT_EQ(dl_ReplayInitialise(Path("rep00.tif").c_str()), 3);
    for (int i = 0; i < 3; ++i) {
        const int shown = DisplayRequests().shown;
        EXPECT_EQ(dl_ReplayDisplay(i), stamps[i]) << i;
        EXPECT_EQ(DisplayRequests().shown, shown + 1) << i;
        EXPECT_EQ(FirstItem, kept);
        EXPECT_EQ(CountItems(), 1);
        EXPECT_EQ(CurrentItem, kept);
        EXPECT_EQ(LiveBlockCount(), blocks);
        EXPECT_FALSE(ReplayFlag);
    }
    EXPECT_EQ(dl_ReplayDisplay(3), 0u);
    EXPECT_EQ(dl_ReplayDisplay(-1), 0u);
    EXPECT_TRUE(host.messageBoxes.empty());
    EXPECT_FALSE(ReadLog().find("Load ") != std::string::npos);
}

TEST_F(ReplayTest, EachReplayDisplayStartsAtTheTopLeftOfTheFrameStore)
{
    FSState.CursorX = 128;
    FSState.CursorY = 256;
    EXPECT_EQ(dl_ReplayDisplay(5), 0u);
    EXPECT_EQ(FSState.CursorX, 0);
    EXPECT_EQ(FSState.CursorY, 0);
}

namespace {

struct FlagWatch {
    int lines = 0;
    int linesDuringReplay = 0;
};

void WatchReplayFlag(const char* text, void* context)
{
    auto* watch = static_cast<FlagWatch*>(context);
    if (std::strstr(text, "loadmiage DisplayMode=3")) {
        ++watch->lines;
        if (ReplayFlag) ++watch->linesDuringReplay;
    }
}

} // namespace

TEST_F(ReplayTest, TheReplayFlagIsSetWhileTheFileIsShown)
{
    // A file of DisplayMode 3 is reported while it is shown: the report sees the flag.
    SaveSeriesFile("flag00.tif", 5, 3);
    ASSERT_EQ(dl_ReplayInitialise(Path("flag00.tif").c_str()), 1);
    FlagWatch watch;
    SetLogObserver(WatchReplayFlag, &watch);
    EXPECT_EQ(dl_ReplayDisplay(0), 5u);
    SetLogObserver(nullptr, nullptr);
    EXPECT_GE(watch.lines, 1);
    EXPECT_EQ(watch.linesDuringReplay, watch.lines);
    EXPECT_FALSE(ReplayFlag);
}
