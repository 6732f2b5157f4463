#include "display/colour_file.h"
#include "display/colour_param.h"
#include "display/lut.h"
#include "display/palette.h"
#include "host/errors.h"
#include "host/save_outcome.h"
#include "platform/files.h"
#include "store/data_list.h"

#include <cstdint>
#include <cstring>

namespace {

bool UserTable(int table) { return table == 6 || table == 7; }

// A path the library can take: present and shorter than 260 characters.
bool PathIsUsable(const char* path)
{
    return path && path[0] && std::strlen(path) < static_cast<size_t>(kColourFilePathMax);
}

} // namespace

int LoadLUT(const char* path)
{
    const int table = ColourTableNo;
    if (!UserTable(table)) {
        ProgramError("LoadLUT ColourTableNo=%d", table);
        return 1;
    }
    FileHandle file = PathIsUsable(path) ? FileOpen(path, FileMode::Read) : kInvalidFile;
    if (file == kInvalidFile) {
        Error(ERR_OPEN_FILE2);
        return 1;
    }
    uint8_t bytes[kColourFileBytes];
    long long got = FileRead(file, bytes, sizeof bytes);
    if (got != kColourFileBytes) {
        Error(got < 0 ? ERR_READING2 : ERR_FILE_TOO_SHORT);
        FileClose(file);
        return 1;
    }
    uint16_t planes[3][kLUTEntries];
    GetColourTable(table, planes[0], planes[1], planes[2]);
    for (int p = 0; p < 3; ++p)
        for (int i = kColourFileFirstEntry; i < kLUTEntries; ++i) planes[p][i] = bytes[p * kLUTEntries + i];
    SetColourTable(table, planes[0], planes[1], planes[2]);
    PutColourTableIntoEffect(table);
    if (FileClose(file) != 0) {
        Error(ERR_CLOSING_FILE2);
        return 1;
    }
    return 0;
}

int SaveLUT(const char* path)
{
    const int table = ColourTableNo;
    if (!UserTable(table)) {
        ProgramError("SaveLUT ColourTableNo=%d", table);
        return 1;
    }
    uint16_t planes[3][kLUTEntries];
    GetColourTable(table, planes[0], planes[1], planes[2]);
    uint8_t bytes[kColourFileBytes];
    for (int p = 0; p < 3; ++p) PlaneToBytes(planes[p], bytes + p * kLUTEntries);
    FileReplace save;
    const FileHandle file = PathIsUsable(path) ? FileReplaceBegin(&save, path) : kInvalidFile;
    if (file == kInvalidFile) {
        Error(ERR_OPEN_FILE2);
        return 1;
    }
    const long long put = FileWrite(file, bytes, sizeof bytes);
    const bool written = put == kColourFileBytes;
    if (!written) Error(put < 0 ? ERR_WRITING2 : ERR_DISK_FULL);
    return FinishSave(&save, written, ERR_CLOSING_FILE2) ? 0 : 1;
}

void ColourOpen(const char* path)
{
    if (LoadLUT(path) == 0 && TrueRGB && CurrentItem) DisplayCurrentItem();
}
