// Wait texts, the hourglass, and lines of text in the host's windows.
#pragma once

#include "tavrin/ap_callbacks.h"

// Formats into 512 bytes, hides an earlier text, and shows this one ("Please wait",
// "Saving - Please wait", ...). A second ShowWait while one is up replaces it.
void ShowWait(const char* format, ...) __attribute__((format(printf, 1, 2)));
void HideWait();
bool WaitShown();

// The counted hourglass (log name "ap_SetHourGlass"): going from 0 to 1 sets the wait cursor,
// from 1 to 0 restores the saved one. A count below 0 is reported.
void ap_SetHourGlass(bool on);
int HourGlassCount();

// A line of the host's parameter text; columns go out as column * 2 / 3.
void PrintAt(int column, int row, const char* format, ...) __attribute__((format(printf, 3, 4)));
// A line in a host text window.
void PrintInWindow(TextWindowHandle handle, int column, int row, const char* format, ...)
    __attribute__((format(printf, 4, 5)));

void ResetWaitState();
