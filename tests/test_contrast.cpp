// Contrast, brightness, gamma and thresholds of an image's table: the map of the ramp, the
// tables an accept gives, the two slider dialogues through the host's callbacks, the fixed
// table operations, equalisation, the transform through the table, and the table and
// histogram plots.
#include "test_render_support.h"

#include "tavrin/dl_contrast.h"
#include "tavrin/dl_selection.h"
#include "display/contrast_map.h"
#include "display/full_display.h"
#include "display/lut.h"
#include "display/palette.h"
#include "display/render_histogram.h"
#include "display/select_items.h"
#include "host/ap_callbacks.h"
#include "image/contrast.h"
#include "store/history.h"
#include "store/units.h"

#include <cmath>
#include <cstring>
#include <vector>

namespace {

// The bars the library last opened, captured in place of the host's dialogue.
std::vector<wint_ScrollBarParamType> g_bars;
int g_barsId = -1;

void CaptureBars2(wint_ScrollBarParamType* a, wint_ScrollBarParamType* b, uint16_t id, uint16_t)
{
    g_bars = {*a, *b};
    g_barsId = id;
}

void CaptureBars3(wint_ScrollBarParamType* a, wint_ScrollBarParamType* b, wint_ScrollBarParamType* c, uint16_t id,
                  uint16_t)
{
    g_bars = {*a, *b, *c};
    g_barsId = id;
}

class ContrastTest : public RenderTest {
protected:
    void SetUp() override
    {
        RenderTest::SetUp();
        g_bars.clear();
        g_barsId = -1;
    }
    static uint16_t Code(int x, int y) { return static_cast<uint16_t>((x * 613u + y * 1229u + x * y * 7u) & 0xffff); }
    ImageHeaderType* AddScan(const char* title = "Scan")
    {
        ImageHeaderType* image = AddImage(64, 48, Code, title);
        image->SPMData = 1;
        image->DataSource = 1;
        image->Zlo = -10.0f;
        image->Zhi = 30.0f;
        return image;
    }
    static std::vector<uint8_t> Table(const ImageHeaderType* image) { return {image->ImageLUT, image->ImageLUT + 256}; }
    static std::vector<uint16_t> OutputPlane(int plane)
    {
        uint16_t p[3][256];
        GetOutputLUT(CurrentOutputLUT(), p[0], p[1], p[2]);
        return {p[plane], p[plane] + 256};
    }
    static bool HasText(const std::string& text)
    {
        for (const CVfsItem& item : CurrentVfs()->Items)
            if (item.Kind == VFS_ITEM_TEXT && item.Text == text) return true;
        return false;
    }
};

} // namespace

// The map of the ramp.

TEST_F(ContrastTest, Contrast128GivesFortyFiveDegreesAndTheIdentityWithinTruncation)
{
    EXPECT_DOUBLE_EQ(ContrastAngle(128.0), 45.0);
    // The short pi puts the tangent just below 1, so that a quotient keeps its whole part.
    const double t = ContrastTangent(45.0);
    EXPECT_LT(t, 1.0);
    EXPECT_GT(t, 0.99999);
    uint8_t e[256] = {};
    const RampThresholds r = ContrastRampMap(0.0, 45.0, 1.0, e);
    for (int i = 35; i <= 162; ++i) EXPECT_EQ(e[i], i) << i;
    EXPECT_EQ(r.low, 0);
    EXPECT_EQ(r.high, 255);
    // With the full value of pi the tangent is 1 or above and entries below the centre drop.
    EXPECT_GE(std::tan(45.0 * std::acos(-1.0) / 180.0), 0.9999999999);
}

TEST_F(ContrastTest, Contrast0GivesEightyEightDegreesAndAFlatCentre)
{
    EXPECT_DOUBLE_EQ(ContrastAngle(0.0), 88.0);
    uint8_t e[256] = {};
    const RampThresholds r = ContrastRampMap(0.0, 88.0, 1.0, e);
    for (int i = 35; i <= 162; ++i) {
        EXPECT_GE(e[i], 96) << i;
        EXPECT_LE(e[i], 100) << i;
    }
    EXPECT_EQ(e[35], 96);
    EXPECT_EQ(e[98], 98);
    EXPECT_EQ(e[162], 100);
    EXPECT_EQ(r.low, 0);
    EXPECT_EQ(r.high, 255);
}

TEST_F(ContrastTest, Contrast256GivesTwoDegreesAndAHardStep)
{
    EXPECT_DOUBLE_EQ(ContrastAngle(256.0), 2.0);
    uint8_t e[256] = {};
    const RampThresholds r = ContrastRampMap(0.0, 2.0, 1.0, e);
    for (int i = 35; i <= 95; ++i) EXPECT_EQ(e[i], 35) << i;
    for (int i = 101; i <= 162; ++i) EXPECT_EQ(e[i], 162) << i;
    // Five steps between black and white: trunc((i - 98) / tan(2 degrees)) + 98.
    EXPECT_EQ(e[96], 41);
    EXPECT_EQ(e[97], 70);
    EXPECT_EQ(e[98], 98);
    EXPECT_EQ(e[99], 126);
    EXPECT_EQ(e[100], 155);
    // The last index below the ramp and the first above it.
    EXPECT_EQ(r.low, 95);
    EXPECT_EQ(r.high, 101);
}

