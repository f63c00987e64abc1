#pragma once

#include "harmonet/engine/OS.h"
#include "harmonet/instances/Microphone.h"
#include "harmonet/kernel/SoundSystem.h"

#include <string>
#include <vector>

namespace Tool
{

/// A host of the sound system, as a game would be: it owns the configuration, starts and stops the system,
/// has a listener at the origin that looks along negative Z, and drives the task list.
class Host
{
public:
    struct Settings
    {
        std::string drivers; ///< Names separated by commas, tried in order; empty for the tool's choice.
        std::string renderPath; ///< Wave file to render into; empty to play aloud.
        int channels = 0; ///< Limit of audible sounds; 0 for the library's default.
        std::vector<std::string> options; ///< Further engine options as Key=Value.
        std::vector<std::string> inputs; ///< Files that must not be rendered into.
    };

    /// How long a game frame lasts where time is turned by hand, in whole milliseconds, so that every full
    /// update gets exactly the time that was meant.
    static constexpr int offlineFrameMs = 50;

    /// Throws a ToolError when an option is none, an input would be rendered into, or no driver works.
    explicit Host(const Settings& settings);
    Host(const Host&) = delete;
    Host& operator=(const Host&) = delete;

    /// Whether the sound is heard while the time goes on. Otherwise frames may follow each other at once.
    bool IsLive() const { return isLive; }

    void MoveListener(const Quon::Vector3& position) { listener.SetPosition(position); }
    /// Puts the listener into a room. False if the driver has none.
    bool EnterRoom(const Quon::FXEnvReverb& room);

    /// How many sounds can be heard at once.
    unsigned int GetMaxAudible() { return system.GetMaxAudibleSounds(); }

    /// One game frame of that length. Throws a ToolError when the rendered file cannot take what was heard.
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
