// Commands on the whole frame: clearing, loading an image from the frame, clicks, pick-up and
// drop, the host's repaint and the print layout's redisplay.
#include "test_frame_support.h"

#include "display/frame_commands.h"
#include "host/globals.h"
#include "store/data_list_display.h"

#include <cstring>

namespace {

class FrameCommandTest : public FrameStoreTest {
protected:
    void SetUp() override
    {
        FrameStoreTest::SetUp();
        ASSERT_EQ(fs.Open(1), 0);
        FSState.ImageDisplaySize = 256;
        host.ClearCalls();
    }
    // The host's index buffer holds (x + 3 y) mod 256 at frame point (x, y).
    void FillFramePattern()
    {
        for (int y = 0; y < 512; ++y)
            for (int x = 0; x < 512; ++x)
                fs.frame[static_cast<size_t>(511 - y) * 512 + x] = static_cast<uint8_t>((x + 3 * y) & 0xff);
    }
    static uint16_t Grey(int index) { return index < 35 ? 0 : static_cast<uint16_t>(std::min(index * 2 - 70, 255) * 256); }
    TestFrameStore fs;
};

} // namespace

TEST_F(FrameCommandTest, AfterClearFrameStoreEveryCellIsEmptyAndTheCursorAtTheTopLeft)
{
    DisplayImage(AddFlatImage(256, 0x8000), 1, 1);
    DisplayImage(AddFlatImage(256, 0x4000), 1, 1);
    FSState.DisplayBusy = 1;
    host.ClearCalls();
    dl_ClearFrameStore();
    for (const auto& column : FSState.Contents)
        for (const FSContentsType& cell : column) {
            ASSERT_EQ(cell.Image, nullptr);
            ASSERT_EQ(cell.ImType1, 6u);
        }
    EXPECT_EQ(FSState.CursorX, 0);
    EXPECT_EQ(FSState.CursorY, 0);
    EXPECT_EQ(FSState.RowHeight, 0);
    EXPECT_EQ(FSState.ImageLeft, 0);
    EXPECT_EQ(FSState.ImageTop, 0);
    EXPECT_EQ(FSState.ImageRight, 0);
    EXPECT_EQ(FSState.ImageBottom, 0);
    EXPECT_EQ(FSState.DisplayBusy, 0);
    EXPECT_TRUE(std::all_of(fs.frame.begin(), fs.frame.end(), [](uint8_t b) { return b == 0; }));
    EXPECT_EQ(host.Count("ap_ClearParamText"), 1);
    ASSERT_EQ(host.Count("ap_UpdateVFS"), 1);
    EXPECT_EQ(host.Calls("ap_UpdateVFS")[0].args, "0 0 511 511");
    ASSERT_EQ(CurrentVfs()->Items.size(), 1u);   // a client as wide as the frame: no strip
    const CVfsItem& fill = CurrentVfs()->Items[0];
    EXPECT_EQ(fill.Kind, 32u);
    EXPECT_EQ(fill.Colour, 0xffffffu);
    EXPECT_EQ(fill.Bounds.right, 511);
    EXPECT_EQ(fill.Bounds.bottom, 511);
    // The next image starts at the top left again.
    DisplayImage(AddFlatImage(256, 0), 1, 1);
    EXPECT_EQ(FSState.ImageLeft, 0);
    EXPECT_EQ(FSState.ImageTop, 0);
}

TEST_F(FrameCommandTest, AWideClientGetsAWhiteStripRightOfTheFrame)
{
    fs.Close();
    ASSERT_EQ(fs.Open(1, 600, 400), 0);
    tv_canvas_clear(fs.window, 0);
    ClearFrame();
    ASSERT_EQ(CurrentVfs()->Items.size(), 2u);
    const CVfsItem& strip = CurrentVfs()->Items[0];
    EXPECT_EQ(strip.Bounds.left, 512);
    EXPECT_EQ(strip.Bounds.top, 0);
    EXPECT_EQ(strip.Bounds.right, 599);
    EXPECT_EQ(strip.Bounds.bottom, 399);
    EXPECT_EQ(fs.WindowPixel(550, 300), kWindowWhite);   // drawn at once: no batch is open
    EXPECT_EQ(fs.WindowPixel(100, 100), kWindowWhite);
}