TEST_F(ContrastTest, BrightnessShiftsAndGammaBendsTheMap)
{
    uint8_t e[256] = {};
    ContrastRampMap(10.0, 45.0, 1.0, e);
    EXPECT_EQ(e[35], 45);
    EXPECT_EQ(e[152], 162);
    ContrastRampMap(0.0, 45.0, 2.0, e);
    // g = trunc(((i - 35) / 127)^2 * 127 + 35).
    EXPECT_EQ(e[35 + 64], static_cast<int>(std::trunc(std::pow(64.0 / 127.0, 2.0) * 127.0 + 35.0)));
    EXPECT_EQ(e[162], 162);
}

TEST_F(ContrastTest, PlainAndColourAcceptTables)
{
    uint8_t t[256];
    PlainContrastTable(0.0, 128.0, 1.0, t);
    for (int i = 0; i < 256; ++i) EXPECT_EQ(t[i], i) << i;
    PlainContrastTable(20.0, 128.0, 1.0, t);
    EXPECT_EQ(t[0], 40);
    EXPECT_EQ(t[214], 254);
    EXPECT_EQ(t[215], 255);
    EXPECT_EQ(t[255], 255);
    PlainContrastTable(0.0, 256.0, 1.0, t);
    const int steps[10] = {0, 14, 43, 71, 100, 128, 156, 185, 213, 242};
    for (int i = 0; i < 10; ++i) EXPECT_EQ(t[123 + i], steps[i]) << i;
    for (int i = 0; i < 123; ++i) EXPECT_EQ(t[i], 0) << i;
    for (int i = 133; i < 256; ++i) EXPECT_EQ(t[i], 255) << i;
    // A colour image: 0 to 34 and (kept) 163 to 255 the identity, 35 to 162 the map.
    ColourContrastTable(0.0, 256.0, 1.0, t);
    uint8_t e[256] = {};
    ContrastRampMap(0.0, 2.0, 1.0, e);
    for (int i = 0; i < 35; ++i) EXPECT_EQ(t[i], i);
    for (int i = 35; i <= 162; ++i) EXPECT_EQ(t[i], e[i]);
    for (int i = 163; i < 256; ++i) EXPECT_EQ(t[i], i);
}

// Thresholds as tables.

TEST_F(ContrastTest, ThresholdBandTableCountsUpOverTheBand)
{
    uint8_t t[256];
    IdentityTable(t);
    ThresholdBandTable(100, 132, t);
    for (int i = 0; i < 100; ++i) EXPECT_EQ(t[i], 0);
    for (int k = 0; k < 32; ++k) EXPECT_EQ(t[100 + k], 8 * k);
    EXPECT_EQ(t[132], 255);   // 256 limited to the table
    for (int i = 133; i < 256; ++i) EXPECT_EQ(t[i], 255);
    const ThresholdSettings s = ThresholdBrightnessContrast(100, 132);
    EXPECT_FLOAT_EQ(s.brightness, 6.0f);
    EXPECT_FLOAT_EQ(s.contrast, 240.0f);
}

TEST_F(ContrastTest, HighEqualToLowIsAHardStepAtThatLevelWithoutDivision)
{
    uint8_t t[256];
    IdentityTable(t);
    ThresholdBandTable(80, 80, t);
    for (int i = 0; i <= 80; ++i) EXPECT_EQ(t[i], 0) << i;
    for (int i = 81; i < 256; ++i) EXPECT_EQ(t[i], 255) << i;
    EXPECT_EQ(ThresholdCode(80 * 256 - 1, 80, 80), 0);
    EXPECT_EQ(ThresholdCode(80 * 256, 80, 80), 0);
    EXPECT_EQ(ThresholdCode(80 * 256 + 1, 80, 80), 65535);
    EXPECT_EQ(ThresholdCode(65535, 80, 80), 65535);
}

TEST_F(ContrastTest, ThresholdCodesStretchTheBand)
{
    EXPECT_EQ(ThresholdCode(0, 16, 48), 0);
    EXPECT_EQ(ThresholdCode(16 * 256 - 1, 16, 48), 0);
    EXPECT_EQ(ThresholdCode(16 * 256, 16, 48), 0);
    EXPECT_EQ(ThresholdCode(16 * 256 + 100, 16, 48), 800);
    EXPECT_EQ(ThresholdCode(48 * 256, 16, 48), 65535);   // 65536 limited
    EXPECT_EQ(ThresholdCode(48 * 256 + 1, 16, 48), 65535);
}

TEST_F(ContrastTest, HighBelowLowBecomesHighEqualToLow)
{
    ImageHeaderType* source = AddScan();
    host.messageBoxAnswers.push_back(TV_IDNO);
    ASSERT_EQ(AdjustThresholds(120, 40, 1), 0);
    ImageHeaderType* made = CurrentItem;
    ASSERT_EQ(made, source->Next);
    for (int i = 0; i <= 120; ++i) EXPECT_EQ(made->ImageLUT[i], 0) << i;
    for (int i = 121; i < 256; ++i) EXPECT_EQ(made->ImageLUT[i], 255) << i;
    // b = (240 - 256) / -4, c = 256 - 0.
    EXPECT_FLOAT_EQ(made->Brightness, 4.0f);
    EXPECT_FLOAT_EQ(made->Contrast, 256.0f);
    EXPECT_EQ(LastHistoryCode(made), 47);
}

