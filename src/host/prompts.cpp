#include "host/prompts.h"
#include "host/errors.h"
#include "platform/platform_table.h"

bool ReplayFlag = false;

namespace {

uint32_t Icon(bool warn, uint32_t normal) { return warn ? TV_MB_ICONWARNING : normal; }

int32_t Ask(const char* text, uint32_t buttons, bool defaultFirst, bool warn)
{
    uint32_t style = buttons | Icon(warn, TV_MB_ICONQUESTION) | TV_MB_TASKMODAL |
                     (defaultFirst ? TV_MB_DEFBUTTON1 : TV_MB_DEFBUTTON2);
    return PlatformMessageBox(text, kProductName, style);
}

} // namespace

void ShowInfo(const char* text, const char* caption, bool warn)
{
    PlatformMessageBox(text, caption ? caption : kProductName,
                       TV_MB_OK | Icon(warn, TV_MB_ICONINFORMATION) | TV_MB_TASKMODAL);
}

int AskYesNoCancel(const char* text, bool defaultFirst, bool warn)
{
    switch (Ask(text, TV_MB_YESNOCANCEL, defaultFirst, warn)) {
    case TV_IDYES: return 2;
    case TV_IDNO: return 1;
    default: return 0;
    }
}

int AskOkCancel(const char* text, bool defaultFirst, bool warn)
{
    return Ask(text, TV_MB_OKCANCEL, defaultFirst, warn) == TV_IDOK ? 1 : 0;
}

int AskYesNo(const char* text, bool defaultFirst, bool warn)
{
    return Ask(text, TV_MB_YESNO, defaultFirst, warn) == TV_IDYES ? 1 : 0;
}

int ShowUserMessage(const char* text)
{
    if (ReplayFlag) return 1;
    return PlatformMessageBox(text, kProductName, TV_MB_OK | TV_MB_ICONSTOP | TV_MB_TASKMODAL);
}
