/* Tavrin Processing: showing items - the display settings, the display commands, the full
 * display and the parameters of the host's 3-D view.
 *
 * An image is shown in the current frame store as colour indices: each point's level (its
 * code >> 8) goes through the image's own level table (ImageLUT) onto the 128-step ramp of
 * the palette, in one of five display modes (0 plain, 1 relief under a light, 2 contour lines,
 * 3 the image at half level with contour lines, 4 the same with the image in bands). */
#ifndef TAVRIN_DL_DISPLAY_H
#define TAVRIN_DL_DISPLAY_H

#include "tavrin/image_header.h"
#include "tavrin/types.h"

#define TV_OVERLAY_TEXTS 5
#define TV_OVERLAY_TEXT_CHARS 31
#define TV_VIEW3D_BYTES 446
#define TV_3D_UNIT_CHARS 16
/* The text of dl_3D_SelectImage holds at most this many characters, terminator included. */
#define TV_3D_SELECT_TEXT_CHARS 80

#pragma pack(push, 1)

/* The display settings, 395 bytes. */
typedef struct wint_DisplayParamType {
    int32_t ImageDisplaySize;   /*   0  0: own size up to 512; else the edge of every image */
    int32_t wint_TextOverlay;   /*   4  0 no size caption; 1 caption on transparent ground;
                                        2 caption on opaque ground */
    int32_t DispMode;           /*   8  display mode 0 to 4 */
    uint32_t ReservedParam1;    /*  12  kept and returned, 1 by default */
    float ReservedParam2;       /*  16  always 0 */
    int32_t Reserved20;         /*  20  2 on reading */
    int16_t ContourLevels;      /*  24  bands of the contour modes, 16 by default */
    float DisplayFactor;        /*  26  kept between 1.0 and 10.0, 5.0 by default */
    int32_t ScaleBarMode;       /*  30  1 X bar only, 2 Y bar only, 4 both, 8 none */
    int32_t Reserved34;         /*  34  2 on reading */
    char OverlayText[TV_OVERLAY_TEXTS][TV_OVERLAY_TEXT_CHARS];   /*  38  kept and returned */
    int32_t Reserved193;        /* 193  2 on reading */
    TvLogFont CaptionFont;      /* 197  font of the size caption; height = stored height / 6 */
    TvLogFont BarFont;          /* 257  font of the scale bar labels, same rule */
    TvLogFont ThirdFont;        /* 317  third overlay font, same rule */
    uint32_t CaptionColour;     /* 377  colours of the three fonts (0x00BBGGRR); */
    uint32_t BarColour;         /* 381  BarColour also colours the scale bars */
    uint32_t ThirdColour;       /* 385 */
    uint8_t Reserved389;        /* 389  1 on reading */
    uint8_t Reserved390;        /* 390  0 on reading */
    int32_t FullDisplayOn;      /* 391  1: an image is shown as the full display */
} TAVRIN_PACKED wint_DisplayParamType;

/* The parameters of the 3-D view of one image, which the host draws. The block is the
 * item's stored 3-D view settings, handed over unchanged; the pixels stay the item's. Size
 * and height are given in one unit where both are lengths (a topography), each with its
 * unit text. */
typedef struct C3DParam {
    uint8_t View3DBlock[TV_VIEW3D_BYTES];   /* the item's 3-D view settings */
    uint32_t DataId;                        /* the item */
    int16_t nx;                             /* its pixels: nx by ny codes, row 0 first */
    int16_t ny;
    uint16_t* PixData;
    float SizeX;                            /* ImageSizeX in the unit of SizeUnit */
    float SizeY;                            /* ImageSizeY in the same unit */
    float Height;                           /* the value range |Zhi - Zlo| in HeightUnit */
    char SizeUnit[TV_3D_UNIT_CHARS];
    char HeightUnit[TV_3D_UNIT_CHARS];
} TAVRIN_PACKED C3DParam;

#pragma pack(pop)