// The fixed table operations.

TEST_F(ContrastTest, DivideLUTByZeroSaturatesEveryNonZeroEntry)
{
    ImageHeaderType* source = AddScan("Div");
    host.entryAnswers.push_back("0");
    dl_MathLUT(8);
    ImageHeaderType* made = CurrentItem;
    ASSERT_EQ(made, source->Next);
    EXPECT_EQ(made->ImageLUT[0], 0);
    for (int i = 1; i < 256; ++i) EXPECT_EQ(made->ImageLUT[i], 255) << i;
    EXPECT_EQ(LastHistoryCode(made), 97);
    EXPECT_TRUE(LogHas("Divide LUT of 'Div'.\n"));
    EXPECT_EQ(Pixels(made), Pixels(source));
    const auto prompts = host.Calls("ap_EnterString");
    ASSERT_EQ(prompts.size(), 1u);
    EXPECT_EQ(prompts[0].args, "'1.0' 'Enter constant : ' 'Tavrin Processing' 9");
}

TEST_F(ContrastTest, ReverseLUTTwiceGivesTheTableBack)
{
    ImageHeaderType* source = AddScan();
    for (int i = 0; i < 256; ++i) source->ImageLUT[i] = static_cast<uint8_t>((i * 37 + 11) & 255);
    const auto before = Table(source);
    dl_MathLUT(2);
    ImageHeaderType* once = CurrentItem;
    ASSERT_EQ(once, source->Next);
    for (int i = 0; i < 256; ++i) EXPECT_EQ(once->ImageLUT[i], before[255 - i]);
    dl_MathLUT(2);
    ASSERT_EQ(CurrentItem, once->Next);
    EXPECT_EQ(Table(CurrentItem), before);
    EXPECT_EQ(LastHistoryCode(CurrentItem), 91);
    EXPECT_EQ(host.Count("ap_EnterString") + host.Count("ap_EnterInteger"), 0);
}

TEST_F(ContrastTest, EveryTableOperationWithItsConstantCodeAndName)
{
    struct Case {
        int op;
        const char* answer;
        int code;
        const char* name;
        int at100;   // entry 100 of the identity afterwards
        int at250;
    };
    const Case cases[] = {
        {1, nullptr, 90, "Invert LUT", 155, 5},       {3, "10", 92, "Add LUT", 110, 255},
        {4, "15", 93, "Bitwise AND LUT", 4, 10},      {5, "3", 94, "Bitwise OR LUT", 103, 251},
        {6, "255", 95, "Bitwise XOR LUT", 155, 5},    {7, "1.5", 96, "Multiply LUT", 150, 255},
        {7, "-2", 96, "Multiply LUT", 0, 0},          {8, "4", 97, "Divide LUT", 25, 62},
        {3, "-120", 92, "Add LUT", 0, 130},
    };
    for (const Case& c : cases) {
        ImageHeaderType* source = AddScan("Op");
        host.ClearCalls();
        if (c.answer) host.entryAnswers.push_back(c.answer);
        dl_MathLUT(static_cast<int16_t>(c.op));
        ASSERT_EQ(CurrentItem, source->Next) << c.op;
        EXPECT_EQ(CurrentItem->ImageLUT[100], c.at100) << c.op << " " << (c.answer ? c.answer : "");
        EXPECT_EQ(CurrentItem->ImageLUT[250], c.at250) << c.op;
        EXPECT_EQ(LastHistoryCode(CurrentItem), c.code);
        EXPECT_EQ(std::string(MathLUTName(c.op)), c.name);
        EXPECT_TRUE(LogHas(std::string(c.name) + " of 'Op'.\n"));
        if (c.op >= 3 && c.op <= 6) {
            const auto prompts = host.Calls("ap_EnterInteger");
            ASSERT_EQ(prompts.size(), 1u);
            EXPECT_EQ(prompts[0].args, "0 'Enter constant (0-255) : ' 'Tavrin Processing' 3");
        }
    }
}

TEST_F(ContrastTest, ACancelledConstantOrNoImageEndsTheTableOperation)
{
    dl_MathLUT(1);
    EXPECT_TRUE(ErrorShown("No images in memory"));
    EXPECT_EQ(CountItems(), 0);
    ImageHeaderType* source = AddScan();
    dl_MathLUT(3);   // no answer: cancelled
    dl_MathLUT(7);
    EXPECT_EQ(CountItems(), 1);
    EXPECT_EQ(CurrentItem, source);
}

TEST_F(ContrastTest, LineariseGivesTheIdentityAndTheDefaultSettings)
{
    ImageHeaderType* source = AddScan("Lin");
    for (int i = 0; i < 256; ++i) source->ImageLUT[i] = static_cast<uint8_t>(255 - i);
    source->Brightness = 12.0f;
    source->Contrast = 30.0f;
    source->Gamma = 2.5f;
    dl_LineariseImageLUT();
    ImageHeaderType* made = CurrentItem;
    ASSERT_EQ(made, source->Next);
    EXPECT_TRUE(IsIdentityTable(made->ImageLUT));
    EXPECT_FLOAT_EQ(made->Brightness, 0.0f);
    EXPECT_FLOAT_EQ(made->Contrast, 128.0f);
    EXPECT_FLOAT_EQ(made->Gamma, 1.0f);
    EXPECT_EQ(LastHistoryCode(made), 85);
    EXPECT_TRUE(LogHas("Linearise LUT 'Lin'\n"));
    EXPECT_EQ(Pixels(made), Pixels(source));
    EXPECT_EQ(source->ImageLUT[0], 255);
}

