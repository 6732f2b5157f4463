// The plot package: areas, world mapping, axes, labels, grids, number texts and log scaling.
#include "test_spectrum_commands_support.h"

#include "display/plot.h"

#include <cmath>

namespace {

class PlotPackageTest : public SpecTest {
protected:
    // Area 2 at a frame rectangle with margins of 0 on the left and right (10% top and bottom),
    // selected.
    static PlotAreaType& Area(int left, int top, int right, int bottom)
    {
        SetPlotArea(left, top, right, bottom, 2);
        SetPlotMargins(2, 0.0f, 0.1f, 0.0f, 0.1f);
        SelectPlotArea(2);
        return CurrentPlotArea();
    }
};

} // namespace

TEST_F(PlotPackageTest, StartUpLayoutOfTheAreas)
{
    // Area 2: 0.01 .. 0.99 of 512 -> 5 .. 507; margins 0.14 left, 0.05 right, 0.12 top and bottom.
    const PlotAreaType& a = PlotArea(2);
    EXPECT_EQ(a.Left, 5);
    EXPECT_EQ(a.Right, 507);
    EXPECT_EQ(a.PlotLeft, 5 + static_cast<int>(std::floor(502 * 0.14 + 0.49999)));
    EXPECT_EQ(a.PlotRight, 507 - static_cast<int>(std::floor(502 * 0.05 + 0.49999)));
    EXPECT_FLOAT_EQ(a.MarginTop, 0.12f);
    EXPECT_FLOAT_EQ(a.WorldX1, 100.0f);
    // Area 7 starts at 0.001: floor(0.512 + 0.49999) = 1.
    EXPECT_EQ(PlotArea(7).Left, 1);
    EXPECT_EQ(CurrentPlotAreaNumber(), 1);
}

TEST_F(PlotPackageTest, ANewAreaHasAWorldOfZeroToThousandAndLinearAxes)
{
    SetLogAxes(1, 1);
    SetPlotArea(10, 20, 110, 220, 4);
    const PlotAreaType& a = CurrentPlotArea();
    EXPECT_EQ(CurrentPlotAreaNumber(), 4);
    EXPECT_EQ(a.LogX, 0);
    EXPECT_FLOAT_EQ(a.WorldX1, 1000.0f);
    EXPECT_FLOAT_EQ(a.WorldY1, 1000.0f);
}

TEST_F(PlotPackageTest, SetLogAxesTakesOnlyOneAsOn)
{
    SetLogAxes(1, 2);
    EXPECT_EQ(CurrentPlotArea().LogX, 1);
    EXPECT_EQ(CurrentPlotArea().LogY, 0);
}

TEST_F(PlotPackageTest, WorldAndPixelsMapBothWaysAndHugeValuesAreLimited)
{
    PlotAreaType& a = Area(0, 0, 200, 100);
    SetAxisRange(0, 0, 10, 10);
    // Plot rectangle: x 0..200, y 10..90 of the area.
    EXPECT_EQ(WorldToPixelX(0), 0);
    EXPECT_EQ(WorldToPixelX(5), 100);
    EXPECT_EQ(WorldToPixelY(0), a.PlotBottom - a.Top);
    EXPECT_EQ(WorldToPixelY(10), a.PlotTop - a.Top);
    EXPECT_NEAR(PixelToWorldX(100), 5.0f, 1e-5f);
    EXPECT_NEAR(PixelToWorldY(a.PlotBottom - a.Top), 0.0f, 1e-5f);
    EXPECT_EQ(WorldToPixelX(1e30f), 1000);
    EXPECT_EQ(WorldToPixelX(-1e30f), 0);
    EXPECT_EQ(WorldToPixelX(NAN), 0);
    EXPECT_EQ(WorldToPixelY(INFINITY), (a.Bottom - a.Top) - 1000);
}

