// The geometry commands that take their points from the user: rotation by an angle (a centre
// and two direction points) and translation (a start and an end point).
#include "image/geometry.h"
#include "image/image_frame.h"
#include "display/display_param.h"
#include "display/placement.h"
#include "display/selection.h"
#include "display/vfs.h"
#include "host/errors.h"
#include "host/log.h"
#include "host/wait.h"
#include "store/data_list.h"
#include "store/duplicate.h"
#include "store/image_header.h"

#include <cmath>
#include <cstdlib>
#include <cstring>

int16_t RotatePointsX[3], RotatePointsY[3];
int16_t TranslatePointsX[2], TranslatePointsY[2];
ImageHeaderType* RotateHeldItem = nullptr;

namespace {

constexpr const char* kRotateWait = "Please wait while rotating image";
constexpr int kSelectRotate = 1;
constexpr int kSelectTranslate = 7;

// The source of the held rotation: the current item when the command began.
ImageHeaderType* RotateHeldSource = nullptr;

void DropHeldRotation()
{
    if (RotateHeldItem && IsInList(RotateHeldItem)) FreeResultItem(RotateHeldItem);
    RotateHeldItem = nullptr;
    RotateHeldSource = nullptr;
}

bool SamePoint(int a, int b)
{
    return RotatePointsX[a] == RotatePointsX[b] && RotatePointsY[a] == RotatePointsY[b];
}

// One axis pair of the header turned by C and S (in 16384ths); the second line takes the value
// the first one has just written.
struct AxisPair {
    float x, y;
};
AxisPair TurnPair(AxisPair p, int c, int s)
{
    p.x = static_cast<float>((c * static_cast<double>(p.x) + s * static_cast<double>(p.y)) / 16384.0);
    p.y = static_cast<float>((s * static_cast<double>(p.x) + c * static_cast<double>(p.y)) / 16384.0);
    return p;
}

// The rotated picture: each result pixel reads the source at (u, v) in 32nds of a pixel,
// bilinear, where the position lies strictly inside the last row and column.
void RotateRows(const ImageHeaderType* source, ImageHeaderType* result, int c, int s, int x0, int y0)
{
    const int nx = source->nx, ny = source->ny;
    const uint32_t limitX = static_cast<uint32_t>(nx - 1) * 32u, limitY = static_cast<uint32_t>(ny - 1) * 32u;
    for (int y = 0; y < ny; ++y) {
        uint16_t* out = result->PixData + static_cast<size_t>(y) * nx;
        std::memset(out, 0, static_cast<size_t>(nx) * sizeof(uint16_t));
        const int32_t dy = y - y0;
        for (int x = 0; x < nx; ++x) {
            const int32_t dx = x - x0;
            const int32_t u = ((dx * c - dy * s) >> 9) + x0 * 32;
            const int32_t v = ((dx * s + dy * c) >> 9) + y0 * 32;
            if (static_cast<uint32_t>(u) >= limitX || static_cast<uint32_t>(v) >= limitY) continue;
            const uint32_t fx = static_cast<uint32_t>(u & 31), fy = static_cast<uint32_t>(v & 31);
            const uint16_t* p = source->PixData + static_cast<size_t>(v >> 5) * nx + (u >> 5);
            const uint32_t top = (p[0] * (32 - fx) + p[1] * fx) >> 5;
            const uint32_t bottom = (p[nx] * (32 - fx) + p[nx + 1] * fx) >> 5;
            out[x] = static_cast<uint16_t>((top * (32 - fy) + bottom * fy) >> 5);
        }
        ShowCommandRow(result, y);
    }
}

} // namespace

void RotateImageA()
{
    ImageCommand check;
    ImageHeaderType* source = CheckImageCommand(check);
    if (!source) return;
    ShowImageForPointing(source);
    DropHeldRotation();
    RotateHeldItem = DuplicateForResult(source);
    if (!RotateHeldItem) return;
    RotateHeldSource = source;
    if (SelectImagePoints(kSelectRotate, 3, RotatePointsX, RotatePointsY, 5, 0, 0, 0, 0, 0, 0, 5,
                          RotateImageA_Continue))
        DropHeldRotation();
}

