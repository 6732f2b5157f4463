/* Tavrin Processing: SPS Mapping data sets - a stack of ni square images taken over one swept
 * quantity (bias voltage, or a Z displacement), with a curve at every pixel.
 *
 * A set hangs on the topography image it was measured with (ImageHeaderType.CITSHeaderPtr).
 * In memory it is one header block - CITSHeaderType followed directly by ni image entries of
 * CITSImageEntryType - and ni pixel blocks of cx * cy unsigned 16-bit codes. In a file the
 * header is stored less its last two bytes (390) and each entry less its two memory-only words
 * (165), then the pixels of every image in order.
 *
 * 64-bit note. The memory-only words of an entry are 32 bits wide, too narrow for an address:
 * pix_handle is the number of the pixel block in the library's table of mapping blocks and
 * pix_data is non-zero while the block exists. A host reaches the pixels of a set through
 * the library, never through these words. */
#ifndef TAVRIN_DL_MAPPING_H
#define TAVRIN_DL_MAPPING_H

#include "tavrin/types.h"

#define TAVRIN_CITS_HEADER_BYTES 392
#define TAVRIN_CITS_HEADER_STORED_BYTES 390
#define TAVRIN_CITS_ENTRY_BYTES 173
#define TAVRIN_CITS_ENTRY_STORED_BYTES 165
#define TAVRIN_LMC_HIT_BYTES 74
#define TAVRIN_LMCANTILEVER_PARAM_BYTES 62

#pragma pack(push, 1)

/* How the frames of a set are shown. */
typedef struct CITSDispBlockType {
    uint16_t flags;        /*   0  bit 0 topography first, bit 1 labels, bit 2 opaque labels */
    int16_t n;             /*   2  frames wanted, 1 to 1024 */
    uint8_t mode;          /*   4  what a frame shows, 0 to 4 */
    double v_low;          /*   5  carried */
    double v_high;         /*  13  carried */
    uint8_t select;        /*  21  how images are chosen, 0 to 4 */
    int16_t im_no[64];     /*  22  image numbers for select 4; -1 none */
    uint8_t reserved[100]; /* 150 */
} TAVRIN_PACKED CITSDispBlockType;

/* The fixed header of a set; ni image entries follow it in the same block. */
typedef struct CITSHeaderType {
    int16_t rev;               /*   0  format revision, 700 for a new set */
    int16_t ni;                /*   2  images, 1 to 4096 */
    int16_t cx;                /*   4  pixels per row */
    int16_t cy;                /*   6  rows, equal to cx */
    int16_t ci;                /*   8  current image */
    CITSDispBlockType disp;    /*  10 */
    uint8_t IHspace[128];      /* 260  reserved, zero */
    uint32_t set_id;           /* 388  identity of the set; a file keeps the low half */
} TAVRIN_PACKED CITSHeaderType;

/* One image of a set. */
typedef struct CITSImageEntryType {
    int16_t raw_low;           /*   0  raw code of pixel value 0 */
    int16_t raw_high;          /*   2  raw code of pixel value 65535 */
    uint8_t old_type;          /*   4  kind of the oldest files: 0 height, 1 log current, 2 linear current, 3 voltage */
    int16_t adc_offset;        /*   5  mV */
    uint16_t adc_gain;         /*   7 */
    int32_t i_divider;         /*   9 */
    float voltage;             /*  13  sweep value: V or nm by the kind of mapping */
    float z_low;               /*  17  value of pixel value 0 */
    float z_high;              /*  21  value of pixel value 65535 */
    char title[40];            /*  25 */
    uint32_t data_type;        /*  65  data type flag */
    uint8_t reserved[96];      /*  69 */
    uint32_t pix_handle;       /* 165  memory only: number of the pixel block */
    uint32_t pix_data;         /* 169  memory only: non-zero while the block exists */
} TAVRIN_PACKED CITSImageEntryType;

/* The threshold hit of one pixel of a force-curve mapping. */
typedef struct LMCThresholdHitType {
    int16_t hit;               /*  0  0 none, 1 or 2 the threshold hit */
    int32_t channel;           /*  2  data type flag of the channel that hit */
    float position;            /*  6  sweep position; 3.4028235e38 in a new record */
    uint8_t reserved[64];      /* 10 */
} TAVRIN_PACKED LMCThresholdHitType;

