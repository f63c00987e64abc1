#pragma once

#include "drivers/openal/Fades.h"
#include "drivers/openal/LowPass.h"
#include "drivers/openal/RateConverter.h"
#include "drivers/openal/SoundReader.h"

#include <span>

namespace Quon
{

/// How a sound is to be played.
struct Playback
{
    unsigned long hz = 0; ///< Sample frames a second; 0 for the sound's own rate.
    float pitch = 1.0F; ///< The factor on that.
    float lowPass = 1.0F; ///< The gain of high frequencies.

    /// Sample frames of a sound with that rate of its own that are played in a second.
    double GetPlayedHz(int ownHz) const;
};

/// Makes the blocks of PCM that a channel queues: what is read of the sound, converted to the output's rate,
/// with the low-pass and the fades in worked in. Owned by a channel; everything under the channel's lock.
///
/// With the grade "fast" blocks have the rate of the sound, and OpenAL converts them.
///
/// A sound that begins in the middle of its file, one that comes back, fades in, since it would click; one
/// that begins at its first sample frame is left as it is.
class PcmFeed
{
public:
    /// The most sample frames of one block.
    static constexpr int maxBlockFrames = 8192;

    /// What a channel tells of a new sound.
    struct Sound
    {
        int outChannels; ///< 1 or 2.
        bool isLooping;
        int outputHz;
        RateGrade grade;
        int returnFadeMs; ///< For a sound that comes back.
    };

    /// Begins a new sound, with the insert effects among `effectList`, which is copied. Allocates for the
    /// effects, and when a channel is used for the first time.
    void Start(const Sound& newSound, const SndFile& file, const SndFXList& effectList);

    /// The sound is over: frees what it alone needed.
    void Finish();

    /// The sound fades in over so many milliseconds from the next block on.
    void FadeIn(int ms) { fadeIn.Start(ms); }
    void SkipFadeIn(int ms) { fadeIn.Skip(ms); }

    /// The next block fades in as that of a sound that was interrupted.
    void SoftenNext();

    /// Reads the sound's first sample frames, so that its rate is certain. Once, before anything is made.
    void Begin(SndChannel& channel);

    /// Puts silence before the first sample frame; or leaves out so many of the sound. Before the first
    /// block.
    void Delay(int sampleFrames) { silence = sampleFrames; }
    void Skip(int sampleFrames) { converter.SkipTo(sampleFrames); }

    /// Makes the next block, of `wanted` sample frames, at most maxBlockFrames, and returns how many it has.
    /// Fewer than wanted means that the queue has run out,
    /// and so has the tail. Allocates only as the reader and the converter do.
    int Fill(SndChannel& channel, int wanted, const Playback& playback);

    /// The same from what has been read already; fewer than wanted means that it did not suffice.
    int FillFromHeld(int wanted, const Playback& playback);

    /// Reads on until so many sample frames of the sound are ready beyond those that have been made.
    void ReadAhead(SndChannel& channel, std::int64_t sampleFrames);

    /// The block that was made, interleaved, and how many sample frames of silence it begins with.
    std::span<const float> GetBlock() const { return {block.data(), block.size()}; }
    int GetSilence() const { return blockSilence; }
    /// The sample frame of the sound at the first one after the silence.
    double GetBlockBegin() const { return blockBegin; }
    int GetOutChannels() const { return sound.outChannels; }

    /// Whether blocks have the rate of the output; otherwise that of the sound.
    bool IsConverting() const { return sound.grade != RateGrade::Fast; }
    int GetBlockHz() const { return IsConverting() ? sound.outputHz : reader.GetRateHz(); }

    /// The sample frame of the sound at the end of all that has been made.
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
    float pitch = 1.0F; ///< Of the last block.
    Rise fadeIn;
    Rise softening;
    int silence = 0; ///< Still to be made.
    int blockSilence = 0;
    double blockBegin = 0.0;
    EngineVector<float> block;
};

} // namespace Quon
