// Operations on one image record.
#include "support/test_host.h"
#include "host/errors.h"
#include "store/image_header.h"
#include "store/memory.h"

#include <cfloat>
#include <cstring>
#include <memory>

class ImageHeaderTest : public LibraryTest {
protected:
    void SetUp() override
    {
        LibraryTest::SetUp();
        ASSERT_EQ(host.Start(), 0);
    }
    ImageHeaderType* NewRecord(int nx, int ny)
    {
        auto* r = AllocateHeader();
        InitImageHeader(r, nx, ny);
        records_.push_back(r);
        return r;
    }
    void TearDown() override
    {
        for (auto* r : records_) FreeHeader(r);
        LibraryTest::TearDown();
    }
    // The log lines of program errors so far.
    int ProgramErrorsLogged(const std::string& text)
    {
        std::string log = ReadLog();
        int n = 0;
        for (size_t at = log.find(text); at != std::string::npos; at = log.find(text, at + 1)) ++n;
        return n;
    }

private:
    std::vector<ImageHeaderType*> records_;
};

namespace {

template <typename T>
T At(const ImageHeaderType* r, size_t offset)
{
    T v;
    std::memcpy(&v, reinterpret_cast<const char*>(r) + offset, sizeof v);
    return v;
}

} // namespace

TEST_F(ImageHeaderTest, ANewRecordHoldsTheSizePassedInAndNoPixels)
{
    ImageHeaderType* r = NewRecord(-1, -1);
    EXPECT_EQ(r->nx, -1);
    EXPECT_EQ(r->ny, -1);
    EXPECT_EQ(r->PixData, nullptr);
    EXPECT_EQ(CheckValidImageHeader(r), 0);
}

TEST_F(ImageHeaderTest, NewRecordDefaults)
{
    ImageHeaderType* r = NewRecord(256, 256);
    EXPECT_EQ(r->RevNo, 700);
    EXPECT_EQ(r->SubRevNo, 42);
    EXPECT_EQ(r->ImType1, 1u);
    EXPECT_EQ(r->DataSource, 1u);
    EXPECT_EQ(r->DisplayMode, 1u);
    EXPECT_EQ(r->STSPosX, -1);
    EXPECT_EQ(r->STSPosY, -1);
    EXPECT_EQ(r->RouteEndX, -1);
    EXPECT_EQ(r->RouteEndY, -1);
    EXPECT_EQ(r->SPSOwnerId, -1);
    EXPECT_EQ(r->Contrast, 128.0f);
    EXPECT_EQ(r->Gamma, 1.0f);
    EXPECT_EQ(r->Brightness, 0.0f);
    EXPECT_EQ(r->DataScale, 0.0f);
    EXPECT_EQ(r->LMCThreshold1Dir, 3u);
    EXPECT_EQ(r->LMCThreshold2Dir, 3u);
    EXPECT_EQ(r->LMCSearchFrom, 16u);
    EXPECT_EQ(r->LMCSearchTo, 1024u);
    EXPECT_EQ(r->LMCSweepType, 1u);
    EXPECT_EQ(r->CrossSectionTopo, 1);
    for (int i = 0; i < 256; ++i) ASSERT_EQ(r->ImageLUT[i], i);
    // The date and time of the fixed test clock: Sunday 22 November 2026, 14:05:09.250.
    EXPECT_EQ(r->CreatedDate.day, 22);
    EXPECT_EQ(r->CreatedDate.month, 11);
    EXPECT_EQ(r->CreatedDate.year, 2026);
    EXPECT_EQ(r->CreatedDate.dayofweek, 0);
    EXPECT_EQ(r->SavedTime.hour, 14);
    EXPECT_EQ(r->SavedTime.minute, 5);
    EXPECT_EQ(r->SavedTime.second, 9);
    EXPECT_EQ(r->SavedTime.hsecond, 25);
    // The first profile rectangle.
    EXPECT_EQ(At<int32_t>(r, 2026), 64);
    EXPECT_EQ(At<int32_t>(r, 2030), 64);
    EXPECT_EQ(At<int32_t>(r, 2034), 192);
    EXPECT_EQ(At<int32_t>(r, 2038), 192);
    // The default colour table: index 35 + i of table 3 has red 2i, blue 0 below step 99.
    EXPECT_EQ(r->LutRed[35 + 10], 20);
    EXPECT_EQ(r->LutBlue[35 + 10], 0);
    EXPECT_EQ(r->LutBlue[35 + 127], 255);
    EXPECT_EQ(r->LutRed[6], 0);
    EXPECT_EQ(r->LutRed[0], 255);
}

