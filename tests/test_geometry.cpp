// Geometry commands through their entry points: the common frame (refusals, the new item behind
// the source, history code, log line), the pixels of every command against the documented
// formulas computed here, the two-step commands with their continuations, and failures.
#include "test_frame_support.h"

#include "tavrin/dl_data_list.h"
#include "tavrin/dl_geometry.h"
#include "tavrin/dl_selection.h"
#include "display/selection.h"
#include "image/geometry.h"
#include "files/sample_data.h"
#include "store/history.h"

#include <cmath>
#include <vector>

namespace {

class GeometryTest : public FrameStoreTest {
protected:
    static uint16_t Code(int x, int y) { return static_cast<uint16_t>((x * 613u + y * 1229u + x * y * 3u + 1) & 0xffff); }
    static uint16_t At(const ImageHeaderType* image, int x, int y, int width = 0)
    {
        return image->PixData[static_cast<size_t>(y) * (width ? width : image->nx) + x];
    }
    ImageHeaderType* AddCoded(int nx, int ny, const char* title = "Scan")
    {
        ImageHeaderType* item = AddImage(nx, ny, Code, title);
        item->ImageSizeX = 200.0f;
        item->ImageSizeY = 100.0f;
        item->ScanSpeedX = 3.0f;
        item->ScanSpeedY = 5.0f;
        return item;
    }
    // The new item the last command left: current, directly behind the source.
    static ImageHeaderType* ResultBehind(const ImageHeaderType* source)
    {
        EXPECT_EQ(CurrentItem, source->Next);
        return CurrentItem;
    }
    // Points given in image pixels, reported as a host does: a move, then a click at the frame
    // position of the pixel within the image rectangle.
    static void PickPoints(int type, const std::vector<std::pair<int, int>>& points)
    {
        const int width = FSState.ImageRight - FSState.ImageLeft + 1;
        const int height = FSState.ImageBottom - FSState.ImageTop + 1;
        for (const auto& p : points) {
            const auto x = static_cast<int16_t>(p.first * width / FSState.ImagePixelsX);
            const auto y = static_cast<int16_t>(p.second * height / FSState.ImagePixelsY);
            dl_SelectPointInVFS_Callback(static_cast<int16_t>(type), x, y, 0, 0);
            dl_SelectPointInVFS_Callback(static_cast<int16_t>(type), x, y, TV_PICK_LEFT, 0);
        }
    }
};

using Command = void (*)(void);
const Command kCommands[] = {dl_ImageMirrorX,   dl_ImageMirrorY,   dl_TransposeImage, dl_RotateImage90,
                             dl_RotateImage180, dl_RotateImage270, dl_RotateImageA,   dl_ImageTranslate,
                             dl_PadTo256Points, dl_PadTo512Points, dl_Interpolate128, dl_Interpolate256,
                             dl_Interpolate512};

} // namespace

// The frame.

TEST_F(GeometryTest, WithAnEmptyListEveryCommandReports33536AndChangesNothing)
{
    for (Command command : kCommands) {
        host.messageBoxes.clear();
        host.ClearCalls();
        command();
        ASSERT_EQ(host.messageBoxes.size(), 1u);
        EXPECT_EQ(host.messageBoxes[0].text, "No images in memory");
        EXPECT_EQ(CountItems(), 0);
        EXPECT_EQ(CurrentItem, nullptr);
        EXPECT_EQ(host.Count("ap_ShowWait"), 0);
        EXPECT_EQ(host.Count("ap_SelectPointInVFS"), 0);
    }
    EXPECT_EQ(CountInLog("No images in memory"), 13);
}

TEST_F(GeometryTest, FftAndMappingImagesAreRefused)
{
    ImageHeaderType* image = AddCoded(64, 64);
    image->FFTData = 1;
    dl_ImageMirrorX();
    EXPECT_TRUE(ErrorShown("Unable to perform this function on image of type FFT"));
    image->FFTData = 0;
    image->CITSHeader = 1;
    dl_RotateImage90();
    EXPECT_TRUE(ErrorShown("Unable to perform this function on image of type SPS Mapping "));
    image->CITSHeader = 0;
    EXPECT_EQ(CountItems(), 1);
    EXPECT_EQ(CurrentItem, image);
}

