#include "image/fft_mask.h"

#include "display/contents_grid.h"
#include "display/vfs.h"
#include "host/error_numbers.h"
#include "host/errors.h"
#include "host/log.h"
#include "store/data_list.h"
#include "store/history.h"
#include "store/image_header.h"
#include "store/memory.h"
#include "store/value_text.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <vector>

namespace {

constexpr int kApplyCode = 63;
constexpr int kMaskSideMin = 32, kMaskSideMax = 4096;
constexpr int kRunEdgeColour = 2;
constexpr int kStopFirst = 35, kPassFirst = 83, kLastImageIndex = 162;

uint8_t* g_mask = nullptr;
int g_maskNx = 0, g_maskNy = 0;
wint_FFTWinParamType g_param;

wint_FFTWinParamType DefaultParam()
{
    wint_FFTWinParamType p{};
    p.BandMode = 3;
    p.TimeFreqLow = 1.0;
    p.TimeFreqHigh = 20.0;
    p.SpaceFreqLow = 0.1;
    p.SpaceFreqHigh = 0.9;
    p.MaskPass = 1;
    p.MaskZoom = 1;
    return p;
}

bool g_paramSet = false;

bool HasFFT(const ImageHeaderType* item)
{
    return item && CheckHeaderIsImageType(item) && item->FFTData && item->FFTDataPtr && item->PixData &&
           item->nx > 0 && item->ny > 0;
}

bool MaskFits(const ImageHeaderType* item)
{
    return g_mask && item && g_maskNx == item->nx && g_maskNy == item->ny;
}

// A command on the mask needs a spectrum in the item and a mask of its size; reports the first
// that is missing.
bool CheckSpectrumAndMask(const ImageHeaderType* item)
{
    if (!HasFFT(item)) {
        Error(ERR_NOT_FFT);
        return false;
    }
    if (!MaskFits(item)) {
        Error(ERR_WINDOW_SIZE);
        return false;
    }
    return true;
}

// The sides a limit is taken over: the physical sizes, or the pixel counts where those are 0.
double SideOr(double size, int pixels) { return size != 0.0 ? size : static_cast<double>(pixels); }

// Sets bytes first to last of row y to value, kept inside the mask.
void SetSpan(int y, int first, int last, uint8_t value)
{
    if (y < 0 || y >= g_maskNy) return;
    first = std::max(first, 0);
    last = std::min(last, g_maskNx - 1);
    if (first > last) return;
    std::memset(g_mask + static_cast<size_t>(y) * g_maskNx + first, value, static_cast<size_t>(last - first + 1));
}

// A point of the zoomed display in mask coordinates, clipped.
int ToMask(int v, int zoom, int n) { return std::clamp(v / zoom + (n - n / zoom) / 2, 0, n - 1); }

} // namespace

wint_FFTWinParamType& FFTWinParam()
{
    if (!g_paramSet) {
        g_param = DefaultParam();
        g_paramSet = true;
    }
    return g_param;
}

void ResetFFTWinParam()
{
    g_param = DefaultParam();
    g_paramSet = true;
    FreeMask();
}

bool MaskExists() { return g_mask != nullptr; }
int MaskWidth() { return g_maskNx; }
int MaskHeight() { return g_maskNy; }
uint8_t* MaskData() { return g_mask; }

bool GetMaskMem(int nx, int ny)
{
    if (g_mask) {
        ProgramError("GetMaskMem");
        return false;
    }
    if (nx < kMaskSideMin || nx > kMaskSideMax || ny < kMaskSideMin || ny > kMaskSideMax) {
        ProgramError("GerMaskMem %d %d", nx, ny);
        nx = ny = 128;
    }
    g_mask = static_cast<uint8_t*>(ecalloc(static_cast<size_t>(nx) * static_cast<size_t>(ny), 1));
    if (!g_mask) {
        Error(ERR_NO_MEMORY);
        return false;
    }
    g_maskNx = nx;
    g_maskNy = ny;
    return true;
}

void FreeMask()
{
    efree(g_mask);
    g_mask = nullptr;
    g_maskNx = g_maskNy = 0;
}

double NyquistLimit(double sizeX, double sizeY, int nx, int ny)
{
    const double n = std::hypot(nx / sizeX, ny / sizeY) / 2.0;
    if (!std::isfinite(n)) return n;
    const double scale = std::pow(10.0, DecimalsFor(n));
    return std::ceil(scale * n) / scale;
}

