// Frame stores: the chain of open frame stores, the placement state of the current one, the
// pixel layer and the batch protocol with the host.
#include "test_frame_support.h"

#include "display/palette.h"

#include <cstring>

namespace {

class VfsTest : public FrameStoreTest {};

size_t Offset(int x, int y) { return static_cast<size_t>(511 - y) * 512 + x; }

} // namespace

TEST_F(VfsTest, OpeningClearsBothBuffersAndTakesTheOpeningValues)
{
    TrueRGB = true;
    TestFrameStore fs;
    std::fill(fs.frame.begin(), fs.frame.end(), 0xaa);
    std::fill(fs.rgb.begin(), fs.rgb.end(), 0x55);
    ASSERT_EQ(fs.Open(3, 640, 480), 0);

    EXPECT_TRUE(std::all_of(fs.frame.begin(), fs.frame.end(), [](uint8_t b) { return b == 0; }));
    EXPECT_TRUE(std::all_of(fs.rgb.begin(), fs.rgb.end(), [](uint8_t b) { return b == 0; }));
    ASSERT_NE(CurrentVFS, nullptr);
    EXPECT_EQ(CurrentVFS->VFSNo, 3);
    EXPECT_EQ(CurrentVFS->FrameBuffer, fs.frame.data());
    EXPECT_EQ(CurrentVFS->RGBBuffer, fs.rgb.data());
    EXPECT_EQ(CurrentFrameBuffer, fs.frame.data());
    EXPECT_EQ(CurrentRGBBuffer, fs.rgb.data());
    EXPECT_EQ(FSState.ImageDisplaySize, 512);
    EXPECT_EQ(FSState.NPixelsX, 256);
    EXPECT_EQ(FSState.NPixelsY, 256);
    EXPECT_EQ(FSState.TextOverlayOn, 0);
    EXPECT_EQ(FSState.TextOverlayMode, 1);
    EXPECT_EQ(FSState.CursorX, 0);
    EXPECT_EQ(FSState.CursorY, 0);
    EXPECT_EQ(FSState.Contents[3][7].Image, nullptr);
    EXPECT_EQ(FSState.Contents[3][7].ImType1, 0u);   // a cleared record, not the cleared-frame form
    CVfs* vfs = CurrentVfs();
    ASSERT_NE(vfs, nullptr);
    EXPECT_EQ(vfs->Wnd, fs.window);
    EXPECT_EQ(vfs->BitsWidth, 512);
    EXPECT_EQ(vfs->BitsHeight, 512);
    EXPECT_EQ(vfs->ClientWidth, 640);
    EXPECT_EQ(vfs->ClientHeight, 480);
    EXPECT_TRUE(vfs->Items.empty());
}

TEST_F(VfsTest, WithoutTrueRGBTheSecondBufferIsLeftAlone)
{
    TestFrameStore fs;
    std::fill(fs.rgb.begin(), fs.rgb.end(), 0x55);
    ASSERT_EQ(fs.Open(1), 0);
    EXPECT_EQ(CurrentVFS->RGBBuffer, nullptr);
    EXPECT_EQ(fs.rgb[0], 0x55);
    BeginBatch();
    const uint8_t indices[2] = {4, 4};
    WriteFSLine(indices, 2, 0, 0);
    EndBatch();
    EXPECT_EQ(fs.rgb[Offset(0, 0) * 3], 0x55);
}

TEST_F(VfsTest, TheFirstOpeningOfARunLoadsThePalette)
{
    TestFrameStore a, b;
    ASSERT_EQ(a.Open(1), 0);
    EXPECT_EQ(host.Count("ap_SetPalette"), 1);
    ASSERT_EQ(b.Open(2), 0);
    EXPECT_EQ(host.Count("ap_SetPalette"), 1);
}

TEST_F(VfsTest, ANumberThatIsOpenAlreadyIsAProgramErrorAndAnswersOne)
{
    TestFrameStore a, b;
    ASSERT_EQ(a.Open(3), 0);
    EXPECT_EQ(b.Open(3), 1);
    EXPECT_TRUE(LogHasProgramError("VFS_open_vfs 3"));
    ASSERT_NE(FirstVFS, nullptr);
    EXPECT_EQ(FirstVFS->Next, nullptr);
}

