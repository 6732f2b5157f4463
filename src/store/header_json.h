// The stored record as one JSON object: every named field under its name, in file order.
//
//   numbers       integers as integers; an f32 as the shortest text that reads back to the
//                 same f32, an f64 likewise for f64; NaN and infinities as the strings "nan",
//                 "inf", "-inf"
//   texts         the text up to the first NUL, bytes above 127 as the Latin-1 characters
//   tables        byte tables and number arrays as arrays of numbers; GeneralText as an
//                 array of texts
//   dates, times  objects of their fields (day, month, year, dayofweek; hour, minute,
//                 second, hsecond)
//   block words   FFTData, CITSHeader, SPSRefData, LMCThresholdHitDataPtr as 0 or 1
// Reserved ranges are not listed.
#pragma once

#include <string>

#include "tavrin/image_header.h"

std::string HeaderToJson(const ImageHeaderType* record);

// The pieces, for other JSON texts of the host.
std::string JsonString(const char* text, size_t maxBytes);   // quoted, escaped, Latin-1 to UTF-8
std::string JsonFloat(float value);
std::string JsonDouble(double value);
