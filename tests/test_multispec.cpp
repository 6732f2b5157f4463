// The multi-spectra display: items of one-way and two-way spectra, matching, and the settings
// file written, loaded and written again.
#include "test_spectrum_commands_support.h"

#include "analysis/multispec.h"
#include "store/data_list.h"

#include <cstring>

namespace {

class MultiSpecTest : public SpecTest {
protected:
    void SetUp() override
    {
        SpecTest::SetUp();
        disp = MultiSpecDisp();
        disp->Reset();
    }
    // A spectrum with its file name.
    ImageHeaderType* AddNamed(const char* file, const std::vector<float>& x, const std::vector<float>& y,
                              uint32_t acqMode = 2, uint32_t dataSource = 2)
    {
        ImageHeaderType* item = AddCurve(x, y, file);
        std::snprintf(item->FileName, sizeof item->FileName, "/data/%s", file);
        item->AcqMode = acqMode;
        item->DataSource = dataSource;
        return item;
    }
    // A ramp out to 4 and back: 5 points up, 4 down.
    ImageHeaderType* AddTwoWay(const char* file)
    {
        ImageHeaderType* item = AddNamed(file, {0, 1, 2, 3, 4, 3, 2, 1, 0}, {0, 1, 2, 3, 4, 5, 6, 7, 8}, 15);
        return item;
    }
    CMultiSpecDisp* disp = nullptr;
};

} // namespace

TEST(MultiSpecLayoutTest, RecordsHaveTheirSizes)
{
    EXPECT_EQ(sizeof(MultiSpecParam_ItemType), 132u);
    EXPECT_EQ(sizeof(wint_MultiSpecParamType), 138u);
    EXPECT_EQ(TV_MULTISPEC_TITLE + TV_MULTISPEC_FILE + TV_MULTISPEC_DIRECTORY + TV_MULTISPEC_DESCRIPTION +
                  TV_MULTISPEC_DIRECTION,
              66);
}

TEST_F(MultiSpecTest, DefaultsOfTheParameterRecord)
{
    CMultiSpecDisp fresh;
    const wint_MultiSpecParamType& p = fresh.Param();
    EXPECT_EQ(p.LockGain, 1);
    EXPECT_EQ(p.LockShift, 4);
    EXPECT_EQ(p.PrimaryID, -1);
    EXPECT_EQ(p.AxisX[0], -3.0);
    EXPECT_EQ(p.AxisY[2], 0.1);
    EXPECT_EQ(p.MarkerPos[1], 384.0);
    EXPECT_EQ(p.MarkerColour[3], 255u);
    EXPECT_EQ(p.NoOfItems, 0);
    EXPECT_EQ(fresh.GetLowestID(&p), -1);
    EXPECT_EQ(fresh.GetHighestID(&p), -1);
}

TEST_F(MultiSpecTest, ATwoWayCurveIsTwoItemsWithRamps1And2)
{
    ImageHeaderType* one = AddNamed("a.spc", Ramp(6, 0, 1), Ramp(6, 0, 2));
    ImageHeaderType* two = AddTwoWay("b.spc");
    disp->Initialise(static_cast<int32_t>(two->DataId), -1, -1);
    ASSERT_EQ(disp->ItemCount(), 3);
    const MultiSpecParam_ItemType* items = disp->Items();
    EXPECT_EQ(items[0].ID, static_cast<int32_t>(one->DataId));
    EXPECT_EQ(items[0].Ramp, 0);
    EXPECT_EQ(items[0].Np, 6);
    EXPECT_EQ(items[1].Ramp, 1);
    EXPECT_EQ(items[1].Np, 5);
    EXPECT_EQ(items[1].MaxX, 4.0f);
    EXPECT_EQ(items[2].Ramp, 2);
    EXPECT_EQ(items[2].Np, 4);
    EXPECT_EQ(items[2].MinY, 5.0f);
    EXPECT_EQ(items[2].MaxY, 8.0f);
    EXPECT_STREQ(items[1].Direction, "In->Out->In");
    EXPECT_STREQ(items[1].File, "b");
    EXPECT_EQ(items[1].Selected, 1);
    EXPECT_EQ(items[0].Selected, 0);
    EXPECT_EQ(disp->Param().NoOfItems, 3);
}

