// Operations on one ImageHeaderType record.
//
// A null record is reported as a program error with the operation's text, and the operation
// does nothing.
#pragma once

#include <cstddef>
#include <cstdint>

#include "tavrin/image_header.h"

// Classes of the item (ImType1).
enum ImageClass : uint32_t {
    IMTYPE_IMAGE = 1,
    IMTYPE_SPECTRUM = 2,
    IMTYPE_PROFILE = 3,
    IMTYPE_HISTOGRAM = 4,
    IMTYPE_FREQUENCY_SWEEP = 5,
    IMTYPE_PHASE_SHIFT = 7,
    IMTYPE_SCAN_LINE = 8,
    IMTYPE_SCAN_LINE2 = 9,
};

constexpr int kCurrentRevision = 700;
constexpr int kCurrentSubRevision = 42;
// The mark of a parameter that a file did not record: -3.4028235e38.
constexpr float kNotRecorded = -3.40282347e38f;
// Offset of View3DOpen within View3DBlock.
constexpr size_t kView3DOpenOffset = 172;

void InitImageHeader(ImageHeaderType* record, int nx, int ny);
int CheckValidImageHeader(const ImageHeaderType* record);
int CheckValidSpecHeader(const ImageHeaderType* record);
int CheckHeaderIsImageType(const ImageHeaderType* record);
int CheckHeaderIsSpecType(const ImageHeaderType* record);
bool HasPhysicalSize(const ImageHeaderType* record);
long NoOfBytesInImage(int nx, int ny);
uint16_t GetImagePoint(const ImageHeaderType* record, int x, int y);
void ZeroImageData(ImageHeaderType* record);
void CopyImageData(ImageHeaderType* destination, const ImageHeaderType* source);
int CopyImageHeader(ImageHeaderType* destination, const ImageHeaderType* source, int copyHitData);
void CopyHeaderPointers(ImageHeaderType* destination, const ImageHeaderType* source);
void FreeHeader(ImageHeaderType* record);
uint32_t AdcSrc2DataSource(uint32_t adcSrc);

// The built-in 3-D view settings that a new record carries.
void DefaultView3DBlock(uint8_t block[446]);
// Stamps the created or saved date and time (and file time) of a record with the clock.
void StampCreated(ImageHeaderType* record);
void StampSaved(ImageHeaderType* record);
// The default colour table of a new record into its own planes.
void SetDefaultRecordColours(ImageHeaderType* record);

// View3DOpen of the 3-D block.
int16_t View3DOpen(const ImageHeaderType* record);
void SetView3DOpen(ImageHeaderType* record, int16_t open);

// Block pointers: the stored flag and the run-time pointer always change together.
void SetFFTBlock(ImageHeaderType* record, float* block);
void SetCITSBlock(ImageHeaderType* record, struct CITSHeaderType* block);
void SetSPSRefChain(ImageHeaderType* record, ImageHeaderType* first);

// The sample planes of a spectrum.
float* SpecY(const ImageHeaderType* record);
float* SpecX(const ImageHeaderType* record);