TEST_F(PlotPackageTest, LogAxisRangeIsWholeDecadesNudgedInside)
{
    Area(0, 0, 200, 100);
    SetLogAxes(1, 0);
    SetAxisRange(2.0f, 0.0f, 300.0f, 1.0f);
    const PlotAreaType& a = CurrentPlotArea();
    // lo' = 2 + 2e-7 -> decade 1; hi' = 299.7 -> decade 1000.
    EXPECT_NEAR(a.WorldX0, 1.0f + 2e-7f, 1e-6f);
    EXPECT_NEAR(a.WorldX1, 1000.0f, 1e-3f);
}

TEST_F(PlotPackageTest, EqualLimitsAreSpreadByATenthOfTheirMagnitude)
{
    Area(0, 0, 300, 200);
    PlotLimits l{5, 5, 0, 0, 0, 0};
    DrawAxes(0, 0, 0, kPlotGridColour, 0, &l, nullptr, 0);
    EXPECT_FLOAT_EQ(l.xmin, 4.5f);
    EXPECT_FLOAT_EQ(l.xmax, 5.5f);
    EXPECT_FLOAT_EQ(l.xtick, 0.2f);
    // Both 0: the upper limit becomes 1.
    EXPECT_FLOAT_EQ(l.ymin, 0.0f);
    EXPECT_FLOAT_EQ(l.ymax, 1.0f);
    EXPECT_FLOAT_EQ(l.ytick, 0.2f);
}

TEST_F(PlotPackageTest, OriginRules)
{
    Area(0, 0, 300, 200);
    PlotLimits mixed{-3, 7, 1, 2, 9, 1};
    DrawAxes(0, 0, 0, kPlotGridColour, 0, &mixed, nullptr, 0);
    EXPECT_FLOAT_EQ(CurrentPlotArea().OriginX, 0.0f);
    EXPECT_FLOAT_EQ(CurrentPlotArea().OriginY, 2.0f);
    PlotLimits box{-3, 7, 1, -9, -2, 1};
    DrawAxes(1, 0, 0, kPlotGridColour, 0, &box, nullptr, 0);
    EXPECT_FLOAT_EQ(CurrentPlotArea().OriginX, -3.0f);
    EXPECT_FLOAT_EQ(CurrentPlotArea().OriginY, -9.0f);
}

TEST_F(PlotPackageTest, AllNegativeDataPutTheXAxisOnTopWithItsLabelsOnTheFarSide)
{
    PlotAreaType& a = Area(0, 0, 300, 200);
    PlotLimits l{0, 100, 5, -10, -1, 1};
    FSSetColour(kPlotAxisColour);
    DrawAxes(0, 0, 0, kPlotGridColour, 0, &l, nullptr, 1);
    EXPECT_FLOAT_EQ(a.OriginY, -1.0f);
    // The X axis line runs along the top of the plot rectangle.
    bool axisOnTop = false;
    for (const CVfsItem& line : Items(VFS_ITEM_LINE))
        if (line.Y1 == a.PlotTop && line.Y2 == a.PlotTop && line.X1 == a.PlotLeft && line.X2 == a.PlotRight)
            axisOnTop = true;
    EXPECT_TRUE(axisOnTop);
    // The X labels stand above it, outside the plot; none below the plot.
    int above = 0, below = 0;
    for (const CVfsItem& text : Items(VFS_ITEM_TEXT)) {
        above += text.Y1 < a.PlotTop;
        below += text.Y1 > a.PlotBottom;
    }
    EXPECT_GT(above, 0);
    EXPECT_EQ(below, 0);
}

TEST_F(PlotPackageTest, FourHundredPixelsLabelEveryTwentyTicksFourHundredAndOneEveryTen)
{
    Area(0, 0, 400, 200);
    PlotLimits l{0, 10, 1, 0, 10, 1};
    EXPECT_EQ(CurrentPlotArea().PlotRight - CurrentPlotArea().PlotLeft, 400);
    EXPECT_EQ(DrawAxes(0, 0, 0, kPlotGridColour, 0, &l, nullptr, 0), 20);
    Area(0, 0, 401, 200);
    EXPECT_EQ(DrawAxes(0, 0, 0, kPlotGridColour, 0, &l, nullptr, 0), 10);
}

