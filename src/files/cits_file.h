// The mapping block of an image file and the threshold hit data behind it.
//
// Mapping block, behind the FFT block: the 390 stored bytes of the header, ni entries of 165
// bytes, then the pixels of every image (cx * cy codes, or one byte a pixel when the image's
// Compression word - the 8-bit data flag - is set). Hit data, last in the file: cx * cy records
// of 74 bytes.
#pragma once

#include "platform/files.h"
#include "tavrin/image_header.h"

// Reads the set into record->CITSHeaderPtr. 1 when read, or when the record's stored flag says
// there is none; 0 with the error reported (32774 short, 32777 invalid header, 32797 memory),
// the record then holds no set. An entry that fails its check ends the entries: the later ones
// stay zero and the pixels are read from their own place.
int LoadCITSDataSet(FileHandle file, ImageHeaderType* record);
// Writes the set of the record; a set of 0 images has no block. 1, or 0 with 32773 (short
// write) or 32823 reported.
int SaveCITSDataSet(FileHandle file, const ImageHeaderType* record);
// Reads the hit records of the record's set. 0: the set stays (with hit data, or without them
// when they could not be allocated); 1: the records were short (32774) or bad (32777), they are
// freed and the caller drops the whole set.
int LoadLMCThresholdHitData(FileHandle file, ImageHeaderType* record);
// Writes LMCPoints * LMCPoints records (past the records in memory: new ones). 0 when written
// or when there are none; -1 when the square mapping test fails ("SaveLMCThresholdHitData np=%d")
// or on a short write (32773).
int SaveLMCThresholdHitData(FileHandle file, const ImageHeaderType* record);

// Bytes of the stored mapping block of the record: ni * (nx * ny * b + 165) + 390, b = 1 with
// the 8-bit data flag, else 2; 0 without a set or for a set of 0 images.
long long CITSBlockBytes(const ImageHeaderType* record);