TEST_F(ImageHeaderTest, NewRecordCarriesTheView3DTable)
{
    ImageHeaderType* r = NewRecord(16, 16);
    const size_t b = 2280;
    EXPECT_EQ(At<int32_t>(r, b + 0), 32);
    EXPECT_EQ(At<float>(r, b + 4), 30.0f);
    EXPECT_EQ(At<float>(r, b + 12), 20.0f);
    EXPECT_EQ(At<float>(r, b + 16), 0.1f);
    EXPECT_EQ(At<float>(r, b + 24), 1.21f);
    EXPECT_EQ(At<float>(r, b + 32), 0.2f);
    EXPECT_EQ(At<float>(r, b + 40), 4.0f);
    EXPECT_EQ(At<float>(r, b + 44), 4.0f);
    EXPECT_EQ(At<float>(r, b + 48), 0.5f);
    EXPECT_EQ(At<float>(r, b + 52), 0.5f);
    EXPECT_EQ(At<float>(r, b + 56), 10.0f);
    const int16_t levels[6] = {255, 128, 64, 0, 255, 0};
    for (int i = 0; i < 6; ++i) EXPECT_EQ(At<int16_t>(r, b + 60 + 2 * i), levels[i]);
    EXPECT_EQ(At<float>(r, b + 88), 1.0f);
    for (int i = 0; i < 5; ++i) EXPECT_EQ(At<int16_t>(r, b + 94 + 2 * i), 1);
    EXPECT_EQ(At<int32_t>(r, b + 108 + 16), 400);
    EXPECT_EQ(At<uint8_t>(r, b + 108 + 23), 1);
    EXPECT_EQ(At<uint8_t>(r, b + 108 + 27), 0x30);
    EXPECT_STREQ(reinterpret_cast<const char*>(r) + b + 108 + 28, "MS Shell Dlg");
    EXPECT_EQ(At<uint32_t>(r, b + 168), 0xFFFFFFu);
    EXPECT_EQ(At<int16_t>(r, b + 172), 0);
    EXPECT_EQ(At<float>(r, b + 174), 1.0f);
    EXPECT_EQ(At<float>(r, b + 182), 0.75f);
    EXPECT_EQ(At<float>(r, b + 186), 0.75f);
    EXPECT_EQ(At<float>(r, b + 190), 0.3f);
    EXPECT_EQ(At<int16_t>(r, b + 194), 1);
    EXPECT_EQ(At<int16_t>(r, b + 196), 0);
    EXPECT_EQ(At<int16_t>(r, b + 198), 1);
    EXPECT_EQ(At<uint32_t>(r, b + 200), 1u);
    for (size_t i = 204; i < 446; ++i) ASSERT_EQ(At<uint8_t>(r, b + i), 0) << i;
}

TEST_F(ImageHeaderTest, AnImageOf2048PassesAndFailsWithAMapping)
{
    ImageHeaderType* r = NewRecord(2048, 2048);
    EXPECT_EQ(CheckValidImageHeader(r), 1);
    r->CITSHeader = 1;
    EXPECT_EQ(CheckValidImageHeader(r), 0);
    r->nx = r->ny = 512;
    EXPECT_EQ(CheckValidImageHeader(r), 1);
}

