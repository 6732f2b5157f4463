#include "files/file_state.h"
#include "files/data_directories.h"
#include "files/replay.h"
#include "files/spectrum_files.h"

void ResetFileCommandState()
{
    ResetSpecExportParam();
    ResetReplayState();
    ResetDataDirectoryState();
}