TEST_F(VfsTest, OpeningWithoutMemoryReportsAndLeavesBuffersAndChainAlone)
{
    TestFrameStore fs;
    std::fill(fs.frame.begin(), fs.frame.end(), 0x11);
    const size_t blocks = LiveBlockCount();
    FailAllocationsForTests(1);   // the record
    EXPECT_EQ(fs.Open(1), 1);
    FailAllocationsForTests(1, 1);   // the display list object
    EXPECT_EQ(fs.Open(1), 1);
    EXPECT_EQ(CountInLog("ERROR : Not enough memory\n"), 2);
    EXPECT_EQ(FirstVFS, nullptr);
    EXPECT_EQ(CurrentVFS, nullptr);
    EXPECT_EQ(fs.frame[0], 0x11);
    EXPECT_EQ(LiveBlockCount(), blocks);
}

TEST_F(VfsTest, ANullIndexBufferIsReportedAndItsPixelsGoToTheHost)
{
    TvCanvas* window = tv_canvas_create(512, 512);
    uint8_t* buffers[2] = {nullptr, nullptr};
    EXPECT_EQ(dl_VFS_open_vfs(buffers, 4, window), 0);
    EXPECT_TRUE(LogHasProgramError("dl_VFS_open_vfs 4 (nil)"));
    BeginBatch();
    const uint8_t indices[3] = {1, 2, 3};
    WriteFSLine(indices, 3, 5, 6);
    EndBatch();
    EXPECT_EQ(host.Count("ap_PutPixelRow"), 1);
    dl_VFS_close_vfs(4);
    tv_canvas_destroy(window);
}

TEST_F(VfsTest, TrueRGBWithoutASecondBufferKeepsNoRGBLayer)
{
    TrueRGB = true;
    std::vector<uint8_t> frame(512 * 512);   // one byte a pixel, exactly
    TvCanvas* window = tv_canvas_create(512, 512);
    uint8_t* buffers[2] = {frame.data(), nullptr};
    EXPECT_EQ(dl_VFS_open_vfs(buffers, 2, window), 0);
    EXPECT_TRUE(LogHasProgramError("dl_VFS_open_vfs TrueRGB 2 (nil)"));
    EXPECT_EQ(CurrentRGBBuffer, nullptr);
    BeginBatch();
    std::vector<uint8_t> row(512, 9);
    for (int y = 0; y < 512; ++y) WriteFSLine(row.data(), 512, 0, y);
    PutFSPixel(7, 1, 511, 511);
    EndBatch();
    EXPECT_EQ(frame[511], 7);                 // (511, 511) ends the first row of the buffer
    EXPECT_EQ(frame[0], 9);
    EXPECT_EQ(frame[512 * 512 - 1], 9);       // (511, 0) is its last byte: nothing beyond
    EXPECT_EQ(frame[Offset(0, 0)], 9);
    dl_VFS_close_vfs(2);
    tv_canvas_destroy(window);
}

TEST_F(VfsTest, ClosingTheCurrentFrameStoreMakesTheNextCurrentThenThePrevious)
{
    TestFrameStore a, b, c;
    ASSERT_EQ(a.Open(1), 0);
    ASSERT_EQ(b.Open(2), 0);
    ASSERT_EQ(c.Open(3), 0);
    EXPECT_EQ(CurrentVFS->VFSNo, 1);
    dl_VFS_set_current_vfs(2);
    b.Close();
    ASSERT_NE(CurrentVFS, nullptr);
    EXPECT_EQ(CurrentVFS->VFSNo, 3);   // the successor
    c.Close();
    EXPECT_EQ(CurrentVFS->VFSNo, 1);   // no successor: the predecessor
    EXPECT_EQ(CurrentFrameBuffer, a.frame.data());
    a.Close();
    EXPECT_EQ(CurrentVFS, nullptr);
    EXPECT_EQ(FirstVFS, nullptr);
    EXPECT_EQ(CurrentFrameBuffer, nullptr);
}

TEST_F(VfsTest, ClosingTheHeadMovesTheHeadOn)
{
    TestFrameStore a, b;
    ASSERT_EQ(a.Open(1), 0);
    ASSERT_EQ(b.Open(2), 0);
    dl_VFS_set_current_vfs(2);
    a.Close();
    ASSERT_NE(FirstVFS, nullptr);
    EXPECT_EQ(FirstVFS->VFSNo, 2);
    EXPECT_EQ(CurrentVFS->VFSNo, 2);
}

TEST_F(VfsTest, UnknownNumbersAreReported)
{
    TestFrameStore a;
    ASSERT_EQ(a.Open(1), 0);
    dl_VFS_close_vfs(9);
    dl_VFS_set_current_vfs(8);
    EXPECT_TRUE(LogHasProgramError("VFS_close_vfs 9"));
    EXPECT_TRUE(LogHasProgramError("VFS_set_current_vfs 8"));
    EXPECT_EQ(CurrentVFS->VFSNo, 1);
}

