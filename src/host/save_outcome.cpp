#include "host/save_outcome.h"
#include "host/errors.h"

bool FinishSave(FileReplace* save, bool written, unsigned failureNumber)
{
    if (!written) {
        FileReplaceAbandon(save);
        return false;
    }
    switch (FileReplaceCommit(save)) {
    case ReplaceOutcome::Done: return true;
    case ReplaceOutcome::DiskFull: Error(ERR_DISK_FULL); return false;
    default: Error(failureNumber); return false;
    }
}
