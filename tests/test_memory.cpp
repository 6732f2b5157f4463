// Memory and data buffers: handle pairs, sample blocks, records, hit data, the registry.
#include "test_blocks_support.h"
#include "host/globals.h"
#include "store/data_list.h"
#include "store/image_header.h"
#include "store/memory.h"
#include "platform/large_blocks.h"

#include <cfloat>
#include <cstdint>
#include <cstring>

class MemoryTest : public BlockCountTest {
protected:
    void SetUp() override
    {
        BlockCountTest::SetUp();
        bytes_ = LiveBlockBytes();
    }
    // Every failure test ends where it started: nothing leaked.
    void ExpectNothingLeaked()
    {
        EXPECT_EQ(LiveBlockCount(), blocks_);
        EXPECT_EQ(LiveBlockBytes(), bytes_);
    }
    std::string OnlyBoxText()
    {
        EXPECT_EQ(host.messageBoxes.size(), 1u);
        return host.messageBoxes.empty() ? std::string() : host.messageBoxes[0].text;
    }

private:
    size_t bytes_ = 0;
};

TEST_F(MemoryTest, AllocateMemTakesAValidPair)
{
    MemHandleType pair{7, reinterpret_cast<void*>(0x1)};
    ASSERT_TRUE(AllocateMem(100, 2, &pair));
    EXPECT_EQ(pair.Handle, 1u);
    EXPECT_NE(pair.Ptr, nullptr);
    EXPECT_EQ(LiveBlockBytes() > 0, true);
    EXPECT_EQ(FreeMem(pair.Handle, pair.Ptr), 1);
    ExpectNothingLeaked();
}

TEST_F(MemoryTest, FreeMemOnAPairWithOneWordZeroDoesNothingAndAnswersOne)
{
    MemHandleType pair;
    ASSERT_TRUE(AllocateMem(16, 2, &pair));
    size_t count = LiveBlockCount();
    EXPECT_EQ(FreeMem(0, pair.Ptr), 1);
    EXPECT_EQ(LiveBlockCount(), count);
    EXPECT_EQ(FreeMem(1, nullptr), 1);
    EXPECT_EQ(LiveBlockCount(), count);
    FreeMem(pair.Handle, pair.Ptr);
    ExpectNothingLeaked();
}

TEST_F(MemoryTest, AllocateMemNoErrWithANullPairReports)
{
    EXPECT_FALSE(AllocateMemNoErr(1, 1, nullptr));
    EXPECT_NE(ReadLog().find("ERROR : Program error - AllocateMemNoErr"), std::string::npos);
}

TEST_F(MemoryTest, AnImageOf4096SquareNeeds32MiBAndAFailureReports32797)
{
    MemHandleType pair;
    size_t before = LiveBlockBytes();
    ASSERT_TRUE(AllocateMem(4096 * 4096, 2, &pair));
    EXPECT_EQ(LiveBlockBytes() - before, 32u * 1024 * 1024);
    FreeMem(pair.Handle, pair.Ptr);
    ImageHeaderType* first = FirstItem;
    FailAllocationsForTests(1);
    EXPECT_FALSE(AllocateMem(4096 * 4096, 2, &pair));
    EXPECT_EQ(pair.Handle, 0u);
    EXPECT_EQ(pair.Ptr, nullptr);
    EXPECT_EQ(OnlyBoxText(), "Not enough memory for image");
    EXPECT_EQ(FirstItem, first);
    ExpectNothingLeaked();
}

TEST_F(MemoryTest, AllocateMemNoErrFailsQuietly)
{
    MemHandleType pair;
    FailAllocationsForTests(1);
    EXPECT_FALSE(AllocateMemNoErr(10, 2, &pair));
    EXPECT_TRUE(host.messageBoxes.empty());
    ExpectNothingLeaked();
}

TEST_F(MemoryTest, ReallocateMemFailureReports32798AndKeepsTheBlock)
{
    MemHandleType pair;
    ASSERT_TRUE(AllocateMem(10, 2, &pair));
    static_cast<uint16_t*>(pair.Ptr)[0] = 77;
    FailAllocationsForTests(1);
    EXPECT_FALSE(ReallocateMem(1000, 2, &pair));
    EXPECT_EQ(OnlyBoxText(), "Not enough memory for current processing");
    EXPECT_EQ(static_cast<uint16_t*>(pair.Ptr)[0], 77);
    ASSERT_TRUE(ReallocateMemNoErr(1000, 2, &pair));
    EXPECT_EQ(pair.Handle, 1u);
    EXPECT_EQ(static_cast<uint16_t*>(pair.Ptr)[0], 77);
    FreeMem(pair.Handle, pair.Ptr);
    ExpectNothingLeaked();
}

