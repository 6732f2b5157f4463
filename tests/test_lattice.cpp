// Lattice average: the span table and index range by hand, the steps of the command with its
// refusals, Escape and the question, ground truth on lattices of known cells, and failed
// allocations.
#include "test_region_support.h"

#include <cmath>
#include <random>

namespace {

class LatticeTest : public RegionTestBase {
protected:
    static void SetPoints(RegionPoint origin, RegionPoint a, RegionPoint b)
    {
        LatticePointsX[0] = static_cast<int16_t>(origin.x);
        LatticePointsY[0] = static_cast<int16_t>(origin.y);
        LatticePointsX[1] = static_cast<int16_t>(a.x);
        LatticePointsY[1] = static_cast<int16_t>(a.y);
        LatticePointsX[2] = static_cast<int16_t>(b.x);
        LatticePointsY[2] = static_cast<int16_t>(b.y);
    }
    bool Asked() const { return ErrorShown("Repeat the averaged cell over the whole image?"); }
    static std::vector<std::array<int16_t, 4>> Spans(const LatticeCell& cell)
    {
        std::vector<SpanRow> table(kLatticeRows);
        FillSpanTable(cell, table.data());
        std::vector<std::array<int16_t, 4>> rows;
        for (int r = 0; r < kLatticeRows; ++r) rows.push_back({table[r][0], table[r][1], table[r][2], table[r][3]});
        return rows;
    }
};

constexpr int16_t M = kSpanMarker;

// The stretch of a code against the extremes of the cell.
uint16_t Stretched(int64_t v, int64_t low, int64_t high)
{
    const int64_t range = high != low ? high - low : 1000;
    return static_cast<uint16_t>(((v - low) * 255 / range) << 8);
}

// The key state of a platform whose Escape goes down at the n-th question.
int g_escapeAfter = 0;
int g_escapeAsked = 0;
int16_t EscapeLater(void*, int32_t key)
{
    if (key != TV_VK_ESCAPE) return 0;
    return ++g_escapeAsked > g_escapeAfter ? static_cast<int16_t>(0x8000) : 0;
}

} // namespace

// The span table, the columns of a span and the index range.

TEST_F(LatticeTest, SpanTableOfASquareCell)
{
    const LatticeCell cell = MakeLatticeCell({5, 5}, {13, 5}, {5, 13});
    EXPECT_EQ(cell.width, 9);
    EXPECT_EQ(cell.height, 9);
    const auto rows = Spans(cell);
    for (int r = 0; r < 9; ++r) EXPECT_EQ(rows[r], (std::array<int16_t, 4>{0, 8, M, M})) << r;
    EXPECT_EQ(rows[9], (std::array<int16_t, 4>{M, M, M, M}));
    EXPECT_EQ(rows[kLatticeRows - 1], (std::array<int16_t, 4>{M, M, M, M}));
}

TEST_F(LatticeTest, SpanTableOfAnObliqueCellCrossesWithIntegerDivision)
{
    // a = (8, 0), b = (-3, 8): box from (-3, 0) to (8, 8); corners in the box (3, 0), (11, 0),
    // (8, 8), (0, 8). Row r crosses 11 + r * -3 / 8 and (r - 8) * 3 / -8.
    const LatticeCell cell = MakeLatticeCell({0, 0}, {8, 0}, {-3, 8});
    EXPECT_EQ(cell.minX, -3);
    EXPECT_EQ(cell.width, 12);
    EXPECT_EQ(cell.height, 9);
    const auto rows = Spans(cell);
    EXPECT_EQ(rows[0], (std::array<int16_t, 4>{3, 11, M, M}));
    EXPECT_EQ(rows[1], (std::array<int16_t, 4>{2, 11, M, M}));
    EXPECT_EQ(rows[3], (std::array<int16_t, 4>{1, 10, M, M}));
    EXPECT_EQ(rows[4], (std::array<int16_t, 4>{1, 10, M, M}));
    EXPECT_EQ(rows[6], (std::array<int16_t, 4>{0, 9, M, M}));
    EXPECT_EQ(rows[8], (std::array<int16_t, 4>{0, 8, M, M}));
}

