// The colour table file: 768 bytes with no header, 256 red, 256 green, 256 blue, one byte an
// entry in index order.
//
// Only tables 6 and 7 of the store are for the user's own tables; for any other current
// table LoadLUT and SaveLUT report "LoadLUT ColourTableNo=%d" or "SaveLUT ColourTableNo=%d"
// and touch no file. Both answer 0 on success and 1 on failure.
#pragma once

constexpr int kColourFileBytes = 768;
constexpr int kColourFileFirstEntry = 36;   // entries below keep the table's own colours
constexpr int kColourFilePathMax = 260;

// Reads the file into the current table of the store, entries 36 to 255 of each plane, and
// brings the table into effect as if it had been selected.
int LoadLUT(const char* path);
// Writes the current table of the store, each entry as its low byte.
int SaveLUT(const char* path);

// LoadLUT; in True-RGB mode with a current item, the item is shown again.
void ColourOpen(const char* path);
