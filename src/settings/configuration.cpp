#include "settings/configuration.h"
#include "display/colour_startup.h"
#include "display/display_param.h"
#include "display/lut_settings.h"
#include "host/errors.h"
#include "host/log.h"
#include "host/revision.h"
#include "host/wait.h"
#include "mapping/cits_display.h"
#include "platform/settings_store.h"
#include "settings/cantilever.h"
#include "settings/user_settings.h"

#include <cstdio>
#include <cstdlib>

namespace {

// The display block a mapping takes when no set is at hand.
constexpr const char* kMappingDisplayKey = "SPS Mapping Display";

void StoreMappingDisplaySettings()
{
    SaveSettingStruct(kMappingDisplayKey, &DefaultCITSDispBlock(), sizeof(CITSDispBlockType));
}

void RetrieveMappingDisplaySettings()
{
    CITSDispBlockType read{};
    if (LoadSettingStruct(kMappingDisplayKey, &read, sizeof read)) DefaultCITSDispBlock() = read;
}

} // namespace

void StoreConfiguration()
{
    char sub[8];
    std::snprintf(sub, sizeof sub, "%02d", kProcessingSubRevision);
    // All keys go to the file in one write.
    ProfileBeginChanges(UserSettingsFileName());
    SaveSettingString("Revision", kProcessingRevision);
    SaveSettingString("Sub-Revision", sub);
    StoreMappingDisplaySettings();
    StoreDisplaySettings();
    StoreColourTableSettings();
    StoreCantileverSettings();
    ProfileEndChanges();
    Log("Store software configuration on disk\n");
}

void RetrieveConfiguration()
{
    char revision[16], sub[16];
    if (LoadSettingString("Revision", revision, sizeof revision, "") < 0 ||
        LoadSettingString("Sub-Revision", sub, sizeof sub, "") < 0) {
        StoreConfiguration();
        return;
    }
    if (std::atoi(revision) != std::atoi(kProcessingRevision)) {
        Error(ERR_READ_CONFIGURATION);
        return;
    }
    RetrieveMappingDisplaySettings();
    RetrieveDisplaySettings();
    RetrieveColourTableSettings();
    RetrieveCantileverSettings();
    LoadSelectedColourTable();
    Log("Retrieve software configuration from disk\n");
}

void StoreConfigurationToDisk()
{
    ShowWait("Storing configuration in file");
    StoreConfiguration();
    HideWait();
}

void RetrieveConfigurationFromDisk()
{
    // The same wait text as the store: that is what the host has always shown here.
    ShowWait("Storing configuration in file");
    RetrieveConfiguration();
    HideWait();
}
