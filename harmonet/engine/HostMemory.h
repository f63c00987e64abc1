#pragma once

#include "harmonet/engine/Export.h"

#include <cstddef>

namespace Quon
{

/// Lets a host bring the memory of the whole system: all that Alloc gives out comes from here.
///
/// When there is no memory, Alloc throws std::bad_alloc, and the operations of the engine let it pass and
/// leave everything as it was. The sound library catches it where an operation can answer false, null or 0.
class HARMONET_ENGINE_API HostMemory
{
public:
    /// Gives that many bytes, at least 1, aligned for every fundamental type, or null if there are none.
    using TakeFunction = void* (*)(std::size_t bytes);
    /// Takes back what the function above gave; never null.
    using GiveFunction = void (*)(void* block);

    /// Takes all memory from these functions instead of malloc() and free(); a null goes back to those. The
    /// functions may be called from any thread. A block goes back through the functions of the moment: set
    /// them before anything else of the system is used, and while no other thread uses it.
    static void SetFunctions(TakeFunction take, GiveFunction give);
};

} // namespace Quon
