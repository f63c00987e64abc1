#pragma once

#include "drivers/openal/effects/Effect.h"
#include "harmonet/definitions/SndFXList.h"

#include <cstddef>
#include <memory>
#include <span>

namespace Quon
{

/// The insert effects of one sound, in the order of its list, and their tail after the end of the sound.
/// Owned by the producer of the sound's PCM; one thread at a time.
///
/// An environmental reverb and its source side are not insert effects and are ignored.
class EffectChain
{
public:
    EffectChain() = default;
    EffectChain(const EffectChain&) = delete;
    EffectChain& operator=(const EffectChain&) = delete;
    ~EffectChain();

    /// Replaces the effects by those of `list` for PCM of this layout. The list is copied. Allocates.
    void Build(const SndFXList& list, const PcmLayout& newLayout);

    /// Recreates the effects if the rate is different. Allocates in that case.
    void SetRate(int rateHz);

    /// Removes all effects.
    void Clear();

    bool IsEmpty() const { return effects.empty(); }

    /// Processes whole sample frames, interleaved.
    void Process(std::span<float> pcm);

    /// Call it after the last sample frame of the sound: writes the tail to `pcm` and returns its number of
    /// sample frames. A number below the size of `pcm` means that the tail has ended. It ends when it stays
    /// 60 dB below full scale for longer than the effects can pause in between, or after maxTailMs. Process()
    /// can continue with further sound at any time.
    std::size_t ProcessTail(std::span<float> pcm);

    static constexpr int maxTailMs = 3000;

    /// The applied parameters of the effect with this record type. False if it is not in the chain.
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
    std::size_t tailFrames = 0; ///< Length of the current tail so far.
    std::size_t quietFrames = 0; ///< Quiet sample frames at its end.
};

} // namespace Quon
