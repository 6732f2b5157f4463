// Mapping sets in memory: life of a set, access, the validity rules, the upgrade of entries, the
// pixel decoding, the hit data check, the data type table and the entry points.
#include "test_blocks_support.h"
#include "test_mapping_support.h"
#include "files/mapping_entry_sources.h"
#include "host/log.h"
#include "store/data_list_commands.h"
#include "store/data_types.h"
#include "tavrin/dl_mapping.h"

#include <cfloat>
#include <cmath>

using namespace maptest;
using tifftest::Contains;

class MappingSetTest : public BlockCountTest {
protected:
    void TearDown() override
    {
        EraseAllItems();
        BlockCountTest::TearDown();
    }
    int Boxes(const std::string& text) const
    {
        int n = 0;
        for (const MessageBoxCall& box : host.messageBoxes) n += box.text == text;
        return n;
    }
};

// ---- life of a set ----

TEST_F(MappingSetTest, GetCITSHeaderGivesTheFieldsOfANewSet)
{
    const uint32_t nextId = NextDataId() + 1;
    const size_t bytes = LiveBlockBytes();
    CITSHeaderType* h = GetCITSHeader(3, 32, 32);
    ASSERT_NE(h, nullptr);
    EXPECT_EQ(LiveBlockBytes() - bytes, 392u + 3u * 173u);
    EXPECT_EQ(h->set_id, nextId);
    EXPECT_EQ(h->rev, 700);
    EXPECT_EQ(h->ni, 3);
    EXPECT_EQ(h->cx, 32);
    EXPECT_EQ(h->cy, 32);
    EXPECT_EQ(h->ci, 0);
    EXPECT_EQ(h->disp.flags, 7);
    EXPECT_EQ(h->disp.mode, 0);
    EXPECT_EQ(h->disp.n, 2);
    EXPECT_EQ(h->disp.select, 2);
    EXPECT_EQ(h->disp.v_high, 0.0);
    for (int i = 0; i < 64; ++i) EXPECT_EQ(h->disp.im_no[i], -1);
    for (int k = 0; k < 3; ++k) {
        EXPECT_EQ(CITSEntry(h, k)->voltage, 0.0f);
        EXPECT_EQ(CITSEntry(h, k)->z_low, 0.0f);
        EXPECT_EQ(CITSEntry(h, k)->z_high, 0.0f);
        EXPECT_EQ(CITSPixels(CITSEntry(h, k)), nullptr);
    }
    FreeCITSHeader(h);
    EXPECT_EQ(LiveBlockCount(), blocks_);
}

TEST_F(MappingSetTest, GetCITSHeaderTakesOneTo4096Images)
{
    EXPECT_EQ(GetCITSHeader(0, 16, 16), nullptr);
    EXPECT_EQ(GetCITSHeader(4097, 16, 16), nullptr);
    EXPECT_EQ(GetCITSHeader(-1, 16, 16), nullptr);
    const std::string log = ReadLog();
    size_t count = 0;
    for (size_t at = log.find("Program error - GetCITSHeader"); at != std::string::npos;
         at = log.find("Program error - GetCITSHeader", at + 1))
        ++count;
    EXPECT_EQ(count, 3u);
    CITSHeaderType* h = GetCITSHeader(4096, 16, 16);
    ASSERT_NE(h, nullptr);
    EXPECT_EQ(h->ni, 4096);
    FreeCITSHeader(h);
}

TEST_F(MappingSetTest, AFailedHeaderAllocationSaysNotEnoughMemory)
{
    FailAllocationsForTests(1);
    EXPECT_EQ(AllocateCITSDataSet(4, 16, 16), nullptr);
    EXPECT_EQ(Boxes("Not enough memory"), 1);
    EXPECT_EQ(LiveBlockCount(), blocks_);
}

TEST_F(MappingSetTest, AFailureAtPixelBlockKFreesTheBlocksBeforeItAndTheHeader)
{
    for (int k = 0; k < 4; ++k) {
        host.messageBoxes.clear();
        FailAllocationsForTests(1, 1 + k);   // the header and k blocks are had
        EXPECT_EQ(AllocateCITSDataSet(4, 16, 16), nullptr) << k;
        EXPECT_EQ(Boxes("Not enough memory for image"), 1) << k;
        EXPECT_EQ(LiveBlockCount(), blocks_) << k;
        EXPECT_EQ(LiveCITSPixelBlocks(), 0u) << k;
    }
    CITSHeaderType* h = AllocateCITSDataSet(4, 16, 16);
    ASSERT_NE(h, nullptr);
    EXPECT_EQ(LiveCITSPixelBlocks(), 4u);
    for (int k = 0; k < 4; ++k) {
        EXPECT_NE(CITSPixels(CITSEntry(h, k)), nullptr);
        EXPECT_NE(CITSEntry(h, k)->pix_data, 0u);
    }
    DeallocateCITSDataSet(h);
    EXPECT_EQ(LiveBlockCount(), blocks_);
    EXPECT_EQ(LiveCITSPixelBlocks(), 0u);
}

