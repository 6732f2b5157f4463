// Magnify, drift correction, trim, extract and replace: refusals, the new item and its
// history and log, pixels against hand-computed values, ground truth on modelled images, and
// failed allocations.
#include "test_region_support.h"

#include "files/sample_data.h"
#include "image/convert_size.h"

#include <algorithm>
#include <cmath>

namespace {

using RegionTest = RegionTestBase;

constexpr double kPi = 3.14159265358979323846;

} // namespace

// Magnify.

TEST_F(RegionTest, MagnifyRefusesARectangleOnePixelWideWith33544)
{
    ImageHeaderType* source = AddCoded(64, 64);
    EXPECT_EQ(MagnifyArea({10, 5}, {10, 40}), nullptr);
    EXPECT_TRUE(ErrorShown("Image size too small"));
    EXPECT_EQ(CountItems(), 1);
    EXPECT_EQ(CurrentItem, source);
}

TEST_F(RegionTest, MagnifyOf300By200GivesA512SquareWhoseSizesDescribeTheArea)
{
    ImageHeaderType* source = AddCoded(400, 300, "Gold");
    source->ImageSizeX = 800.0f;   // 2 nm a pixel
    source->ImageSizeY = 300.0f;   // 1 nm a pixel
    ImageHeaderType* result = MagnifyArea({299, 249}, {0, 50});
    ASSERT_NE(result, nullptr);
    EXPECT_EQ(CurrentItem, result);
    EXPECT_EQ(result->nx, 512);
    EXPECT_EQ(result->ny, 512);
    // 300 pixels of 2 nm and 200 of 1 nm, unchanged by the resampling to 512.
    EXPECT_FLOAT_EQ(result->ImageSizeX, 600.0f);
    EXPECT_FLOAT_EQ(result->ImageSizeY, 200.0f);
    EXPECT_EQ(LastHistoryCode(result), 46);
    EXPECT_TRUE(LogHas("Magnify (0,50) (299,249) in 'Gold'.\n"));
    // The temporary item is gone: the result stands directly behind the source.
    EXPECT_EQ(CountItems(), 2);
    EXPECT_EQ(source->Next, result);
    const auto waits = host.Calls("ap_ShowWait");
    ASSERT_FALSE(waits.empty());
    EXPECT_NE(waits.back().args.find("Please wait for linear interpolation"), std::string::npos);
}

TEST_F(RegionTest, MagnifyCopiesTheRectangleAndLeavesWhatIsOutsideTheImageZero)
{
    AddCoded(64, 64);
    // 128 by 128 from (-10, -20). The resampling to 128 points takes the separable path, whose
    // blend of rows weighs 127 of 128: each code comes out as code * 127 >> 7.
    ImageHeaderType* result = MagnifyArea({117, 107}, {-10, -20});
    ASSERT_NE(result, nullptr);
    ASSERT_EQ(result->nx, 128);
    for (int y = 0; y < 128; ++y)
        for (int x = 0; x < 128; ++x) {
            const int sx = x - 10, sy = y - 20;
            const uint16_t want = sx >= 0 && sx < 64 && sy >= 0 && sy < 64 ? (Code(sx, sy) * 127) >> 7 : 0;
            ASSERT_EQ(At(result, x, y), want) << x << " " << y;
        }
}

TEST_F(RegionTest, MagnifyRefusals)
{
    EXPECT_EQ(MagnifyArea({1, 1}, {20, 20}), nullptr);
    EXPECT_TRUE(ErrorShown("No images in memory"));
    ImageHeaderType* image = AddCoded(64, 64);
    EXPECT_EQ(MagnifyArea({5, 5}, {5, 5}), nullptr);
    EXPECT_TRUE(ErrorShown("Invalid data entry"));
    image->FFTData = 1;
    EXPECT_EQ(MagnifyArea({1, 1}, {20, 20}), nullptr);
    EXPECT_TRUE(ErrorShown("Unable to perform this function on image of type FFT"));
    image->FFTData = 0;
    image->CITSHeader = 1;
    EXPECT_EQ(MagnifyArea({1, 1}, {20, 20}), nullptr);
    EXPECT_TRUE(ErrorShown("Unable to perform this function on image of type SPS Mapping "));
    image->CITSHeader = 0;
    EXPECT_EQ(CountItems(), 1);
}

