#pragma once

#include "harmonet/Export.h"
#include "harmonet/definitions/DefinitionState.h"
#include "harmonet/engine/Alloc.h"
#include "harmonet/instances/SndBaseRow.h"
#include "harmonet/kernel/SoundTable.h"
#include "harmonet/kernel/SoundWalk.h"
#include "harmonet/kernel/StartClock.h"
#include "harmonet/output/SoundCaps.h"
#include "harmonet/output/SoundFormat.h"
#include "harmonet/voices/Decide.h"
#include "harmonet/voices/Doppler.h"
#include "harmonet/voices/NameIndex.h"

#include <array>
#include <memory>
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

/// The engine options that the kernel reads at its start. An option takes its default if it is not set, not a
/// 32-bit number or out of range (below 0; below 1 for the rate).
struct SoundOptions
{
    SoundOptions();

    int cacheSize = 1000000; ///< Bytes of sound data that the data cache may hold.
    SoundFormat format; ///< Requested from the driver; only the rate is configurable.
    int maxSounds = 20; ///< Initial limit of audible sounds.
    int seed = 0; ///< Seed of the random variation of definitions.
    int minEmulationLength = 500; ///< Milliseconds: a sound with less left is not emulated. Not an option.
    int streamLength = 500; ///< Milliseconds, for the driver.
};

/// The core of the system: owns the output driver, the caches of sound data and every sound, and decides in
/// each full update which of the running sounds are audible.
///
/// At most one kernel runs, `theKernel`; the task owns it. Private to the library. Task thread only, without
/// locks; a driver reports its events on that thread, from within its update calls.
///
/// *Observers.* Ending or starting a sound calls observers, which may start, stop and delete other sounds.
/// Code that ends or starts sounds must therefore not iterate over a list or the table directly: a SoundWalk
/// visits those that were there at its start and still exist. A sound started during an update is handled in
/// the next one.
class HARMONET_INTERNAL_API SndKernel : public Allocated
{
public:
    SndKernel();
    SndKernel(const SndKernel&) = delete;
    SndKernel& operator=(const SndKernel&) = delete;
    /// Calls Done() and releases what is left.
    virtual ~SndKernel();

    // Start and end.

    /// Reads the options and opens the first available driver; on success this becomes `theKernel`. Returns
    /// 0, or the code of the last attempt: 1, no name was given or the library is not a driver; 2, the
    /// library could not be loaded; 3, it created no driver or its driver did not open.
    int Init(OS* os, bool driverFlag);
    /// Ends all sounds and releases everything. New sounds are refused from then on.
    void Done();
    bool GetCaps(SoundCaps& driverCaps);
    SndDriver* GetDriver() const { return driver.get(); }
    SndNodeCache* GetDataCache() const { return dataCache.get(); }
    const SoundOptions& GetOptions() const { return options; }
    /// Whether the driver supports the source side of an environmental reverb.
    bool CanSetEnvReverbSource() const { return (caps.GetFlags() & capEnvReverbSource) != 0; }

    // The frame update.

    /// Accumulates time and runs one full update when it reaches 40 ms. Does nothing while the kernel is
    /// busy, so a call from an observer adds no time.
    void Update(float seconds);

    /// Sets the task that updates the kernel; its deferred time counts as elapsed too. Null for none.
    void SetTask(const Task* newTask) { task = newTask; }

    /// Whether an update or a notification is running. The kernel must not be deleted then.
    bool IsBusy() const { return updating || noticeDepth > 0; }
    /// Bracket the notification of observers; may be nested.
    void BeginNotice() { ++noticeDepth; }
    void EndNotice() { --noticeDepth; }

    // Starting and ending sounds.

    /// Starts a sound or adds it to the waiting list. If it returns false, the sound may have been deleted,
    /// or exists but has not started.
    bool PlaySound(SndBase* sound);
    DefinitionStates& GetDefinitionStates() { return definitions; }
    /// Gives a sound a channel and adds it to the playing list. Returns false and changes nothing on failure.
    bool StartChannel(SndBase* sound);
    /// Starts a sound without a channel and adds it to the emulated list. If it returns false, the sound is
    /// on no list.
    bool EmulateSound(SndBase* sound);
    /// StartChannel() for a piece of music, which bypasses the waiting list and PlaySound().
    bool StartMusic(SndBase& instance);
    /// Prepares an instance without a `sndChannel` for another piece: removes it from its list, unless a
    /// fade-out keeps it there, and closes its files.
    void GiveUpFile(SndBase& instance);
    /// Moves a running sound to another sample frame of its file; an audible sound continues there on a new
    /// channel. Returns false if it could not continue and has ended.
    bool MoveTo(SndBase& sound, int sample);
    /// Returns the length of that file in milliseconds, from a like sound if there is one; 0 if it cannot be
    /// opened.
    unsigned long GetLength(const PString& substName, const PString& fileName);
    /// Ends every sound, including those that observers start in response; towards its end they cannot start
    /// any.
    void StopAll();
    void StopAll2D();
    void StopAll3D();
    /// Handles a driver's event; returns 0. An event for a channel without a sound is ignored.
    int OnDriverEvent(int event, void* data);