TEST_F(MultiSpecTest, DirectionTextsFollowTheKindOfCurve)
{
    ImageHeaderType* down = AddNamed("d.spc", Ramp(5, 4, -1), Ramp(5, 0, 1), 14);
    EXPECT_STREQ(CurveDirection(down), "Out->In");
    down->AcqMode = 16;
    EXPECT_STREQ(CurveDirection(down), "Left->Right");
    down->AcqMode = 2;
    EXPECT_STREQ(CurveDirection(down), "Up->Down");
    ImageHeaderType* up = AddNamed("u.spc", Ramp(5, 0, 1), Ramp(5, 0, 1), 2);
    EXPECT_STREQ(CurveDirection(up), "Down->Up");
}

TEST_F(MultiSpecTest, PrimaryIdMinusOneGivesReferenceValues12And2)
{
    AddNamed("a.spc", Ramp(6, 0, 1), Ramp(6, 0, 2), 12, 2);
    AddNamed("b.spc", Ramp(6, 0, 1), Ramp(6, 0, 2), 3, 2);
    AddNamed("c.spc", Ramp(6, 0, 1), Ramp(6, 0, 2), 12, 5);
    disp->Initialise(-1, -1, -1);
    wint_MultiSpecParamType& p = disp->Param();
    p.PrimaryID = -1;
    p.MatchScanMode = 1;
    p.MatchYUnits = 1;
    disp->MatchSpectra(&p);
    EXPECT_EQ(disp->ReferenceAcqMode(), 12u);
    EXPECT_EQ(disp->ReferenceDataSource(), 2u);
    EXPECT_EQ(disp->Items()[0].Matched, 1);
    EXPECT_EQ(disp->Items()[1].Matched, 0);
    EXPECT_EQ(disp->Items()[2].Matched, 0);
}

TEST_F(MultiSpecTest, ConvertAppliesShiftThenGain)
{
    AddNamed("a.spc", Ramp(6, 0, 1), Ramp(6, 0, 2));
    disp->Initialise(-1, -1, -1);
    disp->Items()[0].ShiftX = 1.0;
    disp->Items()[0].GainX = 3.0;
    disp->Items()[0].ShiftY = -2.0;
    disp->Items()[0].GainY = 0.5;
    EXPECT_EQ(disp->ConvertX(0, 2.0), 9.0);
    EXPECT_EQ(disp->ConvertY(0, 4.0), 1.0);
}

TEST_F(MultiSpecTest, SaveLoadSaveGivesIdenticalText)
{
    ImageHeaderType* a = AddNamed("a.spc", Ramp(6, 0, 1), Ramp(6, 0, 2));
    AddTwoWay("b");
    disp->Initialise(static_cast<int32_t>(a->DataId), -1, -1);
    wint_MultiSpecParamType& p = disp->Param();
    p.PrimaryID = static_cast<int32_t>(a->DataId);
    p.AxisY[1] = 7.25;
    p.MarkerOn[2] = 0;
    disp->Items()[2].ShiftX = 0.5;
    disp->Items()[2].GainY = 2.0;
    disp->Items()[2].Selected = 1;
    disp->Items()[1].Colour = 0x123456;
    const std::string first = Path("ms1.txt"), second = Path("ms2.txt");
    ASSERT_EQ(disp->SaveMultiSpecData(first.c_str()), 1);
    const std::string text = ReadFileBytes(first);
    EXPECT_NE(text.find("Tavrin Version 3.10(18)\n"), std::string::npos);
    EXPECT_NE(text.find("Axes y=-3.000000 7.250000 0.100000\n"), std::string::npos);
    EXPECT_NE(text.find("Axes X=-3.000000 3.000000 0.100000\n"), std::string::npos);
    EXPECT_NE(text.find("Line markers=1 128.000000 1 384.000000 0 128.000000 1 384.000000 \n\n"), std::string::npos);
    EXPECT_NE(text.find("Primary Index=0\nNumber of Spectra=2\n\n"), std::string::npos);
    EXPECT_NE(text.find("Filename 2.1=/data/b.spc\n"), std::string::npos);
    EXPECT_NE(text.find("Filename 2.2=/data/b.spc\n"), std::string::npos);
    EXPECT_NE(text.find("Shifts and gains 2.2=0.500000 0.000000 1.000000 2.000000\n"), std::string::npos);

    CMultiSpecDisp& d = *disp;
    d.Finish(true);
    ASSERT_EQ(d.LoadMultiSpecData(first.c_str()), 1);
    EXPECT_EQ(d.ItemCount(), 3);
    EXPECT_EQ(d.Param().AxisY[1], 7.25);
    EXPECT_EQ(d.Param().PrimaryID, static_cast<int32_t>(a->DataId));
    EXPECT_EQ(d.Items()[1].Colour, 0x123456u);
    ASSERT_EQ(d.SaveMultiSpecData(second.c_str()), 1);
    EXPECT_EQ(ReadFileBytes(second), text);
}

