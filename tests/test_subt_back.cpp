// The background tool: each method's edge cases through the tool's own runs, and the dialog
// protocol as a host drives it - open, set, update, apply or leave - with a host that opens
// the second frame store when asked.
#include "test_frame_support.h"

#include "tavrin/dl_background.h"
#include "files/sample_data.h"
#include "image/background_methods.h"
#include "image/subt_back.h"
#include "store/history.h"

#include <cmath>
#include <cstring>
#include <random>
#include <vector>

namespace {

TestFrameStore* g_second = nullptr;

void OpenSecond(const char* title)
{
    TestHost::Current()->Record("ap_OpenGraphWindow", title ? title : "");
    if (g_second && !g_second->open) g_second->Open(5);
}
void CloseSecond()
{
    TestHost::Current()->Record("ap_CloseGraphWindow", "");
    if (g_second && g_second->open) g_second->Close();
}

class SubtBackTest : public FrameStoreTest {
protected:
    void SetUp() override
    {
        LibraryTest::SetUp();
        ApCallbackFunctionTableType table = host.Table();
        table.ap_OpenGraphWindow = OpenSecond;
        table.ap_CloseGraphWindow = CloseSecond;
        wint_DLLInitialiseType record{};
        std::snprintf(record.CmdLine, sizeof record.CmdLine, "tavrin.exe");
        ASSERT_EQ(dl_Initialise(&table, &record), 0);
        g_second = &second;
        ASSERT_EQ(main.Open(1), 0);
        host.ClearCalls();
    }
    void TearDown() override
    {
        g_second = nullptr;
        FrameStoreTest::TearDown();
    }

    static int ListLength()
    {
        int n = 0;
        for (ImageHeaderType* i = FirstItem; i; i = i->Next) ++n;
        return n;
    }
    // Applies `p` to the current image through the host's calls; answers the new item.
    ImageHeaderType* ApplyWith(const wint_SubtBckgrndParamType& p)
    {
        wint_SubtBckgrndParamType r;
        dl_GetSubtBckgrndParam(&r, 0);
        dl_SubtBackUpdateImageDisplay(dl_SetSubtBckgrndParam(&p));
        dl_GetSubtBckgrndParam(&r, TV_SUBT_APPLY);
        return CurrentItem;
    }
    static wint_SubtBckgrndParamType Params(uint32_t method)
    {
        wint_SubtBckgrndParamType p = DefaultSubtBckgrndParam();
        p.Method = method;
        return p;
    }

    TestFrameStore main, second;
};

} // namespace

TEST_F(SubtBackTest, RecordDefaultsAndClipping)
{
    wint_SubtBckgrndParamType p{};
    AddFlatImage(16, 100);
    dl_GetSubtBckgrndParam(&p, 0);
    EXPECT_EQ(p.Method, 8u);
    EXPECT_EQ(p.DegreeX, 1);
    EXPECT_EQ(p.PolyOrder, 1);
    EXPECT_EQ(p.PlanePoints[0], 170);
    EXPECT_EQ(p.PlanePoints[5], 170);
    EXPECT_EQ(p.RegionPoints[1], 448);
    EXPECT_EQ(p.HighThreshold, 65535);
    p.DegreeX = 40;
    p.PolyOrder = -3;
    p.LowThreshold = 900;
    p.HighThreshold = 100;
    p.ManualSlopeX = 100000;
    EXPECT_EQ(dl_SetSubtBckgrndParam(&p), TV_SUBT_THRESHOLDS | TV_SUBT_RESULT);
    wint_SubtBckgrndParamType q{};
    dl_GetSubtBckgrndParam(&q, 0);
    EXPECT_EQ(q.DegreeX, 19);
    EXPECT_EQ(q.PolyOrder, 0);
    EXPECT_EQ(q.LowThreshold, 100);
    EXPECT_EQ(q.HighThreshold, 900);
    EXPECT_EQ(q.ManualSlopeX, 65535);
    // The same record again: nothing changed. A byte that is no threshold: bit 1 only.
    EXPECT_EQ(dl_SetSubtBckgrndParam(&q), 0u);
    q.ShowBackground = 1;
    EXPECT_EQ(dl_SetSubtBckgrndParam(&q), TV_SUBT_RESULT);
    q.UseThreshold = 1;
    EXPECT_EQ(dl_SetSubtBckgrndParam(&q), TV_SUBT_THRESHOLDS | TV_SUBT_RESULT);
    dl_GetSubtBckgrndParam(&q, 1);
}