// Equalisation.

TEST_F(ContrastTest, EqualisingAConstantImageGives255FromThatLevelOnAnd0Below)
{
    ImageHeaderType* source = AddFlatImage(32, 0x4080);   // level 64
    strncpy0(source->Title, "Flat", sizeof source->Title);
    EXPECT_EQ(dl_HistEqualise(), 1);
    ImageHeaderType* made = CurrentItem;
    ASSERT_EQ(made, source->Next);
    for (int i = 0; i < 64; ++i) EXPECT_EQ(made->ImageLUT[i], 0) << i;
    for (int i = 64; i < 256; ++i) EXPECT_EQ(made->ImageLUT[i], 255) << i;
    EXPECT_EQ(LastHistoryCode(made), 18);
    EXPECT_TRUE(LogHas("Equalize 'Flat'\n"));
    const auto waits = host.Calls("ap_ShowWait");
    ASSERT_EQ(waits.size(), 1u);
    EXPECT_EQ(waits[0].args, "'Please wait while performing histogram equalisation'");
}

TEST_F(ContrastTest, EqualisationGoesThroughTheOldTable)
{
    // Half the points at level 10, half at level 200; the old table swaps the two levels.
    ImageHeaderType* source = AddImage(16, 16, [](int x, int) { return uint16_t(x < 8 ? 10 << 8 : 200 << 8); });
    source->ImageLUT[10] = 200;
    source->ImageLUT[200] = 10;
    ASSERT_EQ(dl_HistEqualise(), 1);
    const ImageHeaderType* made = CurrentItem;
    EXPECT_EQ(made->ImageLUT[10], 255);   // table[200]
    EXPECT_EQ(made->ImageLUT[200], 127);  // table[10] = trunc(0.5 * 255)
    EXPECT_EQ(made->ImageLUT[0], 0);
    EXPECT_EQ(made->ImageLUT[100], 127);
}

TEST_F(ContrastTest, EqualisationWithoutAnImageAnswers0)
{
    EXPECT_EQ(dl_HistEqualise(), 0);
    EXPECT_TRUE(ErrorShown("No images in memory"));
}

// Transform through the table.

TEST_F(ContrastTest, TransformThroughLUTInterpolatesAndTakesTheEndEntriesUnscaled)
{
    ImageHeaderType* source = AddImage(6, 1, [](int x, int) {
        const uint16_t codes[6] = {0, 1, 0x1080, 0xFEFF, 0xFF00, 0xFFFF};
        return codes[x];
    }, "Tr");
    source->SPMData = 1;
    source->DataSource = 2;
    source->Zlo = -1.0f;
    source->Zhi = 3.0f;
    for (int i = 0; i < 256; ++i) source->ImageLUT[i] = static_cast<uint8_t>(std::min(255, i + 20));
    ImageHeaderType* made = TransformThroughLUT();
    ASSERT_NE(made, nullptr);
    EXPECT_EQ(CurrentItem, made);
    EXPECT_EQ(made->PixData[0], 20);                         // entry 0 as it stands
    EXPECT_EQ(made->PixData[1], 20 * 254 + 21 * 1);          // l = 0, f = 1
    EXPECT_EQ(made->PixData[2], 36 * 127 + 37 * 128);        // l = 16, f = 128
    EXPECT_EQ(made->PixData[3], 255 * 0 + 255 * 255);        // l = 254, f = 255
    EXPECT_EQ(made->PixData[4], 255);                        // entry 255, unscaled
    EXPECT_EQ(made->PixData[5], 255);
    EXPECT_TRUE(IsIdentityTable(made->ImageLUT));
    EXPECT_EQ(LastHistoryCode(made), 103);
    EXPECT_TRUE(LogHas("Transform Tr through LUT.\n"));
    // Zlo and Zhi: the source's values of the lowest and highest entry as codes (entry * 257).
    EXPECT_FLOAT_EQ(made->Zlo, GetImageDataValue(0, 20.0f * 257, source));
    EXPECT_FLOAT_EQ(made->Zhi, GetImageDataValue(0, 255.0f * 257, source));
}

TEST_F(ContrastTest, TransformThroughTheIdentityKeepsTheZRange)
{
    ImageHeaderType* source = AddScan();
    ImageHeaderType* made = TransformThroughLUT();
    ASSERT_NE(made, nullptr);
    // A topography: Zlo 0 and Zhi the height.
    EXPECT_FLOAT_EQ(made->Zlo, 0.0f);
    EXPECT_FLOAT_EQ(made->Zhi, 40.0f);
    EXPECT_EQ(made->PixData[0], CodeThroughTable(source->ImageLUT, source->PixData[0]));
}

// Removal of the colour ramp.

TEST_F(ContrastTest, RemoveLUTColoursRefusesAPlainImage)
{
    AddScan();
    EXPECT_EQ(RemoveLUTColours(), nullptr);
    EXPECT_TRUE(ErrorShown("Image is not colour image"));
    EXPECT_EQ(CountItems(), 1);
}

