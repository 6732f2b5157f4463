// The picture of a canvas as a PNG file, read back by libpng pixel for pixel.
#include <gtest/gtest.h>

#include <filesystem>

#include "platform/canvas.h"
#include "png_decoder.h"
#include "tavrin/canvas.h"

namespace {

using namespace png_check;

namespace fs = std::filesystem;
using CanvasPngTest = PngDecoderTest;

TEST_F(CanvasPngTest, OpaqueCanvasIsWrittenAsRgb)
{
    TvCanvas* canvas = tv_canvas_create(40, 30);
    tv_canvas_clear(canvas, 0x00804020);
    DrawContext* dc = GetDC(canvas);
    SelectObject(dc, CreatePen(PS_SOLID, 3, RgbColour(250, 10, 5)));
    MoveTo(dc, 2, 2);
    LineTo(dc, 37, 25);
    ExtTextOut(dc, 3, 15, 0, nullptr, "Ag 5", 4);
    ReleaseDC(canvas, dc);
    fs::path file = dir / "canvas.png";
    ASSERT_EQ(tv_canvas_write_png(canvas, file.c_str()), 0);
    Decoded d = DecodePng(file, 3);
    EXPECT_EQ(d.mode, "RGB");
    EXPECT_EQ(d.width, 40);
    EXPECT_EQ(d.height, 30);
    ASSERT_EQ(d.pixels.size(), 40u * 30 * 3);
    const uint32_t* pixels = tv_canvas_pixels(canvas);
    for (size_t i = 0; i < 40 * 30; ++i) {
        ASSERT_EQ(d.pixels[3 * i], pixels[i] & 0xFF) << i;
        ASSERT_EQ(d.pixels[3 * i + 1], (pixels[i] >> 8) & 0xFF) << i;
        ASSERT_EQ(d.pixels[3 * i + 2], (pixels[i] >> 16) & 0xFF) << i;
    }
    tv_canvas_destroy(canvas);
}

TEST_F(CanvasPngTest, CanvasWithATranslucentPixelIsWrittenAsRgba)
{
    TvCanvas* canvas = tv_canvas_create(5, 4);
    tv_canvas_clear(canvas, 0x00112233);
    tv_canvas_pixels(canvas)[7] = 0x80AABBCCu;
    fs::path file = dir / "alpha.png";
    ASSERT_EQ(tv_canvas_write_png(canvas, file.c_str()), 0);
    Decoded d = DecodePng(file, 4);
    EXPECT_EQ(d.mode, "RGBA");
    ASSERT_EQ(d.pixels.size(), 80u);
    EXPECT_EQ(d.pixels[28], 0xCC);
    EXPECT_EQ(d.pixels[29], 0xBB);
    EXPECT_EQ(d.pixels[30], 0xAA);
    EXPECT_EQ(d.pixels[31], 0x80);
    EXPECT_EQ(d.pixels[0], 0x33);
    EXPECT_EQ(d.pixels[3], 0xFF);
    EXPECT_EQ(tv_canvas_write_png(canvas, (dir / "missing" / "a.png").c_str()), 1);
    tv_canvas_destroy(canvas);
}

} // namespace

TEST(CanvasHostApi, AHostGetsAndReleasesADrawingContextOfItsCanvas)
{
    TvCanvas* canvas = tv_canvas_create(8, 8);
    ASSERT_NE(canvas, nullptr);
    EXPECT_EQ(tv_canvas_get_dc(nullptr), nullptr);
    DrawContext* dc = tv_canvas_get_dc(canvas);
    ASSERT_NE(dc, nullptr);
    FillSolidRect(dc, 2, 2, 3, 3, RgbColour(255, 0, 0));
    EXPECT_EQ(tv_canvas_pixels(canvas)[2 * 8 + 2], 0xFF0000FFu);
    TvCanvas* other = tv_canvas_create(4, 4);
    EXPECT_EQ(tv_canvas_release_dc(other, dc), 0);
    EXPECT_EQ(tv_canvas_release_dc(canvas, dc), 1);
    EXPECT_EQ(tv_canvas_release_dc(canvas, nullptr), 0);
    tv_canvas_destroy(other);
    tv_canvas_destroy(canvas);
}
