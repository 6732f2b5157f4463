// Saving over a file without ever destroying the file it replaces.
//
// The new contents go to a temporary file in the target's own directory, named
// ".<name>.tavrin-save". When all of it is written, the temporary file is flushed to the disk
// (fsync), carries the mode of the file it replaces, and is renamed over the target in one
// step. So the target is at every moment either the old file or the complete new one. When
// anything fails on the way, the temporary file is removed and the target stays byte for byte
// as it was; a save to a new name leaves no file at all.
//
// A process killed during a save leaves at most its temporary file behind; the next save of
// that name takes the file over and so removes it. Two processes saving the same name at once
// take turns: a save holds an advisory lock on its temporary file from begin to end.
//
// Every writer that can overwrite a file goes through here:
//
//     FileReplace save;
//     const FileHandle file = FileReplaceBegin(&save, path);
//     if (file == kInvalidFile) ...                 report the open error (errno tells why)
//     ... FileWrite and FileSeek on `file` (never FileClose it) ...
//     if (a write failed) FileReplaceAbandon(&save);      the old file stays
//     else outcome = FileReplaceCommit(&save);            Done, DiskFull or Failed
//
// A file made whole in memory goes in one call: FileReplaceWithBytes. The host layer's
// FinishSave (host/save_outcome.h) turns an outcome into the numbered error of a writer.
//
// The target's path may be in the desktop form (see NativePath); a symbolic link is followed
// and the file it names is replaced. A target that exists but is not writable is refused as
// before (EACCES), so a file protected against writing stays protected. A target that is not a
// regular file (a device such as /dev/null, a pipe) cannot be renamed over and is written in
// place.
#pragma once

#include "platform/files.h"

#include <cstddef>
#include <string>

struct FileReplace {
    FileHandle file = kInvalidFile;   // where the new contents go
    std::string target;               // the file replaced, links followed
    std::string temporary;            // empty while writing in place
};

enum class ReplaceOutcome {
    Done,         // the new file stands under the target's name
    OpenFailed,   // no temporary file could be made (only FileReplaceWithBytes answers this)
    DiskFull,     // the disk or the file size limit ran out; the old file stands
    Failed,       // any other failure; the old file stands
};

// Opens the temporary file for the new contents of `path`; kInvalidFile (errno set) when it
// cannot be made, and then nothing has changed.
FileHandle FileReplaceBegin(FileReplace* save, const std::string& path);
// Flushes the new contents and puts them in place of the old file. On failure the temporary
// file is removed and errno tells the cause.
ReplaceOutcome FileReplaceCommit(FileReplace* save);
// Drops the new contents: the temporary file is removed, the old file stays.
void FileReplaceAbandon(FileReplace* save);

// The whole of a file from memory, begin to commit. A short write is DiskFull.
ReplaceOutcome FileReplaceWithBytes(const std::string& path, const void* data, size_t size);

// Whether a save flushes its file to the disk before the rename: on by default.
void SetFileReplaceSync(bool on);
// Seconds spent flushing files and directories to the disk by saves so far, so that the
// benchmark can time a save apart from its flush.
double FileReplaceSyncSeconds();

// For tests: make the next commits fail at the flush (as a disk that fills up when the data
// reach it: ENOSPC) or at the rename (EIO), until switched back to None.
enum class ReplaceFault { None, Sync, Rename };
void SetFileReplaceFaultForTests(ReplaceFault fault);
