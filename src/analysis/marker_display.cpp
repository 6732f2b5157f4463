// Drawing the markers over the measured image and bringing every statistic up to date.
#include "analysis/measure.h"

#include <algorithm>
#include <cmath>
#include <cstring>

#include "analysis/marker_walk.h"
#include "analysis/profile.h"
#include "display/clip_line.h"
#include "display/placement.h"
#include "display/vfs.h"
#include "image/flood_fill.h"
#include "mapping/cits.h"
#include "store/memory.h"
#include "store/units.h"

namespace {

constexpr uint32_t kTopography = 1;

// A pixel of the frame in a marker's colour, replacing or added by the setting.
void PaintFrame(int x, int y, int32_t colour, int32_t replaceColour)
{
    if (!CurrentVFS) return;
    PutFSColour(static_cast<uint32_t>(colour), replaceColour ? 1 : 0, x, y);
}

// The line between two image pixels, drawn through their frame points.
void DrawImageLine(int x1, int y1, int x2, int y2, int nx, int ny, int32_t colour, int32_t replaceColour)
{
    WalkLine(MarkerFrameX(x1, nx), MarkerFrameY(y1, ny), MarkerFrameX(x2, nx), MarkerFrameY(y2, ny),
             [&](int x, int y) { PaintFrame(x, y, colour, replaceColour); });
}

// A cross eight frame pixels wide and high, from -3 to +4 around the frame point.
void DrawCross(int fx, int fy, int32_t colour, int32_t replaceColour)
{
    for (int d = -3; d <= 4; ++d) {
        PaintFrame(fx + d, fy, colour, replaceColour);
        PaintFrame(fx, fy + d, colour, replaceColour);
    }
}

} // namespace

int32_t CMeasure::draw_lineto_mem_OR(int x1, int y1, int x2, int y2, int16_t* mask, bool* overlap, int16_t value,
                                     int nx, int ny, bool spectra, float* spec)
{
    const CITSHeaderType* set = Image ? Image->CITSHeaderPtr : nullptr;
    const int ni = spectra && spec && set && Spectroscopy ? set->ni : 0;
    if (ni > 0) std::fill(spec, spec + ni, 0.0f);
    const int32_t visited = WalkLine(x1, y1, x2, y2, [&](int x, int y) {
        if (x < 0 || y < 0 || x >= nx || y >= ny) return;
        const size_t i = static_cast<size_t>(y) * static_cast<size_t>(nx) + static_cast<size_t>(x);
        if (mask) {
            if ((mask[i] & 0x7fff) && overlap) *overlap = true;
            mask[i] = static_cast<int16_t>(mask[i] | value);
        }
        for (int k = 0; k < ni; ++k) {
            const int sx = static_cast<int>(static_cast<int64_t>(x) * set->cx / nx);
            const int sy = static_cast<int>(static_cast<int64_t>(y) * set->cy / ny);
            const uint16_t* line = GetCITSImagePtr(set, k, static_cast<uint32_t>(sy));
            if (line) spec[k] += CITSData2Current(CITSEntry(set, k), line[sx]);
        }
    });
    if (ni > 0 && visited > 1)
        for (int k = 0; k < ni; ++k) spec[k] /= static_cast<float>(visited);
    return visited;
}