TEST_F(SubtBackTest, SetOnAClosedToolIsAProgramError)
{
    wint_SubtBckgrndParamType p = DefaultSubtBckgrndParam();
    EXPECT_EQ(dl_SetSubtBckgrndParam(&p), 0u);
    EXPECT_TRUE(LogHasProgramError("dl_SetSubtBckgrndParam not initialised"));
}

TEST_F(SubtBackTest, OpeningWithoutAnImageStaysClosed)
{
    wint_SubtBckgrndParamType p{};
    dl_GetSubtBckgrndParam(&p, 0);
    EXPECT_FALSE(SubtBack().IsOpen());
    EXPECT_TRUE(LogHas("CSubtBack Initialise -1 -1 -1 0. Ptrs"));
    EXPECT_EQ(p.Method, 8u);   // the record is filled all the same
}

TEST_F(SubtBackTest, LeavingChangesNoListAndLeaksNothing)
{
    ImageHeaderType* source = AddImage(64, 48, [](int x, int y) { return static_cast<uint16_t>(1000 + 30 * x + 11 * y); });
    const int items = ListLength();
    const auto codes = Pixels(source);
    wint_SubtBckgrndParamType p{};
    // A first use leaves the preview's drawing in the source store's display list; from then
    // on each use must give back every block it takes.
    dl_GetSubtBckgrndParam(&p, 0);
    dl_GetSubtBckgrndParam(&p, 1);
    const size_t blocks = LiveBlockCount();
    host.ClearCalls();
    dl_GetSubtBckgrndParam(&p, 0);
    ASSERT_TRUE(SubtBack().IsOpen());
    EXPECT_EQ(host.Count("ap_OpenGraphWindow"), 1);
    EXPECT_EQ(host.Calls("ap_OpenGraphWindow")[0].args, "Subtract Background (normalised)");
    EXPECT_TRUE(second.open);
    EXPECT_EQ(CurrentVFS->VFSNo, 1);   // the source store stays current
    p.Method = TV_SUBT_LINES;
    p.ShowBackground = 1;
    dl_SubtBackUpdateImageDisplay(dl_SetSubtBckgrndParam(&p));
    dl_GetSubtBckgrndParam(&p, 2);
    EXPECT_FALSE(SubtBack().IsOpen());
    EXPECT_FALSE(second.open);
    EXPECT_EQ(ListLength(), items);
    EXPECT_EQ(CurrentItem, source);
    EXPECT_EQ(Pixels(source), codes);
    EXPECT_EQ(LiveBlockCount(), blocks);
    EXPECT_EQ(SubtBack().Param.Method, static_cast<uint32_t>(TV_SUBT_LINES));   // kept for the next use
}

