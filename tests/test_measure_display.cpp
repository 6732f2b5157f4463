// The markers drawn over the image: rasterised areas, the identity mask, the point and line
// columns, crosses in the frame, labels, and the recalculation of changed markers only.
#include "test_measure_support.h"

#include "analysis/marker_walk.h"
#include "display/cvfs.h"
#include "display/fonts.h"
#include "display/vfs.h"
#include "files/sample_data.h"
#include "test_mapping_support.h"

#include <utility>

namespace {

class MeasureDisplayTest : public MeasureTest {
protected:
    // A 64 by 64 floor at code 0 over 64 nm, opened.
    ImageHeaderType* OpenFloor(int n = 64, float size = 64.0f)
    {
        ImageHeaderType* image = Image(n, n, [](int, int) { return uint16_t{0}; }, size, size);
        Open();
        return image;
    }
    // The marker number of a pixel; bit 15 marks outlines and labels.
    int Id(int x, int y) const { return ms->IDMask[static_cast<size_t>(y) * ms->Nx + x] & 0x7fff; }
};

TEST_F(MeasureDisplayTest, LineWalkVisitsHandComputedPixelsAndBothEnds)
{
    std::vector<std::pair<int, int>> seen;
    const int32_t count = WalkLine(0, 0, 5, 2, [&](int x, int y) { seen.emplace_back(x, y); });
    const std::vector<std::pair<int, int>> expected = {{0, 0}, {1, 0}, {2, 0}, {3, 1}, {4, 1}, {5, 2}};
    EXPECT_EQ(seen, expected);
    EXPECT_EQ(count, 6);
    seen.clear();
    WalkLine(3, 3, 1, 7, [&](int x, int y) { seen.emplace_back(x, y); });
    const std::vector<std::pair<int, int>> down = {{3, 3}, {3, 4}, {2, 5}, {2, 6}, {1, 7}};
    EXPECT_EQ(seen, down);
}

TEST_F(MeasureDisplayTest, MaskWalkReportsOverlapOfLowBitsOnly)
{
    OpenFloor(8, 8.0f);
    std::vector<int16_t> mask(64, 0);
    mask[0] = static_cast<int16_t>(0x8000);
    bool overlap = false;
    EXPECT_EQ(ms->draw_lineto_mem_OR(0, 0, 3, 0, mask.data(), &overlap, 2, 8, 8, false, nullptr), 4);
    EXPECT_FALSE(overlap);
    EXPECT_EQ(mask[0], static_cast<int16_t>(0x8002));
    EXPECT_EQ(mask[3], 2);
    ms->draw_lineto_mem_OR(3, 0, 3, 2, mask.data(), &overlap, 4, 8, 8, false, nullptr);
    EXPECT_TRUE(overlap);
    EXPECT_EQ(mask[3], 6);
}

TEST_F(MeasureDisplayTest, TwoPointRectangleDrawsItsFirstEdgeOnlyAndAddsNoArea)
{
    OpenFloor();
    Add(TV_MARKER_RECT, {{10, 10}, {20, 10}});
    ms->DisplayImageWithMarkers();
    EXPECT_EQ(ms->Number[2], 0);
    EXPECT_EQ(Id(15, 10), 0);
    // The edge A to B in the frame: row 10 * 8 + 4, columns 84 to 164.
    EXPECT_EQ(main.Index(84, 84), 255);
    EXPECT_EQ(main.Index(164, 84), 255);
    EXPECT_NE(main.Index(84, 100), 255);
}

TEST_F(MeasureDisplayTest, RectangleAreaFilledFourConnected)
{
    OpenFloor(32, 32.0f);
    Add(TV_MARKER_RECT, {{4, 4}, {9, 4}, {9, 8}});
    ms->DisplayImageWithMarkers();
    EXPECT_EQ(ms->Number[2], 1);
    int inside = 0;
    for (int y = 0; y < 32; ++y)
        for (int x = 0; x < 32; ++x) inside += Id(x, y) == 1;
    EXPECT_EQ(inside, 6 * 5);
    EXPECT_FLOAT_EQ(ms->Markers[0].LenArea, 30.0f);
    EXPECT_FLOAT_EQ(ms->LenArea[2], 30.0f);
}

TEST_F(MeasureDisplayTest, SmallCircleMaskIsHandComputed)
{
    OpenFloor(16, 16.0f);
    // r = sqrt(2): rows -1..1, half width trunc(sqrt(2 - o^2)) = 1 each: a 3 by 3 block.
    Add(TV_MARKER_CIRCLE, {{5, 5}, {6, 6}});
    ms->DisplayImageWithMarkers();
    int count = 0;
    for (int y = 0; y < 16; ++y)
        for (int x = 0; x < 16; ++x) {
            const bool in = x >= 4 && x <= 6 && y >= 4 && y <= 6;
            EXPECT_EQ(Id(x, y) == 1, in) << x << "," << y;
            count += Id(x, y) == 1;
        }
    EXPECT_EQ(count, 9);
}

TEST_F(MeasureDisplayTest, CircleAreaWithinFivePercentOfPiRSquared)
{
    OpenFloor(128, 128.0f);
    Add(TV_MARKER_CIRCLE, {{64, 64}, {64, 84}});
    ms->DisplayImageWithMarkers();
    EXPECT_NEAR(ms->Markers[0].LenArea, M_PI * 400.0, 0.05 * M_PI * 400.0);
}

TEST_F(MeasureDisplayTest, PolygonFilledFromItsSeed)
{
    OpenFloor(32, 32.0f);
    Add(TV_MARKER_POLYGON, {{2, 2}, {12, 2}, {12, 8}, {2, 8}}, POINTs{5, 5});
    ms->DisplayImageWithMarkers();
    EXPECT_EQ(ms->Number[2], 1);
    EXPECT_EQ(Id(5, 5), 1);
    EXPECT_EQ(Id(13, 5), 0);
    EXPECT_FLOAT_EQ(ms->Markers[0].LenArea, 11.0f * 7.0f);
}

TEST_F(MeasureDisplayTest, DiagonalOutlineHoldsTheFourConnectedFill)
{
    // A diamond of radius 8: its edges are pure diagonals, which a fill by 8 neighbours would
    // cross. Filled by 4 neighbours it holds |dx| + |dy| <= 8: 2 * 8 * 9 + 1 = 145 pixels.
    OpenFloor(32, 32.0f);
    Add(TV_MARKER_POLYGON, {{10, 2}, {18, 10}, {10, 18}, {2, 10}}, POINTs{10, 10});
    ms->DisplayImageWithMarkers();
    EXPECT_FLOAT_EQ(ms->Markers[0].LenArea, 145.0f);
    EXPECT_EQ(Id(10, 10), 1);
    EXPECT_EQ(Id(15, 15), 0);
}

TEST_F(MeasureDisplayTest, OverlapSetsTheFlagLaterMarkerOwnsSharedPixelsOwnStatisticsOwnMasks)
{
    OpenFloor(32, 32.0f);
    Add(TV_MARKER_RECT, {{2, 2}, {9, 2}, {9, 9}});
    Add(TV_MARKER_RECT, {{6, 6}, {13, 6}, {13, 13}});
    ms->DisplayImageWithMarkers();
    EXPECT_EQ(ms->MarkersOverlap, 1);
    EXPECT_EQ(Id(7, 7), 2);
    EXPECT_EQ(Id(3, 3), 1);
    EXPECT_FLOAT_EQ(ms->Markers[0].LenArea, 64.0f);
    EXPECT_FLOAT_EQ(ms->Markers[1].LenArea, 64.0f);
    // The union: 64 + 64 - 16 shared pixels.
    EXPECT_FLOAT_EQ(ms->LenArea[2], 112.0f);
}

TEST_F(MeasureDisplayTest, ZeroLengthLineDrawsNothingAndAddsNothing)
{
    OpenFloor();
    Add(TV_MARKER_LINE, {{10, 10}, {10, 10}});
    ms->DisplayImageWithMarkers();
    EXPECT_EQ(ms->Number[1], 0);
    EXPECT_EQ(ms->LenArea[1], 0.0f);
    EXPECT_EQ(ms->Min[1], kNoStatistic);
    EXPECT_NE(main.Index(84, 84), 255);
}

TEST_F(MeasureDisplayTest, FirstPointHasLengthZeroNextTheDistance)
{
    ImageHeaderType* image = Image(11, 11, [](int x, int y) { return static_cast<uint16_t>(1000 * x + 10 * y); }, 100, 100);
    (void)image;
    Open();
    Add(TV_MARKER_POINT, {{2, 3}});
    Add(TV_MARKER_POINT, {{8, 11 - 4}});
    ms->DisplayImageWithMarkers();
    EXPECT_EQ(ms->Markers[0].LenArea, 0.0f);
    // 6 and 4 pixels of 10 nm (n / (Nx - 1) * size).
    EXPECT_FLOAT_EQ(ms->Markers[1].LenArea, std::hypot(60.0f, 40.0f));
    EXPECT_EQ(ms->Number[0], 2);
    EXPECT_FLOAT_EQ(ms->Markers[0].Mean, 2.03f);
    EXPECT_FLOAT_EQ(ms->Mean[0], (2.03f + 8.07f) / 2);
    EXPECT_FLOAT_EQ(ms->Min[0], 2.03f);
    EXPECT_FLOAT_EQ(ms->Max[0], 8.07f);
    EXPECT_NEAR(ms->Ra[0], 3.02f, 1e-5);
    EXPECT_NEAR(ms->RMS[0], 3.02f, 1e-5);
    // A point reached backwards has the same distance: magnitudes of the differences.
    std::swap(ms->Markers[0].Points[0], ms->Markers[1].Points[0]);
    ms->DisplayImageWithMarkers();
    EXPECT_FLOAT_EQ(ms->Markers[1].LenArea, std::hypot(60.0f, 40.0f));
}

TEST_F(MeasureDisplayTest, PointCrossIsPaintedAroundTheFramePoint)
{
    OpenFloor();
    Add(TV_MARKER_POINT, {{10, 20}});
    ms->DisplayImageWithMarkers();
    // Frame point (84, 164); ends -3 and +4.
    for (int d = -3; d <= 4; ++d) {
        EXPECT_EQ(main.Index(84 + d, 164), 255) << d;
        EXPECT_EQ(main.Index(84, 164 + d), 255) << d;
    }
    EXPECT_NE(main.Index(80, 164), 255);
    EXPECT_NE(main.Index(89, 164), 255);
    EXPECT_NE(main.Index(84, 169), 255);
    // The marker being edited gets no cross of its own in pass 1, but the current cross.
    ms->CurrentMarker = 0;
    ms->DisplayImageWithMarkers();
    EXPECT_EQ(main.Index(84, 164), 255);
}

TEST_F(MeasureDisplayTest, LineOffTopographyHasNoVolume)
{
    Image(32, 32, [](int x, int) { return static_cast<uint16_t>(1000 * x); }, 32, 32, 0, 65.535f, 2);
    Open();
    Add(TV_MARKER_LINE, {{2, 5}, {20, 5}});
    ms->DisplayImageWithMarkers();
    EXPECT_EQ(ms->Number[1], 1);
    EXPECT_EQ(ms->Markers[0].VolCSA, kNoStatistic);
    EXPECT_EQ(ms->VolCSA[1], kNoStatistic);
    EXPECT_EQ(ms->SurfLenArea[1], kNoStatistic);
}

TEST_F(MeasureDisplayTest, LineOnTopographyMeasuresItsProfile)
{
    // z = x nm along a line of 18 pixels (1 nm each, size 31 nm over 32 pixels: (n-1) rule).
    Image(32, 32, [](int x, int) { return static_cast<uint16_t>(1000 * x); }, 31, 31);
    Open();
    Add(TV_MARKER_LINE, {{2, 5}, {20, 5}});
    ms->BaseMode = TV_BASE_BOTH;
    ms->DisplayImageWithMarkers();
    const MeasureMarkerType& m = ms->Markers[0];
    EXPECT_FLOAT_EQ(m.LenArea, 18.0f);
    EXPECT_NEAR(m.Min, 2.0f, 1e-4);
    // Samples once a pixel from the first end: 18 of them reach x = 19.
    EXPECT_NEAR(m.Max, 19.0f, 1e-4);
    EXPECT_GT(m.VolCSA, 0.0f);
    EXPECT_NE(m.VolCSA, kNoStatistic);
    EXPECT_FLOAT_EQ(ms->VolCSA[1], m.VolCSA);
    EXPECT_EQ(ms->Number[1], 1);
    // Base mode "none": the largest f32, and it stays so in the column.
    ms->BaseMode = TV_BASE_NONE;
    ms->DisplayImageWithMarkers();
    EXPECT_EQ(ms->Markers[0].VolCSA, kNoStatistic);
    EXPECT_EQ(ms->VolCSA[1], kNoStatistic);
}

TEST_F(MeasureDisplayTest, RedrawRecomputesOnlyMarkersWithCalcValidClear)
{
    OpenFloor(128, 128.0f);
    for (int i = 0; i < 50; ++i) {
        const int16_t x = static_cast<int16_t>(2 + (i % 10) * 12), y = static_cast<int16_t>(2 + (i / 10) * 12);
        Add(TV_MARKER_RECT, {{x, y}, {static_cast<int16_t>(x + 5), y}, {static_cast<int16_t>(x + 5), static_cast<int16_t>(y + 5)}});
    }
    ms->DisplayImageWithMarkers();
    EXPECT_EQ(ms->MarkerCalcRuns, 50);
    ms->DisplayImageWithMarkers();
    EXPECT_EQ(ms->MarkerCalcRuns, 50);
    ms->Markers[7].CalcValid = 0;
    ms->Markers[31].CalcValid = 0;
    ms->DisplayImageWithMarkers();
    EXPECT_EQ(ms->MarkerCalcRuns, 52);
}

TEST_F(MeasureDisplayTest, LabelTakesTheFirstFreePlace)
{
    Image(512, 512, [](int, int) { return uint16_t{0}; }, 512, 512);
    Open();
    Add(TV_MARKER_POINT, {{200, 200}});
    ms->DisplayImageWithMarkers();
    ASSERT_EQ(ms->LabelRectCount, 1);
    RECT expected;
    CurrentVfs()->MeasureText(&expected, 200, 205, NamedFont(FONT_GENERAL), "1", TextAlignWord(1, 2, 1));
    const RECT got = ms->LabelRects[0];
    EXPECT_EQ(got.left, expected.left);
    EXPECT_EQ(got.top, 205);
    EXPECT_EQ(got.right, expected.right);
    EXPECT_EQ(got.bottom, expected.bottom);
}

TEST_F(MeasureDisplayTest, LabelAvoidsALineBelowIt)
{
    Image(512, 512, [](int, int) { return uint16_t{0}; }, 512, 512);
    Open();
    Add(TV_MARKER_POINT, {{200, 200}});
    Add(TV_MARKER_LINE, {{150, 207}, {250, 207}});
    ms->DisplayImageWithMarkers();
    const FontRecType& font = NamedFont(FONT_GENERAL);
    RECT place[3];
    CurrentVfs()->MeasureText(&place[0], 200, 205, font, "1", TextAlignWord(1, 2, 1));
    CurrentVfs()->MeasureText(&place[1], 203, 203, font, "1", TextAlignWord(0, 2, 1));
    CurrentVfs()->MeasureText(&place[2], 205, 200, font, "1", TextAlignWord(0, 4, 1));
    // Places 0 and 1 cross row 207, place 2 stays clear of it and of the point's cross.
    ASSERT_TRUE(place[0].top <= 207 && place[0].bottom > 207);
    ASSERT_TRUE(place[1].top <= 207 && place[1].bottom > 207);
    ASSERT_TRUE(place[2].bottom <= 207);
    const RECT got = ms->LabelRects[0];
    EXPECT_EQ(got.left, place[2].left);
    EXPECT_EQ(got.top, place[2].top);
    EXPECT_EQ(got.right, place[2].right);
    EXPECT_EQ(got.bottom, place[2].bottom);
    // The label's pixels carry bit 15 in the identity mask.
    EXPECT_NE(ms->IDMask[static_cast<size_t>(place[2].top) * 512 + place[2].left] & 0x8000, 0);
}

} // namespace

