#include "harmonet/engine/PStringCache.h"

#include "harmonet/engine/PString.h"

#include <cstring>
#include <limits>

namespace Quon
{

namespace
{

constexpr std::size_t firstBucketCount = 256;

/// FNV-1a.
std::uint32_t HashOf(std::string_view text)
{
    std::uint32_t hash = 2166136261U;
    for (const char character : text) {
        hash = (hash ^ static_cast<unsigned char>(character)) * 16777619U;
    }
    return hash;
}

PStringCache::Node* MakeNode(std::string_view text, std::uint32_t hash)
{
    constexpr std::size_t longest =
        std::numeric_limits<std::uint32_t>::max() - sizeof(PStringCache::Node) - 1;
    if (text.size() > longest) {
        throw std::bad_alloc();
    }
    void* const block = Alloc::New(static_cast<unsigned int>(sizeof(PStringCache::Node) + text.size() + 1));
    auto* const node =
        new (block) PStringCache::Node{{1}, hash, static_cast<std::uint32_t>(text.size()), nullptr};
    char* const characters = reinterpret_cast<char*>(node + 1);
    std::memcpy(characters, text.data(), text.size());
    characters[text.size()] = '\0';
    return node;
}

void FreeNode(PStringCache::Node* node)
{
    node->~Node();
    Alloc::Delete(node);
}

/// Creates the only cache, and destroys it when the engine library is unloaded.
struct CacheLife
{
    CacheLife() { PString::cache = new PStringCache; }
    ~CacheLife()
    {
        delete PString::cache;
        PString::cache = nullptr;
    }
};

} // namespace

PStringCache* PStringCache::Get()
{
    static const CacheLife life;
    return PString::cache;
}

PStringCache::PStringCache()
    : buckets(firstBucketCount)
{
}

PStringCache::~PStringCache()
{
    for (Node* node : buckets) {
        while (node != nullptr) {
            Node* const next = node->next;
            FreeNode(node);
            node = next;
        }
    }
}

PStringCache::Node* PStringCache::Create(const unsigned char* text)
{
    return text != nullptr ? Create(std::string_view(reinterpret_cast<const char*>(text))) : nullptr;
}

PStringCache::Node* PStringCache::Create(std::string_view text)
{
    text = text.substr(0, text.find('\0'));
    if (text.empty()) {
        return nullptr;
    }
    const std::uint32_t hash = HashOf(text);
    const std::lock_guard lock(mutex);
    Node** place = FindPlace(text, hash);
    if (*place != nullptr) {
        AddReference(*place);
        return *place;
    }
    if (count == buckets.size()) {
        Grow();
        place = FindPlace(text, hash);
    }
    *place = MakeNode(text, hash);
    ++count;
    return *place;
}

void PStringCache::Destroy(Node* node)
{
    if (node == nullptr) {
        return;
    }
    std::uint32_t seen = node->references.load(std::memory_order_relaxed);
    while (seen > 1) {
        if (node->references.compare_exchange_weak(
                seen, seen - 1, std::memory_order_release, std::memory_order_relaxed)) {
            return;
        }
    }
    // It may be the last reference. Create() adds references only under the lock, so under the lock a count
    // of 0 stays 0.
    const std::lock_guard lock(mutex);
    if (node->references.fetch_sub(1, std::memory_order_acq_rel) > 1) {
        return;
    }
    Node** const place = FindPlace(std::string_view(node->GetText(), node->length), node->hash);
    *place = node->next;
    --count;
    FreeNode(node);
}

std::size_t PStringCache::GetCount() const
{
    const std::lock_guard lock(mutex);
    return count;
}

/// The link that points to the node of that text, or the one at the end of its bucket.
PStringCache::Node** PStringCache::FindPlace(std::string_view text, std::uint32_t hash)
{
    Node** place = &buckets[hash & (buckets.size() - 1)];
    while (*place != nullptr) {
        const Node& node = **place;
        if (node.hash == hash && std::string_view(node.GetText(), node.length) == text) {
            break;
        }
        place = &(*place)->next;
    }
    return place;
}

void PStringCache::Grow()
{
    EngineVector<Node*> wider(buckets.size() * 2);
    for (Node* node : buckets) {
        while (node != nullptr) {
            Node* const next = node->next;
            Node*& first = wider[node->hash & (wider.size() - 1)];
            node->next = first;
            first = node;
            node = next;
        }
    }
    buckets.swap(wider);
}

} // namespace Quon
