#include "Orchestra.h"

#include "harmonet/engine/File.h"
#include "harmonet/engine/TaskList.h"

#include <algorithm>
#include <cmath>

namespace Bench
{

Orchestra::Orchestra(
    const std::string& fileName, int players, const std::string& renderPath, const OptionValues& others)
{
    Quon::Options& options = *os.GetOptions();
    options.Set("Sound", "HarmonetOpenAL");
    options.Set("SoundFrequency", std::to_string(rateHz).c_str());
    options.Set("MaxSounds", std::to_string(players).c_str());
    options.Set("SoundCacheSize", "0");
    options.Set("OpenALRender", renderPath.empty() ? nullptr : renderPath.c_str());
    for (const auto& [name, value] : others) {
        options.Set(name, value);
    }
    Quon::File::AddRoot(Quon::PString(), HARMONET_BENCH_VOICES);
    system.Init(&os, false);
    listener.Activate();
    const Quon::PString name(fileName.c_str());
    constexpr int flags = Quon::Sound::StartLooping | Quon::Sound::StartImmediately;
    Quon::Sound::Settings settings;
    settings.setDistance = true;
    settings.minDistance = 1.0F;
    settings.maxDistance = 100.0F;
    for (int i = 0; i < players; ++i) {
        ids.push_back(i % 2 ? group.Play2DSound(name, nullptr, flags, 0, 0)
                            : group.Play3DSound({1.0F, 0.0F, 1.0F}, name, nullptr, flags, 0, settings, 0));
        group.SetSoundGain(ids.back(), 0.1F);
    }
}

Orchestra::~Orchestra()
{
    system.Done();
    Quon::File::RemoveRoot(Quon::PString());
}

void Orchestra::Play(int frameMs)
{
    playedMs += frameMs;
    for (std::size_t i = 0; i < ids.size(); i += 2) {
        const auto angle = static_cast<float>(playedMs) * 0.001F + static_cast<float>(i);
        group.SetSoundPosition(ids[i], {5.0F * std::cos(angle), 0.0F, 5.0F * std::sin(angle)});
    }
    // Slightly more, so that the library, which truncates to whole milliseconds, counts all of them.
    Quon::TaskList::Get().Update((static_cast<float>(frameMs) + 0.01F) / 1000.0F);
}

void Orchestra::StopAll()
{
    for (const int id : ids) {
        group.StopSound(id);
    }
}

bool Orchestra::IsComplete()
{
    return std::all_of(ids.begin(), ids.end(), [this](int id) { return group.GetCurrentLength(id) > 0; });
}

} // namespace Bench
