#pragma once

#include "drivers/openal/effects/Effect.h"
#include "harmonet/definitions/SndFXList.h"

#include <cstddef>
#include <memory>
#include <span>

namespace Quon
{

/// The insert effects of one sound, in the order of its list, and the tail that they leave when the sound is
/// over. Owned by whoever makes the sound's PCM; one thread at a time.
///
/// An environmental reverb and its source side are no insert effects and are passed over.
class EffectChain
{
public:
    EffectChain() = default;
    EffectChain(const EffectChain&) = delete;
    EffectChain& operator=(const EffectChain&) = delete;
    ~EffectChain();

    /// Makes the effects of `list` for PCM of this layout, in place of those there are. The list is copied.
    /// Allocates.
    void Build(const SndFXList& list, const PcmLayout& newLayout);

    /// Makes the same effects again for another rate, if it is another one. Allocates in that case.
    void SetRate(int rateHz);

    /// No effects any more.
    void Clear();

    bool IsEmpty() const { return effects.empty(); }

    /// Changes whole sample frames, interleaved.
    void Process(std::span<float> pcm);

    /// Behind the last sample frame of the sound: writes what is still to be heard of it over `pcm` and
    /// returns how many sample frames that has. Fewer than there is room for mean that the tail is over. It
    /// is over when it stays 60 dB below full scale for as long as the effects can be silent in between, or
    /// after maxTailMs. Process() goes on with further sound at any time.
    std::size_t ProcessTail(std::span<float> pcm);

    static constexpr int maxTailMs = 3000;

    /// The parameters that are applied of the effect with this kind of record. False if it is not in the
    /// chain.
    template<class Record>
    bool GetParameters(Record* record) const
    {
        for (const auto& effect : effects) {
            if (const auto* match = dynamic_cast<const EffectWith<Record>*>(effect.get())) {
                *record = match->GetParameters();
                return true;
            }
        }
        return false;
    }

private:
    void MakeEffects();
    void Run(std::span<float> pcm);
    std::size_t CountTail(std::span<const float> pcm);
    std::size_t GetQuietNeeded() const;

    SndFXList records; ///< Owned.
    PcmLayout layout{1, 1};
    EngineVector<std::unique_ptr<Effect>> effects;
    std::size_t tailFrames = 0; ///< Of the present tail so far,
    std::size_t quietFrames = 0; ///< and those at its end that are all quiet.
};

} // namespace Quon