    // The sound table.

    /// False during the shutdown of the kernel and at the end of StopAll(): no sound may be created then.
    bool AcceptsSounds() const { return !refusesSounds; }
    /// Adds a new sound, which the kernel owns from then on.
    void AddSound(SndBase* sound);
    SndBase* FindSound(int id) const { return soundTable.Find(id); }
    void UnregisterSound(SndBase* sound);
    /// Removes the sound from its list and from the table.
    void RemoveSound(SndBase* sound);
    /// Deletes all sounds of that group.
    void DeleteSounds(Sound* parent);
    static constexpr int kindAll = 0;
    static constexpr int kind2D = 2; ///< Without music.
    static constexpr int kind3D = 3;
    /// Deletes all sounds of a kind.
    void DeleteAllSounds(int kind);
    /// Sends the output gain of all sounds of a kind again. The kind is 0, Flag3D or FlagMusic.
    void RefreshGains(int kind);
    void RefreshGains(Sound* parent);

    // Pause.

    /// Pauses or resumes every sound, including later ones; independent of the pauses of single sounds and
    /// groups. All pauses begin and end in a full update, after its time has been counted.
    void SetAllPaused(bool on);
    bool IsAllPaused() const { return allPaused; }
    /// Records that a sound or a group was paused or resumed.
    void NotePauses() { pausesChanged = true; }

    // Listener and gains.

    Microphone* GetMicrophone() const { return activeMicrophone; }
    /// World position of the active microphone, as its node is now; nullopt without one.
    std::optional<Vector3> GetListenerPlace() const;
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
    /// Sends the output low-pass of a group's sounds, or of all sounds if null, again.
    void RefreshLowPass(const Sound* parent);
    int GetMaxAudible() const { return maxAudible; }
    void SetMaxAudible(int count) { maxAudible = count; }
    unsigned long GetResourceFX() const { return resourceFX; }
    void SetResourceFX(unsigned long mask) { resourceFX = mask; }

    // The lists, and changes that sounds report.

    SndList& GetList(ListID id) { return lists[static_cast<std::size_t>(id)]; }
    bool IsListed(const SndBase& sound) const { return sound.Row().List() != ListID::None; }
    bool IsVirtual(const SndBase& sound) const { return sound.Row().List() == ListID::Emulated; }
    /// The sounds that hold a channel.
    int GetAudibleCount() const { return lists[static_cast<std::size_t>(ListID::Playing)].GetCount(); }
    /// Call it before a sound's importance, or the comparison of all sounds, changes.
    void ForgetOrder(SoundRow row)
    {
        if (SndList& list = GetList(row.List()); list.IsInOrder()) {
            list.ForgetOrder();
        }
    }
    void ForgetOrder();
    /// Bracket a change of a sound's names.
    void GiveUpName(SndBase& sound);
    void UseName(SndBase& sound);
    /// Records that the length of a sound, as used for like sounds, may have changed.
    void NoteLength(const SndBase& sound);
    /// Serial number of the sound's start; 0 before the first.
    std::uint32_t GetStartSerial(const SndBase& sound) const { return sound.startSerial; }
    /// Milliseconds of full updates. Wraps around.
    std::uint32_t GetClockMs() const { return clockMs; }
    /// Microseconds of game time, `delayMs` from now: includes the time since the last full update.
    std::int64_t GetGameTime(int delayMs) const;
    UpdateStep MakeStep(float seconds) const;

    // For tools.

    /// Fills in as many states as fit; returns the number of sounds.
    std::size_t Inspect(std::span<SoundState> states) const;
    /// Replaces the trace by `newTrace`, which may be null.
    static void Attach(SoundTrace* newTrace);
    static void Detach(const SoundTrace& oldTrace);
    void TraceNotice(SoundNotice notice, int soundID, const PString& fileName);

private:
    /// Opens the file of a sound without an open one, and stores its length: music is streamed, other sounds
    /// use the data cache.
    SndFile* OpenFileOf(SndBase& sound);
    SndFile* OpenStream(const PString& substName, const PString& fileName);

    void ReadOptions(const Options& hostOptions);
    int OpenDriver(OS* os, bool driverFlag);
    int TryDriver(OS* os, const char* name, bool driverFlag);
    void CloseDriver();

