#include "files/image_blocks.h"
#include "files/attached_spectra.h"
#include "files/cits_file.h"
#include "host/errors.h"
#include "store/cits_memory.h"
#include "store/image_header.h"
#include "store/memory.h"

#include <cstring>

namespace {

// The set, if one was read, and its hit data.
void DropMapping(ImageHeaderType* record)
{
    if (record->CITSHeaderPtr) DeallocateCITSDataSet(record->CITSHeaderPtr);
    SetCITSBlock(record, nullptr);
    FreeHitData(record);
}

void ClearMappingAndFollowers(ImageHeaderType* record)
{
    DropMapping(record);
    FreeSPSRefChain(record);
}

} // namespace

bool CheckWrite(long long written, size_t wanted)
{
    if (written < 0) {
        Error(ERR_WRITING2);
        return false;
    }
    if (static_cast<size_t>(written) < wanted) {
        Error(ERR_DISK_FULL);
        return false;
    }
    return true;
}

bool CheckRead(long long got, size_t wanted)
{
    if (got < 0) {
        Error(ERR_READING2);
        return false;
    }
    if (static_cast<size_t>(got) < wanted) {
        Error(ERR_FILE_TOO_SHORT);
        return false;
    }
    return true;
}

size_t FFTBlockBytes(const ImageHeaderType* record)
{
    if (record->nx <= 0 || record->ny <= 0) return 0;
    return static_cast<size_t>(record->nx) * static_cast<size_t>(record->ny) * 8;
}

int ReadFFTBlock(FileHandle file, ImageHeaderType* record)
{
    const size_t bytes = FFTBlockBytes(record);
    MemHandleType pair;
    if (bytes == 0 || !AllocateMem(bytes, 1, &pair)) return 0;
    if (!CheckRead(FileRead(file, pair.Ptr, bytes), bytes)) {
        FreeMem(pair.Handle, pair.Ptr);
        return 0;
    }
    SetFFTBlock(record, static_cast<float*>(pair.Ptr));
    return 1;
}

int ReadMappingBlock(FileHandle file, ImageHeaderType* record) { return LoadCITSDataSet(file, record); }

int ReadAttachedSpectra(FileHandle file, ImageHeaderType* record)
{
    // A short chain is no failure: the image keeps the spectra that could be read.
    ReadSPSRefData(file, record);
    return 1;
}

int ReadHitData(FileHandle file, ImageHeaderType* record)
{
    // Records that are short or bad cost the whole set; records that could not be allocated
    // only themselves.
    return LoadLMCThresholdHitData(file, record) == 0 ? 1 : 0;
}

int ReadBlocksBehindPixels(FileHandle file, ImageHeaderType* record, bool fftOnly, bool* imageKept)
{
    if (imageKept) *imageKept = false;
    if (record->FFTData) {
        if (!ReadFFTBlock(file, record)) {
            SetFFTBlock(record, nullptr);
            ClearMappingAndFollowers(record);
            return 0;
        }
    }
    if (fftOnly) return 1;
    if (record->CITSHeader) {
        if (!ReadMappingBlock(file, record)) {
            ClearMappingAndFollowers(record);
            if (imageKept) *imageKept = true;
            return 0;
        }
    }
    if (record->nSPSRefData > 0) {
        if (!ReadAttachedSpectra(file, record)) return 0;
    }
    if (record->LMCThresholdHitDataPtr) {
        if (!ReadHitData(file, record)) {
            // Without its hit data the mapping goes too; the spectra read before them stay.
            DropMapping(record);
            if (imageKept) *imageKept = true;
            return 0;
        }
    }
    return 1;
}

void MatchBlockFlagsToBlocks(ImageHeaderType* record)
{
    if (!record->FFTDataPtr) record->FFTData = 0;
    if (!record->CITSHeaderPtr) record->CITSHeader = 0;
    if (!record->SPSRefDataPtr) record->SPSRefData = 0;
    if (!record->LMCHitDataPtr) record->LMCThresholdHitDataPtr = 0;
}

void FreeLoadedBlocks(ImageHeaderType* record)
{
    efree(record->FFTDataPtr);
    SetFFTBlock(record, nullptr);
    DropMapping(record);
    FreeSPSRefChain(record);
}

int WriteFFTBlock(FileHandle file, const ImageHeaderType* record)
{
    if (!record->FFTDataPtr || record->nx <= 0 || record->ny <= 0) return 1;
    const size_t rowBytes = static_cast<size_t>(record->nx) * 8;
    const auto* bytes = reinterpret_cast<const uint8_t*>(record->FFTDataPtr);
    for (int y = 0; y < record->ny; ++y)
        if (!CheckWrite(FileWrite(file, bytes + static_cast<size_t>(y) * rowBytes, rowBytes), rowBytes)) return 0;
    return 1;
}

long long MappingBlockBytes(const ImageHeaderType* record) { return CITSBlockBytes(record); }

int WriteMappingBlock(FileHandle file, const ImageHeaderType* record) { return SaveCITSDataSet(file, record); }

int WriteHitData(FileHandle file, const ImageHeaderType* record) { return SaveLMCThresholdHitData(file, record) == 0 ? 1 : 0; }

void ClearUnwrittenBlockFlags(const ImageHeaderType* record, uint8_t* stored)
{
    // A set of 0 images has no block in the file, and its hit data go with it.
    if (!record->CITSHeaderPtr || record->CITSHeaderPtr->ni >= 1) return;
    const uint32_t none = 0;
    std::memcpy(stored + offsetof(ImageHeaderType, CITSHeader), &none, sizeof none);
    std::memcpy(stored + offsetof(ImageHeaderType, LMCThresholdHitDataPtr), &none, sizeof none);
}

int WriteAttachedSpectra(FileHandle file, const ImageHeaderType* record, int referring, int attached)
{
    return WriteSPSRefData(file, record, referring, attached);
}