TEST_F(ContrastTest, RemoveLUTColoursDoublesCodesAboveTheFixedColours)
{
    ImageHeaderType* source = AddImage(5, 1, [](int x, int) {
        const uint16_t codes[5] = {100, 8960, 8961, 20000, 40000};
        return codes[x];
    }, "Col");
    source->ColourImage = 1;
    ImageHeaderType* made = RemoveLUTColours();
    ASSERT_NE(made, nullptr);
    EXPECT_EQ(made->PixData[0], 0);
    EXPECT_EQ(made->PixData[1], 0);
    EXPECT_EQ(made->PixData[2], 8961 * 2 - 70);
    EXPECT_EQ(made->PixData[3], 20000 * 2 - 70);
    EXPECT_EQ(made->PixData[4], 65535);   // 79930 limited to the codes
    EXPECT_EQ(made->ColourImage, 0);
    EXPECT_EQ(LastHistoryCode(made), 86);
    EXPECT_TRUE(LogHas("Remove LUT colours 'Col'\n"));
}

// Plots.

TEST_F(ContrastTest, DisplayImageLUTPlotsTheTableWithItsTitles)
{
    AddScan("Plot");
    dl_DisplayImageLUT();
    EXPECT_TRUE(HasText("data value"));
    EXPECT_TRUE(HasText("LUT level"));
    EXPECT_TRUE(LogHas("Display LUT of 'Plot'\n"));
    EXPECT_EQ(CountItems(), 1);
}

TEST_F(ContrastTest, DisplayHistogramInsertsAHistogramItem)
{
    ImageHeaderType* source = AddImage(8, 4, [](int x, int) { return uint16_t(x < 2 ? 0x0310 : 0x8000); }, "Hist");
    source->SPMData = 1;
    source->DataSource = 2;
    source->AdcSrc = 4;
    source->Zlo = 0.0f;
    source->Zhi = 65535.0f;
    dl_DisplayHistogram();
    ImageHeaderType* item = CurrentItem;
    ASSERT_EQ(item, source->Next);
    EXPECT_EQ(item->ImType1, 4u);
    EXPECT_EQ(item->nx, 256);
    EXPECT_STREQ(item->Title, "Histogram");
    const float* samples = reinterpret_cast<const float*>(item->PixData);
    EXPECT_FLOAT_EQ(samples[3], 3.0f * 256);          // the stored value of level 3
    EXPECT_FLOAT_EQ(samples[256 + 3], 8.0f);          // its count
    EXPECT_FLOAT_EQ(samples[256 + 128], 24.0f);
    EXPECT_FLOAT_EQ(samples[256 + 0], 0.0f);
    EXPECT_TRUE(LogHas("Display histogram of 'Hist'.\n"));
    EXPECT_TRUE(HasText("Grey level histogram"));
}

TEST_F(ContrastTest, FixImageZScaleHandsOverToTheMarkerPanel)
{
    AddScan();
    dl_FixImageZScale();
    EXPECT_EQ(SelectItemCol_ProcessType, TV_SELECT_ITEMS_MEASURE);
    EXPECT_EQ(FixZScaleVFS, 1);
    const auto calls = host.Calls("ap_MarkerPanel");
    ASSERT_EQ(calls.size(), 1u);
    EXPECT_EQ(calls[0].args, "3");
}

// The contrast dialogue.

TEST_F(ContrastTest, AdjustLUTRefusesWithoutAnImageAndOpensThreeSliders)
{
    Ap.ap_ScrollBar3 = CaptureBars3;
    dl_AdjustLUT();
    EXPECT_TRUE(ErrorShown("No images in memory"));
    EXPECT_TRUE(g_bars.empty());
    ImageHeaderType* image = AddScan();
    image->Brightness = 5.0f;
    image->Contrast = 100.0f;
    image->Gamma = 2.0f;
    dl_AdjustLUT();
    ASSERT_EQ(g_bars.size(), 3u);
    EXPECT_EQ(g_barsId, 500);
    const struct {
        const char* title;
        float min, max, value, small, large;
        const char* minText;
        const char* maxText;
    } want[3] = {{"Brightness", -128, 128, 5, 1, 10, "-128.0", "128.0"},
                 {"Contrast", 0, 256, 100, 1, 10, "0.0", "256.0"},
                 {"Gamma", 0.1f, 10, 2, 0.1f, 1, "0.1", "10.0"}};
    for (int i = 0; i < 3; ++i) {
        EXPECT_STREQ(g_bars[i].Title, want[i].title);
        EXPECT_FLOAT_EQ(g_bars[i].Min, want[i].min);
        EXPECT_FLOAT_EQ(g_bars[i].Max, want[i].max);
        EXPECT_FLOAT_EQ(g_bars[i].Value, want[i].value);
        EXPECT_FLOAT_EQ(g_bars[i].SmallStep, want[i].small);
        EXPECT_FLOAT_EQ(g_bars[i].LargeStep, want[i].large);
        EXPECT_STREQ(g_bars[i].MinText, want[i].minText);
        EXPECT_STREQ(g_bars[i].MaxText, want[i].maxText);
        EXPECT_EQ(g_bars[i].PosX, -1);
    }
    EXPECT_EQ(CountItems(), 1);
}

