// Byte-stream files: the system's open, create, read, write, seek and close.
//
// A read or write of any length is split into pieces of at most 32768 bytes and stops at the
// first short piece; the caller compares the count it gets with the count it asked for.
#pragma once

#include <cstddef>
#include <string>

using FileHandle = int;
constexpr FileHandle kInvalidFile = -1;
constexpr size_t kFileChunkBytes = 32768;

enum class FileMode { Read, Write, ReadWrite };
enum class FileOrigin { Begin, Current, End };

FileHandle FileOpen(const std::string& path, FileMode mode);
FileHandle FileCreate(const std::string& path);      // creates or truncates, for writing
// Bytes moved, or -1 when the first piece already failed.
long long FileRead(FileHandle file, void* buffer, size_t count);
long long FileWrite(FileHandle file, const void* buffer, size_t count);
// New position from the start, or -1.
long long FileSeek(FileHandle file, long long offset, FileOrigin origin);
int FileClose(FileHandle file);                      // 0, or -1 on failure
int FileRemove(const std::string& path);             // 0, or -1 when nothing was removed

// Appends the bytes to the end of the file (created if missing) in one write on a descriptor
// opened for appending, so that texts appended by several processes at once never mix. False
// when the file cannot be opened or the write fails.
bool FileAppend(const std::string& path, const void* data, size_t size);

// For tests: after `bytes` more bytes have been written through FileWrite, every further
// write falls short as on a full disk (-1 switches this off). Failing reads likewise.
void SetFileWriteLimitForTests(long long bytes);
void SetFileReadFailureForTests(bool fail);
// For tests: from FileWrite call number `call` from now on (0: the next call), every write
// writes nothing and answers 0, as on a disk that has run full; -1 switches this off. With the
// count of FileWrite calls made so far, a test can fail a writer at each of its writes in turn.
void SetFileWriteFailureAtCallForTests(long long call);
long long FileWriteCallsForTests();
