// Bounded text copy and append: both always terminate the destination.
#pragma once

// Copies at most size - 1 characters. A size of 0 or less reports "strncpy0 n=%d".
void strncpy0(char* destination, const char* source, int size);
// Appends while the whole text stays below `size` characters. A destination that is already
// longer than its size reports "strncat0 %d %d" and is left alone.
void strncat0(char* destination, const char* source, int size);
