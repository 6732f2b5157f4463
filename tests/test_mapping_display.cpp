// The display of mapping sets: which image each frame shows, the sheet of frames in every mode,
// labels, grid, the topography frame, the single image with its text block, the paged browser,
// the rapid replay and the exchange of the display block.
#include "test_mapping_support.h"
#include "test_render_support.h"

#include "display/colour_map.h"
#include "display/selection.h"
#include "host/wait.h"
#include "mapping/cits_display.h"
#include "mapping/cits_label.h"
#include "settings/cantilever.h"
#include "settings/configuration.h"
#include "settings/user_settings.h"
#include "store/units.h"
#include "tavrin/dl_selection.h"
#include "tavrin/dl_mapping.h"

#include <algorithm>
#include <cfloat>
#include <cstdint>
#include <cmath>
#include <cstring>
#include <vector>

using namespace maptest;

namespace {

CITSDispBlockType Block(int select, int mode, int n, bool topography)
{
    CITSDispBlockType d{};
    d.select = static_cast<uint8_t>(select);
    d.mode = static_cast<uint8_t>(mode);
    d.n = static_cast<int16_t>(n);
    d.flags = topography ? 1 : 0;
    for (int k = 0; k < 64; ++k) d.im_no[k] = -1;
    return d;
}

class MappingDisplayTest : public RenderTest {
protected:
    void TearDown() override
    {
        while (FirstItem) EraseItem(FirstItem);
        RenderTest::TearDown();
    }
    // A mapping image of side n with ni images; the display block set as given, no labels.
    ImageHeaderType* Mapping(int n, int ni, int select, int mode, int dn, bool topography)
    {
        ImageHeaderType* image = MakeMappingImage(n, ni);
        if (!image) return nullptr;
        image->CITSHeaderPtr->disp = Block(select, mode, dn, topography);
        return image;
    }
    static CITSHeaderType* Set(ImageHeaderType* image) { return image->CITSHeaderPtr; }
    static uint16_t Pix(ImageHeaderType* image, int k, int x, int y)
    {
        return CITSPixels(CITSEntry(Set(image), k))[static_cast<size_t>(y) * Set(image)->cx + x];
    }
    bool FrameIsBlank() const
    {
        for (uint8_t v : fs.frame)
            if (v != 0) return false;
        return true;
    }
    std::vector<std::string> Texts() const
    {
        std::vector<std::string> out;
        for (const CVfsItem& item : CurrentVfs()->Items)
            if (item.Kind == VFS_ITEM_TEXT) out.push_back(item.Text);
        return out;
    }
    const CVfsItem* TextItem(const std::string& text) const
    {
        for (const CVfsItem& item : CurrentVfs()->Items)
            if (item.Kind == VFS_ITEM_TEXT && item.Text == text) return &item;
        return nullptr;
    }
    std::vector<std::string> ParamLines() const
    {
        std::vector<std::string> out;
        for (const RecordedCall& c : host.Calls("ap_PrintParamLine")) out.push_back(c.args);
        return out;
    }
    static bool Has(const std::vector<std::string>& v, const std::string& s)
    {
        for (const std::string& x : v)
            if (x == s) return true;
        return false;
    }
};

// ---------------------------------------------------------------- frame to image

TEST_F(MappingDisplayTest, FrameZeroWithTopographyIsTheTopography)
{
    for (int select = 0; select <= 4; ++select) {
        const CITSDispBlockType d = Block(select, 0, 4, true);
        EXPECT_EQ(CITSDispImageNo(0, 10, &d), -1) << select;
    }
}

TEST_F(MappingDisplayTest, FrameAtOrPastTheImageCountIsBlank)
{
    const CITSDispBlockType d = Block(2, 0, 16, false);
    EXPECT_EQ(CITSDispImageNo(9, 10, &d), 9);
    EXPECT_EQ(CITSDispImageNo(10, 10, &d), -32768);
    EXPECT_EQ(CITSDispImageNo(11, 10, &d), -32768);
}

TEST_F(MappingDisplayTest, SelectNoneIsBlank)
{
    const CITSDispBlockType d = Block(0, 0, 4, false);
    EXPECT_EQ(CITSDispImageNo(1, 10, &d), -32768);
}

TEST_F(MappingDisplayTest, SpreadEvenlyPlainModeAllBranches)
{
    // Topography on, n <= ni: ((f - 1) * ni) / (n - 1).
    CITSDispBlockType d = Block(1, 0, 16, true);
    EXPECT_EQ(CITSDispImageNo(5, 100, &d), 26);    // 4 * 100 / 15
    EXPECT_EQ(CITSDispImageNo(1, 100, &d), 0);
    // n of 2 or less divides by 99998.
    d.n = 2;
    EXPECT_EQ(CITSDispImageNo(1, 100, &d), 0);
    // Topography on, n > ni: f - 1.
    d.n = 200;
    EXPECT_EQ(CITSDispImageNo(7, 100, &d), 6);
    // Topography off, n < ni: (f * ni) / n; n of 0 divides by 99999.
    d = Block(1, 0, 16, false);
    EXPECT_EQ(CITSDispImageNo(5, 100, &d), 31);    // 500 / 16
    d.n = 0;
    EXPECT_EQ(CITSDispImageNo(5, 100, &d), 0);
    // Topography off, n >= ni: f.
    d.n = 100;
    EXPECT_EQ(CITSDispImageNo(5, 100, &d), 5);
}

TEST_F(MappingDisplayTest, SpreadEvenlyDifferenceModesAllBranches)
{
    for (int mode = 1; mode <= 4; ++mode) {
        CITSDispBlockType d = Block(1, mode, 16, true);
        EXPECT_EQ(CITSDispImageNo(5, 100, &d), 27) << mode;   // 4 * 99 / 15 + 1
        d.n = 1;
        EXPECT_EQ(CITSDispImageNo(5, 100, &d), 1) << mode;    // 4 * 99 / 99998 + 1
        d = Block(1, mode, 16, false);
        EXPECT_EQ(CITSDispImageNo(5, 100, &d), 31) << mode;   // 99 * 5 / 16 + 1
        d.n = 0;
        EXPECT_EQ(CITSDispImageNo(5, 100, &d), 1) << mode;
        d.n = 100;
        EXPECT_EQ(CITSDispImageNo(5, 100, &d), 5) << mode;
        d.flags = 1;
        EXPECT_EQ(CITSDispImageNo(5, 100, &d), 5) << mode;
    }
}

TEST_F(MappingDisplayTest, InOrderFromTheStart)
{
    EXPECT_EQ(CITSDispImageNo(3, 10, &(const CITSDispBlockType&)Block(2, 0, 4, true)), 2);
    EXPECT_EQ(CITSDispImageNo(3, 10, &(const CITSDispBlockType&)Block(2, 0, 4, false)), 3);
    EXPECT_EQ(CITSDispImageNo(3, 10, &(const CITSDispBlockType&)Block(2, 1, 4, true)), 3);
    EXPECT_EQ(CITSDispImageNo(3, 10, &(const CITSDispBlockType&)Block(2, 1, 4, false)), 4);
    // The last frame of a difference sheet would need image ni.
    EXPECT_EQ(CITSDispImageNo(9, 10, &(const CITSDispBlockType&)Block(2, 1, 4, false)), -32768);
}

TEST_F(MappingDisplayTest, ReverseOrderFromTheEnd)
{
    EXPECT_EQ(CITSDispImageNo(1, 10, &(const CITSDispBlockType&)Block(3, 0, 4, true)), 9);
    EXPECT_EQ(CITSDispImageNo(1, 10, &(const CITSDispBlockType&)Block(3, 0, 4, false)), 8);
    EXPECT_EQ(CITSDispImageNo(0, 10, &(const CITSDispBlockType&)Block(3, 0, 4, false)), 9);
    // A difference frame never shows image 0 itself.
    EXPECT_EQ(CITSDispImageNo(9, 10, &(const CITSDispBlockType&)Block(3, 1, 4, false)), -32768);
    EXPECT_EQ(CITSDispImageNo(9, 10, &(const CITSDispBlockType&)Block(3, 0, 4, false)), 0);
}

TEST_F(MappingDisplayTest, ExplicitList)
{
    CITSDispBlockType d = Block(4, 0, 4, true);
    d.im_no[0] = 7;
    d.im_no[1] = 3;
    d.im_no[2] = 12;
    EXPECT_EQ(CITSDispImageNo(1, 10, &d), 7);
    EXPECT_EQ(CITSDispImageNo(2, 10, &d), 3);
    EXPECT_EQ(CITSDispImageNo(3, 10, &d), -32768);   // 12 is past the set
    EXPECT_EQ(CITSDispImageNo(4, 10, &d), -32768);   // -1: none
    d.flags = 0;
    EXPECT_EQ(CITSDispImageNo(0, 10, &d), 7);
    EXPECT_EQ(CITSDispImageNo(1, 10, &d), 3);
}

TEST_F(MappingDisplayTest, ExplicitListDifferenceFrameRefusesImageZero)
{
    CITSDispBlockType d = Block(4, 1, 4, false);
    d.im_no[0] = 0;
    d.im_no[1] = 1;
    EXPECT_EQ(CITSDispImageNo(0, 10, &d), -32768);
    EXPECT_EQ(CITSDispImageNo(1, 10, &d), 1);
    d.mode = 0;
    EXPECT_EQ(CITSDispImageNo(0, 10, &d), 0);
}

TEST_F(MappingDisplayTest, ExplicitListFrameBeyondTheListIsBlank)
{
    CITSDispBlockType d = Block(4, 0, 64, false);
    for (int k = 0; k < 64; ++k) d.im_no[k] = static_cast<int16_t>(k);
    EXPECT_EQ(CITSDispImageNo(63, 200, &d), 63);
    EXPECT_EQ(CITSDispImageNo(64, 200, &d), -32768);
}

TEST_F(MappingDisplayTest, UnknownSelectIsMisspeltError)
{
    const CITSDispBlockType d = Block(5, 0, 4, false);
    EXPECT_EQ(CITSDispImageNo(1, 10, &d), -32768);
    EXPECT_TRUE(LogHasProgramError("Invlid CITS display mode"));
}

TEST_F(MappingDisplayTest, ModeAboveFourIsError)
{
    for (int select = 1; select <= 3; ++select) {
        const CITSDispBlockType d = Block(select, 5, 4, false);
        EXPECT_EQ(CITSDispImageNo(1, 10, &d), -32768);
    }
    EXPECT_EQ(CountInLog("Program error - Invalid CITS display mode"), 3);
}

TEST_F(MappingDisplayTest, Mode1Select2TopographyOffStartsAtImage1)
{
    const CITSDispBlockType off = Block(2, 1, 4, false);
    EXPECT_EQ(CITSDispImageNo(0, 10, &off), 1);
    const CITSDispBlockType on = Block(2, 1, 4, true);
    EXPECT_EQ(CITSDispImageNo(0, 10, &on), -1);
    EXPECT_EQ(CITSDispImageNo(1, 10, &on), 1);
}

// ---------------------------------------------------------------- the sheet

TEST_F(MappingDisplayTest, DispN3With100ImagesIsRefused)
{
    ImageHeaderType* image = Mapping(64, 100, 1, 0, 3, false);
    ASSERT_NE(image, nullptr);
    FSState.ImageDisplaySize = 128;
    FSState.DispMode = 3;
    DisplayCITSDataSet1(image, 0);
    EXPECT_TRUE(LogHasProgramError("Invalid number of images to display"));
    EXPECT_TRUE(FrameIsBlank());
    EXPECT_EQ(FSState.ImageDisplaySize, 128);
    EXPECT_EQ(FSState.DispMode, 3);
    EXPECT_EQ(HourGlassCount(), 0);
}

TEST_F(MappingDisplayTest, DispNIsLimitedToTheImageCountAndStoredBack)
{
    ImageHeaderType* image = Mapping(64, 8, 2, 0, 300, false);
    ASSERT_NE(image, nullptr);
    DisplayCITSDataSet1(image, 0);
    EXPECT_EQ(Set(image)->disp.n, 8);
    EXPECT_FALSE(LogHasProgramErrors());
}

TEST_F(MappingDisplayTest, ExplicitListLimitsNTo64)
{
    ImageHeaderType* image = Mapping(16, 200, 4, 0, 128, false);
    ASSERT_NE(image, nullptr);
    const CITSSheetLayout L = CITSSheetLayoutOf(image, 0);
    EXPECT_EQ(Set(image)->disp.n, 64);
    EXPECT_TRUE(L.ok);
    EXPECT_EQ(L.frameSize, 16);   // 64 for 64 frames, limited to the width
    EXPECT_EQ(L.frames, 64);
}

TEST_F(MappingDisplayTest, FrameSizeTable)
{
    ImageHeaderType* image = Mapping(512, 100, 2, 0, 1, false);
    ASSERT_NE(image, nullptr);
    const int ns[] = {1, 2, 4, 5, 16, 17, 64, 65};
    const int sizes[] = {512, 256, 256, 128, 128, 64, 64, 32};
    for (int i = 0; i < 8; ++i) {
        Set(image)->disp.n = static_cast<int16_t>(ns[i]);
        EXPECT_EQ(CITSSheetLayoutOf(image, 0).frameSize, sizes[i]) << ns[i];
    }
    EXPECT_EQ(CITSSheetLayoutOf(image, 64).frameSize, 64);
    EXPECT_EQ(CITSSheetLayoutOf(image, 128).frameSize, 128);
}

TEST_F(MappingDisplayTest, OtherFixedSizeIsErrorAndEndsAtShrinkTest)
{
    ImageHeaderType* image = Mapping(64, 4, 2, 0, 4, false);
    ASSERT_NE(image, nullptr);
    const CITSSheetLayout L = CITSSheetLayoutOf(image, 100);
    EXPECT_TRUE(LogHasProgramError("DisplayCITSDataSet1 d64_128=100"));
    EXPECT_EQ(L.frameSize, 64);
    EXPECT_FALSE(L.ok);
    EXPECT_TRUE(LogHasProgramError("DisplayCITSDataSet1  sizex=64  d64_128=100"));
}

TEST_F(MappingDisplayTest, ShrinkAbove16IsRefused)
{
    // 512 at 128 frames of a fixed 64 would be fine; 512 over 16 frames of 32 (n 65) is 16;
    // a 16-wide set at a fixed 64 has shrink 0.
    ImageHeaderType* image = Mapping(16, 4, 2, 0, 4, false);
    ASSERT_NE(image, nullptr);
    DisplayCITSDataSet1(image, 64);
    EXPECT_TRUE(LogHasProgramError("DisplayCITSDataSet1  sizex=16  d64_128=64"));
    EXPECT_TRUE(FrameIsBlank());
}

TEST_F(MappingDisplayTest, Size256At64HasShrink4And64FramesSampledEveryFourthPixel)
{
    ImageHeaderType* image = Mapping(256, 64, 2, 0, 64, false);
    ASSERT_NE(image, nullptr);
    const CITSSheetLayout L = CITSSheetLayoutOf(image, 64);
    EXPECT_EQ(L.shrink, 4);
    EXPECT_EQ(L.shift, 2);
    EXPECT_EQ(L.frames, 64);
    DisplayCITSDataSet1(image, 64);
    EXPECT_FALSE(LogHasProgramErrors());
    int mismatches = 0;
    for (int y = 0; y < 512; ++y)
        for (int x = 0; x < 512; ++x) {
            int expected;
            if (y > 0 && y % 64 == 0)
                expected = 32;
            else if (y > 0 && x > 0 && x % 64 == 0)
                expected = 32;
            else {
                const int f = (y / 64) * 8 + x / 64;
                expected = 35 + (Pix(image, f, (x % 64) * 4, (y % 64) * 4) >> 9);
            }
            mismatches += fs.Index(x, y) != expected;
        }
    EXPECT_EQ(mismatches, 0);
}

TEST_F(MappingDisplayTest, SheetOfMode1IsTheAbsoluteRawDifference)
{
    ImageHeaderType* image = Mapping(128, 8, 2, 1, 4, false);
    ASSERT_NE(image, nullptr);
    DisplayCITSDataSet1(image, 0);   // 4 frames of 256, limited to 128
    int mismatches = 0;
    for (int f = 0; f < 4; ++f)
        for (int y = 1; y < 127; ++y)
            for (int x = 1; x < 127; ++x) {
                const int a = Pix(image, f + 1, x, y), b = Pix(image, f, x, y);
                mismatches += fs.Index(f * 128 + x, y) != 35 + (std::abs(a - b) >> 9);
            }
    EXPECT_EQ(mismatches, 0);
}

// The levels of modes 2 to 4 computed here from the stated formulas.
void ExpectScaledSheet(MappingDisplayTest* t, ImageHeaderType* image, int mode, const TestFrameStore& fs, int* worst)
{
    (void)t;
    const CITSHeaderType* set = image->CITSHeaderPtr;
    const int n = set->cx;
    *worst = 0;
    const CITSImageEntryType* ea = CITSEntry(set, 1);
    const CITSImageEntryType* eb = CITSEntry(set, 0);
    auto value = [](const CITSImageEntryType* e, uint16_t p) {
        return static_cast<double>(p) * (e->z_high - e->z_low) / 65535.0 + e->z_low;
    };
    auto q = [&](int x, int y) {
        const uint16_t a = CITSPixels(ea)[y * n + x], b = CITSPixels(eb)[y * n + x];
        if (mode == 3)
            return (a - ea->raw_low) * 65535.0 / (ea->raw_high - ea->raw_low) -
                   (b - eb->raw_low) * 65535.0 / (eb->raw_high - eb->raw_low);
        double d = value(ea, a) - value(eb, b);
        if (mode == 4) {
            const double dv = std::fabs(static_cast<double>(ea->voltage) - eb->voltage);
            d /= dv == 0.0 ? 1.0 : dv;
        }
        return d;
    };
    double lo = DBL_MAX, hi = -DBL_MAX;
    for (int y = 0; y < n; ++y)
        for (int x = 0; x < n; ++x) {
            lo = std::min(lo, q(x, y));
            hi = std::max(hi, q(x, y));
        }
    for (int y = 0; y < n; ++y)
        for (int x = 0; x < n; ++x) {
            if ((y > 0 && y % n == 0) || (x > 0 && x % n == 0)) continue;
            const int expected = 35 + static_cast<int>((q(x, y) - lo) / (hi - lo) * 127.0);
            *worst = std::max(*worst, std::abs(fs.Index(x, y) - expected));
        }
}

TEST_F(MappingDisplayTest, SheetsOfModes2To4AreWithinOneLevel)
{
    for (int mode = 2; mode <= 4; ++mode) {
        SCOPED_TRACE(mode);
        ImageHeaderType* image = Mapping(64, 2, 2, mode, 1, false);
        ASSERT_NE(image, nullptr);
        CITSEntry(Set(image), 0)->raw_low = -1000;
        CITSEntry(Set(image), 0)->raw_high = 3000;
        CITSEntry(Set(image), 1)->raw_low = 0;
        CITSEntry(Set(image), 1)->raw_high = 2000;
        CITSEntry(Set(image), 1)->z_high = 3.0f;
        std::fill(fs.frame.begin(), fs.frame.end(), 0);
        FSState.CursorX = FSState.CursorY = 0;
        FSState.RowHeight = 0;
        DisplayCITSDataSet1(image, 0);   // one frame of 512, limited to 64
        int worst = 99;
        ExpectScaledSheet(this, image, mode, fs, &worst);
        EXPECT_LE(worst, 1);
        EraseItem(image);
    }
}

TEST_F(MappingDisplayTest, Mode4WithEqualVoltagesDividesByOne)
{
    ImageHeaderType* image = Mapping(64, 2, 2, 4, 1, false);
    ASSERT_NE(image, nullptr);
    CITSEntry(Set(image), 1)->voltage = CITSEntry(Set(image), 0)->voltage;
    CITSEntry(Set(image), 1)->z_high = 5.0f;
    DisplayCITSDataSet1(image, 0);
    std::vector<uint8_t> mode4 = fs.frame;
    int worst = 99;
    ExpectScaledSheet(this, image, 4, fs, &worst);
    EXPECT_LE(worst, 1);
    // With a divider of 1.0 the frame is that of mode 2.
    Set(image)->disp.mode = 2;
    FSState.CursorX = FSState.CursorY = 0;
    DisplayCITSDataSet1(image, 0);
    EXPECT_EQ(fs.frame, mode4);
}

TEST_F(MappingDisplayTest, EqualLowAndHighDrawsLevelZero)
{
    ImageHeaderType* image = Mapping(64, 2, 2, 2, 1, false);
    ASSERT_NE(image, nullptr);
    std::memcpy(CITSPixels(CITSEntry(Set(image), 1)), CITSPixels(CITSEntry(Set(image), 0)), 64 * 64 * 2);
    DisplayCITSDataSet1(image, 0);
    for (int y = 1; y < 63; ++y)
        for (int x = 1; x < 63; ++x) ASSERT_EQ(fs.Index(x, y), 35) << x << "," << y;
}

TEST_F(MappingDisplayTest, RangePassVisitsOnlyThePixelsTheFrameShows)
{
    // 128 at a fixed 64: shrink 2. A spike at an odd pixel, never shown, must not set the range.
    ImageHeaderType* image = Mapping(128, 2, 2, 2, 1, false);
    ASSERT_NE(image, nullptr);
    uint16_t* a = CITSPixels(CITSEntry(Set(image), 1));
    uint16_t* b = CITSPixels(CITSEntry(Set(image), 0));
    for (int i = 0; i < 128 * 128; ++i) {
        a[i] = static_cast<uint16_t>((i % 128) * 100);
        b[i] = 0;
    }
    a[1 * 128 + 1] = 65535;
    DisplayCITSDataSet1(image, 64);
    int top = 0;
    for (int y = 1; y < 63; ++y)
        for (int x = 0; x < 64; ++x) top = std::max(top, static_cast<int>(fs.Index(x, y)));
    // Column 63 of the frame shows source column 126, the largest shown: level 127.
    EXPECT_EQ(top, 35 + 127);
    EXPECT_EQ(fs.Index(63, 5), 35 + 127);
    EXPECT_EQ(fs.Index(0, 5), 35);
}

TEST_F(MappingDisplayTest, GridIsDrawnInColour32)
{
    ImageHeaderType* image = Mapping(128, 16, 2, 0, 16, false);
    ASSERT_NE(image, nullptr);
    // Every pixel 0: the frames are level 0 (35), the grid stands out.
    for (int k = 0; k < 16; ++k) std::memset(CITSPixels(CITSEntry(Set(image), k)), 0, 128 * 128 * 2);
    DisplayCITSDataSet1(image, 0);   // 16 frames of 128
    for (int y = 0; y < 512; ++y)
        for (int x = 0; x < 512; ++x) {
            const bool line = y > 0 && y % 128 == 0;
            const bool point = y > 0 && x > 0 && x % 128 == 0;
            ASSERT_EQ(fs.Index(x, y), line || point ? 32 : 35) << x << "," << y;
        }
}

TEST_F(MappingDisplayTest, ReducedTopographyFrameShowsTheLeftPartOfItsRows)
{
    ImageHeaderType* image = Mapping(256, 4, 2, 0, 4, true);
    ASSERT_NE(image, nullptr);
    DisplayCITSDataSet1(image, 64);
    const std::vector<int> map = render_ref::ColourMap(0, image->ImageLUT);
    for (int r = 1; r < 64; ++r)
        for (int c = 1; c < 64; ++c) {
            const uint16_t code = image->PixData[static_cast<size_t>(r) * 4 * 256 + (c >> 2)];
            ASSERT_EQ(fs.Index(c, r), map[code >> 8]) << c << "," << r;
        }
    // Frame 1 shows image 0 (topography on, in order).
    EXPECT_EQ(fs.Index(64 + 5, 7), 35 + (Pix(image, 0, 20, 28) >> 9));
}

TEST_F(MappingDisplayTest, TopographyFrameAtFactorOneMapsWholeRow)
{
    ImageHeaderType* image = Mapping(64, 4, 2, 0, 4, true);
    ASSERT_NE(image, nullptr);
    DisplayCITSDataSet1(image, 64);
    const std::vector<int> map = render_ref::ColourMap(0, image->ImageLUT);
    for (int c = 1; c < 64; ++c) EXPECT_EQ(fs.Index(c, 10), map[image->PixData[10 * 64 + c] >> 8]) << c;
}

TEST_F(MappingDisplayTest, BlankFramesAreColourZero)
{
    ImageHeaderType* image = Mapping(64, 2, 0, 0, 2, false);
    ASSERT_NE(image, nullptr);
    std::fill(fs.frame.begin(), fs.frame.end(), 7);
    DisplayCITSDataSet1(image, 0);   // 2 frames of 256, limited to 64, select none
    for (int y = 1; y < 64; ++y)
        for (int x = 1; x < 128; ++x)
            if (x != 64) {
                ASSERT_EQ(fs.Index(x, y), 0) << x << "," << y;
            }
}

TEST_F(MappingDisplayTest, LabelsOfThePlainSheet)
{
    ImageHeaderType* image = Mapping(64, 4, 2, 0, 4, true);
    ASSERT_NE(image, nullptr);
    Set(image)->disp.flags = 1 | 2 | 4;
    DisplayCITSDataSet1(image, 0);
    const std::vector<std::string> texts = Texts();
    EXPECT_TRUE(Has(texts, "Topography"));
    EXPECT_TRUE(Has(texts, "-1.00 V"));   // image 0
    EXPECT_TRUE(Has(texts, "-0.750 V"));
    EXPECT_TRUE(Has(texts, "-0.500 V"));
    const CVfsItem* label = TextItem("-0.750 V");
    ASSERT_NE(label, nullptr);
    EXPECT_EQ(label->BackMode, 2);   // opaque with bit 2
    EXPECT_EQ(label->AlignH, 1);
    EXPECT_EQ(label->AlignV, 1);
    EXPECT_EQ(label->Colour, IndexColour(6));
    EXPECT_EQ(label->BackColour, IndexColour(18));
    EXPECT_DOUBLE_EQ(label->X1, 64 * 2 + 32);
    EXPECT_DOUBLE_EQ(label->Y1, 8);
}

TEST_F(MappingDisplayTest, LabelsAtFixedSizeDropADecimalAndTheUnit)
{
    ImageHeaderType* image = Mapping(64, 4, 2, 0, 4, false);
    ASSERT_NE(image, nullptr);
    Set(image)->disp.flags = 2;
    image->DataSource = 26;
    DisplayCITSDataSet1(image, 64);
    const std::vector<std::string> texts = Texts();
    EXPECT_TRUE(Has(texts, "-1.0"));
    EXPECT_TRUE(Has(texts, "-0.75"));
    const CVfsItem* label = TextItem("-0.75");
    ASSERT_NE(label, nullptr);
    EXPECT_EQ(label->BackMode, 1);   // transparent without bit 2
}

TEST_F(MappingDisplayTest, ThresholdTopographyLabel)
{
    ImageHeaderType* image = Mapping(64, 4, 2, 0, 4, true);
    ASSERT_NE(image, nullptr);
    Set(image)->disp.flags = 3;
    image->DataSource = 26;
    DisplayCITSDataSet1(image, 64);
    EXPECT_TRUE(Has(Texts(), "Threshold"));
    EXPECT_FALSE(Has(Texts(), "Topography"));
}

TEST_F(MappingDisplayTest, DifferenceLabelsAreTheUnscaledMean)
{
    ImageHeaderType* image = Mapping(64, 4, 2, 1, 2, false);
    ASSERT_NE(image, nullptr);
    for (int k = 0; k < 4; ++k) CITSEntry(Set(image), k)->voltage = 1000.0f + 500.0f * k;
    Set(image)->disp.flags = 2;
    DisplayCITSDataSet1(image, 0);
    EXPECT_TRUE(Has(Texts(), "1250.000 V"));   // (1000 + 1500) / 2, not scaled to kV
    EXPECT_TRUE(Has(Texts(), "1750.000 V"));
    Set(image)->disp.n = 2;
    FSState.CursorX = FSState.CursorY = 0;
    DisplayCITSDataSet1(image, 64);
    EXPECT_TRUE(Has(Texts(), "1250.00"));
}

TEST_F(MappingDisplayTest, LabelDecimalsAreThoseOfTheScaledValue)
{
    ImageHeaderType* image = Mapping(64, 2, 2, 0, 2, false);
    ASSERT_NE(image, nullptr);
    CITSEntry(Set(image), 0)->voltage = 1500.0f;   // 1.5 kV: two decimals
    CITSEntry(Set(image), 1)->voltage = 250.0f;    // 0.25 kV: three decimals
    const CITSLabelStyle style = BeginCITSLabels(image, 2);
    EXPECT_DOUBLE_EQ(style.scale.scale, 1000.0);
    EXPECT_EQ(style.scale.exponent, 3);
    char text[64];
    ASSERT_TRUE(CITSFrameLabelText(style, image, 0, -32768, 0, text, sizeof text));
    EXPECT_STREQ(text, (std::string("1.50 ") + UnitsV(3)).c_str());
    ASSERT_TRUE(CITSFrameLabelText(style, image, 1, -32768, 0, text, sizeof text));
    EXPECT_STREQ(text, (std::string("0.250 ") + UnitsV(3)).c_str());
    ASSERT_TRUE(CITSFrameLabelText(style, image, 1, -32768, 128, text, sizeof text));
    EXPECT_STREQ(text, "0.25");
    // A displacement sweep takes the length unit.
    image->MapType = 14;
    EXPECT_STREQ(CITSSweepScaleOf(image).unit, UnitsZ(3, 0));
}

TEST_F(MappingDisplayTest, DifferenceFrameWithoutPredecessorHasNoLabel)
{
    ImageHeaderType* image = Mapping(64, 2, 2, 1, 2, false);
    ASSERT_NE(image, nullptr);
    const CITSLabelStyle style = BeginCITSLabels(image, 2);
    char text[64] = "x";
    EXPECT_FALSE(CITSFrameLabelText(style, image, 1, -32768, 0, text, sizeof text));
    EXPECT_STREQ(text, "");
    Set(image)->disp.mode = 7;
    EXPECT_FALSE(CITSFrameLabelText(style, image, 1, 0, 0, text, sizeof text));
    EXPECT_TRUE(LogHasProgramError("cits display string"));
}

TEST_F(MappingDisplayTest, SheetStateIsRestoredAndContentsSet)
{
    ImageHeaderType* image = Mapping(64, 4, 2, 0, 4, true);
    ASSERT_NE(image, nullptr);
    FSState.ImageDisplaySize = 256;
    FSState.DispMode = 2;
    Set(image)->disp.n = 1;
    DisplayCITSDataSet1(image, 0);
    EXPECT_EQ(FSState.ImageDisplaySize, 256);
    EXPECT_EQ(FSState.DispMode, 2);
    EXPECT_EQ(HourGlassCount(), 0);
    EXPECT_EQ(FSState.DisplayBusy, 1);   // one frame, topography on
    EXPECT_EQ(GetFSContentsCoords(10, 10), image);
    Set(image)->disp.n = 2;
    FSState.CursorX = FSState.CursorY = 0;
    DisplayCITSDataSet1(image, 0);
    EXPECT_EQ(FSState.DisplayBusy, 0);
}

TEST_F(MappingDisplayTest, RowBufferAllocationFailureLeavesFrameAndStateAlone)
{
    ImageHeaderType* image = Mapping(64, 4, 2, 0, 4, false);
    ASSERT_NE(image, nullptr);
    FSState.ImageDisplaySize = 128;
    FSState.DispMode = 1;
    FailAllocationsForTests(1);
    DisplayCITSDataSet1(image, 0);
    FailAllocationsForTests(0);
    EXPECT_TRUE(LogHas("ERROR : Not enough memory\n"));
    EXPECT_TRUE(FrameIsBlank());
    EXPECT_EQ(FSState.ImageDisplaySize, 128);
    EXPECT_EQ(FSState.DispMode, 1);
    EXPECT_EQ(HourGlassCount(), 0);
    EXPECT_EQ(Set(image)->disp.n, 4);
}

TEST_F(MappingDisplayTest, SheetRefusesMissingImageSetOrSize)
{
    DisplayCITSDataSet1(nullptr, 0);
    EXPECT_TRUE(LogHas("ERROR : No images in memory\n"));
    ImageHeaderType* plain = AddFlatImage(64, 100);
    DisplayCITSDataSet1(plain, 0);
    EXPECT_TRUE(LogHas("ERROR : Image is not SPS Mapping type\n"));
    ImageHeaderType* image = Mapping(64, 4, 2, 0, 4, false);
    ASSERT_NE(image, nullptr);
    image->nx = 32;
    DisplayCITSDataSet1(image, 0);
    image->nx = 64;
    EXPECT_TRUE(LogHasProgramError("CITS Image size incorrect"));
    EXPECT_TRUE(FrameIsBlank());
}

TEST_F(MappingDisplayTest, SameInputGivesTheSameFrame)
{
    ImageHeaderType* image = Mapping(128, 16, 1, 3, 8, true);
    ASSERT_NE(image, nullptr);
    DisplayCITSDataSet1(image, 0);
    const std::vector<uint8_t> first = fs.frame;
    std::fill(fs.frame.begin(), fs.frame.end(), 0);
    FSState.CursorX = FSState.CursorY = 0;
    DisplayCITSDataSet1(image, 0);
    EXPECT_EQ(fs.frame, first);
}

TEST_F(MappingDisplayTest, RedrawOfAMappingItemDrawsTheSheet)
{
    ImageHeaderType* image = Mapping(64, 4, 2, 0, 4, false);
    ASSERT_NE(image, nullptr);
    CurrentItem = image;
    dl_pb_CITSDisplay();
    // Frame 1 holds image 1 sampled at factor 1.
    EXPECT_EQ(fs.Index(64 + 10, 20), 35 + (Pix(image, 1, 10, 20) >> 9));
    EXPECT_EQ(fs.Index(64, 20), 32);
}

// ---------------------------------------------------------------- one image and its text

TEST_F(MappingDisplayTest, SingleImageRepairsCurrentAndShowsItsRows)
{
    ImageHeaderType* image = Mapping(64, 4, 2, 0, 4, false);
    ASSERT_NE(image, nullptr);
    Set(image)->ci = 9;
    Set(image)->disp.flags = 2;
    image->MapType = 14;   // a displacement sweep still says V
    CurrentItem = image;
    FSState.ImageDisplaySize = 0;   // the image at its own size
    DisplayCurrentCITSImage();
    EXPECT_EQ(Set(image)->ci, 0);
    EXPECT_TRUE(Has(Texts(), "-1.000 V"));
    EXPECT_EQ(FSState.DisplayBusy, 0);
    EXPECT_EQ(GetFSContentsCoords(10, 10), image);
    // The rows go through the row display: ramp table with no item, i / 2 + 35.
    EXPECT_EQ(fs.Index(10, 20), (Pix(image, 0, 10, 20) >> 8) / 2 + 35);
}

TEST_F(MappingDisplayTest, SingleImageErrors)
{
    CurrentItem = nullptr;
    DisplayCurrentCITSImage();
    EXPECT_TRUE(LogHas("ERROR : No images in memory\n"));
    AddFlatImage(64, 5);
    DisplayCurrentCITSImage();
    EXPECT_TRUE(LogHas("ERROR : Image is not SPS Mapping type\n"));
    ImageHeaderType* image = Mapping(64, 2, 2, 0, 2, false);
    ASSERT_NE(image, nullptr);
    Set(image)->ni = 0;
    DisplayCurrentCITSImage();
    Set(image)->ni = 2;
    EXPECT_TRUE(LogHas("ERROR : No current images in SPS Mapping data set\n"));
}

TEST_F(MappingDisplayTest, TextBlockLinesAndColumns)
{
    ImageHeaderType* image = Mapping(64, 4, 2, 0, 4, false);
    ASSERT_NE(image, nullptr);
    std::strcpy(image->Title, "Topo");
    std::strcpy(CITSEntry(Set(image), 1)->title, "Plane one");
    Set(image)->ci = 1;
    image->SPMData = 1;
    image->ImageSizeX = 100.0f;
    image->ImageSizeY = 50.0f;
    image->ScanMode = 2;
    image->TunnelCurrent = 0.5f;
    std::strcpy(image->FileName, "a.tif");
    image->CreatedDate = {3, 4, 2021, 0};
    image->CreatedTime = {5, 6, 7, 0};
    image->SavedDate = {8, 9, 2022, 0};
    image->SavedTime = {10, 11, 12, 0};
    std::strcpy(image->GeneralText[0], "first");
    std::strcpy(image->GeneralText[1], "second");
    host.ClearCalls();
    CITSImageText(image);
    const std::vector<std::string> lines = ParamLines();
    const std::string id = std::to_string(image->DataId);
    // Columns go out as column * 2 / 3: 36 -> 24.
    const int titleColumn = (27 - static_cast<int>(std::strlen("SPS Mapping. title: Plane one")) / 2) * 2 / 3;
    const std::vector<std::string> expected = {
        "0 0 'Topog. image no " + id + ".'",
        "0 24 'SPS Mapping Image (V) -0.750'",
        "2 " + std::to_string(titleColumn) + " 'Topog title: Topo'",
        "3 " + std::to_string(titleColumn) + " 'SPS Mapping. title: Plane one'",
        "5 0 'Linear I range -1.00 : 1.00 nA'",
        "5 24 'ImageSize 100.0 x 50.0 nm.'",
        "6 0 'Z Range (V) -1.000 : -0.250.'",
        "6 24 'Image number 2/4.'",
        "7 0 'Sample bias -0.750 V.'",
        "7 24 'Sample current 0.50 nA.'",
        "8 0 'No of pixels ( 64, 64).'",
        "8 24 'Filename : a.tif.'",
        "9 0 'Created on 03-04-2021 at 05:06:07 '",
        "9 24 'Saved on 08-09-2022 at 10:11:12 '",
        "11 0 'General : first'",
        "12 5 'second'",
    };
    EXPECT_EQ(lines, expected);
}

TEST_F(MappingDisplayTest, TextBlockRangeLinesByDataType)
{
    ImageHeaderType* image = Mapping(64, 1, 2, 0, 1, false);
    ASSERT_NE(image, nullptr);
    image->Title[0] = '\0';
    CITSEntry(Set(image), 0)->title[0] = '\0';
    image->SPMData = 1;
    image->ImageSizeX = image->ImageSizeY = 10.0f;
    image->ScanMode = 0;
    image->TunnelCurrent = 0.0f;
    CITSImageEntryType* e = CITSEntry(Set(image), 0);
    e->z_low = 1.0f;
    e->z_high = 2.0f;
    const struct {
        uint32_t type;
        const char* text;
    } rows[] = {
        {1, "Height 1.00 : 2.00 nm"},          {8, "Log. I range 1.00 : 2.00 nA"},
        {16, "Force  1.000 : 2.000 V"},         {4096, "Force  1.000 : 2.000 V"},
        {0x20000, "Force  1.000 : 2.000 V"},    {32, "Friction Force  1.000 : 2.000 V"},
        {128, "Amplitude 1.000 : 2.000 V"},     {256, "Frequency 1.000 : 2.000 V"},
        {512, "Phase  1.000 : 2.000 V"},        {1024, "Ext. voltage  1.000 : 2.000 V"},
        {2048, "Ext. voltage  1.000 : 2.000 V"},
    };
    for (const auto& row : rows) {
        e->data_type = row.type;
        host.ClearCalls();
        CITSImageText(image);
        EXPECT_TRUE(Has(ParamLines(), std::string("2 0 '") + row.text + "'")) << row.type;
        EXPECT_TRUE(Has(ParamLines(), "4 24 'Sample reference 0.00 V.'"));
    }
    e->data_type = 2;
    host.ClearCalls();
    CITSImageText(image);
    for (const std::string& line : ParamLines()) EXPECT_NE(line.rfind("2 0 ", 0), 0u) << line;
}

TEST_F(MappingDisplayTest, TextBlockForceWithCalibrationOn)
{
    ImageHeaderType* image = Mapping(64, 1, 2, 0, 1, false);
    ASSERT_NE(image, nullptr);
    image->Title[0] = '\0';
    CITSEntry(Set(image), 0)->title[0] = '\0';
    image->SPMData = 1;
    image->ImageSizeX = image->ImageSizeY = 10.0f;
    CITSImageEntryType* e = CITSEntry(Set(image), 0);
    e->data_type = 16;
    e->z_low = 1.0f;
    e->z_high = 2.0f;
    wint_SPMCalType cal = CantileverCalibration();
    cal.ForceOn = 1;
    cal.ForceK = 2.0;
    cal.ForceSens = 3.0;
    cal.ForceOffset = 0.5;
    SetCantileverCalibration(cal);
    host.ClearCalls();
    CITSImageText(image);
    char text[128];
    std::snprintf(text, sizeof text, "2 0 'Force  %.3f : %.3f %s'", CalibratedForce(1.0), CalibratedForce(2.0),
                  UnitsForce(0));
    EXPECT_TRUE(Has(ParamLines(), text));
    EXPECT_NE(CalibratedForce(1.0), 1.0);
}

// ---------------------------------------------------------------- commands

TEST_F(MappingDisplayTest, NextAndPreviousWrapAndLog)
{
    ImageHeaderType* image = Mapping(64, 3, 2, 0, 3, false);
    ASSERT_NE(image, nullptr);
    CurrentItem = image;
    Set(image)->ci = 2;
    dl_pb_CITSNext();
    EXPECT_EQ(Set(image)->ci, 0);
    dl_pb_CITSPrevious();
    EXPECT_EQ(Set(image)->ci, 2);
    dl_pb_CITSPrevious();
    EXPECT_EQ(Set(image)->ci, 1);
    EXPECT_EQ(CountInLog("Next SPS Mapping Image.\n"), 1);
    EXPECT_EQ(CountInLog("Previous SPS Mapping Image.\n"), 2);
}

TEST_F(MappingDisplayTest, SetCurrentWithoutRangeTestIsRepairedByTheDisplay)
{
    ImageHeaderType* image = Mapping(64, 3, 2, 0, 3, false);
    ASSERT_NE(image, nullptr);
    CurrentItem = image;
    dl_pb_CITSSetCurrent(3);
    EXPECT_EQ(Set(image)->ci, 2);
    dl_pb_CITSSetCurrent(0);
    EXPECT_EQ(Set(image)->ci, 0);
    dl_pb_CITSSetCurrent(40);
    EXPECT_EQ(Set(image)->ci, 0);
}

TEST_F(MappingDisplayTest, SelectAndEditAskTheHostsModes)
{
    dl_CITSSelect();
    dl_CITSEdit();
    const std::vector<RecordedCall> calls = host.Calls("ap_OpenCITSDialog");
    ASSERT_EQ(calls.size(), 2u);
    EXPECT_EQ(calls[0].args, "3");
    EXPECT_EQ(calls[1].args, "1");
}

TEST_F(MappingDisplayTest, GetDispParamReadsTheSetsBlock)
{
    ImageHeaderType* image = Mapping(64, 5, 4, 3, 4, true);
    ASSERT_NE(image, nullptr);
    CurrentItem = image;
    Set(image)->disp.flags = 1 | 2;
    Set(image)->disp.im_no[0] = 2;
    Set(image)->disp.im_no[1] = 7;
    wint_CITSDispParamType p;
    std::memset(&p, 0x55, sizeof p);
    dl_GetCITSDispParam(&p);
    EXPECT_EQ(p.mode, 3);
    EXPECT_EQ(p.labels, 2);
    EXPECT_EQ(p.n, 4);
    EXPECT_EQ(p.topography, 1);
    EXPECT_EQ(p.select, 4);
    EXPECT_EQ(p.source, 1);
    EXPECT_FLOAT_EQ(p.voltage[0], -0.5f);
    EXPECT_EQ(p.voltage[1], 0.0f);   // 7 is past the set
    EXPECT_EQ(p.voltage[2], 0.0f);   // -1
    EXPECT_EQ(p.unused[0], 0x55);    // not exchanged
    Set(image)->disp.flags = 2 | 4;
    dl_GetCITSDispParam(&p);
    EXPECT_EQ(p.labels, 1);
    EXPECT_EQ(p.topography, 0);
}

TEST_F(MappingDisplayTest, GetDispParamWithoutSetReadsTheDefaultBlock)
{
    wint_CITSDispParamType p{};
    p.voltage[3] = 9.0f;
    dl_GetCITSDispParam(&p);
    EXPECT_TRUE(LogHasProgramError("dl_GetCITSDispParam"));
    EXPECT_EQ(p.mode, 0);
    EXPECT_EQ(p.labels, 2);   // flags 3: labels, no opaque bit
    EXPECT_EQ(p.topography, 1);
    EXPECT_EQ(p.n, 16);
    EXPECT_EQ(p.select, 1);
    EXPECT_EQ(p.voltage[3], 0.0f);
    EXPECT_EQ(p.source, 1);
}

TEST_F(MappingDisplayTest, SetDispParamWritesBackWithNearestImages)
{
    ImageHeaderType* image = Mapping(64, 5, 2, 0, 2, false);
    ASSERT_NE(image, nullptr);
    CurrentItem = image;
    wint_CITSDispParamType p{};
    p.mode = 2;
    p.labels = 1;
    p.n = 40;
    p.topography = 1;
    p.select = 4;
    p.voltage[0] = -0.3f;   // nearest -0.25: image 3
    p.voltage[1] = 5.0f;    // image 4
    dl_SetCITSDispParam(&p);
    const CITSDispBlockType& d = Set(image)->disp;
    EXPECT_EQ(d.mode, 2);
    EXPECT_EQ(d.flags, 7);
    EXPECT_EQ(d.n, 5);
    EXPECT_EQ(d.select, 4);
    EXPECT_EQ(d.im_no[0], 3);
    EXPECT_EQ(d.im_no[1], 4);
    EXPECT_EQ(d.im_no[63], 4);   // every slot converted: 0.0 is image 4
    p.labels = 0;
    p.topography = 0;
    p.n = 0;
    dl_SetCITSDispParam(&p);
    EXPECT_EQ(Set(image)->disp.flags, 0);
    EXPECT_EQ(Set(image)->disp.n, 1);   // kept at one frame
}

TEST_F(MappingDisplayTest, SetDispParamWithoutSetWritesTheDefaultBlock)
{
    wint_CITSDispParamType p{};
    p.n = 8;
    p.select = 2;
    p.voltage[0] = 3.0f;
    dl_SetCITSDispParam(&p);
    EXPECT_TRUE(LogHasProgramError("dl_GetCITSDispParam"));
    EXPECT_EQ(DefaultCITSDispBlock().n, 8);
    EXPECT_EQ(DefaultCITSDispBlock().im_no[0], 0);
}

TEST_F(MappingDisplayTest, DefaultDisplayBlockTravelsThroughTheSettingsFile)
{
    // The built-in block is what a first store writes under "SPS Mapping Display".
    StoreConfiguration();
    CITSDispBlockType stored{};
    ASSERT_TRUE(LoadSettingStruct("SPS Mapping Display", &stored, sizeof stored));
    EXPECT_EQ(stored.flags, 3);
    EXPECT_EQ(stored.n, 16);
    EXPECT_EQ(stored.mode, 0);
    EXPECT_EQ(stored.select, 1);
    EXPECT_EQ(stored.v_high, 10.0);
    EXPECT_EQ(stored.im_no[0], -1);
    EXPECT_EQ(stored.im_no[63], -1);

    // A block set without a mapping at hand is stored, and read back after a reset.
    wint_CITSDispParamType p{};
    p.mode = 3;
    p.labels = 1;
    p.n = 8;
    p.select = 2;
    dl_SetCITSDispParam(&p);
    StoreConfiguration();
    ResetDefaultCITSDispBlock();
    EXPECT_EQ(DefaultCITSDispBlock().n, 16);
    RetrieveConfiguration();
    const CITSDispBlockType& d = DefaultCITSDispBlock();
    EXPECT_EQ(d.mode, 3);
    EXPECT_EQ(d.flags, 6);
    EXPECT_EQ(d.n, 8);
    EXPECT_EQ(d.select, 2);
    EXPECT_EQ(d.im_no[5], 0);
    wint_CITSDispParamType back{};
    dl_GetCITSDispParam(&back);
    EXPECT_EQ(back.mode, 3);
    EXPECT_EQ(back.labels, 1);
    EXPECT_EQ(back.n, 8);
}

TEST_F(MappingDisplayTest, DispParamSetVTakesTheChosenImage)
{
    ImageHeaderType* image = Mapping(64, 5, 4, 0, 2, false);
    ASSERT_NE(image, nullptr);
    CurrentItem = image;
    Set(image)->ci = 3;
    dl_pb_CITSDispParamSetV(2);
    EXPECT_EQ(Set(image)->disp.im_no[1], 3);
    EXPECT_EQ(host.Calls("ap_OpenCITSDialog").back().args, "3");
    dl_pb_CITSDispParamSetV(17);
    EXPECT_TRUE(LogHasProgramError("dl_pb_CITSDispParamSetV"));
    EXPECT_EQ(Set(image)->disp.im_no[0], 3);   // slot 1
}

TEST_F(MappingDisplayTest, GetDescDescribesImages)
{
    ImageHeaderType* image = Mapping(64, 3, 2, 0, 3, false);
    ASSERT_NE(image, nullptr);
    CurrentItem = image;
    Set(image)->ci = 1;
    char out[40] = "untouched";
    EXPECT_EQ(dl_CITSGetDesc(1, out), 2);
    EXPECT_STREQ(out, "1: -1.00 V");
    EXPECT_EQ(dl_CITSGetDesc(2, out), 1);
    EXPECT_STREQ(out, "2: -0.750 V");
    std::strcpy(out, "untouched");
    EXPECT_EQ(dl_CITSGetDesc(4, out), 4);
    EXPECT_EQ(dl_CITSGetDesc(0, out), 4);
    EXPECT_EQ(dl_CITSGetDesc(-1, out), 4);
    EXPECT_STREQ(out, "untouched");
    CurrentItem = nullptr;
    EXPECT_EQ(dl_CITSGetDesc(1, out), 4);
    EXPECT_TRUE(LogHas("ERROR : No images in memory\n"));
}

TEST_F(MappingDisplayTest, EditTitleCutsTrailingBlanks)
{
    ImageHeaderType* image = Mapping(64, 3, 2, 0, 3, false);
    ASSERT_NE(image, nullptr);
    CurrentItem = image;
    Set(image)->ci = 0;
    std::strcpy(CITSEntry(Set(image), 1)->title, "old");
    host.entryAnswers.push_back("new title   ");
    dl_pb_CITSEditTitle(2);
    EXPECT_STREQ(CITSEntry(Set(image), 1)->title, "new title");
    EXPECT_EQ(Set(image)->ci, 0);
    const RecordedCall call = host.Calls("ap_EnterString").back();
    EXPECT_NE(call.args.find("'old' 'Enter title :'"), std::string::npos);
    EXPECT_NE(call.args.find(" 40"), std::string::npos);
    dl_pb_CITSEditTitle(9);
    EXPECT_TRUE(LogHasProgramError("CITSTitle"));
    EXPECT_EQ(Set(image)->ci, 0);
}

// ---------------------------------------------------------------- paged display

TEST_F(MappingDisplayTest, Paged65ImagesAt64MakeTwoPagesWithOneRealFrameOnTheSecond)
{
    ImageHeaderType* image = Mapping(64, 65, 2, 0, 2, true);
    ASSERT_NE(image, nullptr);
    CurrentItem = image;
    const CITSDispBlockType before = Set(image)->disp;
    dl_CITSDisplayXxY(64);
    EXPECT_TRUE(CITSPagedActive());
    EXPECT_EQ(CITSPagedPage(), 0);
    EXPECT_EQ(fs.Index(64 + 10, 20), 35 + (Pix(image, 1, 10, 20) >> 9));
    const std::vector<RecordedCall> box = host.Calls("ap_OpenTextWindow");
    ASSERT_EQ(box.size(), 1u);
    EXPECT_NE(box[0].args.find("'SPS Mapping Paged Display'"), std::string::npos);
    EXPECT_EQ(host.Count("ap_SelectPointInVFS"), 1);
    // A click turns to the second page: image 64 in frame 0, the rest blank.
    EXPECT_EQ(SelectPointInVFS_Callback(20, 5, 5, 1, 0), 0);
    EXPECT_EQ(CITSPagedPage(), 1);
    EXPECT_EQ(fs.Index(10, 20), 35 + (Pix(image, 64, 10, 20) >> 9));
    EXPECT_EQ(fs.Index(64 + 10, 20), 0);
    EXPECT_EQ(fs.Index(300, 300), 0);
    EXPECT_EQ(Set(image)->ci, 64);   // the image under the pointer
    bool sawPage2 = false;
    for (const RecordedCall& c : host.Calls("ap_PrintInWindow")) sawPage2 |= c.args.find("'Frame 2/2 displayed.   '") != std::string::npos;
    EXPECT_TRUE(sawPage2);
    // The display block is given back after each page.
    EXPECT_EQ(std::memcmp(&Set(image)->disp, &before, sizeof before), 0);
    // The wheel goes back; a page before the first wraps to the last.
    SelectionState.LastButtons = 0;
    DoCITSDisplayXxY(0, 5, 5, 1);
    EXPECT_EQ(CITSPagedPage(), 0);
    DoCITSDisplayXxY(0, 5, 5, 1);
    EXPECT_EQ(CITSPagedPage(), 1);
    // A pointer over a blank frame clears the text.
    host.ClearCalls();
    DoCITSDisplayXxY(0, 200, 200, 0);
    EXPECT_EQ(host.Count("ap_ClearParamText"), 1);
    // The right button ends it.
    EXPECT_EQ(DoCITSDisplayXxY(4, 5, 5, 0), 1);
    EXPECT_FALSE(CITSPagedActive());
    EXPECT_TRUE(LogHas("Display 64x64 'Mapping'.\n"));
    EXPECT_EQ(host.Count("ap_CloseTextWindow"), 1);
}

TEST_F(MappingDisplayTest, PagedDisplayOf10ImagesAt64IsRefusedByTheSheet)
{
    ImageHeaderType* image = Mapping(64, 10, 2, 0, 2, false);
    ASSERT_NE(image, nullptr);
    CurrentItem = image;
    dl_CITSDisplayXxY(64);
    EXPECT_TRUE(LogHasProgramError("Invalid number of images to display"));
    EXPECT_TRUE(FrameIsBlank());
    // No second page row for a set within one page.
    for (const RecordedCall& c : host.Calls("ap_PrintInWindow")) EXPECT_EQ(c.args.find("scroll wheel"), std::string::npos);
    DoCITSDisplayXxY(4, 0, 0, 0);
}

TEST_F(MappingDisplayTest, PagedDisplayOtherSizeIsError)
{
    ImageHeaderType* image = Mapping(128, 4, 2, 0, 2, false);
    ASSERT_NE(image, nullptr);
    CurrentItem = image;
    dl_CITSDisplayXxY(32);
    EXPECT_EQ(CountInLog("Program error - DoCITSDisplayXxY DoCITSDisplayXxY_xy=32"), 1);
    EXPECT_FALSE(CITSPagedActive());
    // A set smaller than the size takes the smaller of cx and 64.
    ImageHeaderType* small = Mapping(32, 4, 2, 0, 2, false);
    ASSERT_NE(small, nullptr);
    CurrentItem = small;
    dl_CITSDisplayXxY(128);
    EXPECT_EQ(CountInLog("Program error - DoCITSDisplayXxY DoCITSDisplayXxY_xy=32"), 2);
}

TEST_F(MappingDisplayTest, PagedDisplayDifferenceModeStartsAtImageOne)
{
    ImageHeaderType* image = Mapping(64, 64, 2, 1, 2, false);
    ASSERT_NE(image, nullptr);
    CurrentItem = image;
    dl_CITSDisplayXxY(64);
    const int a = Pix(image, 1, 10, 20), b = Pix(image, 0, 10, 20);
    EXPECT_EQ(fs.Index(10, 20), 35 + (std::abs(a - b) >> 9));
    DoCITSDisplayXxY(4, 0, 0, 0);
}

// ---------------------------------------------------------------- rapid replay

TEST_F(MappingDisplayTest, ReplayOverANonMonotonicSweepCountsImages)
{
    ImageHeaderType* image = Mapping(64, 5, 2, 0, 2, false);
    ASSERT_NE(image, nullptr);
    CITSEntry(Set(image), 3)->voltage = -5.0f;
    CurrentItem = image;
    EXPECT_FALSE(CITSSweepMonotonic(Set(image)));
    CITSReplaySliderRecord record;
    bool nearest = true;
    CITSReplaySlider(image, &record, &nearest);
    const wint_ScrollBarParamType& bar = record.bar;
    EXPECT_FALSE(nearest);
    EXPECT_EQ(record.decimals, 0);
    EXPECT_EQ(bar.Min, 1.0f);
    EXPECT_EQ(bar.Max, 5.0f);
    EXPECT_EQ(bar.Value, 2.0f);
    EXPECT_STREQ(bar.MinText, "1");
    EXPECT_STREQ(bar.MaxText, "5");
    EXPECT_EQ(bar.SmallStep, 1.0f);
    EXPECT_EQ(bar.LargeStep, 10.0f);
    EXPECT_STREQ(bar.Title, "SPS Mapping Rapid Replay");
    EXPECT_EQ(bar.Flag, 1);
    dl_CITSRapidReplay();
    const std::vector<RecordedCall> calls = host.Calls("ap_ScrollBar1");
    ASSERT_EQ(calls.size(), 1u);
    EXPECT_NE(calls[0].args.find(" 117"), std::string::npos);
    EXPECT_EQ(CITSReplayIndex(0.2f, Set(image), false), 0);
    EXPECT_EQ(CITSReplayIndex(2.6f, Set(image), false), 2);
    EXPECT_EQ(CITSReplayIndex(99.0f, Set(image), false), 4);   // at most ni - 1
}

TEST_F(MappingDisplayTest, ReplayOverAMonotonicSweepRunsInVolts)
{
    ImageHeaderType* image = Mapping(64, 5, 2, 0, 2, false);
    ASSERT_NE(image, nullptr);
    EXPECT_TRUE(CITSSweepMonotonic(Set(image)));
    CITSReplaySliderRecord record;
    bool nearest = false;
    CITSReplaySlider(image, &record, &nearest);
    const wint_ScrollBarParamType& bar = record.bar;
    EXPECT_TRUE(nearest);
    EXPECT_EQ(record.decimals, 3);
    EXPECT_EQ(bar.Min, -1.0f);
    EXPECT_EQ(bar.Max, 0.0f);
    EXPECT_EQ(bar.Value, -0.5f);
    EXPECT_STREQ(bar.MinText, "-1.000");
    EXPECT_STREQ(bar.MaxText, "0.000");
    EXPECT_FLOAT_EQ(bar.SmallStep, 1.0f / 5.0f / 1.05f);
    EXPECT_FLOAT_EQ(bar.LargeStep, 4.0f * bar.SmallStep);
    EXPECT_EQ(CITSReplayIndex(-0.3f, Set(image), true), 3);
}

TEST_F(MappingDisplayTest, ReplayDecimalsFollowTheLargerEndOfTheSweep)
{
    ImageHeaderType* image = Mapping(64, 5, 2, 0, 2, false);
    ASSERT_NE(image, nullptr);
    CITSReplaySliderRecord record;
    bool nearest = false;
    const float ends[][2] = {{-150.0f, 20.0f}, {-5.0f, 99.9f}, {10.0f, 40.0f}, {-9.9f, 9.99f}, {-100.0f, 0.0f}};
    const int decimals[] = {1, 2, 2, 3, 1};
    const char* maxText[] = {"20.0", "99.90", "40.00", "9.990", "0.0"};
    for (int i = 0; i < 5; ++i) {
        SCOPED_TRACE(i);
        for (int k = 0; k < 5; ++k)
            CITSEntry(Set(image), k)->voltage = ends[i][0] + (ends[i][1] - ends[i][0]) * static_cast<float>(k) / 4.0f;
        CITSReplaySlider(image, &record, &nearest);
        EXPECT_TRUE(nearest);
        EXPECT_EQ(record.decimals, decimals[i]);
        EXPECT_STREQ(record.bar.MaxText, maxText[i]);
    }
}

TEST_F(MappingDisplayTest, ReplayRectangleAndSharedColourScale)
{
    ImageHeaderType* image = Mapping(64, 3, 2, 0, 2, false);
    ASSERT_NE(image, nullptr);
    CITSEntry(Set(image), 2)->z_low = -3.0f;   // the set's range: -3 to 1
    CITSEntry(Set(image), 2)->voltage = -5.0f; // not monotonic: image numbers
    CurrentItem = image;
    dl_CITSRapidReplay();
    ASSERT_EQ(dl_Horz_Scroll_Bar1_Callback(117, 0, 2.0f), 0);
    EXPECT_TRUE(CITSReplayActive());
    // Outline in colour 17.
    for (int x = 0; x < 64; ++x) {
        EXPECT_EQ(fs.Index(x, 0), 17);
        EXPECT_EQ(fs.Index(x, 63), 17);
    }
    EXPECT_EQ(fs.Index(0, 30), 17);
    EXPECT_EQ(fs.Index(63, 30), 17);
    // Image 1 on the scale -3..1: offset (-1 + 3) / 4 * 65535, slope 2 / 4; buffer x at X + 1 + x;
    // the first byte of the cleared buffer lands at X + 1.
    const int offset = static_cast<int>((-1.0f - -3.0f) / 4.0f * 65535.0);
    const float slope = (1.0f - -1.0f) / 4.0f;
    for (int r = 1; r <= 62; ++r) {
        EXPECT_EQ(fs.Index(1, r), 0) << r;
        for (int x = 1; x <= 61; ++x) {
            const int level = (static_cast<int>(Pix(image, 1, x, r) * slope) + offset) >> 9;
            ASSERT_EQ(fs.Index(1 + x, r), level + 35) << x << "," << r;
        }
    }
    EXPECT_EQ(dl_Horz_Scroll_Bar1_Callback(117, 1, 2.0f), 0);
    EXPECT_FALSE(CITSReplayActive());
    EXPECT_TRUE(LogHas("Replay 'Mapping'.\n"));
    EXPECT_EQ(FSState.DisplayBusy, 0);
}

TEST_F(MappingDisplayTest, ReplayOfExtremeRangesSaturatesInsteadOfOverflowing)
{
    // Image 1 has a reversed range far outside the set's: offset and products leave the int
    // range and are held at its ends; the levels wrap into a byte but stay in the rectangle.
    ImageHeaderType* image = Mapping(64, 3, 2, 0, 2, false);
    ASSERT_NE(image, nullptr);
    for (int k = 0; k < 3; ++k) {
        CITSEntry(Set(image), k)->z_low = 0.0f;
        CITSEntry(Set(image), k)->z_high = 1e-3f;
    }
    CITSEntry(Set(image), 1)->z_low = 1e6f;
    CITSEntry(Set(image), 1)->z_high = 0.0f;
    CITSEntry(Set(image), 2)->voltage = -5.0f;   // not monotonic: image numbers
    CurrentItem = image;
    dl_CITSRapidReplay();
    ASSERT_EQ(dl_Horz_Scroll_Bar1_Callback(117, 0, 2.0f), 0);
    const float span = 1e-3f;
    const double slope = static_cast<double>((0.0f - 1e6f) / span);
    const int64_t offset = std::clamp<int64_t>(static_cast<int64_t>(static_cast<double>((1e6f - 0.0f) / span) * 65535.0),
                                               INT32_MIN, INT32_MAX);
    for (int r = 1; r <= 62; ++r)
        for (int x = 1; x <= 61; ++x) {
            const double product = static_cast<double>(static_cast<float>(Pix(image, 1, x, r)) * static_cast<float>(slope));
            const int64_t held = std::clamp<int64_t>(static_cast<int64_t>(std::clamp(product, -2147483648.0, 2147483647.0)),
                                                     INT32_MIN, INT32_MAX);
            const int level = static_cast<int>((held + offset) >> 9);
            ASSERT_EQ(fs.Index(1 + x, r), static_cast<uint8_t>(level + 35)) << x << "," << r;
        }
    EXPECT_EQ(fs.Index(63, 30), 17);
    EXPECT_EQ(fs.Index(64, 30), 0);
    EXPECT_EQ(dl_Horz_Scroll_Bar1_Callback(117, 1, 2.0f), 0);
}

TEST_F(MappingDisplayTest, ReplayRowAllocationFailureReportsAndStaysIdle)
{
    ImageHeaderType* image = Mapping(64, 3, 2, 0, 2, false);
    ASSERT_NE(image, nullptr);
    CurrentItem = image;
    FailAllocationsForTests(1);
    DoCITSReplay(1.0f, 0);
    FailAllocationsForTests(0);
    EXPECT_TRUE(LogHas("ERROR : Not enough memory\n"));
    EXPECT_FALSE(CITSReplayActive());
    EXPECT_TRUE(FrameIsBlank());
}

} // namespace
