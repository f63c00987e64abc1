#include "harmonet/files/SndNodeCache.h"

#include "harmonet/engine/File.h"

#include <algorithm>
#include <limits>
#include <memory>

namespace Quon
{

SndNodeCache::SndNodeCache()
{
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
        Unlink(node);
        node->priority = std::max(node->priority, priority);
    }
    else {
        file = OpenMiss(substName, fileName, node);
        if (node == nullptr) {
            return file;
        }
        node->priority = priority;
    }
    ++node->useCount;
    Insert(node);
    return file;
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
    // The data come last: what can fail for want of memory leaves the reader on its file.
    auto made = std::make_unique<SndNode>();
    made->format = *file;
    made->fileType = file->FileType();
    made->fileName = fileName;
    made->foldedName = File::FoldName(fileName);
    made->substName = substName;
    made->nodeInfo = file->CreateNodeInfo();
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
            delete node;
        }
        node = following;
    }
    freeBytes += freed;
    return freed;
}

void SndNodeCache::Flush()
{
    SndNode* node = sentinel.next;
    while (node != &sentinel) {
        SndNode* const following = node->next;
        Unlink(node);
        if (node->useCount < 1) {
            delete node;
        }
        node = following;
    }
    freeBytes = limit;
}

void SndNodeCache::Clear()
{
    Flush();
    SetLimit(0);
}

SndNode* SndNodeCache::Find(const PString& substName, const PString& fileName)
{
    const PString foldedName = File::FoldName(fileName);
    for (SndNode* node = sentinel.next; node != &sentinel; node = node->next) {
        if (node->foldedName == foldedName && node->substName == substName) {
            return node;
        }
    }
    return nullptr;
}

void SndNodeCache::Insert(SndNode* node)
{
    SndNode* place = sentinel.prev;
    while (place != &sentinel && place->priority > node->priority) {
        place = place->prev;
    }
    node->prev = place;
    node->next = place->next;
    node->next->prev = node;
    place->next = node;
    node->cached = true;
    ++count;
}

void SndNodeCache::Unlink(SndNode* node)
{
    node->prev->next = node->next;
    node->next->prev = node->prev;
    node->next = nullptr;
    node->prev = nullptr;
    node->cached = false;
    --count;
}

} // namespace Quon
