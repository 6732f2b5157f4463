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

#endif
