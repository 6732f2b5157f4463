// Arithmetic on images and the two stretches of the code range through their entry points:
// prompts, history codes and log lines, the codes of every operation against the documented
// formulas, the max-first scan of the normalisation, the s.d. stretch, and ground truth on the
// sample topography.
#include "test_frame_support.h"

#include "tavrin/dl_contrast.h"
#include "tavrin/dl_image_math.h"
#include "display/render_histogram.h"
#include "files/sample_data.h"
#include "image/image_math.h"
#include "store/history.h"
#include "store/units.h"

#include <algorithm>
#include <cmath>
#include <vector>

namespace {

class ImageMathTest : public FrameStoreTest {
protected:
    void SetUp() override
    {
        FrameStoreTest::SetUp();
        ASSERT_EQ(fs.Open(1), 0);
        host.ClearCalls();
    }
    static uint16_t Code(int x, int y) { return static_cast<uint16_t>((x * 2731u + y * 977u + x * y * 13u) & 0xffff); }
    ImageHeaderType* AddScan(const char* title = "T", int nx = 32, int ny = 24)
    {
        ImageHeaderType* image = AddImage(nx, ny, Code, title);
        image->SPMData = 1;
        image->Zlo = 2.0f;
        image->Zhi = 12.0f;
        return image;
    }
    // An image of the given codes in one row.
    ImageHeaderType* AddRow(const std::vector<uint16_t>& codes, const char* title = "R")
    {
        ImageHeaderType* image =
            AddImage(static_cast<int>(codes.size()), 1, [&codes](int x, int) { return codes[x]; }, title);
        image->SPMData = 1;
        image->Zlo = 0.0f;
        image->Zhi = 65535.0f;
        return image;
    }
    TestFrameStore fs;
};

} // namespace

// One image.

TEST_F(ImageMathTest, Op8WithMinusFiveAddsFiveWithCode100AndAdd)
{
    ImageHeaderType* source = AddRow({0, 7, 65533, 65535}, "Neg");
    host.entryAnswers.push_back("-5");
    dl_SingleImageMath(8);
    ImageHeaderType* made = CurrentItem;
    ASSERT_EQ(made, source->Next);
    EXPECT_EQ(Pixels(made), (std::vector<uint16_t>{5, 12, 65535, 65535}));
    EXPECT_EQ(LastHistoryCode(made), 100);
    EXPECT_STREQ(GetProcessName(100 - 1), "Add");
    EXPECT_TRUE(LogHas("Add 'Neg' with 5\n"));
    const auto prompts = host.Calls("ap_EnterInteger");
    ASSERT_EQ(prompts.size(), 1u);
    EXPECT_EQ(prompts[0].args, "0 'Enter constant (0-65535) : ' 'Tavrin Processing' 5");
}

TEST_F(ImageMathTest, AddAndSubtractWithEitherSign)
{
    struct Case {
        int op;
        const char* c;
        std::vector<uint16_t> out;
        int code;
        const char* log;
    };
    const Case cases[] = {
        {7, "5", {5, 12, 65535, 65535}, 100, "Add 'R' with 5\n"},
        {7, "-5", {0, 2, 65528, 65530}, 101, "Subtract 'R' with 5\n"},
        {8, "5", {0, 2, 65528, 65530}, 101, "Subtract 'R' with 5\n"},
        {8, "0", {0, 7, 65533, 65535}, 100, "Add 'R' with 0\n"},
    };
    for (const Case& c : cases) {
        ImageHeaderType* source = AddRow({0, 7, 65533, 65535});
        host.entryAnswers.push_back(c.c);
        dl_SingleImageMath(static_cast<int16_t>(c.op));
        ASSERT_EQ(CurrentItem, source->Next);
        EXPECT_EQ(Pixels(CurrentItem), c.out) << c.op << " " << c.c;
        EXPECT_EQ(LastHistoryCode(CurrentItem), c.code);
        EXPECT_TRUE(LogHas(c.log)) << c.log;
    }
}

TEST_F(ImageMathTest, DivideByZeroDividesByOneAndLogs1_00)
{
    ImageHeaderType* source = AddScan("Dz");
    host.entryAnswers.push_back("0");
    dl_SingleImageMath(3);
    ImageHeaderType* made = CurrentItem;
    ASSERT_EQ(made, source->Next);
    EXPECT_EQ(Pixels(made), Pixels(source));
    EXPECT_EQ(LastHistoryCode(made), 77);
    EXPECT_TRUE(LogHas("Divide 'Dz' by    1.00\n"));
    const auto prompts = host.Calls("ap_EnterString");
    ASSERT_EQ(prompts.size(), 1u);
    EXPECT_EQ(prompts[0].args, "'1.0' 'Enter constant' 'Tavrin Processing' 9");
}

