#include "host/log.h"
#include "host/globals.h"
#include "host/revision.h"
#include "host/text.h"
#include "platform/clock.h"
#include "platform/files.h"
#include "platform/paths.h"
#include "platform/sync.h"

#include <cstdio>
#include <cstring>

namespace {

std::string g_logFileName;
TimedMutex* g_logMutex = nullptr;
LogObserver g_observer = nullptr;
void* g_observerContext = nullptr;

constexpr unsigned kLogMutexWaitMs = 1000;

} // namespace

void VLog2Disk(const char* format, va_list args)
{
    LocalTime t = GetLocalTime();
    char prefix[64];
    if (DebugMode || MoreMode)
        std::snprintf(prefix, sizeof prefix, "Ver%d. %02d:%02d:%02d.%03d)>  ", kScanningSubRevision, t.hour,
                      t.minute, t.second, t.milliseconds);
    else
        std::snprintf(prefix, sizeof prefix, "%02d:%02d:%02d.%03d>  ", t.hour, t.minute, t.second, t.milliseconds);
    char text[512];
    FormatInto(text, sizeof text, format, args);
    WriteLogText(prefix);
    WriteLogText(text);
}

void Log2Disk(const char* format, ...)
{
    va_list args;
    va_start(args, format);
    VLog2Disk(format, args);
    va_end(args);
}

std::string DefaultLogFileName()
{
    char name[600];
    std::snprintf(name, sizeof name, "%sTavrinProc%s%s%s.%s", TavrinHomeDir().c_str(), kProcessingRevision, "", "",
                  "log");
    return name;
}

void InitLogFileName()
{
    g_logFileName = DefaultLogFileName();
    RemoveFile(g_logFileName);
}

const std::string& LogFileName() { return g_logFileName; }
void SetLogFileName(const std::string& name) { g_logFileName = name; }

void CreateLogMutex()
{
    if (!g_logMutex) g_logMutex = CreateTimedMutex();
}

void CloseLogMutex()
{
    CloseMutex(g_logMutex);
    g_logMutex = nullptr;
}

void SetLogObserver(LogObserver observer, void* context)
{
    g_observer = observer;
    g_observerContext = context;
}

void WriteLogText(const char* text)
{
    if (!text) return;
    char buffer[512];
    std::snprintf(buffer, sizeof buffer, "%s", text);
    if (g_observer) g_observer(buffer, g_observerContext);
    if (g_logFileName.empty()) return;
    FileHandle f = FileOpen(g_logFileName, FileMode::Write);
    if (f == kInvalidFile) {
        f = FileCreate(g_logFileName);
        if (f == kInvalidFile) return;   // a log that cannot be opened is silently skipped
    }
    FileSeek(f, 0, FileOrigin::End);
    std::string out;
    out.reserve(sizeof buffer + 16);
    for (const char* p = buffer; *p; ++p) {
        if (*p == '\n') out += '\r';
        out += *p;
    }
    FileWrite(f, out.data(), out.size());
    FileClose(f);
}

void VLog(const char* format, va_list args)
{
    if (!WaitForMutex(g_logMutex, kLogMutexWaitMs)) return;
    char text[512];
    FormatInto(text, sizeof text, format, args);
    Log2Disk("%s", text);
    ReleaseMutex(g_logMutex);
}

void Log(const char* format, ...)
{
    va_list args;
    va_start(args, format);
    VLog(format, args);
    va_end(args);
}

void LogRaw(const char* format, ...)
{
    char text[512];
    va_list args;
    va_start(args, format);
    FormatInto(text, sizeof text, format, args);
    va_end(args);
    WriteLogText(text);
}

void ResetLogState()
{
    CloseLogMutex();
    g_logFileName.clear();
}