TEST_F(VfsTest, SwitchingSavesAndLoadsThePlacementStateWithDisplayBusyCleared)
{
    TestFrameStore a, b;
    ASSERT_EQ(a.Open(1), 0);
    ASSERT_EQ(b.Open(2), 0);
    FSState.CursorX = 100;
    FSState.RowHeight = 64;
    FSState.DisplayBusy = 1;
    FSState.ColourMap[5] = 77;
    dl_VFS_set_current_vfs(2);
    EXPECT_EQ(FSState.CursorX, 0);
    EXPECT_EQ(FSState.ColourMap[5], 0);
    EXPECT_EQ(CurrentFrameBuffer, b.frame.data());
    FSState.CursorX = 7;
    dl_VFS_set_current_vfs(1);
    EXPECT_EQ(FSState.CursorX, 100);
    EXPECT_EQ(FSState.RowHeight, 64);
    EXPECT_EQ(FSState.ColourMap[5], 77);
    EXPECT_EQ(FSState.DisplayBusy, 0);
    EXPECT_EQ(CurrentFrameBuffer, a.frame.data());
    dl_VFS_set_current_vfs(2);
    EXPECT_EQ(FSState.CursorX, 7);
}

TEST_F(VfsTest, MakingAFrameStoreCurrentReplaysItsDisplayList)
{
    TestFrameStore a, b;
    ASSERT_EQ(a.Open(1), 0);
    ASSERT_EQ(b.Open(2), 0);
    dl_VFS_set_current_vfs(2);
    BeginBatch();   // added to the list, not drawn
    CurrentVfs()->AddLine(10, 20, 100, 20, RgbColour(255, 0, 0), 1);
    EndBatch();
    dl_VFS_set_current_vfs(1);
    tv_canvas_clear(b.window, 0);
    EXPECT_EQ(b.WindowPixel(50, 20), 0u);
    dl_VFS_set_current_vfs(2);
    EXPECT_EQ(b.WindowPixel(50, 20), 0x0000ffu);
    EXPECT_EQ(a.WindowPixel(50, 20), 0u);
}

TEST_F(VfsTest, RowsAreWrittenBottomUpWithBlueGreenRedBytes)
{
    TrueRGB = true;
    TestFrameStore fs;
    ASSERT_EQ(fs.Open(1), 0);
    host.ClearCalls();
    BeginBatch();
    const uint8_t top[3] = {1, 4, 2};      // blue, red, green in the fixed colours
    const uint8_t bottom[2] = {6, 0};      // black, white
    WriteFSLine(top, 3, 10, 0);
    WriteFSLine(bottom, 2, 0, 511);
    EndBatch();
    EXPECT_EQ(host.Count("ap_PutPixelRow"), 0);
    // Frame row 0 is the last row of the buffer, frame row 511 the first.
    EXPECT_EQ(fs.frame[511 * 512 + 10], 1);
    EXPECT_EQ(fs.frame[511 * 512 + 11], 4);
    EXPECT_EQ(fs.frame[511 * 512 + 12], 2);
    EXPECT_EQ(fs.frame[0], 6);
    EXPECT_EQ(fs.frame[1], 0);
    const uint8_t* p = &fs.rgb[(511 * 512 + 10) * 3];
    const uint8_t expectTop[9] = {255, 0, 0, 0, 0, 255, 0, 255, 0};
    EXPECT_EQ(std::memcmp(p, expectTop, 9), 0);
    const uint8_t expectBottom[6] = {0, 0, 0, 255, 255, 255};
    EXPECT_EQ(std::memcmp(&fs.rgb[0], expectBottom, 6), 0);
}

TEST_F(VfsTest, PixelOperationsOutsideABatchGoToTheHost)
{
    TestFrameStore fs;
    ASSERT_EQ(fs.Open(1), 0);
    host.ClearCalls();
    const uint8_t indices[3] = {1, 2, 3};
    WriteFSLine(indices, 3, 10, 20);
    FillFSLine(7, 5, 1, 2);
    PutFSPixel(9, 1, 30, 40);
    PutFSColour(0x336699, 0, 31, 41);
    ASSERT_EQ(host.Count("ap_PutPixelRow"), 1);
    EXPECT_EQ(host.Calls("ap_PutPixelRow")[0].args, "3 10 20");
    ASSERT_EQ(host.Count("ap_FillPixelRow"), 1);
    EXPECT_EQ(host.Calls("ap_FillPixelRow")[0].args, "7 5 1 2");
    ASSERT_EQ(host.Count("ap_PutPixel"), 2);
    EXPECT_EQ(host.Calls("ap_PutPixel")[0].args, "9 1 30 40");
    EXPECT_EQ(host.Calls("ap_PutPixel")[1].args, "153 0 31 41");
    EXPECT_TRUE(std::all_of(fs.frame.begin(), fs.frame.end(), [](uint8_t b) { return b == 0; }));
}

