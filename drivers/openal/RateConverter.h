#pragma once

#include "drivers/openal/RateEngine.h"

#include <cstdint>
#include <span>

namespace Quon
{

/// Converts the PCM of one sound from the rate at which it is to be played to the rate of the output. Owned
/// by a channel's feed; under the channel's lock.
///
/// Equal rates pass through bit by bit. A rate that stays is converted with a fixed ratio, which is exact
/// over any time. When the rate changes while the sound plays, the converter goes over to one whose ratio
/// glides: the first change is cross-faded over a few milliseconds, and every change is a glide, so that
/// none clicks.
class RateConverter
{
public:
    /// Begins with sample frame 0 of a stream of `newWidth` channels. Nothing is allocated before the first
    /// conversion.
    void Start(int newWidth, int newOutputHz, RateGrade newGrade);

    /// Frees what the conversion needs.
    void Finish();

    /// Begins at another sample frame of the stream. Before the first conversion.
    void SkipTo(std::int64_t sampleFrame) { first = sampleFrame; }

    /// Plays the stream at `hz` sample frames a second from the next sample frame of the output on, where a
    /// change is a glide of `newGlideMs`.
    void SetRate(double hz, int newGlideMs)
    {
        wantedHz = hz;
        glideMs = newGlideMs;
    }

    /// Writes the next sample frames of the output to `out` and returns how many there were. Fewer than there
    /// is room for mean that the stream is needed beyond `input`; if that `isWhole`, that it is over. What is
    /// appended to a stream that was over begins without a filter's memory of what was before.
    int Convert(const PcmFifo& input, bool isWhole, std::span<float> out);

    /// The sample frame of the stream that is at the next sample frame of the output.
    double GetPosition() const
    {
        return currentHz == 0.0 ? static_cast<double>(first) : engine.GetPosition();
    }

    /// The oldest sample frame of the stream that may still be needed.
    std::int64_t GetOldestNeeded() const;

    /// How far the stream is to be held ready beyond the position for one sample frame of the output.
    static constexpr int lookahead = 2560;

private:
    void MakeEngine();
    void GoVariable(const PcmFifo& input, bool isWhole);
    void SkipUnheard(const PcmFifo& input, bool isWhole);
    void ApplyFade(std::span<float> out);

    int width = 1;
    int outputHz = 1;
    RateGrade grade = RateGrade::Fast;
    std::int64_t first = 0; ///< Sample frame of the stream.
    double wantedHz = 0.0;
    int glideMs = 0; ///< To `wantedHz`.
    double currentHz = 0.0; ///< 0 before the first conversion.
    RateEngine engine;
    EngineVector<float> fading; ///< The output of the engine before, over which the present one fades in.
    std::size_t faded = 0; ///< Samples of it that have been used.
    int unheard = 0; ///< Sample frames that a new engine makes before those that are heard.
};

} // namespace Quon
