// Shared pieces of the image rendering tests: a frame store fixture, and a small reference of
// the documented rules that turns a whole image into the expected frame indices without the
// row writer (no accumulator streaming, no shared code with the library).
#pragma once

#include "test_frame_support.h"

#include "display/display_param.h"
#include "display/render.h"

#include <algorithm>
#include <cmath>
#include <functional>
#include <vector>

class RenderTest : public FrameStoreTest {
protected:
    void SetUp() override
    {
        FrameStoreTest::SetUp();
        ASSERT_EQ(fs.Open(1), 0);
        host.ClearCalls();
    }
    TestFrameStore fs;
};

namespace render_ref {

using CodeFn = std::function<uint16_t(int, int)>;

// The colour map of a plain image: ImageLUT[i] / 2 + 35; for the relief mode the shading table
// with the default light (polar 45, azimuth 45, ambient 64, diffuse 128).
inline std::vector<int> ColourMap(int mode, const uint8_t* lut)
{
    std::vector<int> map(1024, 0);
    if (mode == 1) {
        const double rad = std::acos(-1.0) / 180.0;
        const double polar = 45 * rad, azimuth = 45 * rad;
        const double lx = std::sin(polar) * std::cos(azimuth), ly = std::sin(polar) * std::sin(azimuth),
                     lz = std::cos(polar);
        for (int i = 0; i < 1024; ++i) {
            const int a = i % 32 - 16, b = i / 32 - 16;
            const double d = a * lx + b * ly + lz;
            const double s = d > 0 ? d / (a * a + 1 + b * b) * 128 * d : 0.0;
            int v = static_cast<int>(s) + 64;
            if (v > 255) v = 255;
            map[i] = v / 2 + 35;
        }
        return map;
    }
    for (int i = 0; i < 256; ++i) map[i] = lut[i] / 2 + 35;
    return map;
}

// The index of a point in modes 1 to 4 (not the first point of a row).
inline int Compare(int mode, const std::vector<int>& map, int contourLevels, int cur, int left, int above)
{
    if (mode == 1) {
        const int a = std::clamp(left - cur + 16, 0, 31), b = std::clamp(above - cur + 16, 0, 31);
        return map[a + 32 * b];
    }
    const int band = 256 - 256 / contourLevels;
    const int inBand = mode == 2 ? 0 : mode == 3 ? 255 : band;
    const int shift = mode == 2 ? 0 : 1;
    const int edge = mode == 2 ? 0 : 128;
    if ((cur & band) == (left & band) && (cur & band) == (above & band)) return map[(cur & inBand) >> shift];
    const int v = std::max({cur, left, above});
    return map[((v & band) >> shift) | edge];
}

// The expected indices of the S by S image rectangle for a square image of n by n codes shown
// at S in `mode`. Rows that the writer leaves alone hold 0 (a cleared frame).
inline std::vector<int> Expected(int n, int S, int mode, const CodeFn& code, const uint8_t* lut,
                                 int contourLevels = 16)
{
    const std::vector<int> map = ColourMap(mode, lut);
    std::vector<int> frame(static_cast<size_t>(S) * S, 0);
    auto at = [&](int x, int y) -> int& { return frame[static_cast<size_t>(y) * S + x]; };
    if (n == S) {
        for (int y = 1; y < S - 1; ++y)
            for (int x = 0; x < S; ++x) {
                const int cur = code(x, y) >> 8;
                if (mode == 0)
                    at(x, y) = map[cur];
                else
                    at(x, y) = x == 0 ? 0 : Compare(mode, map, contourLevels, cur, code(x - 1, y) >> 8, code(x, y - 1) >> 8);
            }
        return frame;
    }
    if (n > S) {
        const int p = n / S;
        int shift = 0;
        while ((1 << shift) < p * p) ++shift;
        std::vector<int> buffer(S, 0), stored(S, 0);
        for (int r = 0; r < S; ++r) {
            std::vector<long> sum(S, 0);
            for (int j = 0; j < S; ++j)
                for (int dy = 0; dy < p; ++dy)
                    for (int dx = 0; dx < p; ++dx) sum[j] += code(j * p + dx, r * p + dy);
            if (r == 0 || r == S - 1) {
                if (mode == 0)
                    for (int x = 0; x < S; ++x) at(x, 0) = 0;
                else
                    for (int x = 0; x < S; ++x) stored[x] = static_cast<int>((sum[x] >> shift) & 255);
            } else {
                std::vector<int> level(S);
                for (int x = 0; x < S; ++x) level[x] = static_cast<int>((sum[x] >> 8) >> shift);
                for (int x = 0; x < S; ++x) {
                    if (mode == 0)
                        buffer[x] = map[level[x]];
                    else
                        buffer[x] = x == 0 ? 0 : Compare(mode, map, contourLevels, level[x], level[x - 1], stored[x]);
                }
                if (mode != 0) stored = level;
            }
            for (int x = 0; x < S; ++x) at(x, r) = buffer[x];
        }
        return frame;
    }
    const int f = S / n;
    std::vector<long> previous(S, 0);
    std::vector<int> stored(S, 0);
    for (int line = 0; line < n; ++line) {
        std::vector<long> acc(S);
        for (int j = 0; j < S; ++j) {
            const int i = j / f;
            if (i == n - 1 || j % f < f / 2)
                acc[j] = code(i, line);
            else
                acc[j] = (code(i, line) + code(i + 1, line)) >> 1;
        }
        std::vector<int> row(S);
        if (mode != 0) {
            std::vector<int> level(S);
            for (int x = 0; x < S; ++x) level[x] = static_cast<int>(acc[x] >> 8);
            for (int x = 0; x < S; ++x)
                row[x] = x == 0 ? 0 : Compare(mode, map, contourLevels, level[x], level[x - 1], stored[x]);
            stored = level;
        }
        for (int k = 0; k < f; ++k) {
            const int y = k + line * f;
            if (y == 0 || y == S - 1) continue;
            for (int x = 0; x < S; ++x)
                at(x, y) = mode == 0 ? map[((acc[x] * k + previous[x] * (f - 1 - k)) / (f - 1)) >> 8] : row[x];
        }
        for (int x = 0; x < S; ++x) previous[x] = acc[x] & 0xffff;
    }
    return frame;
}

} // namespace render_ref
