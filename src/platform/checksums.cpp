#include "platform/checksums.h"

#include <array>

namespace {

std::array<uint32_t, 256> MakeCrcTable()
{
    std::array<uint32_t, 256> table{};
    for (uint32_t n = 0; n < 256; ++n) {
        uint32_t c = n;
        for (int k = 0; k < 8; ++k) c = (c & 1u) != 0 ? 0xEDB88320u ^ (c >> 1) : c >> 1;
        table[n] = c;
    }
    return table;
}

} // namespace

uint32_t Crc32(const uint8_t* data, size_t size, uint32_t crc)
{
    static const std::array<uint32_t, 256> table = MakeCrcTable();
    if (data == nullptr) return crc;
    uint32_t c = crc ^ 0xFFFFFFFFu;
    for (size_t i = 0; i < size; ++i) c = table[(c ^ data[i]) & 0xFFu] ^ (c >> 8);
    return c ^ 0xFFFFFFFFu;
}

uint32_t Adler32(const uint8_t* data, size_t size, uint32_t adler)
{
    constexpr uint32_t kModulus = 65521;
    // 5552 is the longest run of bytes whose sums cannot overflow 32 bits before reduction.
    constexpr size_t kRun = 5552;
    if (data == nullptr) return adler;
    uint32_t a = adler & 0xFFFFu;
    uint32_t b = adler >> 16;
    while (size > 0) {
        size_t run = size < kRun ? size : kRun;
        size -= run;
        for (size_t i = 0; i < run; ++i) {
            a += *data++;
            b += a;
        }
        a %= kModulus;
        b %= kModulus;
    }
    return (b << 16) | a;
}