TEST_F(GeometryTest, TheResultIsCurrentBehindTheSourceWithHistoryAndLogAndTheSourceIsUntouched)
{
    TestFrameStore fs;
    ASSERT_EQ(fs.Open(1), 0);
    ImageHeaderType* source = AddCoded(64, 64, "Gold");
    AddImProc2List(source, 22);
    const auto before = Pixels(source);
    host.ClearCalls();
    dl_ImageMirrorX();
    ImageHeaderType* result = ResultBehind(source);
    ASSERT_NE(result, source);
    EXPECT_EQ(Pixels(source), before);
    EXPECT_EQ(source->ProcessList[1], 0);
    EXPECT_EQ(result->ProcessList[0], 22);
    EXPECT_EQ(result->ProcessList[1], 29);
    EXPECT_TRUE(LogHas("Take mirror image in X of 'Gold'\n"));
    const auto waits = host.Calls("ap_ShowWait");
    ASSERT_EQ(waits.size(), 1u);
    EXPECT_NE(waits[0].args.find("Please wait while taking mirror image"), std::string::npos);
    EXPECT_EQ(host.Count("ap_HideWait"), 1);
    // The rows went into the frame store, and the region is the result's.
    EXPECT_EQ(GetFSContentsCoords(10, 10), result);
    // One step back is the untouched source.
    dl_PreviousData1();
    EXPECT_EQ(CurrentItem, source);
    EXPECT_EQ(Pixels(CurrentItem), before);
}

TEST_F(GeometryTest, EachCommandAddsItsHistoryCode)
{
    struct Case {
        Command command;
        int code;
    };
    const Case cases[] = {{dl_ImageMirrorX, 29}, {dl_ImageMirrorY, 28},   {dl_TransposeImage, 42},
                          {dl_RotateImage90, 38}, {dl_RotateImage180, 39}, {dl_RotateImage270, 40},
                          {dl_PadTo256Points, 72}, {dl_PadTo512Points, 72}, {dl_Interpolate128, 43},
                          {dl_Interpolate256, 44}, {dl_Interpolate512, 45}};
    for (const Case& c : cases) {
        ImageHeaderType* source = AddCoded(100, 100);
        c.command();
        ASSERT_EQ(CurrentItem, source->Next) << c.code;
        EXPECT_EQ(LastHistoryCode(CurrentItem), c.code);
        EXPECT_EQ(LastHistoryCode(source), 0);
    }
}

TEST_F(GeometryTest, EveryLogLineAsWritten)
{
    AddCoded(100, 100, "T");
    dl_ImageMirrorY();
    dl_TransposeImage();
    dl_RotateImage90();
    dl_RotateImage180();
    dl_RotateImage270();
    dl_PadTo256Points();
    dl_Interpolate128();
    EXPECT_TRUE(LogHas("Take mirror image in Y of 'T'\n"));
    EXPECT_TRUE(LogHas("Transpose T\n"));
    EXPECT_TRUE(LogHas("Rotate 'T' by 90 degrees.\n"));
    EXPECT_TRUE(LogHas("Rotate 'T' by 180 degrees.\n"));
    EXPECT_TRUE(LogHas("Rotate 'T' by 270 degrees.\n"));
    EXPECT_TRUE(LogHas("Pad T to 256 points\n"));
    EXPECT_TRUE(LogHas("Convert size of 'T' from (256,256) to (128,128)\n"));
}

// Mirror, transpose, turns.

TEST_F(GeometryTest, MirrorXReversesEachRow)
{
    ImageHeaderType* source = AddCoded(37, 11);
    dl_ImageMirrorX();
    const ImageHeaderType* r = ResultBehind(source);
    for (int y = 0; y < 11; ++y)
        for (int x = 0; x < 37; ++x) ASSERT_EQ(At(r, x, y), Code(36 - x, y)) << x << " " << y;
}

TEST_F(GeometryTest, MirrorYReversesTheRowOrder)
{
    ImageHeaderType* source = AddCoded(13, 29);
    dl_ImageMirrorY();
    const ImageHeaderType* r = ResultBehind(source);
    for (int y = 0; y < 29; ++y)
        for (int x = 0; x < 13; ++x) ASSERT_EQ(At(r, x, y), Code(x, 28 - y));
}

TEST_F(GeometryTest, TransposeOfASquareImageExchangesRowsColumnsSizesAndSpeeds)
{
    ImageHeaderType* source = AddCoded(48, 48);
    dl_TransposeImage();
    const ImageHeaderType* r = ResultBehind(source);
    for (int y = 0; y < 48; ++y)
        for (int x = 0; x < 48; ++x) ASSERT_EQ(At(r, x, y), Code(y, x));
    EXPECT_EQ(r->ImageSizeX, 100.0f);
    EXPECT_EQ(r->ImageSizeY, 200.0f);
    EXPECT_EQ(r->ScanSpeedX, 5.0f);
    EXPECT_EQ(r->ScanSpeedY, 3.0f);
}

