// The default plot of a spectrum: settings, titles, log axis checks, curves in two colours,
// bars of a histogram, the polar frame and the plot entry points.
#include "test_spectrum_commands_support.h"

#include "display/contents_grid.h"
#include "display/plot.h"
#include "display/plot_spectrum.h"
#include "files/sample_data.h"
#include "settings/cantilever.h"

#include <cmath>

namespace {

class PlotSpectrumTest : public SpecTest {
protected:
    static wint_PlotParamType Param()
    {
        wint_PlotParamType p;
        dl_GetPlotParam(&p);
        return p;
    }
    static ImageHeaderType* IVCurve()
    {
        ImageHeaderType* item = MakeSampleIVCurve(CurrentItem);
        CurrentItem = item;
        return item;
    }
};

std::string Title(uint32_t type, const ImageHeaderType* item)
{
    char text[80];
    XTitle(type, item, text, sizeof text);
    return text;
}

} // namespace

TEST_F(PlotSpectrumTest, SetPlotParamSwapsLimitsAndKeepsTicksAtAHundredthOfTheRange)
{
    wint_PlotParamType p = Param();
    p.MinX = 10, p.MaxX = -10, p.TickStepX = 0.001f;
    p.MinY = 0, p.MaxY = 50, p.TickStepY = 5;
    p.AutoAxes = 2;
    dl_SetPlotParam(&p);
    const wint_PlotParamType q = Param();
    EXPECT_FLOAT_EQ(q.MinX, -10.0f);
    EXPECT_FLOAT_EQ(q.MaxX, 10.0f);
    EXPECT_FLOAT_EQ(q.TickStepX, 0.2f);
    EXPECT_FLOAT_EQ(q.TickStepY, 5.0f);
    EXPECT_EQ(q.AutoAxes, 2u);
}

TEST_F(PlotSpectrumTest, FontHeightsInTheRecordAreASixthOfTheStoredHeights)
{
    const int stored = NamedFont(FONT_PLOT_TITLE3).Font.lfHeight;
    wint_PlotParamType p = Param();
    EXPECT_EQ(p.NumberFont.lfHeight, stored / 6);
    p.NumberFont.lfHeight = 20;
    dl_SetPlotParam(&p);
    EXPECT_EQ(NamedFont(FONT_PLOT_TITLE3).Font.lfHeight, 120);
}

TEST_F(PlotSpectrumTest, ASpectrumIsPlottedAtTheCursorWithItsCurveAndTitles)
{
    ImageHeaderType* item = IVCurve();
    dl_pb_DisplaySpec();
    EXPECT_FALSE(LogHasProgramErrors());
    EXPECT_EQ(GetFSContentsCoords(100, 100), item);
    EXPECT_GE(CountLines(IndexColour(kPlotCurveColour)), 200);
    EXPECT_TRUE(HasText("Bias [V]"));
    EXPECT_TRUE(HasText("Current [nA]"));
    // -1 to 1 V: limits -1 to 1.2 with ticks of 0.05, a label every 20 ticks.
    EXPECT_TRUE(HasText("-1.0"));
    EXPECT_TRUE(HasText("1.0"));
    EXPECT_FLOAT_EQ(PlotArea(1).WorldX0, -1.0f);
    EXPECT_FLOAT_EQ(PlotArea(1).WorldX1, 1.2f);
    EXPECT_GT(host.Count("ap_UpdateVFS"), 0);
    // The settings stay as they were.
    EXPECT_EQ(Param().BoxAxes, 0);
}

TEST_F(PlotSpectrumTest, NoSpectrumIsReported)
{
    DisplaySpectrum(nullptr);
    EXPECT_TRUE(LogHas("ERROR : No spectra in memory"));
}

TEST_F(PlotSpectrumTest, ANonPositiveValueTurnsALogYAxisOff)
{
    AddCurve(Ramp(40, 1, 1), Ramp(40, 0, 1));   // Y from 0
    wint_PlotParamType p = Param();
    p.LogAxisY = 1;
    dl_SetPlotParam(&p);
    const SavedPlotSettings saved = SavePlotSettings();
    CheckLogAxes(CurrentItem, 0, 40, saved.BoxAxes);
    EXPECT_EQ(PlotParam.LogAxisY, 0);
    RestorePlotSettings(saved);
    dl_DisplayData();
    EXPECT_EQ(PlotArea(1).LogY, 0);
    EXPECT_EQ(Param().LogAxisY, 1);
    dl_CheckLogAxesY();
    ASSERT_EQ(host.messageBoxes.size(), 1u);
    EXPECT_EQ(host.messageBoxes[0].text,
              "Cannot use logarithmic scale for the axis Y, because there is value of 0 and under.");
    EXPECT_EQ(Param().LogAxisY, 1);
}

