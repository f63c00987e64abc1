#pragma once

#include "harmonet/engine/Alloc.h"

#include <mutex>

namespace Quon
{

/// Locks between the task thread and a driver's thread. Each is a member of the object that it guards. Both
/// types are recursive: the thread that holds one may lock it again and must unlock it as often. The names
/// are labels without effect and may be null.
class HARMONET_ENGINE_API SyncObject : public Allocated
{
public:
    SyncObject() = default;
    SyncObject(const SyncObject&) = delete;
    SyncObject& operator=(const SyncObject&) = delete;

    /// Waits at most \p timeoutMs milliseconds for the lock, indefinitely if it is negative; 0 only tries.
    /// Returns false on timeout. Does not allocate.
    virtual bool Lock(int timeoutMs) = 0;

    /// Releases the lock. Only the thread that holds it may call this.
    virtual void Unlock() = 0;

    virtual ~SyncObject();
};

/// A lock within one process.
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

/// Same as CriticalSection, but the creating thread can own it initially. It is not shared between processes.
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

/// Holds a lock during its lifetime; the constructor waits without a limit.
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
