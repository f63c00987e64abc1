#pragma once

#include "harmonet/Export.h"
#include "harmonet/engine/Alloc.h"
#include "harmonet/voices/ImportanceSort.h"
#include "harmonet/voices/SoundRows.h"

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
    using Entry = ListEntry;

    bool IsEmpty() const { return count == 0; }
    int GetCount() const { return static_cast<int>(count); }
    bool IsInOrder() const { return isInOrder; }

    /// Add a sound that is on no list. `id` is this list's.
    void Append(std::uint32_t row, ListID id);
    /// Inserts before the first sound, from the head, that is not less important: first among equals.
    void InsertSorted(std::uint32_t row, ListID id);
    void Remove(SoundRow row);
    /// Call it before the importance of a sound changes: the list may not be in order afterwards.
    void ForgetOrder();

    /// All entries from the head, including stale ones. Valid until the list changes.
    std::span<const Entry> GetEntries();
    /// The same without stale ones.
    std::span<const Entry> Compact();
    /// Sorts the list: `ranking` is the new order of the entries returned by Compact(), the least important
    /// first. Sounds removed since then are left out; they must not be on another list yet. The sound in row
    /// `first`, if any, moves before its equals.
    void SetOrder(std::span<const ImportanceSort::Item> ranking, std::uint32_t first);

    /// Calls `visit` for every sound, from the head. The list must not change meanwhile.
    template<class Visit>
    void ForEach(Visit visit)
    {
        for (const Entry& entry : GetEntries()) {
            if (!entry.IsStale()) {
                visit(*entry.GetRow().GetSound());
            }
        }
    }

private:
    void Enter(Entry& entry, ListID id);
    void DropStale();
    /// Drops the stale entries if they are more than half, so that the memory depends on the sounds alone.
    void LimitStale();
    void Merge();

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