TEST_F(MappingSetTest, FreeingNothingIsAProgramErrorOfEachRoutine)
{
    FreeCITSHeader(nullptr);
    DeallocateCITSDataSet(nullptr);
    const std::string log = ReadLog();
    EXPECT_TRUE(Contains(log, "Program error - FreeCITSHeader"));
    EXPECT_TRUE(Contains(log, "Program error - DeallocateCITSDataSet"));
}

TEST_F(MappingSetTest, FreeCITSDataSetOfImageClearsThePointerInEveryHolder)
{
    ImageHeaderType* a = MakeMappingImage(16, 2);
    ASSERT_NE(a, nullptr);
    ImageHeaderType* b = tifftest::MakeImage(16, "Holder");
    SetCITSBlock(b, a->CITSHeaderPtr);
    ImageHeaderType* c = tifftest::MakeImage(16, "Other");
    FreeCITSDataSetOfImage(a);
    EXPECT_EQ(a->CITSHeaderPtr, nullptr);
    EXPECT_EQ(a->CITSHeader, 0u);
    EXPECT_EQ(b->CITSHeaderPtr, nullptr);
    EXPECT_EQ(b->CITSHeader, 0u);
    EXPECT_EQ(c->CITSHeaderPtr, nullptr);
    EXPECT_EQ(LiveCITSPixelBlocks(), 0u);
    FreeCITSDataSetOfImage(a);   // nothing to do
}

TEST_F(MappingSetTest, ReplaceCITSHeaderPointersRewritesOnlyTheHoldersOfTheOldSet)
{
    ImageHeaderType* a = MakeMappingImage(16, 1);
    ImageHeaderType* b = MakeMappingImage(16, 1);
    ImageHeaderType* c = tifftest::MakeImage(16, "Shares a");
    SetCITSBlock(c, a->CITSHeaderPtr);
    CITSHeaderType* setA = a->CITSHeaderPtr;
    CITSHeaderType* setB = b->CITSHeaderPtr;
    ReplaceCITSHeaderPointers(setA, setB);
    EXPECT_EQ(a->CITSHeaderPtr, setB);
    EXPECT_EQ(c->CITSHeaderPtr, setB);
    EXPECT_EQ(b->CITSHeaderPtr, setB);
    DeallocateCITSDataSet(setA);
}

TEST_F(MappingSetTest, TheSetDiesWithItsLastHolder)
{
    ImageHeaderType* a = MakeMappingImage(16, 3);
    ImageHeaderType* b = tifftest::MakeImage(16, "Split copy");
    SetCITSBlock(b, a->CITSHeaderPtr);
    EraseItem(a);
    EXPECT_EQ(LiveCITSPixelBlocks(), 3u);
    EXPECT_NE(b->CITSHeaderPtr, nullptr);
    EraseItem(b);
    EXPECT_EQ(LiveCITSPixelBlocks(), 0u);
    EXPECT_EQ(LiveBlockCount(), blocks_);
}

// ---- access ----

TEST_F(MappingSetTest, GetCITSImagePtrReachesARowOfAnImage)
{
    ImageHeaderType* a = MakeMappingImage(16, 3);
    const CITSHeaderType* h = a->CITSHeaderPtr;
    EXPECT_EQ(GetCITSImagePtr(h, 2, 0), CITSPixels(CITSEntry(h, 2)));
    EXPECT_EQ(GetCITSImagePtr(h, 2, 5), CITSPixels(CITSEntry(h, 2)) + 16 * 5);
    EXPECT_EQ(GetCITSImagePtr(h, 1, 15)[15], static_cast<uint16_t>((1 * 4099 + 255 * 13) & 0xFFFF));
}

TEST_F(MappingSetTest, GetCITSImagePtrAcceptsImagesFromNiTo4095ButReadsNothingBehindTheEntries)
{
    ImageHeaderType* a = MakeMappingImage(16, 3);
    const CITSHeaderType* h = a->CITSHeaderPtr;
    EXPECT_EQ(GetCITSImagePtr(h, 3, 0), nullptr);
    EXPECT_EQ(GetCITSImagePtr(h, 4095, 0), nullptr);
    EXPECT_FALSE(Contains(ReadLog(), "GetCITSImagePtr"));
    EXPECT_EQ(GetCITSImagePtr(h, 4096, 0), nullptr);
    EXPECT_TRUE(Contains(ReadLog(), "Program error - GetCITSImagePtr"));
    EXPECT_EQ(GetCITSImagePtr(h, -1, 0), nullptr);
    EXPECT_EQ(GetCITSImagePtr(nullptr, 0, 0), nullptr);
}