TEST_F(ContrastTest, ASliderSessionPreviewsThroughThePaletteAndAcceptEqualsTheDirectTable)
{
    ImageHeaderType* source = AddScan("Sl");
    const auto codes = Pixels(source);
    const auto redBefore = OutputPlane(0);
    dl_AdjustLUT();
    EXPECT_EQ(dl_Horz_Scroll_Bar3_Callback(500, 0, 0.0f, 256.0f, 1.0f), 0);
    // A working copy with the identity table is current; the source is put aside.
    ImageHeaderType* copy = CurrentItem;
    ASSERT_EQ(copy, source->Next);
    EXPECT_TRUE(IsIdentityTable(copy->ImageLUT));
    // Only the palette changed: the ramp through the map, the fixed colours kept.
    uint8_t e[256] = {};
    ContrastRampMap(0.0, 2.0, 1.0, e);
    const auto red = OutputPlane(0);
    for (int i = 35; i <= 162; ++i) EXPECT_EQ(red[i], redBefore[e[i]]) << i;
    for (int i = 0; i < 33; ++i) EXPECT_EQ(red[i], redBefore[i]) << i;
    EXPECT_EQ(host.palette[0][40], redBefore[e[40]]);
    EXPECT_EQ(ThresholdLow, 95);
    EXPECT_EQ(ThresholdHigh, 101);
    EXPECT_TRUE(LutDialogueRunning());

    EXPECT_EQ(dl_Horz_Scroll_Bar3_Callback(500, 1, 12.0f, 90.0f, 1.5f), 0);
    EXPECT_FALSE(LutDialogueRunning());
    ASSERT_EQ(CurrentItem, copy);
    uint8_t direct[256];
    PlainContrastTable(12.0, 90.0, 1.5, direct);
    EXPECT_EQ(Table(copy), std::vector<uint8_t>(direct, direct + 256));
    EXPECT_FLOAT_EQ(copy->Brightness, 12.0f);
    EXPECT_FLOAT_EQ(copy->Contrast, 90.0f);
    EXPECT_FLOAT_EQ(copy->Gamma, 1.5f);
    EXPECT_EQ(LastHistoryCode(copy), 81);
    EXPECT_EQ(Pixels(copy), codes);
    EXPECT_TRUE(LogHas("Adjust contrast and brightness of 'Sl'\n"));
    EXPECT_EQ(OutputPlane(0), redBefore);
    EXPECT_EQ(ThresholdLow, 0);
    EXPECT_EQ(ThresholdHigh, 255);
    EXPECT_TRUE(IsIdentityTable(source->ImageLUT));
}

TEST_F(ContrastTest, TwoSlidersOfId500MeanGammaOne)
{
    AddScan();
    // Not opened: an unknown id, reported, and nothing made.
    EXPECT_EQ(dl_Horz_Scroll_Bar2_Callback(500, 1, 0.0f, 0.0f), 0);
    EXPECT_TRUE(LogHasProgramError("dl_Horz_Scroll_Bar2_Callback (500,1,0.000000,0.000000)"));
    EXPECT_EQ(CountItems(), 1);
    dl_AdjustLUT();
    EXPECT_EQ(dl_Horz_Scroll_Bar2_Callback(500, 1, -20.0f, 200.0f), 0);
    uint8_t direct[256];
    PlainContrastTable(-20.0, 200.0, 1.0, direct);
    EXPECT_EQ(Table(CurrentItem), std::vector<uint8_t>(direct, direct + 256));
    EXPECT_FLOAT_EQ(CurrentItem->Gamma, 1.0f);
}

TEST_F(ContrastTest, CancelOfTheContrastDialogueChangesNothing)
{
    ImageHeaderType* source = AddScan("Cn");
    const auto redBefore = OutputPlane(0);
    const auto codes = Pixels(source);
    dl_AdjustLUT();
    dl_Horz_Scroll_Bar3_Callback(500, 0, 30.0f, 200.0f, 0.5f);
    dl_Horz_Scroll_Bar3_Callback(500, 0, 40.0f, 220.0f, 0.5f);
    EXPECT_EQ(CountItems(), 2);
    dl_Horz_Scroll_Bar3_Callback(500, 2, 40.0f, 220.0f, 0.5f);
    EXPECT_EQ(CountItems(), 1);
    EXPECT_EQ(CurrentItem, source);
    EXPECT_EQ(Pixels(source), codes);
    EXPECT_TRUE(IsIdentityTable(source->ImageLUT));
    EXPECT_FLOAT_EQ(source->Contrast, 128.0f);
    EXPECT_EQ(LastHistoryCode(source), 0);
    EXPECT_EQ(OutputPlane(0), redBefore);
    EXPECT_EQ(ThresholdLow, 0);
    EXPECT_EQ(ThresholdHigh, 255);
    EXPECT_TRUE(LogHas("Adjust contrast and brightness of 'Cn'\n"));
    EXPECT_FALSE(LutDialogueRunning());
}

TEST_F(ContrastTest, AColourImageAcceptsTheRampMap)
{
    ImageHeaderType* source = AddScan();
    source->ColourImage = 1;
    dl_AdjustLUT();
    dl_Horz_Scroll_Bar3_Callback(500, 1, 8.0f, 170.0f, 0.8f);
    uint8_t direct[256];
    ColourContrastTable(8.0, 170.0, 0.8, direct);
    EXPECT_EQ(Table(CurrentItem), std::vector<uint8_t>(direct, direct + 256));
}