TEST_F(GeometryTest, TransposeOfANonSquareImageWritesRowsOfTheOldHeightAndKeepsNxNy)
{
    ImageHeaderType* source = AddCoded(40, 24);
    dl_TransposeImage();
    const ImageHeaderType* r = ResultBehind(source);
    EXPECT_EQ(r->nx, 40);
    EXPECT_EQ(r->ny, 24);
    // Row r of length 24 holds source column r.
    for (int row = 0; row < 40; ++row)
        for (int c = 0; c < 24; ++c) ASSERT_EQ(At(r, c, row, 24), Code(row, c));
}

TEST_F(GeometryTest, QuarterTurnsOfASquareImageFollowTheIndexFormulas)
{
    const int n = 32;
    ImageHeaderType* source = AddCoded(n, n);
    dl_RotateImage90();
    const ImageHeaderType* r90 = ResultBehind(source);
    CurrentItem = source;
    dl_RotateImage270();
    const ImageHeaderType* r270 = ResultBehind(source);
    for (int r = 0; r < n; ++r)
        for (int c = 0; c < n; ++c) {
            // 90: result r * H + c from source c * W + H - 1 - r; 270: from (W - 1 - c) * W + r.
            ASSERT_EQ(r90->PixData[r * n + c], source->PixData[c * n + n - 1 - r]);
            ASSERT_EQ(r270->PixData[r * n + c], source->PixData[(n - 1 - c) * n + r]);
        }
    EXPECT_EQ(r270->ImageSizeX, 100.0f);
    EXPECT_EQ(r270->ScanSpeedY, 3.0f);
}

TEST_F(GeometryTest, QuarterTurnsOfNonSquareImagesGiveZeroWhereTheSourceIndexFallsOutside)
{
    for (auto [w, h] : {std::pair{256, 128}, std::pair{128, 256}}) {
        for (Command turn : {dl_RotateImage90, dl_RotateImage270}) {
            ImageHeaderType* source = AddCoded(w, h);
            turn();
            const ImageHeaderType* r = ResultBehind(source);
            EXPECT_EQ(r->nx, w);
            EXPECT_EQ(r->ny, h);
            // The rows have the old height; the physical sizes are exchanged.
            EXPECT_EQ(r->ImageSizeX, 100.0f);
            int outside = 0;
            for (int row = 0; row < w; ++row)
                for (int c = 0; c < h; ++c) {
                    const int64_t i = turn == dl_RotateImage90 ? int64_t{c} * w + h - 1 - row
                                                               : (int64_t{w} - 1 - c) * w + row;
                    const bool inside = i >= 0 && i < int64_t{w} * h;
                    outside += !inside;
                    ASSERT_EQ(r->PixData[static_cast<size_t>(row) * h + c], inside ? source->PixData[i] : 0)
                        << w << "x" << h << " " << row << " " << c;
                }
            EXPECT_GT(outside, 0) << w << "x" << h;
        }
    }
}

TEST_F(GeometryTest, HalfTurnReversesRowsAndRowOrder)
{
    ImageHeaderType* source = AddCoded(21, 17);
    dl_RotateImage180();
    const ImageHeaderType* r = ResultBehind(source);
    for (int y = 0; y < 17; ++y)
        for (int x = 0; x < 21; ++x) ASSERT_EQ(At(r, x, y), Code(20 - x, 16 - y));
    EXPECT_EQ(r->ImageSizeX, 200.0f);
}

// Padding and resampling.

TEST_F(GeometryTest, PaddingAnImageThatIsNotBelowTheSizeOnBothSidesIsRefusedWith33537)
{
    ImageHeaderType* source = AddCoded(256, 200);
    dl_PadTo256Points();
    EXPECT_TRUE(ErrorShown("Image too large for this function"));
    EXPECT_EQ(CountItems(), 1);
    EXPECT_EQ(CurrentItem, source);
}

