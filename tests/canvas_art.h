// Pictures of canvas pixels as text, for exact comparisons in tests: one line a row, one
// character a pixel - '.' white, '#' black, 'r' red, 'g' green, 'b' blue, '?' anything else.
// And the fixture of the canvas tests: a white canvas with a context on it.
#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <string>

#include "platform/canvas.h"

namespace canvas_check {

constexpr COLORREF kArtWhite = 0xFFFFFF;
constexpr COLORREF kArtBlack = 0x000000;
constexpr COLORREF kArtRed = 0x0000FF;
constexpr COLORREF kArtGreen = 0x00FF00;
constexpr COLORREF kArtBlue = 0xFF0000;

// The colour of a pixel (0x00BBGGRR), or CLR_INVALID outside the canvas.
COLORREF CanvasColourAt(const TvCanvas* canvas, int32_t x, int32_t y);

// The rows top to bottom - 1 of columns left to right - 1, each ended by a newline.
std::string CanvasArt(const TvCanvas* canvas, int32_t left, int32_t top, int32_t right, int32_t bottom);
std::string CanvasArt(const TvCanvas* canvas);

// The smallest rectangle holding every pixel that differs from `background`; all zeros when
// there is none.
RECT CanvasInkBox(const TvCanvas* canvas, COLORREF background);

// The number of pixels of a colour.
int64_t CanvasCount(const TvCanvas* canvas, COLORREF colour);

class CanvasFixture : public ::testing::Test {
protected:
    void SetUp() override { Use(16, 12); }
    void TearDown() override { Drop(); }

    // A fresh white canvas of this size, with a new context.
    void Use(int32_t width, int32_t height)
    {
        Drop();
        canvas = tv_canvas_create(width, height);
        ASSERT_NE(canvas, nullptr);
        tv_canvas_clear(canvas, kArtWhite);
        dc = GetDC(canvas);
        ASSERT_NE(dc, nullptr);
    }

    void Drop()
    {
        if (dc != nullptr) {
            EXPECT_EQ(ReleaseDC(canvas, dc), 1);
        }
        tv_canvas_destroy(canvas);
        dc = nullptr;
        canvas = nullptr;
    }

    void Line(int32_t x0, int32_t y0, int32_t x1, int32_t y1)
    {
        MoveTo(dc, x0, y0);
        ASSERT_TRUE(LineTo(dc, x1, y1));
    }

    void Pen(int32_t style, int32_t width, COLORREF colour = kArtBlack)
    {
        SelectObject(dc, CreatePen(style, width, colour));
    }

    // Selects the font of a height in tenths of a point and a weight.
    void Font(int32_t tenths, int32_t weight = FW_NORMAL)
    {
        LOGFONT lf{};
        lf.lfHeight = tenths;
        lf.lfWeight = weight;
        SelectObject(dc, CreatePointFontIndirect(&lf, dc));
    }

    std::string Art() const { return CanvasArt(canvas); }

    TvCanvas* canvas = nullptr;
    DrawContext* dc = nullptr;
};

inline bool SameRect(const RECT& a, const RECT& b)
{
    return a.left == b.left && a.top == b.top && a.right == b.right && a.bottom == b.bottom;
}

inline std::string ShowRect(const RECT& r)
{
    return std::to_string(r.left) + "," + std::to_string(r.top) + "," + std::to_string(r.right) + "," +
           std::to_string(r.bottom);
}

} // namespace canvas_check