TEST_F(MappingSetTest, TwoImagesAtEqualDistanceGiveTheLowerIndex)
{
    ImageHeaderType* a = MakeMappingImage(16, 3);
    CITSHeaderType* h = a->CITSHeaderPtr;
    CITSEntry(h, 0)->voltage = 2.0f;
    CITSEntry(h, 1)->voltage = 0.0f;
    CITSEntry(h, 2)->voltage = 1.0f;
    EXPECT_EQ(GetNearestCITSVoltage(0.5f, h), 1);
    CITSEntry(h, 0)->voltage = 1.0f;
    EXPECT_EQ(GetNearestCITSVoltage(1.0f, h), 0);
    EXPECT_EQ(GetNearestCITSVoltage(1.5f, h), 0);
}

TEST_F(MappingSetTest, NearestVoltageComparesTheExactDifferenceOfTheFloats)
{
    // In decimals 0.1 and 0.3 are equally far from 0.2; as f32 values 0.1f is nearer.
    ImageHeaderType* a = MakeMappingImage(16, 2);
    CITSHeaderType* h = a->CITSHeaderPtr;
    CITSEntry(h, 0)->voltage = 0.3f;
    CITSEntry(h, 1)->voltage = 0.1f;
    ASSERT_LT(std::fabs(0.1f - 0.2f), std::fabs(0.3f - 0.2f));
    EXPECT_EQ(GetNearestCITSVoltage(0.2f, h), 1);
    EXPECT_EQ(GetNearestCITSVoltage(0.2f, nullptr), 0);
    EXPECT_TRUE(Contains(ReadLog(), "Program error - GetNearestCITSVoltage"));
}

TEST_F(MappingSetTest, RangesOfSweepAndData)
{
    ImageHeaderType* a = MakeMappingImage(16, 3);
    CITSHeaderType* h = a->CITSHeaderPtr;
    CITSEntry(h, 1)->z_low = -3.0f;
    CITSEntry(h, 2)->z_high = 7.5f;
    float lo = 0, hi = 0;
    GetCITSVoltageRange(h, &lo, &hi);
    EXPECT_EQ(lo, -1.0f);
    EXPECT_EQ(hi, -0.5f);
    GetCITSDataRange(h, &lo, &hi);
    EXPECT_EQ(lo, -3.0f);
    EXPECT_EQ(hi, 7.5f);
}

TEST_F(MappingSetTest, TheSweepIsAVoltageForIVSVFVAndLMSweepType2)
{
    ImageHeaderType* a = MakeMappingImage(16, 1);
    for (uint32_t kind : {12u, 13u, 60u}) {
        a->MapType = kind;
        EXPECT_TRUE(IsCITSVoltageAxis(a)) << kind;
        EXPECT_STREQ(GetCITSSweepUnit(a), "V");
    }
    for (uint32_t kind : {14u, 15u, 16u, 71u}) {
        a->MapType = kind;
        EXPECT_FALSE(IsCITSVoltageAxis(a)) << kind;
        EXPECT_STREQ(GetCITSSweepUnit(a), "nm");
    }
    a->MapType = 51;
    a->LMCSweepType = 2;
    EXPECT_STREQ(GetCITSSweepUnit(a), "V");
    a->LMCSweepType = 1;
    EXPECT_STREQ(GetCITSSweepUnit(a), "nm");
}

TEST_F(MappingSetTest, TheSquareTestWantsASetAndEqualSidesOfAllowedSize)
{
    ImageHeaderType* a = MakeMappingImage(16, 1);
    EXPECT_TRUE(IsSquareMappingImage(a));
    a->nx = 32;
    EXPECT_FALSE(IsSquareMappingImage(a));
    a->nx = 16;
    a->CITSHeaderPtr->cy = 32;
    EXPECT_FALSE(IsSquareMappingImage(a));
    a->CITSHeaderPtr->cy = 16;
    ImageHeaderType* b = tifftest::MakeImage(16, "No set");
    EXPECT_FALSE(IsSquareMappingImage(b));
    EXPECT_FALSE(IsSquareMappingImage(nullptr));
}

// ---- validity ----

class MappingHeaderRuleTest : public MappingSetTest {
protected:
    CITSHeaderType header{};
    void SetUp() override
    {
        MappingSetTest::SetUp();
        std::memcpy(&header, HeaderBytes(4, 64).data(), 390);
    }
};

TEST_F(MappingHeaderRuleTest, AValidHeaderPassesWithoutALogLine)
{
    EXPECT_EQ(CheckValidCITSHeader(&header), 1);
    EXPECT_FALSE(Contains(ReadLog(), "SPS Mapping Header"));
}

TEST_F(MappingHeaderRuleTest, NiOf4097FailsWithTheHeaderLine)
{
    header.ni = 4097;
    EXPECT_EQ(CheckValidCITSHeader(&header), 0);
    EXPECT_TRUE(Contains(ReadLog(), "SPS Mapping Header: rev=700 ni=4097 cx=64 cy=64 disp.n=2 ci=0\r\n"));
}

