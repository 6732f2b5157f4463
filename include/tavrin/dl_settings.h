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

/* A string of the main section of the user's settings file: the value, or the default when the
   key is missing, is copied into the buffer of `size` bytes, cut to fit. Answers its length, or
   -1 when the key is missing. */
TAVRIN_API int32_t dl_LoadSettingString(const char* key, char* buffer, int32_t size, const char* defaultValue);
/* Stores a string under the key in the main section (a null value removes the key); non-zero
   on success. Processes sharing one home may store keys at the same moment. */
TAVRIN_API int32_t dl_SaveSettingString(const char* key, const char* value);

#endif