TEST_F(GeometryTest, PaddingCentresTheImageOnZeroAndKeepsThePixelSize)
{
    ImageHeaderType* source = AddCoded(200, 100);
    dl_PadTo256Points();
    const ImageHeaderType* r = ResultBehind(source);
    ASSERT_EQ(r->nx, 256);
    ASSERT_EQ(r->ny, 256);
    const int top = (256 - 100) >> 1, left = (256 - 200) >> 1;
    for (int y = 0; y < 256; ++y)
        for (int x = 0; x < 256; ++x) {
            const bool in = y >= top && y < top + 100 && x >= left && x < left + 200;
            ASSERT_EQ(At(r, x, y), in ? Code(x - left, y - top) : 0) << x << " " << y;
        }
    // 200 nm over 200 points and 100 nm over 100 points: 1 nm a pixel either way.
    EXPECT_EQ(r->ImageSizeX, 200.0f * (256.0f / 200.0f));
    EXPECT_EQ(r->ImageSizeY, 100.0f * (256.0f / 100.0f));
    EXPECT_FLOAT_EQ(r->ImageSizeX / r->nx, 1.0f);
    EXPECT_FLOAT_EQ(r->ImageSizeY / r->ny, 1.0f);
}

TEST_F(GeometryTest, InterpolatingToTheSizeTheImageHasIsRefusedWith33545)
{
    AddCoded(128, 128);
    dl_Interpolate128();
    EXPECT_TRUE(ErrorShown("Image is already this size - can not interpolate"));
    EXPECT_EQ(CountItems(), 1);
    EXPECT_EQ(host.Count("ap_ShowWait"), 0);
}

TEST_F(GeometryTest, Interpolate256Of256By128TakesTheSeparablePathAndGives992Everywhere)
{
    ImageHeaderType* source = AddImage(256, 128, [](int, int) { return uint16_t{1000}; }, "Flat");
    dl_Interpolate256();
    const ImageHeaderType* r = ResultBehind(source);
    ASSERT_EQ(r->nx, 256);
    ASSERT_EQ(r->ny, 256);
    for (int i = 0; i < 256 * 256; ++i) ASSERT_EQ(r->PixData[i], 992) << i;
    EXPECT_EQ(host.Count("ap_ShowWait"), 0);
}

// Translation.

TEST_F(GeometryTest, TranslateShiftsWithoutWrapping)
{
    ImageHeaderType* source = AddCoded(30, 20);
    TranslatePointsX[0] = 10, TranslatePointsY[0] = 10;
    TranslatePointsX[1] = 13, TranslatePointsY[1] = 8;   // dx = 3, dy = -2
    EXPECT_EQ(ImageTranslate_Continue(1), 1);
    const ImageHeaderType* r = ResultBehind(source);
    for (int y = 0; y < 20; ++y)
        for (int x = 0; x < 30; ++x) {
            const int sx = x - 3, sy = y + 2;
            const bool in = sx >= 0 && sy < 20;
            ASSERT_EQ(At(r, x, y), in ? Code(sx, sy) : 0) << x << " " << y;
        }
    EXPECT_TRUE(LogHas("Translate image 'Scan' by (3,-2)\n"));
    EXPECT_EQ(LastHistoryCode(r), 48);
}

TEST_F(GeometryTest, TranslateByTheWholeWidthGivesAnAllZeroImage)
{
    ImageHeaderType* source = AddCoded(30, 20);
    TranslatePointsX[0] = 0, TranslatePointsY[0] = 0;
    TranslatePointsX[1] = 30, TranslatePointsY[1] = 0;
    ImageTranslate_Continue(1);
    const ImageHeaderType* r = ResultBehind(source);
    for (uint16_t code : Pixels(r)) ASSERT_EQ(code, 0);
}

TEST_F(GeometryTest, TranslateByMoreThanTheWidthCopiesNothingAndReadsNothingOutside)
{
    for (int dx : {31, -31, 400, -400}) {
        ImageHeaderType* source = AddCoded(30, 20);
        TranslatePointsX[0] = 0, TranslatePointsY[0] = 0;
        TranslatePointsX[1] = static_cast<int16_t>(dx), TranslatePointsY[1] = 1;
        ImageTranslate_Continue(1);
        const ImageHeaderType* r = ResultBehind(source);
        for (uint16_t code : Pixels(r)) ASSERT_EQ(code, 0) << dx;
    }
}

TEST_F(GeometryTest, TranslateDroppedByTheUserMakesNothing)
{
    AddCoded(30, 20);
    EXPECT_EQ(ImageTranslate_Continue(4), 1);
    EXPECT_EQ(CountItems(), 1);
}

