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

/// The library's interface for the host: starts and stops the sound system, sets the main gains, stops all
/// sounds and limits the number of audible sounds.
///
/// Any number of these objects may exist, but there is one sound system, and all operations except Init() and
/// Done() act on it. While it is stopped they do nothing and return the value documented for that case. Task
/// thread only, which is the thread that runs the engine's tasks.
class HARMONET_API SoundSystem
{
public:
    /// The capabilities of the output driver.
    using Caps = SoundCaps;

    SoundSystem();
    SoundSystem(const SoundSystem&) = delete;
    SoundSystem& operator=(const SoundSystem&) = delete;
    /// Same as Done(). If that does nothing, the system runs until the engine ends its tasks.
    ~SoundSystem();

    /// Starts the system: finds and opens an output driver, and adds a task that runs it. Requires the option
    /// "Sound", the names of driver libraries separated by commas; they are tried in order, and the first
    /// that opens is used. "MaxSounds", "SoundCacheSize", "SoundFrequency" and "StreamLength" take their
    /// default (20, 1000000, 22050, 500) if they are not set, not a 32-bit number or out of range (below 0;
    /// below 1 for the frequency). "SoundSeed", default 0, seeds the random variation of definitions. `os`
    /// must outlive the system. `driverFlag` is passed to the driver. Returns false and leaves the system
    /// stopped if no driver can be opened or memory runs out. Also returns false if the system is already
    /// running, which is not affected.
    bool Init(OS* os, bool driverFlag);
    /// Stops the system if this object has started it: ends all sounds, notifies their observers, and
    /// releases driver and files. All ids are stale afterwards. No sound can be created while this function
    /// runs. Does nothing when called from an observer's handler, since it would delete the caller of the
    /// handler.
    void Done();

    /// Queries the driver's capabilities. Returns false and clears all flags if there is no driver.
    bool GetCaps(Caps& caps);
    /// Whether the driver has permanently lost its output: the output file cannot grow any more because the
    /// disk is full or the file has its maximum size. A sound device that can return does not count. False
    /// while the system is stopped.
    static bool HasLostOutput();

    // Gains are linear factors and are clamped to 0.0..1.0; NaN is ignored. A getter returns 0.0 while the
    // system is stopped.

    /// The gain of the whole output; stored by the driver.
    static void SetMainGain(float gain);
    static float GetMainGain();
    /// The gain of all sounds of a kind; takes effect at once.
    static void Set2DMainGain(float gain);
    static float Get2DMainGain();
    static void Set3DMainGain(float gain);
    static float Get3DMainGain();
    static void SetMusicMainGain(float gain);
    static float GetMusicMainGain();

    /// Gain of the high frequencies of all sounds and music, including later ones: see
    /// Sound::SetSoundLowPass(). Initially 1.0.
    static void SetLowPass(float gainHF);
    static float GetLowPass();

    /// The Doppler effect of positional sounds: 0.0, the default, disables it, 1.0 is natural; other values
    /// exaggerate or reduce it. Clamped to 0.0..10.0; NaN is ignored. It is computed from the motion of the
    /// nodes of sounds and microphone between updates. The option "SoundDoppler" sets it in percent.
    static void SetDopplerFactor(float factor);
    static float GetDopplerFactor();
    /// The speed of sound for the Doppler effect, in world units per second. The default is 343.0, for units
    /// of a metre. Values that are not finite or not above 0 are ignored. Also the option "SpeedOfSound".
    static void SetSpeedOfSound(float speed);
    static float GetSpeedOfSound();

    /// Ends all sounds, including music and sounds that observers start in response. Towards its end no sound
    /// can be created.
    static void StopAll();
    /// Ends all non-positional sounds except music.
    static void StopAll2D();
    /// Ends all positional sounds.
    static void StopAll3D();

    /// Pauses all sounds and music, including later ones, until ResumeAll(): see Sound::PauseSound(). A sound
    /// that is also paused itself or with its group stays paused.
    static void PauseAll();
    static void ResumeAll();
    static bool IsAllPaused();

    /// Limits the number of audible sounds from the next full update on. The driver is not notified: above
    /// the value that the option "MaxSounds" had at the start it may refuse channels. 0, and values of 2^31
    /// and above, silence everything except music.
    void SetMaxAudibleSounds(unsigned int count);
    unsigned int GetMaxAudibleSounds();

    /// Selects which effects new sounds take from their resources: bit n is effect n of `SndFX`, 0 to 8. All
    /// are enabled initially. Existing sounds keep theirs.
    void DisableResourceFX(unsigned long mask);
    void EnableResourceFX(unsigned long mask);
    unsigned long GetResourceFX();

    // For tools.

    /// Takes a snapshot of all existing sounds, including music, lines and their sources, in unspecified
    /// order. Fills in up to `states.size()` entries and returns the number of sounds, which can be larger; 0
    /// while the system is stopped. It does not allocate and does not open or move files, so a debug overlay
    /// can call it in each game frame. Pass the same block each time: unchanged entries are cheaper.
    static std::size_t Inspect(std::span<SoundState> states);
    /// Reports all further events to `trace`, also after a restart of the system. There is one trace at a
    /// time; null detaches it. The caller keeps ownership.
    static void SetTrace(SoundTrace* trace);
    /// Milliseconds of full updates since the system was started; wraps around at 2^32.
    static std::uint32_t GetClockMs();

private:
    /// Init() of a stopped system. Throws when memory runs out, and the system stays stopped.
    bool Start(OS* os, bool driverFlag);

    HarmonetTask* task;
};

} // namespace Quon
