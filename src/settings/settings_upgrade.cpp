#include "settings/settings_upgrade.h"
#include "host/globals.h"
#include "host/prompts.h"
#include "host/revision.h"
#include "platform/paths.h"
#include "platform/settings_store.h"
#include "settings/user_settings.h"

#include <cstdio>
#include <cstdlib>
#include <string>

namespace {

const char* const kOldStems[] = {"TavrinProc300", "TavrinProc219", "TavrinProc218",
                                 "TavrinProc217", "TavrinProc216", "TavrinProc215"};

bool HasRevision(const std::string& file)
{
    char value[16];
    bool found = false;
    ProfileGetString(MainSectionName(), "Revision", "", value, sizeof value, file, &found);
    return found;
}

// "…TavrinProc219-Admin.ini" gives "219"; a point goes after the first digit, or after the
// second for numbers above 999: "2.19", "10.05".
std::string VersionOf(const std::string& path)
{
    size_t at = path.rfind("TavrinProc");
    if (at == std::string::npos) return {};
    at += 10;
    size_t end = path.find('-', at);
    std::string digits = path.substr(at, end == std::string::npos ? std::string::npos : end - at);
    size_t point = std::atoi(digits.c_str()) > 999 ? 2 : 1;
    if (digits.size() <= point) return digits;
    return digits.substr(0, point) + "." + digits.substr(point);
}

} // namespace

int UpgradeINIfilesFromOldSoftwareVersion()
{
    const std::string current = UserSettingsFileName();
    if (HasRevision(current)) return 0;
    std::string old;
    for (const char* stem : kOldStems) {
        char name[600];
        std::snprintf(name, sizeof name, "%s%s%s%s.%s", SettingsDirectory().c_str(), stem, "-", UserName.c_str(),
                      "ini");
        if (HasRevision(name)) {
            old = name;
            break;
        }
    }
    if (old.empty()) return 0;
    std::string version = VersionOf(old);
    char question[128];
    std::snprintf(question, sizeof question, "Copy User settings from Tavrin version %s?", version.c_str());
    if (!AskYesNo(question, true)) return 0;
    ProfileCopyFile(old, current);
    char sub[8];
    std::snprintf(sub, sizeof sub, "%02d", kProcessingSubRevision);
    SaveSettingString("Revision", kProcessingRevision);
    SaveSettingString("Sub-Revision", sub);
    if (std::atof(version.c_str()) * 100 < 300) DeleteSettingKey("Fonts");
    DeleteSettingKey("Wallpaper");
    return 1;
}
