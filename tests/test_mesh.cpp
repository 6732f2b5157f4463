// The mesh object: its records, initialisation with and without an image, the command run at
// the finish by purpose, and the host's reports.
#include "test_region_support.h"

#include "analysis/mesh.h"

#include <cstring>

namespace {

class MeshTest : public RegionTestBase {
protected:
    static void SetCorners(CMesh* mesh, RegionPoint p0, RegionPoint p1, RegionPoint p2)
    {
        mesh->Param.P0[0] = static_cast<int16_t>(p0.x);
        mesh->Param.P0[1] = static_cast<int16_t>(p0.y);
        mesh->Param.P1[0] = static_cast<int16_t>(p1.x);
        mesh->Param.P1[1] = static_cast<int16_t>(p1.y);
        mesh->Param.P2[0] = static_cast<int16_t>(p2.x);
        mesh->Param.P2[1] = static_cast<int16_t>(p2.y);
    }
};

} // namespace

TEST_F(MeshTest, RecordsHaveTheirSizesAndTheParametersHeadTheObject)
{
    EXPECT_EQ(sizeof(wint_MeshParamType), 64u);
    EXPECT_EQ(sizeof(MeshInfoType), 65u);
    EXPECT_EQ(offsetof(wint_MeshParamType, Frame), 52u);
    EXPECT_EQ(offsetof(MeshInfoType, EqualSpacing), 41u);
    CMesh* mesh = dl_GetMeshClass(TV_MESH_TRIM);
    EXPECT_EQ(static_cast<void*>(mesh), static_cast<void*>(&mesh->Param));
    EXPECT_EQ(mesh->Param.Purpose, TV_MESH_TRIM);
    EXPECT_EQ(dl_GetMeshClass(TV_MESH_LATTICE), mesh);
    EXPECT_EQ(mesh->Param.Purpose, TV_MESH_LATTICE);
}

TEST_F(MeshTest, WithoutAnImagePixelsAre512AndTheSizes0)
{
    CMesh* mesh = dl_GetMeshClass(TV_MESH_MAGNIFY);
    wint_MeshParamType p;
    std::memset(&p, 0x55, sizeof p);
    mesh->MeshInitialise(&p);
    EXPECT_EQ(p.PixelsX, 512);
    EXPECT_EQ(p.PixelsY, 512);
    EXPECT_EQ(p.SizeX, 0.0);
    EXPECT_EQ(p.SizeY, 0.0);
    EXPECT_EQ(p.Frame.left, 0);
    EXPECT_EQ(p.Frame.top, 0);
    EXPECT_EQ(p.Frame.right, 511);
    EXPECT_EQ(p.Frame.bottom, 511);
    EXPECT_EQ(p.Purpose, TV_MESH_MAGNIFY);
    EXPECT_EQ(p.LockAngle, 1);
    EXPECT_EQ(p.LockPlace, 1);
    EXPECT_EQ(p.Colour, IndexColour(22));
}

TEST_F(MeshTest, WithAnImageTheParametersDescribeItAndTheLatticeIsUnlocked)
{
    ImageHeaderType* image = AddCoded(128, 96);
    image->ImageSizeX = 40.0f;
    image->ImageSizeY = 30.0f;
    CMesh* mesh = dl_GetMeshClass(TV_MESH_LATTICE);
    wint_MeshParamType p{};
    mesh->MeshInitialise(&p);
    EXPECT_EQ(p.PixelsX, 128);
    EXPECT_EQ(p.PixelsY, 96);
    EXPECT_DOUBLE_EQ(p.SizeX, 40.0);
    EXPECT_DOUBLE_EQ(p.SizeY, 30.0);
    // The image was shown for the mesh, and the frame is its rectangle.
    EXPECT_EQ(p.Frame.left, FSState.ImageLeft);
    EXPECT_EQ(p.Frame.right, FSState.ImageRight);
    EXPECT_EQ(FSState.ImagePixelsX, 128);
    EXPECT_EQ(p.LockAngle + p.LockSize + p.LockShape + p.LockPlace, 0);
    dl_GetMeshClass(TV_MESH_UNIT_CELL)->MeshInitialise(&p);
    EXPECT_EQ(p.LockSize, 0);
    dl_GetMeshClass(TV_MESH_TRIM)->MeshInitialise(&p);
    EXPECT_EQ(p.LockShape, 1);
}

TEST_F(MeshTest, MeshFinishCancelledRunsNothingAndClearsPurpose)
{
    AddCoded(64, 64);
    for (int purpose : {TV_MESH_MAGNIFY, TV_MESH_TRIM, TV_MESH_LATTICE}) {
        CMesh* mesh = dl_GetMeshClass(purpose);
        SetCorners(mesh, {5, 5}, {40, 5}, {5, 40});
        mesh->MeshFinish(true);
        EXPECT_EQ(mesh->Param.Purpose, 0);
    }
    EXPECT_EQ(CountItems(), 1);
    EXPECT_TRUE(host.messageBoxes.empty());
}

TEST_F(MeshTest, AnUprightRectangleGoesToMagnifyNeverToDrift)
{
    ImageHeaderType* source = AddCoded(64, 64, "Mesh");
    CMesh* mesh = dl_GetMeshClass(TV_MESH_MAGNIFY);
    // P0 = (10, 10), P1 = (50, 10), P2 = (10, 40): opposite corner (50, 40).
    SetCorners(mesh, {10, 10}, {50, 10}, {10, 40});
    mesh->MeshFinish(false);
    EXPECT_EQ(mesh->Param.Purpose, 0);
    ImageHeaderType* result = CurrentItem;
    ASSERT_NE(result, source);
    EXPECT_EQ(LastHistoryCode(result), 46);
    EXPECT_TRUE(LogHas("Magnify (10,10) (50,40) in 'Mesh'.\n"));
    EXPECT_FALSE(LogHas("Drift correct"));
    // The other pair of sides along the axes: P1 below P0.
    CurrentItem = source;
    mesh = dl_GetMeshClass(TV_MESH_MAGNIFY);
    SetCorners(mesh, {10, 10}, {10, 40}, {50, 10});
    mesh->MeshFinish(false);
    EXPECT_EQ(LastHistoryCode(CurrentItem), 46);
    EXPECT_FALSE(LogHas("Drift correct"));
}