TEST_F(SubtBackTest, PreviewShowsThresholdsAndResultInTheSecondStore)
{
    AddImage(512, 512, [](int x, int) { return static_cast<uint16_t>(x * 128); });
    wint_SubtBckgrndParamType p{};
    dl_GetSubtBckgrndParam(&p, 0);
    p.Method = TV_SUBT_OFFSETS;
    p.UseThreshold = 1;
    p.LowThreshold = 8000;
    p.HighThreshold = 50000;
    dl_SubtBackUpdateImageDisplay(dl_SetSubtBckgrndParam(&p));
    const ImageHeaderType* preview = SubtBack().PreviewItem;
    EXPECT_EQ(preview->PixData[10], 0);        // 1280 below the low threshold
    EXPECT_EQ(preview->PixData[100], 12800);
    EXPECT_EQ(preview->PixData[500], 65535);   // 64000 above the high one
    // In the source store the outside codes take colour indices 35 and 162, blue and red.
    const int top = FindVFS(1)->State.ImageTop;
    EXPECT_EQ(main.Index(10, top + 5), 35);
    EXPECT_EQ(main.Index(500, top + 5), 162);
    const auto& t = SubtBack().ThresholdColours;
    EXPECT_EQ(t[2][35], 255);   // entry 1 is blue
    EXPECT_EQ(t[0][35], 0);
    EXPECT_EQ(t[0][162], 255);  // entry 4 is red
    EXPECT_EQ(t[2][162], 0);
    EXPECT_EQ(t[0][200], 0);    // above the band: 0
    // The second store holds the offsets result: row minus its smallest code, stretched.
    EXPECT_EQ(SubtBack().ResultItem->PixData[511], 65535);
    EXPECT_NE(second.Index(400, 10), second.Index(10, 10));
    dl_GetSubtBckgrndParam(&p, 1);
}

TEST_F(SubtBackTest, ApplyMakesOneItemWithHistoryAndLog)
{
    struct Case {
        uint32_t method;
        int code;
        const char* log;
    };
    const Case cases[] = {
        {3, 117, "Subtract offsets from 'Scan'\n"},
        {4, 114, "Subtract polynomial X^1 background from 'Scan'\n"},
        {5, 115, "Subtract polynomial Y^1 background from 'Scan'\n"},
        {6, 118, "Subtract line averaging background from 'Scan'\n"},
        {7, 120, "Subtract 3 point plane (170,341) (341,341) (256,170) from 'Scan'\n"},
        {8, 119, "Subtract polynomial surface X^1 Y^1 background from 'Scan'\n"},
        {9, 121, "Subtract manual plane (0,0) from 'Scan'\n"},
    };
    for (const Case& c : cases) {
        ImageHeaderType* source = AddImage(40, 30, [](int x, int y) { return static_cast<uint16_t>(2000 + 90 * x + 40 * y + x * y); }, "Scan");
        const int items = ListLength();
        ImageHeaderType* result = ApplyWith(Params(c.method));
        ASSERT_NE(result, source) << c.method;
        EXPECT_EQ(result->Prev, source);
        EXPECT_EQ(ListLength(), items + 1);
        EXPECT_EQ(LastHistoryCode(result), c.code);
        EXPECT_TRUE(LogHas(c.log)) << c.log;
    }
}

TEST_F(SubtBackTest, UnknownMethodIsReportedOnApplyAndClearsThePreview)
{
    AddImage(32, 32, [](int x, int) { return static_cast<uint16_t>(1000 + 100 * x); });
    const int items = ListLength();
    wint_SubtBckgrndParamType p{};
    dl_GetSubtBckgrndParam(&p, 0);
    p.Method = 12;
    dl_SubtBackUpdateImageDisplay(dl_SetSubtBckgrndParam(&p));
    EXPECT_EQ(second.Index(5, 5), 0);   // cleared
    dl_GetSubtBckgrndParam(&p, TV_SUBT_APPLY);
    EXPECT_TRUE(LogHasProgramError("Suibtrack background e=12"));
    EXPECT_EQ(ListLength(), items);
}

