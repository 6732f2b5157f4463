#include "display/colour_param.h"
#include "display/colour_bar.h"
#include "display/lut.h"
#include "display/palette.h"
#include "host/errors.h"
#include "host/log.h"
#include "host/prompts.h"
#include "store/data_list.h"

int16_t ColourItem = 0;
int32_t ColourSource = 0;

namespace {

// Settable colour number -> palette index.
const int kSettableColourIndex[kSettableColours] = {16, 17, 18, 21, 22, 23, 26, 27, 30,
                                                    32, 7,  8,  9,  10, 12, 13, 12, 14};

// Index 34 of the current output table takes the colour of the selected settable colour.
void ShowSelectedColour()
{
    int table = CurrentOutputLUT();
    int red = 0, green = 0, blue = 0;
    if (GetOutputLUTEntry(table, GetColurLUTIndex(ColourItem), &red, &green, &blue) != 0) return;
    SetOutputLUTEntry(table, kSelectedColourIndex, red, green, blue);
}

} // namespace

int GetColurLUTIndex(int item)
{
    if (item >= 0 && item < kSettableColours) return kSettableColourIndex[item];
    ProgramError("GetColurLUTIndex (%d)", item);
    return 0;
}

void GetColourParam(wint_ColourParamType* param)
{
    if (!param) {
        ProgramError("dl_GetColourParam");
        return;
    }
    int32_t itemState = (TrueRGB && CurrentItem) ? 1 : 2;
    param->ColourTableNo = static_cast<int16_t>(ColourTableNo);
    param->ColourItem = ColourItem;
    param->ColourSource = ColourSource;
    param->RGBItemState1 = itemState;
    param->RGBItemState2 = itemState;
    ShowSelectedColour();
}

void SetColourParam(const wint_ColourParamType* param)
{
    if (!param) {
        ProgramError("dl_SetColourParam");
        return;
    }
    ColourItem = param->ColourItem;
    ColourSource = param->ColourSource;
    int table = param->ColourTableNo;
    ColourTableNo = ((table % N_OLUTS) + N_OLUTS) % N_OLUTS;
    PutColourTableIntoEffect(ColourTableNo);
    ShowSelectedColour();
    RedrawColourBar();
}

void ColourSet(int red, int green, int blue)
{
    if (!CheckColourValues(red, green, blue)) return;
    SetOutputLUTEntry(CurrentOutputLUT(), kSetColourIndex, red, green, blue);
    SetColourTableEntry(ColourTableNo, kSetColourIndex, red, green, blue);
    RedrawColourBar();
}

void ColourDefine(int red, int green, int blue)
{
    if (!CheckColourValues(red, green, blue)) return;
    int index = GetColurLUTIndex(ColourItem);
    int table = CurrentOutputLUT();
    SetOutputLUTEntry(table, index, red, green, blue);
    SetOutputLUTEntry(table, kSelectedColourIndex, red, green, blue);
    SetColourTableEntry(ColourTableNo, index, red, green, blue);
    Log("ColourDefine (%d %d %d)\n", red, green, blue);
}

void CopyColourTableToItem(ImageHeaderType* item, int table)
{
    uint16_t red[kLUTEntries], green[kLUTEntries], blue[kLUTEntries];
    if (!item || GetColourTable(table, red, green, blue) != 0) return;
    PlaneToBytes(red, item->LutRed);
    PlaneToBytes(green, item->LutGreen);
    PlaneToBytes(blue, item->LutBlue);
}

void CopyColourTableToImage()
{
    if (!CurrentItem) {
        ProgramError("dl_pb_Colour_CopyToImage");
        return;
    }
    CopyColourTableToItem(CurrentItem, ColourTableNo);
    ShowInfo("Look up table copied to image");
}

void PutColourTableIntoEffect(int number)
{
    int table = SelectColourTable(number);
    if (TrueRGB && ColourSource == kColourSourceImage && CurrentItem) CopyColourTableToItem(CurrentItem, table);
}

void ResetColourParamState()
{
    ColourItem = 0;
    ColourSource = 0;
}
