#include "display/lut.h"
#include "display/default_tables.h"
#include "display/palette.h"
#include "host/errors.h"

#include <cstring>

int32_t ColourTableNo = kDefaultColourTableNo;

namespace {

struct ColourPlanes {
    uint16_t plane[3][kLUTEntries];   // red, green, blue
};

ColourPlanes g_output[N_OLUTS];   // the output tables proper
ColourPlanes g_store[N_OLUTS];    // the colour table store
uint16_t g_input[N_ILUTS][kLUTEntries];
int g_currentOutput = 0;
int g_currentInput = 0;

bool CheckOutputTable(int table)
{
    if (table >= 0 && table < N_OLUTS) return true;
    ProgramError("N_OLUTS %d", table);
    return false;
}

bool CheckInputTable(int table)
{
    if (table >= 0 && table < N_ILUTS) return true;
    ProgramError("N_ILUTS %d", table);
    return false;
}

int InvalidParameter()
{
    Error(kErrInvalidFGParameter);
    return kErrInvalidFGParameter;
}

bool PlaneIsValid(const uint16_t* plane)
{
    if (!plane) return false;
    for (int i = 0; i < kLUTEntries; ++i)
        if (plane[i] > kLUTMaxValue) return false;
    return true;
}

bool IndexIsValid(int index) { return index >= 0 && index < kLUTEntries; }

// Checked whole-table store into one of the two sets.
int SetPlanes(ColourPlanes& target, const uint16_t* red, const uint16_t* green, const uint16_t* blue)
{
    if (!PlaneIsValid(red) || !PlaneIsValid(green) || !PlaneIsValid(blue)) return InvalidParameter();
    std::memcpy(target.plane[0], red, sizeof target.plane[0]);
    std::memcpy(target.plane[1], green, sizeof target.plane[1]);
    std::memcpy(target.plane[2], blue, sizeof target.plane[2]);
    return 0;
}

int GetPlanes(const ColourPlanes& source, uint16_t* red, uint16_t* green, uint16_t* blue)
{
    if (!red || !green || !blue) return InvalidParameter();
    std::memcpy(red, source.plane[0], sizeof source.plane[0]);
    std::memcpy(green, source.plane[1], sizeof source.plane[1]);
    std::memcpy(blue, source.plane[2], sizeof source.plane[2]);
    return 0;
}

int SetEntry(ColourPlanes& target, int index, int red, int green, int blue)
{
    if (!IndexIsValid(index)) return InvalidParameter();
    if (!CheckColourValues(red, green, blue)) return kErrInvalidFGParameter;
    target.plane[0][index] = static_cast<uint16_t>(red);
    target.plane[1][index] = static_cast<uint16_t>(green);
    target.plane[2][index] = static_cast<uint16_t>(blue);
    return 0;
}

int GetEntry(const ColourPlanes& source, int index, int* red, int* green, int* blue)
{
    if (!IndexIsValid(index) || !red || !green || !blue) return InvalidParameter();
    *red = source.plane[0][index];
    *green = source.plane[1][index];
    *blue = source.plane[2][index];
    return 0;
}

void ReloadIfCurrent(int table)
{
    if (table == g_currentOutput) ReloadPalette();
}

// The built-in set: each default table as output table and in the store; then the red plane
// of table 7 of the store serves as scratch for the ramp index of each level (level / 2 + 35,
// entry 255 left as it is), and that plane becomes input tables 0 to 6. The plane keeps
// these values: selecting table 7 from the store shows them until a table is loaded into it.
void BuildDefaultColourSet()
{
    for (int n = 0; n < N_OLUTS; ++n) {
        ColourPlanes& table = g_output[n];
        BuildDefaultColourTable(n, table.plane[0], table.plane[1], table.plane[2]);
        g_store[n] = table;
    }
    uint16_t* scratch = g_store[7].plane[0];
    for (int i = 0; i < kLUTEntries - 1; ++i) scratch[i] = static_cast<uint16_t>(i / 2 + kRampFirst);
    for (int n = 0; n < 7; ++n) std::memcpy(g_input[n], scratch, sizeof g_input[n]);
}

// The tables hold the built-in set from the moment the library is loaded, so that no reader
// ever meets an empty table; Startup builds the set again and loads the palette.
const bool g_builtAtLoad = (BuildDefaultColourSet(), true);

} // namespace

bool CheckColourValue(int value)
{
    if (value >= 0 && value <= kLUTMaxValue) return true;
    Error(kErrInvalidFGParameter);
    return false;
}

bool CheckColourValues(int red, int green, int blue)
{
    // One report for the first bad value; nothing is taken if any is bad.
    return CheckColourValue(red) && CheckColourValue(green) && CheckColourValue(blue);
}

int SetOutputLUT(int table, const uint16_t red[256], const uint16_t green[256], const uint16_t blue[256])
{
    if (!CheckOutputTable(table)) return ERR_PROGRAM;
    if (int failed = SetPlanes(g_output[table], red, green, blue)) return failed;
    ReloadIfCurrent(table);
    return 0;
}

