// Start-up, the callback table and the end of a run.
#include "support/test_host.h"
#include "host/globals.h"
#include "host/startup.h"
#include "store/data_list.h"
#include "store/memory.h"
#include "store/image_header.h"
#include "host/log.h"

#include <cstring>

class StartupTest : public LibraryTest {};

TEST_F(StartupTest, InitialiseAnswersZeroWithAFullTable)
{
    EXPECT_EQ(host.Start(), 0);
    EXPECT_TRUE(Initialised);
}

TEST_F(StartupTest, InitialiseTwiceShowsTheBoxAndTheFirstStands)
{
    ASSERT_EQ(host.Start("prog /MORE"), 0);
    ASSERT_TRUE(MoreMode);
    host.ClearCalls();
    EXPECT_EQ(host.Start("prog"), 1);
    ASSERT_EQ(host.messageBoxes.size(), 1u);
    EXPECT_EQ(host.messageBoxes[0].text, "ERROR : DLL Already Loaded");
    EXPECT_EQ(host.messageBoxes[0].caption, "ifwint1");
    EXPECT_TRUE(MoreMode);   // the first command line still stands
}

TEST_F(StartupTest, MoreAtTheVeryEndOfTheCommandLineIsFound)
{
    ASSERT_EQ(host.Start("prog.exe /MORE"), 0);
    EXPECT_TRUE(MoreMode);
}

TEST_F(StartupTest, MoreWithAFurtherLetterIsNotFound)
{
    ASSERT_EQ(host.Start("prog.exe /MOREX"), 0);
    EXPECT_FALSE(MoreMode);
}

TEST_F(StartupTest, DbgInLowerCaseIsFound)
{
    ASSERT_EQ(host.Start("prog.exe /dbg"), 0);
    EXPECT_TRUE(DebugMode);
    EXPECT_FALSE(MoreMode);
}

TEST_F(StartupTest, ANullSlotFourFailsThoughNothingCallsIt)
{
    ApCallbackFunctionTableType table = host.Table();
    table.ap_Reserved4 = nullptr;
    wint_DLLInitialiseType record{};
    EXPECT_EQ(dl_Initialise(&table, &record), 1);
    // The state stays as the start-up left it: the library is initialised and logs.
    EXPECT_TRUE(Initialised);
    EXPECT_NE(ReadLog().find("Tavrin Processing version - 310 (18)"), std::string::npos);
}

TEST_F(StartupTest, SlotsFortyOneToFortySixMayHoldAnything)
{
    ApCallbackFunctionTableType table = host.Table();
    table.ap_Unused41 = nullptr;
    table.ap_Unused42 = reinterpret_cast<void*>(0x1);
    table.ap_Unused46 = reinterpret_cast<void*>(0xdeadbeef);
    wint_DLLInitialiseType record{};
    EXPECT_EQ(dl_Initialise(&table, &record), 0);
}

TEST_F(StartupTest, SlotSixMayBeNull)
{
    ApCallbackFunctionTableType table = host.Table();
    table.ap_Reserved6 = nullptr;
    wint_DLLInitialiseType record{};
    EXPECT_EQ(dl_Initialise(&table, &record), 0);
}

namespace {

// A data item for tests that only need the list to be non-empty.
ImageHeaderType* AddImageItem()
{
    ImageHeaderType* item = AllocateListItem(CurrentItem);
    InitImageHeader(item, 16, 16);
    MemHandleType pair;
    AllocateMem(256, 2, &pair);
    item->PixHandle = pair.Handle;
    item->PixData = static_cast<uint16_t*>(pair.Ptr);
    CurrentItem = item;
    return item;
}

} // namespace

