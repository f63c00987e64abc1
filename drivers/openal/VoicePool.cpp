#include "drivers/openal/VoicePool.h"

#include "drivers/openal/OutputDevice.h"

#include <algorithm>

namespace Quon
{

namespace
{
constexpr std::int64_t notYet = -1;
}

VoicePool::VoicePool(const OutputDevice& outputDevice)
    : device(outputDevice)
{
}

int VoicePool::Build(int wanted)
{
    const std::scoped_lock lock(mutex);
    while (static_cast<int>(voices.size()) < wanted) {
        auto voice = std::make_unique<Voice>();
        if (device.HasSession() && !voice->Create(device.IsHrtfOn())) {
            break;
        }
        voices.push_back(std::move(voice));
    }
    free.reserve(voices.size());
    fading.reserve(voices.size());
    for (const auto& voice : voices) {
        free.push_back(voice.get());
    }
    return static_cast<int>(voices.size());
}

void VoicePool::GoSilent()
{
    const std::scoped_lock lock(mutex);
    for (const Fading& entry : fading) {
        Free(entry.voice);
    }
    fading.clear();
    for (const auto& voice : voices) {
        voice->GoSilent();
    }
}

void VoicePool::Restore()
{
    const std::scoped_lock lock(mutex);
    bool hasMore = true;
    for (const bool freeOnes : {false, true}) {
        for (const auto& voice : voices) {
            if (hasMore && !voice->HasSource() && IsFree(voice.get()) == freeOnes) {
                hasMore = voice->Create(device.IsHrtfOn());
            }
        }
    }
}

bool VoicePool::IsFree(const Voice* voice) const
{
    return std::find(free.begin(), free.end(), voice) != free.end();
}

void VoicePool::Clear()
{
    const std::scoped_lock lock(mutex);
    free.clear();
    fading.clear();
    voices.clear();
}

Voice* VoicePool::Take()
{
    const std::scoped_lock lock(mutex);
    if (free.empty() && !fading.empty()) {
        Free(fading.front().voice);
        fading.erase(fading.begin());
    }
    if (free.empty()) {
        return nullptr;
    }
    const auto silent = [](const Voice* voice) { return !voice->HasSource(); };
    const auto place = std::find_if_not(free.rbegin(), free.rend(), silent);
    std::swap(place == free.rend() ? free.back() : *place, free.back());
    Voice* const voice = free.back();
    free.pop_back();
    return voice;
}

void VoicePool::Retire(Voice* voice, std::int64_t fadeTicks)
{
    const std::scoped_lock lock(mutex);
    if (!voice->HasSource() || !voice->IsPlaying()) {
        Free(voice);
        return;
    }
    Fading entry = {voice, voice->GetGain(), {}, notYet};
    entry.fadeOut.Start(device.GetTime(), fadeTicks);
    if (fadeTicks <= 0) {
        voice->SetGain(0.0F);
    }
    fading.push_back(entry);
}

void VoicePool::Tick(std::int64_t time)
{
    const std::scoped_lock lock(mutex);
    if (isDeferred || fading.empty()) {
        return;
    }
    const std::int64_t now = device.GetMixClock();
    std::size_t kept = 0;
    for (Fading entry : fading) {
        const bool wasSilent = entry.since != notYet;
        const bool isSettled = wasSilent && now - entry.since >= device.GetSettleTime();
        if (isSettled || !entry.voice->IsPlaying()) {
            Free(entry.voice);
            continue;
        }
        entry.voice->SetGain(entry.gain * entry.fadeOut.GetLevel(time));
        if (!wasSilent && entry.fadeOut.IsOver(time)) {
            entry.since = now;
        }
        fading[kept++] = entry;
    }
    fading.resize(kept);
}

bool VoicePool::IsAnyFading()
{
    const std::scoped_lock lock(mutex);
    return !fading.empty();
}

void VoicePool::SetDeferred(bool deferred)
{
    const std::scoped_lock lock(mutex);
    isDeferred = deferred;
}

bool VoicePool::IsDeferred()
{
    const std::scoped_lock lock(mutex);
    return isDeferred;
}

void VoicePool::Free(Voice* voice)
{
    voice->Halt();
    free.push_back(voice);
}

} // namespace Quon