void FillFFTWinParam(wint_FFTWinParamType* param)
{
    const ImageHeaderType* item = CurrentItem;
    const bool image = item && CheckHeaderIsImageType(item);
    if (image) {
        const double sx = SideOr(item->ImageSizeX, item->nx), sy = SideOr(item->ImageSizeY, item->ny);
        const double space = NyquistLimit(sx, sy, item->nx, item->ny);
        if (param->SpaceFreqHigh > space) param->SpaceFreqHigh = space;
        if (param->SpaceFreqLow > param->SpaceFreqHigh) param->SpaceFreqLow = param->SpaceFreqHigh;
        if (item->ScanSpeedX <= 0.0f || item->ScanSpeedY <= 0.0f) {
            param->TimeFreqHigh = 0.0;
        } else {
            const double time = NyquistLimit(sx / item->ScanSpeedX, sy / item->ScanSpeedY, item->nx, item->ny);
            if (param->TimeFreqHigh > time) param->TimeFreqHigh = time;
        }
        if (param->TimeFreqLow > param->TimeFreqHigh) param->TimeFreqLow = param->TimeFreqHigh;
    } else {
        param->TimeFreqHigh = 0.0;
        param->SpaceFreqHigh = 0.0;
    }
    const bool f = HasFFT(item);
    const bool m = MaskExists();
    const uint32_t on = 1, off = 2, always = 3;
    param->MaskControls[0] = always;
    param->MaskControls[1] = f && !m ? on : off;
    param->MaskControls[2] = f && m ? on : off;
    param->MaskControls[3] = f && m ? on : off;
    param->MaskControls[4] = f ? on : off;
    param->MaskControls[5] = always;
    param->ImageControls[0] = image && !item->FFTData ? on : off;
    for (int i = 1; i < 6; ++i) param->ImageControls[i] = f ? on : off;
}

int AddMaskBand(int mode, double low, double high, uint8_t value)
{
    const ImageHeaderType* item = CurrentItem;
    if (!CheckSpectrumAndMask(item)) return 1;
    double sx = SideOr(item->ImageSizeX, item->nx), sy = SideOr(item->ImageSizeY, item->ny);
    if (mode == 1) {
        if (item->ScanSpeedX <= 0.0f || item->ScanSpeedY <= 0.0f) {
            Error(ERR_INVALID_REVISION);
            return 1;
        }
        sx /= item->ScanSpeedX;
        sy /= item->ScanSpeedY;
    }
    const double limit = NyquistLimit(sx, sy, item->nx, item->ny);
    if (!(low >= 0.0) || low > limit || low >= high || high > limit) {
        Error(ERR_INVALID_ENTRY);
        return 1;
    }
    const double rl = sx * low, rh = sx * high, a = sy / sx;
    const int nx = item->nx, ny = item->ny;
    const double rows = std::min(rh * a, static_cast<double>(ny / 2));
    for (int r = 0; r < rows; ++r) {
        const double q = (r / a) * r / a;
        const double t = std::trunc(rl * rl - q);
        int inner = t > 0.0 ? static_cast<int>(std::sqrt(t)) : 0;
        const double o = rh * rh - q;
        int outer = o > 0.0 ? static_cast<int>(std::min(std::sqrt(o), 1e9)) : 0;
        if (outer >= nx / 2) outer = nx / 2 - 1;
        if (inner >= nx / 2) inner = nx / 2 - 1;
        if (outer < inner) continue;
        for (int y : {ny / 2 + r, ny / 2 - r}) {
            SetSpan(y, nx / 2 + inner, nx / 2 + outer, value);
            SetSpan(y, nx / 2 - outer, nx / 2 - inner, value);
        }
    }
    ShowMask(true, true, FFTWinParam().MaskZoom);
    return 0;
}

int AddMaskCircle(int cx, int cy, int rx, int ry, int zoom, uint8_t value)
{
    const ImageHeaderType* item = CurrentItem;
    if (!MaskFits(item)) {
        Error(ERR_WINDOW_SIZE);
        return 1;
    }
    if (zoom < 1) zoom = 1;
    const int nx = g_maskNx, ny = g_maskNy;
    cx = ToMask(cx, zoom, nx);
    cy = ToMask(cy, zoom, ny);
    rx = ToMask(rx, zoom, nx);
    ry = ToMask(ry, zoom, ny);
    const long long dx = rx - cx, dy = ry - cy;
    const long long r2 = dx * dx + dy * dy;
    const int radius = static_cast<int>(std::sqrt(static_cast<double>(r2)) + 0.5);
    for (int d = -radius; d <= radius; ++d) {
        const int y = cy + d;
        if (y < 0 || y >= ny) continue;
        const long long rest = std::max(r2 - static_cast<long long>(d) * d, 0LL);
        const int half = static_cast<int>(std::sqrt(static_cast<double>(rest)) + 0.5);
        const int left = std::max(cx - half, 0), right = std::min(cx + half, nx - 1);
        SetSpan(y, left, right, value);
        // The conjugate place of a real image's spectrum; row ny - 0 and column nx - 0 fall
        // just outside the mask and are left out.
        SetSpan(ny - y, nx - right, nx - left, value);
    }
    return 0;
}

