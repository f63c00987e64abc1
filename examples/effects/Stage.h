#pragma once

#include "examples/effects/DrySound.h"

#include "harmonet/engine/OS.h"
#include "harmonet/instances/Microphone.h"
#include "harmonet/instances/Sound.h"
#include "harmonet/kernel/SoundSystem.h"

#include <filesystem>
#include <vector>

namespace EffectsExample
{

/// The output of each side, from -1 to 1.
struct Heard
{
    std::vector<double> left;
    std::vector<double> right;
};

/// A sound system that renders to a file, with a listener at the origin who looks along -Z. At most one may
/// exist. Throws std::runtime_error if the system does not start.
class Stage
{
public:
    static constexpr int maxSounds = 150;

    explicit Stage(std::filesystem::path newFile);

    /// Creates a sound at a position, to be started with Start(). The PCM must outlive the stage.
    int Add(const Pcm& pcm, const Quon::Vector3& position);
    void Start(int id, bool looping = false);

    /// Advances the time, in steps of 50 ms.
    void Run(long ms);

    Quon::Sound& GetSounds() { return sounds; }
    Quon::Microphone& GetListener() { return listener; }

    /// Returns everything that has been rendered so far.
    Heard Read() const;

private:
    std::filesystem::path file;
    Quon::OS os;
    Quon::SoundSystem system;
    Quon::Microphone listener;
    Quon::Sound sounds;
};

} // namespace EffectsExample
