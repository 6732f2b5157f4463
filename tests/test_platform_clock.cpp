// Clock, locale and the platform table defaults.
#include "support/test_host.h"
#include "platform/clock.h"
#include "platform/locale.h"
#include "platform/platform_table.h"

class PlatformClockTest : public LibraryTest {};

TEST_F(PlatformClockTest, FileTimeCountsHundredNanosecondsSince1601)
{
    LocalTime epoch{1601, 1, 1, 1, 0, 0, 0, 0};
    EXPECT_EQ(LocalTimeToFileTime(epoch), 0u);
    LocalTime unix{1970, 1, 4, 1, 0, 0, 0, 0};
    EXPECT_EQ(LocalTimeToFileTime(unix), 116444736000000000ull);
    LocalTime t{2026, 11, 0, 22, 14, 5, 9, 250};
    EXPECT_EQ(LocalTimeToFileTime(t), 116444736000000000ull + (1795356309ull * 1000 + 250) * 10000);
}

TEST_F(PlatformClockTest, DosDateAndTimeFromTheClock)
{
    LocalTime t = GetLocalTime();
    DosDateType d = ToDosDate(t);
    DosTimeType h = ToDosTime(t);
    EXPECT_EQ(d.day, 22);
    EXPECT_EQ(d.month, 11);
    EXPECT_EQ(d.year, 2026);
    EXPECT_EQ(d.dayofweek, 0);   // Sunday
    EXPECT_EQ(h.hour, 14);
    EXPECT_EQ(h.minute, 5);
    EXPECT_EQ(h.second, 9);
    EXPECT_EQ(h.hsecond, 25);
}

TEST_F(PlatformClockTest, TheTickIncreases)
{
    uint32_t a = TickMilliseconds();
    uint32_t b = TickMilliseconds();
    EXPECT_LE(a, b);
}

TEST_F(PlatformClockTest, LocaleNameFromTheEnvironmentInOrder)
{
    setenv("LC_ALL", "de_DE.UTF-8", 1);
    setenv("LANG", "fr_FR", 1);
    EXPECT_EQ(SystemLocaleName(), "de_DE.UTF-8");
    unsetenv("LC_ALL");
    setenv("LC_MESSAGES", "it_IT", 1);
    EXPECT_EQ(SystemLocaleName(), "it_IT");
    unsetenv("LC_MESSAGES");
    EXPECT_EQ(SystemLocaleName(), "fr_FR");
}

TEST_F(PlatformClockTest, LeadBytesOnlyInDoubleByteCodePages)
{
    SetLocaleNameForTests("en_US.UTF-8");
    EXPECT_FALSE(IsLeadByte(0x82));
    SetLocaleNameForTests("de_DE.ISO-8859-1");
    EXPECT_FALSE(IsLeadByte(0x82));
    SetLocaleNameForTests("ja_JP.SJIS");
    EXPECT_TRUE(IsLeadByte(0x82));
    EXPECT_TRUE(IsLeadByte(0xE0));
    EXPECT_FALSE(IsLeadByte(0xA0));
    EXPECT_FALSE(IsLeadByte('A'));
    SetLocaleNameForTests("zh_CN.GBK");
    EXPECT_TRUE(IsLeadByte(0xA0));
}

TEST_F(PlatformClockTest, AlphaNumericBytes)
{
    EXPECT_TRUE(IsCharAlphaNumeric('a'));
    EXPECT_TRUE(IsCharAlphaNumeric('7'));
    EXPECT_FALSE(IsCharAlphaNumeric('_'));
    EXPECT_FALSE(IsCharAlphaNumeric('.'));
    EXPECT_TRUE(IsCharAlphaNumeric(0xE9));   // e acute
    EXPECT_FALSE(IsCharAlphaNumeric(0xD7));  // the multiplication sign
}

TEST_F(PlatformClockTest, TheHeadlessDefaultAnswersTheDefaultButtonAndLogsThePrompt)
{
    dl_SetPlatformTable(nullptr);
    ASSERT_EQ(host.Start(), 0);
    EXPECT_EQ(PlatformMessageBox("Q1", "C", TV_MB_YESNO), TV_IDYES);
    EXPECT_EQ(PlatformMessageBox("Q2", "C", TV_MB_YESNO | TV_MB_DEFBUTTON2), TV_IDNO);
    EXPECT_EQ(PlatformMessageBox("Q3", "C", TV_MB_OKCANCEL), TV_IDOK);
    EXPECT_EQ(PlatformMessageBox("Q4", "C", TV_MB_OKCANCEL | TV_MB_DEFBUTTON2), TV_IDCANCEL);
    EXPECT_EQ(PlatformMessageBox("Q5", "C", TV_MB_YESNOCANCEL | TV_MB_DEFBUTTON3), TV_IDCANCEL);
    EXPECT_EQ(PlatformMessageBox("Q6", "C", TV_MB_YESNOCANCEL | TV_MB_DEFBUTTON2), TV_IDNO);
    EXPECT_EQ(PlatformMessageBox("Q7", "C", TV_MB_OK), TV_IDOK);
    EXPECT_EQ(HeadlessState().messageBoxes, 7);
    EXPECT_EQ(HeadlessState().lastMessage, "Q7");
    EXPECT_NE(ReadLog().find("Message box 'C': Q2 (answered 7)\r\n"), std::string::npos);
    EXPECT_FALSE(PlatformKeyDown(TV_VK_ESCAPE));
    char path[16] = "unchanged";
    EXPECT_EQ(PlatformFileDialog(true, "", "tif", "Open", "", path, sizeof path), 0);
    EXPECT_STREQ(path, "unchanged");
}

TEST_F(PlatformClockTest, TheDayOfWeekOfTheDosDateCountsFromZeroOnSunday)
{
    // The real clock: its day of the week against the date, by Sakamoto's rule (0 = Sunday).
    SetClockForTests(nullptr);
    LocalTime t = GetLocalTime();
    static const int offsets[12] = {0, 3, 2, 5, 0, 3, 5, 1, 4, 6, 2, 4};
    int y = t.year - (t.month < 3 ? 1 : 0);
    int expected = (y + y / 4 - y / 100 + y / 400 + offsets[t.month - 1] + t.day) % 7;
    EXPECT_EQ(t.dayOfWeek, expected);
    EXPECT_EQ(ToDosDate(t).dayofweek, expected);
    // Saturday 28 November 2026 is 6, the Sunday after it 0.
    LocalTime saturday{2026, 11, 6, 28, 9, 0, 0, 0};
    SetClockForTests(&saturday);
    EXPECT_EQ(ToDosDate(GetLocalTime()).dayofweek, 6);
    LocalTime sunday{2026, 11, 0, 29, 9, 0, 0, 0};
    SetClockForTests(&sunday);
    EXPECT_EQ(ToDosDate(GetLocalTime()).dayofweek, 0);
}
