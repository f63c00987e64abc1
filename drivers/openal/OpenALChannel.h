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

namespace Quon
{

class Feeder;
class OutputDevice;
class Voice;
class VoicePool;

/// How far a channel is to read ahead of what is heard, in microseconds.
struct PumpTargets
{
    std::int64_t target; ///< Blocks are queued until that much is ahead.
    std::int64_t minBlock; ///< And each is at least that long,
    std::int64_t maxBlock; ///< and at most that.
    std::int64_t tailTarget; ///< Of effects that sound after the end: what is appended then waits that long.
};

/// The listener, as far as channels have to know of it. Task thread only.
struct Listener
{
    Vector3 position;
    float rolloffFactor = 1.0F;
};

/// What a channel uses of its driver. All of it outlives the channel.
struct ChannelServices
{
    const DriverOptions& options;
    const StartTimes& startTimes;
    OutputDevice& device;
    VoicePool& voices;
    Acoustics& acoustics;
    const Listener& listener;
    Feeder* feeder; ///< Null when the output is rendered by call.
};

/// One sound on the OpenAL output. Owned by the driver, in a fixed number, and used again and again.
///
/// The task thread makes all calls; beside it one thread pumps: it reads from the file, queues what it has
/// read and carries out fades, with Pump(). Three kinds of members follow from that. Those of the task thread
/// alone need no lock. Those of reading are under the channel's lock, which is held while a file is read.
/// Those of the output are under `outputMutex`, which is not, so that setting a gain or asking for the
/// remaining time never waits for the disk. The channel's lock is taken first, then a ContextScope, then the
/// mutex.
///
/// The sound's insert effects work on what is read, before it is queued. When there is nothing more to read
/// they sound on, until they have fallen by 60 dB or for 3 s, and only then the channel ends; the remaining
/// length is 0 meanwhile. Stop() cuts that off.
///
/// A step to the next file is reported when the last sample frame before it has been heard. Stop() and the
/// end of a fade put the files back to what was heard: `sndFile` to the oldest file that has not been
/// reported as left, so that whoever owns the chain finds all of it, and each file to its first sample frame
/// that has not been heard. So a sound that runs on without a channel is where time says.
///
/// A channel that is stopped within an update has been taken from its sound, which fades out over the
/// handover fade; one that is stopped between two updates was stopped by the game and falls silent over the
/// next block that is mixed. Both use nothing but what has been read already.
class OpenALChannel final : public DriverChannel
{
public:
    explicit OpenALChannel(const ChannelServices& channelServices);

    void Play() override;
    /// Waits for a read that is going on, and puts the files back; see above.
    void Stop() override;
    void FadeIn(int ms) override;
    /// A time of 0 or less ends the channel at the next update.
    void FadeOut(int ms) override;
    void SkipFade(int ms) override;
    /// Counts by what the device has mixed, which is some milliseconds ahead of the ear.
    unsigned long GetRemainLength() override;
    /// Held to 0.0 to 1.0; what is no number is ignored.
    void SetGain(float newGain) override;
    /// These are ignored on a channel that is not positional, and so are values that are no numbers.
    void SetPosition(const Vector3& newPosition) override;
    void SetMinMaxDistance(float minDistance, float maxDistance, bool cutout) override;
    void SetCone(float innerAngle, float outerAngle, float outerGain) override;
    void SetDirection(const Vector3& direction) override;
    /// Takes 100 to 100 000 Hz, and 0 for the file's own rate, on every channel without insert effects; heard
    /// after what is queued, or with the grade "fast" at once.
    bool SetFrequency(unsigned long hz) override;
    unsigned long GetFrequency() override;

    /// The way into the listener's room and the direct one, of a positional sound, where OpenAL has effects.
    /// The getter tells those that are applied, each held to its range; false if none have been set.
    bool SetFXEnvReverbSourceProperties(const FXEnvReverbSourceProperties* wanted) override;
    bool GetFXEnvReverbSourceProperties(FXEnvReverbSourceProperties* record) override;
    /// The room that the sound brought with it, as it is applied. False if it has none, or if there was none
    /// left when the sound started; it plays without then.
    bool GetFXEnvReverbListenerProperties(FXEnvReverb* record) override;

