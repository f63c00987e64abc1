#pragma once

#include "harmonet/Export.h"
#include "harmonet/engine/Alloc.h"
#include "harmonet/kernel/Decide.h"
#include "harmonet/kernel/DefinitionState.h"
#include "harmonet/kernel/Doppler.h"
#include "harmonet/kernel/NameIndex.h"
#include "harmonet/kernel/SndList.h"
#include "harmonet/kernel/SoundTable.h"
#include "harmonet/kernel/StartClock.h"
#include "harmonet/output/SoundCaps.h"
#include "harmonet/output/SoundFormat.h"

#include <array>
#include <optional>
#include <span>

namespace Quon
{

class DynamicLibrary;
class Microphone;
class OS;
class Options;
class PString;
class SndChannel;
class SndDriver;
class Task;
class SndFile;
class SndFileCache;
class SndNodeCache;
class Sound;
class SoundTrace;
struct SndFileChange;
struct SoundState;
enum class SoundNotice : std::uint8_t;

/// The state time of a sound that waits: the time that protects a sound which has just changed between having
/// a channel and being emulated does not hold it back.
inline constexpr unsigned long waitingStateTimeMs = 1000;

/// What the kernel reads from the engine's options when it starts. An option takes its default if it is not
/// set, not a number of 32 bits or out of range: below 0, for the rate below 1.
struct SoundOptions
{
    SoundOptions();

    int cacheSize = 1000000; ///< Bytes of sound data that the data cache may hold.
    SoundFormat format; ///< Asked of the driver; only the rate can be configured.
    int maxSounds = 20; ///< Limit of audible sounds at the start.
    int seed = 0; ///< Of the random numbers by which definitions vary.
    int minEmulationLength = 500; ///< Milliseconds: a sound with less left is not emulated. No option.
    int streamLength = 500; ///< Milliseconds, for the driver.
};

/// The heart of the system: owns the output driver, the caches of sound data and every sound, and decides at
/// each full update which of the running sounds are heard.
///
/// There is at most one that runs, `theKernel`; the task owns it. Private to the library. All of it is for
/// the task thread, and there is no lock; a driver delivers its events on that thread, from inside its update
/// calls.
///
/// *What observers do meanwhile.* Ending or starting a sound calls observers, and these may start, stop and
/// delete other sounds. So nothing here walks a list or the table by itself while it ends or starts sounds: a
/// SoundWalk visits those that stood there when it began and still exist. A sound that is started during an
/// update is dealt with at the next one.
class HARMONET_INTERNAL_API SndKernel : public Allocated
{
public:
    SndKernel();
    SndKernel(const SndKernel&) = delete;
    SndKernel& operator=(const SndKernel&) = delete;
    /// Done(), and whatever is left.
    virtual ~SndKernel();

    // Start and end.

    /// Reads the options and opens the first driver that will; on success this is `theKernel`. The result is
    /// 0, or the code of the last attempt: 1, no name given or the library is no driver; 2, it could not be
    /// loaded; 3, it made no driver or its driver did not open.
    int Init(OS* os, bool driverFlag);
    /// Ends all sounds and releases everything. New sounds are refused from here on.
    void Done();
    bool GetCaps(SoundCaps& driverCaps);
    SndDriver* GetDriver() const { return driver; }
    SndNodeCache* GetDataCache() const { return dataCache; }
    const SoundOptions& GetOptions() const { return options; }
    /// Whether the driver takes the source side of an environmental reverb.
    bool CanSetEnvReverbSource() const { return (caps.GetFlags() & capEnvReverbSource) != 0; }

    // The frame update.

    /// Gathers time; once 40 ms have come together, runs one full update. While the kernel is busy it does
    /// nothing: an observer that calls it has no time to add.
    void Update(float seconds);

    /// The task whose updates these are; what it has gathered has passed, too. Null for none.
    void SetTask(const Task* newTask) { task = newTask; }

    /// Whether an update runs or an observer is being told of a sound. The kernel must not go then.
    bool IsBusy() const { return updating || noticeDepth > 0; }
    /// These two stand around what tells observers; may be nested.
    void BeginNotice() { ++noticeDepth; }
    void EndNotice() { --noticeDepth; }

