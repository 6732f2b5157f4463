// The platform table of the command-line host: message boxes are answered from the script's
// queue, then by the session's ask hook when a host set one (the Python package), else from
// --yes / --no, then by their default button; a question nobody answered is printed to
// standard error with the answer taken.
#include "pick.h"
#include "session.h"

#include <cstdio>

namespace {

const char* AnswerName(int32_t id)
{
    switch (id) {
    case TV_IDOK: return "OK";
    case TV_IDCANCEL: return "Cancel";
    case TV_IDYES: return "Yes";
    case TV_IDNO: return "No";
    default: return "?";
    }
}

int32_t DefaultButton(uint32_t style)
{
    uint32_t def = style & TV_MB_DEFMASK;
    switch (style & TV_MB_TYPEMASK) {
    case TV_MB_OKCANCEL: return def == TV_MB_DEFBUTTON2 ? TV_IDCANCEL : TV_IDOK;
    case TV_MB_YESNO: return def == TV_MB_DEFBUTTON2 ? TV_IDNO : TV_IDYES;
    case TV_MB_YESNOCANCEL: return def == TV_MB_DEFBUTTON2 ? TV_IDNO : def == TV_MB_DEFBUTTON3 ? TV_IDCANCEL : TV_IDYES;
    default: return TV_IDOK;
    }
}

} // namespace

int32_t ButtonForAnswer(const Answer& a, uint32_t style)
{
    const uint32_t type = style & TV_MB_TYPEMASK;
    switch (a.kind) {
    case Answer::Yes: return type == TV_MB_OKCANCEL ? TV_IDOK : TV_IDYES;
    case Answer::Ok: return (type == TV_MB_YESNO || type == TV_MB_YESNOCANCEL) ? TV_IDYES : TV_IDOK;
    case Answer::No: return type == TV_MB_OKCANCEL ? TV_IDCANCEL : TV_IDNO;
    case Answer::Cancel: return type == TV_MB_YESNO ? TV_IDNO : TV_IDCANCEL;
    default: return static_cast<int32_t>(a.number);
    }
}

namespace {

int32_t MessageBox(void*, const char* text, const char* caption, uint32_t style)
{
    uint32_t type = style & TV_MB_TYPEMASK;
    const auto& ask = Session().ask;
    if (type == TV_MB_OK) {
        // A box with one button asks nothing; error boxes are reported through the log.
        if ((style & 0xF0u) == TV_MB_ICONSTOP) return TV_IDOK;
        if (ask) ask(text, caption, style, TV_IDOK);
        else std::fprintf(stderr, "%s: %s\n", caption, text);
        return TV_IDOK;
    }
    Answer a;
    if (TakeAnswer(&a)) return ButtonForAnswer(a, style);
    int32_t answer = DefaultButton(style);
    if (ask) return ask(text, caption, style, answer);
    if (Session().options.defaultAnswer == TV_IDYES) answer = ButtonForAnswer(Answer{Answer::Yes, 0, {}}, style);
    else if (Session().options.defaultAnswer == TV_IDNO) answer = ButtonForAnswer(Answer{Answer::No, 0, {}}, style);
    else std::fprintf(stderr, "%s: %s [%s]\n", caption, text, AnswerName(answer));
    return answer;
}

int32_t FileDialog(void*, int32_t, const char*, const char*, const char*, const char*, char* path, uint32_t size)
{
    Answer a;
    if (!TakeAnswer(&a) || a.kind != Answer::Text) return 0;
    std::snprintf(path, size, "%s", a.text.c_str());
    return 1;
}

void DebugOutput(void*, const char* text)
{
    if (Session().options.verbose) std::fputs(text, stderr);
}

} // namespace

// The Shift key is held while a script's `pick ... shift` event is reported.
int16_t KeyState(void*, int32_t key)
{
    constexpr int32_t kShift = 0x10;
    if (key == TV_VK_ESCAPE) return CurrentPickMode().escapeHeld ? static_cast<int16_t>(0x8000) : 0;
    return key == kShift && CurrentPickMode().shiftHeld ? static_cast<int16_t>(0x8000) : 0;
}

TavrinPlatformTable HostPlatformTable()
{
    TavrinPlatformTable p{};
    p.KeyState = KeyState;
    p.MessageBox = MessageBox;
    p.FileDialog = FileDialog;
    p.DebugOutput = DebugOutput;
    return p;
}