TEST_F(ImageMathTest, EverySingleOperationByItsFormula)
{
    struct Case {
        int op;
        const char* answer;
        int code;
        const char* log;
    };
    const Case cases[] = {
        {1, nullptr, 23, "Invert 'T'\n"},          {2, "2.5", 24, "Multiply 'T' by    2.50\n"},
        {3, "3", 77, "Divide 'T' by    3.00\n"},   {4, "4080", 25, "Bitwise AND 'T' with 4080\n"},
        {5, "257", 26, "Bitwise OR 'T' with 257\n"}, {6, "65535", 27, "Bitwise XOR 'T' with 65535\n"},
    };
    for (const Case& c : cases) {
        ImageHeaderType* source = AddScan();
        if (c.answer) host.entryAnswers.push_back(c.answer);
        dl_SingleImageMath(static_cast<int16_t>(c.op));
        ImageHeaderType* made = CurrentItem;
        ASSERT_EQ(made, source->Next) << c.op;
        EXPECT_EQ(LastHistoryCode(made), c.code);
        EXPECT_TRUE(LogHas(c.log)) << c.log;
        for (size_t i = 0; i < Pixels(source).size(); ++i) {
            const uint32_t p = source->PixData[i];
            uint32_t want = 0;
            switch (c.op) {
            case 1: want = 65535 - p; break;
            case 2: want = std::min<uint32_t>(static_cast<uint32_t>(p * 2.5), 65535); break;
            case 3: want = p / 3; break;
            case 4: want = p & 4080; break;
            case 5: want = p | 257; break;
            case 6: want = p ^ 65535; break;
            }
            ASSERT_EQ(made->PixData[i], want) << c.op << " at " << i;
        }
        // Zlo and Zhi stay the source's.
        EXPECT_FLOAT_EQ(made->Zlo, 2.0f);
        EXPECT_FLOAT_EQ(made->Zhi, 12.0f);
    }
}

TEST_F(ImageMathTest, SingleMathEndsQuietlyOrReportsTheOperation)
{
    ImageHeaderType* source = AddScan();
    dl_SingleImageMath(0);
    dl_SingleImageMath(-3);
    EXPECT_EQ(host.Count("ap_EnterInteger") + host.Count("ap_EnterString"), 0);
    dl_SingleImageMath(2);   // cancelled at the prompt
    dl_SingleImageMath(5);
    EXPECT_EQ(CountItems(), 1);
    host.entryAnswers.push_back("1");
    dl_SingleImageMath(9);
    EXPECT_TRUE(LogHasProgramError("SingleImageMath 9"));
    EXPECT_EQ(CountItems(), 1);
    EXPECT_EQ(CurrentItem, source);
}

TEST_F(ImageMathTest, WithNoImageEveryCommandReports33536)
{
    dl_SingleImageMath(1);
    dl_DoubleImageMath(1);
    dl_NormaliseImage();
    dl_NormaliseSD();
    EXPECT_EQ(CountInLog("No images in memory"), 4);
    EXPECT_EQ(CountItems(), 0);
    EXPECT_EQ(host.Count("ap_SelectDataDialog"), 0);
}

TEST_F(ImageMathTest, FftImagesAreWorkedOn)
{
    ImageHeaderType* source = AddScan();
    source->FFTData = 1;
    dl_SingleImageMath(1);
    ASSERT_EQ(CurrentItem, source->Next);
    EXPECT_EQ(CurrentItem->PixData[3], 65535 - source->PixData[3]);
    source->FFTData = 0;
}

// Two images.

TEST_F(ImageMathTest, TwoIdenticalImagesWithOp2Give32767)
{
    ImageHeaderType* source = AddScan("A");
    host.selectAnswers.push_back(0);
    dl_DoubleImageMath(2);
    ImageHeaderType* made = CurrentItem;
    ASSERT_EQ(made, source->Next);
    for (uint16_t p : Pixels(made)) ASSERT_EQ(p, 32767);
    EXPECT_EQ(LastHistoryCode(made), 31);
    EXPECT_TRUE(LogHas("Subtract Image 'A' with A\n"));
    const auto asks = host.Calls("ap_SelectDataDialog");
    ASSERT_EQ(asks.size(), 1u);
    EXPECT_EQ(asks[0].args, "1 4");
    const auto waits = host.Calls("ap_ShowWait");
    ASSERT_EQ(waits.size(), 1u);
    EXPECT_EQ(waits[0].args, "'Please wait'");
}

