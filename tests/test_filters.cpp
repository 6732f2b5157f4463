// Filter commands through their entry points: status texts, log lines, history codes and the
// order of the host's calls, the checks, a failed result item, the derivative's prompt, and the
// edge cases of the kernels.
#include "test_filters_support.h"

#include "tavrin/dl_data_list.h"
#include "tavrin/dl_filters.h"
#include "host/errors.h"
#include "store/memory.h"

#include <string>
#include <vector>

namespace {

class FilterCommandTest : public FilterTestBase {};
class FilterEdgeCaseTest : public FilterTestBase {};

using Command = void (*)(void);
void Low3() { dl_Convolve3x3(1); }
void Low5() { dl_Convolve5x5(1); }
void Edge1() { dl_EdgeEnhance3x3(1); }
const Command kCommands[] = {Low3, Low5, Edge1, dl_DifferentiateImage, dl_ImageMedianFilter5, dl_ImageMedianFilter9};

std::vector<std::string> CallNames(const TestHost& host)
{
    std::vector<std::string> names;
    for (const auto& call : host.calls) names.push_back(call.name);
    return names;
}

size_t FirstIndex(const std::vector<std::string>& names, const std::string& name)
{
    return static_cast<size_t>(std::find(names.begin(), names.end(), name) - names.begin());
}

size_t LastIndex(const std::vector<std::string>& names, const std::string& name)
{
    const auto it = std::find(names.rbegin(), names.rend(), name);
    return it == names.rend() ? names.size() : static_cast<size_t>(names.rend() - it - 1);
}

} // namespace

TEST_F(FilterCommandTest, WithoutAnImageEveryCommandReports33536AndShowsNoStatusText)
{
    for (Command command : kCommands) {
        host.messageBoxes.clear();
        host.ClearCalls();
        command();
        ASSERT_EQ(host.messageBoxes.size(), 1u);
        EXPECT_EQ(host.messageBoxes[0].text, "No images in memory");
        EXPECT_EQ(host.Count("ap_ShowWait"), 0);
        EXPECT_EQ(host.Count("ap_EnterInteger"), 0);
        EXPECT_EQ(CurrentItem, nullptr);
    }
    EXPECT_EQ(CountInLog("No images in memory"), 6);
}

