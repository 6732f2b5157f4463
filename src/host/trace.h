// The trace call that opens every entry point, and the entry-point frame.
//
// Every dl_ entry point starts with TraceEntry(name) - Trace at level 2 with the caption
// "ifwint1" and the flags 8192 - and then forwards to its subsystem:
//
//     TAVRIN_API void dl_SomeCommand(int n)
//     {
//         TraceEntry("dl_SomeCommand: %d", n);
//         SomeCommand(n);
//     }
#pragma once

#include <cstdint>

inline constexpr const char* kTraceCaption = "ifwint1";
inline constexpr uint32_t kTraceFlags = 8192;

// Level 0: nothing. 1: logs the text in debug mode, shows it in a message box and answers the
// box's result. 2: logs the text in debug mode, answers 0.
int Trace(int level, void* owner, const char* text, const char* caption, uint32_t flags);
// Level 2 with the entry caption and flags; the text is formatted.
void TraceEntry(const char* format, ...) __attribute__((format(printf, 1, 2)));

// True while a message box of Trace level 1 is open.
bool TraceBoxOpen();

// The current item is needed: answers it, or reports 33536 ("No images in memory") and
// answers null.
struct ImageHeaderType;
ImageHeaderType* RequireCurrentImage();
// The same for spectra, with 33280 ("No spectra in memory").
ImageHeaderType* RequireCurrentSpectrum();
