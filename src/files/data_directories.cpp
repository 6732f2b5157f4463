#include "files/data_directories.h"
#include "host/errors.h"
#include "host/globals.h"
#include "host/text.h"
#include "platform/paths.h"
#include "settings/user_settings.h"

#include <cstring>

namespace {

const char* const kKeys[kDataDirectoryCount] = {"Load Data Path", "Save Data Path", "Data Path"};
constexpr int kDataPath = 2;

char g_names[kDataDirectoryCount][kDataDirectoryBytes];
// The answers of the path queries: each stays valid until the next query of its kind.
char g_userFile[kDataDirectoryBytes];
char g_initFile[kDataDirectoryBytes];
char g_colourDirectory[kDataDirectoryBytes];
char g_cantileverDirectory[kDataDirectoryBytes];

void RemoveLastOccurrence(char* text, const char* part)
{
    if (!part || !*part) return;
    const size_t partLength = std::strlen(part);
    char* found = nullptr;
    for (char* p = std::strstr(text, part); p; p = std::strstr(p + 1, part)) found = p;
    if (found) std::memmove(found, found + partLength, std::strlen(found + partLength) + 1);
}

const char* Answer(char* buffer, const std::string& value)
{
    strncpy0(buffer, value.c_str(), kDataDirectoryBytes);
    return buffer;
}

} // namespace

const char* InitializeDataDirectoryName()
{
    CreateSettingsDirectories();
    char name[kDataDirectoryBytes];
    if (LoadSettingString(kKeys[kDataPath], name, sizeof name, "") < 0) {
        strncpy0(name, TavrinHomeDir().c_str(), sizeof name);
        strncat0(name, UserName.c_str(), sizeof name);
    }
    for (auto& entry : g_names) strncpy0(entry, name, kDataDirectoryBytes);
    return g_names[kDataPath];
}

void SetDataDirectoryName(const char* path, const char* part, int selector, bool store)
{
    if (selector < 0 || selector >= kDataDirectoryCount) {
        ProgramError("SetDataDirectoryName %d", selector);
        return;
    }
    char name[kDataDirectoryBytes];
    strncpy0(name, path, sizeof name);
    RemoveLastOccurrence(name, part);
    const size_t length = std::strlen(name);
    if (length > 0 && IsPathSeparator(name[length - 1])) name[length - 1] = '\0';
    if (name[0] && !PathIsDirectory(name)) MakeDirectories(name);
    for (int i = 0; i < kDataDirectoryCount; ++i) {
        if (selector != kDataPath && i != selector) continue;
        strncpy0(g_names[i], name, kDataDirectoryBytes);
        if (store) SaveSettingString(kKeys[i], name);
    }
}

const char* GetDataDirectoryName(int selector, bool refresh)
{
    if (selector < 0 || selector >= kDataDirectoryCount) {
        ProgramError("GetDataDirectoryName %d", selector);
        return "";
    }
    if (refresh) {
        char stored[kDataDirectoryBytes];
        if (LoadSettingString(kKeys[selector], stored, sizeof stored, "") > 0 &&
            std::strcmp(stored, g_names[selector]) != 0)
            strncpy0(g_names[selector], stored, kDataDirectoryBytes);
    }
    return g_names[selector];
}

const char* UserFileName() { return Answer(g_userFile, UserSettingsFileName()); }
const char* InitFileName() { return Answer(g_initFile, SystemSettingsFileName()); }
const char* ColorDataDirectoryName() { return Answer(g_colourDirectory, ColourDir); }

const char* CantiDataDirectoryName()
{
    const std::string directory = TavrinHomeDir() + "Cantilevers";
    if (!PathIsDirectory(directory)) MakeDirectories(directory);
    return Answer(g_cantileverDirectory, directory);
}

void ResetDataDirectoryState()
{
    std::memset(g_names, 0, sizeof g_names);
    g_userFile[0] = g_initFile[0] = g_colourDirectory[0] = g_cantileverDirectory[0] = '\0';
}
