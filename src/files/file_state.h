// The process-wide state of the file commands, back to that of a fresh library.
#pragma once

// The export settings of spectrum tables, the replay series and the data directories.
void ResetFileCommandState();
