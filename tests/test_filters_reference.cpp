// The kernel tables and their entry points, and every kernel and both medians against the plain
// reference of test_filters_support.h on random images of many sizes, with one thread and two.
#include "test_filters_support.h"

#include "tavrin/dl_data_list.h"
#include "tavrin/dl_filters.h"
#include "image/filter_rows.h"

#include <functional>
#include <mutex>
#include <vector>

namespace {

class KernelTableTest : public FilterTestBase {};
class FilterReferenceTest : public FilterTestBase {
protected:
    // Runs a command on `source` and answers the result's pixels, the source current again.
    std::vector<uint16_t> Run(ImageHeaderType* source, const std::function<void()>& command)
    {
        CurrentItem = source;
        command();
        EXPECT_NE(CurrentItem, source);
        std::vector<uint16_t> pixels = Pixels(CurrentItem);
        CurrentItem = source;
        return pixels;
    }
};

} // namespace

TEST_F(KernelTableTest, TheTablesHoldTheKernelsWithTheirSums)
{
    std::vector<int16_t> k(25, 99);
    dl_Get3x3KernelParam(3, k.data());
    EXPECT_EQ(std::vector<int16_t>(k.begin(), k.begin() + 9), (std::vector<int16_t>{-1, -1, -1, -1, 9, -1, -1, -1, -1}));
    EXPECT_EQ(k[9], 99);
    dl_Get5x5KernelParam(2, k.data());
    EXPECT_EQ(k, (std::vector<int16_t>{1, 2, 4, 2, 1, 2, 4, 8, 4, 2, 4, 8, 16, 8, 4, 2, 4, 8, 4, 2, 1, 2, 4, 2, 1}));
    dl_GetEE3x3KernelParam(4, k.data());
    EXPECT_EQ(std::vector<int16_t>(k.begin(), k.begin() + 9), (std::vector<int16_t>{2, -1, -1, -1, 2, -1, -1, -1, 2}));
    dl_GetEE3x3KernelParam(3, k.data());
    EXPECT_EQ(std::vector<int16_t>(k.begin(), k.begin() + 9), (std::vector<int16_t>{-1, -1, 2, -1, 2, -1, 2, -1, -1}));
    const int sums3[] = {9, 16, 1, 3, 3, 1, 1}, sums5[] = {25, 100, 1, 5, 5, 1, 1};
    for (int i = 1; i <= 7; ++i) {
        EXPECT_EQ(KernelSum(FindKernel(KernelFamily::Square3, i)->values, 3), sums3[i - 1]) << i;
        EXPECT_EQ(KernelSum(FindKernel(KernelFamily::Square5, i)->values, 5), sums5[i - 1]) << i;
    }
    for (int i = 1; i <= 5; ++i) EXPECT_EQ(KernelSum(FindKernel(KernelFamily::Edge3, i)->values, 3), 0) << i;
    EXPECT_EQ(FindKernel(KernelFamily::Edge3, 6), nullptr);
    EXPECT_EQ(FindKernel(KernelFamily::Square3, 0), nullptr);
}

TEST_F(KernelTableTest, AGetWithABadIndexReportsAndLeavesTheOutputAsItWas)
{
    std::vector<int16_t> k(25, 7);
    dl_Get3x3KernelParam(0, k.data());
    dl_Get5x5KernelParam(8, k.data());
    dl_GetEE3x3KernelParam(6, k.data());
    EXPECT_EQ(k, std::vector<int16_t>(25, 7));
    EXPECT_TRUE(LogHasProgramError("GetKernelParam3x3 0"));
    EXPECT_TRUE(LogHasProgramError("GetKernelParam5x5 8"));
    EXPECT_TRUE(LogHasProgramError("GetKernelParamEE3 6"));
}

TEST_F(KernelTableTest, UserKernelsStartAsTheUnitKernelAndStoreTheLowByte)
{
    std::vector<int16_t> k(9);
    dl_Get3x3KernelParam(7, k.data());
    EXPECT_EQ(k, (std::vector<int16_t>{0, 0, 0, 0, 1, 0, 0, 0, 0}));
    const std::vector<int16_t> set = {200, -200, 127, -128, 255, 256, 0, -1, 1000};
    dl_Set3x3KernelParam(6, set.data());
    dl_Get3x3KernelParam(6, k.data());
    EXPECT_EQ(k, (std::vector<int16_t>{-56, 56, 127, -128, -1, 0, 0, -1, -24}));
    dl_Get3x3KernelParam(7, k.data());   // the other user kernel is untouched
    EXPECT_EQ(k, (std::vector<int16_t>{0, 0, 0, 0, 1, 0, 0, 0, 0}));
    std::vector<int16_t> five(25, 200), out(25);
    dl_Set5x5KernelParam(7, five.data());
    dl_Get5x5KernelParam(7, out.data());
    EXPECT_EQ(out, std::vector<int16_t>(25, -56));
    EXPECT_FALSE(LogHasProgramErrors());
}

TEST_F(KernelTableTest, ASetOutsideTheUserKernelsReportsAndStoresNothing)
{
    const std::vector<int16_t> set(25, 3);
    for (int index : {0, 1, 5, 8}) {
        dl_Set3x3KernelParam(static_cast<int16_t>(index), set.data());
        dl_Set5x5KernelParam(static_cast<int16_t>(index), set.data());
    }
    EXPECT_TRUE(LogHasProgramError("SetKernelParam3x3 5"));
    EXPECT_TRUE(LogHasProgramError("SetKernelParam5x5 8"));
    EXPECT_EQ(CountInLog("SetKernelParam3x3"), 4);
    std::vector<int16_t> k(25);
    dl_Get3x3KernelParam(5, k.data());
    EXPECT_EQ(std::vector<int16_t>(k.begin(), k.begin() + 9), (std::vector<int16_t>{0, 1, 0, 0, 1, 0, 0, 1, 0}));
    dl_Get5x5KernelParam(1, k.data());
    EXPECT_EQ(k, std::vector<int16_t>(25, 1));
}

