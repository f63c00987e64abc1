#pragma once

#include <algorithm>
#include <cstdint>
#include <limits>

namespace Quon
{

/// Estimates the mix position of a device at a time of the machine as if it mixed continuously. A device
/// mixes a period of about 20 ms at once, at uneven times; sounds placed by its clock alone are off by as
/// much.
///
/// The two clocks run in parallel, and the device's lag is smallest just after it has mixed: the largest
/// difference observed is the true one. Some devices mix at the right moment only once in some seconds. Since
/// the clocks drift, an observation loses a ten-thousandth of its age, and is discarded after 5 to 10 s. A
/// plain value; nanoseconds.
class MixTimeline
{
public:
    /// Records that the device's clock was at `mixed` at the time `now`.
    void Observe(std::int64_t now, std::int64_t mixed)
    {
        if (first == unset) {
            first = now;
        }
        if (now - begun > windowLength) {
            before = present;
            present = unset;
            begun = now;
        }
        present = std::max(present, mixed - now + now / driftDivisor);
        last = mixed;
    }

    /// When to observe next besides the regular observations, for a device that mixes `period` nanoseconds at
    /// once: often at first, then just before and just after the device is expected to mix. Needs a first
    /// Observe().
    std::int64_t GetNextObservation(std::int64_t now, std::int64_t period) const
    {
        if (now - first < learningTime) {
            return now + learningInterval;
        }
        const std::int64_t expected = now + last + period - ToMixed(now);
        for (const std::int64_t next : {expected - margin, expected + margin}) {
            if (next > now) {
                return next;
            }
        }
        return now + period;
    }

    /// The device's clock at a time of the machine. Needs a first Observe().
    std::int64_t ToMixed(std::int64_t time) const
    {
        return time + std::max(before, present) - time / driftDivisor;
    }

    void Reset() { *this = MixTimeline(); }

private:
    static constexpr std::int64_t windowLength = 5000000000;
    static constexpr std::int64_t driftDivisor = 10000;

    static constexpr std::int64_t learningTime = 2000000000;
    static constexpr std::int64_t learningInterval = 1000000;
    static constexpr std::int64_t margin = 300000;
    static constexpr std::int64_t unset = std::numeric_limits<std::int64_t>::min();

    std::int64_t first = unset; ///< Time of the first observation.
    std::int64_t last = 0; ///< The last one of the device's clock.
    std::int64_t begun = std::numeric_limits<std::int64_t>::min() / 2;
    std::int64_t before = unset;
    std::int64_t present = unset;
};

} // namespace Quon
