// Value entry through the host's modal dialogs. Each answers non-zero when the user accepted.
#pragma once

#include <cstdint>

#include "tavrin/image_header.h"

int16_t EnterInteger(int32_t value, const char* prompt, const char* title, int32_t* result, int length);
int16_t EnterText(const char* value, const char* prompt, const char* title, char* result, int length);
int16_t EnterDouble(double value, const char* prompt, const char* title, double* result, int length);
int16_t EnterDoublePair(double first, double second, const char* prompt1, const char* prompt2, const char* title,
                        double* result1, double* result2, int length);
int16_t EnterString(const char* defaultText, const char* prompt, const char* title, char* buffer, int length);

// Edits the Title of a record: "Enter title :", 39 characters, trailing blanks stripped.
int16_t EditTitle(ImageHeaderType* record, const char* caption);
// The same for a title field of 40 characters of any record.
int16_t EditTitleText(char (&title)[40], const char* caption);