TEST_F(ImageMathTest, EveryTwoImageOperationByItsFormula)
{
    const char* names[10] = {"Add image", "Subtract Image", "Difference", "Multiply", "divide",
                             "Bitwise AND", "Bitwise OR", "Bitwise XOR", "Minimum", "Maximum"};
    const int codes[10] = {30, 31, 32, 33, 34, 35, 36, 37, 98, 99};
    for (int op = 1; op <= 10; ++op) {
        EraseAllItems();
        ImageHeaderType* b = AddImage(16, 8, [](int x, int y) { return uint16_t(x == 0 ? 0 : (x * 4099 + y * 31) & 0xffff); }, "B");
        b->SPMData = 1;
        ImageHeaderType* a = AddImage(16, 8, Code, "A");
        a->SPMData = 1;
        a->Zlo = -4.0f;
        a->Zhi = 9.0f;
        host.selectAnswers.push_back(0);   // B, the head of the list
        dl_DoubleImageMath(static_cast<int16_t>(op));
        ImageHeaderType* made = CurrentItem;
        ASSERT_EQ(made, a->Next) << op;
        EXPECT_EQ(LastHistoryCode(made), codes[op - 1]);
        EXPECT_TRUE(LogHas(std::string(names[op - 1]) + " 'A' with B\n")) << op;
        EXPECT_FLOAT_EQ(made->Zlo, -4.0f);
        EXPECT_FLOAT_EQ(made->Zhi, 9.0f);
        for (size_t i = 0; i < 16 * 8; ++i) {
            const uint32_t pa = a->PixData[i], pb = b->PixData[i];
            uint32_t want = 0;
            switch (op) {
            case 1: want = (pa + pb) >> 1; break;
            case 2: want = (pa + 65535 - pb) >> 1; break;
            case 3: want = pa > pb ? pa - pb : pb - pa; break;
            case 4: want = pa * pb / 65535; break;
            case 5: want = pb == 0 ? pa : pa / pb; break;
            case 6: want = pa & pb; break;
            case 7: want = pa | pb; break;
            case 8: want = pa ^ pb; break;
            case 9: want = std::min(pa, pb); break;
            case 10: want = std::max(pa, pb); break;
            }
            ASSERT_EQ(made->PixData[i], want) << op << " at " << i;
        }
    }
}

TEST_F(ImageMathTest, DoubleMathEndsWithoutAChoiceAndKeepsTheItemOfAnUnknownOp)
{
    ImageHeaderType* source = AddScan();
    dl_DoubleImageMath(0);
    EXPECT_EQ(host.Count("ap_SelectDataDialog"), 0);
    dl_DoubleImageMath(3);   // the dialog answers no choice
    EXPECT_EQ(CountItems(), 1);
    host.selectAnswers.push_back(0);
    dl_DoubleImageMath(11);
    EXPECT_TRUE(LogHasProgramError("Double Math"));
    EXPECT_EQ(CountItems(), 2);   // the new item stays in the list
    EXPECT_EQ(CurrentItem, source);
}

TEST_F(ImageMathTest, OnlyImagesOfTheSameSizeAndSourceAreOffered)
{
    ImageHeaderType* other = AddScan("Other", 16, 16);
    ImageHeaderType* source = AddScan("A");
    (void)other;
    host.selectAnswers.push_back(1);   // there is no second image of this size
    dl_DoubleImageMath(1);
    EXPECT_EQ(CountItems(), 2);
    EXPECT_EQ(CurrentItem, source);
}

// Normalisation.

