#include "store/image_header.h"
#include "display/contents_grid.h"
#include "display/default_tables.h"
#include "host/errors.h"
#include "platform/clock.h"
#include "store/data_types.h"
#include "store/memory.h"

#include <cstring>

namespace {

template <typename T>
void Put(uint8_t* block, size_t offset, T value)
{
    std::memcpy(block + offset, &value, sizeof value);
}

bool IsPowerOfTwoIn(int n, int lo, int hi)
{
    return n >= lo && n <= hi && (n & (n - 1)) == 0;
}

// The first rectangle of the profile block: four i32 words at its start.
void SetFirstProfileRectangle(ImageHeaderType* record, int nx, int ny)
{
    int32_t rect[4] = {nx / 4, ny / 4, 3 * nx / 4, 3 * ny / 4};
    std::memcpy(record->ProfileBlock, rect, sizeof rect);
}

} // namespace

void DefaultView3DBlock(uint8_t block[446])
{
    std::memset(block, 0, 446);
    Put<int32_t>(block, 0, 32);
    Put<float>(block, 4, 30.0f);
    Put<float>(block, 12, 20.0f);
    Put<float>(block, 16, 0.1f);
    Put<float>(block, 24, 1.21f);
    Put<float>(block, 32, 0.2f);
    Put<float>(block, 40, 4.0f);
    Put<float>(block, 44, 4.0f);
    Put<float>(block, 48, 0.5f);
    Put<float>(block, 52, 0.5f);
    Put<float>(block, 56, 10.0f);
    const int16_t levels[6] = {255, 128, 64, 0, 255, 0};
    for (int i = 0; i < 6; ++i) Put<int16_t>(block, 60 + 2 * i, levels[i]);
    Put<float>(block, 88, 1.0f);
    for (int i = 0; i < 5; ++i) Put<int16_t>(block, 94 + 2 * i, 1);
    // The caption font: a LOGFONT of 60 bytes, weight 400, character set 1, pitch and family
    // 0x30, face "MS Shell Dlg".
    Put<int32_t>(block, 108 + 16, 400);
    block[108 + 23] = 1;
    block[108 + 27] = 0x30;
    std::memcpy(block + 108 + 28, "MS Shell Dlg", 12);
    Put<uint32_t>(block, 168, 0xFFFFFF);
    Put<float>(block, 174, 1.0f);
    Put<float>(block, 182, 0.75f);
    Put<float>(block, 186, 0.75f);
    Put<float>(block, 190, 0.3f);
    Put<int16_t>(block, 194, 1);
    Put<int16_t>(block, 196, 0);
    Put<int16_t>(block, 198, 1);
    Put<uint32_t>(block, 200, 1);
}

void StampCreated(ImageHeaderType* record)
{
    LocalTime now = GetLocalTime();
    record->CreatedDate = ToDosDate(now);
    record->CreatedTime = ToDosTime(now);
    record->CreatedFileTime = LocalTimeToFileTime(now);
}

void StampSaved(ImageHeaderType* record)
{
    LocalTime now = GetLocalTime();
    record->SavedDate = ToDosDate(now);
    record->SavedTime = ToDosTime(now);
    record->SavedFileTime = LocalTimeToFileTime(now);
}

void SetDefaultRecordColours(ImageHeaderType* record)
{
    constexpr int kDefaultColourTable = 3;
    BuildDefaultColourTableBytes(kDefaultColourTable, record->LutRed, record->LutGreen, record->LutBlue);
}

