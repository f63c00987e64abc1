#include "drivers/openal/Voice.h"

#include "drivers/openal/DeviceSource.h"
#include "drivers/openal/SteadyTime.h"

#include <algorithm>
#include <utility>

namespace Quon
{

namespace
{
// After a longer halt of the whole program, as in a debugger, a silent sound is late.
constexpr double maxCatchUpSeconds = 10.0;

bool IsDeviceLost()
{
    return !DeviceSource::GetMachine().IsConnected(alcGetContextsDevice(alcGetCurrentContext()));
}

} // namespace

Voice::~Voice()
{
    DeleteSource();
}

bool Voice::Create(bool newBypassesHrtf)
{
    bypassesHrtf = newBypassesHrtf;
    alGetError();
    ALuint newSource = 0;
    alGenSources(1, &newSource);
    if (alGetError() != AL_NO_ERROR) {
        return false;
    }
    source = newSource;
    for (Block& block : blocks) {
        alGenBuffers(1, &block.buffer);
    }
    if (alGetError() != AL_NO_ERROR) {
        DeleteSource();
        return false;
    }
    ApplySettings();
    BridgeGap();
    return true;
}

void Voice::DeleteSource()
{
    if (source == 0) {
        return;
    }
    alDeleteSources(1, &source);
    source = 0;
    for (Block& block : blocks) {
        alDeleteBuffers(1, &block.buffer);
        block.buffer = 0;
    }
    queueLength = 0;
}

void Voice::GoSilent()
{
    if (source == 0) {
        return;
    }
    GetFramesHeard();
    if (framesQueued > 0) {
        clock.Start(lastSeen.sampleFrames, lastSeen.time, GetSpeed());
    }
    DeleteSource();
}

// Data queued and dropped in silence cannot be played any more. The new source skips them, and the sound
// continues after them at the right time.
void Voice::BridgeGap()
{
    if (!clock.IsRunning()) {
        return;
    }
    const std::int64_t heard = std::min(clock.GetFrames(GetSteadyNanoseconds()), framesQueued);
    clock.Stop();
    hasReturned = true;
    framesReturned = heard;
    const auto ahead = static_cast<int>(framesQueued - heard);
    if (ahead > 0) {
        const EngineVector<float> gap(static_cast<std::size_t>(ahead) * static_cast<std::size_t>(width));
        QueueOnSource(gap.data(), ahead);
    }
}

bool Voice::TakeReturn()
{
    return std::exchange(hasReturned, false);
}

void Voice::Begin(bool positional)
{
    hasReturned = false;
    isPositional = positional;
    gain = 1.0F;
    pitch = 1.0F;
    position = {};
    minDistance = maxDistance = 1.0F;
    rolloffFactor = positional ? 1.0F : 0.0F;
    innerAngle = outerAngle = 360.0F;
    outerGain = 1.0F;
    direction = {};
    ApplySettings();
}

void Voice::ApplySettings()
{
    if (source == 0) {
        return;
    }
    alSourcei(source, AL_SOURCE_RELATIVE, isPositional ? AL_FALSE : AL_TRUE);
    // Set needlessly, it would silence the sound on a mono device.
    alSourcei(source, AL_DIRECT_CHANNELS_SOFT, !isPositional && bypassesHrtf ? AL_TRUE : AL_FALSE);
    alSourcef(source, AL_GAIN, gain);
    SetPitch(pitch);
    SetPosition(position);
    SetDistances(minDistance, maxDistance);
    SetRolloffFactor(rolloffFactor);
    SetCone(innerAngle, outerAngle, outerGain);
    SetDirection(direction);
}

void Voice::Halt()
{
    clock.Stop();
    framesQueued = 0;
    framesReturned = 0;
    if (source == 0) {
        return;
    }
    alSourceStop(source);
    alSourcei(source, AL_BUFFER, 0);
    alSourceRewind(source);
    queueLength = 0;
}

ALint Voice::GetState() const
{
    ALint state = AL_INITIAL;
    alGetSourcei(source, AL_SOURCE_STATE, &state);
    return state;
}

bool Voice::IsPlaying() const
{
    if (source != 0) {
        return GetState() == AL_PLAYING;
    }
    return clock.IsRunning() && clock.GetFrames(GetSteadyNanoseconds()) < framesQueued;
}

void Voice::Queue(const float* pcm, int sampleFrames, int channels, int rateHz)
{
    rate = rateHz;
    width = channels;
    if (framesQueued == 0) {
        lastSeen = {0, GetSteadyNanoseconds()};
    }
    framesQueued += sampleFrames;
    if (source != 0) {
        QueueOnSource(pcm, sampleFrames);
    }
    else if (!clock.IsRunning()) {
        clock.Start(framesQueued - sampleFrames, GetSteadyNanoseconds(), GetSpeed());
    }
}

void Voice::QueueOnSource(const float* pcm, int sampleFrames)
{
    Append(pcm, sampleFrames);
    const ALint state = GetState();
    if (state == AL_PLAYING) {
        return;
    }
    // A stopped source would restart with the oldest block, even if it has only just stopped.
    if (state == AL_STOPPED) {
        KeepOnlyNewest();
    }
    alSourcePlay(source);
}

void Voice::Append(const float* pcm, int sampleFrames)
{
    Block& block = At(queueLength);
    block.sampleFrames = sampleFrames;
    const ALenum format = width == 1 ? AL_FORMAT_MONO_FLOAT32 : AL_FORMAT_STEREO_FLOAT32;
    const auto bytes = static_cast<ALsizei>(sizeof(float)) * sampleFrames * width;
    alBufferData(block.buffer, format, pcm, bytes, rate);
    alSourceQueueBuffers(source, 1, &block.buffer);
    ++queueLength;
}

void Voice::Reclaim()
{
    if (source == 0) {
        return;
    }
    ALint heard = 0;
    alGetSourcei(source, AL_BUFFERS_PROCESSED, &heard);
    DropOldest(heard);
}

void Voice::DropOldest(int count)
{
    for (; count > 0 && queueLength > 0; --count) {
        ALuint buffer = 0;
        alSourceUnqueueBuffers(source, 1, &buffer);
        framesReturned += At(0).sampleFrames;
        first = (first + 1) % bufferCount;
        --queueLength;
    }
}

void Voice::KeepOnlyNewest()
{
    if (queueLength <= 1) {
        return;
    }
    const Block newest = At(queueLength - 1);
    DropOldest(queueLength);
    framesReturned -= newest.sampleFrames;
    first = (first + bufferCount - 1) % bufferCount;
    queueLength = 1;
    alSourceQueueBuffers(source, 1, &newest.buffer);
}

std::int64_t Voice::GetFramesHeard()
{
    const std::int64_t now = GetSteadyNanoseconds();
    if (source == 0) {
        return clock.IsRunning() ? std::min(clock.GetFrames(now), framesQueued) : framesReturned;
    }
    // Read the offset first: if the source still plays afterwards, it was playing during the read.
    ALint offset = 0;
    alGetSourcei(source, AL_SAMPLE_OFFSET, &offset);
    switch (GetState()) {
    case AL_PLAYING:
        lastSeen = {framesReturned + offset, now};
        break;
    case AL_STOPPED:
        // The sources of a lost device are all stopped and do not report their position.
        if (IsDeviceLost()) {
            SilentClock since;
            since.Start(lastSeen.sampleFrames, lastSeen.time, GetSpeed());
            return std::min(since.GetFrames(now), framesQueued);
        }
        lastSeen = {framesQueued, now};
        break;
    default:
        lastSeen = {framesReturned, now};
        break;
    }
    return lastSeen.sampleFrames;
}

std::int64_t Voice::GetFramesAhead()
{
    const std::int64_t now = GetSteadyNanoseconds();
    if (source == 0) {
        const auto maximum = static_cast<std::int64_t>(maxCatchUpSeconds * GetSpeed());
        if (clock.IsRunning() && clock.GetFrames(now) > framesQueued + maximum) {
            clock.Start(framesQueued + maximum, now, GetSpeed());
        }
        return clock.IsRunning() ? framesQueued - clock.GetFrames(now) : framesQueued - framesReturned;
    }
    return framesQueued - GetFramesHeard();
}

void Voice::SetGain(float newGain)
{
    // Setting a source makes the mixer recompute it, even for the same value.
    if (newGain == gain) {
        return;
    }
    gain = newGain;
    if (source != 0) {
        alSourcef(source, AL_GAIN, gain);
    }
}

void Voice::SetPitch(float newPitch)
{
    pitch = newPitch;
    if (source != 0) {
        alSourcef(source, AL_PITCH, pitch);
    }
    else if (clock.IsRunning()) {
        clock.SetSpeed(GetSpeed(), GetSteadyNanoseconds());
    }
}

void Voice::SetPosition(const Vector3& newPosition)
{
    position = newPosition;
    if (source != 0) {
        alSource3f(source, AL_POSITION, position.x, position.y, position.z);
    }
}

void Voice::SetDistances(float newMinDistance, float newMaxDistance)
{
    minDistance = newMinDistance;
    maxDistance = newMaxDistance;
    if (source != 0) {
        alSourcef(source, AL_REFERENCE_DISTANCE, minDistance);
        alSourcef(source, AL_MAX_DISTANCE, maxDistance);
    }
}

void Voice::SetRolloffFactor(float factor)
{
    rolloffFactor = factor;
    if (source != 0) {
        alSourcef(source, AL_ROLLOFF_FACTOR, factor);
    }
}

void Voice::SetCone(float newInnerAngle, float newOuterAngle, float newOuterGain)
{
    innerAngle = newInnerAngle;
    outerAngle = newOuterAngle;
    outerGain = newOuterGain;
    if (source != 0) {
        alSourcef(source, AL_CONE_INNER_ANGLE, innerAngle);
        alSourcef(source, AL_CONE_OUTER_ANGLE, outerAngle);
        alSourcef(source, AL_CONE_OUTER_GAIN, outerGain);
    }
}

void Voice::SetDirection(const Vector3& newDirection)
{
    direction = newDirection;
    if (source != 0) {
        alSource3f(source, AL_DIRECTION, direction.x, direction.y, direction.z);
    }
}

} // namespace Quon
