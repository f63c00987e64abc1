#pragma once

#include "harmonet/Export.h"
#include "harmonet/definitions/SndFXList.h"
#include "harmonet/engine/Alloc.h"
#include "harmonet/engine/ChunkRing.h"
#include "harmonet/engine/IListNode.h"
#include "harmonet/engine/PString.h"

#include <cstdint>

namespace Quon
{

class Music;
class NameNumbers;
class SndBase;
class SndChannel;
class SndFile;
class SndList;
class Sound;
struct Vector3;

/// The flags of a sound instance; all other bits of the word stay 0.
enum SndFlags : std::uint32_t
{
    Flag3D = 0x00000001, ///< Positional.
    FlagFadeIn = 0x00000002, ///< Each new channel begins with a fade-in.
    FlagFadeOut = 0x00000004, ///< FadeOut() has been called.
    FlagMusic = 0x00000008, ///< Music; the parent is a `Music`, and no observer hears of it.
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
    FlagPolylineSource = 0x10000000, ///< A source of a sound along a line.
    FlagInPause = 0x20000000, ///< Left out of everything until released.
    FlagPlaying = 0x40000000 ///< Has started.
};

/// The kernel's table of sounds is made of these.
using SoundBucket = ChunkRing<SndBase*, 29>;

/// The length in milliseconds of what has no end, or of what is not known yet.
inline constexpr unsigned long unknownLength = 0xFFFFFFFF;

/// Whether start `serial` came after start `horizon`. The count of starts may wrap around.
constexpr bool IsAfter(std::uint32_t serial, std::uint32_t horizon)
{
    return static_cast<std::int32_t>(serial - horizon) > 0;
}

/// One sound that can play. It goes on existing and running when it has no channel: it then keeps its open
/// file and its place in time, and each update moves the file on as if the sound were being heard, so that it
/// comes back at the right sample. To the game such a sound is simply playing.
///
/// The kernel owns every instance from the moment it is in the id table, and ends it by deleting the object;
/// the destructor notifies, stops the channel, leaves list and table and closes the files. Game code does not
/// hold instances but ids (`Sound`, `Music`). All operations are for the task thread.
class HARMONET_API SndBase : public IListNode, public Allocated
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

    /// Lets the channel fall to silence over `ms` milliseconds and then ends the sound; its file goes with
    /// the fading channel. Without a channel the instance is deleted at once and the result is false: the
    /// object is then gone.
    bool FadeOut(int ms);
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
    /// The rate in Hz: the channel's, else the one asked for, else the file's, else 0.
    unsigned long GetFrequency() const;
    /// Milliseconds still to come, with the queue; unknownLength for a looping sound.
    unsigned long GetRemainLength() const;
    /// Milliseconds already played, out of the sound's length.
    unsigned long GetCurrentLength() const;

    /// Less important: lower priority, or as great a priority and farther away. The distance counts
    /// multiplied by the multiplier unless SetCompareUsingMultiplier(false) is in force.
    bool operator<(const SndBase& other) const
    {
        if (priority != other.priority)
            return priority < other.priority;
        if (!useMultiplier)
            return distSqr > other.distSqr;
        return GetWeightedDistance() > other.GetWeightedDistance();
    }
    /// More important.
    bool operator>(const SndBase& other) const { return other < *this; }
    static void SetCompareUsingMultiplier(bool use) { useMultiplier = use; }
    static bool useMultiplier;

    // Effects. A setter returns false while the sound plays, since effects are fixed when it starts; else it
    // stores the record and gives up any change of rate, which no sound with effects can have. A getter asks
    // the channel for the live values and answers with the stored record when there are none; false when
    // there is no record either. `quality` is the quality word of an environmental reverb.
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

