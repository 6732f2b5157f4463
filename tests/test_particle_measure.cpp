// Objects of hand-made bilevel grids with known answers: the span fill, the count of objects
// under either connectivity, pixels, areas and the two boundary walks, the size filter, and
// erosion and dilation computed in bands.
#include "test_particle_support.h"

#include "image/filter_bands.h"
#include "image/flood_fill.h"
#include "image/particle_morphology.h"
#include "store/memory.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace {

class ParticleMeasureTest : public FrameStoreTest {
protected:
    // Measures the grid with pixels of dx by dy; the grid must come back as it went in.
    ParticleStats Measure(const std::vector<std::string>& rows, int connectivity, double dx = 1.0, double dy = 1.0)
    {
        std::vector<uint16_t> codes = GridOf(rows);
        const std::vector<uint16_t> before = codes;
        ParticleStats stats;
        EXPECT_TRUE(MeasureAllObjects(codes.data(), static_cast<int>(rows[0].size()), static_cast<int>(rows.size()),
                                      MeasureFrame{dx, dy, connectivity}, &stats));
        EXPECT_EQ(codes, before);
        return stats;
    }
    void TearDown() override
    {
        FreeParticleStats(&stats);
        FrameStoreTest::TearDown();
    }
    ParticleStats stats;
};

TEST_F(ParticleMeasureTest, OnePixelObjectHasOnePixelAndNoPerimeter)
{
    stats = Measure({".....", "..#..", "....."}, 4, 2.0, 3.0);
    ASSERT_EQ(stats.ObjectCount, 1);
    const ParticleObject& o = stats.Objects[0];
    EXPECT_EQ(o.Pixels, 1u);
    EXPECT_DOUBLE_EQ(o.Area, 6.0);
    EXPECT_EQ(o.Perimeter, 0.0);
    // Shape of an object with no perimeter is defined as 0: no division by zero.
    EXPECT_EQ(ParticleShape(o), 0.0);
    EXPECT_EQ(o.X1, 2);
    EXPECT_EQ(o.Y1, 1);
    EXPECT_EQ(o.X2, 2);
    EXPECT_EQ(o.Y2, 1);
}

TEST_F(ParticleMeasureTest, AllObjectGridIsOneObjectWithNoPerimeter)
{
    stats = Measure({"######", "######", "######", "######"}, 8, 2.0, 5.0);
    ASSERT_EQ(stats.ObjectCount, 1);
    EXPECT_EQ(stats.Objects[0].Pixels, 24u);
    EXPECT_DOUBLE_EQ(stats.Objects[0].Area, 240.0);
    EXPECT_EQ(stats.Objects[0].Perimeter, 0.0);
    EXPECT_EQ(ParticleShape(stats.Objects[0]), 0.0);
}

TEST_F(ParticleMeasureTest, DiagonalTouchingSquaresAreOneObjectWith8AndTwoWith4)
{
    const std::vector<std::string> rows = {
        "......",
        ".##...",
        ".##...",
        "...##.",
        "...##.",
        "......",
    };
    stats = Measure(rows, 8);
    ASSERT_EQ(stats.ObjectCount, 1);
    EXPECT_EQ(stats.Objects[0].Pixels, 8u);
    EXPECT_EQ(stats.Objects[0].X1, 1);
    EXPECT_EQ(stats.Objects[0].X2, 4);
    FreeParticleStats(&stats);
    stats = Measure(rows, 4);
    ASSERT_EQ(stats.ObjectCount, 2);
    EXPECT_EQ(stats.Objects[0].Pixels, 4u);
    EXPECT_EQ(stats.Objects[1].Pixels, 4u);
    EXPECT_EQ(stats.Objects[1].X1, 3);
    EXPECT_EQ(stats.Objects[1].Y1, 3);
}