TEST_F(MultiSpecTest, AxesYIsWrittenInLowerCase)
{
    AddNamed("a.spc", Ramp(6, 0, 1), Ramp(6, 0, 2));
    disp->Initialise(-1, -1, -1);
    const std::string path = Path("ms.txt");
    ASSERT_EQ(disp->SaveMultiSpecData(path.c_str()), 1);
    const std::string text = ReadFileBytes(path);
    EXPECT_NE(text.find("\nAxes y="), std::string::npos);
    EXPECT_EQ(text.find("\nAxes Y="), std::string::npos);
}

TEST_F(MultiSpecTest, BackslashesAreDoubledAndSpcIsAdded)
{
    ImageHeaderType* a = AddNamed("a", Ramp(6, 0, 1), Ramp(6, 0, 2));
    std::snprintf(a->FileName, sizeof a->FileName, "C:\\Tavrin\\a");
    disp->Initialise(-1, -1, -1);
    const std::string path = Path("ms.txt");
    ASSERT_EQ(disp->SaveMultiSpecData(path.c_str()), 1);
    EXPECT_NE(ReadFileBytes(path).find("Filename 1.0=C:\\\\Tavrin\\\\a.spc\n"), std::string::npos);
}

TEST_F(MultiSpecTest, ARemovedSpectrumIsDroppedAtTheNextSave)
{
    AddNamed("a.spc", Ramp(6, 0, 1), Ramp(6, 0, 2));
    ImageHeaderType* b = AddNamed("b.spc", Ramp(6, 0, 1), Ramp(6, 0, 3));
    AddNamed("c.spc", Ramp(6, 0, 1), Ramp(6, 0, 4));
    disp->Initialise(-1, -1, -1);
    for (int i = 0; i < 3; ++i) disp->Items()[i].Selected = 1;
    const int32_t gone = static_cast<int32_t>(b->DataId);
    EraseItem(b);
    ASSERT_EQ(FindItemById(static_cast<uint32_t>(gone)), nullptr);
    disp->MatchSpectra(&disp->Param());
    EXPECT_FALSE(disp->SelectedForDisplay(disp->Items()[1]));
    EXPECT_TRUE(disp->SelectedForDisplay(disp->Items()[0]));
    const std::string path = Path("ms.txt");
    ASSERT_EQ(disp->SaveMultiSpecData(path.c_str()), 1);
    const std::string text = ReadFileBytes(path);
    EXPECT_EQ(text.find("b.spc"), std::string::npos);
    EXPECT_NE(text.find("Filename 2.0=/data/c.spc\n"), std::string::npos);
    EXPECT_NE(text.find("Number of Spectra=2\n"), std::string::npos);
}