void InitImageHeader(ImageHeaderType* record, int nx, int ny)
{
    if (!record) {
        ProgramError("InitImageHeader");
        return;
    }
    std::memset(record, 0, TAVRIN_HEADER_STORED_BYTES);
    record->FFTDataPtr = nullptr;
    record->CITSHeaderPtr = nullptr;
    record->SPSRefDataPtr = nullptr;
    record->LMCHitDataPtr = nullptr;
    record->LMCHitDataCx = record->LMCHitDataCy = 0;
    record->nx = static_cast<int16_t>(nx);
    record->ny = static_cast<int16_t>(ny);
    record->RevNo = kCurrentRevision;
    record->SubRevNo = kCurrentSubRevision;
    record->ImType1 = IMTYPE_IMAGE;
    record->DataSource = 1;
    record->DisplayMode = 1;
    StampCreated(record);
    StampSaved(record);
    for (int i = 0; i < 256; ++i) record->ImageLUT[i] = static_cast<uint8_t>(i);
    SetDefaultRecordColours(record);
    record->STSPosX = record->STSPosY = -1;
    record->RouteEndX = record->RouteEndY = -1;
    record->SPSOwnerId = -1;
    SetFirstProfileRectangle(record, nx, ny);
    DefaultView3DBlock(record->View3DBlock);
    record->Contrast = 128.0f;
    record->Gamma = 1.0f;
    record->LMCThreshold1Dir = 3;
    record->LMCThreshold2Dir = 3;
    record->LMCSearchFrom = 16;
    record->LMCSearchTo = 1024;
    record->LMCSweepType = 1;
    record->CrossSectionTopo = 1;
}

int CheckValidImageHeader(const ImageHeaderType* record)
{
    if (!record) {
        ProgramError("CheckValidImageHeader");
        return 0;
    }
    int largest = record->CITSHeader ? 512 : 4096;
    if (!IsPowerOfTwoIn(record->nx, 16, largest)) return 0;
    if (record->ny != record->nx) return 0;
    return record->RevNo >= 0 && record->RevNo <= kCurrentRevision;
}

int CheckValidSpecHeader(const ImageHeaderType* record)
{
    if (!record) {
        ProgramError("CheckValidSpecHeader");
        return 0;
    }
    if (record->nx < 3 || record->nx > 8192) return 0;
    return record->RevNo >= 0 && record->RevNo <= kCurrentRevision;
}

int CheckHeaderIsImageType(const ImageHeaderType* record)
{
    if (!record) return 0;
    switch (record->ImType1) {
    case IMTYPE_IMAGE: return 1;
    case IMTYPE_SPECTRUM: case IMTYPE_PROFILE: case IMTYPE_HISTOGRAM: case IMTYPE_FREQUENCY_SWEEP:
    case IMTYPE_PHASE_SHIFT: case IMTYPE_SCAN_LINE: case IMTYPE_SCAN_LINE2: return 0;
    default:
        ProgramError("CheckHeaderIsImageType %d", static_cast<int>(record->ImType1));
        return 0;
    }
}

int CheckHeaderIsSpecType(const ImageHeaderType* record)
{
    if (!record) return 0;
    switch (record->ImType1) {
    case IMTYPE_IMAGE: return 0;
    case IMTYPE_SPECTRUM: case IMTYPE_PROFILE: case IMTYPE_HISTOGRAM: case IMTYPE_FREQUENCY_SWEEP:
    case IMTYPE_PHASE_SHIFT: case IMTYPE_SCAN_LINE: case IMTYPE_SCAN_LINE2: return 1;
    default:
        ProgramError("CheckHeaderIsSpecType %d", static_cast<int>(record->ImType1));
        return 0;
    }
}

bool HasPhysicalSize(const ImageHeaderType* record)
{
    if (!record) {
        ProgramError("HasPhysicalSize");
        return false;
    }
    return record->ImageSizeX > 0.01f && record->ImageSizeY > 0.01f && record->SPMData != 0;
}

long NoOfBytesInImage(int nx, int ny)
{
    if (nx >= 12289 || ny >= 4097) ProgramError("NoOfBytesInImage");
    return static_cast<long>(nx) * 2 * ny;
}

uint16_t GetImagePoint(const ImageHeaderType* record, int x, int y)
{
    if (!record || !record->PixData || record->ImType1 != IMTYPE_IMAGE || x < 0 || y < 0 || x >= record->nx ||
        y >= record->ny) {
        ProgramError("GetImagePoint (%d %d)", x, y);
        return 0;
    }
    return record->PixData[static_cast<size_t>(y) * record->nx + x];
}

