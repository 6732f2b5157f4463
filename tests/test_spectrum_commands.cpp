// The spectrum commands: the frame (new item, history, log, plot), smoothing, median,
// derivative parameters and failures, arithmetic, sorting, two-spectrum operations, DC bias and
// the ramp split.
#include "test_spectrum_commands_support.h"

#include "host/wait.h"
#include "settings/cantilever.h"
#include "store/units.h"

#include <cmath>

namespace {

class SpecCommandTest : public SpecTest {
protected:
    void Smooth(uint32_t mode, int16_t points)
    {
        wint_SmoothSpecParamType p{mode, points};
        dl_SetSmoothSpecParam(&p);
        dl_SmoothSpec();
    }
    void Diff(uint32_t mode, int16_t points)
    {
        wint_DiffSpecParamType p{mode, points};
        dl_SetDiffSpecParam(&p);
        dl_DiffSpec();
    }
};

} // namespace

TEST_F(SpecCommandTest, SmoothMakesANewPlottedItemBehindTheSource)
{
    ImageHeaderType* source = AddCurve(Ramp(5, 0, 1), {0, 0, 3, 0, 0}, "IV");
    const int items = CountItems();
    Smooth(1, 3);
    ASSERT_NE(CurrentItem, source);
    EXPECT_EQ(source->Next, CurrentItem);
    EXPECT_EQ(CountItems(), items + 1);
    EXPECT_EQ(Ys(CurrentItem), (std::vector<float>{0, 1, 1, 1, 0}));
    EXPECT_EQ(Xs(CurrentItem), Xs(source));
    EXPECT_EQ(Ys(source), (std::vector<float>{0, 0, 3, 0, 0}));
    EXPECT_EQ(LastCode(CurrentItem), 50);
    EXPECT_TRUE(LogHas("Smooth 'IV' over 3 points.\n"));
    EXPECT_EQ(GetFSContentsCoords(100, 100), CurrentItem);
}

TEST_F(SpecCommandTest, SmoothingAOnePointSpectrumGivesTheInput)
{
    AddCurve({2.0f}, {3.5f});
    Smooth(1, 3);
    EXPECT_EQ(Ys(CurrentItem), std::vector<float>{3.5f});
}

TEST_F(SpecCommandTest, MedianRemovesASpikeAndRepeatsTheEnds)
{
    AddCurve(Ramp(6, 0, 1), {1, 1, 50, 1, 2, 9}, "m");
    Smooth(2, 3);
    EXPECT_EQ(Ys(CurrentItem), (std::vector<float>{1, 1, 1, 2, 2, 9}));
    EXPECT_EQ(LastCode(CurrentItem), 89);
    EXPECT_TRUE(LogHas("Median filter of 'm' over 3 points.\n"));
}

TEST_F(SpecCommandTest, MedianBufferFailureReportsAndLeavesTheList)
{
    AddCurve(Ramp(6, 0, 1), Ramp(6, 0, 1));
    const int items = CountItems();
    wint_SmoothSpecParamType p{2, 5};
    dl_SetSmoothSpecParam(&p);
    FailAllocationsForTests(1);
    dl_SmoothSpec();
    EXPECT_EQ(CountItems(), items);
    EXPECT_TRUE(LogHas("ERROR : Not enough memory"));
}

TEST_F(SpecCommandTest, SmoothParamsAreOddAndLimitedInTheCallersRecord)
{
    wint_SmoothSpecParamType p{1, 4};
    dl_SetSmoothSpecParam(&p);
    EXPECT_EQ(p.Points, 5);
    p.Points = 40;
    dl_SetSmoothSpecParam(&p);
    EXPECT_EQ(p.Points, 25);
    p.Points = 0;
    dl_SetSmoothSpecParam(&p);
    EXPECT_EQ(p.Points, 3);
    wint_SmoothSpecParamType q{};
    dl_GetSmoothSpecParam(&q);
    EXPECT_EQ(q.Points, 3);
    EXPECT_EQ(q.Mode, 1u);
}