TEST_F(PlotPackageTest, AxisLinesAndTicksLandOnTheComputedPixels)
{
    PlotAreaType& a = Area(50, 60, 450, 360);
    PlotLimits l{0, 10, 1, 0, 10, 1};
    FSSetColour(kPlotAxisColour);
    DrawAxes(1, 0, 0, kPlotGridColour, 0, &l, nullptr, 1);
    fs.Paint(host);
    const uint32_t axis = IndexColour(kPlotAxisColour);
    ASSERT_NE(axis, fs.WindowPixel(0, 0));
    // The frame rectangle is 400 by 300; margins 0, 0.1, 0, 0.1: plot x 50..450, y 90..330.
    ASSERT_EQ(a.PlotLeft, 50);
    ASSERT_EQ(a.PlotBottom, 330);
    ASSERT_EQ(a.PlotTop, 90);
    // The X axis along the bottom, the Y axis along the left edge.
    for (int x = 52; x < 448; x += 7) EXPECT_EQ(fs.WindowPixel(x, 330), axis) << x;
    for (int y = 92; y < 328; y += 7) EXPECT_EQ(fs.WindowPixel(50, y), axis) << y;
    // Ticks every world unit: 40 pixels apart, 0.015 of the world height (3.6 pixels) upward.
    for (int k = 1; k < 10; ++k) {
        const int x = 50 + 40 * k;
        EXPECT_EQ(fs.WindowPixel(x, 328), axis) << k;
        EXPECT_NE(fs.WindowPixel(x + 20, 328), axis) << k;
    }
    // Y ticks: 24 pixels apart, 0.01 of the world width (4 pixels) to the right.
    for (int k = 1; k < 10; ++k) {
        const int y = 330 - 24 * k;
        EXPECT_EQ(fs.WindowPixel(52, y), axis) << k;
        EXPECT_NE(fs.WindowPixel(52, y + 12), axis) << k;
    }
}

TEST_F(PlotPackageTest, GridLinesAreAtLeastFourPixelsApart)
{
    Area(0, 0, 100, 100);
    SetAxisRange(0, 0, 1000, 1000);
    SetAxisOrigin(0, 0);
    DrawAxisX(1.0f, 0);   // a tick every 0.1 pixel
    const size_t before = Items(VFS_ITEM_LINE).size();
    DrawGridX(1);
    std::vector<double> xs;
    const auto lines = Items(VFS_ITEM_LINE);
    for (size_t i = before; i < lines.size(); ++i) xs.push_back(lines[i].X1);
    ASSERT_GT(xs.size(), 10u);
    std::sort(xs.begin(), xs.end());
    for (size_t i = 1; i < xs.size(); ++i) EXPECT_GE(xs[i] - xs[i - 1], 3.0) << i;
}

TEST_F(PlotPackageTest, LogAxisPutsTicksAtTheTenFixedFractions)
{
    PlotAreaType& a = Area(0, 0, 300, 100);
    SetLogAxes(1, 0);
    SetAxisRange(1, 0, 9, 1);   // one decade: 1 to 10 (with the nudge)
    SetAxisOrigin(1, 0);
    DrawAxisX(1, 0);
    EXPECT_EQ(a.DecadesX, 1);
    std::vector<double> xs;
    for (const CVfsItem& line : Items(VFS_ITEM_LINE))
        if (line.X1 == line.X2) xs.push_back(line.X1);
    ASSERT_EQ(xs.size(), 10u);
    // 2 lies at 0.301 of the decade, 5 at 0.699: 300 pixels to the decade.
    EXPECT_NEAR(xs[1], 0.301 * 300, 1.0);
    EXPECT_NEAR(xs[4], 0.699 * 300, 1.0);
    EXPECT_NEAR(xs[9], 300, 1.0);
}