TEST_F(RegionTest, MagnifyWithAFailedAllocationLeavesTheListAsItWas)
{
    AddCoded(100, 60);
    EXPECT_GE(FailEachAllocation([] { MagnifyArea({3, 4}, {80, 50}); }), 2);
}

TEST_F(RegionTest, MagnifyTheRealQuotientKeepsANarrowAreaSize)
{
    ImageHeaderType* source = AddCoded(300, 300);
    source->ImageSizeX = 30.0f;
    ImageHeaderType* result = MagnifyArea({0, 0}, {99, 99});
    ASSERT_NE(result, nullptr);
    EXPECT_FLOAT_EQ(result->ImageSizeX, 10.0f);   // 100 / 300 of 30 nm, not 0
}

// Drift correction.

TEST_F(RegionTest, DriftRefusesAnAreaBelowFivePixelsWith33544)
{
    AddCoded(64, 64);
    EXPECT_EQ(DriftCorrect({10, 10}, {14, 10}, {16, 40}), nullptr);
    EXPECT_TRUE(ErrorShown("Image size too small"));
    EXPECT_EQ(CountItems(), 1);
}

TEST_F(RegionTest, DriftRefusesASideOf4097With33537)
{
    AddCoded(64, 64);
    EXPECT_EQ(DriftCorrect({0, 0}, {4097, 0}, {4097, 10}), nullptr);
    EXPECT_TRUE(ErrorShown("Image too large for this function"));
    EXPECT_EQ(CountItems(), 1);
}

TEST_F(RegionTest, DriftRefusesCoincidingPointsWith32782)
{
    AddCoded(64, 64);
    EXPECT_EQ(DriftCorrect({10, 10}, {10, 10}, {30, 40}), nullptr);
    EXPECT_TRUE(ErrorShown("Invalid data entry"));
}

TEST_F(RegionTest, DriftOfAnUprightRectangleCopiesItAndSetsTheSizes)
{
    ImageHeaderType* source = AddCoded(101, 101, "Drift");
    source->ImageSizeX = 100.0f;
    source->ImageSizeY = 50.0f;
    const DriftFrame f = MakeDriftFrame({10, 10}, {50, 10}, {50, 60});
    ASSERT_TRUE(f.valid);
    EXPECT_EQ(f.width, 40);
    EXPECT_EQ(f.height, 50);
    EXPECT_DOUBLE_EQ(f.cosine, 0.0);
    std::vector<uint16_t> out(40 * 50);
    DriftResample(source, f, out.data());
    for (int j = 0; j < 50; ++j)
        for (int i = 0; i < 40; ++i) ASSERT_EQ(out[static_cast<size_t>(j) * 40 + i], Code(10 + i, 10 + j));

    ImageHeaderType* result = DriftCorrect({10, 10}, {50, 10}, {50, 60});
    ASSERT_NE(result, nullptr);
    EXPECT_EQ(result->nx, 128);   // the longer side 50 is below 128
    EXPECT_FLOAT_EQ(result->ImageSizeX, 40.0f);   // 40 steps of 1 nm
    EXPECT_FLOAT_EQ(result->ImageSizeY, 25.0f);   // 50 steps of 0.5 nm
    EXPECT_EQ(LastHistoryCode(result), 49);
    EXPECT_TRUE(LogHas("Drift correct 'Drift'.\n"));
    EXPECT_EQ(CountItems(), 2);
    EXPECT_EQ(source->Next, result);
}

