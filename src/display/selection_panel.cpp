#include "display/selection_panel.h"
#include "display/contents_grid.h"
#include "display/plot.h"
#include "display/selection.h"
#include "display/vfs.h"
#include "host/ap_callbacks.h"
#include "host/wait.h"
#include "store/data_list.h"
#include "store/image_header.h"
#include "store/units.h"
#include "store/value_text.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

namespace {

TextWindowHandle g_panel = 0;
bool g_panelOpen = false;
int16_t g_pairX[2 * kPanelPairs], g_pairY[2 * kPanelPairs];
int g_pairs = 0;

constexpr const char* kBlank = "                            ";

// The image under frame point (x, y) with a rectangle, when its values are calibrated.
const ImageHeaderType* CalibratedImageAt(int x, int y, int* left, int* top, int* right, int* bottom)
{
    if (x < 0 || y < 0 || x >= kFrameWidth || y >= kFrameHeight) return nullptr;
    const ImageHeaderType* image = GetFSContentsCoords(x, y, left, top, right, bottom);
    if (!image || !CheckHeaderIsImageType(image) || !image->PixData) return nullptr;
    if (*right <= *left || *bottom <= *top) return nullptr;
    if (!(image->Zhi > image->Zlo || image->Zhi < image->Zlo)) return nullptr;
    return image;
}

// The physical pixel sizes of the current image, 1 when it is not calibrated.
void PixelSizes(const ImageHeaderType* image, double* sx, double* sy)
{
    *sx = *sy = 1;
    if (!image || image->nx <= 0 || image->ny <= 0 || image->ImageSizeX <= 0 || image->ImageSizeY <= 0) return;
    *sx = image->ImageSizeX / image->nx;
    *sy = image->ImageSizeY / image->ny;
}

void WriteHeight(int frameX, int frameY)
{
    int left = 0, top = 0, right = 0, bottom = 0;
    const ImageHeaderType* image = CalibratedImageAt(frameX, frameY, &left, &top, &right, &bottom);
    if (!image) {
        PrintInWindow(g_panel, 2, 3, "%s", kBlank);
        return;
    }
    const int px = std::clamp((frameX - left) * image->nx / (right - left + 1), 0, image->nx - 1);
    const int py = std::clamp((frameY - top) * image->ny / (bottom - top + 1), 0, image->ny - 1);
    const float code = image->PixData[static_cast<size_t>(py) * image->nx + px];
    PrintInWindow(g_panel, 2, 3, "Image height %8.2f %-2s", static_cast<double>(GetImageDataValue(0, code, image)),
                  GetImageUnitStr(image, 0, 0));
}

// The distance of the cursor from point 0, in image pixels.
int DistanceX(int ix) { return std::abs(ix - SelectionPixelX(SelectionState.PointsX[0])); }
int DistanceY(int iy) { return std::abs(iy - SelectionPixelY(SelectionState.PointsY[0])); }

void WriteSelectedSize(int ix, int iy)
{
    const int dx = DistanceX(ix), dy = DistanceY(iy);
    PrintInWindow(g_panel, 30, 2, "No of pixels (%d,%d)      ", dx + 1, dy + 1);
    const ImageHeaderType* image = CurrentItem;
    if (!image || !HasPhysicalSize(image)) {
        PrintInWindow(g_panel, 30, 3, "%s", kBlank);
        PrintInWindow(g_panel, 30, 4, "%s", kBlank);
        return;
    }
    double sx, sy;
    PixelSizes(image, &sx, &sy);
    const double w = (dx + 1) * sx, h = (dy + 1) * sy;
    const DisplayRange range = ChooseDisplayRange(std::min(w, h), [](int e) { return UnitsZ(e, 0); });
    const double a = w / range.divisor, b = h / range.divisor;
    PrintInWindow(g_panel, 30, 3, "Selected area %.*fx%.*f%s           ", DecimalsFor(a), a, DecimalsFor(b), b,
                  range.unit.c_str());
}

void WriteAngle(int ix, int iy)
{
    const SelectionStateType& s = SelectionState;
    const int x0 = SelectionPixelX(s.PointsX[0]), y0 = SelectionPixelY(s.PointsY[0]);
    const double a1 = std::atan2(SelectionPixelY(s.PointsY[1]) - y0, SelectionPixelX(s.PointsX[1]) - x0);
    const double a2 = std::atan2(iy - y0, ix - x0);
    PrintInWindow(g_panel, 30, 3, "Angle %7.1f ", (a1 - a2) * 57.29577951471995);
}

void WritePairs()
{
    int row = 5;
    std::string line;
    for (int i = 0; i < g_pairs; ++i) {
        char text[64];
        std::snprintf(text, sizeof text, "%d:(%d,%d)-(%d,%d) ", i + 1, g_pairX[2 * i], g_pairY[2 * i], g_pairX[2 * i + 1],
                      g_pairY[2 * i + 1]);
        if (line.size() + std::strlen(text) > 58) {
            PrintInWindow(g_panel, 2, row++, "%s", line.c_str());
            line.clear();
        }
        line += text;
    }
    if (!line.empty()) PrintInWindow(g_panel, 2, row, "%s", line.c_str());
}

} // namespace