TEST_F(ImageHeaderTest, ImagesMustBeSquare)
{
    ImageHeaderType* r = NewRecord(256, 128);
    EXPECT_EQ(CheckValidImageHeader(r), 0);
}

TEST_F(ImageHeaderTest, ImageSidesArePowersOfTwoFrom16To4096)
{
    ImageHeaderType* r = NewRecord(16, 16);
    EXPECT_EQ(CheckValidImageHeader(r), 1);
    for (int n : {8, 24, 100, 8192}) {
        r->nx = r->ny = static_cast<int16_t>(n);
        EXPECT_EQ(CheckValidImageHeader(r), 0) << n;
    }
    r->nx = r->ny = 4096;
    EXPECT_EQ(CheckValidImageHeader(r), 1);
    r->RevNo = 701;
    EXPECT_EQ(CheckValidImageHeader(r), 0);
    r->RevNo = -1;
    EXPECT_EQ(CheckValidImageHeader(r), 0);
}

TEST_F(ImageHeaderTest, ImType6IsNeitherImageNorSpectrumAndIsReportedByBothTests)
{
    ImageHeaderType* r = NewRecord(16, 16);
    r->ImType1 = 6;
    EXPECT_EQ(CheckHeaderIsImageType(r), 0);
    EXPECT_EQ(CheckHeaderIsSpecType(r), 0);
    std::string log = ReadLog();
    EXPECT_NE(log.find("Program error - CheckHeaderIsImageType 6"), std::string::npos);
    EXPECT_NE(log.find("Program error - CheckHeaderIsSpecType 6"), std::string::npos);
}

TEST_F(ImageHeaderTest, ClassTestsByImType)
{
    ImageHeaderType* r = NewRecord(16, 16);
    for (uint32_t t : {2u, 3u, 4u, 5u, 7u, 8u, 9u}) {
        r->ImType1 = t;
        EXPECT_EQ(CheckHeaderIsImageType(r), 0) << t;
        EXPECT_EQ(CheckHeaderIsSpecType(r), 1) << t;
    }
    r->ImType1 = 1;
    EXPECT_EQ(CheckHeaderIsImageType(r), 1);
    EXPECT_EQ(CheckHeaderIsSpecType(r), 0);
    EXPECT_EQ(CheckHeaderIsImageType(nullptr), 0);
    EXPECT_EQ(CheckHeaderIsSpecType(nullptr), 0);
}

TEST_F(ImageHeaderTest, SpectrumOf8192PointsPassesAnd8193Or2DoNot)
{
    ImageHeaderType* r = NewRecord(8192, 1);
    r->ImType1 = 2;
    EXPECT_EQ(CheckValidSpecHeader(r), 1);
    r->nx = 8193 - 65536 + 65536;   // 8193 still fits the i16 field
    EXPECT_EQ(CheckValidSpecHeader(r), 0);
    r->nx = 2;
    EXPECT_EQ(CheckValidSpecHeader(r), 0);
    r->nx = 3;
    EXPECT_EQ(CheckValidSpecHeader(r), 1);
}

TEST_F(ImageHeaderTest, CopyImageHeaderLeavesTheRuntimePartOfTheDestination)
{
    ImageHeaderType* source = NewRecord(64, 64);
    ImageHeaderType* destination = NewRecord(16, 16);
    std::strcpy(source->Title, "source");
    SetView3DOpen(source, 1);
    uint16_t pixels[4] = {1, 2, 3, 4};
    ImageHeaderType neighbour;
    destination->PixData = pixels;
    destination->Next = &neighbour;
    destination->Prev = &neighbour;
    const uint32_t id = destination->DataId;
    ASSERT_NE(id, source->DataId);
    EXPECT_EQ(CopyImageHeader(destination, source, 0), 0);
    EXPECT_EQ(destination->DataId, id);
    EXPECT_EQ(destination->PixData, pixels);
    EXPECT_EQ(destination->Next, &neighbour);
    EXPECT_EQ(destination->Prev, &neighbour);
    EXPECT_EQ(destination->nx, 64);
    EXPECT_STREQ(destination->Title, "source");
    EXPECT_EQ(View3DOpen(destination), 0);
    EXPECT_EQ(View3DOpen(source), 1);
    destination->PixData = nullptr;
}