TEST_F(PlotPackageTest, MinimumOfTwoThousandthsGivesLogScaleThousandAndUnscaledLabels)
{
    std::vector<float> x = {0.002f, 0.05f, 0.5f}, y = {1, 2, 3};
    float xmin = 0.002f, xmax = 0.5f, ymin = 1, ymax = 3;
    ApplyLogScale(x.data(), y.data(), 3, 1, 0, &xmin, &xmax, &ymin, &ymax);
    EXPECT_FLOAT_EQ(LogScaleX, 1000.0f);
    EXPECT_FLOAT_EQ(LogScaleY, 1.0f);
    EXPECT_FLOAT_EQ(x[0], 2.0f);
    EXPECT_FLOAT_EQ(xmin, 2.0f);
    EXPECT_FLOAT_EQ(xmax, 500.0f);
    Area(0, 0, 400, 200);
    SetLogAxes(1, 0);
    PlotLimits l{xmin, xmax, 1, 1, 3, 0.5f};
    DrawAxes(1, 0, 0, kPlotGridColour, 1, &l, &NamedFont(FONT_GENERAL), 1);
    EXPECT_TRUE(HasText("0.001"));
    EXPECT_TRUE(HasText("0.01"));
    EXPECT_TRUE(HasText("0.1"));
    EXPECT_TRUE(HasText("1"));
}

TEST_F(PlotPackageTest, LabelsCarryKMBAndTheExponentForm)
{
    char t[64];
    FormatAxisNumber(500.0f, 0, 999, 100, 0, t, sizeof t);
    EXPECT_STREQ(t, "500");
    // The digits follow the step in the unit of the row: a step of 100 is 0.1K, two digits.
    FormatAxisNumber(1000.0f, 0, 1000, 100, 0, t, sizeof t);
    EXPECT_STREQ(t, "1.00K");
    FormatAxisNumber(1000.0f, 0, 1000, 10000, 0, t, sizeof t);
    EXPECT_STREQ(t, "1K");
    FormatAxisNumber(2e6f, 0, 2e6f, 1e6f, 0, t, sizeof t);
    EXPECT_STREQ(t, "2.0M");
    FormatAxisNumber(3e9f, 0, 3e9f, 1e9f, 0, t, sizeof t);
    EXPECT_STREQ(t, "3.0B");
    FormatAxisNumber(1e12f, 0, 1e12f, 1e11f, 0, t, sizeof t);
    EXPECT_STREQ(t, "1.00e+12");
    // Decimals follow the step: 0.2 steps print two digits.
    FormatAxisNumber(0.4f, 0, 1.1f, 0.2f, 0, t, sizeof t);
    EXPECT_STREQ(t, "0.40");
    // 1e12 as f32 (999999995904) is in the decade of 1e12.
    FormatAxisNumber(5e11f, 0, 1e12f, 1e11f, 0, t, sizeof t);
    EXPECT_STREQ(t, "5.00e+11");
    // Below the table: exponent form.
    FormatAxisNumber(1e-5f, 0, 2e-5f, 1e-6f, 0, t, sizeof t);
    EXPECT_STREQ(t, "1.00e-05");
}

TEST_F(PlotPackageTest, ExtremesSkipNaNAndInfinities)
{
    const float v[] = {NAN, 3, -INFINITY, -2, INFINITY, 7};
    float lo, hi;
    GetPlotExtremes(v, 6, &lo, &hi);
    EXPECT_EQ(lo, -2.0f);
    EXPECT_EQ(hi, 7.0f);
    const float none[] = {NAN, INFINITY};
    GetPlotExtremes(none, 2, &lo, &hi);
    EXPECT_EQ(lo, kNoExtreme);
    EXPECT_EQ(hi, -kNoExtreme);
}