TEST_F(MappingHeaderRuleTest, ACx1024FailsAlthoughImagesMayBe4096Wide)
{
    header.cx = header.cy = 1024;
    EXPECT_EQ(CheckValidCITSHeader(&header), 0);
    EXPECT_TRUE(Contains(ReadLog(), "SPS Mapping Header: rev=700 ni=4 cx=1024 cy=1024 disp.n=2 ci=0\r\n"));
    ImageHeaderType* wide = tifftest::MakeImage(16, "Wide");
    wide->nx = wide->ny = 2048;
    EXPECT_EQ(CheckValidImageHeader(wide), 1);
    wide->CITSHeader = 1;
    EXPECT_EQ(CheckValidImageHeader(wide), 0);
    wide->CITSHeader = 0;
    wide->nx = wide->ny = 16;
}

TEST_F(MappingHeaderRuleTest, EachOfTheFirstSixRulesWritesTheSameLine)
{
    struct Case {
        const char* name;
        void (*spoil)(CITSHeaderType*);
        const char* line;
    };
    const Case cases[] = {
        {"rev 701", [](CITSHeaderType* h) { h->rev = 701; }, "rev=701 ni=4 cx=64 cy=64 disp.n=2 ci=0"},
        {"ni 0", [](CITSHeaderType* h) { h->ni = 0; }, "rev=700 ni=0 cx=64 cy=64 disp.n=2 ci=0"},
        {"cx 48", [](CITSHeaderType* h) { h->cx = h->cy = 48; }, "rev=700 ni=4 cx=48 cy=48 disp.n=2 ci=0"},
        {"cy", [](CITSHeaderType* h) { h->cy = 32; }, "rev=700 ni=4 cx=64 cy=32 disp.n=2 ci=0"},
        {"n 0", [](CITSHeaderType* h) { h->disp.n = 0; }, "rev=700 ni=4 cx=64 cy=64 disp.n=0 ci=0"},
        {"n 1025", [](CITSHeaderType* h) { h->disp.n = 1025; }, "rev=700 ni=4 cx=64 cy=64 disp.n=1025 ci=0"},
        {"ci ni", [](CITSHeaderType* h) { h->ci = 4; }, "rev=700 ni=4 cx=64 cy=64 disp.n=2 ci=4"},
        {"ci -1", [](CITSHeaderType* h) { h->ci = -1; }, "rev=700 ni=4 cx=64 cy=64 disp.n=2 ci=-1"},
    };
    for (const Case& c : cases) {
        CITSHeaderType h = header;
        c.spoil(&h);
        EXPECT_EQ(CheckValidCITSHeader(&h), 0) << c.name;
        EXPECT_TRUE(Contains(ReadLog(), std::string("SPS Mapping Header: ") + c.line + "\r\n")) << c.name;
    }
}

TEST_F(MappingHeaderRuleTest, ThereIsNoLowerBoundOnTheRevision)
{
    header.rev = -300;
    EXPECT_EQ(CheckValidCITSHeader(&header), 1);
}

TEST_F(MappingHeaderRuleTest, ANonZeroReservedBytePrintsItUnsignedWithTheNextTwo)
{
    header.IHspace[5] = 200;
    header.IHspace[6] = 1;
    EXPECT_EQ(CheckValidCITSHeader(&header), 0);
    EXPECT_TRUE(Contains(ReadLog(), "CheckValidCITSHeader i=5 IHspace=200 1 0\r\n"));
}

TEST_F(MappingHeaderRuleTest, TheLastReservedByteShowsTheStoredSetIdBehindIt)
{
    header.IHspace[127] = 9;
    EXPECT_EQ(CheckValidCITSHeader(&header), 0);
    EXPECT_TRUE(Contains(ReadLog(), "CheckValidCITSHeader i=127 IHspace=9 52 18\r\n"));   // 0x1234, low byte first
}

TEST_F(MappingHeaderRuleTest, AnImageNumberOf4096FailsWithTheNextTwoEntries)
{
    header.disp.im_no[3] = 4096;
    header.disp.im_no[4] = 17;
    EXPECT_EQ(CheckValidCITSHeader(&header), 0);
    EXPECT_TRUE(Contains(ReadLog(), "CheckValidCITSHeader i=3 disp.im_no=4096 17 -1\r\n"));
}

TEST_F(MappingHeaderRuleTest, OnlyTheFirstFailingGroupWritesItsLine)
{
    header.ni = 0;
    header.IHspace[0] = 1;
    header.disp.im_no[0] = 5000;
    EXPECT_EQ(CheckValidCITSHeader(&header), 0);
    const std::string log = ReadLog();
    EXPECT_TRUE(Contains(log, "SPS Mapping Header:"));
    EXPECT_FALSE(Contains(log, "IHspace="));
    EXPECT_FALSE(Contains(log, "disp.im_no="));
    header.ni = 4;
    EXPECT_EQ(CheckValidCITSHeader(&header), 0);
    EXPECT_TRUE(Contains(ReadLog(), "CheckValidCITSHeader i=0 IHspace=1 0 0\r\n"));
    EXPECT_FALSE(Contains(ReadLog(), "disp.im_no="));
}

