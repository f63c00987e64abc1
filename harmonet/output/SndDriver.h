#pragma once

#include "harmonet/Export.h"
#include "harmonet/engine/Alloc.h"
#include "harmonet/engine/Vector.h"
#include "harmonet/output/SoundCaps.h"

namespace Quon
{

class OS;
class SndChannel;
class SndFile;
class SndFXList;
class SoundFormat;
struct FXEnvReverb;

/// The events that a driver reports through its callback, on the task thread, from inside BeginUpdate() or
/// EndUpdate() and nowhere else.
enum SndDriverEvent : int
{
    /// The channel has finished: its queue has run out, or its fade-out is over. `data` is the SndChannel*.
    /// The channel is the driver's again once the callback has returned.
    SndChannelEnded = 1,
    /// The channel has moved on to the next file of its queue. `data` is a SndFileChange*. The library
    /// deletes the old file inside the callback.
    SndFileChanged = 2
};

/// The data of the event SndFileChanged.
struct SndFileChange
{
    SndChannel* channel; ///< Which channel.
    SndFile* newFile; ///< What it plays from now on.
    SndFile* oldFile; ///< What it played before.
};

/// Takes an event, its data and the user value of SetCallback(). The result has no meaning and is 0.
using SndDriverCallback = int (*)(int event, void* data, void* user);

/// How a channel is to behave; the flags of SndDriver::CreateChannel().
enum SndChannelFlags : unsigned int
{
    /// The sound has a place in the world. Without this flag it is heard as it stands.
    ChanPositional = 0x01,
    /// At the end of the file the output goes on from its start, without end.
    ChanLooping = 0x02,
    /// The sound is silent beyond its maximum distance. Only beside ChanPositional.
    ChanCutOut = 0x04,
    /// The rate can change while the channel plays.
    ChanChgFrequency = 0x10,
    /// The listener's effects do not apply. Only beside ChanPositional.
    ChanDisableMicFX = 0x20
};

/// An audio output. A driver is a separate library that derives from this class and from SndChannel, and that
/// exports one plain function, "CreateSoundDriver", which gives a new driver object.
///
/// The library owns the driver object and deletes it after the last sound is gone and before the driver's
/// library is closed. All operations are called on the task thread. Everything that a driver needs of the
/// library is SoundFormat, SndChannel, the reading, format and queue operations of SndFile, and SndFXList.
class HARMONET_API SndDriver : public Allocated
{
public:
    SndDriver() = default;
    SndDriver(const SndDriver&) = delete;
    SndDriver& operator=(const SndDriver&) = delete;

    /// Releases everything, the channels included.
    virtual ~SndDriver();

    /// Opens the output in the given format, once. False means that this driver cannot be used; it is then
    /// deleted at once. `streamLength` is the option "StreamLength", in milliseconds of sound that the driver
    /// may keep ready; `driverFlag` comes from SoundSystem::Init() and is between the host and the driver.
    virtual bool Open(OS* os, const SoundFormat* format, int streamLength, bool driverFlag) = 0;
    /// Where events go, and the value to hand over with each. Called once, right after Open().
    virtual void SetCallback(SndDriverCallback callback, void* user) = 0;
    /// How many channels will be wanted at once: the limit of audible sounds at the start, plus 4. A later
    /// change of that limit is not told.
    virtual void SetMaxChannels(int count) = 0;
    /// The first step of each full update. `elapsedMs` is the time since the last one, at least 40.
    virtual void BeginUpdate(unsigned long elapsedMs) = 0;
    /// The last step of each full update: all settings of this update have been made.
    virtual void EndUpdate() = 0;
    /// Fills in all flags and returns true, or returns false.
    virtual bool GetCaps(SoundCaps& caps) = 0;
    /// The gain of the whole output, a linear factor from 0.0 to 1.0, kept by the driver.
    virtual void SetMainGain(float gain) = 0;
    virtual float GetMainGain() = 0;
    /// Position of the listener in world units.
    virtual void SetListenerPosition(const Vector3& position) = 0;
    /// Where the listener looks, and what is up for it: two unit vectors.
    virtual void SetListenerOrientation(const Vector3& front, const Vector3& top) = 0;
    /// Keeps its place in the table of operations; the library never calls it.
    virtual void Spare1() = 0;
    /// How fast sounds lose gain with distance; 1.0 is the natural law, 0.0 turns the loss off.
    virtual void SetRolloffFactor(float factor) = 0;
    virtual float GetRolloffFactor() = 0;
    /// The room around the listener: the record, its quality, and a number that the library passes on unread.
    /// False refuses.
    virtual bool SetFXEnvReverb(const FXEnvReverb* record, long quality, unsigned int argument) = 0;
    /// No room any more; the number is passed on as above.
    virtual void ResetFXEnvReverb(unsigned int argument) = 0;
    /// A channel for `file`, not yet playing, or null if none can be had, which is an ordinary event. It must
    /// not throw. `flags` are SndChannelFlags. `file` is the head of the sound's queue and stays the sound's;
    /// the driver stores it as the channel's `sndFile`. `fx` is read during the call and not freed.
    virtual SndChannel* CreateChannel(unsigned int flags, SndFile* file, SndFXList fx) = 0;
    /// Whether output has been lost for good, as when a file that is rendered into cannot take any more. A
    /// device that can come back does not count. False unless overridden.
    virtual bool HasLostOutput() const;
};

/// The type of the function that a driver library exports as "CreateSoundDriver". Null means failure.
using CreateSoundDriverFunction = SndDriver* (*)();

} // namespace Quon