TEST_F(FilterCommandTest, EveryKernelHasItsStatusTextLogLineAndHistoryCode)
{
    struct Case {
        void (*command)(int16_t);
        int index;
        const char* status;
        const char* log;
        int code;
    };
    const char* s3 = "Please wait while performing 3x3 convolution";
    const char* s5 = "Please wait while performing 5x5 convolution";
    const char* se = "Please wait while performing edge enhancement";
    const Case cases[] = {
        {dl_Convolve3x3, 1, s3, "Apply low pass 3x3 to 'T'\n", 1},
        {dl_Convolve3x3, 2, s3, "Apply medium pass 3x3 to 'T'\n", 2},
        {dl_Convolve3x3, 3, s3, "Apply high pass 3x3 to 'T'\n", 3},
        {dl_Convolve3x3, 4, s3, "Apply horizontal 3x3 smooth to 'T'\n", 4},
        {dl_Convolve3x3, 5, s3, "Apply vertical 3x3 smooth to 'T'\n", 5},
        {dl_Convolve3x3, 6, s3, "Apply 3x3 filter User 1 to 'T'\n", 73},
        {dl_Convolve3x3, 7, s3, "Apply 3x3 filter User 2 to 'T'\n", 74},
        {dl_Convolve5x5, 1, s5, "Apply low pass 5x5 to 'T'\n", 6},
        {dl_Convolve5x5, 2, s5, "Apply medium pass 5x5 to 'T'\n", 7},
        {dl_Convolve5x5, 3, s5, "Apply high pass 5x5 to 'T'\n", 8},
        {dl_Convolve5x5, 4, s5, "Apply horizontal 5x5 smooth to 'T'\n", 9},
        {dl_Convolve5x5, 5, s5, "Apply vertical 5x5 smooth to 'T'\n", 10},
        {dl_Convolve5x5, 6, s5, "Apply 5x5 filter User 1 to 'T'\n", 75},
        {dl_Convolve5x5, 7, s5, "Apply 5x5 filter User 2 to 'T'\n", 76},
        {dl_EdgeEnhance3x3, 1, se, "Apply Vertical edge enhance to 'T'\n", 11},
        {dl_EdgeEnhance3x3, 2, se, "Apply Horizontal edge enhance to 'T'\n", 12},
        {dl_EdgeEnhance3x3, 3, se, "Apply Diagonal (/) edge enhance to 'T'\n", 13},
        {dl_EdgeEnhance3x3, 4, se, "Apply Diagonal (\\) edge enhance to 'T'\n", 14},
        {dl_EdgeEnhance3x3, 5, se, "Apply Laplace filter to 'T'\n", 15},
    };
    for (const Case& c : cases) {
        ImageHeaderType* source = AddRandom(20, 17, 5, "T");
        const auto before = Pixels(source);
        host.ClearCalls();
        c.command(static_cast<int16_t>(c.index));
        ASSERT_EQ(CurrentItem, source->Next) << c.log;
        EXPECT_EQ(Pixels(source), before);
        EXPECT_EQ(LastHistoryCode(CurrentItem), c.code);
        EXPECT_EQ(LastHistoryCode(source), 0);
        EXPECT_EQ(CountInLog(c.log), 1) << c.log;
        const auto waits = host.Calls("ap_ShowWait");
        ASSERT_EQ(waits.size(), 1u);
        EXPECT_NE(waits[0].args.find(c.status), std::string::npos) << waits[0].args;
        EXPECT_EQ(host.Count("ap_HideWait"), 1);
    }
    // The diagonal text has one backslash.
    EXPECT_NE(ReadLog().find("Apply Diagonal (\\) edge"), std::string::npos);
    EXPECT_EQ(ReadLog().find("(\\\\)"), std::string::npos);
}

TEST_F(FilterCommandTest, MedianStatusTextsLogLinesAndHistoryCodes)
{
    ImageHeaderType* source = AddRandom(9, 9, 3, "M");
    dl_ImageMedianFilter5();
    ASSERT_EQ(CurrentItem, source->Next);
    EXPECT_EQ(LastHistoryCode(CurrentItem), 20);
    EXPECT_TRUE(LogHas("Apply 5 point median filter to 'M'\n"));
    dl_ImageMedianFilter9();
    EXPECT_EQ(LastHistoryCode(CurrentItem), 21);
    EXPECT_TRUE(LogHas("Apply 9 point median filter to 'M'\n"));
    const auto waits = host.Calls("ap_ShowWait");
    ASSERT_EQ(waits.size(), 2u);
    EXPECT_NE(waits[0].args.find("Please wait while applying 5 point median filter"), std::string::npos);
    EXPECT_NE(waits[1].args.find("Please wait while applying 9 point median filter"), std::string::npos);
    EXPECT_EQ(host.Count("ap_HideWait"), 2);
}

TEST_F(FilterCommandTest, StatusTextComesFirstThenTheRowsThenTheEndOfTheStatus)
{
    ImageHeaderType* source = AddRandom(30, 30, 8, "Order");
    host.ClearCalls();
    dl_Convolve5x5(2);
    ASSERT_EQ(CurrentItem, source->Next);
    const auto names = CallNames(host);
    const size_t wait = FirstIndex(names, "ap_ShowWait"), update = LastIndex(names, "ap_UpdateVFS"),
                 hide = LastIndex(names, "ap_HideWait");
    ASSERT_LT(wait, names.size());
    ASSERT_LT(update, names.size());
    ASSERT_LT(hide, names.size());
    EXPECT_LT(wait, update);
    EXPECT_LT(update, hide);
    EXPECT_EQ(hide, names.size() - 1);
    // The rows reached the frame store, and the region is the result's.
    EXPECT_EQ(GetFSContentsCoords(10, 10), CurrentItem);
}