TEST_F(SubtBackTest, FlatImageGivesZerosAndNoDataScale)
{
    for (uint32_t method : {3u, 4u, 5u, 6u}) {
        ImageHeaderType* source = AddFlatImage(24, 700);
        source->DataScale = 2.0f;
        ImageHeaderType* result = ApplyWith(Params(method));
        ASSERT_NE(result, source);
        EXPECT_EQ(result->DataScale, 0.0f) << method;
        const auto codes = Pixels(result);
        EXPECT_EQ(*std::max_element(codes.begin(), codes.end()), 0) << method;
    }
    // The 3 point plane solves for a = b = 0, c = 100 in double; rounding can leave c a hair
    // below 100, and the truncation of the plane's values then takes one code off some pixels:
    // the differences span at most one code.
    {
        ImageHeaderType* flat = AddFlatImage(24, 700);
        flat->DataScale = 1.0f;
        ImageHeaderType* plane = ApplyWith(Params(7));
        EXPECT_LE(plane->DataScale * 65535.0f, 1.0001f);
    }
    // The surface leaves DataScale alone; with degree (0, 0) the flat image is its own mean.
    ImageHeaderType* source = AddFlatImage(24, 700);
    source->DataScale = 2.0f;
    wint_SubtBckgrndParamType p = Params(8);
    p.DegreeX = p.DegreeY = 0;
    ImageHeaderType* result = ApplyWith(p);
    EXPECT_EQ(result->DataScale, 2.0f);
    for (uint16_t v : Pixels(result)) ASSERT_EQ(v, 0);
}

TEST_F(SubtBackTest, SurfaceDegreeZeroIgnoresThresholdsAndRegion)
{
    const wint_SubtBckgrndParamType base = [] {
        wint_SubtBckgrndParamType p = DefaultSubtBckgrndParam();
        p.DegreeX = p.DegreeY = 0;
        p.UseThreshold = 1;
        p.LowThreshold = 5000;
        p.HighThreshold = 6000;
        p.UseRegion = 1;
        return p;
    }();
    for (bool apply : {false, true}) {
        const SurfaceOptions o = PolySurfaceOptions(base, apply);
        EXPECT_EQ(o.low, 0);
        EXPECT_EQ(o.high, 65535);
        EXPECT_FALSE(o.region);
    }
    // With a degree, a threshold left in the record acts on apply only unless UseThreshold.
    wint_SubtBckgrndParamType p = base;
    p.DegreeX = 1;
    p.UseThreshold = 0;
    EXPECT_EQ(PolySurfaceOptions(p, false).low, 0);
    EXPECT_EQ(PolySurfaceOptions(p, true).low, 5000);
    EXPECT_TRUE(PolySurfaceOptions(p, true).region);
    p.DegreeY = 3;
    EXPECT_FALSE(PolySurfaceOptions(p, true).region);   // degree 3 ignores the region
}

TEST_F(SubtBackTest, RegionOverlayFollowsTheRecord)
{
    AddImage(64, 64, [](int x, int y) { return static_cast<uint16_t>(1000 + 40 * x + 9 * y); });
    wint_SubtBckgrndParamType p{};
    dl_GetSubtBckgrndParam(&p, 0);
    EXPECT_EQ(host.Count("ShowRegionOverlay"), 0);
    p.UseRegion = 1;
    dl_SetSubtBckgrndParam(&p);
    dl_GetSubtBckgrndParam(&p, 0);
    ASSERT_EQ(host.Count("ShowRegionOverlay"), 1);
    // A (64, 448), B (448, 448), C (64, 64): |AB| 384 at 0 degrees, |AC| 384 at -90.
    EXPECT_EQ(host.Calls("ShowRegionOverlay")[0].args, "1 0 64 448 384 384 0 -90");
    p.DegreeX = 3;   // degree 3: off
    dl_SetSubtBckgrndParam(&p);
    dl_GetSubtBckgrndParam(&p, 0);
    ASSERT_EQ(host.Count("ShowRegionOverlay"), 2);
    EXPECT_EQ(host.Calls("ShowRegionOverlay")[1].args.substr(0, 2), "0 ");
    p.DegreeX = 2;
    dl_SetSubtBckgrndParam(&p);
    dl_GetSubtBckgrndParam(&p, 0);
    dl_GetSubtBckgrndParam(&p, 1);   // finishing switches it off
    ASSERT_EQ(host.Count("ShowRegionOverlay"), 4);
    EXPECT_EQ(host.Calls("ShowRegionOverlay")[3].args.substr(0, 2), "0 ");
}

