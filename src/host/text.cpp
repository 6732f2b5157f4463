#include "host/text.h"
#include "host/errors.h"

#include <cstdio>
#include <cstring>

void strncpy0(char* destination, const char* source, int size)
{
    if (size <= 0) {
        ProgramError("strncpy0 n=%d", size);
        return;
    }
    if (!destination) return;
    if (!source) source = "";
    size_t n = strnlen(source, static_cast<size_t>(size - 1));
    std::memmove(destination, source, n);
    destination[n] = '\0';
}

void strncat0(char* destination, const char* source, int size)
{
    if (!destination || size <= 0) return;
    size_t have = strnlen(destination, static_cast<size_t>(size));
    if (have >= static_cast<size_t>(size)) {
        ProgramError("strncat0 %d %d", static_cast<int>(have), size);
        return;
    }
    if (!source) return;
    size_t room = static_cast<size_t>(size) - 1 - have;
    size_t n = strnlen(source, room);
    std::memmove(destination + have, source, n);
    destination[have + n] = '\0';
}

void FormatInto(char* buffer, size_t size, const char* format, va_list args)
{
    if (size == 0) return;
    if (!format) {
        buffer[0] = '\0';
        return;
    }
    va_list copy;
    va_copy(copy, args);
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wformat-nonliteral"
    std::vsnprintf(buffer, size, format, copy);
#pragma GCC diagnostic pop
    va_end(copy);
}