#ifdef __cplusplus
static_assert(sizeof(wint_DisplayParamType) == 395, "display settings are 395 bytes");
static_assert(offsetof(wint_DisplayParamType, wint_TextOverlay) == 4, "wint_TextOverlay at 4");
static_assert(offsetof(wint_DisplayParamType, DispMode) == 8, "DispMode at 8");
static_assert(offsetof(wint_DisplayParamType, ReservedParam1) == 12, "ReservedParam1 at 12");
static_assert(offsetof(wint_DisplayParamType, ReservedParam2) == 16, "ReservedParam2 at 16");
static_assert(offsetof(wint_DisplayParamType, Reserved20) == 20, "word at 20");
static_assert(offsetof(wint_DisplayParamType, ContourLevels) == 24, "ContourLevels at 24");
static_assert(offsetof(wint_DisplayParamType, DisplayFactor) == 26, "DisplayFactor at 26");
static_assert(offsetof(wint_DisplayParamType, ScaleBarMode) == 30, "ScaleBarMode at 30");
static_assert(offsetof(wint_DisplayParamType, Reserved34) == 34, "word at 34");
static_assert(offsetof(wint_DisplayParamType, OverlayText) == 38, "OverlayText at 38");
static_assert(offsetof(wint_DisplayParamType, Reserved193) == 193, "word at 193");
static_assert(offsetof(wint_DisplayParamType, CaptionFont) == 197, "CaptionFont at 197");
static_assert(offsetof(wint_DisplayParamType, BarFont) == 257, "BarFont at 257");
static_assert(offsetof(wint_DisplayParamType, ThirdFont) == 317, "ThirdFont at 317");
static_assert(offsetof(wint_DisplayParamType, CaptionColour) == 377, "CaptionColour at 377");
static_assert(offsetof(wint_DisplayParamType, BarColour) == 381, "BarColour at 381");
static_assert(offsetof(wint_DisplayParamType, ThirdColour) == 385, "ThirdColour at 385");
static_assert(offsetof(wint_DisplayParamType, Reserved389) == 389, "byte at 389");
static_assert(offsetof(wint_DisplayParamType, Reserved390) == 390, "byte at 390");
static_assert(offsetof(wint_DisplayParamType, FullDisplayOn) == 391, "FullDisplayOn at 391");
static_assert(offsetof(C3DParam, DataId) == TV_VIEW3D_BYTES, "the block comes first");
#endif

/* Fills the record from the display settings in force. */
TAVRIN_API void dl_GetDisplayParam(wint_DisplayParamType* param);
/* Takes the record: a DispMode outside 0 to 4 is reported and taken as 0; a wint_TextOverlay
 * outside 0 to 2 is reported and nothing changes; DisplayFactor is kept between 1 and 10. */
TAVRIN_API void dl_SetDisplayParam(const wint_DisplayParamType* param);

/* Show the current item in the way that fits it; dl_DisplayData logs the time taken. */
TAVRIN_API void dl_pb_DisplayImage(void);
TAVRIN_API void dl_pb_DisplaySpec(void);
TAVRIN_API void dl_DisplayData(void);
/* The other way than the setting: with FullDisplayOn the plain image, else the full display
 * (the image at 400 by 400 with colour bar, value ruler, text block and level histogram). */
TAVRIN_API void dl_FullDisplay(void);

/* Fills `p` for the host's 3-D view. With `fromCurrent` from the current image (refused with
 * "Only one 3D display window allowed per image" when it has a view open; the view then
 * counts as open); otherwise from the item whose DataId is in `p`, which becomes current and
 * is shown. With `clear` the item's 3-D settings go back to the built-in ones first. Answers
 * 0, or 1 when nothing was filled. */
TAVRIN_API int32_t dl_Get3DParam(C3DParam* p, int32_t fromCurrent, int32_t clear);
/* Copies the 3-D settings of `p` back into the item of its DataId. */
TAVRIN_API void dl_Set3DParam(const C3DParam* p);
/* Lets the user pick an image through the host's data dialog; writes "%d) %s" (its DataId and
 * title) into `text` (TV_3D_SELECT_TEXT_CHARS) and the DataId into `p`. Answers the DataId,
 * or -1 when nothing was picked. */
TAVRIN_API int32_t dl_3D_SelectImage(C3DParam* p, char* text);

#endif
