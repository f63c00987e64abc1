#pragma once

#include "harmonet/Export.h"
#include "harmonet/engine/Alloc.h"
#include "harmonet/kernel/SoundRows.h"

#include <cstdint>
#include <span>

namespace Quon
{

/// A list of sounds sorted by importance, the least important first: an array of row numbers. The list does
/// not own its sounds. Task thread only.
///
/// Removing a sound only clears its serial, which marks the remaining entry as stale. While the list is in
/// order, added sounds are collected and merged when the order is requested. The sort keys can change between
/// sorts; the kernel reports it with ForgetOrder().
class HARMONET_INTERNAL_API SndList
{
public:
    struct Entry
    {
        std::uint32_t row;
        std::uint32_t serial;

        SoundRow& GetRow() const { return SoundRows::At(row); }
        bool IsStale() const { return GetRow().serial != serial; }
    };

    bool IsEmpty() const { return count == 0; }
    int GetCount() const { return static_cast<int>(count); }
    bool IsInOrder() const { return isInOrder; }

    /// Add a sound that is on no list. `id` is this list's.
    void Append(std::uint32_t row, ListID id);
    /// Inserts before the first sound, from the head, that is not less important: first among equals.
    void InsertSorted(std::uint32_t row, ListID id);
    void Remove(SoundRow& row);
    /// Call it before the importance of a sound changes: the list may not be in order afterwards.
    void ForgetOrder();

    /// All entries from the head, including stale ones. Valid until the list changes.
    std::span<const Entry> GetEntries();
    /// The same without stale ones; calls `visit` for the row of each.
    template<class Visit>
    std::span<Entry> Compact(Visit visit)
    {
        Merge();
        auto end = order.begin();
        for (const Entry& entry : order) {
            if (const SoundRow& row = entry.GetRow(); row.serial == entry.serial) {
                *end++ = entry;
                visit(row);
            }
        }
        order.erase(end, order.end());
        return order;
    }
    std::span<Entry> Compact();
    /// Records that the entries returned by Compact() have been sorted.
    void SetInOrder() { isInOrder = true; }

    /// Calls `visit` for every sound, from the head. The list must not change meanwhile.
    template<class Visit>
    void ForEach(Visit visit)
    {
        for (const Entry& entry : GetEntries()) {
            if (!entry.IsStale()) {
                visit(*entry.GetRow().sound);
            }
        }
    }

private:
    Entry Enter(std::uint32_t row, ListID id);
    void DropStale();
    void DropStaleAdded();
    template<class T>
    static void MakeRoom(EngineVector<T>& entries);
    void Merge();
    std::size_t FindPlace(std::size_t end, std::uint64_t key) const;

    EngineVector<Entry> order;
    struct Added
    {
        std::uint64_t key;
        Entry entry;
    };
    /// Sorted insertions into a list in order. They are merged before any key changes.
    EngineVector<Added> added;
    std::size_t count = 0;
    bool isInOrder = true;
    static std::uint32_t lastSerial;
};

} // namespace Quon
