#include "drivers/openal/OutputDevice.h"

#include <chrono>

namespace Quon
{

namespace
{

constexpr std::int64_t nanosecondsPerSecond = 1000000000;
// For a device that does not tell when it mixes.
constexpr std::int64_t presumedSettleTime = nanosecondsPerSecond / 10;
// Beyond what any game plays at once, so that a sound that ends has a source to fade out on while the next
// one already has another. Sources cost nothing until they play.
constexpr ALCint wantedSources = 1024;

std::int64_t GetSteadyNanoseconds()
{
    using std::chrono::nanoseconds;
    const auto sinceStart = std::chrono::steady_clock::now().time_since_epoch();
    return std::chrono::duration_cast<nanoseconds>(sinceStart).count();
}

} // namespace

OutputDevice::~OutputDevice()
{
    if (context) {
        alcDestroyContext(context);
    }
    if (device) {
        alcCloseDevice(device);
    }
}

bool OutputDevice::OpenLive(int rateHz)
{
    if (!extensions.LoadGlobal()) {
        return false;
    }
    device = alcOpenDevice(nullptr);
    const ALCint attributes[] = {ALC_FREQUENCY, rateHz, ALC_MONO_SOURCES, wantedSources, 0};
    if (!device || !OpenContext(attributes)) {
        return false;
    }
    // Two periods: a change can come just after the device has begun to mix one.
    ALCint periodsPerSecond = 0;
    alcGetIntegerv(device, ALC_REFRESH, 1, &periodsPerSecond);
    settleTime = extensions.getInteger64v && periodsPerSecond > 0
        ? 2 * nanosecondsPerSecond / periodsPerSecond
        : presumedSettleTime;
    return true;
}

bool OutputDevice::OpenLoopback(int rateHz)
{
    if (!extensions.LoadGlobal()) {
        return false;
    }
    loopback = true;
    rate = rateHz;
    settleTime = 1;
    device = extensions.loopbackOpenDevice(nullptr);
    if (!device || !extensions.isRenderFormatSupported(device, rateHz, ALC_STEREO_SOFT, ALC_FLOAT_SOFT)) {
        return false;
    }
    const ALCint attributes[] = {ALC_FORMAT_CHANNELS_SOFT, ALC_STEREO_SOFT, ALC_FORMAT_TYPE_SOFT,
        ALC_FLOAT_SOFT, ALC_FREQUENCY, rateHz, ALC_MONO_SOURCES, wantedSources, ALC_HRTF_SOFT, ALC_FALSE,
        ALC_OUTPUT_LIMITER_SOFT, ALC_FALSE, 0};
    return OpenContext(attributes);
}

bool OutputDevice::OpenContext(const ALCint* attributes)
{
    context = alcCreateContext(device, attributes);
    if (!context) {
        return false;
    }
    const ContextScope scope(*this);
    alDistanceModel(AL_INVERSE_DISTANCE_CLAMPED);
    alDopplerFactor(0.0f);
    return extensions.LoadForDevice(device);
}

void OutputDevice::Render(float* stereo, int sampleFrames)
{
    extensions.renderSamples(device, stereo, sampleFrames);
    renderedFrames += sampleFrames;
}

std::int64_t OutputDevice::GetTime() const
{
    return loopback ? renderedFrames : GetSteadyNanoseconds();
}

std::int64_t OutputDevice::GetTicksPerSecond() const
{
    return loopback ? rate : nanosecondsPerSecond;
}

std::int64_t OutputDevice::GetMixClock() const
{
    if (loopback) {
        return renderedFrames;
    }
    if (!extensions.getInteger64v) {
        return GetSteadyNanoseconds();
    }
    ALCint64SOFT clock = 0;
    extensions.getInteger64v(device, ALC_DEVICE_CLOCK_SOFT, 1, &clock);
    return clock;
}

void OutputDevice::SetMainGain(float gain)
{
    alListenerf(AL_GAIN, gain);
}

void OutputDevice::SetListenerPosition(const Vector3& position)
{
    alListener3f(AL_POSITION, position.x, position.y, position.z);
}

void OutputDevice::SetListenerOrientation(const Vector3& front, const Vector3& top)
{
    const ALfloat orientation[] = {front.x, front.y, front.z, top.x, top.y, top.z};
    alListenerfv(AL_ORIENTATION, orientation);
}

ContextScope::ContextScope(const OutputDevice& device)
    : extensions(device.extensions)
    , mine(device.context)
    , previous(extensions.getThreadContext())
{
    if (previous != mine) {
        extensions.setThreadContext(mine);
    }
}

ContextScope::~ContextScope()
{
    if (previous != mine) {
        extensions.setThreadContext(previous);
    }
}

} // namespace Quon
