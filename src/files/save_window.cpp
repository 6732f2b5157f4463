#include "files/save_window.h"
#include "files/save_commands.h"
#include "host/errors.h"
#include "host/save_outcome.h"
#include "platform/files.h"
#include "store/data_list.h"
#include "store/image_header.h"

#include <cstring>

namespace {

void WriteBitmap(const char* path, const void* bitmap)
{
    uint32_t length = 0;
    std::memcpy(&length, bitmap, sizeof length);
    FileReplace save;
    const FileHandle file = FileReplaceBegin(&save, path);
    if (file == kInvalidFile) {
        Error(ERR_OPEN_FILE);
        return;
    }
    const bool written = FileWrite(file, bitmap, length) == static_cast<long long>(length);
    if (!written) Error(ERR_WRITING);
    FinishSave(&save, written, ERR_WRITING);
}

} // namespace

int SaveWindow(const char* path, const void* bitmap, const void*, int32_t, int kind)
{
    switch (kind) {
    case SAVE_WINDOW_BITMAP:
        if (!path || !bitmap) {
            ProgramError("dl_SaveWindow");
            return 1;
        }
        WriteBitmap(path, bitmap);
        return 1;
    case SAVE_WINDOW_IMAGE: {
        ImageHeaderType* image = CurrentItem;
        if (!image) return SaveSTMData(SAVE_TIFF_16, path, 0);
        const uint32_t mode = image->DisplayMode;
        image->DisplayMode = 4;
        const int result = SaveSTMData(SAVE_TIFF_16, path, 0);
        image->DisplayMode = mode;
        return result;
    }
    default:
        ProgramError("dl_SaveWindow swt=%d", kind);
        return 1;
    }
}