TEST_F(ImageMathTest, AFlatImageNormalisesToZerosWithEqualZloAndZhi)
{
    ImageHeaderType* source = AddFlatImage(16, 1234);
    source->SPMData = 1;
    source->DataSource = 2;
    source->Zlo = -3.0f;
    source->Zhi = 5.0f;
    strncpy0(source->Title, "Flat", sizeof source->Title);
    dl_NormaliseImage();
    ImageHeaderType* made = CurrentItem;
    ASSERT_EQ(made, source->Next);
    for (uint16_t p : Pixels(made)) ASSERT_EQ(p, 0);
    EXPECT_FLOAT_EQ(made->Zlo, made->Zhi);
    EXPECT_FLOAT_EQ(made->Zlo, GetImageDataValue(0, 1234.0f, source));
    EXPECT_EQ(LastHistoryCode(made), 19);
    EXPECT_TRUE(LogHas("Normalise pixel range 1234-1234. 'Flat'\n"));
    const auto waits = host.Calls("ap_ShowWait");
    ASSERT_EQ(waits.size(), 1u);
    EXPECT_EQ(waits[0].args, "'Please wait while normalising image'");
}

TEST_F(ImageMathTest, AFlatTopographyNormalisesToEqualZloAndZhiOfZero)
{
    ImageHeaderType* source = AddFlatImage(8, 0);
    source->SPMData = 1;
    dl_NormaliseImage();
    EXPECT_FLOAT_EQ(CurrentItem->Zlo, 0.0f);
    EXPECT_FLOAT_EQ(CurrentItem->Zhi, 0.0f);
}

TEST_F(ImageMathTest, NormaliseStretchesBetweenTheExtremesOfTheScan)
{
    ImageHeaderType* source = AddRow({50, 10, 60, 20, 35});
    source->DataSource = 2;
    dl_NormaliseImage();
    const CodeExtremes e = ScanCodeExtremes(source);
    EXPECT_EQ(e.min, 10u);
    EXPECT_EQ(e.max, 60u);
    EXPECT_EQ(Pixels(CurrentItem), (std::vector<uint16_t>{52428, 0, 65535, 13107, 32767}));
    EXPECT_FLOAT_EQ(CurrentItem->Zlo, 10.0f);
    EXPECT_FLOAT_EQ(CurrentItem->Zhi, 60.0f);
    EXPECT_TRUE(LogHas("Normalise pixel range 10-60. 'R'\n"));
}

TEST_F(ImageMathTest, TheMaxFirstScanMissesAMinimumThatRaisedTheMaximum)
{
    // A strictly rising scan: every code raises the maximum, the minimum stays 65535, and the
    // unsigned range wraps; every code comes out 0.
    ImageHeaderType* rising = AddRow({10, 20, 30, 40});
    rising->DataSource = 2;
    const CodeExtremes e = ScanCodeExtremes(rising);
    EXPECT_EQ(e.min, 65535u);
    EXPECT_EQ(e.max, 40u);
    dl_NormaliseImage();
    EXPECT_EQ(Pixels(CurrentItem), (std::vector<uint16_t>{0, 0, 0, 0}));
    EXPECT_FLOAT_EQ(CurrentItem->Zlo, 65535.0f);
    EXPECT_FLOAT_EQ(CurrentItem->Zhi, 40.0f);
    EXPECT_TRUE(LogHas("Normalise pixel range 65535-40. 'R'\n"));
    // The lowest code first: it raised the maximum, so the minimum is the later 30, and the
    // first code, below it, wraps to the top.
    ImageHeaderType* first = AddRow({10, 60, 30, 40});
    first->DataSource = 2;
    dl_NormaliseImage();
    EXPECT_EQ(Pixels(CurrentItem), (std::vector<uint16_t>{65535, 65535, 0, 21845}));
    EXPECT_FLOAT_EQ(CurrentItem->Zlo, 30.0f);
}

TEST_F(ImageMathTest, NormaliseMapsTheKnownExtremesOfTheSampleTopography)
{
    ImageHeaderType* sample = MakeSampleTopography(nullptr);
    ASSERT_NE(sample, nullptr);
    CurrentItem = sample;
    // Halve the codes first, so that the stretch has work to do.
    host.entryAnswers.push_back("2");
    dl_SingleImageMath(3);
    ImageHeaderType* halved = CurrentItem;
    ASSERT_EQ(halved, sample->Next);
    const auto codes = Pixels(halved);
    const auto lo = std::min_element(codes.begin(), codes.end()), hi = std::max_element(codes.begin(), codes.end());
    EXPECT_EQ(*lo, 0);
    EXPECT_EQ(*hi, 32767);
    dl_NormaliseImage();
    ImageHeaderType* made = CurrentItem;
    ASSERT_EQ(made, halved->Next);
    EXPECT_EQ(made->PixData[lo - codes.begin()], 0);
    EXPECT_EQ(made->PixData[hi - codes.begin()], 65535);
    // A topography: Zlo 0, Zhi the physical height between the extremes.
    EXPECT_FLOAT_EQ(made->Zlo, 0.0f);
    EXPECT_FLOAT_EQ(made->Zhi, GetImageDataValue(0, 32767.0f, halved) - GetImageDataValue(0, 0.0f, halved));
    EXPECT_NEAR(made->Zhi, (sample->Zhi - sample->Zlo) * 32767.0f / 65535.0f, 1e-3);
}