TEST_F(FrameCommandTest, ClearFrameWithinABatchWaitsForItsEnd)
{
    BeginBatch();
    ClearFrame();
    EXPECT_EQ(host.Count("ap_UpdateVFS"), 0);
    EXPECT_EQ(host.Count("ap_FillPixelRow"), 0);
    EndBatchAndShow(0, 0, 511, 511);
    EXPECT_EQ(host.Count("ap_UpdateVFS"), 1);
}

TEST_F(FrameCommandTest, LoadFrameMakesAnImageOfEachAreaWithBothAnswers)
{
    struct Area {
        int which, left, top, edge;
    };
    const Area areas[] = {{1, 0, 0, 512},   {2, 0, 0, 256},     {3, 256, 0, 256},
                          {4, 0, 256, 256}, {5, 256, 256, 256}, {6, 128, 128, 256}};
    for (const Area& a : areas) {
        for (bool keep : {true, false}) {
            FillFramePattern();
            host.messageBoxAnswers.push_back(keep ? TV_IDYES : TV_IDNO);
            const size_t boxes = host.messageBoxes.size();
            ImageHeaderType* before = CurrentItem;
            dl_LoadFrame(static_cast<int16_t>(a.which));
            ASSERT_EQ(host.messageBoxes.size(), boxes + 1);
            EXPECT_EQ(host.messageBoxes.back().text, "Keep colours ?  ");
            ImageHeaderType* item = CurrentItem;
            ASSERT_NE(item, before);
            ASSERT_NE(item, nullptr);
            EXPECT_EQ(item->Prev, before);
            EXPECT_EQ(item->nx, a.edge);
            EXPECT_EQ(item->ny, a.edge);
            EXPECT_STREQ(item->Title, "Frame Store");
            EXPECT_STREQ(item->FileName, "Frame store");
            EXPECT_EQ(item->ColourImage, keep ? 1 : 0);
            for (const auto& [x, y] : std::vector<std::pair<int, int>>{{0, 0}, {5, 3}, {a.edge - 1, a.edge - 1}, {40, 20}}) {
                const int index = (a.left + x + 3 * (a.top + y)) & 0xff;
                const uint16_t expected = keep ? static_cast<uint16_t>(index * 256) : Grey(index);
                EXPECT_EQ(item->PixData[static_cast<size_t>(y) * a.edge + x], expected)
                    << a.which << " " << keep << " " << x << "," << y;
            }
        }
    }
    EXPECT_EQ(CountInLog("Load 'Frame store' from frame store.\n"), 12);
}

TEST_F(FrameCommandTest, LoadFrameTurnsIndicesIntoTheGreyOfTheRamp)
{
    for (int y = 0; y < 512; ++y) std::memset(&fs.frame[static_cast<size_t>(y) * 512], 0, 512);
    const uint8_t indices[6] = {0, 34, 35, 100, 162, 200};
    for (int x = 0; x < 6; ++x) fs.frame[511 * 512 + x] = indices[x];   // frame row 0
    host.messageBoxAnswers.push_back(TV_IDNO);
    dl_LoadFrame(2);
    ASSERT_NE(CurrentItem, nullptr);
    const uint16_t* p = CurrentItem->PixData;
    EXPECT_EQ(p[0], 0);
    EXPECT_EQ(p[1], 0);
    EXPECT_EQ(p[2], 0);          // (35 * 2 - 70) * 256
    EXPECT_EQ(p[3], 130 * 256);
    EXPECT_EQ(p[4], 254 * 256);
    EXPECT_EQ(p[5], 255 * 256);  // above the ramp: white, the largest level
}

TEST_F(FrameCommandTest, LoadFrameIsShownAtTheCursorAsTheCurrentItem)
{
    host.messageBoxAnswers.push_back(TV_IDYES);
    dl_LoadFrame(3);
    EXPECT_EQ(DisplayRequests().lastShown, CurrentItem);
    EXPECT_EQ(GetFSContentsCoords(0, 0), CurrentItem);
}