int AddMaskCircleFromSelection(int status, int cx, int cy, int rx, int ry)
{
    if ((status & 1) == 0) return 0;
    const wint_FFTWinParamType& param = FFTWinParam();
    if (AddMaskCircle(cx, cy, rx, ry, param.MaskZoom, param.MaskPass == 1 ? 255 : 0)) return 1;
    if (status & 4) {
        ShowMask(true, true, param.MaskZoom);
        return 1;
    }
    ShowMask(true, false, param.MaskZoom);
    return 0;
}

int ApplyMask()
{
    ImageHeaderType* item = CurrentItem;
    if (!item || !CheckHeaderIsImageType(item) || !item->PixData) {
        Error(ERR_NO_IMAGES);
        return 1;
    }
    if (!CheckSpectrumAndMask(item)) return 1;
    const int nx = item->nx, ny = item->ny;
    for (int y = 0; y < ny; ++y) {
        float* row = item->FFTDataPtr + static_cast<size_t>((ny / 2 + y) % ny) * nx * 2;
        for (int x = 0; x < nx; ++x) {
            const size_t i = static_cast<size_t>(y) * nx + x;
            const uint8_t m = g_mask[i];
            item->PixData[i] = static_cast<uint16_t>((static_cast<uint32_t>(item->PixData[i]) * m) >> 8);
            float* pair = row + static_cast<size_t>((nx / 2 + x) % nx) * 2;
            pair[0] *= static_cast<float>(m);
            pair[1] *= static_cast<float>(m);
        }
    }
    AddImProc2List(item, kApplyCode);
    Log("Apply window to '%s'.\n", item->Title);
    return 0;
}

bool MaskOverlayIndices(const ImageHeaderType* image, int zoom, uint8_t* indices)
{
    if (!MaskFits(image) || !image->PixData) return false;
    if (zoom < 1) zoom = 1;
    const int nx = image->nx, ny = image->ny;
    const int x0 = (nx - nx / zoom) / 2, y0 = (ny - ny / zoom) / 2;
    for (int y = 0; y < ny / zoom; ++y) {
        const int sy = y0 + y;
        const uint8_t* mask = g_mask + static_cast<size_t>(sy) * nx;
        const uint16_t* codes = image->PixData + static_cast<size_t>(sy) * nx;
        for (int x = 0; x < nx / zoom; ++x) {
            const int sx = x0 + x;
            const int level = image->ImageLUT[codes[sx] >> 8] >> 1;
            int colour;
            if (!mask[sx])
                colour = level + kStopFirst;
            else if (sx > 0 && sx < nx - 1 && mask[sx - 1] && mask[sx + 1])
                colour = std::min(level + kPassFirst, kLastImageIndex);
            else
                colour = kRunEdgeColour;
            for (int by = 0; by < zoom; ++by)
                std::memset(indices + static_cast<size_t>(y * zoom + by) * nx + static_cast<size_t>(x) * zoom,
                            colour, static_cast<size_t>(zoom));
        }
    }
    return true;
}

void ShowMask(bool begin, bool finish, int zoom)
{
    ImageHeaderType* item = CurrentItem;
    if (!MaskFits(item) || !HeldByCurrentFrameStore(item)) return;
    // The item's place in the frame store: its first cell in the contents grid.
    int left = 0, top = 0, right = 0, bottom = 0;
    bool found = false;
    for (int y = 0; y < 512 && !found; y += 4)
        for (int x = 0; x < 512 && !found; x += 4)
            if (GetFSContentsCoords(x, y, &left, &top, &right, &bottom) == item) found = true;
    if (!found) return;
    std::vector<uint8_t> indices(static_cast<size_t>(item->nx) * item->ny);
    if (!MaskOverlayIndices(item, zoom, indices.data())) return;
    // The overlay covers the image from its top left corner; the frame clips what lies outside.
    const int width = item->nx, height = item->ny;
    if (begin) BeginBatch();
    for (int y = 0; y < height; ++y) WriteFSLine(indices.data() + static_cast<size_t>(y) * item->nx, width, left, top + y);
    if (begin) {
        if (finish)
            EndBatchAndShow(left, top, left + width - 1, top + height - 1);
        else
            EndBatch();
    }
}
