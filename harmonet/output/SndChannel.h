#pragma once

#include "harmonet/Export.h"
#include "harmonet/engine/Alloc.h"
#include "harmonet/engine/SyncObject.h"
#include "harmonet/engine/Vector.h"

#include <cstdint>

namespace Quon
{

class SndFile;
struct FXChorus;
struct FXCompressor;
struct FXDistortion;
struct FXEcho;
struct FXEnvReverb;
struct FXEnvReverbSourceProperties;
struct FXFlanger;
struct FXGargle;
struct FXParamEq;
struct FXWavesReverb;

/// The range of playback rates that a game may request, in Hz.
inline constexpr unsigned long minRateHz = 100;
inline constexpr unsigned long maxRateHz = 100000;
/// Whether a game may request this rate; 0 means the file's own.
inline bool IsRateAccepted(unsigned long hz)
{
    return hz == 0 || (hz >= minRateHz && hz <= maxRateHz);
}

/// One voice of an output driver: it plays one sound file, and the files queued after it, until it is stopped
/// or reports its end. An output driver derives from this class.
///
/// The driver creates, owns and deletes its channels; the library only borrows them. The library uses a
/// channel as follows. SndDriver::CreateChannel() returns it. Then it calls, in this order, FadeIn() if the
/// sound fades in, SetGain() if its gain is not 1, for a positional sound SetCone() if its cone is in use,
/// SetMinMaxDistance(), SetPosition() and SetDirection() if its cone is in use, SetFrequency() if a rate has
/// been set, and Play(). After that it may call the setters any number of times in any order. The use ends
/// with exactly one of two events: Stop(), the library's last call, or the driver's event SndChannelEnded.
///
/// All virtual operations are called on the task thread, and none of them may report an event.
///
/// *The file and its lock.* `sndFile` is the file being played. The library and a driver's own thread share
/// it and the queue after it under the channel's lock: while the lock is held, `sndFile` and the links of the
/// queued files do not change. A driver must hold the lock whenever it reads `sndFile`, reads from that file
/// or steps to the next file, and must not hold it while it reports an event. After Stop() the driver must
/// not access the file. The library closes and deletes files after it has released the lock, except those
/// queued after `sndFile`, and one that it could not append: these are deleted with the lock held.
class HARMONET_API SndChannel : public Allocated
{
public:
    SndChannel();
    SndChannel(const SndChannel&) = delete;
    SndChannel& operator=(const SndChannel&) = delete;

    /// A value for the driver's own use; the library does not read it.
    int GetType() const { return type; }
    /// The file being played, or null. Reads the field without the lock.
    SndFile* GetSndFile() const { return sndFile; }
    /// Stores the file under the lock. The channel does not own it.
    void SetSndFile(SndFile* file);
    /// Acquires the channel's lock and blocks until it is available. The lock is recursive.
    void Lock();
    /// Releases the lock.
    void Unlock();
    CriticalSection* GetChanLock() { return &chanLock; }

    /// Only the driver deletes a channel. A channel must outlive the call to Stop() that ends it, since the
    /// library reads `sndFile` and acquires the lock afterwards.
    virtual ~SndChannel();

