#pragma once

#include "harmonet/Export.h"
#include "harmonet/definitions/SndFXList.h"
#include "harmonet/engine/Alloc.h"
#include "harmonet/engine/PString.h"
#include "harmonet/instances/SoundReason.h"

#include <cstdint>

namespace Quon
{

class DefinitionState;
class Music;
class SndChannel;
class SndFile;
class SndKernel;
class Sound;
struct SoundRow;
struct SoundState;
struct Vector3;

/// The flags of a sound instance; all other bits of the word stay 0.
enum SndFlags : std::uint32_t
{
    Flag3D = 0x00000001, ///< Positional.
    FlagFadeIn = 0x00000002, ///< Each new channel begins with a fade-in.
    FlagFadeOut = 0x00000004, ///< FadeOut() has been called.
    FlagMusic = 0x00000008, ///< Music; the parent is a `Music`, and no SoundObserver hears of it.
    FlagLooping = 0x00000010, ///< Goes on from its start without end. Nothing clears it.
    FlagNotMovable = 0x00000020, ///< The channel gets the position once, at the start.
    FlagNoEmulation = 0x00000040, ///< Ends instead of running on without a channel.
    FlagImmediately = 0x00000080, ///< Asks for a channel at once, not at the next update.
    FlagDistLTMax = 0x00000100, ///< Inside its audible range.
    FlagDistGTMax = 0x00000200, ///< Beyond its audible range. With neither flag: in the band between.
    FlagQueued = 0x00000400, ///< Files may be appended while it plays. Excludes looping.
    FlagPolyline = 0x00000800, ///< The head of a sound along a line.
    FlagSharedFXList = 0x00001000, ///< The effect list belongs to another instance.
    FlagChgFrequency = 0x00002000, ///< The rate can change while it plays.
    FlagDisableMicFX = 0x00004000, ///< The listener's effects do not apply.
    FlagCompete = 0x00008000, ///< With FlagImmediately: competes at the next update if there is no channel.
    FlagPaused = 0x08000000, ///< Paused by the game, beside its group or everything.
    FlagPolylineSource = 0x10000000, ///< A source of a sound along a line.
    FlagInPause = 0x20000000, ///< Left out of everything until released.
    FlagPlaying = 0x40000000 ///< Has started.
};

/// What a sound has at hand of its row in the kernel's table (SoundRow).
struct SoundRowHead
{
    std::uint32_t flags = 0; ///< SndFlags.
};

/// The length in milliseconds of what has no end, or of what is not known yet.
inline constexpr unsigned long unknownLength = 0xFFFFFFFF;

/// One sound that can play. It goes on existing and running when it has no channel, as a virtual sound (here
/// called emulated): it keeps its open file, and each update moves its place in time on as if it were being
/// heard, so that it comes back at the right sample. To the game such a sound is simply playing.
///
/// An emulated sound is mostly moved on by counting, and its file follows when somebody asks for it, when the
/// sound comes back and when it goes on with the next file. A file whose data may end before its stated
/// length, and any MPEG stream, is moved at each update.
///
/// The kernel owns every instance from the moment it is in the id table, and ends it by deleting the object;
/// the destructor notifies, stops the channel, leaves list and table and closes the files. Game code does not
/// hold instances but ids (`Sound`, `Music`). All operations are for the task thread.
class HARMONET_API SndBase : public Allocated
{
public:
    /// A sound that has not started, with the next id of the process; 0 while no kernel exists. `music` sets
    /// FlagMusic.
    explicit SndBase(bool music);
    /// Copies every field as it stands, pointers, links and channels included, but for the object's places in
    /// the kernel's list and table, which stay its own. No way to duplicate a running sound: both would then
    /// own one file.
    SndBase& operator=(const SndBase& other);

    /// As Done().
    virtual ~SndBase();
    /// The sound is running on this file from now on: called when it has got a channel, and when it starts
    /// without one. The first call tells the observers OnSoundBegin and skips the start samples.
    virtual void Play(SndFile* file);
    /// Milliseconds before the sound may start; the kernel counts them down.
    virtual void SetDelay(int ms);
    /// Works out the squared distance to the listener. Does nothing for a sound that has no place.
    virtual void CalcDistSqr(const Vector3& listener);
    /// Squared distance to the listener in world units, as last worked out; 0.0 for a sound without a place.
    virtual float GetDistSqr() const;
    /// One step of a full update, `seconds` long: moves an emulated sound on. True while the sound goes on;
    /// false when it has ended and is to be deleted. An emulated sound ends when less than 500 ms and the
    /// step are left, or when its file holds no sound at all.
    virtual bool SndUpdate(float seconds, const Vector3& listener, bool listenerMoved);
    /// Greater is more important. Takes effect at the next allocation of channels.
    virtual void SetPriority(int newPriority);
    /// Asks for a playback rate in Hz; 0 for the file's own. False, and nothing changes, when the sound has
    /// an effect, when it plays and was not started for a change of rate, or when the channel refuses.
    virtual bool SetFrequency(unsigned long hz);
    /// These two are for positional sounds; here they return false.
    virtual bool SetFXEnvReverbSourceProperties(const FXEnvReverbSourceProperties* properties);
    virtual bool GetFXEnvReverbSourceProperties(FXEnvReverbSourceProperties* properties);
    /// How loud the sound is at the listener, null for none: its output gain, attenuated by its distance, and
    /// 0 where it is cut out. Cones, fades and effects do not count. Moves and measures nothing.
    virtual float CalcLevel(const Vector3* listener) const;
    /// Sends the channel the pitch that the Doppler effect gives the sound, if that has changed; `isNew` is a
    /// channel that has not been told yet. Does nothing for a sound that has no place.
    virtual void UpdatePitch(SndChannel& channel, bool isNew);