TEST_F(SpecCommandTest, DefaultsOfBothParameterRecords)
{
    wint_SmoothSpecParamType s{};
    dl_GetSmoothSpecParam(&s);
    EXPECT_EQ(s.Mode, 2u);
    EXPECT_EQ(s.Points, 7);
    wint_DiffSpecParamType d{};
    dl_GetDiffSpecParam(&d);
    EXPECT_EQ(d.Mode, 1u);
    EXPECT_EQ(d.Points, 5);
    d.Points = 2;
    dl_SetDiffSpecParam(&d);
    EXPECT_EQ(d.Points, 5);
    d.Points = 99;
    dl_SetDiffSpecParam(&d);
    EXPECT_EQ(d.Points, 25);
}

TEST_F(SpecCommandTest, AnUnknownSmoothModeIsAProgramError)
{
    AddCurve(Ramp(6, 0, 1), Ramp(6, 0, 1));
    const int items = CountItems();
    Smooth(3, 5);
    EXPECT_TRUE(LogHasProgramError("dl_SmoothSpec (3)"));
    EXPECT_EQ(CountItems(), items);
}

TEST_F(SpecCommandTest, CommandsWithoutASpectrumReport33280)
{
    dl_SmoothSpec();
    EXPECT_TRUE(LogHasError("No spectra in memory"));
    AddFlatImage(8, 100);
    const int items = CountItems();
    dl_RemoveDCBias();
    dl_SpecMathY(5);
    dl_SeparateRampDirections();
    dl_DoubleSpecMath(1);
    Diff(1, 5);
    EXPECT_EQ(CountItems(), items);
    EXPECT_EQ(CountInLog("ERROR : No spectra in memory"), 6);
}

TEST_F(SpecCommandTest, FewerThanThirtyTwoPointsAreNotDifferentiableAndTheCopyStays)
{
    ImageHeaderType* source = AddCurve(Ramp(31, 0, 1), Ramp(31, 0, 2));
    const int items = CountItems();
    Diff(1, 5);
    EXPECT_TRUE(LogHasProgramError("DifferentiateData() - Invalid parameter"));
    EXPECT_EQ(CountItems(), items + 1);
    EXPECT_EQ(CurrentItem, source);
    ASSERT_NE(source->Next, nullptr);
    EXPECT_EQ(Ys(source->Next), Ys(source));
    EXPECT_EQ(LastCode(source->Next), 0);
    EXPECT_FALSE(WaitShown());
}

TEST_F(SpecCommandTest, DifferentiateRefusesAWindowOutsideTheTables)
{
    std::vector<float> x = Ramp(40, 0, 1), y = Ramp(40, 0, 1), ox(40), oy(40, 7.0f);
    EXPECT_EQ(DifferentiateData(1, 0, 26, 40, x.data(), y.data(), ox.data(), oy.data()), -1);
    EXPECT_TRUE(LogHasProgramError("DifferentiateData() - diffN2 invalid"));
    EXPECT_EQ(DifferentiateData(1, 0, 3, 40, x.data(), y.data(), ox.data(), oy.data()), -1);
    EXPECT_EQ(DifferentiateData(3, 0, 5, 40, x.data(), y.data(), ox.data(), oy.data()), -1);
    EXPECT_EQ(DifferentiateData(1, 0, 5, 40, x.data(), nullptr, ox.data(), oy.data()), -1);
    EXPECT_EQ(oy, std::vector<float>(40, 7.0f));
    EXPECT_EQ(DifferentiateData(1, 0, 5, 40, x.data(), y.data(), ox.data(), oy.data()), 0);
}

