#pragma once

#include "harmonet/Export.h"
#include "harmonet/definitions/FXRecords.h"
#include "harmonet/engine/Alloc.h"
#include "harmonet/engine/PString.h"
#include "harmonet/engine/Quaternion.h"
#include "harmonet/engine/Vector.h"
#include "harmonet/files/WaveFormatEx.h"
#include "harmonet/instances/ObserverSubject.h"
#include "harmonet/instances/SoundObserver.h"
#include "harmonet/kernel/SoundState.h"

#include <memory>

namespace Quon
{

class Particle;
class ResourceDatabase;
class Snd3D;
class SndBase;
class SndFile;
class SndPolyline;
class SoundResource;

/// Through this object game code plays sound effects. A `Sound` is a group: it gives its sounds a gain, the
/// observers and the axis of their cones. A game makes as many as it likes and keeps them where it likes.
///
/// Game code never holds a sound but its id, an integer. An id whose sound has ended, for whatever reason,
/// finds nothing, and every call with it does nothing and returns its empty value (told with each operation;
/// 0, false or nothing where it is not). Ids are never used twice in the life of the process; 0 is no sound.
///
/// A sound that was started lives exactly as long as it runs, and nothing need be freed. A sound that was
/// made (`New...`) but never started stays until StopSound(), DeleteSound() or the end of this object.
///
/// An operation that answers false or 0 does so too when there is no memory for it, and has then made
/// nothing; AddObserver() throws std::bad_alloc and adds nobody.
///
/// `name` is the name of a resource when there is a `db`, and the name of a file when `db` is null.
///
/// Task thread only. Works without a running sound system: every creation then returns 0. While the group is
/// being destroyed, or the system shut down, an observer can make no new sound. Groups cannot be copied,
/// since an observer has a link to one group only.
class HARMONET_API Sound : public ObserverSubject<SoundObserver>, public Allocated
{
public:
    /// What can be set on a positional sound in the call that plays it.
    struct Settings
    {
        bool setCone = false; ///< Whether the next three apply.
        float innerConeAngle = 0.0F; ///< Degrees.
        float outerConeAngle = 0.0F; ///< Degrees.
        float coneGain = 0.0F; ///< Linear factor outside the outer cone.
        bool setDistance = false; ///< Whether the next three apply.
        float minDistance = 0.0F; ///< World units.
        float maxDistance = 0.0F; ///< World units.
        bool cutout = false; ///< Not audible beyond the maximum distance.
    };

    /// How a sound is to be started; other bits are ignored.
    enum StartFlags : int
    {
        /// The sound has no end. Takes precedence over StartQueued; refused for a sound with a queue.
        StartLooping = 0x01,
        /// The channel gets the position once, at the start.
        StartNotMovable = 0x02,
        /// The sound ends instead of running on unheard. Ignored for a sound along a line.
        StartNoEmulation = 0x04,
        /// The sound asks for a channel at once instead of competing at the next update; without one the
        /// start fails. Do not combine it with a delay: the delay stays, and a sound that has lost its
        /// channel cannot win one again. Mostly StartNowOrCompete is what a game wants.
        StartImmediately = 0x08,
        /// CatSound() stays allowed while the sound plays.
        StartQueued = 0x10,
        /// SetFrequency() stays allowed while the sound plays, and the listener's effects do not apply. To
        /// keep these, call SetFrequency() before StartSound() instead.
        /// Ignored for a sound with effects. Has no effect on a sound along a line; set it in the resource.
        StartChgFrequency = 0x20,
        /// The listener's effects do not apply. Has no effect on a sound along a line; set it in the
        /// resource.
        StartDisableMicFX = 0x40,
        /// As StartImmediately, but a sound that finds no channel competes at the next update by its
        /// priority, and a delay is set to 0. Has no effect on a sound along a line.
        StartNowOrCompete = 0x88
    };

    Sound();
    Sound(const Sound&) = delete;
    Sound& operator=(const Sound&) = delete;

    void AddObserver(SoundObserver* observer) override;
    void RemoveObserver(SoundObserver* observer) override;
    /// Ends all sounds of this group, with their notifications, then tells the observers OnShutDown().
    virtual ~Sound();

    // Creation. Each returns the id of the new sound, or 0. A definition with variation chooses file, gain
    // and rate here. A file is opened when the sound starts, so that a missing one shows there.