TEST_F(MappingSetTest, EntryRulesHoldAtTheirBounds)
{
    CITSImageEntryType e{};
    std::memcpy(&e, EntryBytes(10000.0f, 0, 1, 4, "t", 999, 100, 10000).data(), 165);
    EXPECT_EQ(CheckValidCITSImageEntry(&e), 1);
    CITSImageEntryType f = e;
    f.voltage = -10000.0f;
    f.adc_gain = 1;
    f.i_divider = 1;
    f.adc_offset = -10000;
    EXPECT_EQ(CheckValidCITSImageEntry(&f), 1);
    const auto fails = [&](void (*spoil)(CITSImageEntryType*)) {
        CITSImageEntryType g = e;
        spoil(&g);
        return CheckValidCITSImageEntry(&g) == 0;
    };
    EXPECT_TRUE(fails([](CITSImageEntryType* g) { g->voltage = 10000.001f; }));
    EXPECT_TRUE(fails([](CITSImageEntryType* g) { g->voltage = NAN; }));
    EXPECT_TRUE(fails([](CITSImageEntryType* g) { g->adc_gain = 0; }));
    EXPECT_TRUE(fails([](CITSImageEntryType* g) { g->adc_gain = 1000; }));
    EXPECT_TRUE(fails([](CITSImageEntryType* g) { g->i_divider = 0; }));
    EXPECT_TRUE(fails([](CITSImageEntryType* g) { g->i_divider = 101; }));
    EXPECT_TRUE(fails([](CITSImageEntryType* g) { g->adc_offset = 10001; }));
    EXPECT_TRUE(fails([](CITSImageEntryType* g) { g->adc_offset = -10001; }));
    EXPECT_TRUE(fails([](CITSImageEntryType* g) { std::memset(g->title, 'a', 40); }));
    EXPECT_FALSE(fails([](CITSImageEntryType* g) { std::memset(g->title, 'a', 39); }));
}

// ---- upgrade of entries ----

class MappingUpgradeTest : public MappingSetTest {
protected:
    ImageHeaderType* image = nullptr;
    CITSImageEntryType* entry = nullptr;
    void SetUp() override
    {
        MappingSetTest::SetUp();
        image = MakeMappingImage(16, 1);
        entry = CITSEntry(image->CITSHeaderPtr, 0);
        image->SubRevNo = 5;
        image->LMCThreshold1On = image->LMCThreshold2On = 1;
        image->LMCThreshold1 = 2.5;
        image->LMCThreshold2 = -1.0;
        image->LMCThreshold1Dir = image->LMCThreshold2Dir = 1;
        image->CITSHeaderPtr->disp.mode = 4;
    }
    bool ThresholdsReset() const
    {
        return image->LMCThreshold1On == 0 && image->LMCThreshold2On == 0 && image->LMCThreshold1 == 0.0 &&
               image->LMCThreshold2 == 0.0 && image->LMCThreshold1Dir == 3 && image->LMCThreshold2Dir == 3;
    }
};

TEST_F(MappingUpgradeTest, TheOldestRevisionsDeriveTheDataTypeFromTheOldType)
{
    const int revs[] = {0, 100, 105, 200, 206, 300};
    const uint8_t oldTypes[] = {0, 1, 2, 3, 9};
    const uint32_t types[] = {1, 8, 4, 2048, 2048};
    for (int rev : revs)
        for (int i = 0; i < 5; ++i) {
            image->CITSHeaderPtr->rev = static_cast<int16_t>(rev);
            entry->old_type = oldTypes[i];
            entry->data_type = 77;
            UpdateCITSImageHeader(image, entry);
            EXPECT_EQ(entry->data_type, types[i]) << rev << " " << i;
        }
    EXPECT_TRUE(ThresholdsReset());
    EXPECT_EQ(image->CITSHeaderPtr->disp.mode, 2);
}

TEST_F(MappingUpgradeTest, MiddleRevisionsKeepTheDataTypeAndResetThresholdsBelowSubRevision18)
{
    for (int rev : {301, 310, 400, 407, 500, 501, 510, 520, 600, 603}) {
        SetUp();
        image->CITSHeaderPtr->rev = static_cast<int16_t>(rev);
        entry->data_type = 77;
        UpdateCITSImageHeader(image, entry);
        EXPECT_EQ(entry->data_type, 77u) << rev;
        EXPECT_TRUE(ThresholdsReset()) << rev;
        EXPECT_EQ(image->CITSHeaderPtr->disp.mode, 2) << rev;
    }
    image->CITSHeaderPtr->rev = 520;
    image->SubRevNo = 18;
    image->LMCThreshold1On = 1;
    UpdateCITSImageHeader(image, entry);
    EXPECT_EQ(image->LMCThreshold1On, 1);
}

