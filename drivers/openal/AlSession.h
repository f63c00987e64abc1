#pragma once

#include "drivers/openal/AlExtensions.h"
#include "drivers/openal/DriverOptions.h"

#include "harmonet/engine/Alloc.h"

#include <cstdint>
#include <span>

namespace Quon
{

/// One open OpenAL device with the driver's only context on it; the destructor closes both. Owned by the
/// OutputDevice. Opening does not change the current contexts of the process and the thread.
class AlSession : public Allocated
{
public:
    /// Takes ownership of `openedDevice`. It may be null; no context can be created then. The functions of
    /// `globalExtensions` must be loaded.
    AlSession(ALCdevice* openedDevice, const AlExtensions& globalExtensions);
    AlSession(const AlSession&) = delete;
    AlSession& operator=(const AlSession&) = delete;
    /// The context must not be current any more.
    ~AlSession();

    /// Creates the context with these pairs of attribute and value and the requested HRTF mode. If HRTF is
    /// requested but not available, the context is created without it. Returns false if no context can be
    /// created, or if OpenAL lacks a function that the driver needs.
    bool CreateContext(std::span<const ALCint> attributes, Hrtf hrtf);

    ALCdevice* GetDevice() const { return device; }
    ALCcontext* GetContext() const { return context; }
    const AlExtensions& GetExtensions() const { return extensions; }

    /// Whether positional sounds are rendered with HRTF.
    bool IsHrtfOn() const { return hrtfOn; }

    /// The rate at which the device mixes, in Hz.
    int GetRateHz() const { return rateHz; }

    /// A clock in nanoseconds that advances as the device mixes. A setting has taken full effect when the
    /// clock has advanced by GetSettleTime() since it was made.
    std::int64_t GetMixClock() const;
    /// Whether that is the device's clock; otherwise it is the machine's.
    bool HasMixClock() const { return extensions.getInteger64v != nullptr; }
    /// Two periods: a change can come just after the device has started to mix one.
    std::int64_t GetSettleTime() const { return 2 * period; }
    /// How much the device mixes at once, in nanoseconds.
    std::int64_t GetPeriod() const { return period; }

private:
    bool TryContext(std::span<const ALCint> attributes, Hrtf hrtf);
    bool PrepareContext();
    bool AskHrtf() const;
    std::int64_t AskPeriod() const;

    AlExtensions extensions;
    ALCdevice* device;
    ALCcontext* context = nullptr;
    bool hrtfOn = false;
    int rateHz = 0;
    std::int64_t period = 0;
};

} // namespace Quon
