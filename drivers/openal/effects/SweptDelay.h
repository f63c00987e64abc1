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

/// The core of a chorus and a flanger: the sound mixed with a copy whose delay sweeps up and down, with a
/// phase offset between the sides. Owned by one of the two.
///
/// The delay ranges from `delayMs` minus to plus `depth` percent of it, and is never below two sample frames.
/// The delayed sound is interpolated with a cubic; the feedback is interpolated linearly, which cannot
/// amplify it, whatever the sweep does.
class SweptDelay
{
public:
    struct Settings
    {
        float wetDryMix; ///< Percent.
        float depth; ///< Percent.
        float feedback; ///< Percent, -99 to 99.
        float frequencyHz;
        bool isSine; ///< Otherwise a triangle.
        float delayMs;
        int phase; ///< 0 to 4: the right side is -180, -90, 0, 90 or 180 degrees ahead of the left.
    };

    SweptDelay(const Settings& settings, const PcmLayout& layout);

    void Process(std::span<float> pcm);
    void Reset();

    /// The longest delay of the sweep, in sample frames.
    int GetLongest() const { return longest; }

private:
    void ProcessPiece(DelayLine& line, std::uint32_t phase, float* pcm, std::size_t sampleFrames);
    void FillDelays(std::span<float> delays, std::uint32_t phase) const;
    float ProcessSample(DelayLine& line, float delay, float dry) const;

    int channels;
    bool isSine;
    float wetPart;
    float feedback;
    float middle; ///< Middle of the sweep, in sample frames.
    float swing; ///< Amplitude of the sweep.
    int longest;
    Oscillator oscillator;
    std::uint32_t rightAhead;
    std::array<DelayLine, Effect::maxChannels> lines;
};

/// Converts the record of a chorus or a flanger, which must have been clamped.
template<class Record>
SweptDelay::Settings ToSettings(const Record& record)
{
    return {record.wetDryMix, record.depth, record.feedback, record.frequency, record.waveform == 1,
        record.delay, record.phase};
}

} // namespace Quon
