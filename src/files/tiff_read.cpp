#include "files/tiff_read.h"
#include "display/view3d.h"
#include "files/delta_rows.h"
#include "files/image_blocks.h"
#include "files/old_revisions.h"
#include "files/tiff_header.h"
#include "host/errors.h"
#include "host/globals.h"
#include "host/log.h"
#include "host/prompts.h"
#include "host/text.h"
#include "store/data_list.h"
#include "store/image_header.h"
#include "store/memory.h"

#include <cstring>

bool FindFileLoad = false;

namespace {

constexpr int kBilevel = 16;

size_t PixelCount(const ImageHeaderType* record)
{
    return static_cast<size_t>(record->nx) * static_cast<size_t>(record->ny);
}

bool HasPixelBlock(const ImageHeaderType* record, const char* routine)
{
    if (!record || !record->PixData || record->nx <= 0 || record->ny <= 0) {
        ProgramError("%s", routine);
        return false;
    }
    return true;
}

// Each byte b of the block's first half becomes the code b * 256, from the end backwards so
// that no byte is overwritten before it is read.
void ExpandBytesToCodes(uint16_t* pixels, size_t count)
{
    const auto* bytes = reinterpret_cast<const uint8_t*>(pixels);
    for (size_t i = count; i-- > 0;) pixels[i] = static_cast<uint16_t>(bytes[i] << 8);
}

// One bit a pixel, least significant bit first: set 65535, clear 0; from the end backwards.
void ExpandBitsToCodes(uint16_t* pixels, size_t count)
{
    const auto* bytes = reinterpret_cast<const uint8_t*>(pixels);
    for (size_t i = count; i-- > 0;) pixels[i] = (bytes[i >> 3] >> (i & 7)) & 1 ? 0xFFFF : 0;
}

bool ReadPixelBytes(FileHandle file, ImageHeaderType* record, size_t bytes, const char* routine)
{
    const long long got = FileRead(file, record->PixData, bytes);
    if (got == static_cast<long long>(bytes)) return true;
    if (DebugMode) Log("%s %d %d\n", routine, static_cast<int>(got), static_cast<int>(bytes));
    CheckRead(got, bytes);
    return false;
}

bool ReadPackedRows(FileHandle file, ImageHeaderType* record, int shift, bool oldReader, long long* consumed,
                    const char* routine)
{
    if (shift < 0) {
        Error(ERR_INVALID_HEADER);
        return false;
    }
    switch (ReadDeltaRows(file, record->nx, record->ny, shift, oldReader, record->PixData, consumed)) {
    case DeltaReadResult::Complete: return true;
    case DeltaReadResult::NoMemory: Error(ERR_NO_MEMORY); return false;
    case DeltaReadResult::ReadFailed:
        if (DebugMode) Log("%s %d %d\n", routine, static_cast<int>(*consumed), -1);
        Error(ERR_READING2);
        return false;
    case DeltaReadResult::Short: break;
    }
    if (DebugMode) Log("%s %d %d\n", routine, static_cast<int>(*consumed), -1);
    Error(ERR_FILE_TOO_SHORT);
    return false;
}

// Behind packed pixels the file is positioned by the bytes the rows took, in the plain layout.
bool PositionBehindPackedPixels(FileHandle file, const ImageHeaderType* record, long long consumed)
{
    if (!record->OldBlockFlag && !record->CITSHeader && !record->FFTData) return true;
    const long long at = consumed + static_cast<long long>(StoredHeaderBytes(record->RevNo));
    if (FileSeek(file, at, FileOrigin::Begin) == at) return true;
    Error(ERR_READING2);
    return false;
}

// The pixels of revision 104 and later; the file is left at the first block behind them.
bool ReadPixelsVer104Later(FileHandle file, ImageHeaderType* record)
{
    static const char* const kRoutine = "loadImageVer104Later";
    if (!HasPixelBlock(record, kRoutine)) return false;
    const size_t count = PixelCount(record);
    const int compression = record->Compression;
    long long consumed = 0;
    if (compression == 0) {
        const int bits = record->BitsPerPixel;
        if (bits < 1 || bits > 16) {
            Error(ERR_INVALID_HEADER);
            return false;
        }
        const size_t bytes = count * static_cast<size_t>(bits) / 8;
        if (!ReadPixelBytes(file, record, bytes, kRoutine)) return false;
        if (bits == 8) {
            ExpandBytesToCodes(record->PixData, count);
        } else if (bytes < count * 2) {
            std::memset(reinterpret_cast<uint8_t*>(record->PixData) + bytes, 0, count * 2 - bytes);
        }
    } else if (compression == kBilevel) {
        const size_t bytes = (count + 7) / 8;
        if (!ReadPixelBytes(file, record, bytes, kRoutine)) return false;
        ExpandBitsToCodes(record->PixData, count);
        consumed = static_cast<long long>(bytes);
    } else if (!ReadPackedRows(file, record, compression - 1, false, &consumed, kRoutine)) {
        return false;
    }
    return compression == 0 || PositionBehindPackedPixels(file, record, consumed);
}

// The pixels of revision 103 and older.
bool ReadPixelsUptoVer103(FileHandle file, ImageHeaderType* record)
{
    static const char* const kRoutine = "loadImageUptoVer103";
    if (!HasPixelBlock(record, kRoutine)) return false;
    const size_t count = PixelCount(record);
    const int compression = record->Compression;
    if (compression == 0) {
        if (!ReadPixelBytes(file, record, count, kRoutine)) return false;
        ExpandBytesToCodes(record->PixData, count);
        return true;
    }
    long long consumed = 0;
    return ReadPackedRows(file, record, compression + 7, true, &consumed, kRoutine) &&
           PositionBehindPackedPixels(file, record, consumed);
}

// Old layouts (BitsPerPixel 0 or 8) take the reader of the oldest revisions.
bool IsOldPixelLayout(const ImageHeaderType* record)
{
    return record->BitsPerPixel == 0 || record->BitsPerPixel == 8;
}

} // namespace

