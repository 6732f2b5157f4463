// The entry-point frame: trace, prompts, value entry, wait text, hourglass, text lines.
#include "support/test_host.h"
#include "host/entry.h"
#include "host/globals.h"
#include "host/prompts.h"
#include "host/trace.h"
#include "host/wait.h"
#include "platform/platform_table.h"
#include "store/image_header.h"
#include "store/memory.h"

#include <cstring>

class PromptsTest : public LibraryTest {
protected:
    void SetUp() override
    {
        LibraryTest::SetUp();
        ASSERT_EQ(host.Start(), 0);
        host.ClearCalls();
    }
};

TEST_F(PromptsTest, TraceLevelTwoLogsOnlyInDebugModeAndShowsNothing)
{
    EXPECT_EQ(Trace(2, nullptr, "dl_Test", "ifwint1", 8192), 0);
    EXPECT_EQ(ReadLog().find("dl_Test"), std::string::npos);
    DebugMode = true;
    TraceEntry("dl_Convolve3x3: %d", 5);
    EXPECT_NE(ReadLog().find("dl_Convolve3x3: 5\r\n"), std::string::npos);
    EXPECT_TRUE(host.messageBoxes.empty());
}

TEST_F(PromptsTest, TraceLevelOneShowsABoxAndAnswersIt)
{
    host.messageBoxAnswers = {TV_IDCANCEL};
    EXPECT_EQ(Trace(1, nullptr, "Look", "ifwint1", 8192 | TV_MB_OKCANCEL), TV_IDCANCEL);
    ASSERT_EQ(host.messageBoxes.size(), 1u);
    EXPECT_EQ(host.messageBoxes[0].caption, "ifwint1");
    EXPECT_EQ(host.messageBoxes[0].style, 8192u | TV_MB_OKCANCEL);
    EXPECT_FALSE(TraceBoxOpen());
    EXPECT_EQ(Trace(0, nullptr, "nothing", "ifwint1", 0), 0);
    EXPECT_EQ(host.messageBoxes.size(), 1u);
}

TEST_F(PromptsTest, AskYesNoCancelAnswersTwoOneZero)
{
    host.messageBoxAnswers = {TV_IDYES, TV_IDNO, TV_IDCANCEL};
    EXPECT_EQ(AskYesNoCancel("Q", true), 2);
    EXPECT_EQ(AskYesNoCancel("Q", true), 1);
    EXPECT_EQ(AskYesNoCancel("Q", true), 0);
    EXPECT_EQ(host.messageBoxes[0].style,
              TV_MB_YESNOCANCEL | TV_MB_ICONQUESTION | TV_MB_TASKMODAL | TV_MB_DEFBUTTON1);
    EXPECT_EQ(host.messageBoxes[0].caption, "Tavrin Processing");
}

TEST_F(PromptsTest, AskYesNoDefaultsToNoWhenTheFirstFlagIsZero)
{
    EXPECT_EQ(AskYesNo("Q", false), 0);
    EXPECT_EQ(AskYesNo("Q", true), 1);
    EXPECT_EQ(host.messageBoxes[0].style & TV_MB_DEFMASK, TV_MB_DEFBUTTON2);
    EXPECT_EQ(host.messageBoxes[1].style & TV_MB_DEFMASK, TV_MB_DEFBUTTON1);
}

TEST_F(PromptsTest, AskOkCancelAnswersOneForOk)
{
    host.messageBoxAnswers = {TV_IDOK, TV_IDCANCEL};
    EXPECT_EQ(AskOkCancel("Q", false, true), 1);
    EXPECT_EQ(AskOkCancel("Q", false, true), 0);
    EXPECT_EQ(host.messageBoxes[0].style, TV_MB_OKCANCEL | TV_MB_ICONWARNING | TV_MB_TASKMODAL | TV_MB_DEFBUTTON2);
}

TEST_F(PromptsTest, ShowInfoHasTheInformationOrWarningIcon)
{
    ShowInfo("Data loaded successfully.");
    ShowInfo("careful", "Caption", true);
    EXPECT_EQ(host.messageBoxes[0].style, TV_MB_OK | TV_MB_ICONINFORMATION | TV_MB_TASKMODAL);
    EXPECT_EQ(host.messageBoxes[0].caption, "Tavrin Processing");
    EXPECT_EQ(host.messageBoxes[1].style, TV_MB_OK | TV_MB_ICONWARNING | TV_MB_TASKMODAL);
    EXPECT_EQ(host.messageBoxes[1].caption, "Caption");
}

TEST_F(PromptsTest, ShowUserMessageIsSuppressedWhileAReplayRuns)
{
    ReplayFlag = true;
    EXPECT_NE(ShowUserMessage("hidden"), 0);
    EXPECT_TRUE(host.messageBoxes.empty());
    ReplayFlag = false;
    ShowUserMessage("shown");
    ASSERT_EQ(host.messageBoxes.size(), 1u);
    EXPECT_EQ(host.messageBoxes[0].style, TV_MB_OK | TV_MB_ICONSTOP | TV_MB_TASKMODAL);
}

