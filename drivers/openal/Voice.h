#pragma once

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
/// channel at a time. It has no lock: the channel brings one, and the calling thread a ContextScope.
///
/// It counts the sample frames that have been queued since Begin() and those of them that have been heard.
class Voice : public Allocated
{
public:
    static constexpr int bufferCount = 8;

    Voice() = default;
    Voice(const Voice&) = delete;
    Voice& operator=(const Voice&) = delete;
    ~Voice();

    /// Gets the source and its buffers. False when OpenAL has no more of them.
    bool Create();

    /// Makes a stopped, empty voice ready for a new sound, with all settings at their beginning: gain and
    /// pitch 1, no distance, no cone. A voice that is not positional is heard as it stands; if the device
    /// works sounds out for two ears, `bypassesHrtf` keeps it out of that.
    void Begin(bool positional, bool bypassesHrtf);

    /// Stops at once, in the middle of whatever plays, and empties the queue.
    void Halt();

    bool IsPlaying() const;

    /// OpenAL's name of the source, for settings that are not made here. Begin() leaves those as they are.
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

    /// In this version of OpenAL a change of gain is spread over the next block that is mixed.
    void SetGain(float newGain);
    void SetPitch(float pitch);
    void SetPosition(const Vector3& position);
    void SetDistances(float minDistance, float maxDistance);
    void SetRolloffFactor(float factor);
    void SetCone(float innerAngle, float outerAngle, float outerGain);
    void SetDirection(const Vector3& direction);

private:
    struct Block
    {
        ALuint buffer = 0;
        int sampleFrames = 0;
    };

    ALint GetState() const;
    Block& At(int index) { return blocks[static_cast<std::size_t>((first + index) % bufferCount)]; }
    void DropOldest(int count);
    void KeepOnlyNewest();

    ALuint source = 0;
    std::array<Block, bufferCount>
        blocks; ///< A ring: the queue begins at `first`, behind it are free buffers.
    int first = 0;
    int queueLength = 0;
    std::int64_t framesQueued = 0;
    std::int64_t framesReturned = 0;
    float gain = 1.0f;
};

} // namespace Quon
