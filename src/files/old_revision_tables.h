// The code tables that bring the fields of old records to their present meaning.
//
// Each table is a list of rows, an inclusive range of old codes and the new value; a code that
// no row names takes the table's rule for "others", told at each function.
#pragma once

#include <cstdint>
#include <optional>

// OldImageType of the oldest revisions to the numbering of revision 200 on.
// Spectrum: 0 -> 13; 2, 3 -> 12; 5 -> 6; 6 -> 9; 7, 8 -> 7; 9 -> 10; others stay.
// Image: 0, 4 stay; 2, 3 -> 1; 5 -> 6; 6 -> 9; 7, 8 -> 7; 9 -> 10; others -> 3.
uint8_t UpgradedOldImageType(uint8_t oldImageType, bool isSpectrum);

// AcqMode of an old spectrum from OldImageType - 6: 0..3 -> 3; 4, 5 -> 11; 6, 8 -> 12; 7 -> 13;
// 9, 10 -> 14. Others: nothing (the caller makes AcqMode 12 and OldImageType 12).
std::optional<uint32_t> SpectrumAcqModeFromType(int typeLessSix);

// AcqMode of an old image from its width: 128 -> 5, 256 -> 4, others 3.
uint32_t ImageAcqModeFromWidth(int nx);

// OldAdcSrc from OldImageType: 0, 6, 13 -> 1; 1, 4, 7, 10, 12, 15 -> 4; 2, 5, 8, 11 -> 8;
// others 1024.
int16_t OldAdcSrcFromType(int oldImageType);

// ImType1 (the class of the item) from OldImageType; nothing for a code the table lacks.
std::optional<uint32_t> ImType1FromType(int oldImageType);

// What DataSource an OldImageType gives.
struct DataSourceRule {
    enum Kind { Keep, Value, FromOldAdcSrc } kind;
    uint32_t value;
};
DataSourceRule DataSourceFromType(int oldImageType);

// The bit code of an old DataType or AdcSrc word; codes the table lacks become 1.
uint32_t NewBitCode(uint32_t oldCode);

// MapType from AcqMode - 10: 0 -> 12, 1 -> 13, 2 -> 14, 4 -> 16, 5 -> 15; others: nothing.
std::optional<uint32_t> MapTypeFromAcqMode(int64_t acqModeLessTen);

// LoopGain codes 2, 3, 4 -> 2, 4, 8; others 1.
int16_t LoopGainFromCode(int16_t code);

// DynamicRange in Hz from OldDynRange 1, 2, 4, 8 -> 76, 152, 305, 610; others: nothing.
std::optional<int16_t> DynamicRangeFromCode(uint32_t code);
