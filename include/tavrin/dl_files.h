/* Tavrin Processing: opening and saving files, replaying a series, the data directories.
 *
 * Paths are 8-bit texts of at most 259 characters; both '\' and '/' separate directories. */
#ifndef TAVRIN_DL_FILES_H
#define TAVRIN_DL_FILES_H

#include "tavrin/image_header.h"

/* The kind of list the host shows in its open dialog; the library only traces it. */
typedef int32_t wint_ListFilesType;

/* The format of a save (dl_SaveData), with its default extension. */
typedef int32_t wint_SaveFileType;
#define TV_SAVE_TIFF_16 1        /* ".tif", 16-bit image file; images */
#define TV_SAVE_TIFF_8 2         /* ".tif", 8-bit image file with palette; images */
#define TV_SAVE_RAW 3            /* ".bin", raw codes; images */
#define TV_SAVE_RAW_COMPLEX 4    /* ".bft", raw complex data; FFT images */
#define TV_SAVE_ASCII 5          /* ".asc", ASCII codes; images */
#define TV_SAVE_ASCII_COMPLEX 6  /* ".aft", ASCII complex data; FFT images */
#define TV_SAVE_SPECTRUM 7       /* ".spc", spectrum file; spectra */
#define TV_SAVE_TABLE 8          /* ".dat", text table; spectra */
#define TV_SAVE_HEADER 9         /* ".hdr", ASCII parameter header; both */

/* What dl_SaveWindow saves. */
typedef int32_t SaveWindowType;
#define TV_SAVE_WINDOW_BITMAP 1  /* the device independent bitmap handed over */
#define TV_SAVE_WINDOW_IMAGE 2   /* the current image, as a 16-bit image file with DisplayMode 4 */

/* Selectors of the data directories. */
#define TV_DIR_LOAD 0            /* "Load Data Path": last load directory */
#define TV_DIR_SAVE 1            /* "Save Data Path": last save directory */
#define TV_DIR_DATA 2            /* "Data Path": the data directory; setting it sets all three */

#pragma pack(push, 1)
/* Export settings of the ".dat" table of a spectrum. */
typedef struct wint_SpecExportParamType {
    int32_t NoHeading;   /* non-zero: no "No.", "X", "Y" heading line; default 0 */
    int32_t Separator;   /* 0 blank, 1 comma, 2 tab; default 2 */
} TAVRIN_PACKED wint_SpecExportParamType;
#pragma pack(pop)

/* Opens a file; the extension (in any case) picks the reader: ".spc" spectrum, ".bin" and
 * ".bft" raw data by their size, ".asc" and ".aft" ASCII data, anything else an image file.
 * The new item becomes current and is shown. Answers 0; errors are shown as they happen. */
TAVRIN_API int16_t dl_OpenSTMData(wint_ListFilesType list, const char* path);
/* Saves the current item. A name without extension gets the default of the type. With `check`
 * set an existing file is overwritten only after the user agreed, and after a save of type 1,
 * 2 or 7 the item takes the name. `flag` is only traced. 0 on success, 1 on failure. */
TAVRIN_API int16_t dl_SaveData(wint_SaveFileType type, const char* path, int8_t flag, BOOL32 check);
/* One save of a series under a name the user typed: the name keeps only letters, digits, '_'
 * and the double-byte characters of the locale; it is saved with the check set, and the user
 * then picks the next item. 0: go on with the next name; 1: the save failed or no item was
 * picked. */
TAVRIN_API int16_t dl_pb_SaveDataAndRepeat(wint_SaveFileType type, const char* name, int8_t flag);
/* The host's data dialog over the items of the current item's class; the item picked becomes
 * current and is shown. The number picked, or a negative value. */
TAVRIN_API int16_t dl_SelectDataForSaving(void);
/* Whether `path` can be used: mode non-zero opens it for reading, mode 0 creates and deletes
 * the file path + ".dum". A failure is shown in a message box and answers 0. */
TAVRIN_API int32_t dl_CanOpenFile(const char* path, int32_t mode);
/* The file name of the record (the current item when null) into `text` (260 bytes), without
 * its directory and without its last four characters when asked. Answers 1 with an empty text
 * when the item has no file name ("Software generated" counts as none), else 0. */
TAVRIN_API int16_t dl_GetImageFileName(const ImageHeaderType* record, char* text, BOOL32 stripPath,
                                       BOOL32 stripExtension);
/* Type 1: `bitmap` is a block led by a BITMAPINFO whose first 32-bit word holds the length of
 * the whole block; the block is written as it is to `path`; answers 1. Type 2: the current image
 * is saved as type 1 with DisplayMode 4; answers that save's result. */
TAVRIN_API int32_t dl_SaveWindow(const char* path, const void* bitmap, const void* bits, int32_t count,
                                 SaveWindowType type);

/* Starts the replay of the numbered series that `path` names ("scan00.tif", "scan01.tif", ...
 * or ten digits): answers the number of files from 0 on; 0 with error 33563 when there are
 * none. */
TAVRIN_API int32_t dl_ReplayInitialise(const char* path);
/* Shows file `index` of the series and answers its CreatedFileTime (0 when out of range or not
 * loaded); the file's item does not stay in the data list. */
TAVRIN_API uint64_t dl_ReplayDisplay(int32_t index);

/* Creates the base and settings directories and answers the data directory ("Data Path", or the
 * base directory plus the user name), which all three names take; `path` (260 bytes, may be
 * null) receives it too. */
TAVRIN_API const char* dl_InitializeDataDirectoryName(char* path);
/* Sets a data directory from `path` less `part` (may be null) and a trailing separator; the
 * directory is made when missing. With `store` set the setting is written. */
TAVRIN_API void dl_SetDataDirectoryName(const char* path, const char* part, int32_t selector, BOOL32 store);
/* The data directory of the selector; with `refresh` set the stored setting is read first. */
TAVRIN_API const char* dl_GetDataDirectoryName(int32_t selector, BOOL32 refresh);
/* The system settings file "UserInfo.ini" and the user settings file, into `path` (260
 * bytes). */
TAVRIN_API void dl_GetInitFileName(char* path);
TAVRIN_API void dl_GetUserFileName(char* path);
/* The colour table directory and the cantilever directory (made when missing). */
TAVRIN_API const char* dl_GetColorDataDirectoryName(void);
TAVRIN_API const char* dl_GetCantiDataDirectoryName(void);

/* The export settings of the ".dat" table, copied whole. A separator other than 0, 1 or 2 is
 * refused. */
TAVRIN_API void dl_GetSpecExportParam(wint_SpecExportParamType* param);
TAVRIN_API void dl_SetSpecExportParam(const wint_SpecExportParamType* param);

#endif