    // The fields. Each of these reads or writes one and does nothing else.
    int GetSoundID() const { return soundID; }
    /// The owning group; null for music or when there is none.
    Sound* GetParentSound() const { return IsMusic() ? nullptr : static_cast<Sound*>(parent); }
    void SetParentSound(Sound* newParent) { parent = newParent; }
    /// The owning `Music`; null for any other sound.
    Music* GetParentMusic() const { return IsMusic() ? static_cast<Music*>(parent) : nullptr; }
    void SetParentMusic(Music* newParent) { parent = newParent; }
    std::uint32_t GetSndFlags() const { return sndFlags; }
    bool HasAnyFlag(std::uint32_t mask) const { return (sndFlags & mask) != 0; }
    const PString& GetFileName() const { return fileName; }
    void SetFileName(const PString& name)
    {
        fileName = name;
        nameNumber = noNameNumber;
    }
    const PString& GetSubstName() const { return substName; }
    void SetSubstName(const PString& name)
    {
        substName = name;
        nameNumber = noNameNumber;
    }
    SndFile* GetSndFile() const { return sndFile; }
    void SetSndFile(SndFile* file) { sndFile = file; }
    void SetStartSample(int samples) { startSample = samples; }
    void SetStateTime(unsigned long ms) { stateTime = ms; }
    unsigned long GetStateTime() const { return stateTime; }
    void SetSoundLength(unsigned long ms) { soundLength = ms; }
    unsigned long GetSoundLength() const { return soundLength; }
    int GetFadeDuration() const { return fadeDuration; }
    /// Sets the length of the fade-in, and FlagFadeIn.
    void SetFadeIn(int ms);
    float GetGain() const { return gain; }
    int GetPriority() const { return priority; }
    float GetMultiplier() const { return multiplier; }
    void SetMultiplier(float factor) { multiplier = factor; }
    /// The squared distance with its weight. At no distance the weight has no say, however great.
    float GetWeightedDistance() const { return WeightDistance(distSqr, multiplier); }
    static float WeightDistance(float squared, float weight)
    {
        return squared == 0.0F ? 0.0F : weight * squared;
    }
    int GetDelay() const { return delay; }
    unsigned long GetNewFrequency() const { return newFrequency; }
    void SetNewFrequency(unsigned long hz) { newFrequency = hz; }
    SndChannel* GetSndChannel() const { return sndChannel; }
    void SetSndChannel(SndChannel* channel) { sndChannel = channel; }
    SndChannel* GetFadeOutChannel() const { return fadeOutChannel; }
    void SetFadeOutChannel(SndChannel* channel) { fadeOutChannel = channel; }

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
    void SetDistLTMax();
    void SetDistGTMax();
    bool IsPolyline() const { return HasAnyFlag(FlagPolyline); }
    bool IsChgFrequency() const { return HasAnyFlag(FlagChgFrequency); }
    bool IsDisableMicFX() const { return HasAnyFlag(FlagDisableMicFX); }
    /// The masked bit, so that true is not 1; likewise IsPlaying().
    int GetInPause() const { return static_cast<int>(sndFlags & FlagInPause); }
    void SetInPause(bool on) { SetFlags(FlagInPause, on); }
    int IsPlaying() const { return static_cast<int>(sndFlags & FlagPlaying); }
    void SetIsPlaying(bool on) { SetFlags(FlagPlaying, on); }
    /// Whether the driver is making it heard, be it fading out.
    bool IsAudible() const { return sndChannel || fadeOutChannel; }
    void AddFlags(std::uint32_t mask) { sndFlags |= mask; }
    void ClearFlags(std::uint32_t mask) { sndFlags &= ~mask; }
    /// Overwrites the whole word.
    void ResetFlags(std::uint32_t flags) { sndFlags = flags; }