TEST_F(MemoryTest, SampleBlocksHoldEightBytesAPoint)
{
    float* block = AllocSpecMem(100);
    ASSERT_NE(block, nullptr);
    EXPECT_EQ(block[199], 0.0f);
    block = ReallocSpecMem(block, 200);
    ASSERT_NE(block, nullptr);
    block[399] = 1.0f;
    FreeSpecMem(block);
    ExpectNothingLeaked();
}

TEST_F(MemoryTest, SampleBlockFailuresReport33284)
{
    FailAllocationsForTests(1);
    EXPECT_EQ(AllocSpecMem(100), nullptr);
    EXPECT_EQ(OnlyBoxText(), "Exceeded maximum number of allowed spectra");
    float* block = AllocSpecMem(10);
    FailAllocationsForTests(1);
    EXPECT_EQ(ReallocSpecMem(block, 20), nullptr);
    EXPECT_EQ(host.messageBoxes.size(), 2u);
    FreeSpecMem(block);
    FreeSpecMem(nullptr);
    EXPECT_NE(ReadLog().find("ERROR : Program error - FreeSpecMem"), std::string::npos);
    ExpectNothingLeaked();
}

TEST_F(MemoryTest, AllocateHeaderFailureReports32769)
{
    FailAllocationsForTests(1);
    EXPECT_EQ(AllocateHeader(), nullptr);
    EXPECT_EQ(OnlyBoxText(), "Not enough memory");
    ExpectNothingLeaked();
}

TEST_F(MemoryTest, AllocateHeaderGivesAnInitialisedRecordWithTheNextId)
{
    ImageHeaderType* a = AllocateHeader();
    ImageHeaderType* b = AllocateHeader();
    ASSERT_NE(a, nullptr);
    EXPECT_EQ(b->DataId, a->DataId + 1);
    EXPECT_EQ(a->nx, 0);
    EXPECT_EQ(a->RevNo, 700);
    FreeHeader(a);
    FreeHeader(b);
    ExpectNothingLeaked();
}

TEST_F(MemoryTest, HitDataRecordsHaveTheLargestFloatAtByteSix)
{
    ImageHeaderType* r = AllocateHeader();
    ASSERT_TRUE(AllocateHitRecords(r, 8, 8));
    ASSERT_NE(r->LMCHitDataPtr, nullptr);
    EXPECT_EQ(r->LMCThresholdHitDataPtr, 1u);
    for (int i = 0; i < 64; ++i) {
        float v;
        std::memcpy(&v, r->LMCHitDataPtr + i * 74 + 6, 4);
        ASSERT_EQ(v, FLT_MAX);
        uint32_t bits;
        std::memcpy(&bits, &v, 4);
        ASSERT_EQ(bits, 0x7F7FFFFFu);
        ASSERT_EQ(r->LMCHitDataPtr[i * 74], 0);
        ASSERT_EQ(r->LMCHitDataPtr[i * 74 + 73], 0);
    }
    FreeHeader(r);
    ExpectNothingLeaked();
}

TEST_F(MemoryTest, HitDataRefusalsAndFailure)
{
    // The named allocation wants a square mapping image (tested with real sets by the mapping
    // tests); the records themselves are taken only for a positive size and a free pointer,
    // and a failure is no report of theirs.
    EXPECT_EQ(AllocateHeaderMemory_LMCThresholdHitDataPtr(nullptr, 8, 8), -1);
    EXPECT_NE(ReadLog().find("Program error - AllocateHeaderMemory_LMCThresholdHitDataPtr im=NULL"), std::string::npos);
    ImageHeaderType* r = AllocateHeader();
    EXPECT_EQ(AllocateHeaderMemory_LMCThresholdHitDataPtr(r, 8, 4), -1);
    EXPECT_NE(ReadLog().find("Program error - AllocateHeaderMemory_LMCThresholdHitDataPtr 8 4"), std::string::npos);
    EXPECT_FALSE(AllocateHitRecords(r, 0, 2));
    ASSERT_TRUE(AllocateHitRecords(r, 2, 2));
    EXPECT_FALSE(AllocateHitRecords(r, 2, 2));
    FreeHitData(r);
    FailAllocationsForTests(1);
    EXPECT_FALSE(AllocateHitRecords(r, 2, 2));
    EXPECT_TRUE(host.messageBoxes.empty());
    FreeHeader(r);
    ExpectNothingLeaked();
}

TEST_F(MemoryTest, EfreeIgnoresNullAndEfreeCheckFreesOnlyKnownBlocks)
{
    efree(nullptr);
    void* block = emalloc(32);
    char local[8];
    efree_check(local);
    EXPECT_NE(ReadLog().find("efree_check: invalid pointer\r\n"), std::string::npos);
    size_t count = LiveBlockCount();
    efree_check(block);
    EXPECT_EQ(LiveBlockCount(), count - 1);
    ExpectNothingLeaked();
}

