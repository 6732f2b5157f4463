/* Tavrin Processing: the program settings in the user's settings file. */
#ifndef TAVRIN_DL_SETTINGS_H
#define TAVRIN_DL_SETTINGS_H

#include "tavrin/types.h"

/* Writes the program settings (revision keys and stored parameter blocks). */
TAVRIN_API void dl_StoreConfigurationToDisk(void);
/* Reads them back; a first start writes the defaults. */
TAVRIN_API void dl_RetriveConfigurationFromDisk(void);
/* Offers to take over the settings file of an older release; 1 if settings were copied. */
TAVRIN_API int32_t dl_UpgradeINIfilesFromOldSoftwareVersion(void);

#endif
