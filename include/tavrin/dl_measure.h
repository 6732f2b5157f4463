/* Tavrin Processing: the measuring markers of the Measure dialog.
 *
 * The host's Measure dialog talks to the one measuring object of the library, reached with
 * dl_GetMeasureClass(). The head of that object, wint_MeasureParamType, is exchanged whole
 * with the dialog; the markers are an array of MeasureMarkerType that the object owns.
 *
 * 64-bit layout. Both records are byte-packed. On the old 32-bit system a pointer took 4
 * bytes, which made the head 216 bytes and a marker 118 bytes. Here every pointer (hWnd,
 * Markers, AveragedY of the head; Points and SpecY of a marker) takes 8 bytes, in the same
 * order, so the head is 228 bytes and a marker 126 bytes. The offsets of every field are
 * checked below. The records live in memory between host and library only; no file holds
 * them.
 */
#ifndef TAVRIN_DL_MEASURE_H
#define TAVRIN_DL_MEASURE_H

#include "tavrin/types.h"

/* Categories of the statistics arrays. */
#define TV_MEASURE_POINT 0
#define TV_MEASURE_LINE 1
#define TV_MEASURE_AREA 2
#define TV_MEASURE_WHOLE 3

/* Marker kinds (MeasureMarkerType.Type). */
#define TV_MARKER_POINT 1
#define TV_MARKER_LINE 2
#define TV_MARKER_RECT 4
#define TV_MARKER_CIRCLE 8
#define TV_MARKER_POLYGON 16

/* Base plane rules of the volume (BaseMode). */
#define TV_BASE_NONE 1
#define TV_BASE_ABOVE 2
#define TV_BASE_BELOW 4
#define TV_BASE_BOTH 8

/* The message the measuring object posts to the dialog's window to be drawn again. */
#define TV_MEASURE_REDRAW_MESSAGE 0x493

#pragma pack(push, 1)
/* A point of a marker, in image pixels. */
typedef struct POINTs {
    int16_t x;
    int16_t y;
} TAVRIN_PACKED POINTs;

typedef struct MeasureMarkerType {
    int32_t ImageNo;        /*   0 data list number of the image it belongs to */
    int32_t ID;             /*   4 */
    int32_t Type;           /*   8 TV_MARKER_ */
    int32_t Colour;         /*  12 RGB, red in the low byte */
    char Name[40];          /*  16 */
    int32_t NoOfPoints;     /*  56 */
    POINTs* Points;         /*  60 owned by the marker */
    POINTs Seed;            /*  68 polygon: a point inside */
    uint8_t CalcValid;      /*  72 */
    float Mean;             /*  73 */
    float Min;              /*  77 */
    float Max;              /*  81 */
    float LenArea;          /*  85 */
    float RMS;              /*  89 */
    float Ra;               /*  93 */
    float SurfLenArea;      /*  97 */
    float VolCSA;           /* 101 */
    uint8_t Selected;       /* 105 */
    float* SpecY;           /* 106 ni values, or null */
    float SpecYMin;         /* 114 */
    float SpecYMax;         /* 118 */
    int32_t SpecCount;      /* 122 */
} TAVRIN_PACKED MeasureMarkerType;   /* 126 */

typedef struct wint_MeasureParamType {
    void* hWnd;                 /*   0 window that gets TV_MEASURE_REDRAW_MESSAGE */
    int32_t mode;               /*   8 */
    int32_t CurrentMarker;      /*  12 -1: none */
    int32_t NoOfMarkers;        /*  16 */
    MeasureMarkerType* Markers; /*  20 */
    int32_t ShowID;             /*  28 */
    int32_t ReplaceColour;      /*  32 */
    int32_t Word8;              /*  36 kept for the dialog */
    int32_t BaseMode;           /*  40 TV_BASE_ */
    float BaseHeight;           /*  44 */
    int32_t Number[4];          /*  48 */
    float Min[4];               /*  64 */
    float Max[4];               /*  80 */
    float Mean[4];              /*  96 */
    float RMS[4];               /* 112 */
    float Ra[4];                /* 128 */
    float LenArea[4];           /* 144 */
    float SurfLenArea[4];       /* 160 */
    float VolCSA[4];            /* 176 */
    uint8_t AutoYScale;         /* 192 */
    float YLow;                 /* 193 */
    float YHigh;                /* 197 */
    float YStep;                /* 201 */
    int32_t DiffType;           /* 205 0 none, 1, 2 derivatives, 3, 4 normalised */
    int16_t SmoothPoints;       /* 209 odd, 5 to 25 */
    int32_t SpectrumMode;       /* 211 */
    int32_t PlotColour;         /* 215 */
    float* AveragedY;           /* 219 */
    uint8_t SpectrumValid;      /* 227 */
} TAVRIN_PACKED wint_MeasureParamType;   /* 228 */
#pragma pack(pop)

