#pragma once

#include "drivers/openal/Voice.h"

#include <memory>
#include <mutex>

namespace Quon
{

class OutputDevice;

/// All voices of the driver. A channel takes one for each sound and gives it back when the sound is over.
///
/// A voice that is given back in the middle of its sound is not cut: its gain goes to 0, which OpenAL spreads
/// over the next block it mixes, and only then it is halted. That uses nothing but what is already queued.
/// There are about twice as many voices as channels, so that new sounds need not wait for it.
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

    /// Takes a voice back. It falls silent by the next block that is mixed.
    void Retire(Voice* voice);

    /// Halts the voices that have fallen silent. To be called every now and then, and around each block of a
    /// loopback device.
    void Reap();

    /// Whether a voice is still falling silent.
    bool IsAnyFading();

    /// Tells that settings are being held back, so that a retired voice cannot be silent yet.
    void SetDeferred(bool deferred);
    bool IsDeferred();

private:
    struct Fading
    {
        Voice* voice;
        std::int64_t since; ///< On the device's mix clock; notYet until the gain has really been set.
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
