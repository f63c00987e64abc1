#pragma once

#include "harmonet/Export.h"
#include "harmonet/engine/Alloc.h"
#include "harmonet/engine/PString.h"
#include "harmonet/files/SndNode.h"

#include <array>
#include <cstdint>
#include <memory>

namespace Quon
{

/// Keeps the coded bytes of recently played files in memory, up to a budget in bytes, so that playing a sound
/// again neither accesses the disk nor parses a header. The kernel owns one. Task thread only.
///
/// The list is sorted by priority, and by last use among equals; its head is dropped first. Held data are on
/// no list and do not count towards the budget. An index finds data by name.
class HARMONET_INTERNAL_API SndNodeCache : public Allocated
{
public:
    SndNodeCache();
    SndNodeCache(const SndNodeCache&) = delete;
    SndNodeCache& operator=(const SndNodeCache&) = delete;
    /// Same as Clear().
    ~SndNodeCache();

    /// Sets the budget. The cache must be empty.
    void SetLimit(unsigned long bytes);
    /// Returns a new reader of that file, which the caller owns: on the cached bytes if they exist or fit the
    /// budget, otherwise on the file. Null if the file cannot be opened.
    SndFile* OpenSound(const PString& substName, const PString& fileName, int priority);
    /// Loads a file, unless it is already cached, and holds it until Release(): its data are not dropped and
    /// do not count towards the budget. Holds are counted. Returns null if it cannot be opened or read.
    SndNode* Hold(const PString& substName, const PString& fileName);
    /// Ends a hold. After the last one the data become idle, or are dropped if they do not fit the budget.
    void Release(SndNode* node);
    /// Returns a new reader of a held file, which the caller owns; null for any other file.
    SndFile* OpenHeld(const PString& substName, const PString& fileName);

    /// Drops idle data, the least important first, until at least `bytes` are free or none is left; returns
    /// the bytes freed.
    int Evict(int bytes);
    /// Drops everything, held or not. Data in use are removed from the cache at once and exist until their
    /// last reader closes.
    void Flush();
    /// Calls Flush() and sets the budget to 0.
    void Clear();

    /// Identifies this cache among all that have existed in the process.
    std::uint32_t GetSerial() const { return serial; }
    /// Number of files on the list.
    int GetCount() const { return count; }
    unsigned long GetFreeBytes() const { return freeBytes; }
    unsigned long GetLimit() const { return limit; }

private:
    static constexpr std::size_t bucketCount = 1024;

    SndNode*& BucketOf(const PString& substName, const PString& foldedName);
    SndNode* Find(const PString& substName, const PString& fileName);
    /// Add data to the index and remove them.
    void Enter(SndNode* node);
    void Leave(SndNode* node);
    /// Removes data from the cache permanently.
    void Drop(SndNode* node);
    void Insert(SndNode* node);
    void Unlink(SndNode* node);
    std::unique_ptr<SndNode> MakeNode(SndFile& file, const PString& substName, const PString& fileName);
    SndFile* OpenMiss(const PString& substName, const PString& fileName, SndNode*& node);
    unsigned long EvictBytes(unsigned long bytes);

    /// Where the nodes of one priority end on the list.
    struct Run
    {
        int priority;
        SndNode* last;
    };
    EngineVector<Run>::iterator FindRun(int priority);

    SndNode sentinel; ///< Head of the circular list: links to itself when the cache is empty.
    std::array<SndNode*, bucketCount> buckets{}; ///< The index: chains by names.
    EngineVector<Run> runs; ///< In order of priority. Has room for all nodes, so that Insert() cannot fail.
    std::size_t nodeCount = 0; ///< Held ones included.
    std::uint32_t serial;
    int count = 0;
    unsigned long limit = 0;
    unsigned long freeBytes = 0;
};

} // namespace Quon