// Rasterises an area marker into MarkerMask (cleared first); false when it has no area yet.
static bool RasteriseArea(CMeasure& ms, MeasureMarkerType& m)
{
    const int nx = ms.Nx, ny = ms.Ny;
    int16_t* mask = ms.MarkerMask;
    std::memset(mask, 0, static_cast<size_t>(nx) * static_cast<size_t>(ny) * sizeof(int16_t));
    const POINTs* p = m.Points;
    const RECT imageRect{0, 0, nx - 1, ny - 1};
    // An edge clipped to the image, drawn and added to the mask.
    auto edge = [&](int ax, int ay, int bx, int by) {
        int32_t x1 = ax, y1 = ay, x2 = bx, y2 = by;
        if (!ClipLineCohenSutherland(&x1, &y1, &x2, &y2, imageRect)) return;
        DrawImageLine(x1, y1, x2, y2, nx, ny, m.Colour, ms.ReplaceColour);
        ms.draw_lineto_mem_OR(x1, y1, x2, y2, mask, nullptr, 1, nx, ny, false, nullptr);
    };
    auto fill = [&](int sx, int sy) {
        if (sx < 0 || sy < 0 || sx >= nx || sy >= ny) return true;
        return FloodFill(reinterpret_cast<uint16_t*>(mask), nx, ny, sx, sy, 4, 1, nullptr);
    };
    switch (m.Type) {
    case TV_MARKER_RECT: {
        if (m.NoOfPoints < 2 || !p) return false;
        edge(p[0].x, p[0].y, p[1].x, p[1].y);
        if (m.NoOfPoints < 3) return false;
        const int dx = p[0].x + p[2].x - p[1].x, dy = p[0].y + p[2].y - p[1].y;
        edge(p[1].x, p[1].y, p[2].x, p[2].y);
        edge(p[2].x, p[2].y, dx, dy);
        edge(dx, dy, p[0].x, p[0].y);
        return fill((p[0].x + p[2].x) / 2, (p[0].y + p[2].y) / 2);
    }
    case TV_MARKER_CIRCLE: {
        if (m.NoOfPoints < 2 || !p) return false;
        const double r = std::hypot(static_cast<double>(p[1].x) - p[0].x, static_cast<double>(p[1].y) - p[0].y);
        const int rows = static_cast<int>(r);
        for (int o = -rows; o <= rows; ++o) {
            const int y = p[0].y + o;
            if (y < 0 || y >= ny) continue;
            const int half = static_cast<int>(std::sqrt(std::max(r * r - static_cast<double>(o) * o, 0.0)));
            const int x1 = std::max(0, p[0].x - half), x2 = std::min(nx - 1, p[0].x + half);
            for (int x = x1; x <= x2; ++x) mask[static_cast<size_t>(y) * nx + x] = 1;
        }
        return true;
    }
    case TV_MARKER_POLYGON: {
        if (m.NoOfPoints < 1 || !p) return false;
        for (int k = 1; k < m.NoOfPoints; ++k) edge(p[k - 1].x, p[k - 1].y, p[k].x, p[k].y);
        edge(p[m.NoOfPoints - 1].x, p[m.NoOfPoints - 1].y, p[0].x, p[0].y);
        return fill(m.Seed.x, m.Seed.y);
    }
    default:
        return false;
    }
}

// One line marker: its profile statistics (pass 1) or its deviations from the line mean
// (pass 2, answered). False when the line is skipped.
static bool LineProfile(CMeasure& ms, const MeasureMarkerType& m, float** values, int* count)
{
    const POINTs* p = m.Points;
    int32_t x1 = p[0].x, y1 = p[0].y, x2 = p[1].x, y2 = p[1].y;
    const RECT imageRect{0, 0, ms.Nx - 1, ms.Ny - 1};
    if (!ClipLineCohenSutherland(&x1, &y1, &x2, &y2, imageRect)) return false;
    const double length = std::hypot(static_cast<double>(x2) - x1, static_cast<double>(y2) - y1);
    const int n = static_cast<int>(std::max(length, 4.0));
    float* block = static_cast<float*>(ecalloc(2 * static_cast<size_t>(n), sizeof(float)));
    if (!block) return false;
    if (!ProfileLine(ms.Image, static_cast<float>(x1), static_cast<float>(y1), static_cast<float>(x2),
                     static_cast<float>(y2), 1, block, block + n, n, true, true)) {
        efree(block);
        return false;
    }
    *values = block;
    *count = n;
    return true;
}

