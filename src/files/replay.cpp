#include "files/replay.h"
#include "display/vfs.h"
#include "files/file_names.h"
#include "files/tiff_read.h"
#include "host/errors.h"
#include "host/prompts.h"
#include "host/text.h"
#include "platform/paths.h"
#include "store/data_list.h"
#include "store/data_list_display.h"

#include <cctype>
#include <cstdio>
#include <cstdlib>
#include <cstring>

FileSeriesType FileSeries{};

namespace {

int g_replayCount = 0;

bool EndsInDigits(const char* text, size_t count)
{
    const size_t length = std::strlen(text);
    if (length < count) return false;
    for (size_t i = length - count; i < length; ++i)
        if (!std::isdigit(static_cast<unsigned char>(text[i]))) return false;
    return true;
}

// Base without its digits: the length of the prefix.
size_t PrefixLength()
{
    const size_t length = std::strlen(FileSeries.Base);
    const size_t digits = static_cast<size_t>(FileSeries.Digits);
    return length >= digits ? length - digits : 0;
}

// The prefix of Base followed by `number` in the series' width, into `out`.
void NumberedName(char* out, size_t size, long long number)
{
    const int prefix = static_cast<int>(PrefixLength());
    if (FileSeries.Digits == 2) {
        std::snprintf(out, size, "%.*s%02lld", prefix, FileSeries.Base, number);
    } else {
        std::snprintf(out, size, "%.*s%010lld", prefix, FileSeries.Base, number);
    }
}

void MakeName()
{
    strncpy0(FileSeries.Name, FileSeries.Base, sizeof FileSeries.Name);
    strncat0(FileSeries.Name, ".tif", sizeof FileSeries.Name);
}

} // namespace

void ParseSeriesName(const char* path)
{
    char name[sizeof FileSeries.Base];
    strncpy0(name, path, sizeof name);
    if (char* extension = const_cast<char*>(GetExtension(name))) *extension = '\0';
    FileSeries.Reserved = 0;
    if (EndsInDigits(name, 10)) {
        FileSeries.Digits = 10;
        name[std::strlen(name) - 10] = '\0';
    } else if (EndsInDigits(name, 2)) {
        FileSeries.Digits = 2;
        name[std::strlen(name) - 2] = '\0';
    } else {
        FileSeries.Digits = 10;
    }
    // The base keeps room for its digits: a name too long for them loses its end.
    const size_t room = sizeof FileSeries.Base - 1 - static_cast<size_t>(FileSeries.Digits);
    if (std::strlen(name) > room) name[room] = '\0';
    strncpy0(FileSeries.Base, name, sizeof FileSeries.Base);
    strncat0(FileSeries.Base, FileSeries.Digits == 2 ? "00" : "0000000000", sizeof FileSeries.Base);
    MakeName();
}

const char* NextSeriesName()
{
    if (FileSeries.Digits != 2 && FileSeries.Digits != 10) {
        ProgramError("NextSeriesName %d", FileSeries.Digits);
        return FileSeries.Name;
    }
    const long long number = std::atoll(FileSeries.Base + PrefixLength()) + 1;
    char next[sizeof FileSeries.Base];
    NumberedName(next, sizeof next, number);
    strncpy0(FileSeries.Base, next, sizeof FileSeries.Base);
    MakeName();
    return FileSeries.Name;
}

const char* SeriesFileName(int index)
{
    if (FileSeries.Digits != 2 && FileSeries.Digits != 10) {
        ProgramError("SeriesFileName %d", FileSeries.Digits);
        FileSeries.Name[0] = '\0';
        return FileSeries.Name;
    }
    char name[sizeof FileSeries.Name];
    NumberedName(name, sizeof name, index);
    strncpy0(FileSeries.Name, name, sizeof FileSeries.Name);
    strncat0(FileSeries.Name, ".tif", sizeof FileSeries.Name);
    return FileSeries.Name;
}

int ReplayInitialise(const char* path)
{
    ClearDisplay();
    ParseSeriesName(path ? path : "");
    // Two digits count to 99 at most; ten digits as far as an int goes.
    const long long last = FileSeries.Digits == 2 ? 99 : 2147483646;
    int count = 0;
    while (count <= last && PathIsRegularFile(SeriesFileName(count))) ++count;
    g_replayCount = count;
    if (count == 0) Error(ERR_REPLAY_PATH);
    return count;
}

uint64_t ReplayDisplay(int index)
{
    FSState.CursorX = 0;
    FSState.CursorY = 0;
    if (index < 0 || index >= g_replayCount) return 0;
    ImageHeaderType* before = CurrentItem;
    ReplayFlag = true;
    const int failed = LoadImageFile(SeriesFileName(index), 1, 0, 0);
    ReplayFlag = false;
    if (failed) return 0;
    ImageHeaderType* item = CurrentItem;
    const uint64_t created = item->CreatedFileTime;
    EraseItem(item);
    if (before && IsInList(before)) CurrentItem = before;
    return created;
}

void ResetReplayState()
{
    FileSeries = FileSeriesType{};
    g_replayCount = 0;
}