TEST_F(FrameCommandTest, LoadFrameKeepsTheColoursByDefault)
{
    dl_LoadFrame(2);   // the host answers the default button
    ASSERT_EQ(host.messageBoxes.size(), 1u);
    EXPECT_EQ(host.messageBoxes[0].style & TV_MB_TYPEMASK, static_cast<uint32_t>(TV_MB_YESNOCANCEL));
    EXPECT_EQ(host.messageBoxes[0].style & TV_MB_DEFMASK, static_cast<uint32_t>(TV_MB_DEFBUTTON1));
    ASSERT_NE(CurrentItem, nullptr);
    EXPECT_EQ(CurrentItem->ColourImage, 1);
}

TEST_F(FrameCommandTest, LoadFrameOnCancelOrAnotherWhichMakesNothing)
{
    host.messageBoxAnswers.push_back(TV_IDCANCEL);
    dl_LoadFrame(1);
    host.messageBoxAnswers.push_back(TV_IDYES);
    dl_LoadFrame(0);
    host.messageBoxAnswers.push_back(TV_IDNO);
    dl_LoadFrame(7);
    EXPECT_EQ(host.messageBoxes.size(), 3u);
    EXPECT_EQ(FirstItem, nullptr);
    EXPECT_FALSE(LogHas("from frame store"));
}

TEST_F(FrameCommandTest, LoadFrameWithoutMemoryLeavesTheList)
{
    ImageHeaderType* only = AddFlatImage(16, 0);
    FailAllocationsForTests(1, 1);   // the record is made, its pixels are not
    host.messageBoxAnswers.push_back(TV_IDYES);
    dl_LoadFrame(1);
    EXPECT_EQ(FirstItem, only);
    EXPECT_EQ(only->Next, nullptr);
    EXPECT_EQ(CurrentItem, only);
    EXPECT_TRUE(LogHas("ERROR : Not enough memory for image\n"));
}

TEST_F(FrameCommandTest, SelectionFromTheFrameIsOnByDefault)
{
    EXPECT_TRUE(SelectionFromFSEnabled());
    ImageHeaderType* shown = AddFlatImage(256, 0x8000);
    DisplayImage(shown, 1, 1);
    ImageHeaderType* other = AddFlatImage(256, 0x4000);
    ASSERT_EQ(CurrentItem, other);
    dl_SelectImageFromFS(10, 10, 1);
    EXPECT_EQ(CurrentItem, shown);
    EXPECT_EQ(DisplayRequests().lastShown, shown);
}

TEST_F(FrameCommandTest, AClickWithTheOtherButtonsOrOnNothing)
{
    ImageHeaderType* shown = AddFlatImage(256, 0x8000);
    DisplayImage(shown, 1, 1);
    ImageHeaderType* other = AddFlatImage(256, 0x4000);
    const int shownBefore = DisplayRequests().shown;
    dl_SelectImageFromFS(10, 10, 2);
    dl_SelectImageFromFS(10, 10, 4);
    EXPECT_EQ(CurrentItem, other);
    EXPECT_EQ(DisplayRequests().shown, shownBefore);
    EXPECT_EQ(host.Count("ap_ClearParamText"), 0);
    dl_SelectImageFromFS(10, 10, 3);
    EXPECT_TRUE(LogHasProgramError("SelectFromFS but=3"));
    EXPECT_EQ(CurrentItem, other);
    dl_SelectImageFromFS(300, 300, 1);   // an empty cell
    EXPECT_EQ(host.Count("ap_ClearParamText"), 1);
    EXPECT_EQ(CurrentItem, other);
}

TEST_F(FrameCommandTest, WithSelectionDisabledAClickDoesNothing)
{
    ImageHeaderType* shown = AddFlatImage(256, 0x8000);
    DisplayImage(shown, 1, 1);
    ImageHeaderType* other = AddFlatImage(256, 0x4000);
    EnableSelectionFromFS(false);
    dl_SelectImageFromFS(10, 10, 1);
    dl_SelectImageFromFS(300, 300, 1);
    EXPECT_EQ(CurrentItem, other);
    EXPECT_EQ(host.Count("ap_ClearParamText"), 0);
    EnableSelectionFromFS(true);
    dl_SelectImageFromFS(10, 10, 1);
    EXPECT_EQ(CurrentItem, shown);
}

