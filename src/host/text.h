// Bounded text copy, append and format: each always terminates the destination.
#pragma once

#include <cstdarg>
#include <cstddef>

// Copies at most size - 1 characters. A size of 0 or less reports "strncpy0 n=%d".
void strncpy0(char* destination, const char* source, int size);
// Appends while the whole text stays below `size` characters. A destination that is already
// longer than its size reports "strncat0 %d %d" and is left alone.
void strncat0(char* destination, const char* source, int size);
// Formats into a buffer of `size` bytes, cut to fit; a null format gives the empty text.
// `args` stays usable for the caller.
void FormatInto(char* buffer, size_t size, const char* format, va_list args);
