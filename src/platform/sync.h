// The one lock of the library: the timed mutex of the log.
#pragma once

struct TimedMutex;

TimedMutex* CreateTimedMutex();
// True when taken within `milliseconds`.
bool WaitForMutex(TimedMutex* mutex, unsigned milliseconds);
void ReleaseMutex(TimedMutex* mutex);
void CloseMutex(TimedMutex* mutex);
