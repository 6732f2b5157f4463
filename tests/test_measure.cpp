// The measuring object: its built-in values, the exchange with the dialog, the fill of new
// markers, the unit conversions, opening and closing with every allocation failing in turn.
#include "test_measure_support.h"

#include "test_mapping_support.h"

#include <cstring>

namespace {

class MeasureModelTest : public MeasureTest {};

TEST_F(MeasureModelTest, ObjectStartsWithTheBuiltInValues)
{
    EXPECT_EQ(dl_GetMeasureClass(), ms);
    EXPECT_EQ(ms->mode, 1);
    EXPECT_EQ(ms->CurrentMarker, -1);
    EXPECT_EQ(ms->NoOfMarkers, 0);
    EXPECT_EQ(ms->ShowID, 1);
    EXPECT_EQ(ms->BaseMode, TV_BASE_ABOVE);
    EXPECT_EQ(ms->AutoYScale, 1);
    EXPECT_EQ(ms->YLow, -3.0f);
    EXPECT_EQ(ms->YHigh, 3.0f);
    EXPECT_EQ(ms->YStep, 0.1f);
    EXPECT_EQ(ms->SmoothPoints, 5);
    EXPECT_EQ(ms->SpectrumMode, 8);
    EXPECT_EQ(ms->PlotColour, 255);
    EXPECT_EQ(ms->NextMarkerID, 1);
    EXPECT_EQ(ms->ProfileVFS, -1);
    EXPECT_EQ(ms->SpectrumVFS, -1);
    EXPECT_EQ(ms->SweepLow, kNoStatistic);
    EXPECT_EQ(ms->YScaleHigh[4], kNoStatistic);
}

TEST_F(MeasureModelTest, SmoothPointsSixBecomesSevenThirtyBecomesTwentyFive)
{
    wint_MeasureParamType p;
    std::memcpy(&p, static_cast<wint_MeasureParamType*>(ms), sizeof p);
    p.SmoothPoints = 6;
    ms->CopyMeasureParamFromDlg(&p);
    EXPECT_EQ(ms->SmoothPoints, 7);
    p.SmoothPoints = 30;
    ms->CopyMeasureParamFromDlg(&p);
    EXPECT_EQ(ms->SmoothPoints, 25);
    p.SmoothPoints = 2;
    ms->CopyMeasureParamFromDlg(&p);
    EXPECT_EQ(ms->SmoothPoints, 5);
}

TEST_F(MeasureModelTest, YScaleIsPutInOrderWithAStepOfAtLeastAThousandth)
{
    wint_MeasureParamType p;
    std::memcpy(&p, static_cast<wint_MeasureParamType*>(ms), sizeof p);
    p.YLow = 5.0f;
    p.YHigh = 1.0f;
    p.YStep = 0.0001f;
    ms->CopyMeasureParamFromDlg(&p);
    EXPECT_EQ(ms->YLow, 1.0f);
    EXPECT_EQ(ms->YHigh, 5.0f);
    EXPECT_FLOAT_EQ(ms->YStep, 0.004f);
}

TEST_F(MeasureModelTest, BaseChangeClearsCalcValidAndRecomputesWholeVolume)
{
    Image(10, 10, [](int x, int y) { return static_cast<uint16_t>(x >= 3 && x < 7 && y >= 3 && y < 7 ? 10000 : 0); });
    Open();
    Add(TV_MARKER_RECT, {{1, 1}, {8, 1}, {8, 8}});
    ms->DisplayImageWithMarkers();
    ASSERT_EQ(ms->Markers[0].CalcValid, 1);
    EXPECT_NEAR(ms->VolCSA[3], 16 * 10 * 100.0, 1e-2);   // above base 0
    wint_MeasureParamType p;
    std::memcpy(&p, static_cast<wint_MeasureParamType*>(ms), sizeof p);
    p.BaseHeight = 5.0f;
    ms->CopyMeasureParamFromDlg(&p);
    EXPECT_EQ(ms->Markers[0].CalcValid, 0);
    EXPECT_NEAR(ms->VolCSA[3], 16 * 5 * 100.0, 1e-2);
    // The same values again: nothing is cleared.
    ms->Markers[0].CalcValid = 1;
    ms->CopyMeasureParamFromDlg(&p);
    EXPECT_EQ(ms->Markers[0].CalcValid, 1);
}

TEST_F(MeasureModelTest, CopyToDialogKeepsTheDialogsCurrentMarker)
{
    Image(8, 8, [](int, int) { return uint16_t{7}; });
    Open();
    ms->CurrentMarker = 3;
    wint_MeasureParamType p{};
    p.CurrentMarker = 1;
    ms->CopyMeasureParamToDlg(&p);
    EXPECT_EQ(p.CurrentMarker, 1);
    EXPECT_EQ(p.SmoothPoints, 5);
    EXPECT_EQ(p.BaseMode, TV_BASE_ABOVE);
}

TEST_F(MeasureModelTest, NewMarkersTakeTheNextIdentifierAndItsName)
{
    Image(8, 8, [](int, int) { return uint16_t{7}; });
    Open();
    const int a = Add(TV_MARKER_POINT, {{1, 1}});
    const int b = Add(TV_MARKER_LINE, {{1, 1}, {5, 5}});
    EXPECT_EQ(ms->Markers[a].ID, 1);
    EXPECT_EQ(ms->Markers[b].ID, 2);
    EXPECT_STREQ(ms->Markers[b].Name, "2");
    EXPECT_EQ(ms->Markers[b].Colour, 255);
    EXPECT_EQ(ms->Markers[b].SpecY, nullptr);
    EXPECT_EQ(ms->Markers[b].ImageNo, static_cast<int32_t>(CurrentItem->DataId));
    EXPECT_EQ(ms->NextMarkerID, 3);
    EXPECT_EQ(ms->CountNoOfMarkers(CurrentItem), 2);
}

TEST_F(MeasureModelTest, UnitConversionsAreLimitedToTheImage)
{
    Image(11, 21, [](int, int) { return uint16_t{0}; }, 100.0f, 200.0f);
    Open();
    EXPECT_FLOAT_EQ(ms->Convert2UnitsFromNx(5), 50.0f);
    EXPECT_FLOAT_EQ(ms->Convert2UnitsFromNx(40), 100.0f);
    EXPECT_FLOAT_EQ(ms->Convert2UnitsFromNx(-3), 0.0f);
    EXPECT_FLOAT_EQ(ms->Convert2UnitsFromNy(10), 100.0f);
    EXPECT_EQ(ms->ConvertUnitsToNx(50.0f), 5);
    EXPECT_EQ(ms->ConvertUnitsToNx(5.0f), 0);      // below 1 pixel
    EXPECT_EQ(ms->ConvertUnitsToNx(1000.0f), 10);  // at most Nx - 1
    EXPECT_EQ(ms->ConvertUnitsToNy(100.0f), 10);
    EXPECT_EQ(ms->GetZdata(POINTs{3, 3}, false), 0.0f);
}

TEST_F(MeasureModelTest, UnknownDerivativeTypeIsIndexZeroWithAProgramError)
{
    EXPECT_EQ(ms->DiffSpecType2Index(3), 3);
    EXPECT_EQ(ms->DiffSpecType2Index(7), 0);
    EXPECT_NE(ReadLog().find("Program error - DiffSpecType2Index(7)"), std::string::npos);
    ms->ResetYScale(2);
    EXPECT_EQ(ms->YScaleLow[2], 0.0f);
    EXPECT_EQ(ms->YScaleHigh[2], 0.0f);
    EXPECT_EQ(ms->YScaleLow[1], kNoStatistic);
}

TEST_F(MeasureModelTest, SpectroscopyWithoutASetAnswersOne)
{
    Image(8, 8, [](int, int) { return uint16_t{0}; });
    EXPECT_EQ(ms->MeasureInitialise(true, nullptr), 1);
    EXPECT_EQ(ms->MarkerMask, nullptr);
}

TEST_F(MeasureModelTest, InitialiseFillsTheWholeImageColumn)
{
    Image(10, 10, [](int x, int) { return static_cast<uint16_t>(x % 2 ? 3000 : 1000); });
    Open();
    EXPECT_FLOAT_EQ(ms->Min[3], 1.0f);
    EXPECT_FLOAT_EQ(ms->Max[3], 3.0f);
    EXPECT_FLOAT_EQ(ms->Mean[3], 2.0f);
    EXPECT_FLOAT_EQ(ms->LenArea[3], 10000.0f);
    EXPECT_EQ(ms->Number[3], 0);   // the count of the whole image is never set
}

TEST_F(MeasureModelTest, EachFailedAllocationOfInitialiseLeavesNothingBehind)
{
    ImageHeaderType* image = maptest::MakeMappingImage(8, 4);
    ASSERT_NE(image, nullptr);
    CurrentItem = image;
    for (int skip = 0; skip < 4; ++skip) {
        const size_t before = LiveBlockCount();
        host.messageBoxes.clear();
        FailAllocationsForTests(1, skip);
        EXPECT_EQ(ms->MeasureInitialise(true, nullptr), 1) << skip;
        FailAllocationsForTests(0);
        EXPECT_EQ(LiveBlockCount(), before) << skip;
        EXPECT_EQ(ms->MarkerMask, nullptr);
        EXPECT_EQ(ms->AveragedY, nullptr);
        ASSERT_FALSE(host.messageBoxes.empty()) << skip;
        EXPECT_EQ(host.messageBoxes.back().text, "Not enough memory");
    }
    EXPECT_EQ(ms->MeasureInitialise(true, nullptr), 0);
    EXPECT_NE(ms->SweepX, nullptr);
    EXPECT_EQ(ms->SweepX[2], -0.5f);
    EXPECT_EQ(ms->SweepLow, -1.0f);
    EXPECT_EQ(ms->SweepHigh, -0.25f);
    EXPECT_EQ(ms->YScaleLow[0], 0.0f);
    ms->MeasureFinish();
    EXPECT_EQ(ms->Image, nullptr);
    EXPECT_EQ(ms->SweepX, nullptr);
}

TEST_F(MeasureModelTest, ExtractLineMakesAProfileItem)
{
    ImageHeaderType* image = Image(16, 16, [](int x, int) { return static_cast<uint16_t>(1000 * x); }, 15, 15);
    strncpy0(image->Title, "Topo", sizeof image->Title);
    Open();
    Add(TV_MARKER_LINE, {{1, 2}, {9, 2}});
    ImageHeaderType* item = ms->ExtractLine(0);
    ASSERT_NE(item, nullptr);
    EXPECT_EQ(item->Prev, image);
    EXPECT_EQ(item->nx, 8);
    EXPECT_EQ(item->ny, 1);
    EXPECT_EQ(item->ImType1, 3u);
    EXPECT_STREQ(item->GeneralText[0], "Topo");
    EXPECT_STREQ(item->GeneralText[1], "Extracted profile (1,2)-(9,2)");
    EXPECT_STREQ(item->FileName, "Software generated");
    EXPECT_EQ(item->CITSHeaderPtr, nullptr);
    const float* y = reinterpret_cast<const float*>(item->PixData);
    EXPECT_NEAR(y[0], 1.0f, 1e-5);   // z of x = 1
    EXPECT_EQ(ms->ExtractLine(5), nullptr);
}

TEST_F(MeasureModelTest, ExtractLineReadsThePartInsideTheImage)
{
    Image(16, 16, [](int x, int) { return static_cast<uint16_t>(1000 * x); }, 15, 15);
    Open();
    Add(TV_MARKER_LINE, {{-32768, 2}, {9, 2}});
    Add(TV_MARKER_LINE, {{-30, -5}, {-2, -40}});
    ImageHeaderType* item = ms->ExtractLine(0);
    ASSERT_NE(item, nullptr);
    // Clipped to (0,2)-(9,2): nine pixels long; the name keeps the marker's own points.
    EXPECT_EQ(item->nx, 9);
    EXPECT_STREQ(item->GeneralText[1], "Extracted profile (-32768,2)-(9,2)");
    const float* y = reinterpret_cast<const float*>(item->PixData);
    EXPECT_NEAR(y[0], 0.0f, 1e-5);   // z of x = 0
    EXPECT_GT(y[8], 7.0f);
    EXPECT_EQ(ms->ExtractLine(1), nullptr);
}

} // namespace
