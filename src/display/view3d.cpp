#include "display/view3d.h"
#include "files/tiff_read.h"
#include "host/ap_callbacks.h"
#include "host/errors.h"
#include "host/prompts.h"
#include "host/text.h"
#include "store/data_list.h"
#include "store/data_list_select.h"
#include "store/image_header.h"
#include "store/units.h"
#include "store/value_text.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstring>

namespace {

static_assert(sizeof(C3DParam::View3DBlock) == sizeof(ImageHeaderType::View3DBlock), "the 3-D block is 446 bytes");

// The parameters of the view handed over after a load; they live as long as the library.
C3DParam g_loadedView;

bool IsLengthSource(uint32_t dataSource) { return dataSource == 1 || dataSource == 25 || dataSource == 26; }

int32_t FirstWord(const uint8_t* block)
{
    int32_t word;
    std::memcpy(&word, block, sizeof word);
    return word;
}

} // namespace

void Populate3DParam(C3DParam* param, const ImageHeaderType* image)
{
    if (!param || !image) {
        ProgramError("Populate3DParam");
        return;
    }
    std::memset(param, 0, sizeof *param);
    std::memcpy(param->View3DBlock, image->View3DBlock, sizeof param->View3DBlock);
    param->DataId = image->DataId;
    param->nx = image->nx;
    param->ny = image->ny;
    param->PixData = image->PixData;
    const double lo = GetImageDataValue(1, 0.0f, image), hi = GetImageDataValue(1, 65535.0f, image);
    const double height = std::fabs(hi - lo);
    const double sizeX = image->ImageSizeX, sizeY = image->ImageSizeY;
    const bool lengths = IsLengthSource(image->DataSource) && image->SPMData && !image->FFTData;
    double magnitude = std::max(std::fabs(sizeX), std::fabs(sizeY));
    if (lengths) magnitude = std::max(magnitude, height);
    double sizeDivisor = 1.0;
    const int sizeExponent = ChooseUnitScale(magnitude, &sizeDivisor);
    param->SizeX = static_cast<float>(sizeX / sizeDivisor);
    param->SizeY = static_cast<float>(sizeY / sizeDivisor);
    strncpy0(param->SizeUnit, UnitsZ(sizeExponent, 0), sizeof param->SizeUnit);
    if (lengths) {
        param->Height = static_cast<float>(height / sizeDivisor);
        strncpy0(param->HeightUnit, param->SizeUnit, sizeof param->HeightUnit);
    } else {
        double heightDivisor = 1.0;
        const int heightExponent = ChooseUnitScale(height, &heightDivisor);
        param->Height = static_cast<float>(height / heightDivisor);
        strncpy0(param->HeightUnit, GetImageUnitStr(image, heightExponent, 0), sizeof param->HeightUnit);
    }
}

int Get3DParam(C3DParam* param, int fromCurrent, int clear)
{
    if (!param) {
        ProgramError("dl_Get3DParam p=null");
        return 1;
    }
    ImageHeaderType* image = nullptr;
    if (fromCurrent) {
        image = CurrentItem;
        if (!image || !CheckHeaderIsImageType(image) || !image->PixData) {
            Error(ERR_NO_IMAGES);
            return 1;
        }
        if (View3DOpen(image)) {
            Error(ERR_ONE_3D_VIEW);
            return 1;
        }
        if (FirstWord(image->View3DBlock) == 0) DefaultView3DBlock(image->View3DBlock);
    } else {
        const uint32_t id = param->DataId;
        image = FindItemById(id);
        if (!image || !CheckHeaderIsImageType(image) || !image->PixData) {
            ProgramError("dl_Get3DParam ImId=%d", static_cast<int>(id));
            return 1;
        }
        CurrentItem = image;
        DisplayCurrentItem();
    }
    if (clear) {
        const int16_t open = View3DOpen(image);
        DefaultView3DBlock(image->View3DBlock);
        SetView3DOpen(image, open);
    }
    if (fromCurrent) SetView3DOpen(image, 1);
    Populate3DParam(param, image);
    return 0;
}

void Set3DParam(const C3DParam* param)
{
    if (!param) {
        ProgramError("dl_Set3DPAram p=null");
        return;
    }
    const uint32_t id = param->DataId;
    ImageHeaderType* image = FindItemById(id);
    if (!image || !CheckHeaderIsImageType(image)) {
        ProgramError("dl_Set3DParam ImId=%d %p", static_cast<int>(id), static_cast<const void*>(param));
        return;
    }
    std::memcpy(image->View3DBlock, param->View3DBlock, sizeof image->View3DBlock);
}

int SelectImage3D(C3DParam* param, char* text)
{
    if (!param || !text) {
        ProgramError("dl_3D_SelectImage");
        return -1;
    }
    ImageHeaderType* image = SelectDataByHost(0, SELECT_IMAGES);
    if (!image) return -1;
    std::snprintf(text, TV_3D_SELECT_TEXT_CHARS, "%d) %.*s", static_cast<int>(image->DataId),
                  static_cast<int>(sizeof image->Title), image->Title);
    param->DataId = image->DataId;
    return static_cast<int>(image->DataId);
}

void Open3DViewOfLoadedItem(ImageHeaderType* item)
{
    if (!item || FindFileLoad || ReplayFlag) return;
    Populate3DParam(&g_loadedView, item);
    Ap.ap_Open3DView(&g_loadedView, 1);
}

void ResetView3DState() { std::memset(&g_loadedView, 0, sizeof g_loadedView); }