TEST_F(SpecCommandTest, DerivativeOfALineIsItsSlopeAndTheXRangeShrinksByTheMargins)
{
    AddCurve(Ramp(64, 0, 0.5f), Ramp(64, 1, 1.5f), "line");   // dy/dx = 3
    Diff(1, 7);
    for (float v : Ys(CurrentItem)) EXPECT_NEAR(v, 3.0f, 1e-4f);
    // m = 2: the valid part runs from index 3 to 60.
    EXPECT_FLOAT_EQ(Xs(CurrentItem).front(), 1.5f);
    EXPECT_NEAR(Xs(CurrentItem).back(), 30.0f, 1e-4f);
    EXPECT_EQ(LastCode(CurrentItem), 55);
    EXPECT_TRUE(LogHas("1st derivative of 'line'.\n"));
    const auto waits = host.Calls("ap_ShowWait");
    ASSERT_FALSE(waits.empty());
    EXPECT_NE(waits.back().args.find("Please wait for derivative"), std::string::npos);
    EXPECT_FALSE(WaitShown());
}

TEST_F(SpecCommandTest, TheSignFollowsTheLocalDirectionOfX)
{
    AddCurve(Ramp(40, 20, -0.5f), Ramp(40, 0, 1.5f));   // y = 1.5 i, x = 20 - 0.5 i: dy/dx = -3
    Diff(1, 5);
    for (float v : Ys(CurrentItem)) EXPECT_NEAR(v, -3.0f, 1e-4f);
}

TEST_F(SpecCommandTest, SecondDerivativeOfAParabola)
{
    std::vector<float> x = Ramp(50, -5, 0.25f), y(50);
    for (int i = 0; i < 50; ++i) y[i] = 2.0f * x[i] * x[i];
    AddCurve(x, y, "p");
    Diff(2, 9);
    for (float v : Ys(CurrentItem)) EXPECT_NEAR(v, 4.0f, 1e-3f);
    EXPECT_EQ(LastCode(CurrentItem), 56);
    EXPECT_TRUE(LogHas("2nd derivative of 'p'.\n"));
}

TEST_F(SpecCommandTest, ConstantYNormalisedGivesZero)
{
    AddCurve(Ramp(40, 1, 1), std::vector<float>(40, 5.0f), "c");
    Diff(3, 5);
    for (float v : Ys(CurrentItem)) EXPECT_EQ(v, 0.0f);
    EXPECT_EQ(LastCode(CurrentItem), 78);
    EXPECT_TRUE(LogHas("Normalised 1st derivative of 'c'.\n"));
}

TEST_F(SpecCommandTest, ZeroYNormalisedReplacesMarkersFromTheStartValues)
{
    AddCurve(Ramp(40, 1, 1), std::vector<float>(40, 0.0f), "z");
    Diff(4, 5);
    // No value is left: min 9.9e20 and max -9.9e20 stay, and each positive marker becomes
    // max + 0.2 (max - min).
    const float expected = -9.9e20f + 0.2f * (-9.9e20f - 9.9e20f);
    for (float v : Ys(CurrentItem)) EXPECT_FLOAT_EQ(v, expected);
    EXPECT_EQ(LastCode(CurrentItem), 79);
}

TEST_F(SpecCommandTest, AnUnknownDiffModeOrAShortWindowDoesNothing)
{
    AddCurve(Ramp(40, 1, 1), Ramp(40, 1, 1));
    const int items = CountItems();
    Diff(5, 5);
    Diff(0, 5);
    EXPECT_EQ(CountItems(), items);
    EXPECT_FALSE(LogHasProgramErrors());
}

TEST_F(SpecCommandTest, ReplaceMarkersUsesTheRangeOfTheOtherValues)
{
    std::vector<float> v = {1, kMarker, 3, -kMarker, 2, 9.9995e30f};
    ReplaceMarkers(v.data(), 6);
    EXPECT_FLOAT_EQ(v[1], 3.4f);
    EXPECT_FLOAT_EQ(v[3], 0.6f);
    EXPECT_FLOAT_EQ(v[5], 3.4f);   // within the tolerance
}

TEST_F(SpecCommandTest, SortingKeepsEqualXInTheirOrder)
{
    AddCurve({3, 1, 2, 1}, {0, 1, 2, 3}, "s");
    dl_SpecMathX(8);
    EXPECT_EQ(Xs(CurrentItem), (std::vector<float>{1, 1, 2, 3}));
    EXPECT_EQ(Ys(CurrentItem), (std::vector<float>{1, 3, 2, 0}));
    EXPECT_EQ(LastCode(CurrentItem), 58);
    EXPECT_TRUE(LogHas("Sort 's'in order of Y.\n"));
}