    // Starting and ending sounds.

    /// Starts a sound or queues it. On false the sound may have been deleted or live on, not started.
    bool PlaySound(SndBase* sound);
    /// Whether a sound may start by the limits of its definition; it counts from here on. Instances that give
    /// way end here, with their notifications. False also when an observer has ended the sound meanwhile.
    bool AdmitStart(SndBase& sound);
    /// The start of an admitted sound has failed; the sound may be gone.
    static void CancelStart(DefinitionState& definition, int soundID);
    DefinitionStates& GetDefinitionStates() { return definitions; }
    /// Gives a sound a channel and puts it on the playing list. On false nothing has changed.
    bool StartChannel(SndBase* sound);
    /// Starts a sound without a channel and puts it on the emulated list. On false it is on no list.
    bool EmulateSound(SndBase* sound);
    /// StartChannel() for a piece of music, which passes neither the waiting list nor PlaySound().
    bool StartMusic(SndBase& instance);
    /// Prepares an instance without a `sndChannel` for another piece: it leaves its list, unless a fade-out
    /// keeps it there, and closes what it has open.
    void GiveUpFile(SndBase& instance);
    /// Takes a running sound to another sample frame of its file; one that is heard goes on there on a
    /// channel of its own. False if it could not go on and has ended.
    bool MoveTo(SndBase& sound, int sample);
    /// Milliseconds of that file, from a like sound if there is one; 0 if it cannot be opened.
    unsigned long GetLength(const PString& substName, const PString& fileName);
    /// Ends every sound. What observers start in answer ends too, and in the end they can start nothing.
    void StopAll();
    void StopAll2D();
    void StopAll3D();
    /// Takes a driver's event. Always 0. An event for a channel that no sound holds is ignored.
    int OnDriverEvent(int event, void* data);

    // The sound table.

    /// False while the kernel is going down, and while StopAll() is at its end: no sound may be made.
    bool AcceptsSounds() const { return !refusesSounds; }
    /// Enters a new sound, which the kernel owns from here on.
    void AddSound(SndBase* sound);
    SndBase* FindSound(int id) const { return soundTable.Find(id); }
    void UnregisterSound(SndBase* sound);
    /// Takes the sound off its list and out of the table.
    void RemoveSound(SndBase* sound);
    /// Deletes all sounds of that group.
    void DeleteSounds(Sound* parent);
    /// Kind 0: every sound; 2: those neither positional nor music; 3: the positional ones.
    void DeleteAllSounds(int kind);
    /// Sends the sounds of a kind their output gain anew. Kind 0, Flag3D or FlagMusic.
    void RefreshGains(int kind);
    void RefreshGains(Sound* parent);

    // Pause.

    /// Pauses every sound, those to come included, or ends that; beside what is paused by itself or with its
    /// group. All pauses begin and end in a full update, after its time has been counted.
    void SetAllPaused(bool on);
    bool IsAllPaused() const { return allPaused; }
    /// A sound or a group was paused, or is not any more.
    void NotePauses() { pausesChanged = true; }

    // Listener and gains.

    Microphone* GetMicrophone() const { return activeMicrophone; }
    void SetMicrophone(Microphone* microphone);
    void ClearMicrophone(Microphone* microphone);
    float GetMainGain2D() const { return mainGain2D; }
    float GetMainGain3D() const { return mainGain3D; }
    float GetMainGainMusic() const { return mainGainMusic; }
    void Set2DMainGain(float gain);
    void Set3DMainGain(float gain);
    void SetMusicMainGain(float gain);
    float GetLowPass() const { return lowPass; }
    const Doppler& GetDoppler() const { return doppler; }
    void SetDopplerFactor(float factor);
    void SetSpeedOfSound(float speed) { doppler.SetSpeedOfSound(speed); }
    /// The low-pass of everything.
    void SetLowPass(float gainHF);
    /// Sends the sounds of a group, or all for null, their output low-pass anew.
    void RefreshLowPass(const Sound* parent);
    int GetMaxAudible() const { return maxAudible; }
    void SetMaxAudible(int count) { maxAudible = count; }
    unsigned long GetResourceFX() const { return resourceFX; }
    void SetResourceFX(unsigned long mask) { resourceFX = mask; }

