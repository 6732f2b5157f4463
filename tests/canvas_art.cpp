#include "canvas_art.h"

#include <algorithm>

namespace canvas_check {

COLORREF CanvasColourAt(const TvCanvas* canvas, int32_t x, int32_t y)
{
    if (canvas == nullptr || x < 0 || y < 0 || x >= canvas->width || y >= canvas->height) return CLR_INVALID;
    return canvas->pixels[static_cast<size_t>(y) * static_cast<size_t>(canvas->width) + static_cast<size_t>(x)] &
           0xFFFFFFu;
}

std::string CanvasArt(const TvCanvas* canvas, int32_t left, int32_t top, int32_t right, int32_t bottom)
{
    std::string art;
    for (int32_t y = top; y < bottom; ++y) {
        for (int32_t x = left; x < right; ++x) {
            switch (CanvasColourAt(canvas, x, y)) {
            case kArtWhite: art += '.'; break;
            case kArtBlack: art += '#'; break;
            case kArtRed: art += 'r'; break;
            case kArtGreen: art += 'g'; break;
            case kArtBlue: art += 'b'; break;
            default: art += '?'; break;
            }
        }
        art += '\n';
    }
    return art;
}

std::string CanvasArt(const TvCanvas* canvas)
{
    return CanvasArt(canvas, 0, 0, canvas->width, canvas->height);
}

RECT CanvasInkBox(const TvCanvas* canvas, COLORREF background)
{
    RECT box{INT32_MAX, INT32_MAX, INT32_MIN, INT32_MIN};
    for (int32_t y = 0; y < canvas->height; ++y) {
        for (int32_t x = 0; x < canvas->width; ++x) {
            if (CanvasColourAt(canvas, x, y) == background) continue;
            box.left = std::min(box.left, x);
            box.top = std::min(box.top, y);
            box.right = std::max(box.right, x + 1);
            box.bottom = std::max(box.bottom, y + 1);
        }
    }
    if (box.left > box.right) return RECT{0, 0, 0, 0};
    return box;
}

int64_t CanvasCount(const TvCanvas* canvas, COLORREF colour)
{
    return std::count_if(canvas->pixels.begin(), canvas->pixels.end(),
                         [colour](uint32_t p) { return (p & 0xFFFFFFu) == (colour & 0xFFFFFFu); });
}

} // namespace canvas_check