// The s.d. stretch.

TEST_F(ImageMathTest, NormaliseSDWithRangeZeroGivesSpanOneAndK255)
{
    const SDStretch s = SDStretchFor(100.4, 7.0, 0.0);
    EXPECT_EQ(s.lo, 100);
    EXPECT_EQ(s.hi, 100);
    EXPECT_EQ(s.span, 1);
    EXPECT_DOUBLE_EQ(s.k, 255.0);
    EXPECT_EQ(s.offset, static_cast<int32_t>(std::trunc(-254.0 * 100.4)));
    uint16_t t[256];
    SDStretchTable(s, false, t);
    // trunc(i * 255) - 25501: 0 up to level 100, 254 at 101, 255 from 102 on.
    for (int i = 0; i <= 100; ++i) EXPECT_EQ(t[i], 0) << i;
    EXPECT_EQ(t[101], 254);
    for (int i = 102; i < 256; ++i) EXPECT_EQ(t[i], 255) << i;
}

TEST_F(ImageMathTest, NormaliseSDWithRangeZeroThroughItsEntryPoint)
{
    // Levels 100 and 102 in equal parts: mean 101, s.d. 1; lo = hi = 101, span 1, K = 255,
    // O = trunc(-254 * 101) = -25654, so T[100] = 0, T[101] = 101, T[102] = 255.
    ImageHeaderType* source = AddImage(8, 8, [](int x, int) { return uint16_t(x < 4 ? 100 << 8 : 102 << 8); }, "Z");
    host.entryAnswers.push_back("0");
    dl_NormaliseSD();
    ImageHeaderType* made = CurrentItem;
    ASSERT_EQ(made, source->Next);
    EXPECT_EQ(made->PixData[0], 0);
    EXPECT_EQ(made->PixData[4], 255 * 255);
    int32_t bins[256];
    CalcHistogram(source, bins);
    double mean = 0, sd = 0;
    HistogramMoments(bins, 64, &mean, &sd);
    const SDStretch s = SDStretchFor(mean, sd, 0.0);
    EXPECT_EQ(s.span, 1);
    EXPECT_DOUBLE_EQ(s.k, 255.0);
    EXPECT_EQ(s.offset, -25654);
}

TEST_F(ImageMathTest, AFlatImageHasTheSmallestSD)
{
    int32_t bins[256] = {};
    bins[77] = 100;
    double mean = 0, sd = 0;
    HistogramMoments(bins, 100, &mean, &sd);
    EXPECT_DOUBLE_EQ(mean, 77.0);
    EXPECT_DOUBLE_EQ(sd, 1e-5);
}

TEST_F(ImageMathTest, NormaliseSDThroughItsEntryPoint)
{
    // Half the points at level 40, half at level 60: mean 50, s.d. 10.
    ImageHeaderType* source = AddImage(16, 16, [](int x, int) { return uint16_t(x < 8 ? 40 << 8 : (60 << 8) + 128); }, "Sd");
    host.entryAnswers.push_back("-1");   // the magnitude counts
    dl_NormaliseSD();
    ImageHeaderType* made = CurrentItem;
    ASSERT_EQ(made, source->Next);
    double mean = 0, sd = 0;
    int32_t bins[256];
    CalcHistogram(source, bins);
    HistogramMoments(bins, 256, &mean, &sd);
    EXPECT_DOUBLE_EQ(mean, 50.0);
    EXPECT_DOUBLE_EQ(sd, 10.0);
    const SDStretch s = SDStretchFor(mean, sd, 1.0);
    EXPECT_EQ(s.lo, 40);
    EXPECT_EQ(s.hi, 60);
    EXPECT_DOUBLE_EQ(s.k, 12.75);
    EXPECT_EQ(s.offset, -587);   // trunc(-11.75 * 50)
    // Level 40 exactly: T[40] * 255 with T[40] = trunc(510) - 587 limited to 0; level 60 and a
    // half: T[60] * 127 + T[61] * 128 = 178 * 127 + 190 * 128.
    EXPECT_EQ(made->PixData[0], 0);
    EXPECT_EQ(made->PixData[8], 178 * 127 + 190 * 128);
    EXPECT_EQ(LastHistoryCode(made), 83);
    EXPECT_TRUE(LogHas("Normalise SD 'Sd'\n"));
    EXPECT_EQ(host.Count("ap_ShowWait"), 0);
    const auto prompts = host.Calls("ap_EnterString");
    ASSERT_EQ(prompts.size(), 1u);
    EXPECT_EQ(prompts[0].args, "'3.0' 'Enter s.d.'s range to keep data ' 'Tavrin Processing' 9");
}