/* The display block of a set as the host sees it (292 bytes). */
typedef struct wint_CITSDispParamType {
    int32_t mode;              /*   0  what a frame shows, 0 to 4 */
    int32_t labels;            /*   4  0 none, 1 opaque labels, 2 transparent labels */
    int16_t n;                 /*   8  frames wanted */
    uint8_t unused[16];        /*  10  not exchanged */
    uint16_t topography;       /*  26  topography as the first frame */
    int32_t select;            /*  28  how images are chosen, 0 to 4 */
    float voltage[64];         /*  32  sweep value of each chosen image */
    int32_t source;            /* 288  1: a data set */
} TAVRIN_PACKED wint_CITSDispParamType;

/* The cantilever block of an LM image (62 bytes of the image record from offset 3246). */
typedef struct wint_LMCantileverImageParamType {
    uint8_t bytes[TAVRIN_LMCANTILEVER_PARAM_BYTES];
} TAVRIN_PACKED wint_LMCantileverImageParamType;

#pragma pack(pop)

#ifdef __cplusplus
static_assert(sizeof(CITSDispBlockType) == 250, "display block is 250 bytes");
static_assert(offsetof(CITSDispBlockType, flags) == 0, "flags at 0");
static_assert(offsetof(CITSDispBlockType, n) == 2, "n at 2");
static_assert(offsetof(CITSDispBlockType, mode) == 4, "mode at 4");
static_assert(offsetof(CITSDispBlockType, v_low) == 5, "v_low at 5");
static_assert(offsetof(CITSDispBlockType, v_high) == 13, "v_high at 13");
static_assert(offsetof(CITSDispBlockType, select) == 21, "select at 21");
static_assert(offsetof(CITSDispBlockType, im_no) == 22, "im_no at 22");
static_assert(offsetof(CITSDispBlockType, reserved) == 150, "reserved at 150");

static_assert(sizeof(CITSHeaderType) == TAVRIN_CITS_HEADER_BYTES, "mapping header is 392 bytes");
static_assert(offsetof(CITSHeaderType, rev) == 0, "rev at 0");
static_assert(offsetof(CITSHeaderType, ni) == 2, "ni at 2");
static_assert(offsetof(CITSHeaderType, cx) == 4, "cx at 4");
static_assert(offsetof(CITSHeaderType, cy) == 6, "cy at 6");
static_assert(offsetof(CITSHeaderType, ci) == 8, "ci at 8");
static_assert(offsetof(CITSHeaderType, disp) == 10, "disp at 10");
static_assert(offsetof(CITSHeaderType, disp) + offsetof(CITSDispBlockType, n) == 12, "disp.n at 12");
static_assert(offsetof(CITSHeaderType, disp) + offsetof(CITSDispBlockType, mode) == 14, "disp.mode at 14");
static_assert(offsetof(CITSHeaderType, disp) + offsetof(CITSDispBlockType, v_low) == 15, "disp.v_low at 15");
static_assert(offsetof(CITSHeaderType, disp) + offsetof(CITSDispBlockType, v_high) == 23, "disp.v_high at 23");
static_assert(offsetof(CITSHeaderType, disp) + offsetof(CITSDispBlockType, select) == 31, "disp.select at 31");
static_assert(offsetof(CITSHeaderType, disp) + offsetof(CITSDispBlockType, im_no) == 32, "disp.im_no at 32");
static_assert(offsetof(CITSHeaderType, disp) + offsetof(CITSDispBlockType, reserved) == 160, "reserved at 160");
static_assert(offsetof(CITSHeaderType, IHspace) == 260, "IHspace at 260");
static_assert(offsetof(CITSHeaderType, set_id) == 388, "set_id at 388");

static_assert(sizeof(CITSImageEntryType) == TAVRIN_CITS_ENTRY_BYTES, "image entry is 173 bytes");
static_assert(offsetof(CITSImageEntryType, raw_low) == 0, "raw_low at 0");
static_assert(offsetof(CITSImageEntryType, raw_high) == 2, "raw_high at 2");
static_assert(offsetof(CITSImageEntryType, old_type) == 4, "old_type at 4");
static_assert(offsetof(CITSImageEntryType, adc_offset) == 5, "adc_offset at 5");
static_assert(offsetof(CITSImageEntryType, adc_gain) == 7, "adc_gain at 7");
static_assert(offsetof(CITSImageEntryType, i_divider) == 9, "i_divider at 9");
static_assert(offsetof(CITSImageEntryType, voltage) == 13, "voltage at 13");
static_assert(offsetof(CITSImageEntryType, z_low) == 17, "z_low at 17");
static_assert(offsetof(CITSImageEntryType, z_high) == 21, "z_high at 21");
static_assert(offsetof(CITSImageEntryType, title) == 25, "title at 25");
static_assert(offsetof(CITSImageEntryType, data_type) == 65, "data_type at 65");
static_assert(offsetof(CITSImageEntryType, reserved) == 69, "reserved at 69");
static_assert(offsetof(CITSImageEntryType, pix_handle) == TAVRIN_CITS_ENTRY_STORED_BYTES, "pix_handle at 165");
static_assert(offsetof(CITSImageEntryType, pix_data) == 169, "pix_data at 169");