TEST_F(FilterReferenceTest, EveryKernelAndMedianMatchesThePlainRuleOnRandomImagesOfManySizes)
{
    std::vector<std::pair<int, int>> sizes;
    for (int nx = 1; nx <= 6; ++nx)
        for (int ny = 1; ny <= 6; ++ny) sizes.push_back({nx, ny});
    sizes.insert(sizes.end(), {{7, 13}, {13, 7}, {33, 17}, {65, 9}, {101, 67}});
    std::mt19937 random(1234);
    uint32_t seed = 1;
    for (const auto& [nx, ny] : sizes) {
        // User kernels of random values over the whole 8-bit range, new for every size.
        std::vector<int16_t> user3(9), user5(25);
        for (auto& v : user3) v = static_cast<int16_t>(static_cast<int>(random() % 256) - 128);
        for (auto& v : user5) v = static_cast<int16_t>(static_cast<int>(random() % 256) - 128);
        dl_Set3x3KernelParam(7, user3.data());
        dl_Set5x5KernelParam(7, user5.data());
        ImageHeaderType* source = AddRandom(nx, ny, seed++);
        const std::vector<uint16_t> in = Pixels(source);
        for (int index = 1; index <= 7; ++index) {
            ASSERT_EQ(Run(source, [index] { dl_Convolve3x3(static_cast<int16_t>(index)); }),
                      ReferenceCorrelate(in, nx, ny, KernelValues(KernelFamily::Square3, index), 3))
                << nx << "x" << ny << " 3x3 " << index;
            ASSERT_EQ(Run(source, [index] { dl_Convolve5x5(static_cast<int16_t>(index)); }),
                      ReferenceCorrelate(in, nx, ny, KernelValues(KernelFamily::Square5, index), 5))
                << nx << "x" << ny << " 5x5 " << index;
        }
        for (int index = 1; index <= 5; ++index)
            ASSERT_EQ(Run(source, [index] { dl_EdgeEnhance3x3(static_cast<int16_t>(index)); }),
                      ReferenceCorrelate(in, nx, ny, KernelValues(KernelFamily::Edge3, index), 3))
                << nx << "x" << ny << " edge " << index;
        ASSERT_EQ(Run(source, dl_ImageMedianFilter5), ReferenceMedian(in, nx, ny, 5)) << nx << "x" << ny;
        ASSERT_EQ(Run(source, dl_ImageMedianFilter9), ReferenceMedian(in, nx, ny, 9)) << nx << "x" << ny;
        for (int angle : {0, 30, 90, 135, 200, -45}) {
            host.entryAnswers.push_back(std::to_string(angle));
            int8_t k[9];
            DerivativeKernel(angle, k);
            ASSERT_EQ(Run(source, dl_DifferentiateImage), ReferenceCorrelate(in, nx, ny, std::vector<int>(k, k + 9), 3))
                << nx << "x" << ny << " angle " << angle;
        }
    }
    // Every result item was made and filled (the display reports its own refusals of tiny sizes).
    EXPECT_FALSE(LogHas("CopyNewHEader"));
    EXPECT_FALSE(LogHas("ZeroImageData"));
}

TEST_F(FilterReferenceTest, OneTwoAndThreeThreadsGiveTheSameBytes)
{
    ImageHeaderType* source = AddRandom(257, 131, 99);
    const std::vector<int16_t> user = {3, -7, 11, 0, 100, -128, 5, 9, -2};
    dl_Set3x3KernelParam(6, user.data());
    const std::function<void()> commands[] = {
        [] { dl_Convolve3x3(1); }, [] { dl_Convolve3x3(3); }, [] { dl_Convolve3x3(6); },
        [] { dl_Convolve5x5(1); }, [] { dl_Convolve5x5(2); }, [] { dl_EdgeEnhance3x3(5); },
        dl_ImageMedianFilter5,     dl_ImageMedianFilter9};
    for (const auto& command : commands) {
        SetFilterThreads(1);
        const auto one = Run(source, command);
        SetFilterThreads(2);
        const auto two = Run(source, command);
        SetFilterThreads(3);
        const auto three = Run(source, command);
        ASSERT_EQ(one, two);
        ASSERT_EQ(one, three);
    }
    // Two threads against the plain rule as well.
    SetFilterThreads(2);
    host.ClearCalls();
    CurrentItem = source;
    dl_Convolve3x3(2);
    EXPECT_EQ(Pixels(CurrentItem), ReferenceCorrelate(Pixels(source), 257, 131, KernelValues(KernelFamily::Square3, 2), 3));
}

TEST_F(FilterReferenceTest, TheBandsCoverEveryRowOnceWhateverTheThreadCount)
{
    for (int threads : {1, 2, 3, 7}) {
        SetFilterThreads(threads);
        for (int rows : {1, 2, 3, 10, 131}) {
            std::vector<int> seen(static_cast<size_t>(rows), 0);
            std::mutex lock;
            RunRowBands(rows, 1LL << 30, [&](int first, int last) {
                std::lock_guard<std::mutex> hold(lock);
                for (int y = first; y < last; ++y) ++seen[static_cast<size_t>(y)];
            });
            EXPECT_EQ(seen, std::vector<int>(static_cast<size_t>(rows), 1)) << threads << " " << rows;
        }
    }
}
