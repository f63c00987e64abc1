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

/// The events that a driver reports through its callback, on the task thread, from within BeginUpdate() or
/// EndUpdate() only.
enum SndDriverEvent : int
{
    /// The channel has finished: its queue is exhausted or its fade-out is complete. `data` is the
    /// SndChannel*. The channel returns to the driver when the callback returns.
    SndChannelEnded = 1,
    /// The channel has advanced to the next file of its queue. `data` is a SndFileChange*. The library
    /// deletes the old file in the callback.
    SndFileChanged = 2
};

/// The data of the event SndFileChanged.
struct SndFileChange
{
    SndChannel* channel; ///< Which channel.
    SndFile* newFile; ///< What it plays from now on.
    SndFile* oldFile; ///< What it played before.
};

/// Receives an event, its data and the user value of SetCallback(). The result is unused and is 0.
using SndDriverCallback = int (*)(int event, void* data, void* user);

/// The flags of SndDriver::CreateChannel().
enum SndChannelFlags : unsigned int
{
    /// The sound is positional. Without this flag it is played without spatialisation.
    ChanPositional = 0x01,
    /// The file repeats from its start, without end.
    ChanLooping = 0x02,
    /// The sound is silent beyond its maximum distance. Only with ChanPositional.
    ChanCutOut = 0x04,
    /// The rate can change while the channel plays.
    ChanChgFrequency = 0x10,
    /// The listener's effects do not apply. Only with ChanPositional.
    ChanDisableMicFX = 0x20
};

/// An audio output. A driver is a separate library that derives from this class and from SndChannel and
/// exports one C function, "CreateSoundDriver", which returns a new driver object.
///
/// The library owns the driver object and deletes it after the last sound has ended and before the driver's
/// library is closed. All operations are called on the task thread. A driver needs nothing from the library
/// but SoundFormat, SndChannel, the reading, format and queue operations of SndFile, and SndFXList.
class HARMONET_API SndDriver : public Allocated
{
public:
    SndDriver() = default;
    SndDriver(const SndDriver&) = delete;
    SndDriver& operator=(const SndDriver&) = delete;

    /// Releases everything, including the channels.
    virtual ~SndDriver();

    /// Opens the output in the given format. Called once. Returning false means that this driver cannot be
    /// used; it is then deleted at once. `streamLength` is the option "StreamLength": the milliseconds of
    /// sound that the driver may buffer. `driverFlag` is passed through from SoundSystem::Init(); its meaning
    /// is up to host and driver.
    virtual bool Open(OS* os, const SoundFormat* format, int streamLength, bool driverFlag) = 0;
    /// Sets the receiver of events and the user value to pass with each. Called once, right after Open().
    virtual void SetCallback(SndDriverCallback callback, void* user) = 0;
    /// The number of channels needed at once: the initial limit of audible sounds plus 4. Later changes of
    /// that limit are not reported.
    virtual void SetMaxChannels(int count) = 0;
    /// The first step of each full update. `elapsedMs` is the time since the previous one, at least 40.
    virtual void BeginUpdate(unsigned long elapsedMs) = 0;
    /// The last step of each full update: all settings of this update have been made.
    virtual void EndUpdate() = 0;
    /// Fills in all flags and returns true, or returns false.
    virtual bool GetCaps(SoundCaps& caps) = 0;
    /// The gain of the whole output, a linear factor from 0.0 to 1.0, stored by the driver.
    virtual void SetMainGain(float gain) = 0;
    virtual float GetMainGain() = 0;
    /// Position of the listener in world units.
    virtual void SetListenerPosition(const Vector3& position) = 0;
    /// The listener's front and up directions: two unit vectors.
    virtual void SetListenerOrientation(const Vector3& front, const Vector3& top) = 0;
    /// Reserved for the layout of the virtual table; the library never calls it.
    virtual void Spare1() = 0;
    /// How fast gain falls with distance; 1.0 is the natural law, 0.0 disables the attenuation.
    virtual void SetRolloffFactor(float factor) = 0;
    virtual float GetRolloffFactor() = 0;
    /// The room around the listener: the record, its quality, and a number that the library passes through.
    /// Returning false refuses it.
    virtual bool SetFXEnvReverb(const FXEnvReverb* record, long quality, unsigned int argument) = 0;
    /// Removes the room; the number is passed through as above.
    virtual void ResetFXEnvReverb(unsigned int argument) = 0;
    /// Creates a channel for `file` that does not play yet. Returns null if no channel is available, which is
    /// a normal case. Must not throw. `flags` are SndChannelFlags. `file` is the head of the sound's queue
    /// and stays owned by the sound; the driver stores it as the channel's `sndFile`. `fx` is read during the
    /// call and not freed.
    virtual SndChannel* CreateChannel(unsigned int flags, SndFile* file, SndFXList fx) = 0;
    /// Whether output is permanently lost, for example because the output file cannot grow any more. A device
    /// that can return does not count. The default returns false.
    virtual bool HasLostOutput() const;
};

/// The type of the function that a driver library exports as "CreateSoundDriver". Null means failure.
using CreateSoundDriverFunction = SndDriver* (*)();

} // namespace Quon
