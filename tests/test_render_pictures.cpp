// Pictures of the built-in sample topography as a host shows them, in the five display modes and
// as the full display: the index layer through the palette into the window, then the display
// list over it, written as PNG files into the test's data directory (and into
// $TAVRIN_TEST_PICTURES when it is set), and checked at chosen pixels.
#include "test_render_support.h"

#include "display/frame_commands.h"
#include "display/full_display.h"
#include "files/sample_data.h"
#include "platform/canvas.h"

#include <cstdlib>
#include <filesystem>
#include <set>

namespace {

class RenderPicturesTest : public RenderTest {
protected:
    void Write(const std::string& name)
    {
        tv_canvas_clear(fs.window, 0);
        fs.Paint(host);
        const std::string path = Path(name);
        ASSERT_EQ(tv_canvas_write_png(fs.window, path.c_str()), 0);
        EXPECT_EQ(ReadFileBytes(path).substr(0, 8), std::string("\x89PNG\r\n\x1a\n", 8));
        if (const char* dir = std::getenv("TAVRIN_TEST_PICTURES"); dir && *dir) {
            std::filesystem::create_directories(dir);
            EXPECT_EQ(tv_canvas_write_png(fs.window, (std::string(dir) + "/" + name).c_str()), 0);
        }
    }
    // Distinct window colours inside a rectangle.
    int Colours(int left, int top, int right, int bottom) const
    {
        std::set<uint32_t> seen;
        for (int y = top; y <= bottom; y += 3)
            for (int x = left; x <= right; x += 3) seen.insert(fs.WindowPixel(x, y));
        return static_cast<int>(seen.size());
    }
};

// The grey that the ramp index level / 2 + 35 shows under table 0.
uint32_t Grey(int level)
{
    const uint32_t g = static_cast<uint32_t>(2 * (level / 2));
    return g | (g << 8) | (g << 16);
}

} // namespace

TEST_F(RenderPicturesTest, TheSampleTopographyInTheFiveModesAndAsTheFullDisplay)
{
    ImageHeaderType* image = MakeSampleTopography(nullptr);
    ASSERT_NE(image, nullptr);
    CurrentItem = image;
    const char* names[5] = {"render_mode0_plain.png", "render_mode1_relief.png", "render_mode2_contours.png",
                            "render_mode3_half_and_contours.png", "render_mode4_bands_and_contours.png"};
    for (int mode = 0; mode < 5; ++mode) {
        SCOPED_TRACE(names[mode]);
        ClearFrameStore();
        FSState.ImageDisplaySize = 512;
        FSState.DispMode = mode;
        FSState.TextOverlayOn = 1;
        DisplayImage(image, 1, 0);
        Write(names[mode]);
        // Each picture is a picture: many colours inside the rectangle.
        EXPECT_GT(Colours(10, 30, 500, 470), mode == 2 ? 4 : 20);
        if (mode == 0) {
            for (auto [x, y] : {std::pair{100, 100}, std::pair{300, 200}, std::pair{400, 420}})
                EXPECT_EQ(fs.WindowPixel(x, y), Grey(image->PixData[static_cast<size_t>(y) * 512 + x] >> 8)) << x << "," << y;
        }
    }
    ClearFrameStore();
    FSState.ImageDisplaySize = 512;
    FSState.DispMode = 0;
    ASSERT_EQ(FullDisplay(1), 0);
    Write("render_full_display.png");
    // The colour bar: black edges, the top light and the bottom dark.
    EXPECT_EQ(fs.WindowPixel(405, 200), 0u);
    EXPECT_EQ(fs.WindowPixel(424, 200), 0u);
    EXPECT_EQ(fs.WindowPixel(414, 1), Grey(image->ImageLUT[(399 - 1) * 255 / 399]));
    EXPECT_EQ(fs.WindowPixel(414, 398), Grey(image->ImageLUT[(399 - 398) * 255 / 399]));
    // The image at 400 and white to the right of the ruler's labels below the bar.
    EXPECT_GT(Colours(10, 10, 390, 390), 20);
    EXPECT_FALSE(LogHasProgramErrors());
}