    void RunFullUpdate(float seconds);
    void RunTraced(float seconds);
    void TraceChange(SndBase& sound);
    void TraceEnd(SndBase& sound);
    Vector3 UpdateListener();
    /// What an update finds out about the virtual sounds before it advances them.
    struct VirtualSounds
    {
        bool onlyCount = true; ///< Counting is enough to advance all of them.
        bool anyMoved = false;
    };
    static VirtualSounds UpdatePlaces(const UpdateStep& step);
    int CountDownDelays(const Vector3& listener);
    void UpdateEmulated(const UpdateStep& step, const VirtualSounds& all);
    static void CountEmulated(const UpdateStep& step);
    static bool CountOne(SoundRow row, const UpdateStep& step);
    void UpdateStaying(const UpdateStep& step, bool anyMoved);
    void UpdatePlaying(const UpdateStep& step);
    void LeavePlaying(SndBase& sound, SoundReason reason);
    int ApplyPauses(const UpdateStep& step);
    int MoveToPausedAndBack(const UpdateStep& step);
    void Pause(SndBase& sound);
    void StartPaused(SndBase& sound, std::uint32_t mark);
    bool StartPausedMusic(SndBase& instance);
    void DelayStart(SndBase& sound) const;
    int Resume(SndBase& sound, const UpdateStep& step);
    void ResumeHeard(SndBase& sound);
    void ResumeFadeOut(SndBase& sound);
    void StartReturned();
    void StartEmulated();
    void StartWaiting();
    void StartOrDelete(SndBase& sound);

    void Allocate();
    void NoteReasons();
    void GiveBackChosen();
    void EmulateLosers();
    void StartChosen();
    void EmulateWaiting();

    bool IsLongEnough(const SndBase& sound) const;
    void PlayOnChannel(SndBase& sound, SndFile* file);
    void MarkStarted(SndBase& sound, bool isNow);
    void ForgetNewcomers();
    bool StartImmediately(SndBase& sound);
    /// StartChannel() for a sound that does not compete for a channel.
    bool StartNow(SndBase& sound);
    static void BeginFadeIn(const SndBase& sound, SndChannel& channel);
    /// Sends the low-pass and the pitch to a new channel.
    static void SetUpChannel(SndBase& sound, SndChannel& channel);
    void UpdatePitches();
    SoundReason WhyInaudible(SoundRow row) const;
    void SetReason(SoundRow row, SoundReason reason)
    {
        if (row.Reason() != reason) {
            ChangeReason(row, reason);
        }
    }
    void ChangeReason(SoundRow row, SoundReason reason);
    bool EmulateOrDelete(SndBase& sound);
    void DeleteInaudible(SndBase& sound);
    bool FindLength(SndBase& sound);
    std::optional<std::uint32_t> FindLikeLength(std::uint32_t number, const SndBase* except);
    static std::uint32_t GetOwnLength(const SndBase& sound);
    void OnChannelEnded(SndChannel* channel);
    void OnFileChanged(const SndFileChange& change);
    SndBase* FindByChannel(const SndChannel* channel);
    static bool IsOfKind(const SndBase& sound, int kind);
    void DeleteListed(int kind);
    template<class Matches>
    void DeleteFromTable(Matches matches);
    template<class Matches>
    void RefreshMatching(Matches matches);
    SoundWalk Walk(ListID id, SoundWalk::Newcomers treatment = SoundWalk::SkipNewcomers,
        SoundWalk::Direction direction = SoundWalk::FromHead)
    {
        return {GetList(id), walkMemory, direction, treatment};
    }
    void Insert(SndBase& sound, ListID id);
    void Unlist(SndBase& sound);
    /// Whether the lists and the table are consistent and each sound is listed at most once. For assertions.
    bool IsConsistent();

    SoundOptions options;
    std::unique_ptr<DynamicLibrary> soundLibrary;
    std::unique_ptr<SndDriver> driver;
    Microphone* activeMicrophone = nullptr;
    unsigned long elapsed = 0;
    bool listenerChanged = true;
    std::unique_ptr<SndNodeCache> dataCache;
    std::unique_ptr<SndFileCache> fileCache;
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
    Decision decision;
    EngineVector<SndList::Entry> walkMemory;

    bool refusesSounds = false; ///< See AcceptsSounds().
    bool updating = false; ///< A full update is running.
    bool takesNewcomers = false; ///< The running update has passed its start: see MarkStarted().
    bool allPaused = false;
    bool pausesChanged = false; ///< The next full update checks which sounds are paused.
    bool hasReturned = false; ///< The playing list has sounds without a channel that resume from a pause.
    std::uint32_t listenerMoves = 0; ///< Number of full updates with a moved listener.
    int noticeDepth = 0;
    std::uint32_t startCounter = 0; ///< Number of starts.
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

/// Computes a sound's distance to the listener from its place, and whether it is in range.
inline void MeasureDistance(SoundRow row, const Vector3& listener)
{
    if (theKernel && row.CalcDistSqr(listener) != row.DistSqr()) {
        theKernel->ForgetOrder(row);
    }
    row.Measure(listener);
}

} // namespace Quon
