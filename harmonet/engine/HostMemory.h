#pragma once

#include "harmonet/engine/Export.h"

#include <cstddef>

namespace Quon
{

/// Lets a host provide the memory of the whole system: Alloc takes all of its memory from here.
///
/// When memory runs out, Alloc throws std::bad_alloc. The engine's operations propagate it and leave the
/// state unchanged. The sound library catches it wherever an operation can return false, null or 0.
class HARMONET_ENGINE_API HostMemory
{
public:
    /// Returns a block of \p bytes bytes, at least 1, aligned for every fundamental type, or null if memory
    /// runs out.
    using TakeFunction = void* (*)(std::size_t bytes);
    /// Frees a block returned by the function above; never null.
    using GiveFunction = void (*)(void* block);

    /// Allocates all memory with these functions instead of malloc() and free(); null restores those. The
    /// functions must be thread-safe. A block is freed with the functions set at that time: set them before
    /// anything else of the system is used, and while no other thread uses it.
    static void SetFunctions(TakeFunction take, GiveFunction give);
};

} // namespace Quon
