#include "files/file_state.h"
#include "files/spectrum_files.h"

void ResetFileCommandState()
{
    ResetSpecExportParam();
}
