#include "files/save_commands.h"
#include "files/exchange_forms.h"
#include "files/file_names.h"
#include "files/spectrum_files.h"
#include "files/tiff_write.h"
#include "host/ap_callbacks.h"
#include "host/errors.h"
#include "host/prompts.h"
#include "host/text.h"
#include "host/trace.h"
#include "platform/files.h"
#include "platform/locale.h"
#include "platform/paths.h"
#include "store/data_list.h"
#include "store/data_list_select.h"
#include "store/image_header.h"

#include <cerrno>
#include <cstdio>
#include <cstring>

namespace {

constexpr int kPathBytes = 260;

// Causes of the desktop platform's file exceptions.
enum FileExceptionCause : int {
    kGenericException = 1,
    kFileNotFound = 2,
    kBadPath = 3,
    kTooManyOpenFiles = 4,
    kAccessDenied = 5,
    kSharingViolation = 11,
    kDiskFull = 13,
};

bool AskOverwrite(const char* path, int check)
{
    if (!check || !PathExists(path)) return true;
    return AskYesNo("File exists. Overwrite ?  ", false, true) == 1;
}

int SaveImage(ImageHeaderType* image, int type, const char* path)
{
    switch (type) {
    case SAVE_TIFF_16: return saveTiffImage(image, path, 0);
    case SAVE_TIFF_8: return saveTiffImage(image, path, 1);
    case SAVE_RAW: return SaveRawFile(type, path);
    case SAVE_RAW_COMPLEX:
        if (!image->FFTData) {
            Error(ERR_NOT_FFT);
            return 1;
        }
        return SaveRawFile(type, path);
    case SAVE_ASCII: return SaveAsciiFile(type, path);
    case SAVE_ASCII_COMPLEX:
        if (!image->FFTData) {
            Error(ERR_NOT_FFT);
            return 1;
        }
        return SaveAsciiFile(type, path);
    case SAVE_HEADER: return SaveHeaderFile(type, image, path);
    default:
        ProgramError("SaveSTMData Image %d", type);
        return 1;
    }
}

int SaveSpectrum(ImageHeaderType* spectrum, int type, const char* path)
{
    switch (type) {
    case SAVE_SPECTRUM: return SaveSpecFile(spectrum, path);
    case SAVE_TABLE: return SaveSpecData(spectrum, path);
    case SAVE_HEADER: return SaveHeaderFile(type, spectrum, path);
    default:
        ProgramError("SaveSTMData Spec %d", type);
        return 1;
    }
}

int CauseOf(int error, const char* path)
{
    switch (error) {
    case ENOENT: {
        char directory[kPathBytes];
        SplitPath(directory, nullptr, path, sizeof directory);
        return directory[0] == '\0' || PathIsDirectory(directory) ? kFileNotFound : kBadPath;
    }
    case ENOTDIR: case ENAMETOOLONG: case EINVAL: return kBadPath;
    case EACCES: case EPERM: case EISDIR: case EROFS: return kAccessDenied;
    case EMFILE: case ENFILE: return kTooManyOpenFiles;
    case ENOSPC: case EDQUOT: return kDiskFull;
    case EBUSY: case ETXTBSY: return kSharingViolation;
    default: return kGenericException;
    }
}

void ShowInvalidPath(const char* path, int cause)
{
    char text[512];
    if (cause > 0) {
        std::snprintf(text, sizeof text, "%s contain an invalid path (exception=%d)", path, cause);
    } else {
        std::snprintf(text, sizeof text, "%s contain an invalid path", path);
    }
    ShowInfo(text, nullptr, true);
}

} // namespace

const char* DefaultSaveExtension(int type)
{
    static const char* const kExtensions[] = {".tif", ".tif", ".bin", ".bft", ".asc", ".aft", ".spc", ".dat", ".hdr"};
    if (type < SAVE_TIFF_16 || type > SAVE_HEADER) return nullptr;
    return kExtensions[type - 1];
}

int SaveSTMData(int type, const char* path, int check)
{
    if (!path) {
        ProgramError("SaveSTMData");
        return 1;
    }
    ImageHeaderType* item = CurrentItem;
    int result = 1;
    if (CheckHeaderIsImageType(item)) {
        if (!AskOverwrite(path, check)) return 1;
        result = SaveImage(item, type, path);
    } else if (CheckHeaderIsSpecType(item)) {
        if (!AskOverwrite(path, check)) return 1;
        result = SaveSpectrum(item, type, path);
    } else {
        Error(ERR_NO_IMAGES);
    }
    // The desktop form closed a file search left open here; this library keeps none open.
    return result;
}

