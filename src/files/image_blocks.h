// The private blocks behind the pixels of an image file, one function for each kind, in file
// order: FFT block, mapping block, attached spectra, hit data.
//
// Readers answer 1 on success and 0 on failure, with the failure reported. The chain applies
// the degrade rules: a failed FFT block clears FFTData, CITSHeader, SPSRefData and
// LMCThresholdHitDataPtr; a failed mapping block clears CITSHeader, SPSRefData and
// LMCThresholdHitDataPtr; a failed hit data block frees the mapping and clears its pointers.
// Each of these makes the chain's result 0. A failed mapping or hit data block costs only the
// set: the image itself stands.
#pragma once

#include <cstddef>
#include <cstdint>

#include "platform/files.h"
#include "tavrin/image_header.h"

// Complex data: nx * ny pairs of f32 (real, imaginary), row after row.
size_t FFTBlockBytes(const ImageHeaderType* record);
int ReadFFTBlock(FileHandle file, ImageHeaderType* record);
int ReadMappingBlock(FileHandle file, ImageHeaderType* record);
int ReadAttachedSpectra(FileHandle file, ImageHeaderType* record);
int ReadHitData(FileHandle file, ImageHeaderType* record);

// The blocks that follow the pixels, from the file's position. `fftOnly`: the reader of the
// oldest revisions, behind whose pixels only an FFT block may follow. Answers 1, or 0 when a
// block failed (the record then holds only what it could keep). `imageKept` (may be null) tells
// whether a failure cost only the mapping set, so that the image itself may still be kept.
int ReadBlocksBehindPixels(FileHandle file, ImageHeaderType* record, bool fftOnly, bool* imageKept = nullptr);

// After a load the stored block flags of the record say exactly which blocks it holds in
// memory: a flag without its block is cleared.
void MatchBlockFlagsToBlocks(ImageHeaderType* record);

// Frees what the readers attached to a record that does not go into the data list.
void FreeLoadedBlocks(ImageHeaderType* record);

// Writers: 1 on success, 0 with error 32773 (short write) or 32823 (failed write).
int WriteFFTBlock(FileHandle file, const ImageHeaderType* record);
// Bytes the mapping block takes in the file of this record (the palette of an 8-bit file
// stands behind it).
long long MappingBlockBytes(const ImageHeaderType* record);
// The mapping block and the hit data of the record (nothing when it has none): 1 on success.
int WriteMappingBlock(FileHandle file, const ImageHeaderType* record);
int WriteHitData(FileHandle file, const ImageHeaderType* record);
// In the stored copy of the record that goes into a file, the flags of blocks the file will not
// hold are cleared.
void ClearUnwrittenBlockFlags(const ImageHeaderType* record, uint8_t* stored);
// Writes the spectra that refer to the image (`referring` of them) and then the chain of
// attached spectra (up to `attached`); answers how many were written.
int WriteAttachedSpectra(FileHandle file, const ImageHeaderType* record, int referring, int attached);

// A short or failed write of `wanted` bytes, reported: 32773 short, 32823 failed. True when
// the whole count went out.
bool CheckWrite(long long written, size_t wanted);
// A short or failed read, reported: 32774 short, 32822 failed. True when complete.
bool CheckRead(long long got, size_t wanted);
