#pragma once

#include "harmonet/Export.h"
#include "harmonet/definitions/SndFXList.h"
#include "harmonet/engine/Alloc.h"
#include "harmonet/engine/PString.h"
#include "harmonet/voices/SndFlags.h"
#include "harmonet/voices/SoundReason.h"

#include <cstdint>
#include <memory>

namespace Quon
{

class DefinitionState;
class Motion;
class Music;
class SndChannel;
class SndFile;
class SndKernel;
class Sound;
class SoundRow;
struct SoundBlock;
struct SoundState;
struct Vector3;

/// The length in milliseconds of a sound without end, or of one whose length is not known yet.
inline constexpr unsigned long unknownLength = 0xFFFFFFFF;

/// One sound that can play. Without a channel it continues as a virtual sound (called "emulated" in the names
/// of this interface): it keeps its file open, and each update advances its playback position, so that it
/// resumes at the right sample. For the game a virtual sound is simply playing.
///
/// An update normally advances a virtual sound by counting alone. Its file follows when it is requested, when
/// the sound gets a channel again, and when it continues with the next file. A file whose data may end before
/// its stated length, and any MPEG stream, is advanced at each update.
///
/// The kernel owns every instance that is in the id table and ends it by deleting the object. The destructor
/// notifies observers, stops the channel, removes the sound from list and table and closes the files. Game
/// code holds ids, not instances (`Sound`, `Music`). Task thread only.
class HARMONET_API SndBase : public Allocated
{
public:
    /// Constructs a sound that has not started, with the next id of the process, or id 0 while no kernel
    /// exists. After 2^31 - 1 the ids begin again at 1, and those still in use are skipped. `music` sets
    /// FlagMusic.
    explicit SndBase(bool music);
    /// Copies every field, including pointers, links and channels. The object keeps its own places in the
    /// kernel's list and table. Do not use it to duplicate a running sound: both would then own one file.
    SndBase& operator=(const SndBase& other);

    /// Same as Done().
    virtual ~SndBase();
    /// Runs the sound on this file from now on. Called when it gets a channel, and when it starts without
    /// one. The first call notifies the observers with OnSoundBegin() and skips the start samples.
    virtual void Play(SndFile* file);
    /// Milliseconds before the sound may start; the kernel counts them down.
    virtual void SetDelay(int ms);
    /// Computes the squared distance to the listener. Does nothing for a non-positional sound.
    virtual void CalcDistSqr(const Vector3& listener);
    /// Squared distance to the listener in world units, as last computed; 0.0 for a non-positional sound.
    virtual float GetDistSqr() const;
    /// Performs one step of a full update, `seconds` long: advances a virtual sound. Returns true while the
    /// sound continues, false when it has ended and is to be deleted. A virtual sound ends when less than 500
    /// ms plus the step are left, or when its file has no sample frames.
    virtual bool SndUpdate(float seconds, const Vector3& listener, bool listenerMoved);
    /// A greater value is more important. Takes effect at the next allocation of channels.
    virtual void SetPriority(int newPriority);
    /// Sets the playback rate in Hz; 0 selects the file's own. Returns false and changes nothing if the sound
    /// has an effect, if it plays and was not started with a changeable rate, or if the channel refuses.
    virtual bool SetFrequency(unsigned long hz);
    /// These two are for positional sounds; here they return false.
    virtual bool SetFXEnvReverbSourceProperties(const FXEnvReverbSourceProperties* properties);
    virtual bool GetFXEnvReverbSourceProperties(FXEnvReverbSourceProperties* properties);
    /// The level of the sound at the listener, which may be null: its output gain, attenuated by its
    /// distance; 0 if it is cut out. Cones, fades and effects are ignored. Changes no state.
    virtual float CalcLevel(const Vector3* listener) const;
    /// Sends the sound's Doppler pitch to the channel if it has changed; `isNew` means a channel that has not
    /// received one yet. Does nothing for a non-positional sound.
    virtual void UpdatePitch(SndChannel& channel, bool isNew);

    /// Fades the channel out over `ms` milliseconds and then ends the sound; the fading channel takes over
    /// its file. Without a channel it deletes the instance at once and returns false: the object no longer
    /// exists then.
    bool FadeOut(int ms);
    /// Pauses or resumes the sound. Takes effect in the next full update.
    void SetPaused(bool on);
    /// Whether the sound, its group or everything is paused.
    bool IsPaused() const;
    /// Takes the sound off the driver and continues it as a virtual sound. Returns whether it can continue.
    bool Emulate();
    /// Ends the instance; only the first call has an effect. Each destructor of the hierarchy calls it. It
    /// notifies the observers how the sound ended, stops the channels, removes the sound from list and table,
    /// closes the files and frees the effects, in this order. Without a kernel it does not touch channels,
    /// list and table.
    void Done();

