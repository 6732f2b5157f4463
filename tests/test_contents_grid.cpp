// The contents grid: which item a point of the frame shows, and the references the grid keeps.
#include "test_frame_support.h"

#include "store/data_list_display.h"
#include "store/data_list_select.h"

namespace {

class ContentsGridTest : public FrameStoreTest {
protected:
    void SetUp() override
    {
        FrameStoreTest::SetUp();
        ASSERT_EQ(fs.Open(1), 0);
    }
    static void SetImageRect(int left, int top, int right, int bottom)
    {
        FSState.ImageLeft = static_cast<int16_t>(left);
        FSState.ImageTop = static_cast<int16_t>(top);
        FSState.ImageRight = static_cast<int16_t>(right);
        FSState.ImageBottom = static_cast<int16_t>(bottom);
    }
    static const FSContentsType& Cell(int cx, int cy) { return FSState.Contents[cx][cy]; }
    TestFrameStore fs;
};

} // namespace

TEST_F(ContentsGridTest, SetFSContentsMarksTheCellsWhoseSamplePointLiesInTheRectangle)
{
    ImageHeaderType* image = AddFlatImage(16, 0);
    image->ImageSizeX = 250.0f;
    image->ImageSizeY = 200.0f;
    image->ImageOffsetX = 1.5f;
    image->ImageOffsetY = -2.5f;
    SetImageRect(100, 20, 355, 219);
    SetFSContents(image, 1);
    // Sample points x 100, 164, 228, 292 and y 20, 36, ... 212: cells 1 to 4 and 1 to 13.
    for (int cx = 0; cx < 8; ++cx)
        for (int cy = 0; cy < 32; ++cy)
            EXPECT_EQ(Cell(cx, cy).Image, cx >= 1 && cx <= 4 && cy >= 1 && cy <= 13 ? image : nullptr)
                << cx << " " << cy;
    const FSContentsType& c = Cell(2, 5);
    EXPECT_EQ(c.Left, 100);
    EXPECT_EQ(c.Top, 20);
    EXPECT_EQ(c.Right, 355);
    EXPECT_EQ(c.Bottom, 219);
    EXPECT_EQ(c.ImType1, 1u);
    EXPECT_EQ(c.PixelsX, 16);
    EXPECT_EQ(c.PixelsY, 16);
    EXPECT_EQ(c.SizeX, 250.0f);
    EXPECT_EQ(c.SizeY, 200.0f);
    EXPECT_EQ(c.OffsetX, 1.5f);
    EXPECT_EQ(c.OffsetY, -2.5f);
    EXPECT_EQ(c.CreatedFileTime, image->CreatedFileTime);
    EXPECT_EQ(c.SavedFileTime, image->SavedFileTime);
    // The item data go to every cell the rectangle touches, also where no sample point lies.
    EXPECT_EQ(Cell(5, 1).Image, nullptr);
    EXPECT_EQ(Cell(5, 1).PixelsX, 16);
    EXPECT_EQ(Cell(6, 1).PixelsX, 0);
}

TEST_F(ContentsGridTest, WithoutKeepTheRectangleIsForgottenAndNoItemDataWritten)
{
    ImageHeaderType* image = AddFlatImage(16, 0);
    SetImageRect(0, 0, 127, 31);
    SetFSContents(image, 0);
    EXPECT_EQ(Cell(1, 1).Image, image);
    EXPECT_EQ(Cell(1, 1).Right, 0);
    EXPECT_EQ(Cell(1, 1).Bottom, 0);
    EXPECT_EQ(Cell(1, 1).PixelsX, 0);
    EXPECT_EQ(Cell(2, 0).Image, nullptr);
}

TEST_F(ContentsGridTest, SetFSContentsAllCoversTheWholeFrame)
{
    ImageHeaderType* image = AddFlatImage(32, 0);
    SetFSContentsAll(image);
    for (const auto& column : FSState.Contents)
        for (const FSContentsType& cell : column) {
            ASSERT_EQ(cell.Image, image);
            ASSERT_EQ(cell.Right, 511);
            ASSERT_EQ(cell.PixelsX, 32);
        }
    SetFSContentsAll(nullptr);
    for (const auto& column : FSState.Contents)
        for (const FSContentsType& cell : column) {
            ASSERT_EQ(cell.Image, nullptr);
            ASSERT_EQ(cell.ImType1, 6u);
            ASSERT_EQ(cell.Left, 0);
            ASSERT_EQ(cell.Bottom, 511);
            ASSERT_EQ(cell.PixelsX, 0);
        }
}

