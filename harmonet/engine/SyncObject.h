#pragma once

#include "harmonet/engine/Alloc.h"

#include <mutex>

namespace Quon
{

/// Locks between the task thread and a driver's thread. Each is a member of what it guards and dies with it.
/// Both kinds are re-entrant: the thread that holds one may lock it again and unlocks it as often. The names
/// are labels without an effect, and null will do.
class HARMONET_ENGINE_API SyncObject : public Allocated
{
public:
    SyncObject() = default;
    SyncObject(const SyncObject&) = delete;
    SyncObject& operator=(const SyncObject&) = delete;

    /// Waits at most \p timeoutMs milliseconds for the lock, without limit if it is negative; 0 only tries.
    /// False if the time is up. Does not allocate.
    virtual bool Lock(int timeoutMs) = 0;

    /// Gives the lock back. Only the thread that holds it may call this.
    virtual void Unlock() = 0;

    virtual ~SyncObject();
};

/// The lock of one object within the process.
class HARMONET_ENGINE_API CriticalSection : public SyncObject
{
public:
    /// Not locked. The name is a label without an effect.
    explicit CriticalSection(const char* name);
    ~CriticalSection() override;

    bool Lock(int timeoutMs) override;
    void Unlock() override;

private:
    std::recursive_timed_mutex mutex;
};

/// Works as CriticalSection; it can also begin in the hands of the thread that makes it. It is not shared
/// between processes.
class HARMONET_ENGINE_API Mutex : public SyncObject
{
public:
    /// Locked by the calling thread if `owned`.
    Mutex(bool owned, const char* name);
    ~Mutex() override;

    bool Lock(int timeoutMs) override;
    void Unlock() override;

private:
    std::recursive_timed_mutex mutex;
};

/// Holds a lock, without limit of waiting, for as long as it lives.
class SyncLock
{
public:
    /// Waits for the lock.
    explicit SyncLock(SyncObject& newObject)
        : object(newObject)
    {
        object.Lock(-1);
    }
    ~SyncLock() { object.Unlock(); }
    SyncLock(const SyncLock&) = delete;
    SyncLock& operator=(const SyncLock&) = delete;

private:
    SyncObject& object;
};

} // namespace Quon
