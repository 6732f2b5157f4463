/* Tavrin Processing: the mesh tool and the commands on regions chosen over an image.
 *
 * The mesh is a parallelogram of three corner points with a grid spacing that the host draws
 * over the current image and moves with the mouse. dl_GetMeshClass(purpose) hands the one mesh
 * object to the host's dialog with its purpose set; MeshInitialise fills the dialog's record;
 * the host reports every change with dl_ApMeshInfo; MeshFinish runs the command of the purpose:
 *   2   magnify an upright rectangle, else straighten a drifted parallelogram
 *   4   trim the image to the parallelogram
 *   8   unit cell (nothing runs)
 *   16  average the image over the lattice whose cell is the parallelogram
 *
 * Extract and replace: dl_ExtractArea lets the user pick a rectangle (two points) and makes a
 * copy with zeros outside it; after processing that copy, dl_ReplaceArea puts the rectangle
 * back into an image of the same size that the user chooses. dl_LatticeAverage picks three
 * points (origin, ends of the two cell vectors) and averages the image over that lattice. */
#ifndef TAVRIN_DL_MESH_H
#define TAVRIN_DL_MESH_H

#include "tavrin/types.h"

/* What the mesh is for: the handle the host passes to dl_GetMeshClass. */
typedef int32_t MeshHandleType;
#define TV_MESH_NONE 0
#define TV_MESH_MAGNIFY 2
#define TV_MESH_TRIM 4
#define TV_MESH_UNIT_CELL 8
#define TV_MESH_LATTICE 16

#pragma pack(push, 1)
/* A frame rectangle in frame store pixels (0 to 511), inclusive. */
typedef struct TvRect16 {
    int16_t left;
    int16_t top;
    int16_t right;
    int16_t bottom;
} TAVRIN_PACKED TvRect16;

/* The mesh's parameters, 64 bytes, the head of the mesh object. The frame rectangle is held in
 * frame store pixels of 16 bits (the frame is 512 pixels a side) and followed by 4 reserved
 * bytes, which the library writes as 0. */
typedef struct wint_MeshParamType {
    int32_t Purpose;        /*  0: TV_MESH_ value */
    int32_t Options;        /*  4 */
    uint32_t Colour;        /*  8: RGB of colour index 22 of the palette */
    int16_t P0[2];          /* 12: corner points in image pixels, x then y */
    int16_t P1[2];          /* 16 */
    int16_t P2[2];          /* 20 */
    uint8_t LockAngle;      /* 24: the four locks, set unless the purpose is 8 or 16 */
    uint8_t LockSize;       /* 25 */
    uint8_t LockShape;      /* 26 */
    uint8_t LockPlace;      /* 27 */
    int32_t PixelsX;        /* 28: size of the image, or 512 without one */
    int32_t PixelsY;        /* 32 */
    double SizeX;           /* 36: ImageSizeX, ImageSizeY, or 0.0 */
    double SizeY;           /* 44 */
    TvRect16 Frame;         /* 52: the image on the frame store, or 0, 0, 511, 511 */
    uint8_t Reserved[4];    /* 60 */
} TAVRIN_PACKED wint_MeshParamType;

/* The host's report of the mesh, 65 bytes. dl_ApMeshInfo corrects it in place. */
typedef struct MeshInfoType {
    uint16_t Word;          /*  0 */
    double Orientation;     /*  2: degrees */
    double Angle;           /* 10: degrees between the two sides */
    int32_t CentreX;        /* 18 */
    int16_t CentreY;        /* 22 */
    double SpacingX;        /* 24 */
    double SpacingY;        /* 32 */
    uint8_t RightAngle;     /* 40: the angle is held at 90 degrees */
    uint8_t EqualSpacing;   /* 41: both spacings follow the one that moved */
    uint8_t Further[23];    /* 42: kept as the host sent them */
} TAVRIN_PACKED MeshInfoType;
#pragma pack(pop)

