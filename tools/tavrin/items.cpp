#include "items.h"
#include "picture.h"
#include "session.h"
#include "store/image_header.h"

#include <algorithm>
#include <cstdio>
#include <cctype>
#include <map>

size_t DataBlockBytes(const ImageHeaderType* item)
{
    return CheckHeaderIsImageType(item) ? static_cast<size_t>(item->nx) * static_cast<size_t>(item->ny) * 2
                                        : static_cast<size_t>(item->nx) * 8;
}

ImageHeaderType* OpenItem(const std::string& path)
{
    ImageHeaderType* before = dl_GetCurrentImagePtr();
    // From here on the library's texts are about this file.
    Session().workFile = path;
    dl_OpenSTMData(0, path.c_str());
    ImageHeaderType* item = dl_GetCurrentImagePtr();
    // An open is judged by its item: one that came is opened, whatever was reported on the way.
    if (item && item != before) return item;
    std::fprintf(stderr, "tavrin: %s: not opened\n", path.c_str());
    return nullptr;
}

wint_SaveFileType SaveTypeFor(const std::string& path, bool eightBit)
{
    static const std::map<std::string, wint_SaveFileType> types = {
        {".tif", TV_SAVE_TIFF_16}, {".tiff", TV_SAVE_TIFF_16}, {".bin", TV_SAVE_RAW},
        {".bft", TV_SAVE_RAW_COMPLEX}, {".asc", TV_SAVE_ASCII}, {".aft", TV_SAVE_ASCII_COMPLEX},
        {".spc", TV_SAVE_SPECTRUM}, {".dat", TV_SAVE_TABLE}, {".hdr", TV_SAVE_HEADER},
    };
    size_t dot = path.find_last_of('.');
    size_t slash = path.find_last_of("/\\");
    if (dot == std::string::npos || (slash != std::string::npos && dot < slash)) return 0;
    std::string ext = path.substr(dot);
    std::transform(ext.begin(), ext.end(), ext.begin(), [](unsigned char c) { return std::tolower(c); });
    auto found = types.find(ext);
    if (found == types.end()) return 0;
    return found->second == TV_SAVE_TIFF_16 && eightBit ? TV_SAVE_TIFF_8 : found->second;
}

bool SaveCurrentItem(const std::string& path, bool eightBit)
{
    wint_SaveFileType type = SaveTypeFor(path, eightBit);
    if (type == 0) return false;
    // The texts of the save are about the file written.
    Session().workFile = path;
    return dl_SaveData(type, path.c_str(), 0, 0) == 0;
}

void ShowCurrentItem(const ShowOptions& options)
{
    wint_DisplayParamType display;
    dl_GetDisplayParam(&display);
    display.DispMode = options.mode;
    if (options.size >= 0) display.ImageDisplaySize = options.size;
    display.FullDisplayOn = options.full ? 1 : 0;
    dl_SetDisplayParam(&display);
    if (options.table >= 0) {
        wint_ColourParamType colour;
        dl_GetColourParam(&colour);
        colour.ColourTableNo = static_cast<int16_t>(options.table);
        dl_SetColourParam(&colour);
    }
    dl_ClearFrameStore();
    dl_DisplayData();
}

namespace {

bool IsPng(const std::string& path) { return path.size() > 4 && path.compare(path.size() - 4, 4, ".png") == 0; }

} // namespace

bool IsImageResultPath(const std::string& path) { return IsPng(path) || SaveTypeFor(path, false) == TV_SAVE_TIFF_16; }

const ImageHeaderType* OpenImageForCommand(const char* command, const std::string& path)
{
    const ImageHeaderType* source = OpenItem(path);
    if (!source) return nullptr;
    if (!(dl_IsCurrentDataTypeImage() & TV_DATA_IMAGE_CLASS)) {
        std::fprintf(stderr, "tavrin %s: '%s' holds no image\n", command, path.c_str());
        return nullptr;
    }
    ShowCurrentItem(ShowOptions{});
    return source;
}

int WriteImageResult(const ImageHeaderType* source, const std::string& out)
{
    if (dl_GetCurrentImagePtr() == source) return 1;
    if (IsPng(out)) {
        ShowCurrentItem(ShowOptions{});
        if (!WriteCurrentPicture(out)) return 1;
    } else if (!SaveCurrentItem(out, false)) {
        return 1;
    }
    std::printf("%s\n", out.c_str());
    return 0;
}
