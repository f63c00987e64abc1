#pragma once

#include "drivers/openal/Fades.h"
#include "drivers/openal/Voice.h"

#include <memory>
#include <mutex>

namespace Quon
{

class OutputDevice;

/// All voices of the driver. A channel takes one for each sound and gives it back when the sound is over.
///
/// A voice that is given back in the middle of its sound is not cut. It fades out over a given time, or, if
/// that is 0, over the next block that OpenAL mixes, and only then it is halted. That uses nothing but what
/// is already queued. There are about twice as many voices as channels, so that new sounds need not wait.
///
/// Any thread with a ContextScope; the pool's own lock is held for no longer than a few calls of OpenAL.
class VoicePool
{
public:
    explicit VoicePool(const OutputDevice& outputDevice);

    /// Makes as many voices as it can get, up to `wanted`, and returns their number. Without a device it can
    /// get them all, silent ones.
    int Build(int wanted);

    /// Lets all voices run on in silence, before the device goes.
    void GoSilent();

    /// Gives the voices sources of a new device, first those that are in use, as far as it has them.
    void Restore();

    /// Deletes all voices, whoever has them.
    void Clear();

    /// A voice that does not sound and is empty, with a source if possible, or null. When none is free the
    /// one that has been fading out for the longest is cut off.
    Voice* Take();

    /// Takes a voice back. It fades out over `fadeTicks` of the device's time.
    void Retire(Voice* voice, std::int64_t fadeTicks);

    /// Sets the levels of voices that fade out to what they are to be at `time`, on the device's clock, and
    /// halts those that have fallen silent. To be called before each block of a loopback device and every
    /// 10 ms on a live one, and after the last block.
    void Tick(std::int64_t time);

    /// Whether a voice is still falling silent.
    bool IsAnyFading();

    /// Tells that settings are being held back, so that a retired voice cannot be silent yet.
    void SetDeferred(bool deferred);
    bool IsDeferred();

private:
    struct Fading
    {
        Voice* voice;
        float gain; ///< From which it fades.
        Fall fall;
        std::int64_t since; ///< Silent since then on the device's mix clock; notYet until that has been set.
    };

    void Free(Voice* voice);
    bool IsFree(const Voice* voice) const;

    const OutputDevice& device;
    std::mutex mutex; ///< Guards all that follows.
    EngineVector<std::unique_ptr<Voice>> voices;
    EngineVector<Voice*> free;
    EngineVector<Fading> fading; ///< Oldest first.
    bool isDeferred = false;
};

} // namespace Quon
