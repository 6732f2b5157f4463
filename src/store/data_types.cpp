#include "store/data_types.h"

#include <iterator>

namespace {

constexpr uint32_t kDefaultDataSource = 4;

constexpr DataTypeRow kDataTypes[] = {
    {1, PixelDecoding::Linear, 1},              // height
    {2, PixelDecoding::None, 21},
    {4, PixelDecoding::Linear, 2},              // linear current
    {8, PixelDecoding::Logarithmic, 3},         // log current
    {16, PixelDecoding::Linear, 8},             // force
    {32, PixelDecoding::Linear, 10},            // friction force
    {128, PixelDecoding::Linear, 18},           // amplitude
    {256, PixelDecoding::Linear, 19},           // frequency
    {512, PixelDecoding::Linear, 11},           // phase
    {1024, PixelDecoding::Linear, 4},           // external voltage
    {2048, PixelDecoding::Linear, 5},           // external voltage
    {4096, PixelDecoding::Linear, 6},           // force
    {0x20000, PixelDecoding::Linear, 9},        // force
    {0x40000, PixelDecoding::None, 17},
    {0x600000, PixelDecoding::None, 22},
    {0x600001, PixelDecoding::None, 23},
    {0x600002, PixelDecoding::None, 24},
};

} // namespace

const DataTypeRow* FindDataType(uint32_t flag)
{
    for (const DataTypeRow& row : kDataTypes)
        if (row.flag == flag) return &row;
    return nullptr;
}

uint32_t GetImageDisplayType(uint32_t flag)
{
    const DataTypeRow* row = FindDataType(flag);
    return row ? row->dataSource : kDefaultDataSource;
}