void CMeasure::DisplayImageWithMarkers()
{
    if (!Image || !MarkerMask || !IDMask) return;
    const int nx = Nx, ny = Ny;
    const size_t pixels = static_cast<size_t>(nx) * static_cast<size_t>(ny);
    const int ni = SetImages();
    // 1.
    if (ImageVFS >= 0 && FindVFS(ImageVFS)) VFS_set_current_vfs(ImageVFS);
    const int32_t savedSize = FSState.ImageDisplaySize;
    FSState.ImageDisplaySize = kFrameWidth;
    MarkersOverlap = 0;
    std::memset(IDMask, 0, pixels * sizeof(int16_t));
    for (int c = 0; c < 4; ++c) Number[c] = 0;
    if (CurrentVFS) {
        FSState.CursorX = FSState.CursorY = 0;
        DisplayImage(Image, 0, 0);
    }
    BeginBatch();
    // 2. to 4.
    RECT bounds{nx, ny, -1, -1};
    for (int i = 0; i < NoOfMarkers && Markers; ++i) {
        MeasureMarkerType& m = Markers[i];
        if (!OnImage(m)) continue;
        const bool area = (m.Type == TV_MARKER_RECT || m.Type == TV_MARKER_CIRCLE || m.Type == TV_MARKER_POLYGON) &&
                          RasteriseArea(*this, m);
        if (!area) {
            if (!m.CalcValid) {
                if (m.SpecY && ni > 0) std::fill(m.SpecY, m.SpecY + ni, 0.0f);
                m.SpecCount = 0;
            }
            continue;
        }
        ++Number[2];
        for (int y = 0; y < ny; ++y)
            for (int x = 0; x < nx; ++x) {
                const size_t k = static_cast<size_t>(y) * nx + x;
                if (!MarkerMask[k]) continue;
                if (IDMask[k] & 0x7fff) MarkersOverlap = 1;
                IDMask[k] = static_cast<int16_t>(i + 1);
                bounds.left = std::min<int32_t>(bounds.left, x);
                bounds.top = std::min<int32_t>(bounds.top, y);
                bounds.right = std::max<int32_t>(bounds.right, x);
                bounds.bottom = std::max<int32_t>(bounds.bottom, y);
            }
        if (!m.CalcValid) {
            ++MarkerCalcRuns;
            int32_t state = kCalcInterruptible;
            AreaStats s;
            MarkerAreaCalcs(&state, false, Image, nullptr, MarkerMask, s.Outputs(ni > 0 ? m.SpecY : nullptr));
            if (s.count > 0) {
                m.LenArea = s.area, m.SurfLenArea = s.surface, m.VolCSA = s.volume, m.Mean = s.mean;
                m.Min = s.min, m.Max = s.max, m.Ra = s.ra, m.RMS = s.rms;
            }
            m.SpecCount = s.count;
            if (state == kCalcInterrupted) {
                m.Mean = m.Min = m.Max = m.LenArea = m.RMS = m.Ra = m.SurfLenArea = m.VolCSA = 0.0f;
                m.SpecCount = 0;
                m.CalcValid = 0;
                SpectrumValid = 0;
            } else {
                m.CalcValid = 1;
            }
        }
    }
    // 5. One pass over the frame.
    if (CurrentVFS)
        for (int fy = 0; fy < kFrameHeight; ++fy) {
            const size_t row = static_cast<size_t>(fy * ny / kFrameHeight) * nx;
            for (int fx = 0; fx < kFrameWidth; ++fx) {
                const int id = IDMask[row + static_cast<size_t>(fx * nx / kFrameWidth)] & 0x7fff;
                if (id > 0 && id <= NoOfMarkers) PaintFrame(fx, fy, Markers[id - 1].Colour, ReplaceColour);
            }
        }
    // 6. The union of all areas.
    if (Number[2] > 0) {
        AreaStats s;
        MarkerAreaCalcs(nullptr, false, Image, &bounds, IDMask, s.Outputs(ni > 0 ? AveragedY : nullptr));
        if (s.count > 0) StoreColumn(TV_MEASURE_AREA, s);
    }
    // 7. Points and lines, in two passes.
    for (int c = 0; c < 2; ++c) {
        Mean[c] = RMS[c] = Ra[c] = LenArea[c] = SurfLenArea[c] = VolCSA[c] = 0.0f;
        Min[c] = kNoStatistic;
        Max[c] = -kNoStatistic;
    }
    const bool topo = Image->DataSource == kTopography;
    int64_t profileValues = 0;
    const MeasureMarkerType* previousPoint = nullptr;
    for (int i = 0; i < NoOfMarkers && Markers; ++i) {
        MeasureMarkerType& m = Markers[i];
        if (!OnImage(m) || m.NoOfPoints < 1 || !m.Points) continue;
        if (m.Type == TV_MARKER_POINT) {
            const POINTs p = m.Points[0];
            if (i != CurrentMarker && CurrentVFS)
                DrawCross(MarkerFrameX(p.x, nx), MarkerFrameY(p.y, ny), m.Colour, ReplaceColour);
            m.LenArea = 0.0f;
            if (previousPoint) {
                // The distance uses the magnitudes of the differences.
                const float ux = Convert2UnitsFromNx(std::abs(p.x - previousPoint->Points[0].x));
                const float uy = Convert2UnitsFromNy(std::abs(p.y - previousPoint->Points[0].y));
                m.LenArea = std::hypot(ux, uy);
            }
            previousPoint = &m;
            LenArea[0] += m.LenArea;
            m.Mean = m.Min = m.Max = GetZdata(p, true);
            ++Number[0];
            Mean[0] += m.Mean;
            Min[0] = std::min(Min[0], m.Mean);
            Max[0] = std::max(Max[0], m.Mean);
            if (ni > 0 && m.SpecY && p.x >= 0 && p.y >= 0 && p.x < nx && p.y < ny) {
                const CITSHeaderType* set = Image->CITSHeaderPtr;
                const int sx = static_cast<int>(static_cast<int64_t>(p.x) * set->cx / nx);
                const int sy = static_cast<int>(static_cast<int64_t>(p.y) * set->cy / ny);
                for (int k = 0; k < ni; ++k) {
                    const uint16_t* line = GetCITSImagePtr(set, k, static_cast<uint32_t>(sy));
                    m.SpecY[k] = line ? CITSData2Current(CITSEntry(set, k), line[sx]) : 0.0f;
                }
                m.SpecCount = 1;
            }
        } else if (m.Type == TV_MARKER_LINE && m.NoOfPoints >= 2 &&
                   (m.Points[0].x != m.Points[1].x || m.Points[0].y != m.Points[1].y)) {
            float* values = nullptr;
            int n = 0;
            if (!LineProfile(*this, m, &values, &n)) continue;
            const float* px = values;
            const float* pz = values + n;
            const POINTs* p = m.Points;
            if (CurrentVFS) {
                int32_t x1 = p[0].x, y1 = p[0].y, x2 = p[1].x, y2 = p[1].y;
                if (ClipLineCohenSutherland(&x1, &y1, &x2, &y2, RECT{0, 0, nx - 1, ny - 1}))
                    DrawImageLine(x1, y1, x2, y2, nx, ny, m.Colour, ReplaceColour);
            }
            double sum = 0;
            float lo = pz[0], hi = pz[0];
            for (int k = 0; k < n; ++k) {
                sum += pz[k];
                lo = std::min(lo, pz[k]);
                hi = std::max(hi, pz[k]);
            }
            const float mean = static_cast<float>(sum / n);
            float above = 0, below = 0, ra = 0, rq = 0, surface = 0;
            ProfileStatistics(px, pz, n, &ra, &rq, nullptr, nullptr, &surface, &above, &below, 0.0f, mean);
            m.Ra = ra, m.RMS = rq, m.SurfLenArea = surface;
            switch (BaseMode) {
            case TV_BASE_ABOVE: m.VolCSA = above; break;
            case TV_BASE_BELOW: m.VolCSA = below; break;
            case TV_BASE_BOTH: m.VolCSA = above + below; break;
            default: m.VolCSA = kNoStatistic; break;
            }
            if (!topo) m.VolCSA = kNoStatistic;
            const double ux = (p[1].x - p[0].x) * static_cast<double>(Image->ImageSizeX) / std::max(1, nx - 1);
            const double uy = (p[1].y - p[0].y) * static_cast<double>(Image->ImageSizeY) / std::max(1, ny - 1);
            m.LenArea = static_cast<float>(std::hypot(ux, uy));
            m.Min = lo;
            m.Max = hi;
            m.Mean = mean;
            if (!topo) {
                SurfLenArea[1] = kNoStatistic;
                VolCSA[1] = kNoStatistic;
            } else {
                if (SurfLenArea[1] != kNoStatistic) SurfLenArea[1] += m.SurfLenArea;
                if (VolCSA[1] != kNoStatistic) VolCSA[1] = m.VolCSA == kNoStatistic ? kNoStatistic : VolCSA[1] + m.VolCSA;
            }
            Min[1] = std::min(Min[1], lo);
            Max[1] = std::max(Max[1], hi);
            RMS[1] += m.RMS * m.RMS * static_cast<float>(n);
            Mean[1] += static_cast<float>(sum);
            LenArea[1] += m.LenArea;
            ++Number[1];
            profileValues += n;
            if (ni > 0 && m.SpecY) {
                int32_t x1 = p[0].x, y1 = p[0].y, x2 = p[1].x, y2 = p[1].y;
                if (ClipLineCohenSutherland(&x1, &y1, &x2, &y2, RECT{0, 0, nx - 1, ny - 1}))
                    m.SpecCount = draw_lineto_mem_OR(x1, y1, x2, y2, nullptr, nullptr, 0, nx, ny, true, m.SpecY);
            }
            efree(values);
        }
    }
    if (Number[0] > 0) Mean[0] /= static_cast<float>(Number[0]);
    if (profileValues > 0) Mean[1] /= static_cast<float>(profileValues);
    for (int i = 0; i < NoOfMarkers && Markers; ++i) {
        MeasureMarkerType& m = Markers[i];
        if (!OnImage(m) || m.NoOfPoints < 1 || !m.Points) continue;
        if (m.Type == TV_MARKER_POINT) {
            Ra[0] += std::fabs(m.Mean - Mean[0]);
            RMS[0] += (m.Mean - Mean[0]) * (m.Mean - Mean[0]);
            m.CalcValid = 1;
        } else if (m.Type == TV_MARKER_LINE && m.NoOfPoints >= 2 &&
                   (m.Points[0].x != m.Points[1].x || m.Points[0].y != m.Points[1].y)) {
            float* values = nullptr;
            int n = 0;
            if (!LineProfile(*this, m, &values, &n)) continue;
            for (int k = 0; k < n; ++k) Ra[1] += std::fabs(values[n + k] - Mean[1]);
            m.CalcValid = 1;
            efree(values);
        }
    }
    if (profileValues > 0) {
        Ra[1] /= static_cast<float>(profileValues);
        RMS[1] = std::sqrt(RMS[1] / static_cast<float>(profileValues));
    }
    if (Number[0] > 0) {
        Ra[0] /= static_cast<float>(Number[0]);
        RMS[0] = std::sqrt(RMS[0] / static_cast<float>(Number[0]));
    }
    // 8. The cross of the marker being edited.
    if (CurrentVFS && CurrentMarker >= 0 && CurrentMarker < NoOfMarkers && Markers) {
        const MeasureMarkerType& m = Markers[CurrentMarker];
        if (OnImage(m) && ((m.NoOfPoints >= 1 && m.Points) || m.Type == TV_MARKER_POLYGON)) {
            const POINTs at = m.Type == TV_MARKER_POLYGON || !m.Points ? m.Seed : m.Points[m.NoOfPoints - 1];
            DrawCross(MarkerFrameX(at.x, nx), MarkerFrameY(at.y, ny), m.Colour, ReplaceColour);
        }
    }
    // 9.
    ShowMarkerIDs(IDMask);
    EndBatchAndShow(0, 0, kFrameWidth - 1, kFrameHeight - 1);
    FSState.ImageDisplaySize = savedSize;
    // 10.
    if (ni > 0) {
        int32_t state = kCalcInterruptible;
        DisplaySpectra(&state, SpectrumVFS, "Spectroscopy", true);
        if (state == kCalcInterrupted) PostRedraw();
    }
}
