#include "host/log.h"
#include "host/globals.h"
#include "host/revision.h"
#include "host/text.h"
#include "platform/clock.h"
#include "platform/file_lock.h"
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

// This process's share of the log, held from dl_InitLogFileName until the process ends.
FileLock g_hold;

// Writes the pieces of one line: each is cut to the 512-byte buffer and shown to the observer,
// and all of them go to the file, every LF turned into CR LF, in one append. Since a line is one
// write on a descriptor opened for appending, the lines of processes that share the log never
// mix; and since the file is opened for each line, the log survives a crash of the host.
void AppendToLog(const char* const* pieces, size_t count)
{
    std::string out;
    out.reserve(count * 520);
    for (size_t i = 0; i < count; ++i) {
        char buffer[512];
        std::snprintf(buffer, sizeof buffer, "%s", pieces[i]);
        if (g_observer) g_observer(buffer, g_observerContext);
        for (const char* p = buffer; *p; ++p) {
            if (*p == '\n') out += '\r';
            out += *p;
        }
    }
    if (g_logFileName.empty()) return;
    FileAppend(g_logFileName, out.data(), out.size());   // a log that cannot be opened is skipped
}

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
    const char* pieces[] = {prefix, text};
    AppendToLog(pieces, 2);
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

std::string LogLockFileName(const std::string& logFile) { return logFile + ".lock"; }

void InitLogFileName()
{
    CloseLockFile(&g_hold);
    g_logFileName = DefaultLogFileName();
    if (!OpenLockFile(&g_hold, LogLockFileName(g_logFileName))) {
        RemoveFile(g_logFileName);   // no lock to be had: nobody can be sharing this log
        return;
    }
    if (TakeFileLock(&g_hold, LockKind::Exclusive, false)) {
        // Nobody else holds the log: this run starts it afresh, then shares it.
        RemoveFile(g_logFileName);
        TakeFileLock(&g_hold, LockKind::Shared, true);
    } else {
        // Another process writes to it: append. (This waits only while a process that is
        // starting alone clears the log.)
        TakeFileLock(&g_hold, LockKind::Shared, true);
    }
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
    const char* pieces[] = {text};
    AppendToLog(pieces, 1);
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
    CloseLockFile(&g_hold);
    CloseLogMutex();
    g_logFileName.clear();
}