int SetOutputLUTBytes(int table, const uint8_t red[256], const uint8_t green[256], const uint8_t blue[256])
{
    if (!CheckOutputTable(table)) return ERR_PROGRAM;
    if (!red || !green || !blue) return InvalidParameter();
    uint16_t r[kLUTEntries], g[kLUTEntries], b[kLUTEntries];
    BytesToPlane(red, r);
    BytesToPlane(green, g);
    BytesToPlane(blue, b);
    return SetOutputLUT(table, r, g, b);
}

int GetOutputLUT(int table, uint16_t red[256], uint16_t green[256], uint16_t blue[256])
{
    if (!CheckOutputTable(table)) return ERR_PROGRAM;
    return GetPlanes(g_output[table], red, green, blue);
}

int GetOutputLUTBytes(int table, uint8_t red[256], uint8_t green[256], uint8_t blue[256])
{
    if (!CheckOutputTable(table)) return ERR_PROGRAM;
    if (!red || !green || !blue) return InvalidParameter();
    const ColourPlanes& source = g_output[table];
    PlaneToBytes(source.plane[0], red);
    PlaneToBytes(source.plane[1], green);
    PlaneToBytes(source.plane[2], blue);
    return 0;
}

int SetOutputLUTEntry(int table, int index, int red, int green, int blue)
{
    if (!CheckOutputTable(table)) return ERR_PROGRAM;
    if (int failed = SetEntry(g_output[table], index, red, green, blue)) return failed;
    ReloadIfCurrent(table);
    return 0;
}

int GetOutputLUTEntry(int table, int index, int* red, int* green, int* blue)
{
    if (!CheckOutputTable(table)) return ERR_PROGRAM;
    return GetEntry(g_output[table], index, red, green, blue);
}

int SelectOutputLUT(int table)
{
    if (!CheckOutputTable(table)) return ERR_PROGRAM;
    g_currentOutput = table;
    ReloadPalette();
    return 0;
}

int CurrentOutputLUT() { return g_currentOutput; }

void ReloadPalette()
{
    const ColourPlanes& current = g_output[g_currentOutput];
    LoadPalette(current.plane[0], current.plane[1], current.plane[2]);
}

int SetInputLUT(int table, const uint16_t entries[256])
{
    if (!CheckInputTable(table)) return ERR_PROGRAM;
    if (!PlaneIsValid(entries)) return InvalidParameter();
    std::memcpy(g_input[table], entries, sizeof g_input[table]);
    return 0;
}

int SetInputLUTBytes(int table, const uint8_t bytes[256])
{
    if (!CheckInputTable(table)) return ERR_PROGRAM;
    if (!bytes) return InvalidParameter();
    uint16_t entries[kLUTEntries];
    BytesToPlane(bytes, entries);
    return SetInputLUT(table, entries);
}

int GetInputLUT(int table, uint16_t entries[256])
{
    if (!CheckInputTable(table)) return ERR_PROGRAM;
    if (!entries) return InvalidParameter();
    std::memcpy(entries, g_input[table], sizeof g_input[table]);
    return 0;
}

int SelectInputLUT(int table)
{
    if (!CheckInputTable(table)) return ERR_PROGRAM;
    g_currentInput = table;
    return 0;
}

int CurrentInputLUT() { return g_currentInput; }

int SetColourTable(int table, const uint16_t red[256], const uint16_t green[256], const uint16_t blue[256])
{
    if (!CheckOutputTable(table)) return ERR_PROGRAM;
    return SetPlanes(g_store[table], red, green, blue);
}

int GetColourTable(int table, uint16_t red[256], uint16_t green[256], uint16_t blue[256])
{
    if (!CheckOutputTable(table)) return ERR_PROGRAM;
    return GetPlanes(g_store[table], red, green, blue);
}

int SetColourTableEntry(int table, int index, int red, int green, int blue)
{
    if (!CheckOutputTable(table)) return ERR_PROGRAM;
    return SetEntry(g_store[table], index, red, green, blue);
}

int GetColourTableEntry(int table, int index, int* red, int* green, int* blue)
{
    if (!CheckOutputTable(table)) return ERR_PROGRAM;
    return GetEntry(g_store[table], index, red, green, blue);
}

int SelectColourTable(int number)
{
    int table = ((number % N_OLUTS) + N_OLUTS) % N_OLUTS;
    g_output[table] = g_store[table];
    SelectOutputLUT(table);
    return table;
}

void ResetLUTState()
{
    ColourTableNo = kDefaultColourTableNo;
    g_currentOutput = 0;
    g_currentInput = 0;
    std::memset(g_input, 0, sizeof g_input);
    BuildDefaultColourSet();
}

void SetDefaultColourSet()
{
    BuildDefaultColourSet();
    ReloadPalette();
}