TEST_F(ImageMathTest, NormaliseSDTakesTheEndEntriesUnscaled)
{
    uint16_t t[256];
    for (int i = 0; i < 256; ++i) t[i] = static_cast<uint16_t>(i);
    EXPECT_EQ(SDStretchCode(t, 0), 0);
    EXPECT_EQ(SDStretchCode(t, 0xFF00), 255);
    EXPECT_EQ(SDStretchCode(t, 0xFFFF), 255);
    EXPECT_EQ(SDStretchCode(t, 0xFEFF), 254 * 0 + 255 * 255);
    EXPECT_EQ(SDStretchCode(t, 0x0101), 1 * 254 + 2 * 1);
    ImageHeaderType* source = AddRow({0, 0xFF00, 0xFFFF, 0x8000});
    host.entryAnswers.push_back("3");
    dl_NormaliseSD();
    ASSERT_EQ(CurrentItem, source->Next);
    EXPECT_LE(CurrentItem->PixData[1], 255);
    EXPECT_LE(CurrentItem->PixData[2], 255);
}

TEST_F(ImageMathTest, NormaliseSDOfAColourImageKeepsTheLowHalf)
{
    const SDStretch s = SDStretchFor(64.0, 8.0, 2.0);   // lo 48, hi 80, K = 255 / 32
    uint16_t t[256];
    SDStretchTable(s, true, t);
    for (int i = 0; i < 128; ++i) EXPECT_EQ(t[i], i);
    for (int i = 0; i < 128; ++i) {
        const int64_t v = std::clamp<int64_t>(static_cast<int64_t>(std::trunc(2.0 * i * s.k)) + s.offset, 0, 255);
        EXPECT_EQ(t[i + 128], (v >> 1) | 128) << i;
    }
    EXPECT_EQ(t[128], 128);
    EXPECT_EQ(t[255], 255);
}

TEST_F(ImageMathTest, NormaliseSDCancelledOrWithoutMemoryMakesNothing)
{
    ImageHeaderType* source = AddScan();
    dl_NormaliseSD();   // no answer: cancelled
    EXPECT_EQ(CountItems(), 1);
    EXPECT_EQ(CurrentItem, source);
    FailAllocationsForTests(1);
    host.entryAnswers.push_back("3");
    dl_NormaliseSD();
    EXPECT_TRUE(ErrorShown("Not enough memory"));
    EXPECT_EQ(CountItems(), 1);
    EXPECT_EQ(CurrentItem, source);
}

// Equalisation on the sample topography.

TEST_F(ImageMathTest, EqualisedSampleTopographyHasAnEvenCumulativeDistribution)
{
    ImageHeaderType* sample = MakeSampleTopography(nullptr);
    ASSERT_NE(sample, nullptr);
    CurrentItem = sample;
    ASSERT_EQ(dl_HistEqualise(), 1);
    const ImageHeaderType* made = CurrentItem;
    int32_t bins[256];
    CalcHistogram(sample, bins);
    const double n = 512.0 * 512.0;
    const double largest = *std::max_element(bins, bins + 256) / n;
    // The fraction of points whose output level is at most L, for every L.
    std::vector<double> atLevel(256, 0.0);
    for (int i = 0; i < 256; ++i) atLevel[made->ImageLUT[i]] += bins[i] / n;
    double cumulative = 0.0;
    for (int level = 0; level < 256; ++level) {
        cumulative += atLevel[level];
        EXPECT_LE(std::fabs(cumulative - level / 255.0), largest + 1.0 / 255.0) << level;
    }
}
