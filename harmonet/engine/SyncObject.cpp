#include "harmonet/engine/SyncObject.h"

#include <chrono>

namespace Quon
{

namespace
{

bool LockWithin(std::recursive_timed_mutex& mutex, int timeoutMs)
{
    if (timeoutMs < 0) {
        mutex.lock();
        return true;
    }
    return timeoutMs == 0 ? mutex.try_lock() : mutex.try_lock_for(std::chrono::milliseconds(timeoutMs));
}

} // namespace

SyncObject::~SyncObject() = default;

CriticalSection::CriticalSection(const char*) {}

CriticalSection::~CriticalSection() = default;

bool CriticalSection::Lock(int timeoutMs)
{
    return LockWithin(mutex, timeoutMs);
}

void CriticalSection::Unlock()
{
    mutex.unlock();
}

Mutex::Mutex(bool owned, const char*)
{
    if (owned) {
        mutex.lock();
    }
}

Mutex::~Mutex() = default;

bool Mutex::Lock(int timeoutMs)
{
    return LockWithin(mutex, timeoutMs);
}

void Mutex::Unlock()
{
    mutex.unlock();
}

} // namespace Quon