void OpenSelectionPanel()
{
    if (g_panelOpen) {
        ClearSelectionPanel();
        return;
    }
    // 0xffff for the place asks for the host's default.
    g_panel = Ap.ap_OpenTextWindow(kPanelRows, kPanelColumns, 0xffff, 0xffff, "Cursor Information");
    g_panelOpen = true;
}

void CloseSelectionPanel()
{
    if (!g_panelOpen) return;
    Ap.ap_CloseTextWindow(g_panel);
    g_panelOpen = false;
    g_panel = 0;
}

void ClearSelectionPanel()
{
    if (g_panelOpen) Ap.ap_ClearTextWindow(g_panel);
}

TextWindowHandle SelectionPanel() { return g_panel; }

void WriteSelectionPanel(int x, int y)
{
    if (!g_panelOpen) return;
    const SelectionStateType& s = SelectionState;
    const int ix = SelectionPixelX(x), iy = SelectionPixelY(y);
    PrintInWindow(g_panel, 2, 1, "Select point %d/%d      ", s.CurrentPoint + 1, s.PointCount);
    if (!s.WorldCursor) {
        PrintInWindow(g_panel, 2, 2, "Cursor position (%d,%d)    ", ix, iy);
    } else {
        // A plot: the values of its world under the cursor, in the current plot area.
        const PlotAreaType& area = CurrentPlotArea();
        const int px = s.BoundLeft + x - area.Left, py = s.BoundTop + y - area.Top;
        PrintInWindow(g_panel, 2, 2, "Cursor position (%8.5g,%8.5g)    ", static_cast<double>(PixelToWorldX(px)),
                      static_cast<double>(PixelToWorldY(py)));
    }
    WriteHeight(s.BoundLeft + x, s.BoundTop + y);
    if (s.PointCount == 3 && s.CurrentPoint == 2) WriteAngle(ix, iy);
    if (s.PointCount == 2 && s.CurrentPoint == 1) {
        WriteSelectedSize(ix, iy);
        if (s.Type == 33) {
            const int dx = DistanceX(ix), dy = DistanceY(iy);
            const int spectra = s.RegionType == 2 ? (dx + 1) * (dy + 1) : std::max(dx, dy) + 1;
            PrintInWindow(g_panel, 2, 4, "Number of spectra: %d  ", spectra);
        }
    }
    WritePairs();
}

void SetPanelPointPairs(const int16_t* xs, const int16_t* ys, int pairs)
{
    g_pairs = std::clamp(pairs, 0, kPanelPairs);
    for (int i = 0; i < 2 * g_pairs; ++i) {
        g_pairX[i] = xs[i];
        g_pairY[i] = ys[i];
    }
}

void ForceSquare(const int16_t* xs, const int16_t* ys, int* x, int* y)
{
    const ImageHeaderType* image = CurrentItem;
    double sx, sy;
    PixelSizes(image, &sx, &sy);
    const int width = FSState.ImageRight - FSState.ImageLeft, height = FSState.ImageBottom - FSState.ImageTop;
    const int pixelsX = std::max<int>(FSState.ImagePixelsX, 1), pixelsY = std::max<int>(FSState.ImagePixelsY, 1);
    // Point 0 and the cursor in image pixels.
    const int px0 = xs[0] * pixelsX / std::max(width + 1, 1), py0 = ys[0] * pixelsY / std::max(height + 1, 1);
    const int px = *x * pixelsX / std::max(width + 1, 1);
    const int dx = px - px0;
    const double newY = std::max(0.0, py0 - std::abs(dx) * sx / sy);
    const double newX = px0 + (dx < 0 ? -1 : 1) * std::abs(newY - py0) * sy / sx;
    // Back to the frame: coordinate * (extent - 1) / (pixels - 1).
    *x = pixelsX > 1 ? static_cast<int>(newX * width / (pixelsX - 1)) : static_cast<int>(newX);
    *y = pixelsY > 1 ? static_cast<int>(newY * height / (pixelsY - 1)) : static_cast<int>(newY);
}

void ResetSelectionPanel()
{
    g_panelOpen = false;
    g_panel = 0;
    g_pairs = 0;
}