TEST_F(MappingUpgradeTest, CurrentRevisionsKeepTheThresholdBlock)
{
    for (int rev : {604, 607, 700}) {
        image->CITSHeaderPtr->rev = static_cast<int16_t>(rev);
        image->CITSHeaderPtr->disp.mode = 4;
        UpdateCITSImageHeader(image, entry);
        EXPECT_EQ(image->LMCThreshold1On, 1) << rev;
        EXPECT_EQ(image->LMCThreshold1, 2.5) << rev;
        EXPECT_EQ(image->CITSHeaderPtr->disp.mode, 2) << rev;
    }
}

TEST_F(MappingUpgradeTest, AnUnknownRevisionReportsAndKeepsModeFour)
{
    image->CITSHeaderPtr->rev = 650;
    entry->old_type = 1;
    entry->data_type = 77;
    UpdateCITSImageHeader(image, entry);
    EXPECT_TRUE(Contains(ReadLog(), "Program error - UpdateCITSImageHeader 650"));
    EXPECT_EQ(entry->data_type, 77u);
    EXPECT_EQ(image->LMCThreshold1On, 1);
    EXPECT_EQ(image->CITSHeaderPtr->disp.mode, 4);
}

TEST_F(MappingSetTest, TheUpgradeOfOldRecordsWalksTheEntryDataTypes)
{
    ImageHeaderType* a = MakeMappingImage(16, 3);
    std::vector<uint32_t> seen;
    ForEachMappingSourceWord(
        a,
        [](uint32_t* word, void* context) {
            static_cast<std::vector<uint32_t>*>(context)->push_back(*word);
            *word = 0x1000;
        },
        &seen);
    EXPECT_EQ(seen, (std::vector<uint32_t>{4, 4, 4}));
    for (int k = 0; k < 3; ++k) EXPECT_EQ(CITSEntry(a->CITSHeaderPtr, k)->data_type, 0x1000u);
}

// ---- decoding ----

TEST_F(MappingSetTest, LinearDecodingIsTheF32ChainOfTheImages)
{
    CITSImageEntryType e{};
    e.z_low = -1.3f;
    e.z_high = 2.7f;
    for (uint32_t flag : {1u, 4u, 16u, 32u, 128u, 256u, 512u, 1024u, 2048u, 4096u, 0x20000u}) {
        e.data_type = flag;
        for (uint16_t raw : {uint16_t(0), uint16_t(1), uint16_t(12345), uint16_t(65535)}) {
            const float span = e.z_high - e.z_low;
            const float scaled = static_cast<float>(raw) * span;
            const float expected = scaled / 65535.0f + e.z_low;
            EXPECT_EQ(CITSData2Current(&e, raw), expected) << flag << " " << raw;
        }
    }
    e.data_type = 4;
    EXPECT_EQ(CITSData2Current(&e, 0), -1.3f);
    EXPECT_EQ(CITSData2Current(&e, 65535), 2.7f);
}

TEST_F(MappingSetTest, LogCurrentDecodesTheInstrumentCodeFourVoltsADecade)
{
    CITSImageEntryType e{};
    e.data_type = 8;
    e.raw_low = -32768;
    e.raw_high = 32767;
    e.adc_gain = 2;
    e.adc_offset = 500;
    e.i_divider = 10;
    for (uint16_t raw : {uint16_t(0), uint16_t(32768), uint16_t(40000), uint16_t(65535)}) {
        const long long code = static_cast<long long>(raw) * (32767 - -32768) / 65535 + -32768;
        const double u = (code * 10000.0 / 32768.0 / 2 + 500) / 1000.0;
        const float expected = static_cast<float>(std::pow(10.0, u / 4.0 + 1.0) / 10);
        EXPECT_FLOAT_EQ(CITSData2Current(&e, raw), expected) << raw;
    }
    // Code 32768 stands for instrument code 0: 0.5 V of offset, 10^(1.125) / 10.
    EXPECT_NEAR(CITSData2Current(&e, 32768), std::pow(10.0, 0.5 / 4 + 1) / 10, 1e-5);
}

TEST_F(MappingSetTest, AFlagWithoutDecodingIsAProgramErrorAndZero)
{
    CITSImageEntryType e{};
    e.z_low = 1;
    e.z_high = 2;
    for (uint32_t flag : {2u, 0x40000u, 0x600000u, 64u, 0u}) {
        e.data_type = flag;
        EXPECT_EQ(CITSData2Current(&e, 100), 0.0f);
        EXPECT_TRUE(Contains(ReadLog(), "Program error - CITSData2Current " + std::to_string(flag))) << flag;
    }
}

TEST_F(MappingSetTest, TheDataTypeTableGivesTheDisplayTypeOfEachFlag)
{
    const std::pair<uint32_t, uint32_t> rows[] = {
        {1, 1}, {2, 21}, {4, 2}, {8, 3}, {16, 8}, {32, 10}, {128, 18}, {256, 19}, {512, 11}, {1024, 4}, {2048, 5},
        {4096, 6}, {0x20000, 9}, {0x40000, 17}, {0x600000, 22}, {0x600001, 23}, {0x600002, 24}, {64, 4}, {0, 4}};
    for (const auto& [flag, source] : rows) {
        EXPECT_EQ(GetImageDisplayType(flag), source) << flag;
        EXPECT_EQ(AdcSrc2DataSource(flag), source) << flag;
    }
}

