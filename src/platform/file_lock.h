// Advisory locks between processes that share one home directory: flock on a lock file.
//
// A lock belongs to the open lock file. It is dropped when the file is closed, and by the
// system when the process ends, however it ends, so a killed process never leaves a lock
// behind. Two FileLock records of one process on the same file are as strangers to each other.
#pragma once

#include <string>

struct FileLock {
    int fd = -1;
};

enum class LockKind { Shared, Exclusive };

// Opens the lock file, creating it if it is missing; false when it cannot be opened.
bool OpenLockFile(FileLock* lock, const std::string& path);
// Takes the lock, or changes a lock already held to the other kind. With `wait` false it
// answers false at once while another holder's lock is in the way.
bool TakeFileLock(FileLock* lock, LockKind kind, bool wait);
// Drops the lock and closes the file (nothing for a lock that is not open).
void CloseLockFile(FileLock* lock);