TEST_F(SubtBackTest, LineAveragingRowWithoutCodesInsideUsesAllCodes)
{
    // Row 0: codes 100 and 300 (none inside 1000..2000): corrected by their mean 200.
    // Row 1: 1500 inside, 9000 outside: corrected by 1500.
    ImageHeaderType* source = AddImage(2, 2, [](int x, int y) {
        static const uint16_t c[2][2] = {{100, 300}, {1500, 9000}};
        return c[y][x];
    });
    std::vector<uint8_t> scratch(2 * 2 * 8);
    ImageHeaderType* result = AddImage(2, 2, [](int, int) { return uint16_t{0}; });
    result->DataScale = 1.0f;
    ASSERT_EQ(SubtLineAveraging({source, result, nullptr, scratch.data()}, 1000, 2000), 0);
    // Differences: -100, 100, 0, 7500: stretched from -100 to 7500.
    const float f = 65535.0f / 7600.0f;
    EXPECT_EQ(result->PixData[0], 0);
    EXPECT_EQ(result->PixData[1], static_cast<uint16_t>(200.0f * f));
    EXPECT_EQ(result->PixData[2], static_cast<uint16_t>(100.0f * f));
    EXPECT_EQ(result->PixData[3], static_cast<uint16_t>(7600.0f * f));   // 65534: the f32 factor
    EXPECT_FLOAT_EQ(result->DataScale, 1.0f / f);
}

TEST_F(SubtBackTest, CollinearPlanePointsGiveZeroEverywhere)
{
    ImageHeaderType* source = AddImage(512, 512, [](int x, int y) { return static_cast<uint16_t>(100 * x + 3 * y); });
    wint_SubtBckgrndParamType p = Params(7);
    const int16_t line[6] = {0, 0, 100, 100, 200, 200};
    std::memcpy(reinterpret_cast<char*>(&p) + offsetof(wint_SubtBckgrndParamType, PlanePoints), line, sizeof line);
    ImageHeaderType* result = ApplyWith(p);
    ASSERT_NE(result, source);
    for (uint16_t v : Pixels(result)) ASSERT_EQ(v, 0);
}

TEST_F(SubtBackTest, ManualSlopeIsAddedAndTruncatedAfterTheAddition)
{
    ImageHeaderType* source = AddImage(512, 2, [](int, int) { return uint16_t{1000}; });
    std::vector<uint8_t> scratch(512 * 2 * 8);
    ImageHeaderType* result = AddImage(512, 2, [](int, int) { return uint16_t{0}; });
    ImageHeaderType* back = AddImage(512, 2, [](int, int) { return uint16_t{0}; });
    MemHandleType wide;
    ASSERT_TRUE(AllocateMem(512 * 2, 8, &wide));
    FreeMem(back->PixHandle, back->PixData);
    back->PixHandle = wide.Handle;
    back->PixData = static_cast<uint16_t*>(wide.Ptr);
    ASSERT_EQ(FitManualPlane({source, result, back, scratch.data()}, 100, 0), 0);
    // The right edge: 1000 + 511 * 100 / 512 = 1099.8..., truncated to 1099 after the addition.
    // The values run 1000..1099, so code = trunc((v - 1000) * 65535 / 99).
    const float f = 65535.0f / 99.0f;
    EXPECT_EQ(result->PixData[511], 65535);
    EXPECT_EQ(result->PixData[256], static_cast<uint16_t>(50.0f * f));   // 1000 + 50.0 exactly
    EXPECT_EQ(result->PixData[6], static_cast<uint16_t>(1.0f * f));      // 1001.17 -> 1001
    EXPECT_EQ(result->PixData[5], 0);                                     // 1000.97 -> 1000
    // The background is -v, truncated: 0 down to -99.
    EXPECT_EQ(back->PixData[0], 65535);
    EXPECT_EQ(back->PixData[511], 0);
}

