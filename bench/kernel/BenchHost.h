#pragma once

#include "harmonet/engine/OS.h"
#include "harmonet/instances/Microphone.h"
#include "harmonet/kernel/SoundSystem.h"

#include <filesystem>
#include <vector>

namespace Bench
{

/// Wave files in a folder of their own, which is the root of plain file names and goes with the object.
class WaveFolder
{
public:
    /// The samples count up from 0 and begin anew after so many.
    static constexpr int period = 200;
    static constexpr int rateHz = 8000;
    static constexpr int sampleFrames = 2 * rateHz;

    explicit WaveFolder(int fileCount, int framesOfEach = sampleFrames);
    WaveFolder(const WaveFolder&) = delete;
    WaveFolder& operator=(const WaveFolder&) = delete;
    ~WaveFolder();

    int GetFileCount() const { return static_cast<int>(names.size()); }
    /// Any index; the files take turns.
    const Quon::PString& GetName(int index) const;

private:
    std::filesystem::path folder;
    std::vector<Quon::PString> names;
};

/// A running sound system on the driver that does nothing, with a listener at the origin and a cache that
/// holds all files.
class BenchHost
{
public:
    /// One full update.
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
