// SPS Mapping data sets: the set of an image, its pixel decoding, its queries, and the rules
// that a set read from a file must pass.
//
// The memory of a set (header block, entries, pixel blocks, the holders in the data list) is
// kept by the data store; see store/cits_memory.h, included here.
#pragma once

#include <cstddef>
#include <cstdint>

#include "store/cits_memory.h"
#include "tavrin/dl_mapping.h"
#include "tavrin/image_header.h"

// ---- decoding ----

// The physical value of a pixel of image `entry`: linear flags between z_low and z_high, log
// current from the instrument code; any other flag is a program error and 0.0.
float CITSData2Current(const CITSImageEntryType* entry, uint16_t raw);

// ---- access ----

// Row `row` of image `image`. Null with the program error "GetCITSImagePtr" without a header or
// for an image outside 0 to 4095. An image from ni to 4095 is no error, but there is no block
// behind it: the answer is null.
uint16_t* GetCITSImagePtr(const CITSHeaderType* header, int image, uint32_t row);
// The image whose sweep value is closest to `voltage`; among equal distances the lowest index.
// Null header: program error "GetNearestCITSVoltage", 0.
int GetNearestCITSVoltage(float voltage, const CITSHeaderType* header);
// The smallest and the largest sweep value.
void GetCITSVoltageRange(const CITSHeaderType* header, float* low, float* high);
// The smallest z_low and the largest z_high of all entries.
void GetCITSDataRange(const CITSHeaderType* header, float* low, float* high);
// The sweep is a voltage: MapType 12, 13, 60, or 51 with LMCSweepType 2.
bool IsCITSVoltageAxis(const ImageHeaderType* image);
// "V" for a voltage sweep, else "nm".
const char* GetCITSSweepUnit(const ImageHeaderType* image);

// ---- validity and upgrade of a set read from a file ----

// 1 when the header may be read; the first failing group writes its log line.
int CheckValidCITSHeader(const CITSHeaderType* header);
// 1 when the entry's fields are within their ranges.
int CheckValidCITSImageEntry(const CITSImageEntryType* entry);
// Brings an entry of an older set up to date by the revision of the image's set.
void UpdateCITSImageHeader(ImageHeaderType* image, CITSImageEntryType* entry);
// The number of bad hit records of the image (0: all good); -1 with the program error
// "CheckLMCThresholdHitData %d %d %d" (image, set and hit data present, as 0 or 1) when the
// image, its set or its hit data are missing or the square mapping test fails.
int CheckLMCThresholdHitData(const ImageHeaderType* image);
// Hands the data type word of every entry of the image's set to `visit` (the upgrade of old
// records recodes them with the record's own).
void WalkCITSEntrySourceWords(ImageHeaderType* image, void (*visit)(uint32_t* word, void* context), void* context);

// ---- kinds of set ----

// 1 for a force-curve mapping (MapType 15 or 51), else 0; null image: 0.
int IsFCMappingData(const ImageHeaderType* image);
// 1 for an F-V mapping (MapType 60), else 0.
int IsFVMappingData(const ImageHeaderType* image);
// The name of the kind of mapping: "I-V", "S-V", "I-S", "Force curve", "Friction force curve",
// "F-V", "FFT analysis", or "SPS Mapping" for any other MapType.
const char* CITSKindName(const ImageHeaderType* image);

// ---- entry points' work ----

// Every sweep value of the image's set into out as doubles; answers ni, or 0 with nothing
// written without an image or a set.
int GetCITSCurrentImageVoltages(const ImageHeaderType* image, double* out);
// The 62-byte cantilever block of the image out; 1, or 0 (nothing copied) without an image,
// for LMCMode 0, DataSource other than 4, or a first byte 0.
int GetLMCantileverParam(const ImageHeaderType* image, wint_LMCantileverImageParamType* param);
// The block into the image.
void SetLMCantileverParam(ImageHeaderType* image, const wint_LMCantileverImageParamType* param);
// The block into the current image, which is shown again.
void SetLMCantileverParamCommand(const wint_LMCantileverImageParamType* param);
constexpr size_t kLMCantileverParamOffset = 3246;

// ---- the set as one array ----

// The set of the image as ni * cy * cx values, image after image, row after row: physical
// values (f32, CITSData2Current) or, with `codes`, the raw u16 codes. `out` holds
// CITSCubeBytes. False (nothing written) without a set or pixel blocks.
size_t CITSCubeBytes(const ImageHeaderType* image, bool codes);
bool CITSCube(const ImageHeaderType* image, bool codes, void* out);