// ---- hit data ----

class MappingHitTest : public MappingSetTest {
protected:
    ImageHeaderType* image = nullptr;
    void SetUp() override
    {
        MappingSetTest::SetUp();
        image = MakeMappingImage(16, 2);
        ASSERT_EQ(AllocateHeaderMemory_LMCThresholdHitDataPtr(image, 16, 16), 0);
    }
    void SetRecord(int i, const std::string& bytes) { std::memcpy(image->LMCHitDataPtr + 74 * i, bytes.data(), 74); }
};

TEST_F(MappingHitTest, NewRecordsAreGood)
{
    EXPECT_EQ(CheckLMCThresholdHitData(image), 0);
}

TEST_F(MappingHitTest, EveryBadFieldCountsAndOneRecordMayCountTwice)
{
    SetRecord(0, HitBytes(0, 0x80000, 0));      // no channel
    SetRecord(1, HitBytes(3, 16, 0));           // hit outside 0..2
    SetRecord(2, HitBytes(1, 16, 2e9f));        // position out of range on a hit
    SetRecord(3, HitBytes(0, 16, 2e9f));        // no hit: the position is not looked at
    SetRecord(4, HitBytes(-1, 3, 0));           // bad hit and a channel of two bits
    SetRecord(5, HitBytes(2, 0x400000, -1e9f)); // good
    EXPECT_EQ(CheckLMCThresholdHitData(image), 5);
}

TEST_F(MappingHitTest, EachListedChannelIsGood)
{
    for (int bit = 0; bit <= 22; ++bit) {
        SetRecord(0, HitBytes(1, 1 << bit, 0));
        EXPECT_EQ(CheckLMCThresholdHitData(image), bit == 19 ? 1 : 0) << bit;
    }
    SetRecord(0, HitBytes(1, 1 << 23, 0));
    EXPECT_EQ(CheckLMCThresholdHitData(image), 1);
}

TEST_F(MappingHitTest, MissingPartsReportTheirPresence)
{
    EXPECT_EQ(CheckLMCThresholdHitData(nullptr), -1);
    EXPECT_TRUE(Contains(ReadLog(), "Program error - CheckLMCThresholdHitData 0 0 0"));
    ImageHeaderType* plain = tifftest::MakeImage(16, "No set");
    EXPECT_EQ(CheckLMCThresholdHitData(plain), -1);
    EXPECT_TRUE(Contains(ReadLog(), "Program error - CheckLMCThresholdHitData 1 0 0"));
    image->nx = image->ny = 32;
    EXPECT_EQ(CheckLMCThresholdHitData(image), -1);
    EXPECT_TRUE(Contains(ReadLog(), "Program error - CheckLMCThresholdHitData 1 1 1"));
    image->nx = image->ny = 16;
}

TEST_F(MappingHitTest, TheAllocationRefusesWithItsThreeTexts)
{
    EXPECT_EQ(AllocateHeaderMemory_LMCThresholdHitDataPtr(nullptr, 16, 16), -1);
    EXPECT_TRUE(Contains(ReadLog(), "Program error - AllocateHeaderMemory_LMCThresholdHitDataPtr im=NULL"));
    EXPECT_EQ(AllocateHeaderMemory_LMCThresholdHitDataPtr(image, 16, 16), -1);
    EXPECT_TRUE(Contains(ReadLog(), "Program error - AllocateHeaderMemory_LMCThresholdHitDataPtr LMCThresholdHitDataPtr=1"));
    ImageHeaderType* plain = tifftest::MakeImage(16, "No set");
    EXPECT_EQ(AllocateHeaderMemory_LMCThresholdHitDataPtr(plain, 16, 8), -1);
    EXPECT_TRUE(Contains(ReadLog(), "Program error - AllocateHeaderMemory_LMCThresholdHitDataPtr 16 8"));
    FreeHitData(image);
    host.messageBoxes.clear();
    FailAllocationsForTests(1);
    EXPECT_EQ(AllocateHeaderMemory_LMCThresholdHitDataPtr(image, 16, 16), -1);
    EXPECT_EQ(Boxes("Not enough memory for Threshold Data"), 1);
    EXPECT_EQ(image->LMCHitDataPtr, nullptr);
    ASSERT_EQ(AllocateHeaderMemory_LMCThresholdHitDataPtr(image, 16, 16), 0);
    float position;
    std::memcpy(&position, image->LMCHitDataPtr + 74 * 255 + 6, 4);
    uint32_t bits;
    std::memcpy(&bits, &position, 4);
    EXPECT_EQ(bits, 0x7F7FFFFFu);
}