// A filled k by k square inside the grid, pixels dx = 10 by dy = 5. Every pixel on its rim
// qualifies for both walks (one of its 4 neighbours is background), no inner pixel does.
// Walking the rim:
//   top row, x1 .. x2 - 1: right neighbour in the object          k - 1 times dx
//   top right corner and right column down to y2 - 1: lower one   k - 1 times dy
//   bottom row x1 .. x2 - 1: right neighbour                      k - 1 times dx
//   left column y1 + 1 .. y2 - 1: right neighbour                 k - 2 times dx
//   bottom right corner: no neighbour right, below or diagonal    0
// so P4 = P8 = (3k - 4) dx + (k - 1) dy and Perimeter = sqrt(P4 * P8) = P4.
TEST_F(ParticleMeasureTest, FilledSquareAreaAndPerimeterFromTheTwoWalks)
{
    for (int k : {2, 3, 4, 7}) {
        std::vector<std::string> rows(static_cast<size_t>(k + 4), std::string(static_cast<size_t>(k + 5), '.'));
        for (int y = 2; y < 2 + k; ++y)
            for (int x = 3; x < 3 + k; ++x) rows[static_cast<size_t>(y)][static_cast<size_t>(x)] = '#';
        for (int connectivity : {4, 8}) {
            stats = Measure(rows, connectivity, 10.0, 5.0);
            ASSERT_EQ(stats.ObjectCount, 1);
            EXPECT_EQ(stats.Objects[0].Pixels, static_cast<uint32_t>(k * k));
            EXPECT_DOUBLE_EQ(stats.Objects[0].Area, k * k * 10.0 * 5.0);
            const double walk = (3 * k - 4) * 10.0 + (k - 1) * 5.0;
            EXPECT_NEAR(stats.Objects[0].Perimeter, walk, 1e-9) << k;
            EXPECT_NEAR(ParticleShape(stats.Objects[0]), k * k * 50.0 / (walk * walk), 1e-12);
            FreeParticleStats(&stats);
        }
    }
}

// A diagonal line: the walks differ. Each pixel but the last has its lower right neighbour in
// the object; for P4 every pixel qualifies and adds the diagonal, for P8 likewise.
TEST_F(ParticleMeasureTest, DiagonalLineWalksTheDiagonal)
{
    stats = Measure({"#...", ".#..", "..#.", "...#"}, 8, 3.0, 4.0);
    ASSERT_EQ(stats.ObjectCount, 1);
    EXPECT_EQ(stats.Objects[0].Pixels, 4u);
    EXPECT_NEAR(stats.Objects[0].Perimeter, 3 * 5.0, 1e-9);
}

// Object A, one pixel, is met first; object B is a U whose box holds A, so B counts A's pixel
// with its own 14: this is how the numbers are defined.
TEST_F(ParticleMeasureTest, ObjectNestedInALaterObjectsBoxIsCountedWithIt)
{
    stats = Measure(
        {
            "..........",
            ".....#..#.",
            "..#.....#.",
            "..#.....#.",
            "..#.....#.",
            "..#######.",
            "..........",
        },
        4, 2.0, 2.0);
    ASSERT_EQ(stats.ObjectCount, 2);
    EXPECT_EQ(stats.Objects[0].Pixels, 1u);
    EXPECT_EQ(stats.Objects[0].X1, 5);
    EXPECT_EQ(stats.Objects[1].Pixels, 15u);
    EXPECT_DOUBLE_EQ(stats.Objects[1].Area, 60.0);
    EXPECT_EQ(stats.Objects[1].X1, 2);
    EXPECT_EQ(stats.Objects[1].Y1, 1);
    EXPECT_EQ(stats.Objects[1].X2, 8);
    EXPECT_EQ(stats.Objects[1].Y2, 5);
}

TEST_F(ParticleMeasureTest, ObjectsAreInDetectionOrderTopToBottomThenLeftToRight)
{
    stats = Measure({"....#", "#....", "..#..", "....."}, 4);
    ASSERT_EQ(stats.ObjectCount, 3);
    EXPECT_EQ(stats.Objects[0].X1, 4);
    EXPECT_EQ(stats.Objects[1].X1, 0);
    EXPECT_EQ(stats.Objects[2].X1, 2);
    for (int i = 0; i < 3; ++i) EXPECT_EQ(stats.Order[i], i);
}

TEST_F(ParticleMeasureTest, ManyObjectsGrowTheListWithoutLimit)
{
    // 40 by 40 single pixels on every second point: 400 objects, 16 growths of 25.
    std::vector<std::string> rows(80, std::string(80, '.'));
    for (int y = 0; y < 80; y += 4)
        for (int x = 0; x < 80; x += 4) rows[static_cast<size_t>(y)][static_cast<size_t>(x)] = '#';
    stats = Measure(rows, 8);
    EXPECT_EQ(stats.ObjectCount, 400);
    EXPECT_EQ(stats.Capacity, 400);
    EXPECT_FALSE(LogHas("Too many particles"));
}

