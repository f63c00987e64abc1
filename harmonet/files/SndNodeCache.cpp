#include "harmonet/files/SndNodeCache.h"

#include "harmonet/engine/File.h"
#include "harmonet/engine/Messages.h"

#include <algorithm>
#include <cstddef>
#include <functional>
#include <iterator>
#include <limits>
#include <utility>

namespace Quon
{

SndNodeCache::SndNodeCache()
{
    static std::uint32_t lastSerial = 0;
    serial = ++lastSerial;
    sentinel.next = &sentinel;
    sentinel.prev = &sentinel;
}

SndNodeCache::~SndNodeCache()
{
    Clear();
}

void SndNodeCache::SetLimit(unsigned long bytes)
{
    limit = bytes;
    freeBytes = bytes;
}

SndFile* SndNodeCache::OpenSound(const PString& substName, const PString& fileName, int priority)
{
    SndNode* node = Find(substName, fileName);
    SndFile* file = nullptr;
    if (node != nullptr) {
        file = SndFile::OpenFile(node);
        if (file == nullptr) {
            return nullptr;
        }
        const int highest = std::max(node->priority, priority);
        if (node->holdCount == 0) {
            Unlink(node);
            node->priority = highest;
            Insert(node);
        }
        node->priority = highest;
    }
    else {
        file = OpenMiss(substName, fileName, node);
        if (node == nullptr) {
            return file;
        }
        node->priority = priority;
        Enter(node);
        Insert(node);
    }
    ++node->useCount;
    return file;
}

std::unique_ptr<SndNode> SndNodeCache::MakeNode(
    SndFile& file, const PString& substName, const PString& fileName)
{
    auto node = std::make_unique<SndNode>();
    if (runs.capacity() <= nodeCount) {
        runs.reserve(2 * (nodeCount + 1));
    }
    node->format = file;
    node->fileType = file.FileType();
    node->fileName = fileName;
    node->foldedName = File::FoldName(fileName);
    node->substName = substName;
    node->nodeInfo = file.CreateNodeInfo();
    return node;
}

SndFile* SndNodeCache::OpenMiss(const PString& substName, const PString& fileName, SndNode*& node)
{
    std::unique_ptr<SndFile> file(SndFile::OpenFile(substName, fileName));
    if (file == nullptr) {
        return nullptr;
    }
    const unsigned long size = file->Size();
    if (size > freeBytes) {
        EvictBytes(size - freeBytes);
    }
    if (size >= freeBytes) {
        return file.release();
    }
    // Load the data last: if memory runs out before, the reader stays on its file.
    auto made = MakeNode(*file, substName, fileName);
    made->size = size;
    made->data = file->Load();
    if (made->data == nullptr) {
        return file.release();
    }
    node = made.release();
    file->SetCached(node);
    freeBytes -= size;
    return file.release();
}

SndNode* SndNodeCache::Hold(const PString& substName, const PString& fileName)
{
    SndNode* node = Find(substName, fileName);
    if (node == nullptr) {
        const std::unique_ptr<SndFile> file(SndFile::OpenFile(substName, fileName));
        if (file == nullptr) {
            return nullptr;
        }
        auto made = MakeNode(*file, substName, fileName);
        made->data = file->CopyData(made->size);
        if (made->data == nullptr) {
            Report(
                MessageLevel::Error, "sound file '", fileName, "' of owner '", substName, "' cannot be read");
            return nullptr;
        }
        node = made.release();
        Enter(node);
    }
    else if (node->holdCount == 0) {
        Unlink(node);
        freeBytes += node->size;
    }
    ++node->holdCount;
    return node;
}

void SndNodeCache::Release(SndNode* node)
{
    if (--node->holdCount > 0) {
        return;
    }
    // Uses the rule for new data, but drops nothing for it.
    if (node->size < freeBytes) {
        freeBytes -= node->size;
        Insert(node);
    }
    else {
        Drop(node);
    }
}

SndFile* SndNodeCache::OpenHeld(const PString& substName, const PString& fileName)
{
    SndNode* const node = Find(substName, fileName);
    SndFile* const file = node != nullptr && node->holdCount > 0 ? SndFile::OpenFile(node) : nullptr;
    if (file != nullptr) {
        ++node->useCount;
    }
    return file;
}

int SndNodeCache::Evict(int bytes)
{
    const unsigned long freed = EvictBytes(static_cast<unsigned long>(std::max(bytes, 0)));
    return static_cast<int>(std::min<unsigned long>(freed, std::numeric_limits<int>::max()));
}

unsigned long SndNodeCache::EvictBytes(unsigned long bytes)
{
    unsigned long freed = 0;
    SndNode* node = sentinel.next;
    while (node != &sentinel && freed < bytes) {
        SndNode* const following = node->next;
        if (node->useCount < 1) {
            freed += node->size;
            Unlink(node);
            Drop(node);
        }
        node = following;
    }
    freeBytes += freed;
    return freed;
}

void SndNodeCache::Flush()
{
    for (SndNode* const& bucket : buckets) {
        while (bucket != nullptr) {
            if (bucket->holdCount == 0) {
                Unlink(bucket);
            }
            bucket->holdCount = 0;
            Drop(bucket);
        }
    }
    freeBytes = limit;
}

void SndNodeCache::Clear()
{
    Flush();
    SetLimit(0);
}

SndNode*& SndNodeCache::BucketOf(const PString& substName, const PString& foldedName)
{
    constexpr std::size_t spread = 31;
    const std::hash<PString> hash;
    // The identities are addresses, whose lowest bits are all equal.
    const std::size_t mixed = (hash(foldedName) * spread + hash(substName)) / alignof(std::max_align_t);
    return buckets[(mixed ^ mixed / bucketCount) % bucketCount];
}

SndNode* SndNodeCache::Find(const PString& substName, const PString& fileName)
{
    const PString foldedName = File::FoldName(fileName);
    SndNode* node = BucketOf(substName, foldedName);
    while (node != nullptr && !(node->foldedName == foldedName && node->substName == substName)) {
        node = node->nextInBucket;
    }
    return node;
}

void SndNodeCache::Enter(SndNode* node)
{
    SndNode*& bucket = BucketOf(node->substName, node->foldedName);
    node->nextInBucket = bucket;
    bucket = node;
    node->cached = true;
    ++nodeCount;
}

void SndNodeCache::Leave(SndNode* node)
{
    SndNode** link = &BucketOf(node->substName, node->foldedName);
    while (*link != node) {
        link = &(*link)->nextInBucket;
    }
    *link = std::exchange(node->nextInBucket, nullptr);
    node->cached = false;
    --nodeCount;
}

// Data in use are deleted when their last reader closes.
void SndNodeCache::Drop(SndNode* node)
{
    Leave(node);
    if (node->useCount < 1) {
        delete node;
    }
}

// The first run of that priority or a higher one.
EngineVector<SndNodeCache::Run>::iterator SndNodeCache::FindRun(int priority)
{
    return std::ranges::lower_bound(runs, priority, {}, &Run::priority);
}

// After the last node of no higher priority.
void SndNodeCache::Insert(SndNode* node)
{
    auto run = FindRun(node->priority);
    if (run == runs.end() || run->priority != node->priority) {
        run = runs.insert(run, {node->priority, run != runs.begin() ? std::prev(run)->last : &sentinel});
    }
    SndNode* const place = std::exchange(run->last, node);
    node->prev = place;
    node->next = place->next;
    node->next->prev = node;
    place->next = node;
    ++count;
}

void SndNodeCache::Unlink(SndNode* node)
{
    const auto run = FindRun(node->priority);
    if (run->last == node) {
        run->last = node->prev;
        const bool isAlone = node->prev == &sentinel || node->prev->priority != node->priority;
        if (isAlone) {
            runs.erase(run);
        }
    }
    node->prev->next = node->next;
    node->next->prev = node->prev;
    node->next = nullptr;
    node->prev = nullptr;
    --count;
}

} // namespace Quon
