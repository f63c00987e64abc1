#pragma once

#include "drivers/openal/Fades.h"
#include "drivers/openal/Voice.h"

#include <memory>
#include <mutex>

namespace Quon
{

class OutputDevice;

/// All voices of the driver. A channel takes one for each sound and returns it when the sound has ended.
///
/// A voice returned in the middle of its sound is not cut. It fades out over a given time, or, if that is 0,
/// over the next block that OpenAL mixes, and is halted afterwards. This uses only data already queued. There
/// are about twice as many voices as channels, so that new sounds need not wait.
///
/// Any thread with a ContextScope; the pool's own lock is held for a few OpenAL calls at most.
class VoicePool
{
public:
    explicit VoicePool(const OutputDevice& outputDevice);

    /// Creates as many voices as possible, up to `wanted`, and returns their number. Without a device it
    /// creates all of them, silent.
    int Build(int wanted);

    /// Lets all voices continue in silence, before the device is closed.
    void GoSilent();

    /// Gives the voices sources on a new device, as far as available, first to those in use.
    void Restore();

    /// Deletes all voices, including those in use.
    void Clear();

    /// Returns a stopped, empty voice, with a source if possible, or null. If none is free, the voice that
    /// has been fading out for the longest time is cut off.
    Voice* Take();

    /// Takes a voice back. It fades out over `fadeTicks` of the device's time.
    void Retire(Voice* voice, std::int64_t fadeTicks);

    /// Sets the levels of voices that fade out for `time` on the device's clock, and halts those that are
    /// silent. Call it before each block of a loopback device, every 10 ms on a live one, and after the last
    /// block.
    void Tick(std::int64_t time);

    /// Whether a voice is still fading out.
    bool IsAnyFading();

    /// Records that settings are deferred, so that a retired voice cannot be silent yet.
    void SetDeferred(bool deferred);
    bool IsDeferred();

private:
    struct Fading
    {
        Voice* voice;
        float gain; ///< Gain at the start of the fade.
        FadeOutRamp fadeOut;
        std::int64_t since; ///< Silent since then on the device's mix clock; notYet until that has been set.
    };

    void Free(Voice* voice);
    bool IsFree(const Voice* voice) const;

    const OutputDevice& device;
    std::mutex mutex; ///< Guards all members below.
    EngineVector<std::unique_ptr<Voice>> voices;
    EngineVector<Voice*> free;
    EngineVector<Fading> fading; ///< Oldest first.
    bool isDeferred = false;
};

} // namespace Quon
