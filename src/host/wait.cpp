#include "host/wait.h"
#include "host/ap_callbacks.h"
#include "host/errors.h"
#include "host/text.h"
#include "platform/platform_table.h"

#include <cstdarg>
#include <cstdio>

namespace {

bool g_waitShown = false;
int g_hourGlass = 0;

// The text filter between the library and ap_PrintParamLine; it leaves the text as it is.
const char* FilterText(const char* text) { return text; }

} // namespace

void ShowWait(const char* format, ...)
{
    char text[512];
    va_list args;
    va_start(args, format);
    FormatInto(text, sizeof text, format, args);
    va_end(args);
    if (g_waitShown) Ap.ap_HideWait();
    Ap.ap_ShowWait(text);
    g_waitShown = true;
}

void HideWait()
{
    Ap.ap_HideWait();
    g_waitShown = false;
}

bool WaitShown() { return g_waitShown; }

void ap_SetHourGlass(bool on)
{
    g_hourGlass += on ? 1 : -1;
    if (g_hourGlass < 0) {
        ProgramError("ap_SetHourGlass stts=%s sw=%d", on ? "on" : "off", g_hourGlass);
        g_hourGlass = 0;
        return;
    }
    if (on && g_hourGlass == 1) PlatformSetWaitCursor(true);
    if (!on && g_hourGlass == 0) PlatformSetWaitCursor(false);
}

int HourGlassCount() { return g_hourGlass; }

void PrintAt(int column, int row, const char* format, ...)
{
    char text[512];
    va_list args;
    va_start(args, format);
    FormatInto(text, sizeof text, format, args);
    va_end(args);
    Ap.ap_PrintParamLine(static_cast<uint16_t>(row), static_cast<uint16_t>(column * 2 / 3), FilterText(text));
}

void PrintInWindow(TextWindowHandle handle, int column, int row, const char* format, ...)
{
    char text[512];
    va_list args;
    va_start(args, format);
    FormatInto(text, sizeof text, format, args);
    va_end(args);
    Ap.ap_PrintInWindow(handle, static_cast<uint16_t>(column * 2 / 3), static_cast<uint16_t>(row), FilterText(text));
}

void ResetWaitState()
{
    g_waitShown = false;
    g_hourGlass = 0;
}
