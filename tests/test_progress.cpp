// The progress and cancel dialog, through a host's platform table and through the headless
// default.
#include "support/test_host.h"
#include "host/progress.h"
#include "platform/platform_table.h"

class ProgressTest : public LibraryTest {};

TEST_F(ProgressTest, TheBarRunsFromZeroTo39AndWraps)
{
    ASSERT_TRUE(OpenProcessDialog("Now searching..."));
    EXPECT_EQ(host.Count("ProgressOpen"), 1);
    EXPECT_TRUE(OpenProcessDialog("again"));   // it exists already: nothing happens
    EXPECT_EQ(host.Count("ProgressOpen"), 1);
    for (int i = 1; i <= 39; ++i) ProcessDialogStep(true);
    EXPECT_EQ(host.progressBar, 39);
    ProcessDialogStep(true);
    EXPECT_EQ(host.progressBar, 0);
    ProcessDialogStep(false);
    EXPECT_EQ(ProcessDialogBar(), 0);
    CloseProcessDialog();
    EXPECT_FALSE(host.progressOpen);
}

TEST_F(ProgressTest, CancelIsReadAfterTheMessagePump)
{
    EXPECT_EQ(ProcessDialogCancelled(), 0);   // no dialog
    ASSERT_TRUE(OpenProcessDialog("Work"));
    EXPECT_EQ(ProcessDialogCancelled(), 0);
    host.cancelPending = true;
    EXPECT_EQ(ProcessDialogCancelled(), 0);   // not pumped yet
    ProcessDialogStep(false);
    EXPECT_EQ(ProcessDialogCancelled(), 1);
    ProcessDialogClearCancel();
    EXPECT_EQ(ProcessDialogCancelled(), 0);
    CloseProcessDialog();
}

TEST_F(ProgressTest, TheTwoLabelsHaveTheirControlIds)
{
    ASSERT_TRUE(OpenProcessDialog("Work"));
    ProcessDialogText1("C:\\\\data");
    ProcessDialogText2("The number of hits : 3");
    EXPECT_EQ(host.progressText1, "C:\\\\data");
    EXPECT_EQ(host.progressText2, "The number of hits : 3");
    EXPECT_EQ(host.Calls("ProgressSetText")[0].args, "1038 'C:\\\\data'");
    EXPECT_EQ(host.Calls("ProgressSetText")[1].args, "1036 'The number of hits : 3'");
    CloseProcessDialog();
}

TEST_F(ProgressTest, TheHeadlessDefaultKeepsTheStateForReading)
{
    dl_SetPlatformTable(nullptr);
    ASSERT_TRUE(OpenProcessDialog("Headless"));
    const HeadlessPlatformState& s = HeadlessState();
    EXPECT_TRUE(s.progressOpen);
    EXPECT_EQ(s.progressTitle, "Headless");
    ProcessDialogStep(true);
    ProcessDialogStep(true);
    EXPECT_EQ(s.progressBar, 2);
    ProcessDialogText1("one");
    ProcessDialogText2("two");
    EXPECT_EQ(s.progressText1, "one");
    EXPECT_EQ(s.progressText2, "two");
    HeadlessState().cancelPending = true;
    ProcessDialogStep(false);
    EXPECT_EQ(ProcessDialogCancelled(), 1);
    EXPECT_FALSE(HeadlessState().cancelPending);
    CloseProcessDialog();
    EXPECT_FALSE(s.progressOpen);
}

TEST_F(ProgressTest, FailuresToCreateTheDialogShowTheirBoxes)
{
    TavrinPlatformTable platform = host.Platform();
    platform.ProgressOpen = [](void*, const char*) { return int32_t(TV_PROGRESS_CANNOT_CREATE); };
    dl_SetPlatformTable(&platform);
    EXPECT_FALSE(OpenProcessDialog("x"));
    platform.ProgressOpen = [](void*, const char*) { return int32_t(TV_PROGRESS_NO_WINDOW); };
    dl_SetPlatformTable(&platform);
    EXPECT_FALSE(OpenProcessDialog("x"));
    ASSERT_EQ(host.messageBoxes.size(), 2u);
    EXPECT_EQ(host.messageBoxes[0].text, "Cannnot create ProcessCancelDlg");
    EXPECT_EQ(host.messageBoxes[1].text, "Cannnot get HWND");
    EXPECT_FALSE(ProcessDialogOpen());
}

TEST_F(ProgressTest, AScrollableMessageBoxShowsTheWholeText)
{
    CScrollableMessageBox("Points", "1 2\n3 4\n");
    EXPECT_EQ(host.Calls("ScrollableMessageBox")[0].args, "'Points' '1 2\n3 4\n'");
}