    /// The gain sent to the driver: the product of the group's gain, the main gain of the kind and the
    /// sound's own gain. Without a kernel it is the own gain alone.
    float GetOutputGain() const;
    /// Stores a linear gain from 0.0 to 1.0 and sends the output gain to the channel. Any other value, NaN
    /// included, keeps the own gain and sends the output gain again; callers pass applyAgain for that. During
    /// a cross-fade only the new channel receives it.
    void SetGain(float newGain);
    static constexpr float applyAgain = -1.0F;
    /// The low-pass sent to the driver: the product of the low-passes of everything, of the group or the
    /// music, and of the sound.
    float GetOutputLowPass() const;
    /// The same for the gain of the high frequencies. A channel that fades out receives it too.
    void SetLowPass(float gainHF);
    /// The rate in Hz: the channel's, otherwise the requested one, otherwise the file's, otherwise 0.
    unsigned long GetFrequency() const;
    /// Milliseconds left to play, including the queue; unknownLength for a looping sound.
    unsigned long GetRemainLength() const;
    /// Milliseconds already played of the sound's length: its position.
    unsigned long GetCurrentLength() const;
    /// Moves a sound with a file to a position in milliseconds, as described for Music::SetPosition(). Must
    /// not be called during a kernel operation on this sound. If it returns false, the sound may have been
    /// deleted.
    bool SeekTo(unsigned long ms);

    /// Whether this sound is less important: it has a lower priority, or the same priority and a greater
    /// distance. The distance is scaled by the multiplier unless SetCompareUsingMultiplier(false) is in
    /// force.
    bool operator<(const SndBase& other) const;
    /// Whether this sound is more important.
    bool operator>(const SndBase& other) const { return other < *this; }
    static void SetCompareUsingMultiplier(bool use);
    static bool useMultiplier;

    /// Effects. A setter returns false while the sound plays, since effects are fixed when it starts.
    /// Otherwise it stores the record and discards any change of rate: a sound with effects cannot have one.
    /// A getter returns the live values of the channel, or the stored record if there are none, or false if
    /// there is no record either. `quality` is the quality word of an environmental reverb.
    bool SetFXEnvReverbListenerProperties(const FXEnvReverb* record, long quality);
    bool GetFXEnvReverbListenerProperties(FXEnvReverb* record);
    bool SetFXChorus(const FXChorus* record);
    bool GetFXChorus(FXChorus* record);
    bool SetFXFlanger(const FXFlanger* record);
    bool GetFXFlanger(FXFlanger* record);
    bool SetFXEcho(const FXEcho* record);
    bool GetFXEcho(FXEcho* record);
    bool SetFXDistortion(const FXDistortion* record);
    bool GetFXDistortion(FXDistortion* record);
    bool SetFXCompressor(const FXCompressor* record);
    bool GetFXCompressor(FXCompressor* record);
    bool SetFXParamEq(const FXParamEq* record);
    bool GetFXParamEq(FXParamEq* record);
    bool SetFXGargle(const FXGargle* record);
    bool GetFXGargle(FXGargle* record);
    bool SetFXWavesReverb(const FXWavesReverb* record);
    bool GetFXWavesReverb(FXWavesReverb* record);

    /// Stores the list itself; the sound takes ownership of the block unless FlagSharedFXList is set. A block
    /// that the sound owned before is freed. If memory runs out, throws, and frees a block of which it was to
    /// take ownership.
    void SetThisFXList(const SndFXList& list);
    /// Allocates what SetThisFXList() needs, which then cannot fail.
    void ReserveExtras() { UseExtras(); }
    /// Stores a copy of the list's block; an empty list is ignored.
    void SetCopyFXList(const SndFXList& list);
    /// Returns the list without copying the block.
    SndFXList GetThisFXList() const { return extras ? extras->fxList : SndFXList(); }