TEST_F(StartupTest, FinishOnCancelKeepsAllDataAndTheLogOpen)
{
    ASSERT_EQ(host.Start(), 0);
    AddImageItem();
    host.ClearCalls();
    host.messageBoxAnswers = {TV_IDCANCEL};
    EXPECT_EQ(dl_Finish(), 0);
    ASSERT_EQ(host.messageBoxes.size(), 1u);
    EXPECT_EQ(host.messageBoxes[0].text, "All data will be lost.  Exit program ?  ");
    EXPECT_EQ(host.messageBoxes[0].style & TV_MB_TYPEMASK, TV_MB_OKCANCEL);
    EXPECT_EQ(host.messageBoxes[0].style & TV_MB_DEFMASK, TV_MB_DEFBUTTON2);
    EXPECT_NE(FirstItem, nullptr);
    Log("after cancel\n");
    EXPECT_NE(ReadLog().find("after cancel"), std::string::npos);
}

TEST_F(StartupTest, FinishWithoutDataAsksOnlyExitProgram)
{
    ASSERT_EQ(host.Start(), 0);
    host.ClearCalls();
    host.messageBoxAnswers = {TV_IDOK, TV_IDNO};
    EXPECT_EQ(dl_Finish(), 1);
    ASSERT_EQ(host.messageBoxes.size(), 2u);
    EXPECT_EQ(host.messageBoxes[0].text, "Exit program ?  ");
    EXPECT_EQ(host.messageBoxes[1].text, "Save program settings ?");
    EXPECT_EQ(host.messageBoxes[1].style & TV_MB_TYPEMASK, TV_MB_YESNO);
    EXPECT_EQ(host.messageBoxes[1].style & TV_MB_DEFMASK, TV_MB_DEFBUTTON2);
}

TEST_F(StartupTest, FinishErasesEveryItemAndLogsTheEnd)
{
    ASSERT_EQ(host.Start(), 0);
    size_t blocksBefore = LiveBlockCount();
    AddImageItem();
    AddImageItem();
    ImageHeaderType* kept = CurrentItem;
    uint32_t id = kept->DataId;
    host.ClearCalls();
    host.messageBoxAnswers = {TV_IDOK, TV_IDNO};
    EXPECT_EQ(dl_Finish(), 1);
    EXPECT_EQ(FirstItem, nullptr);
    EXPECT_EQ(CurrentItem, nullptr);
    EXPECT_EQ(LiveBlockCount(), blocksBefore);
    EXPECT_EQ(host.Count("ap_Close3DView"), 2);
    EXPECT_EQ(host.Calls("ap_Close3DView")[1].args, std::to_string(id));
    std::string log = ReadLog();
    EXPECT_NE(log.find("\r\nProgram terminated normally.\r\n"), std::string::npos);
    // The mutex is closed: later lines are dropped.
    Log("after the end\n");
    EXPECT_EQ(ReadLog().find("after the end"), std::string::npos);
}

TEST_F(StartupTest, FinishWithSettingsSavedAnswersTwo)
{
    ASSERT_EQ(host.Start(), 0);
    std::filesystem::remove(home + "INIT/TavrinProc310-Admin.ini");
    host.messageBoxAnswers = {TV_IDOK, TV_IDYES};
    EXPECT_EQ(dl_Finish(), 2);
    std::string ini = ReadFileBytes(home + "INIT/TavrinProc310-Admin.ini");
    EXPECT_NE(ini.find("[Configuration-Admin_ENG]\r\n"), std::string::npos);
    EXPECT_NE(ini.find("Revision=310\r\n"), std::string::npos);
    EXPECT_NE(ini.find("Sub-Revision=18\r\n"), std::string::npos);
}

TEST_F(StartupTest, RevisionNumberIs700)
{
    EXPECT_EQ(dl_GetRevisionNumber(), 700);
}

TEST_F(StartupTest, StartUpStrings)
{
    wint_StartUpStringType s;
    std::memset(&s, 0x7F, sizeof s);
    dl_GetStartUpStrings(&s);
    EXPECT_GT(std::strlen(s.Text1), 0u);
    EXPECT_STREQ(s.Text2, "Software Version 310 <Base System version 700>");
    EXPECT_STREQ(s.Text3, "Tavrin Data Processing Version 3.10 (18)\n");
}

