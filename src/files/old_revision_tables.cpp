#include "files/old_revision_tables.h"

#include <span>

namespace {

struct CodeRow {
    int64_t first;
    int64_t last;
    uint32_t value;
};

std::optional<uint32_t> Find(std::span<const CodeRow> rows, int64_t code)
{
    for (const CodeRow& row : rows)
        if (code >= row.first && code <= row.last) return row.value;
    return std::nullopt;
}

constexpr CodeRow kSpectrumTypes[] = {
    {0, 0, 13}, {2, 3, 12}, {5, 5, 6}, {6, 6, 9}, {7, 8, 7}, {9, 9, 10},
};

constexpr CodeRow kImageTypes[] = {
    {0, 0, 0}, {2, 3, 1}, {4, 4, 4}, {5, 5, 6}, {6, 6, 9}, {7, 8, 7}, {9, 9, 10},
};
constexpr uint8_t kOtherImageType = 3;

constexpr CodeRow kSpectrumAcqModes[] = {
    {0, 3, 3}, {4, 5, 11}, {6, 6, 12}, {8, 8, 12}, {7, 7, 13}, {9, 10, 14},
};

constexpr CodeRow kOldAdcSources[] = {
    {0, 0, 1}, {6, 6, 1}, {13, 13, 1},
    {1, 1, 4}, {4, 4, 4}, {7, 7, 4}, {10, 10, 4}, {12, 12, 4}, {15, 15, 4},
    {2, 2, 8}, {5, 5, 8}, {8, 8, 8}, {11, 11, 8},
};
constexpr int16_t kOtherOldAdcSource = 1024;

constexpr CodeRow kItemClasses[] = {
    {0, 5, 1}, {18, 19, 1}, {26, 26, 1}, {29, 29, 1}, {40, 44, 1}, {106, 106, 1}, {1024, 1024, 1},
    {6, 11, 3}, {20, 21, 3}, {27, 27, 3}, {30, 30, 3}, {100, 105, 3},
    {12, 17, 2}, {22, 22, 2}, {24, 25, 2}, {31, 31, 2},
    {23, 23, 5},
    {32, 32, 4},
};

// DataSource 0 never results from the table; it marks "from OldAdcSrc".
constexpr uint32_t kFromOldAdcSrc = 0;
constexpr CodeRow kDataSources[] = {
    {0, 0, 1}, {6, 6, 1}, {13, 13, 1}, {25, 25, 1},
    {1, 1, 2}, {4, 4, 2}, {7, 7, 2}, {10, 10, 2}, {12, 12, 2}, {15, 15, 2}, {24, 24, 2},
    {2, 2, 3}, {5, 5, 3}, {8, 8, 3}, {11, 11, 3},
    {3, 3, 7}, {9, 9, 7},
    {14, 14, 4}, {16, 16, 4},
    {17, 22, 8},
    {23, 23, kFromOldAdcSrc}, {32, 32, kFromOldAdcSrc},
    {26, 28, 11},
    {29, 31, 10},
    {40, 40, 12}, {100, 100, 12},
    {41, 41, 13}, {101, 101, 13},
    {42, 42, 14}, {102, 102, 14},
    {43, 43, 15}, {103, 103, 15},
    {44, 44, 16}, {104, 104, 16},
    {105, 106, 20},
};

constexpr CodeRow kBitCodes[] = {
    {0, 0, 0},
    {1, 1, 1},
    {2, 2, 2},
    {4, 4, 0x8},
    {8, 8, 0x4},
    {32, 32, 0x20000},
    {64, 64, 0x400},
    {128, 128, 0x800},
    {256, 256, 0x10},
    {1024, 1024, 0x1000},
    {2048, 2048, 0x40000},
    {4096, 4096, 0x80000},
    {8192, 8192, 0x200},
    {16384, 16384, 0x20},
    {32768, 32768, 0x10000},
    {0x10000, 0x10000, 0x100000},
    {0x20000, 0x20000, 0x40},
    {0x40000, 0x40000, 0x80},
    {0x80000, 0x80000, 0x100},
    {0x100000, 0x100000, 0x2000},
    {0x200000, 0x200000, 0x4000},
    {0x400000, 0x400000, 0x8000},
    {0x800000, 0x800000, 0x200000},
};
constexpr uint32_t kOtherBitCode = 1;

constexpr CodeRow kMapTypes[] = {
    {0, 0, 12}, {1, 1, 13}, {2, 2, 14}, {4, 4, 16}, {5, 5, 15},
};

constexpr CodeRow kLoopGains[] = {
    {2, 2, 2}, {3, 3, 4}, {4, 4, 8},
};
constexpr int16_t kOtherLoopGain = 1;

constexpr CodeRow kDynamicRanges[] = {
    {1, 1, 76}, {2, 2, 152}, {4, 4, 305}, {8, 8, 610},
};

} // namespace

uint8_t UpgradedOldImageType(uint8_t oldImageType, bool isSpectrum)
{
    if (isSpectrum) return static_cast<uint8_t>(Find(kSpectrumTypes, oldImageType).value_or(oldImageType));
    return static_cast<uint8_t>(Find(kImageTypes, oldImageType).value_or(kOtherImageType));
}

std::optional<uint32_t> SpectrumAcqModeFromType(int typeLessSix)
{
    return Find(kSpectrumAcqModes, typeLessSix);
}

uint32_t ImageAcqModeFromWidth(int nx)
{
    if (nx == 128) return 5;
    if (nx == 256) return 4;
    return 3;
}

int16_t OldAdcSrcFromType(int oldImageType)
{
    return static_cast<int16_t>(Find(kOldAdcSources, oldImageType).value_or(kOtherOldAdcSource));
}

std::optional<uint32_t> ImType1FromType(int oldImageType)
{
    return Find(kItemClasses, oldImageType);
}

DataSourceRule DataSourceFromType(int oldImageType)
{
    std::optional<uint32_t> found = Find(kDataSources, oldImageType);
    if (!found) return {DataSourceRule::Keep, 0};
    if (*found == kFromOldAdcSrc) return {DataSourceRule::FromOldAdcSrc, 0};
    return {DataSourceRule::Value, *found};
}

uint32_t NewBitCode(uint32_t oldCode)
{
    return Find(kBitCodes, oldCode).value_or(kOtherBitCode);
}

std::optional<uint32_t> MapTypeFromAcqMode(int64_t acqModeLessTen)
{
    return Find(kMapTypes, acqModeLessTen);
}

int16_t LoopGainFromCode(int16_t code)
{
    return static_cast<int16_t>(Find(kLoopGains, code).value_or(static_cast<uint32_t>(kOtherLoopGain)));
}

std::optional<int16_t> DynamicRangeFromCode(uint32_t code)
{
    std::optional<uint32_t> found = Find(kDynamicRanges, code);
    if (!found) return std::nullopt;
    return static_cast<int16_t>(*found);
}
