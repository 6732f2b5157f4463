#include "files/open_save.h"
#include "files/exchange_forms.h"
#include "files/file_names.h"
#include "files/spectrum_files.h"
#include "files/tiff_read.h"
#include "host/errors.h"
#include "host/text.h"
#include "platform/paths.h"

#include <cctype>
#include <initializer_list>
#include <cstring>
#include <string>
#include <strings.h>

namespace {

bool HasSize(const char* path, std::initializer_list<long long> sizes)
{
    const long long size = FileSizeOf(path);
    for (long long s : sizes)
        if (size == s) return true;
    return false;
}

bool ContainsSpcUpperCased(const char* path)
{
    std::string upper = path;
    for (char& c : upper) c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
    return upper.find(".SPC") != std::string::npos;
}

} // namespace

int OpenCodeForPath(const char* path)
{
    const char* ext = GetExtension(path);
    if (!ext) return OPEN_IMAGE;
    static const struct {
        const char* extension;
        int code;
    } kCodes[] = {
        {".tif", OPEN_IMAGE}, {".spc", OPEN_SPECTRUM}, {".bin", OPEN_RAW}, {".bft", OPEN_RAW_COMPLEX},
        {".asc", OPEN_ASCII}, {".aft", OPEN_ASCII_COMPLEX}, {".bmp", OPEN_BITMAP},
    };
    for (const auto& entry : kCodes)
        if (strcasecmp(ext, entry.extension) == 0) return entry.code;
    return OPEN_IMAGE;
}

int OpenSTMData(int code, const char* path, int headerOnly, int report, int quiet)
{
    if (!path) {
        ProgramError("OpenSTMData");
        return 1;
    }
    switch (code) {
    case OPEN_BY_NAME:
        return ContainsSpcUpperCased(path) ? LoadSpecFile(path, report, quiet)
                                           : LoadImageFile(path, headerOnly, report, quiet);
    case OPEN_IMAGE:
        return LoadImageFile(path, headerOnly, report, quiet);
    case OPEN_SPECTRUM:
        return LoadSpecFile(path, report, quiet);
    case OPEN_RAW:
        if (HasSize(path, {32768, 131072, 524288})) return OpenRawFile(code, path, report, quiet);
        return LoadImageFile(path, headerOnly, report, quiet);
    case OPEN_RAW_COMPLEX:
        if (HasSize(path, {131072, 524288, 2097152})) return OpenRawFile(code, path, report, quiet);
        return LoadImageFile(path, headerOnly, report, quiet);
    case OPEN_ASCII:
    case OPEN_ASCII_COMPLEX:
        return OpenAsciiFile(code, path, report, quiet);
    default:
        ProgramError("OpenSTMData %d", code);
        return 1;
    }
}

void OpenDataFile(const char* path)
{
    char name[261];
    strncpy0(name, path, sizeof name);
    OpenSTMData(OpenCodeForPath(name), name, 0, 1, 0);
}