TEST_F(SubtBackTest, PolyXAndPolyYTruncateDifferently)
{
    // Column means rise by 0.5 a column: X^1 fits f(x) = 0.5 x exactly; Y^1 on the transposed
    // image the same in y.
    ImageHeaderType* across = AddImage(8, 2, [](int x, int y) { return static_cast<uint16_t>(x / 2 + (y ? x % 2 : 0)); });
    std::vector<uint8_t> scratch(8 * 8 * 8);
    ImageHeaderType* r1 = AddImage(8, 2, [](int, int) { return uint16_t{0}; });
    ASSERT_EQ(NonLinearBackgroundY({across, r1, nullptr, scratch.data()}, 1, false), 0);
    // Row 1, x = 1: p = 1, f = 0.5 (mean of 0 and 1): trunc(1 - 0.5) = 0; x = 3: p = 2, f = 1.5: 0.
    ImageHeaderType* down = AddImage(2, 8, [](int x, int y) { return static_cast<uint16_t>(y / 2 + (x ? y % 2 : 0)); });
    ImageHeaderType* r2 = AddImage(2, 8, [](int, int) { return uint16_t{0}; });
    ASSERT_EQ(NonLinearBackgroundY({down, r2, nullptr, scratch.data()}, 1, true), 0);
    // Y^1: b = trunc(f(y)); row 1: f = 0.5 -> b = 0, p = 0 or 1: differences 0 and 1.
    // X^1: trunc(p - f): column 1: p 0 or 1, f 0.5: trunc(-0.5) = 0 and trunc(0.5) = 0.
    EXPECT_EQ(r1->PixData[1], r1->PixData[8 + 1]);   // X^1: both 0 after truncation
    EXPECT_NE(r2->PixData[2], r2->PixData[3]);       // Y^1: 0 and 1 differ
}

TEST_F(SubtBackTest, AllocationFailureAtEachOpeningStepLeavesItClosed)
{
    AddImage(40, 40, [](int x, int y) { return static_cast<uint16_t>(1000 + 30 * x + 7 * y); });
    const int items = ListLength();
    wint_SubtBckgrndParamType first{};
    dl_GetSubtBckgrndParam(&first, 0);   // one full use first: the display lists settle
    dl_GetSubtBckgrndParam(&first, 1);
    int closedRuns = 0;
    for (int skip = 0; skip < 40; ++skip) {
        const size_t blocks = LiveBlockCount();
        FailAllocationsForTests(1, skip);
        wint_SubtBckgrndParamType p{};
        dl_GetSubtBckgrndParam(&p, 0);
        FailAllocationsForTests(0);
        if (!SubtBack().IsOpen()) {
            ++closedRuns;
            EXPECT_EQ(LiveBlockCount(), blocks) << skip;
            EXPECT_EQ(SubtBack().ResultStore, -1);
            EXPECT_FALSE(second.open);
            continue;
        }
        dl_GetSubtBckgrndParam(&p, 1);
        EXPECT_EQ(LiveBlockCount(), blocks) << skip;
        EXPECT_EQ(ListLength(), items);
        if (skip > 8) break;
    }
    EXPECT_GE(closedRuns, 4);   // scratch, and the three items with their pixels
}

