// Names of an item: its title, its long type description, and the names of its acquisition
// mode, scan mode, mapping kind and bias side.
#pragma once

#include <cstddef>
#include <cstdint>

#include "tavrin/image_header.h"

// The title of the data: the name of the DataSource, adjusted by the class of the item, with
// "(FW)" or "(BW)" for the scan direction. The text lives in one buffer of 80 characters that
// the next call overwrites.
const char* GetImageTitleStr(const ImageHeaderType* record);
// The long description: acquisition mode, scan mode, "FFT of ", mapping kind and title.
void GetImageTypeStr(const ImageHeaderType* record, char* text, size_t size);
// "STM", or the AFM mode for ScanMode 1; otherwise empty.
const char* GetScanModeStr(int scanMode, uint32_t afmMode);
// Empty for 0, "(Tip)" for 1, "(Sample)" for 2.
const char* GetBiasSelectStr(int n);

// The name of a DataSource value without the class adjustments; null when it has none.
const char* DataSourceName(uint32_t dataSource);
// The name of the acquisition mode of the record (LMC modes, mapping and MFM variants
// included); empty when it has none.
const char* AcqModeName(const ImageHeaderType* record);
// The name of a mapping kind; empty when it has none.
const char* MapTypeName(uint32_t mapType);
