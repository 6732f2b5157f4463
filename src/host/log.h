// The command log: one text file, one time-stamped line per event, reopened for each line so
// that it survives a crash of the host. Lines end in CR LF. Each line is one append, so the
// lines of processes sharing the log never mix.
#pragma once

#include <cstdarg>
#include <string>


// One time-stamped line, under the log mutex (waits up to 1000 ms, else drops the line).
void Log(const char* format, ...) __attribute__((format(printf, 1, 2)));
void VLog(const char* format, va_list args);
// Text only, no time stamp, no mutex.
void LogRaw(const char* format, ...) __attribute__((format(printf, 1, 2)));
// The raw writer: opens the log, appends the text with each LF turned into CR LF in one write,
// closes.
void WriteLogText(const char* text);

// The name of the log file; set by dl_InitLogFileName.
const std::string& LogFileName();
void SetLogFileName(const std::string& name);

// The log mutex, created by the start-up and closed by dl_Finish.
void CreateLogMutex();
void CloseLogMutex();

// For the command-line host's -v and for tests: every text written to the log is also passed
// to this observer (null: none).
using LogObserver = void (*)(const char* text, void* context);
void SetLogObserver(LogObserver observer, void* context);

void ResetLogState();

// The time stamp and the text, no mutex.
void Log2Disk(const char* format, ...) __attribute__((format(printf, 1, 2)));
void VLog2Disk(const char* format, va_list args);

// "<home>TavrinProc310.log": the log of this revision.
std::string DefaultLogFileName();
// Sets the log file name to the default. Several processes may share one log: each holds a
// shared lock on the log's lock file from here until it ends. A process that finds nobody else
// holding it deletes the log and so starts it afresh; one that starts while others run appends.
void InitLogFileName();
// The lock file of a log: its name with ".lock".
std::string LogLockFileName(const std::string& logFile);