TEST_F(SpecCommandTest, SortingByYCarriesX)
{
    AddCurve({0, 1, 2}, {5, -1, 5}, "s");
    dl_SpecMathY(8);
    EXPECT_EQ(Ys(CurrentItem), (std::vector<float>{-1, 5, 5}));
    EXPECT_EQ(Xs(CurrentItem), (std::vector<float>{1, 0, 2}));
    EXPECT_EQ(LastCode(CurrentItem), 59);
    EXPECT_TRUE(LogHas("Sort 's'in order of X.\n"));
}

TEST_F(SpecCommandTest, DescendingSortReversesBothPlanes)
{
    std::vector<float> k = {2, 1, 3}, o = {20, 10, 30};
    SortPair(k.data(), o.data(), 3, false);
    EXPECT_EQ(k, (std::vector<float>{3, 2, 1}));
    EXPECT_EQ(o, (std::vector<float>{30, 20, 10}));
}

TEST_F(SpecCommandTest, AddAConstantToYWithThePrompt)
{
    AddCurve({0, 1}, {1, 2}, "a");
    host.entryAnswers.push_back("2.5");
    dl_SpecMathY(1);
    EXPECT_EQ(Ys(CurrentItem), (std::vector<float>{3.5f, 4.5f}));
    EXPECT_EQ(LastCode(CurrentItem), 52);
    EXPECT_TRUE(LogHas("Math op. to Y values of a\n"));
    const auto calls = host.Calls("ap_EnterString");
    ASSERT_EQ(calls.size(), 1u);
    EXPECT_NE(calls[0].args.find("Enter constant : "), std::string::npos);
    EXPECT_NE(calls[0].args.find("0"), std::string::npos);
}

TEST_F(SpecCommandTest, MultiplyX)
{
    AddCurve({1, 2}, {1, 2}, "x");
    host.entryAnswers.push_back("3");
    dl_SpecMathX(2);
    EXPECT_EQ(Xs(CurrentItem), (std::vector<float>{3, 6}));
    EXPECT_EQ(LastCode(CurrentItem), 51);
    EXPECT_TRUE(LogHas("Math op. to X values of x\n"));
}

TEST_F(SpecCommandTest, DivisionByZeroIsRefusedWith32783)
{
    AddCurve({1, 2}, {1, 2});
    const int items = CountItems();
    host.entryAnswers.push_back("0");
    dl_SpecMathY(3);
    EXPECT_TRUE(LogHasError("Zero data value not allowed"));
    EXPECT_EQ(CountItems(), items);
}

TEST_F(SpecCommandTest, ACancelledPromptEndsTheCommand)
{
    AddCurve({1, 2}, {1, 2});
    const int items = CountItems();
    dl_SpecMathY(2);
    EXPECT_EQ(CountItems(), items);
}

TEST_F(SpecCommandTest, LogOfANegativeValuePassesNaNAndZeroGivesAReplacedMarker)
{
    AddCurve({0, 1, 2, 3}, {-1, 1, 0, std::exp(2.0f)});
    dl_SpecMathY(4);
    const std::vector<float> y = Ys(CurrentItem);
    EXPECT_TRUE(std::isnan(y[0]));
    EXPECT_EQ(y[1], 0.0f);
    EXPECT_FLOAT_EQ(y[3], 2.0f);
    // -marker: min - 0.2 (max - min) over 0 and 2.
    EXPECT_FLOAT_EQ(y[2], -0.4f);
}

TEST_F(SpecCommandTest, NegateAbsoluteAndReciprocal)
{
    ImageHeaderType* source = AddCurve({0, 1, 2}, {-2, 4, 0});
    dl_SpecMathY(5);
    EXPECT_EQ(Ys(CurrentItem), (std::vector<float>{2, -4, 0}));
    CurrentItem = source;
    dl_SpecMathY(6);
    EXPECT_EQ(Ys(CurrentItem), (std::vector<float>{2, 4, 0}));
    CurrentItem = source;
    dl_SpecMathY(7);
    const std::vector<float> y = Ys(CurrentItem);
    EXPECT_FLOAT_EQ(y[0], -0.5f);
    EXPECT_FLOAT_EQ(y[1], 0.25f);
    EXPECT_FLOAT_EQ(y[2], 0.25f + 0.2f * 0.75f);   // the marker of 1 / 0
}

