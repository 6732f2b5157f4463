// A run started with /DBG takes a heap walk at the start and compares at the end.
#include "support/test_host.h"
#include "host/startup.h"
#include "store/memory.h"

class DebugRunTest : public LibraryTest {};

TEST_F(DebugRunTest, FinishKeepsTheDifferenceOfTheTwoHeapWalks)
{
    ASSERT_EQ(host.Start("prog /DBG"), 0);
    long start = StartHeapBytes();
    void* leaked = emalloc(1000);
    host.messageBoxAnswers = {TV_IDOK, TV_IDNO};
    ASSERT_EQ(dl_Finish(), 1);
    EXPECT_EQ(FinishHeapDifference(), start - (start + 1000));
    EXPECT_NE(ReadLog().find("Free entries 0. Used entries "), std::string::npos);
    efree(leaked);
}
