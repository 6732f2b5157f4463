#include "platform/safe_replace.h"
#include "platform/paths.h"

#include <cerrno>
#include <chrono>
#include <climits>
#include <cstdlib>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

bool g_sync = true;
ReplaceFault g_fault = ReplaceFault::None;
double g_syncSeconds = 0;

// fsync, its time counted.
int TimedSync(int fd)
{
    const auto start = std::chrono::steady_clock::now();
    const int result = ::fsync(fd);
    g_syncSeconds += std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    return result;
}

constexpr const char kTemporaryEnd[] = ".tavrin-save";
constexpr size_t kNameMax = 255;   // bytes of one name in a directory

// The file a path names, a symbolic link followed when it leads somewhere.
std::string ResolveTarget(const std::string& native)
{
    struct stat st;
    if (::lstat(native.c_str(), &st) != 0 || !S_ISLNK(st.st_mode)) return native;
    char* resolved = ::realpath(native.c_str(), nullptr);
    if (!resolved) return native;
    std::string target = resolved;
    std::free(resolved);
    return target;
}

// ".<name>.tavrin-save" beside the target; a long name is cut so the result still fits.
std::string TemporaryNameFor(const std::string& target)
{
    const size_t slash = target.rfind('/');
    const std::string directory = slash == std::string::npos ? std::string() : target.substr(0, slash + 1);
    std::string name = slash == std::string::npos ? target : target.substr(slash + 1);
    const size_t room = kNameMax - 1 - (sizeof kTemporaryEnd - 1);
    if (name.size() > room) name.resize(room);
    return directory + "." + name + kTemporaryEnd;
}

std::string DirectoryOf(const std::string& target)
{
    const size_t slash = target.rfind('/');
    if (slash == std::string::npos) return ".";
    return slash == 0 ? "/" : target.substr(0, slash);
}

mode_t NewFileMode()
{
    const mode_t mask = ::umask(0);
    ::umask(mask);
    return 0644 & ~mask;
}

// Opens the temporary file and takes its lock. A file left by a killed save is taken over; a
// file another save is using is waited for, and once that save has renamed it away the name is
// opened afresh.
int OpenTemporary(const std::string& temporary, mode_t mode)
{
    for (;;) {
        const int fd = ::open(temporary.c_str(), O_WRONLY | O_CREAT | O_NOFOLLOW | O_CLOEXEC, mode);
        if (fd < 0) return -1;
        int locked;
        do {
            locked = ::flock(fd, LOCK_EX);
        } while (locked != 0 && errno == EINTR);
        struct stat held, named;
        if (locked != 0 || ::fstat(fd, &held) != 0) {
            const int cause = errno;
            ::close(fd);
            errno = cause;
            return -1;
        }
        if (::stat(temporary.c_str(), &named) == 0 && named.st_dev == held.st_dev && named.st_ino == held.st_ino)
            return fd;
        ::close(fd);   // renamed away by the save we waited for: try the name again
    }
}

ReplaceOutcome OutcomeOf(int cause)
{
    return cause == ENOSPC || cause == EDQUOT || cause == EFBIG ? ReplaceOutcome::DiskFull : ReplaceOutcome::Failed;
}

// Removes the temporary file and closes it, errno kept.
void DropTemporary(FileReplace* save)
{
    const int cause = errno;
    if (!save->temporary.empty()) ::unlink(save->temporary.c_str());
    if (save->file != kInvalidFile) ::close(save->file);
    save->file = kInvalidFile;
    save->temporary.clear();
    errno = cause;
}

void SyncDirectory(const std::string& target)
{
    const int fd = ::open(DirectoryOf(target).c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (fd < 0) return;
    TimedSync(fd);   // some file systems cannot sync a directory; the rename has happened anyway
    ::close(fd);
}

} // namespace

