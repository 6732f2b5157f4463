// Bounded text copy and append; the processing history.
#include "support/test_host.h"
#include "host/text.h"
#include "store/history.h"
#include "store/image_header.h"
#include "store/memory.h"

#include <cstdarg>
#include <cstring>
#include <string>

class TextTest : public LibraryTest {
protected:
    void SetUp() override
    {
        LibraryTest::SetUp();
        ASSERT_EQ(host.Start(), 0);
    }
};

TEST_F(TextTest, Strncpy0AlwaysTerminates)
{
    char b[6];
    std::memset(b, 'z', sizeof b);
    strncpy0(b, "abcdefgh", sizeof b);
    EXPECT_STREQ(b, "abcde");
    strncpy0(b, "ab", sizeof b);
    EXPECT_STREQ(b, "ab");
    strncpy0(b, "x", 0);
    EXPECT_STREQ(b, "ab");
    EXPECT_NE(ReadLog().find("Program error - strncpy0 n=0"), std::string::npos);
}

TEST_F(TextTest, Strncat0KeepsTheWholeBelowItsSize)
{
    char b[8] = "abc";
    strncat0(b, "defghij", sizeof b);
    EXPECT_STREQ(b, "abcdefg");
    char full[4] = {'a', 'b', 'c', 'd'};   // no terminator within its size
    strncat0(full, "x", sizeof full);
    EXPECT_NE(ReadLog().find("Program error - strncat0 4 4"), std::string::npos);
    EXPECT_EQ(full[0], 'a');
}

namespace {

std::string Formatted(size_t size, const char* format, ...)
{
    char b[16];
    std::memset(b, 'z', sizeof b);
    va_list args;
    va_start(args, format);
    FormatInto(b, size, format, args);
    va_end(args);
    return std::string(b, strnlen(b, sizeof b));
}

} // namespace

TEST_F(TextTest, FormatIntoCutsToTheBufferAndANullFormatGivesTheEmptyText)
{
    EXPECT_EQ(Formatted(16, "%s=%d", "n", 42), "n=42");
    EXPECT_EQ(Formatted(5, "%s", "abcdefgh"), "abcd");
    EXPECT_EQ(Formatted(16, nullptr), "");
    // A size of 0 leaves the buffer untouched.
    EXPECT_EQ(Formatted(0, "%s", "x"), "zzzzzzzzzzzzzzzz");
}

TEST_F(TextTest, TheNameTableHas122EntriesTheLastTheErrorEntry)
{
    EXPECT_EQ(ProcessNameCount(), 122);
    EXPECT_STREQ(GetProcessName(0), "Low 3x3 filter");
    EXPECT_STREQ(GetProcessName(13), "Diag \\ Edge");
    EXPECT_STREQ(GetProcessName(121), "Img Proc Str Error");
    EXPECT_STREQ(GetProcessName(122), "Img Proc Str Error");
    EXPECT_STREQ(GetProcessName(-1), "Img Proc Str Error");
}

TEST_F(TextTest, AddingTheFiftiethEntryKeeps49AndLosesTheOldest)
{
    ImageHeaderType* r = AllocateHeader();
    r->ProcessListOff = 255;
    for (int i = 1; i <= 49; ++i) AddImProc2List(r, i);
    EXPECT_EQ(r->ProcessList[48], 49);
    EXPECT_EQ(r->ProcessListOff, 255);
    AddImProc2List(r, 100);
    EXPECT_EQ(r->ProcessList[0], 2);
    EXPECT_EQ(r->ProcessList[47], 49);
    EXPECT_EQ(r->ProcessList[48], 100);
    EXPECT_EQ(r->ProcessListOff, 0);   // the history shows again
    EXPECT_EQ(SeeIfProcessDone(r, 1), 0);
    EXPECT_EQ(SeeIfProcessDone(r, 100), 1);
    FreeHeader(r);
}

TEST_F(TextTest, SeeIfProcessDoneWithCodeZeroFindsTheTerminatorOfAShortList)
{
    ImageHeaderType* r = AllocateHeader();
    AddImProc2List(r, 38);
    EXPECT_EQ(SeeIfProcessDone(r, 0), 1);
    EXPECT_EQ(SeeIfProcessDone(r, 38), 1);
    EXPECT_EQ(SeeIfProcessDone(r, 39), 0);
    for (int i = 0; i < 48; ++i) AddImProc2List(r, 5);
    EXPECT_EQ(SeeIfProcessDone(r, 0), 0);   // 49 entries: no terminator within the list
    EXPECT_EQ(SeeIfProcessDone(nullptr, 0), 0);
    FreeHeader(r);
}

TEST_F(TextTest, AnEmptyHistoryGivesNoLinesNotEvenTheHeading)
{
    ImageHeaderType* r = AllocateHeader();
    const char* names[kProcessListLength] = {};
    EXPECT_EQ(ProcessHistoryLines(r, names), 0);
    EXPECT_EQ(names[0], nullptr);
    FreeHeader(r);
}

TEST_F(TextTest, HistoryLinesNameEachCodeInOrderUnlessTheDisplayIsOff)
{
    ImageHeaderType* r = AllocateHeader();
    AddImProc2List(r, 38);
    AddImProc2List(r, 14);
    AddImProc2List(r, 122);
    const char* names[kProcessListLength] = {};
    ASSERT_EQ(ProcessHistoryLines(r, names), 3);
    EXPECT_STREQ(names[0], "Rotate 90");
    EXPECT_STREQ(names[1], "Diag \\ Edge");
    EXPECT_STREQ(names[2], "Img Proc Str Error");
    r->ProcessListOff = 255;
    EXPECT_EQ(ProcessHistoryLines(r, names), 0);
    r->ProcessListOff = 254;
    EXPECT_EQ(ProcessHistoryLines(r, names), 3);
    FreeHeader(r);
}

TEST_F(TextTest, AddingToANullRecordIsAProgramError)
{
    AddImProc2List(nullptr, 5);
    EXPECT_NE(ReadLog().find("Program error - AddImProc2List"), std::string::npos);
}