TEST_F(RegionTest, DriftOnAOneColumnImageTakesItsPixelStepAsOne)
{
    // A source of one column has no step between columns (nx - 1 = 0): the pixel size is taken
    // as the whole width, so the sizes stay finite. Only the first column of the area lies on
    // the source; it is copied, the rest is 0.
    ImageHeaderType* source = AddCoded(1, 64, "Column");
    source->ImageSizeX = 2.0f;
    source->ImageSizeY = 63.0f;
    const DriftFrame f = MakeDriftFrame({0, 0}, {10, 0}, {10, 20});
    ASSERT_EQ(f.width, 10);
    ASSERT_EQ(f.height, 20);
    std::vector<uint16_t> out(10 * 20);
    DriftResample(source, f, out.data());
    for (int j = 0; j < 20; ++j) {
        EXPECT_EQ(out[static_cast<size_t>(j) * 10], Code(0, j)) << j;
        for (int i = 1; i < 10; ++i) ASSERT_EQ(out[static_cast<size_t>(j) * 10 + i], 0) << i << " " << j;
    }
    ImageHeaderType* result = DriftCorrect({0, 0}, {10, 0}, {10, 20});
    ASSERT_NE(result, nullptr);
    EXPECT_FLOAT_EQ(result->ImageSizeX, 20.0f);   // 10 steps of 2 nm
    EXPECT_FLOAT_EQ(result->ImageSizeY, 20.0f);   // 20 steps of 1 nm
}

TEST_F(RegionTest, DriftParallelogramGivenFromEitherEndGivesIdenticalPixels)
{
    AddCoded(256, 256);
    // Corners P0, P1, P2, P3 = P0 + P2 - P1 = (52, 148) of one parallelogram, given from each
    // end of the scan side and from the far side.
    const RegionPoint p0{20, 20}, p1{148, 20}, p2{180, 148}, p3{52, 148};
    const DriftFrame f = MakeDriftFrame(p0, p1, p2);
    for (const auto& order : {std::vector<RegionPoint>{p1, p0, p3}, std::vector<RegionPoint>{p3, p2, p1}}) {
        const DriftFrame g = MakeDriftFrame(order[0], order[1], order[2]);
        EXPECT_EQ(g.p0, f.p0);
        EXPECT_EQ(g.p1, f.p1);
        EXPECT_EQ(g.p2, f.p2);
    }
    ImageHeaderType* source = CurrentItem;
    ImageHeaderType* first = DriftCorrect(p0, p1, p2);
    ASSERT_NE(first, nullptr);
    const std::vector<uint16_t> pixels(first->PixData, first->PixData + 256 * 256);
    CurrentItem = source;
    ImageHeaderType* second = DriftCorrect(p1, p0, p3);
    ASSERT_NE(second, nullptr);
    EXPECT_TRUE(std::equal(pixels.begin(), pixels.end(), second->PixData));
    CurrentItem = source;
    ImageHeaderType* third = DriftCorrect(p3, p2, p1);
    ASSERT_NE(third, nullptr);
    EXPECT_TRUE(std::equal(pixels.begin(), pixels.end(), third->PixData));
}

TEST_F(RegionTest, DriftCorrectedCosineLatticeMatchesTheUnshearedModel)
{
    // A lattice of period 16 whose rows drifted 0.25 pixel to the right per row.
    auto model = [](double u, double v) {
        return 32768.0 + 15000.0 * std::cos(2 * kPi * u / 16) + 15000.0 * std::cos(2 * kPi * v / 16);
    };
    ImageHeaderType* source = AddImage(256, 256, [&](int x, int y) {
        return static_cast<uint16_t>(std::lround(model(x - 0.25 * y, y)));
    });
    // The drifted rows: 120 pixels along the scan, and 30 to the right over 120 rows.
    const DriftFrame f = MakeDriftFrame({20, 20}, {140, 20}, {170, 140});
    ASSERT_TRUE(f.valid);
    ASSERT_EQ(f.width, 120);
    ASSERT_GE(f.height, 119);
    std::vector<uint16_t> out(static_cast<size_t>(f.width * f.height));
    DriftResample(source, f, out.data());
    // Result pixel (i, j) lies at (20 + i + j / 4, 20 + j): the model at (15 + i, 20 + j).
    double worst = 0;
    for (int j = 0; j < f.height; ++j)
        for (int i = 0; i < f.width; ++i)
            worst = std::max(worst, std::abs(out[static_cast<size_t>(j) * f.width + i] - model(15 + i, 20 + j)));
    const double range = 60000.0;
    RecordProperty("worst_fraction_of_range", std::to_string(worst / range));
    EXPECT_LT(worst, 0.015 * range);
}

