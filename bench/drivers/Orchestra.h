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

/// A sound system on the OpenAL driver at 44.1 kHz with many looping sounds that stream from one file. Every
/// other sound is positional. The data cache is disabled.
class Orchestra
{
public:
    static constexpr int rateHz = 44100;

    using OptionValues = std::vector<std::pair<const char*, const char*>>;

    /// Renders to the file `renderPath`; plays live if it is empty.
    Orchestra(const std::string& fileName, int players, const std::string& renderPath,
        const OptionValues& others = {});
    ~Orchestra();
    Orchestra(const Orchestra&) = delete;
    Orchestra& operator=(const Orchestra&) = delete;

    /// Runs one game frame, in which the positional sounds move.
    void Play(int frameMs);

    void StopAll();

    /// Returns whether all sounds are being read.
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
