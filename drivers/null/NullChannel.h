#pragma once

#include "drivers/common/DriverChannel.h"
#include "drivers/common/FileSteps.h"
#include "drivers/common/QueueReader.h"
#include "drivers/common/SampleClock.h"
#include "harmonet/output/SndDriver.h"

#include <span>

namespace Quon
{

/// A voice without output: it reads its file at the rate of the sound, in time with the updates, and discards
/// the PCM. Owned and reused by the NullDriver; task thread only.
///
/// It does not read ahead, so its file's position is exactly the playback position. A step to the next file
/// is due as soon as the last sample frame of the old one has been read. Gain, position and the like have no
/// effect and are not stored. Every channel can change its rate.
class NullChannel final : public DriverChannel
{
public:
    void Play() override;
    void Stop() override;
    /// A fade-in has no effect.
    void FadeIn(int) override {}
    /// A duration of 0 or less ends the channel at the next EndUpdate().
    void FadeOut(int ms) override;
    void SkipFade(int ms) override;
    unsigned long GetRemainLength() override;
    void SetGain(float) override {}
    void SetPosition(const Vector3&) override {}
    void SetMinMaxDistance(float, float, bool) override {}
    void SetCone(float, float, float) override {}
    void SetDirection(const Vector3&) override {}
    /// Accepts 100 to 100 000 Hz, and 0 for the file's own rate.
    bool SetFrequency(unsigned long hz) override;
    unsigned long GetFrequency() override;

    bool IsFree() const { return state == State::Free; }

    /// Prepares a free channel to play `file`.
    void Prepare(unsigned int flags, SndFile* file);

    /// Plays for `elapsedMs`. `scratch` receives the PCM that is read.
    void Advance(std::uint32_t elapsedMs, std::span<unsigned char> scratch);

    /// Takes the oldest unreported step to another file. If it returns true, the step counts as reported, so
    /// the caller must report the event at once.
    bool TakeChange(SndFileChange& change);

    /// Whether the channel has reached its end. If it returns true, the channel waits for Release(), which
    /// must follow the event.
    bool TakeEnd();
    void Release();

private:
    enum class State
    {
        Free,
        Ready, ///< Prepared, but Play() has not been called.
        Playing,
        Ending ///< The end is being reported.
    };

    std::uint64_t CutLongStep(std::uint64_t sampleFrames, std::uint32_t rateHz) const;
    void Pull(std::uint64_t sampleFrames, std::span<unsigned char> scratch);

    State state = State::Free;
    bool looping = false;
    QueueReader reader;
    FileSteps steps;
    SampleClock clock;
    unsigned long wantedHz = 0; ///< 0: the file's own rate.
    bool fading = false;
    std::uint32_t fadeLeftMs = 0;
};

} // namespace Quon
