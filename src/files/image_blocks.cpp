#include "files/image_blocks.h"
#include "files/attached_spectra.h"
#include "host/errors.h"
#include "store/image_header.h"
#include "store/memory.h"

namespace {

void ClearMappingAndFollowers(ImageHeaderType* record)
{
    SetCITSBlock(record, nullptr);
    FreeSPSRefChain(record);
    FreeHitData(record);
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

int ReadMappingBlock(FileHandle, ImageHeaderType*)
{
    // The mapping data set has no reader yet: a file that carries one is not read.
    ProgramError("ReadMappingBlock");
    return 0;
}

int ReadAttachedSpectra(FileHandle file, ImageHeaderType* record)
{
    // A short chain is no failure: the image keeps the spectra that could be read.
    ReadSPSRefData(file, record);
    return 1;
}

int ReadHitData(FileHandle, ImageHeaderType*)
{
    // Hit data belong to the mapping data set, which has no reader yet.
    ProgramError("ReadHitData");
    return 0;
}

int ReadBlocksBehindPixels(FileHandle file, ImageHeaderType* record, bool fftOnly)
{
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
            return 0;
        }
    }
    if (record->nSPSRefData > 0) {
        if (!ReadAttachedSpectra(file, record)) return 0;
    }
    if (record->LMCThresholdHitDataPtr) {
        if (!ReadHitData(file, record)) {
            // Without its hit data the mapping goes too.
            ClearMappingAndFollowers(record);
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
    FreeSPSRefChain(record);
    FreeHitData(record);
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

long long MappingBlockBytes(const ImageHeaderType*)
{
    // The mapping block has no writer yet, so no image file carries one.
    return 0;
}

int WriteAttachedSpectra(FileHandle file, const ImageHeaderType* record, int referring, int attached)
{
    return WriteSPSRefData(file, record, referring, attached);
}