    /// These tell the parameters that are applied, each held to its range. False if the sound does not have
    /// the effect. They wait for a read that is going on.
    bool GetFXChorus(FXChorus* record) override { return GetParameters(record); }
    bool GetFXFlanger(FXFlanger* record) override { return GetParameters(record); }
    bool GetFXEcho(FXEcho* record) override { return GetParameters(record); }
    bool GetFXDistortion(FXDistortion* record) override { return GetParameters(record); }
    bool GetFXCompressor(FXCompressor* record) override { return GetParameters(record); }
    bool GetFXParamEq(FXParamEq* record) override { return GetParameters(record); }
    bool GetFXGargle(FXGargle* record) override { return GetParameters(record); }
    bool GetFXWavesReverb(FXWavesReverb* record) override { return GetParameters(record); }

    /// Heard after what is queued, with a ramp of 50 ms. Clamped to 0.0 to 1.0; NaN is ignored.
    void SetLowPass(float gainHF) override;

    /// Held to 0.5 to 2.0, and the rate that comes of it to 100 to 100 000 Hz; NaN is ignored. Heard after
    /// what is queued, with a glide of 50 ms, or with the grade "fast" at once.
    void SetPitch(float factor) override;

    void SetStartTime(std::int64_t gameMicroseconds, std::int64_t agoMicroseconds) override;

    // For the driver, on the task thread.

    bool IsFree() const { return state == State::Free; }

    /// Makes a free channel ready to play `file` with the effects of the list, which is copied. False, and it
    /// stays free, if there is no voice for it.
    bool Prepare(unsigned int flags, SndFile* file, const SndFXList& effects);

    /// Follows a change of the listener's position or of the rolloff factor.
    void OnListenerMoved();
    void OnRolloffChanged();

    /// Gives the oldest step to another file that has been heard and not reported. After true the step counts
    /// as reported, so the event has to follow at once.
    bool TakeChange(SndFileChange& change);

    /// Whether the channel has come to its end. After true it waits for Release(), which has to follow the
    /// event.
    bool TakeEnd();
    void Release() { state = State::Free; }

    // For the thread that pumps.

    /// Whether the sound fades out, or is on its way into another room.
    bool IsChanging();

    /// The device has gone or come; the voice has changed already. Needs a ContextScope.
    void OnDeviceChanged();

    /// Reads and queues what is missing, plays on, and sets the level of a fade to what it is to be at `time`
    /// on the device's clock. If `mayWait` is false and the channel's lock is taken, it does nothing this
    /// time.
    void Pump(const PumpTargets& ahead, std::int64_t time, bool mayWait);

    /// Reads a sound that has begun so many microseconds ahead of what is queued. Any thread, without a
    /// ContextScope.
    void ReadAhead(std::int64_t microseconds);

private:
    enum class State
    {
        Free,
        Ready, ///< Made, but not yet told to play.
        Playing,
        Ending ///< The end is being reported.
    };

    /// The next block: how many sample frames, and how they are played.
    struct Wanted
    {
        int sampleFrames;
        Playback playback;
        std::int64_t missing; ///< In all, for this block and further ones.
    };

    template<class Record>
    bool GetParameters(Record* record);

    /// When the first sample frame is to be heard.
    struct Start
    {
        bool isKept = false; ///< The game has told when it asked for the sound.
        std::int64_t time = 0; ///< Of the machine, in nanoseconds; when Play() was called if it is not kept.
        std::int64_t delay = 0; ///< In microseconds from Play(), for a rendered output.
    };

    void BeginSound();
    void PlaceStart();
    void PumpRound(const PumpTargets& ahead, std::int64_t time);
    void StartRound(std::int64_t time);
    Wanted CountWanted(const PumpTargets& ahead);
    void QueueBlock(int sampleFrames, bool ranDry);
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

    // Under the channel's lock.
    PcmFeed feed;

    /// Whether there is anything to pump. Tells the pumping thread which channels it can pass over; what it
    /// then finds it looks at again under the lock. Publishes nothing.
    std::atomic<bool> isPumped = false;

    std::mutex outputMutex; ///< Guards all that follows.
    Voice* voice = nullptr; ///< Present in every state but Free and Ending.
    SourceAcoustics acoustics;
    HeardMap heardMap;
    FileSteps steps;
    std::int64_t fileEnd = 0; ///< Where the file that is read now ends, in sample frames of the stream.
    int passLength = 0; ///< Sample frames of a loop; 0 without one.
    int afterLoop = 0; ///< Sample frames of the file after the end of the loop.
    std::int64_t wraps = 0; ///< How often the loop has begun anew before `fileEnd`.
    int fileRateHz = 0; ///< Of the stream.
    int convertedHz = 0; ///< Of what is queued, if that is converted; otherwise 0.
    Playback playback;
    Start start;
    bool isDry = false; ///< The last look at the queue found nothing to read.
    float gain = 1.0F;
    bool isCutOut = false;
    Fall fadeOut;
};

} // namespace Quon
