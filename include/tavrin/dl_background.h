/* Tavrin Processing: background subtraction with a live preview.
 *
 * The tool removes tilt, bow and line offsets of the current image by one of seven methods.
 * While the host's dialog is open, the source store shows the image with the threshold colours
 * and a second frame store, "Subtract Background (normalised)", shows the corrected image (and
 * the background beside it on request). Only applying makes a new item.
 *
 * The host's order of calls:
 *   1. dl_GetSubtBckgrndParam(record, 0): opens the tool on the current image (when closed)
 *      and fills the record.
 *   2. for each change in the dialog: word = dl_SetSubtBckgrndParam(record), then
 *      dl_SubtBackUpdateImageDisplay(word).
 *   3. dl_GetSubtBckgrndParam(record, 3) applies; any other non-zero value leaves without a
 *      result. A non-zero call on a closed tool opens it and finishes at once.
 * The host must not change the current item while the tool is open.
 *
 * The second frame store is asked of the host through ap_OpenGraphWindow: the host opens a
 * frame store with dl_VFS_open_vfs under a new number (making it current or not), and closes
 * it with dl_VFS_close_vfs in ap_CloseGraphWindow. The region overlay of the polynomial
 * surface goes through the ShowRegionOverlay slot of the platform table (platform.h). */
#ifndef TAVRIN_DL_BACKGROUND_H
#define TAVRIN_DL_BACKGROUND_H

#include "tavrin/types.h"

/* Values of Method. */
#define TV_SUBT_OFFSETS 3        /* each row less its smallest code */
#define TV_SUBT_POLY_X 4         /* polynomial X^n through the column means */
#define TV_SUBT_POLY_Y 5         /* polynomial Y^n through the row means */
#define TV_SUBT_LINES 6          /* line averaging within the thresholds */
#define TV_SUBT_PLANE3 7         /* the plane through three points */
#define TV_SUBT_POLY_SURFACE 8   /* polynomial surface, with thresholds and region */
#define TV_SUBT_MANUAL 9         /* a plane of given slopes added */

/* Bits of the word of dl_SetSubtBckgrndParam and dl_SubtBackUpdateImageDisplay. */
#define TV_SUBT_THRESHOLDS 1u    /* thresholds, Method or UseThreshold changed: redraw the preview */
#define TV_SUBT_RESULT 2u        /* any byte changed: recompute the result */

/* Finish values of dl_GetSubtBckgrndParam. */
#define TV_SUBT_OPEN 0
#define TV_SUBT_APPLY 3

#pragma pack(push, 1)
/* The tool's parameters, 54 bytes. Points are x, y pairs in a 0 to 511 square over the image. */
typedef struct wint_SubtBckgrndParamType {
    uint32_t Method;          /* TV_SUBT_ value; default 8 */
    int16_t DegreeX;          /* polynomial surface degree in X, 0 to 19; default 1 */
    int16_t DegreeY;          /* in Y, 0 to 19; default 1 */
    int16_t PolyOrder;        /* order of the X^n and Y^n methods, 0 to 29; default 1 */
    int16_t PlanePoints[6];   /* the three points of the 3 point plane */
    int16_t UseRegion;        /* non-zero: the surface is fitted inside the region only */
    int16_t RegionOption;     /* non-zero sets the first option of the region overlay */
    int16_t RegionPoints[6];  /* corners A, B, C of the region parallelogram */
    int16_t UseThreshold;     /* non-zero: only codes between the thresholds enter the fit */
    uint16_t LowThreshold;    /* swapped with HighThreshold when greater */
    uint16_t HighThreshold;
    int32_t ManualSlopeX;     /* codes added across the full width, -65535 to 65535 */
    int32_t ManualSlopeY;     /* codes added down the full height, -65535 to 65535 */
    int16_t ShowBackground;   /* non-zero: the background beside the corrected image */
} TAVRIN_PACKED wint_SubtBckgrndParamType;
#pragma pack(pop)

#ifdef __cplusplus
#define TAVRIN_BG_ASSERT static_assert
#else
#define TAVRIN_BG_ASSERT _Static_assert
#endif
TAVRIN_BG_ASSERT(sizeof(wint_SubtBckgrndParamType) == 54, "background parameters are 54 bytes");
TAVRIN_BG_ASSERT(offsetof(wint_SubtBckgrndParamType, DegreeX) == 4, "DegreeX at 4");
TAVRIN_BG_ASSERT(offsetof(wint_SubtBckgrndParamType, DegreeY) == 6, "DegreeY at 6");
TAVRIN_BG_ASSERT(offsetof(wint_SubtBckgrndParamType, PolyOrder) == 8, "PolyOrder at 8");
TAVRIN_BG_ASSERT(offsetof(wint_SubtBckgrndParamType, PlanePoints) == 10, "PlanePoints at 10");
TAVRIN_BG_ASSERT(offsetof(wint_SubtBckgrndParamType, UseRegion) == 22, "UseRegion at 22");
TAVRIN_BG_ASSERT(offsetof(wint_SubtBckgrndParamType, RegionOption) == 24, "RegionOption at 24");
TAVRIN_BG_ASSERT(offsetof(wint_SubtBckgrndParamType, RegionPoints) == 26, "RegionPoints at 26");
TAVRIN_BG_ASSERT(offsetof(wint_SubtBckgrndParamType, UseThreshold) == 38, "UseThreshold at 38");
TAVRIN_BG_ASSERT(offsetof(wint_SubtBckgrndParamType, LowThreshold) == 40, "LowThreshold at 40");
TAVRIN_BG_ASSERT(offsetof(wint_SubtBckgrndParamType, HighThreshold) == 42, "HighThreshold at 42");
TAVRIN_BG_ASSERT(offsetof(wint_SubtBckgrndParamType, ManualSlopeX) == 44, "ManualSlopeX at 44");
TAVRIN_BG_ASSERT(offsetof(wint_SubtBckgrndParamType, ManualSlopeY) == 48, "ManualSlopeY at 48");
TAVRIN_BG_ASSERT(offsetof(wint_SubtBckgrndParamType, ShowBackground) == 52, "ShowBackground at 52");
#undef TAVRIN_BG_ASSERT

/* Finish 0: opens the tool when closed and fills the record (slopes clipped to +-65535), and
 * switches the region overlay as the record asks. Finish 3: closes the tool and makes the
 * result item. Other non-zero: closes the tool without a result. */
TAVRIN_API void dl_GetSubtBckgrndParam(wint_SubtBckgrndParamType* param, int32_t finish);
/* Stores the record, clipped; answers the TV_SUBT_ bits of what changed. On a closed tool:
 * program error "dl_SetSubtBckgrndParam not initialised" and 0. */
TAVRIN_API uint32_t dl_SetSubtBckgrndParam(const wint_SubtBckgrndParamType* param);
/* Bit 0 redraws the threshold preview, bit 1 recomputes and redraws the result. */
TAVRIN_API void dl_SubtBackUpdateImageDisplay(uint32_t flags);
/* The dialog's push button: a trace line, nothing else. */
TAVRIN_API void dl_pb_SubtBckgrnd(void);

#endif
