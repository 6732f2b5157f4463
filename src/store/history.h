// Processing history: the process codes in ProcessList of a record (one byte each, 1-based,
// NUL-terminated, at most 49), and their names.
#pragma once

#include "tavrin/image_header.h"

constexpr int kProcessListLength = 49;
constexpr int kProcessNameCount = 122;

extern const char* const im_pstr[];
int ProcessNameCount();

void AddImProc2List(ImageHeaderType* record, int code);
int SeeIfProcessDone(const ImageHeaderType* record, int code);
// Name of the code with this index (code - 1); outside 0 to 121, "Img Proc Str Error".
const char* GetProcessName(int index);

// The history as the parameter text lists it under "Processing :": the name of each code, in
// order. None at all (and so no heading) when the list is empty or its display is off
// (ProcessListOff 255). Answers the number of names written to `names`.
int ProcessHistoryLines(const ImageHeaderType* record, const char* names[kProcessListLength]);
