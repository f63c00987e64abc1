#pragma once

#include "harmonet/engine/Alloc.h"
#include "harmonet/engine/PString.h"

#include <cstdint>
#include <functional>
#include <unordered_map>

namespace Quon
{

/// The kernel's index of like sounds, those with the same file and owner name: a small number for each pair
/// of names, the count of such sounds on its lists, and their length. Names are compared by identity. A
/// number is valid while sounds use it; then it is reused. Task thread only.
class NameIndex
{
public:
    static constexpr std::uint32_t none = 0xFFFFFFFF;

    /// The identities of two names.
    struct Key
    {
        const void* file;
        const void* owner;
        bool operator==(const Key&) const = default;
    };
    struct Name
    {
        Key key;
        std::uint32_t numUsers;
        std::uint32_t numListed;
        std::uint32_t lengthMs; ///< Of those that are listed. Of an unused number: the next unused one.
        bool isUniform; ///< Whether all have that length.
    };

    /// Returns the number of these names and adds a user.
    std::uint32_t Use(const PString& fileName, const PString& substName);
    void GiveUp(std::uint32_t number);
    /// Returns the number of these names, or none if they are not in use.
    std::uint32_t Find(const PString& fileName, const PString& substName) const;
    const Name& At(std::uint32_t number) const { return names[number]; }

    // Record that a sound with that number is added to a list, changes its length there, and is removed.
    void Enter(std::uint32_t number, std::uint32_t lengthMs);
    void SetLength(std::uint32_t number, std::uint32_t lengthMs);
    void Leave(std::uint32_t number) { --names[number].numListed; }

private:
    struct Hash
    {
        std::size_t operator()(const Key& key) const noexcept
        {
            constexpr std::size_t factor = 31;
            const std::hash<const void*> hash;
            return hash(key.file) * factor + hash(key.owner);
        }
    };

    EngineVector<Name> names;
    std::uint32_t firstUnused = none;
    std::unordered_map<Key, std::uint32_t, Hash, std::equal_to<Key>,
        EngineAllocator<std::pair<const Key, std::uint32_t>>>
        numbers;
};

} // namespace Quon
