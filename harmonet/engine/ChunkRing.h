#pragma once

#include "harmonet/engine/Alloc.h"

#include <type_traits>
#include <utility>

namespace Quon
{

/// A list of plain entries in a ring of chunks of `chunkSize` entries each.
///
/// Appending does not move existing entries, so a `Place` stays valid while entries are appended. Empty
/// chunks are freed at once; an empty list owns no memory. Not thread-safe.
template<class T, int chunkSize>
class ChunkRing
{
    static_assert(std::is_trivially_copyable_v<T>);

public:
    /// A part of the list: `count` entries, and the links of the ring.
    struct Chunk : Allocated
    {
        /// The ring of chunks; a single one links to itself.
        Chunk* next;
        Chunk* previous;
        /// How many of the entries are in use, from the first on.
        int count;
        T entries[chunkSize];
    };

    ChunkRing() = default;
    ChunkRing(const ChunkRing&) = delete;
    ChunkRing& operator=(const ChunkRing&) = delete;
    ~ChunkRing() { Clear(); }

    /// A position in the list: an entry, or the end.
    class Place
    {
    public:
        /// False after the last entry, where the others must not be called.
        bool IsValid() const { return chunk && index < chunk->count; }
        T& operator*() const { return chunk->entries[index]; }
        T* operator->() const { return &chunk->entries[index]; }

        /// Advances to the next entry. Reads the chunk's count each time, since entries can be appended
        /// meanwhile.
        void MoveOn()
        {
            ++index;
            SettleAtChunkEnd();
        }

    private:
        friend class ChunkRing;

        Place(const ChunkRing& newRing, Chunk* newChunk, int newIndex)
            : ring(&newRing)
            , chunk(newChunk)
            , index(newIndex)
        {
        }

        void SettleAtChunkEnd()
        {
            if (index >= chunk->count && chunk->next != ring->first) {
                chunk = chunk->next;
                index = 0;
            }
        }

        const ChunkRing* ring;
        Chunk* chunk;
        int index;
    };

    /// Whether there is no entry.
    bool IsEmpty() const { return !first; }
    /// The first chunk; null for an empty list.
    Chunk* GetFirst() const { return first; }
    /// The first entry, or the end of an empty list.
    Place GetBegin() const { return Place(*this, first, 0); }

    /// Appends after the last entry, in a new chunk if the last one is full; returns the chunk.
    Chunk* Append(const T& entry)
    {
        if (!first || first->previous->count == chunkSize) {
            AddChunk();
        }
        Chunk* last = first->previous;
        last->entries[last->count++] = entry;
        return last;
    }

    /// Removes the entry; later entries of its chunk move forward. \p place then refers to the next entry.
    void Erase(Place& place)
    {
        Chunk* chunk = place.chunk;
        if (chunk->count == 1) {
            const bool wasLast = chunk->next == first;
            Chunk* following = wasLast ? nullptr : chunk->next;
            RemoveChunk(chunk);
            place.chunk = following;
            place.index = 0;
            return;
        }
        for (int i = place.index; i + 1 < chunk->count; ++i) {
            chunk->entries[i] = chunk->entries[i + 1];
        }
        --chunk->count;
        place.SettleAtChunkEnd();
    }

    /// Removes the entry from its chunk and moves the last entry of the list into its place, so that all
    /// chunks but the last stay full, unless Erase() has been used. The entry must exist. Returns the moved
    /// entry, or null.
    T* EraseUnordered(Chunk* chunk, const T& entry)
    {
        int index = 0;
        while (chunk->entries[index] != entry) {
            ++index;
        }
        Chunk* last = first->previous;
        const bool isLast = chunk == last && index == last->count - 1;
        chunk->entries[index] = last->entries[last->count - 1];
        if (--last->count == 0) {
            RemoveChunk(last);
        }
        return isLast ? nullptr : &chunk->entries[index];
    }

    /// Removes all entries and frees all chunks.
    void Clear()
    {
        while (first) {
            RemoveChunk(first);
        }
    }

private:
    Chunk* AddChunk()
    {
        auto* chunk = new Chunk;
        chunk->count = 0;
        if (!first) {
            first = chunk->next = chunk->previous = chunk;
            return chunk;
        }
        chunk->next = first;
        chunk->previous = first->previous;
        chunk->previous->next = chunk;
        first->previous = chunk;
        return chunk;
    }

    void RemoveChunk(Chunk* chunk)
    {
        if (chunk->next == chunk) {
            first = nullptr;
        }
        else {
            chunk->next->previous = chunk->previous;
            chunk->previous->next = chunk->next;
            if (first == chunk) {
                first = chunk->next;
            }
        }
        delete chunk;
    }

    Chunk* first = nullptr;
};

} // namespace Quon
