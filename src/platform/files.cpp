#include "platform/files.h"
#include "platform/paths.h"

#include <algorithm>
#include <cerrno>
#include <fcntl.h>
#include <sys/uio.h>
#include <unistd.h>

namespace {

long long g_writeLimit = -1;   // bytes still allowed, -1 no limit
bool g_readFails = false;
long long g_failingCall = -1;  // FileWrite calls still to pass before all fail, -1 none
long long g_writeCalls = 0;

// Moves `count` bytes as pieces of at most kFileChunkBytes, stopping at the first piece that
// falls short. The pieces go to the system in one vectored call per batch, which keeps the
// piece rule without a system call for every piece. Answers the bytes moved, or -1 when
// nothing moved because of an error.
long long TransferInPieces(FileHandle file, char* data, size_t count, bool write)
{
    constexpr size_t kPiecesPerCall = 256;   // 8 MiB a call
    size_t done = 0;
    while (done < count) {
        iovec pieces[kPiecesPerCall];
        size_t n = 0, wanted = 0;
        for (; n < kPiecesPerCall && done + wanted < count; ++n) {
            size_t piece = std::min(kFileChunkBytes, count - done - wanted);
            pieces[n].iov_base = data + done + wanted;
            pieces[n].iov_len = piece;
            wanted += piece;
        }
        ssize_t moved;
        do {
            moved = write ? ::writev(file, pieces, static_cast<int>(n)) : ::readv(file, pieces, static_cast<int>(n));
        } while (moved < 0 && errno == EINTR);
        if (moved < 0) return done ? static_cast<long long>(done) : -1;
        done += static_cast<size_t>(moved);
        if (static_cast<size_t>(moved) < wanted) break;   // a short piece ends the transfer
    }
    return static_cast<long long>(done);
}

} // namespace

FileHandle FileOpen(const std::string& path, FileMode mode)
{
    int flags = mode == FileMode::Read ? O_RDONLY : mode == FileMode::Write ? O_WRONLY : O_RDWR;
    int fd = ::open(NativePath(path).c_str(), flags | O_CLOEXEC);
    return fd < 0 ? kInvalidFile : fd;
}

int FileRemove(const std::string& path)
{
    return ::unlink(NativePath(path).c_str()) == 0 ? 0 : -1;
}

FileHandle FileCreate(const std::string& path)
{
    int fd = ::open(NativePath(path).c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0644);
    return fd < 0 ? kInvalidFile : fd;
}

long long FileRead(FileHandle file, void* buffer, size_t count)
{
    if (file == kInvalidFile || (count && !buffer)) return -1;
    if (g_readFails) return -1;
    return TransferInPieces(file, static_cast<char*>(buffer), count, false);
}

long long FileWrite(FileHandle file, const void* buffer, size_t count)
{
    if (file == kInvalidFile || (count && !buffer)) return -1;
    ++g_writeCalls;
    if (g_failingCall > 0) --g_failingCall;
    else if (g_failingCall == 0) return 0;
    size_t allowed = count;
    if (g_writeLimit >= 0) allowed = std::min(count, static_cast<size_t>(g_writeLimit));
    if (allowed == 0 && count > 0) return 0;
    long long done = TransferInPieces(file, const_cast<char*>(static_cast<const char*>(buffer)), allowed, true);
    if (done > 0 && g_writeLimit >= 0) g_writeLimit -= done;
    return done;
}

long long FileSeek(FileHandle file, long long offset, FileOrigin origin)
{
    if (file == kInvalidFile) return -1;
    int whence = origin == FileOrigin::Begin ? SEEK_SET : origin == FileOrigin::Current ? SEEK_CUR : SEEK_END;
    off_t pos = ::lseek(file, static_cast<off_t>(offset), whence);
    return pos < 0 ? -1 : static_cast<long long>(pos);
}

int FileClose(FileHandle file)
{
    if (file == kInvalidFile) return -1;
    return ::close(file) == 0 ? 0 : -1;
}

bool FileAppend(const std::string& path, const void* data, size_t size)
{
    if (size && !data) return false;
    const int fd = ::open(NativePath(path).c_str(), O_WRONLY | O_APPEND | O_CREAT | O_CLOEXEC, 0644);
    if (fd < 0) return false;
    const char* bytes = static_cast<const char*>(data);
    size_t done = 0;
    bool ok = true;
    // One write normally takes all of it; only an interrupted or partial write goes round again.
    while (done < size) {
        const ssize_t put = ::write(fd, bytes + done, size - done);
        if (put < 0 && errno == EINTR) continue;
        if (put <= 0) {
            ok = false;
            break;
        }
        done += static_cast<size_t>(put);
    }
    return ::close(fd) == 0 && ok;
}

void SetFileWriteLimitForTests(long long bytes) { g_writeLimit = bytes; }
void SetFileReadFailureForTests(bool fail) { g_readFails = fail; }
void SetFileWriteFailureAtCallForTests(long long call) { g_failingCall = call < 0 ? -1 : call; }
long long FileWriteCallsForTests() { return g_writeCalls; }
