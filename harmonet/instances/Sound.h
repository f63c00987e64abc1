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

/// Game code plays sound effects through this object. A `Sound` is a group: its gain, its observers and its
/// cone axis apply to all its sounds. A game may create any number of groups and owns them.
///
/// Game code refers to a sound by its id, an integer. Once a sound has ended, for whatever reason, its id is
/// stale: every call with it does nothing and returns the value documented for no sound (0 or false unless
/// stated otherwise). Ids are never reused during the life of the process; 0 is no sound.
///
/// A started sound exists until it ends, and need not be freed. A sound that was created (`New...`) but never
/// started exists until StopSound(), DeleteSound() or the destruction of this object.
///
/// An operation that returns false or 0 does so also when memory runs out, and then creates nothing;
/// AddObserver() throws std::bad_alloc and adds nothing.
///
/// `name` is the name of a resource when there is a `db`, and the name of a file when `db` is null.
///
/// Task thread only. Without a running sound system every creation returns 0. While the group is being
/// destroyed, or the system shut down, an observer cannot create sounds. Groups cannot be copied, since an
/// observer is linked to one group only.
class HARMONET_API Sound : public ObserverSubject<SoundObserver>, public Allocated
{
public:
    /// Optional settings of a positional sound in the call that plays it.
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

    /// How to start a sound; other bits are ignored.
    enum StartFlags : int
    {
        /// The sound loops. Takes precedence over StartQueued; refused for a sound with a queue.
        StartLooping = 0x01,
        /// The channel gets the position once, at the start.
        StartNotMovable = 0x02,
        /// The sound ends instead of becoming virtual. Ignored for a sound along a line.
        StartNoEmulation = 0x04,
        /// The sound requests a channel at once instead of competing at the next update; without one the
        /// start fails. Do not combine it with a delay: the delay is kept, and a sound that has lost its
        /// channel cannot win one again. StartNowOrCompete is usually the better choice.
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
        /// Same as StartImmediately, but a sound without a channel competes at the next update by its
        /// priority, and its delay is set to 0. Has no effect on a sound along a line.
        StartNowOrCompete = 0x88
    };

    Sound();
    Sound(const Sound&) = delete;
    Sound& operator=(const Sound&) = delete;

    void AddObserver(SoundObserver* observer) override;
    void RemoveObserver(SoundObserver* observer) override;
    /// Ends all sounds of this group and notifies the observers of it, then calls their OnShutDown().
    virtual ~Sound();

    // Creation. Each returns the id of the new sound, or 0. A definition with variation selects file, gain
    // and rate here. The file is opened when the sound starts, so a missing file is reported there.

    /// A non-positional sound.
    int New2DSound(const PString& name, const ResourceDatabase* db);
    /// Creates a sound on a block of raw PCM. The block is not copied: it must stay valid until
    /// OnBufferFree() reports it, or until DeleteSound() has deleted the sound. Returns 0 for any format but
    /// PCM, and the caller keeps the block.
    int New2DSound(void* data, unsigned long size, WaveFormatEx* format);
    /// A positional sound; one along a line if the resource has a line.
    int New3DSound(const PString& name, const ResourceDatabase* db);
    int New3DSound(void* data, unsigned long size, WaveFormatEx* format);
    /// Creates a sound along the line through the given points, in world units; position and line of the
    /// resource are ignored. It plays through one source and up to `numAddSounds` more, seven at most, in
    /// directions at least `minAngle` degrees apart as seen from the listener (slightly less, to leave room).
    /// With an angle below 10 there is one source only. The sign of the angle is ignored, and it is taken
    /// modulo 180. Such a sound loops. It has one id, that of the whole line. Returns 0 without points. A
    /// line that starts while the listener does not move is silent until the listener moves.
    int New3DSound(const Vector3* points, unsigned int numPoints, const PString& name,
        const ResourceDatabase* db, unsigned int numAddSounds, float minAngle);

    // Playing in one call. Each returns the id of the started sound, or 0. A priority or delay of 0 keeps the
    // current value. `flags` are StartFlags; `delay` is in milliseconds.

    /// A non-positional sound.
    int Play2DSound(const PString& name, const ResourceDatabase* db, int flags, int priority, int delay);
    int Play2DSound(void* data, unsigned long size, WaveFormatEx* format, int flags, int priority, int delay);
    /// A positional sound, attached to the node named `nodeName` in the scene below `parent`.
    int Play3DSound(Particle* parent, const PString& nodeName, const PString& name,
        const ResourceDatabase* db, int flags, int priority, const Settings& settings, int delay);
    /// The same at a position, with the identity as its orientation unless one is given.
    int Play3DSound(const Vector3& position, const Quaternion& orientation, const PString& name,
        const ResourceDatabase* db, int flags, int priority, const Settings& settings, int delay);
    int Play3DSound(const Vector3& position, const PString& name, const ResourceDatabase* db, int flags,
        int priority, const Settings& settings, int delay);

