// Entry points: the program settings.
#include "tavrin/dl_settings.h"
#include "host/trace.h"
#include "settings/configuration.h"
#include "settings/settings_upgrade.h"
#include "settings/user_settings.h"

TAVRIN_API void dl_StoreConfigurationToDisk(void)
{
    TraceEntry("DLL_StoreConfigurationToDisk");
    StoreConfigurationToDisk();
}

TAVRIN_API void dl_RetriveConfigurationFromDisk(void)
{
    TraceEntry("DLL_RetriveConfigurationFromDisk");
    RetrieveConfigurationFromDisk();
}

TAVRIN_API int32_t dl_UpgradeINIfilesFromOldSoftwareVersion(void)
{
    TraceEntry("dl_UpgradeINIfilesFromOldSoftwareVersion");
    return UpgradeINIfilesFromOldSoftwareVersion();
}

TAVRIN_API int32_t dl_LoadSettingString(const char* key, char* buffer, int32_t size, const char* defaultValue)
{
    TraceEntry("dl_LoadSettingString");
    if (!buffer || size <= 0) return -1;
    return LoadSettingString(key, buffer, static_cast<size_t>(size), defaultValue);
}

TAVRIN_API int32_t dl_SaveSettingString(const char* key, const char* value)
{
    TraceEntry("dl_SaveSettingString");
    return key && SaveSettingString(key, value) ? 1 : 0;
}