TEST_F(MultiSpecTest, AMangledLineReportsItsNumberAndOkGoesOn)
{
    AddNamed("a.spc", Ramp(6, 0, 1), Ramp(6, 0, 2));
    disp->Initialise(-1, -1, -1);
    const std::string path = Path("ms.txt");
    ASSERT_EQ(disp->SaveMultiSpecData(path.c_str()), 1);
    std::string text = ReadFileBytes(path);
    const size_t at = text.find("Show Averages=1");
    ASSERT_NE(at, std::string::npos);
    text.replace(at, 15, "Show Avxrages=1");
    text.replace(text.find("Match Y units=0"), 15, "Match Y units=1");
    WriteFileBytes(path, text);
    host.messageBoxAnswers = {TV_IDOK};
    EXPECT_EQ(disp->LoadMultiSpecData(path.c_str()), 1);
    ASSERT_EQ(host.messageBoxes.size(), 1u);
    EXPECT_EQ(host.messageBoxes[0].text, "Error at line 7.");
    EXPECT_EQ(disp->Param().MatchYUnits, 1);
}

TEST_F(MultiSpecTest, CancelAtAMangledLineKeepsThePreviousRecord)
{
    AddNamed("a.spc", Ramp(6, 0, 1), Ramp(6, 0, 2));
    disp->Initialise(-1, -1, -1);
    const std::string path = Path("ms.txt");
    ASSERT_EQ(disp->SaveMultiSpecData(path.c_str()), 1);
    std::string text = ReadFileBytes(path);
    text.replace(text.find("Match Y units=0"), 15, "Match Y units=1");
    text += "garbage\n";
    WriteFileBytes(path, text);
    host.messageBoxAnswers = {TV_IDCANCEL};
    EXPECT_EQ(disp->LoadMultiSpecData(path.c_str()), 0);
    EXPECT_EQ(disp->Param().MatchYUnits, 0);
    EXPECT_EQ(disp->ItemCount(), 1);
}

TEST_F(MultiSpecTest, AnOldVersionLineIsAnError)
{
    const std::string path = Path("old.txt");
    WriteFileBytes(path, "Tavrin Version 3.00(1)\n\nMatch Y units=1\n");
    host.messageBoxAnswers = {TV_IDCANCEL};
    EXPECT_EQ(disp->LoadMultiSpecData(path.c_str()), 0);
    ASSERT_EQ(host.messageBoxes.size(), 1u);
    EXPECT_EQ(host.messageBoxes[0].text, "Error at line 1.");
}

TEST_F(MultiSpecTest, AFileMissingFromTheListFailsOnlyItsItem)
{
    ImageHeaderType* a = AddNamed("a.spc", Ramp(6, 0, 1), Ramp(6, 0, 2));
    const std::string path = Path("ms.txt");
    WriteFileBytes(path, "Tavrin Version 3.10(18)\nNumber of Spectra=2\n\nFilename 1.0=/data/a.spc\nSelected 1.0=1\n"
                         "Filename 2.0=/nowhere/x.spc\nSelected 2.0=1\n");
    EXPECT_EQ(disp->LoadMultiSpecData(path.c_str()), 1);
    ASSERT_EQ(disp->ItemCount(), 1);
    EXPECT_EQ(disp->Items()[0].ID, static_cast<int32_t>(a->DataId));
    EXPECT_EQ(disp->Items()[0].Selected, 1);
    EXPECT_TRUE(host.messageBoxes.empty());
}

TEST_F(MultiSpecTest, TheEntryPointAnswersTheOneObject)
{
    EXPECT_EQ(dl_GetMultiSpecDisp(), MultiSpecDisp());
    EXPECT_EQ(dl_GetMultiSpecDisp(), dl_GetMultiSpecDisp());
}

