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

/// One source of OpenAL with the buffers that are queued on it. Made and owned by the VoicePool, lent to one
/// channel at a time. It has no lock: the channel brings one, and the calling thread a scope of the device.
///
/// It counts the sample frames that have been queued since Begin() and those of them that have been heard.
///
/// *Silence.* A voice can be without a source, when there is no device for it. It then lets what is queued go
/// by at the speed of the time, and all else is as if it were heard; its settings it keeps for the next
/// source.
class Voice : public Allocated
{
public:
    static constexpr int bufferCount = 8;

    Voice() = default;
    Voice(const Voice&) = delete;
    Voice& operator=(const Voice&) = delete;
    ~Voice();

    /// Gets a source and its buffers, and goes on with it where the sound has got to. `bypassesHrtf` tells
    /// that the device works sounds out for two ears, and what is not positional has to be kept out of that.
    /// False when OpenAL has no more sources: the voice stays silent.
    bool Create(bool bypassesHrtf);

    /// Gives the source back and goes on in silence.
    void GoSilent();

    bool HasSource() const { return source != 0; }

    /// Makes a stopped, empty voice ready for a new sound, with all settings at their beginning: gain and
    /// pitch 1, no distance, no cone. A voice that is not positional is heard as it stands.
    void Begin(bool positional);

    /// Stops at once, in the middle of whatever plays, and empties the queue.
    void Halt();

    bool IsPlaying() const;

    /// OpenAL's name of the source, 0 if there is none, for settings that are not made here. Begin() leaves
    /// those as they are.
    ALuint GetSource() const { return source; }

    /// Whether one more block can be queued.
    bool HasRoom() const { return queueLength < bufferCount; }

    /// Queues a block of PCM, which is copied, and plays: from the start, or on from where the queue had run
    /// dry. All blocks of one sound have one rate and one number of channels, 1 or 2. Needs room.
    void Queue(const float* pcm, int sampleFrames, int channels, int rateHz);

    /// Takes back the blocks that have been heard.
    void Reclaim();

    std::int64_t GetFramesQueued() const { return framesQueued; }
    std::int64_t GetFramesHeard() const;

    /// How far the queue is ahead of what is heard, in sample frames. Less than 0 in silence when more time
    /// has gone by than was queued for: the sound has to catch up. To be asked about every 10 ms.
    std::int64_t GetFramesAhead();

    /// Whether the sound has got another source, or its first, in the middle. True once for each time.
    bool TakeReturn();

    /// In this version of OpenAL a change of gain is spread over the next block that is mixed.
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

    /// Where a sound was heard last.
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
        blocks; ///< A ring: the queue begins at `first`, behind it are free buffers.
    int first = 0;
    int queueLength = 0; ///< 0 in silence.
    std::int64_t framesQueued = 0;
    std::int64_t framesReturned = 0;
    int rate = 0; ///< Of the sound that is queued,
    int width = 1; ///< and its channels.
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
