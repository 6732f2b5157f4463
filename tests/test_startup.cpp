// Start-up, the callback table and the end of a run.
#include "support/test_host.h"
#include "host/globals.h"
#include "host/startup.h"
#include "store/data_list.h"
#include "store/memory.h"

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
