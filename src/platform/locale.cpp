#include "platform/locale.h"

#include <algorithm>
#include <cctype>
#include <cstdlib>
#include <optional>

namespace {

std::optional<std::string> g_override;

enum class CodePage { SingleByte, ShiftJis, Gbk, Big5, Korean };

std::string Lower(std::string s)
{
    std::transform(s.begin(), s.end(), s.begin(), [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    return s;
}

CodePage CodePageOf(const std::string& locale)
{
    std::string name = Lower(locale);
    size_t dot = name.find('.');
    std::string charset = dot == std::string::npos ? std::string() : name.substr(dot + 1);
    size_t at = charset.find('@');
    if (at != std::string::npos) charset = charset.substr(0, at);
    if (charset == "sjis" || charset == "shift_jis" || charset == "cp932" || charset == "pck") return CodePage::ShiftJis;
    if (charset == "gbk" || charset == "gb2312" || charset == "cp936" || charset == "gb18030") return CodePage::Gbk;
    if (charset == "big5" || charset == "big5hkscs" || charset == "cp950") return CodePage::Big5;
    if (charset == "euckr" || charset == "euc-kr" || charset == "cp949" || charset == "uhc") return CodePage::Korean;
    return CodePage::SingleByte;   // UTF-8, Latin-n and the C locale have no lead bytes
}

} // namespace

std::string SystemLocaleName()
{
    if (g_override) return *g_override;
    for (const char* var : {"LC_ALL", "LC_MESSAGES", "LANG"}) {
        const char* v = std::getenv(var);
        if (v && *v) return v;
    }
    return "C";
}

bool IsLeadByte(unsigned char b)
{
    switch (CodePageOf(SystemLocaleName())) {
    case CodePage::ShiftJis: return (b >= 0x81 && b <= 0x9F) || (b >= 0xE0 && b <= 0xFC);
    case CodePage::Gbk:
    case CodePage::Big5:
    case CodePage::Korean: return b >= 0x81 && b <= 0xFE;
    case CodePage::SingleByte: return false;
    }
    return false;
}

bool IsCharAlphaNumeric(unsigned char b)
{
    if (std::isalnum(b)) return true;
    // Latin-1 letters: 0xC0 to 0xFF without the multiplication and division signs.
    return b >= 0xC0 && b != 0xD7 && b != 0xF7;
}

void SetLocaleNameForTests(const char* name)
{
    if (name) g_override = name;
    else g_override.reset();
}