int loadImageVer104Later(FileHandle file, ImageHeaderType* record)
{
    if (!ReadPixelsVer104Later(file, record)) return 0;
    return ReadBlocksBehindPixels(file, record, false);
}

int loadImageUptoVer103(FileHandle file, ImageHeaderType* record)
{
    if (!ReadPixelsUptoVer103(file, record)) return 0;
    return ReadBlocksBehindPixels(file, record, true);
}

namespace {

// The header and everything behind it into the scratch record; the file stays open.
bool ReadImage(FileHandle file, ImageHeaderType* scratch, bool headerOnly)
{
    if (!loadImageHeader(file, scratch)) return false;
    if (headerOnly) {
        scratch->CITSHeader = 0;
        scratch->FFTData = 0;
        scratch->OldBlockFlag = 0;
        scratch->LMCThresholdHitDataPtr = 0;
        if (!FindFileLoad) scratch->nSPSRefData = 0;
    }
    MemHandleType pair;
    if (!AllocateMem(PixelCount(scratch), 2, &pair)) return false;
    scratch->PixHandle = pair.Handle;
    scratch->PixData = static_cast<uint16_t*>(pair.Ptr);
    const bool old = IsOldPixelLayout(scratch);
    if (!(old ? ReadPixelsUptoVer103(file, scratch) : ReadPixelsVer104Later(file, scratch))) return false;
    bool imageKept = false;
    // A damaged mapping block or hit data cost the set, never the image it was measured with.
    if (!headerOnly && !ReadBlocksBehindPixels(file, scratch, old, &imageKept) && !imageKept) return false;
    UpdateOldImageHeader(scratch, 0);
    // What an image file brings into the list is an image: pixels under any other class
    // would be taken for samples.
    if (scratch->ImType1 != IMTYPE_IMAGE) {
        Error(ERR_INVALID_HEADER);
        return false;
    }
    MatchBlockFlagsToBlocks(scratch);
    return true;
}

void ReleaseScratch(ImageHeaderType* scratch, bool keepBlocks)
{
    if (!keepBlocks) {
        FreeLoadedBlocks(scratch);
        FreeMem(scratch->PixHandle, scratch->PixData);
    }
    scratch->PixHandle = 0;
    scratch->PixData = nullptr;
    FreeHeader(scratch);
}

// Shows the new current item as its DisplayMode asks.
void ShowLoadedItem(ImageHeaderType* item)
{
    switch (item->DisplayMode) {
    case 1:
    case 2:
        DisplayCurrentItem();
        break;
    case 4:
        DisplayCurrentItem();
        Open3DViewOfLoadedItem(item);
        break;
    default:
        ProgramError("loadmiage DisplayMode=%d", static_cast<int>(item->DisplayMode));
        break;
    }
}

} // namespace

int LoadImageFile(const char* path, int headerOnly, int report, int quiet)
{
    if (!path) {
        ProgramError("LoadImageFile");
        return 1;
    }
    ImageHeaderType* scratch = AllocateHeader();
    if (!scratch) {
        Log("Error on loading %s\n", path);
        return 1;
    }
    const FileHandle file = FileOpen(path, FileMode::Read);
    if (file == kInvalidFile) {
        Error(ERR_OPEN_FILE2);
        FreeHeader(scratch);
        Log("Error on loading %s\n", path);
        return 1;
    }

    bool ok = ReadImage(file, scratch, headerOnly != 0);
    // The file is closed before the list changes, so that a failed close still leaves the
    // list as it was.
    if (FileClose(file) != 0) {
        Error(ERR_CLOSING_FILE2);
        ok = false;
    }

    ImageHeaderType* item = nullptr;
    if (ok) {
        strncpy0(scratch->FileName, path, sizeof scratch->FileName);
        item = AllocateListItem(CurrentItem);
        ok = item != nullptr;
    }
    if (ok && CopyImageHeader(item, scratch, 1) != 0) {
        UnlinkListItem(item);
        item = nullptr;
        ok = false;
    }
    if (!ok) {
        ReleaseScratch(scratch, false);
        Log("Error on loading %s\n", path);
        return 1;
    }
    CopyHeaderPointers(item, scratch);
    // The blocks now belong to the item: the header copy took the pointers of the FFT block,
    // mapping and spectra; the hit data were copied, so the scratch record's own go with it.
    scratch->FFTDataPtr = nullptr;
    scratch->CITSHeaderPtr = nullptr;
    scratch->SPSRefDataPtr = nullptr;
    ReleaseScratch(scratch, true);

    CurrentItem = item;
    SetView3DOpen(item, 0);
    if (!quiet) ShowLoadedItem(item);
    if (report) Log("Load %s\n", path);
    return 0;
}

void ResetTiffFileState()
{
    FindFileLoad = false;
    ResetTiffHeaderState();
}