TEST_F(GeometryTest, TranslateThroughThePickModeOfTheHost)
{
    TestFrameStore fs;
    ASSERT_EQ(fs.Open(1), 0);
    ImageHeaderType* source = AddCoded(64, 64);
    dl_DisplayData();
    host.ClearCalls();
    dl_ImageTranslate();
    const auto picks = host.Calls("ap_SelectPointInVFS");
    ASSERT_EQ(picks.size(), 1u);
    EXPECT_NE(picks[0].args.find(" 7 1"), std::string::npos) << picks[0].args;   // type 7, cursor 1
    EXPECT_EQ(CountItems(), 1);   // nothing allocated before the points are set
    PickPoints(7, {{10, 10}, {12, 9}});
    const ImageHeaderType* r = ResultBehind(source);
    EXPECT_TRUE(LogHas("Translate image 'Scan' by (2,-1)\n"));
    EXPECT_EQ(At(r, 2, 0), Code(0, 1));
    EXPECT_FALSE(SelectionActive());
}

// Rotation by an angle.

TEST_F(GeometryTest, RotateByAnAngleHoldsItsNewItemUntilTheContinuation)
{
    TestFrameStore fs;
    ASSERT_EQ(fs.Open(1), 0);
    ImageHeaderType* source = AddCoded(64, 64);
    dl_RotateImageA();
    EXPECT_EQ(CountItems(), 2);
    EXPECT_EQ(CurrentItem, source);
    ASSERT_NE(RotateHeldItem, nullptr);
    EXPECT_EQ(source->Next, RotateHeldItem);
    const auto picks = host.Calls("ap_SelectPointInVFS");
    ASSERT_EQ(picks.size(), 1u);
    EXPECT_NE(picks[0].args.find(" 1 5"), std::string::npos) << picks[0].args;   // type 1, cursor 5
    // Dropped with the right button at the first point: the held item is freed.
    EXPECT_NE(dl_SelectPointInVFS_Callback(1, 10, 10, TV_PICK_RIGHT, 0), 0);
    EXPECT_EQ(CountItems(), 1);
    EXPECT_EQ(RotateHeldItem, nullptr);
    EXPECT_EQ(CurrentItem, source);
}

TEST_F(GeometryTest, TwoEqualPointsAreRefusedWith32782AndTheHeldItemIsFreed)
{
    ImageHeaderType* source = AddCoded(64, 64);
    const size_t blocks = LiveBlockCount();
    dl_RotateImageA();
    ASSERT_NE(RotateHeldItem, nullptr);
    RotatePointsX[0] = 5, RotatePointsY[0] = 5;
    RotatePointsX[1] = 9, RotatePointsY[1] = 9;
    RotatePointsX[2] = 9, RotatePointsY[2] = 9;
    EXPECT_EQ(RotateImageA_Continue(1), 1);
    EXPECT_TRUE(ErrorShown("Invalid data entry"));
    EXPECT_EQ(CountItems(), 1);
    EXPECT_EQ(CurrentItem, source);
    EXPECT_EQ(RotateHeldItem, nullptr);
    EXPECT_LE(LiveBlockCount(), blocks + 1);   // the selection's strip buffer may stand
}

TEST_F(GeometryTest, ThreeCollinearPointsGiveZeroOrHalfTurnAsTheDirectionsSay)
{
    AddCoded(64, 64, "A");
    dl_RotateImageA();
    RotatePointsX[0] = 10, RotatePointsY[0] = 10;
    RotatePointsX[1] = 20, RotatePointsY[1] = 10;
    RotatePointsX[2] = 40, RotatePointsY[2] = 10;   // same direction: 0 degrees
    RotateImageA_Continue(1);
    EXPECT_TRUE(LogHas("Rotate (10 10) (20 10) (40 10)\n"));
    EXPECT_TRUE(LogHas("Rotate 'A' by    0.0 degrees.\n"));
    EXPECT_EQ(LastHistoryCode(CurrentItem), 41);

    CurrentItem = FirstItem;
    dl_RotateImageA();
    RotatePointsX[0] = 30, RotatePointsY[0] = 10;
    RotatePointsX[1] = 20, RotatePointsY[1] = 10;   // opposite directions: 180 degrees
    RotatePointsX[2] = 40, RotatePointsY[2] = 10;
    RotateImageA_Continue(1);
    EXPECT_TRUE(LogHas("Rotate 'A' by  180.0 degrees.\n"));
    // The other way round the difference of the directions is -180 degrees: the same turn.
    CurrentItem = FirstItem;
    dl_RotateImageA();
    RotatePointsX[1] = 40;
    RotatePointsX[2] = 20;
    RotateImageA_Continue(1);
    EXPECT_TRUE(LogHas("Rotate 'A' by -180.0 degrees.\n"));
}