    /// Lets the channel fall to silence over `ms` milliseconds and then ends the sound; its file goes with
    /// the fading channel. Without a channel the instance is deleted at once and the result is false: the
    /// object is then gone.
    bool FadeOut(int ms);
    /// Pauses the sound, or ends that: in force from the next full update.
    void SetPaused(bool on);
    /// Whether the sound, its group or everything is paused.
    bool IsPaused() const;
    /// Takes the sound off the driver and leaves it running. Returns whether it can go on.
    bool Emulate();
    /// Ends the instance; the destructors call it, of which the first does it, and after a call from outside
    /// they do no more of it. Tells the observers how it ended, stops the channels, leaves list and table,
    /// closes the files and frees the effects, in this order. With no kernel it does not touch channels, list
    /// and table.
    void Done();

    /// What goes to the driver: the group's gain, the main gain of the kind, and the own gain, multiplied.
    /// With no kernel the own gain alone.
    float GetOutputGain() const;
    /// Stores a linear gain from 0.0 to 1.0 and sends the output gain to the channel. Any other value, NaN
    /// included, leaves the own gain alone and sends the output gain again: callers pass -1.0 for that.
    /// During a cross-fade only the new channel hears of it.
    void SetGain(float newGain);
    /// What goes to the driver: the low-pass of everything, of the group or the music, and of the sound,
    /// multiplied.
    float GetOutputLowPass() const;
    /// The same for the gain of the high frequencies. A channel that fades out gets it too.
    void SetLowPass(float gainHF);
    /// The rate in Hz: the channel's, else the one asked for, else the file's, else 0.
    unsigned long GetFrequency() const;
    /// Milliseconds still to come, with the queue; unknownLength for a looping sound.
    unsigned long GetRemainLength() const;
    /// Milliseconds already played, out of the sound's length: its position.
    unsigned long GetCurrentLength() const;
    /// Takes a sound with a file to a position, in milliseconds, as Music::SetPosition() says. Not during an
    /// operation of the kernel on this sound. After a false it may be gone.
    bool SeekTo(unsigned long ms);

    /// Less important: lower priority, or as great a priority and farther away. The distance counts
    /// multiplied by the multiplier unless SetCompareUsingMultiplier(false) is in force.
    bool operator<(const SndBase& other) const;
    /// More important.
    bool operator>(const SndBase& other) const { return other < *this; }
    static void SetCompareUsingMultiplier(bool use);
    static bool useMultiplier;

    /// Effects. A setter returns false while the sound plays, since effects are fixed when it starts; else it
    /// stores the record and gives up any change of rate, which no sound with effects can have. A getter asks
    /// the channel for the live values and answers with the stored record when there are none; false when
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

    /// Stores the list as given; the block becomes this sound's unless FlagSharedFXList is set. A block of
    /// its own that the sound held before is freed.
    void SetThisFXList(const SndFXList& list);
    /// Stores a copy of the list's block, or nothing for an empty list.
    void SetCopyFXList(const SndFXList& list);
    /// The list itself, without a copy of the block.
    SndFXList GetThisFXList() const { return fxList; }