TEST_F(MultiSpecTest, MultiPlotDrawsEachShownCurveInItsColourWithLegends)
{
    ImageHeaderType* a = AddNamed("a.spc", Ramp(6, 0, 1), Ramp(6, 0, 2));
    AddNamed("b.spc", Ramp(6, 0, 1), Ramp(6, 5, -1));
    ImageHeaderType* c = AddNamed("c.spc", Ramp(6, 0, 1), Ramp(6, 1, 1));
    disp->Initialise(static_cast<int32_t>(a->DataId), -1, -1);
    disp->Param().PrimaryID = static_cast<int32_t>(a->DataId);
    disp->Items()[0].Colour = 0x0000FF;
    disp->Items()[1].Colour = 0x00A000;
    disp->Items()[1].Selected = 1;
    disp->Items()[2].Colour = 0x123456;
    disp->Items()[2].Selected = 1;        // selected, but gone from the list
    EraseItem(c);
    disp->MultiPlot(-1);
    EXPECT_GT(CountLines(0x0000FF), 0);
    EXPECT_GT(CountLines(0x00A000), 0);
    EXPECT_EQ(CountLines(0x123456), 0);
    EXPECT_TRUE(HasText("Plot1:  a.spc"));
    EXPECT_TRUE(HasText("Plot2:  b.spc"));
    EXPECT_FALSE(HasText("Plot3:  c.spc"));
    // The markers are named with their places in the units of the plot.
    double y1 = 0, x2 = 0;
    ASSERT_TRUE(disp->MarkerValue(0, &y1));
    ASSERT_TRUE(disp->MarkerValue(3, &x2));
    EXPECT_EQ(WorldToPixelY(static_cast<float>(y1)), 128);
    EXPECT_EQ(WorldToPixelX(static_cast<float>(x2)), 384);
    char text[64];
    std::snprintf(text, sizeof text, "Marker Position Y1: Y=%g", y1);
    EXPECT_TRUE(HasText(text)) << text;
    std::snprintf(text, sizeof text, "Marker Position X2: X=%g", x2);
    EXPECT_TRUE(HasText(text)) << text;
    // Initialise asked for the window of the plot and its legends.
    ASSERT_GE(host.Count("ap_OpenPlotWindow"), 1);
    EXPECT_EQ(host.Calls("ap_OpenPlotWindow")[0].args, "768 512 'Multi Spectra Display'");
    // The palette entry of the curves is as it was.
    EXPECT_NE(IndexColour(35), 0x00A000u);
}

TEST_F(MultiSpecTest, MultiPlotWithNothingSelectedOnlyClears)
{
    AddNamed("a.spc", Ramp(6, 0, 1), Ramp(6, 0, 2));
    disp->Initialise(-1, -1, -1);
    disp->Items()[0].Selected = 0;
    disp->MultiPlot(-1);
    EXPECT_EQ(Items(VFS_ITEM_LINE).size(), 0u);
    EXPECT_FALSE(HasText("Plot1:  a.spc"));
}

TEST_F(MultiSpecTest, LineMarkersAreDrawnAcrossThePlotInTheirColours)
{
    ImageHeaderType* a = AddNamed("a.spc", Ramp(6, 0, 1), Ramp(6, 0, 2));
    disp->Initialise(static_cast<int32_t>(a->DataId), -1, -1);
    wint_MultiSpecParamType& p = disp->Param();
    p.PrimaryID = static_cast<int32_t>(a->DataId);
    p.MarkerColour[0] = 0x112233;
    p.MarkerColour[1] = 0x445566;
    p.MarkerOn[2] = p.MarkerOn[3] = 0;
    p.MarkerColour[2] = 0x778899;
    disp->MultiPlot(-1);
    bool across = false, up = false;
    for (const CVfsItem& line : Items(VFS_ITEM_LINE)) {
        if (line.Colour == 0x112233u) across = line.Y1 == 128 && line.Y2 == 128 && line.X1 == 0 && line.X2 == 511;
        if (line.Colour == 0x445566u) up = line.X1 == 384 && line.X2 == 384 && line.Y1 == 0 && line.Y2 == 511;
    }
    EXPECT_TRUE(across);
    EXPECT_TRUE(up);
    EXPECT_EQ(CountLines(0x778899), 0);
    EXPECT_FALSE(HasText("Marker Position Y2: Y=128"));
}