    /// The fields. Each of these reads or writes one and does nothing else.
    int GetSoundID() const { return soundID; }
    /// The owning group; null for music or when there is none.
    Sound* GetParentSound() const { return IsMusic() ? nullptr : static_cast<Sound*>(parent); }
    void SetParentSound(Sound* newParent) { parent = newParent; }
    /// The owning `Music`; null for any other sound.
    Music* GetParentMusic() const { return IsMusic() ? static_cast<Music*>(parent) : nullptr; }
    void SetParentMusic(Music* newParent) { parent = newParent; }
    std::uint32_t GetSndFlags() const { return *sndFlags; }
    bool HasAnyFlag(std::uint32_t mask) const { return (GetSndFlags() & mask) != 0; }
    const PString& GetFileName() const { return fileName; }
    void SetFileName(const PString& name);
    const PString& GetSubstName() const { return substName; }
    void SetSubstName(const PString& name);
    /// The file, moved to the sound's playback position first.
    SndFile* GetSndFile() const;
    void SetSndFile(SndFile* file);
    void SetStartSample(int samples) { SetExtra(&Extras::startSample, samples); }
    /// The start position in milliseconds, in addition to the start samples.
    void SetStartOffset(unsigned long ms)
    {
        SetExtra(&Extras::startOffsetMs, static_cast<std::uint32_t>(ms));
    }
    /// The loop region of its file, in sample frames: see SndFile::SetLoopRegion(). Call it before the sound
    /// starts.
    void SetLoopRegion(int start, int end);
    /// Milliseconds in 32 bits.
    void SetStateTime(unsigned long ms);
    unsigned long GetStateTime() const;
    /// Milliseconds in 32 bits.
    void SetSoundLength(unsigned long ms);
    unsigned long GetSoundLength() const { return soundLength; }
    int GetFadeDuration() const { return GetExtras().fadeDuration; }
    /// Sets the length of the fade-in, and FlagFadeIn.
    void SetFadeIn(int ms);
    float GetGain() const { return gain; }
    float GetLowPass() const { return GetExtras().lowPass; }
    int GetPriority() const;
    float GetMultiplier() const;
    void SetMultiplier(float factor);
    int GetDelay() const { return GetExtras().delay; }
    unsigned long GetNewFrequency() const { return GetExtras().newFrequency; }
    void SetNewFrequency(unsigned long hz);
    /// Multiplies the rate of the file by `factor` when the file is opened, unless SetNewFrequency() sets a
    /// rate before.
    void SetFrequencyFactor(float factor) { SetExtra(&Extras::frequencyFactor, factor); }
    SndChannel* GetSndChannel() const { return sndChannel; }
    void SetSndChannel(SndChannel* channel) { sndChannel = channel; }
    /// Whether it plays through a channel, or will do so again after a pause.
    bool HoldsChannel() const;
    SndChannel* GetFadeOutChannel() const { return extras ? extras->fadeOutChannel : nullptr; }
    void SetFadeOutChannel(SndChannel* channel) { SetExtra(&Extras::fadeOutChannel, channel); }

    /// The flags of SndFlags, one each.
    bool Is3D() const { return HasAnyFlag(Flag3D); }
    bool IsFadeIn() const { return HasAnyFlag(FlagFadeIn); }
    bool IsMusic() const { return HasAnyFlag(FlagMusic); }
    bool IsLooping() const { return HasAnyFlag(FlagLooping); }
    void SetLooping() { AddFlags(FlagLooping); }
    bool IsMovable() const { return !HasAnyFlag(FlagNotMovable); }
    bool IsEmulation() const { return !HasAnyFlag(FlagNoEmulation); }
    bool IsImmediately() const { return HasAnyFlag(FlagImmediately); }
    bool IsDistLTMax() const { return HasAnyFlag(FlagDistLTMax); }
    bool IsDistGTMax() const { return HasAnyFlag(FlagDistGTMax); }
    void SetDistLTMax()
    {
        AddFlags(FlagDistLTMax);
        ClearFlags(FlagDistGTMax);
    }
    void SetDistGTMax()
    {
        AddFlags(FlagDistGTMax);
        ClearFlags(FlagDistLTMax);
    }
    bool IsPolyline() const { return HasAnyFlag(FlagPolyline); }
    bool IsChgFrequency() const { return HasAnyFlag(FlagChgFrequency); }
    bool IsDisableMicFX() const { return HasAnyFlag(FlagDisableMicFX); }
    /// Returns the masked bit, so true is not 1; the same holds for IsPlaying().
    int GetInPause() const { return static_cast<int>(GetSndFlags() & FlagInPause); }
    void SetInPause(bool on) { SetFlags(FlagInPause, on); }
    int IsPlaying() const { return static_cast<int>(GetSndFlags() & FlagPlaying); }
    void SetIsPlaying(bool on) { SetFlags(FlagPlaying, on); }
    /// Whether a driver channel plays it, including a fade-out.
    bool IsAudible() const { return sndChannel || GetFadeOutChannel(); }
    void AddFlags(std::uint32_t mask) { *sndFlags |= mask; }
    void ClearFlags(std::uint32_t mask) { *sndFlags &= ~mask; }
    /// Overwrites all flags.
    void ResetFlags(std::uint32_t flags) { *sndFlags = flags; }