// Ground truth on the sample model's row offsets plus noise.
TEST_F(SubtBackTest, RowOffsetsAreRemovedWithinTheNoise)
{
    using namespace SampleTopography;
    std::mt19937 rng(3);
    std::uniform_real_distribution<double> offset(-kRowOffset, kRowOffset);
    std::normal_distribution<double> noise(0.0, kNoise);
    const double scale = 4000.0;   // codes per nm
    std::vector<uint16_t> codes(static_cast<size_t>(kSize) * kSize);
    for (int y = 0; y < kSize; ++y) {
        const double o = offset(rng);
        for (int x = 0; x < kSize; ++x)
            codes[static_cast<size_t>(y) * kSize + x] = static_cast<uint16_t>(std::lround(30000 + (o + noise(rng)) * scale));
    }
    const double sigma = kNoise * scale;
    auto rowSpread = [&](const ImageHeaderType* image, double perCode) {
        std::vector<double> means(kSize, 0.0);
        double all = 0;
        for (int y = 0; y < kSize; ++y) {
            for (int x = 0; x < kSize; ++x) means[y] += image->PixData[static_cast<size_t>(y) * kSize + x];
            means[y] = means[y] / kSize * perCode;
            all += means[y] / kSize;
        }
        double worst = 0;
        for (double m : means) worst = std::max(worst, std::fabs(m - all));
        return worst;
    };
    ImageHeaderType* source = AddImage(kSize, kSize, [&](int x, int y) { return codes[static_cast<size_t>(y) * kSize + x]; });
    source->DataScale = 1.0f;
    ASSERT_GT(rowSpread(source, 1.0), 2 * sigma);   // the offsets are there to be removed
    ImageHeaderType* lines = ApplyWith(Params(6));
    EXPECT_LT(rowSpread(lines, lines->DataScale), 2 * sigma);
    CurrentItem = source;
    ImageHeaderType* offsets = ApplyWith(Params(3));
    EXPECT_LT(rowSpread(offsets, offsets->DataScale), 4 * sigma);
}

// Ground truth: the 3 point plane on the sample's tilt. The plane goes through three single
// pixels, so their noise moves its slopes by about sigma * sqrt(2) / 171 codes a pixel; the
// bow is left out, since its X part differs between the two upper points and the lower one and
// tilts the plane in Y.
TEST_F(SubtBackTest, ThreePointPlaneRemovesTheSampleTilt)
{
    using namespace SampleTopography;
    const double scale = 6000.0;
    for (double sigma : {0.0, kNoise}) {
        std::mt19937 rng(4);
        std::normal_distribution<double> noise(0.0, 1.0);
        ImageHeaderType* source = AddImage(kSize, kSize, [&](int x, int y) {
            const double z = kTiltX * x * kSizeNm / kSize + kTiltY * y * kSizeNm / kSize + sigma * noise(rng);
            return static_cast<uint16_t>(std::lround(20000 + z * scale));
        });
        source->DataScale = 1.0f;
        ImageHeaderType* result = ApplyWith(Params(7));
        // The tilt left, in source codes a pixel, by least squares along every row and column.
        double sx = 0, sy = 0;
        const double mid = (kSize - 1) / 2.0, norm = kSize * (double(kSize) * kSize - 1) / 12.0;
        for (int i = 0; i < kSize; ++i)
            for (int j = 0; j < kSize; ++j) {
                sx += (j - mid) * result->PixData[static_cast<size_t>(i) * kSize + j];
                sy += (j - mid) * result->PixData[static_cast<size_t>(j) * kSize + i];
            }
        sx = sx / norm / kSize * result->DataScale;
        sy = sy / norm / kSize * result->DataScale;
        const double tiltX = kTiltX * kSizeNm / kSize * scale, tiltY = kTiltY * kSizeNm / kSize * scale;
        const double slack = 3 * sigma * scale * std::sqrt(2.0) / 171;
        EXPECT_LT(std::fabs(sx), 0.02 * std::fabs(tiltX) + slack) << sigma;
        EXPECT_LT(std::fabs(sy), 0.02 * std::fabs(tiltY) + slack) << sigma;
    }
}

TEST_F(SubtBackTest, ASpectrumIsNoSourceOfTheTool)
{
    AddSpectrum(64);
    const int items = ListLength();
    wint_SubtBckgrndParamType p{};
    dl_GetSubtBckgrndParam(&p, TV_SUBT_APPLY);
    EXPECT_FALSE(SubtBack().IsOpen());
    EXPECT_TRUE(LogHas("CSubtBack Initialise"));
    EXPECT_EQ(ListLength(), items);
    EXPECT_EQ(host.Count("ap_OpenGraphWindow"), 0);
}
