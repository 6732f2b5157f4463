// The system locale: its name, and the byte classes of its code page.
#pragma once

#include <string>

// The locale name from LC_ALL, LC_MESSAGES or LANG, in that order ("C" when none is set),
// e.g. "ja_JP.SJIS" or "en_GB.UTF-8".
std::string SystemLocaleName();
// True for the lead byte of a double-byte character in the code page of the locale in use.
// UTF-8 and single-byte locales have none; the double-byte code pages of Japanese (Shift-JIS),
// Chinese (GBK, Big5) and Korean (EUC-KR, UHC) have their lead-byte ranges.
bool IsLeadByte(unsigned char byte);
// Letters and digits of the 8-bit character set (ASCII and the Latin-1 letters).
bool IsCharAlphaNumeric(unsigned char byte);

// For tests: use this locale name instead of the environment (null: the environment again).
void SetLocaleNameForTests(const char* name);
