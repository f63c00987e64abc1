#pragma once

#include "harmonet/engine/Alloc.h"

#include <span>

namespace Quon
{

/// The PCM that an effect works on: 1 or 2 channels, a rate of at least 1 Hz.
struct PcmLayout
{
    int rateHz;
    int channels;
};

/// One insert effect of a sound: it changes the sound's PCM in place, before it is mixed with anything else.
///
/// Effects are made and owned by an EffectChain. Parameters are given once, to the constructor, which also
/// makes all buffers; after that nothing allocates and nothing waits, so that a thread which feeds a device
/// can process. One thread at a time.
///
/// What comes out depends on what has gone in since the start and not on how it was cut into blocks. Silence
/// goes through as silence once an effect has died away. Levels are linear, with 1.0 as full scale; louder
/// sound passes, clipping is not an effect's affair.
class Effect : public Allocated
{
public:
    static constexpr int maxChannels = 2;

    Effect(const Effect&) = delete;
    Effect& operator=(const Effect&) = delete;
    virtual ~Effect();

    /// Changes any number of whole sample frames, interleaved. What is no number counts as 0 and what is far
    /// louder than any sound is held, so that one broken sample cannot stay in an effect that feeds back.
    void Process(std::span<float> pcm);

    /// Forgets all that has gone in.
    virtual void Reset() = 0;

    /// How many sample frames of silence an effect can give before what has gone in is heard once more.
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

/// An effect with the record of parameters that it applies: those that were asked for, each held to its
/// range, and at its default where it was no number.
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
