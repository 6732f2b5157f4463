// The command log.
#include "support/test_host.h"
#include "host/globals.h"
#include "host/log.h"
#include "host/startup.h"

#include <cstdio>

class LogTest : public LibraryTest {};

TEST_F(LogTest, TheBannerOpensTheLogWithoutTimeStamps)
{
    ASSERT_EQ(host.Start(), 0);
    const std::string banner =
        "\r\nSPM command log on 22/11/2026 at 14:05:09.\r\n"
        "Tavrin Processing version - 310 (18)\r\n"
        "Tavrin Scanning version - 7.00 (42)\r\n";
    EXPECT_EQ(ReadLog().substr(0, banner.size()), banner);
}

TEST_F(LogTest, DebugModeAddsTheCommandLineToTheBanner)
{
    ASSERT_EQ(host.Start("prog /DBG"), 0);
    EXPECT_NE(ReadLog().find("Cmdline='prog /DBG'\r\n"), std::string::npos);
}

TEST_F(LogTest, LinesCarryTheTimeStampAndEndInCrLf)
{
    ASSERT_EQ(host.Start(), 0);
    Log("Rotate '%s' by 90 degrees.\n", "a.tif");
    std::string log = ReadLog();
    EXPECT_NE(log.find("14:05:09.250>  Rotate 'a.tif' by 90 degrees.\r\n"), std::string::npos);
}

TEST_F(LogTest, MoreModeUsesTheLongPrefix)
{
    ASSERT_EQ(host.Start("prog /MORE"), 0);
    Log("x\n");
    EXPECT_NE(ReadLog().find("Ver42. 14:05:09.250)>  x\r\n"), std::string::npos);
}

TEST_F(LogTest, LogRawWritesTextOnly)
{
    ASSERT_EQ(host.Start(), 0);
    LogRaw("raw %d\n", 5);
    std::string log = ReadLog();
    EXPECT_EQ(log.substr(log.size() - 7), "raw 5\r\n");
}

TEST_F(LogTest, DlLog2DiskTimeStampsWithoutTheMutex)
{
    // Before the start-up there is no mutex: Log drops its line, dl_Log2Disk does not.
    SetLogFileName(home + "TavrinProc310.log");
    Log("dropped\n");
    dl_Log2Disk("kept %s\n", "here");
    EXPECT_EQ(ReadLog(), "14:05:09.250>  kept here\r\n");
}

TEST_F(LogTest, InitLogFileNameDeletesTheFile)
{
    WriteFileBytes(home + "TavrinProc310.log", "old run\r\n");
    dl_InitLogFileName();
    EXPECT_EQ(LogFileName(), home + "TavrinProc310.log");
    EXPECT_FALSE(std::filesystem::exists(home + "TavrinProc310.log"));
    ASSERT_EQ(host.Start(), 0);
    EXPECT_EQ(ReadLog().find("old run"), std::string::npos);
}

TEST_F(LogTest, DataLogFileNameIsInTheHomeDirectory)
{
    char path[260];
    dl_GetDataLogFileName(path);
    EXPECT_EQ(std::string(path), home + "tavrin_datalist.dat");
}

TEST_F(LogTest, OutputDebugStringGoesToThePlatformStream)
{
    dl_OutputDebugString("value %d\n", 12);
    ASSERT_EQ(host.debugOutput.size(), 1u);
    EXPECT_EQ(host.debugOutput[0], "value 12\n");
}

TEST_F(LogTest, ALongLineIsCutToTheBuffer)
{
    ASSERT_EQ(host.Start(), 0);
    std::string longText(700, 'a');
    Log("%s\n", longText.c_str());
    std::string log = ReadLog();
    size_t at = log.find("aaaa");
    ASSERT_NE(at, std::string::npos);
    // 511 characters and the terminator fill the buffer: the line feed is cut off too.
    EXPECT_EQ(log.find_first_not_of('a', at), std::string::npos);
    EXPECT_EQ(log.size() - at, 511u);
}
