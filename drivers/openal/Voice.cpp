#include "drivers/openal/Voice.h"

namespace Quon
{

Voice::~Voice()
{
    if (source == 0) {
        return;
    }
    Halt();
    alDeleteSources(1, &source);
    for (const Block& block : blocks) {
        alDeleteBuffers(1, &block.buffer);
    }
}

bool Voice::Create()
{
    alGetError();
    alGenSources(1, &source);
    if (alGetError() != AL_NO_ERROR) {
        source = 0;
        return false;
    }
    for (Block& block : blocks) {
        alGenBuffers(1, &block.buffer);
    }
    return alGetError() == AL_NO_ERROR;
}

void Voice::Begin(bool positional, bool bypassesHrtf)
{
    framesQueued = 0;
    framesReturned = 0;
    alSourcei(source, AL_SOURCE_RELATIVE, positional ? AL_FALSE : AL_TRUE);
    // Without need it would silence the sound on a device of one channel.
    alSourcei(source, AL_DIRECT_CHANNELS_SOFT, !positional && bypassesHrtf ? AL_TRUE : AL_FALSE);
    SetGain(1.0f);
    SetPitch(1.0f);
    SetPosition({});
    SetDistances(1.0f, 1.0f);
    SetRolloffFactor(positional ? 1.0f : 0.0f);
    SetCone(360.0f, 360.0f, 1.0f);
    SetDirection({});
}

void Voice::Halt()
{
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
    return GetState() == AL_PLAYING;
}

void Voice::Queue(const float* pcm, int sampleFrames, int channels, int rateHz)
{
    if (GetState() == AL_STOPPED) {
        Reclaim();
    }
    Block& block = At(queueLength);
    block.sampleFrames = sampleFrames;
    const ALenum format = channels == 1 ? AL_FORMAT_MONO_FLOAT32 : AL_FORMAT_STEREO_FLOAT32;
    const auto bytes = static_cast<ALsizei>(sizeof(float)) * sampleFrames * channels;
    alBufferData(block.buffer, format, pcm, bytes, rateHz);
    alSourceQueueBuffers(source, 1, &block.buffer);
    ++queueLength;
    framesQueued += sampleFrames;
    const ALint state = GetState();
    if (state == AL_PLAYING) {
        return;
    }
    // A stopped source would begin again with the oldest block, also if it stopped only just now.
    if (state == AL_STOPPED) {
        KeepOnlyNewest();
    }
    alSourcePlay(source);
}

void Voice::Reclaim()
{
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

std::int64_t Voice::GetFramesHeard() const
{
    // The offset first: if the source still plays after that, it played while it was read.
    ALint offset = 0;
    alGetSourcei(source, AL_SAMPLE_OFFSET, &offset);
    switch (GetState()) {
    case AL_PLAYING:
        return framesReturned + offset;
    case AL_STOPPED:
        return framesQueued;
    default:
        return framesReturned;
    }
}

void Voice::SetGain(float newGain)
{
    // A source that is set has to be worked out anew by the mixer, also to the same value.
    if (newGain != gain) {
        gain = newGain;
        alSourcef(source, AL_GAIN, gain);
    }
}

void Voice::SetPitch(float pitch)
{
    alSourcef(source, AL_PITCH, pitch);
}

void Voice::SetPosition(const Vector3& position)
{
    alSource3f(source, AL_POSITION, position.x, position.y, position.z);
}

void Voice::SetDistances(float minDistance, float maxDistance)
{
    alSourcef(source, AL_REFERENCE_DISTANCE, minDistance);
    alSourcef(source, AL_MAX_DISTANCE, maxDistance);
}

void Voice::SetRolloffFactor(float factor)
{
    alSourcef(source, AL_ROLLOFF_FACTOR, factor);
}

void Voice::SetCone(float innerAngle, float outerAngle, float outerGain)
{
    alSourcef(source, AL_CONE_INNER_ANGLE, innerAngle);
    alSourcef(source, AL_CONE_OUTER_ANGLE, outerAngle);
    alSourcef(source, AL_CONE_OUTER_GAIN, outerGain);
}

void Voice::SetDirection(const Vector3& direction)
{
    alSource3f(source, AL_DIRECTION, direction.x, direction.y, direction.z);
}

} // namespace Quon
