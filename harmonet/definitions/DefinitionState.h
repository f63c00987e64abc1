#pragma once

#include "harmonet/definitions/RandomSequence.h"
#include "harmonet/definitions/SoundVariation.h"
#include "harmonet/engine/Alloc.h"
#include "harmonet/engine/PString.h"

#include <cstdint>
#include <optional>
#include <unordered_map>

namespace Quon
{

class SoundResource;

/// A rate times a factor, in whole Hz and clamped to the range of a sound, 100 to 100000; 0 for no rate.
unsigned long ScaleFrequency(int hz, float factor);

/// The values that a definition selects for one start of a sound.
struct SoundChoice
{
    PString fileName;
    float gain = 1.0F; ///< Linear.
    float frequencyFactor = 1.0F; ///< For the rate of the definition or of the file.
};

/// The state of one sound definition between starts. Task thread only.
class DefinitionState
{
public:
    DefinitionState(std::uint64_t seed, const PString& newName, const PString& owner);

    const PString& GetName() const { return name; }
    SoundChoice Choose(const SoundResource& resource);

    SoundLimits limits; ///< As of the last sound created.
    EngineVector<int> running; ///< Ids of the counted sounds, in the order of their starts.
    std::optional<std::int64_t> lastStart; ///< Microseconds of game time.
    bool isGivingWay = false; ///< An instance is being ended for a new one.

    /// Counts a sound that starts.
    void NoteStart(int soundID, std::int64_t now);
    /// Undoes NoteStart() after a failed start.
    void CancelStart(int soundID);
    void Leave(int soundID) { std::erase(running, soundID); }

private:
    PString ChooseFile(const SoundResource& resource);
    float ChooseGain(const SoundResource& resource);

    const PString name;
    RandomSequence random;
    std::optional<std::int64_t> startBefore; ///< `lastStart` before the last start, which may fail.
    int lastStarted = 0; ///< The sound of that start.
    std::optional<std::size_t> lastFile; ///< Index of the file selected last.
};

/// The states of all definitions with variation or limits. Each has its own random numbers, so that a start
/// of one does not affect the others.
class DefinitionStates
{
public:
    /// The table must be empty.
    void SetSeed(std::uint64_t newSeed) { seed = newSeed; }
    /// Returns the state of a definition, created at the first call; it exists as long as this object.
    DefinitionState& Get(const SoundResource& resource);
    /// Selects the values for a start from that resource; without variation these are the resource's own.
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
    std::uint64_t seed = 0;
    std::unordered_map<Key, DefinitionState, Hash, std::equal_to<Key>,
        EngineAllocator<std::pair<const Key, DefinitionState>>>
        states;
};

} // namespace Quon
