#pragma once

#include "harmonet/engine/Alloc.h"
#include "harmonet/engine/PString.h"
#include "harmonet/files/SndNode.h"

namespace Quon
{

/// Keeps the coded bytes of recently played files in memory, up to a budget in bytes, so that playing a sound
/// again touches no disk and parses no header. The kernel owns one. Task thread only.
///
/// The list is in order of priority, and of last use among equals; its head is the first to be dropped.
class SndNodeCache : public Allocated
{
public:
    SndNodeCache();
    SndNodeCache(const SndNodeCache&) = delete;
    SndNodeCache& operator=(const SndNodeCache&) = delete;
    /// As Clear().
    ~SndNodeCache();

    /// The budget. For an empty cache.
    void SetLimit(unsigned long bytes);
    /// A new reader of that file, which the caller owns: on the cached bytes if they are there or fit the
    /// budget, else on the file. Null if the file cannot be opened.
    SndFile* OpenSound(const PString& substName, const PString& fileName, int priority);
    /// Drops idle data, the least important first, until at least `bytes` are free or none is left; returns
    /// the bytes freed.
    int Evict(int bytes);
    /// Drops everything. Data in use leave the list at once and live until their last reader closes.
    void Flush();
    /// Flush(), and no budget any more.
    void Clear();

    int GetCount() const { return count; }
    unsigned long GetFreeBytes() const { return freeBytes; }
    unsigned long GetLimit() const { return limit; }

private:
    SndNode* Find(const PString& substName, const PString& fileName);
    void Insert(SndNode* node);
    void Unlink(SndNode* node);
    SndFile* OpenMiss(const PString& substName, const PString& fileName, SndNode*& node);
    unsigned long EvictBytes(unsigned long bytes);

    SndNode sentinel; ///< Head of the circular list: links to itself when the cache is empty.
    int count = 0;
    unsigned long limit = 0;
    unsigned long freeBytes = 0;
};

} // namespace Quon