TEST_F(ContentsGridTest, APointOutsideTheFrameIsReportedAndGivesNull)
{
    SetFSContentsAll(AddFlatImage(16, 0));
    EXPECT_EQ(GetFSContentsCoords(512, 0), nullptr);
    EXPECT_TRUE(LogHasProgramError("GetFSContentsCoords (512 0)"));
    EXPECT_EQ(GetFSContentsCoords(-1, 5, nullptr, nullptr, nullptr, nullptr), nullptr);
    EXPECT_TRUE(LogHasProgramError("GetFSContentsCoords (-1 5)"));
    EXPECT_EQ(GetFSContentsParamPtrCoords(0, 600), nullptr);
    EXPECT_TRUE(LogHasProgramError("GetFSContentsParamPtrCoords (0 600)"));
    EXPECT_EQ(GetFSContentsParamPtrCoords(511, 511), &FSState.Contents[7][31]);
}

TEST_F(ContentsGridTest, AClickOnTheBoundaryCellOfTwoImagesYieldsTheLaterImage)
{
    FSState.ImageDisplaySize = 0;   // each at its own size
    ImageHeaderType* first = AddFlatImage(100, 0x4000);
    DisplayImage(first, 1, 1);
    ImageHeaderType* second = AddFlatImage(100, 0x8000);
    DisplayImage(second, 1, 1);
    ASSERT_EQ(FSState.ImageLeft, 100);
    // Cell 1 (x 64 to 127) holds pixels of both images; the later one wins it.
    int left = -1, top = -1, right = -1, bottom = -1;
    EXPECT_EQ(GetFSContentsCoords(100, 50, &left, &top, &right, &bottom), second);
    EXPECT_EQ(left, 100);
    EXPECT_EQ(top, 0);
    EXPECT_EQ(right, 199);
    EXPECT_EQ(bottom, 99);
    EXPECT_EQ(GetFSContentsCoords(99, 50), second);   // a pixel of the first image, shadowed
    EXPECT_EQ(GetFSContentsCoords(63, 50), first);
    EXPECT_EQ(GetFSContentsCoords(130, 50), second);
    EXPECT_EQ(GetFSContentsCoords(130, 112), nullptr);   // rows 0 to 6 are sampled (up to y 96)
}

TEST_F(ContentsGridTest, FreeingAnItemClearsItFromTheSavedGridsOfOtherFrameStores)
{
    TestFrameStore other;
    ASSERT_EQ(other.Open(2), 0);
    FSState.ImageDisplaySize = 256;
    ImageHeaderType* image = AddFlatImage(256, 0x8000);
    DisplayImage(image, 1, 1);
    ASSERT_EQ(FSState.Contents[0][0].Image, image);
    dl_VFS_set_current_vfs(2);   // frame store 1 keeps its grid in its record
    VFSDataType* first = FindVFS(1);
    ASSERT_EQ(first->State.Contents[0][0].Image, image);
    EXPECT_EQ(first->State.Contents[3][15].Image, image);
    EraseItem(image);
    EXPECT_EQ(first->State.Contents[0][0].Image, nullptr);
    EXPECT_EQ(first->State.Contents[3][15].Image, nullptr);
    EXPECT_EQ(first->State.Contents[0][0].Right, 255);   // only the pointer goes
    dl_VFS_set_current_vfs(1);
    EXPECT_EQ(GetFSContentsCoords(10, 10), nullptr);
}

TEST_F(ContentsGridTest, FreeHeaderDropsTheRecordFromEveryGrid)
{
    TestFrameStore other;
    ASSERT_EQ(other.Open(2), 0);
    ImageHeaderType* record = AllocateHeader();   // a record of no list
    ASSERT_NE(record, nullptr);
    FSState.Contents[1][1].Image = record;
    FindVFS(2)->State.Contents[4][4].Image = record;
    FreeHeader(record);
    EXPECT_EQ(FSState.Contents[1][1].Image, nullptr);
    EXPECT_EQ(FindVFS(2)->State.Contents[4][4].Image, nullptr);
}

TEST_F(ContentsGridTest, TheFrameStoreFilterAcceptsTheItemsOfTheCurrentGrid)
{
    ImageHeaderType* shown = AddFlatImage(256, 0x8000);
    DisplayImage(shown, 1, 1);
    ImageHeaderType* hidden = AddFlatImage(256, 0x4000);
    EXPECT_TRUE(FrameStoreFilterAccepts(shown));
    EXPECT_FALSE(FrameStoreFilterAccepts(hidden));
    EXPECT_EQ(GetPtrData2DataItem(0, 0, SELECT_FRAME_STORE, 0, 0, hidden), shown);
    EXPECT_EQ(GetPtrData2DataItem(1, 0, SELECT_FRAME_STORE, 0, 0, hidden), nullptr);
    TestFrameStore other;
    ASSERT_EQ(other.Open(2), 0);
    dl_VFS_set_current_vfs(2);
    EXPECT_FALSE(FrameStoreFilterAccepts(shown));
    fs.Close();
    other.Close();
    EXPECT_FALSE(FrameStoreFilterAccepts(shown));   // no frame store: no item passes
}