TEST_F(GeometryTest, ARotationByZeroLeavesTheLastRowAndColumnZero)
{
    ImageHeaderType* source = AddCoded(40, 30);
    dl_RotateImageA();
    RotatePointsX[0] = 7, RotatePointsY[0] = 3;
    RotatePointsX[1] = 17, RotatePointsY[1] = 3;
    RotatePointsX[2] = 27, RotatePointsY[2] = 3;
    RotateImageA_Continue(1);
    const ImageHeaderType* r = ResultBehind(source);
    for (int y = 0; y < 30; ++y)
        for (int x = 0; x < 40; ++x) {
            const bool edge = x == 39 || y == 29;
            ASSERT_EQ(At(r, x, y), edge ? 0 : Code(x, y)) << x << " " << y;
        }
    EXPECT_EQ(r->ImageSizeX, 200.0f);
    EXPECT_EQ(r->ImageSizeY, 100.0f);
}

TEST_F(GeometryTest, RotationPixelsFollowTheFixedPointBilinearRule)
{
    ImageHeaderType* source = AddCoded(50, 40);
    dl_RotateImageA();
    // Directions at 0 and about 26.6 degrees: A = -26.565... degrees.
    RotatePointsX[0] = 25, RotatePointsY[0] = 20;
    RotatePointsX[1] = 35, RotatePointsY[1] = 20;
    RotatePointsX[2] = 35, RotatePointsY[2] = 25;
    RotateImageA_Continue(1);
    const ImageHeaderType* r = ResultBehind(source);
    const float a = static_cast<float>((std::atan2(0.0, 10.0) - std::atan2(5.0, 10.0)) * 57.29577951471995);
    const int c = static_cast<int>(std::trunc(std::cos(a * 0.017453292519444445) * 16384));
    const int s = static_cast<int>(std::trunc(std::sin(a * 0.017453292519444445) * 16384));
    int computed = 0;
    for (int y = 0; y < 40; ++y)
        for (int x = 0; x < 50; ++x) {
            const int dx = x - 25, dy = y - 20;
            const int u = ((dx * c - dy * s) >> 9) + 25 * 32, v = ((dx * s + dy * c) >> 9) + 20 * 32;
            uint32_t want = 0;
            if (static_cast<uint32_t>(u) < 49u * 32 && static_cast<uint32_t>(v) < 39u * 32) {
                const int fx = u & 31, fy = v & 31, i = u >> 5, j = v >> 5;
                const uint32_t top = (Code(i, j) * (32 - fx) + Code(i + 1, j) * fx) >> 5;
                const uint32_t bottom = (Code(i, j + 1) * (32 - fx) + Code(i + 1, j + 1) * fx) >> 5;
                want = (top * (32 - fy) + bottom * fy) >> 5;
                ++computed;
            }
            ASSERT_EQ(At(r, x, y), want) << x << " " << y;
        }
    EXPECT_GT(computed, 1000);
    EXPECT_TRUE(LogHas("Rotate 'Scan' by  -26.6 degrees.\n"));
}

TEST_F(GeometryTest, TheSecondHeaderLineOfARotationUsesTheUpdatedX)
{
    ImageHeaderType* source = AddCoded(32, 32);
    dl_RotateImageA();
    // A quarter turn: C = 0, S = 16384 (or -16384).
    RotatePointsX[0] = 10, RotatePointsY[0] = 10;
    RotatePointsX[1] = 10, RotatePointsY[1] = 20;   // 90 degrees
    RotatePointsX[2] = 20, RotatePointsY[2] = 10;   // 0 degrees
    RotateImageA_Continue(1);
    const ImageHeaderType* r = ResultBehind(source);
    // X = (0 * 200 + 16384 * 100) / 16384 = 100; Y = (16384 * 100 + 0 * 100) / 16384 = 100.
    EXPECT_EQ(r->ImageSizeX, 100.0f);
    EXPECT_EQ(r->ImageSizeY, 100.0f);
    EXPECT_EQ(r->ScanSpeedX, 5.0f);
    EXPECT_EQ(r->ScanSpeedY, 5.0f);
}

TEST_F(GeometryTest, ARotationThroughThePickModeFinishesOnTheThirdClick)
{
    TestFrameStore fs;
    ASSERT_EQ(fs.Open(1), 0);
    ImageHeaderType* source = AddCoded(64, 64);
    dl_DisplayData();
    dl_RotateImageA();
    PickPoints(1, {{10, 10}, {20, 10}, {30, 10}});
    const ImageHeaderType* r = ResultBehind(source);
    EXPECT_TRUE(LogHas("Rotate (10 10) (20 10) (30 10)\n"));
    EXPECT_EQ(At(r, 5, 5), Code(5, 5));
    EXPECT_FALSE(SelectionActive());
}

