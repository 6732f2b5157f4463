/* Tavrin Processing: colour tables, the settable colours and the colour table file. */
#ifndef TAVRIN_DL_COLOUR_H
#define TAVRIN_DL_COLOUR_H

#include "tavrin/types.h"

#pragma pack(push, 1)

/* The colour parameters, 16 bytes. */
typedef struct wint_ColourParamType {
    int16_t ColourTableNo;      /* the current colour table, 0 to 7 (taken modulo 8) */
    int16_t ColourItem;         /* number in the list of settable colours, 0 to 17 */
    int32_t ColourSource;       /* 2: in True-RGB mode a selected table also goes to the image's
                                   own colour planes, and those are used for display */
    int32_t RGBItemState1;      /* on reading: 1 in True-RGB mode with a current item, else 2 */
    int32_t RGBItemState2;      /* the same */
} TAVRIN_PACKED wint_ColourParamType;

#pragma pack(pop)

#ifdef __cplusplus
static_assert(sizeof(wint_ColourParamType) == 16, "colour parameters are 16 bytes");
static_assert(offsetof(wint_ColourParamType, ColourItem) == 2, "ColourItem at 2");
static_assert(offsetof(wint_ColourParamType, ColourSource) == 4, "ColourSource at 4");
static_assert(offsetof(wint_ColourParamType, RGBItemState1) == 8, "RGBItemState1 at 8");
static_assert(offsetof(wint_ColourParamType, RGBItemState2) == 12, "RGBItemState2 at 12");
#endif

/* Fills the record; copies the colour of the selected item into index 34 of the current
 * output table. */
TAVRIN_API void dl_GetColourParam(wint_ColourParamType* param);
/* Takes the record, selects the table, copies the selected item's colour into index 34 and
 * redraws the colour bar. */
TAVRIN_API void dl_SetColourParam(const wint_ColourParamType* param);
/* Loads a 768-byte colour table file (up to 260 characters of path) into the current table:
 * entries 36 to 255 are taken, the rest keep their colours; the table is then selected. In
 * True-RGB mode with a current item the item is shown again. */
TAVRIN_API void dl_pb_ColourOpen(const char* path);
/* Writes the current table as a 768-byte colour table file. */
TAVRIN_API void dl_pb_ColourSave(const char* path);
/* Sets colour index 33 in the current output table and in the current table. */
TAVRIN_API void dl_pb_ColourSet(int16_t red, int16_t green, int16_t blue);
/* Sets the selected settable colour, and index 34 of the current output table. */
TAVRIN_API void dl_pb_ColourDefine(int16_t red, int16_t green, int16_t blue);
/* Copies the current table into the current item's own colour planes. */
TAVRIN_API void dl_pb_Colour_CopyToImage(void);

#endif