TEST_F(LatticeTest, SpanTableCrossingsAreSortedAndAVertexRowCountsBothEdges)
{
    // a = (4, 4), b = (4, -4): a diamond with corners (0, 4), (4, 8), (8, 4), (4, 0) in the box.
    const LatticeCell cell = MakeLatticeCell({0, 0}, {4, 4}, {4, -4});
    const auto rows = Spans(cell);
    EXPECT_EQ(rows[0], (std::array<int16_t, 4>{4, 4, M, M}));   // the top corner, twice
    EXPECT_EQ(rows[2], (std::array<int16_t, 4>{2, 6, M, M}));
    EXPECT_EQ(rows[4], (std::array<int16_t, 4>{0, 0, 8, 8}));   // both side corners: no columns
    int first = 0, last = 0;
    SpanRow four = {0, 0, 8, 8};
    EXPECT_FALSE(SpanColumns(four, &first, &last));
}

TEST_F(LatticeTest, SpanColumnsFollowTheMarkers)
{
    int first = -1, last = -1;
    SpanRow none = {M, M, M, M}, one = {5, M, M, M}, two = {2, 7, M, M}, three = {1, 4, 9, M};
    EXPECT_FALSE(SpanColumns(none, &first, &last));
    ASSERT_TRUE(SpanColumns(one, &first, &last));
    EXPECT_EQ(first, 5);
    EXPECT_EQ(last, 5);
    ASSERT_TRUE(SpanColumns(two, &first, &last));
    EXPECT_EQ(last, 7);
    ASSERT_TRUE(SpanColumns(three, &first, &last));
    EXPECT_EQ(first, 1);
    EXPECT_EQ(last, 9);
}

TEST_F(LatticeTest, IndexRangeOfASquareLatticeByHand)
{
    // det = 8 * 8 = 64; (64, 0) gives i = 8, j = 0; (0, 64) i = 0, j = 8; widened by 10.
    const LatticeRange range = MakeLatticeRange({8, 0}, {0, 8}, 64, 64);
    EXPECT_EQ(range.det, 64);
    EXPECT_EQ(range.iLow, -10);
    EXPECT_EQ(range.iHigh, 18);
    EXPECT_EQ(range.jLow, -10);
    EXPECT_EQ(range.jHigh, 18);
}

TEST_F(LatticeTest, IndexRangeTakesTheAbsolutePoints)
{
    // B = (28, 20), C = (20, 28): det = 28 * 28 - 20 * 20 = 384. (64, 0): i = 28 * 64 / 384 = 4,
    // j = -20 * 64 / 384 = -3; (0, 64): i = -20 * 64 / 384 = -3, j = 4; (64, 64): i = j = 1.
    const LatticeRange range = MakeLatticeRange({28, 20}, {20, 28}, 64, 64);
    EXPECT_EQ(range.det, 384);
    EXPECT_EQ(range.iLow, -13);
    EXPECT_EQ(range.iHigh, 14);
    EXPECT_EQ(range.jLow, -13);
    EXPECT_EQ(range.jHigh, 14);
}

TEST_F(LatticeTest, ParallelVectorsTakeDet100000ANarrowRangeAndACellWithoutArea)
{
    // Origin at (0, 0), where the absolute points are the vectors.
    const LatticeRange range = MakeLatticeRange({4, 4}, {8, 8}, 64, 64);
    EXPECT_EQ(range.det, 100000);
    EXPECT_EQ(range.iLow, -10);
    EXPECT_EQ(range.iHigh, 10);
    EXPECT_EQ(range.jLow, -10);
    EXPECT_EQ(range.jHigh, 10);
    const LatticeCell cell = MakeLatticeCell({0, 0}, {4, 4}, {8, 8});
    EXPECT_EQ(cell.width, 13);
    const auto rows = Spans(cell);
    // Every row of the outline is one column of the line: the polygon covers no area.
    for (int r = 0; r < cell.height; ++r) {
        int first = 0, last = 0;
        SpanRow row = {rows[r][0], rows[r][1], rows[r][2], rows[r][3]};
        ASSERT_TRUE(SpanColumns(row, &first, &last)) << r;
        EXPECT_EQ(first, r);
        EXPECT_EQ(last, r);
    }
    // The command runs on it all the same, and asks its question.
    AddFlatImage(64, 1000);
    SetPoints({0, 0}, {4, 4}, {8, 8});
    host.messageBoxAnswers.push_back(TV_IDNO);
    EXPECT_EQ(LatticeAverage(1), 0);
    EXPECT_TRUE(Asked());
}

// The command.

