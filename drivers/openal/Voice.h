#pragma once

#include "drivers/openal/SilentClock.h"
#include "harmonet/engine/Alloc.h"
#include "harmonet/engine/Vector.h"

#include <AL/al.h>
#include <AL/alc.h>
#include <AL/alext.h>

#include <array>
#include <cstdint>

namespace Quon
{

/// One OpenAL source with its queued buffers. Created and owned by the VoicePool, lent to one channel at a
/// time. It has no lock: the channel must hold its own, and the calling thread needs a scope of the device.
///
/// It counts the sample frames queued since Begin(), and those of them that have been played.
///
/// *Silence.* A voice has no source while there is no device for it. It then consumes its queue in real time,
/// and everything else works as usual; its settings are kept for the next source.
class Voice : public Allocated
{
public:
    static constexpr int bufferCount = 8;

    Voice() = default;
    Voice(const Voice&) = delete;
    Voice& operator=(const Voice&) = delete;
    ~Voice();

    /// Creates a source and its buffers, and continues the sound at its current position. `bypassesHrtf`
    /// means that the device uses HRTF, which non-positional sounds must bypass. Returns false if OpenAL has
    /// no sources left: the voice stays silent.
    bool Create(bool bypassesHrtf);

    /// Deletes the source and continues in silence.
    void GoSilent();

    bool HasSource() const { return source != 0; }

    /// Prepares a stopped, empty voice for a new sound and resets all settings: gain and pitch 1, no
    /// distance, no cone. A non-positional voice is not spatialised.
    void Begin(bool positional);

    /// Stops at once and empties the queue.
    void Halt();

    bool IsPlaying() const;

    /// OpenAL's name of the source, 0 if there is none, for settings that are not made here. Begin() does not
    /// change those.
    ALuint GetSource() const { return source; }

    /// Whether one more block can be queued.
    bool HasRoom() const { return queueLength < bufferCount; }

    /// Queues a block of PCM, which is copied, and starts playback, or continues it after an underrun. All
    /// blocks of one sound must have the same rate and number of channels, 1 or 2. Needs room.
    void Queue(const float* pcm, int sampleFrames, int channels, int rateHz);

    /// Unqueues the blocks that have been played.
    void Reclaim();

    std::int64_t GetFramesQueued() const { return framesQueued; }
    /// Never less than before, also when the device is lost or replaced.
    std::int64_t GetFramesHeard();

    /// How far the queue is ahead of playback, in sample frames. Negative in silence if more time has passed
    /// than was queued: the sound must catch up. Call it about every 10 ms.
    std::int64_t GetFramesAhead();

    /// Whether the sound has received a source in the middle of playback. Returns true once per event.
    bool TakeReturn();

    /// OpenAL Soft applies a change of gain over the next block that is mixed.
    void SetGain(float newGain);
    float GetGain() const { return gain; }
    void SetPitch(float newPitch);
    void SetPosition(const Vector3& newPosition);
    void SetDistances(float newMinDistance, float newMaxDistance);
    void SetRolloffFactor(float factor);
    void SetCone(float newInnerAngle, float newOuterAngle, float newOuterGain);
    void SetDirection(const Vector3& newDirection);

private:
    struct Block
    {
        ALuint buffer = 0;
        int sampleFrames = 0;
    };

    /// The last known playback position.
    struct Sighting
    {
        std::int64_t sampleFrames = 0;
        std::int64_t time = 0;
    };

    void DeleteSource();
    void ApplySettings();
    void BridgeGap();
    double GetSpeed() const { return rate * double{pitch}; }
    ALint GetState() const;
    Block& At(int index) { return blocks[static_cast<std::size_t>((first + index) % bufferCount)]; }
    void Append(const float* pcm, int sampleFrames);
    void QueueOnSource(const float* pcm, int sampleFrames);
    void DropOldest(int count);
    void KeepOnlyNewest();

    ALuint source = 0; ///< 0: silent.
    std::array<Block, bufferCount>
        blocks; ///< A ring: the queue begins at `first`, followed by the free buffers.
    int first = 0;
    int queueLength = 0; ///< 0 in silence.
    std::int64_t framesQueued = 0;
    std::int64_t framesReturned = 0;
    int rate = 0; ///< Of the queued sound.
    int width = 1; ///< Channels of the queued sound.
    Sighting lastSeen;
    SilentClock clock; ///< Runs in silence, from the first block on.
    bool hasReturned = false;

    bool bypassesHrtf = false;
    bool isPositional = false;
    float gain = 1.0F;
    float pitch = 1.0F;
    Vector3 position;
    float minDistance = 1.0F;
    float maxDistance = 1.0F;
    float rolloffFactor = 1.0F;
    float innerAngle = 360.0F;
    float outerAngle = 360.0F;
    float outerGain = 1.0F;
    Vector3 direction;
};

} // namespace Quon
