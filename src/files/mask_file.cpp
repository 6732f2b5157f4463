#include "files/mask_file.h"

#include "files/image_blocks.h"
#include "host/error_numbers.h"
#include "host/errors.h"
#include "host/globals.h"
#include "host/log.h"
#include "platform/clock.h"
#include "platform/files.h"

#include <cstring>
#include <vector>

namespace {

uint16_t Word(const uint8_t* bytes, size_t offset)
{
    return static_cast<uint16_t>(bytes[offset] | (bytes[offset + 1] << 8));
}

void PutWord(uint8_t* bytes, size_t offset, uint16_t value)
{
    bytes[offset] = static_cast<uint8_t>(value & 0xFF);
    bytes[offset + 1] = static_cast<uint8_t>(value >> 8);
}

bool OldFormMark(uint16_t first) { return first == 0 || (first >= 100 && first <= 105) || (first >= 200 && first <= 204); }

// Eight bytes into one bit each, least significant bit first, in place: byte i of the result
// only reads bytes 8 i on, so nothing is overwritten before it is read.
void PackInPlace(uint8_t* mask, size_t count)
{
    for (size_t i = 0; i < count / 8; ++i) {
        uint8_t bits = 0;
        for (int b = 0; b < 8; ++b)
            if (mask[8 * i + b]) bits = static_cast<uint8_t>(bits | (1u << b));
        mask[i] = bits;
    }
}

// The reverse, from the end backwards, every set bit to 255.
void UnpackInPlace(uint8_t* mask, size_t count)
{
    for (size_t i = count / 8; i-- > 0;) {
        const uint8_t bits = mask[i];
        for (int b = 7; b >= 0; --b) mask[8 * i + b] = (bits >> b) & 1 ? 255 : 0;
    }
}

struct FileCloser {
    FileHandle file;
    ~FileCloser()
    {
        if (file != kInvalidFile) FileClose(file);
    }
};

} // namespace

bool MaskFileSide(int side) { return side == 128 || side == 256 || side == 512; }

int SaveMask(const char* path, int width, int height, uint8_t* mask)
{
    if (!mask) {
        Error(ERR_NO_WINDOW);
        return 1;
    }
    if (!path || !MaskFileSide(width) || !MaskFileSide(height)) {
        if (DebugMode) Log("Mask x=%d y=%d\n", width, height);
        Error(ERR_WINDOW_SIZE);
        Log("Error on saving window %s\n", path ? path : "");
        return 1;
    }
    const size_t count = static_cast<size_t>(width) * static_cast<size_t>(height);
    uint8_t header[kMaskFileHeaderBytes] = {};
    PutWord(header, 0, kMaskFileMark);
    PutWord(header, 2, static_cast<uint16_t>(width));
    PutWord(header, 4, static_cast<uint16_t>(height));
    PutWord(header, 6, 1);
    const LocalTime now = GetLocalTime();
    const DosDateType date = ToDosDate(now);
    const DosTimeType time = ToDosTime(now);
    std::memcpy(header + 8, &date, sizeof date);
    std::memcpy(header + 13, &time, sizeof time);

    FileCloser out{FileCreate(path)};
    if (out.file == kInvalidFile) {
        Error(ERR_OPEN_FILE2);
        Log("Error on saving window %s\n", path);
        return 1;
    }
    PackInPlace(mask, count);
    const bool written = CheckWrite(FileWrite(out.file, header, sizeof header), sizeof header) &&
                         CheckWrite(FileWrite(out.file, mask, count / 8), count / 8);
    UnpackInPlace(mask, count);
    if (!written) {
        Log("Error on saving window %s\n", path);
        return 1;
    }
    Log("Save window %s\n", path);
    return 0;
}

int LoadMaskBytes(const uint8_t* bytes, size_t size, int width, int height, uint8_t* mask)
{
    if (!mask || width <= 0 || height <= 0) {
        ProgramError("LoadMask");
        return 1;
    }
    if (!bytes || size < kMaskFileHeaderBytes) {
        Error(ERR_FILE_TOO_SHORT);
        return 1;
    }
    const uint16_t first = Word(bytes, 0);
    int fileWidth = 0, fileHeight = 0;
    bool packed = false;
    size_t dataOffset = kMaskFileHeaderBytes;
    if (first == kMaskFileMark) {
        fileWidth = Word(bytes, 2);
        fileHeight = Word(bytes, 4);
        const uint16_t flag = Word(bytes, 6);
        if (flag > 1) {
            Error(ERR_INVALID_HEADER);
            return 1;
        }
        packed = flag == 1;
    } else if (OldFormMark(first)) {
        fileWidth = Word(bytes, 6);
        fileHeight = Word(bytes, 4);
        dataOffset = 8;
    } else {
        Error(ERR_INVALID_HEADER);
        return 1;
    }
    if (!MaskFileSide(fileWidth) || !MaskFileSide(fileHeight)) {
        if (DebugMode) Log("Mask x=%d y=%d\n", fileWidth, fileHeight);
        Error(ERR_INVALID_HEADER);
        return 1;
    }
    if (fileWidth != width || fileHeight != height) {
        Error(ERR_WINDOW_SIZE);
        return 1;
    }
    const size_t count = static_cast<size_t>(width) * static_cast<size_t>(height);
    const size_t stored = packed ? count / 8 : count;
    if (size - dataOffset < stored) {
        Error(ERR_FILE_TOO_SHORT);
        return 1;
    }
    const uint8_t* data = bytes + dataOffset;
    if (packed) {
        std::memcpy(mask, data, stored);
        UnpackInPlace(mask, count);
    } else {
        for (size_t i = 0; i < count; ++i) mask[i] = data[i] ? 255 : 0;
    }
    return 0;
}

int LoadMask(const char* path, int width, int height, uint8_t* mask)
{
    if (!mask || width <= 0 || height <= 0) {
        ProgramError("LoadMask");
        return 1;
    }
    FileCloser in{path ? FileOpen(path, FileMode::Read) : kInvalidFile};
    if (in.file == kInvalidFile) {
        Error(ERR_OPEN_FILE);
        Log("Error on loading %s\n", path ? path : "");
        return 1;
    }
    // The most a valid file of this size needs: the new form's header and a mask of bytes.
    const size_t most = kMaskFileHeaderBytes + static_cast<size_t>(width) * static_cast<size_t>(height);
    std::vector<uint8_t> bytes(most);
    const long long got = FileRead(in.file, bytes.data(), most);
    if (got < 0) {
        Error(ERR_READING2);
        Log("Error on loading %s\n", path);
        return 1;
    }
    if (LoadMaskBytes(bytes.data(), static_cast<size_t>(got), width, height, mask)) {
        Log("Error on loading %s\n", path);
        return 1;
    }
    Log("Load %s\n", path);
    return 0;
}