    /// Starts the output, from the file's current position.
    virtual void Play() = 0;
    /// Reserved for the layout of the virtual table; the library never calls it.
    virtual void Spare1() = 0;
    /// Ends the output at once. The channel returns to the driver, which must not access the file any more.
    virtual void Stop() = 0;
    /// Fades in from silence to the set gain over `ms` milliseconds, beginning with Play().
    virtual void FadeIn(int ms) = 0;
    /// Fades out to silence over `ms` milliseconds and then ends with the event SndChannelEnded.
    virtual void FadeOut(int ms) = 0;
    /// Milliseconds left of the file currently playing, without the files queued after it.
    virtual unsigned long GetRemainLength() = 0;
    /// Reserved for the layout of the virtual table; the library never calls it.
    virtual void Spare2() = 0;
    /// Linear factor from 0.0 to 1.0. A new channel starts at 1.0; the call is omitted if that is the gain.
    virtual void SetGain(float gain) = 0;
    /// Position of the source in world units, in scene coordinates.
    virtual void SetPosition(const Vector3& position) = 0;
    /// Range of the distance attenuation, in world units: full gain up to `minDistance`, no further loss
    /// beyond `maxDistance`, or silence there if `cutout` is set. 0 and 0 without cutout mean that no range
    /// was set, and the driver chooses one.
    virtual void SetMinMaxDistance(float minDistance, float maxDistance, bool cutout) = 0;
    /// Reserved for the layout of the virtual table; the library never calls it.
    virtual void Spare3() = 0;
    /// Full angles in degrees; `outerGain` is the linear factor outside the outer cone. Angles and gain of 0
    /// mean that no cone was set; the sound is omnidirectional.
    virtual void SetCone(float innerAngle, float outerAngle, float outerGain) = 0;
    /// The axis of the cone, in scene coordinates.
    virtual void SetDirection(const Vector3& direction) = 0;
    /// Plays at `hz` sample frames per second from now on; 0 is the file's own rate. Returning false refuses
    /// the change and keeps the old rate. Return false for rates that IsRateAccepted() does not accept.
    virtual bool SetFrequency(unsigned long hz) = 0;
    /// The rate in Hz; 0 if unknown.
    virtual unsigned long GetFrequency() = 0;

    /// Applies the source side of an environmental reverb. The result is returned to the game.
    virtual bool SetFXEnvReverbSourceProperties(const FXEnvReverbSourceProperties* properties) = 0;
    /// These fill in the live values of an effect and return true. If they return false, the library reports
    /// the requested values. A driver that does not track live values always returns false.
    virtual bool GetFXEnvReverbSourceProperties(FXEnvReverbSourceProperties* properties) = 0;
    virtual bool GetFXEnvReverbListenerProperties(FXEnvReverb* record) = 0;
    virtual bool GetFXChorus(FXChorus* record) = 0;
    virtual bool GetFXFlanger(FXFlanger* record) = 0;
    virtual bool GetFXEcho(FXEcho* record) = 0;
    virtual bool GetFXDistortion(FXDistortion* record) = 0;
    virtual bool GetFXCompressor(FXCompressor* record) = 0;
    virtual bool GetFXParamEq(FXParamEq* record) = 0;
    virtual bool GetFXGargle(FXGargle* record) = 0;
    virtual bool GetFXWavesReverb(FXWavesReverb* record) = 0;

    /// The time at which the game requested the sound that is about to begin. Called before Play(), and not
    /// for a sound that resumes. A driver that implements it delays all sounds by the same time, so that
    /// their rhythm follows the game and not the updates. The default does nothing: the sound begins with
    /// Play().
    ///
    /// `gameMicroseconds` is in game time: during an update it counts from the previous update, between two
    /// updates from the last one. `agoMicroseconds` is the time since the request on the machine's clock;
    /// negative for a start that the game has delayed to a future time.
    virtual void SetStartTime(std::int64_t gameMicroseconds, std::int64_t agoMicroseconds);

    /// Starts the fade just requested with FadeIn() or FadeOut() as if `ms` milliseconds of it were over.
    /// Called for a sound that resumes from a pause. The default does nothing, and the fade takes longer.
    virtual void SkipFade(int ms);

    /// Gain of the high frequencies, a linear factor from 0.0 to 1.0. A new channel starts at 1.0, which does
    /// not change the sound; the call is omitted then. Low frequencies keep their level, and from 5 kHz on
    /// the gain applies. It is applied in addition to the sound's other filters, also on the paths into
    /// rooms. A change must not click. The default does nothing.
    virtual void SetLowPass(float gainHF);

    /// Multiplies the playback speed by `factor`, from 0.5 to 2.0, for the Doppler effect, which changes in
    /// each update. A new channel starts at 1.0; the call is omitted then. It does not affect SetFrequency()
    /// and GetFrequency(), and is also called for a channel without ChanChgFrequency, or with effects. A
    /// change should glide. The default does nothing.
    virtual void SetPitch(float factor);

protected:
    /// See the getters.
    int type = 0;
    SndFile* sndFile = nullptr;
    CriticalSection chanLock;
};

} // namespace Quon
