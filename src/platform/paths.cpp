#include "platform/paths.h"
#include "platform/safe_replace.h"

#include <cctype>
#include <cstdlib>
#include <filesystem>
#include <system_error>
#include <vector>
#include <unistd.h>
#include <pwd.h>

namespace fs = std::filesystem;

namespace {

std::string WithTrailingSeparator(std::string dir)
{
    if (dir.empty() || !IsPathSeparator(dir.back())) dir += '/';
    return dir;
}

// Case-insensitive test that `path` starts with the desktop directory `prefix`, in either
// separator form; answers the length matched (including a following separator) or 0.
size_t MatchDesktopPrefix(const std::string& path, const char* prefix)
{
    size_t i = 0;
    for (; prefix[i]; ++i) {
        if (i >= path.size()) return 0;
        char a = path[i], b = prefix[i];
        if (b == '\\') {
            if (!IsPathSeparator(a)) return 0;
        } else if (std::tolower(static_cast<unsigned char>(a)) != std::tolower(static_cast<unsigned char>(b))) {
            return 0;
        }
    }
    if (i == path.size()) return i;
    if (IsPathSeparator(path[i])) return i + 1;
    return 0;
}

} // namespace

std::string TavrinHomeDir()
{
    if (const char* home = std::getenv("TAVRIN_HOME"); home && *home) return WithTrailingSeparator(home);
    const char* user = std::getenv("HOME");
    std::string base;
    if (user && *user) {
        base = user;
    } else if (const passwd* pw = getpwuid(getuid()); pw && pw->pw_dir) {
        base = pw->pw_dir;
    } else {
        base = "/tmp";
    }
    return WithTrailingSeparator(base) + ".tavrin/";
}

std::string TavrinDataDirSetting()
{
    const char* data = std::getenv("TAVRIN_DATA");
    return (data && *data) ? WithTrailingSeparator(data) : std::string();
}

bool IsPathSeparator(char c) { return c == '/' || c == '\\'; }

size_t LastSeparator(const std::string& path)
{
    for (size_t i = path.size(); i-- > 0;)
        if (IsPathSeparator(path[i])) return i;
    return std::string::npos;
}

std::string NativePath(const std::string& path)
{
    std::string rest = path;
    std::string base;
    if (size_t n = MatchDesktopPrefix(path, "C:\\Tavrin")) {
        base = TavrinHomeDir();
        rest = path.substr(n);
    } else if (size_t m = MatchDesktopPrefix(path, "c:\\image")) {
        base = TavrinDataDirSetting();
        if (base.empty()) base = WithTrailingSeparator(CurrentDirectory());
        rest = path.substr(m);
    } else if (path.size() >= 2 && std::isalpha(static_cast<unsigned char>(path[0])) && path[1] == ':') {
        rest = path.substr(2);
    }
    std::string out = base + rest;
    for (char& c : out)
        if (c == '\\') c = '/';
    return out;
}

bool MakeDirectories(const std::string& path)
{
    std::error_code ec;
    std::string native = NativePath(path);
    while (native.size() > 1 && native.back() == '/') native.pop_back();
    if (native.empty()) return false;
    fs::create_directories(native, ec);
    return fs::is_directory(native, ec);
}

bool PathIsRegularFile(const std::string& path)
{
    std::error_code ec;
    return fs::is_regular_file(NativePath(path), ec);
}

bool PathIsDirectory(const std::string& path)
{
    std::error_code ec;
    return fs::is_directory(NativePath(path), ec);
}

bool PathExists(const std::string& path)
{
    std::error_code ec;
    return fs::exists(NativePath(path), ec);
}

bool RemoveFile(const std::string& path)
{
    return ::unlink(NativePath(path).c_str()) == 0;
}

bool CopyFileOver(const std::string& from, const std::string& to)
{
    const FileHandle in = FileOpen(from, FileMode::Read);
    if (in == kInvalidFile) return false;
    FileReplace save;
    const FileHandle out = FileReplaceBegin(&save, to);
    if (out == kInvalidFile) {
        FileClose(in);
        return false;
    }
    std::vector<char> buffer(1 << 16);
    bool copied = true;
    for (;;) {
        const long long got = FileRead(in, buffer.data(), buffer.size());
        if (got < 0) copied = false;
        if (got <= 0) break;
        if (FileWrite(out, buffer.data(), static_cast<size_t>(got)) != got) {
            copied = false;
            break;
        }
    }
    FileClose(in);
    if (!copied) {
        FileReplaceAbandon(&save);
        return false;
    }
    return FileReplaceCommit(&save) == ReplaceOutcome::Done;
}

long long FileSizeOf(const std::string& path)
{
    std::error_code ec;
    auto size = fs::file_size(NativePath(path), ec);
    return ec ? -1 : static_cast<long long>(size);
}

std::string CurrentDirectory()
{
    std::error_code ec;
    auto cwd = fs::current_path(ec);
    return ec ? std::string(".") : cwd.string();
}

bool ChangeDirectory(const std::string& path)
{
    return ::chdir(NativePath(path).c_str()) == 0;
}