// Failures.

TEST_F(GeometryTest, AFailedAllocationInEveryCommandReports32769AndLeavesTheListAsItWas)
{
    const Command commands[] = {dl_ImageMirrorX,  dl_ImageMirrorY,   dl_TransposeImage,
                                dl_RotateImage90, dl_RotateImage180, dl_RotateImage270,
                                dl_PadTo512Points, dl_Interpolate256};
    ImageHeaderType* source = AddCoded(100, 60);
    const size_t blocks = LiveBlockCount();
    for (Command command : commands) {
        for (int skip = 0; skip < 2; ++skip) {
            host.messageBoxes.clear();
            FailAllocationsForTests(1, skip);
            command();
            FailAllocationsForTests(0);
            ASSERT_FALSE(host.messageBoxes.empty()) << skip;
            EXPECT_EQ(host.messageBoxes.back().text, "Not enough memory") << skip;
            EXPECT_EQ(CountItems(), 1);
            EXPECT_EQ(CurrentItem, source);
            EXPECT_EQ(LiveBlockCount(), blocks);
        }
    }
    EXPECT_EQ(RotateHeldItem, nullptr);
}

TEST_F(GeometryTest, AFailedAllocationInTheTranslationLeavesTheListAsItWas)
{
    ImageHeaderType* source = AddCoded(100, 60);
    const size_t blocks = LiveBlockCount();
    TranslatePointsX[1] = 3;
    for (int skip = 0; skip < 2; ++skip) {
        FailAllocationsForTests(1, skip);
        ImageTranslate_Continue(1);
        FailAllocationsForTests(0);
        EXPECT_EQ(host.messageBoxes.back().text, "Not enough memory");
        EXPECT_EQ(CountItems(), 1);
        EXPECT_EQ(CurrentItem, source);
        EXPECT_EQ(LiveBlockCount(), blocks);
    }
}

// Ground truth on the sample data.

namespace {

class GeometrySampleTest : public GeometryTest {
protected:
    // Runs the commands in order on the current item; answers the last result.
    static ImageHeaderType* Apply(std::initializer_list<Command> commands)
    {
        for (Command command : commands) command();
        return CurrentItem;
    }

    // The direction, in degrees from 0 to 60, of the hexagonal lattice in a disc about (cx, cy):
    // the angle phi at which the three waves of the lattice (rows at phi + 30, 90, 150 degrees,
    // `period` pixels apart) have the most power together.
    static double LatticeDirection(const ImageHeaderType* image, double cx, double cy, double radius, double period)
    {
        const double k = 2 * M_PI / period;
        auto power = [&](double phi) {
            double total = 0;
            for (int w = 0; w < 3; ++w) {
                const double a = (phi + 30 + 60 * w) * M_PI / 180;
                const double kx = k * std::cos(a), ky = k * std::sin(a);
                double re = 0, im = 0;
                for (int y = static_cast<int>(cy - radius); y <= static_cast<int>(cy + radius); ++y)
                    for (int x = static_cast<int>(cx - radius); x <= static_cast<int>(cx + radius); ++x) {
                        if ((x - cx) * (x - cx) + (y - cy) * (y - cy) > radius * radius) continue;
                        const double z = At(image, x, y), t = kx * (x - cx) + ky * (y - cy);
                        re += z * std::cos(t);
                        im -= z * std::sin(t);
                    }
                total += re * re + im * im;
            }
            return total;
        };
        double best = 0, bestPower = -1;
        for (double phi = 0; phi < 60; phi += 1)
            if (double p = power(phi); p > bestPower) bestPower = p, best = phi;
        const double coarse = best;
        for (double phi = coarse - 1; phi <= coarse + 1; phi += 0.05)
            if (double p = power(phi); p > bestPower) bestPower = p, best = phi;
        return std::fmod(best + 60, 60);
    }
};

} // namespace

