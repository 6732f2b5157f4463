#include "files/file_names.h"
#include "host/text.h"

#include <cstring>

namespace {

bool IsSeparator(char c) { return c == '\\' || c == '/'; }

} // namespace

const char* GetExtension(const char* path)
{
    if (!path) return nullptr;
    const char* dot = std::strrchr(path, '.');
    if (!dot) return nullptr;
    if (dot > path && (IsSeparator(dot[-1]) || dot[-1] == '.')) return nullptr;
    for (const char* p = dot + 1; *p; ++p)
        if (IsSeparator(*p)) return nullptr;
    return dot;
}

void SplitPath(char* directory, char* name, const char* path, int size)
{
    if (!path) path = "";
    const char* cut = nullptr;
    for (const char* p = path; *p; ++p)
        if (IsSeparator(*p) || *p == ':') cut = p;
    const size_t dirLength = cut ? static_cast<size_t>(cut - path) + 1 : 0;
    if (directory && size > 0) {
        const size_t n = dirLength < static_cast<size_t>(size) ? dirLength : static_cast<size_t>(size) - 1;
        std::memcpy(directory, path, n);
        directory[n] = '\0';
    }
    if (name) strncpy0(name, path + dirLength, size);
}
