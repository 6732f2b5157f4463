// The platform calls of the library: message boxes, file dialogs, key state, wait cursor,
// progress dialog, message pump and debug stream. They go to the table a host registered
// (dl_SetPlatformTable) slot by slot, and to the headless default where a slot is empty.
#pragma once

#include <cstdint>
#include <string>

#include "tavrin/platform.h"

void SetPlatformTable(const TavrinPlatformTable* table);

int32_t PlatformMessageBox(const char* text, const char* caption, uint32_t style);
int32_t PlatformFileDialog(bool open, const char* filter, const char* defaultExtension, const char* title,
                           const char* initialDirectory, char* path, uint32_t pathSize);
bool PlatformKeyDown(int32_t virtualKey);
void PlatformSetWaitCursor(bool on);
int32_t PlatformProgressOpen(const char* title);
void PlatformProgressClose();
void PlatformProgressSetBar(int32_t position);
void PlatformProgressSetText(int32_t controlId, const char* text);
bool PlatformPumpMessages();   // true when Cancel was pressed meanwhile
void PlatformScrollableMessageBox(const char* title, const char* text);
void PlatformDebugOutput(const char* text);
// The region overlay slot (show_region_overlay); nothing when the host left it empty.
void PlatformShowRegionOverlay(bool on, int32_t option, int32_t centreX, int32_t centreY, double lengthAB,
                               double lengthAC, double angle1, double angle2);

// The answer of a message box that nobody sees: its default button.
int32_t DefaultMessageBoxAnswer(uint32_t style);

// What the headless default keeps, so that tests and the command-line host can read it.
struct HeadlessPlatformState {
    bool progressOpen = false;
    std::string progressTitle;
    int32_t progressBar = 0;
    std::string progressText1;   // control 1038
    std::string progressText2;   // control 1036
    bool cancelPending = false;  // answered by the next message pump
    bool waitCursor = false;
    int messageBoxes = 0;        // message boxes answered
    std::string lastMessage;
    std::string lastCaption;
    uint32_t lastStyle = 0;
    std::string scrollableText;
};
HeadlessPlatformState& HeadlessState();
void ResetPlatformState();       // drops a registered table and clears the headless state
