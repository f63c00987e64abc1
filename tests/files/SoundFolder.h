#pragma once

#include "tests/files/WaveBuilder.h"

#include "harmonet/engine/PString.h"
#include "harmonet/files/SndFile.h"
#include "harmonet/files/SndFileCache.h"
#include "tests/support/TempFolder.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>

/// A folder of its own for each test, below which the readers find what the test writes, and the list of open
/// files that they need.
class SoundFolder : public testing::Test
{
protected:
    SoundFolder();
    ~SoundFolder() override;

    std::unique_ptr<Quon::SndFile> Open(const std::string& name) const;
    /// Writes the bytes to a file without an extension, and opens it.
    std::unique_ptr<Quon::SndFile> OpenBytes(const Bytes& bytes) const;
    /// The same for what has to open: the test ends if it does not.
    std::unique_ptr<Quon::SndFile> OpenGood(const Bytes& bytes) const;

    const Quon::PString owner{"sounds"};
    const Quon::TempFolder folder;
    Quon::SndFileCache openFiles;
};

/// Reads as a driver does, `step` sample frames at a time, until a read falls short. No sound of these tests
/// is longer than 128 KiB.
Bytes ReadAll(Quon::SndFile& file, int step = 100);
/// One read of that many sample frames.
Bytes ReadFrames(Quon::SndFile& file, int frameCount);