    // The lists, and what sounds tell of themselves.

    SndList& GetList(ListID id) { return lists[static_cast<std::size_t>(id)]; }
    bool IsListed(const SndBase& sound) const { return sound.Row().list != ListID::None; }
    /// The sounds that hold a channel.
    int GetAudibleCount() const { return lists[static_cast<std::size_t>(ListID::Playing)].GetCount(); }
    /// A sound's importance is about to change, or how all are compared.
    void ForgetOrder(const SoundRow& row)
    {
        if (SndList& list = GetList(row.list); list.IsInOrder()) {
            list.ForgetOrder();
        }
    }
    void ForgetOrder();
    /// These two stand around a change of a sound's names.
    void GiveUpName(SndBase& sound);
    void UseName(SndBase& sound);
    /// A sound may have another length than before, as like sounds see it.
    void NoteLength(const SndBase& sound);
    /// Which start of a sound this was; 0 before the first.
    std::uint32_t GetStartSerial(const SndBase& sound) const { return sound.startSerial; }
    /// Milliseconds of updates. Wraps around.
    std::uint32_t GetClockMs() const { return clockMs; }
    UpdateStep MakeStep(float seconds) const;
    /// For walks over lists: see SoundWalk.
    EngineVector<SndList::Entry>& GetWalkMemory() { return walkMemory; }

    // What tools see.

    /// Fills in as many as there is room for; returns how many sounds there are.
    std::size_t Inspect(std::span<SoundState> states) const;
    /// From here on all is reported to `newTrace`, which may be null, in place of the one before.
    static void Attach(SoundTrace* newTrace);
    static void Detach(const SoundTrace& oldTrace);
    void TraceNotice(SoundNotice notice, int soundID, const PString& fileName);

private:
    /// The file of a sound that has none open: music streams, all else comes through the data cache.
    SndFile* OpenFileOf(SndBase& sound);
    SndFile* OpenWholeFileOf(SndBase& sound);

    void ReadOptions(const Options& hostOptions);
    int OpenDriver(OS* os, bool driverFlag);
    int TryDriver(OS* os, const char* name, bool driverFlag);
    void CloseDriver();

    void RunFullUpdate(float seconds);
    void RunTraced(float seconds);
    void TraceChange(SndBase& sound);
    /// TraceChange() of a sound that has been started; returns whether it has.
    bool Traced(SndBase& sound, bool isStarted)
    {
        if (isStarted) {
            TraceChange(sound);
        }
        return isStarted;
    }
    void TraceEnd(SndBase& sound);
    Vector3 UpdateListener();
    static void UpdatePlaces(UpdateStep& step);
    int CountDownDelays(const Vector3& listener);
    void UpdateEmulated(const UpdateStep& step);
    void CountEmulated(const UpdateStep& step);
    static void Count(SoundRow& row, const UpdateStep& step);
    static bool UpdateVirtual(SoundRow& row, const UpdateStep& step);
    static bool UpdateHeard(SoundRow& row, const UpdateStep& step);
    void UpdatePlaying(const UpdateStep& step);
    void LeavePlaying(SndBase& sound, SoundReason reason);
    int ApplyPauses(const UpdateStep& step);
    int MoveToPausedAndBack(const UpdateStep& step);
    void Pause(SndBase& sound);
    void StartPaused(SndBase& sound, std::uint16_t mark);
    bool HoldMusic(SndBase& instance);
    void DelayStart(SndBase& sound) const;
    int Resume(SndBase& sound, const UpdateStep& step);
    void ResumeHeard(SndBase& sound);
    void ResumeFadeOut(SndBase& sound);
    void StartReturned();
    void StartEmulated();
    void StartWaiting();
    void StartOrDelete(SndBase& sound);

    void Allocate();
    std::size_t GatherContenders(ListID id);
    void TakeOver(ListID id, std::size_t first);
    void TakeChosen();
    void GiveBackChosen();
    void EmulateLosers();
    void StartChosen();
    void EmulateWaiting();