    /// How a channel for this sound is to behave: SndChannelFlags.
    unsigned int GetChannelFlags() const;
    /// Whether one of this sound's own notifications is running, or its end. The instance must then not be
    /// deleted, and the operations of the game that would do so pass it over. The same holds for the head of
    /// a line while one of its sources is told of, since the sources go with it.
    bool IsBeingTold() const;
    /// The number of this sound's file and owner name among `names`, the kernel's; like sounds have the same.
    std::uint32_t GetNameNumber(NameNumbers& names) const;
    /// The squared distance, without a virtual call.
    float GetPlainDistSqr() const { return distSqr; }
    /// The kernel's list on which the sound stands, or null.
    const SndList* GetList() const { return list; }
    /// Which start of a sound this was, counted by the kernel; 0 before the first.
    std::uint32_t GetStartSerial() const { return startSerial; }

    /// Marks the sound as being told about for as long as the object lives; may be nested.
    class Telling
    {
    public:
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

protected:
    /// A new instance of the same sound that is not yet running: a fresh id, no parent, file, channel, list
    /// or effects, and the settings of `other`.
    SndBase(const SndBase& other);

    /// Moves the file forward by `samples` sample frames, round a loop or along the queue.
    void SkipSamples(int samples);
    /// Turns a list that belongs to another instance into one of this sound's own, which may be changed.
    void OwnFXList();

    void SetFlags(std::uint32_t mask, bool on) { on ? AddFlags(mask) : ClearFlags(mask); }
    /// The live record of the channel, or the stored one.
    template<class Record>
    bool GetEffect(SndFX effect, Record* record, bool (SndChannel::*getter)(Record*))
    {
        if (sndChannel && (sndChannel->*getter)(record))
            return true;
        const SndFXDesc* desc = fxList.GetFXDesc(effect);
        if (desc)
            *record = *static_cast<const Record*>(desc->GetRecord());
        return desc != nullptr;
    }

private:
    friend class SndKernel;
    friend class SndList;
    friend class SoundTable;

    bool AddEffect(SndFX effect, const void* record, unsigned long size, long quality);
    void NotifyEnd();
    float CalcMusicGain() const;
    void ReleaseFadeOutChannel();
    void CloseAndDelete(SndFile* file);
    void MoveOnTo(SndFile* newFile);
    void StepToNextFile();
    void SkipLooping(int samples);
    void SkipAlongQueue(int samples);
    bool AdvanceEmulated(std::uint32_t samples);
    bool AdvanceLooping(int samples);
    bool AdvanceAlongQueue(int samples);
    std::uint32_t CalcQueueLength() const;
    std::uint32_t CalcRemainAtEnd() const;

    static int NextSoundID();
    static constexpr std::uint32_t noNameNumber = 0xFFFFFFFF;

    // What each update reads of each sound stands together, in front, right behind the links of the list. All
    // else is behind it: the sounds lie all over the memory, and a line of it that is not needed costs.
    int soundID;
    std::uint32_t sndFlags = 0;
    int priority = 0;
    float multiplier = 1.0F;

protected:
    float distSqr = 0.0F;

private:
    mutable std::uint32_t nameNumber = noNameNumber;
    SndFile* sndFile = nullptr;
    SndChannel* sndChannel = nullptr;
    SndChannel* fadeOutChannel = nullptr;
    SndList* list = nullptr; ///< The kernel's list that holds this sound; SndList keeps it.
    unsigned long stateTime = 1000;
    unsigned long newFrequency = 0;
    std::uint32_t knownPlace = 0; ///< Where the list knows this sound to stand; SndList keeps it.
    int delay = 0;
    std::uint32_t startSerial = 0; ///< When it last went to the kernel to be played; the kernel keeps it.

    void* parent = nullptr;
    PString fileName;
    PString substName;
    unsigned long soundLength = unknownLength;
    int startSample = 0;
    int fadeDuration = 0;
    float gain = 1.0F;
    bool beingTold = false;
    bool ended = false; ///< Done() has begun.
    SoundBucket::Chunk* tableChunk = nullptr; ///< Where it stands in the kernel's table; SoundTable keeps it.

protected:
    SndFXList fxList;

private:
    static int lastSoundID;
};

} // namespace Quon
