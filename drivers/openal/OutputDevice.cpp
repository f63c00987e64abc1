#include "drivers/openal/OutputDevice.h"

#include "drivers/openal/DeviceSource.h"
#include "drivers/openal/SteadyTime.h"

#include <algorithm>
#include <array>
#include <utility>

namespace Quon
{

namespace
{
// More than any game plays at once, so that an ending sound has a source to fade out on while the next one
// already has another. Sources cost nothing until they play.
constexpr ALCint wantedSources = 1024;
constexpr int shortBlock = 128;
constexpr int blockStep = 4;
constexpr int width = 2;
} // namespace

OutputDevice::OutputDevice(DeviceSource& deviceSource)
    : source(deviceSource)
{
}

bool OutputDevice::OpenLive(int rateHz, Hrtf newHrtf, bool needsDevice)
{
    if (!extensions.LoadGlobal()) {
        return false;
    }
    rate = rateHz;
    hrtf = newHrtf;
    session = MakeLiveSession();
    return session || !needsDevice;
}

std::unique_ptr<AlSession> OutputDevice::MakeLiveSession() const
{
    auto live = std::make_unique<AlSession>(source.Open(), extensions);
    const ALCint attributes[] = {ALC_FREQUENCY, rate, ALC_MONO_SOURCES, wantedSources};
    return live->CreateContext(attributes, hrtf) ? std::move(live) : nullptr;
}

// The context of a loopback device is refused when its format is.
bool OutputDevice::OpenLoopback(int rateHz, Hrtf newHrtf)
{
    if (!extensions.LoadGlobal()) {
        return false;
    }
    loopback = true;
    rate = rateHz;
    hrtf = newHrtf == Hrtf::On ? Hrtf::On : Hrtf::Off;
    session = std::make_unique<AlSession>(extensions.loopbackOpenDevice(nullptr), extensions);
    const ALCint attributes[] = {ALC_FORMAT_CHANNELS_SOFT, ALC_STEREO_SOFT, ALC_FORMAT_TYPE_SOFT,
        ALC_FLOAT_SOFT, ALC_FREQUENCY, rateHz, ALC_MONO_SOURCES, wantedSources, ALC_OUTPUT_LIMITER_SOFT,
        ALC_FALSE};
    return session->CreateContext(attributes, hrtf);
}

// OpenAL Soft 1.19 fades a newly set room in over 128 sample frames, four at a time, and overruns its buffer
// when shorter blocks leave fewer than four of them. What is mixed ahead for that, sources count as heard.
void OutputDevice::Render(float* stereo, int sampleFrames)
{
    renderedFrames += sampleFrames;
    const int held = std::min(sampleFrames, surplusFrames);
    stereo = std::copy_n(surplus.data(), width * held, stereo);
    std::copy(surplus.data() + width * held, surplus.data() + width * surplusFrames, surplus.data());
    surplusFrames -= held;
    const int missing = sampleFrames - held;
    if (missing >= shortBlock || GetSoftVersion() == SoftVersion::New) {
        extensions.renderSamples(session->GetDevice(), stereo, missing);
    }
    else if (missing > 0) {
        std::array<float, width * shortBlock> block;
        const int rendered = (missing + blockStep - 1) / blockStep * blockStep;
        extensions.renderSamples(session->GetDevice(), block.data(), rendered);
        std::copy_n(block.data(), width * missing, stereo);
        surplusFrames = rendered - missing;
        std::copy_n(block.data() + width * missing, width * surplusFrames, surplus.data());
    }
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
    return loopback ? renderedFrames : session->GetMixClock();
}

std::int64_t OutputDevice::GetMixLag(std::int64_t time) const
{
    if (loopback || !session) {
        return 0;
    }
    const std::scoped_lock lock(timelineMutex);
    const std::int64_t mixed = session->GetMixClock();
    timeline.Observe(GetSteadyNanoseconds(), mixed);
    return timeline.ToMixed(time) - mixed;
}

std::int64_t OutputDevice::ObserveMixClock() const
{
    if (!session || !session->HasMixClock()) {
        return GetSteadyNanoseconds() + nanosecondsPerSecond;
    }
    const std::scoped_lock lock(timelineMutex);
    // Read before the time: the device could mix in between.
    const std::int64_t mixed = session->GetMixClock();
    const std::int64_t now = GetSteadyNanoseconds();
    timeline.Observe(now, mixed);
    return timeline.GetNextObservation(now, session->GetPeriod());
}

bool OutputDevice::IsConnected() const
{
    return source.IsConnected(session->GetDevice());
}

std::unique_ptr<AlSession> OutputDevice::Exchange(std::unique_ptr<AlSession> newSession)
{
    const std::scoped_lock lock(timelineMutex);
    timeline.Reset();
    return std::exchange(session, std::move(newSession));
}

void OutputDevice::DeferUpdates()
{
    if (session) {
        session->GetExtensions().deferUpdates();
    }
}

void OutputDevice::ProcessUpdates()
{
    if (session) {
        session->GetExtensions().processUpdates();
    }
}

void OutputDevice::SetMainGain(float gain)
{
    listener.gain = gain;
    if (session) {
        alListenerf(AL_GAIN, gain);
    }
}

void OutputDevice::SetListenerPosition(const Vector3& position)
{
    listener.position = position;
    if (session) {
        alListener3f(AL_POSITION, position.x, position.y, position.z);
    }
}

void OutputDevice::SetListenerOrientation(const Vector3& front, const Vector3& top)
{
    listener.front = front;
    listener.top = top;
    if (session) {
        const ALfloat orientation[] = {front.x, front.y, front.z, top.x, top.y, top.z};
        alListenerfv(AL_ORIENTATION, orientation);
    }
}

void OutputDevice::ApplyListener()
{
    SetMainGain(listener.gain);
    SetListenerPosition(listener.position);
    SetListenerOrientation(listener.front, listener.top);
}

FeederScope::FeederScope(const OutputDevice& device)
    : extensions(device.extensions)
    , previous(extensions.getThreadContext())
    , mine(device.session ? device.session->GetContext() : previous)
{
    if (previous != mine) {
        extensions.setThreadContext(mine);
    }
}

FeederScope::~FeederScope()
{
    if (previous != mine) {
        extensions.setThreadContext(previous);
    }
}

} // namespace Quon
