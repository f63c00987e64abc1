#include "drivers/openal/AlSession.h"

#include "drivers/openal/SteadyTime.h"

namespace Quon
{

namespace
{
// For a device that does not report when it mixes.
constexpr std::int64_t presumedPeriod = nanosecondsPerSecond / 20;
} // namespace

AlSession::AlSession(ALCdevice* openedDevice, const AlExtensions& globalExtensions)
    : extensions(globalExtensions)
    , device(openedDevice)
{
}

AlSession::~AlSession()
{
    if (context) {
        alcDestroyContext(context);
    }
    if (device) {
        alcCloseDevice(device);
    }
}

bool AlSession::CreateContext(std::span<const ALCint> attributes, Hrtf hrtf)
{
    if (!device || !TryContext(attributes, hrtf)) {
        return false;
    }
    // A device without HRTF, for example at this rate, would apply another headphone mode instead.
    if (hrtf == Hrtf::On && !AskHrtf()) {
        alcDestroyContext(context);
        if (!TryContext(attributes, Hrtf::Off)) {
            return false;
        }
    }
    return PrepareContext();
}

bool AlSession::TryContext(std::span<const ALCint> attributes, Hrtf hrtf)
{
    EngineVector<ALCint> all(attributes.begin(), attributes.end());
    if (hrtf != Hrtf::DeviceDefault) {
        all.insert(all.end(), {ALC_HRTF_SOFT, hrtf == Hrtf::On ? ALC_TRUE : ALC_FALSE});
    }
    all.push_back(0);
    context = alcCreateContext(device, all.data());
    return context;
}

bool AlSession::PrepareContext()
{
    ALCcontext* const previous = extensions.getThreadContext();
    extensions.setThreadContext(context);
    alDistanceModel(AL_INVERSE_DISTANCE_CLAMPED);
    alDopplerFactor(0.0F);
    const bool isComplete = extensions.LoadForDevice(device);
    extensions.setThreadContext(previous);
    hrtfOn = AskHrtf();
    alcGetIntegerv(device, ALC_FREQUENCY, 1, &rateHz);
    period = AskPeriod();
    return isComplete;
}

std::int64_t AlSession::GetMixClock() const
{
    if (!extensions.getInteger64v) {
        return GetSteadyNanoseconds();
    }
    ALCint64SOFT clock = 0;
    extensions.getInteger64v(device, ALC_DEVICE_CLOCK_SOFT, 1, &clock);
    return clock;
}

std::int64_t AlSession::AskPeriod() const
{
    ALCint periodsPerSecond = 0;
    alcGetIntegerv(device, ALC_REFRESH, 1, &periodsPerSecond);
    return extensions.getInteger64v && periodsPerSecond > 0 ? nanosecondsPerSecond / periodsPerSecond
                                                            : presumedPeriod;
}

bool AlSession::AskHrtf() const
{
    ALCint isOn = ALC_FALSE;
    if (alcIsExtensionPresent(device, "ALC_SOFT_HRTF")) {
        alcGetIntegerv(device, ALC_HRTF_SOFT, 1, &isOn);
    }
    return isOn == ALC_TRUE;
}

} // namespace Quon