TEST_F(FrameCommandTest, PickUpAtMinusOneTakesTheCurrentItemAndAnEmptyCellAnswersOne)
{
    ImageHeaderType* shown = AddFlatImage(256, 0x8000);
    DisplayImage(shown, 1, 1);
    ImageHeaderType* current = AddFlatImage(128, 0x4000);
    VFSPickUpType out;
    std::memset(&out, 0xee, sizeof out);
    EXPECT_EQ(dl_VFS_pickup_image(-1, -1, &out), 0);
    EXPECT_EQ(out.Pointers[0], current);
    EXPECT_EQ(out.Sizes[0], 6090u);
    EXPECT_EQ(out.Pointers[1], current->PixData);
    EXPECT_EQ(out.Sizes[1], 2u * 128 * 128);
    EXPECT_EQ(out.Sizes[2], 0u);
    EXPECT_EQ(out.Pointers[2], nullptr);
    EXPECT_EQ(out.Pointers[4100], nullptr);
    EXPECT_EQ(dl_VFS_pickup_image(100, 600, &out), 0);   // outside the frame: the current item
    EXPECT_EQ(out.Pointers[0], current);
    EXPECT_EQ(dl_VFS_pickup_image(10, 10, &out), 0);
    EXPECT_EQ(out.Pointers[0], shown);
    EXPECT_EQ(dl_VFS_pickup_image(300, 300, &out), 1);
    EXPECT_EQ(dl_VFS_pickup_image(10, 10, nullptr), 1);
    CurrentItem = nullptr;
    EXPECT_EQ(dl_VFS_pickup_image(-1, -1, &out), 1);
}

TEST_F(FrameCommandTest, PickUpOfASpectrumAndOfAnImageWithFFTData)
{
    ImageHeaderType* spectrum = AddSpectrum(40);
    VFSPickUpType out;
    ASSERT_EQ(dl_VFS_pickup_image(-1, -1, &out), 0);
    EXPECT_EQ(out.Pointers[0], spectrum);
    EXPECT_EQ(out.Sizes[1], 8u * 40);
    EXPECT_EQ(out.Pointers[1], spectrum->PixData);

    ImageHeaderType* image = AddFlatImage(16, 0x1234);
    auto* fft = static_cast<float*>(emalloc(8 * 16 * 16));
    ASSERT_NE(fft, nullptr);
    for (int i = 0; i < 2 * 16 * 16; ++i) fft[i] = static_cast<float>(i);
    SetFFTBlock(image, fft);
    ASSERT_EQ(dl_VFS_pickup_image(-1, -1, &out), 0);
    EXPECT_EQ(out.Sizes[2], 0u);
    EXPECT_EQ(out.Pointers[2], fft);
    EXPECT_EQ(out.Sizes[3], 8u * 16 * 16);
    EXPECT_EQ(out.Pointers[3], fft);
}

TEST_F(FrameCommandTest, DropMakesACopyOfAnImageCurrentAndShowsIt)
{
    ImageHeaderType* source = AddImage(64, 64, [](int x, int y) { return static_cast<uint16_t>(x * 1000 + y); }, "Source");
    auto* fft = static_cast<float*>(emalloc(8 * 64 * 64));
    ASSERT_NE(fft, nullptr);
    for (int i = 0; i < 2 * 64 * 64; ++i) fft[i] = static_cast<float>(i) * 0.5f;
    SetFFTBlock(source, fft);
    VFSPickUpType clip;
    ASSERT_EQ(dl_VFS_pickup_image(-1, -1, &clip), 0);
    EXPECT_EQ(dl_VFS_drop_image(&clip), 0);
    ImageHeaderType* copy = CurrentItem;
    ASSERT_NE(copy, source);
    EXPECT_EQ(copy->Prev, source);
    EXPECT_NE(copy->DataId, source->DataId);
    EXPECT_STREQ(copy->Title, "Source");
    EXPECT_EQ(std::memcmp(copy, source, TAVRIN_HEADER_STORED_BYTES), 0);
    ASSERT_NE(copy->PixData, source->PixData);
    EXPECT_EQ(std::memcmp(copy->PixData, source->PixData, 2 * 64 * 64), 0);
    ASSERT_NE(copy->FFTDataPtr, nullptr);
    EXPECT_NE(copy->FFTDataPtr, fft);
    EXPECT_EQ(std::memcmp(copy->FFTDataPtr, fft, 8 * 64 * 64), 0);
    EXPECT_EQ(DisplayRequests().lastShown, copy);
    EXPECT_EQ(GetFSContentsCoords(0, 0), copy);
}

