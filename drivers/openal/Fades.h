#pragma once

#include <cstdint>
#include <span>

namespace Quon
{

/// A rise from silence to full level over a given time, in a straight line, worked into PCM before it is
/// queued. One thread at a time.
class Rise
{
public:
    /// Begins a rise of so many milliseconds; 0 or less is none.
    void Start(double newDurationMs);
    void Cancel() { durationMs = 0.0; }
    /// So many milliseconds of the rise are over.
    void Skip(double ms) { elapsedMs = ms; }

    /// Scales the next sample frames, of `channels` samples each, that are to be heard at `rateHz`.
    void Apply(std::span<float> pcm, int channels, double rateHz);

private:
    double durationMs = 0.0; ///< 0: no rise.
    double elapsedMs = 0.0;
};

/// A fall from full level to silence, in a straight line, as a function of time in ticks of any length. A
/// plain value.
class Fall
{
public:
    /// Begins a fall at `now`. A `length` of 0 or less has fallen at once.
    void Start(std::int64_t now, std::int64_t newLength);
    void Cancel() { isRunning = false; }
    /// So much of the length is over.
    void Skip(std::int64_t ticks) { begin -= ticks; }

    /// Whether there is a fall, also one that is over.
    bool IsRunning() const { return isRunning; }

    /// Whether there is a fall and it is over.
    bool IsOver(std::int64_t now) const { return isRunning && now >= begin + length; }

    /// The factor at a time, 1 without a fall.
    float GetLevel(std::int64_t time) const;

private:
    bool isRunning = false;
    std::int64_t begin = 0;
    std::int64_t length = 0;
};

} // namespace Quon
