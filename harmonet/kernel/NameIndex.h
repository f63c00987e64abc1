#pragma once

#include "harmonet/engine/Alloc.h"
#include "harmonet/engine/PString.h"

#include <cstdint>
#include <functional>
#include <unordered_map>
#include <utility>

namespace Quon
{

/// What the kernel knows of like sounds, those with the same file and the same owner name: a small number for
/// each pair of names, how many such sounds stand on its lists, and their length. Names are told apart by
/// identity. A number is in use for as long as sounds use it; then its memory is used again. Task thread
/// only.
class NameIndex
{
public:
    static constexpr std::uint32_t none = 0xFFFFFFFF;

    struct Name
    {
        std::pair<const void*, const void*> key;
        std::uint32_t numUsers;
        std::uint32_t numListed;
        unsigned long lengthMs; ///< Of those that are listed.
        bool isUniform; ///< They all have that length.
    };

    /// The number of these names, with one more user.
    std::uint32_t Use(const PString& fileName, const PString& substName);
    void GiveUp(std::uint32_t number);
    /// The number of these names, or none if nobody uses them.
    std::uint32_t Find(const PString& fileName, const PString& substName) const;
    const Name& At(std::uint32_t number) const { return names[number]; }

    // A sound with that number comes onto a list, has got another length there, and leaves.
    void Enter(std::uint32_t number, unsigned long lengthMs);
    void SetLength(std::uint32_t number, unsigned long lengthMs);
    void Leave(std::uint32_t number) { --names[number].numListed; }

private:
    using Key = std::pair<const void*, const void*>;
    struct Hash
    {
        std::size_t operator()(const Key& key) const
        {
            constexpr std::size_t spread = 0x9E3779B9;
            const std::hash<const void*> hash;
            return hash(key.first) * spread + hash(key.second);
        }
    };
    using Numbers = std::unordered_map<Key, std::uint32_t, Hash, std::equal_to<>,
        EngineAllocator<std::pair<const Key, std::uint32_t>>>;

    EngineVector<Name> names;
    EngineVector<std::uint32_t> freeNumbers;
    Numbers numbers;
};

} // namespace Quon