TEST_F(ImageHeaderTest, CopyImageHeaderWithNullArgumentsReports)
{
    ImageHeaderType* r = NewRecord(16, 16);
    EXPECT_EQ(CopyImageHeader(nullptr, r, 0), 1);
    EXPECT_EQ(CopyImageHeader(r, nullptr, 0), 1);
    EXPECT_EQ(ProgramErrorsLogged("Program error - CopyImageHeader 1"), 2);
}

TEST_F(ImageHeaderTest, CopyImageHeaderCopiesHitDataOnlyWithTheFlagAndAMapping)
{
    ImageHeaderType* source = NewRecord(64, 64);
    ASSERT_TRUE(AllocateHitRecords(source, 4, 4));
    source->CITSHeader = 1;
    source->LMCThreshold1On = 1;
    source->LMCHitDataPtr[0] = 0x5A;
    ImageHeaderType* a = NewRecord(16, 16);
    EXPECT_EQ(CopyImageHeader(a, source, 0), 0);
    EXPECT_EQ(a->LMCThresholdHitDataPtr, 0u);
    EXPECT_EQ(a->LMCHitDataPtr, nullptr);
    ImageHeaderType* b = NewRecord(16, 16);
    EXPECT_EQ(CopyImageHeader(b, source, 1), 0);
    ASSERT_NE(b->LMCHitDataPtr, nullptr);
    EXPECT_NE(b->LMCHitDataPtr, source->LMCHitDataPtr);
    EXPECT_EQ(b->LMCThresholdHitDataPtr, 1u);
    EXPECT_EQ(b->LMCHitDataPtr[0], 0x5A);
    EXPECT_EQ(b->LMCHitDataCx, 4);
    source->CITSHeader = 0;
}

TEST_F(ImageHeaderTest, CopyImageHeaderWithNeitherThresholdOnReports)
{
    ImageHeaderType* source = NewRecord(64, 64);
    ASSERT_TRUE(AllocateHitRecords(source, 2, 2));
    source->CITSHeader = 1;
    ImageHeaderType* d = NewRecord(16, 16);
    EXPECT_EQ(CopyImageHeader(d, source, 1), 0);
    EXPECT_EQ(d->LMCHitDataPtr, nullptr);
    EXPECT_EQ(ProgramErrorsLogged("Program error - CopyImageHeadersrc  0 0"), 1);
    source->CITSHeader = 0;
}

TEST_F(ImageHeaderTest, CopyImageHeaderReportsAFailedHitDataCopy)
{
    ImageHeaderType* source = NewRecord(64, 64);
    ASSERT_TRUE(AllocateHitRecords(source, 2, 2));
    source->CITSHeader = 1;
    source->LMCThreshold2On = 1;
    ImageHeaderType* d = NewRecord(16, 16);
    FailAllocationsForTests(1);
    EXPECT_EQ(CopyImageHeader(d, source, 1), 1);
    EXPECT_EQ(ProgramErrorsLogged("Program error - CopyImageHeader 2"), 1);
    source->CITSHeader = 0;
}

TEST_F(ImageHeaderTest, CopyHeaderPointersSharesThePixels)
{
    ImageHeaderType* a = NewRecord(16, 16);
    ImageHeaderType* b = NewRecord(16, 16);
    uint16_t pixels[256] = {};
    a->PixData = pixels;
    a->PixHandle = 1;
    CopyHeaderPointers(b, a);
    EXPECT_EQ(b->PixData, pixels);
    EXPECT_EQ(b->PixHandle, 1u);
    a->PixData = b->PixData = nullptr;
}