TEST_F(PlotSpectrumTest, PositiveDataKeepALogAxisAndForceBoxAndAutoScale)
{
    AddCurve(Ramp(40, 1, 1), Ramp(40, 0.002f, 0.5f));
    wint_PlotParamType p = Param();
    p.LogAxisY = 1;
    p.AutoAxes = 0;
    dl_SetPlotParam(&p);
    CheckLogAxes(CurrentItem, 0, 40, 0);
    EXPECT_EQ(PlotParam.LogAxisY, 1);
    EXPECT_EQ(PlotParam.AutoAxes, 2);
    EXPECT_EQ(PlotParam.BoxAxes, 1);
    dl_SetPlotParam(&p);
    dl_DisplayData();
    EXPECT_EQ(PlotArea(1).LogY, 1);
    EXPECT_FLOAT_EQ(LogScaleY, 1000.0f);
    EXPECT_TRUE(HasText("0.001"));
    dl_CheckLogAxesXY();
    EXPECT_TRUE(host.messageBoxes.empty());
}

TEST_F(PlotSpectrumTest, CheckLogAxesMessagesNameTheLostAxes)
{
    AddCurve(Ramp(40, 0, 1), Ramp(40, -1, 1));
    wint_PlotParamType p = Param();
    p.LogAxisX = 1, p.LogAxisY = 1;
    dl_SetPlotParam(&p);
    dl_CheckLogAxesXY();
    dl_CheckLogAxesX();
    ASSERT_EQ(host.messageBoxes.size(), 2u);
    EXPECT_EQ(host.messageBoxes[0].text,
              "Cannot use logarithmic scale for the axis X and Y, because there is value of 0 and under.");
    EXPECT_EQ(host.messageBoxes[1].text,
              "Cannot use logarithmic scale for the axis X, because there is value of 0 and under.");
    EXPECT_EQ(Param().LogAxisX, 1);
}

TEST_F(PlotSpectrumTest, CheckLogAxesWithoutASpectrumReports)
{
    dl_CheckLogAxesXY();
    EXPECT_TRUE(LogHas("ERROR : No spectra in memory"));
}

TEST_F(PlotSpectrumTest, ARampOutAndBackShowsInTwoColours)
{
    std::vector<float> x = Ramp(64, 0, 1), back = Ramp(64, 63, -1);
    x.insert(x.end(), back.begin(), back.end());
    ImageHeaderType* item = AddCurve(x, Ramp(128, 0, 1));
    item->AcqMode = 15;
    EXPECT_EQ(dl_IsLapSpec(), 1);
    dl_DisplayData();
    ASSERT_NE(IndexColour(kPlotCurveColour), IndexColour(kPlotSecondColour));
    EXPECT_GE(CountLines(IndexColour(kPlotSecondColour)), 60);
    EXPECT_GE(CountLines(IndexColour(kPlotCurveColour)), 60);
}

TEST_F(PlotSpectrumTest, IsLapSpecRule)
{
    ImageHeaderType* item = AddSpectrum(4);
    const struct {
        uint32_t acq, lmc;
        int16_t lap;
        int want;
    } rows[] = {{15, 0, 0, 1}, {16, 0, 0, 1}, {51, 1, 0, 1}, {51, 2, 0, 0}, {21, 0, 1, 1}, {21, 0, 0, 0}, {12, 1, 1, 0}};
    for (const auto& r : rows) {
        item->AcqMode = r.acq, item->LMCMode = r.lmc, item->LapFlag = r.lap;
        EXPECT_EQ(dl_IsLapSpec(), r.want) << r.acq;
    }
    CurrentItem = nullptr;
    EXPECT_EQ(dl_IsLapSpec(), 0);
}

TEST_F(PlotSpectrumTest, AHistogramIsPlottedAsBars)
{
    // A histogram stores its X values in the first plane.
    ImageHeaderType* item = AddCurve(Ramp(20, 5, 1), Ramp(20, 0, 0.5f), "levels", 4);
    item->AdcSrc = 1;
    dl_DisplayData();
    EXPECT_EQ(Items(VFS_ITEM_FILL).size(), 20u);
    EXPECT_TRUE(HasText("Height [nm]"));
}

TEST_F(PlotSpectrumTest, APolarFrameCarriesTheAngleTexts)
{
    const std::vector<float> x = Ramp(10, 0, 1), y = Ramp(10, 1, 1);
    DisplaySpecWithSettings(nullptr, x.data(), y.data(), 10, 0, 0, 0, 1, kPlotCurveColour, "Angle", "Phase", 1);
    EXPECT_TRUE(HasText("-180[deg]"));
    EXPECT_TRUE(HasText("   0[deg]"));
    EXPECT_FLOAT_EQ(PlotArea(1).MarginLeft, 0.2f);
}