TEST_F(GeometrySampleTest, FourQuarterTurnsTwoMirrorsAndATurnBackGiveTheSourceByteForByte)
{
    ImageHeaderType* source = MakeSampleTopography(nullptr);
    ASSERT_NE(source, nullptr);
    CurrentItem = source;
    const auto original = Pixels(source);
    EXPECT_EQ(Pixels(Apply({dl_RotateImage90, dl_RotateImage90, dl_RotateImage90, dl_RotateImage90})), original);
    CurrentItem = source;
    EXPECT_EQ(Pixels(Apply({dl_ImageMirrorX, dl_ImageMirrorX})), original);
    CurrentItem = source;
    EXPECT_EQ(Pixels(Apply({dl_ImageMirrorY, dl_ImageMirrorY})), original);
    CurrentItem = source;
    EXPECT_EQ(Pixels(Apply({dl_RotateImage90, dl_RotateImage270})), original);
    CurrentItem = source;
    EXPECT_EQ(Pixels(Apply({dl_RotateImage180, dl_RotateImage180})), original);
    CurrentItem = source;
    const ImageHeaderType* turned = Apply({dl_RotateImage90, dl_RotateImage90});
    CurrentItem = source;
    EXPECT_EQ(Pixels(turned), Pixels(Apply({dl_RotateImage180})));
}

TEST_F(GeometrySampleTest, TransposeEqualsAQuarterTurnThenAMirrorInY)
{
    ImageHeaderType* source = MakeSampleLattice(nullptr);
    ASSERT_NE(source, nullptr);
    CurrentItem = source;
    const auto transposed = Pixels(Apply({dl_TransposeImage}));
    CurrentItem = source;
    EXPECT_EQ(Pixels(Apply({dl_RotateImage90, dl_ImageMirrorY})), transposed);
}

TEST_F(GeometrySampleTest, PaddingKeepsThePixelSizeInNanometres)
{
    ImageHeaderType* source = MakeSampleLattice(nullptr);
    ASSERT_NE(source, nullptr);
    CurrentItem = source;
    dl_Interpolate128();
    const ImageHeaderType* small = CurrentItem;
    const double pixel = small->ImageSizeX / small->nx;   // 6 nm over 128 points
    dl_PadTo512Points();
    const ImageHeaderType* padded = CurrentItem;
    ASSERT_EQ(padded->nx, 512);
    EXPECT_NEAR(padded->ImageSizeX / padded->nx, pixel, 1e-6);
    EXPECT_NEAR(padded->ImageSizeY / padded->ny, pixel, 1e-6);
    EXPECT_NEAR(padded->ImageSizeX, 24.0, 1e-4);
}

TEST_F(GeometrySampleTest, TheLatticeTurnedByAnAngleMeasuresThatAngleWithinHalfADegree)
{
    ImageHeaderType* source = MakeSampleLattice(nullptr);
    ASSERT_NE(source, nullptr);
    CurrentItem = source;
    // Rows of atoms a * sqrt(3) / 2 apart, in pixels of 6 nm / 256.
    const double period = SampleLattice::kLatticeConstant * std::sqrt(3.0) / 2 / (6.0 / 256);
    const double before = LatticeDirection(source, 128, 128, 90, period);
    dl_RotateImageA();
    // Centre (128, 128); directions at 0 degrees and at atan2(7, 20) = 19.29 degrees.
    RotatePointsX[0] = 128, RotatePointsY[0] = 128;
    RotatePointsX[1] = 148, RotatePointsY[1] = 128;
    RotatePointsX[2] = 148, RotatePointsY[2] = 135;
    RotateImageA_Continue(1);
    const ImageHeaderType* turned = ResultBehind(source);
    const double angle = (std::atan2(0.0, 20.0) - std::atan2(7.0, 20.0)) * 180 / M_PI;
    const double after = LatticeDirection(turned, 128, 128, 90, period);
    // A result pixel reads the source turned by the angle, so the picture turns the other way.
    double seen = std::fmod(before - after + 120, 60);
    if (seen > 30) seen -= 60;
    double want = std::fmod(angle + 120, 60);
    if (want > 30) want -= 60;
    EXPECT_NEAR(seen, want, 0.5) << "before " << before << " after " << after;
}

// Traces.

namespace {

class GeometryTraceTest : public GeometryTest {
protected:
    void SetUp() override
    {
        LibraryTest::SetUp();
        ASSERT_EQ(host.Start("tavrin.exe /DBG"), 0);
    }
};

} // namespace

TEST_F(GeometryTraceTest, EveryEntryPointTracesItsOldName)
{
    for (Command command : kCommands) command();
    for (const char* name : {"DLL_ImageMirrorX", "DLL_ImageMirrorY", "DLL_TransposeImage", "DLL_RotateImage90",
                             "DLL_RotateImage180", "DLL_RotateImage270", "DLL_RotateImageA", "DLL_ImageTranslate",
                             "DLL_PadTo256Points", "DLL_PadTo512Points", "DLL_Interpolate128", "DLL_Interpolate256",
                             "DLL_Interpolate512"})
        EXPECT_EQ(CountInLog(name), 1) << name;
}
