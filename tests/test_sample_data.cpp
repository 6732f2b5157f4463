// The built-in sample data set.
#include "support/test_host.h"
#include "files/sample_data.h"
#include "store/data_list.h"
#include "store/image_header.h"
#include "store/memory.h"

#include <algorithm>
#include <cmath>
#include <cstring>

class SampleDataTest : public LibraryTest {
protected:
    void SetUp() override
    {
        LibraryTest::SetUp();
        ASSERT_EQ(host.Start(), 0);
    }
    static double Height(const ImageHeaderType* r, int col, int row)
    {
        uint16_t code = r->PixData[static_cast<size_t>(row) * r->nx + col];
        return r->Zlo + code * (static_cast<double>(r->Zhi) - r->Zlo) / 65535.0;
    }
};

TEST_F(SampleDataTest, TopographyIsAValidStmImageOfTheDocumentedSize)
{
    ImageHeaderType* r = MakeSampleTopography(nullptr);
    ASSERT_NE(r, nullptr);
    EXPECT_EQ(FirstItem, r);
    EXPECT_EQ(CheckValidImageHeader(r), 1);
    EXPECT_EQ(r->nx, 512);
    EXPECT_EQ(r->ImageSizeX, 500.0f);
    EXPECT_EQ(r->ScanMode, 2);
    EXPECT_EQ(r->SPMData, 1);
    EXPECT_EQ(r->DataSource, 1u);
    EXPECT_EQ(r->BiasVoltage, 1.2f);
    EXPECT_STREQ(r->Title, "Au(111) terraces with clusters");
    auto [lo, hi] = std::minmax_element(r->PixData, r->PixData + 512 * 512);
    EXPECT_EQ(*lo, 0);
    EXPECT_EQ(*hi, 65535);
    EXPECT_LT(r->Zlo, r->Zhi);
}

TEST_F(SampleDataTest, TheDataAreTheSameEveryTime)
{
    ImageHeaderType* a = MakeSampleTopography(nullptr);
    ImageHeaderType* b = MakeSampleTopography(a);
    ASSERT_NE(b, nullptr);
    EXPECT_EQ(std::memcmp(a->PixData, b->PixData, 512 * 512 * 2), 0);
    EXPECT_EQ(a->Zlo, b->Zlo);
    EXPECT_EQ(a->Zhi, b->Zhi);
}

TEST_F(SampleDataTest, ParticlesStandAtTheirCentresWithTheirHeight)
{
    using namespace SampleTopography;
    ImageHeaderType* r = MakeSampleTopography(nullptr);
    SampleParticle p[kParticleCount];
    SampleTopographyParticles(p);
    const double pixel = kSizeNm / kSize;
    for (int i = 0; i < kParticleCount; ++i) {
        EXPECT_GE(p[i].x, 2 * kParticleRadius);
        EXPECT_LE(p[i].x, kSizeNm - 2 * kParticleRadius);
        for (int j = 0; j < i; ++j) EXPECT_GE(std::hypot(p[i].x - p[j].x, p[i].y - p[j].y), 3 * kParticleRadius);
        // The top of the cap against the ground just outside it, on the same row: the height
        // of the cap, give or take the slope of the ground and the noise.
        int col = static_cast<int>(p[i].x / pixel), row = static_cast<int>(p[i].y / pixel);
        int out = static_cast<int>((kParticleRadius * 1.3) / pixel);
        double ground = (Height(r, col - out, row) + Height(r, col + out, row)) / 2;
        EXPECT_NEAR(Height(r, col, row) - ground, kParticleHeight, 0.5) << i;
    }
}

TEST_F(SampleDataTest, LatticeRowsRepeatWithTheLatticePeriod)
{
    using namespace SampleLattice;
    ImageHeaderType* r = MakeSampleLattice(nullptr);
    ASSERT_NE(r, nullptr);
    EXPECT_EQ(r->nx, 256);
    EXPECT_EQ(CheckValidImageHeader(r), 1);
    // Along y (90 degrees) the heights repeat every a * sqrt(3) / 2 ... for the wave along 90
    // degrees; the other two waves repeat along y every a * sqrt(3). Over a * sqrt(3) the whole
    // column repeats, shifted in x by the drift.
    const double pixel = kSizeNm / kSize;
    const double period = kLatticeConstant * std::sqrt(3.0) / pixel;   // pixels
    double same = 0, other = 0;
    for (int row = 10; row < 200; ++row) {
        int col = 100;
        int shifted = static_cast<int>(std::lround(col - kDriftShear * period));
        same += std::fabs(Height(r, shifted, row + static_cast<int>(std::lround(period))) - Height(r, col, row));
        other += std::fabs(Height(r, col, row + static_cast<int>(std::lround(period / 4))) - Height(r, col, row));
    }
    EXPECT_LT(same, other / 2);
}

TEST_F(SampleDataTest, IVCurveFollowsItsModel)
{
    using namespace SampleIVCurve;
    ImageHeaderType* r = MakeSampleIVCurve(nullptr);
    ASSERT_NE(r, nullptr);
    EXPECT_EQ(CheckHeaderIsSpecType(r), 1);
    EXPECT_EQ(CheckValidSpecHeader(r), 1);
    EXPECT_EQ(r->nx, kPoints);
    EXPECT_EQ(r->AcqMode, 12u);
    const float* y = SpecY(r);
    const float* x = SpecX(r);
    EXPECT_FLOAT_EQ(x[0], -1.0f);
    EXPECT_FLOAT_EQ(x[kPoints - 1], 1.0f);
    EXPECT_NEAR(y[kPoints - 1], kConductance * (1 + kCubic), 5 * kNoise);
    EXPECT_STREQ(r->SpecYTitle, "Current [nA]");
}

TEST_F(SampleDataTest, ForceCurveHasItsContactPointAndSlope)
{
    using namespace SampleForceCurve;
    ImageHeaderType* r = MakeSampleForceCurve(nullptr);
    ASSERT_NE(r, nullptr);
    EXPECT_EQ(r->AcqMode, 15u);
    EXPECT_EQ(r->DataSource, 8u);
    const float* y = SpecY(r);
    const float* x = SpecX(r);
    int last = kPoints - 1;
    double slope = (y[last] - y[last - 100]) / (x[last] - x[last - 100]);
    EXPECT_NEAR(slope, kSlope, 0.002);
    auto lowest = std::min_element(y, y + kPoints) - y;
    EXPECT_NEAR(x[lowest], kContact, 2.0);
}

TEST_F(SampleDataTest, AFailedAllocationLeavesTheListAsItWas)
{
    size_t blocks = LiveBlockCount();
    FailAllocationsForTests(1, 1);   // the record succeeds, the pixel block fails
    EXPECT_EQ(MakeSampleTopography(nullptr), nullptr);
    EXPECT_EQ(FirstItem, nullptr);
    EXPECT_EQ(LiveBlockCount(), blocks);
    FailAllocationsForTests(1, 1);
    EXPECT_EQ(MakeSampleIVCurve(nullptr), nullptr);
    EXPECT_EQ(FirstItem, nullptr);
    EXPECT_EQ(LiveBlockCount(), blocks);
}
