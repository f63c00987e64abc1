#pragma once

#include "harmonet/instances/Microphone.h"
#include "harmonet/instances/Sound.h"
#include "tests/support/HostTest.h"
#include "tests/support/LoggingObserver.h"

#include <cstdint>
#include <memory>

namespace Quon
{

class SndBase;
enum class ListID : std::uint8_t;

using Ids = std::vector<int>;

/// A running sound system on the recording driver, with room for 20 sounds, an active microphone at the
/// origin, and a group of sounds with an observer that writes everything down. The first sound is "#1" in the
/// log, which begins empty.
class SoundTest : public HostTest
{
protected:
    static constexpr Vector3 origin{0.0F, 0.0F, 0.0F};

    SoundTest();
    ~SoundTest() override;

    /// Plays from a file of the folder.
    int Play(const PString& file, int flags = 0, int priority = 0, int delay = 0);
    /// On the X axis at that distance, with the distances 1 and 100 and cutout.
    int Play3D(const PString& file, float x);
    /// Prepares a block of memory that is called `name` in the log.
    MemoryBlock& NewBlock(const std::string& name, const PcmForm& form);

    /// The ids of the sounds with a channel, of the virtual ones and of those that wait, the least important
    /// first.
    Ids Playing() const;
    Ids Emulated() const;
    Ids Waiting() const;
    /// Null if the sound has ended.
    SndBase* Find(int id) const;
    /// The number of the channel through which the sound is heard; 0 if it is not.
    int ChannelOf(int id) const;

    /// An update in which the driver reports the end of a channel.
    void StepWithEnd(int channel);
    /// An update in which the driver reports that the channel continues with the next file of its queue.
    void StepWithNextFile(int channel);

private:
    static Ids GetIds(ListID id);

    std::vector<std::unique_ptr<MemoryBlock>> blocks;

protected:
    std::unique_ptr<Microphone> microphone;
    std::unique_ptr<SoundNames> names;
    std::unique_ptr<LoggingObserver> observer;
    std::unique_ptr<Sound> group;
};

} // namespace Quon