TEST_F(MultiSpecTest, ExportGivesTheCrossingsOfTheXMarkersWithEachCurve)
{
    // a: y = 2x, b: y = 5 - x, both over x from 0 to 5; c reaches only x = 0.5.
    ImageHeaderType* a = AddNamed("a.spc", Ramp(6, 0, 1), Ramp(6, 0, 2));
    AddNamed("b.spc", Ramp(6, 0, 1), Ramp(6, 5, -1));
    AddNamed("c.spc", Ramp(6, 0, 0.1f), Ramp(6, 1, 0));
    disp->Initialise(static_cast<int32_t>(a->DataId), -1, -1);
    disp->Param().PrimaryID = static_cast<int32_t>(a->DataId);
    for (int i = 0; i < 3; ++i) disp->Items()[i].Selected = 1;
    disp->Items()[1].ShiftY = 1.0;   // b is shown as y = 6 - x
    disp->Param().MarkerPos[1] = 128;   // X1 left of X2 (both start at 384)
    disp->MultiPlot(-1);
    double x1 = 0, x2 = 0;
    ASSERT_TRUE(disp->MarkerValue(1, &x1));
    ASSERT_TRUE(disp->MarkerValue(3, &x2));
    ASSERT_GT(x1, 0.5);
    ASSERT_LT(x2, 5.0);
    ASSERT_LT(x1, x2);
    const std::vector<MultiSpecMarkerData>& data = disp->MarkerData();
    ASSERT_EQ(data.size(), 3u);
    ASSERT_TRUE(data[0].has[0] && data[0].has[1]);
    EXPECT_NEAR(data[0].y[0], 2 * x1, 1e-5);
    EXPECT_NEAR(data[0].y[1], 2 * x2, 1e-5);
    EXPECT_NEAR(data[1].y[0], 6 - x1, 1e-5);
    EXPECT_FALSE(data[2].has[0]);

    const std::string path = Path("export.txt");
    ASSERT_EQ(disp->ExportMultiSpecData(path.c_str()), 1);
    const std::string text = ReadFileBytes(path);
    EXPECT_EQ(text.rfind("Tavrin Version 3.10(18)\nMulti Spectra Display settings saved on  ", 0), 0u);
    char markers[96];
    std::snprintf(markers, sizeof markers, " X1=1 %g ", x1);
    EXPECT_NE(text.find(std::string("\nLine Markers: Y1=1 ")), std::string::npos);
    EXPECT_NE(text.find(markers), std::string::npos) << markers;
    EXPECT_NE(text.find("Filename 1.0=/data/a.spc\nTitle 1.0=a.spc\nMin/Max X=0 5\nMin/Max Y=0 10\n"
                        "Shift X, Y=0 0\nGain  X, Y=1 1\n"),
              std::string::npos);
    EXPECT_NE(text.find("Filename 2.0=/data/b.spc\nTitle 2.0=b.spc\nMin/Max X=0 5\nMin/Max Y=0 5\n"
                        "Shift X, Y=0 1\nGain  X, Y=1 1\n"),
              std::string::npos);
    // The slopes of a and b from the file's own numbers.
    double fx1 = 0, fy1 = 0, fx2 = 0, fy2 = 0, dx = 0, dy = 0, slope = 0;
    const size_t first = text.find("X1=", text.find("Filename 1.0"));
    ASSERT_EQ(std::sscanf(text.c_str() + first, "X1=%lf   Y1=%lf   X2=%lf   Y2=%lf\nX2-X1=%lf   Y2-Y1=%lf\ndYdX=%lf", &fx1,
                          &fy1, &fx2, &fy2, &dx, &dy, &slope),
              7);
    EXPECT_NEAR(fx1, x1, 1e-4 * x2);
    EXPECT_NEAR(fy1, 2 * x1, 1e-4 * x2);
    EXPECT_NEAR(slope, 2.0, 1e-4);
    const size_t second = text.find("dYdX=", text.find("Filename 2.0"));
    ASSERT_EQ(std::sscanf(text.c_str() + second, "dYdX=%lf", &slope), 1);
    EXPECT_NEAR(slope, -1.0, 1e-4);
    // c does not reach the X markers.
    EXPECT_NE(text.find("Filename 3.0=/data/c.spc\n"), std::string::npos);
    EXPECT_NE(text.find("X1=n/a   Y1=n/a   X2=n/a   Y2=n/a\nX2-X1=n/a   Y2-Y1=n/a\ndYdX=n/a\n"), std::string::npos);
}

