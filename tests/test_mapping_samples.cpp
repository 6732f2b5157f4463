// Ground truth of the sample mappings: every plane decodes to its model within one code step,
// the sweeps and kinds are those documented, and a save and load keeps every byte of the set.
#include "test_blocks_support.h"
#include "test_mapping_support.h"
#include "files/sample_data.h"
#include "files/tiff_read.h"
#include "files/tiff_write.h"

#include <cmath>

using namespace maptest;

class MappingSampleTest : public BlockCountTest {
protected:
    void TearDown() override
    {
        EraseAllAndExpectStartBlocks();
        BlockCountTest::TearDown();
    }

    // Every pixel of every plane against the model; answers the largest error in code steps.
    template <typename Model>
    static double WorstError(const ImageHeaderType* item, Model model)
    {
        const CITSHeaderType* set = item->CITSHeaderPtr;
        double worst = 0;
        for (int k = 0; k < set->ni; ++k) {
            const CITSImageEntryType* e = CITSEntry(set, k);
            const double step = (static_cast<double>(e->z_high) - e->z_low) / 65535.0;
            for (int y = 0; y < set->cy; ++y) {
                const uint16_t* row = GetCITSImagePtr(set, k, static_cast<uint32_t>(y));
                for (int x = 0; x < set->cx; ++x)
                    worst = std::max(worst, std::fabs(CITSData2Current(e, row[x]) - model(x, y, k)) / step);
            }
        }
        return worst;
    }
};

TEST_F(MappingSampleTest, TheIVMappingDecodesToItsTwoDomainModel)
{
    ImageHeaderType* item = MakeSampleIVMapping(nullptr);
    ASSERT_NE(item, nullptr);
    const CITSHeaderType* set = item->CITSHeaderPtr;
    ASSERT_NE(set, nullptr);
    EXPECT_EQ(set->ni, 128);
    EXPECT_EQ(set->cx, 64);
    EXPECT_EQ(item->MapType, 12u);
    EXPECT_TRUE(IsSquareMappingImage(item));
    EXPECT_STREQ(GetCITSSweepUnit(item), "V");
    EXPECT_EQ(CITSEntry(set, 0)->voltage, -1.0f);
    EXPECT_EQ(CITSEntry(set, 127)->voltage, 1.0f);
    EXPECT_EQ(CITSEntry(set, 0)->data_type, 4u);
    EXPECT_LE(WorstError(item, SampleIVMappingValue), 1.0);
    // The model itself: at +1 V domain A carries 0.5 * 2.5 nA, domain B 1.5 * 2.5 nA.
    EXPECT_NEAR(SampleIVMappingValue(0, 0, 127), 1.25, 1e-9);
    EXPECT_NEAR(SampleIVMappingValue(63, 63, 127), 3.75, 1e-9);
    EXPECT_EQ(CheckValidImageHeader(item), 1);
}

TEST_F(MappingSampleTest, TheForceMappingDecodesToApproachAndRetractWithTheDisc)
{
    for (bool step : {false, true}) {
        ImageHeaderType* item = MakeSampleForceMapping(nullptr, step);
        ASSERT_NE(item, nullptr);
        const CITSHeaderType* set = item->CITSHeaderPtr;
        EXPECT_EQ(set->ni, 128);
        EXPECT_EQ(item->MapType, 15u);
        EXPECT_STREQ(GetCITSSweepUnit(item), "nm");
        EXPECT_EQ(CITSEntry(set, 63)->voltage, 100.0f);
        EXPECT_EQ(CITSEntry(set, 64)->voltage, 100.0f);
        EXPECT_EQ(CITSEntry(set, 127)->voltage, 0.0f);
        EXPECT_LE(WorstError(item, [step](int x, int y, int k) { return SampleForceMappingValue(x, y, k, step); }), 1.0);
        // Pull-off: the deepest retract value is -stiffness * L, stronger in the disc.
        const auto deepest = [&](int x, int y) {
            double low = 0;
            for (int k = 64; k < 128; ++k) low = std::min(low, SampleForceMappingValue(x, y, k, step));
            return low;
        };
        EXPECT_LT(deepest(32, 32), deepest(5, 5));
        EXPECT_GT(deepest(32, 32), -6.0 - 1e-9);
        // Hit data: threshold 1 is hit inside the disc only.
        ASSERT_NE(item->LMCHitDataPtr, nullptr);
        EXPECT_EQ(CheckLMCThresholdHitData(item), 0);
        LMCThresholdHitType inside, outside;
        std::memcpy(&inside, item->LMCHitDataPtr + (32 * 64 + 32) * 74, 74);
        std::memcpy(&outside, item->LMCHitDataPtr + (5 * 64 + 5) * 74, 74);
        EXPECT_EQ(inside.hit, 1);
        EXPECT_EQ(inside.channel, 16);
        EXPECT_EQ(inside.position, 48.0f);
        EXPECT_EQ(outside.hit, 0);
        // The step raises the topography where the tip meets the surface earlier.
        EXPECT_EQ(item->PixData[10 * 64 + 50] > item->PixData[10 * 64 + 10], step);
        EraseItem(item);
    }
}