TEST_F(SpecCommandTest, AnOperationBelowOneIsAProgramError)
{
    AddCurve({0, 1}, {0, 1});
    dl_SpecMathX(0);
    EXPECT_TRUE(LogHasProgramError("SpecMath 0"));
}

TEST_F(SpecCommandTest, TwoSpectraAreCombinedIndexByIndex)
{
    ImageHeaderType* a = AddCurve({0, 1, 2}, {5, 6, 7}, "a");
    ImageHeaderType* b = AddCurve({9, 9, 9}, {1, 2, 3}, "b");
    CurrentItem = a;
    const int items = CountItems();
    const int ops[6] = {64, 66, 67, 68, 69, 65};
    const std::vector<float> want[6] = {{6, 8, 10}, {4, 4, 4}, {4, 4, 4}, {5, 12, 21}, {5, 3, 7.0f / 3}, {3, 4, 5}};
    for (int op = 1; op <= 6; ++op) {
        CurrentItem = a;
        // The dialog counts the spectra of the list: a, the new result and those before it
        // (each directly behind a), then b last.
        host.selectAnswers.push_back(static_cast<int16_t>(op + 1));
        dl_DoubleSpecMath(static_cast<uint16_t>(op));
        ASSERT_NE(CurrentItem, a) << op;
        for (int i = 0; i < 3; ++i) EXPECT_FLOAT_EQ(Ys(CurrentItem)[i], want[op - 1][i]) << op;
        EXPECT_EQ(Xs(CurrentItem), Xs(a));
        EXPECT_EQ(LastCode(CurrentItem), ops[op - 1]);
    }
    EXPECT_EQ(CountItems(), items + 6);
    EXPECT_TRUE(LogHas("Math. op. between 'a' and 'b'.\n"));
    (void)b;
}

TEST_F(SpecCommandTest, NoSecondSpectrumFreesTheNewItem)
{
    AddCurve({0, 1}, {0, 1});
    const int items = CountItems();
    dl_DoubleSpecMath(1);
    EXPECT_EQ(CountItems(), items);
    dl_DoubleSpecMath(7);
    EXPECT_TRUE(LogHasProgramError("DoubleSpecMath (7)"));
    EXPECT_EQ(CountItems(), items);
}

TEST_F(SpecCommandTest, AShorterSecondSpectrumStopsTheReadsAndZeroDivisorsGiveMarkers)
{
    ImageHeaderType* a = AddCurve({0, 1, 2, 3}, {4, 6, 8, 10}, "a");
    AddCurve({0, 1}, {2, 0}, "b");
    CurrentItem = a;
    host.selectAnswers.push_back(2);   // a, the new item, b
    dl_DoubleSpecMath(5);
    const std::vector<float> y = Ys(CurrentItem);
    EXPECT_FLOAT_EQ(y[0], 2.0f);
    EXPECT_FLOAT_EQ(y[1], 2.0f);   // marker: (max - min) 0.2 + max with min = max = 2
    EXPECT_FLOAT_EQ(y[2], 8.0f);
    EXPECT_FLOAT_EQ(y[3], 10.0f);
}

TEST_F(SpecCommandTest, DCBiasIsTheValueAtZeroAndTheResultStaysSorted)
{
    AddCurve({1, -1, 2, -2}, {3, 1, 4, 0}, "dc");
    dl_RemoveDCBias();
    EXPECT_EQ(Xs(CurrentItem), (std::vector<float>{-2, -1, 1, 2}));
    EXPECT_EQ(Ys(CurrentItem), (std::vector<float>{-2, -1, 1, 2}));
    EXPECT_EQ(LastCode(CurrentItem), 70);
    EXPECT_TRUE(LogHas("Remove DC bias from 'dc'.\n"));
}