namespace {

class MeasureSampleTest : public MeasureTest {};

TEST_F(MeasureSampleTest, CircleOverAParticleReportsItsHeight)
{
    using namespace SampleTopography;
    ImageHeaderType* image = MakeSampleTopography(CurrentItem);
    ASSERT_NE(image, nullptr);
    CurrentItem = image;
    Open();
    SampleParticle particles[kParticleCount];
    SampleTopographyParticles(particles);
    const double pixel = kSizeNm / kSize;
    int measured = 0;
    for (const SampleParticle& p : particles) {
        // Circles that cross a terrace step hold the step too: those are left out.
        const double r = kParticleRadius + pixel;
        if (std::floor((p.x - r + 0.35 * (p.y - r)) / kTerraceWidth) !=
            std::floor((p.x + r + 0.35 * (p.y + r)) / kTerraceWidth))
            continue;
        const int16_t cx = static_cast<int16_t>(std::lround(p.x / pixel - 0.5));
        const int16_t cy = static_cast<int16_t>(std::lround(p.y / pixel - 0.5));
        const int16_t rx = static_cast<int16_t>(cx + std::lround(kParticleRadius / pixel));
        ClearMeasureMarkers(ms);
        Add(TV_MARKER_CIRCLE, {{cx, cy}, {rx, cy}});
        ms->DisplayImageWithMarkers();
        const MeasureMarkerType& m = ms->Markers[0];
        EXPECT_NEAR(m.Max - m.Min, kParticleHeight, 0.1 * kParticleHeight) << cx << "," << cy;
        ++measured;
    }
    EXPECT_GE(measured, 10);
}

} // namespace

