// The particle analysis through its entry points, as the host's two dialog pages drive it: the
// bilevel item and its test, the views and buttons, the statistics page and its summary, the
// list rows, erosion, dilation and the size filter in place, the pointer commands, and the
// histogram.
#include "test_particle_support.h"

#include "host/ap_callbacks.h"
#include "store/history.h"
#include "store/units.h"

#include <cstring>

namespace {

std::unique_ptr<wint_ParticleParamType> Record()
{
    auto p = std::make_unique<wint_ParticleParamType>();
    std::memset(p.get(), 0, sizeof *p);
    return p;
}

// The edge cases.

TEST_F(ParticleTest, OnePixelObjectHasOnePixelPerimeterZeroAndShapeZero)
{
    ImageHeaderType* bilevel = StartOn({".....", "..#..", "....."}, 4, 100.0f, 60.0f);
    ASSERT_NE(bilevel, nullptr);
    ASSERT_EQ(CurrentParticleStats().ObjectCount, 1);
    EXPECT_EQ(CurrentParticleStats().Objects[0].Pixels, 1u);
    EXPECT_EQ(CurrentParticleStats().Objects[0].Perimeter, 0.0);
    char texts[5][TV_PARTICLE_DESC_TEXT];
    EXPECT_EQ(dl_ParticleSttsGetDesc(1, texts), 1);
    EXPECT_STREQ(texts[0], "  1)");
    EXPECT_STREQ(texts[1], "    400.00");   // 20 by 20 nm pixels
    EXPECT_STREQ(texts[2], "       1");
    EXPECT_STREQ(texts[3], "     0.000");
    EXPECT_STREQ(texts[4], "     0.000");   // no perimeter: shape 0
}

TEST_F(ParticleTest, AllObjectImageIsOneObjectWithSRatioOneAndNoPerimeter)
{
    StartOn({"########", "########", "########", "########"}, 4, 320.0f, 80.0f);
    ASSERT_EQ(CurrentParticleStats().ObjectCount, 1);
    EXPECT_EQ(CurrentParticleStats().Objects[0].Pixels, 32u);
    EXPECT_EQ(CurrentParticleStats().Objects[0].Perimeter, 0.0);
    EXPECT_STREQ(stts.SummaryLines[4], "S Ratio : 1.000");
    EXPECT_STREQ(stts.SummaryLines[3], "No of particles : 1");
    EXPECT_EQ(std::string(stts.SummaryLines[2]), "Mean perimeter : 0.000nm");
}

TEST_F(ParticleTest, IsolateWithOneRemovesSinglePixelsOnly)
{
    ImageHeaderType* bilevel = StartOn({
        "#.......#",
        "...##....",
        ".........",
        "..#..###.",
        "#....###.",
    });
    ASSERT_EQ(CurrentParticleStats().ObjectCount, 6);
    host.entryAnswers.push_back("1");
    EXPECT_EQ(dl_IsolateBilevelImage(), 2);
    EXPECT_EQ(Pixels(bilevel), GridOf({
                                  ".........",
                                  "...##....",
                                  ".........",
                                  ".....###.",
                                  ".....###.",
                              }));
    EXPECT_EQ(LastHistoryCode(bilevel), kIsolateCode);
    EXPECT_TRUE(LogHas("Isolate 4 particles from 'Grains'\n"));
    const auto entries = host.Calls("ap_EnterInteger");
    ASSERT_EQ(entries.size(), 1u);
    EXPECT_NE(entries[0].args.find("Enter smallest particle size/pixels : "), std::string::npos);
}

TEST_F(ParticleTest, ToggleConnectivityRecomputesNothingAndTheNextCommandUsesIt)
{
    StartOn({"......", ".##...", ".##...", "...##.", "...##.", "......"});
    EXPECT_EQ(dl_GetConnectivity(), 4);
    ASSERT_EQ(CurrentParticleStats().ObjectCount, 2);
    dl_ToggleConnectivity();
    EXPECT_TRUE(LogHas("Set connectivity to 8.\n"));
    EXPECT_EQ(dl_GetConnectivity(), 8);
    EXPECT_EQ(CurrentParticleStats().ObjectCount, 2);   // nothing measured again
    dl_GetParticleSttsParam(&stts, 0, 0);               // the next command: a refresh
    EXPECT_EQ(CurrentParticleStats().ObjectCount, 1);
    EXPECT_STREQ(stts.SummaryLines[3], "No of particles : 1");
    dl_ToggleConnectivity();
    EXPECT_TRUE(LogHas("Set connectivity to 4.\n"));
    EXPECT_EQ(dl_GetConnectivity(), 4);
}

TEST_F(ParticleTest, ErosionAtTheImageEdgeKeepsEdgeObjects)
{
    ImageHeaderType* bilevel = StartOn({
        "###.....",
        "###.....",
        "###.....",
        "###.....",
        "###..###",
        "###..###",
        "###..###",
        "###..###",
    });
    dl_ErodeBilevelImage();
    EXPECT_EQ(Pixels(bilevel), GridOf({
                                  "##......",
                                  "##......",
                                  "##......",
                                  "##......",
                                  "##......",
                                  "##....##",
                                  "##....##",
                                  "##....##",
                              }));
    EXPECT_EQ(LastHistoryCode(bilevel), kErodeCode);
    EXPECT_TRUE(LogHas("Dilate 'Grains'\n"));
}

TEST_F(ParticleTest, HistogramOfEqualValuesPutsAllInBinZero)
{
    StartOn({"#.#.#", ".....", "#...#"});
    ASSERT_EQ(CurrentParticleStats().ObjectCount, 5);
    dl_pb_DisplayParticleHist();
    auto p = Record();
    dl_GetParticleParam(p.get());
    EXPECT_STREQ(p->HistogramTitle, "Area");
    EXPECT_EQ(p->HistogramCounts[0], 5u);
    for (int i = 1; i < 256; ++i) EXPECT_EQ(p->HistogramCounts[i], 0u) << i;
    // 20 by 33.3 nm pixels: every label is the one value.
    EXPECT_STREQ(p->HistogramLabels[0], "666.7");
    EXPECT_STREQ(p->HistogramLabels[127], "666.7");
    EXPECT_STREQ(p->HistogramLabels[128], "");
}

// Readings.

TEST_F(ParticleTest, HistogramBinsAreStoredAsThreeBelowFourAndAtMost128)
{
    auto p = Record();
    p->HistogramBins = 2;
    dl_SetParticleParam(p.get());
    EXPECT_EQ(Particles().param.HistogramBins, 3);
    p->HistogramBins = 4;
    dl_SetParticleParam(p.get());
    EXPECT_EQ(Particles().param.HistogramBins, 4);
    p->HistogramBins = 500;
    dl_SetParticleParam(p.get());
    EXPECT_EQ(Particles().param.HistogramBins, 128);
}

TEST_F(ParticleTest, HistogramRoutineKeepsItsOwnGuardOf256Bins)
{
    // Areas 1 to 300 pixels in one row each: a record it did not store asks for 300 bins.
    std::vector<std::string> rows;
    for (int i = 1; i <= 300; ++i) {
        rows.push_back(std::string(static_cast<size_t>(i), '#') + std::string(static_cast<size_t>(301 - i), '.'));
        rows.push_back(std::string(301, '.'));
    }
    StartOn(rows, 4, 301.0f, 600.0f);
    ASSERT_EQ(CurrentParticleStats().ObjectCount, 300);
    Particles().param.HistogramBins = 300;
    dl_pb_DisplayParticleHist();
    const wint_ParticleParamType& p = Particles().param;
    uint32_t total = 0;
    for (uint32_t c : p.HistogramCounts) total += c;
    EXPECT_EQ(total, 300u);
    // 256 bins over 1 .. 300: bin = trunc((a - 1) * 0.9999 / 299 * 255).
    EXPECT_EQ(p.HistogramCounts[0], 2u);     // areas 1 and 2
    EXPECT_EQ(p.HistogramCounts[254], 2u);   // areas 299 and 300
    EXPECT_EQ(p.HistogramCounts[255], 0u);   // the formula's largest bin is B - 2
    EXPECT_STREQ(p.HistogramLabels[255], "298.8");   // 255 * 299 / 256 + 1
}

TEST_F(ParticleTest, HistogramBinsOfPerimeterAndShapeWithTheirTitles)
{
    StartOn(kSquares, 4, 100.0f, 60.0f);
    auto p = Record();
    dl_GetParticleParam(p.get());
    p->HistogramKind = TV_PARTICLE_HIST_PERIMETER;
    p->HistogramBins = 4;
    dl_SetParticleParam(p.get());
    dl_pb_DisplayParticleHist();
    const wint_ParticleParamType& r = Particles().param;
    EXPECT_STREQ(r.HistogramTitle, "Perimeter");
    // Perimeters 0 (one pixel), 30 (2 by 2 of 10 nm), 70 (3 by 3): bins trunc(v * 0.9999 / 70 * 3).
    EXPECT_EQ(r.HistogramCounts[0], 1u);
    EXPECT_EQ(r.HistogramCounts[1], 1u);
    EXPECT_EQ(r.HistogramCounts[2], 1u);
    EXPECT_EQ(r.HistogramCounts[3], 0u);
    EXPECT_STREQ(r.HistogramLabels[1], "17.5");
    p->HistogramKind = TV_PARTICLE_HIST_SHAPE;
    dl_SetParticleParam(p.get());
    dl_pb_DisplayParticleHist();
    EXPECT_STREQ(Particles().param.HistogramTitle, "Shape");
}

TEST_F(ParticleTest, SummaryLinesInTheUnitOfTheSmallerSide)
{
    // 10 by 6 pixels over 5000 by 3000 nm: the scale is um (3000 nm), pixels 0.5 um square.
    AddRows(kSquares, 5000.0f, 3000.0f);
    Start();
    ASSERT_EQ(CurrentParticleStats().ObjectCount, 3);
    const std::string square = std::string("um") + AreaUnits();
    // Areas 4, 9, 1 pixels of 0.25 um^2: mean 1.167, total 3.50.
    EXPECT_EQ(std::string(stts.SummaryLines[0]), "Mean area : 1.17" + square);
    EXPECT_EQ(std::string(stts.SummaryLines[1]), "Total area : 3.50" + square);
    // Perimeters 1.5 and 3.5 um and 0: mean 1.67.
    EXPECT_EQ(std::string(stts.SummaryLines[2]), "Mean perimeter : 1.67um");
    EXPECT_STREQ(stts.SummaryLines[3], "No of particles : 3");
    EXPECT_STREQ(stts.SummaryLines[4], "S Ratio : 0.233");
}

TEST_F(ParticleTest, SummaryLinesStayWhenThereAreNoObjects)
{
    StartOn(kSquares);
    const std::string before = stts.SummaryLines[3];
    // Every object removed with the pointer: a refresh finds none.
    ImageHeaderType* bilevel = ParticleBilevelItem();
    std::fill(bilevel->PixData, bilevel->PixData + 60, uint16_t{0});
    dl_GetParticleSttsParam(&stts, 0, 0);
    EXPECT_EQ(CurrentParticleStats().ObjectCount, 0);
    EXPECT_EQ(std::string(stts.SummaryLines[3]), before);
    char texts[5][TV_PARTICLE_DESC_TEXT];
    EXPECT_EQ(dl_ParticleSttsGetDesc(1, texts), 4);
}

TEST_F(ParticleTest, MakeBilevelAddsCode110ToTheSourceAndLeavesItCurrent)
{
    ImageHeaderType* source = AddImage(4, 2, [](int x, int) { return static_cast<uint16_t>(x * 20000); }, "Topo");
    // Levels of the codes through the source's table: 0, 78, 156, 234; the band 70..160.
    ImageHeaderType* bilevel = Start(70, 160);
    ASSERT_NE(bilevel, nullptr);
    EXPECT_EQ(CurrentItem, source);
    EXPECT_EQ(source->Next, bilevel);
    EXPECT_EQ(LastHistoryCode(source), kBilevelCode);
    EXPECT_EQ(LastHistoryCode(bilevel), 0);
    EXPECT_TRUE(LogHas("Generate Bilevel Image 'Topo'\n"));
    EXPECT_EQ(Pixels(bilevel), (std::vector<uint16_t>{0, 65535, 65535, 0, 0, 65535, 65535, 0}));
    for (int i = 0; i < 256; ++i) EXPECT_EQ(bilevel->ImageLUT[i], i);
}

TEST_F(ParticleTest, MakeBilevelReadsLevelsThroughTheSourceTable)
{
    ImageHeaderType* source = AddImage(4, 1, [](int x, int) { return static_cast<uint16_t>(x * 20000); });
    for (int i = 0; i < 256; ++i) source->ImageLUT[i] = static_cast<uint8_t>(255 - i);
    ImageHeaderType* bilevel = Start(0, 100);   // levels 255, 177, 99, 21
    ASSERT_NE(bilevel, nullptr);
    EXPECT_EQ(Pixels(bilevel), (std::vector<uint16_t>{0, 0, 65535, 65535}));
}

TEST_F(ParticleTest, BilevelTestReportsOnceAndRemembersTheItem)
{
    ImageHeaderType* item = AddImage(3, 1, [](int x, int) { return static_cast<uint16_t>(x == 1 ? 7 : 0); });
    EXPECT_FALSE(IsBilevel(item, true));
    EXPECT_TRUE(ErrorShown("Image not bilevel"));
    host.messageBoxes.clear();
    EXPECT_FALSE(IsBilevel(item, true));   // remembered: no second message
    EXPECT_TRUE(host.messageBoxes.empty());
    ImageHeaderType* good = AddImage(3, 1, [](int x, int) { return static_cast<uint16_t>(x == 1 ? 65535 : 0); });
    EXPECT_TRUE(IsBilevel(good, true));
    EXPECT_TRUE(host.messageBoxes.empty());
    // Codes changed in place are seen after the remembered result is dropped.
    EXPECT_FALSE(IsBilevel(item, false));
    item->PixData[1] = 65535;
    EXPECT_FALSE(IsBilevel(item, false));
    ForgetBilevelTest();
    EXPECT_TRUE(IsBilevel(item, false));
}

TEST_F(ParticleTest, BandPageViewsButtonsAndScale)
{
    ImageHeaderType* source = AddImage(512, 512, [](int x, int) { return static_cast<uint16_t>(x * 128); });
    source->DataScale = 1.0f;
    auto p = Record();
    p->Initialise = 1;
    EXPECT_EQ(dl_GetParticleParam(p.get()), 4);
    EXPECT_EQ(p->Initialise, 0);
    EXPECT_EQ(p->HistogramBins, 128);
    // No bilevel item yet: all buttons but the second disabled, and the second of MoreStates.
    for (int i = 0; i < 9; ++i) EXPECT_EQ(p->ButtonStates[i], i == 1 ? 1u : 2u) << i;
    EXPECT_EQ(p->MoreStates[0], 1u);
    EXPECT_EQ(p->MoreStates[1], 2u);
    EXPECT_EQ(p->MoreStates[2], 1u);
    // Grid point x gives pixel 511 * x / 255, level (pixel * 128) >> 8.
    EXPECT_EQ(p->SourceView[0], 0);
    EXPECT_EQ(p->SourceView[100], (511 * 100 / 255 * 128) >> 8);
    EXPECT_EQ(p->SourceView[255 * 256 + 255], 255);
    EXPECT_EQ(std::memcmp(p->SourceLUT, source->ImageLUT, 256), 0);
    // The preview of the band 100..200.
    p->LowLevel = 100;
    p->HighLevel = 200;
    dl_SetParticleParam(p.get());
    dl_GetParticleParam(p.get());
    for (int x : {0, 100, 199, 200, 201, 255}) {
        const int level = (511 * x / 255 * 128) >> 8;
        EXPECT_EQ(p->BilevelView[x], level >= 100 && level <= 200 ? 255 : 0) << x;
    }
    // With the bilevel item: its levels, and only the third of MoreStates disabled.
    dl_GetParticleSttsParam(&stts, 1, 0);
    dl_GetParticleParam(p.get());
    for (int i = 0; i < 9; ++i) EXPECT_EQ(p->ButtonStates[i], 1u);
    EXPECT_EQ(p->MoreStates[2], 2u);
    EXPECT_EQ(p->BilevelView[100], 255);
    EXPECT_EQ(p->BilevelView[0], 0);
}

TEST_F(ParticleTest, ScaleTextsAndRangeInTheUnitThatFitsTheRange)
{
    ImageHeaderType* source = AddFlatImage(8, 0);
    source->SPMData = 1;
    source->DataSource = 1;   // heights: codes over 0 .. 4000 nm
    source->Zlo = 0.0f;
    source->Zhi = 4000.0f;
    auto p = Record();
    p->Initialise = 1;
    dl_GetParticleParam(p.get());
    EXPECT_STREQ(p->ZUnit, "um");
    EXPECT_NEAR(p->ZHigh - p->ZLow, 4.0, 1e-3);
    EXPECT_STREQ(p->ScaleTexts[2], "2.00");
}

TEST_F(ParticleTest, ChangingTheBandErasesTheBilevelItem)
{
    AddRows(kSquares);
    ImageHeaderType* bilevel = Start();
    ASSERT_NE(bilevel, nullptr);
    const int items = CountItems();
    dl_GetParticleSttsParam(&stts, 0, 1);
    auto p = Record();
    dl_GetParticleParam(p.get());   // same band: kept
    EXPECT_EQ(ParticleBilevelItem(), bilevel);
    p->LowLevel = 10;
    dl_SetParticleParam(p.get());
    dl_GetParticleParam(p.get());
    EXPECT_EQ(ParticleBilevelItem(), nullptr);
    EXPECT_EQ(CountItems(), items - 1);
    EXPECT_EQ(p->MoreStates[1], 2u);
}

TEST_F(ParticleTest, StatisticsPageOpensRefreshesAndCloses)
{
    ImageHeaderType* source = AddRows(kSquares);
    dl_GetParticleSttsParam(&stts, 0, 0);   // not started, no init: nothing
    dl_GetParticleSttsParam(&stts, 0, 1);   // fin when not started: nothing
    EXPECT_EQ(CountItems(), 1);
    Start();
    EXPECT_EQ(CountItems(), 2);
    EXPECT_EQ(CurrentItem, source);
    EXPECT_EQ(CurrentParticleStats().ObjectCount, 3);
    dl_GetParticleSttsParam(&stts, 0, 1);
    EXPECT_EQ(CurrentParticleStats().ObjectCount, 0);
    dl_GetParticleSttsParam(&stts, 0, 0);   // closed: a refresh does nothing
    EXPECT_EQ(CurrentParticleStats().ObjectCount, 0);
}

TEST_F(ParticleTest, ListRowsSortAndTheSelectedObjectStays)
{
    StartOn(kSquares);
    char texts[5][TV_PARTICLE_DESC_TEXT];
    // Detection order: the 2 by 2 square (row 1), the 3 by 3 (row 2), the pixel (row 4).
    EXPECT_EQ(dl_ParticleSttsGetDesc(1, texts), 1);   // nothing selected: row 1
    EXPECT_STREQ(texts[2], "       4");
    EXPECT_EQ(dl_ParticleSttsGetDesc(2, texts), 2);
    EXPECT_EQ(dl_ParticleSttsGetDesc(3, texts), 2);
    EXPECT_EQ(dl_ParticleSttsGetDesc(4, texts), 4);
    EXPECT_EQ(dl_ParticleSttsGetDesc(0, texts), 4);
    // Choose row 2 (the 3 by 3 square) and sort by area: it stays selected, now row 3.
    stts.SelectedRow = 2;
    stts.SortKey = TV_PARTICLE_SORT_AREA;
    dl_SetParticleSttsParam(&stts);
    dl_GetParticleSttsParam(&stts, 0, 0);
    EXPECT_EQ(dl_ParticleSttsGetDesc(1, texts), 2);
    EXPECT_STREQ(texts[2], "       1");
    EXPECT_EQ(dl_ParticleSttsGetDesc(3, texts), 1);
    EXPECT_STREQ(texts[2], "       9");
    // Its box x 6..8, y 2..4 in the 0 to 255 square of a 10 by 6 image.
    EXPECT_EQ(stts.SelectedRect[0], 6 * 255 / 9);
    EXPECT_EQ(stts.SelectedRect[1], 2 * 255 / 5);
    EXPECT_EQ(stts.SelectedRect[2], 8 * 255 / 9);
    EXPECT_EQ(stts.SelectedRect[3], 4 * 255 / 5);
    EXPECT_EQ(stts.SelectedColour, 0xFFFF00u);
    // Key 1 puts the list back into detection order.
    stts.SortKey = TV_PARTICLE_SORT_NONE;
    stts.SelectedRow = 3;
    dl_SetParticleSttsParam(&stts);
    EXPECT_EQ(dl_ParticleSttsGetDesc(2, texts), 1);
    EXPECT_STREQ(texts[2], "       9");
}

TEST_F(ParticleTest, NoSelectionWithoutABilevelItem)
{
    stts.SelectedRow = 1;
    stts.SelectedColour = 0xFFFF00;
    stts.SelectedRect[2] = 40;
    dl_SetParticleSttsParam(&stts);
    wint_ParticleSttsParamType out{};
    dl_GetParticleSttsParam(&out, 0, 0);
    EXPECT_EQ(out.SelectedColour, 0u);
    EXPECT_EQ(out.SelectedRect[2], 0);
    EXPECT_EQ(SelectedParticle(), -1);
}

TEST_F(ParticleTest, DilationInPlaceWithStatisticsOneStepBehind)
{
    ImageHeaderType* bilevel = StartOn({".....", ".#...", ".....", "...#.", "....."});
    const int items = CountItems();
    ASSERT_EQ(CurrentParticleStats().ObjectCount, 2);
    dl_DilateBilevelImage();
    EXPECT_EQ(CountItems(), items);   // in place, no new item
    EXPECT_EQ(Pixels(bilevel), GridOf({".#...", "###..", ".#.#.", "..###", "...#."}));
    EXPECT_EQ(LastHistoryCode(bilevel), kDilateCode);
    EXPECT_TRUE(LogHas("Dilate 'Grains'\n"));
    // The statistics were taken before the new codes went in: two one-pixel objects.
    ASSERT_EQ(CurrentParticleStats().ObjectCount, 2);
    EXPECT_EQ(CurrentParticleStats().Objects[0].Pixels, 1u);
    dl_GetParticleSttsParam(&stts, 0, 0);
    // The two crosses touch only at corners: still two objects with 4-connectivity.
    ASSERT_EQ(CurrentParticleStats().ObjectCount, 2);
    EXPECT_EQ(CurrentParticleStats().Objects[0].Pixels, 5u);
}

TEST_F(ParticleTest, IsolateRefusesSizesBelowOneAndCancelChangesNothing)
{
    ImageHeaderType* bilevel = StartOn(kSquares);
    const std::vector<uint16_t> before = Pixels(bilevel);
    host.entryAnswers.push_back("0");
    EXPECT_EQ(dl_IsolateBilevelImage(), 3);
    EXPECT_TRUE(ErrorShown("Invalid data entry"));
    EXPECT_EQ(Pixels(bilevel), before);
    EXPECT_EQ(dl_IsolateBilevelImage(), 3);   // no answer: cancelled
    EXPECT_EQ(Pixels(bilevel), before);
    EXPECT_EQ(LastHistoryCode(bilevel), 0);
}

TEST_F(ParticleTest, CommandsWithoutABilevelItemReport33536)
{
    AddRows(kSquares);
    dl_ErodeBilevelImage();
    dl_DilateBilevelImage();
    EXPECT_EQ(dl_IsolateBilevelImage(), 0);
    dl_ShootObjects();
    dl_pb_ParticleSttsChoose();
    EXPECT_EQ(dl_WriteObjectStatistics(Path("s.txt").c_str()), 0);
    int shown = 0;
    for (const auto& box : host.messageBoxes) shown += box.text == "No images in memory";
    EXPECT_EQ(shown, 6);
    EXPECT_EQ(host.Count("ap_ShowPanel"), 0);
}

TEST_F(ParticleTest, ShootRemovesTheObjectUnderThePointer)
{
    ImageHeaderType* bilevel = StartOn(kSquares);
    dl_ShootObjects();
    const auto panels = host.Calls("ap_ShowPanel");
    ASSERT_EQ(panels.size(), 1u);
    EXPECT_EQ(panels[0].args, "18 2");
    // (7, 3) of 10 by 6: x = 7 * 255 / 9 rounds up to 199, pixel 9 * 199 / 255 = 7.
    EXPECT_EQ(dl_ParticlePointer_Callback(18, 199, 153, 0), 1);   // button up: nothing
    EXPECT_EQ(CurrentParticleStats().ObjectCount, 3);
    EXPECT_EQ(dl_ParticlePointer_Callback(18, 199, 153, 1), 0);
    EXPECT_EQ(CurrentParticleStats().ObjectCount, 2);
    EXPECT_EQ(Pixels(bilevel), GridOf({"..........", ".##.......", ".##.......", "..........", "#.........",
                                      ".........."}));
    // Background under the pointer.
    EXPECT_EQ(dl_ParticlePointer_Callback(18, 255, 0, 1), 0);
    EXPECT_TRUE(ErrorShown("No particles in image"));
}

TEST_F(ParticleTest, ChooseSelectsTheFirstObjectWhoseBoxHoldsThePointer)
{
    StartOn(kSquares);
    dl_pb_ParticleSttsChoose();
    const auto panels = host.Calls("ap_ShowPanel");
    ASSERT_EQ(panels.size(), 1u);
    EXPECT_EQ(panels[0].args, "26 2");
    EXPECT_EQ(dl_ParticlePointer_Callback(26, 199, 153, 1), 0);
    EXPECT_EQ(SelectedParticle(), 1);
    // The statistics gone (page closed): the object is not found.
    dl_GetParticleSttsParam(&stts, 0, 1);
    EXPECT_EQ(dl_ParticlePointer_Callback(26, 199, 153, 1), 0);
    EXPECT_TRUE(LogHasProgramError("DoChooseObject - not found"));
}

TEST_F(ParticleTest, PointerCallbackOfAnotherHandleIsAProgramError)
{
    StartOn(kSquares);
    EXPECT_EQ(dl_ParticlePointer_Callback(5, 0, 0, 1), 0);
    EXPECT_TRUE(LogHasProgramError("dl_ParticlePointer_Callback_handle=5"));
}

int32_t g_inner = -7;

TEST_F(ParticleTest, PointerCallbackReenteredAnswersOneAtOnce)
{
    StartOn(kSquares);
    // The host repaints while the shot item is shown again, and its repaint calls back into
    // the pointer callback.
    const ap_UpdateVFSFn saved = Ap.ap_UpdateVFS;
    Ap.ap_UpdateVFS = [](uint16_t, uint16_t, uint16_t, uint16_t) {
        g_inner = dl_ParticlePointer_Callback(18, 0, 204, 1);   // the one-pixel object
    };
    EXPECT_EQ(dl_ParticlePointer_Callback(18, 199, 153, 1), 0);
    Ap.ap_UpdateVFS = saved;
    EXPECT_EQ(g_inner, 1);
    EXPECT_EQ(CurrentParticleStats().ObjectCount, 2);   // the outer shot only
}

TEST_F(ParticleTest, TraceOnlyEntryPointsAndTheGenerateProgramError)
{
    dl_GetObjectStatistics();
    dl_CompileObjectStatistics();
    dl_StatisticsHistogram();
    EXPECT_FALSE(LogHasProgramErrors());
    dl_GenerateBilevelImage();
    EXPECT_TRUE(LogHasProgramError("Should not execute dl_GenerateBilevelImage()"));
}

TEST_F(ParticleTest, CharPointerVariantOfTheListRowAnswersZero)
{
    StartOn(kSquares);
    char text[8] = "x";
    EXPECT_EQ(dl_ParticleSttsGetDesc(1, text), 0);
    EXPECT_STREQ(text, "x");
}

} // namespace
