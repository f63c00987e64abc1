#pragma once

#include "harmonet/engine/OS.h"
#include "harmonet/instances/Microphone.h"
#include "harmonet/instances/Sound.h"
#include "harmonet/kernel/SoundSystem.h"

#include <string>
#include <utility>
#include <vector>

namespace Bench
{

/// A sound system on the OpenAL driver at 44.1 kHz with many looping sounds, every other one with a place in
/// the world, all of them read from one file while they play. Nothing is kept in the cache.
class Orchestra
{
public:
    static constexpr int rateHz = 44100;

    using OptionValues = std::vector<std::pair<const char*, const char*>>;

    /// Renders into the file `renderPath`; live if that is empty.
    Orchestra(const std::string& fileName, int players, const std::string& renderPath,
        const OptionValues& others = {});
    ~Orchestra();
    Orchestra(const Orchestra&) = delete;
    Orchestra& operator=(const Orchestra&) = delete;

    /// One game frame, in which those with a place move.
    void Play(int frameMs);

    void StopAll();

    /// Whether all of them are being read.
    bool IsComplete();

private:
    Quon::OS os;
    Quon::SoundSystem system;
    Quon::Microphone listener;
    Quon::Sound group;
    std::vector<int> ids;
    long playedMs = 0;
};

} // namespace Bench
