#pragma once

#include "harmonet/engine/OS.h"
#include "harmonet/instances/Microphone.h"
#include "harmonet/kernel/SoundSystem.h"

#include <filesystem>
#include <vector>

namespace Bench
{

/// Wave files in a temporary folder, which is the root of plain file names. The destructor removes it.
class WaveFolder
{
public:
    /// The samples count up from 0 and start again after this many.
    static constexpr int period = 200;
    static constexpr int rateHz = 8000;
    static constexpr int sampleFrames = 2 * rateHz;

    explicit WaveFolder(int fileCount, int framesOfEach = sampleFrames);
    WaveFolder(const WaveFolder&) = delete;
    WaveFolder& operator=(const WaveFolder&) = delete;
    ~WaveFolder();

    int GetFileCount() const { return static_cast<int>(names.size()); }
    /// Accepts any index; the names repeat.
    const Quon::PString& GetName(int index) const;

private:
    std::filesystem::path folder;
    std::vector<Quon::PString> names;
};

/// A running sound system on the idle driver, with a listener at the origin and a cache that holds all files.
class BenchHost
{
public:
    /// The length of a game frame, long enough for a full update.
    static constexpr float frameSeconds = 0.05F;

    explicit BenchHost(int channels);
    BenchHost(const BenchHost&) = delete;
    BenchHost& operator=(const BenchHost&) = delete;

    bool IsRunning() const { return isRunning; }
    void Update();
    Quon::Microphone& GetListener() { return listener; }

private:
    Quon::OS os;
    Quon::SoundSystem system;
    Quon::Microphone listener;
    bool isRunning = false;
};

} // namespace Bench
