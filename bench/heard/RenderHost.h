#pragma once

#include "harmonet/engine/OS.h"
#include "harmonet/instances/Microphone.h"
#include "harmonet/instances/Sound.h"
#include "harmonet/kernel/SoundSystem.h"

#include <filesystem>
#include <string>
#include <utility>
#include <vector>

namespace Bench
{

inline constexpr int rateHz = 22050;

/// Mono sound from -1 to 1.
using Samples = std::vector<float>;

/// What was rendered, by side.
struct Stereo
{
    Samples left;
    Samples right;
};

enum class Coding
{
    Pcm,
    Adpcm,
    Mp3
};

/// A temporary folder for the sound files and output of a run, and the root of plain file names. At most one
/// instance may exist.
class SoundFolder
{
public:
    SoundFolder();
    SoundFolder(const SoundFolder&) = delete;
    SoundFolder& operator=(const SoundFolder&) = delete;
    ~SoundFolder();

    /// Throws std::runtime_error when it cannot be written.
    void Write(const std::string& name, const Samples& samples, Coding coding, int fileHz = rateHz) const;
    /// The left or only side of a file, as libsndfile decodes it.
    Samples Read(const std::string& name) const;
    std::filesystem::path GetOutput() const { return folder / "output.wav"; }
    /// Throws std::runtime_error when there is none.
    Stereo ReadOutput() const;

private:
    std::filesystem::path folder;
};

/// A running sound system that renders into a folder's output, at the rate of the sounds, so that a sound in
/// front at full gain comes out as it went in; with a listener at the origin. Throws std::runtime_error if it
/// does not start.
class RenderHost
{
public:
    using OptionValues = std::vector<std::pair<const char*, const char*>>;

    /// `others` are set after the host's own; a null value removes an option.
    RenderHost(const SoundFolder& folder, int channels, const OptionValues& others = {});
    RenderHost(const RenderHost&) = delete;
    RenderHost& operator=(const RenderHost&) = delete;

    /// One frame of a game.
    void Step(float seconds);
    Quon::Microphone& GetListener() { return listener; }
    Quon::Sound& GetSounds() { return sounds; }

private:
    Quon::OS os;
    Quon::SoundSystem system;
    Quon::Microphone listener;
    Quon::Sound sounds;
};

} // namespace Bench
