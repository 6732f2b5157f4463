// The data type flags of images and mapping entries: how a pixel becomes a physical value, and
// the DataSource a display takes for each flag. One table serves the pixel decoding of mapping
// sets and the display type of images.
#pragma once

#include <cstdint>

enum class PixelDecoding : uint8_t {
    Linear,        // value = raw * (high - low) / 65535 + low
    Logarithmic,   // log current from the instrument code
    None,          // no pixel decoding for this flag
};

struct DataTypeRow {
    uint32_t flag;
    PixelDecoding decoding;
    uint32_t dataSource;
};

// The row of a flag, or null for a flag outside the table.
const DataTypeRow* FindDataType(uint32_t flag);
// The DataSource of a data type flag; 4 for any flag outside the table.
uint32_t GetImageDisplayType(uint32_t flag);
