// The settings file of the user: storing, retrieving, taking over an older release's file.
#include "support/test_host.h"
#include "host/globals.h"

class SettingsFilesTest : public LibraryTest {
protected:
    std::string UserFile(const char* stem = "TavrinProc310") const
    {
        return home + "INIT/" + stem + "-Admin.ini";
    }
};

TEST_F(SettingsFilesTest, StoreAndRetrieveShowTheWaitText)
{
    ASSERT_EQ(host.Start(), 0);
    host.ClearCalls();
    dl_StoreConfigurationToDisk();
    dl_RetriveConfigurationFromDisk();
    auto waits = host.Calls("ap_ShowWait");
    ASSERT_EQ(waits.size(), 2u);
    EXPECT_EQ(waits[0].args, "'Storing configuration in file'");
    EXPECT_EQ(waits[1].args, "'Storing configuration in file'");
    EXPECT_EQ(host.Count("ap_HideWait"), 2);
    EXPECT_NE(ReadLog().find("Retrieve software configuration from disk\r\n"), std::string::npos);
}

TEST_F(SettingsFilesTest, UpgradeStopsWhenThisReleasesFileHasARevision)
{
    ASSERT_EQ(host.Start(), 0);   // the first start writes the file with "Revision"
    WriteFileBytes(UserFile("TavrinProc300"), "[Configuration-Admin_ENG]\r\nRevision=300\r\n");
    host.ClearCalls();
    EXPECT_EQ(dl_UpgradeINIfilesFromOldSoftwareVersion(), 0);
    EXPECT_TRUE(host.messageBoxes.empty());
}

TEST_F(SettingsFilesTest, UpgradeWithNoOlderFileAnswersZero)
{
    std::filesystem::create_directories(home + "INIT");
    EXPECT_EQ(dl_UpgradeINIfilesFromOldSoftwareVersion(), 0);
    EXPECT_TRUE(host.messageBoxes.empty());
}

TEST_F(SettingsFilesTest, UpgradeCopiesTheNewestOlderFileOnYes)
{
    std::filesystem::create_directories(home + "INIT");
    WriteFileBytes(UserFile("TavrinProc218"),
                   "[Configuration-Admin_ENG]\r\nRevision=218\r\nFonts=00\r\nWallpaper=x\r\nKeep=1\r\n");
    WriteFileBytes(UserFile("TavrinProc215"), "[Configuration-Admin_ENG]\r\nRevision=215\r\n");
    host.messageBoxAnswers = {TV_IDYES};
    EXPECT_EQ(dl_UpgradeINIfilesFromOldSoftwareVersion(), 1);
    ASSERT_EQ(host.messageBoxes.size(), 1u);
    EXPECT_EQ(host.messageBoxes[0].text, "Copy User settings from Tavrin version 2.18?");
    EXPECT_EQ(host.messageBoxes[0].style & TV_MB_TYPEMASK, TV_MB_YESNO);
    // Fonts of a release below 300 and the wallpaper go; everything else is kept.
    EXPECT_EQ(ReadFileBytes(UserFile()), "[Configuration-Admin_ENG]\r\nRevision=310\r\nKeep=1\r\nSub-Revision=18\r\n");
}

TEST_F(SettingsFilesTest, UpgradeFrom300KeepsTheFonts)
{
    std::filesystem::create_directories(home + "INIT");
    WriteFileBytes(UserFile("TavrinProc300"), "[Configuration-Admin_ENG]\r\nRevision=300\r\nFonts=00\r\n");
    host.messageBoxAnswers = {TV_IDYES};
    EXPECT_EQ(dl_UpgradeINIfilesFromOldSoftwareVersion(), 1);
    EXPECT_EQ(host.messageBoxes[0].text, "Copy User settings from Tavrin version 3.00?");
    EXPECT_NE(ReadFileBytes(UserFile()).find("Fonts=00"), std::string::npos);
}

TEST_F(SettingsFilesTest, UpgradeDeclinedCopiesNothing)
{
    std::filesystem::create_directories(home + "INIT");
    WriteFileBytes(UserFile("TavrinProc219"), "[Configuration-Admin_ENG]\r\nRevision=219\r\n");
    host.messageBoxAnswers = {TV_IDNO};
    EXPECT_EQ(dl_UpgradeINIfilesFromOldSoftwareVersion(), 0);
    EXPECT_FALSE(std::filesystem::exists(UserFile()));
}
