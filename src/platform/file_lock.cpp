#include "platform/file_lock.h"
#include "platform/paths.h"

#include <cerrno>
#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

bool OpenLockFile(FileLock* lock, const std::string& path)
{
    if (!lock) return false;
    CloseLockFile(lock);
    lock->fd = ::open(NativePath(path).c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0644);
    return lock->fd >= 0;
}

bool TakeFileLock(FileLock* lock, LockKind kind, bool wait)
{
    if (!lock || lock->fd < 0) return false;
    const int operation = (kind == LockKind::Shared ? LOCK_SH : LOCK_EX) | (wait ? 0 : LOCK_NB);
    int result;
    do {
        result = ::flock(lock->fd, operation);
    } while (result != 0 && errno == EINTR);
    return result == 0;
}

void CloseLockFile(FileLock* lock)
{
    if (!lock || lock->fd < 0) return;
    ::close(lock->fd);   // closing drops the lock
    lock->fd = -1;
}
