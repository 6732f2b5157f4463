// Entry points: open and save, replay, data directories.
#include "tavrin/dl_files.h"
#include "files/data_directories.h"
#include "files/open_save.h"
#include "files/replay.h"
#include "files/save_commands.h"
#include "files/save_window.h"
#include "files/spectrum_files.h"
#include "host/errors.h"
#include "host/text.h"
#include "host/trace.h"

static_assert(TV_SAVE_TIFF_16 == SAVE_TIFF_16 && TV_SAVE_HEADER == SAVE_HEADER, "save types");
static_assert(TV_SAVE_WINDOW_BITMAP == SAVE_WINDOW_BITMAP && TV_SAVE_WINDOW_IMAGE == SAVE_WINDOW_IMAGE,
              "save window types");
static_assert(sizeof(wint_SpecExportParamType) == 8, "export settings record");

TAVRIN_API int16_t dl_OpenSTMData(wint_ListFilesType list, const char* path)
{
    TraceEntry("dl_OpenSTMData: %d '%32s'", list, path ? path : "");
    OpenDataFile(path);
    return 0;
}

TAVRIN_API int16_t dl_SaveData(wint_SaveFileType type, const char* path, int8_t flag, BOOL32 check)
{
    // Traced by SaveData once the name has its extension, so that the trace shows the file.
    return static_cast<int16_t>(SaveData(type, path, flag, check));
}

TAVRIN_API int16_t dl_pb_SaveDataAndRepeat(wint_SaveFileType type, const char* name, int8_t flag)
{
    TraceEntry("dl_pb_SaveDataAndRepeat: %d '%s' %d", type, name ? name : "", flag);
    return static_cast<int16_t>(SaveDataAndRepeat(type, name, flag));
}

TAVRIN_API int16_t dl_SelectDataForSaving(void)
{
    TraceEntry("dl_SelectDataForSaving");
    return static_cast<int16_t>(SelectDataForSaving());
}

TAVRIN_API int32_t dl_CanOpenFile(const char* path, int32_t mode)
{
    TraceEntry("dl_CanOpenFile: '%s' %d", path ? path : "", mode);
    return CanOpenFile(path, mode);
}

TAVRIN_API int16_t dl_GetImageFileName(const ImageHeaderType* record, char* text, BOOL32 stripPath,
                                       BOOL32 stripExtension)
{
    TraceEntry("dl_GetImageFileName");
    return static_cast<int16_t>(GetImageFileName(record, text, stripPath != 0, stripExtension != 0));
}

TAVRIN_API int32_t dl_SaveWindow(const char* path, const void* bitmap, const void* bits, int32_t count,
                                 SaveWindowType type)
{
    TraceEntry("dl_SaveWindow: '%s' %d", path ? path : "", type);
    return SaveWindow(path, bitmap, bits, count, type);
}

TAVRIN_API int32_t dl_ReplayInitialise(const char* path)
{
    TraceEntry("dl_ReplayInitialise: '%s'", path ? path : "");
    return ReplayInitialise(path);
}

TAVRIN_API uint64_t dl_ReplayDisplay(int32_t index)
{
    TraceEntry("dl_ReplayDisplay: %d", index);
    return ReplayDisplay(index);
}

TAVRIN_API const char* dl_InitializeDataDirectoryName(char* path)
{
    TraceEntry("dl_InitializeDataDirectoryName");
    const char* name = InitializeDataDirectoryName();
    if (path) strncpy0(path, name, kDataDirectoryBytes);
    return name;
}

TAVRIN_API void dl_SetDataDirectoryName(const char* path, const char* part, int32_t selector, BOOL32 store)
{
    TraceEntry("dl_SetDataDirectoryName: '%s' %d %d", path ? path : "", selector, store);
    SetDataDirectoryName(path, part, selector, store != 0);
}

TAVRIN_API const char* dl_GetDataDirectoryName(int32_t selector, BOOL32 refresh)
{
    TraceEntry("dl_GetDataDirectoryName: %d %d", selector, refresh);
    return GetDataDirectoryName(selector, refresh != 0);
}

TAVRIN_API void dl_GetInitFileName(char* path)
{
    TraceEntry("dl_GetInitFileName");
    if (path) strncpy0(path, InitFileName(), kDataDirectoryBytes);
}

TAVRIN_API void dl_GetUserFileName(char* path)
{
    TraceEntry("dl_GetUserFileName");
    if (path) strncpy0(path, UserFileName(), kDataDirectoryBytes);
}

TAVRIN_API const char* dl_GetColorDataDirectoryName(void)
{
    TraceEntry("dl_GetColorDataDirectoryName");
    return ColorDataDirectoryName();
}

TAVRIN_API const char* dl_GetCantiDataDirectoryName(void)
{
    TraceEntry("dl_GetCantiDataDirectoryName");
    return CantiDataDirectoryName();
}

TAVRIN_API void dl_GetSpecExportParam(wint_SpecExportParamType* param)
{
    TraceEntry("dl_GetSpecExportParam");
    if (!param) {
        ProgramError("dl_GetSpecExportParam");
        return;
    }
    const SpecExportParam p = GetSpecExportParam();
    param->NoHeading = p.noHeading;
    param->Separator = p.separator;
}

TAVRIN_API void dl_SetSpecExportParam(const wint_SpecExportParamType* param)
{
    TraceEntry("dl_SetSpecExportParam");
    if (!param) {
        ProgramError("dl_SetSpecExportParam");
        return;
    }
    SetSpecExportParam(SpecExportParam{param->NoHeading, param->Separator});
}
