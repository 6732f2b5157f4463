/* Tavrin Processing: particle analysis.
 *
 * The user picks a grey-level band of the current image (the source) with a two-level
 * preview; the library makes a bilevel image of it (codes 0 background, 65535 object), finds
 * its 4- or 8-connected objects and measures each one: pixels, area, perimeter, bounding box
 * and shape (area / perimeter squared). The objects can be eroded, dilated, filtered by size,
 * removed or chosen with the pointer, sorted, histogrammed and written to a text file.
 *
 * The host's order of calls:
 *   1. the band page: dl_GetParticleParam with Initialise set takes the current image as the
 *      source; dl_SetParticleParam stores the band, and dl_GetParticleParam again fills the
 *      views for it.
 *   2. the statistics page: dl_GetParticleSttsParam(record, 1, 0) makes the bilevel image of
 *      the band and measures it; (record, 0, 0) refreshes; (record, 0, 1) ends the page.
 *   3. pointer commands (dl_ShootObjects, dl_pb_ParticleSttsChoose) ask the host through
 *      ap_ShowPanel(18 or 26, 2) for the pointer, whose events come back through
 *      dl_ParticlePointer_Callback with x and y in a 0 to 255 square over the image.
 *
 * The text widths of the records are this library's: TV_PARTICLE_ constants below. The
 * records are copied whole by their Get and Set entry points.
 *
 * Two results are defined here: the shape (area / perimeter squared) of an object with no
 * perimeter - a single pixel, or an object covering the whole image - is 0; and a histogram
 * of objects whose values are all equal puts every object into bin 0. Neither divides by
 * zero. */
#ifndef TAVRIN_DL_PARTICLES_H
#define TAVRIN_DL_PARTICLES_H

#include "tavrin/types.h"

#define TV_PARTICLE_SCALE_TEXT 16     /* each of the five grey scale labels */
#define TV_PARTICLE_UNIT_TEXT 16      /* ZUnit */
#define TV_PARTICLE_LABEL_TEXT 24     /* each of the 256 histogram labels */
#define TV_PARTICLE_TITLE_TEXT 16     /* HistogramTitle */
#define TV_PARTICLE_SUMMARY_TEXT 64   /* each of the five summary lines */
#define TV_PARTICLE_DESC_TEXT 24      /* each of the five texts of a list row */
#define TV_PARTICLE_VIEW 256          /* the views are this many points a side */

/* HistogramKind */
#define TV_PARTICLE_HIST_SHAPE 1u
#define TV_PARTICLE_HIST_PERIMETER 2u
#define TV_PARTICLE_HIST_AREA 4u

/* SortKey */
#define TV_PARTICLE_SORT_NONE 1u
#define TV_PARTICLE_SORT_AREA 2u
#define TV_PARTICLE_SORT_PERIMETER 3u
#define TV_PARTICLE_SORT_SHAPE 4u

/* Pointer handles of dl_ParticlePointer_Callback and ap_ShowPanel. */
#define TV_PARTICLE_SHOOT 18
#define TV_PARTICLE_CHOOSE 26

/* Button states */
#define TV_PARTICLE_ENABLED 1u
#define TV_PARTICLE_DISABLED 2u

