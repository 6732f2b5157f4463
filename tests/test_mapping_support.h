// Helpers of the mapping tests: images with a set in the data list, and mapping blocks built
// byte by byte as an instrument writes them.
#pragma once

#include "test_tiff_support.h"
#include "mapping/cits.h"

#include <cstdint>
#include <cstdio>
#include <cstring>
#include <string>

namespace maptest {

// An n by n image item behind the current one with a set of ni images of side n: entry k has
// voltage -1 + k * 0.25, z range -1 to 1 (linear current), title "Image k", and pixel
// codes (k * 4099 + i * 13) & 0xFFFF at index i. MapType 12.
inline ImageHeaderType* MakeMappingImage(int n, int ni)
{
    ImageHeaderType* image = tifftest::MakeImage(n, "Mapping");
    if (!image) return nullptr;
    CITSHeaderType* set = AllocateCITSDataSet(ni, static_cast<int16_t>(n), static_cast<int16_t>(n));
    if (!set) return nullptr;
    for (int k = 0; k < ni; ++k) {
        CITSImageEntryType* e = CITSEntry(set, k);
        e->adc_gain = 1;
        e->i_divider = 1;
        e->voltage = -1.0f + 0.25f * static_cast<float>(k);
        e->z_low = -1.0f;
        e->z_high = 1.0f;
        e->data_type = 4;
        std::snprintf(e->title, sizeof e->title, "Image %d", k);
        uint16_t* p = CITSPixels(e);
        for (int i = 0; i < n * n; ++i) p[i] = static_cast<uint16_t>((k * 4099 + i * 13) & 0xFFFF);
    }
    SetCITSBlock(image, set);
    image->AcqMode = 11;
    image->MapType = 12;
    return image;
}

template <typename T>
inline void Put(std::string& bytes, size_t at, T value)
{
    if (bytes.size() < at + sizeof value) bytes.resize(at + sizeof value, '\0');
    std::memcpy(bytes.data() + at, &value, sizeof value);
}

template <typename T>
inline T Get(const std::string& bytes, size_t at)
{
    T value{};
    if (at + sizeof value <= bytes.size()) std::memcpy(&value, bytes.data() + at, sizeof value);
    return value;
}

// The 390 stored header bytes of a set, written field by field at their file offsets.
inline std::string HeaderBytes(int ni, int cx, int rev = 700, int ci = 0, uint16_t setIdLow = 0x1234)
{
    std::string b(390, '\0');
    Put<int16_t>(b, 0, static_cast<int16_t>(rev));
    Put<int16_t>(b, 2, static_cast<int16_t>(ni));
    Put<int16_t>(b, 4, static_cast<int16_t>(cx));
    Put<int16_t>(b, 6, static_cast<int16_t>(cx));
    Put<int16_t>(b, 8, static_cast<int16_t>(ci));
    Put<uint16_t>(b, 10, 7);          // disp.flags
    Put<int16_t>(b, 12, 2);           // disp.n
    b[14] = 1;                        // disp.mode
    Put<double>(b, 23, 10.0);         // disp.v_high
    b[31] = 4;                        // disp.select
    for (int i = 0; i < 64; ++i) Put<int16_t>(b, 32 + 2 * static_cast<size_t>(i), static_cast<int16_t>(i < 3 ? i : -1));
    Put<uint16_t>(b, 388, setIdLow);
    return b;
}

// One stored entry of 165 bytes.
inline std::string EntryBytes(float voltage, float zLow, float zHigh, uint32_t dataType, const char* title,
                              uint16_t gain = 1, int32_t divider = 1, int16_t offset = 0, int16_t rawLow = 0,
                              int16_t rawHigh = 0, uint8_t oldType = 0)
{
    std::string b(165, '\0');
    Put<int16_t>(b, 0, rawLow);
    Put<int16_t>(b, 2, rawHigh);
    b[4] = static_cast<char>(oldType);
    Put<int16_t>(b, 5, offset);
    Put<uint16_t>(b, 7, gain);
    Put<int32_t>(b, 9, divider);
    Put<float>(b, 13, voltage);
    Put<float>(b, 17, zLow);
    Put<float>(b, 21, zHigh);
    std::memcpy(b.data() + 25, title, std::strlen(title));
    Put<uint32_t>(b, 65, dataType);
    return b;
}

// A plane of n * n codes: code (k * 1000 + i) & 0xFFFF, little-endian; with `eightBit` one
// byte a pixel, (k * 16 + i) & 0xFF.
inline std::string PlaneBytes(int n, int k, bool eightBit = false)
{
    std::string b;
    for (int i = 0; i < n * n; ++i) {
        if (eightBit) {
            b += static_cast<char>((k * 16 + i) & 0xFF);
        } else {
            const uint16_t code = static_cast<uint16_t>((k * 1000 + i) & 0xFFFF);
            b += static_cast<char>(code & 0xFF);
            b += static_cast<char>(code >> 8);
        }
    }
    return b;
}

// One hit record of 74 bytes.
inline std::string HitBytes(int16_t hit, int32_t channel, float position)
{
    std::string b(74, '\0');
    Put<int16_t>(b, 0, hit);
    Put<int32_t>(b, 2, channel);
    Put<float>(b, 6, position);
    return b;
}

} // namespace maptest