TEST_F(FilterCommandTest, FftAndMappingImagesAreNotRefused)
{
    ImageHeaderType* image = AddRandom(16, 16, 1);
    image->FFTData = 1;
    dl_Convolve3x3(1);
    ASSERT_EQ(CurrentItem, image->Next);
    ImageHeaderType* mapping = CurrentItem;
    mapping->CITSHeader = 1;
    dl_ImageMedianFilter9();
    EXPECT_EQ(CurrentItem, mapping->Next);
    mapping->CITSHeader = 0;
    EXPECT_TRUE(host.messageBoxes.empty());
}

TEST_F(FilterCommandTest, ABadKernelIndexIsAProgramErrorAndMakesNothing)
{
    // A reading of ours: the index is checked after the image, before any status text.
    ImageHeaderType* source = AddRandom(8, 8, 2);
    dl_Convolve3x3(8);
    dl_Convolve5x5(0);
    dl_EdgeEnhance3x3(6);
    EXPECT_TRUE(LogHasProgramError("Convolve3x3 8"));
    EXPECT_TRUE(LogHasProgramError("Convolve5x5 0"));
    EXPECT_TRUE(LogHasProgramError("EdgeEnhance3x3 6"));
    EXPECT_EQ(CurrentItem, source);
    EXPECT_EQ(source->Next, nullptr);
    EXPECT_EQ(host.Count("ap_ShowWait"), 0);
}

TEST_F(FilterCommandTest, AFailedNewItemEndsTheStatusTextWritesNoLogAndKeepsTheCurrentItem)
{
    const Command commands[] = {Low3, Low5, Edge1, dl_ImageMedianFilter5, dl_ImageMedianFilter9};
    for (Command command : commands) {
        ImageHeaderType* source = AddRandom(12, 12, 4, "Kept");
        const int items = CountItems();
        host.ClearCalls();
        host.messageBoxes.clear();
        FailAllocationsForTests(1);
        command();
        FailAllocationsForTests(0);
        EXPECT_EQ(CurrentItem, source);
        EXPECT_EQ(CountItems(), items);
        EXPECT_TRUE(BoxShown("Not enough memory"));
        EXPECT_EQ(host.Count("ap_ShowWait"), 1);
        EXPECT_EQ(host.Count("ap_HideWait"), 1);
    }
    EXPECT_FALSE(LogHas("to 'Kept'"));
    // The display was left balanced: the next command draws and finishes normally.
    ImageHeaderType* source = CurrentItem;
    host.ClearCalls();
    dl_Convolve5x5(1);
    EXPECT_EQ(CurrentItem, source->Next);
    EXPECT_GE(host.Count("ap_UpdateVFS"), 1);
}

TEST_F(FilterCommandTest, TheOverflowWarningStaysInTheTableAndIsNeverRaised)
{
    EXPECT_STREQ(ErrorTableText(33547), "Warning - this kernel may cause an integer overflow");
    const std::vector<int16_t> extreme(25, 127);
    dl_Set5x5KernelParam(6, extreme.data());
    AddImage(10, 10, [](int, int) { return static_cast<uint16_t>(65535); });
    dl_Convolve5x5(6);
    EXPECT_TRUE(host.messageBoxes.empty());
    EXPECT_FALSE(LogHas("integer overflow"));
    EXPECT_EQ(At(CurrentItem, 5, 5), 65535);
}

TEST_F(FilterCommandTest, TheDerivativePromptsForTheAngleAndLogsIt)
{
    ImageHeaderType* source = AddImage(16, 8, [](int x, int y) { return static_cast<uint16_t>(1000 + 10 * x + 3 * y); }, "D");
    host.entryAnswers.push_back("0");
    dl_DifferentiateImage();
    const auto prompts = host.Calls("ap_EnterInteger");
    ASSERT_EQ(prompts.size(), 1u);
    EXPECT_NE(prompts[0].args.find("Enter angle [degrees] : "), std::string::npos);
    EXPECT_EQ(prompts[0].args.substr(0, 2), "0 ");
    EXPECT_EQ(prompts[0].args.substr(prompts[0].args.size() - 2), " 4");
    ASSERT_EQ(CurrentItem, source->Next);
    EXPECT_EQ(LastHistoryCode(CurrentItem), 16);
    EXPECT_TRUE(LogHas("Differentiate 'D' at 0 degrees to x-axis\n"));
    const auto waits = host.Calls("ap_ShowWait");
    ASSERT_EQ(waits.size(), 1u);
    EXPECT_NE(waits[0].args.find("Processing - Please wait"), std::string::npos);
    // At 0 degrees: 32 times the slope along x, border 0.
    for (int y = 0; y < 8; ++y)
        for (int x = 0; x < 16; ++x) {
            const bool inner = x > 0 && y > 0 && x < 15 && y < 7;
            ASSERT_EQ(At(CurrentItem, x, y), inner ? 320 : 0) << x << " " << y;
        }
}

