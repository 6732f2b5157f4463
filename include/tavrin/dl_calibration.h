/* Tavrin Processing: the cantilever record and the calibration of force, friction and amplitude.
 *
 * wint_CantileverParamType is stored as one block under the key "Cantilever Parameters" of the
 * user settings file, so its layout is fixed to the byte. wint_SPMCalType is the same data
 * without the name; the library holds one such copy, and every conversion of a force, friction
 * or amplitude value reads it.
 */
#ifndef TAVRIN_DL_CALIBRATION_H
#define TAVRIN_DL_CALIBRATION_H

#include "tavrin/types.h"

#pragma pack(push, 1)

typedef struct wint_CantileverParamType {
    char Name[260];          /*   0  "No Name" by default */
    uint16_t ForceOn;        /* 260  non-zero: force channels convert to nN */
    double ForceK;           /* 262  spring constant; 0 counts as 1 */
    double ForceSens;        /* 270  sensitivity; 0 or less counts as 1 */
    double ForceOffset;      /* 278  V */
    uint16_t FrictionOn;     /* 286  non-zero: friction channels convert to nN */
    double FrictionOffset;   /* 288 */
    double FrictionA;        /* 296 */
    double FrictionB;        /* 304 */
    double FrictionC;        /* 312  divisor; 0 counts as 1 */
    uint16_t AmpOn;          /* 320  non-zero: the amplitude channel converts */
    double AmpA;             /* 322 */
    double AmpB;             /* 330 */
    double AmpC;             /* 338  not touched by the default routine */
    double AmpD;             /* 346  not touched by the default routine */
    uint16_t ExtraOn;        /* 354 */
    double ExtraValue;       /* 356 */
    uint8_t Reserved364[60]; /* 364 */
} TAVRIN_PACKED wint_CantileverParamType;

/* The calibration data of the cantilever record: every field from ForceOn on. */
typedef struct wint_SPMCalType {
    uint16_t ForceOn;        /*   0 */
    double ForceK;           /*   2 */
    double ForceSens;        /*  10 */
    double ForceOffset;      /*  18 */
    uint16_t FrictionOn;     /*  26 */
    double FrictionOffset;   /*  28 */
    double FrictionA;        /*  36 */
    double FrictionB;        /*  44 */
    double FrictionC;        /*  52 */
    uint16_t AmpOn;          /*  60 */
    double AmpA;             /*  62 */
    double AmpB;             /*  70 */
    double AmpC;             /*  78 */
    double AmpD;             /*  86 */
    uint16_t ExtraOn;        /*  94 */
    double ExtraValue;       /*  96 */
} TAVRIN_PACKED wint_SPMCalType;

#pragma pack(pop)

#ifdef __cplusplus
static_assert(sizeof(wint_CantileverParamType) == 424, "cantilever record is 424 bytes");
static_assert(offsetof(wint_CantileverParamType, Name) == 0, "Name");
static_assert(offsetof(wint_CantileverParamType, ForceOn) == 260, "ForceOn");
static_assert(offsetof(wint_CantileverParamType, ForceK) == 262, "ForceK");
static_assert(offsetof(wint_CantileverParamType, ForceSens) == 270, "ForceSens");
static_assert(offsetof(wint_CantileverParamType, ForceOffset) == 278, "ForceOffset");
static_assert(offsetof(wint_CantileverParamType, FrictionOn) == 286, "FrictionOn");
static_assert(offsetof(wint_CantileverParamType, FrictionOffset) == 288, "FrictionOffset");
static_assert(offsetof(wint_CantileverParamType, FrictionA) == 296, "FrictionA");
static_assert(offsetof(wint_CantileverParamType, FrictionB) == 304, "FrictionB");
static_assert(offsetof(wint_CantileverParamType, FrictionC) == 312, "FrictionC");
static_assert(offsetof(wint_CantileverParamType, AmpOn) == 320, "AmpOn");
static_assert(offsetof(wint_CantileverParamType, AmpA) == 322, "AmpA");
static_assert(offsetof(wint_CantileverParamType, AmpB) == 330, "AmpB");
static_assert(offsetof(wint_CantileverParamType, AmpC) == 338, "AmpC");
static_assert(offsetof(wint_CantileverParamType, AmpD) == 346, "AmpD");
static_assert(offsetof(wint_CantileverParamType, ExtraOn) == 354, "ExtraOn");
static_assert(offsetof(wint_CantileverParamType, ExtraValue) == 356, "ExtraValue");
static_assert(offsetof(wint_CantileverParamType, Reserved364) == 364, "reserved tail");

static_assert(sizeof(wint_SPMCalType) == 104, "calibration record is 104 bytes");
static_assert(offsetof(wint_SPMCalType, ForceOn) == 0, "ForceOn");
static_assert(offsetof(wint_SPMCalType, ForceK) == 2, "ForceK");
static_assert(offsetof(wint_SPMCalType, ForceSens) == 10, "ForceSens");
static_assert(offsetof(wint_SPMCalType, ForceOffset) == 18, "ForceOffset");
static_assert(offsetof(wint_SPMCalType, FrictionOn) == 26, "FrictionOn");
static_assert(offsetof(wint_SPMCalType, FrictionOffset) == 28, "FrictionOffset");
static_assert(offsetof(wint_SPMCalType, FrictionA) == 36, "FrictionA");
static_assert(offsetof(wint_SPMCalType, FrictionB) == 44, "FrictionB");
static_assert(offsetof(wint_SPMCalType, FrictionC) == 52, "FrictionC");
static_assert(offsetof(wint_SPMCalType, AmpOn) == 60, "AmpOn");
static_assert(offsetof(wint_SPMCalType, AmpA) == 62, "AmpA");
static_assert(offsetof(wint_SPMCalType, AmpB) == 70, "AmpB");
static_assert(offsetof(wint_SPMCalType, AmpC) == 78, "AmpC");
static_assert(offsetof(wint_SPMCalType, AmpD) == 86, "AmpD");
static_assert(offsetof(wint_SPMCalType, ExtraOn) == 94, "ExtraOn");
static_assert(offsetof(wint_SPMCalType, ExtraValue) == 96, "ExtraValue");
#endif

/* Reads the record stored under "Cantilever Parameters"; when there is none, fills the
 * defaults as dl_SetDefaultCantiParam does. */
TAVRIN_API void dl_GetCantiParam(wint_CantileverParamType* record);
/* Stores the record under "Cantilever Parameters" and makes it the calibration in force. */
TAVRIN_API void dl_SetCantiParam(const wint_CantileverParamType* record);
/* Fills the defaults. AmpC and AmpD keep what the caller's record held. */
TAVRIN_API void dl_SetDefaultCantiParam(wint_CantileverParamType* record);
/* The calibration in force, without the name; neither call touches the settings file. */
TAVRIN_API void dl_GetSPMCalParam(wint_SPMCalType* record);
TAVRIN_API void dl_SetSPMCalParam(const wint_SPMCalType* record);

#endif
