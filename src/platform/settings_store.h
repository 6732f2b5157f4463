// The settings store: text files of sections and keys, in the private profile form.
//
//   [Section]
//   Key=Value
//
// Struct values are one line of two hexadecimal digits per byte followed by a one-byte sum of
// all bytes, also in hexadecimal. Section and key names compare case-insensitively. Reading a
// missing key answers as the profile calls do: a string read copies the default and answers
// its length; a struct read answers false and leaves the buffer alone.
//
// Several processes may share one home and its settings files. Every change reads, changes
// and writes its file under one advisory lock of the home ("settings.lock"), and writes it by
// the safe replace (platform/safe_replace.h), so no change of another process is lost and a
// reader always finds a whole file.
#pragma once

#include <cstddef>
#include <string>

// Copies the value (or the default) into `buffer`, cut to size - 1 characters; answers the
// number of characters copied. `found` (if given) tells whether the key existed.
size_t ProfileGetString(const std::string& section, const std::string& key, const char* defaultValue,
                        char* buffer, size_t size, const std::string& file, bool* found = nullptr);
// Writes a key; a null value removes the key, a null key removes the whole section.
bool ProfileWriteString(const char* section, const char* key, const char* value, const std::string& file);
// True only if the key exists, has exactly `size` bytes and its sum is right.
bool ProfileGetStruct(const std::string& section, const std::string& key, void* buffer, size_t size,
                      const std::string& file);
// A null buffer removes the key.
bool ProfileWriteStruct(const std::string& section, const std::string& key, const void* buffer, size_t size,
                        const std::string& file);
// Many changes of one file as one: from the begin to the end the lock of the store is held, the
// file is read once, every write to that file changes the copy in memory (and reads of it see
// the copy), and the end writes it once. Writes to other files meanwhile go straight to them.
// Begins nest; the outermost end writes, and answers false when that write fails.
void ProfileBeginChanges(const std::string& file);
bool ProfileEndChanges();
// Drops changes still gathered, unwritten (for a fresh process state).
void ResetProfileChanges();
// Copies a settings file over another, under the lock of the store.
bool ProfileCopyFile(const std::string& from, const std::string& to);
// The lock file of the store, in the home directory.
std::string SettingsLockFileName();
