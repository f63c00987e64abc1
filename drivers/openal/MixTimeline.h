#pragma once

#include <algorithm>
#include <cstdint>
#include <limits>

namespace Quon
{

/// Tells what a device would mix at a time of the machine if it mixed without steps. A device mixes a period
/// at once, some 20 ms, and not at even times; what is placed by its clock alone is off by as much.
///
/// The two clocks run side by side, and the device's lags least just after it has mixed: the greatest
/// distance seen is the true one. It is forgotten after some seconds, since the clocks drift. A plain value;
/// nanoseconds.
class MixTimeline
{
public:
    /// The device's clock was at `mixed` at the time `now`.
    void Observe(std::int64_t now, std::int64_t mixed)
    {
        if (now - begun > windowLength) {
            before = present;
            present = std::numeric_limits<std::int64_t>::min();
            begun = now;
        }
        present = std::max(present, mixed - now);
    }

    /// What the device's clock would be at a time of the machine. After a first Observe().
    std::int64_t ToMixed(std::int64_t time) const { return time + std::max(before, present); }

    void Reset() { *this = MixTimeline(); }

private:
    static constexpr std::int64_t windowLength = 2000000000;

    std::int64_t begun = std::numeric_limits<std::int64_t>::min() / 2;
    std::int64_t before = std::numeric_limits<std::int64_t>::min();
    std::int64_t present = std::numeric_limits<std::int64_t>::min();
};

} // namespace Quon
