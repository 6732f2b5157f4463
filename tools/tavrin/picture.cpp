#include "picture.h"

#include <cstdio>

void PaintFrameStore(HostFrameStore& fs)
{
    const bool trueRgb = Session().options.trueRgb;
    uint32_t* pixels = tv_canvas_pixels(fs.window);
    int w = tv_canvas_width(fs.window), h = tv_canvas_height(fs.window);
    const auto& pal = Session().palette;
    for (int y = 0; y < h; ++y) {
        for (int x = 0; x < w; ++x) {
            uint32_t rgb = 0xFFFFFFu;
            if (x < 512 && y < 512) {
                size_t at = static_cast<size_t>(511 - y) * 512 + x;
                if (trueRgb) {
                    const uint8_t* p = &fs.rgb[at * 3];
                    rgb = p[2] | (p[1] << 8) | (p[0] << 16);
                } else {
                    uint8_t i = fs.index[at];
                    rgb = (pal[0][i] & 0xFFu) | ((pal[1][i] & 0xFFu) << 8) | ((pal[2][i] & 0xFFu) << 16);
                }
            }
            pixels[static_cast<size_t>(y) * w + x] = 0xFF000000u | rgb;
        }
    }
    TvRect dest{0, 0, 511, 511};
    dl_RedrawVFS(&dest, nullptr, fs.number);
}

bool WriteFrameStorePicture(HostFrameStore& fs, const std::string& path)
{
    if (!fs.window) return false;
    PaintFrameStore(fs);
    return tv_canvas_write_png(fs.window, path.c_str()) == 0;
}

bool WriteCurrentPicture(const std::string& path) { return WriteStorePicture(Session().currentFrameStore, path); }

bool WriteStorePicture(int16_t number, const std::string& path)
{
    HostFrameStore* fs = FindHostFrameStore(number);
    if (!fs) {
        std::fprintf(stderr, "tavrin: frame store %d is not open for '%s'\n", number, path.c_str());
        return false;
    }
    if (!WriteFrameStorePicture(*fs, path)) {
        std::fprintf(stderr, "tavrin: cannot write '%s'\n", path.c_str());
        return false;
    }
    return true;
}
