#include "platform/sync.h"

#include <chrono>
#include <mutex>

struct TimedMutex {
    std::timed_mutex lock;
};

TimedMutex* CreateTimedMutex() { return new TimedMutex; }

bool WaitForMutex(TimedMutex* mutex, unsigned milliseconds)
{
    return mutex && mutex->lock.try_lock_for(std::chrono::milliseconds(milliseconds));
}

void ReleaseMutex(TimedMutex* mutex)
{
    if (mutex) mutex->lock.unlock();
}

void CloseMutex(TimedMutex* mutex) { delete mutex; }
