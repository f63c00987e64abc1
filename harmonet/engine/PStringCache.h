#pragma once

#include "harmonet/engine/Alloc.h"

#include <atomic>
#include <cstdint>
#include <mutex>
#include <string_view>

namespace Quon
{

/// The cache of all interned texts: one node for each text in use. There is one cache per process, created
/// with the first OS object or the first non-empty PString; it exists until the engine library is unloaded.
/// Thread-safe.
class HARMONET_ENGINE_API PStringCache : public Allocated
{
public:
    /// One text. Its zero-terminated characters follow the node in the same block of memory.
    struct Node
    {
        /// The characters of the text.
        const char* GetText() const { return reinterpret_cast<const char*>(this + 1); }

        /// Publishes no other data; it only decides who frees the node. Incremented from at least 1 without a
        /// lock, decremented from 1 to 0 only under the cache's mutex.
        std::atomic<std::uint32_t> references;
        /// Hash and length in bytes of the text.
        std::uint32_t hash;
        std::uint32_t length;
        /// The next node of the same bucket, guarded by the cache's mutex.
        Node* next;
    };

    PStringCache();

    /// Frees all nodes, including those still referenced, which must not be accessed any more.
    ~PStringCache();

    PStringCache(const PStringCache&) = delete;
    PStringCache& operator=(const PStringCache&) = delete;

    /// Returns the node of the zero-terminated \p text with an added reference, which the caller releases
    /// with Destroy(). Returns null for a null or empty text; null represents the empty string.
    Node* Create(const unsigned char* text);

    /// The same for text without a terminating zero. Characters after an embedded zero are ignored.
    Node* Create(std::string_view text);

    /// Adds a reference to a node that the caller already holds. Null is ignored. Lock-free.
    static void AddReference(Node* node)
    {
        if (node != nullptr) {
            node->references.fetch_add(1, std::memory_order_relaxed);
        }
    }

    /// Releases one reference; the last one frees the node. Null is ignored. Takes the lock only for the
    /// last.
    void Destroy(Node* node);

    /// Number of texts currently in the cache.
    std::size_t GetCount() const;

    /// The only cache, created at the first call; null again while the engine library is being unloaded.
    static PStringCache* Get();

private:
    Node** FindPlace(std::string_view text, std::uint32_t hash);
    void Grow();

    /// Guards the buckets, the count and the links between the nodes.
    mutable std::mutex mutex;
    EngineVector<Node*> buckets;
    std::size_t count = 0;
};

} // namespace Quon
