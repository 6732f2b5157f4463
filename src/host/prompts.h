// Talk with the user: modal prompts, all captioned with the product name and task-modal.
#pragma once

#include <cstdint>

// OK only; information icon, or warning with `warn`.
void ShowInfo(const char* text, const char* caption = nullptr, bool warn = false);
// Yes, No, Cancel: 2 for Yes, 1 for No, 0 for Cancel. Default Yes with `defaultFirst`, else No.
int AskYesNoCancel(const char* text, bool defaultFirst, bool warn = false);
// OK, Cancel: 1 for OK. Default OK with `defaultFirst`, else Cancel.
int AskOkCancel(const char* text, bool defaultFirst, bool warn = false);
// Yes, No: 1 for Yes. Default Yes with `defaultFirst`, else No.
int AskYesNo(const char* text, bool defaultFirst, bool warn = false);
// OK with the stop icon; suppressed, answering non-zero, while a replay runs.
int ShowUserMessage(const char* text);

// Set while a replay of a file series shows its files.
extern bool ReplayFlag;
