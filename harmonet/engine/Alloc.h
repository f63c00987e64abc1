#pragma once

#include "harmonet/engine/Export.h"

#include <cstddef>
#include <limits>
#include <new>
#include <string>
#include <vector>

namespace Quon
{

/// The memory allocator of the whole system. Every object and buffer that crosses a library boundary is
/// allocated here, so that one library can free what another has allocated, and so that a host can count live
/// blocks. All functions are thread-safe.
class HARMONET_ENGINE_API Alloc
{
public:
    /// Returns a block of at least \p bytes bytes, aligned for every fundamental type, with undefined
    /// content.
    ///
    /// Never returns null: throws std::bad_alloc when the system is out of memory. A size of 0 also returns a
    /// block.
    static void* New(unsigned int bytes);

    /// Frees a block returned by New(). Null is ignored.
    static void Delete(void* block);

    /// Returns the number of blocks, in all libraries together, that New() has returned and Delete() has not
    /// freed.
    static std::size_t LiveBlocks();
};

/// Empty base class that makes `new` allocate the objects of a class with Alloc.
///
/// A single object or array of 4 GiB or more throws std::bad_alloc. Over-aligned types are not supported: the
/// operators for them are deleted.
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

/// An allocator for standard containers that uses Alloc.
///
/// A request of 4 GiB or more throws std::bad_alloc.
template<class T>
class EngineAllocator
{
public:
    /// The members that the standard library requires of an allocator.
    using value_type = T;

    /// All allocators are equal and have no state.
    EngineAllocator() noexcept = default;
    template<class U>
    EngineAllocator(const EngineAllocator<U>&) noexcept
    {
    }

    /// Returns uninitialised memory for `count` elements. Throws std::bad_alloc.
    T* allocate(std::size_t count)
    {
        static_assert(alignof(T) <= alignof(std::max_align_t), "Alloc provides fundamental alignment only");
        // NOLINTNEXTLINE(bugprone-sizeof-expression): an element may be a pointer.
        constexpr std::size_t elementBytes = sizeof(T);
        if (count > std::numeric_limits<unsigned int>::max() / elementBytes) {
            throw std::bad_alloc();
        }
        return static_cast<T*>(Alloc::New(static_cast<unsigned int>(count * elementBytes)));
    }

    /// Frees a block that allocate() returned.
    void deallocate(T* block, std::size_t) noexcept { Alloc::Delete(block); }

    /// Always true: each can free the blocks of any other.
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
