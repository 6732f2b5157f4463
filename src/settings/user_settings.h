// The per-user settings files and their sections.
//
//   settings directory   <home>INIT/
//   user file            TavrinProc310-<user>.ini, main section "Configuration-<user>_ENG"
//   scanning file        TavrinScan310-<user>.ini (only deleted here)
//   system file          UserInfo.ini, sections "General" and <user>
#pragma once

#include <cstddef>
#include <string>

std::string SettingsDirectory();
std::string UserSettingsFileName();
std::string UserSettingsFileName(const std::string& user);
std::string ScanSettingsFileName(const std::string& user);
std::string SystemSettingsFileName();
std::string MainSectionName();
inline constexpr const char* kWindowPlaceSection = "WINDOWPLACE_ENG";

// The main section of the user file. A string read of a missing key copies the default and
// answers -1; otherwise the length read.
int LoadSettingString(const char* key, char* buffer, size_t size, const char* defaultValue);
bool SaveSettingString(const char* key, const char* value);
bool LoadSettingStruct(const char* key, void* buffer, size_t size);
bool SaveSettingStruct(const char* key, const void* buffer, size_t size);
bool DeleteSettingKey(const char* key);

// UserInfo.ini: selector 0 the section of the user, 1 "General".
int LoadSystemString(int selector, const char* key, char* buffer, size_t size, const char* defaultValue);
bool SaveSystemString(int selector, const char* key, const char* value);

// Creates the base and settings directories if they are missing.
void CreateSettingsDirectories();