#ifdef __cplusplus
#define TAVRIN_MS_ASSERT static_assert
#else
#define TAVRIN_MS_ASSERT _Static_assert
#endif
TAVRIN_MS_ASSERT(sizeof(POINTs) == 4, "a marker point is 4 bytes");
TAVRIN_MS_ASSERT(sizeof(void*) == 8, "the measuring records are laid out for 8-byte pointers");
TAVRIN_MS_ASSERT(sizeof(MeasureMarkerType) == 126, "a marker is 126 bytes");
TAVRIN_MS_ASSERT(offsetof(MeasureMarkerType, ID) == 4, "ID at 4");
TAVRIN_MS_ASSERT(offsetof(MeasureMarkerType, Type) == 8, "Type at 8");
TAVRIN_MS_ASSERT(offsetof(MeasureMarkerType, Colour) == 12, "Colour at 12");
TAVRIN_MS_ASSERT(offsetof(MeasureMarkerType, Name) == 16, "Name at 16");
TAVRIN_MS_ASSERT(offsetof(MeasureMarkerType, NoOfPoints) == 56, "NoOfPoints at 56");
TAVRIN_MS_ASSERT(offsetof(MeasureMarkerType, Points) == 60, "Points at 60");
TAVRIN_MS_ASSERT(offsetof(MeasureMarkerType, Seed) == 68, "Seed at 68");
TAVRIN_MS_ASSERT(offsetof(MeasureMarkerType, CalcValid) == 72, "CalcValid at 72");
TAVRIN_MS_ASSERT(offsetof(MeasureMarkerType, Mean) == 73, "Mean at 73");
TAVRIN_MS_ASSERT(offsetof(MeasureMarkerType, Min) == 77, "Min at 77");
TAVRIN_MS_ASSERT(offsetof(MeasureMarkerType, Max) == 81, "Max at 81");
TAVRIN_MS_ASSERT(offsetof(MeasureMarkerType, LenArea) == 85, "LenArea at 85");
TAVRIN_MS_ASSERT(offsetof(MeasureMarkerType, RMS) == 89, "RMS at 89");
TAVRIN_MS_ASSERT(offsetof(MeasureMarkerType, Ra) == 93, "Ra at 93");
TAVRIN_MS_ASSERT(offsetof(MeasureMarkerType, SurfLenArea) == 97, "SurfLenArea at 97");
TAVRIN_MS_ASSERT(offsetof(MeasureMarkerType, VolCSA) == 101, "VolCSA at 101");
TAVRIN_MS_ASSERT(offsetof(MeasureMarkerType, Selected) == 105, "Selected at 105");
TAVRIN_MS_ASSERT(offsetof(MeasureMarkerType, SpecY) == 106, "SpecY at 106");
TAVRIN_MS_ASSERT(offsetof(MeasureMarkerType, SpecYMin) == 114, "SpecYMin at 114");
TAVRIN_MS_ASSERT(offsetof(MeasureMarkerType, SpecYMax) == 118, "SpecYMax at 118");
TAVRIN_MS_ASSERT(offsetof(MeasureMarkerType, SpecCount) == 122, "SpecCount at 122");
TAVRIN_MS_ASSERT(sizeof(wint_MeasureParamType) == 228, "the measure head is 228 bytes");
TAVRIN_MS_ASSERT(offsetof(wint_MeasureParamType, mode) == 8, "mode at 8");
TAVRIN_MS_ASSERT(offsetof(wint_MeasureParamType, CurrentMarker) == 12, "CurrentMarker at 12");
TAVRIN_MS_ASSERT(offsetof(wint_MeasureParamType, NoOfMarkers) == 16, "NoOfMarkers at 16");
TAVRIN_MS_ASSERT(offsetof(wint_MeasureParamType, Markers) == 20, "Markers at 20");
TAVRIN_MS_ASSERT(offsetof(wint_MeasureParamType, ShowID) == 28, "ShowID at 28");
TAVRIN_MS_ASSERT(offsetof(wint_MeasureParamType, ReplaceColour) == 32, "ReplaceColour at 32");
TAVRIN_MS_ASSERT(offsetof(wint_MeasureParamType, Word8) == 36, "Word8 at 36");
TAVRIN_MS_ASSERT(offsetof(wint_MeasureParamType, BaseMode) == 40, "BaseMode at 40");
TAVRIN_MS_ASSERT(offsetof(wint_MeasureParamType, BaseHeight) == 44, "BaseHeight at 44");
TAVRIN_MS_ASSERT(offsetof(wint_MeasureParamType, Number) == 48, "Number at 48");
TAVRIN_MS_ASSERT(offsetof(wint_MeasureParamType, Min) == 64, "Min at 64");
TAVRIN_MS_ASSERT(offsetof(wint_MeasureParamType, Max) == 80, "Max at 80");
TAVRIN_MS_ASSERT(offsetof(wint_MeasureParamType, Mean) == 96, "Mean at 96");
TAVRIN_MS_ASSERT(offsetof(wint_MeasureParamType, RMS) == 112, "RMS at 112");
TAVRIN_MS_ASSERT(offsetof(wint_MeasureParamType, Ra) == 128, "Ra at 128");
TAVRIN_MS_ASSERT(offsetof(wint_MeasureParamType, LenArea) == 144, "LenArea at 144");
TAVRIN_MS_ASSERT(offsetof(wint_MeasureParamType, SurfLenArea) == 160, "SurfLenArea at 160");
TAVRIN_MS_ASSERT(offsetof(wint_MeasureParamType, VolCSA) == 176, "VolCSA at 176");
TAVRIN_MS_ASSERT(offsetof(wint_MeasureParamType, AutoYScale) == 192, "AutoYScale at 192");
TAVRIN_MS_ASSERT(offsetof(wint_MeasureParamType, YLow) == 193, "YLow at 193");
TAVRIN_MS_ASSERT(offsetof(wint_MeasureParamType, YHigh) == 197, "YHigh at 197");
TAVRIN_MS_ASSERT(offsetof(wint_MeasureParamType, YStep) == 201, "YStep at 201");
TAVRIN_MS_ASSERT(offsetof(wint_MeasureParamType, DiffType) == 205, "DiffType at 205");
TAVRIN_MS_ASSERT(offsetof(wint_MeasureParamType, SmoothPoints) == 209, "SmoothPoints at 209");
TAVRIN_MS_ASSERT(offsetof(wint_MeasureParamType, SpectrumMode) == 211, "SpectrumMode at 211");
TAVRIN_MS_ASSERT(offsetof(wint_MeasureParamType, PlotColour) == 215, "PlotColour at 215");
TAVRIN_MS_ASSERT(offsetof(wint_MeasureParamType, AveragedY) == 219, "AveragedY at 219");
TAVRIN_MS_ASSERT(offsetof(wint_MeasureParamType, SpectrumValid) == 227, "SpectrumValid at 227");

/* The measuring object. Its methods are C++ (src/analysis/measure.h); a C host holds it as an
 * opaque pointer. */
#ifdef __cplusplus
class CMeasure;
#else
typedef struct CMeasure CMeasure;
#endif
TAVRIN_API CMeasure* dl_GetMeasureClass(void);

#endif
