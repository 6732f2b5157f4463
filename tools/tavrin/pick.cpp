#include "pick.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>

PickMode& CurrentPickMode()
{
    static PickMode mode;
    return mode;
}

namespace {

// The first frame position of the rectangle that the library reads back as image pixel `pixel`
// (it counts pixel = position * pixels / extent).
int FramePosition(int pixel, int pixels, int extent)
{
    if (pixels <= 0 || extent <= 0) return pixel;
    return (pixel * extent + pixels - 1) / pixels;
}

} // namespace

bool PickImagePoints(const std::vector<std::pair<int, int>>& points)
{
    PickMode& mode = CurrentPickMode();
    if (!mode.active) return false;
    const ImageHeaderType* image = dl_GetCurrentImagePtr();
    const int pixelsX = image ? image->nx : 0, pixelsY = image ? image->ny : 0;
    const int width = mode.right - mode.left + 1, height = mode.bottom - mode.top + 1;
    bool ended = false;
    for (const auto& p : points) {
        const auto x = static_cast<int16_t>(FramePosition(p.first, pixelsX, width));
        const auto y = static_cast<int16_t>(FramePosition(p.second, pixelsY, height));
        const auto type = static_cast<int16_t>(mode.type);
        dl_SelectPointInVFS_Callback(type, x, y, 0, 0);
        ended = dl_SelectPointInVFS_Callback(type, x, y, TV_PICK_LEFT, 0) != 0;
        if (ended) break;
    }
    if (ended) mode.active = false;
    return ended;
}

int PickEvent(int x, int y, const std::string& button)
{
    PickMode& mode = CurrentPickMode();
    if (!mode.active) return -1;
    int buttons = 0;
    if (button == "left" || button == "shift") buttons = TV_PICK_LEFT;
    else if (button == "middle") buttons = TV_PICK_MIDDLE;
    else if (button == "right") buttons = TV_PICK_RIGHT;
    mode.shiftHeld = button == "shift";
    const int answer = dl_SelectPointInVFS_Callback(static_cast<int16_t>(mode.type), static_cast<int16_t>(x),
                                                    static_cast<int16_t>(y), static_cast<int16_t>(buttons), mode.type);
    mode.shiftHeld = false;
    if (answer) mode.active = false;
    return answer;
}

bool ParsePoint(const std::string& text, std::pair<int, int>* point)
{
    char* end = nullptr;
    const long x = std::strtol(text.c_str(), &end, 10);
    if (end == text.c_str() || *end != ',') return false;
    const char* second = end + 1;
    const long y = std::strtol(second, &end, 10);
    if (end == second || *end) return false;
    if (x < -32768 || x > 32767 || y < -32768 || y > 32767) return false;
    *point = {static_cast<int>(x), static_cast<int>(y)};
    return true;
}

void RunMeshTool(int purpose, const std::vector<std::pair<int, int>>& points, bool cancelled)
{
    CMesh* mesh = dl_GetMeshClass(purpose);
    wint_MeshParamType param{};
    mesh->MeshInitialise(&param);
    int16_t xy[3][2] = {};
    for (size_t i = 0; i < 3 && i < points.size(); ++i) {
        xy[i][0] = static_cast<int16_t>(points[i].first);
        xy[i][1] = static_cast<int16_t>(points[i].second);
    }
    std::memcpy(param.P0, xy[0], sizeof xy[0]);
    std::memcpy(param.P1, xy[1], sizeof xy[1]);
    std::memcpy(param.P2, xy[2], sizeof xy[2]);
    mesh->CopyMeshParamFromDlg(&param);
    mesh->MeshFinish(cancelled);
}
