#pragma once

#include "harmonet/engine/PStringCache.h"

#include <functional>
#include <string_view>
#include <utility>

namespace Quon
{

/// An immutable, shared string. Equal texts are one node in the PStringCache, so that comparing is comparing
/// two pointers, and copying is raising a count. Each object belongs to one thread at a time; different
/// objects that share a text may be used on different threads.
class HARMONET_ENGINE_API PString
{
public:
    /// The empty string.
    PString() = default;

    /// The string of that text, compared case by case. Null and "" give the empty string. Interning takes the
    /// cache's lock, and allocates for a text that nobody holds yet. Once the cache has ended every text
    /// gives the empty string.
    PString(const char* text);

    /// The same for text that need not end in a zero.
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

    /// Makes a string of a node whose reference the caller hands over.
    static PString Adopt(PStringCache::Node* node)
    {
        PString string;
        string.node = node;
        return string;
    }

    /// Compares two pointers.
    bool operator==(const PString& other) const { return node == other.node; }

    /// Zero-terminated, valid as long as any string with this text lives; null for the empty string.
    const char* GetText() const { return node != nullptr ? node->GetText() : nullptr; }

    /// The text, without characters for the empty string.
    std::string_view GetView() const
    {
        return node != nullptr ? std::string_view(node->GetText(), node->length) : std::string_view();
    }

    /// Whether it is the empty string.
    bool IsEmpty() const { return node == nullptr; }

    /// Equal for two strings exactly when their texts are equal.
    const void* GetIdentity() const { return node; }

    /// The engine's one cache; null before it has been made and after it has ended. A string that goes while
    /// it is null leaves its node alone.
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
