#include "files/tiff_header.h"
#include "display/selected_table.h"
#include "files/image_blocks.h"
#include "host/errors.h"
#include "host/globals.h"
#include "host/log.h"
#include "store/image_header.h"

#include <algorithm>
#include <cstring>

using namespace TiffLayout;

namespace {

// The one header block of every save. Slot 16 keeps what the last palette file put there.
uint8_t g_header[kHeaderBytes];

template <typename T>
void Put(uint8_t* at, T value)
{
    std::memcpy(at, &value, sizeof value);
}

template <typename T>
T Get(const uint8_t* at)
{
    T value;
    std::memcpy(&value, at, sizeof value);
    return value;
}

void PutEntry(int slot, uint16_t tag, uint16_t type, uint32_t count, uint32_t value)
{
    uint8_t* entry = g_header + kEntriesOffset + static_cast<size_t>(slot) * kEntryBytes;
    Put<uint16_t>(entry, tag);
    Put<uint16_t>(entry + 2, type);
    Put<uint32_t>(entry + 4, count);
    // A SHORT value stands in the first two bytes of the value word, the rest zero: in
    // little-endian order that is the same as the 32-bit value.
    Put<uint32_t>(entry + 8, value);
}

bool IsPaletteFile(int bitsPerPixel) { return bitsPerPixel <= 8; }

} // namespace

size_t StoredHeaderBytes(int revNo)
{
    if (revNo <= 303) return 902;
    if (revNo <= 404) return 1872;
    return TAVRIN_HEADER_STORED_BYTES;
}

const uint8_t* TiffHeaderBuffer() { return g_header; }

void ResetTiffHeaderState() { std::memset(g_header, 0, sizeof g_header); }

uint32_t PlaceTiffBytes(TiffValueArea* area, const void* bytes, size_t size)
{
    const auto offset = static_cast<uint32_t>(area->fileOffset + area->used);
    const size_t room = area->capacity - area->used;
    const size_t placed = std::min(size, room);
    if (placed) std::memcpy(area->base + area->used, bytes, placed);
    area->used += placed;
    return offset;
}

uint32_t PlaceTiffText(TiffValueArea* area, const char* text, size_t length, uint32_t* count)
{
    const auto offset = static_cast<uint32_t>(area->fileOffset + area->used);
    const size_t room = area->capacity - area->used;
    const size_t placed = std::min(length + 1, room);
    if (placed) {
        std::memcpy(area->base + area->used, text, placed - 1);
        area->base[area->used + placed - 1] = '\0';
    }
    area->used += placed;
    *count = static_cast<uint32_t>(placed);
    return offset;
}

bool CheckTiffValueArea(const TiffValueArea* area)
{
    if (area->used >= area->capacity) {
        ProgramError("WRITE_TIFF_HEADER Overwrote memory");
        return false;
    }
    return true;
}

size_t TiffPaletteEntries(int bitsPerPixel)
{
    if (bitsPerPixel < 1 || bitsPerPixel > 8) return 0;
    return static_cast<size_t>(1) << bitsPerPixel;
}

void BuildTiffPalette(const ImageHeaderType* record, int bitsPerPixel, uint16_t* palette)
{
    const size_t n = TiffPaletteEntries(bitsPerPixel);
    if (n == 0) return;
    uint16_t table[3][256];
    SelectedColourTable(table[0], table[1], table[2]);
    // n / 256 is 0 below 8 bits: every entry then takes the level of entry 0's place.
    const size_t per = n / 256;
    for (int plane = 0; plane < 3; ++plane) {
        for (size_t i = 0; i < n; ++i) {
            const size_t at = per ? std::min<size_t>(i / per, 255) : 0;
            const int level = record->ImageLUT[at];
            const int index = std::clamp(level / 2 + 35, 35, 162);
            palette[static_cast<size_t>(plane) * n + i] = static_cast<uint16_t>(256 * table[plane][index]);
        }
    }
}

