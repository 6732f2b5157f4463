#include "files/cits_file.h"
#include "files/image_blocks.h"
#include "host/errors.h"
#include "host/wait.h"
#include "mapping/cits.h"
#include "store/image_header.h"
#include "store/memory.h"

#include <algorithm>
#include <cfloat>
#include <cstring>

namespace {

constexpr size_t kStagingBytes = 16384;

size_t PlaneCodes(const CITSHeaderType* set)
{
    return static_cast<size_t>(set->cx > 0 ? set->cx : 0) * static_cast<size_t>(set->cy > 0 ? set->cy : 0);
}

bool IsEightBit(const ImageHeaderType* record) { return record->Compression != 0; }

// Each byte b of the plane's first half becomes the code b * 256, from the end backwards so that
// no byte is overwritten before it is read.
void WidenPlane(uint16_t* pixels, size_t count)
{
    const auto* bytes = reinterpret_cast<const uint8_t*>(pixels);
    for (size_t i = count; i-- > 0;) pixels[i] = static_cast<uint16_t>(bytes[i] << 8);
}

void DropSet(ImageHeaderType* record)
{
    DeallocateCITSDataSet(record->CITSHeaderPtr);
    SetCITSBlock(record, nullptr);
}

// The entries, until the first that fails its check. False on a short read.
bool ReadEntries(FileHandle file, ImageHeaderType* record, CITSHeaderType* set)
{
    for (int k = 0; k < set->ni; ++k) {
        CITSImageEntryType* entry = CITSEntry(set, k);
        uint8_t stored[TAVRIN_CITS_ENTRY_STORED_BYTES];
        if (!CheckRead(FileRead(file, stored, sizeof stored), sizeof stored)) return false;
        std::memcpy(entry, stored, sizeof stored);
        UpdateCITSImageHeader(record, entry);
        if (!CheckValidCITSImageEntry(entry)) break;
    }
    return true;
}

bool ReadPlanes(FileHandle file, const ImageHeaderType* record, CITSHeaderType* set)
{
    const size_t codes = PlaneCodes(set);
    const size_t bytes = IsEightBit(record) ? codes : codes * 2;
    for (int k = 0; k < set->ni; ++k) {
        uint16_t* pixels = CITSPixels(CITSEntry(set, k));
        if (!CheckRead(FileRead(file, pixels, bytes), bytes)) return false;
        if (IsEightBit(record)) WidenPlane(pixels, codes);
    }
    return true;
}

int LoadSet(FileHandle file, ImageHeaderType* record)
{
    const long long start = FileSeek(file, 0, FileOrigin::Current);
    uint8_t stored[TAVRIN_CITS_HEADER_STORED_BYTES];
    if (start < 0 || !CheckRead(FileRead(file, stored, sizeof stored), sizeof stored)) return 0;
    CITSHeaderType probe;
    std::memset(&probe, 0, sizeof probe);
    std::memcpy(&probe, stored, sizeof stored);
    if (!CheckValidCITSHeader(&probe)) {
        Error(ERR_INVALID_HEADER);
        return 0;
    }
    // A file too short for the entries and planes it announces is refused before the planes
    // are taken: a damaged header must not claim gigabytes of memory for bytes that are not there.
    const long long planeBytes = static_cast<long long>(probe.cx) * probe.cy * (IsEightBit(record) ? 1 : 2);
    const long long needed = static_cast<long long>(probe.ni) * (TAVRIN_CITS_ENTRY_STORED_BYTES + planeBytes);
    const long long here = start + static_cast<long long>(sizeof stored);
    const long long end = FileSeek(file, 0, FileOrigin::End);
    if (end < 0 || FileSeek(file, here, FileOrigin::Begin) != here) {
        Error(ERR_READING2);
        return 0;
    }
    if (end - here < needed) {
        Error(ERR_FILE_TOO_SHORT);
        return 0;
    }
    CITSHeaderType* set = AllocateCITSDataSet(probe.ni, probe.cx, probe.cy);
    if (!set) return 0;
    // The stored bytes over the new header: the low half of set_id is the file's.
    std::memcpy(set, stored, sizeof stored);
    SetCITSBlock(record, set);
    if (!ReadEntries(file, record, set)) {
        DropSet(record);
        return 0;
    }
    // The pixels stand behind all ni stored entries, however many of them were read.
    const long long planes = start + static_cast<long long>(sizeof stored) +
                             static_cast<long long>(set->ni) * TAVRIN_CITS_ENTRY_STORED_BYTES;
    if (FileSeek(file, planes, FileOrigin::Begin) != planes) {
        Error(ERR_READING2);
        DropSet(record);
        return 0;
    }
    if (!ReadPlanes(file, record, set)) {
        DropSet(record);
        return 0;
    }
    return 1;
}

bool WriteEntries(FileHandle file, const CITSHeaderType* set)
{
    constexpr int kPerWrite = static_cast<int>(kStagingBytes / TAVRIN_CITS_ENTRY_STORED_BYTES);
    uint8_t staging[kPerWrite * TAVRIN_CITS_ENTRY_STORED_BYTES];
    for (int first = 0; first < set->ni; first += kPerWrite) {
        const int count = std::min(kPerWrite, set->ni - first);
        for (int i = 0; i < count; ++i)
            std::memcpy(staging + static_cast<size_t>(i) * TAVRIN_CITS_ENTRY_STORED_BYTES, CITSEntry(set, first + i),
                        TAVRIN_CITS_ENTRY_STORED_BYTES);
        const size_t bytes = static_cast<size_t>(count) * TAVRIN_CITS_ENTRY_STORED_BYTES;
        if (!CheckWrite(FileWrite(file, staging, bytes), bytes)) return false;
    }
    return true;
}

// The high byte of every code, through the staging buffer, refilled as often as the plane
// needs.
bool WriteEightBitPlane(FileHandle file, const uint16_t* pixels, size_t codes)
{
    uint8_t staging[kStagingBytes];
    for (size_t first = 0; first < codes; first += kStagingBytes) {
        const size_t count = std::min(kStagingBytes, codes - first);
        for (size_t i = 0; i < count; ++i) staging[i] = static_cast<uint8_t>(pixels[first + i] >> 8);
        if (!CheckWrite(FileWrite(file, staging, count), count)) return false;
    }
    return true;
}

bool WritePlanes(FileHandle file, const ImageHeaderType* record, const CITSHeaderType* set)
{
    const size_t codes = PlaneCodes(set);
    for (int k = 0; k < set->ni; ++k) {
        const uint16_t* pixels = CITSPixels(CITSEntry(set, k));
        if (!pixels) {
            ProgramError("SaveCITSDataSet");
            return false;
        }
        if (IsEightBit(record)) {
            if (!WriteEightBitPlane(file, pixels, codes)) return false;
        } else if (!CheckWrite(FileWrite(file, pixels, codes * 2), codes * 2)) {
            return false;
        }
    }
    return true;
}

// New records behind the records in memory: no hit, no channel, the largest f32 as position.
bool WriteNewHitRecords(FileHandle file, size_t count)
{
    LMCThresholdHitType fresh;
    std::memset(&fresh, 0, sizeof fresh);
    fresh.position = FLT_MAX;
    constexpr size_t kPerWrite = kStagingBytes / sizeof(LMCThresholdHitType);
    uint8_t staging[kPerWrite * sizeof(LMCThresholdHitType)];
    for (size_t i = 0; i < kPerWrite; ++i) std::memcpy(staging + i * sizeof fresh, &fresh, sizeof fresh);
    for (size_t done = 0; done < count; done += kPerWrite) {
        const size_t bytes = std::min(kPerWrite, count - done) * sizeof fresh;
        if (!CheckWrite(FileWrite(file, staging, bytes), bytes)) return false;
    }
    return true;
}

} // namespace

