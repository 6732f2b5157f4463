// Helpers of the image file tests: images in the data list, file bytes, plain old-layout files.
#pragma once

#include "support/test_host.h"
#include "files/tiff_layout.h"
#include "store/data_list.h"
#include "store/image_header.h"
#include "store/memory.h"

#include <cstdint>
#include <cstring>
#include <string>
#include <vector>

namespace tifftest {

// A new image item behind the current one with code (x * 251 + y * 4099 + seed) for every
// pixel: high and low bytes both vary.
inline ImageHeaderType* MakeImage(int n, const char* title = "Test image", uint32_t seed = 7)
{
    ImageHeaderType* item = AllocateListItem(CurrentItem);
    if (!item) return nullptr;
    InitImageHeader(item, n, n);
    std::strncpy(item->Title, title, sizeof item->Title - 1);
    MemHandleType pair;
    if (!AllocateMem(static_cast<size_t>(n) * n, 2, &pair)) return nullptr;
    item->PixHandle = pair.Handle;
    item->PixData = static_cast<uint16_t*>(pair.Ptr);
    for (int y = 0; y < n; ++y)
        for (int x = 0; x < n; ++x)
            item->PixData[static_cast<size_t>(y) * n + x] = static_cast<uint16_t>(x * 251 + y * 4099 + seed);
    CurrentItem = item;
    return item;
}

inline uint16_t U16(const std::string& bytes, size_t at)
{
    uint16_t v = 0;
    if (at + 2 <= bytes.size()) std::memcpy(&v, bytes.data() + at, 2);
    return v;
}

inline uint32_t U32(const std::string& bytes, size_t at)
{
    uint32_t v = 0;
    if (at + 4 <= bytes.size()) std::memcpy(&v, bytes.data() + at, 4);
    return v;
}

struct Entry {
    uint16_t tag, type;
    uint32_t count, value;
};

inline Entry EntryAt(const std::string& bytes, int slot)
{
    const size_t at = TiffLayout::kEntriesOffset + static_cast<size_t>(slot) * TiffLayout::kEntryBytes;
    return Entry{U16(bytes, at), U16(bytes, at + 2), U32(bytes, at + 4), U32(bytes, at + 8)};
}

inline std::string StoredBytes(const ImageHeaderType* record)
{
    return std::string(reinterpret_cast<const char*>(record), TAVRIN_HEADER_STORED_BYTES);
}

// A plain (non-TIFF) file: the first `headerBytes` of the record, then `body`.
inline std::string PlainFile(const ImageHeaderType& record, size_t headerBytes, const std::string& body)
{
    return std::string(reinterpret_cast<const char*>(&record), headerBytes) + body;
}

// A record of a plain file of revision `revNo`.
inline ImageHeaderType PlainRecord(int n, int revNo, int compression, int bitsPerPixel)
{
    ImageHeaderType record;
    std::memset(&record, 0, sizeof record);
    InitImageHeader(&record, n, n);
    record.RevNo = static_cast<int16_t>(revNo);
    record.Compression = static_cast<int8_t>(compression);
    record.BitsPerPixel = static_cast<int8_t>(bitsPerPixel);
    return record;
}

inline bool Contains(const std::string& text, const std::string& part)
{
    return text.find(part) != std::string::npos;
}

} // namespace tifftest
