// The clock: local time, the stored DOS date and time, the 100 ns FILETIME count, a
// millisecond tick.
#pragma once

#include <cstdint>

#include "tavrin/image_header.h"

struct LocalTime {
    int year;
    int month;        // 1 to 12
    int dayOfWeek;    // 0 = Sunday
    int day;          // 1 to 31
    int hour;
    int minute;
    int second;
    int milliseconds;
};

LocalTime GetLocalTime();
// 100 ns intervals since 1601-01-01 of the given local time, as the desktop platform counts.
uint64_t LocalTimeToFileTime(const LocalTime& t);
DosDateType ToDosDate(const LocalTime& t);
DosTimeType ToDosTime(const LocalTime& t);
// Milliseconds since an arbitrary start, steadily increasing.
uint32_t TickMilliseconds();

// For tests: a fixed clock (null pointer: the real clock again).
void SetClockForTests(const LocalTime* fixed);
