// Entry points: errors and the log. These do not trace: their whole work is writing the log.
#include "tavrin/dl_host.h"
#include "host/errors.h"
#include "host/log.h"
#include "host/text.h"
#include "platform/paths.h"
#include "platform/platform_table.h"

#include <cstdarg>
#include <cstdio>

TAVRIN_API void dl_Error(uint32_t number, ...)
{
    va_list args;
    va_start(args, number);
    VError(number, args);
    va_end(args);
}

TAVRIN_API void dl_Log2Disk(const char* format, ...)
{
    va_list args;
    va_start(args, format);
    VLog2Disk(format, args);
    va_end(args);
}

TAVRIN_API void dl_InitLogFileName(void)
{
    InitLogFileName();
}

TAVRIN_API void dl_GetDataLogFileName(char* path)
{
    if (path) std::snprintf(path, 260, "%s%s", TavrinHomeDir().c_str(), "tavrin_datalist.dat");
}

TAVRIN_API void dl_OutputDebugString(const char* format, ...)
{
    char text[512];
    va_list args;
    va_start(args, format);
    FormatInto(text, sizeof text, format, args);
    va_end(args);
    PlatformDebugOutput(text);
}