TEST_F(MultiSpecTest, ExportOfAMarkerThatIsOffIsNotAvailable)
{
    ImageHeaderType* a = AddNamed("a.spc", Ramp(6, 0, 1), Ramp(6, 0, 2));
    disp->Initialise(static_cast<int32_t>(a->DataId), -1, -1);
    disp->Param().PrimaryID = static_cast<int32_t>(a->DataId);
    disp->Param().MarkerOn[3] = 0;
    disp->MultiPlot(-1);
    const std::string path = Path("export.txt");
    ASSERT_EQ(disp->ExportMultiSpecData(path.c_str()), 1);
    const std::string text = ReadFileBytes(path);
    EXPECT_NE(text.find(" X2=0 n/a\n\n"), std::string::npos);
    EXPECT_NE(text.find("   X2=n/a   Y2=n/a\nX2-X1=n/a   Y2-Y1=n/a\ndYdX=n/a\n"), std::string::npos);
}

TEST_F(MultiSpecTest, ExportBeforeAnyPlotKnowsNoMarker)
{
    AddNamed("a.spc", Ramp(6, 0, 1), Ramp(6, 0, 2));
    disp->Initialise(-1, -1, -1);
    const std::string path = Path("export.txt");
    ASSERT_EQ(disp->ExportMultiSpecData(path.c_str()), 1);
    EXPECT_NE(ReadFileBytes(path).find("Line Markers: Y1=1 n/a X1=1 n/a Y2=1 n/a X2=1 n/a\n\n"), std::string::npos);
    EXPECT_EQ(disp->ExportMultiSpecData(nullptr), 0);
}

TEST_F(MultiSpecTest, TheDialogRecordIsTakenOverAndPlotted)
{
    ImageHeaderType* a = AddNamed("a.spc", Ramp(6, 0, 1), Ramp(6, 0, 2));
    disp->Initialise(static_cast<int32_t>(a->DataId), -1, -1);
    wint_MultiSpecParamType p = disp->Param();
    p.PrimaryID = static_cast<int32_t>(a->DataId);
    p.MatchScanMode = 1;
    std::vector<MultiSpecParam_ItemType> items(disp->Items(), disp->Items() + disp->ItemCount());
    items[0].Colour = 0x0A0B0C;
    p.Items = items.data();
    ASSERT_TRUE(disp->CopyParams2DLLAndAllocateMemAndPlot(p));
    items[0].Colour = 0;   // the object holds its own copy
    EXPECT_EQ(disp->Param().MatchScanMode, 1);
    EXPECT_NE(disp->Param().Items, items.data());
    EXPECT_EQ(disp->Items()[0].Colour, 0x0A0B0Cu);
    EXPECT_GT(CountLines(0x0A0B0C), 0);
}

TEST_F(MultiSpecTest, MultiPlotWorkArrayFailureIsReportedAndDrawsNothing)
{
    ImageHeaderType* a = AddNamed("a.spc", Ramp(6, 0, 1), Ramp(6, 0, 2));
    disp->Initialise(static_cast<int32_t>(a->DataId), -1, -1);
    disp->Param().PrimaryID = static_cast<int32_t>(a->DataId);
    const int items = CountItems();
    for (int skip = 0; skip < 2; ++skip) {
        FailAllocationsForTests(1, skip);
        disp->MultiPlot(-1);
        FailAllocationsForTests(0);
        EXPECT_EQ(Items(VFS_ITEM_LINE).size(), 0u) << skip;
        EXPECT_EQ(CountItems(), items);
    }
    EXPECT_TRUE(LogHasError("Not enough memory"));
}
