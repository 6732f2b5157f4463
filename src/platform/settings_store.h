// The settings store: text files of sections and keys, in the private profile form.
//
//   [Section]
//   Key=Value
//
// Struct values are one line of two hexadecimal digits per byte followed by a one-byte sum of
// all bytes, also in hexadecimal. Section and key names compare case-insensitively. Reading a
// missing key answers as the profile calls do: a string read copies the default and answers
// its length; a struct read answers false and leaves the buffer alone.
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