namespace {

// The shear of an image's rows: the shift (pixels) that best aligns row y + d with row y,
// by cross-correlation of the mean-free rows at whole shifts refined by a parabola, averaged
// over the rows and divided by d.
double MeasureRowShear(const ImageHeaderType* image, int d)
{
    const int nx = image->nx, ny = image->ny, margin = 8;
    double total = 0;
    int rows = 0;
    std::vector<double> a(static_cast<size_t>(nx)), b(static_cast<size_t>(nx));
    for (int y = 0; y + d < ny; ++y) {
        double ma = 0, mb = 0;
        for (int x = 0; x < nx; ++x) {
            a[static_cast<size_t>(x)] = image->PixData[static_cast<size_t>(y) * nx + x];
            b[static_cast<size_t>(x)] = image->PixData[static_cast<size_t>(y + d) * nx + x];
            ma += a[static_cast<size_t>(x)];
            mb += b[static_cast<size_t>(x)];
        }
        ma /= nx;
        mb /= nx;
        double score[2 * margin + 1];
        for (int s = -margin; s <= margin; ++s) {
            double sum = 0;
            for (int x = margin; x < nx - margin; ++x)
                sum += (a[static_cast<size_t>(x)] - ma) * (b[static_cast<size_t>(x + s)] - mb);
            score[s + margin] = sum;
        }
        int best = 1;
        for (int k = 1; k < 2 * margin; ++k)
            if (score[k] > score[best]) best = k;
        const double l = score[best - 1], c = score[best], r = score[best + 1];
        const double denominator = l - 2 * c + r;
        const double refine = denominator != 0 ? 0.5 * (l - r) / denominator : 0;
        total += best - margin + refine;
        ++rows;
    }
    return total / rows / d;
}

} // namespace

TEST_F(RegionTest, DriftCorrectionTakesTheShearOutOfTheSampleLattice)
{
    ImageHeaderType* source = MakeSampleLattice(nullptr);
    ASSERT_NE(source, nullptr);
    CurrentItem = source;
    // Two rows of atoms apart (a sqrt(3) = 18.2 pixels) the rows of the drifted lattice stand
    // shifted by the shear times the distance.
    const double before = MeasureRowShear(source, 18);
    RecordProperty("shear_before", std::to_string(before));
    EXPECT_NEAR(std::abs(before), SampleLattice::kDriftShear, 0.005);
    // Features drift to the left by 0.03 pixel a row: 6 pixels over 200 rows.
    ImageHeaderType* result = DriftCorrect({28, 20}, {228, 20}, {222, 220});
    ASSERT_NE(result, nullptr);
    ASSERT_EQ(result->nx, 256);
    // The same two rows of atoms after the resampling of about 200 rows to 256.
    const double after = MeasureRowShear(result, 23);
    RecordProperty("shear_after", std::to_string(after));
    EXPECT_LT(std::abs(after), 0.002);
}

TEST_F(RegionTest, DriftWithAFailedAllocationLeavesTheListAsItWas)
{
    AddCoded(100, 60);
    EXPECT_GE(FailEachAllocation([] { DriftCorrect({3, 4}, {80, 4}, {85, 50}); }), 2);
}

// Trim.

TEST_F(RegionTest, TrimKeepsTheCodesInsideTheParallelogram)
{
    ImageHeaderType* source = AddCoded(64, 64, "Cut");
    ImageHeaderType* result = TrimImage({10, 10}, {20, 10}, {10, 30});
    ASSERT_NE(result, nullptr);
    EXPECT_EQ(source->Next, result);
    for (int y = 0; y < 64; ++y)
        for (int x = 0; x < 64; ++x) {
            const bool inside = x >= 10 && x <= 20 && y >= 10 && y <= 30;
            ASSERT_EQ(At(result, x, y), inside ? Code(x, y) : 0) << x << " " << y;
        }
    EXPECT_EQ(LastHistoryCode(result), 84);
    EXPECT_TRUE(LogHas("Trim 'Cut'\n"));
}