int SaveData(int type, const char* path, int flag, int check)
{
    char name[kPathBytes];
    strncpy0(name, path, sizeof name);
    const char* extension = DefaultSaveExtension(type);
    if (!extension) {
        ProgramError("dl_SaveData (%d)", type);
    } else if (!GetExtension(name)) {
        strncat0(name, extension, sizeof name);
    }
    TraceEntry("dl_SaveData: %d '%s' %d", type, name, flag);
    if (!extension) return 1;
    const int result = SaveSTMData(type, name, check);
    if (result == 0 && check && (type == SAVE_TIFF_16 || type == SAVE_TIFF_8 || type == SAVE_SPECTRUM) && CurrentItem) {
        strncpy0(CurrentItem->FileName, name, sizeof CurrentItem->FileName);
        DisplayCurrentItem();
    }
    return result;
}

void CleanSaveName(const char* name, char* out, size_t size)
{
    if (!out || size == 0) return;
    size_t n = 0;
    auto keep = [&](char c) {
        if (n + 1 < size) out[n++] = c;
    };
    auto plain = [](unsigned char c) { return c == '_' || IsCharAlphaNumeric(c); };
    for (size_t i = 0; name && name[i]; ++i) {
        const auto c = static_cast<unsigned char>(name[i]);
        if (i % 2 == 1) {
            // The trail byte of a character whose lead byte stood at the even position before
            // went out with it.
            if (IsLeadByte(static_cast<unsigned char>(name[i - 1]))) continue;
            if (plain(c)) keep(name[i]);
        } else if (IsLeadByte(c)) {
            keep(name[i]);
            if (name[i + 1]) keep(name[i + 1]);
        } else if (plain(c)) {
            keep(name[i]);
        }
    }
    out[n] = '\0';
}

int SaveDataAndRepeat(int type, const char* name, int flag)
{
    char clean[kPathBytes];
    CleanSaveName(name, clean, sizeof clean);
    if (SaveData(type, clean, flag, 1) != 0) return 1;
    // The pick is the host's own command run from here, and its trace shows it so.
    TraceEntry("dl_SelectDataForSaving");
    return SelectDataForSaving() < 0 ? 1 : 0;
}

int SelectDataForSaving()
{
    const int n = Ap.ap_SelectDataDialog(0, SELECT_SAME_CLASS);
    if (n < 0) return n;
    if (ImageHeaderType* item = GetPtrData2DataItem(n, 0, SELECT_SAME_CLASS, 0, 0, CurrentItem)) {
        CurrentItem = item;
        DisplayCurrentItem();
    }
    return n;
}

int CanOpenFile(const char* path, int mode)
{
    if (!path) path = "";
    if (mode) {
        const FileHandle file = FileOpen(path, FileMode::Read);
        const int openError = errno;
        // The desktop platform refuses to open a directory as a file.
        if (file == kInvalidFile || PathIsDirectory(path)) {
            const int cause = file == kInvalidFile ? CauseOf(openError, path) : kAccessDenied;
            if (file != kInvalidFile) FileClose(file);
            ShowInvalidPath(path, cause);
            return 0;
        }
        FileClose(file);
        return 1;
    }
    // The test file must be exactly the path with ".dum": a name cut short to fit could be
    // some other file, which the test would empty and delete.
    char test[kPathBytes + 4];
    if (std::snprintf(test, sizeof test, "%s.dum", path) >= static_cast<int>(sizeof test)) {
        ShowInvalidPath(path, kBadPath);
        return 0;
    }
    const FileHandle file = FileCreate(test);
    const int createError = errno;
    if (file == kInvalidFile) {
        ShowInvalidPath(path, CauseOf(createError, test));
        return 0;
    }
    FileClose(file);
    if (!RemoveFile(test)) {
        ShowInvalidPath(path, 0);
        return 0;
    }
    return 1;
}

int GetImageFileName(const ImageHeaderType* record, char* text, bool stripPath, bool stripExtension)
{
    if (!text) {
        ProgramError("GetImageFileName");
        return 1;
    }
    text[0] = '\0';
    const ImageHeaderType* item = record ? record : CurrentItem;
    if (!item) return 1;
    char name[kPathBytes];
    const size_t length = strnlen(item->FileName, sizeof item->FileName - 1);
    std::memcpy(name, item->FileName, length);
    name[length] = '\0';
    if (std::strcmp(name, "Software generated") == 0 || name[0] == '\0') return 1;
    const char* start = name;
    if (stripPath) {
        for (const char* p = name; *p; ++p)
            if (*p == '\\' || *p == '/') start = p + 1;
    }
    strncpy0(text, start, kPathBytes);
    if (stripExtension) {
        const size_t n = std::strlen(text);
        text[n >= 4 ? n - 4 : 0] = '\0';
    }
    return 0;
}