int LoadCITSDataSet(FileHandle file, ImageHeaderType* record)
{
    if (!record) {
        ProgramError("LoadCITSDataSet");
        return 0;
    }
    if (!record->CITSHeader) return 1;
    SetCITSBlock(record, nullptr);   // the stored word is only a flag
    ap_SetHourGlass(true);
    const int result = LoadSet(file, record);
    ap_SetHourGlass(false);
    return result;
}

int SaveCITSDataSet(FileHandle file, const ImageHeaderType* record)
{
    if (!record) {
        ProgramError("SaveCITSDataSet");
        return 0;
    }
    const CITSHeaderType* set = record->CITSHeaderPtr;
    if (!set || set->ni < 1) return 1;
    ap_SetHourGlass(true);
    const bool ok = CheckWrite(FileWrite(file, set, TAVRIN_CITS_HEADER_STORED_BYTES), TAVRIN_CITS_HEADER_STORED_BYTES) &&
                    WriteEntries(file, set) && WritePlanes(file, record, set);
    ap_SetHourGlass(false);
    return ok ? 1 : 0;
}

int LoadLMCThresholdHitData(FileHandle file, ImageHeaderType* record)
{
    if (!record) {
        ProgramError("LoadLMCThresholdHitData");
        return 0;
    }
    record->LMCThresholdHitDataPtr = 0;
    const CITSHeaderType* set = record->CITSHeaderPtr;
    const int cx = set ? set->cx : 0;
    const int cy = set ? set->cy : 0;
    if (AllocateHeaderMemory_LMCThresholdHitDataPtr(record, cx, cy) != 0) return 0;
    const size_t bytes = static_cast<size_t>(cx) * static_cast<size_t>(cy) * sizeof(LMCThresholdHitType);
    if (!CheckRead(FileRead(file, record->LMCHitDataPtr, bytes), bytes)) {
        FreeHitData(record);
        return 1;
    }
    if (CheckLMCThresholdHitData(record) != 0) {
        Error(ERR_INVALID_HEADER);
        FreeHitData(record);
        return 1;
    }
    return 0;
}

int SaveLMCThresholdHitData(FileHandle file, const ImageHeaderType* record)
{
    if (!record || !record->LMCHitDataPtr) return 0;
    if (!IsSquareMappingImage(record)) {
        ProgramError("SaveLMCThresholdHitData np=%d", static_cast<int>(record->LMCPoints));
        return -1;
    }
    const int np = record->LMCPoints;
    const size_t wanted = np > 0 ? static_cast<size_t>(np) * static_cast<size_t>(np) : 0;
    const size_t held = static_cast<size_t>(record->LMCHitDataCx) * static_cast<size_t>(record->LMCHitDataCy);
    const size_t fromMemory = std::min(wanted, held);
    const size_t bytes = fromMemory * sizeof(LMCThresholdHitType);
    if (bytes && !CheckWrite(FileWrite(file, record->LMCHitDataPtr, bytes), bytes)) return -1;
    if (wanted > held && !WriteNewHitRecords(file, wanted - held)) return -1;
    return 0;
}

long long CITSBlockBytes(const ImageHeaderType* record)
{
    if (!record || !record->CITSHeaderPtr || record->CITSHeaderPtr->ni < 1) return 0;
    const long long perPixel = IsEightBit(record) ? 1 : 2;
    const long long plane = static_cast<long long>(record->nx) * record->ny * perPixel;
    return record->CITSHeaderPtr->ni * (plane + TAVRIN_CITS_ENTRY_STORED_BYTES) + TAVRIN_CITS_HEADER_STORED_BYTES;
}
