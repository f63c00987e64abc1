#include "drivers/openal/OpenALDriver.h"

#include "drivers/openal/SteadyTime.h"
#include "harmonet/definitions/SndFXList.h"
#include "harmonet/engine/Messages.h"
#include "harmonet/files/SndFile.h"

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <cstring>
#include <limits>

namespace Quon
{

namespace
{

constexpr int outputChannels = 2;
constexpr int readAheadParts = 5;
constexpr int maxDriverChannels = 512;

} // namespace

OpenALDriver::OpenALDriver(DeviceSource& source)
    : device(source)
{
}

OpenALDriver::~OpenALDriver()
{
    EndUpdate();
    feeder.reset();
    if (!channels.empty() || acoustics.GetSendCount() > 0) {
        const ContextScope scope(device);
        voices.Clear();
        acoustics.Destroy();
    }
}

bool OpenALDriver::Open(OS* os, const SoundFormat* format, int streamLength, bool)
{
    if (!format || format->GetChannels() != outputChannels || format->GetSampleFrequency() <= 0) {
        Quon::Report(
            MessageLevel::Error, "OpenAL: the format of the output is not stereo at a rate above 0 Hz");
        return false;
    }
    options = ReadOptions(os);
    const int rateHz = format->GetSampleFrequency();
    const bool isOpen = options.isRendered ? OpenRendered(rateHz) : OpenLive(rateHz, streamLength);
    if (isOpen && device.HasSession()) {
        const ContextScope scope(device);
        acoustics.Create();
    }
    else if (isOpen) {
        acoustics.Expect();
    }
    return isOpen;
}

bool OpenALDriver::OpenRendered(int rateHz)
{
    if (!device.OpenLoopback(rateHz, options.hrtf)) {
        Quon::Report(MessageLevel::Error, "OpenAL: no device to render with at ", rateHz,
            " Hz; this requires OpenAL Soft with loopback devices");
        return false;
    }
    renderer = std::make_unique<OfflineRenderer>(device, voices, acoustics, options.renderThreads);
    errno = 0;
    const bool isOpen = renderer->Open(options.renderPath.GetText(), rateHz);
    if (!isOpen) {
        Quon::Report(MessageLevel::Error, "OpenAL: option OpenALRender=", options.renderPath.GetText(),
            ": the file cannot be written: ", std::strerror(errno));
    }
    return isOpen;
}

bool OpenALDriver::OpenLive(int rateHz, int streamLength)
{
    if (!device.OpenLive(rateHz, options.hrtf, !options.fallback)) {
        Quon::Report(MessageLevel::Error,
            "OpenAL: there is no output device, or the library is not OpenAL Soft; ",
            "with OpenALFallback=1 the driver starts without a device");
        return false;
    }
    feeder = std::make_unique<Feeder>(device, voices, acoustics, streamLength / readAheadParts);
    return true;
}

void OpenALDriver::SetCallback(SndDriverCallback newCallback, void* newUser)
{
    callback = newCallback;
    user = newUser;
}

void OpenALDriver::SetMaxChannels(int count)
{
    const int wanted = std::clamp(count, 0, maxDriverChannels);
    if (!channels.empty() || wanted == 0) {
        return;
    }
    const ContextScope scope(device);
    const int available = std::min(voices.Build(2 * wanted), wanted);
    for (int i = 0; i < available; ++i) {
        channels.push_back(std::make_unique<OpenALChannel>(
            ChannelServices{options, startTimes, device, voices, acoustics, listener, feeder.get()}));
    }
    if (feeder) {
        feeder->Start(channels);
    }
}

void OpenALDriver::BeginUpdate(unsigned long elapsedMs)
{
    const auto ms = static_cast<std::uint32_t>(
        std::min<unsigned long>(elapsedMs, std::numeric_limits<std::uint32_t>::max()));
    startTimes.BeginUpdate(ms, GetSteadyNanoseconds());
    if (renderer) {
        // Here this is the pumping thread, which acquires the locks of channels.
        const FeederScope scope(device);
        renderer->Render(ms, channels);
    }
    ReportEvents();
    const ContextScope scope(device);
    voices.SetDeferred(true);
    device.DeferUpdates();
    isDeferring = true;
}

void OpenALDriver::EndUpdate()
{
    if (!isDeferring) {
        return;
    }
    const ContextScope scope(device);
    device.ProcessUpdates();
    voices.SetDeferred(false);
    startTimes.EndUpdate();
    isDeferring = false;
}

// A callback may stop channels and start new ones, so each channel's current state is checked. No lock is
// held meanwhile, and no context of the driver is current.
void OpenALDriver::ReportEvents()
{
    for (const auto& channel : channels) {
        SndFileChange change;
        while (channel->TakeChange(change)) {
            Report(SndFileChanged, &change);
        }
    }
    for (const auto& channel : channels) {
        if (channel->TakeEnd()) {
            Report(SndChannelEnded, static_cast<SndChannel*>(channel.get()));
            channel->Release();
        }
    }
}

void OpenALDriver::Report(int event, void* data)
{
    if (callback) {
        callback(event, data, user);
    }
}

bool OpenALDriver::GetCaps(SoundCaps& caps)
{
    caps.SetFlags(acoustics.GetSendCount() > 0 ? capEnvReverbSource : 0);
    return true;
}

void OpenALDriver::SetMainGain(float gain)
{
    if (std::isnan(gain)) {
        return;
    }
    mainGain = std::clamp(gain, 0.0F, 1.0F);
    const ContextScope scope(device);
    device.SetMainGain(mainGain);
}

void OpenALDriver::SetListenerPosition(const Vector3& position)
{
    if (!TakePosition(position, listener.position)) {
        return;
    }
    const ContextScope scope(device);
    device.SetListenerPosition(listener.position);
    for (const auto& channel : channels) {
        channel->OnListenerMoved();
    }
}

void OpenALDriver::SetListenerOrientation(const Vector3& front, const Vector3& top)
{
    Vector3 newFront;
    Vector3 newTop;
    if (!TakePosition(front, newFront) || !TakePosition(top, newTop)) {
        return;
    }
    const ContextScope scope(device);
    device.SetListenerOrientation(newFront, newTop);
}

void OpenALDriver::SetRolloffFactor(float factor)
{
    if (std::isnan(factor)) {
        return;
    }
    listener.rolloffFactor = std::clamp(factor, 0.0F, std::numeric_limits<float>::max());
    const ContextScope scope(device);
    acoustics.GetOwnRooms().SetRolloffFactor(listener.rolloffFactor);
    for (const auto& channel : channels) {
        channel->OnRolloffChanged();
    }
}

SndChannel* OpenALDriver::CreateChannel(unsigned int flags, SndFile* file, SndFXList fx)
{
    if (!file || !IsPlayable(*file)) {
        ReportUnplayable(file);
        return nullptr;
    }
    for (const auto& channel : channels) {
        if (channel->IsFree()) {
            return channel->Prepare(flags, file, fx) ? channel.get() : nullptr;
        }
    }
    return nullptr;
}

} // namespace Quon