namespace {

class MeasureFailureTest : public MeasureTest {};

TEST_F(MeasureFailureTest, AllocationFailureAtEachStepOfTheRedrawLeaksNothing)
{
    Image(48, 48, [](int x, int y) { return static_cast<uint16_t>(100 * x + 7 * y); }, 48, 48);
    Open();
    Add(TV_MARKER_LINE, {{2, 3}, {40, 20}});
    Add(TV_MARKER_POLYGON, {{5, 5}, {20, 5}, {12, 18}}, POINTs{12, 9});
    Add(TV_MARKER_RECT, {{25, 25}, {40, 25}, {40, 40}});
    Add(TV_MARKER_POINT, {{30, 10}});
    ms->DisplayImageWithMarkers();
    const float lineLength = ms->Markers[0].LenArea;
    // The label rectangles are the object's own block, made afresh at each redraw (or not,
    // when that allocation fails); every other block of the redraw is freed within it.
    auto live = [&] { return LiveBlockCount() - (ms->LabelRects ? 1 : 0); };
    for (int skip = 0; skip < 12; ++skip) {
        for (int i = 0; i < ms->NoOfMarkers; ++i) ms->Markers[i].CalcValid = 0;
        const size_t before = live();
        FailAllocationsForTests(1, skip);
        ms->DisplayImageWithMarkers();
        FailAllocationsForTests(0);
        EXPECT_EQ(live(), before) << skip;
        EXPECT_EQ(ms->NoOfMarkers, 4);
        EXPECT_EQ(ms->Markers[1].NoOfPoints, 3);
    }
    // A quiet redraw afterwards gives the first results again.
    for (int i = 0; i < ms->NoOfMarkers; ++i) ms->Markers[i].CalcValid = 0;
    ms->DisplayImageWithMarkers();
    EXPECT_EQ(ms->Markers[0].LenArea, lineLength);
    EXPECT_EQ(ms->Number[1], 1);
    EXPECT_EQ(ms->Number[2], 2);
}

TEST_F(MeasureFailureTest, FailedLineAllocationSkipsTheLine)
{
    Image(32, 32, [](int x, int) { return static_cast<uint16_t>(1000 * x); }, 31, 31);
    Open();
    Add(TV_MARKER_LINE, {{2, 5}, {20, 5}});
    ms->DisplayImageWithMarkers();
    ASSERT_EQ(ms->Number[1], 1);
    const float length = ms->LenArea[1];
    // Each allocation of the redraw fails in turn: the line is either measured whole or
    // skipped, never half.
    int skipped = 0;
    for (int skip = 0; skip < 10; ++skip) {
        FailAllocationsForTests(1, skip);
        ms->DisplayImageWithMarkers();
        FailAllocationsForTests(0);
        if (ms->Number[1] == 0) {
            EXPECT_EQ(ms->LenArea[1], 0.0f) << skip;
            ++skipped;
        } else {
            EXPECT_EQ(ms->LenArea[1], length) << skip;
        }
    }
    EXPECT_GE(skipped, 1);
}

TEST_F(MeasureFailureTest, LegendListsMarkersWithSpectraInAWideFrameStore)
{
    TestFrameStore wide;
    ASSERT_EQ(wide.Open(2, 768, 512), 0);
    VFS_set_current_vfs(1);
    ImageHeaderType* image = maptest::MakeMappingImage(8, 4);
    ASSERT_NE(image, nullptr);
    CurrentItem = image;
    Open(true);
    Add(TV_MARKER_POINT, {{1, 1}});
    Add(TV_MARKER_POINT, {{50, 50}});   // off the image: no spectrum, no line
    Add(TV_MARKER_POINT, {{2, 2}});
    std::snprintf(ms->Markers[2].Name, sizeof ms->Markers[2].Name, "%s", "edge");
    ms->DisplayImageWithMarkers();
    VFS_set_current_vfs(2);
    ms->DisplayIDlist();
    std::vector<std::pair<std::string, double>> texts;
    for (const CVfsItem& item : CurrentVfs()->Items)
        if (item.Kind == VFS_ITEM_TEXT) texts.emplace_back(item.Text, item.Y1);
    ASSERT_EQ(texts.size(), 2u);
    EXPECT_EQ(texts[0].first, "ID1:  1");
    EXPECT_EQ(texts[0].second, 20.0);
    EXPECT_EQ(texts[1].first, "ID3:  edge");
    EXPECT_EQ(texts[1].second, 40.0);
    // A frame store of 512 gets no legend.
    VFS_set_current_vfs(1);
    const size_t items = CurrentVfs()->Items.size();
    ms->DisplayIDlist();
    EXPECT_EQ(CurrentVfs()->Items.size(), items);
    ms->MeasureFinish();
}

} // namespace
