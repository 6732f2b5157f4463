// Vector drawing of the current frame store relative to the clip rectangle.
#include "test_frame_support.h"

namespace {

class VfsDrawTest : public FrameStoreTest {
protected:
    void SetUp() override
    {
        FrameStoreTest::SetUp();
        ASSERT_EQ(fs.Open(1), 0);
    }
    const VfsItemArray& Items() const { return CurrentVfs()->Items; }
    TestFrameStore fs;
};

} // namespace

TEST_F(VfsDrawTest, SetClipPutsReversedBoundsInOrderAndAddsOneClipItem)
{
    FSSetClip(100, 50, 10, 5);
    int l, t, r, b;
    FSGetClip(&l, &t, &r, &b);
    EXPECT_EQ(l, 10);
    EXPECT_EQ(t, 5);
    EXPECT_EQ(r, 100);
    EXPECT_EQ(b, 50);
    FSSetClip(0, 0, 511, 511);
    ASSERT_EQ(Items().size(), 1u);
    EXPECT_EQ(Items()[0].Kind, 64u);
    EXPECT_EQ(Items()[0].Bounds.right, 511);
}

TEST_F(VfsDrawTest, LinesAreRelativeToTheClipOriginAndTakeThePaletteColour)
{
    FSSetClip(10, 20, 200, 220);
    FSSetColour(4);
    EXPECT_EQ(FSGetColour(), 4);
    FSMoveTo(0, 0);
    FSLineTo(50, 0, 2);
    ASSERT_EQ(Items().size(), 2u);
    const CVfsItem& line = Items()[1];
    EXPECT_EQ(line.Kind, 2u);
    EXPECT_EQ(line.X1, 10.0);
    EXPECT_EQ(line.Y1, 20.0);
    EXPECT_EQ(line.X2, 60.0);
    EXPECT_EQ(line.Y2, 20.0);
    EXPECT_EQ(line.LineWidth, 2);
    EXPECT_EQ(line.Colour, 0x0000ffu);   // index 4: red
}

TEST_F(VfsDrawTest, AMoveOutsideTheClipRectangleGoesToItsOrigin)
{
    FSSetClip(10, 10, 100, 100);
    FSMoveTo(200, 200);
    FSLineTo(20, 0, 1);
    ASSERT_EQ(Items().size(), 2u);
    EXPECT_EQ(Items()[1].X1, 10.0);
    EXPECT_EQ(Items()[1].Y1, 10.0);
    EXPECT_EQ(Items()[1].X2, 30.0);
}

TEST_F(VfsDrawTest, ALineLeavingTheClipRectangleIsCutAtItsEdge)
{
    FSSetClip(0, 0, 99, 99);
    FSMoveTo(50, 50);
    FSLineTo(150, 50, 1);   // cut at x 99
    FSLineTo(150, 150, 1);  // from outside to outside: nothing
    FSLineTo(50, 50, 1);    // back in: cut at y 99 and x 99
    ASSERT_EQ(Items().size(), 3u);
    EXPECT_EQ(Items()[1].X2, 99.0);
    EXPECT_EQ(Items()[1].Y2, 50.0);
    EXPECT_EQ(Items()[2].X1, 99.0);
    EXPECT_EQ(Items()[2].Y1, 99.0);
    EXPECT_EQ(Items()[2].X2, 50.0);
}

TEST_F(VfsDrawTest, BoxesAreOutlinesOrFillsCutToTheClipRectangle)
{
    FSSetClip(100, 100, 300, 300);
    FSSetColour(2);
    FSBox(16, 0, 0, 50, 40);
    FSBox(32, 150, 150, 250, 250);   // reaches beyond the clip rectangle
    FSBox(32, 300, 300, 400, 400);   // wholly outside
    FSBox(5, 0, 0, 1, 1);
    ASSERT_EQ(Items().size(), 3u);
    EXPECT_EQ(Items()[1].Kind, 16u);
    EXPECT_EQ(Items()[1].Bounds.left, 100);
    EXPECT_EQ(Items()[1].Bounds.bottom, 140);
    EXPECT_EQ(Items()[1].Colour, 0x00ff00u);
    EXPECT_EQ(Items()[2].Kind, 32u);
    EXPECT_EQ(Items()[2].Bounds.left, 250);
    EXPECT_EQ(Items()[2].Bounds.right, 300);
    EXPECT_TRUE(LogHasProgramError("FSBox 5"));
}

