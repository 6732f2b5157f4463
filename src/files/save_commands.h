// The save commands: the type of a save picks the writer by the class of the current item, a
// name without extension gets the default of its type, and an existing file is overwritten
// only after the user agreed.
//
//   type  extension  image                             spectrum class
//   1     ".tif"     16-bit image file                 refused
//   2     ".tif"     8-bit image file                  refused
//   3     ".bin"     raw codes                         refused
//   4     ".bft"     raw complex data (FFT images)     refused
//   5     ".asc"     ASCII codes                       refused
//   6     ".aft"     ASCII complex data (FFT images)   refused
//   7     ".spc"     refused                           spectrum file
//   8     ".dat"     refused                           table
//   9     ".hdr"     ASCII header                      ASCII header
#pragma once

#include <cstddef>

#include "tavrin/image_header.h"

enum SaveFileType : int {
    SAVE_TIFF_16 = 1,
    SAVE_TIFF_8 = 2,
    SAVE_RAW = 3,
    SAVE_RAW_COMPLEX = 4,
    SAVE_ASCII = 5,
    SAVE_ASCII_COMPLEX = 6,
    SAVE_SPECTRUM = 7,
    SAVE_TABLE = 8,
    SAVE_HEADER = 9,
};

// The default extension of a save type, or null for an unknown type.
const char* DefaultSaveExtension(int type);

// Saves the current item by the type. With `check` set an existing file is overwritten only
// after "File exists. Overwrite ?  " was answered yes; no ends the save with 1 and no message.
// A type the item's class has no writer for is the program error "SaveSTMData Image %d" or
// "SaveSTMData Spec %d"; no image and no spectrum is error 33536. 0 on success, 1 on failure.
int SaveSTMData(int type, const char* path, int check);

// The host's save command. The path is taken into 260 bytes and a name with no extension gets
// the type's default; an unknown type is the program error "dl_SaveData (%d)". The command is
// traced with the name as it is saved ("dl_SaveData: %d '%s' %d", `flag` only traced). After a
// checked save of type 1, 2 or 7 the item takes the name as its FileName and is shown again.
// 0 on success, 1 on failure.
int SaveData(int type, const char* path, int flag, int check);

// The name of a save in a series, cleaned byte by byte into `out` (`size` bytes): letters,
// digits and '_' stay, and a double-byte character of the locale stays whole when its lead
// byte stands at an even position. A lead byte at an odd position is not taken for one.
void CleanSaveName(const char* name, char* out, size_t size);

// One save of a series: the cleaned name is saved with the check set; on success the user
// picks the next item. 0 when the host is to go on with the next name; 1 when the save failed
// or the user picked none.
int SaveDataAndRepeat(int type, const char* name, int flag);

// The host's data dialog over the items of the current item's class; the item picked becomes
// current and is shown. Answers the number picked, or a negative value.
int SelectDataForSaving();

// Whether a path can be used: `mode` non-zero opens it for reading; zero creates the path
// with ".dum" appended and deletes it again. A failure shows "%s contain an invalid path
// (exception=%d)" with the cause in the numbering of the desktop platform's file exceptions,
// or "%s contain an invalid path" when the test file stays. A path too long for its test name
// (259 characters and ".dum") is a bad path, and no file is made. Non-zero when the path can be
// used.
int CanOpenFile(const char* path, int mode);

// The file name of the record (the current item when null) into `text` (260 bytes). A name of
// "Software generated" counts as none; with none the text is empty and the answer 1, else 0.
// `stripPath` drops everything up to the last separator; `stripExtension` drops the last four
// characters, whatever they are.
int GetImageFileName(const ImageHeaderType* record, char* text, bool stripPath, bool stripExtension);
