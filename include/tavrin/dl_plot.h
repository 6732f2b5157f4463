/* Tavrin Processing: the spectrum plot window - its settings and the log axis checks.
 *
 * A spectrum, profile or histogram is plotted in the current frame store at the placement
 * cursor, like an image: round limits, ticks, number labels (K, M, B for thousands, millions,
 * billions), optional grids and log axes, titles from the data, forward and backward ramps in
 * two colours. */
#ifndef TAVRIN_DL_PLOT_H
#define TAVRIN_DL_PLOT_H

#include "tavrin/types.h"

#pragma pack(push, 1)
/* The settings of the default plot. AutoAxes holds a 16-bit value (bit 0: X limits by the
 * round-limits rule, bit 1: the same for Y) in a 32-bit slot. The font heights are the stored
 * heights divided by 6. */
typedef struct wint_PlotParamType {
    int32_t PlotWidth;          /*   0  frame pixels */
    int32_t PlotHeight;         /*   4 */
    int32_t LogAxisX;           /*   8  logarithmic axes wanted */
    int32_t LogAxisY;           /*  12 */
    uint32_t AutoAxes;          /*  16  a u16 value */
    uint16_t GridX;             /*  20 */
    uint16_t GridY;             /*  22 */
    uint16_t BoxAxes;           /*  24  non-zero: axes along the low edges */
    float MinX;                 /*  26  fixed limits, without auto scale */
    float MinY;                 /*  30 */
    float MaxX;                 /*  34 */
    float MaxY;                 /*  38 */
    float TickStepX;            /*  42 */
    float TickStepY;            /*  46 */
    TvLogFont TitleFont;        /*  50 */
    TvLogFont AxisTitleFont;    /* 110 */
    TvLogFont NumberFont;       /* 170 */
    uint32_t TitleColour;       /* 230  COLORREF of each font */
    uint32_t AxisTitleColour;   /* 234 */
    uint32_t NumberColour;      /* 238 */
} TAVRIN_PACKED wint_PlotParamType;
#pragma pack(pop)

#ifdef __cplusplus
static_assert(sizeof(wint_PlotParamType) == 242, "plot settings are 242 bytes");
static_assert(offsetof(wint_PlotParamType, PlotWidth) == 0, "PlotWidth at 0");
static_assert(offsetof(wint_PlotParamType, PlotHeight) == 4, "PlotHeight at 4");
static_assert(offsetof(wint_PlotParamType, LogAxisX) == 8, "LogAxisX at 8");
static_assert(offsetof(wint_PlotParamType, LogAxisY) == 12, "LogAxisY at 12");
static_assert(offsetof(wint_PlotParamType, AutoAxes) == 16, "AutoAxes at 16");
static_assert(offsetof(wint_PlotParamType, GridX) == 20, "GridX at 20");
static_assert(offsetof(wint_PlotParamType, GridY) == 22, "GridY at 22");
static_assert(offsetof(wint_PlotParamType, BoxAxes) == 24, "BoxAxes at 24");
static_assert(offsetof(wint_PlotParamType, MinX) == 26, "MinX at 26");
static_assert(offsetof(wint_PlotParamType, MinY) == 30, "MinY at 30");
static_assert(offsetof(wint_PlotParamType, MaxX) == 34, "MaxX at 34");
static_assert(offsetof(wint_PlotParamType, MaxY) == 38, "MaxY at 38");
static_assert(offsetof(wint_PlotParamType, TickStepX) == 42, "TickStepX at 42");
static_assert(offsetof(wint_PlotParamType, TickStepY) == 46, "TickStepY at 46");
static_assert(offsetof(wint_PlotParamType, TitleFont) == 50, "TitleFont at 50");
static_assert(offsetof(wint_PlotParamType, AxisTitleFont) == 110, "AxisTitleFont at 110");
static_assert(offsetof(wint_PlotParamType, NumberFont) == 170, "NumberFont at 170");
static_assert(offsetof(wint_PlotParamType, TitleColour) == 230, "TitleColour at 230");
static_assert(offsetof(wint_PlotParamType, AxisTitleColour) == 234, "AxisTitleColour at 234");
static_assert(offsetof(wint_PlotParamType, NumberColour) == 238, "NumberColour at 238");
#endif

/* The record copied whole. Set swaps reversed limits and keeps each tick step at a hundredth
 * of its range at least. */
TAVRIN_API void dl_GetPlotParam(wint_PlotParamType* param);
TAVRIN_API void dl_SetPlotParam(const wint_PlotParamType* param);
/* Whether the current spectrum allows the log axes that are wanted: a message box names the
 * axis that holds a value of 0 or below; the settings stay as they were. */
TAVRIN_API void dl_CheckLogAxesX(void);
TAVRIN_API void dl_CheckLogAxesY(void);
TAVRIN_API void dl_CheckLogAxesXY(void);
/* 1 when the current item is a ramp that goes out and back (AcqMode 15 or 16, 51 with LMCMode
 * 1, or 21 with LapFlag set), else 0. */
TAVRIN_API int32_t dl_IsLapSpec(void);

#endif