TEST_F(SpecCommandTest, WithoutAZeroCrossingTheMeanIsRemoved)
{
    AddCurve({1, 2, 3}, {1, 2, 6});
    dl_RemoveDCBias();
    EXPECT_EQ(Ys(CurrentItem), (std::vector<float>{-2, -1, 3}));
}

TEST_F(SpecCommandTest, AMonotonicRampIsRefusedWith33289)
{
    AddCurve(Ramp(10, 0, 1), Ramp(10, 0, 1));
    const int items = CountItems();
    dl_SeparateRampDirections();
    EXPECT_TRUE(LogHasError("Spectroscopy ramp is one direction only"));
    EXPECT_EQ(CountItems(), items);
    AddCurve({0, 1}, {0, 1});
    dl_SeparateRampDirections();
    EXPECT_EQ(CountInLog("ERROR : Spectroscopy ramp is one direction only"), 2);
}

TEST_F(SpecCommandTest, ARampOutAndBackSplitsAtItsTurn)
{
    std::vector<float> x = Ramp(10, 0, 1), back = Ramp(9, 8, -1);
    x.insert(x.end(), back.begin(), back.end());
    ImageHeaderType* source = AddCurve(x, Ramp(19, 100, 1), "ramp");
    dl_SeparateRampDirections();
    ImageHeaderType* first = CurrentItem;
    ASSERT_EQ(source->Next, first);
    ImageHeaderType* second = first->Next;
    ASSERT_NE(second, nullptr);
    EXPECT_EQ(first->nx, 10);
    EXPECT_EQ(second->nx, 9);
    EXPECT_EQ(Xs(first), Ramp(10, 0, 1));
    EXPECT_EQ(Xs(second), Ramp(9, 8, -1));
    EXPECT_EQ(Ys(second), Ramp(9, 110, 1));
    EXPECT_EQ(LastCode(first), 71);
    EXPECT_EQ(LastCode(second), 71);
    EXPECT_TRUE(LogHas("Split Ramp Directions 'ramp' at X=10.\n"));
}

TEST_F(SpecCommandTest, AFailedAllocationOfTheSecondPartFreesBoth)
{
    std::vector<float> x = Ramp(10, 0, 1), back = Ramp(9, 8, -1);
    x.insert(x.end(), back.begin(), back.end());
    AddCurve(x, Ramp(19, 100, 1));
    const int items = CountItems();
    for (int skip = 0; skip < 6; ++skip) {
        FailAllocationsForTests(1, skip);
        dl_SeparateRampDirections();
        FailAllocationsForTests(0);
        const int now = CountItems();
        EXPECT_TRUE(now == items || now == items + 2) << skip;
    }
}

TEST_F(SpecCommandTest, ArithmeticOnYWorksOnTheCalibratedValues)
{
    wint_SPMCalType cal = CantileverCalibration();
    cal.ForceOn = 1, cal.ForceK = 0.2, cal.ForceSens = 50.0, cal.ForceOffset = 0.1;
    SetCantileverCalibration(cal);
    ImageHeaderType* source = AddCurve({0, 1, 2}, {0.5f, 1.0f, 2.0f}, "f");
    source->AcqMode = 15;
    source->DataSource = 8;
    ASSERT_NE(ImageDataValue2Calibrated(source, 1.0, 0), 1.0);   // the conversion is in force
    host.entryAnswers.push_back("2");
    dl_SpecMathY(2);
    const std::vector<float> before = Ys(source), after = Ys(CurrentItem);
    for (int i = 0; i < 3; ++i)
        EXPECT_NEAR(ImageDataValue2Calibrated(CurrentItem, after[i], 0), 2 * ImageDataValue2Calibrated(source, before[i], 0),
                    1e-4)
            << i;
    // X is not converted.
    CurrentItem = source;
    host.entryAnswers.push_back("2");
    dl_SpecMathX(2);
    EXPECT_EQ(Xs(CurrentItem), (std::vector<float>{0, 2, 4}));
}