TEST_F(PromptsTest, ValueEntriesAnswerNonZeroWhenAccepted)
{
    host.entryAnswers = {"42", "2.5", "1.5 -3"};
    int32_t i = 0;
    double d = 0, a = 0, b = 0;
    EXPECT_EQ(EnterInteger(7, "Count:", "Title", &i, 5), 1);
    EXPECT_EQ(i, 42);
    EXPECT_EQ(EnterDouble(1.0, "Fixed value [nm]:", "Max Z value", &d, 10), 1);
    EXPECT_EQ(d, 2.5);
    EXPECT_EQ(EnterDoublePair(1, 2, "Fixed max value [nA]:", "Fixed min value [nA]:", "T", &a, &b, 10), 1);
    EXPECT_EQ(a, 1.5);
    EXPECT_EQ(b, -3.0);
    EXPECT_EQ(EnterInteger(7, "Count:", "Title", &i, 5), 0);   // no answer: cancelled
    EXPECT_EQ(host.Calls("ap_EnterDouble")[0].args, "1 'Fixed value [nm]:' 'Max Z value' 10");
}

TEST_F(PromptsTest, EditTitleStripsTrailingBlanksAndKeeps39Characters)
{
    ImageHeaderType* r = AllocateHeader();
    std::strcpy(r->Title, "old");
    host.entryAnswers = {"New title   "};
    EXPECT_EQ(EditTitle(r, "Edit"), 1);
    EXPECT_STREQ(r->Title, "New title");
    EXPECT_EQ(host.Calls("ap_EnterString")[0].args, "'old' 'Enter title :' 'Edit' 40");
    host.entryAnswers = {std::string(60, 'x')};
    EXPECT_EQ(EditTitle(r, "Edit"), 1);
    EXPECT_EQ(std::strlen(r->Title), 39u);
    EXPECT_EQ(EditTitle(r, "Edit"), 0);   // cancelled: the title stays
    EXPECT_EQ(std::strlen(r->Title), 39u);
    FreeHeader(r);
}

TEST_F(PromptsTest, ASecondShowWaitReplacesTheFirst)
{
    ShowWait("Loading - Please wait");
    ShowWait("Please wait %d/%d", 2, 10);
    HideWait();
    ASSERT_EQ(host.Count("ap_ShowWait"), 2);
    EXPECT_EQ(host.Calls("ap_ShowWait")[1].args, "'Please wait 2/10'");
    EXPECT_EQ(host.Count("ap_HideWait"), 2);
    std::vector<std::string> order;
    for (const auto& c : host.calls)
        if (c.name == "ap_ShowWait" || c.name == "ap_HideWait") order.push_back(c.name);
    EXPECT_EQ(order, (std::vector<std::string>{"ap_ShowWait", "ap_HideWait", "ap_ShowWait", "ap_HideWait"}));
    EXPECT_FALSE(WaitShown());
}

TEST_F(PromptsTest, TheHourglassIsCountedAndANegativeCountIsReported)
{
    ap_SetHourGlass(true);
    ap_SetHourGlass(true);
    ap_SetHourGlass(false);
    EXPECT_EQ(HourGlassCount(), 1);
    ap_SetHourGlass(false);
    EXPECT_EQ(HourGlassCount(), 0);
    EXPECT_EQ(host.Count("SetWaitCursor"), 2);
    EXPECT_EQ(host.Calls("SetWaitCursor")[0].args, "1");
    EXPECT_EQ(host.Calls("SetWaitCursor")[1].args, "0");
    ap_SetHourGlass(false);
    EXPECT_NE(ReadLog().find("Program error - ap_SetHourGlass stts=off sw=-1"), std::string::npos);
    EXPECT_EQ(HourGlassCount(), 0);
}

TEST_F(PromptsTest, ColumnsGoToTheHostAsTwoThirds)
{
    PrintAt(30, 4, "Bias %.1f V", 1.5);
    PrintInWindow(7, 10, 2, "%s", "text");
    EXPECT_EQ(host.Calls("ap_PrintParamLine")[0].args, "4 20 'Bias 1.5 V'");
    EXPECT_EQ(host.Calls("ap_PrintInWindow")[0].args, "7 6 2 'text'");
}

TEST_F(PromptsTest, EntryFrameReportsAMissingItem)
{
    EXPECT_EQ(RequireCurrentImage(), nullptr);
    EXPECT_EQ(host.messageBoxes.back().text, "No images in memory");
    EXPECT_EQ(RequireCurrentSpectrum(), nullptr);
    EXPECT_EQ(host.messageBoxes.back().text, "No spectra in memory");
}