TEST_F(VfsDrawTest, TextGoesOutWithTheTextColourFontAndPlacement)
{
    FSSetClip(10, 10, 400, 400);
    FSSetTextColour(2);
    EXPECT_EQ(FSGetTextColour(), 2);
    FSTextOut(5, 5, "first");
    FSSetTextFont(NamedFont(FONT_CAPTION));
    FSSetTextAlign(TextAlignWord(1, 1, 2));
    FSTextOut(100, 100, "second");
    FSTextOut(500, 5, "outside");
    ASSERT_EQ(Items().size(), 3u);
    EXPECT_EQ(Items()[1].Text, "first");
    EXPECT_EQ(Items()[1].X1, 15.0);
    EXPECT_EQ(Items()[1].Colour, 0x00ff00u);
    EXPECT_EQ(Items()[1].Font.Font.lfHeight, 70);
    EXPECT_EQ(Items()[1].AlignH, 0);
    EXPECT_EQ(Items()[2].Text, "second");
    EXPECT_EQ(Items()[2].Font.Font.lfHeight, 110);
    EXPECT_EQ(Items()[2].AlignH, 1);
    EXPECT_EQ(Items()[2].AlignV, 1);
    EXPECT_EQ(Items()[2].BackMode, 2);
}

TEST_F(VfsDrawTest, WithoutAFrameStoreVectorDrawingDoesNothing)
{
    fs.Close();
    FSMoveTo(0, 0);
    FSLineTo(10, 10, 1);
    FSBox(32, 0, 0, 5, 5);
    FSTextOut(1, 1, "x");
    EXPECT_FALSE(LogHasProgramErrors());
}

TEST_F(VfsDrawTest, ClipLineEntryPointClipsAndTruncates)
{
    const TvRect rect{0, 0, 5, 10};
    int32_t x1 = 0, y1 = 0, x2 = 10, y2 = 3;
    EXPECT_EQ(dl_clip_line_cohen_sutherlandI(&x1, &y1, &x2, &y2, &rect), 1);
    EXPECT_EQ(x1, 0);
    EXPECT_EQ(y1, 0);
    EXPECT_EQ(x2, 5);
    EXPECT_EQ(y2, 1);   // 1.5 truncated
    int32_t a = 2, b = 2, c = 4, d = 4;
    EXPECT_EQ(dl_clip_line_cohen_sutherlandI(&a, &b, &c, &d, &rect), 1);
    EXPECT_EQ(a, 2);
    EXPECT_EQ(d, 4);
    int32_t p = 6, q = 0, r = 9, s = 10;   // wholly right of the rectangle
    EXPECT_EQ(dl_clip_line_cohen_sutherlandI(&p, &q, &r, &s, &rect), 0);
    EXPECT_EQ(p, 6);
    EXPECT_EQ(r, 9);
    int32_t u = -5, v = 5, w = 20, z = 5;   // through both sides
    EXPECT_EQ(dl_clip_line_cohen_sutherlandI(&u, &v, &w, &z, &rect), 1);
    EXPECT_EQ(u, 0);
    EXPECT_EQ(w, 5);
    EXPECT_EQ(dl_clip_line_cohen_sutherlandI(&u, &v, &w, &z, nullptr), 0);
    EXPECT_EQ(dl_clip_line_cohen_sutherlandI(nullptr, &v, &w, &z, &rect), 0);
}
