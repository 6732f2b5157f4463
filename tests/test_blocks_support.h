// A fixture for tests that check what an operation leaves allocated: a started library whose
// live memory blocks are counted as each test begins.
#pragma once

#include "support/test_host.h"
#include "store/data_list.h"
#include "store/memory.h"

#include <cstddef>

class BlockCountTest : public LibraryTest {
protected:
    void SetUp() override
    {
        LibraryTest::SetUp();
        ASSERT_EQ(host.Start(), 0);
        host.ClearCalls();
        blocks_ = LiveBlockCount();
    }
    // Erases every item of the data list.
    static void EraseAllItems()
    {
        while (FirstItem) EraseItem(FirstItem);
    }
    // Erases every item, then expects the blocks live at the test's start and no others.
    void EraseAllAndExpectStartBlocks()
    {
        EraseAllItems();
        EXPECT_EQ(LiveBlockCount(), blocks_);
    }
    size_t blocks_ = 0;
};