TEST_F(RegionTest, TrimOfAnObliqueParallelogramFollowsTheRowSpans)
{
    AddCoded(64, 64);
    // A = (10, 10), B = (30, 20), C = (10, 40), D = (30, 50). Row 20 crosses A-B at 30, B-D at
    // 30 and C-A at 10: the span 10..30. Row 45 crosses B-D at 30 and D-C at 10 + 5 * 20 / 10.
    ImageHeaderType* result = TrimImage({10, 10}, {30, 20}, {10, 40});
    ASSERT_NE(result, nullptr);
    EXPECT_EQ(At(result, 9, 20), 0);
    EXPECT_EQ(At(result, 10, 20), Code(10, 20));
    EXPECT_EQ(At(result, 30, 20), Code(30, 20));
    EXPECT_EQ(At(result, 31, 20), 0);
    EXPECT_EQ(At(result, 19, 45), 0);
    EXPECT_EQ(At(result, 20, 45), Code(20, 45));
    EXPECT_EQ(At(result, 30, 45), Code(30, 45));
    EXPECT_EQ(At(result, 20, 51), 0);
}

TEST_F(RegionTest, TrimWithTwoCoincidingPointsEndsWithoutAMessage)
{
    AddCoded(64, 64);
    host.messageBoxes.clear();
    EXPECT_EQ(TrimImage({10, 10}, {10, 10}, {10, 30}), nullptr);
    EXPECT_TRUE(host.messageBoxes.empty());
    EXPECT_EQ(CountItems(), 1);
}

TEST_F(RegionTest, TrimWithoutAnImageReports33536)
{
    EXPECT_EQ(TrimImage({10, 10}, {20, 10}, {10, 30}), nullptr);
    EXPECT_TRUE(ErrorShown("No images in memory"));
}

TEST_F(RegionTest, TrimKeepsThePartOfTheParallelogramInsideTheImage)
{
    // A = (-5, 10), B = (20, 10), C = (-5, 30): the row spans start at -5 and are clipped to
    // the row, so columns 0 to 20 of rows 10 to 30 are kept and the rows outside stay 0.
    AddCoded(64, 64);
    ImageHeaderType* result = TrimImage({-5, 10}, {20, 10}, {-5, 30});
    ASSERT_NE(result, nullptr);
    for (int y = 0; y < 64; ++y)
        for (int x = 0; x < 64; ++x) {
            const bool inside = x <= 20 && y >= 10 && y <= 30;
            ASSERT_EQ(At(result, x, y), inside ? Code(x, y) : 0) << x << " " << y;
        }
    // Wholly beyond the last column: every span is clipped to an empty one.
    result = TrimImage({70, 10}, {90, 10}, {70, 30});
    ASSERT_NE(result, nullptr);
    for (int y = 0; y < 64; ++y)
        for (int x = 0; x < 64; ++x) ASSERT_EQ(At(result, x, y), 0) << x << " " << y;
}

TEST_F(RegionTest, TrimWithAFailedAllocationLeavesTheListAsItWas)
{
    AddCoded(64, 64);
    EXPECT_GE(FailEachAllocation([] { TrimImage({10, 10}, {30, 20}, {10, 40}); }), 1);
}

// Extract and replace.

TEST_F(RegionTest, ExtractAreaThroughTheSelectionKeepsTheRectangle)
{
    ImageHeaderType* source = AddCoded(64, 64, "Cut");
    dl_ExtractArea();
    ASSERT_TRUE(SelectionActive());
    const auto asks = host.Calls("ap_SelectPointInVFS");
    ASSERT_FALSE(asks.empty());
    EXPECT_NE(PickPoints(9, {{40, 30}, {10, 5}}), 0);
    EXPECT_FALSE(SelectionActive());
    ImageHeaderType* result = CurrentItem;
    ASSERT_NE(result, source);
    EXPECT_EQ(source->Next, result);
    EXPECT_EQ(result->nx, 64);
    EXPECT_EQ(result->ExtractX1, 10);
    EXPECT_EQ(result->ExtractX2, 40);
    EXPECT_EQ(result->ExtractY1, 5);
    EXPECT_EQ(result->ExtractY2, 30);
    for (int y = 0; y < 64; ++y)
        for (int x = 0; x < 64; ++x) {
            const bool inside = x >= 10 && x <= 40 && y >= 5 && y <= 30;
            ASSERT_EQ(At(result, x, y), inside ? Code(x, y) : 0) << x << " " << y;
        }
    EXPECT_EQ(LastHistoryCode(result), 87);
    EXPECT_TRUE(LogHas("Extract area from 'Cut'\n"));
}