#ifdef __cplusplus
static_assert(sizeof(TvRect16) == 8, "a 16-bit rectangle is 8 bytes");
static_assert(sizeof(wint_MeshParamType) == 64, "the mesh parameters are 64 bytes");
static_assert(offsetof(wint_MeshParamType, Purpose) == 0, "Purpose");
static_assert(offsetof(wint_MeshParamType, Options) == 4, "Options");
static_assert(offsetof(wint_MeshParamType, Colour) == 8, "Colour");
static_assert(offsetof(wint_MeshParamType, P0) == 12, "P0");
static_assert(offsetof(wint_MeshParamType, P1) == 16, "P1");
static_assert(offsetof(wint_MeshParamType, P2) == 20, "P2");
static_assert(offsetof(wint_MeshParamType, LockAngle) == 24, "LockAngle");
static_assert(offsetof(wint_MeshParamType, LockSize) == 25, "LockSize");
static_assert(offsetof(wint_MeshParamType, LockShape) == 26, "LockShape");
static_assert(offsetof(wint_MeshParamType, LockPlace) == 27, "LockPlace");
static_assert(offsetof(wint_MeshParamType, PixelsX) == 28, "PixelsX");
static_assert(offsetof(wint_MeshParamType, PixelsY) == 32, "PixelsY");
static_assert(offsetof(wint_MeshParamType, SizeX) == 36, "SizeX");
static_assert(offsetof(wint_MeshParamType, SizeY) == 44, "SizeY");
static_assert(offsetof(wint_MeshParamType, Frame) == 52, "Frame");
static_assert(offsetof(wint_MeshParamType, Reserved) == 60, "Reserved");
static_assert(sizeof(MeshInfoType) == 65, "the mesh report is 65 bytes");
static_assert(offsetof(MeshInfoType, Word) == 0, "Word");
static_assert(offsetof(MeshInfoType, Orientation) == 2, "Orientation");
static_assert(offsetof(MeshInfoType, Angle) == 10, "Angle");
static_assert(offsetof(MeshInfoType, CentreX) == 18, "CentreX");
static_assert(offsetof(MeshInfoType, CentreY) == 22, "CentreY");
static_assert(offsetof(MeshInfoType, SpacingX) == 24, "SpacingX");
static_assert(offsetof(MeshInfoType, SpacingY) == 32, "SpacingY");
static_assert(offsetof(MeshInfoType, RightAngle) == 40, "RightAngle");
static_assert(offsetof(MeshInfoType, EqualSpacing) == 41, "EqualSpacing");
static_assert(offsetof(MeshInfoType, Further) == 42, "Further");

/* The one mesh object; its parameters come first. The host's dialog calls its methods. */
class __attribute__((visibility("default"))) CMesh {
public:
    wint_MeshParamType Param;
    /* Text window of the tool's four information rows; 0 while closed. */
    int32_t InfoWindow;
    int32_t InfoOpen;

    /* Shows the current image when it is not shown plain, fills the parameters from it (or the
     * defaults without one), and copies them to p (when not null). Opens the information box. */
    void MeshInitialise(wint_MeshParamType* p);
    /* Runs the command of the purpose unless cancelled; Purpose is 0 afterwards in every case,
     * and the information box is closed. */
    void MeshFinish(bool cancelled);
    void CopyMeshParamToDlg(wint_MeshParamType* p) const;
    void CopyMeshParamFromDlg(const wint_MeshParamType* p);
};
#else
typedef struct CMesh CMesh;
#endif

/* Sets the mesh's Purpose to the handle and answers the one mesh object. */
TAVRIN_API CMesh* dl_GetMeshClass(MeshHandleType handle);
/* The host's report of the mesh on frame store `vfs`: kept, corrected in place (RightAngle
 * gives an angle of 90.0; with EqualSpacing the spacing that moved more since the last report
 * is taken for both), written to the information box when it is open, and handed back to the
 * host as the overlay record of that frame store. A null report removes the overlay. */
TAVRIN_API void dl_ApMeshInfo(MeshInfoType* info, int16_t vfs);

/* Extract: the user picks two corners (selection type 9); the result keeps the image size,
 * holds the codes of the rectangle and zeros elsewhere, and remembers the rectangle. */
TAVRIN_API void dl_ExtractArea(void);
/* Replace: the current image must come from an extract; the user picks an image of the same
 * size, and a copy of that image with the rectangle taken from the extract becomes current. */
TAVRIN_API void dl_ReplaceArea(void);
/* Lattice average: the user picks the origin and the ends of the two cell vectors (selection
 * type 15); the averaged cell is shown, and on request repeated over the whole image. */
TAVRIN_API void dl_LatticeAverage(void);

#endif