    // Control of one sound.

    /// Returns false for a sound that is already running, a loop with a queue, a sound that cannot be
    /// started, or one refused by the limits of its definition. These limits may also end another sound of
    /// the definition here. If it returns false, the sound may still exist, not started; DeleteSound()
    /// deletes it.
    bool StartSound(int id, int flags);
    /// Ends the sound, notifies the observers and reports its blocks of memory.
    void StopSound(int id);
    /// Ends the sound without notifying observers. The caller may reuse its memory immediately.
    void DeleteSound(int id);
    /// Pauses a sound: time stops for it. A delay does not count down, fades do not progress, the sound
    /// neither ends nor continues with the next file of its queue, and its channel is free for others. An
    /// audible sound resumes at the same sample with a short ramp, by the usual rules if channels are short.
    /// A sound is paused while it, its group (Pause()) or everything (SoundSystem::PauseAll()) is paused;
    /// each of these is on or off and does not count calls.
    ///
    /// A pause begins and ends in the next full update, so keep calling TaskList::Update(). A paused sound
    /// can be changed like a virtual sound. StopSound() and DeleteSound() end it, and FadeOutSound() ends it
    /// at once, since it is not audible. A sound that is started while paused waits; a line does so without
    /// its sources.
    void PauseSound(int id);
    void ResumeSound(int id);
    /// Whether the sound, its group or everything is paused.
    bool IsSoundPaused(int id) const;
    /// Fades out over `ms` milliseconds and ends. Without a channel, and along a line, the sound ends at
    /// once, and the result is false.
    bool FadeOutSound(int id, unsigned int ms);
    /// Appends a file to the sound's queue, before the start, or while it plays if it was started with
    /// StartQueued. Returns false and appends nothing for a looping sound, a file that cannot be opened, or
    /// one whose bytes per sample, channels or rate differ from the sound's. Opens the file at once, with the
    /// channel's lock held.
    bool CatSound(int id, const PString& name, const ResourceDatabase* db);
    /// Appends a block of PCM. If it returns false, the caller keeps the block and it is not reported.
    bool CatSound(int id, void* data, unsigned long size, WaveFormatEx* format);
    /// Returns the number of files queued after the current one.
    int GetQueueLength(int id);
    /// Attaches a positional sound that is not along a line to a node of the scene.
    bool AttachSound(int id, Particle* parent, const PString& nodeName);

    // Settings of one sound.

    /// Linear, clamped to 0.0..1.0; NaN is ignored. For a sound along a line it is the gain of the whole
    /// line.
    void SetSoundGain(int id, float newGain);
    float GetSoundGain(int id) const;
    /// Gain of the high frequencies: linear, clamped to 0.0..1.0; NaN is ignored. 1.0, the default, disables
    /// the filter. Frequencies well below 1 kHz keep their level, and from 5 kHz on the gain applies; 0.0 is
    /// a low-pass of 12 dB per octave above 1 kHz. Multiplied with those of the group and of everything. It
    /// can change at any time without clicks.
    void SetSoundLowPass(int id, float gainHF);
    float GetSoundLowPass(int id) const;
    void SetSoundPriority(int id, int priority);
    /// The second argument is ignored.
    int GetSoundPriority(int id, int);
    /// Milliseconds before the sound may start. Ignored once the sound runs, like SetSoundFadeIn().
    void SetSoundDelay(int id, int ms);
    /// Sets the start position in milliseconds of the sound's data, including the queue; the lengths below
    /// count from there. A sound that starts without a channel begins there too. If the position is beyond
    /// the end, the sound ends as soon as it has begun, as if it had played to its end; a loop wraps around.
    /// Ignored once the sound runs, and for a sound along a line.
    void SetSoundStartOffset(int id, unsigned long ms);
    /// Sets the loop region of a sound that loops (StartLooping, or the resource): it plays up to, but not
    /// including, sample frame `end` and continues at sample frame `start` without a gap, so an intro is
    /// played once. An end of 0, or beyond the file, means the end of the file; 0 and 0 select the whole
    /// file, as without this call. An empty region counts as the whole file. Replaces the resource's region.
    /// Ignored once the sound runs, and for a sound along a line, which uses that of its resource.
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
    /// Milliseconds left to play, including the queue; unknownLength for a looping sound.
    unsigned long GetRemainLength(int id);
    /// Milliseconds already played.
    unsigned long GetCurrentLength(int id);
    /// For positional sounds, including those along a line; world units.
    void SetSoundMinMaxDistance(int id, float minDistance, float maxDistance, bool cutout);