TEST_F(LatticeTest, SquareLatticeAccumulatesCellsTimesOneCellAndRepeatsTheStretchedImage)
{
    auto f = [](int x, int y) { return static_cast<uint16_t>(1000 + 37 * (x % 8) + 300 * (y % 8)); };
    ImageHeaderType* source = AddImage(64, 64, f, "Lattice");
    SetPoints({0, 0}, {8, 0}, {0, 8});
    host.messageBoxAnswers.push_back(TV_IDYES);
    EXPECT_EQ(LatticeAverage(1), 0);
    EXPECT_TRUE(Asked());
    const LatticeResult& last = LastLatticeResult();
    // Origins (8 i, 8 j) whose 9 by 9 box lies inside: i and j from 0 to 6.
    EXPECT_EQ(last.cells, 49);
    ASSERT_EQ(last.width, 9);
    ASSERT_EQ(last.height, 9);
    for (int r = 0; r < 9; ++r)
        for (int c = 0; c < 9; ++c) ASSERT_EQ(last.sums[static_cast<size_t>(r) * 9 + c], 49u * f(c, r)) << r << c;
    const int64_t low = 1000, high = 1000 + 37 * 7 + 300 * 7;
    EXPECT_EQ(last.min, 49 * low);
    EXPECT_EQ(last.max, 49 * high);
    ImageHeaderType* result = CurrentItem;
    ASSERT_NE(result, source);
    EXPECT_EQ(source->Next, result);
    for (int y = 0; y < 64; ++y)
        for (int x = 0; x < 64; ++x) ASSERT_EQ(At(result, x, y), Stretched(f(x, y), low, high)) << x << " " << y;
    EXPECT_EQ(LastHistoryCode(result), 80);
    EXPECT_TRUE(LogHas("Average over lattice of 'Lattice'\n"));
}

TEST_F(LatticeTest, ObliqueCellRepeatStandsShiftedByTheBoxCorner)
{
    // A lattice of a = (8, 0), b = (-3, 8): the code depends on y mod 8 and on
    // (x + 3 floor(y / 8)) mod 8.
    auto f = [](int x, int y) {
        const int u = ((x + 3 * (y / 8)) % 8 + 8) % 8, v = y % 8;
        return static_cast<uint16_t>(2000 + 150 * u + 700 * v + 11 * u * v);
    };
    AddImage(96, 96, f);
    SetPoints({0, 0}, {8, 0}, {-3, 8});
    host.messageBoxAnswers.push_back(TV_IDYES);
    EXPECT_EQ(LatticeAverage(1), 0);
    const LatticeResult& last = LastLatticeResult();
    EXPECT_EQ(last.minX, -3);
    EXPECT_EQ(last.minY, 0);
    ASSERT_GT(last.cells, 0);
    int64_t low = INT64_MAX, high = 0;
    for (int y = 0; y < 96; ++y)
        for (int x = 0; x < 96; ++x) {
            low = std::min<int64_t>(low, f(x, y));
            high = std::max<int64_t>(high, f(x, y));
        }
    ImageHeaderType* result = CurrentItem;
    int same = 0, total = 0;
    for (int y = 0; y < 96; ++y)
        for (int x = 0; x < 96; ++x) {
            const int sx = x + last.minX, sy = y + last.minY;
            if (sx < 0 || sy < 0) continue;
            ++total;
            if (At(result, x, y) == Stretched(f(sx, sy), low, high)) ++same;
        }
    RecordProperty("matching_fraction", std::to_string(static_cast<double>(same) / total));
    EXPECT_GE(same, 0.95 * total);
}

