#pragma once

#include "drivers/common/DriverChannel.h"
#include "drivers/openal/HeardMap.h"
#include "drivers/openal/PcmFeed.h"
#include "drivers/openal/Placement.h"
#include "drivers/openal/SourceAcoustics.h"
#include "drivers/openal/StartTimes.h"
#include "harmonet/output/SndDriver.h"

#include <atomic>
#include <mutex>
#include <optional>

namespace Quon
{

class Feeder;
class OutputDevice;
class Voice;
class VoicePool;

/// How far a channel reads ahead of playback, in microseconds.
struct PumpTargets
{
    std::int64_t target; ///< Blocks are queued until this much is ahead.
    std::int64_t minBlock; ///< Minimum length of a block.
    std::int64_t maxBlock; ///< Maximum length of a block.
    std::int64_t tailTarget; ///< For the tail of effects; a file appended meanwhile waits that long.
};

/// The listener's properties that channels need. Task thread only.
struct Listener
{
    Vector3 position;
    float rolloffFactor = 1.0F;
};

/// The driver's services for a channel. All of them outlive the channel.
struct ChannelServices
{
    const DriverOptions& options;
    const StartTimes& startTimes;
    OutputDevice& device;
    VoicePool& voices;
    Acoustics& acoustics;
    const Listener& listener;
    Feeder* feeder; ///< Null if the output is rendered to a file.
};

/// One sound on the OpenAL output. Owned by the driver, in a fixed number, and reused.
///
/// The task thread makes all calls except those of one pumping thread, which reads from the file, queues the
/// data and performs fades, with Pump(). The members form three groups. Those used by the task thread alone
/// need no lock. Those for reading are guarded by the channel's lock, which is held while a file is read.
/// Those for the output are guarded by `outputMutex`, which is not, so that setting a gain or querying the
/// remaining time never waits for the disk. The channel's lock is acquired first, then a ContextScope, then
/// the mutex.
///
/// The sound's insert effects are applied to the data before they are queued. At the end of the data their
/// tail follows, until it has decayed by 60 dB or for 3 s, and only then the channel ends; the remaining
/// length is 0 meanwhile. Stop() cuts the tail off.
///
/// A step to the next file is reported when the last sample frame before it has been played. Stop() and the
/// end of a fade reset the files to the playback position: `sndFile` to the oldest file whose step has not
/// been reported, so that the owner of the chain finds all of it, and each file to its first sample frame
/// that has not been played. A sound that continues as a virtual voice is thus at the right position.
///
/// A channel stopped within an update has been taken from its sound, which fades out over the handover fade;
/// one stopped between two updates was stopped by the game and fades out over the next block that is mixed.
/// Both use only data that have been read already.
class OpenALChannel final : public DriverChannel
{
public:
    explicit OpenALChannel(const ChannelServices& channelServices);

    void Play() override;
    /// Waits for a read in progress and resets the files; see above.
    void Stop() override;
    void FadeIn(int ms) override;
    /// A duration of 0 or less ends the channel at the next update.
    void FadeOut(int ms) override;
    void SkipFade(int ms) override;
    /// Based on what the device has mixed, which is some milliseconds ahead of the audible output.
    unsigned long GetRemainLength() override;
    /// Clamped to 0.0..1.0; NaN is ignored.
    void SetGain(float newGain) override;
    /// These are ignored on a non-positional channel, as is NaN.
    void SetPosition(const Vector3& newPosition) override;
    void SetMinMaxDistance(float minDistance, float maxDistance, bool cutout) override;
    void SetCone(float innerAngle, float outerAngle, float outerGain) override;
    void SetDirection(const Vector3& direction) override;
    /// Accepts 100 to 100 000 Hz, and 0 for the file's own rate, on every channel without insert effects.
    /// Takes effect after the queued data, or at once with the grade "fast".
    bool SetFrequency(unsigned long hz) override;
    unsigned long GetFrequency() override;

    /// Sets the direct path of a positional sound and its path into the listener's room, if OpenAL has
    /// effects. The getter returns the applied properties, each clamped to its range; false if none have been
    /// set.
    bool SetFXEnvReverbSourceProperties(const FXEnvReverbSourceProperties* wanted) override;
    bool GetFXEnvReverbSourceProperties(FXEnvReverbSourceProperties* record) override;
    /// The sound's own room as it is applied. False if it has none, or if no room was available when the
    /// sound started; it plays without one then.
    bool GetFXEnvReverbListenerProperties(FXEnvReverb* record) override;

    /// These return the applied parameters, each clamped to its range. False if the sound does not have the
    /// effect. They wait for a read in progress.
    bool GetFXChorus(FXChorus* record) override { return GetParameters(record); }
    bool GetFXFlanger(FXFlanger* record) override { return GetParameters(record); }
    bool GetFXEcho(FXEcho* record) override { return GetParameters(record); }
    bool GetFXDistortion(FXDistortion* record) override { return GetParameters(record); }
    bool GetFXCompressor(FXCompressor* record) override { return GetParameters(record); }
    bool GetFXParamEq(FXParamEq* record) override { return GetParameters(record); }
    bool GetFXGargle(FXGargle* record) override { return GetParameters(record); }
    bool GetFXWavesReverb(FXWavesReverb* record) override { return GetParameters(record); }

