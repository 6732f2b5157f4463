#include "host/trace.h"
#include "host/errors.h"
#include "host/globals.h"
#include "host/log.h"
#include "host/text.h"
#include "platform/platform_table.h"
#include "store/data_list.h"

#include <cstdarg>
#include <cstdio>

namespace {

bool g_boxOpen = false;

} // namespace

int Trace(int level, void*, const char* text, const char* caption, uint32_t flags)
{
    if (level == 0) return 0;
    if (DebugMode) Log("%s\n", text ? text : "");
    if (level != 1) return 0;
    g_boxOpen = true;
    int answer = PlatformMessageBox(text, caption, flags);
    g_boxOpen = false;
    return answer;
}

void TraceEntry(const char* format, ...)
{
    char text[512];
    va_list args;
    va_start(args, format);
    FormatInto(text, sizeof text, format, args);
    va_end(args);
    Trace(2, nullptr, text, kTraceCaption, kTraceFlags);
}

bool TraceBoxOpen() { return g_boxOpen; }

ImageHeaderType* RequireCurrentImage()
{
    if (!CurrentItem) Error(ERR_NO_IMAGES);
    return CurrentItem;
}

ImageHeaderType* RequireCurrentSpectrum()
{
    if (!CurrentItem) Error(ERR_NO_SPECTRA);
    return CurrentItem;
}