FileHandle FileReplaceBegin(FileReplace* save, const std::string& path)
{
    if (!save) {
        errno = EINVAL;
        return kInvalidFile;
    }
    *save = FileReplace{};
    const std::string native = NativePath(path);
    if (native.empty() || native.back() == '/') {
        errno = native.empty() ? ENOENT : EISDIR;
        return kInvalidFile;
    }
    save->target = ResolveTarget(native);
    mode_t mode = NewFileMode();
    struct stat old;
    const bool exists = ::stat(save->target.c_str(), &old) == 0;
    if (exists) {
        if (S_ISDIR(old.st_mode)) {
            errno = EISDIR;
            return kInvalidFile;
        }
        if (::access(save->target.c_str(), W_OK) != 0) return kInvalidFile;
        if (!S_ISREG(old.st_mode)) {
            save->file = ::open(save->target.c_str(), O_WRONLY | O_TRUNC | O_CLOEXEC);
            return save->file < 0 ? kInvalidFile : save->file;
        }
        mode = old.st_mode & 07777;
    }
    save->temporary = TemporaryNameFor(save->target);
    const int fd = OpenTemporary(save->temporary, mode);
    if (fd < 0) {
        save->temporary.clear();
        return kInvalidFile;
    }
    save->file = fd;
    if (::ftruncate(fd, 0) != 0) {
        DropTemporary(save);
        return kInvalidFile;
    }
    // Owner first, as a change of owner may clear the set-id bits of the mode.
    if (exists && (old.st_uid != ::geteuid() || old.st_gid != ::getegid())) {
        if (::fchown(fd, old.st_uid, old.st_gid) != 0) {
            // Not allowed for an ordinary user: the new file is then the saver's own.
        }
    }
    if (::fchmod(fd, mode) != 0) {
        DropTemporary(save);
        return kInvalidFile;
    }
    return fd;
}

ReplaceOutcome FileReplaceCommit(FileReplace* save)
{
    if (!save || save->file == kInvalidFile) {
        errno = EBADF;
        return ReplaceOutcome::Failed;
    }
    if (save->temporary.empty()) {   // written in place
        const int closed = ::close(save->file);
        save->file = kInvalidFile;
        return closed == 0 ? ReplaceOutcome::Done : OutcomeOf(errno);
    }
    int synced = 0;
    if (g_fault == ReplaceFault::Sync) {
        errno = ENOSPC;
        synced = -1;
    } else if (g_sync) {
        synced = TimedSync(save->file);
    }
    if (synced != 0) {
        DropTemporary(save);
        return OutcomeOf(errno);
    }
    // The rename happens while the lock is held, so that no waiting save can take the file over
    // between the last write and the rename.
    int renamed;
    if (g_fault == ReplaceFault::Rename) {
        errno = EIO;
        renamed = -1;
    } else {
        renamed = ::rename(save->temporary.c_str(), save->target.c_str());
    }
    if (renamed != 0) {
        DropTemporary(save);
        return OutcomeOf(errno);
    }
    if (g_sync) SyncDirectory(save->target);
    ::close(save->file);   // the data are in place; closing only drops the lock
    save->file = kInvalidFile;
    save->temporary.clear();
    return ReplaceOutcome::Done;
}

void FileReplaceAbandon(FileReplace* save)
{
    if (save) DropTemporary(save);
}

ReplaceOutcome FileReplaceWithBytes(const std::string& path, const void* data, size_t size)
{
    FileReplace save;
    const FileHandle file = FileReplaceBegin(&save, path);
    if (file == kInvalidFile) return ReplaceOutcome::OpenFailed;
    const long long written = FileWrite(file, data, size);
    if (written != static_cast<long long>(size)) {
        const int cause = errno;
        FileReplaceAbandon(&save);
        errno = cause;
        return written < 0 ? ReplaceOutcome::Failed : ReplaceOutcome::DiskFull;
    }
    return FileReplaceCommit(&save);
}

void SetFileReplaceSync(bool on) { g_sync = on; }
double FileReplaceSyncSeconds() { return g_syncSeconds; }
void SetFileReplaceFaultForTests(ReplaceFault fault) { g_fault = fault; }