TEST_F(StartupTest, UserIdWithANewNameCreatesTheDirectoriesAndLogs)
{
    std::filesystem::remove_all(home);
    ASSERT_EQ(host.Start(), 0);
    dl_UserID("alice");
    EXPECT_EQ(UserName, "alice");
    EXPECT_TRUE(std::filesystem::is_directory(home));
    EXPECT_TRUE(std::filesystem::is_directory(home + "INIT"));
    EXPECT_NE(ReadLog().find("User ID: 'alice'\r\n"), std::string::npos);
}

TEST_F(StartupTest, UserIdBeforeInitialiseDoesNotLog)
{
    dl_UserID("bob");
    EXPECT_EQ(UserName, "bob");
    EXPECT_EQ(ReadLog(), "");
}

TEST_F(StartupTest, DeleteUserIdRemovesBothFilesAndResetsTheLastLoginNames)
{
    std::filesystem::create_directories(home + "INIT");
    WriteFileBytes(home + "INIT/TavrinProc310-carol.ini", "[x]\r\n");
    WriteFileBytes(home + "INIT/TavrinScan310-carol.ini", "[x]\r\n");
    WriteFileBytes(home + "INIT/UserInfo.ini",
                   "[General]\r\nLastLoginName_Processing=carol\r\n[carol]\r\nKey=1\r\n[dave]\r\nKey=2\r\n");
    dl_DeleteUserID("carol");
    EXPECT_FALSE(std::filesystem::exists(home + "INIT/TavrinProc310-carol.ini"));
    EXPECT_FALSE(std::filesystem::exists(home + "INIT/TavrinScan310-carol.ini"));
    EXPECT_EQ(ReadFileBytes(home + "INIT/UserInfo.ini"),
              "[General]\r\nLastLoginName_Processing=Admin\r\nLastLoginName_Scanning=Admin\r\n[dave]\r\nKey=2\r\n");
}

TEST_F(StartupTest, LocaleClassesCompareTwoCharactersCaseInsensitively)
{
    EXPECT_EQ(LocaleClassOf("en_GB.UTF-8"), 1);
    EXPECT_EQ(LocaleClassOf("JA_JP"), 2);
    EXPECT_EQ(LocaleClassOf("es"), 15);
    EXPECT_EQ(LocaleClassOf("ga_IE"), 12);
    EXPECT_EQ(LocaleClassOf("C"), 999);
    EXPECT_EQ(LocaleClassOf("ru_RU"), 999);
}

TEST_F(StartupTest, TheStartUpTakesTheDataDirectory)
{
    ASSERT_EQ(host.Start(), 0);
    std::string expected = data.substr(0, data.size() - 1);
    EXPECT_EQ(DataDir, std::filesystem::canonical(expected).string());
    EXPECT_EQ(ColourDir, DataDir + "/Col");
}

TEST_F(StartupTest, AFirstStartWritesTheSettingsFileWithDefaults)
{
    ASSERT_FALSE(std::filesystem::exists(home + "INIT/TavrinProc310-Admin.ini"));
    ASSERT_EQ(host.Start(), 0);
    std::string ini = ReadFileBytes(home + "INIT/TavrinProc310-Admin.ini");
    EXPECT_NE(ini.find("Revision=310"), std::string::npos);
}

TEST_F(StartupTest, ASettingsFileOfAnotherRevisionIsRefusedWith32794)
{
    std::filesystem::create_directories(home + "INIT");
    WriteFileBytes(home + "INIT/TavrinProc310-Admin.ini", "[Configuration-Admin_ENG]\r\nRevision=300\r\nSub-Revision=05\r\n");
    ASSERT_EQ(host.Start(), 0);
    ASSERT_EQ(host.messageBoxes.size(), 1u);
    EXPECT_EQ(host.messageBoxes[0].text, "Error on reading configuration file");
}