#pragma pack(push, 1)
/* The band page, 138689 bytes. */
typedef struct wint_ParticleParamType {
    int16_t Connectivity;          /* 4 or 8 */
    uint32_t ButtonStates[9];      /* TV_PARTICLE_ENABLED or _DISABLED */
    uint32_t HistogramKind;        /* TV_PARTICLE_HIST_ value */
    int16_t HistogramBins;         /* stored as 3 when below 4, at most 128; 128 at the start */
    uint32_t MoreStates[3];        /* button states */
    uint32_t LowLevel;             /* the band in grey levels (the source's ImageLUT), 0 to 255 */
    uint32_t HighLevel;
    uint8_t Initialise;            /* non-zero: a fresh start from the current item */
    char ScaleTexts[5][TV_PARTICLE_SCALE_TEXT];   /* the values of codes 0, 1/4 ... 4/4 of the range, in ZUnit */
    double ZLow;                   /* value of code 0, in ZUnit */
    double ZHigh;                  /* value of code 65535 */
    char ZUnit[TV_PARTICLE_UNIT_TEXT];
    uint8_t SourceLUT[256];        /* ImageLUT of the source */
    uint8_t SourceView[TV_PARTICLE_VIEW * TV_PARTICLE_VIEW];    /* grey levels of the source */
    uint8_t BilevelView[TV_PARTICLE_VIEW * TV_PARTICLE_VIEW];   /* the preview */
    uint32_t HistogramCounts[256];
    char HistogramLabels[256][TV_PARTICLE_LABEL_TEXT];   /* the lower edge of each bin */
    char HistogramTitle[TV_PARTICLE_TITLE_TEXT];         /* "Shape", "Perimeter" or "Area" */
} TAVRIN_PACKED wint_ParticleParamType;

/* The statistics page, 426 bytes. */
typedef struct wint_ParticleSttsParamType {
    uint32_t SortKey;              /* TV_PARTICLE_SORT_ value */
    char FileName[80];             /* cleared when the statistics are compiled again */
    char SummaryLines[5][TV_PARTICLE_SUMMARY_TEXT];   /* mean area, total area, mean perimeter, count, S Ratio */
    int32_t SelectedRect[4];       /* left, top, right, bottom of the selected object, 0 to 255 square */
    uint32_t SelectedColour;       /* 0xFFFF00 when an object is selected, else 0 */
    int16_t SelectedRow;           /* row of the list (from 1) that the user chose */
} TAVRIN_PACKED wint_ParticleSttsParamType;
#pragma pack(pop)

#ifdef __cplusplus
#define TAVRIN_PT_ASSERT static_assert
#else
#define TAVRIN_PT_ASSERT _Static_assert
#endif
TAVRIN_PT_ASSERT(sizeof(wint_ParticleParamType) == 138689, "particle parameters are 138689 bytes");
TAVRIN_PT_ASSERT(offsetof(wint_ParticleParamType, ButtonStates) == 2, "ButtonStates at 2");
TAVRIN_PT_ASSERT(offsetof(wint_ParticleParamType, HistogramKind) == 38, "HistogramKind at 38");
TAVRIN_PT_ASSERT(offsetof(wint_ParticleParamType, HistogramBins) == 42, "HistogramBins at 42");
TAVRIN_PT_ASSERT(offsetof(wint_ParticleParamType, MoreStates) == 44, "MoreStates at 44");
TAVRIN_PT_ASSERT(offsetof(wint_ParticleParamType, LowLevel) == 56, "LowLevel at 56");
TAVRIN_PT_ASSERT(offsetof(wint_ParticleParamType, HighLevel) == 60, "HighLevel at 60");
TAVRIN_PT_ASSERT(offsetof(wint_ParticleParamType, Initialise) == 64, "Initialise at 64");
TAVRIN_PT_ASSERT(offsetof(wint_ParticleParamType, ScaleTexts) == 65, "ScaleTexts at 65");
TAVRIN_PT_ASSERT(offsetof(wint_ParticleParamType, ZLow) == 145, "ZLow at 145");
TAVRIN_PT_ASSERT(offsetof(wint_ParticleParamType, ZHigh) == 153, "ZHigh at 153");
TAVRIN_PT_ASSERT(offsetof(wint_ParticleParamType, ZUnit) == 161, "ZUnit at 161");
TAVRIN_PT_ASSERT(offsetof(wint_ParticleParamType, SourceLUT) == 177, "SourceLUT at 177");
TAVRIN_PT_ASSERT(offsetof(wint_ParticleParamType, SourceView) == 433, "SourceView at 433");
TAVRIN_PT_ASSERT(offsetof(wint_ParticleParamType, BilevelView) == 65969, "BilevelView at 65969");
TAVRIN_PT_ASSERT(offsetof(wint_ParticleParamType, HistogramCounts) == 131505, "HistogramCounts at 131505");
TAVRIN_PT_ASSERT(offsetof(wint_ParticleParamType, HistogramLabels) == 132529, "HistogramLabels at 132529");
TAVRIN_PT_ASSERT(offsetof(wint_ParticleParamType, HistogramTitle) == 138673, "HistogramTitle at 138673");
TAVRIN_PT_ASSERT(sizeof(wint_ParticleSttsParamType) == 426, "particle statistics parameters are 426 bytes");
TAVRIN_PT_ASSERT(offsetof(wint_ParticleSttsParamType, FileName) == 4, "FileName at 4");
TAVRIN_PT_ASSERT(offsetof(wint_ParticleSttsParamType, SummaryLines) == 84, "SummaryLines at 84");
TAVRIN_PT_ASSERT(offsetof(wint_ParticleSttsParamType, SelectedRect) == 404, "SelectedRect at 404");
TAVRIN_PT_ASSERT(offsetof(wint_ParticleSttsParamType, SelectedColour) == 420, "SelectedColour at 420");
TAVRIN_PT_ASSERT(offsetof(wint_ParticleSttsParamType, SelectedRow) == 424, "SelectedRow at 424");
#undef TAVRIN_PT_ASSERT

