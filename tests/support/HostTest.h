#pragma once

#include "harmonet/engine/OS.h"
#include "harmonet/engine/PString.h"
#include "harmonet/kernel/SoundSystem.h"
#include "tests/support/Recording.h"
#include "tests/support/TempFolder.h"
#include "tests/support/WaveBytes.h"

#include <gtest/gtest.h>

namespace Quon
{

/// The recording driver's side of the test. Its library stays loaded as long as the process lives.
Recording& GetRecording();

/// Fails the test if at the end of this object's life more of the system's memory is in use than at its
/// beginning, or if the recording driver has seen its contract broken. Resets the recording at both.
class LifeGuard
{
public:
    LifeGuard();
    ~LifeGuard();
    LifeGuard(const LifeGuard&) = delete;
    LifeGuard& operator=(const LifeGuard&) = delete;

private:
    std::size_t blocksBefore;
};

/// A host with a folder for the files of the empty owner and a sound system that has not been started. Its
/// options name the recording driver.
///
/// A derived fixture or test must destroy its own objects: at the end of the fixture none of the system's
/// memory may be left.
class HostTest : public testing::Test
{
protected:
    HostTest();
    ~HostTest() override;

    void SetOption(const char* name, const char* text) { os.GetOptions()->Set(name, text); }
    bool Start(bool driverFlag = false) { return system.Init(&os, driverFlag); }
    /// One game frame of so many milliseconds, none lost to rounding.
    void Step(int ms);
    void StepTimes(int times, int ms);

    /// Writes a wave file into the folder; returns its name.
    PString WriteWave(const std::string& name, const PcmForm& form);

    /// The lines since the last call.
    Lines TakeLog();
    /// Those of the lines since the last call that begin with one of these words; the others are dropped.
    Lines TakeLog(std::initializer_list<const char*> beginnings);

private:
    LifeGuard lifeGuard;

protected:
    Recording& recording;
    TempFolder folder;
    OS os;
    SoundSystem system;
};

} // namespace Quon