long long TiffPaletteOffset(const ImageHeaderType* record)
{
    const long long pixels = static_cast<long long>(record->nx) * record->ny;
    const long long fft = record->FFTData ? static_cast<long long>(FFTBlockBytes(record)) : 0;
    return static_cast<long long>(kHeaderBytes) + pixels + fft + MappingBlockBytes(record);
}

int WRITE_TIFF_HEADER(FileHandle file, ImageHeaderType* record)
{
    if (!record) {
        ProgramError("WRITE_TIFF_HEADER");
        return 0;
    }
    const int bits = record->BitsPerPixel;
    const bool palette = IsPaletteFile(bits);

    Put<uint16_t>(g_header + 0, kByteOrder);
    Put<uint16_t>(g_header + 2, kMagic);
    Put<uint32_t>(g_header + 4, kIfdOffset);
    Put<uint16_t>(g_header + 8, kIfdReserve);
    std::memcpy(g_header + kRecordOffset, record, TAVRIN_HEADER_STORED_BYTES);
    ClearUnwrittenBlockFlags(record, g_header + kRecordOffset);
    Put<uint16_t>(g_header + kIfdOffset, kEntryCount);
    Put<uint32_t>(g_header + kNextIfdOffset, 0);
    std::memset(g_header + kValueAreaOffset, 0, kValueAreaBytes);

    TiffValueArea area{g_header + kValueAreaOffset, kValueAreaOffset, kValueAreaBytes, 0};
    uint32_t titleCount, makeCount, modelCount, hostCount;
    const uint32_t title = PlaceTiffText(&area, record->Title, strnlen(record->Title, sizeof record->Title), &titleCount);
    const uint32_t make = PlaceTiffText(&area, kMake, std::strlen(kMake), &makeCount);
    const uint32_t model = PlaceTiffText(&area, kModel, std::strlen(kModel), &modelCount);
    const uint32_t pair[2] = {72, 1};
    const uint32_t xres = PlaceTiffBytes(&area, pair, sizeof pair);
    const uint32_t yres = PlaceTiffBytes(&area, pair, sizeof pair);
    uint32_t host = PlaceTiffText(&area, kHostComputer, std::strlen(kHostComputer), &hostCount);
    if (!palette) {
        // A 16-bit file keeps 17 entries: instead of a ColorMap, the host name is stored a
        // second time and slot 15 points at that copy; slot 16 stays as the buffer held it.
        host = PlaceTiffText(&area, kHostComputer, std::strlen(kHostComputer), &hostCount);
    }

    const uint32_t nx = static_cast<uint32_t>(static_cast<int32_t>(record->nx));
    const uint32_t ny = static_cast<uint32_t>(static_cast<int32_t>(record->ny));
    PutEntry(SlotImageWidth, 256, kLong, 1, nx);
    PutEntry(SlotImageLength, 257, kLong, 1, ny);
    PutEntry(SlotBitsPerSample, 258, kShort, 1, static_cast<uint16_t>(bits));
    PutEntry(SlotCompression, 259, kShort, 1, 1);
    PutEntry(SlotPhotometric, 262, kShort, 1, palette ? 3 : 1);
    PutEntry(SlotImageDescription, 270, kAscii, titleCount, title);
    PutEntry(SlotMake, 271, kAscii, makeCount, make);
    PutEntry(SlotModel, 272, kAscii, modelCount, model);
    PutEntry(SlotStripOffsets, 273, kShort, 1, static_cast<uint32_t>(kHeaderBytes));
    PutEntry(SlotSamplesPerPixel, 277, kShort, 1, 1);
    PutEntry(SlotRowsPerStrip, 278, kLong, 1, ny);
    PutEntry(SlotStripByteCounts, 279, kLong, 1, static_cast<uint32_t>(static_cast<long long>(record->nx) * record->ny * bits / 8));
    PutEntry(SlotXResolution, 282, kRational, 1, xres);
    PutEntry(SlotYResolution, 283, kRational, 1, yres);
    PutEntry(SlotResolutionUnit, 296, kShort, 1, 2);
    PutEntry(SlotHostComputer, 316, kAscii, hostCount, host);

    if (palette) {
        const size_t entries = TiffPaletteEntries(bits);
        const long long at = TiffPaletteOffset(record);
        PutEntry(SlotColorMap, 320, kShort, static_cast<uint32_t>(3 * entries), static_cast<uint32_t>(at));
        if (entries) {
            uint16_t values[3 * 256];
            BuildTiffPalette(record, bits, values);
            const size_t bytes = 3 * entries * sizeof(uint16_t);
            if (FileSeek(file, at, FileOrigin::Begin) != at) return 0;
            if (FileWrite(file, values, bytes) < 0) return 0;
            if (FileSeek(file, 0, FileOrigin::Begin) != 0) return 0;
        }
    }

    const long long written = FileWrite(file, g_header, kHeaderBytes);
    CheckTiffValueArea(&area);
    return written < 0 ? 0 : 1;
}

