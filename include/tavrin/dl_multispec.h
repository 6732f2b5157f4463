/* Tavrin Processing: many spectra overlaid in one plot, each with its own shift and gain, with
 * four line markers; the arrangement saved as a text file and loaded again.
 *
 * The host's dialog edits a wint_MultiSpecParamType and hands it to the one CMultiSpecDisp
 * object, reached with dl_GetMultiSpecDisp(). A spectrum that runs out and back counts as two
 * items (Ramp 1 and 2).
 *
 * Items holds a pointer: the record is host-visible on 64-bit as laid out here (138 bytes), not
 * a file format. */
#ifndef TAVRIN_DL_MULTISPEC_H
#define TAVRIN_DL_MULTISPEC_H

#include "tavrin/types.h"

/* Widths of the texts of an item, 66 bytes in all; each text ends in a 0 byte. */
#define TV_MULTISPEC_TITLE 16
#define TV_MULTISPEC_FILE 13
#define TV_MULTISPEC_DIRECTORY 9
#define TV_MULTISPEC_DESCRIPTION 9
#define TV_MULTISPEC_DIRECTION 19

#pragma pack(push, 1)
typedef struct MultiSpecParam_ItemType {
    int32_t ID;                                   /*   0 DataId of the spectrum */
    int16_t Ramp;                                 /*   4 0 one-way, 1 first, 2 second ramp */
    uint16_t Matched;                             /*   6 */
    uint16_t Selected;                            /*   8 */
    uint32_t Colour;                              /*  10 red in the low byte */
    char Title[TV_MULTISPEC_TITLE];               /*  14 */
    char File[TV_MULTISPEC_FILE];                 /*  30 without its extension */
    char Directory[TV_MULTISPEC_DIRECTORY];       /*  43 */
    char Description[TV_MULTISPEC_DESCRIPTION];   /*  52 */
    char Direction[TV_MULTISPEC_DIRECTION];       /*  61 */
    int32_t Np;                                   /*  80 */
    float MinX, MaxX, MinY, MaxY;                 /*  84 */
    double ShiftX, ShiftY, GainX, GainY;          /* 100 */
} TAVRIN_PACKED MultiSpecParam_ItemType;

typedef struct wint_MultiSpecParamType {
    int16_t MatchYUnits;        /*   0 */
    int16_t MatchScanMode;      /*   2 */
    int16_t LockGain;           /*   4 */
    int16_t ShowAverages;       /*   6 */
    int16_t AutoAxisX;          /*   8 */
    int16_t AutoAxisY;          /*  10 */
    double AxisX[3];            /*  12 low, high, step */
    double AxisY[3];            /*  36 */
    int16_t DisplayUnitsX;      /*  60 */
    int16_t DisplayUnitsY;      /*  62 */
    int16_t MarkerOn[4];        /*  64 Y1, X1, Y2, X2 */
    double MarkerPos[4];        /*  72 */
    uint32_t MarkerColour[4];   /* 104 */
    int32_t PrimaryID;          /* 120 */
    int16_t LockShift;          /* 124 */
    int32_t NoOfItems;          /* 126 */
    MultiSpecParam_ItemType* Items;   /* 130 */
} TAVRIN_PACKED wint_MultiSpecParamType;
#pragma pack(pop)

#ifdef __cplusplus
static_assert(sizeof(MultiSpecParam_ItemType) == 132, "a multi-spectra item is 132 bytes");
static_assert(offsetof(MultiSpecParam_ItemType, Ramp) == 4, "Ramp at 4");
static_assert(offsetof(MultiSpecParam_ItemType, Matched) == 6, "Matched at 6");
static_assert(offsetof(MultiSpecParam_ItemType, Selected) == 8, "Selected at 8");
static_assert(offsetof(MultiSpecParam_ItemType, Colour) == 10, "Colour at 10");
static_assert(offsetof(MultiSpecParam_ItemType, Title) == 14, "Title at 14");
static_assert(offsetof(MultiSpecParam_ItemType, File) == 30, "File at 30");
static_assert(offsetof(MultiSpecParam_ItemType, Directory) == 43, "Directory at 43");
static_assert(offsetof(MultiSpecParam_ItemType, Description) == 52, "Description at 52");
static_assert(offsetof(MultiSpecParam_ItemType, Direction) == 61, "Direction at 61");
static_assert(offsetof(MultiSpecParam_ItemType, Np) == 80, "Np at 80");
static_assert(offsetof(MultiSpecParam_ItemType, MinX) == 84, "MinX at 84");
static_assert(offsetof(MultiSpecParam_ItemType, MaxY) == 96, "MaxY at 96");
static_assert(offsetof(MultiSpecParam_ItemType, ShiftX) == 100, "ShiftX at 100");
static_assert(offsetof(MultiSpecParam_ItemType, GainY) == 124, "GainY at 124");
static_assert(sizeof(wint_MultiSpecParamType) == 130 + sizeof(void*), "the settings are 138 bytes on 64-bit");
static_assert(offsetof(wint_MultiSpecParamType, AxisX) == 12, "AxisX at 12");
static_assert(offsetof(wint_MultiSpecParamType, AxisY) == 36, "AxisY at 36");
static_assert(offsetof(wint_MultiSpecParamType, DisplayUnitsX) == 60, "DisplayUnitsX at 60");
static_assert(offsetof(wint_MultiSpecParamType, MarkerOn) == 64, "MarkerOn at 64");
static_assert(offsetof(wint_MultiSpecParamType, MarkerPos) == 72, "MarkerPos at 72");
static_assert(offsetof(wint_MultiSpecParamType, MarkerColour) == 104, "MarkerColour at 104");
static_assert(offsetof(wint_MultiSpecParamType, PrimaryID) == 120, "PrimaryID at 120");
static_assert(offsetof(wint_MultiSpecParamType, LockShift) == 124, "LockShift at 124");
static_assert(offsetof(wint_MultiSpecParamType, NoOfItems) == 126, "NoOfItems at 126");
static_assert(offsetof(wint_MultiSpecParamType, Items) == 130, "Items at 130");
#endif

#ifdef __cplusplus
class CMultiSpecDisp;
/* The one multi-spectra object of the library. */
TAVRIN_API CMultiSpecDisp* dl_GetMultiSpecDisp(void);
#endif

#endif