TEST_F(FilterCommandTest, TheDerivativeAt90DegreesTakesTheRowAboveAndNegativeSlopesGiveZero)
{
    // Codes fall with y, so p(x, y - 1) - p(x, y) = 7 > 0: 31 * 7. Codes rise with x: no
    // contribution at 90 degrees (c = 0).
    AddImage(10, 10, [](int x, int y) { return static_cast<uint16_t>(5000 - 7 * y + 11 * x); }, "D");
    host.entryAnswers.push_back("90");
    dl_DifferentiateImage();
    EXPECT_EQ(At(CurrentItem, 4, 4), 31 * 7);
    EXPECT_TRUE(LogHas("Differentiate 'D' at 90 degrees to x-axis\n"));
    host.entryAnswers.push_back("270");
    dl_PreviousData1();
    dl_DifferentiateImage();   // s = -31: -31 * 7 < 0 gives 0
    EXPECT_EQ(At(CurrentItem, 4, 4), 0);
}

TEST_F(FilterCommandTest, ACancelledAnglePromptEndsTheDerivative)
{
    ImageHeaderType* source = AddRandom(8, 8, 9);
    dl_DifferentiateImage();   // no answer: cancelled
    EXPECT_EQ(host.Count("ap_EnterInteger"), 1);
    EXPECT_EQ(CurrentItem, source);
    EXPECT_EQ(source->Next, nullptr);
    EXPECT_EQ(host.Count("ap_ShowWait"), 0);
    EXPECT_FALSE(LogHas("Differentiate"));
}

class FilterTraceTest : public FilterTestBase {
protected:
    void SetUp() override
    {
        LibraryTest::SetUp();
        ASSERT_EQ(host.Start("tavrin.exe /DBG"), 0);
        ResetFilterKernels();
        host.ClearCalls();
    }
};

TEST_F(FilterTraceTest, TheKernelCommandsTraceTheirIndex)
{
    AddRandom(8, 8, 1);
    dl_Convolve3x3(2);
    dl_Convolve5x5(3);
    dl_EdgeEnhance3x3(5);
    EXPECT_TRUE(LogHas("dl_Convolve3x3: 2"));
    EXPECT_TRUE(LogHas("dl_Convolve5x5: 3"));
    EXPECT_TRUE(LogHas("dl_EdgeEnhance3x3: 5"));
}

// Edge cases of the kernels.

TEST_F(FilterEdgeCaseTest, AZeroSumKernelOnAFlatImageGivesAllZerosWithAZeroBorder)
{
    for (int index = 1; index <= 5; ++index) {
        ImageHeaderType* source = AddImage(9, 7, [](int, int) { return static_cast<uint16_t>(40000); });
        dl_EdgeEnhance3x3(static_cast<int16_t>(index));
        ASSERT_EQ(CurrentItem, source->Next);
        EXPECT_EQ(Pixels(CurrentItem), std::vector<uint16_t>(63, 0)) << index;
    }
}

TEST_F(FilterEdgeCaseTest, TheUnitKernelCopiesTheImageExactlyBorderIncluded)
{
    ImageHeaderType* source = AddRandom(13, 11, 77);
    dl_Convolve3x3(6);
    EXPECT_EQ(Pixels(CurrentItem), Pixels(source));
    dl_PreviousData1();
    dl_Convolve5x5(7);
    EXPECT_EQ(Pixels(CurrentItem), Pixels(source));
}

