#pragma once

#include "harmonet/definitions/SoundVariation.h"
#include "harmonet/engine/Alloc.h"
#include "harmonet/engine/PString.h"
#include "harmonet/kernel/RandomSequence.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <unordered_map>

namespace Quon
{

class SoundResource;

/// A rate times a factor, in whole Hz and clamped to what a sound can have, 100 to 100000; 0 for no rate.
unsigned long ScaleFrequency(int hz, float factor);

/// What a sound is to take of its definition at one start.
struct SoundChoice
{
    PString fileName;
    float gain = 1.0F; ///< Linear.
    float frequencyFactor = 1.0F; ///< For the rate of the definition or of the file.
};

/// What the kernel remembers of one sound definition from start to start. Task thread only.
class DefinitionState : public Allocated
{
public:
    DefinitionState(std::uint64_t seed, const PString& newName, const PString& owner);

    const PString& GetName() const { return name; }
    SoundChoice Choose(const SoundResource& resource);

    SoundLimits limits; ///< As of the last sound that was made.
    EngineVector<int> running; ///< Ids of the sounds that count, in the order of their starts.
    std::optional<std::int64_t> lastStart; ///< Microseconds of game time.
    std::optional<std::int64_t> startBefore; ///< The one before, for when that one fails.
    int lastStarted = 0; ///< The sound of that start.
    bool isGivingWay = false; ///< An instance is being ended for a new one.

    void Leave(int soundID) { std::erase(running, soundID); }

private:
    PString ChooseFile(const SoundResource& resource);
    float ChooseGain(const SoundResource& resource);

    const PString name;
    RandomSequence random;
    std::optional<std::size_t> lastFile; ///< Which of the files was taken last.
};

/// The states of all definitions that vary or have limits. Each has random numbers of its own, so that a
/// start of one changes nothing for the others.
class DefinitionStates
{
public:
    /// For an empty table.
    void SetSeed(std::uint64_t newSeed) { seed = newSeed; }
    /// The state of a definition, made at the first call; stays until the end of this object.
    DefinitionState& Get(const SoundResource& resource);
    /// What a start from that resource takes, which is what the resource says for one that varies nothing.
    SoundChoice Choose(const SoundResource& resource);

private:
    struct Key
    {
        PString name;
        PString owner;
        bool operator==(const Key&) const = default;
    };
    struct Hash
    {
        std::size_t operator()(const Key& key) const noexcept
        {
            return std::hash<PString>()(key.name) * 31 + std::hash<PString>()(key.owner);
        }
    };
    using States = std::unordered_map<Key, std::unique_ptr<DefinitionState>, Hash, std::equal_to<Key>,
        EngineAllocator<std::pair<const Key, std::unique_ptr<DefinitionState>>>>;

    std::uint64_t seed = 0;
    States states;
};

} // namespace Quon