TEST_F(MeshTest, ALeaningParallelogramGoesToDriftCorrection)
{
    ImageHeaderType* source = AddCoded(64, 64, "Mesh");
    CMesh* mesh = dl_GetMeshClass(TV_MESH_MAGNIFY);
    SetCorners(mesh, {10, 10}, {50, 10}, {16, 40});
    mesh->MeshFinish(false);
    ASSERT_NE(CurrentItem, source);
    EXPECT_EQ(LastHistoryCode(CurrentItem), 49);
    EXPECT_TRUE(LogHas("Drift correct 'Mesh'.\n"));
    EXPECT_FALSE(LogHas("Magnify"));
}

TEST_F(MeshTest, TrimAndLatticePurposesRunTheirCommands)
{
    ImageHeaderType* source = AddCoded(64, 64);
    CMesh* mesh = dl_GetMeshClass(TV_MESH_TRIM);
    SetCorners(mesh, {10, 10}, {30, 10}, {10, 30});
    mesh->MeshFinish(false);
    EXPECT_EQ(LastHistoryCode(CurrentItem), 84);
    CurrentItem = source;
    mesh = dl_GetMeshClass(TV_MESH_LATTICE);
    SetCorners(mesh, {0, 0}, {8, 0}, {0, 8});
    host.messageBoxAnswers.push_back(TV_IDYES);
    mesh->MeshFinish(false);
    EXPECT_EQ(LastHistoryCode(CurrentItem), 80);
    EXPECT_EQ(LastLatticeResult().cells, 49);
    EXPECT_EQ(mesh->Param.Purpose, 0);
}

TEST_F(MeshTest, CopyToAndFromTheDialogMovesAllSixtyFourBytes)
{
    CMesh* mesh = dl_GetMeshClass(TV_MESH_TRIM);
    wint_MeshParamType p{};
    p.Purpose = TV_MESH_MAGNIFY;
    p.P2[1] = 77;
    p.SizeY = 2.5;
    p.Frame.bottom = 300;
    mesh->CopyMeshParamFromDlg(&p);
    wint_MeshParamType q{};
    mesh->CopyMeshParamToDlg(&q);
    EXPECT_EQ(std::memcmp(&p, &q, sizeof p), 0);
}

TEST_F(MeshTest, ReportWithRightAngleTakes90AndEqualSpacingFollowsTheSpacingThatMoved)
{
    dl_GetMeshClass(TV_MESH_UNIT_CELL)->MeshInitialise(nullptr);
    MeshInfoType info{};
    info.CentreX = 100;
    info.CentreY = 120;
    info.Angle = 72.5;
    info.Orientation = 12.25;
    info.SpacingX = 10.0;
    info.SpacingY = 10.0;
    info.RightAngle = 1;
    info.EqualSpacing = 1;
    info.Further[22] = 9;
    dl_ApMeshInfo(&info, 1);
    EXPECT_EQ(info.Angle, 90.0);
    EXPECT_EQ(info.SpacingX, 10.0);
    EXPECT_EQ(info.Further[22], 9);
    // X moved by 4, Y by 1: Y follows X.
    info.SpacingX = 14.0;
    info.SpacingY = 11.0;
    dl_ApMeshInfo(&info, 1);
    EXPECT_EQ(info.SpacingY, 14.0);
    EXPECT_EQ(MeshInfo.SpacingY, 14.0);
    // Y moved more: X follows Y.
    info.SpacingX = 14.5;
    info.SpacingY = 20.0;
    dl_ApMeshInfo(&info, 1);
    EXPECT_EQ(info.SpacingX, 20.0);
    // The rows of the information box, the last report.
    const auto rows = host.Calls("ap_PrintInWindow");
    ASSERT_GE(rows.size(), 4u);
    EXPECT_NE(rows[rows.size() - 4].args.find("Centre point (100, 120).  "), std::string::npos);
    EXPECT_NE(rows[rows.size() - 3].args.find("Spacing (20.0, 20.0).  "), std::string::npos);
    EXPECT_NE(rows[rows.size() - 2].args.find("Angle 90.0        "), std::string::npos);
    EXPECT_NE(rows[rows.size() - 1].args.find("Orientation 12.2        "), std::string::npos);
    // The corrected report goes to the host's overlay.
    const auto overlay = host.Calls("ap_SetMeshInfo");
    ASSERT_EQ(overlay.size(), 3u);
    EXPECT_EQ(overlay.back().args, "1 set");
}

TEST_F(MeshTest, WithoutEqualSpacingTheSpacingsStayAndANullReportRemovesTheOverlay)
{
    MeshInfoType info{};
    info.SpacingX = 3.0;
    info.SpacingY = 7.0;
    info.Angle = 60.0;
    dl_ApMeshInfo(&info, 2);
    EXPECT_EQ(info.SpacingX, 3.0);
    EXPECT_EQ(info.SpacingY, 7.0);
    EXPECT_EQ(info.Angle, 60.0);
    // The information box is closed: no rows.
    EXPECT_EQ(host.Count("ap_PrintInWindow"), 0);
    dl_ApMeshInfo(nullptr, 2);
    EXPECT_EQ(host.Calls("ap_SetMeshInfo").back().args, "2 null");
}
