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

bool OutputDevice::OpenLive(int rateHz, Hrtf hrtf)
{
    if (!extensions.LoadGlobal()) {
        return false;
    }
    const ALCint attributes[] = {ALC_FREQUENCY, rateHz, ALC_MONO_SOURCES, wantedSources};
    if (!OpenSession(alcOpenDevice(nullptr), attributes, hrtf)) {
        return false;
    }
    // Two periods: a change can come just after the device has begun to mix one.
    ALCint periodsPerSecond = 0;
    alcGetIntegerv(session->GetDevice(), ALC_REFRESH, 1, &periodsPerSecond);
    settleTime = session->GetExtensions().getInteger64v && periodsPerSecond > 0
        ? 2 * nanosecondsPerSecond / periodsPerSecond
        : presumedSettleTime;
    return true;
}

bool OutputDevice::OpenLoopback(int rateHz, Hrtf hrtf)
{
    if (!extensions.LoadGlobal()) {
        return false;
    }
    loopback = true;
    rate = rateHz;
    settleTime = 1;
    ALCdevice* const device = extensions.loopbackOpenDevice(nullptr);
    const ALCint attributes[] = {ALC_FORMAT_CHANNELS_SOFT, ALC_STEREO_SOFT, ALC_FORMAT_TYPE_SOFT,
        ALC_FLOAT_SOFT, ALC_FREQUENCY, rateHz, ALC_MONO_SOURCES, wantedSources, ALC_OUTPUT_LIMITER_SOFT,
        ALC_FALSE};
    return OpenSession(device, attributes, hrtf == Hrtf::On ? Hrtf::On : Hrtf::Off);
}

// The context of a loopback device is refused when its format is.
bool OutputDevice::OpenSession(ALCdevice* device, std::span<const ALCint> attributes, Hrtf hrtf)
{
    session = std::make_unique<AlSession>(device, extensions);
    if (!session->CreateContext(attributes, hrtf)) {
        return false;
    }
    hrtfOn = session->IsHrtfOn();
    return true;
}

void OutputDevice::Render(float* stereo, int sampleFrames)
{
    extensions.renderSamples(session->GetDevice(), stereo, sampleFrames);
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
    const auto getInteger64v = session->GetExtensions().getInteger64v;
    if (!getInteger64v) {
        return GetSteadyNanoseconds();
    }
    ALCint64SOFT clock = 0;
    getInteger64v(session->GetDevice(), ALC_DEVICE_CLOCK_SOFT, 1, &clock);
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
    , mine(device.session->GetContext())
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