    bool MakeRoom(SndBase& sound, DefinitionState& definition);
    SndBase* FindToGiveWay(const SndBase& newcomer, const DefinitionState& definition) const;
    float CalcLevel(const SndBase& sound) const;
    bool IsLongEnough(const SndBase& sound) const;
    void EnterPlaying(SndBase& sound);
    void PlayOnChannel(SndBase& sound, SndFile* file);
    void MarkStarted(SndBase& sound, bool isNow);
    std::int64_t GetGatheredMicroseconds() const;
    void ForgetNewcomers();
    bool StartImmediately(SndBase& sound);
    /// StartChannel() for a sound that competes for no channel.
    bool StartNow(SndBase& sound);
    static void BeginFadeIn(const SndBase& sound, SndChannel& channel);
    /// The low-pass and the pitch of a new channel.
    static void SetUpChannel(SndBase& sound, SndChannel& channel);
    void UpdatePitches();
    SoundReason WhyUnheard(const SoundRow& row) const;
    SoundReason WhyNotBack(const SoundRow& row) const;
    void SetReason(SoundRow& row, SoundReason reason)
    {
        if (row.reason != reason) {
            ChangeReason(row, reason);
        }
    }
    void ChangeReason(SoundRow& row, SoundReason reason);
    bool EmulateOrDelete(SndBase& sound);
    void DeleteUnheard(SndBase& sound);
    bool FindLength(SndBase& sound);
    std::optional<std::uint32_t> FindLikeLength(std::uint32_t number, const SndBase* except);
    static std::uint32_t GetOwnLength(const SndBase& sound);
    void OnChannelEnded(SndChannel* channel);
    void OnFileChanged(const SndFileChange& change);
    SndBase* FindByChannel(const SndChannel* channel);
    template<class Matches>
    void DeleteListed(Matches matches);
    template<class Matches>
    void DeleteFromTable(Matches matches);
    template<class Matches>
    void RefreshMatching(Matches matches);
    void Insert(SndBase& sound, ListID id);
    void Unlist(SndBase& sound);
    /// Whether every list holds what the table holds, each sound once. For assertions.
    bool IsConsistent();

    SoundOptions options;
    DynamicLibrary* soundLibrary = nullptr;
    SndDriver* driver = nullptr;
    Microphone* activeMicrophone = nullptr;
    unsigned long elapsed = 0;
    bool listenerChanged = true;
    SndNodeCache* dataCache = nullptr;
    SndFileCache* fileCache = nullptr;
    unsigned long resourceFX = 0x1FF;
    int maxAudible = 0;
    std::array<SndList, numLists> lists; ///< By ListID; the first is none.
    SoundTable soundTable;
    float mainGain2D = 1.0F;
    float mainGain3D = 1.0F;
    float mainGainMusic = 1.0F;
    float lowPass = 1.0F;
    Doppler doppler;
    SoundCaps caps;
    NameIndex names;
    EngineVector<Contender> contenders;
    Decision decision;
    EngineVector<SndList::Entry> walkMemory;

    bool refusesSounds = false; ///< See AcceptsSounds().
    bool updating = false; ///< A full update is running.
    bool takesNewcomers = false; ///< The running update has taken its bearings: see MarkStarted().
    bool allPaused = false;
    bool pausesChanged = false; ///< The next full update looks who is paused.
    bool hasReturned = false; ///< Sounds without a channel are on the playing list, back from a pause.
    std::uint32_t listenerMoves = 0; ///< Counts updates.
    int noticeDepth = 0;
    std::uint32_t startCounter = 0; ///< Counts starts.
    std::uint32_t clockMs = 0;
    StartClock startClock;
    DefinitionStates definitions;
    const Task* task = nullptr;
    static SoundTrace* trace;
    EngineVector<std::uint32_t> newcomers; ///< The rows of the sounds started during the running update.
};

/// The running kernel, or null while the sound system is stopped.
extern SndKernel* theKernel;

/// The same, for the tests.
HARMONET_INTERNAL_API SndKernel* GetRunningKernel();

/// Works out a sound's distance to the listener from its place, and whether it is in range.
inline void MeasureDistance(SoundRow& row, const Vector3& listener)
{
    if (theKernel && row.CalcDistSqr(listener) != row.distSqr) {
        theKernel->ForgetOrder(row);
    }
    row.Measure(listener);
}

} // namespace Quon