int RotateImageA_Continue(int status)
{
    ImageHeaderType* result = RotateHeldItem;
    ImageHeaderType* source = RotateHeldSource;
    if (!result || !IsInList(result) || !source || !IsInList(source)) {
        ProgramError("RotateImageA");
        DropHeldRotation();
        return 1;
    }
    const bool coincide = SamePoint(0, 1) || SamePoint(0, 2) || SamePoint(1, 2);
    if (!(status & 1) || coincide) {
        if ((status & 1) && coincide) Error(ERR_INVALID_ENTRY);
        DropHeldRotation();
        HideWait();
        return 1;
    }
    RotateHeldItem = nullptr;
    RotateHeldSource = nullptr;
    const int x0 = RotatePointsX[0], y0 = RotatePointsY[0];
    Log("Rotate (%d %d) (%d %d) (%d %d)\n", x0, y0, RotatePointsX[1], RotatePointsY[1], RotatePointsX[2],
        RotatePointsY[2]);
    ShowWait("%s", kRotateWait);

    const float angle = static_cast<float>((std::atan2(RotatePointsY[1] - y0, RotatePointsX[1] - x0) -
                                            std::atan2(RotatePointsY[2] - y0, RotatePointsX[2] - x0)) *
                                           57.29577951471995);
    const double radians = angle * 0.017453292519444445;
    const int c = static_cast<int>(std::trunc(std::cos(radians) * 16384));
    const int s = static_cast<int>(std::trunc(std::sin(radians) * 16384));
    const AxisPair size = TurnPair({result->ImageSizeX, result->ImageSizeY}, c, s);
    const AxisPair speed = TurnPair({result->ScanSpeedX, result->ScanSpeedY}, c, s);
    result->ImageSizeX = size.x;
    result->ImageSizeY = size.y;
    result->ScanSpeedX = speed.x;
    result->ScanSpeedY = speed.y;

    ImageCommand command;
    command.wait = kRotateWait;
    command.code = 41;
    BeginRowDisplay(result->nx, result->ny, source);
    RotateRows(source, result, c, s, x0, y0);
    FinishImageCommand(command, result, CommandLogText("Rotate '%s' by %6.1f degrees.\n", result->Title, angle));
    return 1;
}

void ImageTranslate()
{
    ImageCommand check;
    ImageHeaderType* source = CheckImageCommand(check);
    if (!source) return;
    ShowImageForPointing(source);
    SelectImagePoints(kSelectTranslate, 2, TranslatePointsX, TranslatePointsY, 1, 0, 0, 0, 0, 0, 0, 1,
                      ImageTranslate_Continue);
}

int ImageTranslate_Continue(int status)
{
    const int dx = TranslatePointsX[1] - TranslatePointsX[0];
    const int dy = TranslatePointsY[1] - TranslatePointsY[0];
    if (!(status & 1)) return 1;
    ImageCommand c;
    c.wait = "Please wait while translating image";
    c.code = 48;
    RunImageCommand(
        c,
        [dx, dy](const ImageHeaderType* source, ImageHeaderType* result) {
            const int nx = source->nx, ny = source->ny;
            // No wrap: a shift of the whole width or more leaves nothing to copy.
            const int length = nx - std::abs(dx);
            const int from = dx < 0 ? -dx : 0, to = dx > 0 ? dx : 0;
            for (int y = 0; y < ny; ++y) {
                uint16_t* out = result->PixData + static_cast<size_t>(y) * nx;
                std::memset(out, 0, static_cast<size_t>(nx) * sizeof(uint16_t));
                const int row = y - dy;
                if (length > 0 && row >= 0 && row < ny)
                    std::memcpy(out + to, source->PixData + static_cast<size_t>(row) * nx + from,
                                static_cast<size_t>(length) * sizeof(uint16_t));
                ShowCommandRow(result, y);
            }
        },
        "Translate image '%s' by (%d,%d)\n", dx, dy);
    return 1;
}

void ResetGeometryState()
{
    RotateHeldItem = nullptr;
    RotateHeldSource = nullptr;
    std::memset(RotatePointsX, 0, sizeof RotatePointsX);
    std::memset(RotatePointsY, 0, sizeof RotatePointsY);
    std::memset(TranslatePointsX, 0, sizeof TranslatePointsX);
    std::memset(TranslatePointsY, 0, sizeof TranslatePointsY);
}
