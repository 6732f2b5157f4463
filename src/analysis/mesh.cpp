#include "analysis/mesh.h"
#include "display/placement.h"
#include "display/selection.h"
#include "display/vfs.h"
#include "host/ap_callbacks.h"
#include "host/wait.h"
#include "image/image_frame.h"
#include "image/lattice.h"
#include "image/regions.h"
#include "store/data_list.h"
#include "store/image_header.h"

#include <cmath>
#include <cstdio>
#include <cstring>

CMesh Mesh{};
MeshInfoType MeshInfo{};

namespace {

constexpr int kDefaultPixels = 512;
constexpr int kInfoRows = 4;
constexpr int kInfoColumns = 40;
// The spacings of the last report, to tell which one the user moved.
double g_lastSpacingX = 0, g_lastSpacingY = 0;

RegionPoint Point(int16_t x, int16_t y) { return {x, y}; }

bool HasImage(const ImageHeaderType* item)
{
    return item && CheckHeaderIsImageType(item) && item->PixData && item->nx > 0 && item->ny > 0;
}

void CloseInfoBox(CMesh& mesh)
{
    if (!mesh.InfoOpen) return;
    Ap.ap_CloseTextWindow(mesh.InfoWindow);
    mesh.InfoOpen = 0;
    mesh.InfoWindow = 0;
}

} // namespace

void CMesh::MeshInitialise(wint_MeshParamType* p)
{
    wint_MeshParamType& m = Param;
    ImageHeaderType* image = CurrentItem;
    if (HasImage(image)) {
        ShowImageForPointing(image);
        m.PixelsX = image->nx;
        m.PixelsY = image->ny;
        m.SizeX = image->ImageSizeX;
        m.SizeY = image->ImageSizeY;
        m.Frame = {FSState.ImageLeft, FSState.ImageTop, FSState.ImageRight, FSState.ImageBottom};
    } else {
        m.PixelsX = m.PixelsY = kDefaultPixels;
        m.SizeX = m.SizeY = 0.0;
        m.Frame = {0, 0, kDefaultPixels - 1, kDefaultPixels - 1};
    }
    const uint8_t locked = m.Purpose == TV_MESH_UNIT_CELL || m.Purpose == TV_MESH_LATTICE ? 0 : 1;
    m.LockAngle = m.LockSize = m.LockShape = m.LockPlace = locked;
    m.Colour = IndexColour(kSelectionColour);
    std::memset(m.Reserved, 0, sizeof m.Reserved);
    if (!InfoOpen) {
        // 0xffff for the place asks for the host's default.
        InfoWindow = Ap.ap_OpenTextWindow(kInfoRows, kInfoColumns, 0xffff, 0xffff, "Mesh Information");
        InfoOpen = 1;
    }
    CopyMeshParamToDlg(p);
}

void CMesh::MeshFinish(bool cancelled)
{
    const RegionPoint p0 = Point(Param.P0[0], Param.P0[1]), p1 = Point(Param.P1[0], Param.P1[1]),
                      p2 = Point(Param.P2[0], Param.P2[1]);
    if (!cancelled) {
        switch (Param.Purpose) {
        case TV_MESH_MAGNIFY: {
            // The corner opposite P0; a rectangle with its sides along the axes is magnified,
            // any other parallelogram straightened.
            const RegionPoint d{p1.x + p2.x - p0.x, p1.y + p2.y - p0.y};
            const bool upright = (p0.x == p2.x && p1.y == p0.y) || (p0.y == p2.y && p1.x == p0.x);
            if (upright) MagnifyArea(p0, d);
            else DriftCorrect(p0, p1, d);
            break;
        }
        case TV_MESH_TRIM:
            TrimImage(p0, p1, p2);
            break;
        case TV_MESH_LATTICE:
            LatticePointsX[0] = Param.P0[0];
            LatticePointsY[0] = Param.P0[1];
            LatticePointsX[1] = Param.P1[0];
            LatticePointsY[1] = Param.P1[1];
            LatticePointsX[2] = Param.P2[0];
            LatticePointsY[2] = Param.P2[1];
            LatticeAverage(1);
            break;
        default:
            break;
        }
    }
    Param.Purpose = TV_MESH_NONE;
    CloseInfoBox(*this);
}

void CMesh::CopyMeshParamToDlg(wint_MeshParamType* p) const
{
    if (p) std::memcpy(p, &Param, sizeof Param);
}

void CMesh::CopyMeshParamFromDlg(const wint_MeshParamType* p)
{
    if (p) std::memcpy(&Param, p, sizeof Param);
}

CMesh* GetMeshClass(MeshHandleType handle)
{
    Mesh.Param.Purpose = handle;
    return &Mesh;
}

void MeshInfoRows(const MeshInfoType& info, char rows[4][64])
{
    std::snprintf(rows[0], 64, "Centre point (%3d, %3d).  ", static_cast<int>(info.CentreX),
                  static_cast<int>(info.CentreY));
    std::snprintf(rows[1], 64, "Spacing (%.1f, %.1f).  ", info.SpacingX, info.SpacingY);
    std::snprintf(rows[2], 64, "Angle %.1lf        ", info.Angle);
    std::snprintf(rows[3], 64, "Orientation %.1lf        ", info.Orientation);
}

void ApMeshInfo(MeshInfoType* info, int vfs)
{
    if (!info) {
        Ap.ap_SetMeshInfo(static_cast<uint16_t>(vfs), nullptr);
        return;
    }
    std::memcpy(&MeshInfo, info, sizeof MeshInfo);
    if (MeshInfo.RightAngle) MeshInfo.Angle = 90.0;
    if (MeshInfo.EqualSpacing) {
        // The spacing the user moved more since the last report wins.
        if (std::fabs(MeshInfo.SpacingX - g_lastSpacingX) > std::fabs(MeshInfo.SpacingY - g_lastSpacingY))
            MeshInfo.SpacingY = MeshInfo.SpacingX;
        else
            MeshInfo.SpacingX = MeshInfo.SpacingY;
    }
    g_lastSpacingX = MeshInfo.SpacingX;
    g_lastSpacingY = MeshInfo.SpacingY;
    std::memcpy(info, &MeshInfo, sizeof MeshInfo);
    if (Mesh.InfoOpen) {
        char rows[kInfoRows][64];
        MeshInfoRows(MeshInfo, rows);
        for (int r = 0; r < kInfoRows; ++r) PrintInWindow(Mesh.InfoWindow, 0, r, "%s", rows[r]);
    }
    Ap.ap_SetMeshInfo(static_cast<uint16_t>(vfs), &MeshInfo);
}

void ResetMeshState()
{
    Mesh = CMesh{};
    MeshInfo = MeshInfoType{};
    g_lastSpacingX = g_lastSpacingY = 0;
}