TEST_F(LatticeTest, NoisyLatticeAveragesWithinThreeSigmaOverTheRootOfTheCells)
{
    auto clean = [](int x, int y) { return 20000.0 + 900.0 * (x % 8) + 2500.0 * (y % 8); };
    const double sigma = 400.0;
    std::mt19937 random(20261125);
    std::normal_distribution<double> noise(0.0, sigma);
    std::vector<uint16_t> codes(128 * 128);
    for (int y = 0; y < 128; ++y)
        for (int x = 0; x < 128; ++x) codes[static_cast<size_t>(y) * 128 + x] = static_cast<uint16_t>(std::lround(clean(x, y) + noise(random)));
    AddImage(128, 128, [&](int x, int y) { return codes[static_cast<size_t>(y) * 128 + x]; });
    SetPoints({0, 0}, {8, 0}, {0, 8});
    host.messageBoxAnswers.push_back(TV_IDNO);
    EXPECT_EQ(LatticeAverage(1), 0);
    const LatticeResult& last = LastLatticeResult();
    ASSERT_EQ(last.cells, 15 * 15);
    const double bound = 3 * sigma / std::sqrt(static_cast<double>(last.cells));
    double worst = 0;
    for (int r = 0; r < 9; ++r)
        for (int c = 0; c < 9; ++c)
            worst = std::max(worst, std::abs(last.sums[static_cast<size_t>(r) * 9 + c] / static_cast<double>(last.cells) - clean(c, r)));
    RecordProperty("worst_over_bound", std::to_string(worst / bound));
    EXPECT_LE(worst, bound);
}

TEST_F(LatticeTest, DisplayCodesAreComputedIn64Bits)
{
    // 225 cells of codes up to 65535: (v - min) * 255 passes 2^31.
    AddImage(128, 128, [](int x, int y) {
        return static_cast<uint16_t>((x % 8) == 1 ? 65535 : (y % 8) == 2 ? 32768 : 1);
    });
    SetPoints({0, 0}, {8, 0}, {0, 8});
    host.messageBoxAnswers.push_back(TV_IDNO);
    LatticeAverage(1);
    const LatticeResult& last = LastLatticeResult();
    ASSERT_EQ(last.cells, 225);
    EXPECT_EQ(last.codes[1], 65280);                    // (r 0, c 1): the largest sum
    EXPECT_EQ(last.codes[0], 0);                        // the smallest sum
    EXPECT_EQ(last.codes[2 * 9 + 0], 127 << 8);         // 32768: 127.5 truncated
}

TEST_F(LatticeTest, EscapeInTheFirstLoopLeavesAPartialAccumulatorAndTheQuestionIsStillAsked)
{
    AddImage(64, 64, [](int x, int y) { return static_cast<uint16_t>(1000 + x + y); });
    TavrinPlatformTable platform = host.Platform();
    platform.KeyState = EscapeLater;
    dl_SetPlatformTable(&platform);
    // j runs from -10; rows of cells start at j = 0: Escape at the 14th test lets j = 0 to 3 in.
    g_escapeAsked = 0;
    g_escapeAfter = 14;
    SetPoints({0, 0}, {8, 0}, {0, 8});
    host.messageBoxAnswers.push_back(TV_IDNO);
    EXPECT_EQ(LatticeAverage(1), 0);
    EXPECT_EQ(LastLatticeResult().cells, 4 * 7);
    EXPECT_TRUE(Asked());
    EXPECT_EQ(CountItems(), 1);
}

TEST_F(LatticeTest, AnswerNoLeavesTheListAsItWas)
{
    ImageHeaderType* source = AddFlatImage(64, 500);
    SetPoints({0, 0}, {8, 0}, {0, 8});
    host.messageBoxAnswers.push_back(TV_IDNO);
    EXPECT_EQ(LatticeAverage(1), 0);
    EXPECT_EQ(CountItems(), 1);
    EXPECT_EQ(CurrentItem, source);
    EXPECT_FALSE(LogHas("Average over lattice"));
}

TEST_F(LatticeTest, ACellTooLargeOrTooSmallIsRefusedAndTheSelectionStartsAgain)
{
    AddFlatImage(64, 500);
    SetPoints({0, 0}, {2048, 0}, {0, 8});
    EXPECT_EQ(LatticeAverage(1), 1);
    EXPECT_TRUE(ErrorShown("Unit cell too large - try again"));
    SetPoints({0, 0}, {1, 0}, {0, 8});
    EXPECT_EQ(LatticeAverage(1), 1);
    EXPECT_TRUE(ErrorShown("Unit cell vectors too small - try again"));
    EXPECT_EQ(CountItems(), 1);
}

TEST_F(LatticeTest, AbortedSelectionDoesNothingAndCoincidingPointsReport32782)
{
    AddFlatImage(64, 500);
    SetPoints({0, 0}, {8, 0}, {0, 8});
    host.messageBoxes.clear();
    EXPECT_EQ(LatticeAverage(kButtonRight), 0);
    EXPECT_TRUE(host.messageBoxes.empty());
    SetPoints({0, 0}, {0, 0}, {0, 8});
    EXPECT_EQ(LatticeAverage(1), 0);
    EXPECT_TRUE(ErrorShown("Invalid data entry"));
    EXPECT_EQ(CountItems(), 1);
}