TEST_F(RegionTest, ExtractRefusesAnFftImageAndCoincidingPoints)
{
    ImageHeaderType* image = AddCoded(64, 64);
    image->FFTData = 1;
    dl_ExtractArea();
    EXPECT_TRUE(ErrorShown("Unable to perform this function on image of type FFT"));
    EXPECT_FALSE(SelectionActive());
    image->FFTData = 0;
    ExtractPointsX[0] = ExtractPointsX[1] = 7;
    ExtractPointsY[0] = ExtractPointsY[1] = 9;
    EXPECT_EQ(ExtractArea(1), 1);
    EXPECT_TRUE(ErrorShown("Invalid data entry"));
    EXPECT_EQ(CountItems(), 1);
}

TEST_F(RegionTest, ReplaceOnAnImageWithoutAnExtractRectangleReports33551)
{
    AddCoded(64, 64);
    dl_ReplaceArea();
    EXPECT_TRUE(ErrorShown("Current image not generated by Extract command"));
    EXPECT_EQ(CountItems(), 1);
}

TEST_F(RegionTest, ReplacePutsTheProcessedRectangleIntoTheChosenImage)
{
    ImageHeaderType* target = AddImage(64, 64, [](int x, int y) { return static_cast<uint16_t>(7 * x + 3 * y); }, "Target");
    AddCoded(64, 64, "Cut");
    ExtractPointsX[0] = 12;
    ExtractPointsY[0] = 8;
    ExtractPointsX[1] = 30;
    ExtractPointsY[1] = 20;
    ASSERT_EQ(ExtractArea(1), 1);
    ImageHeaderType* extract = CurrentItem;
    ASSERT_EQ(extract->ExtractX2, 30);
    // Processing of the extract: its codes inverted.
    for (int i = 0; i < 64 * 64; ++i) extract->PixData[i] = static_cast<uint16_t>(65535 - extract->PixData[i]);
    host.selectAnswers.push_back(0);   // the target, the head of the list
    dl_ReplaceArea();
    ImageHeaderType* result = CurrentItem;
    ASSERT_NE(result, extract);
    EXPECT_EQ(extract->Next, result);
    for (int y = 0; y < 64; ++y)
        for (int x = 0; x < 64; ++x) {
            const bool inside = x >= 12 && x <= 30 && y >= 8 && y <= 20;
            ASSERT_EQ(At(result, x, y), inside ? 65535 - Code(x, y) : At(target, x, y)) << x << " " << y;
        }
    EXPECT_EQ(result->ExtractX1, 0);
    EXPECT_EQ(result->ExtractX2, 0);
    EXPECT_EQ(result->ExtractY1, 0);
    EXPECT_EQ(result->ExtractY2, 0);
    EXPECT_EQ(LastHistoryCode(result), 88);
    EXPECT_EQ(CountInLog("Extract area from 'Cut'\n"), 2);
}

TEST_F(RegionTest, ReplaceEndsQuietlyWhenTheUserChoosesNoImage)
{
    AddCoded(64, 64, "Cut");
    ExtractPointsX[1] = 20;
    ExtractPointsY[1] = 20;
    ASSERT_EQ(ExtractArea(1), 1);
    host.messageBoxes.clear();
    dl_ReplaceArea();   // no answer: the dialog is cancelled
    EXPECT_TRUE(host.messageBoxes.empty());
    EXPECT_EQ(CountItems(), 2);
}

TEST_F(RegionTest, ExtractAndReplaceWithAFailedAllocationLeaveTheListAsItWas)
{
    AddCoded(64, 64, "Cut");
    ExtractPointsX[0] = 2;
    ExtractPointsY[0] = 3;
    ExtractPointsX[1] = 20;
    ExtractPointsY[1] = 30;
    EXPECT_GE(FailEachAllocation([] { ExtractArea(1); }), 1);
    EXPECT_GE(FailEachAllocation([this] {
                  host.selectAnswers.push_back(0);
                  dl_ReplaceArea();
              }),
              1);
}