    /// These are for positional sounds that are not along a line. The position is in world units, in the
    /// space of the node to which the sound is attached. The angles are in degrees, the gain is linear.
    void SetSoundCone(int id, float inner, float outer, float coneGain);
    /// Factor on the sound's Doppler effect, in addition to SoundSystem::SetDopplerFactor(): clamped to
    /// 0.0..10.0; NaN is ignored. Initially 1.0; the getter returns 0.0 for any other sound.
    void SetSoundDoppler(int id, float factor);
    float GetSoundDoppler(int id) const;
    void SetSoundPosition(int id, const Vector3& position);
    /// The node's local position; (0, 0, 0) for any other sound.
    Vector3 GetSoundPosition(int id);
    void SetSoundOrientation(int id, const Quaternion& orientation);
    /// The node's local orientation; the identity for any other sound.
    Quaternion GetSoundOrientation(int id);
    /// Selects the node's axis that is the direction of the cone, also for a sound along a line: see
    /// Snd3D::BindAxisToDirection(). An axis of -3 does nothing.
    void BindSoundAxisToDirection(int id, int axis);
    /// Stores up to `maxPlaces` current positions of the sources of a sound along a line, the nearest to the
    /// listener first, and returns their number. Meant for drawing them; returns 0 for any other sound.
    int GetSoundPlaces(int id, Vector3* places, int maxPlaces) const;

    /// Returns a snapshot for tools: whether the sound is audible, and if not, why. Works for any sound,
    /// whatever its group; the snapshot's id is 0 if there is no such sound.
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
    /// Linear, clamped to 0.0..1.0; NaN is ignored. Applied to audible sounds at once.
    void SetGain(float newGain);
    /// The low-pass of all sounds of the group, including those added later: see SetSoundLowPass().
    void SetLowPass(float gainHF);
    float GetLowPass() const { return lowPass; }
    /// Pauses all sounds of the group, including those added later: see PauseSound().
    void Pause() { SetPaused(true); }
    void Resume() { SetPaused(false); }
    bool IsPaused() const { return paused; }
    /// Sets the axis of new positional sounds; existing ones keep theirs.
    void BindAxisToDirection(int axis) { defaultAxis = axis; }
    /// Returns the length of a sound in milliseconds without creating it; 0 if its file cannot be opened. For
    /// a definition with variants it is that of its "*FILE".
    static unsigned long CalcSoundLength(const PString& name, const ResourceDatabase* db);

private:
    friend class SndBase;
    friend void NotifyBufferFree(Sound& owner, unsigned int soundID, void* buffer);

    void OnSoundBegin(int soundID, const PString& fileName);
    void OnSoundAbort(int soundID, const PString& fileName, int remaining);
    void OnSoundEnd(int soundID, const PString& fileName);
    void OnBufferFree(int soundID, void* buffer);

    int New3DSound(const PString& name, const ResourceDatabase* db, bool ignorePlacement);
    // These throw when memory runs out, and have created nothing then.
    int Make2DSound(const PString& name, const ResourceDatabase* db);
    int Make3DSound(const PString& name, const ResourceDatabase* db, bool ignorePlacement);
    int MakePolyline(
        Snd3D& main, const Vector3* points, unsigned int numPoints, unsigned int numSources, float minAngle);
    bool AppendFile(int id, const PString& name, const ResourceDatabase* db);
    /// Makes a newly created positional sound the main source of a line; returns the line's id.
    int NewPolylineSound(int soundID, const Vector3* points, unsigned int numPoints,
        unsigned int numAddSounds, float minAngle);
    bool StartPolyline(SndPolyline& line);
    SndBase* FindSound(int id) const;
    Snd3D* Find3D(int id) const;
    Snd3D* FindPlaced3D(int id) const;
    SndBase* FindForCat(int id) const;
    bool CanMakeSounds() const;
    /// Adds the sound to the kernel's table with this object as its parent; returns its id.
    int AddSound(SndBase* instance);
    int AddMemorySound(std::unique_ptr<SndBase> instance, SndFile* file);
    void SetPaused(bool on);
    void SetSoundPaused(int id, bool on);
    void NameData(int id, const PString& fileName, const PString& ownerName);
    bool StartSound(SndBase& sound, int flags);
    template<class SetUp>
    int Play(SndBase* sound, int flags, int priority, int delay, SetUp setUp);
    void ApplySettings(Snd3D& sound, const Settings& settings);

    int defaultAxis = -3;
    float gain = 1.0F;
    float lowPass = 1.0F;
    bool paused = false;
    bool closing = false;
    bool hasShutDown = false;
};

} // namespace Quon
