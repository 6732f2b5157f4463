// The end of a safe save (platform/safe_replace.h), told in the numbered errors of the writers.
#pragma once

#include "platform/safe_replace.h"

// With `written` false the new contents are dropped: the writer has reported its error, and the
// old file stays. Otherwise they are put in place; when that fails the error is "Not enough
// disk space" if the disk or the file size limit ran out, else `failureNumber` (the error the
// writer reports for a file it cannot close). Answers true when the new file stands.
bool FinishSave(FileReplace* save, bool written, unsigned failureNumber);