bool IsTiffSignature(const uint8_t first[10])
{
    return Get<uint16_t>(first) == kByteOrder && Get<uint16_t>(first + 2) == kMagic &&
           Get<uint16_t>(first + 8) < kIfdReserveLimit;
}

bool IsAcceptedPlainRevision(int revNo)
{
    return revNo == 0 || revNo == 100 || (revNo >= 103 && revNo <= 700);
}

int loadImageHeader(FileHandle file, ImageHeaderType* scratch)
{
    if (!scratch) {
        ProgramError("loadImageHeader");
        return 0;
    }
    uint8_t first[10];
    const long long got = FileRead(file, first, sizeof first);
    if (got != static_cast<long long>(sizeof first)) {
        if (DebugMode) Log("loadImageHeader %d %d\n", static_cast<int>(got), static_cast<int>(sizeof first));
        CheckRead(got, sizeof first);
        return 0;
    }

    const bool tiff = IsTiffSignature(first);
    const int revision = Get<int16_t>(first);
    if (!tiff) {
        if (!IsAcceptedPlainRevision(revision)) {
            if (DebugMode) {
                Log("TIFILE=%d byte_order=%d ver=%d offs=%d size=%d RevNo=%d\n", 0,
                    static_cast<int>(Get<uint16_t>(first)), static_cast<int>(Get<uint16_t>(first + 2)),
                    static_cast<int>(Get<uint32_t>(first + 4)), static_cast<int>(Get<uint16_t>(first + 8)), revision);
                Log("TIFFfile=%d RevNo=%d\n", 0, revision);
            }
            Error(ERR_INVALID_HEADER);
            return 0;
        }
        if (FileSeek(file, 0, FileOrigin::Begin) != 0) {
            Error(ERR_READING2);
            return 0;
        }
    }

    // The stored part only: the run-time part of the scratch record stays as it was.
    uint8_t stored[TAVRIN_HEADER_STORED_BYTES];
    const long long size = FileRead(file, stored, sizeof stored);
    if (size < 0) {
        Error(ERR_READING2);
        return 0;
    }
    int16_t revNo = 0;
    if (size >= 2) revNo = Get<int16_t>(stored);
    const bool complete = size == static_cast<long long>(sizeof stored);
    const bool shortAccepted = size >= 2 && ((revNo <= 303 && size >= 902) || (revNo <= 404 && size >= 1872));
    if (!complete && !shortAccepted) {
        Error(ERR_FILE_TOO_SHORT);
        return 0;
    }
    std::memcpy(scratch, stored, static_cast<size_t>(size));

    if (!CheckValidImageHeader(scratch)) {
        Error(ERR_INVALID_HEADER);
        return 0;
    }

    const size_t kept = StoredHeaderBytes(scratch->RevNo);
    if (kept < TAVRIN_HEADER_STORED_BYTES)
        std::memset(reinterpret_cast<uint8_t*>(scratch) + kept, 0, TAVRIN_HEADER_STORED_BYTES - kept);
    const long long pixels = tiff ? static_cast<long long>(Get<uint32_t>(first + 4)) + Get<uint16_t>(first + 8)
                                  : static_cast<long long>(kept);
    if (FileSeek(file, pixels, FileOrigin::Begin) != pixels) {
        Error(ERR_READING2);
        return 0;
    }
    return 1;
}