TEST_F(PlotSpectrumTest, XTitleOfEveryRow)
{
    ImageHeaderType* item = AddSpectrum(4);
    const struct {
        uint32_t acq, lmc, sweep;
        const char* title;
    } spectra[] = {{12, 0, 0, "Bias Voltage [V]"}, {13, 0, 0, "Bias Voltage [V]"}, {19, 0, 0, "Bias Voltage [V]"},
                   {60, 0, 0, "Bias Voltage [V]"}, {14, 0, 0, "Probe Displacement [nm]"},
                   {15, 0, 0, "Probe Displacement [nm]"}, {16, 0, 0, "Probe Displacement [nm]"},
                   {51, 1, 0, "Probe Displacement [nm]"}, {51, 2, 0, "Frequency [Hz]"},
                   {51, 4, 0, "LM Amplitude [nm]"}, {51, 8, 1, "Probe Displacement [nm]"},
                   {51, 8, 2, "Bias Voltage [V]"}, {71, 0, 0, "Frequency [Hz]"}, {3, 0, 0, "au"}};
    for (const auto& r : spectra) {
        item->AcqMode = r.acq, item->LMCMode = r.lmc, item->LMCSweepType = r.sweep;
        EXPECT_EQ(Title(2, item), r.title) << r.acq << " " << r.lmc;
    }
    // A mapping image by its mapping kind.
    item->AcqMode = 11, item->MapType = 12;
    EXPECT_EQ(Title(1, item), "Bias Voltage [V]");
    item->AcqMode = 12;
    EXPECT_EQ(Title(1, item), "au");
    EXPECT_TRUE(LogHasProgramError("XTitle t1=1"));
    EXPECT_EQ(Title(3, item), "Distance [nm]");
    EXPECT_EQ(Title(5, item), "Frequency [Hz]");
    EXPECT_EQ(Title(6, item), "au");
    EXPECT_EQ(Title(7, item), "Phase [deg]");
    EXPECT_EQ(Title(8, item), "Scan Distance [nm]");
    EXPECT_EQ(Title(9, item), "Scan Distance [nm]");
    // Histograms by channel.
    const struct {
        uint32_t adc;
        const char* title;
    } channels[] = {{0, "Grey Level"}, {1, "Height [nm]"}, {4, "Current [nA]"}, {8, "Current [nA]"},
                    {512, "Volts [V]"}, {0x20000, "Volts [V]"}, {0x600001, "Volts [V]"}};
    for (const auto& c : channels) {
        item->AdcSrc = c.adc;
        EXPECT_EQ(Title(4, item), c.title) << c.adc;
    }
    wint_SPMCalType cal = CantileverCalibration();
    cal.ForceOn = 1;
    SetCantileverCalibration(cal);
    item->AdcSrc = 16;
    EXPECT_EQ(Title(4, item), "Force [nN]");
    EXPECT_STREQ(XUnit(4, item), "nN");
    cal.ForceOn = 0;
    SetCantileverCalibration(cal);
    EXPECT_EQ(Title(4, item), "Volts [V]");
    item->AdcSrc = 3;
    EXPECT_EQ(Title(4, item), "Grey Level");
    EXPECT_TRUE(LogHasProgramError("XTitle adcsrc = 3"));
    // The item's own text wins.
    std::strncpy(item->SpecXTitle, "Sample bias", sizeof item->SpecXTitle);
    EXPECT_EQ(Title(2, item), "Sample bias");
}

TEST_F(PlotSpectrumTest, XUnitIsTheUnitOfTheTitle)
{
    ImageHeaderType* item = AddSpectrum(4);
    item->AcqMode = 12;
    EXPECT_STREQ(XUnit(2, item), "V");
    item->AcqMode = 14;
    EXPECT_STREQ(XUnit(2, item), "nm");
    EXPECT_STREQ(XUnit(5, item), "Hz");
    EXPECT_STREQ(XUnit(7, item), "deg");
    item->AdcSrc = 4;
    EXPECT_STREQ(XUnit(4, item), "nA");
    EXPECT_STREQ(XUnit(6, item), "");
}

TEST_F(PlotSpectrumTest, SpecTitleIsWrappedByTheDerivativesInTheHistory)
{
    ImageHeaderType* item = AddSpectrum(4);
    item->DataSource = 2;
    char plain[80], text[80];
    SpecTitle(item, plain, sizeof plain);
    AddImProc2List(item, 55);
    AddImProc2List(item, 78);
    SpecTitle(item, text, sizeof text);
    EXPECT_EQ(std::string(text), std::string("dLn(d(") + plain + ")/dV)/dLnV");
    AddImProc2List(item, 56);
    AddImProc2List(item, 79);
    SpecTitle(item, text, sizeof text);
    EXPECT_EQ(std::string(text).substr(0, 9), "d2Ln(d2(d");
    std::strncpy(item->SpecYTitle, "Current [nA]", sizeof item->SpecYTitle);
    SpecTitle(item, text, sizeof text);
    EXPECT_STREQ(text, "Current [nA]");
}

TEST_F(PlotSpectrumTest, InvalidDataFallBackToTheFixedLimits)
{
    const float n = NAN;
    AddCurve({n, n, n}, {INFINITY, n, -INFINITY});
    dl_DisplayData();
    EXPECT_FALSE(LogHasProgramErrors());
    EXPECT_FLOAT_EQ(PlotArea(1).WorldX1, 110.0f);   // 0 to 100 by the round-limits rule
}
