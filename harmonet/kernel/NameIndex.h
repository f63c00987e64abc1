#pragma once

#include "harmonet/Export.h"
#include "harmonet/engine/Alloc.h"
#include "harmonet/engine/PString.h"
#include "harmonet/kernel/HashIndex.h"

#include <cstdint>

namespace Quon
{

/// The kernel's index of like sounds, those with the same file and owner name: a small number for each pair
/// of names, the count of such sounds on its lists, and their length. Names are compared by identity. A
/// number is valid while sounds use it; then it is reused. Task thread only.
class HARMONET_INTERNAL_API NameIndex
{
public:
    static constexpr std::uint32_t none = HashIndex::none;

    struct Name
    {
        const void* file;
        const void* owner;
        std::uint32_t numUsers;
        std::uint32_t numListed;
        std::uint32_t lengthMs; ///< Of those that are listed.
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
    EngineVector<Name> names;
    EngineVector<std::uint32_t> freeNumbers;
    HashIndex index;
};

} // namespace Quon
