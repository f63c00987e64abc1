#pragma once

#include "drivers/openal/Fades.h"
#include "drivers/openal/LowPass.h"
#include "drivers/openal/RateConverter.h"
#include "drivers/openal/SoundReader.h"

#include <span>

namespace Quon
{

/// The playback parameters of a sound.
struct Playback
{
    unsigned long hz = 0; ///< Sample frames per second; 0 for the sound's own rate.
    float pitch = 1.0F; ///< Factor on the rate.
    float lowPass = 1.0F; ///< The gain of high frequencies.

    /// Sample frames played per second by a sound with that rate of its own.
    double GetPlayedHz(int ownHz) const;
};

/// Produces the blocks of PCM that a channel queues: the sound's data, converted to the output's rate, with
/// the low-pass and fade-ins applied. Owned by a channel and guarded by the channel's lock.
///
/// With the grade "fast", blocks have the rate of the sound, and OpenAL converts them.
///
/// A sound that resumes in the middle of its file fades in, since it would click; one that begins at its
/// first sample frame is not changed.
class PcmFeed
{
public:
    /// Maximum number of sample frames in a block.
    static constexpr int maxBlockFrames = 8192;

    /// A channel's description of a new sound.
    struct Sound
    {
        int outChannels; ///< 1 or 2.
        bool isLooping;
        int outputHz;
        RateGrade grade;
        int returnFadeMs; ///< For a sound that resumes.
    };

    /// Starts a new sound, with the insert effects of `effectList`, which is copied. Allocates for the
    /// effects, and when a channel is used for the first time.
    void Start(const Sound& newSound, const SndFile& file, const SndFXList& effectList);

    /// Ends the sound and frees its memory.
    void Finish();

    /// Fades the sound in over `ms` milliseconds from the next block on.
    void FadeIn(int ms) { fadeIn.Start(ms); }
    void SkipFadeIn(int ms) { fadeIn.Skip(ms); }

    /// Fades the next block in after an interruption.
    void SoftenNext();

    /// Reads the sound's first sample frames, so that its rate is certain. Call it once, before the first
    /// block.
    void Begin(SndChannel& channel);

    /// Delay() inserts silence before the first sample frame; Skip() skips sample frames of the sound. Before
    /// the first block.
    void Delay(int sampleFrames) { silence = sampleFrames; }
    void Skip(int sampleFrames) { converter.SkipTo(sampleFrames); }

    /// Produces the next block of `wanted` sample frames, at most maxBlockFrames, and returns its size. A
    /// smaller size means that both queue and tail are exhausted. Allocates only if the reader or the
    /// converter does.
    int Fill(SndChannel& channel, int wanted, const Playback& playback);

    /// The same from data already read; a smaller size means that there was not enough.
    int FillFromHeld(int wanted, const Playback& playback);

    /// Reads until `sampleFrames` of the sound are ready beyond those already used for blocks.
    void ReadAhead(SndChannel& channel, std::int64_t sampleFrames);

    /// The last block, interleaved, and the number of silent sample frames at its beginning.
    std::span<const float> GetBlock() const { return {block.data(), block.size()}; }
    int GetSilence() const { return blockSilence; }
    /// The sound's sample frame at the first one after the silence.
    double GetBlockBegin() const { return blockBegin; }
    int GetOutChannels() const { return sound.outChannels; }

    /// Whether blocks have the rate of the output; otherwise they have that of the sound.
    bool IsConverting() const { return sound.grade != RateGrade::Fast; }
    /// Whether the next block, with this playback, has another rate than the sound.
    bool IsResampling(const Playback& playback) const
    {
        return IsConverting() && playback.GetPlayedHz(reader.GetRateHz()) != sound.outputHz;
    }
    int GetBlockHz() const { return IsConverting() ? sound.outputHz : reader.GetRateHz(); }

    /// The sound's sample frame at the end of the last block.
    double GetStreamPosition() const { return converter.GetPosition(); }

    const SoundReader& GetReader() const { return reader; }
    FileSteps& GetSteps() { return reader.GetSteps(); }

private:
    int Make(SndChannel* channel, int wanted, const Playback& playback);
    bool ReadMore(SndChannel& channel, int missing, double playedHz);
    int Convert(bool isWhole, int begin, int end);
    std::span<float> GetPlace(int begin, int end);

    Sound sound{};
    SoundReader reader;
    RateConverter converter;
    LowPass lowPass;
    float pitch = 1.0F; ///< Pitch of the last block.
    FadeInRamp fadeIn;
    FadeInRamp softening;
    int silence = 0; ///< Sample frames of silence still to be produced.
    int blockSilence = 0;
    double blockBegin = 0.0;
    EngineVector<float> block;
};

} // namespace Quon
