/* Tavrin Processing: elastic modulus from a force-curve mapping.
 *
 * A force-curve mapping is a mapping set whose image k holds the cantilever signal (V) at the
 * displacement of its entry, one ramp in and one ramp out. The host's Elastic Modulus dialog
 * runs the work in stages: pick a reference curve on a hard sample, calculate the two
 * sensitivities (V/nm) from it, convert every pixel to deflection against distance (Apply 1),
 * to force against deformation (Apply 2), and make the modulus image (Apply 3). A stage needs
 * the earlier ones. */
#ifndef TAVRIN_DL_ELASTIC_MODULUS_H
#define TAVRIN_DL_ELASTIC_MODULUS_H

#include "tavrin/types.h"

#pragma pack(push, 1)
/* The dialog's record, 312 bytes, stored in the settings under "Elastic Modulus". Status words:
 * 1 done, 2 not. */
typedef struct wint_ElasticModulusType {
    int32_t SmoothPoints;    /*   0: derivative window, odd, 5 to 25 (9) */
    double SlopeOutIn;       /*   4: sensitivity of the Out->In ramp, V/nm (computed) */
    double SlopeInOut;       /*  12: sensitivity of the In->Out ramp, V/nm (computed) */
    int32_t ContactMethod;   /*  20: 1 force minimum, 2 middle of the last fall to it (1) */
    double RampLimit;        /*  24: points with an X above this are cut from the ramp ends (1000) */
    double SpringConstant;   /*  32: force per nm of deflection (1) */
    double TipRadius;        /*  40: (2) */
    double PoissonRatio;     /*  48: (0.3) */
    char ValidText1[80];     /*  56: valid points after Apply 1 */
    char ValidText2[80];     /* 136: valid points after Apply 2 */
    char ResultText[80];     /* 216: minimum, maximum and average after Apply 3 */
    int32_t FCStatus;        /* 296: a reference curve is chosen */
    int32_t CalcStatus;      /* 300: the sensitivities are calculated */
    int32_t Apply1Status;    /* 304 */
    int32_t Apply2Status;    /* 308 */
} TAVRIN_PACKED wint_ElasticModulusType;
#pragma pack(pop)

#ifdef __cplusplus
static_assert(sizeof(wint_ElasticModulusType) == 312, "the elastic modulus record is 312 bytes");
static_assert(offsetof(wint_ElasticModulusType, SmoothPoints) == 0, "SmoothPoints");
static_assert(offsetof(wint_ElasticModulusType, SlopeOutIn) == 4, "SlopeOutIn");
static_assert(offsetof(wint_ElasticModulusType, SlopeInOut) == 12, "SlopeInOut");
static_assert(offsetof(wint_ElasticModulusType, ContactMethod) == 20, "ContactMethod");
static_assert(offsetof(wint_ElasticModulusType, RampLimit) == 24, "RampLimit");
static_assert(offsetof(wint_ElasticModulusType, SpringConstant) == 32, "SpringConstant");
static_assert(offsetof(wint_ElasticModulusType, TipRadius) == 40, "TipRadius");
static_assert(offsetof(wint_ElasticModulusType, PoissonRatio) == 48, "PoissonRatio");
static_assert(offsetof(wint_ElasticModulusType, ValidText1) == 56, "ValidText1");
static_assert(offsetof(wint_ElasticModulusType, ValidText2) == 136, "ValidText2");
static_assert(offsetof(wint_ElasticModulusType, ResultText) == 216, "ResultText");
static_assert(offsetof(wint_ElasticModulusType, FCStatus) == 296, "FCStatus");
static_assert(offsetof(wint_ElasticModulusType, CalcStatus) == 300, "CalcStatus");
static_assert(offsetof(wint_ElasticModulusType, Apply1Status) == 304, "Apply1Status");
static_assert(offsetof(wint_ElasticModulusType, Apply2Status) == 308, "Apply2Status");
#endif

/* Lets the user pick the reference force curve (the data picker, type 64); writes "%d) %s"
 * (its number and title, at most 80 bytes) into text and takes the largest X of the curve as
 * RampLimit. Clears all stages. The number, or -1 when none was picked. */
TAVRIN_API int32_t dl_ElasticModulus_SelectFC(char* text);
/* Clears all stages and computes both sensitivities from the reference curve: 0, or 1 after
 * "Elastic Modulus: slope not found on Out->In" (or "on In->Out"). */
TAVRIN_API int32_t dl_ElasticModulus_Calculate(void);
/* The three stages; -1 without the earlier ones, else 0 on success (the stage is then done),
 * 1 after a report, 2 when the user cancelled. Apply 3 makes the modulus image, current. */
TAVRIN_API int32_t dl_ElasticModulus_Apply1(void);
TAVRIN_API int32_t dl_ElasticModulus_Apply2(void);
TAVRIN_API int32_t dl_ElasticModulus_Apply3(void);
/* Frees the curves of the stages and clears the point table and Apply 1 to 3. */
TAVRIN_API void dl_ElasticModulus_CloseDlg(void);
/* Fills the status words and texts and copies the record out: 1, or 0 after "No images in
 * memory". */
TAVRIN_API int32_t dl_GetElasticModulusParam(wint_ElasticModulusType* param);
/* Checks and takes the record: SmoothPoints made odd within 5 to 25; a RampLimit moved by more
 * than 0.001 or another ContactMethod clears Apply 1 to 3; a SpringConstant, TipRadius or
 * PoissonRatio of 0 or less keeps the stored value (1.0 when that is not positive either).
 * 0, or 1 after "No images in memory" or "Image is not SPS Mapping type". */
TAVRIN_API int32_t dl_SetElasticModulusParam(wint_ElasticModulusType* param);

#endif
