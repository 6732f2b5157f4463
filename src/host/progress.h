// The progress and cancel dialog of long commands (DllProcessingCancelDlg), and the message box
// with a scrolling text (CScrollableMessageBox).
//
// The dialog is modeless: a command opens it, steps it in its loop, reads its cancel flag, and
// closes it. Each step pumps the thread's messages, so this is the one place where the host may
// re-enter the library in the middle of a command.
#pragma once

// Creates and shows the dialog unless it exists; answers false when it could not be made.
bool OpenProcessDialog(const char* title);
void CloseProcessDialog();
// With `advance`, moves the bar (0 to 39: four frames of ten steps, then it wraps); then
// pumps the messages, which may set the cancel flag.
void ProcessDialogStep(bool advance);
// The cancel flag; 0 with no dialog.
int ProcessDialogCancelled();
void ProcessDialogClearCancel();
void ProcessDialogText1(const char* text);
void ProcessDialogText2(const char* text);
bool ProcessDialogOpen();
int ProcessDialogBar();

// A long text in a scrolling message box.
void CScrollableMessageBox(const char* title, const char* text);

void ResetProgressState();