TEST_F(ContrastTest, TheFullDisplayMarksTheColourBarRowsBeyondTheThresholds)
{
    AddScan();
    dl_AdjustLUT();
    dl_Horz_Scroll_Bar3_Callback(500, 0, 0.0f, 256.0f, 1.0f);
    ASSERT_EQ(FullDisplay(0), 0);
    // Row 0 shows level 255 (index 162, beyond ThresholdHigh 101), row 399 level 0 (index 35,
    // below ThresholdLow 95), the middle row index 98.
    EXPECT_EQ(fs.Index(410, 0), 2);
    EXPECT_EQ(fs.Index(410, 399), 2);
    EXPECT_EQ(ColourBarIndex(CurrentItem, 200), 98);
    EXPECT_EQ(fs.Index(410, 200), 98);
    dl_Horz_Scroll_Bar3_Callback(500, 2, 0.0f, 256.0f, 1.0f);
    ASSERT_EQ(FullDisplay(0), 0);
    EXPECT_NE(fs.Index(410, 0), 2);
}

// The threshold dialogue.

TEST_F(ContrastTest, SetWindowOpensTwoSlidersOverThePhysicalRange)
{
    Ap.ap_ScrollBar2 = CaptureBars2;
    dl_SetWindow();
    EXPECT_TRUE(ErrorShown("No images in memory"));
    AddScan();
    dl_SetWindow();
    ASSERT_EQ(g_bars.size(), 2u);
    EXPECT_EQ(g_barsId, 201);
    EXPECT_STREQ(g_bars[0].Title, "Low Threshold [nm]");
    EXPECT_STREQ(g_bars[1].Title, "High Threshold [nm]");
    for (const auto& bar : g_bars) {
        EXPECT_FLOAT_EQ(bar.Min, -10.0f);
        EXPECT_FLOAT_EQ(bar.Max, 30.0f);
        EXPECT_FLOAT_EQ(bar.SmallStep, 40.0f / 256.0f);
        EXPECT_FLOAT_EQ(bar.LargeStep, 40.0f / 25.6f);
        EXPECT_STREQ(bar.MinText, "-10.0");
        EXPECT_STREQ(bar.MaxText, "30.0");
    }
    EXPECT_FLOAT_EQ(g_bars[0].Value, -10.0f);
    EXPECT_FLOAT_EQ(g_bars[1].Value, 30.0f);
    // A current image: the unit of the source.
    CurrentItem->DataSource = 2;
    dl_SetWindow();
    EXPECT_STREQ(g_bars[0].Title, "Low Threshold [nA]");
    CurrentItem->DataSource = 11;
    dl_SetWindow();
    EXPECT_STREQ(g_bars[1].Title, "High Threshold [deg]");
}

TEST_F(ContrastTest, ThresholdSliderValuesBecomeLevels)
{
    ImageHeaderType* image = AddScan();
    EXPECT_EQ(ThresholdLevel(image, -10.0f), 0);
    EXPECT_EQ(ThresholdLevel(image, 30.0f), 255);
    EXPECT_EQ(ThresholdLevel(image, 10.0f), 127);   // 32767.5 / 256
    EXPECT_EQ(ThresholdLevel(image, -50.0f), 0);
    EXPECT_EQ(ThresholdLevel(image, 99.0f), 255);
    image->Zhi = image->Zlo;
    EXPECT_EQ(ThresholdLevel(image, 10.0f), 0);
}

TEST_F(ContrastTest, AThresholdSessionWithoutTransformKeepsTheCodes)
{
    ImageHeaderType* source = AddScan();
    const auto codes = Pixels(source);
    dl_SetWindow();
    // Levels 64 and 128 of the range -10 .. 30 nm.
    const float lo = -10.0f + 40.0f * 64.5f * 256 / 65535, hi = -10.0f + 40.0f * 128.5f * 256 / 65535;
    EXPECT_EQ(dl_Horz_Scroll_Bar2_Callback(201, 0, lo, hi), 0);
    ImageHeaderType* copy = CurrentItem;
    ASSERT_EQ(copy, source->Next);
    host.messageBoxAnswers.push_back(TV_IDNO);
    EXPECT_EQ(dl_Horz_Scroll_Bar2_Callback(201, 1, lo, hi), 0);
    uint8_t direct[256];
    IdentityTable(direct);
    ThresholdBandTable(64, 128, direct);
    EXPECT_EQ(Table(copy), std::vector<uint8_t>(direct, direct + 256));
    EXPECT_EQ(Pixels(copy), codes);
    EXPECT_FLOAT_EQ(copy->Brightness, 16.0f);
    EXPECT_FLOAT_EQ(copy->Contrast, 224.0f);
    EXPECT_EQ(LastHistoryCode(copy), 47);
    ASSERT_FALSE(host.messageBoxes.empty());
    EXPECT_EQ(host.messageBoxes.back().text, "Transform underlying image data?");
}

