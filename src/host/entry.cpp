#include "host/entry.h"
#include "host/ap_callbacks.h"
#include "host/errors.h"

#include <cstring>

namespace {

uint16_t Length(int length) { return static_cast<uint16_t>(length < 0 ? 0 : length); }

} // namespace

int16_t EnterInteger(int32_t value, const char* prompt, const char* title, int32_t* result, int length)
{
    return Ap.ap_EnterInteger(value, prompt, title, result, Length(length)) != 0;
}

int16_t EnterText(const char* value, const char* prompt, const char* title, char* result, int length)
{
    return Ap.ap_EnterText(value, prompt, title, result, Length(length)) != 0;
}

int16_t EnterDouble(double value, const char* prompt, const char* title, double* result, int length)
{
    return Ap.ap_EnterDouble(value, prompt, title, result, Length(length)) != 0;
}

int16_t EnterDoublePair(double first, double second, const char* prompt1, const char* prompt2, const char* title,
                        double* result1, double* result2, int length)
{
    return Ap.ap_EnterDoublePair(first, second, prompt1, prompt2, title, result1, result2, Length(length)) != 0;
}

int16_t EnterString(const char* defaultText, const char* prompt, const char* title, char* buffer, int length)
{
    return Ap.ap_EnterString(defaultText, prompt, title, buffer, Length(length)) != 0;
}

int16_t EditTitle(ImageHeaderType* record, const char* caption)
{
    if (!record) {
        ProgramError("EditTitle");
        return 0;
    }
    return EditTitleText(record->Title, caption);
}

int16_t EditTitleText(char (&title)[40], const char* caption)
{
    constexpr int kTitleChars = 39;
    char current[sizeof title];
    std::memcpy(current, title, sizeof current);
    current[sizeof current - 1] = '\0';
    char edited[sizeof title] = {};
    if (!EnterString(current, "Enter title :", caption, edited, kTitleChars + 1)) return 0;
    edited[kTitleChars] = '\0';
    size_t n = std::strlen(edited);
    while (n > 0 && edited[n - 1] == ' ') edited[--n] = '\0';
    std::memset(title, 0, sizeof title);
    std::memcpy(title, edited, n);
    return 1;
}
