#pragma once

#include "harmonet/Export.h"
#include "harmonet/kernel/SoundState.h"
#include "harmonet/output/SoundCaps.h"

#include <cstddef>
#include <cstdint>
#include <span>

namespace Quon
{

class HarmonetTask;
class OS;
class SoundTrace;

/// The front of the library for the host: starts and stops sound, sets the main gains, silences everything
/// and limits the number of audible sounds.
///
/// Any number of these objects may exist; there is one sound system, and all operations but Init() and Done()
/// act on that one. While it is stopped they do nothing and return the empty value told with each. Everything
/// is for the thread that runs the engine's tasks.
class HARMONET_API SoundSystem
{
public:
    /// What the output driver can do.
    using Caps = SoundCaps;

    SoundSystem();
    SoundSystem(const SoundSystem&) = delete;
    SoundSystem& operator=(const SoundSystem&) = delete;
    /// As Done(). If that does nothing, the system runs until the engine ends its tasks.
    ~SoundSystem();

    /// Starts the system: finds and opens an output driver, and enters a task that runs it. Needs the option
    /// "Sound", the names of driver libraries separated by commas; they are tried in order, and the first
    /// that opens wins. "MaxSounds", "SoundCacheSize", "SoundFrequency" and "StreamLength" take their default
    /// (20, 1000000, 22050, 500) if they are not set, not a number of 32 bits or out of range: below 0, for
    /// the frequency below 1. "SoundSeed", default 0, seeds the random values by which definitions vary. `os`
    /// must outlive the system. `driverFlag` goes to the driver. False, and the system stays stopped, when no
    /// driver or no memory can be had; false also when the system runs already, which is left alone.
    bool Init(OS* os, bool driverFlag);
    /// Stops the system if this object has started it: ends all sounds, with their notifications, and
    /// releases driver and files. What was an id finds nothing from then on. While it runs, no sound can be
    /// made. Inside an observer's handler it does nothing, since that would take away what the handler was
    /// called from.
    void Done();

    /// Asks the driver what it can do. False, with all flags clear, when there is no driver.
    bool GetCaps(Caps& caps);
    /// Whether the driver has lost output for good: a file that is rendered into cannot take any more, since
    /// the disk is full or the file as large as it can be. A sound card that can come back does not count.
    /// False while the system is stopped.
    static bool HasLostOutput();

    // Gains are linear factors and are clamped to 0.0 to 1.0; NaN changes nothing. A getter gives 0.0 while
    // the system is stopped.

    /// The gain of the whole output; the driver keeps it.
    static void SetMainGain(float gain);
    static float GetMainGain();
    /// The gain of all sounds of a kind, heard at once.
    static void Set2DMainGain(float gain);
    static float Get2DMainGain();
    static void Set3DMainGain(float gain);
    static float Get3DMainGain();
    static void SetMusicMainGain(float gain);
    static float GetMusicMainGain();

    /// Gain of the high frequencies of all sounds and music, those to come included: see
    /// Sound::SetSoundLowPass(). At the start it is 1.0.
    static void SetLowPass(float gainHF);
    static float GetLowPass();

    /// The Doppler effect of positional sounds: 0.0, the default, is off, 1.0 is as in nature; other values
    /// exaggerate or reduce it. Clamped to 0.0 to 10.0; NaN changes nothing. Follows from how the nodes of
    /// sounds and microphone move from update to update. In percent it is the option "SoundDoppler".
    static void SetDopplerFactor(float factor);
    static float GetDopplerFactor();
    /// In world units per second, for the Doppler effect: 343.0 where a unit is a metre, which is the
    /// default. Has to be above 0 and finite, or nothing changes. The option "SpeedOfSound".
    static void SetSpeedOfSound(float speed);
    static float GetSpeedOfSound();

    /// Ends all sounds, music included; also what observers start in answer. Towards its end no sound can be
    /// made.
    static void StopAll();
    /// Ends all sounds that are neither positional nor music.
    static void StopAll2D();
    /// Ends all positional sounds.
    static void StopAll3D();

    /// Pauses all sounds and music, those to come included, until ResumeAll(): see Sound::PauseSound(). What
    /// is paused by itself or with its group stays so.
    static void PauseAll();
    static void ResumeAll();
    static bool IsAllPaused();

    /// The limit of audible sounds, in force from the next full update. The driver is not told: beyond what
    /// the option "MaxSounds" gave it at the start it may refuse channels. 2^31 and more silences all but
    /// music, as 0 does.
    void SetMaxAudibleSounds(unsigned int count);
    unsigned int GetMaxAudibleSounds();

    /// Which effects new sounds take over from their resources: bit n stands for effect n of `SndFX`, 0 to 8.
    /// All are enabled at the start. Sounds that exist keep theirs.
    void DisableResourceFX(unsigned long mask);
    void EnableResourceFX(unsigned long mask);
    unsigned long GetResourceFX();

    // For tools.

    /// Takes a snapshot of each sound that exists, music, lines and their sources included, in no particular
    /// order. Fills in as many of `states` as there are and returns how many sounds there are, which can be
    /// more; 0 while the system is stopped. It allocates nothing and opens and moves no file, so that a debug
    /// overlay can take it in each game frame. Call it with the same block again: what has not changed is the
    /// cheaper.
    static std::size_t Inspect(std::span<SoundState> states);
    /// Reports all that happens from here on to `trace`, also when the system is started anew. There is one
    /// at a time; null ends it. It stays the caller's.
    static void SetTrace(SoundTrace* trace);
    /// Milliseconds of full updates since the start of the system; wraps around at 2^32.
    static std::uint32_t GetClockMs();

private:
    /// Init() of a stopped system. Throws when there is no memory, and the system stays stopped.
    bool Start(OS* os, bool driverFlag);

    HarmonetTask* task;
};

} // namespace Quon
