// Numbered errors: the one way a routine reports a failure.
//
// A routine reports a number, then returns its own failure value; nothing is thrown. Numbers
// whose text holds a format ("Program error - %-70s", "Command line - %-70s",
// "Lock-In-Amp: %-70s", "Application Error: %-70s") take a format and its arguments after the
// number; 36869 takes the help reader's name; 36096 shows the number itself.
#pragma once

#include <cstdarg>
#include <cstdint>

#include "host/error_numbers.h"

void Error(unsigned number, ...);
void VError(unsigned number, va_list args);
// The program error 32771 with a free text, usually the routine's name.
void ProgramError(const char* format, ...) __attribute__((format(printf, 1, 2)));
// The display routine: the text goes to a message box (subject to the rule of program errors)
// and to the log.
void ShowErrorText(uint16_t number, const char* format, ...) __attribute__((format(printf, 2, 3)));
void VShowErrorText(uint16_t number, const char* format, va_list args);

// The table text of a number, or null when it has none.
const char* ErrorTableText(uint16_t number);

// The caption of every message box of the library.
extern const char* const kProductName;

void ResetErrorState();

// For a host that hands errors on by number (the Python package): every error shown is also
// passed here with its number and text (null: none).
using ErrorObserver = void (*)(unsigned number, const char* text, void* context);
void SetErrorObserver(ErrorObserver observer, void* context);