TEST_F(ImageHeaderTest, HasPhysicalSizeNeedsBothSizesAndSpmData)
{
    ImageHeaderType* r = NewRecord(16, 16);
    r->ImageSizeX = r->ImageSizeY = 100.0f;
    EXPECT_FALSE(HasPhysicalSize(r));
    r->SPMData = 1;
    EXPECT_TRUE(HasPhysicalSize(r));
    r->ImageSizeY = 0.01f;
    EXPECT_FALSE(HasPhysicalSize(r));
}

TEST_F(ImageHeaderTest, NoOfBytesInImageReportsLargeSizesAndStillAnswers)
{
    EXPECT_EQ(NoOfBytesInImage(512, 512), 524288);
    EXPECT_EQ(ProgramErrorsLogged("NoOfBytesInImage"), 0);
    EXPECT_EQ(NoOfBytesInImage(12289, 1), 24578);
    EXPECT_EQ(NoOfBytesInImage(16, 4097), 131104);
    EXPECT_EQ(ProgramErrorsLogged("Program error - NoOfBytesInImage"), 2);
}

TEST_F(ImageHeaderTest, GetImagePointOutOfRangeReportsAndAnswersZero)
{
    ImageHeaderType* r = NewRecord(16, 16);
    MemHandleType pair;
    ASSERT_TRUE(AllocateMem(256, 2, &pair));
    r->PixHandle = pair.Handle;
    r->PixData = static_cast<uint16_t*>(pair.Ptr);
    ZeroImageData(r);
    r->PixData[3 * 16 + 5] = 4242;
    EXPECT_EQ(GetImagePoint(r, 5, 3), 4242);
    EXPECT_EQ(GetImagePoint(r, 16, 3), 0);
    EXPECT_EQ(GetImagePoint(r, -1, 0), 0);
    r->ImType1 = 2;
    EXPECT_EQ(GetImagePoint(r, 5, 3), 0);
    EXPECT_EQ(ProgramErrorsLogged("Program error - GetImagePoint (16 3)"), 1);
    EXPECT_EQ(ProgramErrorsLogged("Program error - GetImagePoint (5 3)"), 1);
    FreeMem(r->PixHandle, r->PixData);
    r->PixData = nullptr;
}

TEST_F(ImageHeaderTest, CopyImageDataNeedsTheSameSize)
{
    ImageHeaderType* a = NewRecord(16, 16);
    ImageHeaderType* b = NewRecord(16, 16);
    std::vector<uint16_t> pa(256, 7), pb(256, 0);
    a->PixData = pa.data();
    b->PixData = pb.data();
    CopyImageData(b, a);
    EXPECT_EQ(pb[255], 7);
    b->nx = b->ny = 32;
    CopyImageData(b, a);
    EXPECT_EQ(ProgramErrorsLogged("Program error - CopyImageData1"), 1);
    a->PixData = b->PixData = nullptr;
}

TEST_F(ImageHeaderTest, AdcSrcBitCodesGiveTheirDataSource)
{
    const uint32_t codes[][2] = {{1, 1},        {2, 21},       {4, 2},        {8, 3},    {16, 8},   {32, 10},
                                 {128, 18},     {256, 19},     {512, 11},     {2048, 5}, {4096, 6}, {0x20000, 9},
                                 {0x40000, 17}, {0x600000, 22}, {0x600001, 23}, {0x600002, 24}};
    for (const auto& c : codes) EXPECT_EQ(AdcSrc2DataSource(c[0]), c[1]) << c[0];
    for (uint32_t other : {0u, 64u, 1024u, 0x10000u, 0xFFFFFFFFu}) EXPECT_EQ(AdcSrc2DataSource(other), 4u) << other;
}

TEST_F(ImageHeaderTest, DataIdsCountUpFromZeroWithEveryRecord)
{
    ImageHeaderType* a = NewRecord(16, 16);
    ImageHeaderType* b = NewRecord(16, 16);
    EXPECT_EQ(a->DataId, 0u);
    EXPECT_EQ(b->DataId, 1u);
}
