#include "platform/settings_store.h"
#include "platform/file_lock.h"
#include "platform/paths.h"
#include "platform/safe_replace.h"

#include <algorithm>
#include <cctype>
#include <cstring>
#include <fstream>
#include <sstream>
#include <vector>

namespace {

constexpr const char kSettingsLockName[] = "settings.lock";

struct Line {
    std::string key;    // empty for a line that is not key=value
    std::string value;
    std::string raw;    // the line as read, for lines that are kept verbatim
};

struct Section {
    std::string name;   // empty for lines before the first section
    std::vector<Line> lines;
};

using Profile = std::vector<Section>;

bool SameName(const std::string& a, const std::string& b)
{
    return a.size() == b.size() &&
           std::equal(a.begin(), a.end(), b.begin(), [](char x, char y) {
               return std::tolower(static_cast<unsigned char>(x)) == std::tolower(static_cast<unsigned char>(y));
           });
}

std::string Trim(const std::string& s)
{
    size_t b = 0, e = s.size();
    while (b < e && std::isspace(static_cast<unsigned char>(s[b]))) ++b;
    while (e > b && std::isspace(static_cast<unsigned char>(s[e - 1]))) --e;
    return s.substr(b, e - b);
}

Profile ReadProfile(const std::string& file)
{
    Profile profile(1);
    std::ifstream in(NativePath(file), std::ios::binary);
    std::string text;
    while (std::getline(in, text)) {
        if (!text.empty() && text.back() == '\r') text.pop_back();
        std::string t = Trim(text);
        if (t.size() >= 2 && t.front() == '[' && t.back() == ']') {
            profile.push_back({Trim(t.substr(1, t.size() - 2)), {}});
            continue;
        }
        Line line;
        line.raw = text;
        size_t eq = t.find('=');
        if (eq != std::string::npos && t[0] != ';') {
            line.key = Trim(t.substr(0, eq));
            line.value = Trim(t.substr(eq + 1));
            if (line.value.size() >= 2 && line.value.front() == '"' && line.value.back() == '"')
                line.value = line.value.substr(1, line.value.size() - 2);
        }
        profile.back().lines.push_back(std::move(line));
    }
    return profile;
}

bool WriteProfile(const Profile& profile, const std::string& file)
{
    std::ostringstream out;
    for (const Section& section : profile) {
        if (!section.name.empty()) out << '[' << section.name << "]\r\n";
        for (const Line& line : section.lines) {
            if (line.key.empty()) out << line.raw << "\r\n";
            else out << line.key << '=' << line.value << "\r\n";
        }
    }
    std::string native = NativePath(file);
    size_t slash = native.rfind('/');
    if (slash != std::string::npos && slash > 0) MakeDirectories(native.substr(0, slash));
    const std::string text = out.str();
    return FileReplaceWithBytes(native, text.data(), text.size()) == ReplaceOutcome::Done;
}

// The changes gathered between ProfileBeginChanges and ProfileEndChanges.
struct Changes {
    int depth = 0;        // nested begins
    std::string native;   // the file, in this machine's form
    Profile profile;
    FileLock lock;
};
Changes g_changes;

// Takes the lock of the settings store, which every change of a settings file holds, so that
// processes changing different keys of one file at the same moment lose none: each reads,
// changes and writes the file while the others wait. Readers need no lock, since a file is
// only ever replaced whole. Without a usable home the change goes ahead unlocked.
FileLock LockSettings()
{
    FileLock lock;
    if (g_changes.depth > 0) return lock;   // held already, for the changes being gathered
    MakeDirectories(TavrinHomeDir());
    if (OpenLockFile(&lock, SettingsLockFileName())) TakeFileLock(&lock, LockKind::Exclusive, true);
    return lock;
}

Section* FindSection(Profile& profile, const std::string& name)
{
    for (Section& s : profile)
        if (!s.name.empty() && SameName(s.name, name)) return &s;
    return nullptr;
}

Line* FindKey(Section& section, const std::string& key)
{
    for (Line& l : section.lines)
        if (!l.key.empty() && SameName(l.key, key)) return &l;
    return nullptr;
}

// One change of a profile in memory: a key set, a key removed (null value) or a section
// removed (null key).
void ApplyChange(Profile& profile, const char* section, const char* key, const char* value)
{
    Section* s = FindSection(profile, section);
    if (!key) {
        if (s) profile.erase(profile.begin() + (s - profile.data()));
        return;
    }
    if (!value) {
        if (s) {
            if (Line* l = FindKey(*s, key)) s->lines.erase(s->lines.begin() + (l - s->lines.data()));
        }
        return;
    }
    if (!s) {
        profile.push_back({section, {}});
        s = &profile.back();
    }
    if (Line* l = FindKey(*s, key)) {
        l->value = value;
    } else {
        Line line;
        line.key = key;
        line.value = value;
        s->lines.push_back(std::move(line));
    }
}

bool Gathering(const std::string& file) { return g_changes.depth > 0 && NativePath(file) == g_changes.native; }

bool Lookup(const std::string& section, const std::string& key, const std::string& file, std::string& value)
{
    Profile read;
    Profile& profile = Gathering(file) ? g_changes.profile : (read = ReadProfile(file));
    Section* s = FindSection(profile, section);
    if (!s) return false;
    Line* l = FindKey(*s, key);
    if (!l) return false;
    value = l->value;
    return true;
}

int HexDigit(char c)
{
    if (c >= '0' && c <= '9') return c - '0';
    if (c >= 'A' && c <= 'F') return c - 'A' + 10;
    if (c >= 'a' && c <= 'f') return c - 'a' + 10;
    return -1;
}

} // namespace

