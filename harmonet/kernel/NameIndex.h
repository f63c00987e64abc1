#pragma once

#include "harmonet/Export.h"
#include "harmonet/engine/Alloc.h"
#include "harmonet/engine/PString.h"
#include "harmonet/kernel/HashIndex.h"

#include <cstdint>

namespace Quon
{

/// What the kernel knows of like sounds, those with the same file and the same owner name: a small number for
/// each pair of names, how many such sounds stand on its lists, and their length. Names are told apart by
/// identity. A number is in use for as long as sounds use it; then its memory is used again. Task thread
/// only.
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
        bool isUniform; ///< They all have that length.
    };

    /// The number of these names, with one more user.
    std::uint32_t Use(const PString& fileName, const PString& substName);
    void GiveUp(std::uint32_t number);
    /// The number of these names, or none if nobody uses them.
    std::uint32_t Find(const PString& fileName, const PString& substName) const;
    const Name& At(std::uint32_t number) const { return names[number]; }

    // A sound with that number comes onto a list, has got another length there, and leaves.
    void Enter(std::uint32_t number, std::uint32_t lengthMs);
    void SetLength(std::uint32_t number, std::uint32_t lengthMs);
    void Leave(std::uint32_t number) { --names[number].numListed; }

private:
    EngineVector<Name> names;
    EngineVector<std::uint32_t> freeNumbers;
    HashIndex index;
};

} // namespace Quon
