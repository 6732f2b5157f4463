#include "settings/user_settings.h"
#include "host/globals.h"
#include "host/revision.h"
#include "platform/paths.h"
#include "platform/settings_store.h"

#include <cstdio>

std::string SettingsDirectory() { return TavrinHomeDir() + "INIT/"; }

std::string UserSettingsFileName(const std::string& user)
{
    char name[600];
    std::snprintf(name, sizeof name, "%sTavrinProc%s%s%s.%s", SettingsDirectory().c_str(), kProcessingRevision, "-",
                  user.c_str(), "ini");
    return name;
}

std::string UserSettingsFileName() { return UserSettingsFileName(UserName); }

std::string ScanSettingsFileName(const std::string& user)
{
    char name[600];
    std::snprintf(name, sizeof name, "%sTavrinScan%s%s%s.%s", SettingsDirectory().c_str(), kProcessingRevision, "-",
                  user.c_str(), "ini");
    return name;
}

std::string SystemSettingsFileName() { return SettingsDirectory() + "UserInfo.ini"; }

std::string MainSectionName() { return "Configuration-" + UserName + "_ENG"; }

int LoadSettingString(const char* key, char* buffer, size_t size, const char* defaultValue)
{
    bool found = false;
    size_t n = ProfileGetString(MainSectionName(), key ? key : "", defaultValue, buffer, size, UserSettingsFileName(),
                                &found);
    return found ? static_cast<int>(n) : -1;
}

bool SaveSettingString(const char* key, const char* value)
{
    return ProfileWriteString(MainSectionName().c_str(), key, value, UserSettingsFileName());
}

bool LoadSettingStruct(const char* key, void* buffer, size_t size)
{
    return key && ProfileGetStruct(MainSectionName(), key, buffer, size, UserSettingsFileName());
}

bool SaveSettingStruct(const char* key, const void* buffer, size_t size)
{
    return key && ProfileWriteStruct(MainSectionName(), key, buffer, size, UserSettingsFileName());
}

bool DeleteSettingKey(const char* key)
{
    return key && ProfileWriteString(MainSectionName().c_str(), key, nullptr, UserSettingsFileName());
}

namespace {

std::string SystemSection(int selector) { return selector == 1 ? std::string("General") : UserName; }

} // namespace

int LoadSystemString(int selector, const char* key, char* buffer, size_t size, const char* defaultValue)
{
    bool found = false;
    size_t n = ProfileGetString(SystemSection(selector), key ? key : "", defaultValue, buffer, size,
                                SystemSettingsFileName(), &found);
    return found ? static_cast<int>(n) : -1;
}

bool SaveSystemString(int selector, const char* key, const char* value)
{
    return ProfileWriteString(SystemSection(selector).c_str(), key, value, SystemSettingsFileName());
}

void CreateSettingsDirectories()
{
    MakeDirectories(TavrinHomeDir());
    MakeDirectories(SettingsDirectory());
}
