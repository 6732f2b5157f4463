// The data directories the host remembers: where the user last loaded, where the user last
// saved, and the data directory. Each is a name of up to 259 characters with a key in the
// main section of the user settings:
//
//   0  "Load Data Path"   last load directory
//   1  "Save Data Path"   last save directory
//   2  "Data Path"        data directory
#pragma once

constexpr int kDataDirectoryCount = 3;
constexpr int kDataDirectoryBytes = 260;

// Creates the base and settings directories and reads "Data Path"; when the key is missing
// the name is the base directory followed by the user name. All three names take it. Answers
// the name.
const char* InitializeDataDirectoryName();
// Takes `path`, removes the last occurrence of `part` (when given and found), strips one
// trailing separator, creates the directory if it is missing, and keeps it under the selector
// (2: under all three). With `store` set, the key (2: all three keys) is written too. Another
// selector is the program error "SetDataDirectoryName %d".
void SetDataDirectoryName(const char* path, const char* part, int selector, bool store);
// The name under the selector. With `refresh` set the key is read first, and its value taken
// when it is not empty and differs. Another selector is the program error
// "GetDataDirectoryName %d" and answers an empty text.
const char* GetDataDirectoryName(int selector, bool refresh);

// The paths of the settings: the user settings file, the system file "UserInfo.ini", the
// colour directory (the data directory's "Col") and the cantilever directory (made when
// missing).
const char* UserFileName();
const char* InitFileName();
const char* ColorDataDirectoryName();
const char* CantiDataDirectoryName();

void ResetDataDirectoryState();