static_assert(sizeof(LMCThresholdHitType) == TAVRIN_LMC_HIT_BYTES, "hit record is 74 bytes");
static_assert(offsetof(LMCThresholdHitType, hit) == 0, "hit at 0");
static_assert(offsetof(LMCThresholdHitType, channel) == 2, "channel at 2");
static_assert(offsetof(LMCThresholdHitType, position) == 6, "position at 6");
static_assert(offsetof(LMCThresholdHitType, reserved) == 10, "reserved at 10");

static_assert(sizeof(wint_CITSDispParamType) == 292, "mapping display record is 292 bytes");
static_assert(offsetof(wint_CITSDispParamType, mode) == 0, "mode at 0");
static_assert(offsetof(wint_CITSDispParamType, labels) == 4, "labels at 4");
static_assert(offsetof(wint_CITSDispParamType, n) == 8, "n at 8");
static_assert(offsetof(wint_CITSDispParamType, unused) == 10, "unused at 10");
static_assert(offsetof(wint_CITSDispParamType, topography) == 26, "topography at 26");
static_assert(offsetof(wint_CITSDispParamType, select) == 28, "select at 28");
static_assert(offsetof(wint_CITSDispParamType, voltage) == 32, "voltage at 32");
static_assert(offsetof(wint_CITSDispParamType, source) == 288, "source at 288");

static_assert(sizeof(wint_LMCantileverImageParamType) == TAVRIN_LMCANTILEVER_PARAM_BYTES, "cantilever block is 62 bytes");
#endif

/* 1 when the current image is a force-curve mapping (MapType 15 or 51), else 0. */
TAVRIN_API int32_t dl_IsFCMappingData(void);
/* 1 when the current image is an F-V mapping (MapType 60), else 0. */
TAVRIN_API int32_t dl_IsFVMappingData(void);
/* The sweep value of every image of the current set into out[0..ni-1]; answers ni, or 0 with
 * nothing written when there is no current image or it has no set. */
TAVRIN_API int32_t dl_GetCITSCurrentImageVoltages(double* out);
/* Copies the cantilever block of the current image out and answers 1; 0 (nothing copied)
 * without an image, for LMCMode 0, for DataSource other than 4, or when the block's first
 * byte is 0. */
TAVRIN_API int32_t dl_GetLMCantileverParam(wint_LMCantileverImageParamType* param);
/* Copies the block into the current image and redraws it. */
TAVRIN_API void dl_SetLMCantileverParam(const wint_LMCantileverImageParamType* param);


/* The sheet of the current item's set, on a cleared frame store. */
TAVRIN_API void dl_pb_CITSDisplay(void);
/* The next (previous) image of the set, wrapping at the ends, shown large with its text. */
TAVRIN_API void dl_pb_CITSNext(void);
TAVRIN_API void dl_pb_CITSPrevious(void);
/* Image n (from 1) becomes current and is shown; a number out of range shows image 1. */
TAVRIN_API void dl_pb_CITSSetCurrent(int16_t n);
/* The host enters its mapping selection mode (3) or its mapping edit mode (1). */
TAVRIN_API void dl_CITSSelect(void);
TAVRIN_API void dl_CITSEdit(void);
/* The display block of the current set; without a set the library's default block, sweep
 * values 0. A slot whose image number is outside the set reads 0.0. */
TAVRIN_API void dl_GetCITSDispParam(wint_CITSDispParamType* param);
/* Writes the record back into the current set; sweep values become the nearest images. */
TAVRIN_API void dl_SetCITSDispParam(const wint_CITSDispParamType* param);
/* Slot (1 to 16) of the explicit list takes the image the user picks. */
TAVRIN_API void dl_pb_CITSDispParamSetV(int16_t slot);
/* "n: value unit" of image n (from 1) into out (40 bytes); 1 current, 2 another, 4 none. */
TAVRIN_API int32_t dl_CITSGetDesc(int16_t n, char* out);
/* Asks for the title of image n (from 1). */
TAVRIN_API void dl_pb_CITSEditTitle(int16_t n);
/* The paged browser with frames of size (64 or 128). */
TAVRIN_API void dl_CITSDisplayXxY(int32_t size);
/* The rapid replay slider (id 117). */
TAVRIN_API void dl_CITSRapidReplay(void);

#endif
