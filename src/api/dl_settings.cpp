// Entry points: the program settings.
#include "tavrin/dl_settings.h"
#include "host/trace.h"
#include "settings/configuration.h"
#include "settings/settings_upgrade.h"

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
