#include "drivers/null/NullDriver.h"

#include "harmonet/definitions/SndFXList.h"
#include "harmonet/files/SndFile.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <new>

namespace Quon
{

bool NullDriver::Open(OS*, const SoundFormat*, int, bool)
{
    return true;
}

void NullDriver::SetCallback(SndDriverCallback newCallback, void* newUser)
{
    callback = newCallback;
    user = newUser;
}

void NullDriver::SetMaxChannels(int count)
{
    maxChannels = static_cast<std::size_t>(std::max(count, 0));
}

void NullDriver::BeginUpdate(unsigned long elapsedMs)
{
    const auto ms = static_cast<std::uint32_t>(
        std::min<unsigned long>(elapsedMs, std::numeric_limits<std::uint32_t>::max()));
    for (const auto& channel : channels) {
        channel->Advance(ms, scratch);
    }
}

// A callback may stop channels and start new ones, so iterate by index and check each channel's current
// state.
void NullDriver::EndUpdate()
{
    for (std::size_t i = 0; i < channels.size(); ++i) {
        SndFileChange change;
        while (channels[i]->TakeChange(change)) {
            Report(SndFileChanged, &change);
        }
    }
    for (std::size_t i = 0; i < channels.size(); ++i) {
        NullChannel* const channel = channels[i].get();
        if (channel->TakeEnd()) {
            Report(SndChannelEnded, static_cast<SndChannel*>(channel));
            channel->Release();
        }
    }
}

void NullDriver::Report(int event, void* data)
{
    if (callback) {
        callback(event, data, user);
    }
}

bool NullDriver::GetCaps(SoundCaps& caps)
{
    caps.SetFlags(0);
    return true;
}

void NullDriver::SetMainGain(float gain)
{
    if (std::isfinite(gain)) {
        mainGain = std::clamp(gain, 0.0F, 1.0F);
    }
}

void NullDriver::SetRolloffFactor(float factor)
{
    if (std::isfinite(factor)) {
        rolloffFactor = std::max(factor, 0.0F);
    }
}

SndChannel* NullDriver::CreateChannel(unsigned int flags, SndFile* file, SndFXList)
{
    if (!file || !IsPlayable(*file)) {
        ReportUnplayable(file);
        return nullptr;
    }
    NullChannel* const channel = FindFree();
    if (channel) {
        channel->Prepare(flags, file);
    }
    return channel;
}

NullChannel* NullDriver::FindFree()
{
    const std::size_t reachable = std::min(channels.size(), maxChannels);
    for (std::size_t i = 0; i < reachable; ++i) {
        if (channels[i]->IsFree()) {
            return channels[i].get();
        }
    }
    if (channels.size() >= maxChannels) {
        return nullptr;
    }
    try {
        channels.push_back(std::make_unique<NullChannel>());
    }
    catch (const std::bad_alloc&) {
        return nullptr;
    }
    return channels.back().get();
}

} // namespace Quon