    /// The fields. Each of these reads or writes one and does nothing else.
    int GetSoundID() const { return soundID; }
    /// The owning group; null for music or when there is none.
    Sound* GetParentSound() const { return IsMusic() ? nullptr : static_cast<Sound*>(parent); }
    void SetParentSound(Sound* newParent) { parent = newParent; }
    /// The owning `Music`; null for any other sound.
    Music* GetParentMusic() const { return IsMusic() ? static_cast<Music*>(parent) : nullptr; }
    void SetParentMusic(Music* newParent) { parent = newParent; }
    std::uint32_t GetSndFlags() const { return rowHead->flags; }
    bool HasAnyFlag(std::uint32_t mask) const { return (GetSndFlags() & mask) != 0; }
    const PString& GetFileName() const { return fileName; }
    void SetFileName(const PString& name);
    const PString& GetSubstName() const { return substName; }
    void SetSubstName(const PString& name);
    /// The file, brought to the sound's place in time first.
    SndFile* GetSndFile() const;
    void SetSndFile(SndFile* file);
    void SetStartSample(int samples) { startSample = samples; }
    /// Where it begins, in milliseconds, besides the start samples.
    void SetStartOffset(unsigned long ms) { startOffsetMs = static_cast<std::uint32_t>(ms); }
    /// The loop region of its file, in sample frames: see SndFile::SetLoopRegion(). Before it starts.
    void SetLoopRegion(int start, int end);
    /// Milliseconds in 32 bits.
    void SetStateTime(unsigned long ms);
    unsigned long GetStateTime() const;
    /// Milliseconds in 32 bits.
    void SetSoundLength(unsigned long ms);
    unsigned long GetSoundLength() const { return soundLength; }
    int GetFadeDuration() const { return fadeDuration; }
    /// Sets the length of the fade-in, and FlagFadeIn.
    void SetFadeIn(int ms);
    float GetGain() const { return gain; }
    float GetLowPass() const { return lowPass; }
    int GetPriority() const;
    float GetMultiplier() const;
    void SetMultiplier(float factor);
    int GetDelay() const { return delay; }
    unsigned long GetNewFrequency() const { return newFrequency; }
    void SetNewFrequency(unsigned long hz);
    /// Multiplies the rate of the file by that, as soon as the file is there, unless SetNewFrequency() gives
    /// a rate before.
    void SetFrequencyFactor(float factor) { frequencyFactor = factor; }
    SndChannel* GetSndChannel() const { return sndChannel; }
    void SetSndChannel(SndChannel* channel) { sndChannel = channel; }
    /// Whether it plays through a channel, or will again when it is not paused any more.
    bool HoldsChannel() const;
    SndChannel* GetFadeOutChannel() const { return fadeOutChannel; }
    void SetFadeOutChannel(SndChannel* channel) { fadeOutChannel = channel; }

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
    /// The masked bit, so that true is not 1; likewise IsPlaying().
    int GetInPause() const { return static_cast<int>(GetSndFlags() & FlagInPause); }
    void SetInPause(bool on) { SetFlags(FlagInPause, on); }
    int IsPlaying() const { return static_cast<int>(GetSndFlags() & FlagPlaying); }
    void SetIsPlaying(bool on) { SetFlags(FlagPlaying, on); }
    /// Whether the driver is making it heard, be it fading out.
    bool IsAudible() const { return sndChannel || fadeOutChannel; }
    void AddFlags(std::uint32_t mask) { rowHead->flags |= mask; }
    void ClearFlags(std::uint32_t mask) { rowHead->flags &= ~mask; }
    /// Overwrites the whole word.
    void ResetFlags(std::uint32_t flags) { rowHead->flags = flags; }

    /// Why it is heard or not, as last decided, and for how many milliseconds of the kernel's time that has
    /// been so.
    SoundReason GetReason() const;
    unsigned long GetReasonAge() const;
    /// Fills in all that tools may want to know. Moves no file.
    void FillState(SoundState& state) const;
    /// The name of the resource that it was made from, for tools; empty for none.
    void SetDefinitionName(const PString& name) { definitionName = name; }
    /// The definition by whose limits it starts, null for none. The kernel's.
    void SetLimitedBy(DefinitionState* state) { limitedBy = state; }
    DefinitionState* GetLimitedBy() const { return limitedBy; }

    /// How a channel for this sound is to behave: SndChannelFlags.
    unsigned int GetChannelFlags() const;
    /// Whether one of this sound's own notifications is running, or its end. The instance must then not be
    /// deleted, and the operations of the game that would do so pass it over. The same holds for the head of
    /// a line while one of its sources is told of, since the sources go with it.
    bool IsBeingTold() const;
    /// Marks the sound as being told about for as long as the object lives; may be nested.
    class Telling
    {
    public:
        /// Marks it.
        explicit Telling(SndBase& newSound)
            : sound(newSound)
            , before(newSound.beingTold)
        {
            sound.beingTold = true;
        }
        ~Telling() { sound.beingTold = before; }
        Telling(const Telling&) = delete;
        Telling& operator=(const Telling&) = delete;

    private:
        SndBase& sound;
        bool before;
    };
    /// While one of these exists, what there is to tell of music is kept; the last one to go has it told to
    /// the observers (MusicObserver).
    class MusicHold
    {
    public:
        MusicHold();
        ~MusicHold();
        MusicHold(const MusicHold&) = delete;
        MusicHold& operator=(const MusicHold&) = delete;
    };
    /// Looks which observed pieces of music have gone round their loop since the last call.
    static void NoteMusicLoops();

protected:
    /// A new instance of the same sound that is not yet running: a fresh id, no parent, file, channel, list
    /// or effects, and the settings of `other`.
    SndBase(const SndBase& other);