TEST_F(LatticeTest, ThroughTheSelectionARefusedCellKeepsItOpenForNewPoints)
{
    AddFlatImage(64, 500);
    dl_LatticeAverage();
    ASSERT_TRUE(SelectionActive());
    EXPECT_EQ(PickPoints(15, {{10, 10}, {11, 10}, {10, 11}}), 0);
    EXPECT_TRUE(ErrorShown("Unit cell vectors too small - try again"));
    EXPECT_TRUE(SelectionActive());
    host.messageBoxAnswers.push_back(TV_IDNO);
    EXPECT_NE(PickPoints(15, {{0, 0}, {8, 0}, {0, 8}}), 0);
    EXPECT_TRUE(Asked());
    EXPECT_FALSE(SelectionActive());
}

TEST_F(LatticeTest, EntryPointRefusesAMappingImageAndAnEmptyList)
{
    dl_LatticeAverage();
    EXPECT_TRUE(ErrorShown("No images in memory"));
    ImageHeaderType* image = AddFlatImage(64, 500);
    image->CITSHeader = 1;
    dl_LatticeAverage();
    EXPECT_TRUE(ErrorShown("Unable to perform this function on image of type SPS Mapping "));
    image->CITSHeader = 0;
    EXPECT_FALSE(SelectionActive());
}

TEST_F(LatticeTest, FailedAllocationsLeaveTheListAsItWas)
{
    AddImage(64, 64, [](int x, int y) { return static_cast<uint16_t>(x * y); });
    SetPoints({0, 0}, {8, 0}, {0, 8});
    // Every allocation in turn fails until the command comes through to its question, which
    // is answered yes: the span table, the accumulator and the new item come first.
    const int failures = FailEachAllocation([this] {
        host.messageBoxAnswers.clear();
        host.messageBoxAnswers.push_back(TV_IDYES);
        EXPECT_EQ(LatticeAverage(1), 0);
    });
    EXPECT_GE(failures, 3);
    EXPECT_TRUE(Asked());
    EXPECT_EQ(LastHistoryCode(CurrentItem), 80);
}

TEST_F(LatticeTest, TheUpperLimitOfIIsExcludedLikeThatOfJ)
{
    // Origin (-40, 0), B = (-32, 0), C = (-40, 8): det = -256; i over the corners 0, -2, -10,
    // -12 runs from -22 to 10 and j from -10 to 18, each upper limit excluded. Cells inside:
    // i = 5 to 9 (10 and 11 would fit but lie at or beyond the limit) and j = 0 to 6.
    AddImage(64, 64, [](int x, int y) { return static_cast<uint16_t>(100 + x + 64 * y); });
    const LatticeRange range = MakeLatticeRange({-32, 0}, {-40, 8}, 64, 64);
    EXPECT_EQ(range.det, -256);
    EXPECT_EQ(range.iLow, -22);
    EXPECT_EQ(range.iHigh, 10);
    SetPoints({-40, 0}, {-32, 0}, {-40, 8});
    host.messageBoxAnswers.push_back(TV_IDNO);
    EXPECT_EQ(LatticeAverage(1), 0);
    EXPECT_EQ(LastLatticeResult().cells, 5 * 7);
}

TEST_F(LatticeTest, RepeatSkipsRowsAndColumnsOfNegativeIndex)
{
    // Origin (4, 4) on a lattice of period 8: the corner pixels 0 to 3 are reached only by the
    // cell at (-4, -4), whose rows and columns before the image are left out.
    auto f = [](int x, int y) { return static_cast<uint16_t>(500 + 40 * (x % 8) + 400 * (y % 8)); };
    AddImage(32, 32, f);
    SetPoints({4, 4}, {12, 4}, {4, 12});
    host.messageBoxAnswers.push_back(TV_IDYES);
    EXPECT_EQ(LatticeAverage(1), 0);
    ImageHeaderType* result = CurrentItem;
    const int64_t low = 500, high = 500 + 40 * 7 + 400 * 7;
    for (int y = 0; y < 32; ++y)
        for (int x = 0; x < 32; ++x) ASSERT_EQ(At(result, x, y), Stretched(f(x, y), low, high)) << x << " " << y;
}
