#pragma once

#include "harmonet/engine/SyncObject.h"

#include <thread>

namespace Quon
{

/// Whether another thread gets the lock at once; it gives it back.
inline bool IsFreeForAnotherThread(SyncObject& lock)
{
    bool isFree = false;
    std::thread([&] {
        isFree = lock.Lock(0);
        if (isFree) {
            lock.Unlock();
        }
    }).join();
    return isFree;
}

} // namespace Quon
