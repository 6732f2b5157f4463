// The identifiers of the markers, each placed where it hides the least of lines, areas and
// other labels.
#include "analysis/measure.h"

#include <algorithm>
#include <climits>
#include <cstdio>

#include "display/cvfs.h"
#include "display/fonts.h"
#include "display/vfs.h"
#include "store/memory.h"

namespace {

// The eight places around a vertex, in frame pixels, and the text alignment of each.
struct LabelPlace {
    int dx, dy;
    uint8_t alignH, alignV, backMode;
};
constexpr LabelPlace kPlaces[8] = {{0, 5, 1, 2, 1},  {3, 3, 0, 2, 1},  {5, 0, 0, 4, 1},  {3, -3, 0, 0, 1},
                                   {0, -5, 1, 0, 1}, {-3, -3, 2, 0, 1}, {-5, 0, 2, 4, 1}, {-3, 3, 2, 2, 1}};

int64_t OutsideFrame(const RECT& r)
{
    const int64_t w = std::max<int64_t>(0, static_cast<int64_t>(r.right) - r.left);
    const int64_t h = std::max<int64_t>(0, static_cast<int64_t>(r.bottom) - r.top);
    const int64_t iw = std::max<int64_t>(0, std::min<int64_t>(r.right, kFrameWidth) - std::max<int64_t>(r.left, 0));
    const int64_t ih = std::max<int64_t>(0, std::min<int64_t>(r.bottom, kFrameHeight) - std::max<int64_t>(r.top, 0));
    return w * h - iw * ih;
}

} // namespace

void CMeasure::ShowMarkerIDs(int16_t* mask)
{
    CVfs* vfs = CurrentVfs();
    if (!mask || !Image) return;
    const int nx = Nx, ny = Ny;
    const int16_t labelBit = static_cast<int16_t>(0x8000);
    // 1. Outlines into the mask, so that labels keep off the lines.
    for (int i = 0; i < NoOfMarkers && Markers; ++i) {
        const MeasureMarkerType& m = Markers[i];
        if (!OnImage(m) || m.NoOfPoints < 1 || !m.Points) continue;
        const POINTs* p = m.Points;
        auto line = [&](int x1, int y1, int x2, int y2) {
            draw_lineto_mem_OR(x1, y1, x2, y2, mask, nullptr, labelBit, nx, ny, false, nullptr);
        };
        if (m.Type == TV_MARKER_POINT) {
            line(p[0].x - 1, p[0].y, p[0].x + 1, p[0].y);
            line(p[0].x, p[0].y - 1, p[0].x, p[0].y + 1);
            continue;
        }
        for (int k = 1; k < m.NoOfPoints; ++k) line(p[k - 1].x, p[k - 1].y, p[k].x, p[k].y);
        if (m.Type == TV_MARKER_RECT && m.NoOfPoints >= 3) {
            const int dx = p[0].x + p[2].x - p[1].x, dy = p[0].y + p[2].y - p[1].y;
            line(p[2].x, p[2].y, dx, dy);
            line(dx, dy, p[0].x, p[0].y);
        } else if (m.Type == TV_MARKER_POLYGON && m.NoOfPoints >= 2) {
            line(p[m.NoOfPoints - 1].x, p[m.NoOfPoints - 1].y, p[0].x, p[0].y);
        }
    }
    efree(LabelRects);
    LabelRects = static_cast<RECT*>(ecalloc(static_cast<size_t>(std::max(NoOfMarkers, 1)), sizeof(RECT)));
    LabelRectCount = LabelRects ? NoOfMarkers : 0;
    if (!vfs) return;
    const FontRecType& font = NamedFont(FONT_GENERAL);
    // 2. and 3.
    for (int i = 0; i < NoOfMarkers && Markers; ++i) {
        const MeasureMarkerType& m = Markers[i];
        if (!OnImage(m) || m.NoOfPoints < 1 || !m.Points) continue;
        if (m.Type == TV_MARKER_POINT && i == CurrentMarker) continue;
        char text[16];
        std::snprintf(text, sizeof text, "%d", m.ID);
        int64_t cost = INT_MAX;
        RECT best{0, 0, 0, 0};
        int bestX = 0, bestY = 0;
        uint32_t bestAlign = 0;
        for (int v = 0; v < m.NoOfPoints && cost > 0; ++v) {
            const int fx = MarkerFrameX(m.Points[v].x, nx), fy = MarkerFrameY(m.Points[v].y, ny);
            for (const LabelPlace& place : kPlaces) {
                const uint32_t align = TextAlignWord(place.alignH, place.alignV, place.backMode);
                RECT r;
                vfs->MeasureText(&r, fx + place.dx, fy + place.dy, font, text, align);
                const int64_t c = CalcNoOfPointsThatOverlapWithMask(r, mask, nx, ny) + OutsideFrame(r);
                if (c < cost) {
                    cost = c;
                    best = r;
                    bestX = fx + place.dx;
                    bestY = fy + place.dy;
                    bestAlign = align;
                }
            }
        }
        vfs->AddText(bestX, bestY, font, nullptr, text, bestAlign, static_cast<uint32_t>(m.Colour), kWhite);
        if (LabelRects) LabelRects[i] = best;
        // The label's pixels are taken.
        const int left = std::max<int>(0, best.left), right = std::min<int>(kFrameWidth, best.right);
        const int top = std::max<int>(0, best.top), bottom = std::min<int>(kFrameHeight, best.bottom);
        for (int y = top; y < bottom; ++y)
            for (int x = left; x < right; ++x) {
                const size_t k = static_cast<size_t>(y * ny / kFrameHeight) * nx + static_cast<size_t>(x * nx / kFrameWidth);
                mask[k] = static_cast<int16_t>(mask[k] | labelBit);
            }
    }
}