    /// A non-positional sound.
    int New2DSound(const PString& name, const ResourceDatabase* db);
    /// On a block of bare PCM, which is not copied: it must stay valid until OnBufferFree() reports it, or
    /// until the sound is gone after DeleteSound(). 0 for anything but PCM, and the block stays the caller's.
    int New2DSound(void* data, unsigned long size, WaveFormatEx* format);
    /// A positional sound; one along a line if the resource has a line.
    int New3DSound(const PString& name, const ResourceDatabase* db);
    int New3DSound(void* data, unsigned long size, WaveFormatEx* format);
    /// A sound along the line through the given points, in world units; position and line of the resource are
    /// ignored. It is heard through one source and up to `numAddSounds` more, seven at most, which lie in
    /// directions at least `minAngle` degrees apart as seen from the listener (somewhat less, to leave room);
    /// with an angle below 10 there is one source only. The sign of the angle does not matter, and it counts
    /// modulo 180. Such a sound loops. It has one id, that of the whole line. 0 without points. A line that
    /// starts while the listener stands still is silent until the listener moves.
    int New3DSound(const Vector3* points, unsigned int numPoints, const PString& name,
        const ResourceDatabase* db, unsigned int numAddSounds, float minAngle);

    // Playing in one call. Each returns the id of the started sound, or 0. A priority or delay of 0 leaves
    // the value as it stands. `flags` are StartFlags; `delay` is in milliseconds.

    /// A non-positional sound.
    int Play2DSound(const PString& name, const ResourceDatabase* db, int flags, int priority, int delay);
    int Play2DSound(void* data, unsigned long size, WaveFormatEx* format, int flags, int priority, int delay);
    /// A positional sound. Hangs it below the node called `nodeName` in the scene below `parent`.
    int Play3DSound(Particle* parent, const PString& nodeName, const PString& name,
        const ResourceDatabase* db, int flags, int priority, const Settings& settings, int delay);
    /// The same at a place, with the identity as its orientation unless one is given.
    int Play3DSound(const Vector3& position, const Quaternion& orientation, const PString& name,
        const ResourceDatabase* db, int flags, int priority, const Settings& settings, int delay);
    int Play3DSound(const Vector3& position, const PString& name, const ResourceDatabase* db, int flags,
        int priority, const Settings& settings, int delay);

    // Control of one sound.

    /// False for a sound that runs already, a loop with a queue, or a sound that cannot be had; also where
    /// the limits of its definition refuse it. By these another sound of the definition may end here. After a
    /// false the sound may still exist, not started; DeleteSound() settles it.
    bool StartSound(int id, int flags);
    /// Ends the sound; the observers are told and blocks of memory reported.
    void StopSound(int id);
    /// Ends the sound without notifying observers; the caller has its memory back at once.
    void DeleteSound(int id);
    /// Pauses a sound: time stands still for it, whatever it does. A delay does not count down, fades stay
    /// where they are, no end and no file of its queue comes, and its channel is free for others. What was
    /// heard comes back at the same sample, by the usual rules if channels are short, with a short ramp. A
    /// sound is paused while it, its group (Pause()) or everything (SoundSystem::PauseAll()) is paused; each
    /// of these is on or off and does not count calls.
    ///
    /// A pause begins and ends in the next full update, so go on calling TaskList::Update(). A paused sound
    /// can be set up as one that runs without a channel. StopSound() and the like end it, and FadeOutSound()
    /// ends it at once, since it is not heard. One that is started waits, along a line without its sources.
    void PauseSound(int id);
    void ResumeSound(int id);
    /// Whether the sound, its group or everything is paused.
    bool IsSoundPaused(int id) const;
    /// Fades out over `ms` milliseconds and ends. Without a channel, and along a line, the sound ends at
    /// once, and the result is false.
    bool FadeOutSound(int id, unsigned int ms);
    /// Appends a file behind the sound, before the start, or during play if it was started with StartQueued.
    /// False, and nothing is appended, for a looping sound, a file that cannot be opened, or one whose bytes
    /// per sample, channels or rate are not those of the sound. Opens the file at once, with the channel's
    /// lock held.
    bool CatSound(int id, const PString& name, const ResourceDatabase* db);
    /// Appends a block of PCM. After a false the block stays the caller's and is not reported.
    bool CatSound(int id, void* data, unsigned long size, WaveFormatEx* format);
    /// How many files wait behind the current one.
    int GetQueueLength(int id);
    /// Hangs a positional sound that is not along a line below a node of the scene.
    bool AttachSound(int id, Particle* parent, const PString& nodeName);

    // Settings of one sound.

