#pragma once

#include "drivers/openal/AlExtensions.h"
#include "harmonet/engine/Vector.h"

#include <cstdint>

namespace Quon
{

/// The OpenAL device and its context: either the default device of the machine or a loopback device that is
/// rendered by call. Owned by the driver. A thread that calls OpenAL, through this class or a Voice, first
/// makes the context its own with a ContextScope: the context that is current for the whole process stays the
/// host's.
class OutputDevice
{
public:
    OutputDevice() = default;
    OutputDevice(const OutputDevice&) = delete;
    OutputDevice& operator=(const OutputDevice&) = delete;
    /// No ContextScope may be left.
    ~OutputDevice();

    /// Opens the default device, asking for the given rate; it may get another one. False, without waiting,
    /// when there is no device or the OpenAL implementation lacks what the driver needs.
    bool OpenLive(int rateHz);

    /// Opens a loopback device of exactly this rate: stereo, in float, without a limiter and without HRTF,
    /// which hands out what was put in bit by bit. False if it cannot be had.
    bool OpenLoopback(int rateHz);

    /// Mixes the next `sampleFrames` of a loopback device into `stereo`. Task thread.
    void Render(float* stereo, int sampleFrames);

    /// The time by which fades go, in ticks of its own: the sample frames that the loopback device has
    /// rendered, or the time of the machine. Of a loopback device, task thread only.
    std::int64_t GetTime() const;
    std::int64_t GetTicksPerSecond() const;

    /// Grows as the device mixes. A setting made at one value has been heard in full when the value has grown
    /// by GetSettleTime().
    std::int64_t GetMixClock() const;
    std::int64_t GetSettleTime() const { return settleTime; }

    /// Settings of sources and listener made between these two take hold together.
    void DeferUpdates() { extensions.deferUpdates(); }
    void ProcessUpdates() { extensions.processUpdates(); }

    void SetMainGain(float gain);
    void SetListenerPosition(const Vector3& position);
    void SetListenerOrientation(const Vector3& front, const Vector3& top);

private:
    friend class ContextScope;

    bool OpenContext(const ALCint* attributes);

    AlExtensions extensions;
    ALCdevice* device = nullptr;
    ALCcontext* context = nullptr;
    bool loopback = false;
    int rate = 0;
    std::int64_t renderedFrames = 0;
    std::int64_t settleTime = 0;
};

/// Makes a device's context the calling thread's own, and gives the thread back what it had.
class ContextScope
{
public:
    explicit ContextScope(const OutputDevice& device);
    ~ContextScope();
    ContextScope(const ContextScope&) = delete;
    ContextScope& operator=(const ContextScope&) = delete;

private:
    const AlExtensions& extensions;
    ALCcontext* const mine;
    ALCcontext* const previous;
};

} // namespace Quon