TEST_F(ParticleMeasureTest, FailedAllocationFreesAllAndLeavesTheGridAsItWas)
{
    std::vector<uint16_t> codes = GridOf({"#.#.#", ".....", "#.#.#"});
    const std::vector<uint16_t> before = codes;
    FailAllocationsForTests(1, 0);
    EXPECT_FALSE(MeasureAllObjects(codes.data(), 5, 3, MeasureFrame{1, 1, 4}, &stats));
    EXPECT_EQ(stats.ObjectCount, 0);
    EXPECT_EQ(stats.Objects, nullptr);
    EXPECT_EQ(codes, before);
    EXPECT_TRUE(LogHas("Not enough memory"));
}

TEST_F(ParticleMeasureTest, FloodFillOfTheNewCodeDoesNothing)
{
    std::vector<uint16_t> codes = GridOf({"##.", "#.."});
    const std::vector<uint16_t> before = codes;
    FillBox box{};
    EXPECT_TRUE(FloodFill(codes.data(), 3, 2, 0, 0, 4, kObjectCode, &box));
    EXPECT_EQ(codes, before);
    EXPECT_EQ(box.x1, 0);
    EXPECT_EQ(box.x2, 0);
}

// The span fill against a plain breadth-first fill on random grids, for both connectivities:
// the same pixels and the same box.
TEST_F(ParticleMeasureTest, FloodFillAgreesWithABreadthFirstFillOnRandomGrids)
{
    uint32_t state = 99;
    auto next = [&state] {
        state = state * 1664525u + 1013904223u;
        return state >> 8;
    };
    for (int round = 0; round < 60; ++round) {
        const int nx = 1 + static_cast<int>(next() % 40), ny = 1 + static_cast<int>(next() % 40);
        std::vector<uint16_t> codes(static_cast<size_t>(nx) * ny);
        for (auto& c : codes) c = next() % 100 < 55 ? kObjectCode : 0;
        const int sx = static_cast<int>(next() % nx), sy = static_cast<int>(next() % ny);
        const int connectivity = round % 2 ? 8 : 4;
        std::vector<uint16_t> want = codes;
        const uint16_t seed = want[static_cast<size_t>(sy) * nx + sx];
        FillBox wantBox{sx, sy, sx, sy};
        std::vector<std::pair<int, int>> queue{{sx, sy}};
        want[static_cast<size_t>(sy) * nx + sx] = 7;
        for (size_t q = 0; q < queue.size(); ++q) {
            const auto [x, y] = queue[q];
            wantBox = {std::min(wantBox.x1, x), std::min(wantBox.y1, y), std::max(wantBox.x2, x), std::max(wantBox.y2, y)};
            for (int ddy = -1; ddy <= 1; ++ddy)
                for (int ddx = -1; ddx <= 1; ++ddx) {
                    if ((ddx == 0 && ddy == 0) || (connectivity == 4 && ddx != 0 && ddy != 0)) continue;
                    const int px = x + ddx, py = y + ddy;
                    if (px < 0 || py < 0 || px >= nx || py >= ny) continue;
                    uint16_t& c = want[static_cast<size_t>(py) * nx + px];
                    if (c != seed) continue;
                    c = 7;
                    queue.push_back({px, py});
                }
        }
        FillBox box{};
        ASSERT_TRUE(FloodFill(codes.data(), nx, ny, sx, sy, connectivity, 7, &box));
        EXPECT_EQ(codes, want) << round;
        EXPECT_EQ(box.x1, wantBox.x1);
        EXPECT_EQ(box.y1, wantBox.y1);
        EXPECT_EQ(box.x2, wantBox.x2);
        EXPECT_EQ(box.y2, wantBox.y2);
    }
}

TEST_F(ParticleMeasureTest, FloodFill8ReachesAcrossCornersAtBothSpanEnds)
{
    std::vector<uint16_t> codes = GridOf({
        "#.....#",
        ".#####.",
        "#.....#",
    });
    ASSERT_TRUE(FloodFill(codes.data(), 7, 3, 3, 1, 8, 5, nullptr));
    for (size_t i : {0u, 6u, 14u, 20u}) EXPECT_EQ(codes[i], 5) << i;
    codes = GridOf({"#.....#", ".#####.", "#.....#"});
    ASSERT_TRUE(FloodFill(codes.data(), 7, 3, 3, 1, 4, 5, nullptr));
    for (size_t i : {0u, 6u, 14u, 20u}) EXPECT_EQ(codes[i], kObjectCode) << i;
}