    /// Linear, clamped to 0.0 to 1.0; NaN changes nothing. For a sound along a line it is the gain of the
    /// whole line.
    void SetSoundGain(int id, float newGain);
    float GetSoundGain(int id) const;
    /// Gain of the high frequencies: linear, clamped to 0.0 to 1.0; NaN changes nothing. 1.0, the default, is
    /// no filter. Frequencies well below 1 kHz keep their level, and from 5 kHz on the gain applies; 0.0 is a
    /// low-pass of 12 dB per octave above 1 kHz. Multiplied with those of the group and of everything. Can
    /// change at any time and does not click.
    void SetSoundLowPass(int id, float gainHF);
    float GetSoundLowPass(int id) const;
    void SetSoundPriority(int id, int priority);
    /// The second argument is ignored.
    int GetSoundPriority(int id, int);
    /// Milliseconds before the sound may start. Ignored once it runs, like the next one.
    void SetSoundDelay(int id, int ms);
    /// Where the sound begins: milliseconds into its data, the queue included; the lengths below count from
    /// there. A sound that has no channel then begins there too. Beyond its end the sound ends as soon as it
    /// has begun, as one that has run out; a loop goes round. Ignored once it runs, and for a sound along a
    /// line.
    void SetSoundStartOffset(int id, unsigned long ms);
    /// What of the sound is a loop, if it loops (StartLooping, or the resource): it plays up to sample frame
    /// `end`, which is not heard any more, and goes on from sample frame `start` without a gap. So a
    /// beginning is heard once. An end of 0, or beyond the file, is its end; 0 and 0 is the whole file, as
    /// without this call. A region that holds nothing counts as the whole file. Takes the place of that of
    /// the resource. Ignored once the sound runs, and for a sound along a line, which has that of its
    /// resource.
    void SetSoundLoopRegion(int id, int start, int end);
    /// Each time the sound gets a channel it fades in over `ms` milliseconds. Has no effect on a
    /// sound along a line.
    void SetSoundFadeIn(int id, int ms);
    /// 100 to 100000 Hz, or 0 for the file's own rate; anything else is refused, and so is a sound with
    /// effects. A sound that plays takes it if it was started with StartChgFrequency, if its resource allows
    /// it, or if this was called before the start; in the last two cases the listener's effects stay. While a
    /// sound along a line runs, its sources refuse unless its resource allows a change of rate.
    bool SetFrequency(int id, unsigned long hz);
    unsigned long GetFrequency(int id);
    /// Milliseconds; unknownLength until the file has been opened.
    unsigned long GetSoundLength(int id);
    /// Milliseconds still to come, the queue included; unknownLength for a looping sound.
    unsigned long GetRemainLength(int id);
    /// Milliseconds already played.
    unsigned long GetCurrentLength(int id);
    /// For positional sounds, those along a line included; world units.
    void SetSoundMinMaxDistance(int id, float minDistance, float maxDistance, bool cutout);

    /// These are for positional sounds that are not along a line. The place is in world units, in the space
    /// of the node to which the sound is attached. The angles are in degrees, the gain is linear.
    void SetSoundCone(int id, float inner, float outer, float coneGain);
    /// How much of the Doppler effect the sound has, beside SoundSystem::SetDopplerFactor(): a factor,
    /// clamped to 0.0 to 10.0; NaN changes nothing. At the start it is 1.0; 0.0 for any other sound.
    void SetSoundDoppler(int id, float factor);
    float GetSoundDoppler(int id) const;
    void SetSoundPosition(int id, const Vector3& position);
    /// The node's local position; (0, 0, 0) for any other sound.
    Vector3 GetSoundPosition(int id);
    void SetSoundOrientation(int id, const Quaternion& orientation);
    /// The node's local orientation; the identity for any other sound.
    Quaternion GetSoundOrientation(int id);
    /// Which axis of the node is the direction of the cone, also for a sound along a line: see
    /// Snd3D::BindAxisToDirection(). An axis of -3 does nothing.
    void BindSoundAxisToDirection(int id, int axis);
    /// Where the sources of a sound along a line now are, the nearest to the listener first: stores up to
    /// `most` places and returns how many. For drawing them; 0 for any other sound.
    int GetSoundPlaces(int id, Vector3* places, int most) const;

    /// A snapshot for tools: whether the sound is heard, and if not, why. For any sound, whatever its group;
    /// the id in it is 0 if there is no such sound.
    static SoundState GetState(int id);