TEST_F(VfsTest, RunsAreCutToTheFrame)
{
    TestFrameStore fs;
    ASSERT_EQ(fs.Open(1), 0);
    host.ClearCalls();
    const uint8_t indices[5] = {11, 12, 13, 14, 15};
    BeginBatch();
    WriteFSLine(indices, 5, -2, 3);    // the first two points lie left of the frame
    WriteFSLine(indices, 5, 510, 4);   // the last three right of it
    WriteFSLine(indices, 5, 0, 512);   // below the frame
    WriteFSLine(indices, 5, 0, -1);    // above it
    FillFSLine(8, 1000, -100, 5);
    PutFSPixel(3, 0, 512, 0);
    EndBatch();
    EXPECT_EQ(fs.Index(0, 3), 13);
    EXPECT_EQ(fs.Index(2, 3), 15);
    EXPECT_EQ(fs.Index(3, 3), 0);
    EXPECT_EQ(fs.Index(510, 4), 11);
    EXPECT_EQ(fs.Index(511, 4), 12);
    EXPECT_EQ(fs.Index(0, 5), 8);
    EXPECT_EQ(fs.Index(511, 5), 8);
    EXPECT_EQ(host.Count("ap_PutPixelRow"), 0);
    // The host gets the same cut runs.
    WriteFSLine(indices, 5, -2, 3);
    ASSERT_EQ(host.Count("ap_PutPixelRow"), 1);
    EXPECT_EQ(host.Calls("ap_PutPixelRow")[0].args, "3 0 3");
}

TEST_F(VfsTest, PutFSPixelWithAddRaisesEachComponentByAThirdUpTo255)
{
    TrueRGB = true;
    TestFrameStore fs;
    ASSERT_EQ(fs.Open(1), 0);
    BeginBatch();
    PutFSPixel(1, 0, 5, 5);   // blue 255
    EXPECT_EQ(fs.RGB(5, 5), 0xff0000u);
    PutFSPixel(4, 1, 5, 5);   // red 255 added: 85
    EXPECT_EQ(fs.RGB(5, 5), 0xff0055u);
    EXPECT_EQ(fs.Index(5, 5), 4);
    PutFSPixel(4, 1, 5, 5);
    PutFSPixel(4, 1, 5, 5);
    EXPECT_EQ(fs.RGB(5, 5), 0xff00ffu);   // 255
    PutFSPixel(4, 1, 5, 5);
    EXPECT_EQ(fs.RGB(5, 5), 0xff00ffu);   // limited
    PutFSPixel(13, 1, 6, 6);              // 255, 170, 85 onto black: 85, 56, 28
    EXPECT_EQ(fs.RGB(6, 6), (28u << 16) | (56u << 8) | 85u);
    EndBatch();
}

TEST_F(VfsTest, PutFSColourWritesTheComponentsAndTheLowByteAsIndex)
{
    TrueRGB = true;
    TestFrameStore fs;
    ASSERT_EQ(fs.Open(1), 0);
    BeginBatch();
    PutFSColour(0x336699, 0, 7, 8);
    EXPECT_EQ(fs.Index(7, 8), 0x99);
    EXPECT_EQ(fs.RGB(7, 8), 0x336699u);
    PutFSColour(0x303030, 1, 7, 8);   // each raised by 0x10
    EXPECT_EQ(fs.RGB(7, 8), 0x4376a9u);
    EndBatch();
}

TEST_F(VfsTest, GetFSPixelReadsTheIndexLayerOnlyWhenThereIsABuffer)
{
    uint8_t value = 42;
    EXPECT_EQ(GetFSPixel(&value, 1, 1), 0);   // no frame store
    EXPECT_EQ(value, 42);
    TestFrameStore fs;
    ASSERT_EQ(fs.Open(1), 0);
    fs.frame[Offset(1, 1)] = 17;
    EXPECT_EQ(GetFSPixel(&value, 1, 1), 1);   // also outside a batch
    EXPECT_EQ(value, 17);
    EXPECT_EQ(GetFSPixel(&value, 512, 1), 0);
    EXPECT_EQ(value, 17);
}