TEST_F(FilterEdgeCaseTest, HighPassKeepsAFlatImageAndClipsASharpStep)
{
    ImageHeaderType* flat = AddImage(8, 8, [](int, int) { return static_cast<uint16_t>(12345); });
    dl_Convolve3x3(3);
    EXPECT_EQ(Pixels(CurrentItem), Pixels(flat));
    // A step from 1000 to 60000 between columns 3 and 4: left of it 9 * 1000 - 3 * 60000 - 5 * 1000
    // < 0 gives 0, right of it 9 * 60000 - 3 * 1000 - 5 * 60000 > 65535 gives 65535.
    AddImage(8, 8, [](int x, int) { return static_cast<uint16_t>(x < 4 ? 1000 : 60000); });
    dl_Convolve3x3(3);
    for (int y = 1; y < 7; ++y) {
        EXPECT_EQ(At(CurrentItem, 3, y), 0);
        EXPECT_EQ(At(CurrentItem, 4, y), 65535);
        EXPECT_EQ(At(CurrentItem, 2, y), 1000);
        EXPECT_EQ(At(CurrentItem, 5, y), 60000);
    }
}

TEST_F(FilterEdgeCaseTest, AnImageOfTwoRowsHasNoInnerRows)
{
    ImageHeaderType* source = AddRandom(9, 2, 21);
    dl_Convolve3x3(1);
    EXPECT_EQ(Pixels(CurrentItem), Pixels(source));
    dl_PreviousData1();
    dl_EdgeEnhance3x3(5);
    EXPECT_EQ(Pixels(CurrentItem), std::vector<uint16_t>(18, 0));
    dl_PreviousData1();
    dl_ImageMedianFilter9();
    EXPECT_EQ(Pixels(CurrentItem), Pixels(source));
}

TEST_F(FilterEdgeCaseTest, A5x5KernelOnAnImageNarrowerThanFivePixelsHasNoInnerPixels)
{
    ImageHeaderType* source = AddRandom(4, 12, 31);
    dl_Convolve5x5(1);
    EXPECT_EQ(Pixels(CurrentItem), Pixels(source));
    dl_PreviousData1();
    const std::vector<int16_t> zeroSum = {1, -1, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0};
    dl_Set5x5KernelParam(7, zeroSum.data());
    dl_Convolve5x5(7);
    EXPECT_EQ(Pixels(CurrentItem), std::vector<uint16_t>(48, 0));
}

TEST_F(FilterEdgeCaseTest, TheDerivativeKernelAt0And90Degrees)
{
    int8_t k[9];
    DerivativeKernel(0, k);
    EXPECT_EQ(std::vector<int>(k, k + 9), (std::vector<int>{0, 0, 0, 0, -32, 32, 0, 0, 0}));
    DerivativeKernel(90, k);
    EXPECT_EQ(std::vector<int>(k, k + 9), (std::vector<int>{0, 31, 0, 0, -31, 0, 0, 0, 0}));
    // 45 degrees: both 22.6 truncated; 180 degrees: cos just above -1, truncated to -31.
    DerivativeKernel(45, k);
    EXPECT_EQ(std::vector<int>(k, k + 9), (std::vector<int>{0, 22, 0, 0, -44, 22, 0, 0, 0}));
    DerivativeKernel(180, k);
    EXPECT_EQ(std::vector<int>(k, k + 9), (std::vector<int>{0, 0, 0, 0, 31, -31, 0, 0, 0}));
}

TEST_F(FilterEdgeCaseTest, AMedianAtTheBorderReturnsTheSourceCode)
{
    ImageHeaderType* source = AddRandom(7, 6, 55);
    for (Command median : {dl_ImageMedianFilter5, dl_ImageMedianFilter9}) {
        CurrentItem = source;
        median();
        ASSERT_NE(CurrentItem, source);
        for (int y = 0; y < 6; ++y)
            for (int x = 0; x < 7; ++x)
                if (x == 0 || y == 0 || x == 6 || y == 5) {
                    ASSERT_EQ(At(CurrentItem, x, y), At(source, x, y));
                }
    }
}