    /// Effects of one sound: see SndBase.
    bool SetFXEnvReverbListenerProperties(int id, const FXEnvReverb* record, long quality);
    bool GetFXEnvReverbListenerProperties(int id, FXEnvReverb* record);
    bool SetFXEnvReverbSourceProperties(int id, const FXEnvReverbSourceProperties* record);
    bool GetFXEnvReverbSourceProperties(int id, FXEnvReverbSourceProperties* record);
    bool SetFXChorus(int id, const FXChorus* record);
    bool GetFXChorus(int id, FXChorus* record);
    bool SetFXFlanger(int id, const FXFlanger* record);
    bool GetFXFlanger(int id, FXFlanger* record);
    bool SetFXEcho(int id, const FXEcho* record);
    bool GetFXEcho(int id, FXEcho* record);
    bool SetFXDistortion(int id, const FXDistortion* record);
    bool GetFXDistortion(int id, FXDistortion* record);
    bool SetFXCompressor(int id, const FXCompressor* record);
    bool GetFXCompressor(int id, FXCompressor* record);
    bool SetFXParamEq(int id, const FXParamEq* record);
    bool GetFXParamEq(int id, FXParamEq* record);
    bool SetFXGargle(int id, const FXGargle* record);
    bool GetFXGargle(int id, FXGargle* record);
    bool SetFXWavesReverb(int id, const FXWavesReverb* record);
    bool GetFXWavesReverb(int id, FXWavesReverb* record);

    // The group.

    /// The gain of the group.
    float GetGain() const { return gain; }
    /// Linear, clamped to 0.0 to 1.0; NaN changes nothing. Sounds that are heard follow at once.
    void SetGain(float newGain);
    /// The low-pass of all sounds of the group, those to come included: see SetSoundLowPass().
    void SetLowPass(float gainHF);
    float GetLowPass() const { return lowPass; }
    /// Pauses all sounds of the group, those to come included: see PauseSound().
    void Pause() { SetPaused(true); }
    void Resume() { SetPaused(false); }
    bool IsPaused() const { return paused; }
    /// The axis that new positional sounds get; those that exist keep theirs.
    void BindAxisToDirection(int axis) { defaultAxis = axis; }
    /// Milliseconds of a sound, without making one; 0 if its file cannot be opened. Of a definition with
    /// variants that of its "*FILE".
    static unsigned long CalcSoundLength(const PString& name, const ResourceDatabase* db);

private:
    friend class SndBase;
    friend void NotifyBufferFree(Sound& owner, unsigned int soundID, void* buffer);

    void OnSoundBegin(int soundID, const PString& fileName);
    void OnSoundAbort(int soundID, const PString& fileName, int remaining);
    void OnSoundEnd(int soundID, const PString& fileName);
    void OnBufferFree(int soundID, void* buffer);

    int New3DSound(const PString& name, const ResourceDatabase* db, bool ignorePlacement);
    // These throw when there is no memory, and have then made nothing.
    int Make2DSound(const PString& name, const ResourceDatabase* db);
    int Make3DSound(const PString& name, const ResourceDatabase* db, bool ignorePlacement);
    int MakePolyline(
        Snd3D& main, const Vector3* points, unsigned int numPoints, unsigned int numSources, float minAngle);
    bool AppendFile(int id, const PString& name, const ResourceDatabase* db);
    /// Makes a positional sound that has just been made the main source of a line; returns the line's id.
    int NewPolylineSound(int soundID, const Vector3* points, unsigned int numPoints,
        unsigned int numAddSounds, float minAngle);
    bool StartPolyline(SndPolyline& line);
    SndBase* FindSound(int id) const;
    Snd3D* Find3D(int id) const;
    Snd3D* FindPlaced3D(int id) const;
    SndBase* FindForCat(int id) const;
    bool CanMakeSounds() const;
    /// Enters the sound in the kernel's table, with this object as its parent; returns its id.
    int AddSound(SndBase* instance);
    int AddMemorySound(std::unique_ptr<SndBase> instance, SndFile* file);
    void SetPaused(bool on);
    void SetSoundPaused(int id, bool on);
    void NameData(int id, const PString& fileName, const PString& ownerName);
    bool StartSound(SndBase& sound, int flags);
    template<class SetUp>
    int Play(int id, int flags, int priority, int delay, SetUp setUp);
    void ApplySettings(Snd3D& sound, const Settings& settings);

    int defaultAxis = -3;
    float gain = 1.0F;
    float lowPass = 1.0F;
    bool paused = false;
    bool closing = false;
    bool hasShutDown = false;
};

} // namespace Quon