    /// Takes effect after the queued data, with a ramp of 50 ms. Clamped to 0.0..1.0; NaN is ignored.
    void SetLowPass(float gainHF) override;

    /// Clamped to 0.5..2.0, and the resulting rate to 100..100 000 Hz; NaN is ignored. Takes effect after the
    /// queued data, with a glide of 50 ms, or at once with the grade "fast".
    void SetPitch(float factor) override;

    void SetStartTime(std::int64_t gameMicroseconds, std::int64_t agoMicroseconds) override;

    // For the driver, on the task thread.

    bool IsFree() const { return state == State::Free; }

    /// Prepares a free channel to play `file` with the effects of the list, which is copied. Returns false
    /// and leaves the channel free if no voice is available.
    bool Prepare(unsigned int flags, SndFile* file, const SndFXList& effects);

    /// Handles a change of the listener's position or of the rolloff factor.
    void OnListenerMoved();
    void OnRolloffChanged();

    /// Takes the oldest unreported step to another file that has become audible. If it returns true, the step
    /// counts as reported, so the caller must report the event at once.
    bool TakeChange(SndFileChange& change);

    /// Whether the channel has reached its end. If it returns true, the channel waits for Release(), which
    /// must follow the event.
    bool TakeEnd();
    void Release() { state = State::Free; }

    // For the pumping thread.

    /// Whether the sound fades out or changes rooms.
    bool IsChanging();

    /// Called when the device has been lost or found, after the voice has changed. Needs a ContextScope.
    void OnDeviceChanged();

    /// Reads and queues missing data, continues playback, and sets the level of a fade for `time` on the
    /// device's clock. Does nothing if the channel's lock is held elsewhere.
    void Pump(const PumpTargets& ahead, std::int64_t time);

    /// The same, but waits for the lock and stops before data are resampled: it then returns true. Resample()
    /// does that, on any thread and without a ContextScope, or else EndRound(), which must follow.
    bool BeginRound(const PumpTargets& ahead, std::int64_t time);
    void Resample();
    void EndRound(const PumpTargets& ahead);

    /// Reads a sound that has begun `microseconds` ahead of the queue. Returns false if it has yet to begin.
    /// Any thread, without a ContextScope.
    bool ReadAhead(std::int64_t microseconds);

private:
    enum class State
    {
        Free,
        Ready, ///< Prepared, but Play() has not been called.
        Playing,
        Ending ///< The end is being reported.
    };

    /// The size of the next block in sample frames, and how it is played.
    struct Wanted
    {
        int sampleFrames = 0;
        Playback playback;
        std::int64_t missing = 0; ///< In total, for this block and further ones.
    };

    template<class Record>
    bool GetParameters(Record* record);

    /// The time at which the first sample frame is to be played.
    struct Start
    {
        bool isKept = false; ///< SetStartTime() has been called.
        std::int64_t time = 0; ///< On the machine's clock, in nanoseconds; the time of Play() if not kept.
        std::int64_t delay = 0; ///< In microseconds from Play(), for a rendered output.
    };

    void BeginSound();
    void PlaceStart();
    void StartRound(std::int64_t time);
    Wanted CountWanted(const PumpTargets& ahead);
    int FillBlock();
    void QueueBlocks(const PumpTargets& ahead);
    void QueueBlock(int sampleFrames, bool exhausted);
    void AppendToVoice(int sampleFrames);
    void TakeSteps();
    void UpdateFileEnd();
    double GetSpeedHz() const;
    double GetPlayedHz() const;
    double GetStreamHeard() const;
    double GetStreamDue() const;
    void PutFilesBack();
    void QueueFadeOut(std::int64_t microseconds);
    void ApplyGain(std::int64_t time);
    void ApplySpeed();
    void UpdateCutOut();
    void GiveBackVoice(bool isCutOff, int fadeMs);
    void WakeFeeder();

    ChannelServices services;

    // Task thread only.
    State state = State::Free;
    bool positional = false;
    bool hasEffects = false; ///< Insert effects, which fix the rate.
    Vector3 position;
    DistanceRange range;
    Cone cone;

    // Guarded by the channel's lock.
    PcmFeed feed;
    Wanted wantedNext; ///< The next block of this round.
    std::optional<int> filled; ///< The size of that block, once the feed has produced it.

    /// Whether there is anything to pump. Lets the pumping thread skip channels; it checks again under the
    /// lock. Publishes no other data.
    std::atomic<bool> isPumped = false;

    std::mutex outputMutex; ///< Guards all members below.
    Voice* voice = nullptr; ///< Set in every state but Free and Ending.
    SourceAcoustics acoustics;
    HeardMap heardMap;
    FileSteps steps;
    std::int64_t fileEnd = 0; ///< End of the file being read, in sample frames of the stream.
    int passLength = 0; ///< Sample frames of a loop; 0 without one.
    int afterLoop = 0; ///< Sample frames of the file after the end of the loop.
    std::int64_t wraps = 0; ///< Number of restarts of the loop before `fileEnd`.
    int fileRateHz = 0; ///< Of the stream.
    int convertedHz = 0; ///< Of the queued data, if converted; otherwise 0.
    Playback playback;
    Start start;
    bool isExhausted = false; ///< The last check of the queue found nothing to read.
    float gain = 1.0F;
    bool isCutOut = false;
    FadeOutRamp fadeOut;
};

} // namespace Quon
