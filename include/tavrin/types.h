/* Tavrin Processing: basic types of the public interface. */
#ifndef TAVRIN_TYPES_H
#define TAVRIN_TYPES_H

#include <stdint.h>
#include <stddef.h>

#ifdef __cplusplus
#define TAVRIN_EXTERN_C extern "C"
#define TAVRIN_BEGIN_C extern "C" {
#define TAVRIN_END_C }
#else
#define TAVRIN_EXTERN_C
#define TAVRIN_BEGIN_C
#define TAVRIN_END_C
#endif

/* Entry points of the library are exported with C linkage; everything else stays hidden. */
#define TAVRIN_API TAVRIN_EXTERN_C __attribute__((visibility("default")))

/* Records that cross to the host or into a file are byte-packed and little-endian. */
#define TAVRIN_PACKED __attribute__((packed))

typedef int32_t BOOL32;

#pragma pack(push, 1)
/* A font description, 60 bytes: the height counts tenths of a point. */
typedef struct TvLogFont {
    int32_t lfHeight;
    int32_t lfWidth;
    int32_t lfEscapement;
    int32_t lfOrientation;
    int32_t lfWeight;
    uint8_t lfItalic;
    uint8_t lfUnderline;
    uint8_t lfStrikeOut;
    uint8_t lfCharSet;
    uint8_t lfOutPrecision;
    uint8_t lfClipPrecision;
    uint8_t lfQuality;
    uint8_t lfPitchAndFamily;
    char lfFaceName[32];
} TAVRIN_PACKED TvLogFont;
#pragma pack(pop)

#ifdef __cplusplus
static_assert(sizeof(TvLogFont) == 60, "a font description is 60 bytes");
#endif

#endif
