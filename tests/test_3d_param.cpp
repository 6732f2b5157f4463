// The parameters of the host's 3-D view: filling them from an image, writing the view settings
// back, picking an image, and the hand-off of a loaded 3-D file.
#include "test_render_support.h"

#include "display/view3d.h"
#include "files/tiff_read.h"
#include "files/tiff_write.h"

#include <cstdio>
#include <cstring>

namespace {

class View3DParamTest : public RenderTest {
protected:
    ImageHeaderType* Topography(const char* title = "Topo")
    {
        ImageHeaderType* image = AddImage(64, 32, [](int x, int y) { return static_cast<uint16_t>(x * 500 + y); }, title);
        image->SPMData = 1;
        image->ImageSizeX = 5000.0f;
        image->ImageSizeY = 2500.0f;
        image->Zlo = 0.0f;
        image->Zhi = 20.0f;
        return image;
    }
};

} // namespace

TEST_F(View3DParamTest, TheCurrentImageFillsTheParametersAndOpensItsView)
{
    ImageHeaderType* image = Topography();
    image->View3DBlock[10] = 0x77;
    C3DParam p;
    std::memset(&p, 0, sizeof p);
    ASSERT_EQ(dl_Get3DParam(&p, 1, 0), 0);
    EXPECT_EQ(p.DataId, image->DataId);
    EXPECT_EQ(p.nx, 64);
    EXPECT_EQ(p.ny, 32);
    EXPECT_EQ(p.PixData, image->PixData);
    EXPECT_EQ(p.View3DBlock[10], 0x77);
    EXPECT_EQ(View3DOpen(image), 1);
    // Size and height in one unit: the larger size, 5000 nm, chooses micrometres.
    EXPECT_FLOAT_EQ(p.SizeX, 5.0f);
    EXPECT_FLOAT_EQ(p.SizeY, 2.5f);
    EXPECT_FLOAT_EQ(p.Height, 0.02f);
    EXPECT_STREQ(p.SizeUnit, "um");
    EXPECT_STREQ(p.HeightUnit, "um");
}

TEST_F(View3DParamTest, OnlyOneViewPerImage)
{
    Topography();
    C3DParam p{};
    ASSERT_EQ(dl_Get3DParam(&p, 1, 0), 0);
    host.ClearCalls();
    EXPECT_EQ(dl_Get3DParam(&p, 1, 0), 1);
    ASSERT_EQ(host.messageBoxes.size(), 1u);
    EXPECT_EQ(host.messageBoxes[0].text, "Only one 3D display window allowed per image");
}

TEST_F(View3DParamTest, AnEmptyViewBlockTakesTheBuiltInOne)
{
    ImageHeaderType* image = Topography();
    std::memset(image->View3DBlock, 0, sizeof image->View3DBlock);
    uint8_t builtIn[446];
    DefaultView3DBlock(builtIn);
    C3DParam p{};
    ASSERT_EQ(dl_Get3DParam(&p, 1, 0), 0);
    // The built-in block with the view marked open.
    uint8_t expected[446];
    std::memcpy(expected, builtIn, sizeof expected);
    std::memcpy(expected + kView3DOpenOffset, p.View3DBlock + kView3DOpenOffset, 2);
    EXPECT_EQ(std::memcmp(p.View3DBlock, expected, sizeof expected), 0);
    EXPECT_NE(std::memcmp(p.View3DBlock, std::vector<uint8_t>(446, 0).data(), 446), 0);
}

TEST_F(View3DParamTest, AnItemByIdBecomesCurrentAndIsShown)
{
    FSState.ImageDisplaySize = 256;
    ImageHeaderType* first = Topography("First");
    ImageHeaderType* second = Topography("Second");
    ASSERT_EQ(CurrentItem, second);
    C3DParam p{};
    p.DataId = first->DataId;
    ASSERT_EQ(dl_Get3DParam(&p, 0, 0), 0);
    EXPECT_EQ(CurrentItem, first);
    EXPECT_EQ(p.nx, 64);
    EXPECT_EQ(GetFSContentsCoords(10, 10), first);
    // An unknown id fills nothing.
    p.DataId = 9999;
    EXPECT_EQ(dl_Get3DParam(&p, 0, 0), 1);
    EXPECT_EQ(CurrentItem, first);
}

TEST_F(View3DParamTest, SettingCopiesTheBlockBackIntoTheItemOfItsId)
{
    ImageHeaderType* image = Topography();
    C3DParam p{};
    ASSERT_EQ(dl_Get3DParam(&p, 1, 0), 0);
    p.View3DBlock[20] = 0x42;
    p.View3DBlock[445] = 0x99;
    dl_Set3DParam(&p);
    EXPECT_EQ(image->View3DBlock[20], 0x42);
    EXPECT_EQ(image->View3DBlock[445], 0x99);
}

TEST_F(View3DParamTest, SettingWithoutRecordOrWithAnUnknownIdIsReported)
{
    dl_Set3DParam(nullptr);
    EXPECT_TRUE(LogHasProgramError("dl_Set3DPAram p=null"));
    C3DParam p{};
    p.DataId = 4242;
    dl_Set3DParam(&p);
    char text[64];
    std::snprintf(text, sizeof text, "dl_Set3DParam ImId=4242 %p", static_cast<const void*>(&p));
    EXPECT_TRUE(LogHasProgramError(text)) << text;
}

TEST_F(View3DParamTest, SelectingAnImageWritesItsNumberAndTitle)
{
    ImageHeaderType* first = Topography("First");
    Topography("Second");
    host.selectAnswers.push_back(0);
    C3DParam p{};
    char text[TV_3D_SELECT_TEXT_CHARS] = "";
    const int id = dl_3D_SelectImage(&p, text);
    ASSERT_GE(id, 0);
    ImageHeaderType* picked = FindItemById(static_cast<uint32_t>(id));
    ASSERT_NE(picked, nullptr);
    EXPECT_EQ(p.DataId, static_cast<uint32_t>(id));
    char expected[TV_3D_SELECT_TEXT_CHARS];
    std::snprintf(expected, sizeof expected, "%d) %s", id, picked->Title);
    EXPECT_STREQ(text, expected);
    EXPECT_TRUE(picked == first || std::strcmp(picked->Title, "Second") == 0);
    // Cancelled: -1, nothing written.
    std::strcpy(text, "unchanged");
    EXPECT_EQ(dl_3D_SelectImage(&p, text), -1);
    EXPECT_STREQ(text, "unchanged");
}

TEST_F(View3DParamTest, AFileWithThreeDDisplayModeIsHandedToTheHostAfterLoading)
{
    FSState.ImageDisplaySize = 256;
    ImageHeaderType* image = AddImage(128, 128, [](int x, int y) { return static_cast<uint16_t>(x * 300 + y * 7); }, "Saved");
    SetView3DOpen(image, 1);
    ASSERT_EQ(saveTiffImage(image, Path("view.tif").c_str(), 0), 0);
    host.ClearCalls();
    ASSERT_EQ(LoadImageFile(Path("view.tif").c_str(), 0, 1, 0), 0);
    EXPECT_EQ(CurrentItem->DisplayMode, 4u);
    ASSERT_EQ(host.Count("ap_Open3DView"), 1);
    EXPECT_EQ(host.Calls("ap_Open3DView")[0].args, "set 1");
    // Quiet loads are not shown and not handed over.
    host.ClearCalls();
    ASSERT_EQ(LoadImageFile(Path("view.tif").c_str(), 0, 1, 1), 0);
    EXPECT_EQ(host.Count("ap_Open3DView"), 0);
}
