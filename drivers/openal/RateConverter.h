#pragma once

#include "drivers/openal/RateEngine.h"

#include <cstdint>
#include <optional>
#include <span>

namespace Quon
{

/// Converts the PCM of one sound from its playback rate to the output's rate. Owned by a channel's feed;
/// guarded by the channel's lock.
///
/// Equal rates are passed through bit-exactly. A constant rate is converted with a fixed ratio, which is
/// exact over any time. When the rate changes during playback, the converter switches to an engine with a
/// variable ratio: the first change is cross-faded over a few milliseconds, and every change is a glide, so
/// that none clicks.
class RateConverter
{
public:
    /// Starts at sample frame 0 of a stream of `newWidth` channels. Does not allocate before the first
    /// conversion.
    void Start(int newWidth, int newOutputHz, RateGrade newGrade);

    /// Frees the memory of the conversion.
    void Finish();

    /// Starts at another sample frame of the stream. Before the first conversion.
    void SkipTo(std::int64_t sampleFrame) { first = sampleFrame; }

    /// Plays the stream at `hz` sample frames per second from the next sample frame of the output on; a
    /// change is a glide of `newGlideMs`.
    void SetRate(double hz, int newGlideMs)
    {
        wantedHz = hz;
        glideMs = newGlideMs;
    }

    /// Writes the next sample frames of the output to `out` and returns their number. A smaller number than
    /// fits means that data beyond `input` are needed, or, if `isWhole`, that the stream has ended. Data
    /// appended to an ended stream start with an empty filter history.
    int Convert(const PcmFifo& input, bool isWhole, std::span<float> out);

    /// The sample frame of the stream that is at the next sample frame of the output.
    double GetPosition() const
    {
        return currentHz == 0.0 ? static_cast<double>(first) : changesAt.value_or(engine.GetPosition());
    }

    /// The oldest sample frame of the stream that may still be needed.
    std::int64_t GetOldestNeeded() const;

    /// The number of sample frames of the stream needed beyond the position for one sample frame of the
    /// output.
    static constexpr int lookahead = 2560;

private:
    void MakeEngine();
    bool GoVariable(const PcmFifo& input, bool isWhole);
    void DiscardOutput(const PcmFifo& input, bool isWhole);
    void ApplyFade(std::span<float> out);

    int width = 1;
    int outputHz = 1;
    RateGrade grade = RateGrade::Fast;
    std::int64_t first = 0; ///< Sample frame of the stream.
    double wantedHz = 0.0;
    int glideMs = 0; ///< Duration of the glide to `wantedHz`.
    double currentHz = 0.0; ///< 0 before the first conversion.
    RateEngine engine;
    std::optional<double> changesAt; ///< Position of a change of engines for which data are still missing.
    EngineVector<float> fading; ///< The previous engine's output, to be cross-faded.
    std::size_t faded = 0; ///< Samples of it already used.
    int discarded = 0; ///< Sample frames of a new engine's output to discard.
};

} // namespace Quon