    /// Why it is audible or not, as last decided, and for how many milliseconds of the kernel's clock.
    SoundReason GetReason() const;
    unsigned long GetReasonAge() const;
    /// Fills in the state for tools. Does not move any file.
    void FillState(SoundState& state) const;
    /// The name of the resource that it was created from, for tools; empty for none.
    void SetDefinitionName(const PString& name) { definitionName = name; }
    /// The definition whose limits apply to its start, null for none. Owned by the kernel.
    void SetLimitedBy(DefinitionState* state) { SetExtra(&Extras::limitedBy, state); }
    DefinitionState* GetLimitedBy() const { return GetExtras().limitedBy; }

    /// The SndChannelFlags for a channel of this sound.
    unsigned int GetChannelFlags() const;
    /// Whether one of this sound's own notifications, or its end, is running. The instance must not be
    /// deleted then, and game operations that would do so skip it. The same holds for the head of a line
    /// during a notification of one of its sources, since the sources are deleted with it.
    bool IsInNotification() const;
    /// Marks the sound as being in a notification while this object exists; may be nested.
    class NotificationScope
    {
    public:
        /// Marks it.
        explicit NotificationScope(SndBase& newSound)
            : sound(newSound)
            , before(newSound.inNotification)
        {
            sound.inNotification = true;
        }
        ~NotificationScope() { sound.inNotification = before; }
        NotificationScope(const NotificationScope&) = delete;
        NotificationScope& operator=(const NotificationScope&) = delete;

    private:
        SndBase& sound;
        bool before;
    };
    /// Defers the notifications of music while an instance exists; the destructor of the last one delivers
    /// them to the observers (MusicObserver).
    class MusicHold
    {
    public:
        MusicHold();
        ~MusicHold();
        MusicHold(const MusicHold&) = delete;
        MusicHold& operator=(const MusicHold&) = delete;
    };
    /// Detects which observed pieces of music have restarted their loop since the last call.
    static void NoteMusicLoops();

protected:
    /// Constructs a new instance of the same sound that has not started: a new id, the settings of `other`,
    /// and no parent, file, channel, list or effects.
    SndBase(const SndBase& other);

    /// The part of this sound that an update reads and writes; the kernel stores the rows of all sounds
    /// together.
    SoundRow Row() const;
    /// The last id that was assigned.
    static int lastSoundID;

    /// Advances the file by `samples` sample frames, around a loop or along the queue.
    void SkipSamples(int samples);
    /// Returns the effects to change them. A list owned by another instance is replaced by a copy first.
    SndFXList& OwnFXList();

    /// Sets or clears the flags in the mask.
    void SetFlags(std::uint32_t mask, bool on) { on ? AddFlags(mask) : ClearFlags(mask); }
    /// Reads the channel's live record, or the stored one.
    template<class Record>
    bool GetEffect(SndFX effect, Record* record, bool (SndChannel::*getter)(Record*))
    {
        if (sndChannel && (sndChannel->*getter)(record)) {
            return true;
        }
        const SndFXDesc* desc = GetExtras().fxList.GetFXDesc(effect);
        if (desc) {
            *record = *static_cast<const Record*>(desc->GetRecord());
        }
        return desc != nullptr;
    }

    /// What the channel that fades out needs to resume after a pause.
    struct FadeOutState
    {
        SndFile* file = nullptr; ///< Set during a pause only.
        unsigned int flags = 0; ///< Of the channel: SndChannelFlags.
        float gain = 1.0F; ///< As sent.
        int ms = 0; ///< Length of the fade.
        std::uint32_t since = 0; ///< On the kernel's clock; during a pause, the milliseconds elapsed.
    };
    /// What few sounds need, allocated when it is first set. Setting a default value does not allocate.
    struct Extras : Allocated
    {
        DefinitionState* limitedBy = nullptr; ///< See SetLimitedBy().
        /// The effects. The block is this sound's own unless FlagSharedFXList is set.
        SndFXList fxList;
        std::uint32_t newFrequency = 0; ///< Hz; 0: that of the file.
        int delay = 0; ///< Milliseconds.
        int startSample = 0; ///< Sample frames.
        std::uint32_t startOffsetMs = 0; ///< In addition to them.
        int fadeDuration = 0; ///< Of the fade-in, milliseconds.
        float lowPass = 1.0F; ///< Gain of the high frequencies.
        int loopStart = 0; ///< As requested, in sample frames.
        int loopEnd = 0; ///< 0: the end of the file.
        float frequencyFactor = 1.0F; ///< For the rate of a file that is not open yet.
        SndChannel* fadeOutChannel = nullptr; ///< The channel that fades out, or null.
        FadeOutState fadingOut; ///< Of that channel.
        std::uint32_t fadeInPassed = 0; ///< Milliseconds of the fade-in played before a pause.
        std::uint32_t pausedMoves = 0; ///< How often the listener had moved when the pause began,
        std::uint32_t pausedStateMs = 0; ///< Its state time then,
        std::uint32_t pausedSince = 0; ///< and when that was on the kernel's clock.

