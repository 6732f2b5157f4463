// A frame as the host shows it: two placed images, lines, a box and text, rendered as a host
// does (the index layer through the palette into the window, then the display list over it),
// written as a PNG picture and checked at chosen pixels.
#include "test_frame_support.h"

#include "display/frame_commands.h"

#include <cmath>
#include <cstdlib>
#include <filesystem>

namespace {

class FramePictureTest : public FrameStoreTest {};

uint16_t Gradient(int x, int y) { return static_cast<uint16_t>(((x + y) * 128) & 0xffff); }

uint16_t Rings(int x, int y)
{
    const double r = std::hypot(x - 128.0, y - 128.0);
    return static_cast<uint16_t>(std::lround(127.5 + 127.0 * std::cos(r / 6.0)) << 8);
}

// The window colour of an image code under table 0: the ramp index level / 2 + 35 shows the
// grey 2 * (index - 35).
uint32_t GreyOf(uint16_t code)
{
    const uint32_t grey = static_cast<uint32_t>(2 * ((code >> 8) / 2));
    return grey | (grey << 8) | (grey << 16);
}

int CountColourIn(const TestFrameStore& fs, uint32_t colour, int left, int top, int right, int bottom)
{
    int n = 0;
    for (int y = top; y <= bottom; ++y)
        for (int x = left; x <= right; ++x)
            if (fs.WindowPixel(x, y) == colour) ++n;
    return n;
}

} // namespace

TEST_F(FramePictureTest, AFrameWithTwoImagesLinesAndTextAsTheHostShowsIt)
{
    TestFrameStore fs;
    ASSERT_EQ(fs.Open(1, 640, 512), 0);
    dl_ClearFrameStore();
    FSState.ImageDisplaySize = 256;
    DisplayImage(AddImage(256, 256, Gradient, "Gradient"), 1, 1);
    DisplayImage(AddImage(256, 256, Rings, "Rings"), 1, 1);

    FSSetColour(4);   // red
    FSMoveTo(20, 300);
    FSLineTo(490, 300, 3);
    FSMoveTo(20, 320);
    FSLineTo(490, 480, 1);
    FSSetColour(2);   // green
    FSBox(16, 300, 340, 480, 460);
    FSSetTextColour(1);   // blue
    FontRecType font = NamedFont(FONT_GENERAL);
    font.Font.lfHeight = 110;
    FSSetTextFont(font);
    FSTextOut(40, 420, "Two images, lines and text");

    tv_canvas_clear(fs.window, 0);
    fs.Paint(host);

    const std::string path = Path("frame_two_images.png");
    ASSERT_EQ(tv_canvas_write_png(fs.window, path.c_str()), 0);
    EXPECT_EQ(ReadFileBytes(path).substr(0, 8), std::string("\x89PNG\r\n\x1a\n", 8));
    if (const char* dir = std::getenv("TAVRIN_TEST_PICTURES"); dir && *dir) {
        std::filesystem::create_directories(dir);
        const std::string copy = std::string(dir) + "/frame_two_images.png";
        EXPECT_EQ(tv_canvas_write_png(fs.window, copy.c_str()), 0);
    }

    // The images, through the ramp of table 0.
    EXPECT_EQ(fs.WindowPixel(100, 60), GreyOf(Gradient(100, 60)));
    EXPECT_EQ(fs.WindowPixel(200, 30), GreyOf(Gradient(200, 30)));
    EXPECT_EQ(fs.WindowPixel(256 + 128, 128), GreyOf(Rings(128, 128)));
    EXPECT_EQ(fs.WindowPixel(256 + 150, 90), GreyOf(Rings(150, 90)));
    // The outlines: the former image in colour 16, the last one in colour 17.
    EXPECT_EQ(fs.WindowPixel(0, 100), kOutlineRed);
    EXPECT_EQ(fs.WindowPixel(100, 255), kOutlineRed);
    EXPECT_EQ(fs.WindowPixel(511, 100), kOutlineGreen);
    EXPECT_EQ(fs.WindowPixel(300, 0), kOutlineGreen);
    // The cleared frame below the images and the strip right of the frame are white.
    EXPECT_EQ(fs.WindowPixel(10, 500), kWindowWhite);
    EXPECT_EQ(fs.WindowPixel(600, 20), kWindowWhite);
    // The thick line: rows 299 to 301.
    EXPECT_EQ(fs.WindowPixel(250, 298), kWindowWhite);
    EXPECT_EQ(fs.WindowPixel(250, 299), 0x0000ffu);
    EXPECT_EQ(fs.WindowPixel(250, 301), 0x0000ffu);
    EXPECT_EQ(fs.WindowPixel(250, 302), kWindowWhite);
    // The box outline and its inside.
    EXPECT_EQ(fs.WindowPixel(300, 400), 0x00ff00u);
    EXPECT_EQ(fs.WindowPixel(480, 400), 0x00ff00u);
    EXPECT_EQ(fs.WindowPixel(400, 340), 0x00ff00u);
    EXPECT_EQ(fs.WindowPixel(400, 380), kWindowWhite);
    // The text, in its box below and right of (40, 420) (left aligned, bottom at 420).
    EXPECT_GT(CountColourIn(fs, 0xff0000u, 40, 405, 280, 419), 50);
    EXPECT_EQ(CountColourIn(fs, 0xff0000u, 0, 421, 639, 511), 0);
    EXPECT_EQ(CountColourIn(fs, 0xff0000u, 0, 0, 639, 404), 0);
}