TEST_F(ParticleMeasureTest, FloodFillOutsideTheGridFillsNothing)
{
    std::vector<uint16_t> codes = GridOf({"##", "##"});
    FillBox box{};
    EXPECT_TRUE(FloodFill(codes.data(), 2, 2, 2, 0, 4, 0, &box));
    EXPECT_TRUE(FloodFill(codes.data(), 2, 2, 0, -1, 4, 0, &box));
    EXPECT_GT(box.x1, box.x2);
    EXPECT_EQ(codes, GridOf({"##", "##"}));
}

TEST_F(ParticleMeasureTest, BilevelTestOfCodes)
{
    const std::vector<uint16_t> good = {0, 65535, 65535, 0};
    EXPECT_TRUE(CodesAreBilevel(good.data(), 2, 2));
    const std::vector<uint16_t> bad = {0, 65535, 1, 0};
    EXPECT_FALSE(CodesAreBilevel(bad.data(), 2, 2));
    EXPECT_FALSE(CodesAreBilevel(nullptr, 2, 2));
}

TEST_F(ParticleMeasureTest, RemoveSmallObjectsRemovesTheEnteredSizeAndBelow)
{
    std::vector<uint16_t> codes = GridOf({
        "#..##..###",
        "..........",
        "#.#....#..",
    });
    EXPECT_EQ(RemoveSmallObjects(codes.data(), 10, 3, 2, MeasureFrame{1, 1, 4}), 5);
    EXPECT_EQ(codes, GridOf({".......###", "..........", ".........."}));
}

TEST_F(ParticleMeasureTest, ErosionAndDilationFollowTheNeighbourRules)
{
    const std::vector<std::string> rows = {
        "###.....",
        "###.....",
        "###..#..",
        "###.....",
    };
    const std::vector<uint16_t> in = GridOf(rows);
    std::vector<uint16_t> out(in.size());
    ErodeOrDilate(in.data(), out.data(), 8, 4, 4, false);
    // The image edge does not eat: column 0 keeps, and the corner pixels keep.
    EXPECT_EQ(out, GridOf({"##......", "##......", "##......", "##......"}));
    ErodeOrDilate(in.data(), out.data(), 8, 4, 4, true);
    EXPECT_EQ(out, GridOf({"####....", "####.#..", "#######.", "####.#.."}));
    ErodeOrDilate(in.data(), out.data(), 8, 4, 8, true);
    EXPECT_EQ(out, GridOf({"####....", "#######.", "#######.", "#######."}));
}

TEST_F(ParticleMeasureTest, BandsOnTwoCoresGiveTheSameResultAsOne)
{
    const int n = 301;
    std::vector<uint16_t> in(static_cast<size_t>(n) * n);
    uint32_t state = 12345;
    for (auto& c : in) {
        state = state * 1103515245u + 12345u;
        c = (state >> 16) % 3 == 0 ? kObjectCode : 0;
    }
    for (int connectivity : {4, 8}) {
        for (bool dilate : {false, true}) {
            std::vector<uint16_t> one(in.size()), two(in.size()), three(in.size());
            SetFilterThreads(1);
            ErodeOrDilate(in.data(), one.data(), n, n, connectivity, dilate);
            SetFilterThreads(2);
            ErodeOrDilate(in.data(), two.data(), n, n, connectivity, dilate);
            SetFilterThreads(3);
            ErodeOrDilate(in.data(), three.data(), n, n, connectivity, dilate);
            EXPECT_EQ(one, two);
            EXPECT_EQ(one, three);
        }
    }
    SetFilterThreads(0);
}

TEST_F(ParticleMeasureTest, SortByKeysKeepsTiesAndNoneGoesBackToDetectionOrder)
{
    // Areas 2, 1, 2, 3 pixels in detection order.
    stats = Measure({"##.#.##.###"}, 4);
    ASSERT_EQ(stats.ObjectCount, 4);
    SortParticles(&stats, kSortArea);
    EXPECT_EQ(std::vector<int32_t>(stats.Order, stats.Order + 4), (std::vector<int32_t>{1, 0, 2, 3}));
    SortParticles(&stats, kSortNone);
    EXPECT_EQ(std::vector<int32_t>(stats.Order, stats.Order + 4), (std::vector<int32_t>{0, 1, 2, 3}));
}

} // namespace
