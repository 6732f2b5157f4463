#include "platform/platform_table.h"
#include "host/log.h"

#include <cstdio>
#include <cstring>

namespace {

TavrinPlatformTable g_table{};
HeadlessPlatformState g_headless;

const char* Safe(const char* s) { return s ? s : ""; }

} // namespace

void SetPlatformTable(const TavrinPlatformTable* table)
{
    g_table = table ? *table : TavrinPlatformTable{};
}

HeadlessPlatformState& HeadlessState() { return g_headless; }

void ResetPlatformState()
{
    g_table = TavrinPlatformTable{};
    g_headless = HeadlessPlatformState{};
}

int32_t DefaultMessageBoxAnswer(uint32_t style)
{
    uint32_t def = style & TV_MB_DEFMASK;
    switch (style & TV_MB_TYPEMASK) {
    case TV_MB_OKCANCEL: return def == TV_MB_DEFBUTTON2 ? TV_IDCANCEL : TV_IDOK;
    case TV_MB_YESNO: return def == TV_MB_DEFBUTTON2 ? TV_IDNO : TV_IDYES;
    case TV_MB_YESNOCANCEL:
        return def == TV_MB_DEFBUTTON2 ? TV_IDNO : def == TV_MB_DEFBUTTON3 ? TV_IDCANCEL : TV_IDYES;
    default: return TV_IDOK;
    }
}

int32_t PlatformMessageBox(const char* text, const char* caption, uint32_t style)
{
    if (g_table.MessageBox) return g_table.MessageBox(g_table.Context, Safe(text), Safe(caption), style);
    g_headless.messageBoxes++;
    g_headless.lastMessage = Safe(text);
    g_headless.lastCaption = Safe(caption);
    g_headless.lastStyle = style;
    int32_t answer = DefaultMessageBoxAnswer(style);
    Log("Message box '%s': %s (answered %d)\n", Safe(caption), Safe(text), answer);
    return answer;
}

int32_t PlatformFileDialog(bool open, const char* filter, const char* defaultExtension, const char* title,
                           const char* initialDirectory, char* path, uint32_t pathSize)
{
    if (g_table.FileDialog)
        return g_table.FileDialog(g_table.Context, open ? 1 : 0, Safe(filter), Safe(defaultExtension), Safe(title),
                                  Safe(initialDirectory), path, pathSize);
    Log("File dialog '%s': cancelled\n", Safe(title));
    return 0;
}

bool PlatformKeyDown(int32_t virtualKey)
{
    if (g_table.KeyState) return (g_table.KeyState(g_table.Context, virtualKey) & 0x8000) != 0;
    return false;
}

void PlatformSetWaitCursor(bool on)
{
    if (g_table.SetWaitCursor) g_table.SetWaitCursor(g_table.Context, on ? 1 : 0);
    else g_headless.waitCursor = on;
}

int32_t PlatformProgressOpen(const char* title)
{
    if (g_table.ProgressOpen) return g_table.ProgressOpen(g_table.Context, Safe(title));
    g_headless.progressOpen = true;
    g_headless.progressTitle = Safe(title);
    g_headless.progressBar = 0;
    g_headless.progressText1.clear();
    g_headless.progressText2.clear();
    return TV_PROGRESS_OK;
}

void PlatformProgressClose()
{
    if (g_table.ProgressClose) g_table.ProgressClose(g_table.Context);
    else g_headless.progressOpen = false;
}

void PlatformProgressSetBar(int32_t position)
{
    if (g_table.ProgressSetBar) g_table.ProgressSetBar(g_table.Context, position);
    else g_headless.progressBar = position;
}

void PlatformProgressSetText(int32_t controlId, const char* text)
{
    if (g_table.ProgressSetText) {
        g_table.ProgressSetText(g_table.Context, controlId, Safe(text));
    } else if (controlId == TV_PROGRESS_TEXT1) {
        g_headless.progressText1 = Safe(text);
    } else if (controlId == TV_PROGRESS_TEXT2) {
        g_headless.progressText2 = Safe(text);
    }
}

bool PlatformPumpMessages()
{
    if (g_table.PumpMessages) return g_table.PumpMessages(g_table.Context) != 0;
    bool cancel = g_headless.cancelPending;
    g_headless.cancelPending = false;
    return cancel;
}

void PlatformScrollableMessageBox(const char* title, const char* text)
{
    if (g_table.ScrollableMessageBox) {
        g_table.ScrollableMessageBox(g_table.Context, Safe(title), Safe(text));
        return;
    }
    g_headless.scrollableText = Safe(text);
    Log("Message box '%s': %s\n", Safe(title), Safe(text));
}

void PlatformDebugOutput(const char* text)
{
    if (g_table.DebugOutput) g_table.DebugOutput(g_table.Context, Safe(text));
    else std::fputs(Safe(text), stderr);
}

void PlatformShowRegionOverlay(bool on, int32_t option, int32_t centreX, int32_t centreY, double lengthAB,
                               double lengthAC, double angle1, double angle2)
{
    if (g_table.ShowRegionOverlay)
        g_table.ShowRegionOverlay(g_table.Context, on ? 1 : 0, option, centreX, centreY, lengthAB, lengthAC, angle1,
                                  angle2);
}
