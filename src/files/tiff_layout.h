// The image file: a little-endian TIFF file that any TIFF reader opens as a plain grey picture,
// and that carries the whole stored record between the TIFF signature and the first image file
// directory. The pixels are one strip; everything else of the item follows them as private
// blocks that no tag points at.
//
//   0     "II", 42, directory offset 6100, IfdReserve 1024 (u16 at byte 8)
//   10    the 6090 stored bytes of the record, unchanged
//   6100  17 directory entries of 12 bytes, then the next directory offset 0
//   6310  the value area, 814 bytes; anything not used stays zero
//   7124  pixels, then FFT block, mapping block, attached spectra, hit data
#pragma once

#include <cstddef>
#include <cstdint>

namespace TiffLayout {
constexpr uint16_t kByteOrder = 0x4949;            // "II"
constexpr uint16_t kMagic = 42;
constexpr uint32_t kIfdOffset = 6100;
constexpr uint16_t kIfdReserve = 1024;
constexpr size_t kRecordOffset = 10;
constexpr uint16_t kEntryCount = 17;
constexpr size_t kEntryBytes = 12;
constexpr size_t kEntriesOffset = kIfdOffset + 2;                          // 6102
constexpr size_t kNextIfdOffset = kEntriesOffset + kEntryCount * kEntryBytes; // 6306
constexpr size_t kValueAreaOffset = kNextIfdOffset + 4;                     // 6310
constexpr size_t kHeaderBytes = kIfdOffset + kIfdReserve;                   // 7124
constexpr size_t kValueAreaBytes = kHeaderBytes - kValueAreaOffset;         // 814
// The u16 at byte 8 must stay below this for the file to be taken as a TIFF file.
constexpr uint16_t kIfdReserveLimit = 1025;
// nSPSRefData in the file: the record's offset 2764 behind the 10 bytes of the signature.
constexpr long long kSpectrumCountOffset = 2774;

// TIFF field types.
constexpr uint16_t kAscii = 2;
constexpr uint16_t kShort = 3;
constexpr uint16_t kLong = 4;
constexpr uint16_t kRational = 5;

// Directory slots, in file order.
enum Slot : int {
    SlotImageWidth, SlotImageLength, SlotBitsPerSample, SlotCompression, SlotPhotometric,
    SlotImageDescription, SlotMake, SlotModel, SlotStripOffsets, SlotSamplesPerPixel,
    SlotRowsPerStrip, SlotStripByteCounts, SlotXResolution, SlotYResolution, SlotResolutionUnit,
    SlotHostComputer, SlotColorMap,
};

constexpr const char* kMake = "Tavrin 3.10. Ostwick Ltd";
constexpr const char* kModel = "Varo SPM";
constexpr const char* kHostComputer = "Windows 32-bit";
} // namespace TiffLayout

// Header bytes that a plain (non-TIFF) file of each revision stores, and where its pixels start.
// Up to 303: 902; 304 to 404: 1872; 405 and up: 6090.
size_t StoredHeaderBytes(int revNo);