TEST_F(FrameCommandTest, DropOfASpectrum)
{
    ImageHeaderType* source = AddSpectrum(30);
    VFSPickUpType clip;
    ASSERT_EQ(dl_VFS_pickup_image(-1, -1, &clip), 0);
    EXPECT_EQ(dl_VFS_drop_image(&clip), 0);
    ImageHeaderType* copy = CurrentItem;
    ASSERT_NE(copy, source);
    EXPECT_EQ(copy->ImType1, 2u);
    EXPECT_EQ(copy->nx, 30);
    EXPECT_EQ(SpecY(copy)[29], 29.0f * 29.0f);
    EXPECT_EQ(SpecX(copy)[29], 29.0f);
    EXPECT_NE(copy->PixData, source->PixData);
}

TEST_F(FrameCommandTest, DropRefusesRecordsOfAnotherRevision)
{
    ImageHeaderType* source = AddFlatImage(16, 0);
    VFSPickUpType clip;
    ASSERT_EQ(dl_VFS_pickup_image(-1, -1, &clip), 0);
    EXPECT_EQ(dl_VFS_drop_image(nullptr), 1);
    source->RevNo = 701;
    EXPECT_EQ(dl_VFS_drop_image(&clip), 1);
    source->RevNo = 700;
    source->SubRevNo = 43;
    EXPECT_EQ(dl_VFS_drop_image(&clip), 1);
    EXPECT_EQ(CountInLog("ERROR : Data has invalid revision number for operation\n"), 3);
    EXPECT_EQ(source->Next, nullptr);
    EXPECT_EQ(CurrentItem, source);
}

TEST_F(FrameCommandTest, DropRefusesBlocksThatDoNotMatchTheRecordAndFreesWhatItMade)
{
    ImageHeaderType* source = AddFlatImage(16, 0);
    VFSPickUpType clip;
    ASSERT_EQ(dl_VFS_pickup_image(-1, -1, &clip), 0);
    const size_t blocks = LiveBlockCount();
    const std::string paste = "ERROR : Unable to paste image - incorrect data format - check software versions.\n";

    VFSPickUpType bad = clip;
    bad.Sizes[0] = 6089;
    EXPECT_EQ(dl_VFS_drop_image(&bad), 1);
    bad = clip;
    bad.Sizes[1] = 2 * 16 * 16 - 2;
    EXPECT_EQ(dl_VFS_drop_image(&bad), 1);
    bad = clip;
    bad.Pointers[1] = nullptr;
    EXPECT_EQ(dl_VFS_drop_image(&bad), 1);
    source->FFTData = 1;   // the record says FFT data, the pick-up carries none
    EXPECT_EQ(dl_VFS_drop_image(&clip), 1);
    source->FFTData = 0;
    source->CITSHeader = 1;   // a mapping set
    EXPECT_EQ(dl_VFS_drop_image(&clip), 1);
    source->CITSHeader = 0;
    source->ImType1 = 3;   // a profile with the sizes of an image
    EXPECT_EQ(dl_VFS_drop_image(&clip), 1);
    source->ImType1 = 1;
    EXPECT_EQ(CountInLog(paste), 6);
    EXPECT_EQ(source->Next, nullptr);
    EXPECT_EQ(CurrentItem, source);
    EXPECT_EQ(LiveBlockCount(), blocks);
}