TEST_F(VfsTest, ReadFSLineReadsTheBufferOrAsksTheHost)
{
    TestFrameStore fs;
    ASSERT_EQ(fs.Open(1), 0);
    host.ClearCalls();
    fs.frame[Offset(0, 9)] = 5;
    fs.frame[Offset(1, 9)] = 6;
    uint8_t row[4] = {9, 9, 9, 9};
    ReadFSLine(row, 4, -2, 9);   // two points left of the frame read as 0
    EXPECT_EQ(row[0], 0);
    EXPECT_EQ(row[1], 0);
    EXPECT_EQ(row[2], 5);
    EXPECT_EQ(row[3], 6);
    EXPECT_EQ(host.Count("ap_GetPixelRow"), 0);
    fs.Close();
    ReadFSLine(row, 4, 0, 9);
    ASSERT_EQ(host.Count("ap_GetPixelRow"), 1);
    EXPECT_EQ(host.Calls("ap_GetPixelRow")[0].args, "4 0 9");
}

TEST_F(VfsTest, EndBatchAndShowInvalidatesOnlyWhenTheDepthReturnsToZero)
{
    TestFrameStore fs;
    ASSERT_EQ(fs.Open(1), 0);
    host.ClearCalls();
    BeginBatch();
    BeginBatch();
    EndBatchAndShow(1, 2, 3, 4);
    EXPECT_EQ(BatchDepth, 1);
    EXPECT_EQ(host.Count("ap_UpdateVFS"), 0);
    EndBatchAndShow(1, 2, 3, 4);
    EXPECT_EQ(BatchDepth, 0);
    ASSERT_EQ(host.Count("ap_UpdateVFS"), 1);
    EXPECT_EQ(host.Calls("ap_UpdateVFS")[0].args, "1 2 3 4");
}

TEST_F(VfsTest, AnUnbalancedEndBatchIsReportedAndTheDepthStaysAtZero)
{
    EndBatch();
    EXPECT_EQ(BatchDepth, 0);
    EXPECT_TRUE(LogHasProgramError("EndBatch 0"));
}

TEST_F(VfsTest, DrawingWithinABatchLeavesTheWindowUnchangedUntilTheDepthReturnsToZero)
{
    TestFrameStore fs;
    ASSERT_EQ(fs.Open(1), 0);
    tv_canvas_clear(fs.window, 0);
    BeginBatch();
    BeginBatch();
    FSSetColour(4);   // red
    FSMoveTo(10, 10);
    FSLineTo(100, 10, 1);
    EXPECT_EQ(CurrentVfs()->Items.size(), 1u);
    EXPECT_EQ(fs.WindowPixel(50, 10), 0u);
    EndBatchAndShow(0, 0, 511, 511);
    EXPECT_EQ(fs.WindowPixel(50, 10), 0u);
    EndBatchAndShow(0, 0, 511, 511);
    EXPECT_EQ(fs.WindowPixel(50, 10), 0x0000ffu);
    EXPECT_EQ(fs.WindowPixel(50, 11), 0u);
}

TEST_F(VfsTest, InvalidateFSTellsTheHostAndDrawsTheListOverTheRectangle)
{
    TestFrameStore fs;
    ASSERT_EQ(fs.Open(1), 0);
    BeginBatch();
    CurrentVfs()->AddLine(10, 10, 100, 10, RgbColour(0, 0, 255), 1);
    CurrentVfs()->AddLine(10, 300, 100, 300, RgbColour(0, 0, 255), 1);
    EndBatch();
    tv_canvas_clear(fs.window, 0);
    host.ClearCalls();
    InvalidateFS(0, 0, 200, 200);
    ASSERT_EQ(host.Count("ap_UpdateVFS"), 1);
    EXPECT_EQ(host.Calls("ap_UpdateVFS")[0].args, "0 0 200 200");
    EXPECT_EQ(fs.WindowPixel(50, 10), 0xff0000u);
    EXPECT_EQ(fs.WindowPixel(50, 300), 0u);   // outside the rectangle
}

TEST_F(VfsTest, IndexColourTakesThePaletteAsLastLoaded)
{
    TestFrameStore fs;
    ASSERT_EQ(fs.Open(1), 0);
    EXPECT_EQ(IndexColour(16), 0x0000feu);
    EXPECT_EQ(IndexColour(17), 0x00ff00u);
    EXPECT_EQ(IndexColour(6), 0u);
    EXPECT_EQ(IndexColour(0), 0xffffffu);
    EXPECT_EQ(IndexColour(35 + 64), 0x808080u);   // table 0: grey 2i
}
