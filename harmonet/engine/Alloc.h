#pragma once

#include "harmonet/engine/Export.h"

#include <cstddef>
#include <limits>
#include <new>
#include <string>
#include <vector>

namespace Quon
{

/// The memory of the whole system. Every object and buffer that crosses a library border comes from here, so
/// that the library that frees it need not be the one that made it, and so that a host can count what lives.
/// All of it may be called from any thread.
class HARMONET_ENGINE_API Alloc
{
public:
    /// Gives a block of at least \p bytes bytes, aligned for every fundamental type, with undefined content.
    ///
    /// Never gives null: throws std::bad_alloc when the system has no memory. A size of 0 gives a block too.
    static void* New(unsigned int bytes);

    /// Takes back a block that New() gave. Null is ignored.
    static void Delete(void* block);

    /// How many blocks New() has given that Delete() has not taken back, in all libraries together.
    static std::size_t LiveBlocks();
};

/// Empty base of a class whose objects come from Alloc when they are made with `new`.
///
/// A single object or array of 4 GiB or more is refused with std::bad_alloc. Types that need more than the
/// fundamental alignment cannot be made this way: the operators for them are deleted.
class Allocated
{
public:
    /// The operators of C++, on Alloc.
    static void* operator new(std::size_t bytes) { return Take(bytes); }
    static void* operator new[](std::size_t bytes) { return Take(bytes); }
    static void* operator new(std::size_t, void* place) noexcept { return place; }
    static void operator delete(void* block) { Alloc::Delete(block); }
    static void operator delete[](void* block) { Alloc::Delete(block); }
    static void operator delete(void*, void*) noexcept {}

    static void* operator new(std::size_t, std::align_val_t) = delete;
    static void* operator new[](std::size_t, std::align_val_t) = delete;

private:
    static void* Take(std::size_t bytes)
    {
        if (bytes > std::numeric_limits<unsigned int>::max()) {
            throw std::bad_alloc();
        }
        return Alloc::New(static_cast<unsigned int>(bytes));
    }
};

/// Lets the containers of the standard library take their memory from Alloc.
///
/// A request of 4 GiB or more is refused with std::bad_alloc.
template<class T>
class EngineAllocator
{
public:
    /// What the standard library asks of an allocator.
    using value_type = T;

    /// All allocators are equal and hold nothing.
    EngineAllocator() noexcept = default;
    template<class U>
    EngineAllocator(const EngineAllocator<U>&) noexcept
    {
    }

    /// Room for `count` elements, not constructed. Throws std::bad_alloc.
    T* allocate(std::size_t count)
    {
        static_assert(alignof(T) <= alignof(std::max_align_t), "Alloc gives the fundamental alignment only");
        // NOLINTNEXTLINE(bugprone-sizeof-expression): an element may well be a pointer.
        constexpr std::size_t elementBytes = sizeof(T);
        if (count > std::numeric_limits<unsigned int>::max() / elementBytes) {
            throw std::bad_alloc();
        }
        return static_cast<T*>(Alloc::New(static_cast<unsigned int>(count * elementBytes)));
    }

    /// Takes back a block that allocate() gave.
    void deallocate(T* block, std::size_t) noexcept { Alloc::Delete(block); }

    /// Always true: each can free what another has allocated.
    template<class U>
    bool operator==(const EngineAllocator<U>&) const noexcept
    {
        return true;
    }
};

/// A std::vector on Alloc.
template<class T>
using EngineVector = std::vector<T, EngineAllocator<T>>;

/// A std::string on Alloc.
using EngineString = std::basic_string<char, std::char_traits<char>, EngineAllocator<char>>;

} // namespace Quon