        // Of a positional sound.
        float innerConeAngle = 0.0F; ///< Of the cone while it is in use: see Snd3D::SetCone().
        float outerConeAngle = 0.0F; ///< The same.
        float coneGain = 0.0F; ///< The same.
        float doppler = 1.0F; ///< Factor on the Doppler effect.
        float sentPitch = 1.0F; ///< The last pitch sent to the channel.
        std::unique_ptr<Motion> motion; ///< Since the Doppler effect was on.
    };

    /// Returns the extras, or their defaults while none are set.
    const Extras& GetExtras() const;
    /// Allocates the extras at the first call.
    Extras& UseExtras();
    /// Sets a field of the extras. A value equal to the present one does not allocate.
    template<class T>
    void SetExtra(T Extras::*field, const T& value)
    {
        if (GetExtras().*field != value) {
            UseExtras().*field = value;
        }
    }

private:
    friend class SndKernel;

    void CopyExtras(const SndBase& other);

    // For positional sounds, by their rows.

    /// Gets the positions of all nodes of a block that have moved.
    static void UpdatePlaces(SoundBlock& block);
    /// Sends the position to the channel, if any.
    static void SendMove(SoundRow row);
    bool AddEffect(SndFX effect, const void* record, unsigned long size, long quality);
    void NotifyEnd();
    void NotifyMusicBegin();
    void NotifyMusicEnd();
    float CalcMusicGain() const;
    void ReleaseFadeOutChannel();
    void StopChannel();
    void PauseOutput();
    void ApplyLoopRegion(SndFile& file) const;
    int TakeStartSamples();
    std::uint32_t LessStartOffset(std::uint32_t ms) const;
    void CloseAndDelete(SndFile* file);
    void MoveOnTo(SndFile* newFile);
    void StepToNextFile();
    void SkipAlongQueue(int samples);
    void TakeFile(SndFile* file);
    void LeaveLimits();
    void StartCounting();
    void NoteRate();
    void CatchUpFile() const;
    void CountLoop(std::int32_t samples);
    bool AdvanceEmulated(std::uint32_t samples);
    bool AdvanceLooping(int samples);
    bool AdvanceInRegion(std::uint32_t samples);
    bool AdvanceAlongQueue(int samples);
    std::uint32_t CalcFileRemain() const;
    std::uint32_t CalcQueueLength() const;
    std::uint32_t CalcRemainAtEnd() const;

    /// Same as FillState(), for this object alone, without the sources of a line.
    void FillOwnState(SoundState& state) const;

    static int NextSoundID();

    // What an update and a look-up read comes first, next to the position of a positional sound.
    const std::uint32_t rowNumber; ///< Of Row().
    int soundID;
    std::uint32_t* const sndFlags; ///< In Row().
    SndChannel* sndChannel = nullptr;
    std::uint16_t traced = 0; ///< The state last reported to the trace; 0 for none.
    bool inNotification = false;
    bool ended = false; ///< Done() has begun.
    bool hasRunOut = false; ///< It has reached its end as a virtual sound.

protected:
    /// Of a positional sound: whether its cone has an effect, and the axis of the node that is its direction.
    bool isConeInUse = true;
    std::int8_t coneAxis = -3;

private:
    SndFile* sndFile = nullptr; ///< Lags the sound's playback position while that is counted.
    void* parent = nullptr;
    PString fileName;
    PString substName;
    PString definitionName;
    std::unique_ptr<Extras> extras;
    std::uint32_t soundLength = static_cast<std::uint32_t>(unknownLength);
    float gain = 1.0F;
    int tableID = 0; ///< The id under which it is in the kernel's table; 0 if it is not.
    std::uint32_t startSerial = 0; ///< Serial number of this start among all sounds; 0 before the first.
    std::int64_t startGameTime = 0; ///< When it is to begin, on the kernel's StartClock,
    std::int64_t startMachineTime = 0; ///< and by the clock of the machine.
    std::uint32_t reasonSince = 0; ///< On the kernel's clock, when the current reason was set.
    std::uint32_t startedAt = 0; ///< On the kernel's clock.
};

} // namespace Quon
