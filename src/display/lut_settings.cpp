#include "display/lut_settings.h"
#include "display/lut.h"
#include "settings/user_settings.h"

#include <cstdint>
#include <cstdio>

namespace {

using StoredTable = uint16_t[3][kLUTEntries];
static_assert(sizeof(StoredTable) == kStoredLUTBytes, "a stored table is 1536 bytes");

void KeyOf(int table, char (&key)[16]) { std::snprintf(key, sizeof key, "LUT%d", table); }

} // namespace

void StoreColourTableSettings()
{
    for (int table = 0; table < kStoredLUTs; ++table) {
        StoredTable planes;
        if (GetOutputLUT(table, planes[0], planes[1], planes[2]) != 0) continue;
        char key[16];
        KeyOf(table, key);
        SaveSettingStruct(key, planes, sizeof planes);
    }
}

void RetrieveColourTableSettings()
{
    for (int table = 5; table < kStoredLUTs; ++table) {
        StoredTable planes;
        char key[16];
        KeyOf(table, key);
        if (LoadSettingStruct(key, planes, sizeof planes)) SetOutputLUT(table, planes[0], planes[1], planes[2]);
    }
}
