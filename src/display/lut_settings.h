// The colour tables in the user settings file: key "LUT%d" for tables 0 to 6, each 1536
// bytes (red, green, blue planes of 256 u16). Table 7 is never stored.
#pragma once

constexpr int kStoredLUTs = 7;
constexpr int kStoredLUTBytes = 3 * 256 * 2;

// Writes output tables 0 to 6.
void StoreColourTableSettings();
// Reads back only LUT5 and LUT6 into the output tables; tables 0 to 4 stay built in. A key
// that is missing or does not hold a valid table leaves that table as it was.
void RetrieveColourTableSettings();
