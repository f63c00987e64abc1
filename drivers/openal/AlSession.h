#pragma once

#include "drivers/openal/AlExtensions.h"
#include "drivers/openal/DriverOptions.h"

#include "harmonet/engine/Alloc.h"

#include <cstdint>
#include <span>

namespace Quon
{

/// One open device of OpenAL with the one context that the driver makes on it; both are closed with the
/// object. Owned by the OutputDevice. Opening leaves the contexts of the process and of the thread as they
/// were.
class AlSession : public Allocated
{
public:
    /// Takes `openedDevice` over; null will do, and then no context can be made. The functions of
    /// `globalExtensions` must be loaded.
    AlSession(ALCdevice* openedDevice, const AlExtensions& globalExtensions);
    AlSession(const AlSession&) = delete;
    AlSession& operator=(const AlSession&) = delete;
    /// The context may not be current any more.
    ~AlSession();

    /// Makes the context with these pairs of attribute and value, and with HRTF as it is asked for. Where
    /// HRTF is asked for and cannot be had the context is made without. False if there can be no context, or
    /// if OpenAL lacks what the driver needs.
    bool CreateContext(std::span<const ALCint> attributes, Hrtf hrtf);

    ALCdevice* GetDevice() const { return device; }
    ALCcontext* GetContext() const { return context; }
    const AlExtensions& GetExtensions() const { return extensions; }

    /// Whether positional sounds are worked out for two ears.
    bool IsHrtfOn() const { return hrtfOn; }

    /// The rate at which the device mixes, in Hz.
    int GetRateHz() const { return rateHz; }

    /// Grows, in nanoseconds, as the device mixes. A setting made at one value has been heard in full when
    /// the value has grown by GetSettleTime().
    std::int64_t GetMixClock() const;
    /// Whether that is a clock of the device; otherwise it is the machine's.
    bool HasMixClock() const { return extensions.getInteger64v != nullptr; }
    std::int64_t GetSettleTime() const { return settleTime; }

private:
    bool TryContext(std::span<const ALCint> attributes, Hrtf hrtf);
    bool PrepareContext();
    bool AskHrtf() const;
    std::int64_t AskSettleTime() const;

    AlExtensions extensions;
    ALCdevice* device;
    ALCcontext* context = nullptr;
    bool hrtfOn = false;
    int rateHz = 0;
    std::int64_t settleTime = 0;
};

} // namespace Quon
