// The open command: the format of a file is picked by its extension, compared without regard
// to case.
//
//   none, ".tif", any other   2  image file
//   ".spc"                    3  spectrum file
//   ".bin"                    4  raw codes if the file has 32768, 131072 or 524288 bytes,
//                                otherwise an image file
//   ".bft"                    5  raw complex data if the file has 131072, 524288 or 2097152
//                                bytes, otherwise an image file
//   ".asc"                    6  ASCII codes
//   ".aft"                    7  ASCII complex data
//   ".bmp"                    8  no reader: the program error "OpenSTMData %d"
//
// Code 1, which the table never gives, picks by the upper-cased path: one containing ".SPC"
// is a spectrum file, any other an image file.
#pragma once

enum OpenCode : int {
    OPEN_BY_NAME = 1,
    OPEN_IMAGE = 2,
    OPEN_SPECTRUM = 3,
    OPEN_RAW = 4,
    OPEN_RAW_COMPLEX = 5,
    OPEN_ASCII = 6,
    OPEN_ASCII_COMPLEX = 7,
    OPEN_BITMAP = 8,
};

// The open code of a path by its extension.
int OpenCodeForPath(const char* path);

// Opens the file by the code. `headerOnly` goes to the image file reader; `report` logs the
// load; `quiet` keeps the new item from being shown. 0 on success, 1 on failure (the readers
// show their errors). Another code: the program error "OpenSTMData %d".
int OpenSTMData(int code, const char* path, int headerOnly, int report, int quiet);

// The host's open command: the path is taken into a buffer of 261 bytes, the extension picks
// the code, and the file is opened with the report flag set. The host sees errors only as
// they are shown.
void OpenDataFile(const char* path);