size_t ProfileGetString(const std::string& section, const std::string& key, const char* defaultValue,
                        char* buffer, size_t size, const std::string& file, bool* found)
{
    std::string value;
    bool have = Lookup(section, key, file, value);
    if (found) *found = have;
    if (!have) value = defaultValue ? defaultValue : "";
    if (!buffer || size == 0) return 0;
    size_t n = std::min(value.size(), size - 1);
    std::memcpy(buffer, value.data(), n);
    buffer[n] = '\0';
    return n;
}

bool ProfileWriteString(const char* section, const char* key, const char* value, const std::string& file)
{
    if (!section) return false;
    if (Gathering(file)) {
        ApplyChange(g_changes.profile, section, key, value);
        return true;
    }
    FileLock lock = LockSettings();
    Profile profile = ReadProfile(file);
    ApplyChange(profile, section, key, value);
    const bool written = WriteProfile(profile, file);
    CloseLockFile(&lock);
    return written;
}

void ProfileBeginChanges(const std::string& file)
{
    if (g_changes.depth > 0) {
        ++g_changes.depth;
        return;
    }
    g_changes.lock = LockSettings();
    g_changes.native = NativePath(file);
    g_changes.profile = ReadProfile(file);
    g_changes.depth = 1;
}

bool ProfileEndChanges()
{
    if (g_changes.depth == 0 || --g_changes.depth > 0) return true;
    const bool written = WriteProfile(g_changes.profile, g_changes.native);
    CloseLockFile(&g_changes.lock);
    g_changes.profile.clear();
    g_changes.native.clear();
    return written;
}

void ResetProfileChanges()
{
    CloseLockFile(&g_changes.lock);
    g_changes = Changes{};
}

bool ProfileGetStruct(const std::string& section, const std::string& key, void* buffer, size_t size,
                      const std::string& file)
{
    std::string value;
    if (!buffer || !Lookup(section, key, file, value)) return false;
    if (value.size() != 2 * size + 2) return false;
    std::vector<unsigned char> bytes(size + 1);
    for (size_t i = 0; i <= size; ++i) {
        int hi = HexDigit(value[2 * i]), lo = HexDigit(value[2 * i + 1]);
        if (hi < 0 || lo < 0) return false;
        bytes[i] = static_cast<unsigned char>(hi * 16 + lo);
    }
    unsigned sum = 0;
    for (size_t i = 0; i < size; ++i) sum += bytes[i];
    if ((sum & 0xFF) != bytes[size]) return false;
    std::memcpy(buffer, bytes.data(), size);
    return true;
}

bool ProfileWriteStruct(const std::string& section, const std::string& key, const void* buffer, size_t size,
                        const std::string& file)
{
    if (!buffer) return ProfileWriteString(section.c_str(), key.c_str(), nullptr, file);
    static const char digits[] = "0123456789ABCDEF";
    const auto* bytes = static_cast<const unsigned char*>(buffer);
    std::string hex;
    hex.reserve(2 * size + 2);
    unsigned sum = 0;
    for (size_t i = 0; i < size; ++i) {
        hex += digits[bytes[i] >> 4];
        hex += digits[bytes[i] & 15];
        sum += bytes[i];
    }
    hex += digits[(sum >> 4) & 15];
    hex += digits[sum & 15];
    return ProfileWriteString(section.c_str(), key.c_str(), hex.c_str(), file);
}

bool ProfileCopyFile(const std::string& from, const std::string& to)
{
    FileLock lock = LockSettings();
    const bool copied = CopyFileOver(from, to);
    CloseLockFile(&lock);
    return copied;
}

std::string SettingsLockFileName() { return TavrinHomeDir() + kSettingsLockName; }
