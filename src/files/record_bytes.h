// Typed access to the stored bytes of a record by file offset.
//
// Old layouts are described by offsets, not by names: a word that once stood at 2458, a block
// that moved from 2134 to 2280. These helpers reach such places with the offset checked at
// compile time against the 6090 stored bytes, so that no upgrade step can touch the run-time
// part behind them or anything outside the record.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>

#include "tavrin/image_header.h"

namespace record_bytes {

inline uint8_t* Bytes(ImageHeaderType* record) { return reinterpret_cast<uint8_t*>(record); }
inline const uint8_t* Bytes(const ImageHeaderType* record) { return reinterpret_cast<const uint8_t*>(record); }

template <typename T, size_t Offset>
T Get(const ImageHeaderType* record)
{
    static_assert(Offset + sizeof(T) <= TAVRIN_HEADER_STORED_BYTES, "outside the stored record");
    T value;
    std::memcpy(&value, Bytes(record) + Offset, sizeof value);
    return value;
}

template <typename T, size_t Offset>
void Put(ImageHeaderType* record, T value)
{
    static_assert(Offset + sizeof(T) <= TAVRIN_HEADER_STORED_BYTES, "outside the stored record");
    std::memcpy(Bytes(record) + Offset, &value, sizeof value);
}

// Bytes From to From + Count - 1 become 0.
template <size_t From, size_t Count>
void Zero(ImageHeaderType* record)
{
    static_assert(From + Count <= TAVRIN_HEADER_STORED_BYTES, "outside the stored record");
    std::memset(Bytes(record) + From, 0, Count);
}

// Bytes From to From + Count - 1 all become `value`.
template <size_t From, size_t Count>
void Fill(ImageHeaderType* record, uint8_t value)
{
    static_assert(From + Count <= TAVRIN_HEADER_STORED_BYTES, "outside the stored record");
    std::memset(Bytes(record) + From, value, Count);
}

// Count bytes from From are copied to To; the ranges may overlap.
template <size_t From, size_t To, size_t Count>
void Move(ImageHeaderType* record)
{
    static_assert(From + Count <= TAVRIN_HEADER_STORED_BYTES && To + Count <= TAVRIN_HEADER_STORED_BYTES,
                  "outside the stored record");
    std::memmove(Bytes(record) + To, Bytes(record) + From, Count);
}

} // namespace record_bytes
