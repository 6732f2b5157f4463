// The headerless exchange forms as the open and save commands reach them: raw codes (".bin"),
// raw complex data (".bft"), ASCII codes (".asc"), ASCII complex data (".aft") and the ASCII
// parameter header (".hdr").
//
// Their readers and writers are not part of the library yet. Until they are, each of these
// answers as a format the command does not know: the open commands with the program error
// "OpenSTMData %d" (the open code), the save commands with "SaveSTMData Image %d" or
// "SaveSTMData Spec %d" (the save type, by the class of the item). Each answers 1.
#pragma once

#include "tavrin/image_header.h"

// Open codes 4 (raw codes) and 5 (raw complex), once the file size has matched.
int OpenRawFile(int code, const char* path, int report, int quiet);
// Open codes 6 (ASCII codes) and 7 (ASCII complex).
int OpenAsciiFile(int code, const char* path, int report, int quiet);
// Save types 3 and 4 of the current image.
int SaveRawFile(int type, const char* path);
// Save types 5 and 6 of the current image.
int SaveAsciiFile(int type, const char* path);
// Save type 9 of the item, image or spectrum.
int SaveHeaderFile(int type, const ImageHeaderType* record, const char* path);
