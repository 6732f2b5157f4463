// The canvas as a host sees it: creation, its pixels, and its picture as a PNG file.
#include <algorithm>
#include <new>

#include "platform/canvas.h"
#include "platform/png_writer.h"
#include "tavrin/canvas.h"

TvCanvas* tv_canvas_create(int32_t width, int32_t height)
{
    if (width < 0 || height < 0 || width > kCanvasMaxEdge || height > kCanvasMaxEdge) return nullptr;
    if (static_cast<int64_t>(width) * height > kCanvasMaxPixels) return nullptr;
    try {
        TvCanvas* canvas = new TvCanvas;
        canvas->width = width;
        canvas->height = height;
        canvas->pixels.assign(static_cast<size_t>(width) * static_cast<size_t>(height), 0xFF000000u);
        return canvas;
    } catch (const std::bad_alloc&) {
        return nullptr;
    }
}

void tv_canvas_destroy(TvCanvas* canvas)
{
    delete canvas;
}

int32_t tv_canvas_width(const TvCanvas* canvas)
{
    return canvas != nullptr ? canvas->width : 0;
}

int32_t tv_canvas_height(const TvCanvas* canvas)
{
    return canvas != nullptr ? canvas->height : 0;
}

uint32_t* tv_canvas_pixels(TvCanvas* canvas)
{
    if (canvas == nullptr || canvas->pixels.empty()) return nullptr;
    return canvas->pixels.data();
}

void tv_canvas_clear(TvCanvas* canvas, uint32_t rgb)
{
    if (canvas == nullptr) return;
    std::fill(canvas->pixels.begin(), canvas->pixels.end(), 0xFF000000u | (rgb & 0x00FFFFFFu));
}

int32_t tv_canvas_write_png(const TvCanvas* canvas, const char* path)
{
    if (canvas == nullptr || path == nullptr || canvas->pixels.empty()) return 1;
    bool opaque =
        std::all_of(canvas->pixels.begin(), canvas->pixels.end(), [](uint32_t p) { return (p >> 24) == 0xFF; });
    size_t channels = opaque ? 3 : 4;
    try {
        std::vector<uint8_t> bytes(canvas->pixels.size() * channels);
        uint8_t* out = bytes.data();
        for (uint32_t p : canvas->pixels)
            for (size_t c = 0; c < channels; ++c) *out++ = static_cast<uint8_t>(p >> (8 * c));
        PngImage image{};
        image.width = canvas->width;
        image.height = canvas->height;
        image.colourType = opaque ? kPngColourRgb : kPngColourRgba;
        image.pixels = bytes.data();
        image.stride = static_cast<ptrdiff_t>(canvas->width * channels);
        image.filter = kPngAdaptiveFilter;
        return WritePng(path, image);
    } catch (const std::bad_alloc&) {
        return 1;
    }
}

DrawContext* tv_canvas_get_dc(TvCanvas* canvas) { return GetDC(canvas); }

int32_t tv_canvas_release_dc(TvCanvas* canvas, DrawContext* dc) { return ReleaseDC(canvas, dc); }