TEST_F(MappingHitTest, ACopiedHeaderHasItsOwnRecords)
{
    image->LMCThreshold1On = 1;
    image->LMCHitDataPtr[74 * 3] = 2;
    ImageHeaderType* copy = AllocateListItem(image);
    ASSERT_EQ(CopyImageHeader(copy, image, 1), 0);
    ASSERT_NE(copy->LMCHitDataPtr, nullptr);
    EXPECT_NE(copy->LMCHitDataPtr, image->LMCHitDataPtr);
    EXPECT_EQ(std::memcmp(copy->LMCHitDataPtr, image->LMCHitDataPtr, 256 * 74), 0);
    EXPECT_EQ(copy->CITSHeaderPtr, image->CITSHeaderPtr);
    EraseItem(copy);   // a list item: the shared set stays with `image`
    EXPECT_EQ(LiveCITSPixelBlocks(), 2u);
}

// ---- kinds and entry points ----

TEST_F(MappingSetTest, ForceCurveAndFVMappingsAreTold)
{
    EXPECT_EQ(dl_IsFCMappingData(), 0);
    EXPECT_EQ(dl_IsFVMappingData(), 0);
    ImageHeaderType* a = MakeMappingImage(16, 1);
    CurrentItem = a;
    const std::pair<uint32_t, std::pair<int, int>> kinds[] = {
        {12, {0, 0}}, {15, {1, 0}}, {51, {1, 0}}, {60, {0, 1}}, {16, {0, 0}}};
    for (const auto& [kind, answers] : kinds) {
        a->MapType = kind;
        EXPECT_EQ(dl_IsFCMappingData(), answers.first) << kind;
        EXPECT_EQ(dl_IsFVMappingData(), answers.second) << kind;
    }
    a->MapType = 15;
    EXPECT_EQ(dl_IsCurrentDataTypeImage() & 0x800, 0x800);
    EXPECT_EQ(dl_IsCurrentDataTypeImage() & 0x1000, 0);   // cx 16: below 64
    ImageHeaderType* wide = MakeMappingImage(128, 1);
    CurrentItem = wide;
    EXPECT_EQ(dl_IsCurrentDataTypeImage() & 0x3808, 0x3008);   // a set, 64 and 128 wide, no force curve
}

TEST_F(MappingSetTest, TheVoltagesOfTheCurrentSetComeAsDoubles)
{
    double out[8];
    std::fill(std::begin(out), std::end(out), 99.0);
    EXPECT_EQ(dl_GetCITSCurrentImageVoltages(out), 0);
    ImageHeaderType* plain = tifftest::MakeImage(16, "No set");
    CurrentItem = plain;
    EXPECT_EQ(dl_GetCITSCurrentImageVoltages(out), 0);
    EXPECT_EQ(out[0], 99.0);
    ImageHeaderType* a = MakeMappingImage(16, 5);
    CITSEntry(a->CITSHeaderPtr, 4)->voltage = 0.1f;
    CurrentItem = a;
    EXPECT_EQ(dl_GetCITSCurrentImageVoltages(out), 5);
    EXPECT_EQ(out[0], -1.0);
    EXPECT_EQ(out[3], -0.25);
    EXPECT_EQ(out[4], static_cast<double>(0.1f));
    EXPECT_EQ(out[5], 99.0);
}

TEST_F(MappingSetTest, TheCantileverBlockIsTheSixtyTwoBytesAt3246)
{
    wint_LMCantileverImageParamType param;
    std::memset(&param, 0xEE, sizeof param);
    EXPECT_EQ(dl_GetLMCantileverParam(&param), 0);
    ImageHeaderType* a = MakeMappingImage(16, 1);
    CurrentItem = a;
    auto* block = reinterpret_cast<uint8_t*>(a) + 3246;
    for (int i = 0; i < 62; ++i) block[i] = static_cast<uint8_t>(i + 1);
    a->LMCMode = 0;
    a->DataSource = 4;
    EXPECT_EQ(dl_GetLMCantileverParam(&param), 0);   // no LM sub-type
    a->LMCMode = 8;
    a->DataSource = 1;
    EXPECT_EQ(dl_GetLMCantileverParam(&param), 0);   // not DataSource 4
    a->DataSource = 4;
    block[0] = 0;
    EXPECT_EQ(dl_GetLMCantileverParam(&param), 0);   // first byte 0
    EXPECT_EQ(param.bytes[1], 0xEE);
    block[0] = 1;
    EXPECT_EQ(dl_GetLMCantileverParam(&param), 1);
    for (int i = 0; i < 62; ++i) EXPECT_EQ(param.bytes[i], i + 1);
    EXPECT_EQ(a->LMCThreshold1On, 1);   // the block starts with the threshold fields

    for (int i = 0; i < 62; ++i) param.bytes[i] = static_cast<uint8_t>(200 - i);
    const uint8_t behind = block[62];
    dl_SetLMCantileverParam(&param);
    for (int i = 0; i < 62; ++i) EXPECT_EQ(block[i], 200 - i);
    EXPECT_EQ(block[62], behind);
}
