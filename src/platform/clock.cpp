#include "platform/clock.h"

#include <chrono>
#include <ctime>
#include <optional>

namespace {

std::optional<LocalTime> g_fixed;

// Days from 1601-01-01 to the given civil date (proleptic Gregorian).
int64_t DaysFrom1601(int year, int month, int day)
{
    // Days from 1970-01-01 by the usual civil-from-days inverse, then shift.
    int y = year - (month <= 2 ? 1 : 0);
    int64_t era = (y >= 0 ? y : y - 399) / 400;
    int64_t yoe = y - era * 400;
    int64_t mp = (month + 9) % 12;
    int64_t doy = (153 * mp + 2) / 5 + day - 1;
    int64_t doe = yoe * 365 + yoe / 4 - yoe / 100 + doy;
    int64_t since1970 = era * 146097 + doe - 719468;
    return since1970 + 134774;   // 1601-01-01 to 1970-01-01
}

} // namespace

LocalTime GetLocalTime()
{
    if (g_fixed) return *g_fixed;
    using namespace std::chrono;
    auto now = system_clock::now();
    std::time_t secs = system_clock::to_time_t(now);
    std::tm tm{};
    localtime_r(&secs, &tm);
    LocalTime t{};
    t.year = tm.tm_year + 1900;
    t.month = tm.tm_mon + 1;
    t.dayOfWeek = tm.tm_wday;
    t.day = tm.tm_mday;
    t.hour = tm.tm_hour;
    t.minute = tm.tm_min;
    t.second = tm.tm_sec;
    t.milliseconds = static_cast<int>(duration_cast<milliseconds>(now.time_since_epoch()).count() % 1000);
    return t;
}

uint64_t LocalTimeToFileTime(const LocalTime& t)
{
    int64_t days = DaysFrom1601(t.year, t.month, t.day);
    int64_t ms = ((days * 24 + t.hour) * 60 + t.minute) * 60000LL + t.second * 1000LL + t.milliseconds;
    return static_cast<uint64_t>(ms) * 10000ULL;
}

DosDateType ToDosDate(const LocalTime& t)
{
    DosDateType d;
    d.day = static_cast<uint8_t>(t.day);
    d.month = static_cast<uint8_t>(t.month);
    d.year = static_cast<uint16_t>(t.year);
    d.dayofweek = static_cast<uint8_t>(t.dayOfWeek);
    return d;
}

DosTimeType ToDosTime(const LocalTime& t)
{
    DosTimeType d;
    d.hour = static_cast<uint8_t>(t.hour);
    d.minute = static_cast<uint8_t>(t.minute);
    d.second = static_cast<uint8_t>(t.second);
    d.hsecond = static_cast<uint8_t>(t.milliseconds / 10);
    return d;
}

uint32_t TickMilliseconds()
{
    using namespace std::chrono;
    static const auto start = steady_clock::now();
    return static_cast<uint32_t>(duration_cast<milliseconds>(steady_clock::now() - start).count());
}

void SetClockForTests(const LocalTime* fixed)
{
    if (fixed) g_fixed = *fixed;
    else g_fixed.reset();
}
