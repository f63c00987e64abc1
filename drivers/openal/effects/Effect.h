#pragma once

#include "harmonet/engine/Alloc.h"

#include <span>

namespace Quon
{

/// The format of the PCM that an effect processes: 1 or 2 channels, a rate of at least 1 Hz.
struct PcmLayout
{
    int rateHz;
    int channels;
};

/// One insert effect of a sound: it processes the sound's PCM in place, before mixing.
///
/// Effects are created and owned by an EffectChain. The constructor receives the parameters and allocates all
/// buffers; afterwards nothing allocates or blocks, so a thread that feeds a device can process. One thread
/// at a time.
///
/// The output depends only on the input since the start and not on the block sizes. After an effect has
/// decayed, silence yields silence. Levels are linear, with 1.0 as full scale; effects do not clip.
class Effect : public Allocated
{
public:
    static constexpr int maxChannels = 2;

    Effect(const Effect&) = delete;
    Effect& operator=(const Effect&) = delete;
    virtual ~Effect();

    /// Processes any number of whole sample frames, interleaved. NaN is replaced by 0 and extreme levels are
    /// clamped, so that one invalid sample cannot remain in a feedback effect.
    void Process(std::span<float> pcm);

    /// Clears the history.
    virtual void Reset() = 0;

    /// The number of silent sample frames that the effect can output before its input becomes audible again.
    virtual int GetReach() const { return 0; }

protected:
    explicit Effect(const PcmLayout& pcmLayout)
        : layout(pcmLayout)
    {
    }

    const PcmLayout layout;

private:
    virtual void Apply(std::span<float> pcm) = 0;
};

/// An effect with its applied parameters: the requested ones, each clamped to its range, and NaN replaced by
/// the default.
template<class Record>
class EffectWith : public Effect
{
public:
    const Record& GetParameters() const { return parameters; }

protected:
    EffectWith(const Record& applied, const PcmLayout& pcmLayout)
        : Effect(pcmLayout)
        , parameters(applied)
    {
    }

    const Record parameters;
};

} // namespace Quon
