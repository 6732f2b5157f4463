// The colour parameters: the current table, the settable colours, the source of an image's
// colours in True-RGB mode.
//
// Index 33 of the palette is the colour set by ColourSet. Index 34 shows the selected
// settable colour: ColourDefine, and every read or set of the parameters, copy it there.
#pragma once

#include <cstdint>

#include "tavrin/dl_colour.h"
#include "tavrin/image_header.h"

constexpr int kSetColourIndex = 33;
constexpr int kSelectedColourIndex = 34;
constexpr int kSettableColours = 18;
constexpr int32_t kColourSourceImage = 2;   // True-RGB: the image's own colour planes

extern int16_t ColourItem;      // the selected settable colour
extern int32_t ColourSource;

// The palette index of settable colour `item`; any other item reports
// "GetColurLUTIndex (%d)" and gives index 0.
int GetColurLUTIndex(int item);

void GetColourParam(wint_ColourParamType* param);
void SetColourParam(const wint_ColourParamType* param);
void ColourSet(int red, int green, int blue);
void ColourDefine(int red, int green, int blue);
// Copies the current table of the store into the current item's colour planes and says so.
void CopyColourTableToImage();

// Copies table `table` of the store into the item's own colour planes (low bytes).
void CopyColourTableToItem(ImageHeaderType* item, int table);
// Brings table `number` of the store into effect: SelectColourTable, and in True-RGB mode
// with ColourSource 2 and a current item also the item's own colour planes.
void PutColourTableIntoEffect(int number);

void ResetColourParamState();
