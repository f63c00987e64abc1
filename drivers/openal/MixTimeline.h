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
/// difference observed is the true one. It is discarded after some seconds, since the clocks drift. A plain
/// value; nanoseconds.
class MixTimeline
{
public:
    /// Records that the device's clock was at `mixed` at the time `now`.
    void Observe(std::int64_t now, std::int64_t mixed)
    {
        if (now - begun > windowLength) {
            before = present;
            present = std::numeric_limits<std::int64_t>::min();
            begun = now;
        }
        present = std::max(present, mixed - now);
    }

    /// The device's clock at a time of the machine. Needs a first Observe().
    std::int64_t ToMixed(std::int64_t time) const { return time + std::max(before, present); }

    void Reset() { *this = MixTimeline(); }

private:
    static constexpr std::int64_t windowLength = 2000000000;

    std::int64_t begun = std::numeric_limits<std::int64_t>::min() / 2;
    std::int64_t before = std::numeric_limits<std::int64_t>::min();
    std::int64_t present = std::numeric_limits<std::int64_t>::min();
};

} // namespace Quon
