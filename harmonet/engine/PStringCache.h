#pragma once

#include "harmonet/engine/Alloc.h"

#include <atomic>
#include <cstdint>
#include <mutex>
#include <string_view>

namespace Quon
{

/// The store of all interned texts: one node for each text that somebody holds. There is one such store in a
/// process, made together with the first OS object or the first PString that has a text, and it lives until
/// the engine library is unloaded. Any thread may call it.
class HARMONET_ENGINE_API PStringCache : public Allocated
{
public:
    /// One text. Its characters stand behind the node in the same block of memory, closed by a zero.
    struct Node
    {
        /// The characters of the text.
        const char* GetText() const { return reinterpret_cast<const char*>(this + 1); }

        /// Publishes nothing; it only decides who frees the node. Raised from at least 1 without a lock,
        /// taken from 1 to 0 only under the cache's mutex.
        std::atomic<std::uint32_t> references;
        /// Hash and length in bytes of the text.
        std::uint32_t hash;
        std::uint32_t length;
        /// The next node of the same bucket, guarded by the cache's mutex.
        Node* next;
    };

    PStringCache();

    /// Frees all nodes, also those that are still held: whoever holds one must not touch it any more.
    ~PStringCache();

    PStringCache(const PStringCache&) = delete;
    PStringCache& operator=(const PStringCache&) = delete;

    /// Gives the node of the zero-terminated \p text and takes a reference on it, for the caller to give up
    /// with Destroy(). A null or empty text gives null, which serves as the empty string.
    Node* Create(const unsigned char* text);

    /// The same for text that has no zero behind it. What follows an inner zero is left out.
    Node* Create(std::string_view text);

    /// Takes one more reference on a node that the caller holds already. Null is ignored. Takes no lock.
    static void AddReference(Node* node)
    {
        if (node != nullptr) {
            node->references.fetch_add(1, std::memory_order_relaxed);
        }
    }

    /// Gives up one reference; the last one frees the node. Null is ignored. Takes the lock only for the
    /// last.
    void Destroy(Node* node);

    /// How many texts are held at this moment.
    std::size_t GetCount() const;

    /// The one store, made at the first call; null again once the engine library is on its way out.
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
