#pragma once

#include "harmonet/engine/OS.h"
#include "harmonet/instances/Microphone.h"
#include "harmonet/kernel/SoundSystem.h"

#include <string>
#include <vector>

namespace Tool
{

/// Hosts the sound system as a game does: owns the configuration, starts and stops the system, has a listener
/// at the origin that looks along -Z, and drives the task list.
class Host
{
public:
    struct Settings
    {
        std::string drivers; ///< Names separated by commas, tried in order; empty for the default.
        std::string renderPath; ///< Wave file to render into; empty to play aloud.
        int channels = 0; ///< Maximum number of audible sounds; 0 for the library's default.
        std::vector<std::string> options; ///< Further engine options as Key=Value.
        std::vector<std::string> inputs; ///< Files that must not be overwritten by rendering.
    };

    /// The length of a game frame in simulated time. It is in whole milliseconds, so that no full update
    /// loses a fraction.
    static constexpr int offlineFrameMs = 50;

    /// Throws a ToolError if an option is malformed, an input would be overwritten, or no driver works.
    explicit Host(const Settings& settings);
    Host(const Host&) = delete;
    Host& operator=(const Host&) = delete;

    /// Returns whether the output plays in real time. Otherwise frames need not wait.
    bool IsLive() const { return isLive; }

    void MoveListener(const Quon::Vector3& position) { listener.SetPosition(position); }
    /// Puts the listener into a room. Returns false if the driver does not support rooms.
    bool EnterRoom(const Quon::FXEnvReverb& room);

    /// Returns how many sounds can be heard at once.
    unsigned int GetMaxAudible() { return system.GetMaxAudibleSounds(); }

    /// Runs one game frame of that length. Throws a ToolError if the rendered file cannot be written.
    void Update(int elapsedMs);

private:
    bool StartSystem();
    void SetOptions(const Settings& settings, const std::string& drivers);
    void CheckInputs(const std::vector<std::string>& inputs);

    bool isLive;
    Quon::OS os;
    Quon::SoundSystem system;
    Quon::Microphone listener;
};

} // namespace Tool
