// The colour tables at the start and end of a run.
#pragma once

// The colour step of Startup: True-RGB mode from the host's record, input table 0 and
// output table 0 in force, then the built-in colour set.
void StartupColourTables();
// The end of a run: output table 0 goes back into the palette.
void FinishColourTables();
// The stored colour table number into effect (after the settings were read).
void LoadSelectedColourTable();
// Tables, palette and colour parameters as a freshly loaded library holds them.
void ResetColourState();