TEST_F(MappingSampleTest, TheFVMappingDecodesToItsParabolas)
{
    ImageHeaderType* item = MakeSampleFVMapping(nullptr);
    ASSERT_NE(item, nullptr);
    const CITSHeaderType* set = item->CITSHeaderPtr;
    EXPECT_EQ(set->ni, 81);
    EXPECT_EQ(set->cx, 32);
    EXPECT_EQ(dl_IsFVMappingData(), 0);   // not current yet
    CurrentItem = item;
    EXPECT_EQ(dl_IsFVMappingData(), 1);
    EXPECT_EQ(CITSEntry(set, 40)->voltage, 0.0f);
    EXPECT_EQ(CITSEntry(set, 80)->voltage, 2.0f);
    EXPECT_LE(WorstError(item, SampleFVMappingValue), 1.0);
    // The vertex of pixel column 0 lies at V = -V0 = +0.5 V: image 50.
    int lowest = 0;
    for (int k = 1; k < 81; ++k)
        if (SampleFVMappingValue(0, 0, k) < SampleFVMappingValue(0, 0, lowest)) lowest = k;
    EXPECT_EQ(lowest, 50);
}

TEST_F(MappingSampleTest, EachSampleSavesAndLoadsWithItsWholeSet)
{
    ImageHeaderType* (*makers[])(ImageHeaderType*) = {MakeSampleIVMapping, MakeSampleForceMappingWithStep,
                                                      MakeSampleFVMapping};
    int n = 0;
    for (auto make : makers) {
        ImageHeaderType* item = make(nullptr);
        ASSERT_NE(item, nullptr);
        const std::string path = Path("sample" + std::to_string(n++) + ".tif");
        ASSERT_EQ(saveTiffImage(item, path.c_str(), 0), 0);
        ASSERT_EQ(LoadImageFile(path.c_str(), 0, 1, 1), 0);
        ImageHeaderType* loaded = CurrentItem;
        ASSERT_NE(loaded, item);
        const CITSHeaderType* a = item->CITSHeaderPtr;
        const CITSHeaderType* b = loaded->CITSHeaderPtr;
        ASSERT_NE(b, nullptr);
        EXPECT_EQ(std::memcmp(a, b, 388), 0);
        for (int k = 0; k < a->ni; ++k) {
            EXPECT_EQ(std::memcmp(CITSEntry(a, k), CITSEntry(b, k), 165), 0) << k;
            EXPECT_EQ(std::memcmp(CITSPixels(CITSEntry(a, k)), CITSPixels(CITSEntry(b, k)),
                                  static_cast<size_t>(a->cx) * a->cy * 2), 0) << k;
        }
        EXPECT_EQ(loaded->LMCHitDataPtr != nullptr, item->LMCHitDataPtr != nullptr);
        EXPECT_EQ(host.messageBoxes.size(), 0u);
    }
}

TEST_F(MappingSampleTest, AFailedAllocationLeavesTheListAsItWas)
{
    for (int skip = 0; skip < 6; ++skip) {
        FailAllocationsForTests(1, skip);
        ImageHeaderType* item = MakeSampleFVMapping(nullptr);
        FailAllocationsForTests(0);
        if (item) {
            EraseItem(item);
            continue;
        }
        EXPECT_EQ(FirstItem, nullptr) << skip;
        EXPECT_EQ(LiveBlockCount(), blocks_) << skip;
    }
}