TEST_F(FrameCommandTest, DropWithoutMemoryLeavesTheList)
{
    ImageHeaderType* source = AddFlatImage(16, 0);
    VFSPickUpType clip;
    ASSERT_EQ(dl_VFS_pickup_image(-1, -1, &clip), 0);
    const size_t blocks = LiveBlockCount();
    FailAllocationsForTests(1, 1);   // the record is made, its pixels are not
    EXPECT_EQ(dl_VFS_drop_image(&clip), 1);
    EXPECT_TRUE(LogHas("ERROR : Not enough memory for image\n"));
    EXPECT_FALSE(LogHas("Unable to paste"));
    EXPECT_EQ(source->Next, nullptr);
    EXPECT_EQ(LiveBlockCount(), blocks);
}

TEST_F(FrameCommandTest, DropBringsAnOlderRecordUpToDate)
{
    ImageHeaderType* source = AddFlatImage(16, 0);
    VFSPickUpType clip;
    ASSERT_EQ(dl_VFS_pickup_image(-1, -1, &clip), 0);
    source->RevNo = 603;
    source->SubRevNo = 18;
    EXPECT_EQ(dl_VFS_drop_image(&clip), 0);
    ImageHeaderType* copy = CurrentItem;
    ASSERT_NE(copy, source);
    EXPECT_EQ(copy->RevNo, 700);
    EXPECT_EQ(copy->SubRevNo, 42);
    EXPECT_EQ(source->RevNo, 603);   // the picked record stays as it was
}

TEST_F(FrameCommandTest, PrintEditUpdateShowsTheItemAt512AndRestoresTheSize)
{
    ImageHeaderType* a = AddFlatImage(512, 0x8000);
    ImageHeaderType* b = AddFlatImage(256, 0x4000);
    dl_PrintEditUpdateVFS(a, 0);
    EXPECT_EQ(CurrentItem, a);
    EXPECT_EQ(host.Count("ap_UpdateVFS"), 0);
    dl_PrintEditUpdateVFS(nullptr, 1);
    EXPECT_EQ(FSState.NPixelsX, 512);
    EXPECT_EQ(FSState.ImageDisplaySize, 256);
    EXPECT_EQ(GetFSContentsCoords(400, 400), a);
    dl_PrintEditUpdateVFS(b, 1);
    EXPECT_EQ(FSState.NPixelsX, 512);
    EXPECT_EQ(CurrentItem, b);
    ImageHeaderType stray{};
    dl_PrintEditUpdateVFS(&stray, 1);
    EXPECT_TRUE(LogHasProgramError("dl_PrintEditUpdateVFS"));
    EXPECT_EQ(CurrentItem, b);
}

TEST_F(FrameCommandTest, TheHostsRepaintDrawsTheListOfThatFrameStoreIntoItsWindow)
{
    TestFrameStore other;
    ASSERT_EQ(other.Open(2), 0);
    BeginBatch();
    CurrentVfs()->AddLine(10, 10, 100, 10, RgbColour(255, 0, 0), 1);   // frame store 1
    EndBatch();
    tv_canvas_clear(fs.window, 0);
    tv_canvas_clear(other.window, 0);
    dl_VFS_set_current_vfs(2);
    const TvRect dest{0, 0, 511, 511};
    dl_RedrawVFS(&dest, nullptr, 1);
    EXPECT_EQ(fs.WindowPixel(50, 10), 0x0000ffu);
    EXPECT_EQ(other.WindowPixel(50, 10), 0u);
    EXPECT_EQ(CurrentVFS->VFSNo, 2);   // put back
    dl_RedrawVFS(&dest, nullptr, 9);   // no such frame store: nothing
    dl_RedrawVFS(nullptr, nullptr, 1);
    EXPECT_FALSE(LogHasProgramErrors());
}

TEST_F(FrameCommandTest, TheEntryPointsTraceTheirNames)
{
    DebugMode = true;
    host.messageBoxAnswers.push_back(TV_IDCANCEL);
    dl_LoadFrame(1);
    dl_ClearFrameStore();
    dl_VFS_set_current_vfs(1);
    EXPECT_TRUE(LogHas("dl_LoadFrame              \n"));
    EXPECT_TRUE(LogHas("dl_ClearFrameStore\n"));
    EXPECT_TRUE(LogHas("dl_VFS_set_current_vfs: 1\n"));
}
