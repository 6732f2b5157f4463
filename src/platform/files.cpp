#include "platform/files.h"
#include "platform/paths.h"

#include <algorithm>
#include <cerrno>
#include <fcntl.h>
#include <unistd.h>

namespace {

long long g_writeLimit = -1;   // bytes still allowed, -1 no limit
bool g_readFails = false;

} // namespace

FileHandle FileOpen(const std::string& path, FileMode mode)
{
    int flags = mode == FileMode::Read ? O_RDONLY : mode == FileMode::Write ? O_WRONLY : O_RDWR;
    int fd = ::open(NativePath(path).c_str(), flags | O_CLOEXEC);
    return fd < 0 ? kInvalidFile : fd;
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
    auto* out = static_cast<char*>(buffer);
    size_t done = 0;
    while (done < count) {
        size_t piece = std::min(kFileChunkBytes, count - done);
        ssize_t got;
        do {
            got = ::read(file, out + done, piece);
        } while (got < 0 && errno == EINTR);
        if (got < 0) return done ? static_cast<long long>(done) : -1;
        done += static_cast<size_t>(got);
        if (static_cast<size_t>(got) < piece) break;
    }
    return static_cast<long long>(done);
}

long long FileWrite(FileHandle file, const void* buffer, size_t count)
{
    if (file == kInvalidFile || (count && !buffer)) return -1;
    const auto* in = static_cast<const char*>(buffer);
    size_t done = 0;
    while (done < count) {
        size_t piece = std::min(kFileChunkBytes, count - done);
        if (g_writeLimit >= 0) piece = std::min(piece, static_cast<size_t>(g_writeLimit));
        if (piece == 0) break;
        ssize_t put;
        do {
            put = ::write(file, in + done, piece);
        } while (put < 0 && errno == EINTR);
        if (put < 0) return done ? static_cast<long long>(done) : -1;
        done += static_cast<size_t>(put);
        if (g_writeLimit >= 0) g_writeLimit -= put;
        if (static_cast<size_t>(put) < std::min(kFileChunkBytes, count - (done - put))) break;
    }
    return static_cast<long long>(done);
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

void SetFileWriteLimitForTests(long long bytes) { g_writeLimit = bytes; }
void SetFileReadFailureForTests(bool fail) { g_readFails = fail; }
