// Paths of the system on this machine.
//
// The system names two fixed places in the desktop form: "C:\Tavrin\" (program home: log,
// settings, cantilevers) and "c:\image" (where the data live). Here they are directories:
// $TAVRIN_HOME (default ~/.tavrin/) and $TAVRIN_DATA (default: the working directory).
// Every helper accepts both '/' and '\' as separators.
#pragma once

#include <string>

// Both end with a separator.
std::string TavrinHomeDir();           // "C:\Tavrin\"
std::string TavrinDataDirSetting();    // "c:\image": $TAVRIN_DATA, empty when unset

bool IsPathSeparator(char c);
// Index of the last '/' or '\' in the path, or npos.
size_t LastSeparator(const std::string& path);
// The path with a desktop prefix turned into this machine's directory: "C:\Tavrin\x\y"
// becomes "<home>/x/y", "c:\image\a" becomes "<data>/a", another drive letter is dropped,
// and every '\' becomes '/'.
std::string NativePath(const std::string& path);

bool MakeDirectories(const std::string& path);   // creates missing parents too
bool PathIsRegularFile(const std::string& path);
bool PathIsDirectory(const std::string& path);
bool PathExists(const std::string& path);
bool RemoveFile(const std::string& path);
// Copies a file over another by the safe replace: the old copy stays whole if the copy fails.
bool CopyFileOver(const std::string& from, const std::string& to);
long long FileSizeOf(const std::string& path);   // -1 when missing
std::string CurrentDirectory();
bool ChangeDirectory(const std::string& path);
