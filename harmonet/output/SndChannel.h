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

/// One voice of an output driver: it plays one sound file, and the files queued behind it, until it is
/// stopped or reports its end. An output driver derives from this class.
///
/// The driver makes, owns and deletes its channels; the library only borrows them. A channel's life, as the
/// library sees it: SndDriver::CreateChannel() gives it; then, in this order, FadeIn() if the sound fades in,
/// SetGain() if its gain is not 1, for a positional sound SetCone() if its cone is in use,
/// SetMinMaxDistance(), SetPosition() and SetDirection() if its cone is in use, SetFrequency() if a rate has
/// been asked for, and Play(). After that the settings come in any number and order. The life ends with
/// exactly one of two things: Stop(), the library's last word, or the driver's event SndChannelEnded.
///
/// All virtual operations are called on the task thread, and none of them may report an event from inside.
///
/// *The file and its lock.* `sndFile` is the file that is being played. The library and a driver's own thread
/// share it, and the queue behind it, under the channel's lock: while the lock is held, `sndFile` and the
/// links of the files behind it do not change. A driver holds it whenever it reads `sndFile`, reads from that
/// file or steps to the next file, and never across an event. After Stop() the driver does not touch the file
/// any more. The library closes and deletes files after it has released the lock,
/// but for those that wait behind `sndFile`, and one that it could not append: they go under it.
class HARMONET_API SndChannel : public Allocated
{
public:
    SndChannel();
    SndChannel(const SndChannel&) = delete;
    SndChannel& operator=(const SndChannel&) = delete;

    /// Whatever the driver has set for itself; the library does not read it.
    int GetType() const { return type; }
    /// The file that is being played, or null. Reads the field without the lock.
    SndFile* GetSndFile() const { return sndFile; }
    /// Stores the file under the lock. The channel does not own it.
    void SetSndFile(SndFile* file);
    /// Takes the channel's lock, waiting as long as it takes. The lock is re-entrant on one thread.
    void Lock();
    /// Gives the lock back.
    void Unlock();
    CriticalSection* GetChanLock() { return &chanLock; }

    /// Only the driver deletes a channel. A channel must outlive the call of Stop() that ends it, since the
    /// library reads `sndFile` and takes the lock right after.
    virtual ~SndChannel();

    /// Starts the output, from the file's current position.
    virtual void Play() = 0;
    /// Keeps its place in the table of operations; the library never calls it.
    virtual void Spare1() = 0;
    /// Ends the output at once. The channel goes back to the driver, which leaves the file alone from here
    /// on.
    virtual void Stop() = 0;
    /// Rises from silence to the set gain over `ms` milliseconds, beginning with Play().
    virtual void FadeIn(int ms) = 0;
    /// Falls to silence over `ms` milliseconds and then ends, with the event SndChannelEnded.
    virtual void FadeOut(int ms) = 0;
    /// Milliseconds left of the file that is heard now, without the files queued behind it.
    virtual unsigned long GetRemainLength() = 0;
    /// Keeps its place in the table of operations; the library never calls it.
    virtual void Spare2() = 0;
    /// Linear factor from 0.0 to 1.0. A new channel starts at 1.0, and is not told if that is what it is to
    /// be.
    virtual void SetGain(float gain) = 0;
    /// Position of the source in world units, in the coordinates of the scene.
    virtual void SetPosition(const Vector3& position) = 0;
    /// Range of the distance attenuation, in world units: full gain up to `minDistance`, no further loss
    /// beyond `maxDistance`, or silence there if `cutout` is set. 0 and 0 without cutout: the sound was given
    /// none, and the driver chooses.
    virtual void SetMinMaxDistance(float minDistance, float maxDistance, bool cutout) = 0;
    /// Keeps its place in the table of operations; the library never calls it.
    virtual void Spare3() = 0;
    /// Full angles in degrees; `outerGain` is the linear factor outside the outer cone. Angles and gain of 0:
    /// the sound was given no cone, and is heard alike in all directions.
    virtual void SetCone(float innerAngle, float outerAngle, float outerGain) = 0;
    /// The axis of the cone, in the coordinates of the scene.
    virtual void SetDirection(const Vector3& direction) = 0;
    /// Plays at `hz` sample frames per second from here on. False refuses, and the old rate stays.
    virtual bool SetFrequency(unsigned long hz) = 0;
    /// The rate in Hz; 0 when the channel cannot tell.
    virtual unsigned long GetFrequency() = 0;

    /// Applies the source side of an environmental reverb. The result is what the game gets to see.
    virtual bool SetFXEnvReverbSourceProperties(const FXEnvReverbSourceProperties* properties) = 0;
    /// These fill in the live values of an effect and return true, or return false, and the library then
    /// answers with what had been asked for. A driver that tracks no live values returns false throughout.
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

    /// When the game asked for the sound that is about to begin; called before Play(), and not for a sound
    /// that comes back. A driver that keeps it has all sounds wait for the same time, so that their rhythm is
    /// that of the game and not that of the updates. The default does nothing: the sound begins with Play().
    ///
    /// `gameMicroseconds` is in game time: during an update it counts from the update before, between two
    /// updates from the last one. `agoMicroseconds` is how long ago that was by the machine's clock; less
    /// than 0 for a start that the game has put off to a time that is still to come.
    virtual void SetStartTime(std::int64_t gameMicroseconds, std::int64_t agoMicroseconds);

    /// The fade that has just been asked for, with FadeIn() or FadeOut(), begins as if so many milliseconds
    /// of it were over: the sound comes back from a pause. The default does nothing, and the fade is longer.
    virtual void SkipFade(int ms);

    /// Gain of the high frequencies, a linear factor from 0.0 to 1.0; a new channel has 1.0, which leaves the
    /// sound as it is, and is not told. Low frequencies keep their level, and from 5 kHz on the gain applies.
    /// It multiplies whatever other filters the sound has, on its way into rooms too. A change must not
    /// click. The default does nothing.
    virtual void SetLowPass(float gainHF);

    /// Plays `factor` times as fast as by the rate, from 0.5 to 2.0: the Doppler effect, which changes with
    /// each update. A new channel has 1.0, and is not told. It leaves SetFrequency() and GetFrequency() alone
    /// and also comes to a channel without ChanChgFrequency, or with effects. A change should glide. The
    /// default does nothing.
    virtual void SetPitch(float factor);

protected:
    /// As the getters say.
    int type = 0;
    SndFile* sndFile = nullptr;
    CriticalSection chanLock;
};

} // namespace Quon
