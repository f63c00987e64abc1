#pragma once

#include "harmonet/engine/PStringCache.h"

#include <functional>
#include <string_view>
#include <utility>

namespace Quon
{

/// An immutable, shared string. Equal texts share one node in the PStringCache, so a comparison compares two
/// pointers and a copy increments a count. One object may be used by one thread at a time; different objects
/// that share a text may be used on different threads.
class HARMONET_ENGINE_API PString
{
public:
    /// Constructs the empty string.
    PString() = default;

    /// Constructs the string of that text; comparisons are case-sensitive. Null and "" yield the empty
    /// string. Interning takes the cache's lock, and allocates if the text is not in the cache. After the
    /// cache has been destroyed every text yields the empty string.
    PString(const char* text);

    /// The same for text without a terminating zero.
    explicit PString(std::string_view text);

    /// Copies share the text.
    PString(const PString& other)
        : node(other.node)
    {
        PStringCache::AddReference(node);
    }
    PString(PString&& other) noexcept
        : node(std::exchange(other.node, nullptr))
    {
    }

    /// Copies share the text.
    PString& operator=(const PString& other)
    {
        PString copy(other);
        std::swap(node, copy.node);
        return *this;
    }

    /// Copies share the text.
    PString& operator=(PString&& other) noexcept
    {
        PString taken(std::move(other));
        std::swap(node, taken.node);
        return *this;
    }

    ~PString()
    {
        if (node != nullptr) {
            Release();
        }
    }

    /// Constructs a string from a node and takes over the caller's reference.
    static PString Adopt(PStringCache::Node* node)
    {
        PString string;
        string.node = node;
        return string;
    }

    /// Compares two pointers.
    bool operator==(const PString& other) const { return node == other.node; }

    /// Zero-terminated, valid while any string with this text exists; null for the empty string.
    const char* GetText() const { return node != nullptr ? node->GetText() : nullptr; }

    /// The text; an empty view for the empty string.
    std::string_view GetView() const
    {
        return node != nullptr ? std::string_view(node->GetText(), node->length) : std::string_view();
    }

    /// Whether it is the empty string.
    bool IsEmpty() const { return node == nullptr; }

    /// Equal for two strings if and only if their texts are equal.
    const void* GetIdentity() const { return node; }

    /// The engine's only cache; null before it is created and after it is destroyed. A string that is
    /// destroyed while it is null does not touch its node.
    static PStringCache* cache;

private:
    void Release();

    PStringCache::Node* node = nullptr;
};

} // namespace Quon

// Doxygen 1.9 does not find the scope of a specialisation that is declared outside its namespace.
/// \cond
/// Hashes the identity of the text: strings with the same text have the same hash.
template<>
struct std::hash<Quon::PString>
{
    /// The hash of that text; it differs between two runs of a program.
    std::size_t operator()(const Quon::PString& string) const noexcept
    {
        return std::hash<const void*>()(string.GetIdentity());
    }
};
/// \endcond