TEST_F(PlotPackageTest, CurveTakesTheSecondColourForwardAndBreaksAtHalf)
{
    Area(0, 0, 300, 200);
    SetAxisRange(0, 0, 10, 10);
    const float x[] = {0, 2, 4, 6, 4, 2}, y[] = {1, 2, 3, 4, 5, 6};
    PlotCurve(x, y, 6, 26, 27, 1, 0, 1);
    EXPECT_EQ(CountLines(IndexColour(27)) + CountLines(IndexColour(26)), 5);
    if (IndexColour(26) != IndexColour(27)) {
        EXPECT_EQ(CountLines(IndexColour(27)), 3);
        EXPECT_EQ(CountLines(IndexColour(26)), 2);
    }
    // The last point of a two-colour curve without break is that of index n / 2 - 1.
    EXPECT_EQ(LastCurveEnds.LastX, WorldToPixelX(4));
    const size_t before = Items(VFS_ITEM_LINE).size();
    PlotCurve(x, y, 6, 26, 27, 1, 1, 0);
    EXPECT_EQ(Items(VFS_ITEM_LINE).size() - before, 4u);
    EXPECT_EQ(LastCurveEnds.LastX, WorldToPixelX(2));
}

TEST_F(PlotPackageTest, BarsStandOnTheBaseline)
{
    PlotAreaType& a = Area(0, 0, 300, 200);
    SetAxisRange(0, 0, 10, 10);
    const float x[] = {2, 4, 6}, y[] = {5, 8, 3};
    PlotBars(x, y, 3, 0, 26, 0);
    const auto bars = Items(VFS_ITEM_FILL);
    ASSERT_EQ(bars.size(), 3u);
    for (const CVfsItem& bar : bars) EXPECT_EQ(bar.Bounds.bottom, a.PlotBottom);
}

TEST_F(PlotPackageTest, SymbolsOfAnUnknownSetAreTheFirstSet)
{
    Area(0, 0, 300, 200);
    SetAxisRange(0, 0, 10, 10);
    const float x[] = {5}, y[] = {5};
    PlotSymbols(x, y, 1, 26, 0);
    const size_t cross = Items(VFS_ITEM_LINE).size();
    PlotSymbols(x, y, 1, 26, 9);
    EXPECT_EQ(Items(VFS_ITEM_LINE).size(), 2 * cross);
    EXPECT_EQ(cross, 2u);
}

TEST_F(PlotPackageTest, TitlesStandBelowAboveAndLeftOfThePlot)
{
    PlotAreaType& a = Area(0, 0, 300, 200);
    PlotTitleBottom("Bias");
    PlotTitleTop("Current");
    PlotTitleLeft("I");
    const auto texts = Items(VFS_ITEM_TEXT);
    ASSERT_EQ(texts.size(), 3u);
    EXPECT_GT(texts[0].Y1, a.PlotBottom);
    EXPECT_LT(texts[1].Y1, a.PlotTop);
    EXPECT_LT(texts[2].X1, a.PlotLeft + 1);
    // The left title is one text turned upward, and the font of the titles after it is level
    // again; a long title stands much taller than wide, centred on the plot's height.
    EXPECT_EQ(texts[2].Text, "I");
    EXPECT_EQ(texts[2].Font.Font.lfEscapement, 900);
    EXPECT_EQ(FSGetTextFont().Font.lfEscapement, 0);
    PlotTitleLeft("Current (nA)");
    const auto after = Items(VFS_ITEM_TEXT);
    ASSERT_EQ(after.size(), 4u);
    const RECT& box = after[3].Bounds;
    EXPECT_GT(box.bottom - box.top, 4 * (box.right - box.left));
    EXPECT_LE(std::abs((box.top + box.bottom) / 2 - (a.PlotTop + a.PlotBottom) / 2), 1);
}
