#pragma once

#include "drivers/openal/effects/DelayLine.h"
#include "drivers/openal/effects/Effect.h"
#include "drivers/openal/effects/Oscillator.h"
#include "drivers/openal/effects/Units.h"

#include <algorithm>
#include <array>
#include <span>

namespace Quon
{

/// What a chorus and a flanger are made of: the sound mixed with itself behind a delay that sweeps up and
/// down, at another place of the sweep on either side. Owned by one of the two.
///
/// The delay goes from `delayMs` less `depth` percent of it to as much more, and is never below two sample
/// frames. The delayed sound is read between samples along a cubic; what feeds back is read along a straight
/// line, since that cannot grow, whatever the sweep does.
class SweptDelay
{
public:
    struct Settings
    {
        float wetDryMix; ///< Percent.
        float depth; ///< Percent.
        float feedback; ///< Percent, -99 to 99.
        float frequencyHz;
        bool isSine; ///< Or else a triangle.
        float delayMs;
        int phase; ///< 0 to 4: the right side is -180, -90, 0, 90 or 180 degrees ahead of the left.
    };

    SweptDelay(const Settings& settings, const PcmLayout& layout);

    void Process(std::span<float> pcm);
    void Reset();

    /// The longest delay of the sweep, in sample frames.
    int GetLongest() const { return longest; }

private:
    void ProcessPiece(DelayLine& line, std::uint32_t phase, float* pcm, std::size_t frames);
    void FillDelays(std::span<float> delays, std::uint32_t phase) const;
    float ProcessSample(DelayLine& line, float delay, float dry) const;

    int channels;
    bool isSine;
    float wetPart;
    float feedback;
    float middle; ///< Of the sweep, in sample frames.
    float swing; ///< To either side of it.
    int longest;
    Oscillator oscillator;
    std::uint32_t rightAhead;
    std::array<DelayLine, Effect::maxChannels> lines;
};

/// What the record of a chorus or a flanger says, which must be held to its ranges.
template<class Record>
SweptDelay::Settings ToSettings(const Record& record)
{
    return {record.wetDryMix, record.depth, record.feedback, record.frequency, record.waveform == 1,
        record.delay, record.phase};
}

} // namespace Quon