void ZeroImageData(ImageHeaderType* record)
{
    if (!record || !record->PixData) {
        ProgramError("ZeroImageData");
        return;
    }
    if (record->nx > 0 && record->ny > 0)
        std::memset(record->PixData, 0, static_cast<size_t>(record->nx) * record->ny * 2);
}

void CopyImageData(ImageHeaderType* destination, const ImageHeaderType* source)
{
    if (!destination || !source || !destination->PixData || !source->PixData || destination->nx != source->nx ||
        destination->ny != source->ny || source->nx <= 0 || source->ny <= 0) {
        ProgramError("CopyImageData1");
        return;
    }
    std::memmove(destination->PixData, source->PixData, static_cast<size_t>(source->nx) * source->ny * 2);
}

int CopyImageHeader(ImageHeaderType* destination, const ImageHeaderType* source, int copyHitData)
{
    if (!destination || !source) {
        ProgramError("CopyImageHeader 1");
        return 1;
    }
    if (destination == source) return 0;
    std::memcpy(destination, source, TAVRIN_HEADER_STORED_BYTES);
    // The block pointers travel with their stored flags, as the stored words once held them.
    destination->FFTDataPtr = source->FFTDataPtr;
    destination->CITSHeaderPtr = source->CITSHeaderPtr;
    destination->SPSRefDataPtr = source->SPSRefDataPtr;
    SetView3DOpen(destination, 0);
    destination->LMCThresholdHitDataPtr = 0;
    destination->LMCHitDataPtr = nullptr;
    destination->LMCHitDataCx = destination->LMCHitDataCy = 0;
    if (copyHitData && source->CITSHeader && source->LMCHitDataPtr) {
        if (!source->LMCThreshold1On && !source->LMCThreshold2On) {
            ProgramError("CopyImageHeadersrc  %d %d", source->LMCThreshold1On, source->LMCThreshold2On);
            return 0;
        }
        // New records of the same size take a copy: two records never share one block.
        if (!AllocateHitRecords(destination, source->LMCHitDataCx, source->LMCHitDataCy)) {
            ProgramError("CopyImageHeader 2");
            return 1;
        }
        const size_t bytes = static_cast<size_t>(source->LMCHitDataCx) * source->LMCHitDataCy * kHitRecordBytes;
        std::memcpy(destination->LMCHitDataPtr, source->LMCHitDataPtr, bytes);
    }
    return 0;
}

void CopyHeaderPointers(ImageHeaderType* destination, const ImageHeaderType* source)
{
    if (!destination || !source) {
        ProgramError("CopyHeaderPointers");
        return;
    }
    destination->PixHandle = source->PixHandle;
    destination->PixData = source->PixData;
}

void FreeHeader(ImageHeaderType* record)
{
    if (!record) {
        ProgramError("FreeHeader");
        return;
    }
    RemoveFromFS(record);   // no contents grid keeps a pointer to a freed record
    FreeHitData(record);
    efree(record);
}

uint32_t AdcSrc2DataSource(uint32_t adcSrc) { return GetImageDisplayType(adcSrc); }

int16_t View3DOpen(const ImageHeaderType* record)
{
    int16_t open;
    std::memcpy(&open, record->View3DBlock + kView3DOpenOffset, sizeof open);
    return open;
}

void SetView3DOpen(ImageHeaderType* record, int16_t open)
{
    std::memcpy(record->View3DBlock + kView3DOpenOffset, &open, sizeof open);
}

void SetFFTBlock(ImageHeaderType* record, float* block)
{
    record->FFTDataPtr = block;
    record->FFTData = block ? 1 : 0;
}

void SetCITSBlock(ImageHeaderType* record, CITSHeaderType* block)
{
    record->CITSHeaderPtr = block;
    record->CITSHeader = block ? 1 : 0;
}

void SetSPSRefChain(ImageHeaderType* record, ImageHeaderType* first)
{
    record->SPSRefDataPtr = first;
    record->SPSRefData = first ? 1 : 0;
}

float* SpecY(const ImageHeaderType* record)
{
    return reinterpret_cast<float*>(record->PixData);
}

float* SpecX(const ImageHeaderType* record)
{
    return record->PixData ? reinterpret_cast<float*>(record->PixData) + record->nx : nullptr;
}