TEST_F(ContrastTest, AThresholdSessionWithTransformStretchesTheCodesAndTheZRange)
{
    ImageHeaderType* source = AddScan();
    host.messageBoxAnswers.push_back(TV_IDYES);
    ASSERT_EQ(AdjustThresholds(64, 128, 1), 0);
    ImageHeaderType* made = CurrentItem;
    ASSERT_EQ(made, source->Next);
    for (size_t i = 0; i < Pixels(source).size(); ++i)
        ASSERT_EQ(made->PixData[i], ThresholdCode(source->PixData[i], 64, 128)) << i;
    // A topography: Zlo 0, Zhi the height between the limits; the table back to the identity.
    EXPECT_FLOAT_EQ(made->Zlo, 0.0f);
    EXPECT_FLOAT_EQ(made->Zhi, GetImageDataValue(0, 128 * 256, source) - GetImageDataValue(0, 64 * 256, source));
    EXPECT_TRUE(IsIdentityTable(made->ImageLUT));
}

TEST_F(ContrastTest, AChangedTableIsTransformedBeforeTheThresholds)
{
    ImageHeaderType* source = AddScan();
    source->ImageLUT[5] = 200;
    host.messageBoxAnswers.push_back(TV_IDOK);
    ASSERT_EQ(AdjustThresholds(10, 200, 0), 0);
    ASSERT_FALSE(host.messageBoxes.empty());
    EXPECT_EQ(host.messageBoxes[0].text, "Original LUT had been changed.\n Tavrin will make a new Image.");
    ImageHeaderType* transformed = source->Next;
    ASSERT_NE(transformed, nullptr);
    EXPECT_EQ(LastHistoryCode(transformed), 103);
    EXPECT_EQ(CurrentItem, transformed->Next);
    ASSERT_EQ(AdjustThresholds(10, 200, 2), 0);
    // Cancel frees the working copy; the transformed image stays.
    EXPECT_EQ(CurrentItem, transformed);
    EXPECT_EQ(CountItems(), 2);
}

TEST_F(ContrastTest, CancelOfTheThresholdDialogueChangesNothing)
{
    ImageHeaderType* source = AddScan();
    const auto redBefore = OutputPlane(0);
    dl_SetWindow();
    dl_Horz_Scroll_Bar2_Callback(201, 0, 0.0f, 10.0f);
    dl_Horz_Scroll_Bar2_Callback(201, 2, 0.0f, 10.0f);
    EXPECT_EQ(CountItems(), 1);
    EXPECT_EQ(CurrentItem, source);
    EXPECT_TRUE(IsIdentityTable(source->ImageLUT));
    EXPECT_EQ(OutputPlane(0), redBefore);
    EXPECT_TRUE(host.messageBoxes.empty());
}

TEST_F(ContrastTest, InTrueRGBModeThePreviewRedrawsTheFullDisplayWithTheTableOfTheAccept)
{
    TrueRGB = true;
    AddScan();
    host.ClearCalls();
    dl_AdjustLUT();
    // The full display comes first, without text.
    EXPECT_EQ(fs.Index(405, 100), 6);
    const int shown = host.Count("ap_UpdateVFS");
    EXPECT_GE(shown, 1);
    dl_Horz_Scroll_Bar3_Callback(500, 0, 20.0f, 150.0f, 1.0f);
    uint8_t direct[256];
    PlainContrastTable(20.0, 150.0, 1.0, direct);
    EXPECT_EQ(Table(CurrentItem), std::vector<uint8_t>(direct, direct + 256));
    EXPECT_GT(host.Count("ap_UpdateVFS"), shown);
    // The same values again: nothing is redrawn.
    const int again = host.Count("ap_UpdateVFS");
    dl_Horz_Scroll_Bar3_Callback(500, 0, 20.0f, 150.0f, 1.0f);
    EXPECT_EQ(host.Count("ap_UpdateVFS"), again);
    dl_Horz_Scroll_Bar3_Callback(500, 2, 20.0f, 150.0f, 1.0f);
    TrueRGB = false;
}

TEST_F(ContrastTest, ExtractAndReplaceAreCodes87And88OfTheHistory)
{
    EXPECT_STREQ(GetProcessName(87 - 1), "Extract");
    EXPECT_STREQ(GetProcessName(88 - 1), "Replace");
    EXPECT_STREQ(GetProcessName(81 - 1), "Adjust contrast & brightness");
    EXPECT_STREQ(GetProcessName(47 - 1), "Window");
    EXPECT_STREQ(GetProcessName(103 - 1), "Transform Data");
}

TEST_F(ContrastTest, AWorkingCopyErasedMeanwhileEndsTheDialogueAndTheNextMoveStartsAfresh)
{
    ImageHeaderType* source = AddScan();
    const auto redBefore = OutputPlane(0);
    dl_AdjustLUT();
    dl_Horz_Scroll_Bar3_Callback(500, 0, 50.0f, 250.0f, 1.0f);
    ImageHeaderType* copy = CurrentItem;
    ASSERT_EQ(copy, source->Next);
    EraseItem(copy);
    CurrentItem = source;
    EXPECT_EQ(dl_Horz_Scroll_Bar3_Callback(500, 1, 5.0f, 128.0f, 1.0f), 0);
    ASSERT_EQ(CountItems(), 2);
    ImageHeaderType* made = CurrentItem;
    ASSERT_EQ(made, source->Next);
    uint8_t direct[256];
    PlainContrastTable(5.0, 128.0, 1.0, direct);
    EXPECT_EQ(Table(made), std::vector<uint8_t>(direct, direct + 256));
    EXPECT_EQ(OutputPlane(0), redBefore);
    EXPECT_FALSE(LutDialogueRunning());
}
