#include "host/progress.h"
#include "host/errors.h"
#include "platform/platform_table.h"

namespace {

constexpr int kBarSteps = 40;   // four frames of ten steps

bool g_open = false;
int g_bar = 0;
bool g_cancelled = false;

} // namespace

bool OpenProcessDialog(const char* title)
{
    if (g_open) return true;
    switch (PlatformProgressOpen(title)) {
    case TV_PROGRESS_OK:
        g_open = true;
        g_bar = 0;
        g_cancelled = false;
        return true;
    case TV_PROGRESS_NO_WINDOW:
        PlatformMessageBox("Cannnot get HWND", kProductName, TV_MB_OK);
        return false;
    default:
        PlatformMessageBox("Cannnot create ProcessCancelDlg", kProductName, TV_MB_OK);
        return false;
    }
}

void CloseProcessDialog()
{
    if (!g_open) return;
    PlatformProgressClose();
    g_open = false;
}

void ProcessDialogStep(bool advance)
{
    if (!g_open) return;
    if (advance) {
        g_bar = (g_bar + 1) % kBarSteps;
        PlatformProgressSetBar(g_bar);
    }
    if (PlatformPumpMessages()) g_cancelled = true;
}

int ProcessDialogCancelled() { return g_open && g_cancelled ? 1 : 0; }
void ProcessDialogClearCancel() { g_cancelled = false; }

void ProcessDialogText1(const char* text)
{
    if (g_open) PlatformProgressSetText(TV_PROGRESS_TEXT1, text);
}

void ProcessDialogText2(const char* text)
{
    if (g_open) PlatformProgressSetText(TV_PROGRESS_TEXT2, text);
}

bool ProcessDialogOpen() { return g_open; }
int ProcessDialogBar() { return g_bar; }

void CScrollableMessageBox(const char* title, const char* text) { PlatformScrollableMessageBox(title, text); }

void ResetProgressState()
{
    g_open = false;
    g_bar = 0;
    g_cancelled = false;
}