/* Band page: with Initialise set, takes the current image as the source (33536 without one)
 * and forgets the bilevel image; a bilevel image of another band than the stored one is
 * erased. Fills the views, the button states, the grey scale and the histogram; answers the
 * connectivity. Initialise is read from `param`; every other field comes from the stored
 * record, which is copied out whole. */
TAVRIN_API int16_t dl_GetParticleParam(wint_ParticleParamType* param);
/* Stores the record (HistogramBins below 4 as 3, above 128 as 128; levels above 255 as 255)
 * and sets the connectivity from it (4 unless 8). */
TAVRIN_API void dl_SetParticleParam(const wint_ParticleParamType* param);
/* init 1: makes the bilevel image of the stored band and measures it; fin 1: frees the
 * statistics; both 0: measures again. The summary lines follow each measurement. */
TAVRIN_API void dl_GetParticleSttsParam(wint_ParticleSttsParamType* param, int16_t init, int16_t fin);
/* Stores the record and sorts the list; the object of SelectedRow stays selected. */
TAVRIN_API void dl_SetParticleSttsParam(const wint_ParticleSttsParamType* param);
/* The texts of list row `row` (from 1): number, area, pixels, perimeter, shape. Answers 4 past
 * the end of the list, 1 for the selected row (row 1 when nothing is selected), else 2. The
 * variant of this entry point that takes one character pointer (and answers 0) has no C form;
 * C++ callers find it below. */
TAVRIN_API int32_t dl_ParticleSttsGetDesc(int16_t row, char texts[5][TV_PARTICLE_DESC_TEXT]);
TAVRIN_API void dl_pb_ParticleSttsChoose(void);
TAVRIN_API void dl_pb_DisplayParticleHist(void);
TAVRIN_API int32_t dl_ParticlePointer_Callback(int32_t handle, int32_t x, int32_t y, int32_t status);
TAVRIN_API void dl_ToggleConnectivity(void);
TAVRIN_API int16_t dl_GetConnectivity(void);
TAVRIN_API void dl_ErodeBilevelImage(void);
TAVRIN_API void dl_DilateBilevelImage(void);
TAVRIN_API int32_t dl_IsolateBilevelImage(void);
TAVRIN_API void dl_ShootObjects(void);
/* The statistics text of the bilevel image; 1 on success (also when there are no objects and
 * no file is made), 0 on failure, with no file left behind. */
TAVRIN_API int32_t dl_WriteObjectStatistics(const char* path);
TAVRIN_API void dl_GenerateBilevelImage(void);
TAVRIN_API void dl_GetObjectStatistics(void);
TAVRIN_API void dl_CompileObjectStatistics(void);
TAVRIN_API void dl_StatisticsHistogram(void);

#ifdef __cplusplus
/* The character pointer variant: it has nothing to fill and answers 0. */
inline int32_t dl_ParticleSttsGetDesc(int16_t, char*) { return 0; }
#endif

#endif
