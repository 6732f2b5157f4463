// Colour tables: the output tables that fill the palette, the colour table store, the input
// tables, and the numbers of the tables in force.
//
// An output table is three planes (red, green, blue) of 256 u16 entries, each 0 to 255, laid
// out as told in display/default_tables.h. Two sets of eight exist side by side: the output
// tables proper, from which the palette is loaded, and the colour table store, which the
// colour editor, the colour table file and the colour parameters work on; SelectColourTable
// brings a table of the store into effect. An input table is 256 u16 entries.
//
// Every operation answers 0, or the number it reported: a table number outside 0 to 7 is the
// program error "N_OLUTS %d" (input tables "N_ILUTS %d"); an entry above 255, an index outside
// the table or a missing plane is "Invalid parameter passed to FG routine". A failed call
// stores nothing: a whole table is checked before any entry is taken.
#pragma once

#include <cstdint>

constexpr int N_OLUTS = 8;
constexpr int N_ILUTS = 8;
constexpr int kLUTEntries = 256;
constexpr int kLUTMaxValue = 255;
constexpr uint16_t kErrInvalidFGParameter = 34916;   // "Invalid parameter passed to FG routine"
constexpr int kDefaultColourTableNo = 3;

// The number of the current table of the store, 0 to 7.
extern int32_t ColourTableNo;

// Output tables. Setting the current output table reloads the palette at once.
int SetOutputLUT(int table, const uint16_t red[256], const uint16_t green[256], const uint16_t blue[256]);
int SetOutputLUTBytes(int table, const uint8_t red[256], const uint8_t green[256], const uint8_t blue[256]);
int GetOutputLUT(int table, uint16_t red[256], uint16_t green[256], uint16_t blue[256]);
int GetOutputLUTBytes(int table, uint8_t red[256], uint8_t green[256], uint8_t blue[256]);
int SetOutputLUTEntry(int table, int index, int red, int green, int blue);
int GetOutputLUTEntry(int table, int index, int* red, int* green, int* blue);
// Makes `table` the current output table and loads it into the palette.
int SelectOutputLUT(int table);
int CurrentOutputLUT();
// Loads the current output table into the palette again.
void ReloadPalette();

// Input tables.
int SetInputLUT(int table, const uint16_t entries[256]);
int SetInputLUTBytes(int table, const uint8_t bytes[256]);
int GetInputLUT(int table, uint16_t entries[256]);
int SelectInputLUT(int table);
int CurrentInputLUT();

// The colour table store.
int SetColourTable(int table, const uint16_t red[256], const uint16_t green[256], const uint16_t blue[256]);
int GetColourTable(int table, uint16_t red[256], uint16_t green[256], uint16_t blue[256]);
int SetColourTableEntry(int table, int index, int red, int green, int blue);
int GetColourTableEntry(int table, int index, int* red, int* green, int* blue);

// Takes `number` modulo 8, copies that table of the store to the output table of the same
// number and selects it. Answers the table number taken.
int SelectColourTable(int number);

// Checks of the reports above, for callers that must check before they store anywhere.
bool CheckColourValue(int value);                 // reports an entry outside 0 to 255
bool CheckColourValues(int red, int green, int blue);

// The built-in set of Startup: the eight default tables as output tables and in the store,
// the red plane of table 7 of the store used as the ramp index of each level, and that plane
// as input tables 0 to 6. The palette is reloaded from the current output table.
void SetDefaultColourSet();

// All tables as a freshly loaded library holds them: the built-in set in both stores, the
// input tables of the built-in set, table 0 in force and ColourTableNo 3. Sends nothing to
// the host.
void ResetLUTState();