TEST_F(MemoryTest, HeapWalkCountsTheLiveBlocksAndLogsThemInDebugMode)
{
    long before = HeapWalk();
    void* block = emalloc(4096);
    EXPECT_EQ(HeapWalk(), before + 4096);
    DebugMode = true;
    HeapWalk();
    DumpHeap();
    DebugMode = false;
    std::string log = ReadLog();
    EXPECT_NE(log.find("Free entries 0. Used entries "), std::string::npos);
    EXPECT_NE(log.find("Total free 0 KB, used "), std::string::npos);
    EXPECT_NE(log.find("  USED block at "), std::string::npos);
    EXPECT_NE(log.find("of size 1000\r\n"), std::string::npos);
    EXPECT_NE(log.find("OK - heap end\r\n"), std::string::npos);
    efree(block);
    ExpectNothingLeaked();
}

TEST_F(MemoryTest, FailuresCanBeInjectedAfterSomeSuccesses)
{
    FailAllocationsForTests(1, 2);
    void* a = emalloc(8);
    void* b = emalloc(8);
    void* c = emalloc(8);
    void* d = emalloc(8);
    EXPECT_NE(a, nullptr);
    EXPECT_NE(b, nullptr);
    EXPECT_EQ(c, nullptr);
    EXPECT_NE(d, nullptr);
    efree(a);
    efree(b);
    efree(d);
    ExpectNothingLeaked();
}


// Large blocks: mapped with their pages present, zeroed when asked, kept across a resize in
// either direction over the large-block line, and counted like any other block.

TEST_F(MemoryTest, ALargeBlockFromCallocIsZeroAndCountsItsBytes)
{
    const size_t before = LiveBlockBytes();
    auto* block = static_cast<uint16_t*>(ecalloc(4096 * 4096, 2));
    ASSERT_NE(block, nullptr);
    EXPECT_EQ(LiveBlockBytes(), before + 4096u * 4096u * 2u);
    size_t nonZero = 0;
    for (size_t i = 0; i < 4096u * 4096u; i += 997) nonZero += block[i] != 0;
    EXPECT_EQ(nonZero, 0u);
    block[4096u * 4096u - 1] = 0xBEEF;
    EXPECT_EQ(block[4096u * 4096u - 1], 0xBEEF);
    efree(block);
    EXPECT_EQ(LiveBlockBytes(), before);
}

TEST_F(MemoryTest, ResizingAcrossTheLargeBlockLineKeepsTheContents)
{
    const size_t small = kLargeBlockBytes / 2, large = kLargeBlockBytes * 3 + 5;
    const size_t before = LiveBlockBytes();
    auto* block = static_cast<uint8_t*>(emalloc(small));
    ASSERT_NE(block, nullptr);
    for (size_t i = 0; i < small; ++i) block[i] = static_cast<uint8_t>(i * 7);
    block = static_cast<uint8_t*>(erealloc(block, large));   // malloc to mapped
    ASSERT_NE(block, nullptr);
    for (size_t i = 0; i < small; i += 13) ASSERT_EQ(block[i], static_cast<uint8_t>(i * 7)) << i;
    block[large - 1] = 0x5A;
    block = static_cast<uint8_t*>(erealloc(block, large * 2));   // mapped to mapped
    ASSERT_NE(block, nullptr);
    EXPECT_EQ(block[large - 1], 0x5A);
    for (size_t i = 0; i < small; i += 13) ASSERT_EQ(block[i], static_cast<uint8_t>(i * 7)) << i;
    block = static_cast<uint8_t*>(erealloc(block, 100));   // mapped to malloc
    ASSERT_NE(block, nullptr);
    for (size_t i = 0; i < 100; ++i) ASSERT_EQ(block[i], static_cast<uint8_t>(i * 7)) << i;
    EXPECT_EQ(LiveBlockBytes(), before + 100u);
    efree(block);
    ExpectNothingLeaked();
}

TEST_F(MemoryTest, AnInjectedFailureRefusesALargeBlockToo)
{
    FailAllocationsForTests(1);
    MemHandleType pair{};
    EXPECT_FALSE(AllocateMemNoErr(4096 * 4096, 2, &pair));
    EXPECT_EQ(pair.Ptr, nullptr);
    ExpectNothingLeaked();
}

TEST_F(MemoryTest, TheSystemRefusingAHugeMappingGivesNullNotACrash)
{
    EXPECT_EQ(MapLargeBlock(SIZE_MAX - 10), nullptr);
    EXPECT_EQ(MapLargeBlock(size_t{1} << 62), nullptr);
    void* block = MapLargeBlock(kLargeBlockBytes);
    ASSERT_NE(block, nullptr);
    EXPECT_EQ(RemapLargeBlock(block, kLargeBlockBytes, SIZE_MAX - 10), nullptr);
    static_cast<uint8_t*>(block)[0] = 1;   // still the old block
    UnmapLargeBlock(block, kLargeBlockBytes);
}