    /// What an update reads and writes of this sound; the kernel keeps it together with those of all others.
    SoundRow& Row() const;

    /// Moves the file forward by `samples` sample frames, round a loop or along the queue.
    void SkipSamples(int samples);
    /// Turns a list that belongs to another instance into one of this sound's own, which may be changed.
    void OwnFXList();

    /// Sets or clears the flags in the mask.
    void SetFlags(std::uint32_t mask, bool on) { on ? AddFlags(mask) : ClearFlags(mask); }
    /// The live record of the channel, or the stored one.
    template<class Record>
    bool GetEffect(SndFX effect, Record* record, bool (SndChannel::*getter)(Record*))
    {
        if (sndChannel && (sndChannel->*getter)(record)) {
            return true;
        }
        const SndFXDesc* desc = fxList.GetFXDesc(effect);
        if (desc) {
            *record = *static_cast<const Record*>(desc->GetRecord());
        }
        return desc != nullptr;
    }

private:
    friend class SndKernel;

    /// Of a positional sound: asks its node where it is.
    static void UpdatePlace(SoundRow& row);
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
    void CountLoop(std::uint32_t samples);
    bool AdvanceEmulated(std::uint32_t samples);
    bool AdvanceLooping(int samples);
    bool AdvanceInRegion(std::uint32_t samples);
    bool AdvanceAlongQueue(int samples);
    std::uint32_t CalcFileRemain() const;
    std::uint32_t CalcQueueLength() const;
    std::uint32_t CalcRemainAtEnd() const;

    /// FillState() of this object alone, without the sources of a line.
    void FillOwnState(SoundState& state) const;

    static int NextSoundID();
    static constexpr std::uint32_t noTablePlace = 0xFFFFFFFF;

    const std::uint32_t rowNumber; ///< Of Row().
    int soundID;
    SoundRowHead* const rowHead; ///< Row() itself.
    SndFile* sndFile = nullptr; ///< Behind the sound's place in time while that is counted.
    SndChannel* sndChannel = nullptr;
    SndChannel* fadeOutChannel = nullptr;
    void* parent = nullptr;
    PString fileName;
    PString substName;
    PString definitionName;
    DefinitionState* limitedBy = nullptr;
    std::uint32_t newFrequency = 0;
    float frequencyFactor = 1.0F; ///< For the rate of a file that is still to come.
    std::uint32_t soundLength = static_cast<std::uint32_t>(unknownLength);
    int delay = 0;
    int startSample = 0;
    std::uint32_t startOffsetMs = 0;
    int loopStart = 0; ///< As asked for, in sample frames,
    int loopEnd = 0; ///< 0: with the file.
    int fadeDuration = 0;
    float gain = 1.0F;
    float lowPass = 1.0F;
    std::int64_t startGameTime = 0; ///< When it is to begin, on the kernel's StartClock,
    std::int64_t startMachineTime = 0; ///< and by the clock of the machine.
    std::uint32_t startSerial = 0; ///< Which start of a sound this was; 0 before the first.
    std::uint32_t tablePlace = noTablePlace; ///< Where it stands in the kernel's table.
    int countedSamples = 0; ///< While Row() counts: where in the file that ends.
    std::uint32_t reasonSince = 0; ///< On the kernel's clock, when the present reason was given.
    std::uint32_t startedAt = 0; ///< On the kernel's clock.
    /// What the channel that fades out needs to come back after a pause.
    struct FadeOutState
    {
        SndFile* file = nullptr; ///< Present in a pause only.
        unsigned int flags = 0;
        float gain = 1.0F; ///< As sent.
        int ms = 0;
        std::uint32_t since = 0; ///< On the kernel's clock, or in a pause the milliseconds that have passed.
    };
    FadeOutState fadingOut;
    std::uint32_t fadeInPassed = 0; ///< Milliseconds of the fade-in that were heard before a pause.
    std::uint32_t pausedMoves = 0; ///< How often the listener had moved when the pause began,
    std::uint32_t pausedStateMs = 0; ///< Its state time then,
    std::uint32_t pausedSince = 0; ///< and when that was on the kernel's clock.

protected:
    /// The effects. The block is this sound's own unless FlagSharedFXList is set.
    SndFXList fxList;

private:
    std::uint16_t traced = 0; ///< The state that the trace was last given; 0 for none.
    bool beingTold = false;
    bool ended = false; ///< Done() has begun.
    bool hasRunOut = false; ///< As a virtual sound.

    static int lastSoundID;
};

} // namespace Quon
